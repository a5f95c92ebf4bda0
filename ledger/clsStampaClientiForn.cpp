#include "ledger/clsStampaClientiForn.h"

#include <memory>

#include "company/StampaLibri.h"
#include "company/clsAnagraficaAzienda.h"
#include "company/clsProgAzienda.h"
#include "frame/Comuni.h"
#include "frame/Impaginazione.h"
#include "ledger/clsSaldiContabili.h"

namespace vorn {

using namespace stampa_libri;

const char* const clsStampaClientiForn::kTitolo = "Stampa contabile clienti/fornitori";

std::vector<RigaSaldiArchivio> clsStampaClientiForn::CalcolaSaldi(const ArgomentiStampaSaldi& a,
                                                                  const Valore& avar_IndCliFor,
                                                                  const Valore& avar_DaCodice,
                                                                  const Valore& avar_ACodice, bool abool_DiversiZero) {
  const std::string ind = UCase(TrimTesto(avar_IndCliFor));
  if (ind != "C" && ind != "F") throw ErroreDb(3265, "Indicatore cliente/fornitore non valido: " + ind);
  std::unique_ptr<clsSaldiContabili> pSaldi;
  std::unique_ptr<clsProgAzienda> pProg;
  clsSaldiContabili* saldi = Usa(a.objSaldiContabili, pSaldi, cn);
  clsProgAzienda* prog = Usa(a.objProgAzienda, pProg, cn);
  const Valore scarico = prog->GetDataUltimoScaricoPrimaNota();
  const std::string t = ind == "C" ? "[Anagrafica Clienti]" : "[Anagrafica Fornitori]";
  Parametri p;
  std::string sql = "SELECT [Codice Cliente], [Ragione Sociale], [SottocontoApparten] FROM " + t + " WHERE 1 = 1";
  if (!TrimTesto(avar_DaCodice).empty()) {
    sql += " AND [Codice Cliente] >= ?";
    p.push_back(Valore(TrimTesto(avar_DaCodice)));
  }
  if (!TrimTesto(avar_ACodice).empty()) {
    sql += " AND [Codice Cliente] <= ?";
    p.push_back(Valore(TrimTesto(avar_ACodice)));
  }
  struct Partner {
    std::string codice, nome, conto;
  };
  std::vector<Partner> partner;
  for (auto rs = cn->Execute(sql + " ORDER BY [Codice Cliente]", p); !rs.Eof(); rs.MoveNext())
    partner.push_back({TrimTesto(rs(0).Value()), TrimTesto(rs(1).Value()), TrimTesto(rs(2).Value())});
  std::vector<RigaSaldiArchivio> v;
  RigaSaldiArchivio totale;
  for (const auto& x : partner) {
    if (a.frm_FormAttiva) a.frm_FormAttiva->msgbar("Calcolo saldi " + x.codice + " " + x.nome);
    RigaSaldiArchivio r;
    r.codice = x.codice;
    r.descrizione = x.nome;
    Valore dal = stampa_saldi::InizioSaldi(a.avar_DaData, scarico);
    Importo ip, dp, ap, iper, dper, aper;
    r.saldoAttuale = saldi->GetSaldiADataCliFor(scarico, dal, a.avar_AData, Valore(x.conto), Valore(ind),
                                                Valore(x.codice), ip, dp, ap, iper, dper, aper);
    r.saldoIniziale = ip + iper;
    r.dareProgressivo = dp;
    r.avereProgressivo = ap;
    r.darePeriodo = dper;
    r.averePeriodo = aper;
    if (abool_DiversiZero && r.Zero()) continue;
    totale.Somma(r);
    v.push_back(std::move(r));
  }
  if (a.frm_FormAttiva) a.frm_FormAttiva->msgbar("");
  if (!v.empty()) v.push_back(totale);
  return v;
}

bool clsStampaClientiForn::MakeStampaContabileClientiFornitori(const ArgomentiStampaSaldi& a,
                                                               const Valore& avar_IndCliFor,
                                                               const Valore& avar_DaCodice,
                                                               const Valore& avar_ACodice, bool abool_DiversiZero) {
  auto righe = CalcolaSaldi(a, avar_IndCliFor, avar_DaCodice, avar_ACodice, abool_DiversiZero);
  if (righe.empty()) {
    Host().MsgBox("Nessun dato da stampare.", vbInformation, kTitolo);
    return false;
  }
  righe.pop_back();
  stampa_saldi::ScriviTabella(*cn, "Elaborazione stampa contabile clifor", "Codice", a.clientName, righe);
  return true;
}

bool clsStampaClientiForn::StampaContabileClientiFornitori(const ArgomentiStampaSaldi& a,
                                                           const Valore& avar_IndCliFor, const Valore& avar_DaCodice,
                                                           const Valore& avar_ACodice, bool abool_DiversiZero) {
  VerificaUscitaStampa(a.nomeFile);
  auto righe = CalcolaSaldi(a, avar_IndCliFor, avar_DaCodice, avar_ACodice, abool_DiversiZero);
  if (righe.empty()) {
    Host().MsgBox("Nessun dato da stampare.", vbInformation, kTitolo);
    return false;
  }
  std::vector<std::string> testo;
  for (size_t i = 0; i + 1 < righe.size(); ++i) testo.push_back(stampa_saldi::Linea(righe[i], 6));
  testo.push_back(std::string(kColonneReport, '-'));
  testo.push_back(stampa_saldi::LineaTotale(righe.back()));
  std::unique_ptr<clsAnagraficaAzienda> pAnag;
  clsAnagraficaAzienda* anagrafica = Usa(a.objAnagraficaAzienda, pAnag, cn);
  const bool clienti = UCase(TrimTesto(avar_IndCliFor)) == "C";
  stampa_saldi::ScriviStampa(testo, a.nomeFile, a.avar_RighePagina,
                             clienti ? "===  STAMPA CONTABILE CLIENTI         Azienda: "
                                     : "===  STAMPA CONTABILE FORNITORI       Azienda: ",
                             anagrafica->GetRagioneSocialeAzienda(), a.avar_DataStampa.value_or(Data::Oggi()),
                             "Codice Ragione sociale                Saldo iniziale     Dare progr.    Avere progr.   "
                             "Dare periodo  Avere periodo    Saldo attuale",
                             a.AzRagSoc, a.AzParIva);
  return true;
}

}  // namespace vorn
