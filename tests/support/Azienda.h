// The company fixture: a fresh database on the engine of the parameter with every table of the
// catalogue, empty, and the global connection set to it.
#pragma once
#include "support/Motori.h"

namespace vorn::test {

class AziendaTest : public DbTest {
 protected:
  void SetUp() override;
};

// The same company loaded from the standard model, its amounts with two decimals.
class AziendaStandardTest : public AziendaTest {
 protected:
  void SetUp() override;
};

}  // namespace vorn::test
