// The accounting causals, [Causali Contabili]: one row per CodiceCausale, the type of a journal
// entry. A causal decides which VAT register an entry goes to (TipoRegistroIva), how the VAT
// and fiscal reports read the signs of its rows (TipoCausale), whether it moves the opening
// balance or the year's debit and credit (OperativitaContabile), which sub-accounts are
// admitted and proposed, and which series and register are proposed.
//
// The class stores and hands out codes; it calculates almost nothing. The two code tables below
// are the one definition of their codes: the journal, the registers and the settlement read
// them from here.
//
// Unknown causals are answered with defaults and a false result, never with an error.
#pragma once
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "frame/ConnessioneClasse.h"
#include "frame/Db.h"
#include "frame/Host.h"
#include "frame/Valore.h"
#include "frame/VornServer.h"

namespace vorn {

// Where the SQL of the VAT and fiscal reports turns the rows of a causal type negative.
enum class SegnoTipoCausale {
  Positivo,
  Negativo,
  // Negative in the registers that list the type, as each register's statement tells.
  SecondoRegistro,
};

// One TipoCausale code.
struct VoceTipoCausale {
  std::string_view codice;     // "0".."9", ":", ";"
  std::string_view lettera;    // printed in the type column of the VAT register
  std::string_view documento;  // the kind of document
  SegnoTipoCausale impostaImponibile;  // sign of Imposta and ImponibileRigo
  SegnoTipoCausale totaleDocumento;    // sign of TotaleDocumento
  bool notaVariazione;                 // FlagNotaVariazione: a variation note
  bool esigibilitaDifferita;  // left out of the settlement's sums, taken by the deferred-VAT extractions
};

// One TipoRegistroIva code, with the text that GetDescrizioneTipoRegistroIva gives.
struct VoceTipoRegistroIva {
  int valore;
  std::string_view testo;
};

class clsCausaliContabili {
 public:
  ConnessioneClasse cn;

  // The twelve TipoCausale codes, in code order.
  static const std::vector<VoceTipoCausale>& TipiCausale();
  // The entry of a code (the trimmed text), or nullptr for a code outside the table.
  static const VoceTipoCausale* TipoCausaleDi(const Valore& TipoCausale);
  // The ten TipoRegistroIva codes, 0..9.
  static const std::vector<VoceTipoRegistroIva>& TipiRegistroIva();

  // The data columns that SalvaRecord writes, after the key, in their stored order (down to
  // OperativitaIntAut), and the twenty of SalvaRecordSottocontiProposti.
  static const std::vector<std::string>& ColonneSalvaRecord();
  static const std::vector<std::string>& ColonneSottocontiProposti();

  // Every row, read-only, ordered by CodiceCausale; true when any.
  bool LocalizzaTuttiRecord(Recordset& T);
  // Opens the row for update and stamps it with the caller; true when it exists.
  bool LocalizzaRecord(Recordset& T, const Valore& codiceCausale, const Valore& clientID, long hWnd);
  // Adds or overwrites the row of the code (stored trimmed). `campi` holds data columns by name,
  // matched without regard to case (see ColonneSalvaRecord): a column it leaves out keeps its
  // value (Null on a new row); a name that is not among them is refused with ErroreDb before
  // anything is written. No value is validated. A row reached by another reader since the
  // caller's LocalizzaRecord asks before being overwritten, unless NoPrompt; declined: Cancel
  // true, result false, nothing written.
  bool SalvaRecord(const Valore& codiceCausale, const RecordValori& campi, const Valore& clientID, long hWnd,
                   bool& Cancel, bool NoPrompt = false);
  // The same protocol on the same row for the proposed sub-accounts only (elements 1..10; 0 is
  // not used): a missing row is added with the key and the twenty proposals alone.
  bool SalvaRecordSottocontiProposti(const Valore& codiceCausale, const Valore (&SottocontoDare)[11],
                                     const Valore (&SottocontoAvere)[11], const Valore& clientID, long hWnd,
                                     bool& Cancel, bool NoPrompt = false);
  // Deletes the row, whether or not journal rows use it.
  bool CancellaRecord(const Valore& codiceCausale);
  // The next / previous code in text order. From an empty code the forward step gives the last
  // causal and the backward step the first. On success the argument takes the code found; with
  // nothing beyond, false and the argument as it was.
  bool RecordSuccessivo(Valore& codiceCausale);
  bool RecordPrecedente(Valore& codiceCausale);

