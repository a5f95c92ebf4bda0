#include "masterdata/clsClientiFornitori.h"

#include "frame/Comuni.h"

namespace vorn {

namespace {

const char* const kSaldi[] = {"SaldoInizPeriodo", "SaldoDarePeriodo", "SaldoAverePeriodo",
                              "SaldoInizProgress", "SaldoDareProgress", "SaldoAvereProgress"};

DefinizioneAnagrafica Registro(const char* tabella) {
  return DefinizioneAnagrafica{
      tabella, {{"Codice Cliente"}}, "Ragione Sociale", "Clienti/Fornitori", clsClientiFornitori::ColonneSalvaRecord()};
}

Valore Vuoto() { return Valore(std::string()); }

bool Blank(const Valore& v) { return Trim(v.Testo()).empty(); }

// The columns `colonne` of the row of a client or supplier found by its code and, when given,
// by the sub-account it belongs to.
Recordset LeggiRiga(Connessione& cn, const DefinizioneAnagrafica& d, const Valore& codice, const std::string& colonne,
                    const std::optional<Valore>& sottoconto = std::nullopt) {
  Parametri p;
  std::string w = anagrafiche::FiltroChiavi(d, {codice}, p);
  if (sottoconto) {
    w += " AND [" + d.tabella + "].[SottocontoApparten] = ?";
    p.push_back(*sottoconto);
  }
  return cn.Execute("SELECT " + colonne + " FROM [" + d.tabella + "] WHERE " + w + " LIMIT 1;", p);
}

}  // namespace

SaldoCliFor CalcolaSaldoCliFor(Recordset& rs) {
  Importo s[6];
  for (int i = 0; i < 6; ++i) s[i] = NullToZeroCy(LeggiCampo(rs(kSaldi[i]), Valore(0)));
  SaldoCliFor r;
  r.iniziale = s[0] + s[3];
  r.attuale = s[0] + s[1] - s[2] + s[3] + s[4] - s[5];
  return r;
}

std::string SegnoDareAvere(Importo saldo) {
  if (saldo > Importo()) return "D";
  if (saldo < Importo()) return "A";
  return "";
}

const std::vector<std::string>& clsClientiFornitori::ColonneSalvaRecord() {
  static const std::vector<std::string> c{
      "Codice Iva", "Descrizione Iva", "Aliquota", "Numero Esenzione", "Data Esenzione", "Protocollo Esenzione",
      "Codice zona", "Codice sottozona", "Descrizione Zona", "Descrizione Sottozona", "Codice gruppo",
      "Codice Pagamento", "Descrizione Pagamento", "1 Mese Escluso", "2 Mese Escluso", "Scadenza al",
      "Codice Banca", "Descrizione Banca", "Codice Agenzia", "Descrizione Agenzia", "Numero C/C", "IBAN", "BBAN",
      "Numero Listino", "Descrizione Listino", "Codice valuta", "Sconto %", "Sconto2 %", "Saldo", "Fido",
      "Scaglione provvigioni", "Scaglione provvigioni subagente", "Provvigioni su ricavo", "Cod agente",
      "Rag agente", "Cod Subagente", "Rag Subagente", "Addebito spese incasso", "Addebito bolli in fattura",
      "Scorporo iva", "Fattura riepilogativa", "Stampa prezzi in DDT", "No stampa codart docven",
      "Gestione ultimi prezzi", "Proposta ultimi prezzi", "Note su documenti vendita", "Note2", "ContrCostoRic",
      "SottocontoApparten", "Tipo soggetto allegati", "No su Allegati IVA", "Lingua", "NumeroIscrizioneAlbo"};
  return c;
}

const std::vector<std::string>& clsClientiFornitori::ColonneSalvaRecord2() {
  static const std::vector<std::string> c{"Sconto articolo %", "Sconto2 articolo %", "Codice Univoco PA",
                                          "IndModalitaCorrisp", "IndTipoSoggettoFE"};
  return c;
}

const std::vector<std::string>& clsClientiFornitori::ColonneSaldi() {
  static const std::vector<std::string> c(std::begin(kSaldi), std::end(kSaldi));
  return c;
}

const std::vector<std::string>& clsClientiFornitori::ColonneDatiAnagrafici() {
  static const std::vector<std::string> c{
      "Ragione Sociale", "Ragione Sociale 2", "Indirizzo", "Cap", "Località", "Provincia", "Telefono", "Fax",
      "Cellulare", "Telefono2", "Fax2", "Cellulare2", "Partita Iva", "Codice Nazione", "Codice Fiscale",
      "Persona Fisica", "Richiesta trattamento dati", "Autorizzazione trattamento dati", "Codice selezione",
      "Libero1", "Libero2", "Libero3", "Libero4", "Libero5", "Libero6", "Libero7", "Libero8", "Libero9", "Libero10",
      "Contatto", "E-mail", "PEC", "Sito Web", "User Web", "Password Web", "Cognome", "Nome", "Località nascita",
      "Provincia nascita", "Nazione nascita", "Nazione Domicilio", "Data nascita", "Sesso", "Note", "Obsoleto"};
  return c;
}

const std::vector<std::string>& clsClientiFornitori::ColonneDatiTrasporto() {
  static const std::vector<std::string> c{"Cod Aspetto Beni", "Des Aspetto Beni", "Cod Porto", "Des Porto",
                                          "Cod Mezzo", "Des Mezzo", "Mezzo di trasporto", "Cod Vettore",
                                          "Rag Vettore", "Codice Banca Azienda", "Codice Agenzia Azienda",
                                          "FlagVettore"};
  return c;
}

const DefinizioneAnagrafica& clsClientiFornitori::Definizione(const Valore& IndClienteFornitore) {
  static const DefinizioneAnagrafica clienti = Registro("Anagrafica Clienti");
  static const DefinizioneAnagrafica fornitori = Registro("Anagrafica Fornitori");
  std::string ind = Trim(IndClienteFornitore.Testo());
  if (ind == "C") return clienti;
  if (ind == "F") return fornitori;
  throw ErroreDb(3001, "IndClienteFornitore non valido: '" + IndClienteFornitore.Testo() + "' (atteso C o F).");
}

// ---------------------------------------------------------------- record operations

bool clsClientiFornitori::LocalizzaRecord(Recordset& T, const Valore& IndClienteFornitore,
                                          const Valore& Codice_Cliente, const Valore& clientID, long hWnd) {
  return anagrafiche::Localizza(C(), Definizione(IndClienteFornitore), T, {Codice_Cliente}, clientID, hWnd);
}

bool clsClientiFornitori::LocalizzaRecordSaldi(Recordset& T, const Valore& IndClienteFornitore,
                                               const Valore& Codice_Cliente, const Valore& clientID, long hWnd) {
  const auto& d = Definizione(IndClienteFornitore);
  Parametri p;
  std::string w = anagrafiche::FiltroChiavi(d, {Codice_Cliente}, p);
  std::string t = "[" + d.tabella + "]";
  std::string sql = "SELECT " + t + ".[Codice Cliente]";
  for (const char* s : kSaldi) sql += ", " + t + ".[" + s + "]";
  sql += ", " + t + ".[clientName], " + t + ".[hWnd] FROM " + t + " WHERE " + w + ";";
  T = C().ApriSql(sql, p);
  if (T.Eof()) return false;
  MarcaRecord(T, clientID, hWnd);
  return true;
}

bool clsClientiFornitori::Salva(const Valore& ind, const Valore& codice, const RecordValori& valori,
                                const std::vector<std::string>& colonne, const Valore& clientID, long hWnd,
                                bool& Cancel, bool NoPrompt) {
  return anagrafiche::Salva(C(), Definizione(ind), {codice}, valori, colonne, clientID, hWnd, Cancel, NoPrompt);
}

bool clsClientiFornitori::SalvaRecord(const Valore& IndClienteFornitore, const Valore& Codice_Cliente,
                                      const RecordValori& valori, const Valore& clientID, long hWnd, bool& Cancel,
                                      bool NoPrompt) {
  return Salva(IndClienteFornitore, Codice_Cliente, valori, ColonneSalvaRecord(), clientID, hWnd, Cancel, NoPrompt);
}

bool clsClientiFornitori::SalvaRecord2(const Valore& IndClienteFornitore, const Valore& Codice_Cliente,
                                       const Valore& ScontoArticolo_, const Valore& Sconto2Articolo_,
                                       const Valore& Codice_Univoco_PA, const Valore& IndModalitaCorrisp,
                                       const Valore& IndTipoSoggettoFE, const Valore& clientID, long hWnd,
                                       bool& Cancel, bool NoPrompt) {
  auto r = anagrafiche::Record(ColonneSalvaRecord2(), {ScontoArticolo_, Sconto2Articolo_, Codice_Univoco_PA,
                                                       IndModalitaCorrisp, IndTipoSoggettoFE});
  return Salva(IndClienteFornitore, Codice_Cliente, r, ColonneSalvaRecord2(), clientID, hWnd, Cancel, NoPrompt);
}

bool clsClientiFornitori::SalvaRecordSaldi(const Valore& IndClienteFornitore, const Valore& Codice_Cliente,
                                           const Valore& SaldoInizPeriodo, const Valore& SaldoDarePeriodo,
                                           const Valore& SaldoAverePeriodo, const Valore& SaldoInizProgress,
                                           const Valore& SaldoDareProgress, const Valore& SaldoAvereProgress,
                                           const Valore& clientID, long hWnd, bool& Cancel, bool NoPrompt) {
  auto r = anagrafiche::Record(ColonneSaldi(), {SaldoInizPeriodo, SaldoDarePeriodo, SaldoAverePeriodo,
                                                SaldoInizProgress, SaldoDareProgress, SaldoAvereProgress});
  return Salva(IndClienteFornitore, Codice_Cliente, r, ColonneSaldi(), clientID, hWnd, Cancel, NoPrompt);
}

bool clsClientiFornitori::SalvaRecordDatiAnagrafici(const Valore& IndClienteFornitore, const Valore& Codice_Cliente,
                                                    const RecordValori& valori, const Valore& clientID, long hWnd,
                                                    bool& Cancel, bool NoPrompt) {
  return Salva(IndClienteFornitore, Codice_Cliente, valori, ColonneDatiAnagrafici(), clientID, hWnd, Cancel,
               NoPrompt);
}

bool clsClientiFornitori::SalvaRecordDatiTrasporto(const Valore& IndClienteFornitore, const Valore& Codice_Cliente,
                                                   const RecordValori& valori, const Valore& clientID, long hWnd,
                                                   bool& Cancel, bool NoPrompt) {
  return Salva(IndClienteFornitore, Codice_Cliente, valori, ColonneDatiTrasporto(), clientID, hWnd, Cancel,
               NoPrompt);
}

// ---------------------------------------------------------------- navigation and deletion

bool clsClientiFornitori::CancellaRecord(const Valore& IndClienteFornitore, const Valore& Codice_Cliente) {
  return anagrafiche::Cancella(C(), Definizione(IndClienteFornitore), {Codice_Cliente});
}

bool clsClientiFornitori::RecordSuccessivo(const Valore& IndClienteFornitore, Valore& Codice_Cliente) {
  return anagrafiche::Passo(C(), Definizione(IndClienteFornitore), {}, Codice_Cliente, true);
}

bool clsClientiFornitori::RecordPrecedente(const Valore& IndClienteFornitore, Valore& Codice_Cliente) {
  return anagrafiche::Passo(C(), Definizione(IndClienteFornitore), {}, Codice_Cliente, false);
}

std::string clsClientiFornitori::GetMaxCodice(const Valore& IndClienteFornitore) {
  return anagrafiche::MaxCodice(C(), Definizione(IndClienteFornitore), 0);
}

bool clsClientiFornitori::AzzeraClienti() {
  C().Esegui("DELETE FROM [Anagrafica Clienti];");
  return true;
}

bool clsClientiFornitori::AzzeraFornitori() {
  C().Esegui("DELETE FROM [Anagrafica Fornitori];");
  return true;
}

bool clsClientiFornitori::AzzeraSaldi() {
  std::string set;
  for (const char* s : kSaldi) set += std::string(set.empty() ? "" : ", ") + "[" + s + "] = 0";
  Atomico a(C());
  C().Esegui("UPDATE [Anagrafica Clienti] SET " + set + ";");
  C().Esegui("UPDATE [Anagrafica Fornitori] SET " + set + ";");
  a.Conferma();
  return true;
}

// ---------------------------------------------------------------- getters

Valore clsClientiFornitori::Colonna(const Valore& ind, const Valore& codice, const char* colonna) {
  return anagrafiche::LeggiColonna(C(), Definizione(ind), {codice}, colonna).value_or(Vuoto());
}

Valore clsClientiFornitori::GetContropartitaCostoRicavo(const Valore& I, const Valore& c) {
  return Colonna(I, c, "ContrCostoRic");
}
Valore clsClientiFornitori::GetSottocontoCliFor(const Valore& I, const Valore& c) {
  return Colonna(I, c, "SottocontoApparten");
}
std::vector<Valore> clsClientiFornitori::GetSottocontiCliFor(const Valore& I, const std::vector<std::string>& codici) {
  std::vector<anagrafiche::Chiavi> chiavi;
  chiavi.reserve(codici.size());
  for (const auto& c : codici) chiavi.push_back({Valore(c)});
  std::vector<Valore> valori;
  for (auto& v : anagrafiche::LeggiColonnaDi(C(), Definizione(I), chiavi, "SottocontoApparten"))
    valori.push_back(v.value_or(Vuoto()));
  return valori;
}
Valore clsClientiFornitori::GetPagamentoCliFor(const Valore& I, const Valore& c) {
  return Colonna(I, c, "Codice Pagamento");
}
Valore clsClientiFornitori::GetAgenteCliFor(const Valore& I, const Valore& c) { return Colonna(I, c, "Cod agente"); }
Valore clsClientiFornitori::GetValutaCliFor(const Valore& I, const Valore& c) { return Colonna(I, c, "Codice valuta"); }
Valore clsClientiFornitori::GetBancaCliFor(const Valore& I, const Valore& c) { return Colonna(I, c, "Codice Banca"); }
Valore clsClientiFornitori::GetIBANCliFor(const Valore& I, const Valore& c) { return Colonna(I, c, "IBAN"); }
Valore clsClientiFornitori::GetBBANCliFor(const Valore& I, const Valore& c) { return Colonna(I, c, "BBAN"); }
Valore clsClientiFornitori::GetAgenziaCliFor(const Valore& I, const Valore& c) {
  return Colonna(I, c, "Codice Agenzia");
}
Valore clsClientiFornitori::GetContoCorrenteCliFor(const Valore& I, const Valore& c) {
  return Colonna(I, c, "Numero C/C");
}
Valore clsClientiFornitori::GetLocalitàCliFor(const Valore& I, const Valore& c) { return Colonna(I, c, "Località"); }
Valore clsClientiFornitori::GetNazioneCliFor(const Valore& I, const Valore& c) {
  return Colonna(I, c, "Codice Nazione");
}
Valore clsClientiFornitori::GetCodiceFiscaleCliFor(const Valore& I, const Valore& c) {
  return Colonna(I, c, "Codice Fiscale");
}

double clsClientiFornitori::GetFidoCliFor(const Valore& IndClienteFornitore, const Valore& Codice_Cliente) {
  auto v = anagrafiche::LeggiColonna(C(), Definizione(IndClienteFornitore), {Codice_Cliente}, "Fido", Valore(0));
  return v ? NullToZeroDbl(*v) : 0.0;
}

Valore clsClientiFornitori::GetRagioneSocialeCliFor(const Valore& IndClienteFornitore, const Valore& Codice_Cliente,
                                                    const std::optional<Valore>& SottocontoApparten, bool* Cancel,
                                                    IControllo* ControlloDaSelezionare) {
  const auto& d = Definizione(IndClienteFornitore);
  auto rs = LeggiRiga(C(), d, Codice_Cliente, "[" + d.tabella + "].[Ragione Sociale]", SottocontoApparten);
  if (!rs.Eof()) return LeggiCampo(rs.Fields(0), Vuoto());
  anagrafiche::SegnalaInesistente(Codice_Cliente, Cancel, ControlloDaSelezionare, d.titolo);
  return Vuoto();
}

bool clsClientiFornitori::ExistClienteFornitore(const Valore& IndClienteFornitore, const Valore& Codice_Cliente,
                                                const std::optional<Valore>& SottocontoApparten) {
  const auto& d = Definizione(IndClienteFornitore);
  return !LeggiRiga(C(), d, Codice_Cliente, "[" + d.tabella + "].[Codice Cliente]", SottocontoApparten).Eof();
}

bool clsClientiFornitori::EsisteAltro(const Valore& ind, const Valore& codice, const char* colonna,
                                      const Valore& valore) {
  const auto& d = Definizione(ind);
  if (Blank(valore)) return false;
  std::string t = "[" + d.tabella + "]";
  auto rs = C().Execute("SELECT " + t + ".[" + colonna + "] FROM " + t + " WHERE (" + t + ".[Codice Cliente] <> ? OR " +
                            t + ".[Codice Cliente] IS NULL) AND " + t + ".[" + colonna + "] = ? LIMIT 1;",
                        {Valore(codice.Testo()), valore});
  return !rs.Eof();
}

bool clsClientiFornitori::ExistPartitaIVA(const Valore& IndClienteFornitore, const Valore& Codice_Cliente,
                                          const Valore& Partita_IVA) {
  return EsisteAltro(IndClienteFornitore, Codice_Cliente, "Partita IVA", Partita_IVA);
}

bool clsClientiFornitori::ExistCodiceFiscale(const Valore& IndClienteFornitore, const Valore& Codice_Cliente,
                                             const Valore& Codice_Fiscale) {
  return EsisteAltro(IndClienteFornitore, Codice_Cliente, "Codice Fiscale", Codice_Fiscale);
}

bool clsClientiFornitori::GetIntestazioneCliFor(const Valore& IndClienteFornitore, const Valore& Codice_Cliente,
                                                Valore& Ragione_Sociale, Valore& Indirizzo, Valore& Cap,
                                                Valore& Località, Valore& Provincia) {
  auto rs = LeggiRiga(C(), Definizione(IndClienteFornitore), Codice_Cliente,
                      "[Ragione Sociale], [Indirizzo], [Cap], [Località], [Provincia]");
  if (rs.Eof()) {
    Ragione_Sociale = Indirizzo = Cap = Località = Provincia = Vuoto();
    return false;
  }
  Ragione_Sociale = LeggiCampo(rs(0), Vuoto());
  Indirizzo = LeggiCampo(rs(1), Vuoto());
  Cap = LeggiCampo(rs(2), Vuoto());
  Località = LeggiCampo(rs(3), Vuoto());
  Provincia = LeggiCampo(rs(4), Vuoto());
  return true;
}

bool clsClientiFornitori::GetDatiAnagraficiCompletiCliFor(const Valore& IndClienteFornitore,
                                                          const Valore& Codice_Cliente, std::string& Ragione_Sociale,
                                                          std::string& Ragione_Sociale_2, std::string& Codice_Fiscale,
                                                          std::string& Partita_Iva, std::string& Indirizzo,
                                                          std::string& Cap, std::string& Località,
                                                          std::string& Provincia) {
  auto rs = LeggiRiga(C(), Definizione(IndClienteFornitore), Codice_Cliente,
                      "[Ragione Sociale], [Ragione Sociale 2], [Codice Fiscale], [Partita Iva], [Indirizzo], [Cap], "
                      "[Località], [Provincia]");
  std::string* out[] = {&Ragione_Sociale, &Ragione_Sociale_2, &Codice_Fiscale, &Partita_Iva,
                        &Indirizzo,       &Cap,               &Località,       &Provincia};
  bool trovato = !rs.Eof();
  for (int i = 0; i < 8; ++i) *out[i] = trovato ? LeggiCampo(rs(i), Vuoto()).Testo() : std::string();
  return trovato;
}

bool clsClientiFornitori::GetDatiPersonaFisicaCliFor(const Valore& IndClienteFornitore, const Valore& Codice_Cliente,
                                                     std::string& IndPersonaFisica, std::string& Nome,
                                                     std::string& Cognome, std::string& DataDiNascita,
                                                     std::string& Sesso, std::string& LuogoDiNascita,
                                                     std::string& ProvinciaDiNascita) {
  auto rs = LeggiRiga(C(), Definizione(IndClienteFornitore), Codice_Cliente,
                      "[Persona Fisica], [Nome], [Cognome], [Data nascita], [Sesso], [Località nascita], "
                      "[Provincia nascita]");
  if (rs.Eof()) {
    IndPersonaFisica = "0";
    Sesso = "1";
    Nome = Cognome = DataDiNascita = LuogoDiNascita = ProvinciaDiNascita = "";
    return false;
  }
  IndPersonaFisica = LeggiCampo(rs(0), Valore("0")).Testo();
  Nome = LeggiCampo(rs(1), Vuoto()).Testo();
  Cognome = LeggiCampo(rs(2), Vuoto()).Testo();
  // A missing date stays empty: no date of 1899 in a fiscal statement.
  DataDiNascita = rs(3).IsNull() ? std::string() : FormattaCampo(rs(3), Vuoto());
  Sesso = LeggiCampo(rs(4), Valore("F")).Testo();
  LuogoDiNascita = LeggiCampo(rs(5), Vuoto()).Testo();
  ProvinciaDiNascita = LeggiCampo(rs(6), Vuoto()).Testo();
  return true;
}

Valore clsClientiFornitori::GetParametriPredefinitiCliFor() { return Valore(); }

// ---------------------------------------------------------------- balances

void clsClientiFornitori::GetDareAvereSaldoClienteFornitore(Valore IndClienteFornitore, Valore Codice_Cliente,
                                                           Valore& DareAvereIniziale, Valore& SaldoIniziale,
                                                           Valore& DareAvereAttuale, Valore& SaldoAttuale) {
  std::string colonne;
  for (size_t i = 0; i < 6; ++i) colonne += std::string(i ? ", " : "") + "[" + kSaldi[i] + "]";
  auto rs = LeggiRiga(C(), Definizione(IndClienteFornitore), Codice_Cliente, colonne);
  SaldoCliFor s;
  if (!rs.Eof()) s = CalcolaSaldoCliFor(rs);
  DareAvereIniziale = Valore(SegnoDareAvere(s.iniziale));
  DareAvereAttuale = Valore(SegnoDareAvere(s.attuale));
  SaldoIniziale = Valore(s.iniziale < Importo() ? -s.iniziale : s.iniziale);
  SaldoAttuale = Valore(s.attuale < Importo() ? -s.attuale : s.attuale);
}

std::string clsClientiFornitori::GetTipoSottoconto(const Valore& sottoconto, const Valore (&str_GruppiContiClienti)[6],
                                                   const Valore (&str_GruppiContiFornitori)[6]) {
  std::string prefisso = SinistraTesto(sottoconto.Testo(), 4);
  auto cerca = [&](const Valore (&gruppi)[6]) {
    for (int i = 1; i <= 5; ++i) {
      std::string g = gruppi[i].Testo();
      if (!Trim(g).empty() && g == prefisso) return true;
    }
    return false;
  };
  if (cerca(str_GruppiContiClienti)) return "C";
  if (cerca(str_GruppiContiFornitori)) return "F";
  return "";
}

}  // namespace vorn
