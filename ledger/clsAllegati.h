// The archive of the customer and supplier lists ([Allegati]).
#pragma once
#include "frame/ConnessioneClasse.h"

namespace vorn {

class clsAllegati {
 public:
  ConnessioneClasse cn;
  // Deletes the progressives of the lists: the rows of kind "AL" and "A2". The rows deleted.
  long AzzeraProgressiviAllegati();
};

}  // namespace vorn
