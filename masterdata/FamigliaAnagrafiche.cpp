#include "masterdata/FamigliaAnagrafiche.h"

#include <utility>

#include "frame/Comuni.h"
#include "frame/Formato.h"

namespace vorn::anagrafiche {

namespace {

std::string Colonna(const DefinizioneAnagrafica& d, const std::string& colonna) {
  return "[" + d.tabella + "].[" + colonna + "]";
}

bool Blank(const Valore& v) { return v.IsNull() || v.IsEmpty() || (v.IsText() && v.Str().empty()); }

// True when the key part is blank in the way its kind reads blanks.
bool ChiaveBianca(const ChiaveAnagrafica& c, const Valore& v) {
  if (c.tipo == TipoChiave::TestoBianco) return Trim(v.Testo()).empty();
  return Blank(v);
}

// The condition that a column holds no code: null, empty, or (for a blank-tolerant part) blanks.
std::string CondizioneBianca(const std::string& col, TipoChiave tipo) {
  if (tipo == TipoChiave::TestoBianco) return "COALESCE(TRIM(" + col + "), '') = ''";
  if (tipo == TipoChiave::Numero) return "(" + col + " IS NULL OR " + col + " = '' OR " + col + " = '0')";
  return "(" + col + " = '' OR " + col + " IS NULL)";
}

}  // namespace

Connessione& Conn(const std::shared_ptr<Connessione>& cn) { return ConnessioneAssegnata(cn); }

Valore ValoreChiave(const ChiaveAnagrafica& c, const Valore& v) {
  if (c.tipo != TipoChiave::Numero) return v.IsEmpty() ? Valore(std::string()) : v;
  if (Blank(v)) return Valore(std::string());
  if (!v.IsNumeric()) throw ErroreDb(13, "Tipo non corrispondente: " + c.colonna + " = " + v.Testo());
  return Valore(NumeroInTesto(v));
}

std::string FiltroChiavi(const DefinizioneAnagrafica& d, const Chiavi& k, Parametri& p, bool pieno) {
  if (k.size() > d.chiavi.size()) throw ErroreDb(3001, "Troppe parti di chiave per " + d.tabella);
  std::string w;
  for (size_t i = 0; i < k.size(); ++i) {
    const auto& c = d.chiavi[i];
    std::string col = Colonna(d, c.colonna);
    if (!w.empty()) w += " AND ";
    if (pieno && i + 1 == k.size()) {
      // Only a value that is there: a blank one finds nothing.
      w += "(" + col + " = ? AND NOT " + CondizioneBianca(col, TipoChiave::TestoBianco) + ")";
      p.push_back(ValoreChiave(c, k[i]));
    } else if (ChiaveBianca(c, k[i])) {
      w += CondizioneBianca(col, c.tipo);
    } else {
      w += "(" + col + " = ?)";
      p.push_back(ValoreChiave(c, k[i]));
    }
  }
  return w;
}

bool Localizza(Connessione& cn, const DefinizioneAnagrafica& d, Recordset& T, const Chiavi& k, const Valore& clientID,
               long hWnd) {
  Parametri p;
  std::string w = FiltroChiavi(d, k, p);
  return LocalizzaRecordProtocollo(cn, T, d.tabella, w, p, clientID, hWnd);
}

bool Salva(Connessione& cn, const DefinizioneAnagrafica& d, const Chiavi& k, const RecordValori& valori,
           const std::vector<std::string>& colonne, const Valore& clientID, long hWnd, bool& Cancel, bool NoPrompt) {
  Cancel = false;
  if (k.size() != d.chiavi.size()) throw ErroreDb(3001, "Chiave incompleta per " + d.tabella);
  // Every name is checked before the row is read: a wrong name writes nothing.
  auto campi = ColonneDaScrivere(
      valori, colonne,
      [&](const std::string& nome) {
        return "La colonna " + nome + " non è tra quelle che questo salvataggio di " + d.tabella + " scrive.";
      },
      3265);
  Chiavi chiavi;
  for (size_t i = 0; i < k.size(); ++i) chiavi.push_back(ValoreChiave(d.chiavi[i], k[i]));
  Parametri p;
  std::string w = FiltroChiavi(d, k, p);
  return SalvaRecordProtocollo(
      cn, d.tabella, w, p, clientID, hWnd, Cancel,
      [&](Recordset& rs, bool) {
        for (size_t i = 0; i < chiavi.size(); ++i) rs(d.chiavi[i].colonna) = chiavi[i];
        for (const auto& [c, v] : campi) rs(c) = v;
      },
      !NoPrompt);
}

bool Cancella(Connessione& cn, const DefinizioneAnagrafica& d, const Chiavi& k) {
  Parametri p;
  std::string w = FiltroChiavi(d, k, p);
  cn.Esegui("DELETE FROM [" + d.tabella + "] WHERE (" + w + ");", p);
  return true;
}

bool Passo(Connessione& cn, const DefinizioneAnagrafica& d, const Chiavi& fissi, Valore& codice, bool avanti) {
  if (d.passo >= d.chiavi.size() || fissi.size() != d.passo) throw ErroreDb(3001, "Scorrimento non previsto per " + d.tabella);
  const auto& c = d.chiavi[d.passo];
  std::string col = Colonna(d, c.colonna);
  Parametri p;
  std::string w = FiltroChiavi(d, fissi, p);
  if (!w.empty()) w += " AND ";
  w += "NOT " + CondizioneBianca(col, TipoChiave::TestoBianco);
  if (!d.filtroPasso.empty()) w += " AND (" + d.filtroPasso + ")";
  bool inizio = Trim(codice.Testo()).empty();
  std::string ordine;
  if (inizio) {
    ordine = avanti ? " DESC" : "";
  } else {
    w += avanti ? " AND " + col + " > ?" : " AND " + col + " < ?";
    p.push_back(ValoreChiave(c, codice));
    ordine = avanti ? "" : " DESC";
  }
  auto rs = cn.Execute("SELECT " + col + " FROM [" + d.tabella + "] WHERE " + w + " ORDER BY " + col + ordine + " LIMIT 1;", p);
  if (rs.Eof()) return false;
  codice = rs.Fields(0).Value();
  return true;
}

std::optional<Valore> LeggiColonna(Connessione& cn, const DefinizioneAnagrafica& d, const Chiavi& k,
                                   std::string_view colonna, const Valore& predefinito, bool pieno) {
  Parametri p;
  std::string w = FiltroChiavi(d, k, p, pieno);
  auto rs = cn.Execute("SELECT " + Colonna(d, std::string(colonna)) + " FROM [" + d.tabella + "] WHERE " + w + " LIMIT 1;", p);
  if (rs.Eof()) return std::nullopt;
  return LeggiCampo(rs.Fields(0), predefinito);
}

void SegnalaInesistente(const Valore& codice, bool* Cancel, IControllo* ControlloDaSelezionare,
                        const std::string& titolo) {
  if (Trim(codice.Testo()).empty()) return;
  if (Cancel) MsgCodiceInesistente(*Cancel, titolo);
  if (ControlloDaSelezionare) EvidenziaControllo(ControlloDaSelezionare);
}

Valore Descrizione(Connessione& cn, const DefinizioneAnagrafica& d, const Chiavi& k, std::string_view colonna,
                   const Valore& codice, bool* Cancel, IControllo* ControlloDaSelezionare, bool pieno) {
  if (auto v = LeggiColonna(cn, d, k, colonna, Valore(std::string()), pieno)) return *v;
  SegnalaInesistente(codice, Cancel, ControlloDaSelezionare, d.titolo);
  return Valore(std::string());
}

bool Esiste(Connessione& cn, const DefinizioneAnagrafica& d, const Chiavi& k, Valore* descrizione) {
  std::string colonna = d.descrizione.empty() ? d.chiavi.front().colonna : d.descrizione;
  auto v = LeggiColonna(cn, d, k, colonna);
  if (descrizione) *descrizione = v.value_or(Valore(std::string()));
  return v.has_value();
}

std::string MaxCodice(Connessione& cn, const DefinizioneAnagrafica& d, size_t chiave) {
  std::string col = Colonna(d, d.chiavi.at(chiave).colonna);
  auto rs = cn.Execute("SELECT " + col + " FROM [" + d.tabella + "] WHERE " + col + " IS NOT NULL ORDER BY " + col +
                       " DESC LIMIT 1;");
  if (rs.Eof()) return "000000";
  return Format(rs.Fields(0).Value(), "000000");
}

RecordValori Record(const std::vector<std::string>& nomi, const std::vector<Valore>& valori) {
  if (nomi.size() != valori.size())
    throw ErroreDb(3001, "Elenchi di campi e di valori di lunghezza diversa (" + std::to_string(nomi.size()) + " e " +
                             std::to_string(valori.size()) + ").");
  RecordValori r;
  for (size_t i = 0; i < nomi.size(); ++i) r[nomi[i]] = valori[i];
  return r;
}

}  // namespace vorn::anagrafiche
