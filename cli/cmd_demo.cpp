// vorn demo: a company from the standard model filled with a year of made-up but consistent
// books, then the steps of the demo (Demo.h) in order.
#include <algorithm>
#include <deque>
#include <filesystem>
#include <map>
#include <ostream>
#include <set>
#include <stdexcept>

#include "cli/Comandi.h"
#include "cli/Demo.h"
#include "company/clsImportiFissi.h"
#include "company/clsTabRiferimenti.h"
#include "frame/Casuale.h"
#include "frame/Comuni.h"
#include "frame/Formato.h"
#include "frame/Schema.h"
#include "interchange/ModelloStandard.h"
#include "ledger/clsPrimaNota.h"
#include "receivables/FattureEsempio.h"
#include "receivables/clsElaboraFatture.h"

namespace vorn::cli {

namespace {

Importo Euro(int64_t centesimi) { return Importo::DaRaw(centesimi * 100); }

// The series of the sales register under which the intra-community purchases are integrated.
const char* const kSerieIntegrazioni = "INT";

struct Luogo {
  const char* citta;
  const char* provincia;
  const char* cap;
  const char* ufficio;  // the office code of a VAT number of that province
};
const std::vector<Luogo>& Luoghi() {
  static const std::vector<Luogo> v = {
      {"Milano", "MI", "20121", "015"},   {"Torino", "TO", "10121", "001"},   {"Bologna", "BO", "40121", "037"},
      {"Firenze", "FI", "50122", "048"},  {"Roma", "RM", "00184", "058"},     {"Napoli", "NA", "80133", "063"},
      {"Bari", "BA", "70121", "072"},     {"Verona", "VR", "37121", "023"},   {"Padova", "PD", "35122", "028"},
      {"Brescia", "BS", "25121", "017"},  {"Bergamo", "BG", "24121", "016"},  {"Parma", "PR", "43121", "034"},
      {"Genova", "GE", "16121", "010"},   {"Ancona", "AN", "60121", "042"},   {"Perugia", "PG", "06121", "054"},
      {"Palermo", "PA", "90133", "082"},  {"Cagliari", "CA", "09124", "092"}, {"Trento", "TN", "38122", "022"},
      {"Udine", "UD", "33100", "030"},    {"Modena", "MO", "41121", "036"},
  };
  return v;
}
const std::vector<std::string> kCognomi = {
    "Rossi",   "Bianchi", "Ferrari", "Russo",  "Romano", "Colombo", "Ricci",   "Marino",  "Greco",  "Bruno",
    "Gallo",   "Conti",   "Costa",   "Giordano", "Mancini", "Rizzo", "Lombardi", "Moretti", "Barbieri", "Fontana",
    "Santoro", "Mariani", "Rinaldi", "Caruso", "Ferri",  "Galli",   "Martini", "Leone",   "Longo",  "Gentile"};
const std::vector<std::string> kAttivita = {
    "Meccanica", "Forniture", "Trasporti", "Costruzioni", "Elettronica", "Alimentari", "Arredamenti",
    "Tessile",   "Impianti",  "Informatica", "Commerciale", "Servizi",   "Logistica",   "Ceramiche"};
const std::vector<std::string> kForme = {"S.r.l.", "S.p.A.", "S.n.c.", "S.a.s.", "S.r.l.s."};
const std::vector<std::string> kVie = {"Via Roma", "Via Garibaldi", "Corso Italia", "Via Mazzini", "Via Verdi",
                                       "Viale Europa", "Via Dante", "Piazza della Repubblica", "Via Cavour"};

// A VAT number with its check digit.
std::string PartitaIva(int64_t matricola, const std::string& ufficio) {
  std::string s = Format(Valore(static_cast<long long>(matricola)), "0000000") + ufficio;
  int somma = 0;
  for (size_t i = 0; i < 10; ++i) {
    int d = s[i] - '0';
    if (i % 2 == 1) {
      d *= 2;
      if (d > 9) d -= 9;
    }
    somma += d;
  }
  return s + static_cast<char>('0' + (10 - somma % 10) % 10);
}

struct Aperta {
  int64_t centesimi;
  long documento;
};

struct Soggetto {
  std::string codice, ragione, sottoconto, codiceIva, nazione, pagamento;
  std::deque<Aperta> aperte;
};

struct Estero {
  const char* nazione;
  const char* citta;
};

// What the demo makes up, before it writes: the counterparties.
std::vector<Soggetto> CreaSoggetti(Connessione& cn, Casuale& r, bool clienti, int quanti) {
  std::vector<Soggetto> v;
  const std::string tabella = clienti ? "Anagrafica Clienti" : "Anagrafica Fornitori";
  const std::vector<Estero> cee = {{"DE", "München"}, {"FR", "Lyon"}, {"ES", "Barcelona"}, {"AT", "Wien"}};
  const std::vector<Estero> extra = {{"CH", "Lugano"}, {"US", "New York"}, {"GB", "London"}};
  const std::vector<std::string> pagamentiClienti = {"RB30", "RB60", "R306", "R369", "BB30", "BB60", "RD0"};
  const std::vector<std::string> pagamentiFornitori = {"BB30", "BB60", "BB90", "RD30", "RD0"};
  std::string sql = "INSERT INTO [" + tabella +
                    "] ([Codice Cliente], [Ragione Sociale], [Indirizzo], [Cap], [Località], [Provincia], "
                    "[Codice Nazione], [Partita Iva], [Codice Fiscale], [Persona Fisica], [Codice Iva], "
                    "[Codice Pagamento], [Descrizione Pagamento], [SottocontoApparten], [E-mail], [Telefono], "
                    "[Saldo], [SaldoInizPeriodo], [SaldoDarePeriodo], [SaldoAverePeriodo], [SaldoInizProgress], "
                    "[SaldoDareProgress], [SaldoAvereProgress]) "
                    "VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?, '0', ?, ?, "
                    "(SELECT [Descrizione Pagamento] FROM [Pagamenti] WHERE [Codice Pagamento] = ?), ?, ?, ?, "
                    "0, 0, 0, 0, 0, 0, 0)";
  bool unPubblico = false;
  for (int i = 1; i <= quanti; ++i) {
    Soggetto s;
    s.codice = std::to_string(i);
    std::string cognome = r.Scegli(kCognomi), attivita = r.Scegli(kAttivita), forma = r.Scegli(kForme);
    s.ragione = cognome + " " + attivita + " " + forma;
    size_t area = r.Pesato({85, 10, 5});
    std::string indirizzo = r.Scegli(kVie) + ", " + std::to_string(r.Tra(1, 180));
    std::string cap, citta, provincia, piva;
    if (area == 0) {
      const Luogo& l = r.Scegli(Luoghi());
      cap = l.cap, citta = l.citta, provincia = l.provincia;
      piva = PartitaIva(r.Tra(100000, 9999999), l.ufficio);
      s.nazione = "IT";
      // A few clients are public bodies under split payment: one at least from the third on.
      bool pubblico = clienti && (r.Tra(1, 20) == 1 || (i >= 3 && !unPubblico));
      unPubblico = unPubblico || pubblico;
      if (pubblico) s.ragione = "Comune di " + std::string(l.citta);
      s.sottoconto = clienti ? (pubblico ? "0501004" : "0501001") : "1301001";
      s.codiceIva = pubblico ? "S22" : "022";
    } else {
      const Estero& e = area == 1 ? r.Scegli(cee) : r.Scegli(extra);
      citta = e.citta;
      s.nazione = e.nazione;
      piva = std::string(e.nazione) + std::to_string(r.Tra(100000000, 999999999));
      s.sottoconto = clienti ? (area == 1 ? "0501002" : "0501003") : (area == 1 ? "1301002" : "1301003");
      s.codiceIva = clienti ? (area == 1 ? "N41" : "N8A") : (area == 1 ? "C22" : "FCI");
    }
    std::string pagamento = clienti ? r.Scegli(pagamentiClienti) : r.Scegli(pagamentiFornitori);
    s.pagamento = pagamento;
    std::string dominio = LCase(cognome) + LCase(attivita.substr(0, 4));
    cn.Esegui(sql, {s.codice, s.ragione, indirizzo, cap, citta, provincia, s.nazione, piva, piva, s.codiceIva,
                    pagamento, pagamento, s.sottoconto, "amministrazione@" + dominio + ".it",
                    "0" + std::to_string(r.Tra(100000000, 999999999))});
    v.push_back(std::move(s));
  }
  return v;
}

struct Riga {
  std::string dareAvere, conto;
  int64_t centesimi = 0;
  const Soggetto* soggetto = nullptr;  // the client or supplier of a control-account row
  char tipo = 0;                       // 'C' or 'F' with a soggetto
};

struct RigaIva {
  std::string dareAvere, conto, codiceIva;
  int64_t imponibile = 0, imposta = 0;
};

struct Documento {
  Data data;
  std::string causale, descrizione;
  std::string tipoRegistro = "0";
  std::string serie;  // of the document's number: the intra integrations number apart from the invoices
  long numero = 0, protocollo = 0;
  Data dataDocumento;
  int64_t totale = 0;
  const Soggetto* soggetto = nullptr;
  char tipo = 0;
};

class Registratore {
 public:
  Registratore(Connessione& cn, IForm* form, int lotto) : cn_(cn), form_(form), lotto_(lotto) {
    pn_.cn = cn.shared_from_this();
    // Batches commit whole or not at all: no savepoint per row.
    pn_.UnitaRecuperabili = false;
    numero_ = pn_.GetNumeroNuovaRegistrazionePrimaNota() - 1;
  }

