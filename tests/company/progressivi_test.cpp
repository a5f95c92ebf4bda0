#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <future>
#include <set>
#include <thread>

#include "company/PresaNumero.h"
#include "company/clsNumerazioneFogli.h"
#include "company/clsProgAzienda.h"
#include "company/clsProgrNumerazione.h"
#include "frame/Catalogo.h"
#include "frame/Comuni.h"
#include "frame/VornServer.h"
#include "support/Azienda.h"

using namespace vorn;
using namespace vorn::test;

namespace {

Data D(int g, int m, int a) { return *Data::Crea(a, m, g); }
Importo Imp(const char* testo) { return *Importo::DaTestoPunto(testo); }

int64_t Intero(const Valore& v) { return NullToZeroLng(v); }

}  // namespace

class Progressivi : public AziendaTest {
 protected:
  template <class C>
  C Con(std::shared_ptr<Connessione> c = nullptr) {
    C x;
    x.cn = c ? c : cn;
    return x;
  }
  clsProgAzienda Prog() { return Con<clsProgAzienda>(); }
  clsProgrNumerazione Num() { return Con<clsProgrNumerazione>(); }
  clsNumerazioneFogli Fogli() { return Con<clsNumerazioneFogli>(); }

  int64_t Righe(const std::string& tabella, const std::string& where = {}) {
    return Intero(cn->Scalare("SELECT COUNT(*) FROM [" + tabella + "]" + (where.empty() ? "" : " WHERE " + where)));
  }
  // The VAT settlement progressives in the getter's order, amounts at their shortest, outputs
  // preset to "x"; false when there is no row.
  bool Liquidazione(std::string& testo) {
    Valore v[9];
    for (auto& x : v) x = Valore("x");
    bool trovata = Prog().GetProgressiviLiquidazioneIva(v[0], v[1], v[2], v[3], v[4], v[5], v[6], v[7], v[8]);
    testo.clear();
    for (int i = 0; i < 9; ++i)
      testo += (i ? "|" : "") + (i != 2 ? NullToZeroCy(v[i]).TestoPunto() : v[i].IsNull() ? "NULL" : v[i].Testo());
    return trovata;
  }
  // The journal book's progressives: last print|row|debit|credit; false when there is no row.
  bool Giornale(std::string& testo) {
    Valore data("x"), riga("x"), dare("x"), avere("x");
    bool trovata = Prog().GetProgressiviLibroGiornale(data, riga, dare, avere);
    testo = (data.IsNull() ? "NULL" : data.Testo()) + "|" + std::to_string(Intero(riga)) + "|" +
            NullToZeroCy(dare).TestoPunto() + "|" + NullToZeroCy(avere).TestoPunto();
    return trovata;
  }
  // The one row of the progressives, read afresh.
  Recordset RigaProgressivi() { return cn->Execute("SELECT * FROM [Progressivi Azienda Vorn]"); }

  void SalvaNumerazione(const Valore& tipo, const Valore& registro, const Valore& serie, int ultimo,
                        const Valore& data = Valore::Null(), int bollato = 0) {
    bool cancel = false;
    ASSERT_TRUE(Num().SalvaRecord(tipo, "", registro, "000", serie, ultimo, data, bollato, "PC1", 1, cancel));
    ASSERT_FALSE(cancel);
  }
  void InserisciRigaPrimaNota(Connessione& c, const std::string& numero, const std::string& riga = "001") {
    c.Esegui(
        "INSERT INTO [Prima Nota] ([NumeroRegistrazione], [TipoRigaIvaNormale], [NumRigaAVideo], [DareAvere]) "
        "VALUES (?, 'N', ?, 'D')",
        {Valore(numero), Valore(riga)});
  }
  void DatiAzienda(const char* personaFisica) {
    cn->Esegui(
        "INSERT INTO [Tabella Azienda] ([Ragione Sociale], [Partita IVA], [Codice Fiscale], [Indirizzo], [Cap], "
        "[Citta], [Provincia]) VALUES ('Rossi & C. dell''Adige S.r.l.', '01234567890', 'RSSMRA70A01H501U', "
        "' Via Roma 1 ', '37100', 'Verona', 'VR')");
    cn->Esegui(
        "INSERT INTO [Tabella Azienda Vorn] ([IndPersonaFisica], [IndirizzoSedeLegale], [CapSedeLegale], "
        "[LocalitaSedeLegale], [ProvinciaSedeLegale]) VALUES (?, 'Corso Milano 5', '20100', 'Milano', 'MI')",
        {Valore(personaFisica)});
  }
};
VORN_SU_DUE_MOTORI(Progressivi);

// ---------------------------------------------------------------- document and protocol series

