#include "support/Azienda.h"

#include "frame/Globali.h"
#include "frame/Schema.h"
#include "interchange/ModelloStandard.h"

namespace vorn::test {

void AziendaTest::SetUp() {
  DbTest::SetUp();
  if (IsSkipped() || HasFatalFailure() || !cn) return;
  CreaSchema(*cn);
  G().ConnessioneGlobale = cn;
}

void AziendaStandardTest::SetUp() {
  AziendaTest::SetUp();
  if (IsSkipped() || HasFatalFailure() || !cn) return;
  CaricaModello(*cn, "standard");
  G().DecimaliImporti = 2;
}

}  // namespace vorn::test
