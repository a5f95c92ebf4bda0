// Remittance lists, effects and till receipts on both engines, in a company of the standard
// model: the journal each run gives (golden files, the figures worked out below), the
// instalments it closes, a second run that posts nothing more, balances that follow the journal.
#include <gtest/gtest.h>

#include "frame/Comuni.h"
#include "frame/Globali.h"
#include "ledger/VerificaSaldi.h"
#include "receivables/clsDistinteBonifici.h"
#include "receivables/clsElaboraFatture.h"
#include "company/clsTabRiferimenti.h"
#include "support/Azienda.h"

namespace vorn::test {
namespace {

Importo I(const char* t) { return *Importo::DaTestoPunto(t); }

std::string Euro(Importo x) {
  int64_t raw = x.Arrotonda(2).Raw() / 100;
  std::string s = raw < 0 ? "-" : "";
  raw = raw < 0 ? -raw : raw;
  std::string c = std::to_string(raw % 100);
  return s + std::to_string(raw / 100) + "." + (c.size() < 2 ? "0" : "") + c;
}
std::string Campo(const Valore& v) {
  std::string t = v.IsDate() ? DataInTesto(v).Testo() : TrimTesto(v);
  return t.empty() ? "-" : t;
}

class DistinteEffettiTest : public AziendaStandardTest {
 protected:
  void SetUp() override {
    AziendaStandardTest::SetUp();
    if (IsSkipped() || HasFatalFailure()) return;
    ef.cn = cn;
    cn->Esegui("INSERT INTO [Anagrafica Fornitori] ([Codice Cliente], [Ragione Sociale], [SottocontoApparten], [IBAN]) "
               "VALUES ('F1', 'Beta Forniture Srl', '1301001', 'IT60X0542811101000000123456')");
    cn->Esegui("INSERT INTO [Anagrafica Clienti] ([Codice Cliente], [Ragione Sociale], [SottocontoApparten]) "
               "VALUES ('C1', 'Rossi Mario Srl', '0501001')");
    cn->Esegui("INSERT INTO [Banche Azienda] ([Codice banca], [Codice agenzia], [Descrizione], [Codice ABI], "
               "[Codice CAB], [Sottoconto Banca cc]) VALUES ('01', '001', 'Banca Uno', '05428', '11101', '0701002')");
  }

  // An instalment of the due-date book.
  struct Rata {
    int numero;
    const char* tipo;  // "CL" or "FO"
    const char* cliente;
    int documento;
    const char* dataDocumento;
    const char* scadenza;
    const char* effetto;
    const char* importo;
    bool sospeso = false;
    int unificata = 0;
    bool distinta = false;
  };
  void Scrivi(const Rata& r) {
    cn->Esegui("INSERT INTO [Scadenziario] ([Numero Progressivo], [Progressivo Documento], [Tipo], [Codice Cliente], "
               "[Ragione Sociale], [Numero Documento], [Serie], [Data Documento], [Data Scadenza], [Tipo di Effetto], "
               "[Importo Documento], [Importo Scadenza], [Importo Pagato], [Sospeso], [Flag Unificata], [Distinta], "
               "[Emesso], [Contabilizzato]) VALUES (?, ?, ?, ?, 'Ragione', ?, '', ?, ?, ?, ?, ?, 0, ?, ?, ?, ?, ?)",
               {Valore(r.numero), Valore(r.numero), Valore(r.tipo), Valore(r.cliente), Valore(r.documento),
                r.dataDocumento ? Valore(r.dataDocumento) : Valore::Null(), Valore(r.scadenza), Valore(r.effetto),
                Valore(I(r.importo)), Valore(I(r.importo)), Valore(r.sospeso), Valore(r.unificata), Valore(r.distinta),
                Valore(false), Valore(false)});
  }

