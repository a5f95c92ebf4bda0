#include "ledger/clsStoricoPrimaNota.h"

#include <array>

#include "frame/Comuni.h"

namespace vorn {

namespace {

constexpr std::array<const char*, 18> kColonne = {
    "IDProgressivo",    "SottocontoMovimento", "IndClientefornitore", "CodClientefornitore", "DataCompetenza",
    "NumeroRegistrazione", "DataDocumento",     "SerieDocumento",      "NumeroDocumento",     "CausaleContabile",
    "DescrizioneSuppleme", "DareAvere",         "ImportoMovimento",    "NumeroProtocollo",    "DataRegistrazione",
    "CodiceValuta",     "Cambio",              "ImportoValuta"};

std::array<Valore*, 18> Campi(RigaStorico& r) {
  return {&r.IDProgressivo,      &r.SottocontoMovimento, &r.IndClienteFornitore, &r.CodClienteFornitore,
          &r.DataCompetenza,     &r.NumeroRegistrazione, &r.DataDocumento,       &r.SerieDocumento,
          &r.NumeroDocumento,    &r.CausaleContabile,    &r.DescrizioneSuppleme, &r.DareAvere,
          &r.ImportoMovimento,   &r.NumeroProtocollo,    &r.DataRegistrazione,   &r.CodiceValuta,
          &r.Cambio,             &r.ImportoValuta};
}

// A key as a number: the filter never compares keys as text.
Valore Chiave(const Valore& v) { return Valore(static_cast<int64_t>(NullToZeroLng(v))); }

}  // namespace

bool clsStoricoPrimaNota::LocalizzaRecord(const Valore& IDProgressivo, RigaStorico& riga) {
  auto rs = cn->Apri("Storico Contabile", "[IDProgressivo] = ?", {Chiave(IDProgressivo)});
  if (rs.Eof()) return false;
  auto campi = Campi(riga);
  for (size_t i = 0; i < kColonne.size(); ++i) *campi[i] = rs(kColonne[i]).Value();
  return true;
}

bool clsStoricoPrimaNota::SalvaRecord(const RigaStorico& riga, const Valore& /*clientID*/, long /*hWnd*/,
                                      bool& Cancel) {
  Cancel = false;
  RigaStorico r = riga;
  auto campi = Campi(r);
  Atomico unita(*cn);
  auto rs = cn->Apri("Storico Contabile", "[IDProgressivo] = ?", {Chiave(r.IDProgressivo)});
  if (rs.Eof()) rs.AddNew();
  for (size_t i = 0; i < kColonne.size(); ++i) rs(kColonne[i]) = *campi[i];
  rs("IDProgressivo") = Chiave(r.IDProgressivo);
  rs.Update();
  unita.Conferma();
  return true;
}

bool clsStoricoPrimaNota::CancellaRecord(const Valore& IDProgressivo) {
  return cn->Esegui("DELETE FROM [Storico Contabile] WHERE [IDProgressivo] = ?", {Chiave(IDProgressivo)}) > 0;
}

bool clsStoricoPrimaNota::RecordSuccessivo(Valore& IDProgressivo) {
  Valore v = cn->Scalare("SELECT MIN([IDProgressivo]) FROM [Storico Contabile] WHERE [IDProgressivo] > ?",
                         {Chiave(IDProgressivo)});
  if (v.IsNull()) return false;
  IDProgressivo = v;
  return true;
}

bool clsStoricoPrimaNota::RecordPrecedente(Valore& IDProgressivo) {
  Valore v = cn->Scalare("SELECT MAX([IDProgressivo]) FROM [Storico Contabile] WHERE [IDProgressivo] < ?",
                         {Chiave(IDProgressivo)});
  if (v.IsNull()) return false;
  IDProgressivo = v;
  return true;
}

bool clsStoricoPrimaNota::ExistRegistrazione(const Valore& NumeroRegistrazione) {
  return !cn->Execute("SELECT 1 FROM [Storico Contabile] WHERE [NumeroRegistrazione] = ? LIMIT 1",
                      {Valore(TrimTesto(NumeroRegistrazione))})
              .Eof();
}

bool clsStoricoPrimaNota::AzzeraStoricoPrimaNota() {
  cn->Esegui("DELETE FROM [Storico Contabile]");
  return true;
}

int32_t clsStoricoPrimaNota::GetMaxIDProgressivoStoricoContabile() {
  return static_cast<int32_t>(NullToZeroLng(cn->Scalare("SELECT MAX([IDProgressivo]) FROM [Storico Contabile]")));
}

}  // namespace vorn
