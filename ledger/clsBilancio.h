// The accounting balance sheet of a period: the patrimonial statement (assets against
// liabilities), the profit and loss statement (costs against revenues) and the technical summary
// accounts, side by side. The figures come from the journal, by competence date, plus what the
// last unload took out of it when the period has no start or starts before the unload's end (the
// unload's progressives, opening + debit - credit); they are never read from the running balance
// columns.
//
// The run works through a chain of work tables with fixed names ([Piano conti fittizio],
// [Saldi sottoconti], [Attività] ...), so one balance sheet at a time runs on a database: a
// second one meanwhile is told so and builds nothing. Balances are kept per client and supplier
// down to the sub-account, so a control account shows its clients in credit among the
// liabilities and the others among the assets. Groups take a zero partner balance on the left
// side (with 0), accounts and sub-accounts do not.
//
// The result goes to a paginated text file or to the rows of [Elaborazione stampa bilancio] of
// the client (ClientName). The work tables live inside the run's transaction: they are gone at
// the end of every run, and only the report table's rows stay.
#pragma once
#include <memory>
#include <string>
#include <vector>

#include "frame/ConnessioneClasse.h"
#include "frame/Db.h"
#include "frame/Host.h"
#include "frame/Importo.h"
#include "frame/Valore.h"

namespace vorn {

struct ArgomentiBilancio {
  IForm* frm_FormAttiva = nullptr;  // the progress (msgbar) and the title of messages (Caption)
  std::string clientName;           // the rows of [Elaborazione stampa bilancio]
  std::string AzRagSoc, AzParIva;   // the foot: who produced the print
  std::string nomeFile;             // the print
  Valore avar_DataStampa;
  Valore avar_DaData, avar_AData;  // not a date: open at that end
  bool avar_StampaSituazionePatrimoniale = true;
  bool avar_StampaContiRiepilogo = true;
  int avar_RighePagina = 72;  // lines of a page, head and foot included
  bool bilancioSuReport = false;
  // A balance sheet on the new year before the old one is closed: the account that takes last
  // year's result, and the logical opening date (required then).
  Valore avar_ContoRisultatoEsercizioPrec;
  Valore avar_DataLogicaAperturaBilancio;
};

// One side of a statement: the groups, accounts and sub-accounts with their amounts, by code.
struct RigaBilancio {
  std::string conto;  // two, four or seven characters
  std::string descrizione;
  Importo saldo;
};

// One section (patrimonial, economic, summary) as computed: both sides and their totals.
struct SezioneBilancio {
  std::vector<RigaBilancio> sx, dx;
  Importo totaleSx, totaleDx;
};

// A line of the trial balance of the sub-accounts.
struct RigaBilancioVerifica {
  std::string codice;  // seven characters
  std::string descrizione;
  Importo dare, avere;  // opening on its side, plus the movements of the period
  Importo Saldo() const { return dare - avere; }
};

class clsBilancio {
 public:
  ConnessioneClasse cn;

  // The whole run: the work tables, then the print (nomeFile) or the report table's rows. False,
  // with the message told, when it could not run: a logical opening date that is not a date,
  // another balance sheet running on the database. A database or file error throws, with
  // nothing left behind.
  bool Bilancio(const ArgomentiBilancio& a);

  // Costs minus revenues of the period (a profit is negative), by the same chain on the
  // economic section only; the period defaults to the dates of the journal. With
  // bool_ConsideraSaldiProgressivi the unloaded balances of the economic groups are added.
  // Throws ErroreDb when another balance sheet is running.
  Importo GetRisultatoEsercizioEconomicoAData(IForm* frm_FormAttiva, const Valore& avar_DaData,
                                              const Valore& avar_AData, bool bool_ConsideraSaldiProgressivi);

  // The sections of the last run (read while the work tables are there: inside Bilancio, or
  // afterwards from what it kept). Empty before a run.
  const SezioneBilancio& Patrimoniale() const { return sezioni_[0]; }
  const SezioneBilancio& Economico() const { return sezioni_[1]; }
  const SezioneBilancio& Riepilogo() const { return sezioni_[2]; }
  // True when the last run found that assets less liabilities differ from revenues less costs.
  bool MancaQuadratura() const { return mancaQuadratura_; }

  // The amount indented by the level of the code: groups, accounts and sub-accounts read as
  // three columns, 22 characters in all.
  static std::string Formatta_saldo_per_bilancio(const std::string& Conto, Importo Saldo);
  static std::string FormatValutaBilancio(Importo Saldo);
  // " Dal " start "  al " end, " Dal " start, " Al " end or "", as the arguments are dates.
  static std::string GetStringaPeriodoBilancio(const Valore& avar_DaData, const Valore& avar_AData);

  // The trial balance of the sub-accounts from the journal rows of the period, by code: each
  // sub-account with a debit or a credit, openings (position 3 "1") netted on their side; with
  // no start, or a start the last unload reaches, the unloaded progressives come first.
  // Descriptions from the chart.
  std::vector<RigaBilancioVerifica> BilancioVerificaSottoconti(const Valore& avar_DaData, const Valore& avar_AData);
  // The trial balance as text: a heading, one line a sub-account, the totals.
  static std::string TestoBilancioVerifica(const std::vector<RigaBilancioVerifica>& righe);

  // The message of a balance sheet refused because another is running.
  static const char* const kMessaggioInCorso;

 private:
  SezioneBilancio sezioni_[3];
  bool mancaQuadratura_ = false;
};

}  // namespace vorn