TEST_P(Progressivi, ProtocolloSenzaRigaParteDaUnoEDueRichiesteDannoLoStessoNumero) {
  auto n = Num();
  EXPECT_EQ(Intero(n.GetNumeroNuovoProtocollo("01")), 1);
  EXPECT_EQ(Righe("Progressivi Numerazione Vorn"), 0) << "asking makes no row";

  SalvaNumerazione("2", "01", "", 41, D(10, 3, 2025));
  EXPECT_EQ(Intero(n.GetNumeroNuovoProtocollo("01")), 42);
  EXPECT_EQ(Intero(n.GetNumeroNuovoProtocollo("01")), 42) << "two asks without a save";
  EXPECT_EQ(Intero(cn->Scalare("SELECT [NumeroUltimoDoc] FROM [Progressivi Numerazione Vorn]")), 41);
  // Another register, and the sales series of the same register number, count apart.
  EXPECT_EQ(Intero(n.GetNumeroNuovoProtocollo("02")), 1);
  EXPECT_EQ(Intero(n.GetNumeroNuovoDocumento("1", "01", "")), 1);

  SalvaNumerazione("1", "01", "A", 7, D(2, 1, 2025));
  SalvaNumerazione("1", "01", "B", 300);
  EXPECT_EQ(Intero(n.GetNumeroNuovoDocumento("1", "01", "A")), 8);
  EXPECT_EQ(Intero(n.GetNumeroNuovoDocumento("1", "01", "B")), 301);
  EXPECT_EQ(n.GetDataUltimoDocumento("1", "01", "A"), "02/01/2025");
  EXPECT_EQ(n.GetDataUltimoDocumento("1", "01", "B"), "") << "a row without a date";
  EXPECT_EQ(n.GetDataUltimoDocumento("1", "01", "C"), "") << "no row";
}

TEST_P(Progressivi, ParteDiChiaveVuotaTrovaIlNulloEApostrofoNellaSerie) {
  // An archive of old holds nulls where the key part is empty.
  cn->Esegui(
      "INSERT INTO [Progressivi Numerazione Vorn] ([TipoRegistro], [IndOrdiniImpegni], [NumeroRegistro], "
      "[Deposito], [SerieDocumento], [NumeroUltimoDoc]) VALUES ('2', NULL, '03', '000', NULL, 17)");
  auto n = Num();
  EXPECT_EQ(Intero(n.GetNumeroNuovoProtocollo("03")), 18);
  Recordset T;
  EXPECT_TRUE(n.LocalizzaRecord(T, "2", "", "03", "000", "", "PC1", 1));
  EXPECT_EQ(Intero(n.PrendiNumeroProtocollo("03")), 18) << "the take finds the null-keyed row too";
  EXPECT_EQ(Righe("Progressivi Numerazione Vorn"), 1) << "no second row for the same key";

  SalvaNumerazione("1", "01", "L'A", 5);
  EXPECT_EQ(Intero(n.GetNumeroNuovoDocumento("1", "01", "L'A")), 6);
  EXPECT_TRUE(n.CancellaRecord("1", "", "01", "000", "L'A"));
  EXPECT_EQ(Intero(n.GetNumeroNuovoDocumento("1", "01", "L'A")), 1);
  EXPECT_EQ(Righe("Progressivi Numerazione Vorn"), 1);
}

TEST_P(Progressivi, LaPresaAlzaLaRigaPiuAltaESiFermaAlMassimo) {
  // The same blank key held twice, as '' and as null: the take counts on from the higher row
  // and raises that one only.
  for (const char* serie : {"''", "NULL"})
    cn->Esegui(std::string("INSERT INTO [Progressivi Numerazione Vorn] ([TipoRegistro], [IndOrdiniImpegni], "
                           "[NumeroRegistro], [Deposito], [SerieDocumento], [NumeroUltimoDoc]) VALUES ('2', '', '04', "
                           "'000', ") + serie + ", " + (serie[0] == 'N' ? "9" : "5") + ")");
  auto n = Num();
  EXPECT_EQ(Intero(n.PrendiNumeroProtocollo("04")), 10);
  EXPECT_EQ(Intero(cn->Scalare("SELECT [NumeroUltimoDoc] FROM [Progressivi Numerazione Vorn] WHERE [SerieDocumento] IS "
                               "NULL")),
            10);
  EXPECT_EQ(Intero(cn->Scalare("SELECT [NumeroUltimoDoc] FROM [Progressivi Numerazione Vorn] WHERE [SerieDocumento] = ''")),
            5);
  // The last 32-bit number is given; the next is refused and the counter stays where it was,
  // inside the caller's transaction too.
  cn->Esegui("UPDATE [Progressivi Numerazione Vorn] SET [NumeroUltimoDoc] = 2147483646 WHERE [SerieDocumento] IS NULL");
  EXPECT_EQ(Intero(n.PrendiNumeroProtocollo("04")), 2147483647);
  cn->BeginTrans();
  EXPECT_THROW(n.PrendiNumeroProtocollo("04"), ErroreDb);
  cn->CommitTrans();
  EXPECT_EQ(Intero(cn->Scalare("SELECT MAX([NumeroUltimoDoc]) FROM [Progressivi Numerazione Vorn]")), 2147483647);
}

