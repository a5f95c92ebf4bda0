// The demo's remittance lists and effects, at the end of the year: the open invoices of the
// suppliers paid by bank transfer get their instalments from the supplier's payment terms, and
// those due by the end of February are paid on 31 December by one transfer list (made, issued,
// posted); the open bank receipts (Ri.Ba.) of the clients are presented to the bank in one list
// of effects and issued straight to its account (ElaboraEffetti). An invoice is open when the
// counterparty's balance still covers it: the demo collects and pays the oldest invoices first.
#include <map>
#include <ostream>

#include "cli/Demo.h"
#include "company/clsTabRiferimenti.h"
#include "frame/Comuni.h"
#include "frame/Formato.h"
#include "receivables/clsDistinteBonifici.h"
#include "receivables/clsElaboraFatture.h"
#include "receivables/clsScadenze.h"

namespace vorn::cli {

namespace {

constexpr const char* kBanca = "01";
constexpr const char* kAgenzia = "001";

// The runs' messages: the summaries are no news; anything else stops the demo.
class MessaggiPasso : public IHost {
 public:
  MessaggiPasso() : prima_(Host()) { ImpostaHost(this); }
  ~MessaggiPasso() override { ImpostaHost(&prima_); }
  MessaggiPasso(const MessaggiPasso&) = delete;
  MessaggiPasso& operator=(const MessaggiPasso&) = delete;
  int MsgBox(const std::string& testo, int stile, const std::string& titolo) override {
    if (testo.rfind("Create ", 0) != 0 && testo != "Nessun effetto da elaborare.")
      throw std::runtime_error("Distinte ed effetti della demo: " + titolo + ": " + testo);
    (void)stile;
    return vbOK;
  }
  std::string CartellaApplicazione() override { return prima_.CartellaApplicazione(); }
  std::string TitoloApplicazione() override { return prima_.TitoloApplicazione(); }