  void Registra(const Documento& d, const std::vector<Riga>& righe, const std::vector<RigaIva>& iva) {
    if (!cn_.InTransazione()) cn_.BeginTrans();
    ++numero_;
    std::string numero = Format(Valore(static_cast<long long>(numero_)), "00000");
    bool conIva = d.tipoRegistro != "0";
    RecordValori base;
    base["DataRegistrazione"] = Valore(d.data);
    base["NumeroRegistrazione"] = numero;
    base["DataCompetenza"] = Valore(d.data);
    base["TipoRegistroIva"] = d.tipoRegistro;
    base["NumRegistroIva"] = conIva ? "01" : "00";
    base["CodiceCausale"] = d.causale;
    base["DescrizioneSupplem"] = d.descrizione;
    base["Stringa10indicatori"] = std::string(10, ' ');
    base["Valuta"] = "06";
    base["Cambio"] = 1.0;
    base["IndSpesometro"] = 0;
    if (conIva) {
      base["DataDocumento"] = Valore(d.dataDocumento);
      base["NumeroDocumento"] = static_cast<long long>(d.numero);
      base["SerieDocumento"] = d.serie;
      base["NumeroDiProtocollo"] = static_cast<long long>(d.protocollo);
      base["TotaleDocumento"] = Euro(d.totale);
      base["DataCompetenzaIVA"] = Valore(d.data);
    }
    bool cancel = false;
    int n = 0;
    for (const auto& r : righe) {
      RecordValori v = base;
      v["TipoRigaIvaNormale"] = "";
      v["NumRigaAVideo"] = Format(Valore(++n), "000");
      v["DareAvere"] = r.dareAvere;
      v["ContoPrimaNota"] = r.conto;
      v["IndClienteFornitore"] = r.soggetto ? std::string(1, r.tipo) : std::string();
      v["CodClienteFornitore"] = r.soggetto ? r.soggetto->codice : std::string();
      v["ImportoMovimento"] = Euro(r.centesimi);
      Salva(v, cancel);
    }
    n = 0;
    for (const auto& r : iva) {
      RecordValori v = base;
      v["TipoRigaIvaNormale"] = "I";
      v["NumRigaAVideo"] = Format(Valore(++n), "000");
      v["DareAvere"] = r.dareAvere;
      v["ContoPrimaNota"] = r.conto;
      v["ImportoMovimento"] = Euro(r.imposta);
      v["Imponibile"] = Euro(r.imponibile);
      v["CodiceIva"] = r.codiceIva;
      v["IndicatoreCliFor"] = d.soggetto ? std::string(1, d.tipo) : std::string();
      v["CodiceCliFor"] = d.soggetto ? d.soggetto->codice : std::string();
      Salva(v, cancel);
    }
    ultimo_[{d.tipoRegistro, d.serie}] = {numero, d};
    ++registrazioni_;
    if (form_) form_->msgbar("Registrazione " + numero + " del " + d.data.Testo());
    if (++nelLotto_ >= lotto_) Chiudi();
  }

  // Ends the batch: the register counters from the last entry of each register and series, then
  // commit.
  void Chiudi() {
    if (!cn_.InTransazione()) return;
    // The counters keep the highest number, so the last entry of each register in the batch
    // leaves them as a call per entry would; the number of the last entry goes last.
    for (const auto& [registro, u] : ultimo_) {
      const Documento& d = u.second;
      if (registro.first == "0") continue;
      pn_.AggiornaProgressiviPrimaNota(u.first, Valore(d.data), registro.first, "01", registro.second,
                                       static_cast<long long>(d.numero), Valore(d.dataDocumento),
                                       static_cast<long long>(d.protocollo), Valore("demo"), 0);
    }
    pn_.AggiornaNumeroUltimaRegistrazione(static_cast<long long>(numero_), Valore("demo"), 0);
    ultimo_.clear();
    cn_.CommitTrans();
    nelLotto_ = 0;
  }
  void Annulla() {
    if (cn_.InTransazione()) cn_.RollbackTrans();
  }
  // A batch open for what is written beside the entries (the sales documents).
  void Apri() {
    if (!cn_.InTransazione()) cn_.BeginTrans();
  }
  // After entries numbered by another writer (the invoice posting): the last number is the
  // next one taken less one, as at the start.
  void Riallinea() { numero_ = pn_.GetNumeroNuovaRegistrazionePrimaNota() - 1; }
  long Numero() const { return numero_; }