TEST_P(Progressivi, NumeroBollatoEAzzeramenti) {
  auto n = Num();
  // First definitive print of a series never numbered: the row is made with that number.
  ASSERT_TRUE(n.SalvaNumeroUltimoDocBollato("1", "01", "A", 12, "PC1", 1));
  auto rs = cn->Execute("SELECT * FROM [Progressivi Numerazione Vorn]");
  ASSERT_FALSE(rs.Eof());
  EXPECT_EQ(Intero(rs("NumeroUltimoDoc")), 12);
  EXPECT_EQ(Intero(rs("NumeroUltimoDocBollato")), 12);
  EXPECT_EQ(rs("Deposito").Value().Testo(), "000");

  SalvaNumerazione("1", "01", "A", 20, D(1, 2, 2025), 12);
  ASSERT_TRUE(n.SalvaNumeroUltimoDocBollato("1", "01", "A", 18, "PC1", 1));
  rs = cn->Execute("SELECT * FROM [Progressivi Numerazione Vorn]");
  EXPECT_EQ(Intero(rs("NumeroUltimoDoc")), 20) << "the last number used stays";
  EXPECT_EQ(Intero(rs("NumeroUltimoDocBollato")), 18);

  SalvaNumerazione("2", "01", "", 9, Valore::Null(), 9);
  ASSERT_TRUE(n.AzzeraNumerazioneDocumentiStampati());
  EXPECT_EQ(Righe("Progressivi Numerazione Vorn", "[NumeroUltimoDocBollato] <> 0"), 0);
  EXPECT_EQ(Intero(n.GetNumeroNuovoDocumento("1", "01", "A")), 21) << "the numbers used stay";
  Recordset tutti;
  ASSERT_TRUE(n.AzzeraProgressiviNumerazione());
  EXPECT_FALSE(n.LocalizzaTuttiRecord(tutti));
}

TEST_P(Progressivi, SalvaRecordRispostaNoNonScrive) {
  SalvaNumerazione("2", "01", "", 41);
  Recordset T;
  ASSERT_TRUE(Num().LocalizzaRecord(T, "2", "", "01", "000", "", "PC2", 7));  // another reader
  T.Close();
  host->Rispondi(vbNo);
  bool cancel = false;
  EXPECT_FALSE(Num().SalvaRecord("2", "", "01", "000", "", 99, Valore::Null(), 0, "PC1", 1, cancel));
  EXPECT_TRUE(cancel);
  EXPECT_EQ(host->Messaggi().size(), 1u);
  auto rs = cn->Execute("SELECT * FROM [Progressivi Numerazione Vorn]");
  EXPECT_EQ(Intero(rs("NumeroUltimoDoc")), 41);
  EXPECT_EQ(rs("clientName").Value().Testo(), "PC2");

  host->Rispondi(vbYes);
  EXPECT_TRUE(Num().SalvaRecord("2", "", "01", "000", "", 99, Valore::Null(), 0, "PC1", 1, cancel));
  EXPECT_FALSE(cancel);
  EXPECT_EQ(Intero(Num().GetNumeroNuovoProtocollo("01")), 100);
}

// ---------------------------------------------------------------- company progressives

TEST_P(Progressivi, TabellaVuotaDaIValoriPredefiniti) {
  auto p = Prog();
  std::string giornale;
  EXPECT_FALSE(Giornale(giornale));
  EXPECT_EQ(giornale, "|0|0|0");

  std::string liq;
  EXPECT_FALSE(Liquidazione(liq));
  EXPECT_EQ(liq, "0|0||0|0|0|0|0|0");

  Valore a("x"), b("x"), c("x");
  EXPECT_FALSE(p.GetProgressiviPrimaNota(a, b, c));
  EXPECT_EQ(c, Valore(""));
  EXPECT_EQ(p.GetDataUltimaStampaGiornale(), Valore(""));
  EXPECT_EQ(p.GetDataUltimoLibroCespiti(), Valore(""));
  EXPECT_EQ(p.GetNumeroUltimaRegStorico(), 0);
  EXPECT_EQ(p.GetProgressivoDocumenti(), 1);
  Recordset T;
  EXPECT_FALSE(p.LocalizzaRecord(T, "PC1", 1));
  EXPECT_EQ(Righe("Progressivi Azienda Vorn"), 0) << "reading makes no row";
}

