#include "receivables/FattureEsempio.h"

#include <algorithm>
#include <cstdio>
#include <stdexcept>

#include "frame/Casuale.h"
#include "frame/Comuni.h"
#include "frame/Valore.h"
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

  const std::string sqlFattura =
      "INSERT INTO [Fatture] ([Numero], [Serie], [Data], [Elaborata], [Stampata], [Tipo fattura], [Tipo cli/for], "
      "[Codice Cliente], [Codice valuta], [Cambio], [Tipo documento], [Ragione Sociale], [Totale Documento], "
      "[Sconto (cliente)%], [Sconto2 (cliente)%], [Sconto Pagamento %], [Causale Contabile], [DataCompetenzaIVA], "
      "[Bolli], [Spese di incasso], [Spese di trasporto], [Spese accessorie], [Spese varie], "
      "[PA Totale Split Payment], [TabellaIva], [Totale Righe], [Acconto], [Ritenuta1], [Ritenuta2], [Abbuono]) "
      "VALUES (?, ?, ?, ?, '1', 0, 'C', ?, '06', 1, 'FATTURA', ?, ?, 0, 0, 0, ?, ?, 0, 0, 0, 0, 0, 0, ?, ?, 0, 0, "
      "0, 0)";
  const std::string sqlRiga =
      "INSERT INTO [Movimenti Magazzino] ([Numero], [Serie], [Tipo documento], [Data Registrazione], "
      "[Contropartita], [Importo], [Codice Iva], [Scorporo iva], [Codice valuta], [Cambio], [Sconto Pagamento %], "
      "[Sconto (cliente)%], [Sconto2 (cliente)%]) VALUES (?, ?, 'F', ?, ?, ?, ?, ?, '06', 1, 0, 0, 0)";

  clsScadenze scadenze;
  scadenze.cn = cn.shared_from_this();

  long inLotto = 0;
  const int livello = cn.Livello();
  cn.BeginTrans();
  try {
    for (long i = 0; i < o.documenti; ++i) {
      FatturaEsempio f;
      f.numero = primo + static_cast<int32_t>(i);
      f.serie = o.serie;
      f.data = inizio.AggiungiGiorni(o.documenti > 0 ? static_cast<int64_t>(i) * giorni / o.documenti : 0);
      const Cliente& c = r.Scegli(clienti);
      f.cliente = c.codice;
      f.ragioneSociale = c.ragione;
      f.sottocontoCliente = "0501001";
      f.pagamento = c.pagamento;

      // Three lines: one at 22%, one at 10%, the third at either; goods or services.
      int64_t imponibile22 = 0, imponibile10 = 0;
      for (int k = 0; k < 3; ++k) {
        bool ventidue = k == 0 || (k == 2 && r.Tra(0, 1) == 0);
        int64_t cent = std::min({r.Tra(2000, 250000), r.Tra(2000, 250000)});
        std::string conto = r.Tra(0, 3) == 0 ? "7001002" : "7001001";
        (ventidue ? imponibile22 : imponibile10) += cent;
        f.ricavi[conto] += Centesimi(cent);
        cn.Esegui(sqlRiga, {Valore(static_cast<long long>(f.numero)), Valore(f.serie), Valore(f.data), Valore(conto),
                            Valore(Centesimi(cent)), Valore(ventidue ? "022" : "010"), Valore(false)});
        ++esito.righe;
      }
      const int64_t iva22 = Imposta(imponibile22, 22), iva10 = Imposta(imponibile10, 10);
      f.imponibili["022"] = Centesimi(imponibile22);
      f.imponibili["010"] = Centesimi(imponibile10);
      f.iva["022"] = Centesimi(iva22);
      f.iva["010"] = Centesimi(iva10);
      f.totale = Centesimi(imponibile22 + iva22 + imponibile10 + iva10);
      std::string tabella =
          TestoTabellaIva({{"022", Centesimi(imponibile22), 22}, {"010", Centesimi(imponibile10), 10}});
      cn.Esegui(sqlFattura, {Valore(static_cast<long long>(f.numero)), Valore(f.serie), Valore(f.data), Valore(false),
                             Valore(f.cliente), Valore(f.ragioneSociale), Valore(f.totale), Valore(o.causale),
                             Valore(f.data), Valore(tabella), Valore(Centesimi(imponibile22 + imponibile10))});

      if (o.scadenze) {
        DocumentoScadenze d;
        d.a_varTipoCliFor = "C";
        d.a_varCodiceCliente = f.cliente;
        d.a_datDataDocumento = f.data;
        d.a_curImportoDocumento = f.totale;
        d.a_curIvaDocumento = Centesimi(iva22 + iva10);
        d.a_varCodicePagamento = f.pagamento;
        std::vector<std::string> righe;
        long n = 0;
        scadenze.GeneraScadenze(righe, n, d);
        const long rate = scadenze.SalvaScadenzeGenerate(
            righe, 1, n,
            {{"tipo", Valore("CL")},
             {"Codice Cliente", Valore(f.cliente)},
             {"Ragione Sociale", Valore(f.ragioneSociale)},
             {"Numero Documento", Valore(static_cast<long long>(f.numero))},
             {"Serie", Valore(f.serie)},
             {"Data Documento", Valore(f.data)},
             {"Codice valuta", Valore("06")},
             {"Cambio", Valore(1.0)},
             {"Importo Documento", Valore(f.totale)}},
            Valore("esempio"), 0);
        f.rate += rate;
        esito.rate += rate;
      }
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
  return esito;
}

}  // namespace vorn