  long Registrazioni() const { return registrazioni_; }
  long Righe() const { return righe_; }

 private:
  void Salva(const RecordValori& v, bool& cancel) {
    if (!pn_.SalvaRecord(v, Valore("demo"), 0, cancel))
      throw std::runtime_error("Riga " + v.at("NumRigaAVideo").Testo() + " della registrazione " +
                               v.at("NumeroRegistrazione").Testo() + " non salvata.");
    ++righe_;
  }

  Connessione& cn_;
  IForm* form_;
  int lotto_;
  clsPrimaNota pn_;
  long numero_ = 0;
  long registrazioni_ = 0, righe_ = 0;
  int nelLotto_ = 0;
  // By register and series: the entry's number and its document.
  std::map<std::pair<std::string, std::string>, std::pair<std::string, Documento>> ultimo_;
};

// The tax in cents of a taxable amount in cents at a rate of the VAT table; half a cent and up
// rounds away from zero.
int64_t Imposta(int64_t imponibile, Importo aliquota) {
  int64_t x = imponibile * aliquota.Raw();  // cents x percent x 10000
  constexpr int64_t kDivisore = 100 * Importo::kScala;
  return (x >= 0 ? x + kDivisore / 2 : x - kDivisore / 2) / kDivisore;
}

// One VAT row per code, the taxable amounts summed by code.
std::vector<RigaIva> RigheIva(const std::vector<std::pair<std::string, int64_t>>& righe, const std::string& conto,
                              const std::string& lato, const std::map<std::string, Importo>& aliquote) {
  std::map<std::string, int64_t> perCodice;
  for (const auto& [codice, importo] : righe) perCodice[codice] += importo;
  std::vector<RigaIva> v;
  for (const auto& [codice, imponibile] : perCodice) {
    auto a = aliquote.find(codice);
    if (a == aliquote.end()) throw std::runtime_error("Il codice IVA " + codice + " manca nella tabella dei codici IVA.");
    v.push_back({lato, conto, codice, imponibile, Imposta(imponibile, a->second)});
  }
  return v;
}

// The messages of a posting run while the demo fills the company: the summary at the end of
// each run is no news; anything else (a refused document, a missing account, a payment not
// recorded on its instalment) is kept, and stops the demo.
class MessaggiContabilizzazione : public IHost {
 public:
  MessaggiContabilizzazione() : prima_(Host()) { ImpostaHost(this); }
  ~MessaggiContabilizzazione() override { ImpostaHost(&prima_); }
  MessaggiContabilizzazione(const MessaggiContabilizzazione&) = delete;
  MessaggiContabilizzazione& operator=(const MessaggiContabilizzazione&) = delete;
  int MsgBox(const std::string& testo, int stile, const std::string& titolo) override {
    const bool riepilogo = stile == vbInformation && titolo == "Elaborazione fatture" &&
                           (testo.rfind("Create ", 0) == 0 || testo == "Nessuna fattura da elaborare.");
    if (!riepilogo) messaggi.push_back(titolo + ": " + testo);
    return vbOK;
  }
  std::string CartellaApplicazione() override { return prima_.CartellaApplicazione(); }
  std::string TitoloApplicazione() override { return prima_.TitoloApplicazione(); }
  std::vector<std::string> messaggi;

 private:
  IHost& prima_;
};

class Generatore {
 public:
  Generatore(Connessione& cn, const OpzioniDemo& o, IForm* form)
      : cn_(cn),
        o_(o),
        r_(o.seme),
        rSaldi_(o.seme, 0x3C6EF372FE94F82BULL),
        form_(form),
        reg_(cn, form, std::max(1, o.lotto)),
        scrittore_(cn) {}

  EsitoDemo Esegui() {
    for (auto rs = cn_.Execute("SELECT [Codice Iva], [Aliquota] FROM [Codici Iva]"); !rs.Eof(); rs.MoveNext())
      aliquote_[Trim(rs(0).Value().Testo())] = NullToZeroCy(rs(1).Value());
    {
      clsImportiFissi fissi;
      fissi.cn = cn_.shared_from_this();
      double percAcconto = 0;
      Importo minimoAcconto, minimoVersamento;
      if (fissi.GetImportiFissiLiquidazioneIva(percAcconto, minimoAcconto, minimoVersamento))
        minimoVersamento_ = minimoVersamento.Raw() / (Importo::kScala / 100);
    }
    {
      clsTabRiferimenti rif;
      rif.cn = cn_.shared_from_this();
      if (!RiferimentiElaboraFatture(rif, contab_))
        throw std::runtime_error("L'azienda non ha i riferimenti contabili della contabilizzazione delle fatture.");
      contab_.objFormAttiva = form_;
      contab_.bool_ContabilizzaDataFattura = true;
      contab_.clientID = Valore("demo");
      elabora_.cn = cn_.shared_from_this();
    }
    {
      Atomico tx(cn_);
      Anagrafica();
      clienti_ = CreaSoggetti(cn_, r_, true, o_.clienti);
      fornitori_ = CreaSoggetti(cn_, r_, false, o_.fornitori);
      tx.Conferma();
    }
    try {
      Apertura();
      const Data inizio = *Data::Crea(o_.anno, 1, 1);
      const int giorni = Data::Bisestile(o_.anno) ? 366 : 365;
      for (long i = 0; i < o_.registrazioni; ++i) {
        Data giorno = inizio.AggiungiGiorni(static_cast<int64_t>(i) * giorni / o_.registrazioni);
        Calendario(giorno);
        Una(giorno);
      }
      Calendario(*Data::Crea(o_.anno, 12, 31));
      Liquidazione(*Data::Crea(o_.anno, 12, 31));
      reg_.Chiudi();
    } catch (...) {
      reg_.Annulla();
      throw;
    }
    return {reg_.Registrazioni() + registrazioniFatture_, reg_.Righe() + righeFatture_, documenti_,
            registrazioniFatture_};
  }

 private:
  // Every entry goes through here: the generator follows the balances it needs (bank, cash,
  // the VAT accounts of the month) as the journal moves them, debit positive.
  void Registra(const Documento& d, const std::vector<Riga>& righe, const std::vector<RigaIva>& iva) {
    Contabilizza();
    reg_.Registra(d, righe, iva);
    for (const auto& r : righe) saldi_[r.conto] += r.dareAvere == "D" ? r.centesimi : -r.centesimi;
    for (const auto& r : iva) saldi_[r.conto] += r.dareAvere == "D" ? r.imposta : -r.imposta;
  }
  int64_t Saldo(const std::string& conto) const {
    auto it = saldi_.find(conto);
    return it == saldi_.end() ? 0 : it->second;
  }

