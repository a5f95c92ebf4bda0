#include "ledger/clsStampaPianoConti.h"

#include <memory>

#include "company/StampaLibri.h"
#include "company/clsAnagraficaAzienda.h"
#include "company/clsProgAzienda.h"
#include "frame/Comuni.h"
#include "frame/Impaginazione.h"
#include "ledger/clsSaldiContabili.h"

namespace vorn {

using namespace stampa_libri;

const char* const clsStampaPianoConti::kTitolo = "Stampa anagrafica piano dei conti.";

std::vector<RigaSaldiArchivio> clsStampaPianoConti::CalcolaSaldi(const ArgomentiStampaSaldi& a,
                                                                 const Valore& avar_DaGruppo,
                                                                 const Valore& avar_aGruppo, bool abool_DiversiZero) {
  std::unique_ptr<clsSaldiContabili> pSaldi;
  std::unique_ptr<clsProgAzienda> pProg;
  clsSaldiContabili* saldi = Usa(a.objSaldiContabili, pSaldi, cn);
  clsProgAzienda* prog = Usa(a.objProgAzienda, pProg, cn);
  const Valore scarico = prog->GetDataUltimoScaricoPrimaNota();
  std::string da = TrimTesto(avar_DaGruppo), al = TrimTesto(avar_aGruppo);
  std::vector<RigaSaldiArchivio> righe;
  for (auto rs = cn->Execute(
           "SELECT COALESCE([Gruppo], '') || COALESCE([Conto], '') || COALESCE([Sottoconto], '') AS [Codice], "
           "[Descrizione] FROM [Piano Dei Conti] WHERE [Gruppo] IS NOT NULL AND [Gruppo] BETWEEN ? AND ? "
           "ORDER BY 1",
           {Valore(da.empty() ? "01" : da), Valore(al.empty() ? "99" : al)});
       !rs.Eof(); rs.MoveNext()) {
    RigaSaldiArchivio r;
    r.codice = TrimTesto(rs(0).Value());
    r.descrizione = TrimTesto(rs(1).Value());
    if (!righe.empty() && righe.back().codice == r.codice) continue;  // a double row of the chart
    righe.push_back(std::move(r));
  }
  RigaSaldiArchivio totale;
  for (auto& r : righe) {
    if (r.codice.size() != 7) continue;
    if (a.frm_FormAttiva) a.frm_FormAttiva->msgbar("Calcolo saldi sottoconto " + r.codice);
    Valore dal = stampa_saldi::InizioSaldi(a.avar_DaData, scarico);
    Importo ip, dp, ap, iper, dper, aper;
    r.saldoAttuale = saldi->GetSaldiADataSottoconto(scarico, dal, a.avar_AData, Valore(r.codice), ip, dp, ap, iper,
                                                    dper, aper);
    r.saldoIniziale = ip + iper;
    r.dareProgressivo = dp;
    r.avereProgressivo = ap;
    r.darePeriodo = dper;
    r.averePeriodo = aper;
    totale.Somma(r);
  }
  // Groups and accounts: the sums of their sub-accounts.
  for (auto& r : righe) {
    if (r.codice.size() == 7) continue;
    for (const auto& s : righe)
      if (s.codice.size() == 7 && s.codice.compare(0, r.codice.size(), r.codice) == 0) r.Somma(s);
  }
  if (a.frm_FormAttiva) a.frm_FormAttiva->msgbar("");
  std::vector<RigaSaldiArchivio> v;
  for (auto& r : righe)
    if (!abool_DiversiZero || !r.Zero()) v.push_back(std::move(r));
  if (!v.empty()) v.push_back(totale);
  return v;
}

bool clsStampaPianoConti::MakeStampaContabilePianoConti(const ArgomentiStampaSaldi& a, const Valore& avar_DaGruppo,
                                                        const Valore& avar_aGruppo, bool abool_DiversiZero) {
  auto righe = CalcolaSaldi(a, avar_DaGruppo, avar_aGruppo, abool_DiversiZero);
  if (righe.empty()) {
    Host().MsgBox("Nessun dato da stampare.", vbInformation, kTitolo);
    return false;
  }
  righe.pop_back();
  stampa_saldi::ScriviTabella(*cn, "Elaborazione stampa contabile piano conti", "Conto", a.clientName, righe);
  return true;
}

bool clsStampaPianoConti::StampaContabilePianoConti(const ArgomentiStampaSaldi& a, const Valore& avar_DaGruppo,
                                                    const Valore& avar_aGruppo, bool abool_DiversiZero) {
  VerificaUscitaStampa(a.nomeFile);
  auto righe = CalcolaSaldi(a, avar_DaGruppo, avar_aGruppo, abool_DiversiZero);
  if (righe.empty()) {
    Host().MsgBox("Nessun dato da stampare.", vbInformation, kTitolo);
    return false;
  }
  std::vector<std::string> testo;
  for (size_t i = 0; i + 1 < righe.size(); ++i) {
    // A group stands out with an empty line before it.
    if (righe[i].codice.size() == 2 && i > 0) testo.push_back("");
    testo.push_back(stampa_saldi::Linea(righe[i], 7));
  }
  testo.push_back(std::string(kColonneReport, '-'));
  testo.push_back(stampa_saldi::LineaTotale(righe.back()));
  std::unique_ptr<clsAnagraficaAzienda> pAnag;
  clsAnagraficaAzienda* anagrafica = Usa(a.objAnagraficaAzienda, pAnag, cn);
  stampa_saldi::ScriviStampa(testo, a.nomeFile, a.avar_RighePagina, "===  STAMPA CONTABILE PIANO DEI CONTI  Azienda: ",
                             anagrafica->GetRagioneSocialeAzienda(), a.avar_DataStampa.value_or(Data::Oggi()),
                             stampa_saldi::Intestazione("Conto   Descrizione"), a.AzRagSoc, a.AzParIva);
  return true;
}

}  // namespace vorn
