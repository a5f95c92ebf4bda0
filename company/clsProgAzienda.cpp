#include "company/clsProgAzienda.h"

#include <limits>

#include "company/LetturaAzienda.h"
#include "company/PresaNumero.h"
#include "company/clsParametriAzienda.h"
#include "frame/Catalogo.h"
#include "frame/Comuni.h"
#include "frame/VornServer.h"

namespace vorn {

using namespace azienda;

namespace {

constexpr const char* kProgressivi = "Progressivi Azienda Vorn";
constexpr const char* kScadenze = "Progressivi Scadenze";

Valore ImportoOZero(Recordset& rs, const char* colonna) { return Valore(NullToZeroCy(rs(colonna).Value())); }

Valore DataOVuoto(Recordset& rs, const char* colonna) { return LeggiCampoAz(rs, colonna, Valore("")); }

// The stored counter plus one, as a 32-bit number.
int32_t PiuUno(const Valore& stored) {
  int64_t n = NullToZeroLng(stored);
  if (n >= std::numeric_limits<int32_t>::max()) throw ErroreDb(6, "Overflow: " + stored.Testo());
  return static_cast<int32_t>(n + 1);
}

// The reading of a counter of [Progressivi Scadenze]: 1 without the row.
int32_t ProgressivoPartite(Connessione& cn, const std::string& sql) {
  Recordset rs = LeggiProtetto(cn, sql);
  if (rs.Eof()) return 1;
  return PiuUno(LeggiCampoAz(rs, "ProgressivoPartite", Valore(0)));
}

// The counters' old update: it assigns the text of an expression instead of its value, which
// the numeric column refuses before anything is written.
bool AggiornaPartiteComeSempre(Connessione& cn, const char* indicatore, const Valore& clientID, long hWnd) {
  ScriviRiga(cn, kScadenze, "[Progressivi Scadenze].IndicatoreFisso = ?", {Valore(indicatore)}, clientID, hWnd,
             [](Recordset& rs) { rs("ProgressivoPartite") = Valore(" & ProgressivoPartite"); });
  return true;
}

}  // namespace

bool clsProgAzienda::LocalizzaRecord(Recordset& T, const Valore& clientID, long hWnd) {
  return LocalizzaRecordProtocollo(*cn, T, kProgressivi, {}, {}, clientID, hWnd);
}

const std::vector<std::string>& clsProgAzienda::ColonneSalvaRecord() {
  static const std::vector<std::string> c = {
      "DataAperturaBilancio",   "UltimaStampaGiornale",   "UltimaLiquidazioneIva",  "UltimoScaricoPN",
      "NumRigaLibroGiornale",   "ProgDareLibroGiornale",  "ProgAvereLibroGiornale", "CreditoIVAInizioAnno",
      "CodIvaPerPrec",          "NumClientiInAllegato",   "ImpClientiInAllegato",   "NumFornitoriInAllegato",
      "ImpFornitoriInAllegato", "UltimaRegistrazionePN",  "PlafondIvaIniziale",     "PlafondIvaResiduo",
      "ProgressivoXMovimenti",  "UltimoAzzStorico",       "DebitoIvaAnnoPrec",      "ImpIVACalcoloAcconto",
      "AcqIntraPerPrecedente",  "AcqIntraEserPrecedente", "UltimaRettificaIntra",   "InizioAnnoFiscale",
      "DataUltimoVersamento",   "ValoreTotImpComp",       "CreditoIVAInizioAnnoUt", "DataInizioPNValida",
      "DataFinePNValida",       "DataUltimoCalcoloAmm",   "DataUltimoLibroCespiti"};
  return c;
}

bool clsProgAzienda::SalvaRecord(const RecordValori& valori, const Valore& clientID, long hWnd, bool& Cancel) {
  return SalvaRigaUnica(*cn, kProgressivi, ColonneSalvaRecord(), valori, clientID, hWnd, Cancel);
}

bool clsProgAzienda::AggiornaRiga(const Valore& clientID, long hWnd, const std::function<void(Recordset&)>& assegna) {
  ScriviRiga(*cn, kProgressivi, {}, {}, clientID, hWnd, assegna);
  return true;
}

Valore clsProgAzienda::DataSingola(const char* colonna) {
  auto rs = ApriRigaUnica(*cn, kProgressivi);
  if (rs.Eof()) return Valore("");
  return DataOVuoto(rs, colonna);
}

// ---------------------------------------------------------------- history

int32_t clsProgAzienda::GetNumeroUltimaRegStorico() {
  auto rs = ApriRigaUnica(*cn, kProgressivi);
  if (rs.Eof()) return 0;
  return NullToZeroLng(rs("ProgressivoXMovimenti").Value());
}

bool clsProgAzienda::AggiornaNumeroUltimaRegStorico(const Valore& ProgressivoXMovimenti, const Valore& clientID,
                                                    long hWnd) {
  return AggiornaRiga(clientID, hWnd, [&](Recordset& rs) {
    Importo memorizzato = NullToZeroCy(rs("ProgressivoXMovimenti").Value());
    if (NullToZeroCy(ProgressivoXMovimenti) > memorizzato) rs("ProgressivoXMovimenti") = ProgressivoXMovimenti;
  });
}

// ---------------------------------------------------------------- [Progressivi Scadenze]

int32_t clsProgAzienda::GetProgressivoScadenze() {
  return ProgressivoPartite(*cn,
                            "SELECT [Progressivi Scadenze].ProgressivoPartite FROM [Progressivi Scadenze] "
                            "WHERE [Progressivi Scadenze].IndicatoreFisso)='SCA';");
}

int32_t clsProgAzienda::GetProgressivoDocumenti() {
  return ProgressivoPartite(*cn,
                            "SELECT [Progressivi Scadenze].ProgressivoPartite FROM [Progressivi Scadenze] "
                            "WHERE [Progressivi Scadenze].IndicatoreFisso='DOC';");
}

bool clsProgAzienda::AggiornaProgressivoScadenze(const Valore& /*ProgressivoPartite*/, const Valore& clientID,
                                                 long hWnd) {
  return AggiornaPartiteComeSempre(*cn, "SCA", clientID, hWnd);
}

bool clsProgAzienda::AggiornaProgressivoDocumenti(const Valore& /*ProgressivoPartite*/, const Valore& clientID,
                                                  long hWnd) {
  return AggiornaPartiteComeSempre(*cn, "DOC", clientID, hWnd);
}

// ---------------------------------------------------------------- journal book

bool clsProgAzienda::AggiornaProgressiviLibroGiornale(const Valore& UltimaStampaGiornale,
                                                      const Valore& NumRigaLibroGiornale,
                                                      const Valore& ProgDareLibroGiornale,
                                                      const Valore& ProgAvereLibroGiornale, const Valore& clientID,
                                                      long hWnd) {
  return AggiornaRiga(clientID, hWnd, [&](Recordset& rs) {
    rs("UltimaStampaGiornale") = UltimaStampaGiornale;
    rs("NumRigaLibroGiornale") = NumRigaLibroGiornale;
    rs("ProgDareLibroGiornale") = ProgDareLibroGiornale;
    rs("ProgAvereLibroGiornale") = ProgAvereLibroGiornale;
  });
}

bool clsProgAzienda::GetProgressiviLibroGiornale(Valore& UltimaStampaGiornale, Valore& NumRigaLibroGiornale,
                                                 Valore& ProgDareLibroGiornale, Valore& ProgAvereLibroGiornale) {
  auto rs = ApriRigaUnica(*cn, kProgressivi);
  if (rs.Eof()) {
    UltimaStampaGiornale = Valore("");
    NumRigaLibroGiornale = Valore(0);
    ProgDareLibroGiornale = Valore(Importo());
    ProgAvereLibroGiornale = Valore(Importo());
    return false;
  }
  UltimaStampaGiornale = DataOVuoto(rs, "UltimaStampaGiornale");
  NumRigaLibroGiornale = Valore(NullToZeroLng(rs("NumRigaLibroGiornale").Value()));
  ProgDareLibroGiornale = ImportoOZero(rs, "ProgDareLibroGiornale");
  ProgAvereLibroGiornale = ImportoOZero(rs, "ProgAvereLibroGiornale");
  return true;
}

// ---------------------------------------------------------------- VAT settlement

bool clsProgAzienda::GetProgressiviLiquidazioneIva(Valore& DebitoIvaAnnoPrec, Valore& ImpIVACalcoloAcconto,
                                                   Valore& UltimaLiquidazioneIva, Valore& CreditoIVAInizioAnno,
                                                   Valore& CreditoIVAInizioAnnoUt, Valore& CodIvaPerPrec,
                                                   Valore& PlafondIvaIniziale, Valore& PlafondIvaResiduo,
                                                   Valore& ValoreTotImpComp) {
  struct Uscita {
    Valore* v;
    const char* colonna;
  };
  const Uscita importi[] = {{&DebitoIvaAnnoPrec, "DebitoIvaAnnoPrec"},
                            {&ImpIVACalcoloAcconto, "ImpIVACalcoloAcconto"},
                            {&CreditoIVAInizioAnno, "CreditoIVAInizioAnno"},
                            {&CreditoIVAInizioAnnoUt, "CreditoIVAInizioAnnoUt"},
                            {&CodIvaPerPrec, "CodIvaPerPrec"},
                            {&PlafondIvaIniziale, "PlafondIvaIniziale"},
                            {&PlafondIvaResiduo, "PlafondIvaResiduo"},
                            {&ValoreTotImpComp, "ValoreTotImpComp"}};
  auto rs = ApriRigaUnica(*cn, kProgressivi);
  if (rs.Eof()) {
    for (const auto& u : importi) *u.v = Valore(Importo());
    UltimaLiquidazioneIva = Valore("");
    return false;
  }
  for (const auto& u : importi) *u.v = ImportoOZero(rs, u.colonna);
  UltimaLiquidazioneIva = DataOVuoto(rs, "UltimaLiquidazioneIva");
  return true;
}

bool clsProgAzienda::AggiornaProgressiviLiquidazioneIva(const Valore& UltimaLiquidazioneIva,
                                                        const Valore& PlafondIvaResiduo, const Valore& CodIvaPerPrec,
                                                        const Valore& CreditoIVAInizioAnnoUt,
                                                        const Valore& ValoreTotImpComp, const Valore& clientID,
                                                        long hWnd) {
  return AggiornaRiga(clientID, hWnd, [&](Recordset& rs) {
    rs("UltimaLiquidazioneIva") = UltimaLiquidazioneIva;
    rs("PlafondIvaResiduo") = PlafondIvaResiduo;
    rs("CodIvaPerPrec") = CodIvaPerPrec;
    rs("CreditoIVAInizioAnnoUt") = CreditoIVAInizioAnnoUt;
    rs("ValoreTotImpComp") = ValoreTotImpComp;
  });
}

bool clsProgAzienda::AggiornaProgressiviLiquidazioneIvaAnnuali(const Valore& CreditoIVAInizioAnno,
                                                               const Valore& CodIvaPerPrec,
                                                               const Valore& CreditoIVAInizioAnnoUt,
                                                               const Valore& clientID, long hWnd) {
  return AggiornaRiga(clientID, hWnd, [&](Recordset& rs) {
    rs("CreditoIVAInizioAnno") = CreditoIVAInizioAnno;
    rs("CodIvaPerPrec") = CodIvaPerPrec;
    rs("CreditoIVAInizioAnnoUt") = CreditoIVAInizioAnnoUt;
  });
}

bool clsProgAzienda::AggiornaProgressiviLiquidazioneIvaAcconto(const Valore& DebitoIvaAnnoPrec,
                                                               const Valore& ImpIVACalcoloAcconto,
                                                               const Valore& clientID, long hWnd) {
  return AggiornaRiga(clientID, hWnd, [&](Recordset& rs) {
    rs("DebitoIvaAnnoPrec") = DebitoIvaAnnoPrec;
    rs("ImpIVACalcoloAcconto") = ImpIVACalcoloAcconto;
  });
}

// ---------------------------------------------------------------- resets

bool clsProgAzienda::AzzeraProgressiviAzienda() {
  cn->Esegui(
      "UPDATE [Progressivi Azienda Vorn] SET [DataAperturaBilancio] = NULL, [UltimaStampaGiornale] = NULL, "
      "[UltimaLiquidazioneIva] = NULL, [UltimoScaricoPN] = NULL, [UltimoAzzStorico] = NULL, "
      "[DataUltimoVersamento] = NULL, [NumRigaLibroGiornale] = 0, [ProgDareLibroGiornale] = 0, "
      "[ProgAvereLibroGiornale] = 0, [CreditoIVAInizioAnno] = 0, [CodIvaPerPrec] = 0, [NumClientiInAllegato] = 0, "
      "[ImpClientiInAllegato] = 0, [NumFornitoriInAllegato] = 0, [ImpFornitoriInAllegato] = 0, "
      "[UltimaRegistrazionePN] = 0, [PlafondIvaIniziale] = 0, [PlafondIvaResiduo] = 0, "
      "[ProgressivoXMovimenti] = 0, [DebitoIvaAnnoPrec] = 0, [ImpIVACalcoloAcconto] = 0, "
      "[AcqIntraPerPrecedente] = 0, [AcqIntraEserPrecedente] = 0, [UltimaRettificaIntra] = 0, "
      "[InizioAnnoFiscale] = 0, [ValoreTotImpComp] = 0, [CreditoIVAInizioAnnoUt] = 0");
  return true;
}

bool clsProgAzienda::AzzeraProgressiviPlafond() {
  cn->Esegui("UPDATE [Progressivi Azienda Vorn] SET [PlafondIvaIniziale] = 0, [PlafondIvaResiduo] = 0");
  return true;
}

bool clsProgAzienda::AzzeraProgressiviLiquidazione() {
  cn->Esegui("UPDATE [Progressivi Azienda Vorn] SET [ValoreTotImpComp] = 0, [CreditoIVAInizioAnnoUt] = 0");
  return true;
}

bool clsProgAzienda::AzzeraUltimaLiquidazioneIva() {
  cn->Esegui("UPDATE [Progressivi Azienda Vorn] SET [UltimaLiquidazioneIva] = NULL");
  return true;
}

bool clsProgAzienda::AzzeraProgressiviLibroGiornale() {
  cn->Esegui(
      "UPDATE [Progressivi Azienda Vorn] SET [NumRigaLibroGiornale] = 0, [ProgDareLibroGiornale] = 0, "
      "[ProgAvereLibroGiornale] = 0");
  return true;
}

// ---------------------------------------------------------------- single dates

Valore clsProgAzienda::GetDataUltimoScaricoPrimaNota() { return DataSingola("UltimoScaricoPN"); }
Valore clsProgAzienda::GetDataUltimaStampaGiornale() { return DataSingola("UltimaStampaGiornale"); }
Valore clsProgAzienda::GetDataAperturaBilancio() { return DataSingola("DataAperturaBilancio"); }
Valore clsProgAzienda::GetDataUltimoCalcoloAmm() { return DataSingola("DataUltimoCalcoloAmm"); }
Valore clsProgAzienda::GetDataUltimoLibroCespiti() { return DataSingola("DataUltimoLibroCespiti"); }

bool clsProgAzienda::AggiornaDataUltimoScarico(const Valore& UltimoScaricoPN, const Valore& clientID, long hWnd) {
  return AggiornaRiga(clientID, hWnd, [&](Recordset& rs) { rs("UltimoScaricoPN") = UltimoScaricoPN; });
}

bool clsProgAzienda::AggiornaDataAperturaBilancio(const Valore& DataAperturaBilancio, const Valore& clientID,
                                                  long hWnd) {
  return AggiornaRiga(clientID, hWnd, [&](Recordset& rs) { rs("DataAperturaBilancio") = DataAperturaBilancio; });
}

bool clsProgAzienda::AggiornaDataUltimoCalcoloAmm(const Valore& DataUltimoCalcoloAmm, const Valore& clientID,
                                                  long hWnd) {
  return AggiornaRiga(clientID, hWnd, [&](Recordset& rs) { rs("DataUltimoCalcoloAmm") = DataUltimoCalcoloAmm; });
}

bool clsProgAzienda::AggiornaDataUltimoLibroCespiti(const Valore& DataUltimoLibroCespiti, const Valore& clientID,
                                                    long hWnd) {
  return AggiornaRiga(clientID, hWnd,
                      [&](Recordset& rs) { rs("DataUltimoLibroCespiti") = DataUltimoLibroCespiti; });
}

std::string clsProgAzienda::GetDataLogicaAperturaBilancio(const Valore& avar_MeseChiusuraFiscale,
                                                          std::optional<Data> oggi) {
  clsParametriAzienda parametri;
  parametri.cn = cn;
  return parametri.GetDataLogicaAperturaBilancio(avar_MeseChiusuraFiscale, oggi);
}

bool clsProgAzienda::GetProgressiviPrimaNota(Valore& UltimaStampaGiornale, Valore& DataInizioPNValida,
                                             Valore& DataFinePNValida) {
  auto rs = ApriRigaUnica(*cn, kProgressivi);
  if (rs.Eof()) {
    UltimaStampaGiornale = Valore("");
    DataInizioPNValida = Valore("");
    DataFinePNValida = Valore("");
    return false;
  }
  UltimaStampaGiornale = DataOVuoto(rs, "UltimaStampaGiornale");
  DataInizioPNValida = DataOVuoto(rs, "DataInizioPNValida");
  DataFinePNValida = DataOVuoto(rs, "DataFinePNValida");
  return true;
}

// ---------------------------------------------------------------- numbers taken in a transaction

int32_t clsProgAzienda::PrendiNumeroRegistrazione() {
  LettureDopoNumero nessuna;
  return PrendiNumeroRegistrazione(nessuna);
}

int32_t clsProgAzienda::PrendiNumeroRegistrazione(LettureDopoNumero& dopo) {
  Contatore c;
  c.tabella = kProgressivi;
  c.colonna = "UltimaRegistrazionePN";
  // Entry numbers are texts of digits: the highest read as a number, text that is no number
  // left out. The expression is the one of the catalogue's index, which answers the MAX
  // without reading the journal.
  c.sqlMassimo = "SELECT MAX(" + EspressioneNumeroRegistrazione(cn->IsPostgres()) + ") FROM [Prima Nota]";
  return PrendiNumero(*cn, c, dopo);
}

namespace {
// A counter of the due-date book: its row by the fixed indicator, never below the highest
// number of the book's column that it numbers.
Contatore ContatoreScadenziario(const char* colonna, const char* indicatore, const char* colonnaScadenziario) {
  Contatore c;
  c.tabella = kScadenze;
  c.colonna = colonna;
  c.where = "[IndicatoreFisso] = ?";
  c.parametri = {Valore(indicatore)};
  c.nuovaRiga = {{"IndicatoreFisso", Valore(indicatore)}};
  c.sqlMassimo = std::string("SELECT MAX([") + colonnaScadenziario + "]) FROM [Scadenziario]";
  return c;
}
}  // namespace

int32_t clsProgAzienda::PrendiProgressivoScadenze() {
  return PrendiNumero(*cn, ContatoreScadenziario("Progressivo", "SCA", "Numero Progressivo"));
}

int32_t clsProgAzienda::PrendiProgressivoDocumenti() {
  return PrendiNumero(*cn, ContatoreScadenziario("ProgressivoPartite", "DOC", "Progressivo Documento"));
}

int32_t clsProgAzienda::PrendiNumeroDistintaBonifici() {
  Contatore c = ContatoreScadenziario("Progressivo", "DIB", "Numero Distinta");
  c.sqlMassimo = "SELECT MAX([Numero Distinta]) FROM [Distinte Bonifici]";
  return PrendiNumero(*cn, c);
}

int32_t clsProgAzienda::PrendiNumeroDistintaEffetti() {
  Contatore c = ContatoreScadenziario("Progressivo", "DIE", "Numero Distinta");
  c.sqlMassimo = "SELECT MAX([Numero Distinta]) FROM [Distinte]";
  return PrendiNumero(*cn, c);
}

int32_t clsProgAzienda::PrendiNumeroMovimentoCespiti() {
  ChiaveComposta chiave("Progressivi Numerazione Vorn");
  chiave.Testo("TipoRegistro", Valore("CES"))
      .Testo("IndOrdiniImpegni", Valore(""))
      .Testo("NumeroRegistro", Valore(""))
      .Testo("Deposito", Valore(""))
      .Testo("SerieDocumento", Valore(""));
  FiltroChiave f = chiave.Filtro();
  Contatore c;
  c.tabella = "Progressivi Numerazione Vorn";
  c.colonna = "NumeroUltimoDoc";
  c.where = f.Where();
  c.parametri = f.Valori();
  c.nuovaRiga = chiave.Colonne();
  c.sqlMassimo = "SELECT MAX([NumeroMovimento]) FROM [CespitiMovimentiTestate]";
  return PrendiNumero(*cn, c);
}

}  // namespace vorn