  void Anagrafica() {
    const Luogo& l = Luoghi()[0];
    std::string piva = PartitaIva(r_.Tra(1000000, 9999999), l.ufficio);
    cn_.Esegui(
        "UPDATE [Tabella Azienda] SET [Ragione Sociale] = ?, [Indirizzo] = ?, [Cap] = ?, [Citta] = ?, "
        "[Provincia] = ?, [Partita IVA] = ?, [Codice Fiscale] = ?, [Telefono] = ?, [E-mail] = ?, "
        "[Capitale Sociale] = ?, [Attività Esercitata] = ?",
        {"Esempio Commerciale S.r.l.", "Via dei Mille, 12", l.cap, l.citta, l.provincia, piva, piva, "02 1234567",
         "amministrazione@esempiocommerciale.it", 50000.0, "Commercio all'ingrosso"});
  }

  void Apertura() {
    Documento d;
    d.data = *Data::Crea(o_.anno, 1, 1);
    d.causale = "APE";
    d.descrizione = "Apertura conti";
    int64_t banca = r_.Tra(4000000, 9000000), cassa = r_.Tra(100000, 500000);
    int64_t capitale = 5000000, riserve = banca + cassa - capitale;
    std::vector<Riga> righe = {{"D", "0701001", banca}, {"D", "0702001", cassa}, {"A", "9001001", banca + cassa},
                               {"D", "9001001", banca + cassa}, {"A", "1001001", capitale}};
    if (riserve > 0) righe.push_back({"A", "1002002", riserve});
    else righe.push_back({"D", "1002002", -riserve});
    Registra(d, righe, {});
  }

  // What falls due up to `giorno`, in date order: on the 16th of a month the VAT settled for the
  // month before and the staff's withholdings are paid; at its end the month is settled.
  void Calendario(const Data& giorno) {
    Contabilizza();
    for (;;) {
      Versamenti(giorno);
      if (mese_ >= giorno.Mese()) return;
      Liquidazione(Data::Crea(o_.anno, mese_ + 1, 1)->AggiungiGiorni(-1));
      ++mese_;
    }
  }

  // The payments of the 16th of the current month, once `giorno` has reached it.
  void Versamenti(const Data& giorno) {
    const Data sedici = *Data::Crea(o_.anno, mese_, 16);
    if (giorno < sedici) return;
    if (daVersare_ > 0) {
      Documento d;
      d.data = sedici;
      d.causale = "VIV";
      d.descrizione = "Versamento IVA " + Format(Valore(mese_ - 1), "00");
      Registra(d, {{"D", "1401005", daVersare_}, {"A", "0701001", daVersare_}}, {});
      daVersare_ = 0;
    }
    if (mese_ > ritenuteVersate_) {
      // Withholdings and contributions of the staff, paid with the same form.
      ritenuteVersate_ = mese_;
      int64_t ritenute = -Saldo("1402002"), contributi = -Saldo("1404001");
      if (ritenute > 0 && contributi > 0) {
        Documento d;
        d.data = sedici;
        d.causale = "VRT";
        d.descrizione = "Versamento F24 " + Format(Valore(mese_ - 1), "00");
        Registra(d, {{"D", "1402002", ritenute}, {"D", "1404001", contributi}, {"A", "0701001", ritenute + contributi}},
                 {});
      }
    }
  }

  // The month's VAT settlement, with the figures of the settlement of the registers: the VAT of
  // the sales, gifts included (that of split payment has already left 1401001 in the posting of
  // its document), less the deductible VAT of the purchases (intra-community ones included,
  // integrated on the sales side), less the credit carried from the month before, plus the debt
  // carried when it did not exceed the minimum payment. The month's VAT accounts close into the
  // treasury's: a credit stays in 0601006 for the next month, a debt goes to 1401005 and is paid
  // on the 16th of the next month when above the minimum, otherwise carried to the next
  // settlement. December's debt is paid the next year. The split-payment account 1401006 is
  // back to nothing after each posted document (its settling entry), and the demo posts nothing
  // on the other VAT accounts of the model (receipts, reverse charge).
  void Liquidazione(const Data& fine) {
    if (!liquidato_.insert(fine.Mese()).second) return;
    const int64_t vendite = -Saldo("1401001"), acquisti = Saldo("0601001"), intra = Saldo("0601002");
    const int64_t saldo = vendite - acquisti - intra - creditoRiportato_ + debitoRiportato_;
    const int64_t credito = saldo < 0 ? -saldo : 0, debito = saldo > 0 ? saldo : 0;
    std::vector<Riga> righe;
    // A row that moves `conto` by `dare` (debit positive).
    auto muovi = [&](const char* conto, int64_t dare) {
      if (dare > 0) righe.push_back({"D", conto, dare});
      if (dare < 0) righe.push_back({"A", conto, -dare});
    };
    muovi("1401001", vendite);
    muovi("0601001", -acquisti);
    muovi("0601002", -intra);
    muovi("0601006", credito - creditoRiportato_);
    muovi("1401005", debitoRiportato_ - debito);
    if (!righe.empty()) {
      Documento d;
      d.data = fine;
      d.causale = "LIQ";
      d.descrizione = "Liquidazione IVA " + Format(Valore(fine.Mese()), "00");
      Registra(d, righe, {});
    }
    creditoRiportato_ = credito;
    const bool sottoMinimo = debito > 0 && debito <= minimoVersamento_;
    debitoRiportato_ = sottoMinimo ? debito : 0;
    daVersare_ = fine.Mese() < 12 && !sottoMinimo ? debito : 0;
  }

  void Una(const Data& giorno) {
    const size_t tipo = r_.Pesato({24, 3, 18, 2, 22, 15, 16});
    // Only a run of invoices waits to be posted together: what reads the clients' open
    // invoices or the balances finds the documents before it posted.
    if (tipo != 0) Contabilizza();
    switch (tipo) {
      case 0: return FatturaVendita(giorno, false);
      case 1: return FatturaVendita(giorno, true);
      case 2: return FatturaAcquisto(giorno, false);
      case 3: return FatturaAcquisto(giorno, true);
      case 4: return Incasso(giorno);
      case 5: return Pagamento(giorno);
      default: return Giroconto(giorno);
    }
  }

