// The company fixture: a fresh database on the engine of the parameter with every table of the
// catalogue, empty, and the global connection set to it.
#pragma once
#include "support/Motori.h"

namespace vorn {
class clsPrimaNota;
}

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

// A giro entry of two rows (causal GIR) through SalvaRecord: `dare` in debit and `avere` in
// credit for `importo` ("1234.56"), on the date given ("dd/mm/yyyy").
void Giroconto(clsPrimaNota& pn, const char* numero, const char* data, const char* dare, const char* avere,
               const char* importo);

}  // namespace vorn::test