  // The journal: entry, row kind, line, side, account, counterparty, amount, VAT code, taxable
  // amount, causal, description, instalment.
  std::string Giornale() {
    std::string s;
    cn->Scorri("SELECT [NumeroRegistrazione], [DataRegistrazione], [TipoRigaIvaNormale], [NumRigaAVideo], "
               "[DareAvere], [ContoPrimaNota], [CodClienteFornitore], [ImportoMovimento], [CodiceIva], [Imponibile], "
               "[CodiceCausale], [DescrizioneSupplem], [KeyScadenze] FROM [Prima Nota] "
               "ORDER BY [NumeroRegistrazione], [TipoRigaIvaNormale], [NumRigaAVideo]",
               {}, [&](const std::vector<Colonna>&, const std::vector<Valore>& r) {
                 s += Campo(r[0]) + " " + Campo(r[1]) + " " + Campo(r[2]) + " " + Campo(r[3]) + " " + Campo(r[4]) +
                      " " + Campo(r[5]) + " " + Campo(r[6]) + " " + Euro(NullToZeroCy(r[7])) + " " + Campo(r[8]) +
                      " " + Euro(NullToZeroCy(r[9])) + " " + Campo(r[10]) + " [" + TrimTesto(r[11]) + "] " +
                      (NullToZeroLng(r[12]) ? std::to_string(NullToZeroLng(r[12])) : std::string("-")) + "\n";
                 return true;
               });
    return s;
  }
  long Conta(const std::string& sql, const Parametri& p = {}) { return NullToZeroLng(cn->Scalare(sql, p)); }
  // The instalment's paid amount, and the sum of its payment rows.
  std::pair<Importo, Importo> Pagato(int numero) {
    return {NullToZeroCy(cn->Scalare("SELECT [Importo Pagato] FROM [Scadenziario] WHERE [Numero Progressivo] = ?",
                                     {Valore(numero)})),
            NullToZeroCy(cn->Scalare(
                "SELECT SUM([Importo pagato]) FROM [Scadenziario Pagamenti] WHERE [Numero Progressivo] = ?",
                {Valore(numero)}))};
  }
  void SaldiComeGiornale() {
    auto d = VerificaSaldi(*cn);
    EXPECT_TRUE(d.empty()) << DescriviDifferenza(d.front());
  }