  // A sales document as the sales side leaves it once printed, in [Fatture] with its lines,
  // VAT table and instalments; the invoice posting gives its entries (Contabilizza). Italian
  // invoices may settle part of their amount at once: a cash down payment, a withholding on a
  // service, a rounding allowance, or carry a gift; a public body's VAT is split payment.
  void FatturaVendita(const Data& giorno, bool notaCredito) {
    // A credit note reduces an invoice as the posting gave it.
    if (notaCredito) Contabilizza();
    Soggetto& c = clienti_[static_cast<size_t>(r_.Tra(0, static_cast<int64_t>(clienti_.size()) - 1))];
    if (notaCredito && c.aperte.empty()) notaCredito = false;
    DocumentoEsempio d;
    int linee = notaCredito ? 1 : static_cast<int>(r_.Tra(1, 4));
    for (int i = 0; i < linee; ++i) {
      std::string codice = c.codiceIva;
      if (codice == "022") codice = std::vector<std::string>{"022", "022", "022", "022", "010", "004", "E10"}
                               [static_cast<size_t>(r_.Tra(0, 6))];
      std::string conto = c.nazione != "IT" ? (c.sottoconto == "0501002" ? "7001003" : "7001004")
                          : c.sottoconto == "0501004" ? "7001007"
                          : r_.Tra(1, 4) == 1 ? "7001002"
                                                : "7001001";
      if (notaCredito) conto = "7001006";
      int64_t imp = notaCredito ? std::max<int64_t>(1000, c.aperte.front().centesimi / 10) : r_.Importo(2000, 800000);
      d.righe.push_back({conto, codice, Aliquota(codice), Euro(imp)});
    }
    if (!notaCredito && r_.Tra(1, 5) == 1) d.trasporto = Euro(r_.Tra(1000, 8000));  // transport charged
    d.numero = static_cast<int32_t>(++numeroVendite_);
    d.data = giorno;
    d.notaCredito = notaCredito;
    d.causale = notaCredito ? "NCV" : "FTV";
    d.cliente = c.codice;
    d.ragioneSociale = c.ragione;
    d.pagamento = notaCredito ? std::string() : c.pagamento;
    d.splitPayment = c.codiceIva == "S22";
    if (!notaCredito && c.codiceIva == "022") Saldi(d);

    reg_.Apri();
    scrittore_.Scrivi(d);
    if (inAttesa_.empty()) dal_ = giorno;
    al_ = giorno;
    inAttesa_[d.numero] = {&c, notaCredito};
  }

  // What an Italian invoice settles at once, from a generator of its own. Until each kind has
  // appeared once the next invoice takes the first missing one, so that a short year shows
  // them all; then one invoice in five settles something.
  void Saldi(DocumentoEsempio& d) {
    enum { kNiente, kAcconto, kRitenuta, kAbbuono, kOmaggio };
    int tipo = kNiente;
    for (int k = kAcconto; k <= kOmaggio && tipo == kNiente; ++k)
      if (!saldiVisti_.count(k)) tipo = k;
    if (tipo == kNiente) tipo = static_cast<int>(rSaldi_.Pesato({16, 1, 1, 1, 1}));
    // A gift's VAT is worked out on its amount alone: not on a document whose transport
    // spreads over its rows.
    if (tipo == kOmaggio && !d.trasporto.Zero()) tipo = kNiente;
    Importo righe;
    for (const auto& r : d.righe) righe += r.importo;
    switch (tipo) {
      case kAcconto:  // cash, a whole number of euros, about a third of the lines
        d.acconto = Euro(std::max<int64_t>(1, righe.Raw() / Importo::kScala / 3) * 100);
        break;
      case kRitenuta:  // the first line is a service, 20% withheld on it
        d.righe.front().contropartita = "7001002";
        d.ritenuta = Euro(Imposta(d.righe.front().importo.Raw() / (Importo::kScala / 100), Importo(20)));
        break;
      case kAbbuono:  // the client is let off a few euros
        d.abbuono = Euro(rSaldi_.Tra(100, 990));
        break;
      case kOmaggio:  // goods given away, a whole number of euros, their VAT the company's
        d.righe.push_back({"7001001", "822", 22, Euro(rSaldi_.Tra(20, 300) * 100)});
        break;
      default:
        return;
    }
    saldiVisti_.insert(tipo);
  }

  int Aliquota(const std::string& codice) const {
    auto a = aliquote_.find(codice);
    if (a == aliquote_.end()) throw std::runtime_error("Il codice IVA " + codice + " manca nella tabella dei codici IVA.");
    return static_cast<int>(a->second.Raw() / Importo::kScala);
  }

  // The documents written and not yet posted go through the invoice posting, in number order,
  // each dated its own day; the generator then follows what the posting wrote: the balances,
  // and what each client still owes on each invoice (its account's rows for the document:
  // split payment, down payment, withholding, allowance and gifts already off it).
  void Contabilizza() {
    if (inAttesa_.empty()) return;
    reg_.Chiudi();
    const long primo = reg_.Numero() + 1;
    contab_.avar_DaData = Valore(dal_);
    contab_.avar_AData = Valore(al_);
    contab_.avar_DataContabilizzazione = Valore(al_);
    EsitoElaboraFatture e;
    std::vector<std::string> messaggi;
    {
      MessaggiContabilizzazione host;
      e = elabora_.ElaboraFatture(contab_);
      messaggi = host.messaggi;
    }
    if (e.Documenti != static_cast<long>(inAttesa_.size()) || e.Scartati != 0 || !messaggi.empty()) {
      std::string testo = "La contabilizzazione delle fatture della demo dal " + dal_.Testo() + " al " + al_.Testo() +
                          " ha contabilizzato " + std::to_string(e.Documenti) + " documenti su " +
                          std::to_string(inAttesa_.size());
      for (const auto& m : messaggi) testo += "\n" + m;
      throw std::runtime_error(testo);
    }
    reg_.Riallinea();
    documenti_ += e.Documenti;
    registrazioniFatture_ += e.Registrazioni;

    std::map<long, int64_t> dovuto;  // by document: the client's rows, debit positive
    std::vector<Valore> numeri;
    for (long n = primo; n <= reg_.Numero(); ++n) numeri.push_back(Valore(Format(Valore(n), "00000")));
    constexpr size_t kBlocco = 200;
    for (size_t i = 0; i < numeri.size(); i += kBlocco) {
      Parametri p(numeri.begin() + static_cast<std::ptrdiff_t>(i),
                  numeri.begin() + static_cast<std::ptrdiff_t>(std::min(numeri.size(), i + kBlocco)));
      std::string in;
      for (size_t k = 0; k < p.size(); ++k) in += k ? ", ?" : "?";
      cn_.Scorri("SELECT [ContoPrimaNota], [DareAvere], [ImportoMovimento], [IndClienteFornitore], "
                 "[NumeroDocumento] FROM [Prima Nota] WHERE [NumeroRegistrazione] IN (" + in + ")",
                 p, [&](const std::vector<Colonna>&, const std::vector<Valore>& v) {
                   const int64_t cent = NullToZeroCy(v[2]).Raw() / (Importo::kScala / 100);
                   const int64_t dare = Trim(v[1].Testo()) == "D" ? cent : -cent;
                   saldi_[Trim(v[0].Testo())] += dare;
                   if (Trim(v[3].Testo()) == "C") dovuto[NullToZeroLng(v[4])] += dare;
                   ++righeFatture_;
                   return true;
                 });
    }
    for (const auto& [numero, attesa] : inAttesa_) {
      Soggetto& c = *attesa.cliente;
      const int64_t importo = dovuto[numero];
      if (!attesa.notaCredito) {
        if (importo > 0) c.aperte.push_back({importo, numero});
      } else if (!c.aperte.empty()) {
        c.aperte.front().centesimi += importo;
        if (c.aperte.front().centesimi <= 0) c.aperte.pop_front();
      }
    }
    inAttesa_.clear();
  }

