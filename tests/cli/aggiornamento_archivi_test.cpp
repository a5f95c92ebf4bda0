// The upgrade of an earlier-generation database, on both engines. A small year of the demo is
// written into a normal company, then the tables that the upgrade moves are rebuilt in their old
// shape (the short column names, the new ones missing; on PostgreSQL the old names keep their
// capitals, as a tool that quoted them would have left them), their rows copied across; the
// saved queries, [Allegati] and [Versione Archivi] go. An upgrade stopped half way by a failing
// statement leaves that database as it was and usable; the next one moves every value into its
// new column, with balances that still agree with the journal; a second run does nothing.
#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <set>

#include "cli/ComandoAzienda.h"
#include "cli/Demo.h"
#include "frame/Catalogo.h"
#include "frame/Comuni.h"
#include "frame/Data.h"
#include "frame/VornServer.h"
#include "frame/clsDB.h"
#include "frame/clsUtenti.h"
#include "interchange/ModelloStandard.h"
#include "ledger/VerificaSaldi.h"
#include "support/Azienda.h"

using namespace vorn;
using namespace vorn::test;

namespace {

class AggiornamentoArchivi : public AziendaTest {
 protected:
  void SetUp() override {
    AziendaTest::SetUp();
    if (IsSkipped() || HasFatalFailure()) return;
    CaricaModello(*cn, "standard");
    const cli::OpzioniDemo o{.seme = 3, .clienti = 5, .fornitori = 4, .registrazioni = 120, .lotto = 60};
    cli::RiempiAziendaDemo(*cn, o);
  }

  // An old column as the statements of the earlier generation named it: with its capitals on
  // PostgreSQL (a quoted identifier), by the engine's rule on SQLite.
  std::string Vecchio(const std::string& nome) const { return Pg() ? "\"" + nome + "\"" : "[" + nome + "]"; }

  // The rows of `colonne` of a table as sorted text, null told apart from empty text.
  std::vector<std::string> Righe(const std::string& tabella, const std::vector<std::string>& colonne) {
    std::string sql;
    for (const auto& c : colonne) sql += (sql.empty() ? "SELECT " : ", ") + c;
    std::vector<std::string> righe;
    auto rs = cn->Execute(sql + " FROM [" + tabella + "]");
    for (; !rs.Eof(); rs.MoveNext()) {
      std::string r;
      for (int i = 0; i < rs.FieldCount(); ++i) r += (rs(i).IsNull() ? "<null>" : rs(i).Value().Testo()) + "|";
      righe.push_back(r);
    }
    std::sort(righe.begin(), righe.end());
    return righe;
  }

  std::vector<std::string> NomiColonne(const std::string& tabella) {
    std::vector<std::string> n;
    for (const auto& c : cn->ColonneTabella(tabella)) n.push_back(c.nome);
    return n;
  }

  // The tables of the upgrade in the shape of the earlier generation, with the rows they hold now.
  void RendiVecchio() {
    Atomico a(*cn);
    for (const auto& v : VisteCatalogo()) cn->Esegui("DROP VIEW [" + v.nome + "]");
    cn->Esegui("DROP TABLE [Versione Archivi]");
    for (const auto& t : CampiDaAggiornare()) {
      const std::string nome = t.tabella;
      cn->Esegui("DROP TABLE IF EXISTS [Copia Vecchia]");
      if (nome == "Allegati") {
        cn->Esegui("DROP TABLE [Allegati]");
        continue;
      }
      auto vecchio = [&](const std::string& c) -> std::string {
        for (const auto& x : t.campi)
          if (UgualeNoCase(x.destinazione, c)) return Vecchio(x.origine);
        return "[" + c + "]";
      };
      const TabellaCatalogo* cat = TabellaCatalogoDi(nome);
      ASSERT_NE(cat, nullptr);
      std::string crea, verso, da;
      for (const auto& c : cat->colonne) {
        crea += (crea.empty() ? "" : ", ") + vecchio(c.nome) + " " + TipoSql(c.tipo);
        verso += (verso.empty() ? "" : ", ") + vecchio(c.nome);
        da += (da.empty() ? "" : ", ") + ("[" + c.nome + "]");
      }
      std::string chiave;
      for (const auto& k : cat->chiave) chiave += (chiave.empty() ? "" : ", ") + vecchio(k);
      if (!chiave.empty()) crea += Pg() ? ", UNIQUE NULLS NOT DISTINCT (" + chiave + ")" : ", PRIMARY KEY (" + chiave + ")";
      cn->Esegui("ALTER TABLE [" + nome + "] RENAME TO [Copia Vecchia]");
      cn->Esegui("CREATE TABLE [" + nome + "] (" + crea + ")");
      cn->Esegui("INSERT INTO [" + nome + "] (" + verso + ") SELECT " + da + " FROM [Copia Vecchia]");
      cn->Esegui("DROP TABLE [Copia Vecchia]");
    }
    a.Conferma();
    cn->DimenticaSchema();
  }

