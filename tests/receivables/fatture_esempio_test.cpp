// The sample sales documents on both engines: what each document holds (its lines, VAT table,
// total and instalments agree with one another), the numbering by series, the same documents
// from the same starting number.
#include <gtest/gtest.h>

#include <map>
#include <set>

#include "frame/Comuni.h"
#include "frame/Globali.h"
#include "receivables/FattureEsempio.h"
#include "support/Azienda.h"

namespace vorn::test {
namespace {

Importo I(const char* t) { return *Importo::DaTestoPunto(t); }

TEST(TestoTabellaIva, CinqueRigheDiTreCampiDa14) {
  std::string t = TestoTabellaIva({{"022", I("1234.5"), 22}, {"010", I("80"), 10}});
  ASSERT_EQ(210u, t.size());
  EXPECT_EQ("022           1234.5        22            "
            "010           80            10            ",
            t.substr(0, 84));
  EXPECT_EQ(std::string(126, ' '), t.substr(84));
  EXPECT_EQ(std::string(210, ' '), TestoTabellaIva({}));
}

class FattureEsempioTest : public AziendaStandardTest {
 protected:
  // VAT in cents from a taxable amount, halves away from zero.
  static Importo Iva(Importo imponibile, int aliquota) {
    return imponibile.Per(aliquota / 100.0).Arrotonda(2);
  }
};

TEST_P(FattureEsempioTest, OgniDocumentoTornaConLeSueRigheIvaERate) {
  OpzioniFattureEsempio o;
  o.documenti = 24;
  o.clienti = 5;
  o.serie = "A";
  o.seme = 7;
  EsitoFattureEsempio e = RiempiFattureEsempio(*cn, o);
  ASSERT_EQ(24u, e.documenti.size());
  EXPECT_EQ(72, e.righe);
  EXPECT_EQ(*Data::Crea(2024, 1, 1), e.dal);
  // 24 documents over the 366 days of 2024: the last at day 23 * 366 / 24 = 350, 16 December.
  EXPECT_EQ(*Data::Crea(2024, 12, 16), e.al);
  EXPECT_EQ(5, cn->Scalare("SELECT COUNT(*) FROM [Anagrafica Clienti]").Int());
  // Every client's payment code is one of the model's.
  EXPECT_EQ(0, cn->Scalare("SELECT COUNT(*) FROM [Anagrafica Clienti] C LEFT JOIN [Pagamenti] P ON "
                           "P.[Codice Pagamento] = C.[Codice Pagamento] WHERE P.[Codice Pagamento] IS NULL")
                   .Int());

  long rate = 0;
  std::set<std::string> clienti;
  for (size_t i = 0; i < e.documenti.size(); ++i) {
    const FatturaEsempio& f = e.documenti[i];
    SCOPED_TRACE("fattura " + std::to_string(f.numero));
    EXPECT_EQ(static_cast<int32_t>(i + 1), f.numero);
    clienti.insert(f.cliente);
    Recordset rs = cn->Execute("SELECT * FROM [Fatture] WHERE [Numero] = ? AND [Serie] = 'A'", {Valore(f.numero)});
    ASSERT_FALSE(rs.Eof());
    EXPECT_EQ("1", TrimTesto(rs("Stampata").Value()));
    EXPECT_FALSE(rs("Elaborata").Value().Bool());
    EXPECT_EQ(f.data, *rs("Data").Value().ComeData());
    EXPECT_EQ(f.cliente, TrimTesto(rs("Codice Cliente").Value()));
    EXPECT_EQ("FTV", TrimTesto(rs("Causale Contabile").Value()));
    EXPECT_EQ(f.totale, NullToZeroCy(rs("Totale Documento").Value()));

    // The lines: three, both rates, their sum the document's lines total and, by rate, the
    // VAT table's taxable amounts.
    std::map<std::string, Importo> perCodice, perConto;
    long righe = 0;
    cn->Scorri("SELECT [Codice Iva], [Contropartita], [Importo] FROM [Movimenti Magazzino] WHERE [Numero] = ? AND "
               "[Serie] = 'A' AND [Tipo documento] = 'F'",
               {Valore(f.numero)}, [&](const std::vector<Colonna>&, const std::vector<Valore>& r) {
                 perCodice[TrimTesto(r[0])] += NullToZeroCy(r[2]);
                 perConto[TrimTesto(r[1])] += NullToZeroCy(r[2]);
                 ++righe;
                 return true;
               });
    EXPECT_EQ(3, righe);
    ASSERT_EQ(2u, perCodice.size());
    EXPECT_EQ(f.ricavi, perConto);
    EXPECT_EQ(f.imponibili, perCodice);
    EXPECT_EQ(perCodice["022"] + perCodice["010"], NullToZeroCy(rs("Totale Righe").Value()));
    EXPECT_EQ(TestoTabellaIva({{"022", perCodice["022"], 22}, {"010", perCodice["010"], 10}}),
              rs("TabellaIva").Value().Testo());
    EXPECT_EQ(Iva(perCodice["022"], 22), f.iva.at("022"));
    EXPECT_EQ(Iva(perCodice["010"], 10), f.iva.at("010"));
    EXPECT_EQ(perCodice["022"] + Iva(perCodice["022"], 22) + perCodice["010"] + Iva(perCodice["010"], 10), f.totale);

    // The instalments add up to the total and wait for their registration.
    Importo rateTotale;
    long n = 0;
    cn->Scorri("SELECT [Importo Scadenza], [numeroRegistrazione], [tipo], [Codice Cliente] FROM [Scadenziario] "
               "WHERE [Numero Documento] = ? AND [Serie] = 'A'",
               {Valore(f.numero)}, [&](const std::vector<Colonna>&, const std::vector<Valore>& r) {
                 rateTotale += NullToZeroCy(r[0]);
                 EXPECT_EQ("", TrimTesto(r[1]));
                 EXPECT_EQ("CL", TrimTesto(r[2]));
                 EXPECT_EQ(f.cliente, TrimTesto(r[3]));
                 ++n;
                 return true;
               });
    EXPECT_GE(n, 1);
    EXPECT_EQ(f.rate, n);
    EXPECT_EQ(f.totale, rateTotale);
    rate += n;
  }
  EXPECT_EQ(rate, e.rate);
  EXPECT_GT(clienti.size(), 1u);
}

TEST_P(FattureEsempioTest, NumeriPerSerieEStessiDocumentiDalloStessoSeme) {
  OpzioniFattureEsempio o;
  o.documenti = 6;
  o.clienti = 3;
  o.serie = "A";
  EsitoFattureEsempio a = RiempiFattureEsempio(*cn, o);
  // The same starting number in another series: the same documents, numbered from 1 again; the clients
  // made the first time are taken, not made again.
  o.serie = "B";
  EsitoFattureEsempio b = RiempiFattureEsempio(*cn, o);
  EXPECT_EQ(3, cn->Scalare("SELECT COUNT(*) FROM [Anagrafica Clienti]").Int());
  ASSERT_EQ(6u, b.documenti.size());
  for (size_t i = 0; i < 6; ++i) {
    EXPECT_EQ(a.documenti[i].numero, b.documenti[i].numero);
    EXPECT_EQ("B", b.documenti[i].serie);
    EXPECT_EQ(a.documenti[i].cliente, b.documenti[i].cliente);
    EXPECT_EQ(a.documenti[i].totale, b.documenti[i].totale);
    EXPECT_EQ(a.documenti[i].ricavi, b.documenti[i].ricavi);
  }
  // Series A again goes on from its highest number; another starting number gives other amounts.
  o.serie = "A";
  o.seme = 2;
  o.documenti = 2;
  EsitoFattureEsempio c = RiempiFattureEsempio(*cn, o);
  EXPECT_EQ(7, c.documenti[0].numero);
  EXPECT_EQ(8, c.documenti[1].numero);
  EXPECT_NE(a.documenti[0].totale, c.documenti[0].totale);
  EXPECT_EQ(14, cn->Scalare("SELECT COUNT(*) FROM [Fatture]").Int());
  EXPECT_EQ(42, cn->Scalare("SELECT COUNT(*) FROM [Movimenti Magazzino]").Int());
  // Nothing is stamped as posted.
  EXPECT_EQ(0, cn->Scalare("SELECT COUNT(*) FROM [Fatture] WHERE [Elaborata] = ? OR [Stampata] <> '1'",
                           {Valore(true)})
                   .Int());
}

VORN_SU_DUE_MOTORI(FattureEsempioTest);

}  // namespace
}  // namespace vorn::test
