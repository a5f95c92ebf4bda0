#include "ledger/clsPianoConti.h"

#include <optional>

#include "frame/Comuni.h"

namespace vorn {

namespace {

constexpr const char* kPiano = "Piano Dei Conti";
constexpr const char* kSaldi = "Saldi Piano Dei Conti";

// The key columns of the two tables.
struct Chiave {
  const char* gruppo;
  const char* conto;
  const char* sottoconto;
};
constexpr Chiave kChiavePiano = {"[Piano Dei Conti].[Gruppo]", "[Piano Dei Conti].[Conto]",
                                 "[Piano Dei Conti].[Sottoconto]"};
constexpr Chiave kChiaveSaldi = {"[Saldi Piano Dei Conti].[CodiceGruppo]", "[Saldi Piano Dei Conti].[CodiceConto]",
                                 "[Saldi Piano Dei Conti].[CodiceSottoconto]"};

// A key part as the archives hold it once read: trimmed text, empty for Null or blanks.
std::string ParteVuota(const std::string& colonna) { return "COALESCE(TRIM(" + colonna + "), '')"; }

// The key filter of every archive: a blank part finds empty text, blanks and Null alike, any
// other part its trimmed text.
using Filtro = FiltroCodice;
// A part that holds a code.
void Piena(Filtro& f, const std::string& colonna) { f.E("NOT " + CodiceVuoto(colonna)); }

Filtro FiltroChiave(const Chiave& k, const Valore& g, const Valore& c, const Valore& s) {
  Filtro f;
  f.Parte(k.gruppo, g);
  f.Parte(k.conto, c);
  f.Parte(k.sottoconto, s);
  return f;
}

// The three key columns of a listing, with empty parts as empty text, and the order they give.
const std::string kColonneChiave = ParteVuota(kChiavePiano.gruppo) + " AS [Gruppo], " +
                                   ParteVuota(kChiavePiano.conto) + " AS [Conto], " +
                                   ParteVuota(kChiavePiano.sottoconto) + " AS [Sottoconto]";
const std::string kOrdineChiave = " ORDER BY [Gruppo], [Conto], [Sottoconto]";

// A key part left-padded with zeros to its width, an empty part all zeros: the pieces of the
// seven-digit code in which the chart is walked. A part longer than its width stays whole.
std::string CifreSql(const std::string& colonna, int larghezza) {
  std::string x = ParteVuota(colonna), n = std::to_string(larghezza);
  return "CASE WHEN length(" + x + ") >= " + n + " THEN " + x + " ELSE substr('000', 1, " + n + " - length(" + x +
         ")) || " + x + " END";
}
std::string Cifre(const Valore& parte, size_t larghezza) {
  std::string x = parte.TestoTrim();
  size_t n = LunghezzaTesto(x);
  return n >= larghezza ? x : std::string(larghezza - n, '0') + x;
}

// The chart with the walking code of each row, as a table to select from.
const std::string kPianoConCodice = "(SELECT " + kColonneChiave + ", " + CifreSql(kChiavePiano.gruppo, 2) + " || " +
                                    CifreSql(kChiavePiano.conto, 2) + " || " + CifreSql(kChiavePiano.sottoconto, 3) +
                                    " AS SottocontoTmp FROM [Piano Dei Conti]) AS Q";

// Takes the key of the current row of a listing into the arguments.
void PrendiChiave(Recordset& rs, Valore& g, Valore& c, Valore& s) {
  g = LeggiCampo(rs("Gruppo"), Valore(""));
  c = LeggiCampo(rs("Conto"), Valore(""));
  s = LeggiCampo(rs("Sottoconto"), Valore(""));
}

// A seven-character code split by position: 2, 2, 3.
struct Parti {
  Valore gruppo, conto, sottoconto;
};
Parti Dividi(const Valore& codice) {
  std::string c = codice.TestoTrim();
  return {Valore(MedioTesto(c, 1, 2)), Valore(MedioTesto(c, 3, 2)), Valore(MedioTesto(c, 5, 3))};
}

// The side of a signed balance.
std::string Segno(const Importo& i) { return i > Importo() ? "D" : i < Importo() ? "A" : ""; }
Importo Assoluto(const Importo& i) { return i < Importo() ? -i : i; }

// The rows of the chart that `f` selects, key and description, in code order.
bool Elenca(Connessione& cn, Recordset& T, const Filtro& f) {
  T = cn.Execute("SELECT " + kColonneChiave + ", [Piano Dei Conti].[Descrizione] AS [Descrizione] "
                 "FROM [Piano Dei Conti] WHERE " + f.where + kOrdineChiave + ";", f.p);
  return !T.Eof();
}

// True when the chart has a row that `f` selects.
bool Esiste(Connessione& cn, const Filtro& f) {
  return !cn.Execute("SELECT 1 FROM [Piano Dei Conti] WHERE " + f.where + " LIMIT 1;", f.p).Eof();
}

// The description of the row that `f` selects; nullopt without the row.
std::optional<std::string> Descrizione(Connessione& cn, const Filtro& f) {
  Recordset rs = cn.Execute(
      "SELECT [Piano Dei Conti].[Descrizione] FROM [Piano Dei Conti] WHERE " + f.where + " LIMIT 1;", f.p);
  if (rs.Eof()) return std::nullopt;
  return LeggiCampo(rs("Descrizione"), Valore("")).Testo();
}

// One step through the chart by the seven-digit walking code, forward or backward; from a
// blank group, the last row forward and the first one backward.
bool Passo(Connessione& cn, Valore& g, Valore& c, Valore& s, bool avanti) {
  std::string sql = "SELECT Q.[Gruppo], Q.[Conto], Q.[Sottoconto] FROM " + kPianoConCodice;
  Parametri p;
  bool dalFondo = g.TestoTrim().empty();
  if (!dalFondo) {
    sql += avanti ? " WHERE Q.SottocontoTmp > ?" : " WHERE Q.SottocontoTmp < ?";
    p.push_back(Valore(Cifre(g, 2) + Cifre(c, 2) + Cifre(s, 3)));
  }
  const std::string verso = dalFondo == avanti ? " DESC" : "";
  sql += " ORDER BY Q.SottocontoTmp" + verso + ", Q.[Gruppo]" + verso + ", Q.[Conto]" + verso + ", Q.[Sottoconto]" +
         verso + " LIMIT 1;";
  Recordset rs = cn.Execute(sql, p);
  if (rs.Eof()) return false;
  PrendiChiave(rs, g, c, s);
  return true;
}

}  // namespace

const std::vector<std::string>& clsPianoConti::ColonneSalvaRecord() {
  static const std::vector<std::string> c = {
      "Descrizione",        "IndDiBilancio",      "SottocontoInBilancio", "IndAmmortamenti",    "CompATerzi",
      "CollegamentoSarn",   "Libero1",            "Libero2",              "Libero3",            "Libero4",
      "Libero5",            "LiberoDescrittivo1", "LiberoDescrittivo2",   "LiberoDescrittivo3", "LiberoDescrittivo4",
      "LiberoDescrittivo5", "Riferimento1Iva11",  "Riferimento2Iva11",    "Riferimento3Iva11",  "Riferimento4Iva11",
      "Riferimento5Iva11",  "Iva11Segno1",        "Iva11Segno2",          "Iva11Segno3",        "Iva11Segno4",
      "Iva11Segno5",        "IndiceRicBilancio",  "TrasfMirk",            "MovimCentriCosto",   "TrasfPelvo",
      "QuadPelvo"};
  return c;
}

// ---------------------------------------------------------------- listings

bool clsPianoConti::LocalizzaTuttiRecord(Recordset& T) {
  std::string ind = "TRIM([Piano Dei Conti].[IndDiBilancio])";
  T = cn->Execute("SELECT " + kColonneChiave + ", [Piano Dei Conti].[Descrizione] AS [Descrizione], CASE WHEN " + ind +
                  " = '0' THEN 'Patrimoniale' WHEN " + ind + " = '1' THEN 'Economico' WHEN " + ind +
                  " = '2' THEN 'Riepilogo' END AS [SezBilancio] FROM [Piano Dei Conti]" + kOrdineChiave + ";");
  return !T.Eof();
}

bool clsPianoConti::LocalizzaRamoConto(Recordset& T, const Valore& Gruppo, const Valore& Conto) {
  Filtro f;
  f.Parte(kChiavePiano.gruppo, Gruppo);
  f.Parte(kChiavePiano.conto, Conto);
  return Elenca(*cn, T, f);
}

bool clsPianoConti::LocalizzaRamoGruppo(Recordset& T, const Valore& Gruppo) {
  // The group's rows without a sub-account, and every row whose sub-account is Null, of any
  // group: the client's tree takes the branch in this form.
  Filtro f;
  f.Parte(kChiavePiano.gruppo, Gruppo);
  f.Parte(kChiavePiano.sottoconto, Valore(""));
  f.where = "(" + f.where + ") OR " + kChiavePiano.sottoconto + " IS NULL";
  return Elenca(*cn, T, f);
}

bool clsPianoConti::LocalizzaTuttiGruppi(Recordset& T) {
  Filtro f;
  f.Parte(kChiavePiano.conto, Valore(""));
  return Elenca(*cn, T, f);
}

bool clsPianoConti::LocalizzaTutti(Recordset& T) {
  std::string g = ParteVuota(kChiavePiano.gruppo), c = ParteVuota(kChiavePiano.conto),
              s = ParteVuota(kChiavePiano.sottoconto);
  T = cn->Execute("SELECT " + kColonneChiave + ", MIN([Piano Dei Conti].[Descrizione]) AS [Descrizione] "
                  "FROM [Piano Dei Conti] GROUP BY " + g + ", " + c + ", " + s + kOrdineChiave + ";");
  return !T.Eof();
}

// ---------------------------------------------------------------- record protocol

bool clsPianoConti::LocalizzaRecord(Recordset& T, const Valore& CodiceGruppo, const Valore& CodiceConto,
                                    const Valore& CodiceSottoconto, const Valore& clientID, long hWnd) {
  Filtro f = FiltroChiave(kChiavePiano, CodiceGruppo, CodiceConto, CodiceSottoconto);
  return LocalizzaRecordProtocollo(*cn, T, kPiano, f.where, f.p, clientID, hWnd);
}

bool clsPianoConti::LocalizzaRecordSaldi(Recordset& T, const Valore& CodiceGruppo, const Valore& CodiceConto,
                                         const Valore& CodiceSottoconto, const Valore& clientID, long hWnd) {
  Filtro f = FiltroChiave(kChiaveSaldi, CodiceGruppo, CodiceConto, CodiceSottoconto);
  return LocalizzaRecordProtocollo(*cn, T, kSaldi, f.where, f.p, clientID, hWnd);
}

bool clsPianoConti::SalvaRecord(const Valore& Gruppo, const Valore& Conto, const Valore& sottoconto,
                                const RecordValori& campi, const Valore& clientID, long hWnd, bool& Cancel,
                                bool NoPrompt) {
  Cancel = false;
  // Every name is checked before the row is read, so that a wrong one writes nothing.
  auto daScrivere = ColonneDaScrivere(campi, ColonneSalvaRecord(), [](const std::string& nome) {
    return "Colonna non prevista nel salvataggio del piano dei conti: " + nome;
  });
  Filtro f = FiltroChiave(kChiavePiano, Gruppo, Conto, sottoconto);
  return SalvaRecordProtocollo(
      *cn, kPiano, f.where, f.p, clientID, hWnd, Cancel,
      [&](Recordset& rs, bool) {
        rs("Gruppo") = Valore(Gruppo.TestoTrim());
        rs("Conto") = Valore(Conto.TestoTrim());
        rs("Sottoconto") = Valore(sottoconto.TestoTrim());
        for (const auto& [nome, valore] : daScrivere) rs(nome) = valore;
      },
      !NoPrompt);
}

bool clsPianoConti::SalvaRecordSaldi(const Valore& CodiceGruppo, const Valore& CodiceConto,
                                     const Valore& CodiceSottoconto, const Valore& SaldoInizialePeriodo,
                                     const Valore& SaldoDarePeriodo, const Valore& SaldoAverePeriodo,
                                     const Valore& SaldoInizialeProgr, const Valore& DareProgressivo,
                                     const Valore& AvereProgressivo, const Valore& SaldoContoSottocon,
                                     const Valore& clientID, long hWnd, bool& Cancel) {
  Filtro f = FiltroChiave(kChiaveSaldi, CodiceGruppo, CodiceConto, CodiceSottoconto);
  return SalvaRecordProtocollo(*cn, kSaldi, f.where, f.p, clientID, hWnd, Cancel, [&](Recordset& rs, bool) {
    rs("CodiceGruppo") = Valore(CodiceGruppo.TestoTrim());
    rs("CodiceConto") = Valore(CodiceConto.TestoTrim());
    rs("CodiceSottoconto") = Valore(CodiceSottoconto.TestoTrim());
    rs("SaldoInizialePeriodo") = SaldoInizialePeriodo;
    rs("SaldoDarePeriodo") = SaldoDarePeriodo;
    rs("SaldoAverePeriodo") = SaldoAverePeriodo;
    rs("SaldoInizialeProgr") = SaldoInizialeProgr;
    rs("DareProgressivo") = DareProgressivo;
    rs("AvereProgressivo") = AvereProgressivo;
    rs("SaldoContoSottocon") = SaldoContoSottocon;
  });
}

bool clsPianoConti::CancellaRecord(const Valore& CodiceGruppo, const Valore& CodiceConto,
                                   const Valore& CodiceSottoconto) {
  Filtro f = FiltroChiave(kChiavePiano, CodiceGruppo, CodiceConto, CodiceSottoconto);
  cn->Esegui("DELETE FROM [Piano Dei Conti] WHERE (" + f.where + ");", f.p);
  return true;
}

bool clsPianoConti::CancellaRecordSaldi(const Valore& CodiceGruppo, const Valore& CodiceConto,
                                        const Valore& CodiceSottoconto) {
  Filtro f = FiltroChiave(kChiaveSaldi, CodiceGruppo, CodiceConto, CodiceSottoconto);
  cn->Esegui("DELETE FROM [Saldi Piano Dei Conti] WHERE (" + f.where + ");", f.p);
  return true;
}

// ---------------------------------------------------------------- walking

bool clsPianoConti::RecordSuccessivo(Valore& CodiceGruppo, Valore& CodiceConto, Valore& CodiceSottoconto) {
  return Passo(*cn, CodiceGruppo, CodiceConto, CodiceSottoconto, true);
}

bool clsPianoConti::RecordPrecedente(Valore& CodiceGruppo, Valore& CodiceConto, Valore& CodiceSottoconto) {
  return Passo(*cn, CodiceGruppo, CodiceConto, CodiceSottoconto, false);
}

// ---------------------------------------------------------------- lookups

bool clsPianoConti::ExistRecord(const Valore& Gruppo, const Valore& Conto, const Valore& Sottoconto) {
  return Esiste(*cn, FiltroChiave(kChiavePiano, Gruppo, Conto, Sottoconto));
}

bool clsPianoConti::ExistSottoconto(const Valore& Gruppo, const Valore& Conto, const Valore& Sottoconto) {
  return ExistRecord(Gruppo, Conto, Sottoconto);
}

std::string clsPianoConti::GetDescrizione(const Valore& Gruppo, const Valore& Conto, const Valore& Sottoconto) {
  return Descrizione(*cn, FiltroChiave(kChiavePiano, Gruppo, Conto, Sottoconto)).value_or("");
}

bool clsPianoConti::GruppoConConti(const Valore& CodiceGruppo) {
  Filtro f;
  f.Parte(kChiavePiano.gruppo, CodiceGruppo);
  Piena(f, kChiavePiano.conto);
  return Esiste(*cn, f);
}

bool clsPianoConti::ContoConSottoconti(const Valore& CodiceGruppo, const Valore& CodiceConto) {
  Filtro f;
  f.Parte(kChiavePiano.gruppo, CodiceGruppo);
  f.Parte(kChiavePiano.conto, CodiceConto);
  Piena(f, kChiavePiano.sottoconto);
  return Esiste(*cn, f);
}

std::string clsPianoConti::GetDescrizioneSottoconto(const Valore& sottoconto, bool* Cancel,
                                                    IControllo* ControlloDaSelezionare) {
  std::string codice = sottoconto.TestoTrim();
  if (codice.empty()) return "";
  auto inesistente = [&](const std::string& titolo) {
    if (Cancel) MsgCodiceInesistente(*Cancel, titolo);
    if (ControlloDaSelezionare) EvidenziaControllo(ControlloDaSelezionare);
    return std::string();
  };
  if (LunghezzaTesto(codice) < 7) return inesistente("Inserire un sottoconto");
  // A longer code is no sub-account of the chart, whatever its first seven characters.
  if (LivelloConto(Valore(codice)) == 3) {
    Parti k = Dividi(Valore(codice));
    if (auto d = Descrizione(*cn, FiltroChiave(kChiavePiano, k.gruppo, k.conto, k.sottoconto))) return *d;
  }
  return inesistente("");
}

void clsPianoConti::GetDareAvereSaldoSottoconto(const Valore& sottoconto, Valore& DareAvereIniziale,
                                                Valore& SaldoIniziale, Valore& DareAvereAttuale,
                                                Valore& SaldoAttuale) {
  Parti k = Dividi(sottoconto);
  Filtro f = FiltroChiave(kChiaveSaldi, k.gruppo, k.conto, k.sottoconto);
  Recordset rs = cn->Execute("SELECT * FROM [Saldi Piano Dei Conti] WHERE " + f.where + " LIMIT 1;", f.p);
  auto leggi = [&](const char* colonna) {
    return rs.Eof() ? Importo() : NullToZeroCy(LeggiCampo(rs(colonna), Valore(0)));
  };
  Importo inizialePeriodo = leggi("SaldoInizialePeriodo"), darePeriodo = leggi("SaldoDarePeriodo"),
          averePeriodo = leggi("SaldoAverePeriodo"), inizialeProgr = leggi("SaldoInizialeProgr"),
          dareProgr = leggi("DareProgressivo"), avereProgr = leggi("AvereProgressivo");
  Importo iniziale = inizialeProgr + inizialePeriodo;
  Importo attuale = iniziale + (darePeriodo - averePeriodo) + (dareProgr - avereProgr);
  DareAvereIniziale = Valore(Segno(iniziale));
  SaldoIniziale = Valore(Assoluto(iniziale));
  DareAvereAttuale = Valore(Segno(attuale));
  SaldoAttuale = Valore(Assoluto(attuale));
}

void clsPianoConti::AzzeraSaldi() {
  cn->Esegui(
      "UPDATE [Saldi Piano Dei Conti] SET [SaldoInizialePeriodo] = 0, [SaldoDarePeriodo] = 0, "
      "[SaldoAverePeriodo] = 0, [SaldoInizialeProgr] = 0, [DareProgressivo] = 0, [AvereProgressivo] = 0;");
}

Valore clsPianoConti::GetSezioneBilancio(const Valore& sottoconto) {
  std::string gruppo = SinistraTesto(sottoconto.TestoTrim(), 2);
  if (gruppo.empty()) return Valore(0);
  Filtro f = FiltroChiave(kChiavePiano, Valore(gruppo), Valore(""), Valore(""));
  Recordset rs = cn->Execute(
      "SELECT [Piano Dei Conti].[IndDiBilancio] FROM [Piano Dei Conti] WHERE " + f.where + " LIMIT 1;", f.p);
  if (rs.Eof()) return Valore(0);
  return LeggiCampo(rs("IndDiBilancio"), Valore(0));
}

void clsPianoConti::AzzeraPianoConti() { cn->Esegui("DELETE FROM [Piano Dei Conti];"); }

// ---------------------------------------------------------------- search

bool clsPianoConti::Ricerca(const Valore& Testo, Valore& Gruppo, Valore& Conto, Valore& sottoconto) {
  Filtro f;
  f.E("[Piano Dei Conti].[Descrizione] " + cn->Like() + " ?");
  f.p.push_back(Valore("%" + Testo.Testo() + "%"));
  std::string g = Gruppo.TestoTrim(), c = Conto.TestoTrim(), s = sottoconto.TestoTrim();
  if (!g.empty()) {
    // Each part is compared by itself, from the last hit on.
    f.E(ParteVuota(kChiavePiano.gruppo) + " >= ?");
    f.p.push_back(Valore(g));
    if (c.empty()) {
      Piena(f, kChiavePiano.conto);
      Piena(f, kChiavePiano.sottoconto);
    } else {
      f.E(ParteVuota(kChiavePiano.conto) + " >= ?");
      f.p.push_back(Valore(c));
      if (s.empty()) {
        Piena(f, kChiavePiano.sottoconto);
      } else {
        f.E(ParteVuota(kChiavePiano.sottoconto) + " > ?");
        f.p.push_back(Valore(s));
      }
    }
  }
  Recordset rs = cn->Execute("SELECT " + kColonneChiave + " FROM [Piano Dei Conti] WHERE " + f.where +
                                 kOrdineChiave + " LIMIT 1;",
                             f.p);
  if (rs.Eof()) return false;
  PrendiChiave(rs, Gruppo, Conto, sottoconto);
  return true;
}

}  // namespace vorn
