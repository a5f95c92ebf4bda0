#include "masterdata/clsCausaliMagazzino.h"

#include "frame/Comuni.h"
#include "masterdata/FamigliaAnagrafiche.h"

namespace vorn {

Valore clsCausaliMagazzino::GetControparteCausale(const Valore& codice_causale) {
  auto rs = anagrafiche::Conn(cn).Execute(
      "SELECT [Causali di Magazzino].[Controparte] FROM [Causali di Magazzino] "
      "WHERE [Causali di Magazzino].[Codice Causale] = ?;",
      {codice_causale});
  if (rs.Eof()) return Valore("N");
  return LeggiCampo(rs.Fields(0), Valore("N"));
}

}  // namespace vorn
