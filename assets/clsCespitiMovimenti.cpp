#include "assets/clsCespitiMovimenti.h"

#include "company/clsProgAzienda.h"
#include "frame/Comuni.h"
#include "frame/Data.h"
#include "frame/Importo.h"
#include "frame/VornServer.h"

namespace vorn {

namespace {

Valore NumeroDi(const Valore& v) {
  auto n = v.ComeIntero();
  if (!n) throw ErroreDb(13, "Numero di movimento non valido: " + v.Testo());
  return Valore(static_cast<long long>(*n));
}

// The heads of the depreciation movements, of one year of competence when given.
std::string TestateAmmortamento(std::optional<int> anno, Parametri& p) {
  std::string s =
      "SELECT M.[NumeroMovimento] FROM [CespitiMovimentiTestate] M INNER JOIN [Causali Cespiti] K ON K.[Codice] = "
      "M.[CausaleCespiti] WHERE K.[TipoMovimentazione] IN (11, 12)";
  if (anno) {
    s += " AND M.[DataCompetenza] >= ? AND M.[DataCompetenza] <= ?";
    p.push_back(Valore(*Data::Crea(*anno, 1, 1)));
    p.push_back(Valore(*Data::Crea(*anno, 12, 31)));
  }
  return s;
}

}  // namespace

bool clsCespitiMovimenti::LocalizzaRecord(Recordset& T, const Valore& NumeroMovimento, const Valore& clientID,
                                          long hWnd) {
  return LocalizzaRecordProtocollo(*cn, T, "CespitiMovimentiTestate", "[NumeroMovimento] = ?", {NumeroDi(NumeroMovimento)},
                                   clientID, hWnd);
}

bool clsCespitiMovimenti::LocalizzaRecordRighe(Recordset& T, const Valore& NumeroMovimento) {
  T = cn->Execute("SELECT * FROM [CespitiMovimentiRighe] WHERE [NumeroMovimento] = ? ORDER BY [NumeroRiga];",
                  {NumeroDi(NumeroMovimento)});
  return !T.Eof();
}

bool clsCespitiMovimenti::SalvaRecord(const Valore& NumeroMovimento, const Valore& DataMovimento,
                                      const Valore& DataCompetenza, const Valore& CausaleCespiti,
                                      const Valore& IndClienteFornitore, const Valore& CodClienteFornitore,
                                      const Valore& AnnoDocumento, const Valore& SerieDocumento,
                                      const Valore& NumeroDocumento, const Valore& DataDocumento,
                                      const Valore& CodiceValuta, const Valore& Cambio, const Valore& DataCambio,
                                      const Valore& NumeroRegistrazione, const Valore& Note, const Valore& clientID,
                                      long hWnd, bool& Cancel) {
  const Valore numero = NumeroDi(NumeroMovimento);
  auto data = [](const Valore& v) { return v.IsDate() ? Valore(*v.ComeData()) : Valore::Null(); };
  return SalvaRecordProtocollo(*cn, "CespitiMovimentiTestate", "[NumeroMovimento] = ?", {numero}, clientID, hWnd,
                               Cancel, [&](Recordset& rs, bool) {
                                 rs("NumeroMovimento") = numero;
                                 rs("DataMovimento") = data(DataMovimento);
                                 rs("DataCompetenza") = data(DataCompetenza);
                                 rs("CausaleCespiti") = Valore(Trim(CausaleCespiti.Testo()));
                                 rs("IndClienteFornitore") = IndClienteFornitore;
                                 rs("CodClienteFornitore") = CodClienteFornitore;
                                 rs("AnnoDocumento") = Valore(NullToZeroLng(AnnoDocumento));
                                 rs("SerieDocumento") = SerieDocumento;
                                 rs("NumeroDocumento") = Valore(NullToZeroLng(NumeroDocumento));
                                 rs("DataDocumento") = data(DataDocumento);
                                 rs("CodiceValuta") = CodiceValuta;
                                 rs("Cambio") = Valore(NullToZeroDbl(Cambio));
                                 rs("DataCambio") = data(DataCambio);
                                 rs("NumeroRegistrazione") = NumeroRegistrazione;
                                 rs("Note") = Note;
                               });
}

bool clsCespitiMovimenti::SalvaRecordRighe(const Valore& NumeroMovimento, const Valore& numeroRiga,
                                           const Valore& codiceCespite, const Valore& ImportoMovimentoFisc,
                                           const Valore& ImportoMovimentoFiscDed, const Valore& ImportoMovimentoCiv,
                                           const Valore& DescrizioneSupplem, const Valore& clientID, long hWnd,
                                           bool& Cancel) {
  const Valore numero = NumeroDi(NumeroMovimento), riga = NumeroDi(numeroRiga);
  return SalvaRecordProtocollo(*cn, "CespitiMovimentiRighe", "[NumeroMovimento] = ? AND [NumeroRiga] = ?",
                               {numero, riga}, clientID, hWnd, Cancel, [&](Recordset& rs, bool) {
                                 rs("NumeroMovimento") = numero;
                                 rs("NumeroRiga") = riga;
                                 rs("CodiceCespite") = Valore(Trim(codiceCespite.Testo()));
                                 rs("ImportoMovimentoFisc") = Valore(NullToZeroDbl(ImportoMovimentoFisc));
                                 rs("ImportoMovimentoFiscDed") = Valore(NullToZeroDbl(ImportoMovimentoFiscDed));
                                 rs("ImportoMovimentoCiv") = Valore(NullToZeroDbl(ImportoMovimentoCiv));
                                 rs("DescrizioneSupplem") = DescrizioneSupplem;
                               });
}

bool clsCespitiMovimenti::CancellaRecord(const Valore& NumeroMovimento) {
  const Valore numero = NumeroDi(NumeroMovimento);
  Atomico unita(*cn);
  cn->Esegui("DELETE FROM [CespitiMovimentiRighe] WHERE [NumeroMovimento] = ?;", {numero});
  cn->Esegui("DELETE FROM [CespitiMovimentiTestate] WHERE [NumeroMovimento] = ?;", {numero});
  unita.Conferma();
  return true;
}

bool clsCespitiMovimenti::CancellaRecordRighe(const Valore& NumeroMovimento) {
  cn->Esegui("DELETE FROM [CespitiMovimentiRighe] WHERE [NumeroMovimento] = ?;", {NumeroDi(NumeroMovimento)});
  return true;
}

bool clsCespitiMovimenti::RecordSuccessivo(Valore& NumeroMovimento) {
  const bool vuoto = Trim(NumeroMovimento.Testo()).empty();
  Valore v = vuoto ? cn->Scalare("SELECT MAX([NumeroMovimento]) FROM [CespitiMovimentiTestate];")
                   : cn->Scalare("SELECT MIN([NumeroMovimento]) FROM [CespitiMovimentiTestate] WHERE [NumeroMovimento] > ?;",
                                 {NumeroDi(NumeroMovimento)});
  if (v.IsNull()) return false;
  NumeroMovimento = Valore(static_cast<long long>(NullToZeroLng(v)));
  return true;
}

bool clsCespitiMovimenti::RecordPrecedente(Valore& NumeroMovimento) {
  const bool vuoto = Trim(NumeroMovimento.Testo()).empty();
  Valore v = vuoto ? cn->Scalare("SELECT MIN([NumeroMovimento]) FROM [CespitiMovimentiTestate];")
                   : cn->Scalare("SELECT MAX([NumeroMovimento]) FROM [CespitiMovimentiTestate] WHERE [NumeroMovimento] < ?;",
                                 {NumeroDi(NumeroMovimento)});
  if (v.IsNull()) return false;
  NumeroMovimento = Valore(static_cast<long long>(NullToZeroLng(v)));
  return true;
}

bool clsCespitiMovimenti::ExistMovimento(const Valore& NumeroMovimento, Valore* DataMovimento) {
  auto rs = cn->Execute("SELECT [DataMovimento] FROM [CespitiMovimentiTestate] WHERE [NumeroMovimento] = ?;",
                        {NumeroDi(NumeroMovimento)});
  if (DataMovimento) *DataMovimento = rs.Eof() ? Valore(std::string()) : rs.Fields(0).Value();
  return !rs.Eof();
}

bool clsCespitiMovimenti::ExistRigaMovimento(const Valore& NumeroMovimento, const Valore& numeroRiga,
                                             Valore* codiceCespite) {
  auto rs = cn->Execute(
      "SELECT [CodiceCespite] FROM [CespitiMovimentiRighe] WHERE [NumeroMovimento] = ? AND [NumeroRiga] = ?;",
      {NumeroDi(NumeroMovimento), NumeroDi(numeroRiga)});
  if (codiceCespite) *codiceCespite = rs.Eof() ? Valore(std::string()) : Valore(Trim(rs.Fields(0).Value().Testo()));
  return !rs.Eof();
}

int32_t clsCespitiMovimenti::GetMaxDiNumeroMovimento() {
  return NullToZeroLng(cn->Scalare("SELECT MAX([NumeroMovimento]) FROM [CespitiMovimentiTestate];"));
}

int32_t clsCespitiMovimenti::PrendiNumeroMovimento() {
  clsProgAzienda progressivi;
  progressivi.cn = cn;
  return progressivi.PrendiNumeroMovimentoCespiti();
}

int32_t clsCespitiMovimenti::RegistraMovimento(const std::string& causale, const Data& data,
                                               const std::string& codiceCespite, double fisc, double fiscDed,
                                               double civ, const std::string& descrizione, int decimali,
                                               const Valore& clientID, long hWnd) {
  if (NullToZeroLng(cn->Scalare("SELECT COUNT(*) FROM [Causali Cespiti] WHERE [Codice] = ?", {Valore(Trim(causale))})) == 0)
    throw ErroreDb(3265, "Causale cespiti inesistente: " + causale);
  if (NullToZeroLng(cn->Scalare("SELECT COUNT(*) FROM [Cespiti] WHERE [CodiceCespite] = ?",
                                {Valore(Trim(codiceCespite))})) == 0)
    throw ErroreDb(3265, "Cespite inesistente: " + codiceCespite);
  auto tondo = [&](double v) { return Valore(Importo::DaDouble(v).Arrotonda(decimali).ToDouble()); };
  int32_t numero = 0;
  ConRiprova(*cn, [&] {
    Atomico unita(*cn);
    numero = PrendiNumeroMovimento();
    bool cancel = false;
    SalvaRecord(Valore(numero), Valore(data), Valore(data), Valore(Trim(causale)), Valore(""), Valore(""),
                Valore(data.Anno()), Valore(""), Valore(0), Valore(data), Valore(""), Valore(1.0), Valore(data),
                Valore(""), Valore(""), clientID, hWnd, cancel);
    SalvaRecordRighe(Valore(numero), Valore(1), Valore(codiceCespite), tondo(fisc), tondo(fiscDed), tondo(civ),
                     Valore(descrizione), clientID, hWnd, cancel);
    unita.Conferma();
  });
  return numero;
}

int32_t clsCespitiMovimenti::GetNumeroMovimentoByNumeroReg(const std::string& numeroRegistrazione) {
  return NullToZeroLng(cn->Scalare(
      "SELECT MIN([NumeroMovimento]) FROM [CespitiMovimentiTestate] WHERE [NumeroRegistrazione] = ?;",
      {Valore(Trim(numeroRegistrazione))}));
}

bool clsCespitiMovimenti::AzzeraCespitiMovimentiTestate() {
  cn->Esegui("DELETE FROM [CespitiMovimentiTestate];");
  return true;
}

bool clsCespitiMovimenti::AzzeraCespitiMovimentiRighe() {
  cn->Esegui("DELETE FROM [CespitiMovimentiRighe];");
  return true;
}

int64_t clsCespitiMovimenti::CancellaAmmortamentiCespitiMovimentiRighe(std::optional<int> anno) {
  Parametri p;
  std::string testate = TestateAmmortamento(anno, p);
  return cn->Esegui("DELETE FROM [CespitiMovimentiRighe] WHERE [NumeroMovimento] IN (" + testate + ");", p);
}

int64_t clsCespitiMovimenti::CancellaAmmortamentiCespitiMovimentiTestate(std::optional<int> anno) {
  Parametri p;
  std::string testate = TestateAmmortamento(anno, p);
  return cn->Esegui("DELETE FROM [CespitiMovimentiTestate] WHERE [NumeroMovimento] IN (" + testate + ");", p);
}

int32_t clsCespitiMovimenti::GetNumeroMovimentiCespite(const std::string& codiceCespite) {
  return NullToZeroLng(cn->Scalare(
      "SELECT COUNT(*) FROM [CespitiMovimentiRighe] R INNER JOIN [CespitiMovimentiTestate] M ON M.[NumeroMovimento] = "
      "R.[NumeroMovimento] INNER JOIN [Causali Cespiti] K ON K.[Codice] = M.[CausaleCespiti] WHERE R.[CodiceCespite] = ?;",
      {Valore(Trim(codiceCespite))}));
}

}  // namespace vorn
