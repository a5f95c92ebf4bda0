// The printed ledger cards. Each card is written to mastrino.tmp and added to mastrino.txt, both
// in the run's working folder (CartellaTemp()); a print of one list, of all sub-accounts, of a
// range, or of the clients or suppliers, then lays the accumulated cards out on pages of the
// caller's file, written through FileStampa.
//
// A card in mastrino.txt begins with a line holding a form feed alone, followed by its heading
// (kRigheTestataScheda lines), which the pages repeat when the card runs on.
#pragma once
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "frame/ConnessioneClasse.h"
#include "frame/Data.h"
#include "frame/Db.h"
#include "frame/Host.h"
#include "frame/VornServer.h"

namespace vorn {

class clsSaldiContabili;
class clsParametriAzienda;
class clsProgAzienda;

// The arguments every print of cards shares.
struct ArgomentiStampaMastrini {
  IForm* frm_FormAttiva = nullptr;                 // its msgbar tells the card being printed
  clsSaldiContabili* objSaldiContabili = nullptr;  // none: one of the class's own on its connection
  clsProgAzienda* objProgAzienda = nullptr;        // the last unload; none: one of the class's own
  std::string RagioneSocialeAzienda;  // the name in the page head
  std::string AzRagSoc, AzParIva;     // the name stands in for the above when that is empty
  std::string nomeFile;               // the paginated print
  Valore avar_DaData, avar_AData;     // the period; an end that is no date leaves it open
  bool avar_StampaDescrizionePN = false;  // the row's description (the causal's when it has none)
  bool avar_StampaSaldo = false;          // the running balance on each row
  bool avar_NoSaltoPagina = false;        // cards follow each other on a page
  bool avar_StampaPerArchivio = false;    // the archive layout, with the entry number
  int avar_RighePagina = 72;
  std::optional<Data> DataStampa;  // the date in the page head; today when none
};

// One card of a list: a sub-account, and a client or supplier on it when `IndCliFor` is "C" or "F".
struct VoceMastrino {
  std::string Sottoconto;
  std::string IndCliFor;
  std::string CodCliFor;
};

class clsStampaMastrini {
 public:
  ConnessioneClasse cn;

  static constexpr int kRigheTestataScheda = 6;
  static constexpr int kRigheTestataPagina = 3;

  // The cards of a list, in its order. Each returns the number of cards printed; the file
  // `nomeFile` is written, empty when no card had anything to print.
  long StampaListaMastrini(const ArgomentiStampaMastrini& a, const std::vector<VoceMastrino>& grdElenco);
  // Every sub-account of the chart and of the journal, in code order.
  long StampaTutti(const ArgomentiStampaMastrini& a);
  // The sub-accounts from `avar_DaConto` to `avar_AConto` (a group or an account stands for all
  // its sub-accounts; an empty end leaves the range open).
  long StampaSottoconti(const ArgomentiStampaMastrini& a, const Valore& avar_DaConto, const Valore& avar_AConto);
  // The clients (`avar_TipoStampa` "C") or suppliers ("F") with codes from `avar_DaConto` to
  // `avar_AConto`, optionally only those of a control sub-account, an agent or a zone, sorted by
  // code or by name: one card for each sub-account on which the partner has rows (and for its
  // control sub-account). The partner indicators of the journal are checked first
  // (VerificaIndicatoreCliFor).
  long StampaMastriniCliFor(const ArgomentiStampaMastrini& a, clsParametriAzienda& objParametriAzienda,
                            const Valore& avar_TipoStampa, const Valore& avar_DaConto, const Valore& avar_AConto,
                            bool avar_SortRagioneSociale, const Valore& avar_SottocontoApparten,
                            const Valore& avar_Agente, const Valore& avar_Zona);

  // One card into mastrino.tmp, added to mastrino.txt. False when the card has no row
  // and a zero opening: then nothing is written.
  bool Stampa_Completa_Mastrino(const Valore& daData, const Valore& aData, const Valore& avar_Sottoconto,
                                const Valore& avar_IndCliFor, const Valore& avar_CodCliFor,
                                const ArgomentiStampaMastrini& a);

  // For each row of `sqlstm` (columns ContoPrimaNota and IndClienteFornitore) with a partner
  // indicator on a sub-account outside the client and supplier groups: a beep and the question
  // whether to clear the indicator and the code of that sub-account's journal rows. True.
  bool VerificaIndicatoreCliFor(const std::string& sqlstm, clsParametriAzienda& objParametriAzienda,
                                const Parametri& parametri = {});

  // The description of a sub-account: empty text for an empty or short code, or a code the chart
  // does not know; then, with `Cancel` given, the message of a missing code sets it.
  std::string GetDescrizioneSottoconto(const Valore& sottoconto, bool* Cancel = nullptr,
                                       IControllo* ControlloDaSelezionare = nullptr);
  // The name of a client ("C") or supplier ("F"); empty text when there is none.
  std::string GetRagioneSocialeCliFor(const Valore& IndClienteFornitore, const Valore& Codice_Cliente);

  // Lays the cards of `ingresso` out on pages of `nomeFile` (used by the prints above).
  void ImpaginaMastrini(const std::string& ingresso, const ArgomentiStampaMastrini& a);

  // The card files in the run's working folder.
  static std::string FileScheda();
  static std::string FileAccumulo();

 private:
  // The date of the last unload while a list is printed, read once for all its cards.
  std::optional<Valore> scarico_;
  Valore UltimoScarico(const ArgomentiStampaMastrini& a);
  long StampaElenco(const ArgomentiStampaMastrini& a, const std::vector<VoceMastrino>& elenco);
  std::vector<VoceMastrino> SottocontiDa(const std::string& da, const std::string& a);
};

}  // namespace vorn
