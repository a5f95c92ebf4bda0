// A large journal written straight into an empty company: multi-row INSERTs of 500 rows, a
// transaction every 100,000 rows, no balance movement and no counter (the benchmarks that use it
// read the journal, they do not post). The caller's generator fills each row; what a benchmark
// checks afterwards it keeps while the rows are generated.
#pragma once
#include <cstdint>
#include <functional>
#include <string>

#include "frame/Data.h"
#include "frame/Db.h"
#include "frame/Importo.h"
#include "frame/Valore.h"

namespace vorn::bench {

// One journal row as the generator gives it. Rows left at their defaults are plain movements.
struct RigaGiornale {
  Data data;                       // both DataRegistrazione and DataCompetenza
  std::string numero;              // NumeroRegistrazione
  std::string riga = "001";        // NumRigaAVideo
  bool dare = true;                // DareAvere "D" or "A"
  std::string conto;               // ContoPrimaNota, seven characters
  std::string indCliFor, codCliFor;
  std::string causale = "001";
  std::string descrizione = "Riga di prova";
  Importo importo;
  std::string indicatori = "  0       ";  // Stringa10indicatori: position 3 "1" for an opening row
};

// Writes `righe` rows; genera(i, riga) fills row i (0-based) on a fresh RigaGiornale.
inline void ScriviGiornale(Connessione& cn, long righe, const std::function<void(long, RigaGiornale&)>& genera) {
  constexpr int kColonne = 13, kLotto = 500;
  std::string tupla = "(";
  for (int c = 0; c < kColonne; ++c) tupla += c ? ", ?" : "?";
  tupla += ")";
  const std::string testa =
      "INSERT INTO [Prima Nota] ([DataRegistrazione], [NumeroRegistrazione], [TipoRigaIvaNormale], [NumRigaAVideo], "
      "[DareAvere], [ContoPrimaNota], [IndClienteFornitore], [CodClienteFornitore], [DataCompetenza], "
      "[CodiceCausale], [DescrizioneSupplem], [ImportoMovimento], [Stringa10indicatori]) VALUES ";
  std::string lottoPieno = testa;
  for (int i = 0; i < kLotto; ++i) lottoPieno += (i ? ", " : "") + tupla;

  Parametri p;
  p.reserve(kColonne * kLotto);
  long nelLotto = 0;
  auto svuota = [&] {
    if (nelLotto == 0) return;
    std::string sql = lottoPieno;
    if (nelLotto < kLotto) {
      sql = testa;
      for (long i = 0; i < nelLotto; ++i) sql += (i ? ", " : "") + tupla;
    }
    cn.Esegui(sql, p);
    p.clear();
    nelLotto = 0;
  };
  cn.BeginTrans();
  try {
    for (long i = 0; i < righe; ++i) {
      RigaGiornale r;
      genera(i, r);
      p.insert(p.end(), {Valore(r.data), Valore(r.numero), Valore(""), Valore(r.riga), Valore(r.dare ? "D" : "A"),
                         Valore(r.conto), Valore(r.indCliFor), Valore(r.codCliFor), Valore(r.data), Valore(r.causale),
                         Valore(r.descrizione), Valore(r.importo), Valore(r.indicatori)});
      if (++nelLotto == kLotto) svuota();
      if ((i + 1) % 100000 == 0) {
        svuota();
        cn.CommitTrans();
        cn.BeginTrans();
      }
    }
    svuota();
    cn.CommitTrans();
  } catch (...) {
    cn.RollbackTrans();
    throw;
  }
}

}  // namespace vorn::bench
