// Clients and suppliers: the two registers have the same columns, and the first argument of
// nearly every operation, IndClienteFornitore, chooses the table: "C" `Anagrafica Clienti`,
// "F" `Anagrafica Fornitori`. Any other value is refused with ErroreDb. The key is
// `Codice Cliente` in both tables, a text compared as text and kept as given.
//
// A client's screen saves a record in sections (commercial data, the second commercial block,
// registry, transport, balances), each a call that rereads the row and writes only the columns
// of its own list; NoPrompt true skips the overwrite question for the later calls of one save.
#pragma once
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "frame/ConnessioneClasse.h"
#include "frame/Db.h"
#include "frame/Importo.h"
#include "frame/Valore.h"
#include "frame/VornServer.h"
#include "masterdata/FamigliaAnagrafiche.h"

namespace vorn {

// The balance of a client or supplier from the six running figures of its row: the opening
// balance (period opening + year's running opening) and the current one (the opening figures
// plus debits less credits of the period and of the running totals). Signed, Dare positive.
struct SaldoCliFor {
  Importo iniziale;
  Importo attuale;
};
// From the current row of a recordset holding the six columns (null reads as 0).
SaldoCliFor CalcolaSaldoCliFor(Recordset& rs);
// "D" for a positive figure, "A" for a negative one, empty text for zero.
std::string SegnoDareAvere(Importo saldo);

class clsClientiFornitori {
 public:
  ConnessioneClasse cn;

  // The columns each save writes.
  static const std::vector<std::string>& ColonneSalvaRecord();
  static const std::vector<std::string>& ColonneSalvaRecord2();
  static const std::vector<std::string>& ColonneSaldi();
  static const std::vector<std::string>& ColonneDatiAnagrafici();
  static const std::vector<std::string>& ColonneDatiTrasporto();
  // The table of the indicator; ErroreDb for anything but "C" and "F".
  static const DefinizioneAnagrafica& Definizione(const Valore& IndClienteFornitore);

  // ---- record operations

  // The whole row, editable and left open in T; a found row is stamped with the caller.
  bool LocalizzaRecord(Recordset& T, const Valore& IndClienteFornitore, const Valore& Codice_Cliente,
                       const Valore& clientID, long hWnd);
  // The same with only the code, the six balance columns and the stamp.
  bool LocalizzaRecordSaldi(Recordset& T, const Valore& IndClienteFornitore, const Valore& Codice_Cliente,
                            const Valore& clientID, long hWnd);

  // Each save writes the columns named in `valori`, which must all be in the save's list (a
  // name outside it is refused before anything is written), and the code; a missing row is
  // added. The descriptions of codes (`Descrizione Iva`, `Descrizione Zona`, ...) are stored
  // as given, not looked up.
  bool SalvaRecord(const Valore& IndClienteFornitore, const Valore& Codice_Cliente, const RecordValori& valori,
                   const Valore& clientID, long hWnd, bool& Cancel, bool NoPrompt = false);
  bool SalvaRecord2(const Valore& IndClienteFornitore, const Valore& Codice_Cliente, const Valore& ScontoArticolo_,
                    const Valore& Sconto2Articolo_, const Valore& Codice_Univoco_PA, const Valore& IndModalitaCorrisp,
                    const Valore& IndTipoSoggettoFE, const Valore& clientID, long hWnd, bool& Cancel,
                    bool NoPrompt = false);
  bool SalvaRecordSaldi(const Valore& IndClienteFornitore, const Valore& Codice_Cliente,
                        const Valore& SaldoInizPeriodo, const Valore& SaldoDarePeriodo,
                        const Valore& SaldoAverePeriodo, const Valore& SaldoInizProgress,
                        const Valore& SaldoDareProgress, const Valore& SaldoAvereProgress, const Valore& clientID,
                        long hWnd, bool& Cancel, bool NoPrompt = false);
  bool SalvaRecordDatiAnagrafici(const Valore& IndClienteFornitore, const Valore& Codice_Cliente,
                                 const RecordValori& valori, const Valore& clientID, long hWnd, bool& Cancel,
                                 bool NoPrompt = false);
  bool SalvaRecordDatiTrasporto(const Valore& IndClienteFornitore, const Valore& Codice_Cliente,
                                const RecordValori& valori, const Valore& clientID, long hWnd, bool& Cancel,
                                bool NoPrompt = false);

  // ---- navigation and deletion

  // No check that the code is used by journal rows or documents.
  bool CancellaRecord(const Valore& IndClienteFornitore, const Valore& Codice_Cliente);
  // The next code by text order (a blank code: the highest), the previous one (a blank code:
  // the lowest); false and the code untouched when there is none.
  bool RecordSuccessivo(const Valore& IndClienteFornitore, Valore& Codice_Cliente);
  bool RecordPrecedente(const Valore& IndClienteFornitore, Valore& Codice_Cliente);
  // The highest code by text order in mask "000000" ("000000" for an empty table); the next
  // code is the caller's to compute.
  std::string GetMaxCodice(const Valore& IndClienteFornitore);
  bool AzzeraClienti();
  bool AzzeraFornitori();
  // The six balance columns to 0 in both tables.
  bool AzzeraSaldi();

  // ---- getters: one column, empty text for an unknown record, no message