  std::string Report() const { return host->CartellaApplicazione() + "/Temp/AggiornamentoArchivi.txt"; }
};

VORN_SU_DUE_MOTORI(AggiornamentoArchivi);

// Lines of a text file.
std::vector<std::string> Linee(const std::string& testo) {
  std::vector<std::string> l;
  size_t i = 0;
  while (i < testo.size()) {
    size_t j = testo.find('\n', i);
    if (j == std::string::npos) j = testo.size();
    l.push_back(testo.substr(i, j - i));
    i = j + 1;
  }
  return l;
}

}  // namespace

TEST(ListaAggiornamento, HoldsTheCopiesOfEachTable) {
  // Columns per table, counted by hand from the list of the earlier generation.
  const std::vector<std::pair<std::string, size_t>> attese = {
      {"Allegati", 1},  {"Causali Contabili", 12},       {"Corrispettivi Ventilazione", 1},
      {"Monte Acquisti Ventilazione", 2}, {"Liquidazioni Periodiche", 18}, {"Parametri Vorn", 49},
      {"Piano Dei Conti", 8}, {"Prima Nota", 6}, {"Progressivi Azienda Vorn", 17},
      {"Progressivi Numerazione Vorn", 3}, {"Progressivi Registri Iva", 3}, {"Progressivi Scadenze", 1},
      {"Riferimenti Contabili", 62}, {"Tabella Azienda Vorn", 6}};
  const auto& lista = CampiDaAggiornare();
  ASSERT_EQ(lista.size(), attese.size());
  size_t totale = 0;
  std::set<std::string> coppie;
  for (size_t i = 0; i < lista.size(); ++i) {
    EXPECT_EQ(lista[i].tabella, attese[i].first);
    EXPECT_EQ(lista[i].campi.size(), attese[i].second) << lista[i].tabella;
    totale += lista[i].campi.size();
    for (const auto& c : lista[i].campi) {
      coppie.insert(std::string(lista[i].tabella) + ":" + c.origine + ">" + c.destinazione);
      EXPECT_NE(TabellaCatalogoDi(lista[i].tabella)->Colonna(c.destinazione), nullptr) << c.destinazione;
    }
  }
  EXPECT_EQ(totale, 189u);
  for (const char* c : {"Piano Dei Conti:IndSottocInBilanc>SottocontoInBilancio", "Prima Nota:SerieNumDocumento>SerieDocumento",
                        "Parametri Vorn:NumRegIvaVendite>NumRegIVAVendite", "Progressivi Registri Iva:ParteFissa>IndicatoreFisso",
                        "Riferimenti Contabili:SContoArrotonAttivi>SottArrotondAttivi", "Prima Nota:KeydocBea>KeyZQ",
                        "Progressivi Azienda Vorn:CreIvaIniUtil>CreditoIVAInizioAnnoUt", "Allegati:NumNoteAccredito>NumNoteCredito"})
    EXPECT_EQ(coppie.count(c), 1u) << c;
}

