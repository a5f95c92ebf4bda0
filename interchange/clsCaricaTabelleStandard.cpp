#include "interchange/clsCaricaTabelleStandard.h"

#include <filesystem>

#include "frame/Catalogo.h"
#include "frame/Comuni.h"

namespace vorn {

namespace {

// The columns of the asset settings and references, copied by themselves.
const std::vector<std::string> kParametriCespiti = {"SogliaAmmIntegrale", "PercAbbattimAmmAnno1",
                                                    "PercManutenzioniDeducibili"};
const std::vector<std::string> kRiferimentiCespiti = {
    "CausAmAmmOrd",       "CausAmAmmAnt",         "CausAmAcquisto",       "CausAmRivalutazione",
    "CausAmSvalutazione", "CausAmDismissione",    "CausAmManutenzione",   "CausAmOneriSpese",
    "CausAmVarFondoAmmOrd", "CausAmVarFondoAmmAnt", "CausAmPlusvalReinvestita", "CausConAmmOrd",
    "CausConAmmAnt"};

// The copy of each table that has an operation of its own, by the model's table.
struct CopiaStandard {
  const char* tabella;
  bool (clsCaricaTabelleStandard::*copia)(IForm*);
};

bool Vuota(Connessione& cn, const char* tabella) {
  return NullToZeroLng(cn.Scalare(std::string("SELECT COUNT(*) FROM [") + tabella + "]")) == 0;
}

}  // namespace

void clsCaricaTabelleStandard::ConnettiDatabaseOrigine(const std::string& modello) {
  TabelleModello(modello);  // an unknown model is told here
  modello_ = modello;
}

void clsCaricaTabelleStandard::ConnettiDatabaseDestinazione(const std::string& file, const std::string& password) {
  if (!password.empty()) throw ErroreDb(0, "Le aziende SQLite non hanno password: " + file);
  std::error_code ec;
  if (!std::filesystem::is_regular_file(file, ec)) throw ErroreDb(0, "L'azienda " + file + " non esiste.");
  cn_ = Connessione::ApriSqlite(file);
}

void clsCaricaTabelleStandard::ConnettiDatabaseDestinazione(std::shared_ptr<Connessione> cn) { cn_ = std::move(cn); }

void clsCaricaTabelleStandard::DisconnettiDatabase() {
  cn_.reset();
  modello_.clear();
}

Connessione& clsCaricaTabelleStandard::Destinazione() {
  if (!cn_) throw ErroreDb(3704, "Database di destinazione non collegato.");
  return *cn_;
}

const std::string& clsCaricaTabelleStandard::Origine() {
  if (modello_.empty()) throw ErroreDb(3704, "Modello di origine non collegato.");
  return modello_;
}

bool clsCaricaTabelleStandard::Copia(IForm* form, const std::string& tabella, const std::string& destinazione) {
  if (form) form->msgbar("Caricamento " + destinazione);
  return CaricaTabellaModello(Destinazione(), Origine(), tabella, destinazione);
}

bool clsCaricaTabelleStandard::CaricaPianoDeiContiStandard(IForm* f, bool semplificati) {
  return Copia(f, semplificati ? "Piano Dei Conti Mod Semplificati" : "Piano Dei Conti", "Piano Dei Conti");
}
bool clsCaricaTabelleStandard::CaricaCausaliContabiliStandard(IForm* f, bool semplificati) {
  return Copia(f, semplificati ? "Causali Contabili Mod Semplificati" : "Causali Contabili", "Causali Contabili");
}
bool clsCaricaTabelleStandard::CaricaParametriContabiliStandard(IForm* f) {
  return Copia(f, "Parametri Vorn", "Parametri Vorn");
}
bool clsCaricaTabelleStandard::CaricaRiferimentiContabiliStandard(IForm* f) {
  return Copia(f, "Riferimenti Contabili", "Riferimenti Contabili");
}
bool clsCaricaTabelleStandard::CaricaCausaliCespitiStandard(IForm* f) {
  return Copia(f, "Causali Cespiti", "Causali Cespiti");
}
bool clsCaricaTabelleStandard::CaricaCespitiCategorieStandard(IForm* f) {
  return Copia(f, "CespitiCategorie", "CespitiCategorie");
}
bool clsCaricaTabelleStandard::CaricaParametriCespitiStandard(IForm* f) {
  return CopiaColonne(f, "Parametri Vorn", kParametriCespiti, "Carica Parametri Vorn standard");
}
bool clsCaricaTabelleStandard::CaricaRiferimentiCespitiStandard(IForm* f) {
  return CopiaColonne(f, "Riferimenti Contabili", kRiferimentiCespiti, "Carica riferimenti cespiti standard");
}

bool clsCaricaTabelleStandard::CopiaColonne(IForm* form, const std::string& tabella,
                                            const std::vector<std::string>& colonne, const std::string& titolo) {
  DatiModello d = LeggiTabellaModello(Origine(), tabella);
  if (d.righe.empty()) {
    Host().MsgBox(TestoTabellaModelloVuota(tabella), vbExclamation, titolo);
    return false;
  }
  if (form) form->msgbar("Caricamento " + tabella);
  std::string set, nomi, segnaposto;
  Parametri valori;
  for (const std::string& c : colonne)
    for (size_t i = 0; i < d.colonne.size(); ++i)
      if (UgualeNoCase(d.colonne[i].nome, c)) {
        set += (set.empty() ? "[" : ", [") + c + "] = ?";
        nomi += (nomi.empty() ? "[" : ", [") + c + "]";
        segnaposto += segnaposto.empty() ? "?" : ", ?";
        valori.push_back(d.righe.front()[i]);
      }
  if (valori.empty()) return true;
  Connessione& cn = Destinazione();
  Atomico tx(cn);
  if (cn.Esegui("UPDATE [" + tabella + "] SET " + set, valori) == 0)
    cn.Esegui("INSERT INTO [" + tabella + "] (" + nomi + ") VALUES (" + segnaposto + ")", valori);
  tx.Conferma();
  return true;
}

std::vector<EsitoTabellaModello> clsCaricaTabelleStandard::CaricaModelloCompleto(IForm* form) {
  static const CopiaStandard copie[] = {
      {"Parametri Vorn", &clsCaricaTabelleStandard::CaricaParametriContabiliStandard},
      {"Riferimenti Contabili", &clsCaricaTabelleStandard::CaricaRiferimentiContabiliStandard},
      {"Causali Cespiti", &clsCaricaTabelleStandard::CaricaCausaliCespitiStandard},
      {"CespitiCategorie", &clsCaricaTabelleStandard::CaricaCespitiCategorieStandard}};
  // Every file read and checked before the company is touched.
  const std::vector<TabellaModello> tabelle = TabelleModello(Origine());
  std::vector<size_t> righe;
  for (const auto& t : tabelle) righe.push_back(LeggiFileModello(t.file, t.tabella).righe.size());
  Connessione& cn = Destinazione();
  std::vector<EsitoTabellaModello> esito;
  Atomico tx(cn);
  for (size_t i = 0; i < tabelle.size(); ++i) {
    const std::string& t = tabelle[i].tabella;
    bool caricata;
    if (UgualeNoCase(t, "Piano Dei Conti")) caricata = CaricaPianoDeiContiStandard(form, false);
    else if (UgualeNoCase(t, "Causali Contabili")) caricata = CaricaCausaliContabiliStandard(form, false);
    else {
      const CopiaStandard* c = nullptr;
      for (const auto& x : copie)
        if (UgualeNoCase(t, x.tabella)) c = &x;
      caricata = c ? (this->*(c->copia))(form) : Copia(form, t, t);
    }
    esito.push_back({t, caricata ? righe[i] : 0, caricata});
  }
  tx.Conferma();
  return esito;
}

bool clsCaricaTabelleStandard::SetSottocontoStandardAClienti(const Valore& SottocontoApparten, long& recordsAffected) {
  recordsAffected = static_cast<long>(
      Destinazione().Esegui("UPDATE [Anagrafica Clienti] SET [SottocontoApparten] = ?", {SottocontoApparten}));
  return true;
}

bool clsCaricaTabelleStandard::SetSottocontoStandardAFornitori(const Valore& SottocontoApparten,
                                                               long& recordsAffected) {
  recordsAffected = static_cast<long>(
      Destinazione().Esegui("UPDATE [Anagrafica Fornitori] SET [SottocontoApparten] = ?", {SottocontoApparten}));
  return true;
}

namespace {
const char* const kSottocontiAzienda =
    "[SottocontoClienti], [SottocontoFornitori], [SottocontoBanca], [Contropartita costo], [Contropartita ricavo]";
}

bool clsCaricaTabelleStandard::SetSottocontiStandard(const Valore& SottocontoClienti, const Valore& SottocontoFornitori,
                                                     const Valore& SottocontoBanca, const Valore& Contropartita_costo,
                                                     const Valore& Contropartita_ricavo) {
  Connessione& cn = Destinazione();
  const Parametri p = {SottocontoClienti, SottocontoFornitori, SottocontoBanca, Contropartita_costo,
                       Contropartita_ricavo};
  Atomico tx(cn);
  if (cn.Esegui("UPDATE [Tabella Azienda] SET [SottocontoClienti] = ?, [SottocontoFornitori] = ?, [SottocontoBanca] = "
                "?, [Contropartita costo] = ?, [Contropartita ricavo] = ?",
                p) == 0)
    cn.Esegui(std::string("INSERT INTO [Tabella Azienda] (") + kSottocontiAzienda + ") VALUES (?, ?, ?, ?, ?)", p);
  tx.Conferma();
  return true;
}

bool clsCaricaTabelleStandard::GetSottocontiStandard(Valore& SottocontoClienti, Valore& SottocontoFornitori,
                                                     Valore& SottocontoBanca, Valore& Contropartita_costo,
                                                     Valore& Contropartita_ricavo) {
  Valore* uscite[] = {&SottocontoClienti, &SottocontoFornitori, &SottocontoBanca, &Contropartita_costo,
                      &Contropartita_ricavo};
  for (Valore* u : uscite) *u = Valore("");
  bool trovata = false;
  Destinazione().Scorri(std::string("SELECT ") + kSottocontiAzienda + " FROM [Tabella Azienda]", {},
                        [&](const std::vector<Colonna>&, const std::vector<Valore>& v) {
                          for (size_t i = 0; i < 5; ++i) *uscite[i] = Valore(Trim(v[i].Testo()));
                          trovata = true;
                          return false;
                        });
  return trovata;
}

bool clsCaricaTabelleStandard::InsertContropartiteStandard(const Valore& Codice_sottoconto,
                                                           const Valore& Descrizione_sottoconto) {
  Connessione& cn = Destinazione();
  Atomico tx(cn);
  if (NullToZeroLng(cn.Scalare("SELECT COUNT(*) FROM [Contropartite] WHERE [Codice sottoconto] = ?",
                               {Codice_sottoconto})) == 0)
    cn.Esegui("INSERT INTO [Contropartite] ([Codice sottoconto], [Descrizione sottoconto]) VALUES (?, ?)",
              {Codice_sottoconto, Descrizione_sottoconto});
  tx.Conferma();
  return true;
}

std::string clsCaricaTabelleStandard::GetDesSottocontoStandard(const Valore& sottoconto) {
  const std::string s = Trim(sottoconto.Testo());
  if (s.size() != 7) return "";
  return Trim(Destinazione()
                  .Scalare("SELECT [Descrizione] FROM [Piano Dei Conti] WHERE [Gruppo] = ? AND [Conto] = ? AND "
                           "[Sottoconto] = ?",
                           {Valore(s.substr(0, 2)), Valore(s.substr(2, 2)), Valore(s.substr(4))})
                  .Testo());
}

bool clsCaricaTabelleStandard::GetImportiFissiVornStandard(double& PercCalcoloAcconto, Importo& ImportoMinAcconto,
                                                           Importo& ImportoMinLiqIva, double& PercMaggTrim,
                                                           double& PercForfSemp) {
  PercCalcoloAcconto = PercMaggTrim = PercForfSemp = 0;
  ImportoMinAcconto = ImportoMinLiqIva = Importo();
  bool trovata = false;
  Destinazione().Scorri("SELECT [PercCalcoloAcconto], [ImportoMinAcconto], [ImportoMinLiqIva], [PercMaggTrim], "
                        "[PercForfSemp] FROM [Importi Fissi]",
                        {}, [&](const std::vector<Colonna>&, const std::vector<Valore>& v) {
                          PercCalcoloAcconto = NullToZeroDbl(v[0]);
                          ImportoMinAcconto = NullToZeroCy(v[1]);
                          ImportoMinLiqIva = NullToZeroCy(v[2]);
                          PercMaggTrim = NullToZeroDbl(v[3]);
                          PercForfSemp = NullToZeroDbl(v[4]);
                          trovata = true;
                          return false;
                        });
  return trovata;
}

bool clsCaricaTabelleStandard::SetImportiFissiVornStandard(double PercCalcoloAcconto, Importo ImportoMinAcconto,
                                                           Importo ImportoMinLiqIva, double PercMaggTrim,
                                                           double PercForfSemp) {
  Connessione& cn = Destinazione();
  const Parametri p = {Valore(PercCalcoloAcconto), Valore(ImportoMinAcconto), Valore(ImportoMinLiqIva),
                       Valore(PercMaggTrim), Valore(PercForfSemp)};
  Atomico tx(cn);
  if (cn.Esegui("UPDATE [Importi Fissi] SET [PercCalcoloAcconto] = ?, [ImportoMinAcconto] = ?, [ImportoMinLiqIva] = ?, "
                "[PercMaggTrim] = ?, [PercForfSemp] = ?",
                p) == 0)
    cn.Esegui("INSERT INTO [Importi Fissi] ([PercCalcoloAcconto], [ImportoMinAcconto], [ImportoMinLiqIva], "
              "[PercMaggTrim], [PercForfSemp]) VALUES (?, ?, ?, ?, ?)",
              p);
  tx.Conferma();
  return true;
}

bool clsCaricaTabelleStandard::SetArchivioContropartiteVorn() {
  Connessione& cn = Destinazione();
  Atomico tx(cn);
  if (cn.Esegui("UPDATE [Tabella Azienda] SET [ArchivioContropartite] = '1'") == 0)
    cn.Esegui("INSERT INTO [Tabella Azienda] ([ArchivioContropartite]) VALUES ('1')");
  tx.Conferma();
  return true;
}

bool clsCaricaTabelleStandard::SetRegimeContabile(const Valore& regimeContabile) {
  Connessione& cn = Destinazione();
  Atomico tx(cn);
  if (cn.Esegui("UPDATE [Parametri Vorn] SET [regimeContabile] = ?", {regimeContabile}) == 0)
    cn.Esegui("INSERT INTO [Parametri Vorn] ([regimeContabile]) VALUES (?)", {regimeContabile});
  tx.Conferma();
  return true;
}

bool clsGestioneAziende::PianoDeiContiVuoto(Connessione& cn) { return Vuota(cn, "Piano Dei Conti"); }
bool clsGestioneAziende::CausaliContabiliVuote(Connessione& cn) { return Vuota(cn, "Causali Contabili"); }

namespace {
std::shared_ptr<Connessione> ApriInLettura(const std::string& file, const std::string& password) {
  if (!password.empty()) throw ErroreDb(0, "Le aziende SQLite non hanno password: " + file);
  std::error_code ec;
  if (!std::filesystem::is_regular_file(file, ec)) throw ErroreDb(0, "L'azienda " + file + " non esiste.");
  OpzioniSqlite o;
  o.solaLettura = true;
  return Connessione::ApriSqlite(file, o);
}
}  // namespace

bool clsGestioneAziende::PianoDeiContiVuotoSQLite(const std::string& file, const std::string& password) {
  return PianoDeiContiVuoto(*ApriInLettura(file, password));
}
bool clsGestioneAziende::CausaliContabiliVuoteSQLite(const std::string& file, const std::string& password) {
  return CausaliContabiliVuote(*ApriInLettura(file, password));
}

}  // namespace vorn