  void FatturaAcquisto(const Data& giorno, bool notaCredito) {
    Soggetto& f = fornitori_[static_cast<size_t>(r_.Tra(0, static_cast<int64_t>(fornitori_.size()) - 1))];
    // No credit notes from intra-community suppliers: their causal is the invoice's alone.
    if (notaCredito && (f.aperte.empty() || f.codiceIva == "C22")) notaCredito = false;
    static const std::vector<std::string> costi = {"6001001", "6001001", "6001001", "6001002", "6001003", "6101001",
                                                   "6101003", "6101004", "6101006", "6101009", "6102001", "6102003"};
    std::vector<std::pair<std::string, int64_t>> righe;
    std::map<std::string, int64_t> conti;
    int linee = notaCredito ? 1 : static_cast<int>(r_.Tra(1, 3));
    for (int i = 0; i < linee; ++i) {
      std::string conto = notaCredito ? "6001006" : r_.Scegli(costi);
      if (f.nazione != "IT" && !notaCredito) conto = f.sottoconto == "1301002" ? "6001004" : "6001005";
      std::string codice = f.codiceIva;
      if (codice == "022") codice = std::vector<std::string>{"022", "022", "022", "022", "010", "004", "E10", "FCI"}
                               [static_cast<size_t>(r_.Tra(0, 7))];
      if (conto == "6102001") codice = "E10";  // rents of the premises: exempt
      int64_t imp = notaCredito ? std::max<int64_t>(1000, f.aperte.front().centesimi / 10) : r_.Importo(1500, 500000);
      righe.push_back({codice, imp});
      conti[conto] += imp;
    }
    bool intra = f.codiceIva == "C22";
    auto iva = RigheIva(righe, intra ? "0601002" : "0601001", notaCredito ? "A" : "D", aliquote_);
    int64_t imponibile = 0, imposta = 0;
    for (const auto& [conto, imp] : conti) imponibile += imp;
    for (const auto& v : iva) imposta += v.imposta;
    // The invoice as the company integrates it: an intra-community supplier invoices no VAT, the
    // company adds it here and in the sales register (below), so that the supplier is owed the
    // taxable amount only.
    int64_t totale = imponibile + imposta;

    Documento d;
    d.data = giorno;
    d.dataDocumento = std::max(giorno.AggiungiGiorni(-r_.Tra(0, 6)), *Data::Crea(o_.anno, 1, 1));
    d.causale = intra ? "FAI" : notaCredito ? "NCA" : "FTA";
    d.tipoRegistro = "2";
    d.numero = r_.Tra(1, 9999);
    d.protocollo = ++protocollo_;
    d.totale = imponibile + imposta;
    d.soggetto = &f;
    d.tipo = 'F';
    d.descrizione = (notaCredito ? "Nota cred. forn. " : "Ft. fornitore ") + std::to_string(d.numero);
    std::vector<Riga> righeConti;
    for (const auto& [conto, imp] : conti) righeConti.push_back({notaCredito ? "A" : "D", conto, imp});
    righeConti.push_back({notaCredito ? "D" : "A", f.sottoconto, totale, &f, 'F'});
    Registra(d, righeConti, iva);

    int64_t dovuto = totale;
    if (intra && imposta > 0) {
      // The integration of the VAT on the sales register, numbered apart from the invoices: the
      // same tax is due and deductible, and the settlement finds it on both sides.
      Documento g = d;
      g.causale = "AVI";
      g.tipoRegistro = "1";
      g.serie = kSerieIntegrazioni;
      g.numero = ++numeroIntegrazioni_;
      g.protocollo = 0;
      g.dataDocumento = giorno;
      g.descrizione = "Integrazione IVA ft. " + std::to_string(d.numero);
      std::vector<RigaIva> vendite;
      for (const auto& v : iva) vendite.push_back({"A", "1401001", v.codiceIva, v.imponibile, v.imposta});
      Registra(g, {{"D", f.sottoconto, imposta, &f, 'F'}}, vendite);
      dovuto -= imposta;
    }
    if (notaCredito) {
      f.aperte.front().centesimi -= dovuto;
      if (f.aperte.front().centesimi <= 0) f.aperte.pop_front();
    } else {
      f.aperte.push_back({dovuto, d.numero});
    }
  }

  void Incasso(const Data& giorno) {
    std::vector<Soggetto*> conAperte;
    for (auto& c : clienti_)
      if (!c.aperte.empty()) conAperte.push_back(&c);
    if (conAperte.empty()) return FatturaVendita(giorno, false);
    Soggetto& c = *conAperte[static_cast<size_t>(r_.Tra(0, static_cast<int64_t>(conAperte.size()) - 1))];
    Aperta a = c.aperte.front();
    c.aperte.pop_front();
    bool contanti = c.nazione == "IT" && a.centesimi < 100000 && r_.Tra(1, 4) == 1;
    Documento d;
    d.data = giorno;
    d.causale = contanti ? "ICC" : "INC";
    d.descrizione = "Incasso ft. " + std::to_string(a.documento);
    std::string conto = contanti ? "0702001" : "0701001";
    Registra(d, {{"D", conto, a.centesimi}, {"A", c.sottoconto, a.centesimi, &c, 'C'}}, {});
  }

  void Pagamento(const Data& giorno) {
    std::vector<Soggetto*> conAperte;
    for (auto& f : fornitori_)
      if (!f.aperte.empty()) conAperte.push_back(&f);
    if (conAperte.empty()) return FatturaAcquisto(giorno, false);
    Soggetto& f = *conAperte[static_cast<size_t>(r_.Tra(0, static_cast<int64_t>(conAperte.size()) - 1))];
    Aperta a = f.aperte.front();
    f.aperte.pop_front();
    bool bonifico = r_.Tra(1, 2) == 1;
    Documento d;
    d.data = giorno;
    d.causale = bonifico ? "BON" : "PAG";
    d.descrizione = "Pagamento ft. " + std::to_string(a.documento);
    std::vector<Riga> righe = {{"D", f.sottoconto, a.centesimi, &f, 'F'}};
    if (bonifico) {
      int64_t commissioni = r_.Tra(100, 500);
      righe.push_back({"D", "6501002", commissioni});
      righe.push_back({"A", "0701001", a.centesimi + commissioni});
    } else {
      righe.push_back({"A", "0701001", a.centesimi});
    }
    Registra(d, righe, {});
  }