TEST_P(Progressivi, AggiornamentiCreanoUnaSolaRigaENonChiedono) {
  auto p = Prog();
  ASSERT_TRUE(p.AggiornaDataAperturaBilancio("01/01/2025", "PC1", 1));
  // Another window reached the row: the updates overwrite without a word.
  Recordset T;
  ASSERT_TRUE(p.LocalizzaRecord(T, "PC2", 9));
  T.Close();
  ASSERT_TRUE(p.AggiornaDataUltimoScarico(Valore(D(31, 1, 2025)), "PC1", 1));
  ASSERT_TRUE(p.AggiornaDataUltimoLibroCespiti("30/12/2024", "PC1", 1));
  EXPECT_TRUE(host->Messaggi().empty());
  EXPECT_EQ(Righe("Progressivi Azienda Vorn"), 1);

  EXPECT_EQ(p.GetDataAperturaBilancio(), Valore(D(1, 1, 2025)));
  EXPECT_EQ(p.GetDataUltimoScaricoPrimaNota(), Valore(D(31, 1, 2025)));
  EXPECT_EQ(p.GetDataUltimoLibroCespiti(), Valore(D(30, 12, 2024)));
  EXPECT_EQ(p.GetDataUltimaStampaGiornale(), Valore("")) << "a null date of an existing row";
  EXPECT_EQ(RigaProgressivi()("clientName").Value().Testo(), "PC1");

  // A text that is no date is refused and the row keeps its date.
  EXPECT_THROW(p.AggiornaDataAperturaBilancio("trentadue", "PC1", 1), ErroreDb);
  EXPECT_EQ(p.GetDataAperturaBilancio(), Valore(D(1, 1, 2025)));

  // SalvaRecord asks; answered no, nothing changes.
  ASSERT_TRUE(p.LocalizzaRecord(T, "PC2", 9));
  T.Close();
  host->Rispondi(vbNo);
  bool cancel = false;
  EXPECT_FALSE(p.SalvaRecord({{"DataAperturaBilancio", Valore(D(1, 1, 2026))}, {"UltimaRegistrazionePN", 50}}, "PC1",
                             1, cancel));
  EXPECT_TRUE(cancel);
  EXPECT_EQ(p.GetDataAperturaBilancio(), Valore(D(1, 1, 2025)));
  EXPECT_EQ(Intero(RigaProgressivi()("UltimaRegistrazionePN")), 0);
}

TEST_P(Progressivi, NumeroStoricoSoloInSalita) {
  auto p = Prog();
  ASSERT_TRUE(p.AggiornaNumeroUltimaRegStorico(10, "PC1", 1));
  EXPECT_EQ(p.GetNumeroUltimaRegStorico(), 10);
  ASSERT_TRUE(p.AggiornaNumeroUltimaRegStorico(7, "PC2", 2));
  EXPECT_EQ(p.GetNumeroUltimaRegStorico(), 10) << "a lower number leaves the stored one";
  EXPECT_EQ(RigaProgressivi()("clientName").Value().Testo(), "PC2") << "stamped all the same";
  ASSERT_TRUE(p.AggiornaNumeroUltimaRegStorico(10, "PC1", 1));
  EXPECT_EQ(p.GetNumeroUltimaRegStorico(), 10);
  ASSERT_TRUE(p.AggiornaNumeroUltimaRegStorico("12", "PC1", 1));
  EXPECT_EQ(p.GetNumeroUltimaRegStorico(), 12);
  EXPECT_EQ(Righe("Progressivi Azienda Vorn"), 1);
}

TEST_P(Progressivi, LibroGiornaleAzzeratoTieneLaDataDellUltimaStampa) {
  auto p = Prog();
  ASSERT_TRUE(p.AggiornaProgressiviLibroGiornale(Valore(D(31, 12, 2024)), 4321, Valore(Imp("98765432.1234")),
                                                 Valore(Imp("98765432.1299")), "PC1", 1));
  std::string giornale;
  ASSERT_TRUE(Giornale(giornale));
  EXPECT_EQ(giornale, "31/12/2024|4321|98765432.1234|98765432.1299");
  ASSERT_TRUE(p.AggiornaDataAperturaBilancio(Valore(D(1, 1, 2024)), "PC1", 1));

  ASSERT_TRUE(p.AzzeraProgressiviLibroGiornale());
  ASSERT_TRUE(Giornale(giornale));
  EXPECT_EQ(giornale, "31/12/2024|0|0|0");
  EXPECT_EQ(p.GetDataUltimaStampaGiornale(), Valore(D(31, 12, 2024)));
  EXPECT_EQ(p.GetDataAperturaBilancio(), Valore(D(1, 1, 2024))) << "other columns stay";
}

TEST_P(Progressivi, LiquidazioneIvaScritturaELettura) {
  auto p = Prog();
  ASSERT_TRUE(p.AggiornaProgressiviLiquidazioneIvaAcconto(Valore(Imp("1500.55")), Valore(Imp("1200.1")), "PC1", 1));
  ASSERT_TRUE(p.AggiornaProgressiviLiquidazioneIvaAnnuali(Valore(Imp("3000")), Valore(Imp("-250.75")),
                                                          Valore(Imp("10.01")), "PC1", 1));
  ASSERT_TRUE(p.AggiornaProgressiviLiquidazioneIva("31/03/2025", Valore(Imp("45000.3333")), Valore(Imp("-0.01")),
                                                   Valore(Imp("20.02")), Valore(Imp("777.7")), "PC1", 1));
  // Credit used: the last update wins; the initial plafond, never written, is 0.
  std::string liq;
  ASSERT_TRUE(Liquidazione(liq));
  EXPECT_EQ(liq, "1500.55|1200.1|31/03/2025|3000|20.02|-0.01|0|45000.3333|777.7");

  // Each reset touches its own columns only.
  ASSERT_TRUE(p.AzzeraProgressiviLiquidazione());
  ASSERT_TRUE(p.AzzeraUltimaLiquidazioneIva());
  ASSERT_TRUE(Liquidazione(liq));
  EXPECT_EQ(liq, "1500.55|1200.1||3000|0|-0.01|0|45000.3333|0");
  ASSERT_TRUE(p.AzzeraProgressiviPlafond());
  ASSERT_TRUE(Liquidazione(liq));
  EXPECT_EQ(liq, "1500.55|1200.1||3000|0|-0.01|0|0|0");
}

