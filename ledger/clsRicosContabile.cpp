#include "ledger/clsRicosContabile.h"

#include <vector>

#include "frame/Comuni.h"
#include "ledger/clsPrimaNota.h"

namespace vorn {

namespace {
void AssicuraConnessione(const std::shared_ptr<Connessione>& cn) { ConnessioneAssegnata(cn); }

// An empty part matches an empty, blank or missing one; parts are compared without their
// blanks, which is how two rows of one code come to exist.
void FiltroParte(std::string& w, Parametri& p, const std::string& col, const std::string& v) {
  if (!w.empty()) w += " AND ";
  if (Trim(v).empty()) {
    w += "COALESCE(TRIM(" + col + "), '') = ''";
  } else {
    w += "TRIM(" + col + ") = ?";
    p.push_back(Valore(Trim(v)));
  }
}
}  // namespace

Valore clsRicosContabile::AzzeraSaldiPianoConti() {
  AssicuraConnessione(cn);
  cn->Esegui(
      "UPDATE [Saldi Piano Dei Conti] SET [SaldoInizialePeriodo] = 0, [SaldoDarePeriodo] = 0, [SaldoAverePeriodo] = 0, "
      "[SaldoInizialeProgr] = 0, [DareProgressivo] = 0, [AvereProgressivo] = 0");
  return Valore();
}

Valore clsRicosContabile::AzzeraSaldiClientiFornitori() {
  AssicuraConnessione(cn);
  for (const char* t : {"Anagrafica Clienti", "Anagrafica Fornitori"})
    cn->Esegui(std::string("UPDATE [") + t +
               "] SET [SaldoInizPeriodo] = 0, [SaldoDarePeriodo] = 0, [SaldoAverePeriodo] = 0, "
               "[SaldoInizProgress] = 0, [SaldoDareProgress] = 0, [SaldoAvereProgress] = 0");
  return Valore();
}

bool clsRicosContabile::RicostruisciSaldiContabili(IForm* frm_FormAttiva, clsPrimaNota& objPrimaNota) {
  AssicuraConnessione(cn);
  if (!objPrimaNota.cn) objPrimaNota.cn = cn;
  // The movements are gathered while the journal streams by and written at the end, one
  // statement per balance row: the connection is busy with the stream meanwhile.
  bool propria = !objPrimaNota.InRaccolta();
  if (propria) objPrimaNota.IniziaRaccolta();
  int64_t righe = 0;
  try {
    cn->Scorri(
        std::string("SELECT [NumeroRegistrazione], ") + kColonneMovimento +
            " FROM [Prima Nota] ORDER BY [NumeroRegistrazione]",
        {}, [&](const std::vector<Colonna>&, const std::vector<Valore>& r) {
          ++righe;
          if (frm_FormAttiva)
            frm_FormAttiva->msgbar("Elaborazione registrazione n. " + (r[0].IsNull() ? std::string() : Trim(r[0].Testo())));
          objPrimaNota.MovimentaRecordContabile(MovimentoDaRiga(r, 1), false);
          return true;
        });
    if (righe == 0) {
      if (propria) objPrimaNota.AnnullaRaccolta();
      Host().Beep();
      Host().MsgBox("Archivio Prima Nota vuoto", vbExclamation, "Ricostruzione saldi contabili");
      return false;
    }
    if (propria) objPrimaNota.ScaricaRaccolta();
  } catch (...) {
    if (propria) objPrimaNota.AnnullaRaccolta();
    throw;
  }
  return true;
}

bool clsRicosContabile::VerificaContiDoppiPianoConti() {
  AssicuraConnessione(cn);
  const std::string chiave =
      "TRIM([Piano Dei Conti].[Gruppo]) || TRIM([Piano Dei Conti].[Conto]) || TRIM([Piano Dei Conti].[Sottoconto])";
  Recordset rs = cn->Execute("SELECT " + chiave + " AS [Sottoconto], SUM(1) AS [NRecords] FROM [Piano Dei Conti] WHERE " +
                             chiave + " IS NOT NULL GROUP BY " + chiave + " ORDER BY " + chiave);
  std::vector<std::string> doppi;
  for (; !rs.Eof(); rs.MoveNext())
    if (NullToZeroLng(rs.Fields(1).Value()) > 1) doppi.push_back(rs.Fields(0).Value().Testo());
  rs.Close();
  // A code that is not seven characters long is split all the same.
  for (const auto& k : doppi) EliminaContiDoppiPianoConti(MedioTesto(k, 1, 2), MedioTesto(k, 3, 2), MedioTesto(k, 5, 3));
  return true;
}

bool clsRicosContabile::EliminaContiDoppiPianoConti(const std::string& CodiceGruppo, const std::string& CodiceConto,
                                                    const std::string& CodiceSottoconto) {
  AssicuraConnessione(cn);
  std::string w;
  Parametri p;
  FiltroParte(w, p, "[Gruppo]", CodiceGruppo);
  FiltroParte(w, p, "[Conto]", CodiceConto);
  FiltroParte(w, p, "[Sottoconto]", CodiceSottoconto);
  Atomico unita(*cn);
  Recordset rs = cn->Apri("Piano Dei Conti", w, p, "[Gruppo], [Conto], [Sottoconto]");
  if (!rs.Eof()) rs.MoveNext();
  while (!rs.Eof()) {
    Host().Beep();
    Host().MsgBox("Rilevato il conto " + CodiceGruppo + CodiceConto + CodiceSottoconto +
                      " doppio, annotarselo e controllarlo, cancellato il record doppio dall'archivio PIANO DEI CONTI.",
                  vbExclamation, "Ricostruzione contabile.");
    rs.Delete();
  }
  rs.Close();
  unita.Conferma();
  return true;
}

}  // namespace vorn
