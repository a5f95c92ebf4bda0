#include "ledger/clsCompPrimaNota.h"

#include <map>
#include <optional>
#include <tuple>

#include "company/clsProgAzienda.h"
#include "frame/Comuni.h"
#include "ledger/clsPrimaNota.h"
#include "ledger/clsSaldiContabili.h"
#include "ledger/clsStoricoPrimaNota.h"

namespace vorn {

const char* const clsCompPrimaNota::kTitolo = "Compattamento prima nota";

namespace {

// The rows that leave the journal: registered up to the end (first parameter), of entries none of
// whose rows must stay (registered or competent past the end, second and third parameters, or
// without those dates, or moving a partner away from its control sub-account).
constexpr const char* kScelta =
    "[Prima Nota].[DataRegistrazione] <= ? AND NOT EXISTS (SELECT 1 FROM [Prima Nota] [x] "
    "WHERE [x].[NumeroRegistrazione] = [Prima Nota].[NumeroRegistrazione] AND ([x].[DataRegistrazione] IS NULL "
    "OR [x].[DataRegistrazione] > ? OR [x].[DataCompetenza] IS NULL OR [x].[DataCompetenza] > ? "
    "OR (COALESCE([x].[IndClienteFornitore], '') IN ('C', 'F') AND COALESCE([x].[CodClienteFornitore], '') <> '' "
    "AND NOT EXISTS (SELECT 1 FROM [Anagrafica Clienti] [c] WHERE [x].[IndClienteFornitore] = 'C' "
    "AND [c].[Codice Cliente] = [x].[CodClienteFornitore] AND [c].[SottocontoApparten] = [x].[ContoPrimaNota]) "
    "AND NOT EXISTS (SELECT 1 FROM [Anagrafica Fornitori] [f] WHERE [x].[IndClienteFornitore] = 'F' "
    "AND [f].[Codice Cliente] = [x].[CodClienteFornitore] AND [f].[SottocontoApparten] = [x].[ContoPrimaNota]))))";

Parametri ParametriScelta(const Data& al) { return {Valore(al), Valore(al), Valore(al)}; }

// Position 3 of the indicators: "1" an opening, anything else a movement of its side. So the three
// progressives of a row give back, as opening + debit - credit, the signed amount a balance at a
// date counts for it.
constexpr const char* kApertura = "substr(COALESCE([Prima Nota].[Stringa10indicatori], ''), 3, 1) = '1'";

struct Progressivi {
  Importo iniziale, dare, avere;
};

void Messaggio(const std::string& testo) {
  Host().Beep();
  Host().MsgBox(testo, vbExclamation, clsCompPrimaNota::kTitolo);
}

}  // namespace

bool clsCompPrimaNota::StampatoSuLibroGiornale(const Valore& daData, const Valore& aData) {
  auto da = DataCorretta(daData), a = DataCorretta(aData);
  if (!da || !a) return true;
  return cn->Execute("SELECT 1 FROM [Prima Nota] WHERE [Prima Nota].[DataRegistrazione] BETWEEN ? AND ? "
                     "AND substr(COALESCE([Prima Nota].[Stringa10indicatori], ''), 2, 1) <> 'G' LIMIT 1",
                     {Valore(*da), Valore(*a)})
      .Eof();
}

bool clsCompPrimaNota::StampatoSuRegistriIva(const Valore& daData, const Valore& aData) {
  auto da = DataCorretta(daData), a = DataCorretta(aData);
  if (!da || !a) return true;
  return cn->Execute("SELECT 1 FROM [Prima Nota] WHERE [Prima Nota].[DataRegistrazione] BETWEEN ? AND ? "
                     "AND COALESCE([Prima Nota].[TipoRigaIvaNormale], '') = 'I' "
                     "AND COALESCE([Prima Nota].[TipoRegistroIva], '') <> '' "
                     "AND substr(COALESCE([Prima Nota].[Stringa10indicatori], ''), 1, 1) <> 'R' LIMIT 1",
                     {Valore(*da), Valore(*a)})
      .Eof();
}

bool clsCompPrimaNota::SalvaRecordSaldiProgressiviSottoconto(const Valore& CodiceGruppo, const Valore& CodiceConto,
                                                             const Valore& CodiceSottoconto,
                                                             Importo SaldoInizialeProgr, Importo DareProgressivo,
                                                             Importo AvereProgressivo) {
  Atomico unita(*cn);
  auto rs = cn->Apri("Saldi Piano Dei Conti", "[CodiceGruppo] = ? AND [CodiceConto] = ? AND [CodiceSottoconto] = ?",
                     {Valore(TrimTesto(CodiceGruppo)), Valore(TrimTesto(CodiceConto)),
                      Valore(TrimTesto(CodiceSottoconto))});
  if (rs.Eof()) {
    rs.AddNew();
    rs("CodiceGruppo") = Valore(TrimTesto(CodiceGruppo));
    rs("CodiceConto") = Valore(TrimTesto(CodiceConto));
    rs("CodiceSottoconto") = Valore(TrimTesto(CodiceSottoconto));
  }
  rs("SaldoInizialeProgr") = Valore(SaldoInizialeProgr);
  rs("DareProgressivo") = Valore(DareProgressivo);
  rs("AvereProgressivo") = Valore(AvereProgressivo);
  rs.Update();
  unita.Conferma();
  return true;
}

bool clsCompPrimaNota::SalvaSaldiProgressiviCliFor(const Valore& IndClienteFornitore, const Valore& codiceCliFor,
                                                   Importo SaldoInizialeProgr, Importo DareProgressivo,
                                                   Importo AvereProgressivo) {
  const std::string ind = UCase(TrimTesto(IndClienteFornitore));
  if (ind != "C" && ind != "F") return false;
  return cn->Esegui(std::string("UPDATE [") + (ind == "C" ? "Anagrafica Clienti" : "Anagrafica Fornitori") +
                        "] SET [SaldoInizProgress] = ?, [SaldoDareProgress] = ?, [SaldoAvereProgress] = ? "
                        "WHERE [Codice Cliente] = ?",
                    {Valore(SaldoInizialeProgr), Valore(DareProgressivo), Valore(AvereProgressivo),
                     Valore(TrimTesto(codiceCliFor))}) > 0;
}

bool clsCompPrimaNota::CompattamentoPrimaNota(const ArgomentiCompattamento& a, EsitoCompattamento* esito) {
  auto fase = [&](const std::string& testo) {
    if (a.frm_FormAttiva) a.frm_FormAttiva->msgbar(testo);
  };
  auto inizio = a.avar_Mese >= 1 && a.avar_Mese <= 12 ? Data::Crea(a.avar_Anno, a.avar_Mese, 1) : std::nullopt;
  if (!inizio) {
    Messaggio("Mese o anno dello scarico non validi (" + std::to_string(a.avar_Mese) + "/" +
              std::to_string(a.avar_Anno) + ").");
    return false;
  }
  const Data al = inizio->AggiungiMesi(1).AggiungiGiorni(-1);

  // A refusal found inside the unit is told once it is over: nobody is asked while it is open.
  std::string rifiuto;
  EsitoCompattamento e;
  e.al = al;
  ConRiprova(*cn, [&] {
    rifiuto.clear();
    e = EsitoCompattamento{};
    e.al = al;
    Atomico unita(*cn);
    clsPrimaNota pn;
    pn.cn = cn;
    pn.UnitaRecuperabili = false;  // the run is one unit
    clsProgAzienda prog;
    prog.cn = cn;

    // The company's counters row is claimed at once (a write of the stamp alone) and held to the
    // end: two unloads on one database run one after the other, and the second reads the date
    // the first one wrote.
    prog.AggiornaNumeroUltimaRegStorico(Valore(0), a.clientID, a.hWnd);
    // A month already unloaded is told as such, though the journal has nothing left before it.
    if (auto ultimo = prog.GetDataUltimoScaricoPrimaNota().ComeData(); ultimo && *ultimo >= al) {
      rifiuto = "La data indicata è inferiore o uguale alla data di ultimo compattamento della prima nota, "
                "impossibile proseguire.";
      return;
    }
    auto minima = pn.GetDataMinimaRegistrazionePrimaNota().ComeData();
    if (!minima || *minima > al) {
      rifiuto = "Non esistono registrazioni di Prima Nota inferiori alla data indicata.";
      return;
    }
    e.dal = *minima;
    if (!a.abool_ForzaCompattamento) {
      if (!StampatoSuLibroGiornale(Valore(e.dal), Valore(al))) {
        rifiuto = "Sono presenti movimenti non stampati su libro giornale. Impossibile continuare.";
        return;
      }
      if (!StampatoSuRegistriIva(Valore(e.dal), Valore(al))) {
        rifiuto = "Sono presenti movimenti non stampati sui registri. Impossibile continuare.";
        return;
      }
    }

    fase("Selezione registrazioni da scaricare");
    const Parametri ps = ParametriScelta(al);
    {
      auto rs = cn->Execute(std::string("SELECT COUNT(*), COUNT(DISTINCT [Prima Nota].[NumeroRegistrazione]) "
                                        "FROM [Prima Nota] WHERE ") + kScelta, ps);
      e.righe = NullToZeroLng(rs(0).Value());
      e.registrazioni = NullToZeroLng(rs(1).Value());
      e.registrazioniRimaste =
          NullToZeroLng(cn->Scalare("SELECT COUNT(DISTINCT [Prima Nota].[NumeroRegistrazione]) FROM [Prima Nota] "
                                    "WHERE [Prima Nota].[DataRegistrazione] <= ?",
                                    {Valore(al)})) - e.registrazioni;
    }
    if (e.registrazioni == 0) {
      rifiuto = "Non sono presenti movimenti di prima nota compattabili.";
      return;
    }

    // The history: the rows numbered on from the last key handed out.
    if (a.abool_GestioneStorico) {
      fase("Copia dei movimenti nello storico contabile");
      clsStoricoPrimaNota storico;
      storico.cn = cn;
      const int32_t base = std::max(storico.GetMaxIDProgressivoStoricoContabile(), prog.GetNumeroUltimaRegStorico());
      Parametri p{Valore(static_cast<long long>(base))};
      p.insert(p.end(), ps.begin(), ps.end());
      e.righeStorico = static_cast<long>(cn->Esegui(
          std::string(
              "INSERT INTO [Storico Contabile] ([IDProgressivo], [SottocontoMovimento], [IndClientefornitore], "
              "[CodClientefornitore], [DataCompetenza], [NumeroRegistrazione], [DataDocumento], [SerieDocumento], "
              "[NumeroDocumento], [CausaleContabile], [DescrizioneSuppleme], [DareAvere], [ImportoMovimento], "
              "[NumeroProtocollo], [DataRegistrazione], [CodiceValuta], [Cambio], [ImportoValuta]) "
              "SELECT ? + ROW_NUMBER() OVER (ORDER BY [Prima Nota].[NumeroRegistrazione], "
              "COALESCE([Prima Nota].[TipoRigaIvaNormale], ''), COALESCE([Prima Nota].[NumRigaAVideo], ''), "
              "COALESCE([Prima Nota].[DareAvere], '')), [Prima Nota].[ContoPrimaNota], "
              "[Prima Nota].[IndClienteFornitore], [Prima Nota].[CodClienteFornitore], [Prima Nota].[DataCompetenza], "
              "[Prima Nota].[NumeroRegistrazione], [Prima Nota].[DataDocumento], [Prima Nota].[SerieDocumento], "
              "[Prima Nota].[NumeroDocumento], [Prima Nota].[CodiceCausale], [Prima Nota].[DescrizioneSupplem], "
              "[Prima Nota].[DareAvere], [Prima Nota].[ImportoMovimento], [Prima Nota].[NumeroDiProtocollo], "
              "[Prima Nota].[DataRegistrazione], [Prima Nota].[Valuta], [Prima Nota].[Cambio], "
              "[Prima Nota].[ImportoInValuta] FROM [Prima Nota] WHERE ") + kScelta,
          p));
      e.ultimoStorico = base + static_cast<int32_t>(e.righeStorico);
      prog.AggiornaNumeroUltimaRegStorico(Valore(static_cast<long long>(e.ultimoStorico)), a.clientID, a.hWnd);
    }

    // What the rows moved, by sub-account and by partner, onto the progressives.
    fase("Aggiornamento saldi progressivi");
    std::map<std::string, Progressivi> conti;
    std::map<std::pair<std::string, std::string>, Progressivi> partner;
    {
      const std::string apertura = kApertura;
      auto rs = cn->Execute(
          "SELECT [Prima Nota].[ContoPrimaNota], COALESCE([Prima Nota].[IndClienteFornitore], ''), "
          "COALESCE([Prima Nota].[CodClienteFornitore], ''), "
          "SUM(CASE WHEN " + apertura + " THEN (CASE WHEN COALESCE([Prima Nota].[DareAvere], '') = 'A' "
          "THEN -[Prima Nota].[ImportoMovimento] ELSE [Prima Nota].[ImportoMovimento] END) ELSE 0 END), "
          "SUM(CASE WHEN " + apertura + " THEN 0 WHEN COALESCE([Prima Nota].[DareAvere], '') = 'A' THEN 0 "
          "ELSE [Prima Nota].[ImportoMovimento] END), "
          "SUM(CASE WHEN " + apertura + " THEN 0 WHEN COALESCE([Prima Nota].[DareAvere], '') = 'A' "
          "THEN [Prima Nota].[ImportoMovimento] ELSE 0 END) "
          "FROM [Prima Nota] WHERE " + kScelta + " GROUP BY [Prima Nota].[ContoPrimaNota], "
          "COALESCE([Prima Nota].[IndClienteFornitore], ''), COALESCE([Prima Nota].[CodClienteFornitore], '')",
          ps);
      for (; !rs.Eof(); rs.MoveNext()) {
        const std::string conto = TrimTesto(rs(0).Value()), ind = TrimTesto(rs(1).Value()),
                          cod = TrimTesto(rs(2).Value());
        if (conto.empty()) continue;
        Progressivi p{NullToZeroCy(rs(3).Value()), NullToZeroCy(rs(4).Value()), NullToZeroCy(rs(5).Value())};
        auto somma = [&](Progressivi& t) {
          t.iniziale += p.iniziale;
          t.dare += p.dare;
          t.avere += p.avere;
        };
        somma(conti[conto]);
        if ((ind == "C" || ind == "F") && !cod.empty()) somma(partner[{ind, cod}]);
      }
    }
    clsSaldiContabili saldi;
    saldi.cn = cn;
    for (const auto& [conto, p] : conti) {
      fase("Aggiornamento saldi progressivi sottoconto " + conto);
      Importo i, d, av;
      saldi.GetProgressiviUltimoScaricoSottoconto(Valore(conto), i, d, av);
      SalvaRecordSaldiProgressiviSottoconto(Valore(MedioTesto(conto, 1, 2)), Valore(MedioTesto(conto, 3, 2)),
                                            Valore(MedioTesto(conto, 5, 3)), i + p.iniziale, d + p.dare,
                                            av + p.avere);
    }
    for (const auto& [k, p] : partner) {
      const std::string t = k.first == "C" ? "[Anagrafica Clienti]" : "[Anagrafica Fornitori]";
      auto rs = cn->Execute("SELECT [SaldoInizProgress], [SaldoDareProgress], [SaldoAvereProgress] FROM " + t +
                                " WHERE [Codice Cliente] = ?",
                            {Valore(k.second)});
      if (rs.Eof()) throw ErroreDb(3021, "Anagrafica " + k.first + " " + k.second + " mancante");
      SalvaSaldiProgressiviCliFor(Valore(k.first), Valore(k.second), NullToZeroCy(rs(0).Value()) + p.iniziale,
                                  NullToZeroCy(rs(1).Value()) + p.dare, NullToZeroCy(rs(2).Value()) + p.avere);
    }

    // The delete: each row gives back to the year's balance columns what it moved.
    fase("Eliminazione movimenti scaricati");
    pn.IniziaRaccolta();
    try {
      cn->Scorri(std::string("SELECT ") + kColonneMovimento + " FROM [Prima Nota] WHERE " + kScelta, ps,
                 [&](const std::vector<Colonna>&, const std::vector<Valore>& r) {
                   pn.MovimentaRecordContabile(MovimentoDaRiga(r), true);
                   return true;
                 });
      pn.ScaricaRaccolta();
    } catch (...) {
      pn.AnnullaRaccolta();
      throw;
    }
    const int64_t cancellate = cn->Esegui(std::string("DELETE FROM [Prima Nota] WHERE ") + kScelta, ps);
    if (cancellate != e.righe)
      throw ErroreDb(3197, "Scarico prima nota: righe cancellate " + std::to_string(cancellate) + " su " +
                               std::to_string(e.righe));

    // Last, with the rest: the date that refuses a second run over the same months.
    prog.AggiornaDataUltimoScarico(Valore(al), a.clientID, a.hWnd);
    unita.Conferma();
  });
  fase("");
  if (!rifiuto.empty()) {
    Messaggio(rifiuto);
    return false;
  }
  if (esito) *esito = e;
  return true;
}

}  // namespace vorn
