// A class used before the client gives it a connection: one clear error, never a crash.
#include <gtest/gtest.h>

#include <functional>
#include <string>

#include "company/clsParametriAzienda.h"
#include "company/clsProgAzienda.h"
#include "ledger/clsCausaliContabili.h"
#include "ledger/clsPianoConti.h"
#include "ledger/clsRicosContabile.h"
#include "ledger/clsSaldiContabili.h"
#include "ledger/clsStampaMastrini.h"
#include "masterdata/clsClientiFornitori.h"
#include "masterdata/clsCodiciIva.h"
#include "masterdata/clsNazioni.h"
#include "masterdata/clsZone.h"

using namespace vorn;

namespace {

std::string Errore(const std::function<void()>& f) {
  try {
    f();
  } catch (const ErroreDb& e) {
    return std::to_string(e.Numero()) + " " + e.what();
  }
  return "(nessun errore)";
}

TEST(ConnessioneClasse, EveryClassWithoutItsConnectionGivesTheSameClearError) {
  const std::string atteso = "3709 La connessione non è stata assegnata alla classe (cn).";
  clsCodiciIva iva;
  clsPianoConti piano;
  clsCausaliContabili causali;
  clsSaldiContabili saldi;
  clsProgAzienda prog;
  clsParametriAzienda parametri;
  clsRicosContabile ricostruzione;
  clsStampaMastrini stampa;
  clsClientiFornitori clienti;
  clsNazioni nazioni;
  clsZone zone;
  Valore codice("22");
  EXPECT_EQ(Errore([&] { iva.GetAliquotaIva(codice); }), atteso);
  EXPECT_EQ(Errore([&] { iva.RecordSuccessivo(codice); }), atteso);
  EXPECT_EQ(Errore([&] { piano.ExistRecord(Valore("01"), Valore(""), Valore("")); }), atteso);
  Valore g("01"), c(""), s("");
  EXPECT_EQ(Errore([&] { piano.RecordSuccessivo(g, c, s); }), atteso);
  EXPECT_EQ(Errore([&] { causali.GetDescrizioneCausale(codice); }), atteso);
  EXPECT_EQ(Errore([&] { causali.RecordPrecedente(codice); }), atteso);
  EXPECT_EQ(Errore([&] { saldi.GetSaldoSottocontoAData(Valore(""), Valore("1501001")); }), atteso);
  EXPECT_EQ(Errore([&] { prog.GetDataUltimoScaricoPrimaNota(); }), atteso);
  EXPECT_EQ(Errore([&] { parametri.GetIndClienteFornitore(Valore("1501001")); }), atteso);
  EXPECT_EQ(Errore([&] { ricostruzione.AzzeraSaldiPianoConti(); }), atteso);
  EXPECT_EQ(Errore([&] { stampa.GetRagioneSocialeCliFor(Valore("C"), Valore("000001")); }), atteso);
  EXPECT_EQ(Errore([&] { clienti.GetSottocontoCliFor(Valore("C"), Valore("000001")); }), atteso);
  EXPECT_EQ(Errore([&] { nazioni.ExistCodice(Valore("IT")); }), atteso);
  EXPECT_EQ(Errore([&] { zone.RecordSuccessivo(codice); }), atteso);
  // A connection handed from one class to another travels with it, also when it is none.
  clsSaldiContabili altri;
  altri.cn = saldi.cn;
  EXPECT_FALSE(altri.cn);
  EXPECT_EQ(Errore([&] { altri.GetSaldoUltimoScaricoSottoconto(Valore("1501001")); }), atteso);
}

}  // namespace
