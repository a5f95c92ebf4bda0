#include "company/clsImportiFissi.h"

#include "company/LetturaAzienda.h"
#include "frame/Comuni.h"
#include "frame/VornServer.h"

namespace vorn {

using namespace azienda;

namespace {

constexpr const char* kImportiFissi = "Importi Fissi";

}  // namespace

bool clsImportiFissi::LocalizzaRecord(Recordset& T, const Valore& clientID, long hWnd) {
  return LocalizzaRecordProtocollo(*cn, T, kImportiFissi, {}, {}, clientID, hWnd);
}

const std::vector<std::string>& clsImportiFissi::ColonneSalvaRecord() {
  static const std::vector<std::string> c = [] {
    std::vector<std::string> v;
    for (int i = 1; i <= 10; ++i) {
      v.push_back("Fino a " + std::to_string(i));
      v.push_back("Importo " + std::to_string(i));
    }
    for (const char* n : {"Bollo tratta italiana", "Bollo tratta estera", "Arrotondamento bollo tratta",
                          "Valore minimo bollo tratta", "Bollo fattura esente", "Importo minimo fattura",
                          "ImportoMinLiqIva", "PercCalcoloAcconto", "ImportoMinAcconto", "PercMaggTrim",
                          "PercForfSemp"})
      v.push_back(n);
    return v;
  }();
  return c;
}

bool clsImportiFissi::SalvaRecord(const std::map<std::string, Valore>& valori, const Valore& clientID, long hWnd,
                                  bool& Cancel) {
  return SalvaRigaUnica(*cn, kImportiFissi, ColonneSalvaRecord(), valori, clientID, hWnd, Cancel);
}

bool clsImportiFissi::GetImportiFissiLiquidazioneIva(double& PercCalcoloAcconto, Importo& ImportoMinAcconto,
                                                     Importo& ImportoMinLiqIva) {
  PercCalcoloAcconto = 0;
  ImportoMinAcconto = Importo();
  ImportoMinLiqIva = Importo();
  Recordset rs = ApriRigaUnica(*cn, kImportiFissi);
  if (rs.Eof()) return false;
  PercCalcoloAcconto = NullToZeroDbl(rs("PercCalcoloAcconto").Value());
  ImportoMinAcconto = NullToZeroCy(rs("ImportoMinAcconto").Value());
  ImportoMinLiqIva = NullToZeroCy(rs("ImportoMinLiqIva").Value());
  rs.Close();
  return true;
}

bool clsImportiFissi::GetImportiFissiLiquidazioneIva2(double& PercMaggTrim, double& PercForfSemp) {
  PercMaggTrim = 0;
  PercForfSemp = 0;
  Recordset rs = ApriRigaUnica(*cn, kImportiFissi);
  if (rs.Eof()) return false;
  PercMaggTrim = NullToZeroDbl(rs("PercMaggTrim").Value());
  PercForfSemp = NullToZeroDbl(rs("PercForfSemp").Value());
  rs.Close();
  return true;
}

}  // namespace vorn
