#include "statements/clsDatiFatture.h"

#include <exception>

#include "frame/Catalogo.h"
#include "frame/Comuni.h"

namespace vorn {

namespace {

constexpr const char* kTitolo = "Estrazione dati fatture";

std::string Tx(const Valore& v) { return Trim(v.Testo()); }

// The columns of a row of [DatiFatture] as the extraction fills them, the same in the same
// order in [DatiFattureTestate] apart from the VAT row's own four.
const char* const kColonneDocumento =
    "[tipo], [Anno], [periodo], [numeroRegistrazione], [DataRegistrazione], [DataDocumento], [SerieDocumento], "
    "[NumeroDocumento], [NumeroDiProtocollo], [TipoRigaIvaNormale], [indicatoreCliFor], [codiceCliFor], "
    "[RagioneSociale], [codiceCausale], [DescrizioneCausale], [TipoRegistroIva], [NumRegistroIva], "
    "[noteRegistrazione], [numeroDocumentoEsteso], [TipoDocumento]";

// A credit note, a debit note or their reversal: amounts with the registers' sign.
const char* const kNota = "(COALESCE(C.[TipoCausale], '') IN ('1', '8', '9'))";

// The period's VAT rows of clients (sales registers 1, 5, 7) or suppliers (2, 9).
std::string SqlEstrazione(bool clienti, bool soloEsteri) {
  std::string s = std::string("INSERT INTO [DatiFatture] (") + kColonneDocumento +
                  ", [NumRigaAVideo], [CodiceIva], [Imponib], [imposta]) SELECT ?, ?, ?, P.[NumeroRegistrazione], "
                  "P.[DataRegistrazione], P.[DataDocumento], P.[SerieDocumento], P.[NumeroDocumento], "
                  "P.[NumeroDiProtocollo], P.[TipoRigaIvaNormale], P.[IndicatoreCliFor], P.[CodiceCliFor], "
                  "A.[Ragione Sociale], P.[CodiceCausale], C.[DescrizioneCausale], P.[TipoRegistroIva], "
                  "P.[NumRegistroIva], P.[NoteRegistrazione], P.[NumeroDocumentoEsteso], CASE WHEN " +
                  std::string(kNota) + " THEN 1 ELSE 0 END, P.[NumRigaAVideo], P.[CodiceIva], CASE WHEN " + kNota +
                  " THEN -P.[Imponibile] ELSE P.[Imponibile] END, CASE WHEN " + kNota +
                  " THEN -P.[ImportoMovimento] ELSE P.[ImportoMovimento] END FROM (([Prima Nota] P LEFT JOIN "
                  "[Causali Contabili] C ON C.[CodiceCausale] = P.[CodiceCausale]) LEFT JOIN [Codici Iva] I ON "
                  "I.[Codice Iva] = P.[CodiceIva]) LEFT JOIN " +
                  (clienti ? "[Anagrafica Clienti]" : "[Anagrafica Fornitori]") +
                  " A ON A.[Codice Cliente] = P.[CodiceCliFor] WHERE P.[DataRegistrazione] >= ? AND "
                  "P.[DataRegistrazione] <= ? AND P.[TipoRigaIvaNormale] = 'I' AND P.[IndicatoreCliFor] = ? AND "
                  "P.[TipoRegistroIva] IN " +
                  (clienti ? "('1', '5', '7')" : "('2', '9')");
  // A party without a nation is taken for an Italian one.
  if (soloEsteri)
    s += " AND (COALESCE(A.[Codice Nazione], 'IT') NOT IN ('IT', '') OR COALESCE(A.[Tipo soggetto allegati], 0) > 1)";
  return s;
}

const std::vector<std::string>& ColonneTestate() {
  static const std::vector<std::string> c = [] {
    std::vector<std::string> v;
    for (const auto& col : TabellaCatalogoDi("DatiFattureTestate")->colonne)
      if (LCase(col.nome) != "id" && LCase(col.nome) != "tipo" && LCase(col.nome) != "anno" &&
          LCase(col.nome) != "periodo")
        v.push_back(col.nome);
    return v;
  }();
  return c;
}

}  // namespace

std::string clsDatiFatture::TestoPeriodo(int periodo) {
  static const char* const kTesti[kPeriodi] = {
      "1° Trimestre", "2° Trimestre", "3° Trimestre", "4° Trimestre", "1° Semestre", "2° Semestre",
      "Gennaio",      "Febbraio",     "Marzo",        "Aprile",       "Maggio",      "Giugno",
      "Luglio",       "Agosto",       "Settembre",    "Ottobre",      "Novembre",    "Dicembre"};
  return periodo >= 0 && periodo < kPeriodi ? kTesti[periodo] : "";
}

std::vector<std::string> clsDatiFatture::InitPeriodi() {
  std::vector<std::string> v;
  for (int p = 0; p < kPeriodi; ++p) v.push_back(TestoPeriodo(p));
  return v;
}

std::vector<int> clsDatiFatture::InitAnni() {
  Data primo = Data::Oggi(), ultimo = Data::Oggi();
  Recordset rs = cn->Execute("SELECT MIN([DataRegistrazione]), MAX([DataRegistrazione]) FROM [Prima Nota]");
  if (!rs.Eof()) {
    if (auto d = rs(0).Value().ComeData(); d && *d < primo) primo = *d;
    if (auto d = rs(1).Value().ComeData(); d && ultimo < *d) ultimo = *d;
  }
  std::vector<int> v;
  for (int a = ultimo.Anno(); a >= primo.Anno(); --a) v.push_back(a);
  return v;
}

bool clsDatiFatture::GetRangeDate(int anno, int periodo, Data& daData, Data& aData) {
  if (!Data::Crea(anno, 1, 1) || periodo < 0 || periodo >= kPeriodi) return false;
  int mese = 1, mesi = 1;
  if (periodo <= 3) mese = periodo * 3 + 1, mesi = 3;
  else if (periodo <= 5) mese = (periodo - 4) * 6 + 1, mesi = 6;
  else mese = periodo - 5;
  const int fine = mese + mesi - 1;
  daData = *Data::Crea(anno, mese, 1);
  aData = *Data::Crea(anno, fine, Data::GiorniNelMese(anno, fine));
  return true;
}

long clsDatiFatture::EstraiDatiFattureDaPrimaNota(int tipo, int anno, int periodo, IForm* objForm) {
  Data da, a;
  if (!GetRangeDate(anno, periodo, da, a)) {
    Host().MsgBox("Anno o periodo non validi: " + std::to_string(anno) + ", " + std::to_string(periodo), vbExclamation,
                  kTitolo);
    return -1;
  }
  const bool soloEsteri = anno >= 2019;
  const Parametri periodoP = {Valore(tipo), Valore(anno), Valore(periodo)};
  long righe = 0;
  try {
    Clessidra c;
    ConRiprova(*cn, [&] {
      Atomico unita(*cn);
      righe = 0;
      for (const char* tabella : {"[DatiFatture]", "[DatiFattureTestate]", "[DatiFattureRighe]"})
        cn->Esegui(std::string("DELETE FROM ") + tabella + " WHERE [tipo] = ? AND [Anno] = ? AND [periodo] = ?",
                   periodoP);
      for (bool clienti : {true, false}) {
        if (objForm) objForm->msgbar(clienti ? "Estrazione fatture di vendita..." : "Estrazione fatture di acquisto...");
        Parametri p = periodoP;
        p.insert(p.end(), {Valore(da), Valore(a), Valore(clienti ? "C" : "F")});
        righe += static_cast<long>(cn->Esegui(SqlEstrazione(clienti, soloEsteri), p));
      }
      if (objForm) objForm->msgbar("Caricamento testate fatture ...");
      const std::string gruppo =
          "[tipo], [Anno], [periodo], [numeroRegistrazione], [SerieDocumento], [NumeroDocumento], "
          "[NumeroDiProtocollo], [TipoRigaIvaNormale], [indicatoreCliFor], [codiceCliFor], [RagioneSociale], "
          "[codiceCausale], [DescrizioneCausale], [TipoRegistroIva], [NumRegistroIva], [noteRegistrazione], "
          "[numeroDocumentoEsteso], [TipoDocumento]";
      cn->Esegui("INSERT INTO [DatiFattureTestate] (" + gruppo +
                     ", [DataRegistrazione], [DataDocumento]) SELECT " + gruppo +
                     ", MIN([DataRegistrazione]), MIN([DataDocumento]) FROM [DatiFatture] WHERE [tipo] = ? AND "
                     "[Anno] = ? AND [periodo] = ? GROUP BY " +
                     gruppo + " ORDER BY [indicatoreCliFor], [codiceCliFor], [numeroRegistrazione]",
                 periodoP);
      if (objForm) objForm->msgbar("Caricamento righe fatture ...");
      cn->Esegui("INSERT INTO [DatiFattureRighe] ([tipo], [anno], [periodo], [numeroRegistrazione], [NumRigaAVideo], "
                 "[CodiceIva], [Imponib], [imposta]) SELECT [tipo], [Anno], [periodo], [numeroRegistrazione], "
                 "[NumRigaAVideo], [CodiceIva], [Imponib], [imposta] FROM [DatiFatture] WHERE [tipo] = ? AND "
                 "[Anno] = ? AND [periodo] = ? ORDER BY [numeroRegistrazione], [NumRigaAVideo]",
                 periodoP);
      unita.Conferma();
    });
  } catch (const std::exception& e) {
    Host().MsgBox("Estrazione non eseguita, i dati estratti in precedenza sono invariati.\n" + std::string(e.what()),
                  vbCritical, kTitolo);
    return -1;
  }
  if (objForm) objForm->msgbar("");
  return righe;
}

bool clsDatiFatture::ExistsDatiAnnoPeriodo(int tipo, int anno, int periodo) {
  return !cn->Scalare("SELECT 1 FROM [DatiFattureTestate] WHERE [tipo] = ? AND [anno] = ? AND [periodo] = ? LIMIT 1",
                      {Valore(tipo), Valore(anno), Valore(periodo)})
              .IsNull();
}

bool clsDatiFatture::LocalizzaTuttiRecord(Recordset& T, int tipo, int anno, int periodo) {
  T = cn->Apri("DatiFattureTestate", "[tipo] = ? AND [anno] = ? AND [periodo] = ?",
               {Valore(tipo), Valore(anno), Valore(periodo)},
               "[indicatoreCliFor], [codiceCliFor], [SerieDocumento], [NumeroDocumento], [ID]");
  return !T.Eof();
}

bool clsDatiFatture::SalvaRecord(const Valore& ID, int tipo, int anno, int periodo, const RecordValori& colonne) {
  ColonneValori valori = ColonneDaScrivere(colonne, ColonneTestate(), [](const std::string& nome) {
    return "Colonna sconosciuta nei dati fatture: " + nome;
  });
  Atomico unita(*cn);
  const long id = NullToZeroLng(ID);
  const bool esiste =
      id != 0 && !cn->Scalare("SELECT 1 FROM [DatiFattureTestate] WHERE [ID] = ?", {Valore(id)}).IsNull();
  Parametri p = {Valore(tipo), Valore(anno), Valore(periodo)};
  std::string sql;
  if (esiste) {
    sql = "UPDATE [DatiFattureTestate] SET [tipo] = ?, [anno] = ?, [periodo] = ?";
    for (const auto& [c, v] : valori) sql += ", [" + c + "] = ?", p.push_back(v);
    sql += " WHERE [ID] = ?";
    p.push_back(Valore(id));
  } else {
    std::string nomi = "[tipo], [anno], [periodo]", segni = "?, ?, ?";
    for (const auto& [c, v] : valori) nomi += ", [" + c + "]", segni += ", ?", p.push_back(v);
    sql = "INSERT INTO [DatiFattureTestate] (" + nomi + ") VALUES (" + segni + ")";
  }
  const bool ok = cn->Esegui(sql, p) == 1;
  if (ok) unita.Conferma();
  return ok;
}

bool clsDatiFatture::SalvaRecordRighe(int tipo, int anno, int periodo, const Valore& numeroRegistrazione,
                                      const Valore& NumRigaAVideo, const Valore& CodiceIva, const Valore& Imponib,
                                      const Valore& imposta) {
  return cn->Esegui("INSERT INTO [DatiFattureRighe] ([tipo], [anno], [periodo], [numeroRegistrazione], "
                    "[NumRigaAVideo], [CodiceIva], [Imponib], [imposta]) VALUES (?, ?, ?, ?, ?, ?, ?, ?)",
                    {Valore(tipo), Valore(anno), Valore(periodo), Valore(Tx(numeroRegistrazione)),
                     Valore(Tx(NumRigaAVideo)), Valore(Tx(CodiceIva)), ImportoIngresso(Imponib, "imponibile"),
                     ImportoIngresso(imposta, "imposta")}) == 1;
}

double clsDatiFatture::CancellaRecord(const Valore& ID) {
  const Valore id(static_cast<long long>(NullToZeroLng(ID)));
  Atomico unita(*cn);
  Recordset rs = cn->Execute("SELECT [tipo], [anno], [periodo], [numeroRegistrazione] FROM [DatiFattureTestate] WHERE "
                             "[ID] = ?",
                             {id});
  if (rs.Eof()) return 0;
  // The document's VAT rows go with it, unless another document of the period shares its entry.
  Parametri p = {rs(0).Value(), rs(1).Value(), rs(2).Value(), rs(3).Value()};
  const int64_t n = cn->Esegui("DELETE FROM [DatiFattureTestate] WHERE [ID] = ?", {id});
  const Valore altri = cn->Scalare("SELECT 1 FROM [DatiFattureTestate] WHERE [tipo] = ? AND [anno] = ? AND "
                                   "[periodo] = ? AND [numeroRegistrazione] = ? LIMIT 1",
                                   p);
  if (altri.IsNull())
    cn->Esegui("DELETE FROM [DatiFattureRighe] WHERE [tipo] = ? AND [anno] = ? AND [periodo] = ? AND "
               "[numeroRegistrazione] = ?",
               p);
  unita.Conferma();
  return static_cast<double>(n);
}

bool clsDatiFatture::LocalizzaRiepilogoCliForFatture(Recordset& T, int anno, int periodo,
                                                     const Valore& indicatoreCliFor, bool documentiRiepilogativi) {
  T = cn->Execute(std::string("SELECT [indicatoreCliFor], [codiceCliFor], MIN([RagioneSociale]) AS [RagioneSociale], "
                              "COUNT(*) AS [NumeroDocumenti] FROM [DatiFattureTestate] WHERE [tipo] = 0 AND [anno] = ? "
                              "AND [periodo] = ? AND [indicatoreCliFor] = ? AND COALESCE([TipoDocumento], 0) ") +
                      (documentiRiepilogativi ? "=" : "<>") +
                      " 7 GROUP BY [indicatoreCliFor], [codiceCliFor] ORDER BY [indicatoreCliFor], [codiceCliFor]",
                  {Valore(anno), Valore(periodo), Valore(Tx(indicatoreCliFor))});
  return !T.Eof();
}

bool clsDatiFatture::LocalizzaDatiFattureTestateCliFor(Recordset& T, int anno, int periodo,
                                                       const Valore& indicatoreCliFor, const Valore& codiceCliFor,
                                                       bool documentiRiepilogativi) {
  T = cn->Execute(std::string("SELECT * FROM [DatiFattureTestate] WHERE [tipo] = 0 AND [anno] = ? AND [periodo] = ? "
                              "AND [indicatoreCliFor] = ? AND [codiceCliFor] = ? AND COALESCE([TipoDocumento], 0) ") +
                      (documentiRiepilogativi ? "=" : "<>") + " 7 ORDER BY [SerieDocumento], [NumeroDocumento], [ID]",
                  {Valore(anno), Valore(periodo), Valore(Tx(indicatoreCliFor)), Valore(Tx(codiceCliFor))});
  return !T.Eof();
}

bool clsDatiFatture::ExistsDocumentiRiepilogativi(int anno, int periodo, const Valore& indicatoreCliFor) {
  return !cn->Scalare("SELECT 1 FROM [DatiFattureTestate] WHERE [tipo] = 0 AND [anno] = ? AND [periodo] = ? AND "
                      "[indicatoreCliFor] = ? AND [TipoDocumento] = 7 LIMIT 1",
                      {Valore(anno), Valore(periodo), Valore(Tx(indicatoreCliFor))})
              .IsNull();
}

bool clsDatiFatture::IsRegistrazioneImponibileImpostaZero(int anno, int periodo, const Valore& numeroRegistrazione) {
  Recordset rs = cn->Execute("SELECT SUM([Imponib]), SUM([imposta]) FROM [DatiFattureRighe] WHERE [tipo] = 0 AND "
                             "[anno] = ? AND [periodo] = ? AND [numeroRegistrazione] = ?",
                             {Valore(anno), Valore(periodo), Valore(Tx(numeroRegistrazione))});
  return NullToZeroCy(rs(0).Value()).Zero() && NullToZeroCy(rs(1).Value()).Zero();
}

bool clsDatiFatture::LocalizzaDatiFattureRighe(Recordset& T, int anno, int periodo, const Valore& numeroRegistrazione) {
  T = cn->Apri("DatiFattureRighe", "[tipo] = 0 AND [anno] = ? AND [periodo] = ? AND [numeroRegistrazione] = ?",
               {Valore(anno), Valore(periodo), Valore(Tx(numeroRegistrazione))}, "[NumRigaAVideo], [ID]");
  return !T.Eof();
}

bool clsDatiFatture::CancellaRecordRighe(int anno, int periodo, const Valore& numeroRegistrazione) {
  return cn->Esegui("DELETE FROM [DatiFattureRighe] WHERE [tipo] = 0 AND [anno] = ? AND [periodo] = ? AND "
                    "[numeroRegistrazione] = ?",
                    {Valore(anno), Valore(periodo), Valore(Tx(numeroRegistrazione))}) > 0;
}

bool clsDatiFatture::ExistsRegistrazione(int anno, int periodo, const Valore& numeroRegistrazione) {
  return !cn->Scalare("SELECT 1 FROM [DatiFattureTestate] WHERE [tipo] = 0 AND [anno] = ? AND [periodo] = ? AND "
                      "[numeroRegistrazione] = ? LIMIT 1",
                      {Valore(anno), Valore(periodo), Valore(Tx(numeroRegistrazione))})
              .IsNull();
}

std::string clsDatiFatture::GetMaxNumeroRegistrazione(int anno, int periodo) {
  return Tx(cn->Scalare("SELECT MAX([numeroRegistrazione]) FROM [DatiFattureTestate] WHERE [tipo] = 0 AND [anno] = ? "
                       "AND [periodo] = ?",
                       {Valore(anno), Valore(periodo)}));
}

void clsDatiFatture::MakeElaborazioneCliForDoppi(const std::string& clientName, int tipo, int anno, int periodo) {
  Atomico unita(*cn);
  cn->Esegui("DELETE FROM [Elaborazione verifica PI CF duplicati] WHERE [clientName] = ?", {Valore(clientName)});
  for (bool clienti : {true, false})
    cn->Esegui(std::string("INSERT INTO [Elaborazione verifica PI CF duplicati] ([IndicatoreCliFor], [clientName], "
                           "[CodiceCliFor], [RagSociale], [PartitaIVA], [CodiceFiscale]) SELECT ?, ?, A.[Codice Cliente], "
                           "A.[Ragione Sociale], A.[Partita Iva], A.[Codice Fiscale] FROM ") +
                   (clienti ? "[Anagrafica Clienti]" : "[Anagrafica Fornitori]") +
                   " A WHERE A.[Codice Cliente] IN (SELECT [codiceCliFor] FROM [DatiFattureTestate] WHERE [tipo] = ? "
                   "AND [anno] = ? AND [periodo] = ? AND [indicatoreCliFor] = ?)",
               {Valore(clienti ? "C" : "F"), Valore(clientName), Valore(tipo), Valore(anno), Valore(periodo),
                Valore(clienti ? "C" : "F")});
  unita.Conferma();
}

bool clsDatiFatture::LocalizzaDoppi(Recordset& T, const std::string& clientName, const Valore& indicatoreCliFor,
                                    const char* colonna) {
  const std::string c = std::string("[") + colonna + "]";
  T = cn->Execute("SELECT [IndicatoreCliFor], [CodiceCliFor], [RagSociale], [PartitaIVA], [CodiceFiscale] FROM "
                  "[Elaborazione verifica PI CF duplicati] WHERE [clientName] = ? AND [IndicatoreCliFor] = ? AND " +
                      c + " IN (SELECT " + c +
                      " FROM [Elaborazione verifica PI CF duplicati] WHERE [clientName] = ? AND [IndicatoreCliFor] = ? "
                      "AND COALESCE(" + c + ", '') <> '' GROUP BY " + c +
                      " HAVING COUNT(DISTINCT [CodiceCliFor]) > 1) ORDER BY " + c + ", [CodiceCliFor]",
                  {Valore(clientName), Valore(Tx(indicatoreCliFor)), Valore(clientName), Valore(Tx(indicatoreCliFor))});
  return !T.Eof();
}

bool clsDatiFatture::LocalizzaCliForPartitaIVADoppia(Recordset& T, const std::string& clientName,
                                                     const Valore& indicatoreCliFor) {
  return LocalizzaDoppi(T, clientName, indicatoreCliFor, "PartitaIVA");
}

bool clsDatiFatture::LocalizzaCliForCodiceFiscaleDoppio(Recordset& T, const std::string& clientName,
                                                        const Valore& indicatoreCliFor) {
  return LocalizzaDoppi(T, clientName, indicatoreCliFor, "CodiceFiscale");
}

}  // namespace vorn