TEST_P(Progressivi, AzzeraProgressiviAziendaLasciaValiditaECespiti) {
  RecordValori tutto;
  for (const auto& c : clsProgAzienda::ColonneSalvaRecord()) {
    const ColonnaCatalogo* col = TabellaCatalogoDi("Progressivi Azienda Vorn")->Colonna(c);
    ASSERT_NE(col, nullptr) << c;
    tutto[c] = col->tipo == TipoCampo::Data ? Valore(D(15, 6, 2024)) : Valore(Imp("12.5"));
    if (col->tipo == TipoCampo::Intero32) tutto[c] = Valore(12);
  }
  bool cancel = false;
  ASSERT_TRUE(Prog().SalvaRecord(tutto, "PC1", 1, cancel));
  ASSERT_TRUE(Prog().AzzeraProgressiviAzienda());

  auto rs = RigaProgressivi();
  const std::set<std::string> restano = {"DataInizioPNValida", "DataFinePNValida", "DataUltimoCalcoloAmm",
                                         "DataUltimoLibroCespiti"};
  for (const auto& c : clsProgAzienda::ColonneSalvaRecord()) {
    const Valore& v = rs(c).Value();
    if (restano.count(c)) {
      EXPECT_EQ(v, Valore(D(15, 6, 2024))) << c;
    } else if (TabellaCatalogoDi("Progressivi Azienda Vorn")->Colonna(c)->tipo == TipoCampo::Data) {
      EXPECT_TRUE(v.IsNull()) << c;
    } else {
      EXPECT_EQ(NullToZeroCy(v), Importo()) << c;
      EXPECT_FALSE(v.IsNull()) << c;
    }
  }
}

TEST_P(Progressivi, ContatoriDiScadenzeEDocumenti) {
  auto p = Prog();
  cn->Esegui("INSERT INTO [Progressivi Scadenze] ([IndicatoreFisso], [ProgressivoPartite]) VALUES ('DOC', 41)");
  cn->Esegui("INSERT INTO [Progressivi Scadenze] ([IndicatoreFisso], [ProgressivoPartite]) VALUES ('SCA', 7)");
  EXPECT_EQ(p.GetProgressivoDocumenti(), 42);
  EXPECT_EQ(p.GetProgressivoDocumenti(), 42);

  // The reading of 'SCA' and the two updates have never worked: the error reaches the caller
  // and nothing is written.
  EXPECT_THROW(p.GetProgressivoScadenze(), ErroreDb);
  EXPECT_THROW(p.AggiornaProgressivoDocumenti(50, "PC1", 1), ErroreDb);
  EXPECT_THROW(p.AggiornaProgressivoScadenze(50, "PC1", 1), ErroreDb);
  cn->Esegui("DELETE FROM [Progressivi Scadenze] WHERE [IndicatoreFisso] = 'SCA'");
  EXPECT_THROW(p.AggiornaProgressivoScadenze(50, "PC1", 1), ErroreDb);
  EXPECT_EQ(Righe("Progressivi Scadenze"), 1);
  EXPECT_EQ(p.GetProgressivoDocumenti(), 42);

  // Inside a transaction the refused reading leaves the caller's work usable.
  cn->BeginTrans();
  cn->Esegui("UPDATE [Progressivi Scadenze] SET [ProgressivoPartite] = 60");
  EXPECT_THROW(p.GetProgressivoScadenze(), ErroreDb);
  EXPECT_EQ(p.GetProgressivoDocumenti(), 61);
  cn->CommitTrans();
  EXPECT_EQ(p.GetProgressivoDocumenti(), 61);
}

// ---------------------------------------------------------------- sheet numbering

TEST_P(Progressivi, TitoliProposti) {
  const char* attesi[][3] = {{"R", "V", "REGISTRO IVA VENDITE"},
                             {"R", "A", "REGISTRO IVA ACQUISTI"},
                             {"R", "E", "REGISTRO IVA CORRISPETTIVI IN VENTILAZIONE"},
                             {"R", "C", "REGISTRO IVA CORRISPETTIVI IN SCORPORO"},
                             {"R", "S", "REGISTRO IVA IN SOSPENSIONE"},
                             {"L", "", "REGISTRO RIEPILOGATIVO LIQUIDAZIONE IVA"},
                             {"L", "V", "REGISTRO RIEPILOGATIVO LIQUIDAZIONE IVA"},
                             {"G", "X", "LIBRO GIORNALE"},
                             {"B", "", ""},
                             {"R", "X", ""},
                             {"", "V", ""}};
  for (const auto& a : attesi) EXPECT_EQ(Fogli().GetDescrizioneRegistroProposta(a[0], a[1]).Testo(), a[2]) << a[0] << a[1];
}

