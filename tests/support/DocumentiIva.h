// VAT documents posted through the journal as the register and settlement commands find them,
// and the small readers of a command's output those tests share.
#pragma once
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "frame/Comuni.h"
#include "frame/Db.h"
#include "frame/Formato.h"
#include "ledger/clsPrimaNota.h"

namespace vorn::test {

// How many times `cosa` occurs in `testo`.
inline size_t Occorrenze(const std::string& testo, const std::string& cosa) {
  size_t n = 0;
  for (size_t p = testo.find(cosa); p != std::string::npos; p = testo.find(cosa, p + 1)) ++n;
  return n;
}

// The line of `testo` that holds `cosa`, or empty text.
inline std::string RigaCon(const std::string& testo, const std::string& cosa) {
  size_t p = testo.find(cosa);
  if (p == std::string::npos) return "";
  size_t inizio = testo.rfind('\n', p);
  inizio = inizio == std::string::npos ? 0 : inizio + 1;
  return testo.substr(inizio, testo.find('\n', p) - inizio);
}

// Tables of the database that are no company archive: what a run left behind.
inline std::vector<std::string> TabelleDiLavoro(Connessione& cn) {
  std::vector<std::string> v;
  for (const auto& t : cn.Tabelle())
    if (LCase(t).rfind("vorn", 0) == 0) v.push_back(t);
  return v;
}

struct RigaContoDoc {
  const char* lato;
  const char* conto;
  const char* importo;
  const char* ind = "";  // C or F on the client's or supplier's row
};
struct RigaIvaDoc {
  const char* lato;
  const char* conto;
  const char* codice;
  const char* imponibile;
  const char* imposta;
};
struct DocumentoIva {
  const char* numero;  // of the entry
  const char* data;
  const char* causale;
  const char* registroIva;  // TipoRegistroIva
  const char* numRegistro;  // NumRegistroIva
  long numeroDocumento;
  long protocollo;
  const char* totale;
  const char* cliFor;  // C or F
  const char* codiceCliFor;
};

// The document's account rows, then its VAT rows, saved one by one through the journal.
inline void RegistraDocumento(clsPrimaNota& pn, const DocumentoIva& d, const std::vector<RigaContoDoc>& righe,
                              const std::vector<RigaIvaDoc>& iva) {
  RecordValori base{{"DataRegistrazione", Valore(d.data)},
                    {"NumeroRegistrazione", Valore(d.numero)},
                    {"DataCompetenza", Valore(d.data)},
                    {"TipoRegistroIva", Valore(d.registroIva)},
                    {"NumRegistroIva", Valore(d.numRegistro)},
                    {"CodiceCausale", Valore(d.causale)},
                    {"DescrizioneSupplem", Valore("Documento " + std::to_string(d.numeroDocumento))},
                    {"Stringa10indicatori", Valore(std::string(10, ' '))},
                    {"Valuta", Valore("06")},
                    {"Cambio", Valore(1.0)},
                    {"DataDocumento", Valore(d.data)},
                    {"NumeroDocumento", Valore(static_cast<long long>(d.numeroDocumento))},
                    {"SerieDocumento", Valore("")},
                    {"NumeroDiProtocollo", Valore(static_cast<long long>(d.protocollo))},
                    {"TotaleDocumento", Valore(*Importo::DaTestoPunto(d.totale))},
                    {"DataCompetenzaIVA", Valore(d.data)}};
  bool cancel = false;
  int n = 0;
  for (const auto& r : righe) {
    RecordValori v = base;
    v["TipoRigaIvaNormale"] = Valore("");
    v["NumRigaAVideo"] = Valore(Format(Valore(++n), "000"));
    v["DareAvere"] = Valore(r.lato);
    v["ContoPrimaNota"] = Valore(r.conto);
    v["IndClienteFornitore"] = Valore(r.ind);
    v["CodClienteFornitore"] = Valore(*r.ind ? d.codiceCliFor : "");
    v["ImportoMovimento"] = Valore(*Importo::DaTestoPunto(r.importo));
    ASSERT_TRUE(pn.SalvaRecord(v, Valore("prova"), 1, cancel));
  }
  n = 0;
  for (const auto& r : iva) {
    RecordValori v = base;
    v["TipoRigaIvaNormale"] = Valore("I");
    v["NumRigaAVideo"] = Valore(Format(Valore(++n), "000"));
    v["DareAvere"] = Valore(r.lato);
    v["ContoPrimaNota"] = Valore(r.conto);
    v["ImportoMovimento"] = Valore(*Importo::DaTestoPunto(r.imposta));
    v["Imponibile"] = Valore(*Importo::DaTestoPunto(r.imponibile));
    v["CodiceIva"] = Valore(r.codice);
    v["IndicatoreCliFor"] = Valore(d.cliFor);
    v["CodiceCliFor"] = Valore(d.codiceCliFor);
    ASSERT_TRUE(pn.SalvaRecord(v, Valore("prova"), 1, cancel));
  }
}

}  // namespace vorn::test
