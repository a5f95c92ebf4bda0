#include "masterdata/clsBancheAzienda.h"

#include "frame/Comuni.h"

namespace vorn {

namespace {

// The stamp counts, keyed by bank and agency like the banks; the stamp's value is the third
// part of the key, an amount, and is added to the filter by hand.
const DefinizioneAnagrafica& Bolli() {
  static const DefinizioneAnagrafica d{
      "Bolli Utilizzati",
      {{"Codice banca", TipoChiave::Testo}, {"Codice agenzia", TipoChiave::TestoBianco}},
      "",
      "",
      {"Qta bollo"}};
  return d;
}

const char* const kValoreBollo = "[Bolli Utilizzati].[Valore bollo]";

// The bank and agency read as one text, the order of the stepping.
const char* const kIndice =
    "COALESCE(TRIM([Banche Azienda].[Codice banca]), '') || COALESCE(TRIM([Banche Azienda].[Codice agenzia]), '')";
const char* const kBanca = "COALESCE(TRIM([Banche Azienda].[Codice banca]), '')";

}  // namespace

const DefinizioneAnagrafica& clsBancheAzienda::Definizione() {
  static const DefinizioneAnagrafica d{
      "Banche Azienda",
      {{"Codice banca", TipoChiave::Testo}, {"Codice agenzia", TipoChiave::TestoBianco}},
      "Descrizione",
      "Banca Azienda",
      {"Descrizione", "Località", "Codice ABI", "Codice CAB", "Codice BIC", "Sottoconto Banca sbf",
       "Sottoconto Banca cc", "Note", "Codice SIA", "Riferimento mittente", "Conto ordinante", "Firma azienda",
       "Intendenza", "Numero autorizzazione", "Data autorizzazione", "Plafond", "IBAN", "BBAN", "CodiceCUC"}};
  return d;
}

// ---------------------------------------------------------------- stamps used

bool clsBancheAzienda::LocalizzaRecordBolliUtilizzati(Recordset& T, const Valore& Codice_Banca,
                                                      const Valore& Codice_Agenzia, const Valore& clientID, long hWnd) {
  Parametri p;
  std::string w = anagrafiche::FiltroChiavi(Bolli(), {Codice_Banca, Codice_Agenzia}, p);
  w += std::string(" AND ") + kValoreBollo + " <> 0";
  T = C().Apri("Bolli Utilizzati", w, p,
               "[Bolli Utilizzati].[Codice banca], [Bolli Utilizzati].[Codice agenzia], " + std::string(kValoreBollo));
  if (T.Eof()) return false;
  MarcaRecord(T, clientID, hWnd);
  return true;
}

bool clsBancheAzienda::SalvaRecordBolliUtilizzati(const Valore& Codice_Banca, const Valore& Codice_Agenzia,
                                                  const Valore& Valore_bollo, const Valore& Qta_bollo,
                                                  const Valore& clientID, long hWnd, bool& Cancel) {
  Cancel = false;
  // The value is typed before anything is read: a text that is no amount writes nothing.
  Valore valore = ImportoIngresso(Valore_bollo, "Valore bollo");
  if (valore.IsNull()) valore = Valore(Importo(0));
  const auto& d = Bolli();
  Valore banca = anagrafiche::ValoreChiave(d.chiavi[0], Codice_Banca);
  Valore agenzia = anagrafiche::ValoreChiave(d.chiavi[1], Codice_Agenzia);
  Parametri p;
  std::string w = anagrafiche::FiltroChiavi(d, {Codice_Banca, Codice_Agenzia}, p);
  w += std::string(" AND ") + kValoreBollo + " = ?";
  p.push_back(valore);
  return SalvaRecordProtocollo(C(), d.tabella, w, p, clientID, hWnd, Cancel, [&](Recordset& rs, bool) {
    rs("Codice banca") = banca;
    rs("Codice agenzia") = agenzia;
    rs("Valore bollo") = valore;
    rs("Qta bollo") = Qta_bollo;
  });
}

bool clsBancheAzienda::CancellaRecordBolliUtilizzati(const Valore& Codice_Banca, const Valore& Codice_Agenzia) {
  return anagrafiche::Cancella(C(), Bolli(), {Codice_Banca, Codice_Agenzia});
}

bool clsBancheAzienda::AzzeraProgressiviBolliVirtuali() {
  Connessione& cn = C();
  Atomico a(cn);
  cn.Esegui("UPDATE [Banche Azienda] SET [Plafond] = 0;");
  cn.Esegui("DELETE FROM [Bolli Utilizzati];");
  a.Conferma();
  return true;
}

// ---------------------------------------------------------------- stepping

bool clsBancheAzienda::RecordSuccessivo(Valore& Codice_Banca, Valore& Codice_Agenzia) {
  return Passo(Codice_Banca, Codice_Agenzia, true);
}

bool clsBancheAzienda::RecordPrecedente(Valore& Codice_Banca, Valore& Codice_Agenzia) {
  return Passo(Codice_Banca, Codice_Agenzia, false);
}

bool clsBancheAzienda::Passo(Valore& Codice_Banca, Valore& Codice_Agenzia, bool avanti) {
  std::string banca = TrimTesto(Codice_Banca), indice = banca + TrimTesto(Codice_Agenzia);
  std::string idx = kIndice, bnc = kBanca;
  FiltroCodice f;
  f.E("NOT " + CodiceVuoto("[Banche Azienda].[Codice banca]"));
  std::string ordine;
  if (indice.empty()) {
    ordine = avanti ? " DESC" : "";
  } else {
    // Past the current pair; a pair of the same text is told apart by its bank code.
    std::string cmp = avanti ? " > ?" : " < ?";
    f.E("(" + idx + cmp + " OR (" + idx + " = ? AND " + bnc + cmp + "))",
        {Valore(indice), Valore(indice), Valore(banca)});
    ordine = avanti ? "" : " DESC";
  }
  auto rs = C().Execute(
      "SELECT [Banche Azienda].[Codice banca], [Banche Azienda].[Codice agenzia] "
      "FROM [Banche Azienda] WHERE " +
          f.where + " ORDER BY " + idx + ordine + ", " + bnc + ordine + " LIMIT 1;",
      f.p);
  if (rs.Eof()) return false;
  Codice_Banca = Valore(TrimTesto(rs.Fields(0).Value()));
  Codice_Agenzia = Valore(TrimTesto(rs.Fields(1).Value()));
  return true;
}

// ---------------------------------------------------------------- getters

Valore clsBancheAzienda::GetDescrizioneBanca(const Valore& Codice_Banca, const Valore& Codice_Agenzia, bool* Cancel,
                                             IControllo* ControlloDaSelezionare) {
  // The message speaks for the pair: a bank of no agency is as much a code as an agency.
  Valore codice(TrimTesto(Codice_Banca) + TrimTesto(Codice_Agenzia));
  return anagrafiche::Descrizione(C(), D(), {Codice_Banca, Codice_Agenzia}, D().descrizione, codice, Cancel,
                                  ControlloDaSelezionare);
}

Valore clsBancheAzienda::GetSottocontoBanca(const Valore& Codice_Banca, const Valore& Codice_Agenzia) {
  return LeggiValore({Codice_Banca, Codice_Agenzia}, "Sottoconto Banca cc", Valore(std::string()));
}

Valore clsBancheAzienda::GetSottocontoBancaSBF(const Valore& Codice_Banca, const Valore& Codice_Agenzia) {
  return LeggiValore({Codice_Banca, Codice_Agenzia}, "Sottoconto Banca sbf", Valore(std::string()));
}

bool clsBancheAzienda::GetDatiBancaAziendaGenerazioneFlussi(Valore Codice_Banca, Valore Codice_Agenzia,
                                                            Valore& Codice_SIA, Valore& codice_ABI, Valore& codice_CAB,
                                                            Valore& conto_ordinante, Valore& Firma_azienda,
                                                            Valore& IBAN, Valore& BBAN, Valore& CodiceCUC,
                                                            Valore& Codice_BIC) {
  struct Uscita {
    const char* colonna;
    Valore& valore;
  };
  Uscita uscite[] = {{"Codice SIA", Codice_SIA},
                     {"Codice ABI", codice_ABI},
                     {"Codice CAB", codice_CAB},
                     {"Conto ordinante", conto_ordinante},
                     {"Firma azienda", Firma_azienda},
                     {"IBAN", IBAN},
                     {"BBAN", BBAN},
                     {"CodiceCUC", CodiceCUC},
                     {"Codice BIC", Codice_BIC}};
  Parametri p;
  std::string w = anagrafiche::FiltroChiavi(D(), {Codice_Banca, Codice_Agenzia}, p);
  auto rs = C().Execute("SELECT * FROM [Banche Azienda] WHERE " + w + " LIMIT 1;", p);
  bool trovata = !rs.Eof();
  for (auto& u : uscite) u.valore = trovata ? LeggiCampo(rs(u.colonna), Valore(std::string())) : Valore(std::string());
  return trovata;
}

}  // namespace vorn
