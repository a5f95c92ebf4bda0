#include "support/Azienda.h"

#include "frame/Globali.h"
#include "frame/Schema.h"

namespace vorn::test {

void AziendaTest::SetUp() {
  DbTest::SetUp();
  if (IsSkipped() || HasFatalFailure() || !cn) return;
  CreaSchema(*cn);
  G().ConnessioneGlobale = cn;
}

}  // namespace vorn::test
