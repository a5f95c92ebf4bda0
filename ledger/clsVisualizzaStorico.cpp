#include "ledger/clsVisualizzaStorico.h"

#include "frame/Comuni.h"
#include "ledger/MovimentiMastrino.h"
#include "ledger/clsSaldiContabili.h"

namespace vorn {

const std::vector<std::string>& clsVisualizzaStorico::Intestazioni() {
  static const std::vector<std::string> v = {"Data comp.", "Data reg.", "N. reg.",    "Causale",
                                             "Descrizione", "Data doc.", "Documento", "Prot.",
                                             "Dare",       "Avere",     "Saldo",     "Cli/For"};
  return v;
}

bool clsVisualizzaStorico::VisualizzaMastriniStorico(IFormMastrino& frm_FormAttiva, const Valore& avar_DaData,
                                                     const Valore& avar_AData, const Valore& avar_Sottoconto,
                                                     const Valore& avar_IndCliFor, const Valore& avar_CodCliFor) {
  Interrompi = false;
  dare_ = avere_ = Importo();
  righe_ = 0;
  IGrigliaMastrino& g = frm_FormAttiva.vsMovimenti();
  g.Clear();
  g.Cols(NumeroColonne, Intestazioni());

  SchedaMastrino scheda = SchedaDa(avar_Sottoconto, avar_IndCliFor, avar_CodCliFor);
  Parametri p{Valore(scheda.sottoconto)};
  std::string sql =
      "SELECT [s].[DataCompetenza], [s].[DataRegistrazione], [s].[NumeroRegistrazione], [s].[CausaleContabile], "
      "[Causali Contabili].[DescrizioneCausale], [s].[DescrizioneSuppleme], [s].[DataDocumento], "
      "[s].[NumeroDocumento], [s].[SerieDocumento], [s].[NumeroProtocollo], [s].[DareAvere], [s].[ImportoMovimento], "
      "[s].[IndClientefornitore], [s].[CodClientefornitore] FROM [Storico Contabile] [s] "
      "LEFT JOIN [Causali Contabili] ON [Causali Contabili].[CodiceCausale] = [s].[CausaleContabile] "
      "WHERE [s].[SottocontoMovimento] = ?";
  if (scheda.CliFor()) {
    sql += " AND [s].[IndClientefornitore] = ? AND [s].[CodClientefornitore] = ?";
    p.push_back(Valore(scheda.ind));
    p.push_back(Valore(scheda.cod));
  }
  if (auto da = DataCorretta(avar_DaData)) {
    sql += " AND [s].[DataCompetenza] >= ?";
    p.push_back(Valore(*da));
  }
  if (auto a = DataCorretta(avar_AData)) {
    sql += " AND [s].[DataCompetenza] <= ?";
    p.push_back(Valore(*a));
  }
  sql += " ORDER BY [s].[DataCompetenza], CASE WHEN [s].[DataDocumento] IS NULL THEN 0 ELSE 1 END, "
         "[s].[DataDocumento], CASE WHEN [s].[NumeroDocumento] IS NULL THEN 0 ELSE 1 END, [s].[NumeroDocumento], "
         "COALESCE([s].[SerieDocumento], ''), [s].[IDProgressivo]";

  // Read whole first: the grid's refresh hands control to the client.
  std::vector<std::string> righe;
  Importo saldo;
  for (auto rs = cn->Execute(sql, p); !rs.Eof(); rs.MoveNext()) {
    const Importo importo = NullToZeroCy(rs(11).Value());
    const std::string lato = TrimTesto(rs(10).Value());
    if (lato == "A") {
      avere_ += importo;
      saldo -= importo;
    } else {
      dare_ += importo;
      saldo += importo;
    }
    std::string documento = NullToZeroLng(rs(7).Value()) ? TrimTesto(rs(7).Value()) : "";
    if (!TrimTesto(rs(8).Value()).empty()) documento += "/" + TrimTesto(rs(8).Value());
    std::string descrizione = TrimTesto(rs(5).Value());
    if (descrizione.empty()) descrizione = TrimTesto(rs(4).Value());
    std::string partner = TrimTesto(rs(12).Value());
    if (!partner.empty()) partner += " " + TrimTesto(rs(13).Value());
    auto data = [&](int i) {
      auto d = rs(i).Value().ComeData();
      return d ? d->Testo() : std::string();
    };
    std::string r = data(0) + "|" + data(1) + "|" + TrimTesto(rs(2).Value()) + "|" + TrimTesto(rs(3).Value()) + "|" +
                    descrizione + "|" + data(6) + "|" + documento + "|" +
                    (NullToZeroLng(rs(9).Value()) ? TrimTesto(rs(9).Value()) : "") + "|" +
                    (lato == "A" ? "" : FormattaImporto(Valore(importo))) + "|" +
                    (lato == "A" ? FormattaImporto(Valore(importo)) : "") + "|" +
                    FormattaImporto(Valore(ImportoAssoluto(saldo))) + " " + LatoDareAvere(saldo) + "|" + partner;
    righe.push_back(std::move(r));
  }
  for (const auto& r : righe) {
    if (Interrompi || g.Interrotto()) return false;
    g.AddItem(r);
    if (++righe_ % clsVisualizzaMastrini::kRigheAggiornamento == 0) g.Refresh();
  }
  g.Refresh();
  Aggiorna_Specchietto_Saldi(frm_FormAttiva, dare_, avere_);
  return true;
}

SpecchiettoSaldi clsVisualizzaStorico::Aggiorna_Specchietto_Saldi(IFormMastrino& frm_FormAttiva, Importo TotaleDare,
                                                                 Importo TotaleAvere) {
  SpecchiettoSaldi s;
  s.txtTotaleDare = FormattaImporto(Valore(TotaleDare));
  s.txtTotaleAvere = FormattaImporto(Valore(TotaleAvere));
  const Importo saldo = TotaleDare - TotaleAvere;
  s.txtSaldo = s.txtSaldoSelezione = FormattaImporto(Valore(ImportoAssoluto(saldo)));
  s.txtSaldoDA = s.txtSaldoSelezioneDA = LatoDareAvere(saldo);
  frm_FormAttiva.Specchietto(s);
  return s;
}

}  // namespace vorn
