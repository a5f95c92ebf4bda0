// The demo's due dates: the instalments of every sales invoice of the year, worked out from the
// client's payment terms and stored in the due-date book.
#include <map>
#include <ostream>
#include <vector>

#include "cli/Demo.h"
#include "frame/Comuni.h"
#include "receivables/clsScadenze.h"

namespace vorn::cli {

namespace {

struct Fattura {
  std::string registrazione, serie, cliente;
  Valore data, numero;
  Importo totale, iva;
};

void Passo(ContestoDemo& ctx) {
  Connessione& cn = *ctx.cn;
  // The sales invoices: their VAT rows give the document, its total and its VAT.
  std::vector<Fattura> fatture;
  cn.Scorri("SELECT P.[NumeroRegistrazione], MAX(P.[DataDocumento]), MAX(P.[NumeroDocumento]), "
            "MAX(P.[SerieDocumento]), MAX(P.[CodiceCliFor]), MAX(P.[TotaleDocumento]), SUM(P.[ImportoMovimento]) "
            "FROM [Prima Nota] P INNER JOIN [Causali Contabili] C ON C.[CodiceCausale] = P.[CodiceCausale] WHERE "
            "P.[TipoRigaIvaNormale] = 'I' AND P.[TipoRegistroIva] = '1' AND C.[TipoCausale] = '0' AND "
            "P.[IndicatoreCliFor] = 'C' GROUP BY P.[NumeroRegistrazione] ORDER BY P.[NumeroRegistrazione]",
            {}, [&](const std::vector<Colonna>&, const std::vector<Valore>& v) {
              fatture.push_back({Trim(v[0].Testo()), Trim(v[3].Testo()), Trim(v[4].Testo()), v[1], v[2],
                                 NullToZeroCy(v[5]), NullToZeroCy(v[6])});
              return true;
            });
  std::map<std::string, std::pair<std::string, std::string>> clienti;  // code: payment, name
  cn.Scorri("SELECT [Codice Cliente], [Codice Pagamento], [Ragione Sociale] FROM [Anagrafica Clienti]", {},
            [&](const std::vector<Colonna>&, const std::vector<Valore>& v) {
              clienti[Trim(v[0].Testo())] = {Trim(v[1].Testo()), Trim(v[2].Testo())};
              return true;
            });
  clsScadenze s;
  s.cn = ctx.cn;
  long rate = 0;
  Importo totale;
  // The book of the year whole or not at all.
  Atomico unita(cn);
  for (const auto& f : fatture) {
      auto c = clienti.find(f.cliente);
      if (c == clienti.end() || !f.data.ComeData()) continue;
      DocumentoScadenze d;
      d.a_varTipoCliFor = "C";
      d.a_varCodiceCliente = f.cliente;
      d.a_datDataDocumento = *f.data.ComeData();
      d.a_curImportoDocumento = f.totale;
      d.a_curIvaDocumento = f.iva;
      d.a_varCodicePagamento = c->second.first;
      std::vector<std::string> righe;
      long n = 0;
      s.GeneraScadenze(righe, n, d);
      rate += s.SalvaScadenzeGenerate(righe, 1, n,
                                      {{"tipo", Valore("CL")},
                                       {"Codice Cliente", Valore(f.cliente)},
                                       {"Ragione Sociale", Valore(c->second.second)},
                                       {"Numero Documento", f.numero},
                                       {"Serie", Valore(f.serie)},
                                       {"Data Documento", f.data},
                                       {"Importo Documento", Valore(f.totale)},
                                       {"numeroRegistrazione", Valore(f.registrazione)}},
                                      Valore("demo"), 0, &totale);
  }
  unita.Conferma();
  ctx.FineProgresso();
  ctx.out << "Scadenziario: " << rate << " rate di " << fatture.size() << " fatture di vendita, per "
          << FormattaImporto(Valore(totale)) << " (vorn scadenziario " << ctx.azienda << " --aperte)\n";
}

RegistraPassoDemo reg({50, "scadenziario", Passo});

}  // namespace

}  // namespace vorn::cli
