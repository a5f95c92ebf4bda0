// Place names, with their province and postcode.
#pragma once
#include <cstdint>
#include <memory>

#include "frame/ConnessioneClasse.h"
#include "frame/Db.h"

namespace vorn {

class clsLocalita {
 public:
  ConnessioneClasse cn;

  // The place of that ID, read on the global connection (on `cn` when there is none); empty
  // text in the three outputs when there is no such place.
  bool GetDatiLocalità(int32_t ID, Valore& Localita, Valore& Provincia, Valore& Cap);
};

}  // namespace vorn
