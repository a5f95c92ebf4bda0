#include "frame/Globali.h"

namespace vorn {

Globali& G() {
  static Globali g;
  return g;
}

void AzzeraGlobali() { G() = Globali{}; }

}  // namespace vorn
