#include "vat/clsDatiIVA.h"

#include "company/PresaNumero.h"
#include "frame/Comuni.h"
#include "frame/VornServer.h"

namespace vorn {

namespace {

constexpr const char* kTabella = "DatiIVA";
constexpr const char* kOrdine = "[DatiIVA].[anno], [DatiIVA].[Mese]";

ChiaveComposta Chiave(const Valore& anno, const Valore& Mese) {
  ChiaveComposta k(kTabella);
  k.Numero("anno", anno).Numero("Mese", Mese);
  return k;
}

FiltroChiave FiltroAnno(const Valore& anno) {
  FiltroChiave f;
  f.Numero("[DatiIVA].[anno]", anno);
  return f;
}

}  // namespace

const std::vector<std::string>& clsDatiIVA::ColonneSalvaRecord() {
  static const std::vector<std::string> c = {
      "trimestre",          "Subfornitura",            "EventiEccezionali",       "TotaleOperazioniAttive",
      "TotaleOperazioniPassive", "IVAEsigibile",       "IVADetratta",             "IVADovuta",
      "IVACredito",         "DebitoPrecedente",        "CreditoPeriodoPrecedente", "CreditoAnnoPrecedente",
      "VersamentiAutoUE",   "CreditiImposta",          "InteressiDovuti",         "Acconto",
      "ImportoDaVersare",   "ImportoACredito"};
  return c;
}

bool clsDatiIVA::LocalizzaRecordPerAnno(Recordset& T, const Valore& anno, const Valore& clientID, long hWnd) {
  FiltroChiave f = FiltroAnno(anno);
  T = cn->Apri(kTabella, f.Where(), f.Valori(), kOrdine);
  if (T.Eof()) return false;
  MarcaRecordset(T, clientID, hWnd);
  return true;
}

bool clsDatiIVA::LocalizzaRecordPerTrimestre(Recordset& T, const Valore& anno, const Valore& trimestre) {
  FiltroChiave f = FiltroAnno(anno);
  f.Numero("[DatiIVA].[trimestre]", trimestre);
  T = cn->Apri(kTabella, f.Where(), f.Valori(), kOrdine);
  return !T.Eof();
}

bool clsDatiIVA::LocalizzaRecord(Recordset& T, const Valore& anno, const Valore& Mese, const Valore& clientID,
                                 long hWnd) {
  FiltroChiave f = Chiave(anno, Mese).Filtro();
  return LocalizzaRecordProtocollo(*cn, T, kTabella, f.Where(), f.Valori(), clientID, hWnd);
}

Valore clsDatiIVA::VerificaCambiamentiAltriUtenti() { return Valore(); }

bool clsDatiIVA::SalvaRecord(const Valore& anno, const Valore& Mese, const RecordValori& valori,
                             const Valore& clientID, long hWnd, bool& Cancel, bool NoPrompt) {
  // Every name is checked before the row is touched, so that a bad record writes nothing.
  auto daScrivere = ColonneDaScrivere(valori, ColonneSalvaRecord(), [](const std::string& nome) {
    return "DatiIVA: colonna sconosciuta \"" + nome + "\"";
  });
  ChiaveComposta k = Chiave(anno, Mese);
  FiltroChiave f = k.Filtro();
  return SalvaRecordProtocollo(
      *cn, kTabella, f.Where(), f.Valori(), clientID, hWnd, Cancel,
      [&](Recordset& rs, bool nuovo) {
        if (nuovo) k.Scrivi(rs);
        for (const auto& [colonna, valore] : daScrivere) rs(colonna) = valore;
      },
      !NoPrompt);
}

double clsDatiIVA::CancellaRecord(const Valore& anno, const Valore& Mese) {
  FiltroChiave f = Chiave(anno, Mese).Filtro();
  return static_cast<double>(cn->Esegui("DELETE FROM [DatiIVA] WHERE " + f.Where(), f.Valori()));
}

double clsDatiIVA::CancellaRecordPerAnno(const Valore& anno) {
  FiltroChiave f = FiltroAnno(anno);
  return static_cast<double>(cn->Esegui("DELETE FROM [DatiIVA] WHERE " + f.Where(), f.Valori()));
}

}  // namespace vorn
