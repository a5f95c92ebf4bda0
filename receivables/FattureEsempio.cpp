#include "receivables/FattureEsempio.h"

#include <algorithm>
#include <cstdio>
#include <stdexcept>

#include "company/clsTabRiferimenti.h"
#include "frame/Casuale.h"
#include "frame/Comuni.h"
#include "frame/Globali.h"
#include "frame/Valore.h"
#include "masterdata/clsCodiciIva.h"
#include "receivables/clsElaboraFatture.h"
#include "receivables/clsScadenze.h"

namespace vorn {

namespace {

Importo Centesimi(int64_t c) { return Importo::DaRaw(c * (Importo::kScala / 100)); }

// The VAT of a taxable amount in cents, rounded to the cent, halves away from zero.
int64_t Imposta(int64_t imponibile, int aliquota) {
  int64_t x = imponibile * aliquota;
  return x >= 0 ? (x + 50) / 100 : -((-x + 50) / 100);
}

struct Cliente {
  std::string codice, ragione, pagamento;
};

const std::vector<std::string> kCognomi = {"Rossi",  "Bianchi", "Ferrari", "Russo", "Romano", "Colombo",
                                           "Ricci",  "Marino",  "Greco",   "Bruno", "Gallo",  "Conti",
                                           "Costa",  "Mancini", "Lombardi", "Moretti", "Fontana", "Rinaldi"};
const std::vector<std::string> kAttivita = {"Meccanica", "Forniture", "Trasporti", "Elettronica", "Alimentari",
                                            "Arredamenti", "Impianti", "Informatica", "Servizi", "Ceramiche"};
const std::vector<std::string> kForme = {"S.r.l.", "S.p.A.", "S.n.c.", "S.a.s."};
struct Citta {
  const char* nome;
  const char* provincia;
  const char* cap;
};
const std::vector<Citta> kCitta = {{"Milano", "MI", "20121"}, {"Torino", "TO", "10121"}, {"Bologna", "BO", "40121"},
                                   {"Verona", "VR", "37121"}, {"Padova", "PD", "35122"}, {"Firenze", "FI", "50122"},
                                   {"Bari", "BA", "70121"},   {"Parma", "PR", "43121"}};
const std::vector<std::string> kPagamenti = {"RB30", "RB60", "R306", "R369", "BB30", "BB60", "RD0"};

std::vector<Cliente> LeggiClienti(Connessione& cn) {
  std::vector<Cliente> v;
  cn.Scorri("SELECT [Codice Cliente], [Ragione Sociale], [Codice Pagamento] FROM [Anagrafica Clienti] WHERE "
            "[SottocontoApparten] = '0501001' AND [Codice Pagamento] IS NOT NULL AND [Codice Pagamento] <> '' "
            "ORDER BY [Codice Cliente]",
            {}, [&](const std::vector<Colonna>&, const std::vector<Valore>& r) {
              v.push_back({r[0].TestoTrim(), r[1].TestoTrim(), r[2].TestoTrim()});
              return true;
            });
  return v;
}

void CreaClienti(Connessione& cn, Casuale& r, int quanti) {
  const std::string sql =
      "INSERT INTO [Anagrafica Clienti] ([Codice Cliente], [Ragione Sociale], [Indirizzo], [Cap], [Località], "
      "[Provincia], [Codice Nazione], [Partita Iva], [Codice Fiscale], [Persona Fisica], [Codice Iva], "
      "[Codice Pagamento], [Descrizione Pagamento], [SottocontoApparten], [Saldo], [SaldoInizPeriodo], "
      "[SaldoDarePeriodo], [SaldoAverePeriodo], [SaldoInizProgress], [SaldoDareProgress], [SaldoAvereProgress]) "
      "VALUES (?, ?, ?, ?, ?, ?, 'IT', ?, ?, '0', '022', ?, (SELECT [Descrizione Pagamento] FROM [Pagamenti] "
      "WHERE [Codice Pagamento] = ?), '0501001', 0, 0, 0, 0, 0, 0, 0)";
  for (int i = 1; i <= quanti; ++i) {
    const Citta& c = r.Scegli(kCitta);
    std::string ragione = r.Scegli(kCognomi) + " " + r.Scegli(kAttivita) + " " + r.Scegli(kForme);
    char piva[16];
    std::snprintf(piva, sizeof piva, "%011lld", static_cast<long long>(r.Tra(100000000, 9999999999LL)));
    std::string pagamento = r.Scegli(kPagamenti);
    cn.Esegui(sql, {std::to_string(i), ragione, "Via Roma, " + std::to_string(r.Tra(1, 150)), c.cap, c.nome,
                    c.provincia, piva, piva, pagamento, pagamento});
  }
}

// A field of the VAT table: the text left-aligned in 14 characters.
std::string Campo14(const std::string& s) {
  if (s.size() >= 14) return s.substr(0, 14);
  return s + std::string(14 - s.size(), ' ');
}

}  // namespace

std::string TestoTabellaIva(const std::vector<RigaIvaEsempio>& righe) {
  std::string t;
  for (size_t i = 0; i < 5; ++i) {
    if (i < righe.size()) {
      t += Campo14(righe[i].codice) + Campo14(righe[i].imponibile.TestoPunto()) +
           Campo14(std::to_string(righe[i].aliquota));
    } else {
      t += std::string(42, ' ');
    }
  }
  return t;
}

struct ScrittoreFattureEsempio::Stato {
  clsScadenze scadenze;
  clsElaboraFatture posting;
  clsTabRiferimenti riferimenti;
  clsCodiciIva codiciIva;
};

ScrittoreFattureEsempio::ScrittoreFattureEsempio(Connessione& cn, bool scadenze)
    : cn_(cn), scadenze_(scadenze), s_(std::make_unique<Stato>()) {
  s_->scadenze.cn = cn.shared_from_this();
  s_->posting.cn = cn.shared_from_this();
  s_->riferimenti.cn = cn.shared_from_this();
  s_->codiciIva.cn = cn.shared_from_this();
}

ScrittoreFattureEsempio::~ScrittoreFattureEsempio() = default;

FatturaEsempio ScrittoreFattureEsempio::Scrivi(const DocumentoEsempio& d) {
  static const std::string sqlFattura =
      "INSERT INTO [Fatture] ([Numero], [Serie], [Data], [Elaborata], [Stampata], [Tipo fattura], [Tipo cli/for], "
      "[Codice Cliente], [Codice valuta], [Cambio], [Tipo documento], [Ragione Sociale], [Totale Documento], "
      "[Sconto (cliente)%], [Sconto2 (cliente)%], [Sconto Pagamento %], [Causale Contabile], [DataCompetenzaIVA], "
      "[Bolli], [Spese di incasso], [Spese di trasporto], [Spese accessorie], [Spese varie], "
      "[PA Totale Split Payment], [TabellaIva], [Totale Righe], [Acconto], [Ritenuta1], [Ritenuta2], [Abbuono]) "
      "VALUES (?, ?, ?, ?, '1', 0, 'C', ?, '06', 1, ?, ?, ?, 0, 0, 0, ?, ?, 0, 0, ?, 0, 0, ?, ?, ?, ?, ?, 0, ?)";
  static const std::string sqlRiga =
      "INSERT INTO [Movimenti Magazzino] ([Numero], [Serie], [Tipo documento], [Data Registrazione], "
      "[Contropartita], [Importo], [Codice Iva], [Scorporo iva], [Codice valuta], [Cambio], [Sconto Pagamento %], "
      "[Sconto (cliente)%], [Sconto2 (cliente)%]) VALUES (?, ?, 'F', ?, ?, ?, ?, ?, '06', 1, 0, 0, 0)";

  FatturaEsempio f;
  f.numero = d.numero;
  f.serie = d.serie;
  f.data = d.data;
  f.cliente = d.cliente;
  f.ragioneSociale = d.ragioneSociale;
  f.pagamento = d.pagamento;
  f.notaCredito = d.notaCredito;

  // The VAT table: the lines summed by code, in the order the codes first appear.
  std::vector<RigaIvaEsempio> tabella;
  Importo totaleRighe;
  std::string codiceOmaggio;
  for (const auto& r : d.righe) {
    f.ricavi[r.contropartita] += r.importo;
    totaleRighe += r.importo;
    auto it = std::find_if(tabella.begin(), tabella.end(),
                           [&](const RigaIvaEsempio& x) { return x.codice == r.codiceIva; });
    if (it == tabella.end()) {
      if (tabella.size() == 5) throw std::invalid_argument("ScrittoreFattureEsempio: più di cinque codici IVA");
      tabella.push_back({r.codiceIva, r.importo, r.aliquota});
    } else {
      it->imponibile += r.importo;
    }
    if (r.codiceIva.size() == 3 && r.codiceIva[0] == '8') {
      if (!codiceOmaggio.empty() && codiceOmaggio != r.codiceIva)
        throw std::invalid_argument("ScrittoreFattureEsempio: un solo codice di omaggi per documento");
      codiceOmaggio = r.codiceIva;
    }
  }
  const std::string testoTabella = TestoTabellaIva(tabella);
  // The table completed as the posting completes it: the transport apportioned, the VAT of
  // each row rounded once.
  TabellaIvaDocumento t = TabellaIvaDocumento::DaTesto(testoTabella);
  s_->posting.CompletaTabellaIva(s_->riferimenti, s_->codiciIva, t, 0, 0, 0, Importo(), d.trasporto, Importo(),
                                 totaleRighe, Importo(), G().DecimaliImporti);
  Importo iva;
  for (int i = 1; i <= 5; ++i) {
    if (t[i].codice.empty()) continue;
    iva += t[i].iva;
    f.imponibili[t[i].codice] += t[i].netto + t[i].spese;
    f.iva[t[i].codice] += t[i].iva;
    // A gift settles its amount with its VAT, the VAT worked out on the amount alone.
    if (t[i].codice == codiceOmaggio) {
      const int64_t cent = t[i].imponibile.Raw() / (Importo::kScala / 100);
      f.omaggi = Centesimi(cent + Imposta(cent, static_cast<int>(t[i].aliquota.Raw() / Importo::kScala)));
    }
  }
  f.totale = totaleRighe + d.trasporto + iva;
  f.splitPayment = d.splitPayment ? iva : Importo();
  f.acconto = d.acconto;
  f.ritenuta = d.ritenuta;
  f.abbuono = d.abbuono;

  const Valore numero(static_cast<long long>(d.numero));
  for (const auto& r : d.righe) {
    cn_.Esegui(sqlRiga, {numero, Valore(d.serie), Valore(d.data), Valore(r.contropartita), Valore(r.importo),
                         Valore(r.codiceIva), Valore(false)});
    ++righe_;
  }
  cn_.Esegui(sqlFattura,
             {numero, Valore(d.serie), Valore(d.data), Valore(false), Valore(d.cliente),
              Valore(d.notaCredito ? "NOTA CREDITO" : "FATTURA"), Valore(d.ragioneSociale), Valore(f.totale),
              Valore(d.causale), Valore(d.data), Valore(d.trasporto), Valore(f.splitPayment), Valore(testoTabella),
              Valore(totaleRighe), Valore(f.acconto), Valore(f.ritenuta), Valore(f.abbuono)});

  if (scadenze_) {
    // The instalments add up to what the client still owes; each amount settled at once has
    // its settled row beside them.
    DocumentoScadenze sd;
    sd.a_varTipoCliFor = "C";
    sd.a_varCodiceCliente = d.cliente;
    sd.a_datDataDocumento = d.data;
    sd.a_curImportoDocumento = f.DaIncassare();
    sd.a_curIvaDocumento = iva - f.splitPayment;
    sd.a_curAcconto = f.acconto;
    sd.a_curRitenuta1 = f.ritenuta;
    sd.a_curAbbuono = f.abbuono;
    sd.a_curOmaggi = f.omaggi;
    sd.a_curSplitPayment = f.splitPayment;
    sd.a_varCodicePagamento = d.pagamento;
    std::vector<std::string> righe;
    long n = 0;
    s_->scadenze.GeneraScadenze(righe, n, sd);
    f.rate = static_cast<int>(s_->scadenze.SalvaScadenzeGenerate(
        righe, 1, n,
        {{"tipo", Valore("CL")},
         {"Codice Cliente", Valore(d.cliente)},
         {"Ragione Sociale", Valore(d.ragioneSociale)},
         {"Numero Documento", numero},
         {"Serie", Valore(d.serie)},
         {"Data Documento", Valore(d.data)},
         {"Codice valuta", Valore("06")},
         {"Cambio", Valore(1.0)},
         {"Importo Documento", Valore(f.totale)}},
        Valore("esempio"), 0));
  }
  return f;
}

EsitoFattureEsempio RiempiFattureEsempio(Connessione& cn, const OpzioniFattureEsempio& o) {
  if (o.documenti < 0 || o.lotto < 1) throw std::invalid_argument("RiempiFattureEsempio: opzioni non valide");
  // Clients and documents draw from generators of their own: the documents of a starting number
  // are the same whether the clients were made by this call or were already there.
  Casuale r(o.seme, 0x7F4A7C159E3779B9ULL), rClienti(o.seme + 0x51ED270B27BB3A01ULL, 0x7F4A7C159E3779B9ULL);
  EsitoFattureEsempio esito;
  std::vector<Cliente> clienti = LeggiClienti(cn);
  if (clienti.empty()) {
    Atomico tx(cn);
    CreaClienti(cn, rClienti, std::max(1, o.clienti));
    tx.Conferma();
    clienti = LeggiClienti(cn);
  }
  if (clienti.empty()) throw std::runtime_error("RiempiFattureEsempio: nessun cliente con un pagamento");

  int32_t primo = 1 + static_cast<int32_t>(NullToZeroLng(
                          cn.Scalare("SELECT MAX([Numero]) FROM [Fatture] WHERE [Serie] = ?", {Valore(o.serie)})));
  const Data inizio = *Data::Crea(o.anno, 1, 1);
  const int giorni = Data::Bisestile(o.anno) ? 366 : 365;
  ScrittoreFattureEsempio scrittore(cn, o.scadenze);

  long inLotto = 0;
  const int livello = cn.Livello();
  cn.BeginTrans();
  try {
    for (long i = 0; i < o.documenti; ++i) {
      DocumentoEsempio d;
      d.numero = primo + static_cast<int32_t>(i);
      d.serie = o.serie;
      d.causale = o.causale;
      d.data = inizio.AggiungiGiorni(o.documenti > 0 ? static_cast<int64_t>(i) * giorni / o.documenti : 0);
      const Cliente& c = r.Scegli(clienti);
      d.cliente = c.codice;
      d.ragioneSociale = c.ragione;
      d.pagamento = c.pagamento;
      // Three lines: one at 22%, one at 10%, the third at either; goods or services.
      for (int k = 0; k < 3; ++k) {
        bool ventidue = k == 0 || (k == 2 && r.Tra(0, 1) == 0);
        int64_t cent = std::min({r.Tra(2000, 250000), r.Tra(2000, 250000)});
        std::string conto = r.Tra(0, 3) == 0 ? "7001002" : "7001001";
        d.righe.push_back({conto, ventidue ? "022" : "010", ventidue ? 22 : 10, Centesimi(cent)});
      }
      FatturaEsempio f = scrittore.Scrivi(d);
      f.sottocontoCliente = "0501001";
      esito.rate += f.rate;
      if (i == 0) esito.dal = f.data;
      esito.al = f.data;
      esito.documenti.push_back(std::move(f));
      if (++inLotto == o.lotto) {
        cn.CommitTrans();
        cn.BeginTrans();
        inLotto = 0;
      }
    }
    cn.CommitTrans();
  } catch (...) {
    if (cn.Livello() > livello) cn.RollbackTrans();
    throw;
  }
  esito.righe = scrittore.Righe();
  return esito;
}

}  // namespace vorn
