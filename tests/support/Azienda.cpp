#include "support/Azienda.h"

#include <utility>

#include "frame/Formato.h"
#include "frame/Globali.h"
#include "frame/Schema.h"
#include "interchange/ModelloStandard.h"
#include "ledger/clsPrimaNota.h"

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

void Giroconto(clsPrimaNota& pn, const char* numero, const char* data, const char* dare, const char* avere,
               const char* importo) {
  bool cancel = false;
  int n = 0;
  for (auto [lato, conto] : {std::pair{"D", dare}, std::pair{"A", avere}}) {
    RecordValori v{{"DataRegistrazione", Valore(data)},   {"NumeroRegistrazione", Valore(numero)},
                   {"DataCompetenza", Valore(data)},      {"CodiceCausale", Valore("GIR")},
                   {"TipoRigaIvaNormale", Valore("")},    {"NumRigaAVideo", Valore(Format(Valore(++n), "000"))},
                   {"DareAvere", Valore(lato)},           {"ContoPrimaNota", Valore(conto)},
                   {"Stringa10indicatori", Valore("")},   {"Cambio", Valore(1.0)},
                   {"ImportoMovimento", Valore(*Importo::DaTestoPunto(importo))}};
    ASSERT_TRUE(pn.SalvaRecord(v, Valore("prova"), 1, cancel));
  }
}

}  // namespace vorn::test
