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

// The condition that a numeric key column holds no number.
std::string NumeroVuoto(const std::string& col) {
  return "(" + col + " IS NULL OR " + col + " = '' OR " + col + " = '0')";
}

}  // namespace

Connessione& Conn(const std::shared_ptr<Connessione>& cn) { return ConnessioneAssegnata(cn); }

Valore ValoreChiave(const ChiaveAnagrafica& c, const Valore& v) {
  // Text codes are compared and stored trimmed, as in every archive (FiltraCodice).
  if (c.tipo != TipoChiave::Numero) return Blank(v) ? Valore(std::string()) : Valore(v.TestoTrim());
  if (Blank(v)) return Valore(std::string());
  if (!v.IsNumeric()) throw ErroreDb(13, "Tipo non corrispondente: " + c.colonna + " = " + v.Testo());
  return Valore(NumeroInTesto(v));
}

std::string FiltroChiavi(const DefinizioneAnagrafica& d, const Chiavi& k, Parametri& p, bool pieno) {
  if (k.size() > d.chiavi.size()) throw ErroreDb(3001, "Troppe parti di chiave per " + d.tabella);
  FiltroCodice f;
  for (size_t i = 0; i < k.size(); ++i) {
    const auto& c = d.chiavi[i];
    std::string col = Colonna(d, c.colonna);
    if (pieno && i + 1 == k.size()) {
      // Only a value that is there: a blank one finds nothing.
      f.E("(" + col + " = ? AND NOT " + CodiceVuoto(col) + ")", {ValoreChiave(c, k[i])});
    } else if (c.tipo != TipoChiave::Numero) {
      f.Parte(col, k[i]);
    } else if (Blank(k[i])) {
      f.E(NumeroVuoto(col));
    } else {
      f.E("(" + col + " = ?)", {ValoreChiave(c, k[i])});
    }
  }
  p.insert(p.end(), f.p.begin(), f.p.end());
  return f.where;
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
  FiltroCodice entro;
  entro.where = FiltroChiavi(d, fissi, entro.p);
  if (!d.filtroPasso.empty()) entro.E("(" + d.filtroPasso + ")");
  Valore v = Trim(codice.Testo()).empty() ? Valore(std::string()) : ValoreChiave(c, codice);
  if (!PassoCodice(cn, d.tabella, c.colonna, v, avanti, entro)) return false;
  codice = v;
  return true;
}

namespace {
std::string SqlColonna(const DefinizioneAnagrafica& d, const Chiavi& k, std::string_view colonna, Parametri& p,
                       bool pieno) {
  std::string w = FiltroChiavi(d, k, p, pieno);
  return "SELECT " + Colonna(d, std::string(colonna)) + " FROM [" + d.tabella + "] WHERE " + w + " LIMIT 1;";
}
}  // namespace

std::optional<Valore> LeggiColonna(Connessione& cn, const DefinizioneAnagrafica& d, const Chiavi& k,
                                   std::string_view colonna, const Valore& predefinito, bool pieno) {
  Parametri p;
  auto rs = cn.Execute(SqlColonna(d, k, colonna, p, pieno), p);
  if (rs.Eof()) return std::nullopt;
  return LeggiCampo(rs.Fields(0), predefinito);
}

std::vector<std::optional<Valore>> LeggiColonnaDi(Connessione& cn, const DefinizioneAnagrafica& d,
                                                  const std::vector<Chiavi>& chiavi, std::string_view colonna,
                                                  const Valore& predefinito) {
  std::vector<std::pair<std::string, Parametri>> letture;
  letture.reserve(chiavi.size());
  for (const auto& k : chiavi) {
    Parametri p;
    std::string sql = SqlColonna(d, k, colonna, p, false);
    letture.emplace_back(std::move(sql), std::move(p));
  }
  std::vector<std::optional<Valore>> valori;
  valori.reserve(chiavi.size());
  if (letture.empty()) return valori;
  for (auto& r : cn.EseguiInsieme(letture)) {
    if (r.rs.Eof()) valori.emplace_back(std::nullopt);
    else valori.emplace_back(LeggiCampo(r.rs.Fields(0), predefinito));
  }
  return valori;
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