TEST_P(AggiornamentoArchivi, AnInterruptedRunChangesNothingTheNextMovesEveryValueAndASecondDoesNothing) {
  // What each new column must hold after the upgrade: the values of today's company. The
  // journal's series was null where the old archives left it so; the upgrade makes it empty.
  std::map<std::string, std::vector<std::string>> attesi;
  long righeCampi = 0;
  for (const auto& t : CampiDaAggiornare()) {
    if (std::string(t.tabella) == "Allegati") continue;
    std::vector<std::string> colonne;
    for (const auto& c : t.campi) colonne.push_back(std::string("[") + c.destinazione + "]");
    if (std::string(t.tabella) == "Prima Nota")
      for (auto& c : colonne)
        if (c == "[SerieDocumento]") c = "COALESCE([SerieDocumento], '')";
    attesi[t.tabella] = Righe(t.tabella, colonne);
    for (const auto& r : attesi[t.tabella]) righeCampi += r.find_first_not_of("<null>|") != std::string::npos;
  }
  ASSERT_GT(righeCampi, 30) << "the year must give the old columns values to move";
  const long conZero = static_cast<long>(NullToZeroLng(
      cn->Scalare("SELECT COUNT(*) FROM [Prima Nota] WHERE [Stringa10indicatori] = ?", {std::string("  0       ")})));
  ASSERT_GT(conZero, 100);

  RendiVecchio();
  ASSERT_FALSE(HasFatalFailure());
  // Nulls that the old archives left in the journal.
  cn->Esegui("UPDATE [Prima Nota] SET [Stringa10indicatori] = NULL WHERE [Stringa10indicatori] = ?",
             {std::string("  0       ")});
  cn->Esegui("UPDATE [Prima Nota] SET [Valuta] = NULL");
  // Users of the earlier generation, their passwords in clear.
  cn->Esegui("INSERT INTO [Tabella Utenti] ([username], [password]) VALUES (?, ?)", {std::string("rossi"), std::string("pippo")});
  cn->Esegui("INSERT INTO [Tabella Utenti] ([username]) VALUES (?)", {std::string("Supervisore")});

  clsDB db;
  db.cn = cn;
  EXPECT_FALSE(db.IsNuovoDBVorn());  // no [Versione Archivi]

  {
    SCOPED_TRACE("a statement fails half way: the copy into the chart of accounts");
    std::map<std::string, std::vector<std::string>> colonnePrima, righePrima;
    for (const auto& t : CampiDaAggiornare()) colonnePrima[t.tabella] = NomiColonne(t.tabella);
    righePrima["Causali Contabili"] = Righe("Causali Contabili", {Vecchio("TipoOperativita"), Vecchio("FlgNonUtil")});
    if (Pg()) {
      cn->Esegui("CREATE FUNCTION rompi() RETURNS trigger LANGUAGE plpgsql AS $$ BEGIN RAISE EXCEPTION 'guasto'; END $$");
      cn->Esegui("CREATE TRIGGER rompi BEFORE UPDATE ON [Piano Dei Conti] FOR EACH STATEMENT EXECUTE FUNCTION rompi()");
    } else {
      cn->Esegui("CREATE TRIGGER rompi BEFORE UPDATE ON [Piano Dei Conti] BEGIN SELECT RAISE(ABORT, 'guasto'); END");
    }
    EsitoAggiornamentoArchivi e = db.AggiornaArchivi();
    EXPECT_FALSE(e.riuscito);
    EXPECT_FALSE(e.giaNuovo);
    EXPECT_NE(e.errore.find("guasto"), std::string::npos) << e.errore;
    auto linee = Linee(LeggiFile(Report()));
    ASSERT_GE(linee.size(), 3u);
    EXPECT_EQ(linee[linee.size() - 2],
              "Aggiornamento del campo  SottocontoInBilancio nella tabella Piano Dei Conti non riuscito.");
    EXPECT_EQ(linee.back().rfind("Aggiornamento annullato (", 0), 0u) << linee.back();
    // The old database as it was: its columns, capitals included, and its values.
    for (const auto& t : CampiDaAggiornare()) EXPECT_EQ(NomiColonne(t.tabella), colonnePrima[t.tabella]) << t.tabella;
    EXPECT_EQ(Righe("Causali Contabili", {Vecchio("TipoOperativita"), Vecchio("FlgNonUtil")}),
              righePrima["Causali Contabili"]);
    EXPECT_FALSE(EsisteTabella(*cn, "Versione Archivi"));
    EXPECT_FALSE(EsisteTabella(*cn, "Allegati"));
    EXPECT_EQ(NullToZeroLng(cn->Scalare("SELECT COUNT(*) FROM [Prima Nota] WHERE [Stringa10indicatori] IS NULL")),
              conZero);
    EXPECT_FALSE(db.IsNuovoDBVorn());
    cn->Esegui("DROP TRIGGER rompi" + std::string(Pg() ? " ON [Piano Dei Conti]" : ""));
  }

  {
    SCOPED_TRACE("the upgrade by the command");
    auto r = EseguiVorn(RigaComando(host->CartellaApplicazione(), "aggiorna", Pg(), file, pg));
    ASSERT_EQ(r.rc, 0) << r.err << r.out;
    auto out = Linee(r.out);
    ASSERT_GE(out.size(), 6u) << r.out;
    EXPECT_EQ(out[0], Report());
    EXPECT_EQ(out[3], "Campi aggiornati:                188");
    EXPECT_EQ(out[4], "Campi non riusciti:              1");
    EXPECT_EQ(out[5], "Password cifrate:                1");
    EXPECT_EQ(out.back(), "Database aggiornato e segnato come nuovo.");
    cn->DimenticaSchema();
    EXPECT_TRUE(db.IsNuovoDBVorn());

    auto linee = Linee(LeggiFile(Report()));
    ASSERT_GE(linee.size(), 2u + 189u + 2u);
    EXPECT_EQ(linee[0], "Segnalazioni per aggiornamento DB Vorn - Data: " + Data::Oggi().Testo());
    EXPECT_EQ(linee[1], std::string(64, '-'));
    auto c = [&](const std::string& l) { return std::count(linee.begin(), linee.end(), l); };
    EXPECT_EQ(c("Aggiunta al database: tabella Allegati."), 1);
    EXPECT_EQ(c("Aggiunta al database: tabella Versione Archivi."), 1);
    EXPECT_EQ(c("Aggiunta al database: colonna Piano Dei Conti.SottocontoInBilancio."), 1);
    EXPECT_EQ(c("Aggiunta al database: colonna Parametri Vorn.NumRegIVAVendite."), 0);  // the same column
    EXPECT_EQ(c("Aggiornamento del campo  NumNoteCredito nella tabella Allegati non riuscito."), 1);
    EXPECT_EQ(c("Aggiornamento del campo  SottocontoInBilancio nella tabella Piano Dei Conti riuscito."), 1);
    EXPECT_EQ(c("Aggiornamento del campo  NumRegIVAVendite nella tabella Parametri Vorn riuscito."), 1);
    EXPECT_EQ(c("Aggiornamento del campo  SerieDocumento nella tabella Prima Nota riuscito."), 1);
    EXPECT_EQ(c("Colonna Piano Dei Conti.IndSottocInBilanc rinominata in minuscolo."), Pg() ? 1 : 0);
    long copie = 0;
    for (const auto& l : linee) copie += l.rfind("Aggiornamento del campo  ", 0) == 0;
    EXPECT_EQ(copie, 189);
    EXPECT_EQ(c("Password in chiaro sostituite dalla loro impronta: 1."), 1);
    EXPECT_EQ(linee.back(), "Archivi aggiornati: il database è segnato come nuovo.");
  }

  // Every value in its new column; the journal's nulls replaced; balances agree with the journal.
  for (const auto& [tabella, righe] : attesi) {
    std::vector<std::string> colonne;
    for (const auto& t : CampiDaAggiornare())
      if (tabella == t.tabella)
        for (const auto& c : t.campi) colonne.push_back(std::string("[") + c.destinazione + "]");
    EXPECT_EQ(Righe(tabella, colonne), righe) << tabella;
  }
  EXPECT_EQ(NullToZeroLng(cn->Scalare("SELECT COUNT(*) FROM [Prima Nota] WHERE [Stringa10indicatori] = ?",
                                      {std::string("  0       ")})),
            conZero);
  EXPECT_EQ(NullToZeroLng(cn->Scalare("SELECT COUNT(*) FROM [Prima Nota] WHERE [Valuta] IS NULL OR [Valuta] <> ''")), 0);
  for (const auto& d : VerificaSaldi(*cn)) ADD_FAILURE() << DescriviDifferenza(d);
  clsUtenti utenti;
  utenti.cn = cn;
  EXPECT_NE(cn->Scalare("SELECT [password] FROM [Tabella Utenti] WHERE [username] = ?", {std::string("rossi")}).Testo(),
            "pippo");
  EXPECT_TRUE(utenti.Verifica_Password("rossi", "pippo"));
  EXPECT_FALSE(utenti.Verifica_Password("rossi", "pippa"));
  EXPECT_TRUE(utenti.Verifica_Password("Supervisore", ""));

  {
    SCOPED_TRACE("a second run");
    const std::string prima = LeggiFile(Report());
    cn->Esegui("UPDATE [Piano Dei Conti] SET [SottocontoInBilancio] = 'Z'");  // a change made since
    auto r = EseguiVorn(RigaComando(host->CartellaApplicazione(), "aggiorna", Pg(), file, pg));
    ASSERT_EQ(r.rc, 0) << r.err;
    EXPECT_EQ(r.out, "Il database è già aggiornato: nulla da fare.\n");
    EXPECT_EQ(LeggiFile(Report()), prima);
    EXPECT_EQ(NullToZeroLng(cn->Scalare("SELECT COUNT(*) FROM [Piano Dei Conti] WHERE [SottocontoInBilancio] <> 'Z'")), 0);
    EXPECT_TRUE(db.AggiornaArchivi().giaNuovo);
  }
}