  clsElaboraFatture ef;
};

TEST_P(DistinteEffettiTest, UnaDistintaDiBonificiPagaLeRateDeiFornitori) {
  // Due by 30/04: 1 and 2 (1.220,00 + 500,50 = 1.720,50). Left out: 3 suspended, 4 due later,
  // 5 paid otherwise (RD), 6 owed to us (positive), 7 unified away, 8 a client's.
  for (const Rata& r : {Rata{1, "FO", "F1", 10, "01/03/2024", "31/03/2024", "BO", "-1220.00"},
                        Rata{2, "FO", "F1", 11, "15/03/2024", "15/04/2024", "BO", "-500.50"},
                        Rata{3, "FO", "F1", 12, "15/03/2024", "30/04/2024", "BO", "-300.00", true},
                        Rata{4, "FO", "F1", 13, "15/03/2024", "30/06/2024", "BO", "-99.00"},
                        Rata{5, "FO", "F1", 14, "15/03/2024", "30/04/2024", "RD", "-10.00"},
                        Rata{6, "FO", "F1", 15, "15/03/2024", "30/04/2024", "BO", "50.00"},
                        Rata{7, "FO", "F1", 16, "15/03/2024", "30/04/2024", "BO", "-70.00", false, 2},
                        Rata{8, "CL", "C1", 17, "15/03/2024", "30/04/2024", "BO", "-5.00"}})
    Scrivi(r);
  clsDistinteBonifici d;
  d.cn = cn;
  // What is left to present: 1, 2 and 4.
  EXPECT_EQ(I("-1819.50"), d.GetResiduiTipoEffetto(Valore("BO")));
  NuovaDistintaBonifici n;
  n.Data_Distinta = Valore("30/04/2024");
  n.Data_Esecuzione = Valore("02/05/2024");
  n.Data_Scadenza_Limite = Valore("30/04/2024");
  n.Codice_Banca = Valore("01");
  n.Codice_Agenzia = Valore("001");
  const int32_t numero = d.CreaDistinta(n, Valore("prova"), 1);
  ASSERT_EQ(1, numero);
  EXPECT_EQ(I("1720.50"), NullToZeroCy(cn->Scalare("SELECT [ImportoDistinta] FROM [Distinte Bonifici]")));
  EXPECT_EQ(2, Conta("SELECT COUNT(*) FROM [Scadenziario] WHERE [Distinta] = ? AND [Codice Banca presentazione] = '01' "
                     "AND [Progressivo Distinta] = 1",
                     {Valore(true)}));
  EXPECT_EQ(I("-99.00"), d.GetResiduiTipoEffetto(Valore("BO")));
  // Nothing more is due by that date: no second list.
  EXPECT_EQ(0, d.CreaDistinta(n, Valore("prova"), 1));
  Recordset flusso;
  ASSERT_TRUE(d.LocalizzaEffettiEmissione(flusso, Valore(1)));
  EXPECT_EQ("05428", TrimTesto(flusso("Codice ABI").Value()));
  EXPECT_EQ("IT60X0542811101000000123456", TrimTesto(flusso("IBANFornitore").Value()));
  EXPECT_EQ(2u, flusso.RecordCount());
  flusso.Close();
  ASSERT_TRUE(d.EmettiDistinta(Valore(1)));
  EXPECT_TRUE(d.ExistEffettiEmessiDistinta(Valore(1)));

  // Posted on the execution date: the two instalments on the supplier, 2,50 of commissions,
  // the bank of the list (0701002) for 1.720,50 + 2,50 = 1.723,00.
  clsTabRiferimenti rif;
  rif.cn = cn;
  ArgomentiDistintaBonifici a;
  ASSERT_TRUE(RiferimentiDistintaBonifici(rif, a));
  a.Numero_Distinta = Valore(1);
  a.commissioniBancarie = I("2.50");
  a.clientID = Valore("prova");
  int32_t registrazione = 0;
  EXPECT_EQ(4, ef.ContabilizzaDistintaBonifici(a, registrazione));
  EXPECT_EQ(1, registrazione);
  ConfrontaGolden("receivables/golden/distinta_bonifici.txt", Giornale());
  EXPECT_EQ("00001", TrimTesto(cn->Scalare("SELECT [numeroRegistrazione] FROM [Distinte Bonifici]")));
  EXPECT_TRUE(cn->Scalare("SELECT [Contabilizzata] FROM [Distinte Bonifici]").Vero());
  for (auto [rata, importo] : {std::pair{1, "-1220.00"}, {2, "-500.50"}}) {
    EXPECT_EQ(std::make_pair(I(importo), I(importo)), Pagato(rata)) << "rata " << rata;
    EXPECT_EQ("Bonifico", TrimTesto(cn->Scalare(
                              "SELECT [Descrizione Pagamento] FROM [Scadenziario Pagamenti] WHERE [Numero Progressivo] = ?",
                              {Valore(rata)})));
  }
  EXPECT_EQ(std::make_pair(Importo(), Importo()), Pagato(4));
  SaldiComeGiornale();

  // Again: nothing to post, told, the journal as it was.
  const std::string prima = Giornale();
  EXPECT_EQ(0, ef.ContabilizzaDistintaBonifici(a, registrazione));
  EXPECT_EQ(0, registrazione);
  EXPECT_EQ("Per la distinta indicata non è stata trovata nessuna scadenza contabilizzabile, impossibile eseguire la "
            "contabilizzazione.",
            host->Ultimo());
  EXPECT_EQ(prima, Giornale());
  EXPECT_EQ(std::make_pair(I("-1220.00"), I("-1220.00")), Pagato(1));

  // A posted list cannot be taken back; a new one (instalment 4, due by June) can, and its
  // instalment is free again.
  EXPECT_FALSE(d.AnnullaDistinta(Valore(1)));
  n.Data_Scadenza_Limite = Valore("30/06/2024");
  ASSERT_EQ(2, d.CreaDistinta(n, Valore("prova"), 1));
  EXPECT_TRUE(d.AnnullaDistinta(Valore(2)));
  EXPECT_FALSE(d.ExistNumeroDistinta(Valore(2)));
  EXPECT_EQ(I("-99.00"), d.GetResiduiTipoEffetto(Valore("BO")));
  EXPECT_EQ(0, Conta("SELECT COUNT(*) FROM [Distinte Bonifici Righe] WHERE [Numero Distinta] = 2"));
}

TEST_P(DistinteEffettiTest, GliEffettiDeiClientiSonoEmessiEPresentati) {
  // In May: a bank receipt of 610,00 and a draft of 300,00. Left out: suspended, posted
  // already, a document of April.
  for (const Rata& r : {Rata{11, "CL", "C1", 20, "10/05/2024", "30/06/2024", "RB", "610.00"},
                        Rata{12, "CL", "C1", 21, "20/05/2024", "31/07/2024", "TR", "300.00"},
                        Rata{13, "CL", "C1", 22, "20/05/2024", "31/07/2024", "RB", "40.00", true},
                        Rata{14, "CL", "C1", 23, "20/04/2024", "31/07/2024", "RB", "70.00"}})
    Scrivi(r);
  cn->Esegui("UPDATE [Scadenziario] SET [Contabilizzato] = ? WHERE [Numero Progressivo] = 13", {Valore(true)});
  // An issued list of 610,00 presented to the bank on its account for effects (0503005).
  cn->Esegui("INSERT INTO [Distinte] ([Numero Distinta], [Data Distinta], [Codice Banca], [Codice Agenzia], "
             "[ImportoDistinta], [EffettiEmessi], [Contabilizzata], [SottocontoBanca]) VALUES (7, ?, '01', '001', 610, ?, ?, "
             "'0503005')",
             {Valore("15/05/2024"), Valore(true), Valore(false)});
  cn->Esegui("INSERT INTO [Distinte Righe] ([Numero Distinta], [Numero Progressivo]) VALUES (7, 11)");
  clsTabRiferimenti rif;
  rif.cn = cn;
  ArgomentiElaboraEffetti a;
  ASSERT_TRUE(RiferimentiElaboraEffetti(rif, a));
  a.avar_DaData = Valore("01/05/2024");
  a.avar_AData = Valore("31/05/2024");
  a.avar_DataContabilizzazione = Valore("31/05/2024");
  a.bool_ContabilizzaDataFattura = true;
  a.clientID = Valore("prova");
  EsitoElaborazione e = ef.ElaboraEffetti(a);
  EXPECT_EQ(3, e.Registrazioni);
  EXPECT_EQ("Create 3 registrazioni di prima nota.", host->Ultimo());
  // Each paper: the client credited, the portfolio (0503001 receipts, 0503002 drafts) debited,
  // on the document's date; the list: the bank's account for effects against the receipts.
  ConfrontaGolden("receivables/golden/effetti.txt", Giornale());
  EXPECT_EQ(std::make_pair(I("610.00"), I("610.00")), Pagato(11));
  EXPECT_EQ(std::make_pair(I("300.00"), I("300.00")), Pagato(12));
  EXPECT_EQ(std::make_pair(Importo(), Importo()), Pagato(14));
  EXPECT_EQ("Emiss. Tratte", TrimTesto(cn->Scalare(
                                 "SELECT [Descrizione Pagamento] FROM [Scadenziario Pagamenti] WHERE [Numero Progressivo] = 12")));
  EXPECT_EQ("00003", TrimTesto(cn->Scalare("SELECT [NumeroRegistrazione] FROM [Distinte] WHERE [Numero Distinta] = 7")));
  SaldiComeGiornale();

  const std::string prima = Giornale();
  e = ef.ElaboraEffetti(a);
  EXPECT_EQ(0, e.Registrazioni);
  EXPECT_EQ("Nessun effetto da elaborare.", host->Ultimo());
  EXPECT_EQ(prima, Giornale());

  // Direct: only a paper presented in a list, straight on the list's bank account.
  Scrivi({15, "CL", "C1", 24, "21/05/2024", "31/08/2024", "RB", "122.00", false, 0, true});
  Scrivi({16, "CL", "C1", 25, "21/05/2024", "31/08/2024", "RB", "10.00"});
  cn->Esegui("INSERT INTO [Distinte Righe] ([Numero Distinta], [Numero Progressivo]) VALUES (7, 15)");
  a.bool_ContabilizzazioneDiretta = true;
  e = ef.ElaboraEffetti(a);
  EXPECT_EQ(1, e.Registrazioni);
  EXPECT_EQ(I("122.00"), NullToZeroCy(cn->Scalare(
                             "SELECT [ImportoMovimento] FROM [Prima Nota] WHERE [NumeroRegistrazione] = '00004' AND "
                             "[DareAvere] = 'D' AND [ContoPrimaNota] = '0503005'")));
  EXPECT_EQ(std::make_pair(Importo(), Importo()), Pagato(16));
  SaldiComeGiornale();
}

TEST_P(DistinteEffettiTest, IcorrispettiviDelGiornoDaiMovimentiDiMagazzino) {
  // 03/06: code 022 (stored "0022"): 122,00 with VAT inside -> 100,00 + 22,00; 50,00 net with
  // 10% off -> 45,00 + 9,90 of VAT. Code 010: 11,00 with VAT inside -> 10,00 + 1,00.
  // Taxable 155,00, VAT 32,90, cash 187,90. 04/06: 24,40 with VAT inside -> 20,00 + 4,40.
  // A movement of another causal stays where it is.
  auto movimento = [&](const char* data, const char* causale, const char* codice, const char* importo, bool scorporo,
                       double sconto) {
    cn->Esegui("INSERT INTO [Movimenti Magazzino] ([Data Registrazione], [Causale Magazzino], [Codice Iva], "
               "[Importo], [Scorporo iva], [Sconto (cliente)%], [Flag Elaborato Scontrini], [Tipo documento]) "
               "VALUES (?, ?, ?, ?, ?, ?, ?, 'S')",
               {Valore(data), Valore(causale), Valore(codice), Valore(I(importo)), Valore(scorporo), Valore(sconto),
                Valore(false)});
  };
  movimento("03/06/2024", "SCO", "0022", "122.00", true, 0);
  movimento("03/06/2024", "SCO", "0022", "50.00", false, 10);
  movimento("03/06/2024", "SCO", "0010", "11.00", true, 0);
  movimento("04/06/2024", "SCO", "0022", "24.40", true, 0);
  movimento("04/06/2024", "VEN", "0022", "99.00", true, 0);
  clsTabRiferimenti rif;
  rif.cn = cn;
  ArgomentiElaboraScontrini a;
  ASSERT_TRUE(RiferimentiElaboraScontrini(rif, a));
  a.avar_DaData = Valore("01/06/2024");
  a.avar_AData = Valore("30/06/2024");
  a.causale_magazzino_corrispettivi = Valore("SCO");
  a.clientID = Valore("prova");
  EsitoElaborazione e = ef.ElaboraScontrini(a);
  EXPECT_EQ(2, e.Registrazioni);
  ConfrontaGolden("receivables/golden/scontrini.txt", Giornale());
  EXPECT_EQ(4, Conta("SELECT COUNT(*) FROM [Movimenti Magazzino] WHERE [Flag Elaborato Scontrini] = ?", {Valore(true)}));
  // The receipts' register counted its two documents.
  EXPECT_EQ(2, Conta("SELECT MAX([NumeroUltimoDoc]) FROM [Progressivi Numerazione Vorn] WHERE [TipoRegistro] = '3'"));
  SaldiComeGiornale();

  const std::string prima = Giornale();
  e = ef.ElaboraScontrini(a);
  EXPECT_EQ(0, e.Registrazioni);
  EXPECT_EQ("Nessuno scontrino elaborabile.", host->Ultimo());
  EXPECT_EQ(prima, Giornale());
}

VORN_SU_DUE_MOTORI(DistinteEffettiTest);

}  // namespace
}  // namespace vorn::test
