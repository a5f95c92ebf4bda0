#include "frame/VornServer.h"

#include "frame/Globali.h"

namespace vorn {

namespace {
bool TabellaMancante(const ErroreDb& e) {
  // SQLite: "no such table"; PostgreSQL: undefined_table.
  return e.SqlState() == "42P01" || e.Descrizione().find("no such table") != std::string::npos;
}
}  // namespace

bool EliminaTabella(Connessione& cn, const std::string& NomeTabella) {
  VerificaNome(NomeTabella);
  try {
    if (cn.InTransazione()) {
      // On PostgreSQL a failed statement would spoil the caller's transaction.
      Atomico a(cn);
      cn.Esegui("DROP TABLE [" + NomeTabella + "]");
      a.Conferma();
    } else {
      cn.Esegui("DROP TABLE [" + NomeTabella + "]");
    }
    cn.DimenticaSchema();
    return true;
  } catch (const ErroreDb& e) {
    if (!TabellaMancante(e))
      Host().MsgBox("Errore in fase di eliminazione della tabella " + NomeTabella + "\r" + e.Descrizione(), vbExclamation,
                    "VornXP");
    return false;
  }
}

bool EsisteTabella(Connessione& cn, const std::string& NomeTabella) {
  VerificaNome(NomeTabella);
  try {
    if (cn.InTransazione()) {
      Atomico a(cn);
      cn.Execute("SELECT * FROM [" + NomeTabella + "] LIMIT 1");
      a.Conferma();
    } else {
      cn.Execute("SELECT * FROM [" + NomeTabella + "] LIMIT 1");
    }
    return true;
  } catch (const std::exception&) {
    return false;
  }
}

void MarcaRecord(Recordset& rs, const Valore& clientID, long hWnd) {
  if (rs.EditMode() == adEditNone) {
    rs("clientName") = clientID;
    rs("hWnd") = static_cast<long long>(hWnd);
    rs.Update();
  } else {
    rs("clientName") = clientID;
    rs("hWnd") = static_cast<long long>(hWnd);
  }
}

void MarcaRecordset(Recordset& rs, const Valore& clientID, long hWnd) {
  while (!rs.Eof()) {
    MarcaRecord(rs, clientID, hWnd);
    rs.MoveNext();
  }
  if (rs.RecordCount() > 0) rs.MoveFirst();
}

bool RecordVariato(Recordset& rs, const Valore& clientID, long hWnd) {
  const Valore& nome = rs("clientName").Value();
  const Valore& wnd = rs("hWnd").Value();
  Valore n = nome.IsNull() ? Valore(0) : Valore(Trim(nome.Testo()));
  Valore w = wnd.IsNull() ? Valore(0) : wnd;
  // Compared as the host compares a variant with a value: as text, or as numbers.
  std::string atteso = clientID.IsNumber() ? clientID.Testo() : Trim(clientID.Testo());
  if (n.Testo() != atteso) return true;
  auto wv = w.ComeIntero();
  return !wv || *wv != hWnd;
}

bool ConfermaSovrascrittura(Recordset& rs, const Valore& clientID, long hWnd) {
  if (!RecordVariato(rs, clientID, hWnd)) return false;
  Host().Beep();
  int r = Host().MsgBox(
      "Il record è stato variato da un altro utente/istanza.\rSi desidera proseguire sovrascrivendo le variazioni?",
      vbYesNo | vbQuestion, kTitoloVorn);
  return r != vbYes;
}

void MsgCodiceInesistente(bool& Cancel, const std::string& titolo) {
  Host().Clessidra(false);
  Host().Beep();
  Host().MsgBox("Codice inesistente.", vbExclamation, titolo.empty() ? Host().TitoloApplicazione() : titolo);
  Cancel = true;
}

void EvidenziaControllo(IControllo* c) {
  if (!c) return;
  c->Enabled(true);
  EvidenziaTesto(c);
}

void EvidenziaTesto(IControllo* c) {
  if (!c) return;
  c->BackColor(65535);
  std::string t = Trim(c->Text());
  c->SetText(t);
  if (!t.empty()) {
    c->SelStart(0);
    c->SelLength(static_cast<int>(t.size()));
  }
}

void ColoreAbilitato(IControllo* c, bool abilitato) {
  if (!c) return;
  c->BackColor(abilitato ? 16777215L : 2147483663L);
  c->SetText(Trim(c->Text()));
}

Valore DecimaliValuta(const Valore& CodiceValuta) {
  auto cn = G().ConnessioneGlobale;
  if (!cn) return Valore(G().DecimaliImporti);
  return DecimaliValuta(*cn, CodiceValuta);
}

Valore DecimaliValuta(Connessione& cn, const Valore& CodiceValuta) {
  auto rs = cn.Execute("SELECT Valute.[Numero decimali valuta] From Valute WHERE Valute.[Codice Valuta]=?;",
                        {Valore(CodiceValuta.Testo())});
  if (rs.Eof()) return Valore(G().DecimaliImporti);
  const Valore& v = rs.Fields(0).Value();
  if (v.IsNull()) return Valore("2");
  return v;
}

bool clsLookup::CaricaDati(Recordset& T, const Valore& Istruzioni_sql) {
  try {
    T = cn->Execute(Istruzioni_sql.Testo());
    return !T.Eof();
  } catch (const ErroreDb& e) {
    Host().MsgBox("Errore in fase di esecuzione codice SQL\rCodice errore: " + std::to_string(e.Numero()) + " " +
                      e.Descrizione(),
                  vbExclamation, Host().TitoloApplicazione());
    return false;
  }
}

bool LocalizzaRecordProtocollo(Connessione& cn, Recordset& T, std::string_view tabella, std::string_view where,
                               const Parametri& p, const Valore& clientID, long hWnd) {
  T = cn.Apri(tabella, where, p);
  if (T.Eof()) return false;
  MarcaRecord(T, clientID, hWnd);
  return true;
}

bool SalvaRecordProtocollo(Connessione& cn, std::string_view tabella, std::string_view where, const Parametri& p,
                           const Valore& clientID, long hWnd, bool& Cancel,
                           const std::function<void(Recordset& rs, bool nuovo)>& assegna, bool chiedi) {
  Cancel = false;
  Recordset rs = cn.Apri(tabella, where, p);
  bool nuovo = rs.Eof();
  if (nuovo) {
    rs.AddNew();
  } else if (chiedi && ConfermaSovrascrittura(rs, clientID, hWnd)) {
    rs.Close();
    Cancel = true;
    return false;
  }
  assegna(rs, nuovo);
  MarcaRecord(rs, clientID, hWnd);
  rs.Update();
  rs.Close();
  return true;
}

}  // namespace vorn