  // DescrizioneCausale; "" when the causal is missing, and then, for a code that is not blank,
  // the "Codice inesistente." message titled "Causale Contabile" when Cancel is passed (which it
  // sets) and the control's highlight when one is passed.
  std::string GetDescrizioneCausale(const Valore& codiceCausale, bool* Cancel = nullptr,
                                    IControllo* ControlloDaSelezionare = nullptr);

  // Everything a journal entry needs from its causal. Text columns default to "" when Null,
  // TipoRegistroIva, the Operativita codes, IndQuadratura, FlagNonUtilizzata, FlagInsoluto and
  // TipoRegistroIVACRSemp to "0", RegistroIVAProposto to "01". The arrays take elements 1..10
  // (proposed debit and credit sub-accounts) and 1..9 (admitted sub-accounts); element 0 is not
  // touched. An unknown causal gives those defaults everywhere, "" in every array element, and
  // false. RegistroIVAPropostoCorr is not handed out here.
  bool GetParametriCausale(const Valore& codiceCausale, Valore& DescrizioneCausale, Valore& TipoRegistroIva,
                           Valore& TipoCausale, Valore& OperativitaPartite, Valore& OperativitaContabile,
                           Valore& OperativitaIntra, Valore& serieProposta, Valore& RegistroIVAProposto,
                           Valore& IndQuadratura, Valore (&Sottoconti_proposti_dare)[11],
                           Valore (&Sottoconti_proposti_avere)[11], Valore (&Sottoconti_ammessi)[10],
                           Valore& PosContrClifor, Valore& str_FlagNonUtilizzata, Valore& str_FlagInsoluto,
                           Valore& OperativitaCespiti, Valore& TipoRegistroIVACRSemp, Valore& RegistroIVACRSemp,
                           Valore& SottocontoIVARSM, Valore& OperativitaIntAut);
  // What the balance movement needs, with the defaults of GetParametriCausale. An unknown
  // causal gives "" in every output and false.
  bool GetParametriCausaleMovimentazione(const Valore& codiceCausale, Valore& TipoRegistroIva, Valore& TipoCausale,
                                         Valore& OperativitaPartite, Valore& OperativitaContabile,
                                         Valore& OperativitaIntra, Valore& IndQuadratura);
  // What invoice posting needs. An unknown causal gives "0" and "" and leaves
  // RegistroIVAProposto as it was; a Null register reads "01".
  bool GetParametriCausaleContabilizzazione(const Valore& codiceCausale, Valore& TipoRegistroIva,
                                            Valore& TipoCausale, Valore& RegistroIVAProposto);

  bool ExistCausaleContabile(const Valore& codiceCausale);
  // Calls AddItem with "code description" for each causal, in code order; true when any.
  bool LoadCausaliInCombo(const std::function<void(const std::string&)>& AddItem);

  // TipoRegistroIva of the causal, "0" when missing or Null.
  std::string GetTipoRegistroIvaCausaleContabile(const Valore& codiceCausale);
  // The text of a register type, compared as a number ("1" and 1 alike); Empty for anything
  // outside 0..9.
  static Valore GetDescrizioneTipoRegistroIva(const Valore& TipoRegistroIva);
  // OperativitaContabile of the causal, "0" when missing or Null.
  std::string GetOperativitàCausaleContabile(const Valore& codiceCausale);
  // Deletes every causal.
  bool AzzeraCausaliContabili();
  // TipoCausale of the causal, "" when missing.
  std::string GetTipoCausale(const Valore& codiceCausale);
  // RegistroIVAProposto ("01" when Null); an unknown causal leaves the output alone and gives
  // false.
  bool GetRegistroIVAProposto(const Valore& codiceCausale, Valore& RegistroIVAProposto);
  // A series template expanded by the year of the document (today's when DataDocumento is not a
  // date): every "%AAA" becomes the four-digit year, then every "%A" its last two digits.
  static std::string GetSeriePropostaDecodificata(const Valore& serieProposta, const Valore& DataDocumento);
  // serieProposta of the causal, "" when missing.
  std::string GetSerieProposta(const Valore& codiceCausale);

 private:
  // The row of the causal, read-only; at EOF when missing.
  Recordset Leggi(const Valore& codiceCausale, const std::string& colonne = "*");
  // One column of the causal as text; `predefinito` when the row is missing or the column Null.
  std::string LeggiTesto(const Valore& codiceCausale, const std::string& colonna, const char* predefinito);
};

}  // namespace vorn
