#include "masterdata/clsSedi.h"

#include "frame/Comuni.h"

namespace vorn {

namespace {
// The subject's index: the code padded with zeros to six characters, then its kind.
const char* const kIndice =
    "CASE WHEN length(COALESCE([Codice anagrafico], '')) < 6 "
    "THEN substr('000000', 1, 6 - length(COALESCE([Codice anagrafico], ''))) ELSE '' END "
    "|| COALESCE([Codice anagrafico], '') || COALESCE([Tipo clifor], '')";

std::string Indice(const Valore& Tipo_clifor, const Valore& Codice_anagrafico) {
  std::string c = Codice_anagrafico.Testo();
  size_t n = LunghezzaTesto(c);
  if (n < 6) c = std::string(6 - n, '0') + c;
  return c + Tipo_clifor.Testo();
}
}  // namespace

const DefinizioneAnagrafica& clsSedi::Definizione() {
  static const DefinizioneAnagrafica d{
      "Destinazioni",
      {{"Tipo clifor"}, {"Codice anagrafico"}, {"Codice destinazione"}},
      "Descrizione destinazione",
      "Sedi",
      {"Tipo record", "Descrizione destinazione", "Indirizzo", "Località", "Cap", "Provincia", "Telefono", "Fax",
       "Codice Nazione", "Partita Iva", "Codice Fiscale", "Codice EDI"}};
  return d;
}

bool clsSedi::LocalizzaTuttiRecords(Recordset& T, const Valore& Tipo_clifor, const Valore& Codice_anagrafico,
                                    const Valore& clientID, long hWnd) {
  Parametri p;
  std::string w = anagrafiche::FiltroChiavi(D(), {Tipo_clifor, Codice_anagrafico}, p);
  T = C().Apri("Destinazioni", w, p, "[Destinazioni].[Codice destinazione]");
  if (T.Eof()) return false;
  MarcaRecord(T, clientID, hWnd);
  return true;
}

bool clsSedi::CancellaTuttiRecords(const Valore& Codice_anagrafico, const Valore& Tipo_clifor) {
  return anagrafiche::Cancella(C(), D(), {Tipo_clifor, Codice_anagrafico});
}

bool clsSedi::ExistsSedi(const Valore& Tipo_clifor, const Valore& Codice_anagrafico) {
  return anagrafiche::LeggiColonna(C(), D(), {Tipo_clifor, Codice_anagrafico}, "Codice destinazione").has_value();
}

Valore clsSedi::GetPrimaDestinazione(const Valore& Tipo_clifor, const Valore& Codice_anagrafico,
                                     const Valore& Tipo_record) {
  Parametri p;
  std::string w = anagrafiche::FiltroChiavi(D(), {Tipo_clifor, Codice_anagrafico}, p);
  if (Tipo_record.IsNull() || Tipo_record.IsEmpty() || (Tipo_record.IsText() && Tipo_record.Str().empty())) {
    w += " AND ([Destinazioni].[Tipo record] = '' OR [Destinazioni].[Tipo record] IS NULL)";
  } else {
    w += " AND [Destinazioni].[Tipo record] = ?";
    p.push_back(Tipo_record);
  }
  auto rs = C().Execute("SELECT [Destinazioni].[Codice destinazione] FROM [Destinazioni] WHERE " + w +
                            " ORDER BY [Destinazioni].[Codice destinazione] LIMIT 1;",
                        p);
  if (rs.Eof()) return Valore(std::string());
  return LeggiCampo(rs.Fields(0), Valore(std::string()));
}

bool clsSedi::RecordSuccessivo(Valore& Tipo_clifor, Valore& Codice_anagrafico) {
  return Passo(Tipo_clifor, Codice_anagrafico, true);
}

bool clsSedi::RecordPrecedente(Valore& Tipo_clifor, Valore& Codice_anagrafico) {
  return Passo(Tipo_clifor, Codice_anagrafico, false);
}

bool clsSedi::Passo(Valore& Tipo_clifor, Valore& Codice_anagrafico, bool avanti) {
  std::string sql = std::string("SELECT s.indice, MIN(s.codice) AS codice, MIN(s.tipo) AS tipo FROM (SELECT ") +
                    kIndice +
                    " AS indice, [Codice anagrafico] AS codice, [Tipo clifor] AS tipo FROM [Destinazioni]) s WHERE s.indice " +
                    (avanti ? ">" : "<") + " ? GROUP BY s.indice ORDER BY s.indice" + (avanti ? "" : " DESC") +
                    " LIMIT 1;";
  auto rs = C().Execute(sql, {Valore(Indice(Tipo_clifor, Codice_anagrafico))});
  if (rs.Eof()) return false;
  Codice_anagrafico = rs.Fields(1).Value();
  Tipo_clifor = rs.Fields(2).Value();
  return true;
}

}  // namespace vorn
