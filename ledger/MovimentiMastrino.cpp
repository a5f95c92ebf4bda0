#include "ledger/MovimentiMastrino.h"

#include <array>

#include "frame/Comuni.h"
#include "frame/Globali.h"
#include "ledger/clsSaldiContabili.h"

namespace vorn {

SchedaMastrino SchedaDa(const Valore& sottoconto, const Valore& ind, const Valore& cod) {
  SchedaMastrino s{TrimTesto(sottoconto), UCase(TrimTesto(ind)), TrimTesto(cod)};
  if (!s.CliFor()) s.ind.clear(), s.cod.clear();
  return s;
}

PeriodoMastrino PeriodoDa(const Valore& daData, const Valore& aData, const Valore& ultimoScarico) {
  PeriodoMastrino p{DataCorretta(daData), DataCorretta(aData), std::nullopt};
  if (!p.dal) p.scarico = DataCorretta(ultimoScarico);
  return p;
}

AperturaMastrino AperturaDa(clsSaldiContabili& saldi, const Valore& ultimoScarico, const PeriodoMastrino& periodo,
                            const SchedaMastrino& scheda) {
  AperturaMastrino a;
  Importo inizialeProgr, dareProgr, avereProgr, inizialePeriodo, darePeriodo, averePeriodo;
  if (!periodo.dal) {
    // An open start: the progressives of the unload, when there is one; the rows follow.
    if (periodo.scarico) {
      if (scheda.CliFor())
        saldi.GetProgressiviUltimoScaricoCliFor(Valore(scheda.sottoconto), Valore(scheda.ind), Valore(scheda.cod),
                                                inizialeProgr, dareProgr, avereProgr);
      else
        saldi.GetProgressiviUltimoScaricoSottoconto(Valore(scheda.sottoconto), inizialeProgr, dareProgr, avereProgr);
    }
  } else {
    // Everything up to the day before the first: the balance at that day.
    Valore da("");
    Valore al(periodo.dal->AggiungiGiorni(-1));
    if (scheda.CliFor())
      saldi.GetSaldiADataCliFor(ultimoScarico, da, al, Valore(scheda.sottoconto), Valore(scheda.ind),
                                Valore(scheda.cod), inizialeProgr, dareProgr, avereProgr, inizialePeriodo,
                                darePeriodo, averePeriodo);
    else
      saldi.GetSaldiADataSottoconto(ultimoScarico, da, al, Valore(scheda.sottoconto), inizialeProgr, dareProgr,
                                    avereProgr, inizialePeriodo, darePeriodo, averePeriodo);
  }
  a.saldoIniziale = inizialeProgr + inizialePeriodo;
  a.dare = dareProgr + darePeriodo;
  a.avere = avereProgr + averePeriodo;
  if (a.saldoIniziale > Importo()) a.dare += a.saldoIniziale;
  else a.avere += -a.saldoIniziale;
  return a;
}

namespace {

// Columns of the card's statement, in the order of RigaMastrino's reading below.
constexpr const char* kSelect =
    "SELECT [Prima Nota].[DataCompetenza], [Prima Nota].[DataRegistrazione], [Prima Nota].[NumeroRegistrazione], "
    "[Prima Nota].[TipoRigaIvaNormale], [Prima Nota].[NumRigaAVideo], [Prima Nota].[DareAvere], "
    "[Prima Nota].[CodiceCausale], [Causali Contabili].[DescrizioneCausale], [Prima Nota].[DescrizioneSupplem], "
    "[Prima Nota].[DataDocumento], [Prima Nota].[NumeroDocumento], [Prima Nota].[SerieDocumento], "
    "[Prima Nota].[NumeroDiProtocollo], [Prima Nota].[Valuta], [Valute].[Simbolo valuta], "
    "[Prima Nota].[ImportoInValuta], [Prima Nota].[Cambio], [Prima Nota].[IndClienteFornitore], "
    "[Prima Nota].[CodClienteFornitore], "
    "CASE WHEN [Prima Nota].[IndClienteFornitore] = 'F' THEN [Anagrafica Fornitori].[Ragione Sociale] "
    "ELSE [Anagrafica Clienti].[Ragione Sociale] END AS Ragione_Sociale, "
    "[Valute].[Codice valuta] AS ValutaNota, [Valute].[Numero decimali valuta], "
    "[Prima Nota].[ImportoMovimento] "
    "FROM [Prima Nota] "
    "LEFT JOIN [Causali Contabili] ON [Causali Contabili].[CodiceCausale] = [Prima Nota].[CodiceCausale] "
    "LEFT JOIN [Valute] ON [Valute].[Codice valuta] = [Prima Nota].[Valuta] "
    "LEFT JOIN [Anagrafica Clienti] ON [Anagrafica Clienti].[Codice Cliente] = [Prima Nota].[CodClienteFornitore] "
    "AND [Prima Nota].[IndClienteFornitore] = 'C' "
    "LEFT JOIN [Anagrafica Fornitori] ON [Anagrafica Fornitori].[Codice Cliente] = [Prima Nota].[CodClienteFornitore] "
    "AND [Prima Nota].[IndClienteFornitore] = 'F' ";

// Null document fields sort first on both engines; the row's key settles ties.
constexpr const char* kOrdine =
    " ORDER BY [Prima Nota].[DataCompetenza], [Prima Nota].[NumeroRegistrazione], "
    "CASE WHEN [Prima Nota].[DataDocumento] IS NULL THEN 0 ELSE 1 END, [Prima Nota].[DataDocumento], "
    "CASE WHEN [Prima Nota].[NumeroDocumento] IS NULL THEN 0 ELSE 1 END, [Prima Nota].[NumeroDocumento], "
    "COALESCE([Prima Nota].[SerieDocumento], ''), COALESCE([Prima Nota].[TipoRigaIvaNormale], ''), "
    "COALESCE([Prima Nota].[NumRigaAVideo], ''), [Prima Nota].[DareAvere]";

}  // namespace

void ScorriRigheMastrino(Connessione& cn, const SchedaMastrino& scheda, const PeriodoMastrino& periodo,
                         const std::function<bool(const RigaMastrino&)>& riga) {
  Parametri p{Valore(scheda.sottoconto)};
  std::string sql = std::string(kSelect) + "WHERE [Prima Nota].[ContoPrimaNota] = ?";
  if (scheda.CliFor()) {
    sql += " AND [Prima Nota].[IndClienteFornitore] = ? AND [Prima Nota].[CodClienteFornitore] = ?";
    p.push_back(Valore(scheda.ind));
    p.push_back(Valore(scheda.cod));
  }
  sql += " AND [Prima Nota].[DataCompetenza] IS NOT NULL";
  if (periodo.dal) {
    sql += " AND [Prima Nota].[DataCompetenza] >= ?";
    p.push_back(Valore(*periodo.dal));
  }
  if (periodo.al) {
    sql += " AND [Prima Nota].[DataCompetenza] <= ?";
    p.push_back(Valore(*periodo.al));
  }
  sql += kOrdine;
  RigaMastrino r;
  cn.Scorri(sql, p, [&](const std::vector<Colonna>&, const std::vector<Valore>& v) {
    std::array<Valore*, 22> campi = {&r.DataCompetenza,   &r.DataRegistrazione,  &r.NumeroRegistrazione,
                                     &r.TipoRigaIvaNormale, &r.NumRigaAVideo,    &r.DareAvere,
                                     &r.CodiceCausale,    &r.DescrizioneCausale, &r.DescrizioneSupplem,
                                     &r.DataDocumento,    &r.NumeroDocumento,    &r.SerieDocumento,
                                     &r.NumeroDiProtocollo, &r.Valuta,           &r.SimboloValuta,
                                     &r.ImportoInValuta,  &r.Cambio,             &r.IndClienteFornitore,
                                     &r.CodClienteFornitore, &r.RagioneSociale, &r.ValutaNota,
                                     &r.DecimaliValuta};
    for (size_t i = 0; i < campi.size(); ++i) *campi[i] = v[i];
    r.ImportoMovimento = NullToZeroCy(v[22]);
    return riga(r);
  });
}

std::string MascheraValuta(const RigaMastrino& r) {
  int decimali = r.ValutaNota.IsNull() ? G().DecimaliImporti
                 : r.DecimaliValuta.IsNull() ? 2
                                             : NullToZeroLng(r.DecimaliValuta);
  return MascheraImporto(decimali, false);
}

std::string LatoDareAvere(Importo saldo) {
  if (saldo > Importo()) return "D";
  if (saldo < Importo()) return "A";
  return "";
}

Importo ImportoAssoluto(Importo i) { return i < Importo() ? -i : i; }

}  // namespace vorn
