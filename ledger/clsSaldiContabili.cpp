#include "ledger/clsSaldiContabili.h"

#include "company/clsProgAzienda.h"
#include "frame/Comuni.h"

namespace vorn {

namespace {

// Position 3 of the indicator string: the causal's operativity when the row was posted.
constexpr const char* kOperativita = "substr(COALESCE([Prima Nota].[Stringa10indicatori], ''), 3, 1)";
// A row's signed amount: debit plus, credit minus (a side other than "A" counts as debit).
constexpr const char* kImportoSegnato =
    "CASE WHEN [Prima Nota].[DareAvere] = 'A' THEN -[Prima Nota].[ImportoMovimento] "
    "ELSE [Prima Nota].[ImportoMovimento] END";

}  // namespace

std::optional<Data> DataCorretta(const Valore& v) {
  auto d = v.ComeData();
  if (!d) return std::nullopt;
  CorreggiSecolo(*d);
  return d;
}

clsSaldiContabili::Filtro clsSaldiContabili::FiltroSottoconto(const Valore& sottoconto) {
  return Filtro{TrimTesto(sottoconto), std::nullopt, std::nullopt};
}

clsSaldiContabili::Filtro clsSaldiContabili::FiltroCliFor(const Valore& sottoconto, const Valore& ind,
                                                         const Valore& cod) {
  return Filtro{TrimTesto(sottoconto), TrimTesto(ind), TrimTesto(cod)};
}

namespace {

// The WHERE of the journal rows of a filter, its parameters appended to `p`.
std::string WhereConto(const std::string& sottoconto, const std::optional<std::string>& ind,
                       const std::optional<std::string>& cod, Parametri& p) {
  std::string w = "[Prima Nota].[ContoPrimaNota] = ?";
  p.push_back(Valore(sottoconto));
  if (ind) {
    w += " AND [Prima Nota].[IndClienteFornitore] = ? AND [Prima Nota].[CodClienteFornitore] = ?";
    p.push_back(Valore(*ind));
    p.push_back(Valore(cod.value_or("")));
  }
  return w;
}

}  // namespace

void clsSaldiContabili::SaldiPeriodo(const Valore& daData, const Valore& aData, const Filtro& f, Importo& iniziale,
                                     Importo& dare, Importo& avere) {
  iniziale = dare = avere = Importo();
  auto da = DataCorretta(daData);
  auto a = DataCorretta(aData);
  if (!da || !a) return;  // a bound that is no date matches no row
  Parametri p;
  std::string op = kOperativita;
  std::string movimento = op + " IN ('0', '2', '', ' ')";
  std::string sql = "SELECT SUM(CASE WHEN " + op + " = '1' THEN " + kImportoSegnato +
                    " END) AS InizialePeriodo, "
                    "SUM(CASE WHEN " + movimento +
                    " AND [Prima Nota].[DareAvere] = 'D' THEN [Prima Nota].[ImportoMovimento] END) AS DarePeriodo, "
                    "SUM(CASE WHEN " + movimento +
                    " AND [Prima Nota].[DareAvere] = 'A' THEN [Prima Nota].[ImportoMovimento] END) AS AverePeriodo "
                    "FROM [Prima Nota] WHERE " + WhereConto(f.sottoconto, f.ind, f.cod, p) +
                    " AND [Prima Nota].[DataCompetenza] BETWEEN ? AND ?";
  p.push_back(Valore(*da));
  p.push_back(Valore(*a));
  auto rs = cn->Execute(sql, p);
  if (rs.Eof()) return;
  iniziale = NullToZeroCy(rs.Fields(0).Value());
  dare = NullToZeroCy(rs.Fields(1).Value());
  avere = NullToZeroCy(rs.Fields(2).Value());
}

bool clsSaldiContabili::GetSaldiPeriodoSottoconto(const Valore& daData, const Valore& aData,
                                                  const Valore& avar_Sottoconto, Importo& InizialePeriodo,
                                                  Importo& DarePeriodo, Importo& AverePeriodo) {
  SaldiPeriodo(daData, aData, FiltroSottoconto(avar_Sottoconto), InizialePeriodo, DarePeriodo, AverePeriodo);
  return true;
}

bool clsSaldiContabili::GetSaldiPeriodoCliFor(const Valore& daData, const Valore& aData,
                                              const Valore& avar_Sottoconto, const Valore& avar_IndCliFor,
                                              const Valore& avar_CodCliFor, Importo& InizialePeriodoCliFor,
                                              Importo& DarePeriodoCliFor, Importo& AverePeriodoCliFor) {
  SaldiPeriodo(daData, aData, FiltroCliFor(avar_Sottoconto, avar_IndCliFor, avar_CodCliFor),
               InizialePeriodoCliFor, DarePeriodoCliFor, AverePeriodoCliFor);
  return true;
}

Valore clsSaldiContabili::DataEstrema(const char* funzione) {
  Valore v = cn->Scalare(std::string("SELECT ") + funzione + "([Prima Nota].[DataCompetenza]) FROM [Prima Nota]");
  if (auto d = v.ComeData()) return Valore(*d);
  return Valore("");
}

Valore clsSaldiContabili::GetDataMassimaCompetenzaPrimaNota() { return DataEstrema("MAX"); }
Valore clsSaldiContabili::GetDataMinimaCompetenzaPrimaNota() { return DataEstrema("MIN"); }

bool clsSaldiContabili::Progressivi(const Filtro& f, Importo& iniziale, Importo& dare, Importo& avere) {
  iniziale = dare = avere = Importo();
  Recordset rs;
  if (!f.ind) {
    rs = cn->Execute(
        "SELECT [Saldi Piano Dei Conti].[SaldoInizialeProgr], [Saldi Piano Dei Conti].[DareProgressivo], "
        "[Saldi Piano Dei Conti].[AvereProgressivo] FROM [Saldi Piano Dei Conti] "
        "WHERE COALESCE([Saldi Piano Dei Conti].[CodiceGruppo], '') || COALESCE([Saldi Piano Dei Conti].[CodiceConto], '') "
        "|| COALESCE([Saldi Piano Dei Conti].[CodiceSottoconto], '') = ? LIMIT 1",
        {Valore(f.sottoconto)});
  } else {
    std::string tabella;
    if (*f.ind == "C") tabella = "[Anagrafica Clienti]";
    else if (*f.ind == "F") tabella = "[Anagrafica Fornitori]";
    else return false;
    rs = cn->Execute("SELECT " + tabella + ".[SaldoInizProgress], " + tabella + ".[SaldoDareProgress], " + tabella +
                         ".[SaldoAvereProgress] FROM " + tabella + " WHERE COALESCE(" + tabella +
                         ".[SottocontoApparten], '') = ? AND " + tabella + ".[Codice Cliente] = ? LIMIT 1",
                     {Valore(f.sottoconto), Valore(f.cod.value_or(""))});
  }
  if (rs.Eof()) return false;
  iniziale = NullToZeroCy(rs.Fields(0).Value());
  dare = NullToZeroCy(rs.Fields(1).Value());
  avere = NullToZeroCy(rs.Fields(2).Value());
  return true;
}

bool clsSaldiContabili::GetProgressiviUltimoScaricoSottoconto(const Valore& avar_Sottoconto,
                                                              Importo& SaldoInizialeProgr, Importo& DareProgressivo,
                                                              Importo& AvereProgressivo) {
  return Progressivi(FiltroSottoconto(avar_Sottoconto), SaldoInizialeProgr, DareProgressivo, AvereProgressivo);
}

bool clsSaldiContabili::GetProgressiviUltimoScaricoCliFor(const Valore& avar_Sottoconto, const Valore& avar_IndCliFor,
                                                          const Valore& avar_CodCliFor, Importo& SaldoInizProgress,
                                                          Importo& SaldoDareProgress, Importo& SaldoAvereProgress) {
  return Progressivi(FiltroCliFor(avar_Sottoconto, avar_IndCliFor, avar_CodCliFor), SaldoInizProgress,
                     SaldoDareProgress, SaldoAvereProgress);
}

Importo clsSaldiContabili::GetSaldoUltimoScaricoSottoconto(const Valore& avar_Sottoconto) {
  Importo i, d, a;
  Progressivi(FiltroSottoconto(avar_Sottoconto), i, d, a);
  return i + d - a;
}

Importo clsSaldiContabili::GetSaldoUltimoScaricoCliFor(const Valore& avar_Sottoconto, const Valore& avar_IndCliFor,
                                                       const Valore& avar_CodCliFor) {
  Importo i, d, a;
  Progressivi(FiltroCliFor(avar_Sottoconto, avar_IndCliFor, avar_CodCliFor), i, d, a);
  return i + d - a;
}

Importo clsSaldiContabili::SaldoAData(const Valore& aData, const Filtro& f) {
  Importo i, d, a;
  Progressivi(f, i, d, a);
  Importo saldo = i + d - a;
  // From the first competence date of the journal to the date asked (its last date when none).
  auto dal = GetDataMinimaCompetenzaPrimaNota().ComeData();
  auto al = DataCorretta(aData);
  if (!al) al = GetDataMassimaCompetenzaPrimaNota().ComeData();
  if (!dal || !al) return saldo;
  Parametri p;
  std::string sql = std::string("SELECT SUM(") + kImportoSegnato + ") FROM [Prima Nota] WHERE " +
                    WhereConto(f.sottoconto, f.ind, f.cod, p) + " AND [Prima Nota].[DataCompetenza] BETWEEN ? AND ?";
  p.push_back(Valore(*dal));
  p.push_back(Valore(*al));
  return saldo + NullToZeroCy(cn->Scalare(sql, p));
}

Importo clsSaldiContabili::GetSaldoSottocontoAData(const Valore& avar_AData, const Valore& avar_Sottoconto) {
  return SaldoAData(avar_AData, FiltroSottoconto(avar_Sottoconto));
}

Importo clsSaldiContabili::GetSaldoSottocontoCliForAData(const Valore& avar_AData, const Valore& avar_Sottoconto,
                                                         const Valore& avar_IndCliFor, const Valore& avar_CodCliFor) {
  return SaldoAData(avar_AData, FiltroCliFor(avar_Sottoconto, avar_IndCliFor, avar_CodCliFor));
}

Importo clsSaldiContabili::SaldiAData(const Valore& ultimoScarico, Valore& daData, const Valore& aData,
                                      const Filtro& f, Importo& inizialeProgr, Importo& dareProgr,
                                      Importo& avereProgr, Importo& inizialePeriodo, Importo& darePeriodo,
                                      Importo& averePeriodo) {
  inizialeProgr = dareProgr = avereProgr = Importo();
  inizialePeriodo = darePeriodo = averePeriodo = Importo();
  auto scarico = DataCorretta(ultimoScarico);
  auto da = DataCorretta(daData);
  // A period that joins the unload takes every row the journal still holds up to its end: an
  // entry registered after the unload may have an earlier competence date, and the unload did
  // not take it. So the journal half starts at the journal's first date.
  bool unito = false;
  if (scarico) {
    Data giornoDopo = scarico->AggiungiGiorni(1);
    if (da && *da == giornoDopo) {
      unito = true;
    } else if (!da) {
      unito = true;
      daData = Valore(giornoDopo.Testo());
      da = giornoDopo;
    }
    if (unito) Progressivi(f, inizialeProgr, dareProgr, avereProgr);
  }
  std::optional<Data> dal = da;
  if (!dal || unito) {
    auto primo = GetDataMinimaCompetenzaPrimaNota().ComeData();
    if (!dal || (primo && *primo < *dal)) dal = primo;
  }
  std::optional<Data> al = DataCorretta(aData);
  if (!al) al = GetDataMassimaCompetenzaPrimaNota().ComeData();
  if (dal && al && *dal <= *al)
    SaldiPeriodo(Valore(*dal), Valore(*al), f, inizialePeriodo, darePeriodo, averePeriodo);
  return inizialeProgr + inizialePeriodo + dareProgr + darePeriodo - avereProgr - averePeriodo;
}

Importo clsSaldiContabili::GetSaldiADataSottoconto(const Valore& UltimoScarico, Valore& avar_DaData,
                                                   const Valore& avar_AData, const Valore& avar_Sottoconto,
                                                   Importo& SaldoInizialeProgr, Importo& DareProgressivo,
                                                   Importo& AvereProgressivo, Importo& InizialePeriodo,
                                                   Importo& DarePeriodo, Importo& AverePeriodo) {
  return SaldiAData(UltimoScarico, avar_DaData, avar_AData, FiltroSottoconto(avar_Sottoconto), SaldoInizialeProgr,
                    DareProgressivo, AvereProgressivo, InizialePeriodo, DarePeriodo, AverePeriodo);
}

Importo clsSaldiContabili::GetSaldiADataCliFor(const Valore& UltimoScarico, Valore& avar_DaData,
                                               const Valore& avar_AData, const Valore& avar_Sottoconto,
                                               const Valore& avar_IndCliFor, const Valore& avar_CodCliFor,
                                               Importo& SaldoInizialeProgr, Importo& DareProgressivo,
                                               Importo& AvereProgressivo, Importo& InizialePeriodo,
                                               Importo& DarePeriodo, Importo& AverePeriodo) {
  return SaldiAData(UltimoScarico, avar_DaData, avar_AData, FiltroCliFor(avar_Sottoconto, avar_IndCliFor, avar_CodCliFor),
                    SaldoInizialeProgr, DareProgressivo, AvereProgressivo, InizialePeriodo, DarePeriodo,
                    AverePeriodo);
}

Importo clsSaldiContabili::GetSaldiADataSottoconto(clsProgAzienda& objProgAzienda, Valore& avar_DaData,
                                                   const Valore& avar_AData, const Valore& avar_Sottoconto,
                                                   Importo& SaldoInizialeProgr, Importo& DareProgressivo,
                                                   Importo& AvereProgressivo, Importo& InizialePeriodo,
                                                   Importo& DarePeriodo, Importo& AverePeriodo) {
  return GetSaldiADataSottoconto(objProgAzienda.GetDataUltimoScaricoPrimaNota(), avar_DaData, avar_AData,
                                 avar_Sottoconto, SaldoInizialeProgr, DareProgressivo, AvereProgressivo,
                                 InizialePeriodo, DarePeriodo, AverePeriodo);
}

Importo clsSaldiContabili::GetSaldiADataCliFor(clsProgAzienda& objProgAzienda, Valore& avar_DaData,
                                               const Valore& avar_AData, const Valore& avar_Sottoconto,
                                               const Valore& avar_IndCliFor, const Valore& avar_CodCliFor,
                                               Importo& SaldoInizialeProgr, Importo& DareProgressivo,
                                               Importo& AvereProgressivo, Importo& InizialePeriodo,
                                               Importo& DarePeriodo, Importo& AverePeriodo) {
  return GetSaldiADataCliFor(objProgAzienda.GetDataUltimoScaricoPrimaNota(), avar_DaData, avar_AData, avar_Sottoconto,
                             avar_IndCliFor, avar_CodCliFor, SaldoInizialeProgr, DareProgressivo, AvereProgressivo,
                             InizialePeriodo, DarePeriodo, AverePeriodo);
}

}  // namespace vorn
