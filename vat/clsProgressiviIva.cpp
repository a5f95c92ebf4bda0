#include "vat/clsProgressiviIva.h"

#include <cmath>
#include <functional>
#include <optional>
#include <vector>

#include "company/LetturaAzienda.h"
#include "frame/Catalogo.h"
#include "frame/Comuni.h"
#include "frame/VornServer.h"

namespace vorn {

namespace {

constexpr const char* kProgressivi = "Progressivi Registri Iva";
constexpr const char* kMonteAcquisti = "Monte Acquisti Ventilazione";
constexpr const char* kCorrispettivi = "Corrispettivi Ventilazione";
constexpr const char* kLiquidazioni = "Liquidazioni Periodiche";

// The settlement row of the VAT advance, kept beside the twelve months.
constexpr const char* kMeseAcconto = "14";

// A key part as it is stored: trimmed text (Null and Empty give empty text).
Valore Codice(const Valore& v) { return Valore(v.IsNull() || v.IsEmpty() ? std::string() : v.TestoTrim()); }

// The month of a settlement as its two digits: a number (3, "3", "03") gives "03"; other text is
// kept trimmed, so that it finds nothing rather than another month.
Valore MeseDueCifre(const Valore& mese) {
  std::string t = Codice(mese).Testo();
  if (!t.empty() && t.size() <= 2 && t.find_first_not_of("0123456789") == std::string::npos)
    return Valore(Format(Valore(std::stoi(t)), "00"));
  return Valore(t);
}

// A key of one of the tables: its filter on trimmed values, and the same values written into a
// row being added.
struct Chiave {
  std::string tabella;
  std::vector<std::pair<std::string, Valore>> parti;
  FiltroCodice Filtro() const {
    FiltroCodice f;
    for (const auto& [colonna, valore] : parti) f.Parte("[" + tabella + "].[" + colonna + "]", valore);
    return f;
  }
  void Scrivi(Recordset& rs) const {
    for (const auto& [colonna, valore] : parti) rs(colonna) = valore;
  }
};

Chiave ChiaveProgressivo(const Valore& IndicatoreFisso, const Valore& IndTipoRecord, const Valore& TipoRegistroIva,
                         const Valore& NumRegistroIva, const Valore& CodiceIva) {
  return {kProgressivi,
          {{"IndicatoreFisso", Codice(IndicatoreFisso)},
           {"IndTipoRecord", Codice(IndTipoRecord)},
           {"TipoRegistroIva", Codice(TipoRegistroIva)},
           {"NumRegistroIva", Codice(NumRegistroIva)},
           {"CodiceIva", Codice(CodiceIva)}}};
}
Chiave ChiaveMonteAcquisti(const Valore& NumRegistroCorrisp, const Valore& CodiceIva) {
  return {kMonteAcquisti,
          {{"IndicatoreFisso", Valore("MA")},
           {"NumRegistroCorrisp", Codice(NumRegistroCorrisp)},
           {"CodiceIva", Codice(CodiceIva)}}};
}
Chiave ChiaveCorrispettivi(const Valore& NumRegistriCorrisp) {
  return {kCorrispettivi, {{"IndicatoreFisso", Valore("CV")}, {"NumRegistriCorrisp", Codice(NumRegistriCorrisp)}}};
}
Chiave ChiaveLiquidazione(const Valore& MeseVersamento) {
  return {kLiquidazioni, {{"MeseVersamento", MeseDueCifre(MeseVersamento)}}};
}

// The scheme of every save: the key's row, added when missing with its key; then the values,
// the writer's stamp and the update. No question is asked.
void Scrivi(Connessione& cn, const Chiave& k, const Valore& clientID, long hWnd, bool& Cancel,
            const std::function<void(Recordset&)>& assegna) {
  Cancel = false;
  FiltroCodice f = k.Filtro();
  azienda::ScriviRiga(cn, k.tabella, f.where, f.p, clientID, hWnd, assegna, [&](Recordset& rs) { k.Scrivi(rs); });
}

// A whole number given as a number or as text ("3", "03"); nullopt for anything else, a
// fraction included.
std::optional<int64_t> Intero(const Valore& v) {
  std::optional<double> d;
  if (v.IsText()) {
    if (auto t = NormalizzaNumero(Trim(v.Str()))) d = Valore(*t).ComeDouble();
  } else if (v.IsNumber() && v.tipo() != Valore::Tipo::Booleano) {
    d = v.ComeDouble();
  }
  if (!d || *d != std::floor(*d) || std::fabs(*d) > 1e9) return std::nullopt;
  return static_cast<int64_t>(*d);
}

// The rows that a kind of LocalizzaTuttiRecord and CancellaTuttiRecord selects.
struct Selezione {
  const char* tabella;
  std::string where;
  Parametri p;
  const char* ordine;
};

std::optional<Selezione> SelezioneDi(const Valore& tipo) {
  auto n = Intero(tipo);
  if (!n) return std::nullopt;
  const std::string indicatori = "[IndicatoreFisso] = ? AND [IndTipoRecord] = ?";
  const std::string fisso = "[IndicatoreFisso] = ?";
  const char* ordineProgressivi = "[TipoRegistroIva], [NumRegistroIva], [CodiceIva]";
  switch (*n) {
    case 0: return Selezione{kProgressivi, indicatori, {Valore("PI"), Valore("D")}, ordineProgressivi};
    case 1: return Selezione{kProgressivi, indicatori, {Valore("PI"), Valore("R")}, ordineProgressivi};
    case 2: return Selezione{kProgressivi, indicatori, {Valore("P2"), Valore("R")}, ordineProgressivi};
    case 3: return Selezione{kMonteAcquisti, fisso, {Valore("MA")}, "[NumRegistroCorrisp], [CodiceIva]"};
    case 4: return Selezione{kCorrispettivi, fisso, {Valore("CV")}, "[NumRegistriCorrisp]"};
    case 5: return Selezione{kLiquidazioni, "", {}, "[MeseVersamento]"};
    default: return std::nullopt;
  }
}

// The data columns of a table, as the catalogue lists them: neither its key nor the stamp.
std::vector<std::string> ColonneDati(const char* tabella) {
  const TabellaCatalogo* t = TabellaCatalogoDi(tabella);
  if (!t) throw ErroreDb(3078, std::string("Tabella sconosciuta: ") + tabella);
  std::vector<std::string> c;
  for (const auto& col : t->colonne) {
    bool chiave = false;
    for (const auto& k : t->chiave) chiave = chiave || UgualeNoCase(k, col.nome);
    if (chiave || UgualeNoCase(col.nome, "clientName") || UgualeNoCase(col.nome, "hWnd")) continue;
    c.push_back(col.nome);
  }
  return c;
}

// A sum of the settlements of the twelve months (the advance row "14" stays out), optionally
// of the months with an amount paid.
std::vector<Importo> SommeMesi(Connessione& cn, const std::vector<const char*>& colonne, bool soloVersati) {
  std::string sql = "SELECT ";
  for (size_t i = 0; i < colonne.size(); ++i)
    sql += std::string(i ? ", " : "") + "SUM([Liquidazioni Periodiche].[" + colonne[i] + "])";
  sql += " FROM [Liquidazioni Periodiche] WHERE [Liquidazioni Periodiche].[MeseVersamento] BETWEEN ? AND ?";
  Parametri p = {Valore("01"), Valore("12")};
  if (soloVersati) {
    sql += " AND [Liquidazioni Periodiche].[Importo_versato] > ?";
    p.push_back(Valore(Importo()));
  }
  Recordset rs = cn.Execute(sql, p);
  std::vector<Importo> somme(colonne.size());
  if (rs.Eof()) return somme;
  for (size_t i = 0; i < colonne.size(); ++i) somme[i] = NullToZeroCy(rs(static_cast<int>(i)).Value());
  return somme;
}

Importo SommaMesi(Connessione& cn, const char* colonna, bool soloVersati) {
  return SommeMesi(cn, {colonna}, soloVersati)[0];
}

// Importo_versato of one settlement row, or nullopt when there is none.
std::optional<Importo> ImportoVersato(Connessione& cn, const Valore& mese) {
  FiltroCodice f = ChiaveLiquidazione(mese).Filtro();
  Recordset rs = cn.Execute("SELECT [Importo_versato] FROM [Liquidazioni Periodiche] WHERE " + f.where, f.p);
  if (rs.Eof()) return std::nullopt;
  return NullToZeroCy(rs("Importo_versato").Value());
}

}  // namespace

// ---------------------------------------------------------------- the rows by kind

bool clsProgressiviIva::LocalizzaTuttiRecord(Recordset& T, const Valore& tipo) {
  auto s = SelezioneDi(tipo);
  if (!s) {
    T = Recordset();
    return false;
  }
  T = cn->Apri(s->tabella, s->where, s->p, s->ordine);
  return !T.Eof();
}

bool clsProgressiviIva::CancellaTuttiRecord(const Valore& tipo) {
  auto s = SelezioneDi(tipo);
  if (!s) return false;
  std::string sql = "DELETE FROM [" + std::string(s->tabella) + "]";
  if (!s->where.empty()) sql += " WHERE " + s->where;
  cn->Esegui(sql, s->p);
  return true;
}

// ---------------------------------------------------------------- saves

bool clsProgressiviIva::SalvaRecord_ProgressivoIva(const Valore& IndicatoreFisso, const Valore& IndTipoRecord,
                                                   const Valore& TipoRegistroIva, const Valore& NumRegistroIva,
                                                   const Valore& CodiceIva, const Valore& imponibile,
                                                   const Valore& IVA, const Valore& DataUltimaStampaBollato,
                                                   const Valore& clientID, long hWnd, bool& Cancel) {
  Chiave k = ChiaveProgressivo(IndicatoreFisso, IndTipoRecord, TipoRegistroIva, NumRegistroIva, CodiceIva);
  Scrivi(*cn, k, clientID, hWnd, Cancel, [&](Recordset& rs) {
    rs("Imponibile") = imponibile;
    rs("IVA") = IVA;
    rs("DataUltimaStampaBollato") = DataUltimaStampaBollato;
  });
  return true;
}

bool clsProgressiviIva::SalvaRecord_MonteAcquisti(const Valore& NumRegistroCorrisp, const Valore& CodiceIva,
                                                  const Valore& ImportoMonteAcquisti, const Valore& IndicatoreLibero,
                                                  const Valore& clientID, long hWnd, bool& Cancel) {
  Scrivi(*cn, ChiaveMonteAcquisti(NumRegistroCorrisp, CodiceIva), clientID, hWnd, Cancel, [&](Recordset& rs) {
    rs("ImportoMonteAcquisti") = ImportoMonteAcquisti;
    rs("IndicatoreLibero") = IndicatoreLibero;
  });
  return true;
}

bool clsProgressiviIva::SalvaRecord_CorrispettivoVen(const Valore& NumRegistriCorrisp,
                                                     const Valore& corrispettiviPeriodo,
                                                     const Valore& corrispettiviAnno, const Valore& clientID,
                                                     long hWnd, bool& Cancel) {
  Scrivi(*cn, ChiaveCorrispettivi(NumRegistriCorrisp), clientID, hWnd, Cancel, [&](Recordset& rs) {
    rs("CorrispettiviPeriodo") = corrispettiviPeriodo;
    rs("corrispettiviAnno") = corrispettiviAnno;
  });
  return true;
}

bool clsProgressiviIva::SalvaRecord_LiquidazioneIva(const Valore& MeseVersamento,
                                                    const std::map<std::string, Valore>& valori,
                                                    const Valore& clientID, long hWnd, bool& Cancel) {
  // Every name is checked before the row is touched, so that a bad record writes nothing.
  static const std::vector<std::string> colonne = ColonneDati(kLiquidazioni);
  auto daScrivere = ColonneDaScrivere(valori, colonne, [](const std::string& nome) {
    return std::string("Liquidazioni Periodiche: colonna sconosciuta \"") + nome + "\"";
  });
  Scrivi(*cn, ChiaveLiquidazione(MeseVersamento), clientID, hWnd, Cancel, [&](Recordset& rs) {
    for (const auto& [colonna, valore] : daScrivere) rs(colonna) = valore;
  });
  return true;
}

// ---------------------------------------------------------------- resets

bool clsProgressiviIva::AzzeraProgressiviIva() {
  // All or nothing: a year is never left half reset.
  Atomico a(*cn);
  cn->Esegui("DELETE FROM [Progressivi Registri Iva] WHERE [IndicatoreFisso] = ? OR [IndicatoreFisso] = ?",
             {Valore("PI"), Valore("P2")});
  cn->Esegui("DELETE FROM [Monte Acquisti Ventilazione] WHERE [IndicatoreFisso] = ?", {Valore("MA")});
  cn->Esegui("DELETE FROM [Corrispettivi Ventilazione] WHERE [IndicatoreFisso] = ?", {Valore("CV")});
  cn->Esegui("DELETE FROM [Liquidazioni Periodiche]");
  a.Conferma();
  return true;
}

bool clsProgressiviIva::AzzeraProgressiviIvaPeriodo() {
  // The row of code "00" is not a code's period figure and stays; a row without a code is
  // zeroed like the others.
  cn->Esegui(
      "UPDATE [Progressivi Registri Iva] SET [Imponibile] = ?, [IVA] = ? WHERE [IndicatoreFisso] = ? AND "
      "[IndTipoRecord] = ? AND COALESCE(TRIM([CodiceIva]), '') <> ?",
      {Valore(Importo()), Valore(Importo()), Valore("PI"), Valore("D"), Valore("00")});
  return true;
}

bool clsProgressiviIva::AzzeraProgressiviVentilazionePeriodo() {
  cn->Esegui("UPDATE [Corrispettivi Ventilazione] SET [CorrispettiviPeriodo] = ?", {Valore(Importo())});
  return true;
}

// ---------------------------------------------------------------- reads

bool clsProgressiviIva::GetProgressivoIva(const Valore& IndicatoreFisso, const Valore& IndTipoRecord,
                                          const Valore& TipoRegistroIva, const Valore& NumRegistroIva,
                                          const Valore& CodiceIva, Importo& imponibile, Importo& imposta) {
  FiltroCodice f =
      ChiaveProgressivo(IndicatoreFisso, IndTipoRecord, TipoRegistroIva, NumRegistroIva, CodiceIva).Filtro();
  Recordset rs = cn->Execute("SELECT [Imponibile], [IVA] FROM [Progressivi Registri Iva] WHERE " + f.where, f.p);
  if (rs.Eof()) {
    imponibile = Importo();
    imposta = Importo();
    return false;
  }
  imponibile = NullToZeroCy(rs("Imponibile").Value());
  imposta = NullToZeroCy(rs("IVA").Value());
  return true;
}

Valore clsProgressiviIva::GetDataUltimaStampa(const Valore& TipoRegistroIva, const Valore& NumRegistroIva,
                                              const Valore& CodiceIva) {
  FiltroCodice f =
      ChiaveProgressivo(Valore("P2"), Valore("R"), TipoRegistroIva, NumRegistroIva, CodiceIva).Filtro();
  Recordset rs =
      cn->Execute("SELECT [DataUltimaStampaBollato] FROM [Progressivi Registri Iva] WHERE " + f.where, f.p);
  if (rs.Eof()) return Valore::Null();
  return rs("DataUltimaStampaBollato").Value();
}

bool clsProgressiviIva::GetProgressivoVentilazione(const Valore& NumRegistriCorrisp, Importo& corrispettiviPeriodo,
                                                   Importo& corrispettiviAnno) {
  FiltroCodice f = ChiaveCorrispettivi(NumRegistriCorrisp).Filtro();
  Recordset rs = cn->Execute(
      "SELECT [CorrispettiviPeriodo], [corrispettiviAnno] FROM [Corrispettivi Ventilazione] WHERE " + f.where, f.p);
  if (rs.Eof()) {
    corrispettiviPeriodo = Importo();
    corrispettiviAnno = Importo();
    return false;
  }
  corrispettiviPeriodo = NullToZeroCy(rs("CorrispettiviPeriodo").Value());
  corrispettiviAnno = NullToZeroCy(rs("corrispettiviAnno").Value());
  return true;
}

bool clsProgressiviIva::GetProgressivoMonteAcquisti(const Valore& NumRegistroCorrisp, const Valore& CodiceIva,
                                                    Importo& ImportoMonteAcquisti) {
  FiltroCodice f = ChiaveMonteAcquisti(NumRegistroCorrisp, CodiceIva).Filtro();
  Recordset rs =
      cn->Execute("SELECT [ImportoMonteAcquisti] FROM [Monte Acquisti Ventilazione] WHERE " + f.where, f.p);
  if (rs.Eof()) {
    ImportoMonteAcquisti = Importo();
    return false;
  }
  ImportoMonteAcquisti = NullToZeroCy(rs("ImportoMonteAcquisti").Value());
  return true;
}

// ---------------------------------------------------------------- settlements

Valore clsProgressiviIva::GetAccontoIvaVersato() {
  return Valore(ImportoVersato(*cn, Valore(kMeseAcconto)).value_or(Importo()));
}

// The settlement of the period before: "M" (monthly) the month before avar_Mese, "T"
// (quarterly) three months before; avar_Mese 13 (the annual settlement) looks at month 12 in
// both regimes. Only the month number counts, whatever the year of that date: the table holds
// one year, so January looks at December's row. When that row paid no more than
// ImportoMinLiqIva (the minimum payment), its amount was carried forward and is the result;
// with no row, a larger amount, or another regime, the result is 0.
Valore clsProgressiviIva::GetDebitoIvaArticolo_27_33(const Valore& ImportoMinLiqIva, const Valore& avar_RegimeIva,
                                                      const Valore& avar_Mese, const Valore& avar_Anno) {
  Importo minimo = NullToZeroCy(ImportoIngresso(ImportoMinLiqIva, "importo minimo di versamento"));
  std::string regime = UCase(Codice(avar_RegimeIva).Testo());
  int indietro = regime == "M" ? 1 : regime == "T" ? 3 : 0;
  if (indietro == 0) return Valore(Importo());
  auto mese = Intero(avar_Mese);
  if (!mese || *mese < 1 || *mese > 13)
    throw ErroreDb(13, "Mese della liquidazione non valido: '" + avar_Mese.Testo() + "' (atteso da 1 a 13).");
  int64_t precedente = *mese == 13 ? 12 : ((*mese - 1 - indietro) % 12 + 12) % 12 + 1;
  auto versato = ImportoVersato(*cn, Valore(static_cast<long long>(precedente)));
  if (versato && *versato <= minimo) return Valore(*versato);
  return Valore(Importo());
}

Importo clsProgressiviIva::GetCreditoIvaDaDichAnnualeTrasf() { return SommaMesi(*cn, "CreditoIVA", false); }

Importo clsProgressiviIva::GetIvaVersata() {
  // The two sums apart, the difference in exact amounts.
  auto s = SommeMesi(*cn, {"Importo_versato", "Interessi"}, true);
  return s[0] - s[1];
}

Importo clsProgressiviIva::GetIvaVersataConInteressi() { return SommaMesi(*cn, "Importo_versato", true); }

Importo clsProgressiviIva::GetInteressiVersati() { return SommaMesi(*cn, "Interessi", true); }

Importo clsProgressiviIva::GetSommaDiRimborsoArt38Bis() { return SommaMesi(*cn, "RimborsoArt38Bis", false); }

Importo clsProgressiviIva::GetSommaDiCompensazioneArt38Bis() {
  return SommaMesi(*cn, "CompensazioneArt38Bis", false);
}

}  // namespace vorn
