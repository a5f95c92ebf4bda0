// Test data for the ledger reports: journal rows, balance rows, partners and the chart, written
// straight into the tables, so that the reports are tried on exactly the rows given.
#pragma once
#include <optional>
#include <string>
#include <vector>

#include "frame/Comuni.h"
#include "frame/Db.h"

namespace vorn::test::mastrini {

// One journal row with its main columns. Dates are "dd/mm/yyyy"; an empty date is stored Null.
struct RigaPN {
  std::string numero = "00001";
  std::string tipo;  // "I" for a VAT row
  std::string riga = "001";
  std::string da = "D";
  std::string conto;
  std::string ind, cod;
  std::string competenza;
  std::string registrazione;  // the competence date when empty
  std::string causale;
  std::string descrizione;
  Importo importo;
  // Position 3 of the indicator string (the causal's operativity); nullopt stores no string,
  // empty text an empty string.
  std::optional<std::string> operativita = std::string("0");
  std::string dataDocumento;
  long numeroDocumento = 0;
  std::string serie;
  long protocollo = 0;
  std::string valuta;
  Importo importoValuta;
  double cambio = 0;
};

inline Valore DataODNull(const std::string& s) {
  if (s.empty()) return Valore::Null();
  auto d = Data::DaTesto(s);
  return d ? Valore(*d) : Valore::Null();
}

inline Valore Indicatori(const RigaPN& r) {
  if (!r.operativita) return Valore::Null();
  if (r.operativita->empty()) return Valore("");  // too short to have a third position
  return Valore("  " + *r.operativita + std::string(7, ' '));
}

inline void InserisciRigaPN(Connessione& cn, const RigaPN& r) {
  cn.Esegui(
      "INSERT INTO [Prima Nota] ([DataRegistrazione], [NumeroRegistrazione], [TipoRigaIvaNormale], [NumRigaAVideo], "
      "[DareAvere], [ContoPrimaNota], [IndClienteFornitore], [CodClienteFornitore], [DataCompetenza], "
      "[CodiceCausale], [DescrizioneSupplem], [ImportoMovimento], [Stringa10indicatori], [DataDocumento], "
      "[NumeroDocumento], [SerieDocumento], [NumeroDiProtocollo], [Valuta], [ImportoInValuta], [Cambio]) "
      "VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?)",
      {DataODNull(r.registrazione.empty() ? r.competenza : r.registrazione), Valore(r.numero), Valore(r.tipo),
       Valore(r.riga), Valore(r.da), Valore(r.conto), Valore(r.ind), Valore(r.cod), DataODNull(r.competenza),
       Valore(r.causale), Valore(r.descrizione), Valore(r.importo), Indicatori(r), DataODNull(r.dataDocumento),
       Valore(static_cast<long long>(r.numeroDocumento)), Valore(r.serie), Valore(static_cast<long long>(r.protocollo)),
       Valore(r.valuta), Valore(r.importoValuta), Valore(r.cambio)});
}

// The progressives of the last unload of a sub-account.
inline void InserisciSaldoConto(Connessione& cn, const std::string& conto, Importo iniziale, Importo dare,
                                Importo avere) {
  cn.Esegui(
      "INSERT INTO [Saldi Piano Dei Conti] ([CodiceGruppo], [CodiceConto], [CodiceSottoconto], [SaldoInizialeProgr], "
      "[DareProgressivo], [AvereProgressivo], [SaldoInizialePeriodo], [SaldoDarePeriodo], [SaldoAverePeriodo]) "
      "VALUES (?, ?, ?, ?, ?, ?, 0, 0, 0)",
      {Valore(conto.substr(0, 2)), Valore(conto.substr(2, 2)), Valore(conto.substr(4)), Valore(iniziale), Valore(dare),
       Valore(avere)});
}

struct CliForProva {
  std::string ind = "C";
  std::string cod;
  std::string nome;
  std::string sottoconto;
  Importo iniziale, dare, avere;  // progressives of the last unload
  std::string agente, zona;
};

inline void InserisciCliFor(Connessione& cn, const CliForProva& c) {
  std::string t = c.ind == "F" ? "[Anagrafica Fornitori]" : "[Anagrafica Clienti]";
  cn.Esegui("INSERT INTO " + t +
                " ([Codice Cliente], [Ragione Sociale], [SottocontoApparten], [SaldoInizProgress], "
                "[SaldoDareProgress], [SaldoAvereProgress], [Cod agente], [Codice Zona]) VALUES (?, ?, ?, ?, ?, ?, ?, ?)",
            {Valore(c.cod), Valore(c.nome), Valore(c.sottoconto), Valore(c.iniziale), Valore(c.dare), Valore(c.avere),
             Valore(c.agente), Valore(c.zona)});
}

inline void InserisciConto(Connessione& cn, const std::string& conto, const std::string& descrizione) {
  cn.Esegui("INSERT INTO [Piano Dei Conti] ([Gruppo], [Conto], [Sottoconto], [Descrizione]) VALUES (?, ?, ?, ?)",
            {Valore(conto.substr(0, 2)), Valore(conto.substr(2, 2)), Valore(conto.substr(4)), Valore(descrizione)});
}

inline void InserisciCausale(Connessione& cn, const std::string& codice, const std::string& descrizione,
                             const std::string& operativita = "0") {
  cn.Esegui("INSERT INTO [Causali Contabili] ([CodiceCausale], [DescrizioneCausale], [OperativitaContabile]) "
            "VALUES (?, ?, ?)",
            {Valore(codice), Valore(descrizione), Valore(operativita)});
}

inline void InserisciValuta(Connessione& cn, const std::string& codice, const std::string& simbolo, int decimali) {
  cn.Esegui("INSERT INTO [Valute] ([Codice valuta], [Descrizione valuta], [Simbolo valuta], [Numero decimali valuta]) "
            "VALUES (?, ?, ?, ?)",
            {Valore(codice), Valore(simbolo), Valore(simbolo), Valore(decimali)});
}

// The date of the last unload in the company's progressives.
inline void ImpostaUltimoScarico(Connessione& cn, const std::string& data) {
  cn.Esegui("DELETE FROM [Progressivi Azienda Vorn]");
  cn.Esegui("INSERT INTO [Progressivi Azienda Vorn] ([UltimoScaricoPN]) VALUES (?)", {DataODNull(data)});
}

// Every column of every journal row, as text, in key order: a picture to compare before and after.
inline std::vector<std::string> FotografiaPrimaNota(Connessione& cn) {
  std::vector<std::string> v;
  auto rs = cn.Execute(
      "SELECT * FROM [Prima Nota] ORDER BY [NumeroRegistrazione], [TipoRigaIvaNormale], [NumRigaAVideo], [DareAvere]");
  for (; !rs.Eof(); rs.MoveNext()) {
    std::string s;
    for (int i = 0; i < rs.FieldCount(); ++i) s += rs.Fields(i).Value().Testo() + "|";
    v.push_back(s);
  }
  return v;
}

inline Importo Imp(const char* testo) { return *Importo::DaTestoPunto(testo); }

}  // namespace vorn::test::mastrini