  Valore GetContropartitaCostoRicavo(const Valore& IndClienteFornitore, const Valore& Codice_Cliente);
  Valore GetSottocontoCliFor(const Valore& IndClienteFornitore, const Valore& Codice_Cliente);
  // GetSottocontoCliFor of several codes, read together (on PostgreSQL in one round trip).
  std::vector<Valore> GetSottocontiCliFor(const Valore& IndClienteFornitore, const std::vector<std::string>& codici);
  Valore GetPagamentoCliFor(const Valore& IndClienteFornitore, const Valore& Codice_Cliente);
  Valore GetAgenteCliFor(const Valore& IndClienteFornitore, const Valore& Codice_Cliente);
  Valore GetValutaCliFor(const Valore& IndClienteFornitore, const Valore& Codice_Cliente);
  Valore GetBancaCliFor(const Valore& IndClienteFornitore, const Valore& Codice_Cliente);
  Valore GetIBANCliFor(const Valore& IndClienteFornitore, const Valore& Codice_Cliente);
  Valore GetBBANCliFor(const Valore& IndClienteFornitore, const Valore& Codice_Cliente);
  Valore GetAgenziaCliFor(const Valore& IndClienteFornitore, const Valore& Codice_Cliente);
  Valore GetContoCorrenteCliFor(const Valore& IndClienteFornitore, const Valore& Codice_Cliente);
  Valore GetLocalitàCliFor(const Valore& IndClienteFornitore, const Valore& Codice_Cliente);
  Valore GetNazioneCliFor(const Valore& IndClienteFornitore, const Valore& Codice_Cliente);
  Valore GetCodiceFiscaleCliFor(const Valore& IndClienteFornitore, const Valore& Codice_Cliente);
  // `Fido`, 0 when missing.
  double GetFidoCliFor(const Valore& IndClienteFornitore, const Valore& Codice_Cliente);

  // `Ragione Sociale`; with SottocontoApparten the record must also belong to that
  // sub-account. An unknown code that is not blank: "Codice inesistente." when Cancel was
  // passed, the control marked when one was passed.
  Valore GetRagioneSocialeCliFor(const Valore& IndClienteFornitore, const Valore& Codice_Cliente,
                                 const std::optional<Valore>& SottocontoApparten = std::nullopt,
                                 bool* Cancel = nullptr, IControllo* ControlloDaSelezionare = nullptr);
  bool ExistClienteFornitore(const Valore& IndClienteFornitore, const Valore& Codice_Cliente,
                             const std::optional<Valore>& SottocontoApparten = std::nullopt);
  // True when another record of the same table has this VAT number (fiscal code); a blank
  // number is never a duplicate. Neither blocks a save: the client asks before saving.
  bool ExistPartitaIVA(const Valore& IndClienteFornitore, const Valore& Codice_Cliente, const Valore& Partita_IVA);
  bool ExistCodiceFiscale(const Valore& IndClienteFornitore, const Valore& Codice_Cliente,
                          const Valore& Codice_Fiscale);

  // The five columns of a document heading; false (and empty outputs) when not found.
  bool GetIntestazioneCliFor(const Valore& IndClienteFornitore, const Valore& Codice_Cliente,
                             Valore& Ragione_Sociale, Valore& Indirizzo, Valore& Cap, Valore& Località,
                             Valore& Provincia);
  bool GetDatiAnagraficiCompletiCliFor(const Valore& IndClienteFornitore, const Valore& Codice_Cliente,
                                       std::string& Ragione_Sociale, std::string& Ragione_Sociale_2,
                                       std::string& Codice_Fiscale, std::string& Partita_Iva, std::string& Indirizzo,
                                       std::string& Cap, std::string& Località, std::string& Provincia);
  // No record: IndPersonaFisica "0", Sesso "1", the rest empty. A record: `Persona Fisica`
  // (default "0"), the names, `Data nascita` as "dd/mm/yyyy" (empty when missing), `Sesso`
  // (default "F"), birthplace and its province.
  bool GetDatiPersonaFisicaCliFor(const Valore& IndClienteFornitore, const Valore& Codice_Cliente,
                                  std::string& IndPersonaFisica, std::string& Nome, std::string& Cognome,
                                  std::string& DataDiNascita, std::string& Sesso, std::string& LuogoDiNascita,
                                  std::string& ProvinciaDiNascita);
  // Reserved: an empty value.
  Valore GetParametriPredefinitiCliFor();

  // The opening and current balances as absolute amounts with their side ("D", "A", or empty
  // text for zero); a missing record gives zeros.
  void GetDareAvereSaldoClienteFornitore(Valore IndClienteFornitore, Valore Codice_Cliente, Valore& DareAvereIniziale,
                                         Valore& SaldoIniziale, Valore& DareAvereAttuale, Valore& SaldoAttuale);
  // "C" when the first four characters of the sub-account (group and account) are one of
  // elements 1 to 5 of the clients' groups, "F" of the suppliers' ones, otherwise empty text.
  // Blank elements match nothing.
  std::string GetTipoSottoconto(const Valore& sottoconto, const Valore (&str_GruppiContiClienti)[6],
                                const Valore (&str_GruppiContiFornitori)[6]);

 private:
  Connessione& C() const { return anagrafiche::Conn(cn); }
  bool Salva(const Valore& ind, const Valore& codice, const RecordValori& valori,
             const std::vector<std::string>& colonne, const Valore& clientID, long hWnd, bool& Cancel, bool NoPrompt);
  Valore Colonna(const Valore& ind, const Valore& codice, const char* colonna);
  bool EsisteAltro(const Valore& ind, const Valore& codice, const char* colonna, const Valore& valore);
};

}  // namespace vorn
