#include "masterdata/clsLocalita.h"

#include "frame/Comuni.h"
#include "frame/Globali.h"
#include "masterdata/FamigliaAnagrafiche.h"

namespace vorn {

bool clsLocalita::GetDatiLocalità(int32_t ID, Valore& Localita, Valore& Provincia, Valore& Cap) {
  const std::shared_ptr<Connessione>& propria = cn;
  const std::shared_ptr<Connessione>& conn = G().ConnessioneGlobale ? G().ConnessioneGlobale : propria;
  auto rs = anagrafiche::Conn(conn).Execute(
      "SELECT [Localita], [Provincia], [Cap] FROM [Localita] WHERE [ID] = ?;", {Valore(static_cast<long long>(ID))});
  Valore vuoto{std::string()};
  if (rs.Eof()) {
    Localita = Provincia = Cap = vuoto;
    return false;
  }
  Localita = LeggiCampo(rs("Localita"), vuoto);
  Provincia = LeggiCampo(rs("Provincia"), vuoto);
  Cap = LeggiCampo(rs("Cap"), vuoto);
  return true;
}

}  // namespace vorn
