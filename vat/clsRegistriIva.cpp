#include "vat/clsRegistriIva.h"

#include <array>
#include <fstream>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <tuple>
#include <vector>

#include "company/clsAnagraficaAzienda.h"
#include "company/clsNumerazioneFogli.h"
#include "company/clsProgrNumerazione.h"
#include "frame/Comuni.h"
#include "frame/FileVorn.h"
#include "frame/Formato.h"
#include "frame/Globali.h"
#include "frame/Impaginazione.h"
#include "frame/Int128.h"
#include "frame/TabellaLavoro.h"
#include "frame/VornServer.h"
#include "ledger/clsCausaliContabili.h"
#include "ledger/clsPrimaNota.h"
#include "vat/clsProgressiviIva.h"

namespace vorn {

namespace {

std::string T(const Valore& v) { return Trim(v.Testo()); }

// What tells one register kind from another.
struct Registro {
  const char* tipo;
  const char* nome;           // in the work tables' names
  bool acquisti;              // the purchases family: the non-deductible share, protocols
  bool ventilazione;          // receipts by ventilation: the takings, no VAT rows
  bool stampa;                // the deferred-payment registers print nothing
  bool dataIva;               // filtered by the VAT date (the others by the accounting date)
  const char* foglio;         // the sheet letter of the numbering
  const char* tipoDifferite;  // where invoices with deferred VAT add up
  const char* titolo;
};

const Registro kRegistri[] = {
    {"1", "vendite", false, false, true, true, "V", "7", "REGISTRO FATTURE VENDITA"},
    {"2", "acquisti", true, false, true, true, "A", "9", "REGISTRO FATTURE ACQUISTI"},
    {"3", "corrispettivi scorporo", false, false, true, false, "C", "", "REGISTRO CORRISPETTIVI SCORPORAZIONE"},
    {"4", "corrispettivi ventilazione", false, true, true, false, "E", "", "REGISTRO CORRISPETTIVI VENTILAZIONE"},
    {"5", "sospensione", false, false, true, true, "S", "", "REGISTRO FATTURE SOSPENSIONE IVA"},
    {"6", "differita vendite", false, false, false, true, "", "", ""},
    {"8", "differita acquisti", true, false, false, true, "", "", ""},
};

const Registro& DiTipo(const std::string& tipo) {
  for (const auto& r : kRegistri)
    if (tipo == r.tipo) return r;
  throw ErroreDb(3265, "Tipo di registro IVA sconosciuto: '" + tipo + "'");
}

// The causal kinds whose amounts count negative.
std::string SegnoTotale(const Registro& r) {
  if (r.ventilazione) return "'1', '3', '8', '9', ';'";
  return r.acquisti ? "'1', '6', '8'" : "'1', '8'";
}
std::string SegnoRighe(const Registro& r) {
  return r.acquisti ? "'1', '3', '6', '8', '9', ';'" : "'1', '3', '8', '9', ';'";
}
std::string ConSegno(const std::string& lista, const std::string& colonna) {
  return "CASE WHEN C.[TipoCausale] IN (" + lista + ") THEN -" + colonna + " ELSE " + colonna + " END";
}

// The print letter of a causal kind.
const char* kLettera =
    "CASE C.[TipoCausale] WHEN '0' THEN 'F' WHEN '1' THEN 'N' WHEN '2' THEN 'C' WHEN '3' THEN 'S' "
    "WHEN '4' THEN 'I' WHEN '5' THEN 'f' WHEN '6' THEN 'n' WHEN '7' THEN 'D' WHEN '8' THEN 'E' "
    "WHEN '9' THEN 'O' WHEN ':' THEN 'I' WHEN ';' THEN 'O' ELSE '' END";

std::vector<ColonnaLavoro> ColonneCorpo(const Registro& r) {
  std::vector<ColonnaLavoro> c = {
      {"DataRegistrazione", TipoCampo::Data},  {"CodiceCausale"},     {"NumeroRegistrazione"},
      {"TipoCausale"},                         {"DataDocumento", TipoCampo::Data},
      {"NumeroDocumento", TipoCampo::Intero32}, {"SerieDocumento"},    {"Descrizione"},
      {"TipoRegistroIva"},                     {"TipoDiCausale"},     {"NumRegistroIva"},
      {"NumeroDiProtocollo", TipoCampo::Intero32}, {"TotaleDocumento", TipoCampo::Importo},
      {"ImponibileRigo", TipoCampo::Importo},  {"CodiceIva"},         {"Aliquota", TipoCampo::Importo},
      {"Imposta", TipoCampo::Importo},         {"Descrizione Iva"},   {"Stato"}};
  if (r.acquisti) {
    c.push_back({"Percentuale indetraibilità", TipoCampo::Doppio});
    c.push_back({"ImponibileIndetraibile", TipoCampo::Importo});
    c.push_back({"ImpostaIndetraibile", TipoCampo::Importo});
  }
  // The journal row each line comes from: what the printed marks go by.
  c.push_back({"TipoRigaIvaNormale"});
  c.push_back({"NumRigaAVideo"});
  c.push_back({"DareAvere"});
  return c;
}

std::vector<ColonnaLavoro> ColonneTotali(bool acquisti) {
  std::vector<ColonnaLavoro> c = {{"CodiceIva"},
                                  {"Aliquota", TipoCampo::Importo},
                                  {"SommadiImponibileRigo", TipoCampo::Importo},
                                  {"SommadiImposta", TipoCampo::Importo},
                                  {"ProgressivoImponibile", TipoCampo::Importo},
                                  {"ProgressivoImposta", TipoCampo::Importo},
                                  {"TipoCausale"}};
  if (acquisti) {
    // -1 for the non-deductible share, 0 for the rest.
    c.push_back({"Indeducibile", TipoCampo::Intero16});
    c.push_back({"Percentuale indetraibilità", TipoCampo::Doppio});
  }
  return c;
}

std::vector<ColonnaLavoro> ColonneTotaliTmp() {
  return {{"CodiceIvaDeducibile"},
          {"CodiceIva"},
          {"Aliquota", TipoCampo::Importo},
          {"Flag Monte Acquisti"},
          {"Flag Fatture Esenti"},
          {"Flag Articolo 8"},
          {"Acquisto Intracomunitario"},
          {"Percentuale indetraibilità", TipoCampo::Doppio},
          {"ImponibileRigo", TipoCampo::Importo},
          {"Imposta", TipoCampo::Importo},
          {"Indeducibile", TipoCampo::Intero16},
          {"TipoCausale"}};
}

std::vector<ColonnaLavoro> ColonneVentilazione() {
  return {{"CodiceIVA"},
          {"Aliquota", TipoCampo::Importo},
          {"SommadiImponibileRigo", TipoCampo::Importo},
          {"SommadiImposta", TipoCampo::Importo},
          {"ProgressivoImponibile", TipoCampo::Importo},
          {"ProgressivoImposta", TipoCampo::Importo},
          {"BaseVentilazione", TipoCampo::Importo}};
}

std::string NomeParte(const Registro& r, const std::string& parte) {
  if (parte == "totali generali") return std::string("Registri iva ") + r.nome + " totali generali";
  return std::string("Registro iva ") + r.nome + " " + parte;
}

// The dates a register goes by: the column stored as DataRegistrazione and the filter's.
struct DateRegistro {
  std::string registrazione;  // DataCompetenza or DataCompetenzaIVA
  std::string filtro;
};
DateRegistro DateDi(const Registro& r, const std::string& autotrasportatori) {
  bool autot = Trim(autotrasportatori) == "1" && (std::string(r.tipo) == "1" || std::string(r.tipo) == "3" ||
                                                  std::string(r.tipo) == "4");
  DateRegistro d;
  d.registrazione = autot ? "DataCompetenzaIVA" : "DataCompetenza";
  d.filtro = (r.dataIva || autot) ? "DataCompetenzaIVA" : "DataCompetenza";
  return d;
}

// A statement over the period: `testa` + the period's condition + `coda`. By the VAT date, a row
// without one goes by its accounting date: the two are read as two selects joined by UNION ALL,
// each of which an index of the journal answers (an OR of the two would read the register's
// whole year).
std::string PerPeriodo(const std::string& testa, const std::string& coda, const Parametri& pc,
                       const std::string& colonna, const Data& da, const Data& a, Parametri& p) {
  const std::string c = "P.[" + colonna + "]";
  auto parte = [&](const std::string& condizione) {
    p.push_back(Valore(da));
    p.push_back(Valore(a));
    p.insert(p.end(), pc.begin(), pc.end());
    return testa + condizione + coda;
  };
  std::string s = parte("(" + c + " >= ? AND " + c + " <= ?)");
  if (colonna != "DataCompetenza")
    s += " UNION ALL " + parte("(" + c + " IS NULL AND P.[DataCompetenza] >= ? AND P.[DataCompetenza] <= ?)");
  return s;
}

Data PrimoDelMese(int anno, int mese) {
  auto d = Data::Crea(anno, mese, 1);
  if (!d) throw ErroreDb(3265, "Periodo non valido: mese " + std::to_string(mese) + " anno " + std::to_string(anno));
  return *d;
}

Importo Imp(const Valore& v) { return NullToZeroCy(v); }

int Decimali() { return G().DecimaliImporti; }

}  // namespace

Importo QuotaPercentuale(Importo importo, double percentuale, int decimali) {
  Importo p = Importo::DaDouble(percentuale);  // four decimals of percentage are plenty
  return ArrotondaRapporto(static_cast<Int128>(importo.Raw()) * p.Raw(), static_cast<Int128>(100) * 10000,
                             decimali);
}

std::string clsRegistriIva::NomeTabella(const std::string& TipoRegistroIva, const std::string& parte,
                                        const std::string& prefisso) {
  return prefisso + NomeParte(DiTipo(TipoRegistroIva), parte);
}

// ---------------------------------------------------------------- work tables

int64_t clsRegistriIva::MakeTable_RegistroIvaCorpo(const std::string& TipoRegistroIva,
                                                   const Valore& avar_NumeroRegistro, const Data& daData,
                                                   const Data& aData, const std::string& prefisso,
                                                   bool bool_PerLiquidazione,
                                                   const std::string& str_IndIVAAutotrasportatori) {
  const Registro& r = DiTipo(TipoRegistroIva);
  if (r.acquisti) PercentualiIndetraibilitàNullToZero();
  TabellaLavoro corpo(*cn, prefisso, NomeParte(r, "corpo"), ColonneCorpo(r));
  corpo.Crea();
  DateRegistro date = DateDi(r, str_IndIVAAutotrasportatori);

  std::string sel = "SELECT P.[" + date.registrazione +
                    "], P.[CodiceCausale], P.[NumeroRegistrazione], C.[TipoCausale], P.[DataDocumento], "
                    "P.[NumeroDocumento], P.[SerieDocumento], '', P.[TipoRegistroIva], " +
                    std::string(kLettera) + ", P.[NumRegistroIva], P.[NumeroDiProtocollo], ";
  if (r.ventilazione) {
    sel += ConSegno(SegnoTotale(r), "P.[ImportoMovimento]") + ", 0, P.[CodiceIva], 0, 0, '', ";
  } else {
    sel += ConSegno(SegnoTotale(r), "P.[TotaleDocumento]") + ", " + ConSegno(SegnoRighe(r), "P.[Imponibile]") +
           ", P.[CodiceIva], I.[Aliquota], " + ConSegno(SegnoRighe(r), "P.[ImportoMovimento]") +
           ", I.[Descrizione Iva], ";
  }
  sel += "substr(P.[Stringa10indicatori], 1, 1), ";
  if (r.acquisti) sel += "COALESCE(I.[Percentuale indetraibilità], 0), 0, 0, ";
  sel += "P.[TipoRigaIvaNormale], P.[NumRigaAVideo], P.[DareAvere] "
         "FROM ([Prima Nota] P LEFT JOIN [Codici Iva] I ON I.[Codice Iva] = P.[CodiceIva]) "
         "LEFT JOIN [Causali Contabili] C ON C.[CodiceCausale] = P.[CodiceCausale] WHERE ";
  if (!bool_PerLiquidazione) sel += "COALESCE(substr(P.[Stringa10indicatori], 1, 1), '') <> 'R' AND ";
  std::string coda = " AND P.[TipoRegistroIva] = ? AND P.[NumRegistroIva] = ?";
  Parametri pc = {Valore(std::string(r.tipo)), Valore(T(avar_NumeroRegistro))};
  if (r.ventilazione) {
    // The takings: the revenue side of each receipt (credit; debit for a reversal), not the
    // cash row that stands against it.
    coda += " AND COALESCE(P.[TipoRigaIvaNormale], '') <> 'I' AND ((COALESCE(C.[TipoCausale], '') IN (" +
            SegnoTotale(r) + ") AND P.[DareAvere] = 'D') OR (COALESCE(C.[TipoCausale], '') NOT IN (" +
            SegnoTotale(r) + ") AND P.[DareAvere] = 'A'))";
  } else {
    coda += " AND P.[TipoRigaIvaNormale] = 'I'";
  }
  if (bool_PerLiquidazione)
    coda += " AND COALESCE(C.[TipoCausale], '') <> '7' AND COALESCE(C.[TipoCausale], '') <> '8'";
  Parametri p;
  const std::string istruzione = PerPeriodo(sel, coda, pc, date.filtro, daData, aData, p);
  int64_t n = corpo.Riempi(istruzione, p);
  corpo.CreaIndice({"NumeroRegistrazione"});

  if (r.acquisti && n > 0) {
    // The non-deductible share of each row, rounded once to the company's decimals.
    const std::string nome = "[" + corpo.Nome() + "]";
    struct Quota {
      Valore reg, tipo, riga, lato;
      Importo imponibile, imposta;
    };
    std::vector<Quota> quote;
    int dec = Decimali();
    cn->Scorri("SELECT [NumeroRegistrazione], [TipoRigaIvaNormale], [NumRigaAVideo], [DareAvere], "
               "[ImponibileRigo], [Imposta], [Percentuale indetraibilità] FROM " +
                   nome + " WHERE [Percentuale indetraibilità] <> 0",
               {}, [&](const std::vector<Colonna>&, const std::vector<Valore>& v) {
                 double perc = NullToZeroDbl(v[6]);
                 quote.push_back({v[0], v[1], v[2], v[3], QuotaPercentuale(Imp(v[4]), perc, dec),
                                  QuotaPercentuale(Imp(v[5]), perc, dec)});
                 return true;
               });
    for (const auto& q : quote)
      cn->Esegui("UPDATE " + nome +
                     " SET [ImponibileIndetraibile] = ?, [ImpostaIndetraibile] = ? WHERE [NumeroRegistrazione] = ? "
                     "AND [TipoRigaIvaNormale] = ? AND [NumRigaAVideo] = ? AND [DareAvere] = ?",
                 {Valore(q.imponibile), Valore(q.imposta), q.reg, q.tipo, q.riga, q.lato});
  }
  return n;
}

int64_t clsRegistriIva::AppendCostiRicavi_RegistroIvaCorpo(const std::string& TipoRegistroIva,
                                                           const Valore& avar_NumeroRegistro, const Data& daData,
                                                           const Data& aData, const std::string& prefisso) {
  const Registro& r = DiTipo(TipoRegistroIva);
  TabellaLavoro corpo(*cn, prefisso, NomeParte(r, "corpo"), ColonneCorpo(r));
  // One line per registration; the accounts are read again when it is printed. The key columns
  // stay null: these lines mark nothing in the journal.
  std::string sel =
      "SELECT MIN(P.[DataCompetenza]), MIN(P.[CodiceCausale]), P.[NumeroRegistrazione], '', NULL, "
      "MIN(P.[NumeroDocumento]), MIN(P.[SerieDocumento]), '**COSTO/RICAVO SEMPLIFICATI**', '0', '', '', "
      "MIN(P.[NumeroDiProtocollo]), 0, 0, '', 0, 0, '', '', ";
  if (r.acquisti) sel += "0, 0, 0, ";
  sel += "NULL, NULL, NULL FROM [Prima Nota] P INNER JOIN [Causali Contabili] C ON C.[CodiceCausale] = "
         "P.[CodiceCausale] WHERE COALESCE(P.[TipoRigaIvaNormale], '') IN ('', ' ') AND "
         "C.[TipoRegistroIVACRSemp] = ? AND C.[RegistroIVACRSemp] = ? AND P.[DataCompetenza] >= ? AND "
         "P.[DataCompetenza] <= ? GROUP BY P.[NumeroRegistrazione]";
  return corpo.Riempi(sel, {Valore(std::string(r.tipo)), Valore(T(avar_NumeroRegistro)), Valore(daData),
                            Valore(aData)});
}

void clsRegistriIva::MakeTable_RegistroIvaTotali(const std::string& TipoRegistroIva, const std::string& prefisso) {
  const Registro& r = DiTipo(TipoRegistroIva);
  const std::string corpo = "[" + prefisso + NomeParte(r, "corpo") + "]";
  TabellaLavoro totali(*cn, prefisso, NomeParte(r, "totali"), ColonneTotali(r.acquisti));
  totali.Crea();
  if (!r.acquisti) {
    totali.Riempi("SELECT [CodiceIva], [Aliquota], SUM([ImponibileRigo]), SUM([Imposta]), 0, 0, [TipoCausale] FROM " +
                  corpo + " GROUP BY [CodiceIva], [Aliquota], [TipoCausale]");
    return;
  }
  // The non-deductible share under its own code.
  totali.Riempi("SELECT [CodiceIva], [Aliquota], SUM([ImponibileIndetraibile]), SUM([ImpostaIndetraibile]), 0, 0, "
                "[TipoCausale], -1, [Percentuale indetraibilità] FROM " +
                corpo +
                " WHERE [Percentuale indetraibilità] <> 0 GROUP BY [CodiceIva], [Aliquota], [TipoCausale], "
                "[Percentuale indetraibilità]");
  // The deductible share of the same rows, under the fully deductible twin of the code.
  TabellaLavoro tmp(*cn, prefisso, NomeParte(r, "totali tmp"), ColonneTotaliTmp());
  tmp.Crea();
  tmp.Riempi("SELECT '', K.[CodiceIva], K.[Aliquota], I.[Flag Monte Acquisti], I.[Flag Fatture Esenti], "
             "I.[Flag Articolo 8], I.[Acquisto Intracomunitario], K.[Percentuale indetraibilità], "
             "SUM(K.[ImponibileRigo] - K.[ImponibileIndetraibile]), SUM(K.[Imposta] - K.[ImpostaIndetraibile]), 0, "
             "K.[TipoCausale] FROM " +
             corpo +
             " K LEFT JOIN [Codici Iva] I ON I.[Codice Iva] = K.[CodiceIva] WHERE K.[Percentuale indetraibilità] "
             "<> 0 GROUP BY K.[CodiceIva], K.[Aliquota], I.[Flag Monte Acquisti], I.[Flag Fatture Esenti], "
             "I.[Flag Articolo 8], I.[Acquisto Intracomunitario], K.[Percentuale indetraibilità], K.[TipoCausale]");
  const std::string nomeTmp = "[" + tmp.Nome() + "]";
  struct Gruppo {
    Valore codice, aliquota, monte, esenti, art8, intra;
  };
  std::vector<Gruppo> gruppi;
  cn->Scorri("SELECT DISTINCT [CodiceIva], [Aliquota], [Flag Monte Acquisti], [Flag Fatture Esenti], "
             "[Flag Articolo 8], [Acquisto Intracomunitario] FROM " +
                 nomeTmp,
             {}, [&](const std::vector<Colonna>&, const std::vector<Valore>& v) {
               gruppi.push_back({v[0], v[1], v[2], v[3], v[4], v[5]});
               return true;
             });
  for (const auto& g : gruppi) {
    std::string deducibile = GetCodiceIvaDeducibile(g.codice, g.aliquota, g.monte, g.esenti, g.art8, g.intra);
    if (deducibile.empty())
      Host().MsgBox("Attenzione il calcolo dell'IVA acquisti è inattendibile.\nIl codice IVA completamente "
                    "detraibile al " +
                        FormattaImporto(Valore(Imp(g.aliquota))) +
                        "% è inesistente.\n'Annullare' la stampa e codificarlo nell'archivio dei Codici IVA.",
                    vbExclamation, "Totali registro IVA acquisti.");
    cn->Esegui("UPDATE " + nomeTmp + " SET [CodiceIvaDeducibile] = ? WHERE [CodiceIva] = ?",
               {Valore(deducibile), Valore(T(g.codice))});
  }
  totali.Riempi("SELECT [CodiceIvaDeducibile], [Aliquota], SUM([ImponibileRigo]), SUM([Imposta]), 0, 0, "
                "[TipoCausale], 0, 0 FROM " +
                nomeTmp + " GROUP BY [CodiceIvaDeducibile], [Aliquota], [TipoCausale]");
  // The rows wholly deductible.
  totali.Riempi("SELECT [CodiceIva], [Aliquota], SUM([ImponibileRigo]), SUM([Imposta]), 0, 0, [TipoCausale], 0, "
                "[Percentuale indetraibilità] FROM " +
                corpo +
                " GROUP BY [CodiceIva], [Aliquota], [Percentuale indetraibilità], [TipoCausale] "
                "HAVING [Percentuale indetraibilità] = 0");
}

void clsRegistriIva::EliminaTabelleTemporaneeIva(const std::string& TipoRegistroIva, const std::string& prefisso) {
  const Registro& r = DiTipo(TipoRegistroIva);
  std::vector<std::string> parti = {"corpo", "totali"};
  if (r.acquisti) {
    parti.push_back("totali tmp");
    parti.push_back("totali generali");
  }
  for (const auto& parte : parti) {
    try {
      EliminaTabella(*cn, prefisso + NomeParte(r, parte));
    } catch (const ErroreDb&) {
      // what cannot be dropped now is dropped at the next run's start
    }
  }
}

int64_t clsRegistriIva::MakeTable_RegistroIvaVenditeCorpo(const Valore& n, const Data& da, const Data& a,
                                                          const std::string& prefisso, bool perLiquidazione,
                                                          const std::string& autotrasportatori) {
  return MakeTable_RegistroIvaCorpo("1", n, da, a, prefisso, perLiquidazione, autotrasportatori);
}
int64_t clsRegistriIva::MakeTable_RegistroIvaAcquistiCorpo(const Valore& n, const Data& da, const Data& a,
                                                           const std::string& prefisso, bool perLiquidazione) {
  return MakeTable_RegistroIvaCorpo("2", n, da, a, prefisso, perLiquidazione);
}
int64_t clsRegistriIva::MakeTable_RegistroIvaCorrispettiviCorpo(const Valore& n, const Data& da, const Data& a,
                                                                const std::string& prefisso, bool perLiquidazione,
                                                                const std::string& autotrasportatori) {
  return MakeTable_RegistroIvaCorpo("3", n, da, a, prefisso, perLiquidazione, autotrasportatori);
}
int64_t clsRegistriIva::MakeTable_RegistroIvaCorrispettiviVentilazioneCorpo(const Valore& n, const Data& da,
                                                                            const Data& a, const std::string& prefisso,
                                                                            bool perLiquidazione,
                                                                            const std::string& autotrasportatori) {
  return MakeTable_RegistroIvaCorpo("4", n, da, a, prefisso, perLiquidazione, autotrasportatori);
}
int64_t clsRegistriIva::MakeTable_RegistroIvaSospensioneCorpo(const Valore& n, const Data& da, const Data& a,
                                                              const std::string& prefisso, bool perLiquidazione) {
  return MakeTable_RegistroIvaCorpo("5", n, da, a, prefisso, perLiquidazione);
}
int64_t clsRegistriIva::MakeTable_RegistroIvaDifferitaVenditeCorpo(const Valore& n, const Data& da, const Data& a,
                                                                   const std::string& prefisso, bool perLiquidazione) {
  return MakeTable_RegistroIvaCorpo("6", n, da, a, prefisso, perLiquidazione);
}
int64_t clsRegistriIva::MakeTable_RegistroIvaDifferitaAcquistiCorpo(const Valore& n, const Data& da, const Data& a,
                                                                    const std::string& prefisso,
                                                                    bool perLiquidazione) {
  return MakeTable_RegistroIvaCorpo("8", n, da, a, prefisso, perLiquidazione);
}

// ---------------------------------------------------------------- deductibility

void clsRegistriIva::PercentualiIndetraibilitàNullToZero() {
  cn->Esegui("UPDATE [Codici Iva] SET [Percentuale indetraibilità] = 0 WHERE [Percentuale indetraibilità] IS NULL");
}

std::string clsRegistriIva::GetCodiceIvaDeducibile(const Valore& CodiceIva, const Valore& aliquota,
                                                   const Valore& avar_FlagMonteAcquisti,
                                                   const Valore& avar_IndicatoreEsente,
                                                   const Valore& avar_IndicatorePlafond,
                                                   const Valore& avar_AcquistoIntracomunitario) {
  const std::string flags[4] = {T(avar_FlagMonteAcquisti), T(avar_IndicatoreEsente), T(avar_IndicatorePlafond),
                                T(avar_AcquistoIntracomunitario)};
  Importo rate = Imp(aliquota);
  auto coerente = [&](const std::vector<Valore>& v) {
    // v: Aliquota, Percentuale, the four flags
    return Imp(v[0]) == rate && NullToZeroDbl(v[1]) == 0 && T(v[2]) == flags[0] && T(v[3]) == flags[1] &&
           T(v[4]) == flags[2] && T(v[5]) == flags[3];
  };
  const std::string colonne =
      "[Aliquota], [Percentuale indetraibilità], [Flag Monte Acquisti], [Flag Fatture Esenti], [Flag Articolo 8], "
      "[Acquisto Intracomunitario]";
  std::string gemello = T(cn->Scalare("SELECT [Codice IVA detraibile] FROM [Codici Iva] WHERE [Codice Iva] = ?",
                                      {Valore(T(CodiceIva))}));
  if (!gemello.empty()) {
    std::optional<std::vector<Valore>> riga;
    cn->Scorri("SELECT " + colonne + " FROM [Codici Iva] WHERE [Codice Iva] = ?", {Valore(gemello)},
               [&](const std::vector<Colonna>&, const std::vector<Valore>& v) {
                 riga = v;
                 return false;
               });
    if (riga && coerente(*riga)) return gemello;
    Host().MsgBox("Attenzione il codice IVA totalmente detraibile '" + gemello + "' associato al codice IVA '" +
                      T(CodiceIva) +
                      "' non è coerente (deve avere stessa aliquota, percentuale indetraibilità zero e stessi flag) "
                      "e quindi verrà ricercato un codice IVA alternativo",
                  vbExclamation, "Metodo GetCodiceIVADeducibile()");
  }
  std::string trovato;
  cn->Scorri("SELECT [Codice Iva], " + colonne +
                 " FROM [Codici Iva] WHERE [Aliquota] = ? AND [Percentuale indetraibilità] = 0 ORDER BY [Codice Iva]",
             {Valore(rate)}, [&](const std::vector<Colonna>&, const std::vector<Valore>& v) {
               if (!coerente(std::vector<Valore>(v.begin() + 1, v.end()))) return true;
               trovato = T(v[0]);
               return false;
             });
  return trovato;
}

// ---------------------------------------------------------------- descriptions

std::string clsRegistriIva::GetDescrizioneIva(const Valore& avar_CodiceIva) {
  return T(cn->Scalare("SELECT [Descrizione Iva] FROM [Codici Iva] WHERE [Codice Iva] = ?",
                       {Valore(T(avar_CodiceIva))}));
}

std::string clsRegistriIva::GetRagioneSocialeCliFor(const Valore& IndClienteFornitore, const Valore& Codice_Cliente) {
  std::string ind = T(IndClienteFornitore);
  const char* tabella = ind == "C" ? "[Anagrafica Clienti]" : ind == "F" ? "[Anagrafica Fornitori]" : nullptr;
  if (!tabella) return "";
  return T(cn->Scalare(std::string("SELECT [Ragione Sociale] FROM ") + tabella + " WHERE [Codice Cliente] = ?",
                       {Valore(T(Codice_Cliente))}));
}

namespace {
bool TipoConNome(const std::string& t) {
  static const std::set<std::string> k = {"0", "1", "4", "5", "6", "7", "8", ":", "9", ";"};
  return k.count(t) > 0;
}
}  // namespace

std::string clsRegistriIva::GetDescrizioneRigaIva(const Valore& avar_CodiceCausale, const Valore& avar_TipoCausale,
                                                  const Valore& avar_NumeroRegistrazione) {
  std::string tipo = T(avar_TipoCausale);
  if (TipoConNome(tipo)) {
    std::string nome;
    cn->Scorri("SELECT [IndClienteFornitore], [CodClienteFornitore] FROM [Prima Nota] WHERE [NumeroRegistrazione] = ? "
               "AND COALESCE([TipoRigaIvaNormale], '') = '' AND COALESCE([CodClienteFornitore], '') <> '' "
               "ORDER BY [NumRigaAVideo], [DareAvere]",
               {Valore(T(avar_NumeroRegistrazione))}, [&](const std::vector<Colonna>&, const std::vector<Valore>& v) {
                 nome = GetRagioneSocialeCliFor(v[0], v[1]);
                 return false;
               });
    return nome;
  }
  if (tipo == "2" || tipo == "3")
    return T(cn->Scalare("SELECT [DescrizioneCausale] FROM [Causali Contabili] WHERE [CodiceCausale] = ?",
                         {Valore(T(avar_CodiceCausale))}));
  return "";
}

bool clsRegistriIva::LocalizzaRecordsRilevazioneCostiRicavi(Recordset& T_, const Valore& numeroRegistrazione,
                                                            bool primaDare,
                                                            const std::string& str_RegIVASemSoloContiEco) {
  std::string sql =
      "SELECT P.[ContoPrimaNota], D.[Descrizione], P.[ImportoMovimento], P.[DareAvere], P.[DescrizioneSupplem] "
      "FROM [Prima Nota] P LEFT JOIN [Piano Dei Conti] D ON D.[Gruppo] = substr(P.[ContoPrimaNota], 1, 2) AND "
      "D.[Conto] = substr(P.[ContoPrimaNota], 3, 2) AND D.[Sottoconto] = substr(P.[ContoPrimaNota], 5, 3) "
      "WHERE P.[NumeroRegistrazione] = ?";
  if (Trim(str_RegIVASemSoloContiEco) == "1")
    sql += " AND substr(P.[ContoPrimaNota], 1, 2) IN (SELECT [Gruppo] FROM [Query sezione bilancio gruppi] WHERE "
           "[IndDiBilancio] = '1')";
  sql += std::string(" ORDER BY P.[DareAvere]") + (primaDare ? " DESC" : "") +
         ", P.[NumeroRegistrazione], P.[TipoRigaIvaNormale], P.[NumRigaAVideo]";
  T_ = cn->Execute(sql, {Valore(Trim(numeroRegistrazione.Testo()))});
  return !T_.Eof();
}

// ---------------------------------------------------------------- for the settlement

Importo clsRegistriIva::GetCorrispettiviPeriodo(const std::string& prefisso) {
  return Imp(cn->Scalare("SELECT SUM([TotaleDocumento]) FROM [" + prefisso +
                         NomeParte(DiTipo("4"), "corpo") + "]"));
}

namespace {
Importo TotaliDifferitaSim(Connessione& cn, const std::string& tipoRegistro, bool acquisti, const Valore& numero,
                           const Data& da, const Data& a) {
  std::string termine = "CASE WHEN C.[TipoCausale] IN ('1', '8', '9', ';') THEN -P.[ImportoMovimento] ELSE "
                        "P.[ImportoMovimento] END";
  if (acquisti) termine = "(" + termine + ") * (100 - COALESCE(I.[Percentuale indetraibilità], 0)) / 100";
  Parametri p;
  std::string sql = "SELECT SUM(K.[x]) FROM (" +
                    PerPeriodo("SELECT " + termine +
                                   " AS [x] FROM ([Prima Nota] P LEFT JOIN [Causali Contabili] C ON C.[CodiceCausale] = "
                                   "P.[CodiceCausale]) LEFT JOIN [Codici Iva] I ON I.[Codice Iva] = P.[CodiceIva] WHERE ",
                               " AND P.[TipoRigaIvaNormale] = 'I' AND P.[TipoRegistroIva] = ? AND P.[NumRegistroIva] = ? "
                               "AND C.[TipoCausale] IN ('7', '8')",
                               {Valore(tipoRegistro), Valore(Trim(numero.Testo()))}, "DataCompetenzaIVA", da, a, p) +
                    ") K";
  // Rounded once, to the company's decimals.
  return Imp(cn.Scalare(sql, p)).Arrotonda(Decimali());
}

Importo TotaliDifferitaBol(Connessione& cn, const std::string& tipoProgressivo, const Valore& indTipoRecord,
                           const Valore& numero) {
  return Imp(cn.Scalare("SELECT SUM([IVA]) FROM [Progressivi Registri Iva] WHERE [IndicatoreFisso] = 'PI' AND "
                        "[IndTipoRecord] = ? AND [TipoRegistroIva] = ? AND [NumRegistroIva] = ? AND "
                        "COALESCE([CodiceIva], '') <> '00'",
                        {Valore(Trim(indTipoRecord.Testo())), Valore(tipoProgressivo), Valore(Trim(numero.Testo()))}));
}
}  // namespace

Importo clsRegistriIva::GetTotaliIvaDifferitaVenditeSim(const Valore& n, const Data& da, const Data& a,
                                                        const std::string&) {
  return TotaliDifferitaSim(*cn, "1", false, n, da, a);
}
Importo clsRegistriIva::GetTotaliIvaDifferitaAcquistiSim(const Valore& n, const Data& da, const Data& a,
                                                         const std::string&) {
  return TotaliDifferitaSim(*cn, "2", true, n, da, a);
}
Importo clsRegistriIva::GetTotaliIvaDifferitaVenditeBol(const Valore& ind, const Valore& n) {
  return TotaliDifferitaBol(*cn, "7", ind, n);
}
Importo clsRegistriIva::GetTotaliIvaDifferitaAcquistiBol(const Valore& ind, const Valore& n) {
  return TotaliDifferitaBol(*cn, "9", ind, n);
}

// ---------------------------------------------------------------- ventilation

void clsRegistriIva::SalvaRecordRegistroIvaCorrispettiviVentilazioneTotali(
    const std::string& prefisso, const Valore& CodiceIva, const Valore& aliquota, Importo sommadiImponibileRigo,
    Importo sommadiImposta, Importo progressivoImponibile, Importo progressivoImposta, Importo baseVentilazione) {
  const std::string nome = "[" + prefisso + NomeParte(DiTipo("4"), "totali") + "]";
  Parametri p = {Valore(Imp(aliquota)),        Valore(sommadiImponibileRigo), Valore(sommadiImposta),
                 Valore(progressivoImponibile), Valore(progressivoImposta),    Valore(baseVentilazione),
                 Valore(T(CodiceIva))};
  if (cn->Esegui("UPDATE " + nome +
                     " SET [Aliquota] = ?, [SommadiImponibileRigo] = ?, [SommadiImposta] = ?, "
                     "[ProgressivoImponibile] = ?, [ProgressivoImposta] = ?, [BaseVentilazione] = ? WHERE [CodiceIVA] = ?",
                 p) == 0)
    cn->Esegui("INSERT INTO " + nome +
                   " ([Aliquota], [SommadiImponibileRigo], [SommadiImposta], [ProgressivoImponibile], "
                   "[ProgressivoImposta], [BaseVentilazione], [CodiceIVA]) VALUES (?, ?, ?, ?, ?, ?, ?)",
               p);
}

namespace {
// The purchases base grouped by the code the receipts are distributed on: the code's
// [Codice IVA ventilare] when it leads to an existing code, the code itself otherwise.
const char* kCodiceVentilare =
    "CASE WHEN V.[Codice Iva] IS NOT NULL THEN V.[Codice Iva] ELSE I.[Codice Iva] END";
const char* kAliquotaVentilare = "CASE WHEN V.[Codice Iva] IS NOT NULL THEN V.[Aliquota] ELSE I.[Aliquota] END";
}  // namespace

void clsRegistriIva::MakeTable_RegistroIvaCorrispettiviVentilazioneTotaliLiquidazioneSim(
    const std::string& prefisso, const Data& aData, const Valore& avar_NumeroRegistro) {
  TabellaLavoro t(*cn, prefisso, NomeParte(DiTipo("4"), "totali"), ColonneVentilazione());
  t.Crea();
  Data inizio = PrimoDelMese(aData.Anno(), 1);
  const std::string segno = SegnoRighe(DiTipo("2"));
  t.Riempi(std::string("SELECT ") + kCodiceVentilare + ", " + kAliquotaVentilare + ", SUM(" +
               ConSegno(segno, "P.[Imponibile]") + "), SUM(" + ConSegno(segno, "P.[ImportoMovimento]") +
               "), 0, 0, 0 FROM (([Prima Nota] P LEFT JOIN [Causali Contabili] C ON C.[CodiceCausale] = "
               "P.[CodiceCausale]) LEFT JOIN [Codici Iva] I ON I.[Codice Iva] = P.[CodiceIva]) LEFT JOIN "
               "[Codici Iva] V ON V.[Codice Iva] = I.[Codice IVA ventilare] WHERE P.[TipoRegistroIva] = '2' AND "
               "C.[TipoCausale] IN ('5', '6') AND I.[Flag Monte Acquisti] = '1' AND P.[TipoRigaIvaNormale] = 'I' "
               "AND P.[DataCompetenza] >= ? AND P.[DataCompetenza] <= ? AND P.[NumRegistroIva] = ? GROUP BY " +
               kCodiceVentilare + ", " + kAliquotaVentilare,
           {Valore(inizio), Valore(aData), Valore(T(avar_NumeroRegistro))});
  DistribuisciVentilazione(prefisso, GetCorrispettiviPeriodo(prefisso));
}

void clsRegistriIva::MakeTable_RegistroIvaCorrispettiviVentilazioneTotaliLiquidazioneBol(
    const std::string& prefisso, clsProgressiviIva* objProgressiviIVA, const Valore& avar_NumeroRegistro,
    int avar_Mese) {
  TabellaLavoro t(*cn, prefisso, NomeParte(DiTipo("4"), "totali"), ColonneVentilazione());
  t.Crea();
  // The definitive base is the purchases total kept by the definitive prints (tax included):
  // it stands in the taxable column, the tax column at 0.
  t.Riempi(std::string("SELECT ") + kCodiceVentilare + ", " + kAliquotaVentilare +
           ", SUM(M.[ImportoMonteAcquisti]), 0, 0, 0, 0 FROM ([Monte Acquisti Ventilazione] M LEFT JOIN [Codici Iva] "
           "I ON I.[Codice Iva] = M.[CodiceIva]) LEFT JOIN [Codici Iva] V ON V.[Codice Iva] = "
           "I.[Codice IVA ventilare] WHERE M.[IndicatoreFisso] = 'MA' GROUP BY M.[NumRegistroCorrisp], " +
           kCodiceVentilare + ", " + kAliquotaVentilare);
  std::unique_ptr<clsProgressiviIva> proprio;
  if (!objProgressiviIVA) {
    proprio = std::make_unique<clsProgressiviIva>();
    proprio->cn = static_cast<const std::shared_ptr<Connessione>&>(cn);
    objProgressiviIVA = proprio.get();
  }
  Importo periodo, anno;
  objProgressiviIVA->GetProgressivoVentilazione(Valore(T(avar_NumeroRegistro)), periodo, anno);
  DistribuisciVentilazione(prefisso, avar_Mese == 13 ? anno : periodo);
}

void clsRegistriIva::DistribuisciVentilazione(const std::string& prefisso, Importo corrispettivi) {
  const std::string nome = "[" + prefisso + NomeParte(DiTipo("4"), "totali") + "]";
  struct Gruppo {
    Valore codice;
    Importo aliquota, base;
  };
  std::vector<Gruppo> gruppi;
  Int128 totale = 0;
  cn->Scorri("SELECT [CodiceIVA], [Aliquota], [SommadiImponibileRigo], [SommadiImposta] FROM " + nome +
                 " ORDER BY [CodiceIVA]",
             {}, [&](const std::vector<Colonna>&, const std::vector<Valore>& v) {
               Importo base = Imp(v[2]) + Imp(v[3]);
               gruppi.push_back({v[0], Imp(v[1]), base});
               totale += base.Raw();
               return true;
             });
  int dec = Decimali();
  for (const auto& g : gruppi) {
    Importo b, imponibile, imposta;
    if (totale != 0) {
      // b = R x m / M; taxable = b / (1 + a/100); tax = taxable x a / 100: each rounded once.
      Int128 num = static_cast<Int128>(corrispettivi.Raw()) * g.base.Raw();
      b = ArrotondaRapporto(num, totale, dec);
      Int128 cento = 100 * Importo::kScala;
      imponibile = ArrotondaRapporto(num * cento, totale * (cento + g.aliquota.Raw()), dec);
      imposta = ArrotondaRapporto(num * g.aliquota.Raw(), totale * (cento + g.aliquota.Raw()), dec);
    }
    SalvaRecordRegistroIvaCorrispettiviVentilazioneTotali(prefisso, g.codice, Valore(g.aliquota), imponibile, imposta,
                                                          Importo(), Importo(), b);
  }
}

// ---------------------------------------------------------------- reprotocolling

int32_t clsRegistriIva::EseguiRiprotocollazione(const std::string& clientName, int anno, const Valore& NumRegistroIva) {
  Connessione& db = *cn;
  auto inizio = Data::Crea(anno, 1, 1), fine = Data::Crea(anno, 12, 31);
  if (!inizio || anno < 1900 || anno > 9999) throw ErroreDb(3265, "Anno non valido: " + std::to_string(anno));
  // The register as the journal writes it: two digits.
  std::string registro = Trim(NumRegistroIva.Testo());
  if (auto n = Valore(registro).ComeIntero(); n && *n >= 0 && *n < 100)
    registro = Format(Valore(*n), "00");
  const Valore client(clientName);

  Atomico unita(db);
  db.Esegui("DELETE FROM [Elaborazione riprotocollazione] WHERE [ClientName] = ?", {client});
  db.Esegui(
      "INSERT INTO [Elaborazione riprotocollazione] ([ClientName], [DataCompetenza], [DataRegistrazione], "
      "[NumeroRegistrazione], [TipoRegistroIva], [NumRegistroIva], [NumeroDiProtocollo], [SerieDocumento], "
      "[NumeroDocumento]) SELECT ?, [DataCompetenza], [DataRegistrazione], [NumeroRegistrazione], "
      "[TipoRegistroIva], [NumRegistroIva], [NumeroDiProtocollo], [SerieDocumento], [NumeroDocumento] FROM "
      "[Prima Nota] WHERE [DataCompetenza] >= ? AND [DataCompetenza] <= ? AND [TipoRegistroIva] = '2' AND "
      "[NumRegistroIva] = ? GROUP BY [DataCompetenza], [DataRegistrazione], [NumeroRegistrazione], "
      "[TipoRegistroIva], [NumRegistroIva], [NumeroDiProtocollo], [SerieDocumento], [NumeroDocumento]",
      {client, Valore(*inizio), Valore(*fine), Valore(registro)});

  // The rows in date order, sorted here so that both engines put an empty protocol, series or
  // number first; the entry's number last of all, so that equal rows always come in one order.
  struct Voce {
    std::optional<Data> competenza, registrazione;
    std::string numero, tipo, registro, serie;
    std::optional<int64_t> protocollo, documento;
  };
  std::vector<Voce> voci;
  db.Scorri("SELECT [DataCompetenza], [DataRegistrazione], [NumeroRegistrazione], [TipoRegistroIva], "
            "[NumRegistroIva], [NumeroDiProtocollo], [SerieDocumento], [NumeroDocumento] FROM "
            "[Elaborazione riprotocollazione] WHERE [ClientName] = ?",
            {client}, [&](const std::vector<Colonna>&, const std::vector<Valore>& v) {
              voci.push_back({v[0].ComeData(), v[1].ComeData(), v[2].Testo(), v[3].Testo(), v[4].Testo(),
                              v[6].IsNull() ? std::string() : v[6].Testo(),
                              v[5].IsNull() ? std::nullopt : v[5].ComeIntero(),
                              v[7].IsNull() ? std::nullopt : v[7].ComeIntero()});
              return true;
            });
  if (voci.empty()) {
    unita.Conferma();
    return 0;
  }
  std::stable_sort(voci.begin(), voci.end(), [](const Voce& x, const Voce& y) {
    return std::tie(x.registrazione, x.protocollo, x.serie, x.documento, x.numero) <
           std::tie(y.registrazione, y.protocollo, y.serie, y.documento, y.numero);
  });

  // The new protocols in the work table; an entry listed twice takes the one walked last.
  db.Esegui("DELETE FROM [Elaborazione riprotocollazione] WHERE [ClientName] = ?", {client});
  int64_t progressivo = 0;
  for (const Voce& x : voci) {
    ++progressivo;
    auto data = [](const std::optional<Data>& d) { return d ? Valore(*d) : Valore::Null(); };
    db.EseguiInCoda(
        "INSERT INTO [Elaborazione riprotocollazione] ([ClientName], [DataCompetenza], [DataRegistrazione], "
        "[NumeroRegistrazione], [TipoRegistroIva], [NumRegistroIva], [NumeroDiProtocollo], [SerieDocumento], "
        "[NumeroDocumento]) VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?)",
        {client, data(x.competenza), data(x.registrazione), Valore(x.numero), Valore(x.tipo), Valore(x.registro),
         Valore(progressivo), x.serie.empty() ? Valore::Null() : Valore(x.serie),
         x.documento ? Valore(*x.documento) : Valore::Null()});
  }

  // Every row of those entries, and their instalments: one statement a table, joined on the
  // entry's number (the instalments have no index of their own on it).
  int64_t righe = 0;
  const std::pair<const char*, const char*> tabelle[] = {{"[Prima Nota]", "[NumeroRegistrazione]"},
                                                         {"[Scadenziario]", "[numeroRegistrazione]"}};
  for (const auto& [tabella, colonna] : tabelle)
    righe += db.Esegui(std::string("UPDATE ") + tabella + " SET [NumeroDiProtocollo] = E.[Protocollo] FROM (SELECT "
                       "[NumeroRegistrazione] AS [Numero], MAX([NumeroDiProtocollo]) AS [Protocollo] FROM "
                       "[Elaborazione riprotocollazione] WHERE [ClientName] = ? GROUP BY [NumeroRegistrazione]) E "
                       "WHERE " + tabella + "." + colonna + " = E.[Numero]",
                       {client});
  unita.Conferma();
  return static_cast<int32_t>(righe);
}

}  // namespace vorn