  void Giroconto(const Data& giorno) {
    Documento d;
    d.data = giorno;
    switch (r_.Pesato({3, 2, 3, 2, 1})) {
      case 0: {  // cash to the bank
        int64_t cassa = Saldo("0702001");
        if (cassa < 20000) return Giroconto2(giorno);
        int64_t x = cassa / 100 * static_cast<int64_t>(r_.Tra(30, 90));
        d.causale = "VER";
        d.descrizione = "Versamento contanti";
        Registra(d, {{"D", "0701001", x}, {"A", "0702001", x}}, {});
        return;
      }
      case 1: {  // cash from the bank
        int64_t x = r_.Tra(20, 150) * 1000;
        d.causale = "PRL";
        d.descrizione = "Prelevamento";
        Registra(d, {{"D", "0702001", x}, {"A", "0701001", x}}, {});
        return;
      }
      case 2: {  // bank charges
        int64_t x = r_.Tra(500, 6000);
        d.causale = "SBA";
        d.descrizione = "Spese tenuta conto";
        Registra(d, {{"D", "6501002", x}, {"A", "0701001", x}}, {});
        return;
      }
      case 3:
        return Giroconto2(giorno);
      default: {  // petty cash expenses
        int64_t x = r_.Tra(500, 15000);
        d.causale = "GIR";
        d.descrizione = "Spese varie cassa";
        std::string conto = r_.Tra(1, 2) == 1 ? "6101010" : "6401007";
        Registra(d, {{"D", conto, x}, {"A", "0702001", x}}, {});
        return;
      }
    }
  }

  // Salaries: the cost against what is owed to the staff and the social security, then paid.
  void Giroconto2(const Data& giorno) {
    int64_t lordo = r_.Tra(300000, 1200000), contributi = lordo * 30 / 100, netto = lordo * 75 / 100;
    int64_t ritenute = lordo - netto;
    Documento d;
    d.data = giorno;
    d.causale = "STI";
    d.descrizione = "Stipendi";
    Registra(d,
             {{"D", "6201001", lordo},
              {"D", "6201002", contributi},
              {"A", "1502002", netto},
              {"A", "1402002", ritenute},
              {"A", "1404001", contributi}},
             {});
    d.causale = "PST";
    d.descrizione = "Pagamento stipendi";
    Registra(d, {{"D", "1502002", netto}, {"A", "0701001", netto}}, {});
  }

