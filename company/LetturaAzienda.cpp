#include "company/LetturaAzienda.h"

#include <algorithm>
#include <utility>

#include "frame/Comuni.h"
#include "frame/VornServer.h"

namespace vorn::azienda {

Valore LeggiCampoAz(Recordset& rs, std::string_view colonna, const Valore& predefinito) {
  Campo& c = rs.Fields(colonna);
  const Valore& v = c.Value();
  if (v.IsNull()) return predefinito;
  if (TipoCarattere(c.TypeNumber()) || v.IsText()) return Valore(Trim(v.Testo()));
  return v;
}

int InteroDi(const Valore& v) {
  if (auto i = v.ComeIntero()) return static_cast<int>(*i);
  return static_cast<int>(Val(v.Testo()));
}

double DoubleDi(const Valore& v) {
  if (auto d = v.ComeDouble()) return *d;
  return Val(v.Testo());
}

std::string PrimiCaratteri(const std::string& s, size_t n) {
  size_t i = 0, contati = 0;
  while (i < s.size() && contati < n) {
    unsigned char c = static_cast<unsigned char>(s[i]);
    size_t l = c < 0x80 ? 1 : (c >> 5) == 6 ? 2 : (c >> 4) == 14 ? 3 : (c >> 3) == 30 ? 4 : 1;
    i += l;
    ++contati;
  }
  return s.substr(0, std::min(i, s.size()));
}

Recordset ApriRigaUnica(Connessione& cn, const std::string& tabella) {
  return cn.Execute("SELECT [" + tabella + "].* FROM [" + tabella + "] LIMIT 1;");
}

Recordset LeggiProtetto(Connessione& cn, const std::string& sql) {
  if (!cn.InTransazione()) return cn.Execute(sql);
  Atomico a(cn);
  Recordset rs = cn.Execute(sql);
  a.Conferma();
  return rs;
}

void ScriviRiga(Connessione& cn, const std::string& tabella, const std::string& where, const Parametri& p,
                const Valore& clientID, long hWnd, const std::function<void(Recordset&)>& assegna,
                const std::function<void(Recordset&)>& nuova) {
  Recordset rs = cn.Apri(tabella, where, p);
  if (rs.Eof()) {
    rs.AddNew();
    if (nuova) nuova(rs);
  }
  assegna(rs);
  MarcaRecord(rs, clientID, hWnd);
  rs.Update();
  rs.Close();
}

bool SalvaRigaUnica(Connessione& cn, const std::string& tabella, const std::vector<std::string>& colonne,
                    const std::map<std::string, Valore>& valori, const Valore& clientID, long hWnd, bool& Cancel) {
  auto daScrivere = ColonneDaScrivere(valori, colonne, [&](const std::string& nome) {
    return "Colonna non prevista nel salvataggio di " + tabella + ": " + nome;
  });
  return SalvaRecordProtocollo(cn, tabella, {}, {}, clientID, hWnd, Cancel, [&](Recordset& rs, bool) {
    for (const auto& [nome, valore] : daScrivere) rs(nome) = valore;
  });
}

}  // namespace vorn::azienda