TEST_P(Progressivi, PrimaStampaDellAnnoPropostaERiga) {
  DatiAzienda("0");
  auto f = Fogli();
  Valore azienda, piva, descrizione, indirizzo, sede, daNumero;
  // Whether the book's row was found, the first sheet, the title.
  auto dati = [&](const char* stampa, const char* registro, const char* numero, const Valore& anno) {
    bool trovata = f.GetDatiNumerazioneAutomatica(stampa, registro, numero, anno, "", azienda, piva, descrizione,
                                                  indirizzo, sede, daNumero, "PC1", 1);
    return std::string(trovata ? "riga " : "nuova ") + daNumero.Testo() + " " + descrizione.Testo();
  };
  EXPECT_EQ(dati("G", "", "", 2025), "nuova 1 LIBRO GIORNALE");
  EXPECT_EQ(azienda.Testo(), "Rossi & C. dell'Adige S.r.l.");
  EXPECT_EQ(piva.Testo(), "01234567890");
  EXPECT_EQ(sede.Testo(), "0");
  EXPECT_EQ(indirizzo.Testo(), "Corso Milano 5 20100 Milano MI") << "the registered office";
  EXPECT_EQ(Righe("Numerazione Fogli"), 0) << "asking makes no row";

  // The print ends on sheet 15: the row is made with the proposed lines.
  ASSERT_TRUE(f.SalvaUltimoNumero("G", "", "", 2025, "", 15, "PC1", 1));
  auto rs = cn->Execute("SELECT * FROM [Numerazione Fogli]");
  ASSERT_EQ(rs.RecordCount(), 1u);
  EXPECT_EQ(Intero(rs("Numero")), 15);
  EXPECT_EQ(rs("Descrizione").Value().Testo(), "LIBRO GIORNALE");
  EXPECT_EQ(rs("Indirizzo").Value().Testo(), "Corso Milano 5 20100 Milano MI");

  // The next print starts from the row; the year as text finds the same row.
  EXPECT_EQ(dati("G", "", "", "2025"), "riga 15 LIBRO GIORNALE");
  // A second save changes the number only, not the lines the user may have edited.
  cn->Esegui("UPDATE [Numerazione Fogli] SET [Descrizione] = 'GIORNALE 2025'");
  ASSERT_TRUE(f.SalvaUltimoNumero("G", "", "", 2025, "", 31, "PC1", 1));
  EXPECT_EQ(dati("G", "", "", 2025), "riga 31 GIORNALE 2025");
  EXPECT_EQ(Righe("Numerazione Fogli"), 1);

  // Another year, another register: a first print again.
  EXPECT_EQ(dati("G", "", "", 2026), "nuova 1 LIBRO GIORNALE");
  EXPECT_EQ(dati("R", "A", "01", 2025), "nuova 1 REGISTRO IVA ACQUISTI");

  // No book named: nothing saved.
  EXPECT_FALSE(f.SalvaUltimoNumero("", "V", "01", 2025, "", 3, "PC1", 1));
  EXPECT_EQ(Righe("Numerazione Fogli"), 1);
}

TEST_P(Progressivi, PersonaFisicaStampaCodiceFiscaleEDomicilio) {
  DatiAzienda("1");
  Valore azienda, piva, sede, indirizzo;
  Fogli().GetDatiFiscaliProposti(azienda, piva, sede, indirizzo);
  EXPECT_EQ(sede.Testo(), "1");
  EXPECT_EQ(piva.Testo(), "RSSMRA70A01H501U");
  EXPECT_EQ(indirizzo.Testo(), "Via Roma 1 37100 Verona VR");

  // The asset book has no proposed title; its row still gets the company lines.
  ASSERT_TRUE(Fogli().SalvaUltimoNumero("B", "", "", 2025, "", 4, "PC1", 1));
  auto rs = cn->Execute("SELECT * FROM [Numerazione Fogli]");
  EXPECT_EQ(rs("Descrizione").Value().Testo(), "");
  EXPECT_EQ(rs("PartitaIVA").Value().Testo(), "RSSMRA70A01H501U");
  EXPECT_EQ(rs("IndSede").Value().Testo(), "1");
}