  Connessione& cn_;
  OpzioniDemo o_;
  Casuale r_;
  Casuale rSaldi_;  // what the invoices settle at once: the rest of the books draw as before
  IForm* form_;
  Registratore reg_;
  ScrittoreFattureEsempio scrittore_;
  clsElaboraFatture elabora_;
  ArgomentiElaboraFatture contab_;
  // The sales documents written and not yet posted, by number, and their dates.
  struct Attesa {
    Soggetto* cliente;
    bool notaCredito;
  };
  std::map<long, Attesa> inAttesa_;
  Data dal_, al_;
  std::set<int> saldiVisti_;
  long documenti_ = 0, registrazioniFatture_ = 0, righeFatture_ = 0;
  std::vector<Soggetto> clienti_, fornitori_;
  long numeroVendite_ = 0, protocollo_ = 0, numeroIntegrazioni_ = 0;
  int mese_ = 1, ritenuteVersate_ = 1;
  std::set<int> liquidato_;
  int64_t daVersare_ = 0;
  // What the last settlement carried: a credit, or a debt not above the minimum payment.
  int64_t creditoRiportato_ = 0, debitoRiportato_ = 0;
  int64_t minimoVersamento_ = 0;  // ImportoMinLiqIva of the fixed amounts
  std::map<std::string, int64_t> saldi_;
  std::map<std::string, Importo> aliquote_;
};

}  // namespace

EsitoDemo RiempiAziendaDemo(Connessione& cn, const OpzioniDemo& o, IForm* form) {
  Generatore g(cn, o, form);
  return g.Esegui();
}

void ContestoDemo::FineProgresso() {
  if (form) form->Fine();
}

namespace {
std::vector<PassoDemo>& Passi() {
  static std::vector<PassoDemo> v;
  return v;
}
}  // namespace

void AggiungiPassoDemo(PassoDemo p) { Passi().push_back(std::move(p)); }

std::vector<PassoDemo> PassiDemo() {
  std::vector<PassoDemo> v = Passi();
  std::stable_sort(v.begin(), v.end(), [](const PassoDemo& a, const PassoDemo& b) {
    return a.ordine != b.ordine ? a.ordine < b.ordine : a.nome < b.nome;
  });
  return v;
}

void EseguiPassiDemo(ContestoDemo& ctx) {
  for (const auto& p : PassiDemo()) {
    p.esegui(ctx);
    ctx.FineProgresso();
  }
}

namespace {

// How the steps name the company in the commands they suggest: the file, or the options of the
// database.
std::string ArgomentiAziendaTesto(const AziendaCli& az) {
  if (!az.postgres) return az.file;
  std::string t = "--pg-database " + az.pg.database;
  if (!az.pg.host.empty()) t += " --pg-host " + az.pg.host;
  if (!az.pg.user.empty()) t += " --pg-user " + az.pg.user;
  if (!az.pg.schema.empty()) t += " --pg-schema " + az.pg.schema;
  return t;
}

int Demo(Contesto& ctx) {
  OpzioniDemo o;
  o.seme = static_cast<uint64_t>(OpzioneInteraFacoltativa(ctx.args, "--seme", 1, 1, 2147483647));
  o.clienti = OpzioneInteraFacoltativa(ctx.args, "--clienti", o.clienti, 1, 1000000);
  o.fornitori = OpzioneInteraFacoltativa(ctx.args, "--fornitori", o.fornitori, 1, 1000000);
  o.registrazioni = OpzioneInteraFacoltativa(ctx.args, "--registrazioni", static_cast<int>(o.registrazioni), 1, 10000000);
  o.anno = OpzioneInteraFacoltativa(ctx.args, "--anno", o.anno, 1900, 9999);
  // The company: DIR/azienda.db, or a new PostgreSQL database (or schema) named by --pg-*.
  AziendaCli az;
  if (Argomenti(ctx.args).Opzione("--pg-database")) {
    az = LeggiAzienda(ctx.args);
    if (ctx.args.PosizionaleFacoltativo())
      throw ErroreUso("con --pg-database l'azienda della demo è il database: la cartella DIR non va indicata");
  } else {
    std::string cartella = ctx.args.Posizionale("la cartella della demo (DIR), o --pg-database");
    std::error_code ec;
    std::filesystem::create_directories(cartella, ec);
    if (ec) throw ErroreComando("Impossibile creare la cartella " + cartella + ": " + ec.message());
    az.file = (std::filesystem::path(cartella) / "azienda.db").string();
  }
  ctx.args.Fine();
  {
    std::shared_ptr<Connessione> cn;
    auto modello = [](Connessione& c) { CaricaModello(c, "standard"); };
    try {
      cn = az.postgres ? CreaAziendaPostgres(az.pg, modello) : CreaAziendaSqlite(az.file, modello);
    } catch (const ErroreDb& e) {
      throw ErroreComando(e.Descrizione());
    }
    cn->Close();
  }
  // Opened as the client opens it, so that the process-wide parameters are those of the company.
  auto db = ApriAzienda(az, Accesso::Scrittura);
  // A long run of saves: a page cache that holds the tables being filled. The invoice posting
  // commits each document; a demo company that stops half way is removed, so those commits
  // need not wait for the disk until the company is filled (the journal of the database keeps
  // it whole all the same).
  if (!az.postgres) {
    db->cn->Esegui("PRAGMA cache_size=-65536");
    db->cn->Esegui("PRAGMA synchronous=NORMAL");
  }
  ctx.form.Caption("Demo: " + std::to_string(o.clienti) + " clienti, " + std::to_string(o.fornitori) +
                   " fornitori, " + std::to_string(o.registrazioni) + " registrazioni nel " +
                   std::to_string(o.anno) + " (seme " + std::to_string(o.seme) + ")");
  EsitoDemo esito;
  try {
    esito = RiempiAziendaDemo(*db->cn, o, &ctx.form);
  } catch (...) {
    // A demo company that stopped half way is no demo: it goes.
    db->DisconnettiDatabase();
    if (az.postgres) {
      try {
        EliminaAziendaPostgres(az.pg);
      } catch (const ErroreDb& e) {
        ctx.form.Fine();
        Host().MsgBox("L'azienda della demo, interrotta, non si è potuta eliminare: " + e.Descrizione(),
                      vbExclamation, "Demo");
      }
    } else {
      std::error_code ec;
      for (const char* parte : {"", "-wal", "-shm"}) std::filesystem::remove(az.file + parte, ec);
    }
    throw;
  }
  if (!az.postgres) db->cn->Esegui("PRAGMA synchronous=FULL");
  ctx.form.Fine();
  ctx.out << "Documenti di vendita contabilizzati: " << esito.documenti << " (vorn contabilizza-fatture), "
          << esito.registrazioniDocumenti << " registrazioni\n";

  ContestoDemo passi{db->cn, ArgomentiAziendaTesto(az), o, esito, ctx.out, &ctx.form, {}, {}};
  EseguiPassiDemo(passi);
  ctx.form.Fine();
  db->DisconnettiDatabase();
  return 0;
}

const char* const kUsoDemo =
    "Uso: vorn demo (DIR | --pg-database DB [--pg-host HOST[:PORTA]] [--pg-user UTENTE] [--pg-schema S])\n"
    "               [--seme N] [--clienti N] [--fornitori N] [--registrazioni N] [--anno AAAA]\n\n"
    "Crea DIR/azienda.db (o, con --pg-database, un nuovo database PostgreSQL) dal modello standard\n"
    "e la riempie di clienti, fornitori e di un anno di registrazioni: fatture e note di credito\n"
    "di vendita scritte nell'archivio delle fatture con le righe, la tabella IVA e le scadenze, e\n"
    "contabilizzate come fa vorn contabilizza-fatture (con split payment, acconti, ritenute,\n"
    "abbuoni e omaggi); fatture e note di credito di acquisto con le righe IVA, incassi,\n"
    "pagamenti, giroconti, liquidazioni e versamenti IVA. Con lo stesso seme e le stesse opzioni\n"
    "l'azienda è sempre la stessa. Poi, un passo per funzione, nell'ordine:\n"
    "gli utenti e i loro diritti; una distinta di bonifici ai fornitori e una di ricevute bancarie\n"
    "dei clienti; i corrispettivi di un giorno; i cespiti acquistati, il loro ammortamento\n"
    "contabilizzato e il registro dei cespiti; la riprotocollazione del registro acquisti; il\n"
    "bilancio di verifica dei sottoconti; il mastrino dei clienti Italia; le stampe della prima\n"
    "nota di gennaio, del piano dei conti e dei clienti; il libro giornale di gennaio-marzo\n"
    "bollato; i registri IVA vendite e acquisti di ogni mese (il primo trimestre bollato, con i\n"
    "fogli numerati) e le liquidazioni IVA dei dodici mesi (gennaio-marzo bollate, le altre in\n"
    "simulazione), confrontate con le liquidazioni e i versamenti registrati dalla demo;\n"
    "l'acconto IVA dell'anno dopo; lo scadenziario; il bilancio dell'anno; lo spesometro (file\n"
    "telematico, verifica e CSV); i dati delle fatture del primo trimestre; gli estratti conto dei\n"
    "clienti; l'esportazione dei sei archivi, la loro importazione in una nuova azienda e la\n"
    "riesportazione; il cambio di esercizio; infine lo scarico della prima nota del primo trimestre\n"
    "dell'anno chiuso. Le stampe vanno sotto la cartella dell'applicazione (Temp).\n\n"
    "  --seme N            il seme dei dati (1)\n"
    "  --clienti N         quanti clienti (40)\n"
    "  --fornitori N       quanti fornitori (25)\n"
    "  --registrazioni N   quante registrazioni oltre all'apertura, alle liquidazioni IVA e a quelle\n"
    "                      degli importi che le fatture saldano da sé (1200); ogni registrazione ha\n"
    "                      in media poco più di tre righe (320000 registrazioni fanno circa un\n"
    "                      milione di righe); oltre 99999 i numeri di registrazione\n"
    "                      passano a sei cifre\n"
    "  --anno AAAA         l'anno delle registrazioni (2024)\n\n"
    "Un file DIR/azienda.db che esiste già non viene toccato: il comando termina con un errore; così\n"
    "un database PostgreSQL (o lo schema indicato) che contiene già delle tabelle. Con lo stesso seme\n"
    "e le stesse opzioni le due basi di dati danno gli stessi libri. La password PostgreSQL si legge\n"
    "da VORN_PG_PASSWORD, altrimenti è chiesta sul terminale. Una demo interrotta non lascia\n"
    "l'azienda a metà: il file, o il database creato (lo schema, con --pg-schema), è eliminato.\n";

RegistraComando regDemo({"demo", "crea un'azienda dimostrativa con un anno di registrazioni", kUsoDemo, Demo});

}  // namespace

}  // namespace vorn::cli
