#include "company/clsProgrNumerazione.h"

#include "company/LetturaAzienda.h"
#include "company/PresaNumero.h"
#include "frame/Comuni.h"
#include "frame/VornServer.h"

namespace vorn {

namespace {

constexpr const char* kTabella = "Progressivi Numerazione Vorn";
const Valore kProtocollo("2");
const Valore kDepositoContabile("000");

ChiaveComposta Chiave(const Valore& TipoRegistro, const Valore& IndOrdiniImpegni, const Valore& NumeroRegistro,
                  const Valore& Deposito, const Valore& SerieDocumento) {
  ChiaveComposta k(kTabella);
  k.Testo("TipoRegistro", TipoRegistro)
      .Testo("IndOrdiniImpegni", IndOrdiniImpegni)
      .Testo("NumeroRegistro", NumeroRegistro)
      .Testo("Deposito", Deposito)
      .Testo("SerieDocumento", SerieDocumento);
  return k;
}

// A register of the ledger: no orders indicator, depot "000".
ChiaveComposta ChiaveContabile(const Valore& TipoRegistro, const Valore& NumeroRegistro, const Valore& SerieDocumento) {
  return Chiave(TipoRegistro, Valore(""), NumeroRegistro, kDepositoContabile, SerieDocumento);
}

Recordset Leggi(Connessione& cn, const ChiaveComposta& k) {
  FiltroChiave f = k.Filtro();
  return cn.Execute("SELECT * FROM [Progressivi Numerazione Vorn] WHERE " + f.Where(), f.Valori());
}

Valore NumeroSuccessivo(Connessione& cn, const ChiaveComposta& k) {
  Recordset rs = Leggi(cn, k);
  if (rs.Eof()) return Valore(1);
  int64_t ultimo = NullToZeroLng(LeggiCampo(rs("NumeroUltimoDoc"), Valore(0)));
  return Valore(static_cast<long long>(ultimo + 1));
}

int32_t Prendi(Connessione& cn, const ChiaveComposta& k) {
  FiltroChiave f = k.Filtro();
  Contatore c;
  c.tabella = kTabella;
  c.colonna = "NumeroUltimoDoc";
  c.where = f.Where();
  c.parametri = f.Valori();
  c.nuovaRiga = k.Colonne();
  return PrendiNumero(cn, c);
}

}  // namespace

bool clsProgrNumerazione::LocalizzaRecord(Recordset& T, const Valore& TipoRegistro, const Valore& IndOrdiniImpegni,
                                          const Valore& NumeroRegistro, const Valore& Deposito,
                                          const Valore& SerieDocumento, const Valore& clientID, long hWnd) {
  FiltroChiave f = Chiave(TipoRegistro, IndOrdiniImpegni, NumeroRegistro, Deposito, SerieDocumento).Filtro();
  return LocalizzaRecordProtocollo(*cn, T, kTabella, f.Where(), f.Valori(), clientID, hWnd);
}

bool clsProgrNumerazione::LocalizzaTuttiRecord(Recordset& T) {
  T = cn->Execute(
      "SELECT * FROM [Progressivi Numerazione Vorn] ORDER BY [TipoRegistro], [IndOrdiniImpegni], [NumeroRegistro], "
      "[Deposito], [SerieDocumento]");
  return !T.Eof();
}

bool clsProgrNumerazione::SalvaRecord(const Valore& TipoRegistro, const Valore& IndOrdiniImpegni,
                                      const Valore& NumeroRegistro, const Valore& Deposito,
                                      const Valore& SerieDocumento, const Valore& NumeroUltimoDoc,
                                      const Valore& DataUltimoDoc, const Valore& NumeroUltimoDocBollato,
                                      const Valore& clientID, long hWnd, bool& Cancel) {
  ChiaveComposta k = Chiave(TipoRegistro, IndOrdiniImpegni, NumeroRegistro, Deposito, SerieDocumento);
  FiltroChiave f = k.Filtro();
  return SalvaRecordProtocollo(*cn, kTabella, f.Where(), f.Valori(), clientID, hWnd, Cancel,
                               [&](Recordset& rs, bool) {
                                 k.Scrivi(rs);
                                 rs("NumeroUltimoDoc") = NumeroUltimoDoc;
                                 rs("DataUltimoDoc") = DataUltimoDoc;
                                 rs("NumeroUltimoDocBollato") = NumeroUltimoDocBollato;
                               });
}

bool clsProgrNumerazione::CancellaRecord(const Valore& TipoRegistro, const Valore& IndOrdiniImpegni,
                                         const Valore& NumeroRegistro, const Valore& Deposito,
                                         const Valore& SerieDocumento) {
  FiltroChiave f = Chiave(TipoRegistro, IndOrdiniImpegni, NumeroRegistro, Deposito, SerieDocumento).Filtro();
  cn->Esegui("DELETE FROM [Progressivi Numerazione Vorn] WHERE " + f.Where(), f.Valori());
  return true;
}

Valore clsProgrNumerazione::GetNumeroNuovoProtocollo(const Valore& NumeroRegistro) {
  return NumeroSuccessivo(*cn, ChiaveContabile(kProtocollo, NumeroRegistro, Valore("")));
}

Valore clsProgrNumerazione::GetNumeroNuovoDocumento(const Valore& TipoRegistro, const Valore& NumeroRegistro,
                                                    const Valore& SerieDocumento) {
  return NumeroSuccessivo(*cn, ChiaveContabile(TipoRegistro, NumeroRegistro, SerieDocumento));
}

std::string clsProgrNumerazione::GetDataUltimoDocumento(const Valore& TipoRegistro, const Valore& NumeroRegistro,
                                                        const Valore& SerieDocumento) {
  Recordset rs = Leggi(*cn, ChiaveContabile(TipoRegistro, NumeroRegistro, SerieDocumento));
  if (rs.Eof() || rs("DataUltimoDoc").IsNull()) return {};
  return FormattaCampo(rs("DataUltimoDoc"), Valore(""));
}

bool clsProgrNumerazione::AzzeraProgressiviNumerazione() {
  cn->Esegui("DELETE FROM [Progressivi Numerazione Vorn]");
  return true;
}

bool clsProgrNumerazione::AzzeraNumerazioneDocumentiStampati() {
  cn->Esegui("UPDATE [Progressivi Numerazione Vorn] SET [NumeroUltimoDocBollato] = 0");
  return true;
}

bool clsProgrNumerazione::SalvaNumeroUltimoDocBollato(const Valore& TipoRegistro, const Valore& NumeroRegistro,
                                                      const Valore& SerieDocumento,
                                                      const Valore& NumeroUltimoDocBollato, const Valore& clientID,
                                                      long hWnd) {
  ChiaveComposta k = ChiaveContabile(TipoRegistro, NumeroRegistro, SerieDocumento);
  FiltroChiave f = k.Filtro();
  azienda::ScriviRiga(
      *cn, kTabella, f.Where(), f.Valori(), clientID, hWnd,
      [&](Recordset& rs) { rs("NumeroUltimoDocBollato") = NumeroUltimoDocBollato; },
      [&](Recordset& rs) {
        k.Scrivi(rs);
        rs("NumeroUltimoDoc") = NumeroUltimoDocBollato;
      });
  return true;
}

int32_t clsProgrNumerazione::PrendiNumeroProtocollo(const Valore& NumeroRegistro) {
  return Prendi(*cn, ChiaveContabile(kProtocollo, NumeroRegistro, Valore("")));
}

int32_t clsProgrNumerazione::PrendiNumeroDocumento(const Valore& TipoRegistro, const Valore& NumeroRegistro,
                                                   const Valore& SerieDocumento) {
  return Prendi(*cn, ChiaveContabile(TipoRegistro, NumeroRegistro, SerieDocumento));
}

}  // namespace vorn
