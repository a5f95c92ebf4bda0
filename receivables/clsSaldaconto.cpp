#include "receivables/clsSaldaconto.h"

#include <memory>

#include "frame/Comuni.h"
#include "frame/Host.h"
#include "receivables/clsScadenze.h"

namespace vorn {

namespace {
bool Dato(const Valore& v) { return !v.IsNull() && !v.IsEmpty() && !Trim(v.Testo()).empty(); }
}  // namespace

bool clsSaldaconto::LocalizzaScadenzeSaldaconto(Recordset& T, const Valore& tipo, const Valore& Codice_Cliente,
                                                const Valore& Codice_Banca, const Valore& Codice_Agenzia,
                                                const Valore& Data_Scadenza_Iniziale,
                                                const Valore& Data_Scadenza_Finale, const Valore& NumeroDocumento,
                                                const Valore& Serie, const Valore& DataDocumento) {
  std::string w = "(COALESCE([Importo Scadenza], 0) - COALESCE([Importo Pagato], 0)) <> 0 AND "
                  "COALESCE([Flag Unificata], 0) <> 2";
  Parametri p;
  auto e = [&](const std::string& condizione, const Valore& v) {
    w += " AND " + condizione;
    p.push_back(v);
  };
  if (Dato(tipo)) {
    std::string t = Trim(tipo.Testo());
    e("[Tipo] = ?", Valore(t == "F" ? "FO" : t == "C" ? "CL" : t));
  }
  if (Dato(Codice_Cliente)) e("[Codice Cliente] = ?", Valore(Trim(Codice_Cliente.Testo())));
  if (Dato(Codice_Banca)) e("[Codice Banca] = ?", Valore(Trim(Codice_Banca.Testo())));
  if (Dato(Codice_Agenzia)) e("[Codice Agenzia] = ?", Valore(Trim(Codice_Agenzia.Testo())));
  if (Dato(Data_Scadenza_Iniziale)) e("[Data Scadenza] >= ?", DataIngresso(Data_Scadenza_Iniziale));
  if (Dato(Data_Scadenza_Finale)) e("[Data Scadenza] <= ?", DataIngresso(Data_Scadenza_Finale));
  if (Dato(NumeroDocumento)) e("[Numero Documento] = ?", Valore(static_cast<long long>(NullToZeroLng(NumeroDocumento))));
  if (Dato(Serie)) e("[Serie] = ?", Valore(Trim(Serie.Testo())));
  if (Dato(DataDocumento)) e("[Data Documento] = ?", DataIngresso(DataDocumento));
  T = cn->Apri("Scadenziario", w, p, "[Data Scadenza], [Numero Progressivo]");
  return !T.Eof();
}

bool clsSaldaconto::ChiudiScadenza(const Valore& Numero_progressivo, const Valore& Importo_Pagato,
                                   const Valore& numeroRegistrazione, const Valore& DataRegistrazione,
                                   const Valore& Descrizione_Pagamento, bool IncrementaPagato,
                                   clsScadenze* objScadenze, const Valore& clientID, long hWnd) {
  std::unique_ptr<clsScadenze> proprio;
  if (!objScadenze) {
    proprio = std::make_unique<clsScadenze>();
    proprio->cn = static_cast<const std::shared_ptr<Connessione>&>(cn);
    objScadenze = proprio.get();
  }
  const Valore numero(static_cast<long long>(NullToZeroLng(Numero_progressivo)));
  Recordset rs = cn->Execute(
      "SELECT [tipo], [Codice Cliente], [Numero Documento], [Serie], [Data Documento], [Codice valuta], [Cambio], "
      "[Importo Documento] FROM [Scadenziario] WHERE [Numero Progressivo] = ?",
      {numero});
  if (rs.Eof()) {
    Host().Beep();
    Host().MsgBox("Impossibile trovare la scadenza con progressivo " + numero.Testo(), vbExclamation,
                  "Chiudi scadenza");
    return false;
  }
  Valore cambio = rs(6).Value();
  if (cambio.IsNull() || NullToZeroDbl(cambio) == 0) cambio = Valore(1.0);
  RecordValori pagamento = {{"Numero Progressivo", numero},
                            {"Importo pagato", Valore(NullToZeroCy(Importo_Pagato))},
                            {"Data pagamento", DataIngresso(DataRegistrazione)},
                            {"Descrizione Pagamento", Descrizione_Pagamento},
                            {"NumeroRegistrazione", numeroRegistrazione},
                            {"DataRegistrazione", DataIngresso(DataRegistrazione)},
                            {"tipo", rs(0).Value()},
                            {"Codice Cliente", rs(1).Value()},
                            {"Numero Documento", rs(2).Value()},
                            {"Serie", rs(3).Value()},
                            {"Data Documento", rs(4).Value()},
                            {"Codice valuta", rs(5).Value()},
                            {"Cambio", cambio},
                            {"Importo Documento", rs(7).Value()}};
  rs.Close();
  // The paid amount and its row together: the sum of the rows stays the paid amount.
  Atomico unita(*cn);
  const Valore importo(NullToZeroCy(Importo_Pagato));
  if (IncrementaPagato)
    cn->Esegui("UPDATE [Scadenziario] SET [Importo Pagato] = COALESCE([Importo Pagato], 0) + ? WHERE "
               "[Numero Progressivo] = ?",
               {importo, numero});
  else
    cn->Esegui("UPDATE [Scadenziario] SET [Importo Pagato] = ? WHERE [Numero Progressivo] = ?", {importo, numero});
  pagamento["Riga"] = Valore(static_cast<long long>(objScadenze->GetMaxRigaPagamento(numero) + 1));
  bool cancel = false;
  bool ok = false;
  try {
    ok = objScadenze->SalvaRecordPagamento(pagamento, clientID, hWnd, cancel);
  } catch (const ErroreDb&) {
    ok = false;
  }
  if (!ok) {
    Host().Beep();
    Host().MsgBox("Errore in fase di registrazione del pagamento relativo alla scadenza n. " + numero.Testo(),
                  vbExclamation, "Attenzione");
    return false;  // the paid amount is undone with it
  }
  unita.Conferma();
  return true;
}

}  // namespace vorn