TEST_P(Progressivi, AzzeramentiLascianoGliAltriLibri) {
  auto f = Fogli();
  auto salva = [&](const char* stampa, const char* registro) {
    bool cancel = false;
    ASSERT_TRUE(f.SalvaRecord(stampa, registro, "01", 2025, "", 10, "Az", "P", "D", "0", "0", "I", "1", "PC1", 1,
                              cancel));
  };
  auto libri = [&] {
    std::string s;
    auto rs = cn->Execute("SELECT [TipoStampa] FROM [Numerazione Fogli] ORDER BY [TipoStampa], [TipoRegistro]");
    for (; !rs.Eof(); rs.MoveNext()) s += rs(0).Value().Testo();
    return s;
  };
  salva("R", "V");
  salva("R", "A");
  salva("L", "");
  salva("G", "");
  salva("B", "");
  ASSERT_EQ(libri(), "BGLRR");

  ASSERT_TRUE(f.AzzeraNumerazioneFogliIVA());
  EXPECT_EQ(libri(), "BG");
  salva("R", "V");
  salva("L", "");
  ASSERT_TRUE(f.AzzeraNumerazioneFogliLibroGiornale());
  EXPECT_EQ(libri(), "BLR");
  ASSERT_TRUE(f.AzzeraNumerazioneFogliRegistroCespiti());
  EXPECT_EQ(libri(), "LR");
}

TEST_P(Progressivi, RecordDiNumerazioneFogli) {
  auto f = Fogli();
  bool cancel = false;
  ASSERT_TRUE(f.SalvaRecord("R", "V", "01", "2025", "", 120, "Az", "P", "REGISTRO", "0", "0", "I", "1", "PC1", 1,
                            cancel));
  Recordset T;
  ASSERT_TRUE(f.LocalizzaRecord(T, "R", "V", "01", 2025, "", "PC2", 2));
  EXPECT_EQ(Intero(T("Numero")), 120);
  T.Close();
  EXPECT_FALSE(f.LocalizzaRecord(T, "R", "V", "01", 2024, "", "PC2", 2));
  EXPECT_FALSE(f.LocalizzaRecord(T, "R", "V", "02", 2025, "", "PC2", 2));

  // The sheet number is saved without asking, whoever read the row last.
  ASSERT_TRUE(f.SalvaUltimoNumero("R", "V", "01", 2025, "", 130, "PC1", 1));
  EXPECT_EQ(Intero(cn->Scalare("SELECT [Numero] FROM [Numerazione Fogli]")), 130);
  EXPECT_TRUE(host->Messaggi().empty());

  EXPECT_THROW(f.LocalizzaRecord(T, "R", "V", "01", "duemila", "", "PC2", 2), ErroreDb);
  EXPECT_TRUE(f.CancellaRecord("R", "V", "01", 2025, ""));
  EXPECT_EQ(Righe("Numerazione Fogli"), 0);
}

// ---------------------------------------------------------------- numbers taken in a transaction

TEST_P(Progressivi, PresaNellaTransazioneDelChiamante) {
  auto n = Num();
  // Without an open transaction the take is committed at once.
  EXPECT_EQ(n.PrendiNumeroProtocollo("01"), 1);
  EXPECT_EQ(n.PrendiNumeroProtocollo("01"), 2);
  EXPECT_EQ(Intero(n.GetNumeroNuovoProtocollo("01")), 3) << "asking and taking agree";

  // A rollback gives the number back.
  cn->BeginTrans();
  EXPECT_EQ(n.PrendiNumeroProtocollo("01"), 3);
  EXPECT_EQ(n.PrendiNumeroDocumento("1", "01", "A"), 1);
  cn->RollbackTrans();
  EXPECT_EQ(Intero(n.GetNumeroNuovoProtocollo("01")), 3);
  EXPECT_EQ(Righe("Progressivi Numerazione Vorn"), 1) << "the series made in the rolled-back work is gone";

  cn->BeginTrans();
  EXPECT_EQ(n.PrendiNumeroProtocollo("01"), 3);
  cn->CommitTrans();
  EXPECT_EQ(Intero(n.GetNumeroNuovoProtocollo("01")), 4);
}

TEST_P(Progressivi, NumeroRegistrazioneNonRiusaIlGiornale) {
  auto p = Prog();
  EXPECT_EQ(p.PrendiNumeroRegistrazione(), 1);
  // Entries posted the two-step way, with numbers beyond the counter.
  InserisciRigaPrimaNota(*cn, "00007");
  InserisciRigaPrimaNota(*cn, "00012");
  InserisciRigaPrimaNota(*cn, "00009");
  EXPECT_EQ(p.PrendiNumeroRegistrazione(), 13);
  EXPECT_EQ(Intero(RigaProgressivi()("UltimaRegistrazionePN")), 13);
  // A counter ahead of the journal goes on from itself. (The take does not stamp the row: the
  // save asks before overwriting it.)
  host->Rispondi(vbYes);
  bool cancel = false;
  ASSERT_TRUE(p.SalvaRecord({{"UltimaRegistrazionePN", 40}}, "PC1", 1, cancel));
  EXPECT_EQ(p.PrendiNumeroRegistrazione(), 41);
  EXPECT_EQ(Righe("Progressivi Azienda Vorn"), 1);
}