 private:
  IHost& prima_;
};

// The balance of a counterparty from its journal rows: debit less credit.
std::map<std::string, Importo> Saldi(Connessione& cn, const char* ind) {
  std::map<std::string, Importo> s;
  cn.Scorri("SELECT [CodClienteFornitore], [DareAvere], [ImportoMovimento] FROM [Prima Nota] WHERE "
            "[IndClienteFornitore] = ?",
            {Valore(ind)}, [&](const std::vector<Colonna>&, const std::vector<Valore>& r) {
              const Importo x = NullToZeroCy(r[2]);
              s[TrimTesto(r[0])] += TrimTesto(r[1]) == "D" ? x : -x;
              return true;
            });
  return s;
}

// The company's bank of the demo, with its current account and the account of the effects it
// collects.
void BancaDemo(Connessione& cn) {
  if (NullToZeroLng(cn.Scalare("SELECT COUNT(*) FROM [Banche Azienda] WHERE [Codice banca] = ? AND [Codice agenzia] = ?",
                               {Valore(kBanca), Valore(kAgenzia)})) > 0)
    return;
  cn.Esegui("INSERT INTO [Banche Azienda] ([Codice banca], [Codice agenzia], [Descrizione], [Località], [Codice ABI], "
            "[Codice CAB], [Sottoconto Banca cc], [Sottoconto Banca sbf], [Codice SIA], [IBAN]) VALUES (?, ?, "
            "'Banca Esempio - sede', 'Milano', '03069', '09400', '0701001', '0503005', 'A1B2C', "
            "'IT40S0306909400100000012345')",
            {Valore(kBanca), Valore(kAgenzia)});
}

// The suppliers' open invoices paid by transfer, with the instalments of their terms; the count.
long ScadenzeFornitori(Connessione& cn) {
  const std::map<std::string, Importo> saldi = Saldi(cn, "F");
  struct Fornitore {
    std::string codice, ragione, pagamento;
  };
  std::vector<Fornitore> fornitori;
  cn.Scorri("SELECT F.[Codice Cliente], F.[Ragione Sociale], F.[Codice Pagamento] FROM [Anagrafica Fornitori] F "
            "INNER JOIN [Pagamenti] P ON P.[Codice Pagamento] = F.[Codice Pagamento] WHERE P.[Tipo Pagamento] = 'BO' "
            "ORDER BY F.[Codice Cliente]",
            {}, [&](const std::vector<Colonna>&, const std::vector<Valore>& r) {
              fornitori.push_back({TrimTesto(r[0]), TrimTesto(r[1]), TrimTesto(r[2])});
              return true;
            });
  clsScadenze sca;
  sca.cn = cn.shared_from_this();
  long rate = 0;
  for (const Fornitore& f : fornitori) {
    auto s = saldi.find(f.codice);
    if (s == saldi.end()) continue;
    Importo aperto = -s->second;  // what the company owes
    // The supplier's invoices, the latest first: those the balance still covers are open. An
    // intra-community supplier is left out: its invoices are owed less the VAT integrated.
    struct Fattura {
      Valore numero, data, protocollo;
      Importo totale;
      bool intra;
    };
    std::vector<Fattura> fatture;
    cn.Scorri("SELECT [NumeroDocumento], [DataDocumento], [NumeroDiProtocollo], [ImportoMovimento], [CodiceCausale] "
              "FROM [Prima Nota] WHERE [IndClienteFornitore] = 'F' AND [CodClienteFornitore] = ? AND [DareAvere] = 'A' "
              "AND [CodiceCausale] IN ('FTA', 'FAI') ORDER BY [DataRegistrazione] DESC, [NumeroRegistrazione] DESC",
              {Valore(f.codice)}, [&](const std::vector<Colonna>&, const std::vector<Valore>& r) {
                fatture.push_back({r[0], r[1], r[2], NullToZeroCy(r[3]), TrimTesto(r[4]) == "FAI"});
                return true;
              });
    for (const Fattura& x : fatture) {
      if (x.intra || x.totale > aperto) break;
      aperto -= x.totale;
      DocumentoScadenze d;
      d.a_varTipoCliFor = "F";
      d.a_varCodiceCliente = f.codice;
      d.a_datDataDocumento = *x.data.ComeData();
      d.a_curImportoDocumento = x.totale;
      d.a_varCodicePagamento = f.pagamento;
      std::vector<std::string> righe;
      long n = 0;
      sca.GeneraScadenze(righe, n, d);
      const Valore progressivo(static_cast<long long>(sca.PrendiProgressivoDocumento()));
      rate += sca.SalvaScadenzeGenerate(righe, 1, n,
                                        {{"tipo", Valore("FO")},
                                         {"Progressivo Documento", progressivo},
                                         {"Codice Cliente", Valore(f.codice)},
                                         {"Ragione Sociale", Valore(f.ragione)},
                                         {"Numero Documento", x.numero},
                                         {"Serie", Valore("")},
                                         {"Data Documento", x.data},
                                         {"NumeroDiProtocollo", x.protocollo},
                                         {"Codice valuta", Valore("06")},
                                         {"Cambio", Valore(1.0)},
                                         {"Importo Documento", Valore(x.totale)}},
                                        Valore("demo"), 0);
      // What is owed to a supplier is kept negative.
      cn.Esegui("UPDATE [Scadenziario] SET [Importo Scadenza] = -[Importo Scadenza], [Importo Documento] = "
                "-[Importo Documento] WHERE [Progressivo Documento] = ?",
                {progressivo});
    }
  }
  return rate;
}

// The clients' open bank receipts, the latest first while the client's balance covers them.
std::vector<int32_t> RicevuteAperte(Connessione& cn) {
  const std::map<std::string, Importo> saldi = Saldi(cn, "C");
  std::map<std::string, Importo> aperto;
  for (const auto& [c, s] : saldi) aperto[c] = s;
  std::vector<int32_t> v;
  std::map<std::string, bool> chiuso;  // a client whose older receipts are paid already
  cn.Scorri("SELECT [Numero Progressivo], [Codice Cliente], [Importo Scadenza] FROM [Scadenziario] WHERE [Tipo] = 'CL' "
            "AND [Tipo di Effetto] = 'RB' AND ([Note] IS NULL OR [Note] = '') AND COALESCE([Contabilizzato], ?) = ? "
            "AND COALESCE([Distinta], ?) = ? ORDER BY [Codice Cliente], [Data Documento] DESC, [Numero Documento] DESC, "
            "[Data Scadenza] DESC",
            {Valore(false), Valore(false), Valore(false), Valore(false)},
            [&](const std::vector<Colonna>&, const std::vector<Valore>& r) {
              const std::string c = TrimTesto(r[1]);
              const Importo x = NullToZeroCy(r[2]);
              if (chiuso[c] || x > aperto[c]) {
                chiuso[c] = true;
                return true;
              }
              aperto[c] -= x;
              v.push_back(static_cast<int32_t>(NullToZeroLng(r[0])));
              return true;
            });
  return v;
}

void Passo(ContestoDemo& ctx) {
  Connessione& cn = *ctx.cn;
  const int anno = ctx.Anno();
  const Valore fine(*Data::Crea(anno, 12, 31));
  MessaggiPasso messaggi;
  {
    Atomico t(cn);
    BancaDemo(cn);
    ScadenzeFornitori(cn);
    t.Conferma();
  }

  // The transfers: what falls due by the end of February, executed on 31 December.
  clsDistinteBonifici bon;
  bon.cn = ctx.cn;
  NuovaDistintaBonifici n;
  n.Data_Distinta = fine;
  n.Data_Esecuzione = fine;
  n.Data_Scadenza_Limite = Valore(Data::Crea(anno + 1, 3, 1)->AggiungiGiorni(-1));
  n.Codice_Banca = Valore(kBanca);
  n.Codice_Agenzia = Valore(kAgenzia);
  const int32_t lista = bon.CreaDistinta(n, Valore("demo"), 0);
  long rateBonifici = 0, righe = 0;
  Importo bonifici;
  int32_t registrazione = 0;
  if (lista != 0) {
    bon.EmettiDistinta(Valore(lista));
    rateBonifici = NullToZeroLng(
        cn.Scalare("SELECT COUNT(*) FROM [Distinte Bonifici Righe] WHERE [Numero Distinta] = ?", {Valore(lista)}));
    bonifici = NullToZeroCy(
        cn.Scalare("SELECT [ImportoDistinta] FROM [Distinte Bonifici] WHERE [Numero Distinta] = ?", {Valore(lista)}));
    clsTabRiferimenti rif;
    rif.cn = ctx.cn;
    ArgomentiDistintaBonifici a;
    if (!RiferimentiDistintaBonifici(rif, a))
      throw std::runtime_error("L'azienda non ha i riferimenti contabili dei bonifici.");
    a.Numero_Distinta = Valore(lista);
    a.commissioniBancarie = Importo::DaRaw(Importo::kScala * 5 / 2);  // 2,50
    a.clientID = Valore("demo");
    clsElaboraFatture ef;
    ef.cn = ctx.cn;
    righe = ef.ContabilizzaDistintaBonifici(a, registrazione);
  }

  // The clients' bank receipts still open: one list to the bank, issued straight to its
  // account for effects on 31 December.
  const std::vector<int32_t> ricevute = RicevuteAperte(cn);
  clsDistinteEffetti eff;
  eff.cn = ctx.cn;
  NuovaDistintaEffetti ne;
  ne.Data_Distinta = fine;
  ne.Codice_Banca = Valore(kBanca);
  ne.Codice_Agenzia = Valore(kAgenzia);
  ne.SottocontoBanca = Valore("0503005");
  const int32_t listaEffetti = eff.CreaDistinta(ne, ricevute, Valore("demo"), 0);
  EsitoElaborazione e;
  if (listaEffetti != 0) {
    clsTabRiferimenti rif;
    rif.cn = ctx.cn;
    ArgomentiElaboraEffetti a;
    if (!RiferimentiElaboraEffetti(rif, a))
      throw std::runtime_error("L'azienda non ha i riferimenti contabili degli effetti.");
    a.avar_DaData = Valore(*Data::Crea(anno, 1, 1));
    a.avar_AData = fine;
    a.avar_DataContabilizzazione = fine;
    a.bool_ContabilizzazioneDiretta = true;
    a.clientID = Valore("demo");
    clsElaboraFatture ef;
    ef.cn = ctx.cn;
    e = ef.ElaboraEffetti(a);
    if (!e.Errori.empty()) throw std::runtime_error("Effetti della demo: " + e.Errori.front());
  }
  const Importo effetti = NullToZeroCy(
      cn.Scalare("SELECT [ImportoDistinta] FROM [Distinte] WHERE [Numero Distinta] = ?", {Valore(listaEffetti)}));

  ctx.FineProgresso();
  if (lista != 0)
    ctx.out << "Distinta bonifici n. " << lista << " del " << fine.Testo() << ": " << rateBonifici
            << " rate di fornitori per " << FormattaImporto(Valore(bonifici)) << " pagate con la registrazione "
            << Format(Valore(registrazione), "00000") << " (" << righe << " righe, 2,50 di commissioni) (vorn distinte "
            << ctx.azienda << ")\n";
  else
    ctx.out << "Distinta bonifici: nessuna rata di fornitori da pagare con bonifico.\n";
  if (listaEffetti != 0)
    ctx.out << "Distinta effetti n. " << listaEffetti << " del " << fine.Testo() << ": " << e.Registrazioni
            << " ricevute bancarie dei clienti per " << FormattaImporto(Valore(effetti))
            << " emesse e presentate in banca (vorn contabilizza-effetti " << ctx.azienda << " --dal 01/01/" << anno
            << " --al " << fine.Testo() << " --diretta)\n";
  else
    ctx.out << "Distinta effetti: nessuna ricevuta bancaria aperta da presentare.\n";
}

RegistraPassoDemo reg({3, "distinte ed effetti", Passo});

}  // namespace

}  // namespace vorn::cli