TEST_P(Progressivi, ProgressivoScadenzeSegueLoScadenziario) {
  auto p = Prog();
  EXPECT_EQ(p.PrendiProgressivoScadenze(), 1);
  cn->Esegui(
      "INSERT INTO [Scadenziario] ([Tipo], [Codice Cliente], [Numero Documento], [Serie], [Numero Progressivo]) "
      "VALUES ('CL', '000001', 1, '', 25)");
  EXPECT_EQ(p.PrendiProgressivoScadenze(), 26);
  EXPECT_EQ(p.PrendiProgressivoScadenze(), 27);
  EXPECT_EQ(Intero(cn->Scalare("SELECT [Progressivo] FROM [Progressivi Scadenze] WHERE [IndicatoreFisso] = 'SCA'")),
            27);
  EXPECT_EQ(Righe("Progressivi Scadenze"), 1);
}

// Two clients take a number at the same time: the second waits for the first to commit and
// counts on from it.
TEST_P(Progressivi, DueClientiNonPrendonoLoStessoNumero) {
  for (bool rigaGiaPresente : {false, true}) {
    SCOPED_TRACE(rigaGiaPresente ? "counter row present" : "first number of the series");
    Num().AzzeraProgressiviNumerazione();
    if (rigaGiaPresente) SalvaNumerazione("2", "01", "", 100);

    auto cnA = AltraConnessione();
    auto cnB = AltraConnessione();
    std::promise<void> preso;
    auto primo = std::async(std::launch::async, [&] {
      auto n = Con<clsProgrNumerazione>(cnA);
      cnA->BeginTrans();
      int32_t numero = n.PrendiNumeroProtocollo("01");
      preso.set_value();
      // Holds the number while it posts.
      std::this_thread::sleep_for(std::chrono::milliseconds(300));
      cnA->CommitTrans();
      return numero;
    });
    preso.get_future().wait();
    auto n = Con<clsProgrNumerazione>(cnB);
    cnB->BeginTrans();
    int32_t secondo = n.PrendiNumeroProtocollo("01");
    cnB->CommitTrans();
    int32_t numeroA = primo.get();

    int32_t base = rigaGiaPresente ? 100 : 0;
    EXPECT_EQ(numeroA, base + 1);
    EXPECT_EQ(secondo, base + 2);
    EXPECT_EQ(Intero(Num().GetNumeroNuovoProtocollo("01")), base + 3);
    EXPECT_EQ(Righe("Progressivi Numerazione Vorn"), 1);
  }
}

TEST_P(Progressivi, MoltiClientiNumeriTuttiDiversi) {
  constexpr int kClienti = 4, kNumeri = 15;
  std::vector<std::future<std::vector<int32_t>>> lavori;
  for (int i = 0; i < kClienti; ++i) {
    auto c = AltraConnessione();
    lavori.push_back(std::async(std::launch::async, [c, this] {
      std::vector<int32_t> presi;
      auto p = Con<clsProgAzienda>(c);
      for (int k = 0; k < kNumeri; ++k) {
        if (k % 2 == 0) {
          presi.push_back(p.PrendiNumeroRegistrazione());
        } else {
          // The number and the entry in one transaction, as a posting does.
          c->BeginTrans();
          int32_t n = p.PrendiNumeroRegistrazione();
          char testo[8];
          std::snprintf(testo, sizeof testo, "%05d", n);
          InserisciRigaPrimaNota(*c, testo);
          c->CommitTrans();
          presi.push_back(n);
        }
      }
      return presi;
    }));
  }
  std::vector<int32_t> tutti;
  for (auto& l : lavori) {
    auto v = l.get();
    tutti.insert(tutti.end(), v.begin(), v.end());
  }
  std::sort(tutti.begin(), tutti.end());
  ASSERT_EQ(tutti.size(), static_cast<size_t>(kClienti * kNumeri));
  for (size_t i = 0; i < tutti.size(); ++i) EXPECT_EQ(tutti[i], static_cast<int32_t>(i + 1)) << "no gap, no twin";
  EXPECT_EQ(Intero(RigaProgressivi()("UltimaRegistrazionePN")), kClienti * kNumeri);
}

// Two clients that number the two-step way get the same number; the key of the journal
// refuses the second entry, which is told apart from other failures.
TEST_P(Progressivi, ChiaveDelGiornaleUltimaDifesa) {
  auto cnA = AltraConnessione();
  auto cnB = AltraConnessione();
  cnA->BeginTrans();
  InserisciRigaPrimaNota(*cnA, "00001");
  cnA->CommitTrans();
  cnB->BeginTrans();
  try {
    InserisciRigaPrimaNota(*cnB, "00001");
    ADD_FAILURE() << "a second entry with the same number was written";
  } catch (const ErroreDb& e) {
    EXPECT_TRUE(ChiaveDuplicata(e)) << e.Descrizione();
  }
  cnB->RollbackTrans();
  EXPECT_EQ(Righe("Prima Nota"), 1);
  EXPECT_FALSE(ChiaveDuplicata(ErroreDb(1, "no such table: Prima Nota")));
  EXPECT_EQ(MsgNumeroGiaUsato("registrazione", 12),
            "Il numero 12 di registrazione è già stato usato da un altro utente: ripetere l'operazione.");
}
