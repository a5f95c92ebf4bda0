#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <set>

#include "frame/Catalogo.h"
#include "frame/Schema.h"
#include "support/Azienda.h"

using namespace vorn;
using namespace vorn::test;

namespace {

bool Presente(const std::vector<std::string>& nomi, const std::string& nome) {
  return std::any_of(nomi.begin(), nomi.end(), [&](const std::string& n) { return UgualeNoCase(n, nome); });
}

}  // namespace

// The catalogue itself: names unique, keys among the columns, the stamp where it belongs.
TEST(Catalogo, DefinizioniCoerenti) {
  std::set<std::string> nomi;
  for (const auto& t : TabelleCatalogo()) {
    EXPECT_TRUE(nomi.insert(LCase(t.nome)).second) << "tabella doppia " << t.nome;
    EXPECT_FALSE(t.colonne.empty()) << t.nome;
    if (t.rigaUnica || t.senzaChiave) EXPECT_TRUE(t.chiave.empty()) << t.nome;
    else EXPECT_FALSE(t.chiave.empty()) << "tabella senza chiave " << t.nome;
    EXPECT_FALSE(t.rigaUnica && t.senzaChiave) << t.nome;
    for (const auto& k : t.chiave) EXPECT_NE(t.Colonna(k), nullptr) << t.nome << "." << k;
    if (t.timbro) {
      ASSERT_NE(t.Colonna("clientName"), nullptr);
      EXPECT_EQ(t.Colonna("clientName")->tipo, TipoCampo::Testo);
      EXPECT_EQ(t.Colonna("hWnd")->tipo, TipoCampo::Intero32);
    } else {
      EXPECT_FALSE(t.Colonna("clientName") && t.Colonna("hWnd")) << "timbro non dichiarato in " << t.nome;
    }
  }
  for (const auto& v : VisteCatalogo()) EXPECT_TRUE(nomi.insert(LCase(v.nome)).second) << v.nome;
  for (const auto& i : IndiciCatalogo()) {
    const TabellaCatalogo* t = TabellaCatalogoDi(i.tabella);
    ASSERT_NE(t, nullptr) << i.nome;
    for (const auto& c : i.colonne) EXPECT_NE(t->Colonna(c), nullptr) << i.nome << " " << c;
    EXPECT_LE(i.nome.size(), 30u);
  }
}

// Kinds the rest of the system relies on: money exact, entry numbers and sides as text.
TEST(Catalogo, TipiDelleColonneChiave) {
  auto tipo = [](const char* t, const char* c) {
    const TabellaCatalogo* tab = TabellaCatalogoDi(t);
    if (!tab) return TipoCampo::Vuoto;
    const ColonnaCatalogo* col = tab->Colonna(c);
    return col ? col->tipo : TipoCampo::Vuoto;
  };
  EXPECT_EQ(tipo("Prima Nota", "ImportoMovimento"), TipoCampo::Importo);
  EXPECT_EQ(tipo("Prima Nota", "NumeroRegistrazione"), TipoCampo::Testo);
  EXPECT_EQ(tipo("Prima Nota", "DareAvere"), TipoCampo::Testo);
  EXPECT_EQ(tipo("Prima Nota", "NumRigaAVideo"), TipoCampo::Testo);
  EXPECT_EQ(tipo("Prima Nota", "Cambio"), TipoCampo::Doppio);
  EXPECT_EQ(tipo("Saldi Piano Dei Conti", "DareProgressivo"), TipoCampo::Importo);
  EXPECT_EQ(tipo("Scadenziario", "Importo Scadenza"), TipoCampo::Importo);
  EXPECT_EQ(tipo("Codici Iva", "Aliquota"), TipoCampo::Importo);
  EXPECT_EQ(tipo("Fatture", "Totale Documento"), TipoCampo::Importo);
  EXPECT_EQ(tipo("Liquidazioni Periodiche", "IVADovuta"), TipoCampo::Importo);
  // Clients and suppliers have the same columns.
  const auto* cli = TabellaCatalogoDi("Anagrafica Clienti");
  const auto* forn = TabellaCatalogoDi("Anagrafica Fornitori");
  ASSERT_TRUE(cli && forn);
  ASSERT_EQ(cli->colonne.size(), forn->colonne.size());
  for (size_t i = 0; i < cli->colonne.size(); ++i) {
    EXPECT_EQ(cli->colonne[i].nome, forn->colonne[i].nome);
    EXPECT_EQ(cli->colonne[i].tipo, forn->colonne[i].tipo) << cli->colonne[i].nome;
  }
}

class Schema : public DbTest {};

// A new company has every table, view and key of the catalogue, with the kinds it declares.
TEST_P(Schema, NuovaAziendaHaTuttoIlCatalogo) {
  CreaSchema(*cn);
  auto tabelle = cn->Tabelle();
  for (const auto& t : TabelleCatalogo()) {
    ASSERT_TRUE(Presente(tabelle, t.nome)) << t.nome;
    auto colonne = cn->ColonneTabella(t.nome);
    ASSERT_EQ(colonne.size(), t.colonne.size()) << t.nome;
    for (const auto& c : t.colonne) {
      auto it = std::find_if(colonne.begin(), colonne.end(), [&](const Colonna& x) { return UgualeNoCase(x.nome, c.nome); });
      ASSERT_NE(it, colonne.end()) << t.nome << "." << c.nome;
      TipoCampo atteso = c.tipo == TipoCampo::Memo ? TipoCampo::Testo : c.tipo;
      EXPECT_EQ(it->tipo, atteso) << t.nome << "." << c.nome;
    }
    auto chiave = cn->ChiaveTabella(t.nome);
    ASSERT_EQ(chiave.size(), t.chiave.size()) << t.nome;
    for (size_t i = 0; i < chiave.size(); ++i) EXPECT_TRUE(UgualeNoCase(chiave[i], t.chiave[i])) << t.nome;
  }
  for (const auto& v : VisteCatalogo()) {
    ASSERT_TRUE(Presente(tabelle, v.nome)) << v.nome;
    auto rs = cn->Execute("SELECT * FROM [" + v.nome + "]");
    ASSERT_EQ(rs.FieldCount(), static_cast<int>(v.colonne.size()));
  }
  EXPECT_EQ(tabelle.size(), TabelleCatalogo().size() + VisteCatalogo().size());
}

// An older database missing a table, a column, a view and an index gets exactly those; its
// rows stay; a second pass adds nothing.
TEST_P(Schema, AssicuraSchemaAggiungeSoloCioCheManca) {
  CreaSchema(*cn);
  cn->Esegui("DROP TABLE [Distinte Righe]");
  cn->Esegui("DROP VIEW [Query sezione bilancio gruppi]");
  cn->Esegui("DROP INDEX [ix_pn_conto]");
  // Stamps used, as an older archive had it: without the count.
  cn->Esegui("DROP TABLE [Bolli Utilizzati]");
  cn->Esegui(
      "CREATE TABLE [Bolli Utilizzati] ([Codice banca] TEXT, [Codice agenzia] TEXT, [Valore bollo] NUMERIC(19,4), "
      "[clientName] TEXT, [hWnd] INTEGER)");
  cn->Esegui("INSERT INTO [Bolli Utilizzati] ([Codice banca], [Codice agenzia], [Valore bollo]) VALUES (?, ?, ?)",
             {"01", "001", Importo::DaRaw(12000)});
  cn->DimenticaSchema();

  auto aggiunte = AssicuraSchema(*cn);
  // In the order of the catalogue: tables and columns, then indexes, then views.
  std::vector<std::string> attese = {"colonna Bolli Utilizzati.Qta bollo", "tabella Distinte Righe", "indice ix_pn_conto",
                                     "vista Query sezione bilancio gruppi"};
  EXPECT_EQ(aggiunte, attese);
  auto rs = cn->Execute("SELECT [Valore bollo], [Qta bollo] FROM [Bolli Utilizzati]");
  ASSERT_EQ(rs.RecordCount(), 1u);
  EXPECT_EQ(rs("Valore bollo").Value().Imp().Raw(), 12000);
  EXPECT_TRUE(rs("Qta bollo").IsNull());
  cn->Esegui("UPDATE [Bolli Utilizzati] SET [Qta bollo] = ?", {3});
  EXPECT_EQ(cn->Scalare("SELECT [Qta bollo] FROM [Bolli Utilizzati]").ComeIntero(), 3);
  EXPECT_TRUE(AssicuraSchema(*cn).empty());
  // The older table keeps what it had: no key was imposed on it.
  EXPECT_TRUE(cn->ChiaveTabella("Bolli Utilizzati").empty());
}

TEST_P(Schema, AssicuraSchemaSuDatabaseVuotoCreaTutto) {
  auto aggiunte = AssicuraSchema(*cn);
  // The indexes of the catalogue, and the one on the entry number read as a number.
  EXPECT_EQ(aggiunte.size(), TabelleCatalogo().size() + VisteCatalogo().size() + IndiciCatalogo().size() + 1);
  EXPECT_NE(std::find(aggiunte.begin(), aggiunte.end(), std::string("indice ") + kIndiceNumeroRegistrazione),
            aggiunte.end());
  EXPECT_TRUE(AssicuraSchema(*cn).empty());
}

// The saved queries: sub-accounts as the seven characters journal rows carry, groups with
// their section.
TEST_P(Schema, VisteDelPianoDeiConti) {
  CreaSchema(*cn);
  auto riga = [&](const char* g, const Valore& c, const Valore& s, const char* d, const char* ind) {
    cn->Esegui("INSERT INTO [Piano Dei Conti] ([Gruppo], [Conto], [Sottoconto], [Descrizione], [IndDiBilancio]) "
               "VALUES (?, ?, ?, ?, ?)",
               {g, c, s, d, ind});
  };
  riga("05", Valore::Null(), Valore::Null(), "CREDITI", "0");
  riga("05", "10", "", "CLIENTI", "");
  riga("05", "10", "001", "Rossi Mario", "");
  riga("60", "", Valore::Null(), "RICAVI", "1");
  riga("60", "01", "002", "Vendite Italia", "");
  cn->Esegui("INSERT INTO [Prima Nota] ([NumeroRegistrazione], [TipoRigaIvaNormale], [NumRigaAVideo], [DareAvere], "
             "[ContoPrimaNota], [ImportoMovimento]) VALUES ('00001', '', '001', 'D', '0510001', 100)");
  auto rs = cn->Execute(
      "SELECT [Descrizione sottoconti].[Descrizione] FROM [Prima Nota] LEFT JOIN [Descrizione sottoconti] "
      "ON [Prima Nota].[ContoPrimaNota] = [Descrizione sottoconti].[Sottoconto]");
  ASSERT_EQ(rs.RecordCount(), 1u);
  EXPECT_EQ(rs.Fields(0).Value().Testo(), "Rossi Mario");
  EXPECT_EQ(cn->Scalare("SELECT COUNT(*) FROM [Descrizione sottoconti]").ComeIntero(), 2);
  auto g = cn->Execute("SELECT [Gruppo], [IndDiBilancio] FROM [Query sezione bilancio gruppi] ORDER BY [Gruppo]");
  ASSERT_EQ(g.RecordCount(), 2u);
  EXPECT_EQ(g("IndDiBilancio").Value().Testo(), "0");
  g.MoveNext();
  EXPECT_EQ(g("Gruppo").Value().Testo(), "60");
  EXPECT_EQ(g("IndDiBilancio").Value().Testo(), "1");
}

// Rows appended by statements number themselves; keys of a journal row count a null part as a
// value, so the same key cannot be written twice.
TEST_P(Schema, ChiaviENumerazione) {
  CreaSchema(*cn);
  for (int i = 0; i < 3; ++i)
    cn->Esegui("INSERT INTO [Spesometro2013] ([Tipo], [Anno], [Imponibile]) VALUES (0, 2013, ?)", {Importo::DaRaw(i)});
  auto rs = cn->Execute("SELECT [ID] FROM [Spesometro2013] ORDER BY [ID]");
  ASSERT_EQ(rs.RecordCount(), 3u);
  std::set<int64_t> id;
  for (; !rs.Eof(); rs.MoveNext()) {
    ASSERT_FALSE(rs.Fields(0).IsNull());
    id.insert(*rs.Fields(0).Value().ComeIntero());
  }
  EXPECT_EQ(id.size(), 3u);

  const char* ins = "INSERT INTO [Prima Nota] ([NumeroRegistrazione], [TipoRigaIvaNormale], [NumRigaAVideo], "
                    "[DareAvere]) VALUES ('00001', ?, '001', 'D')";
  cn->Esegui(ins, {""});
  EXPECT_THROW(cn->Esegui(ins, {""}), ErroreDb);
  // The same line on the other side is another row.
  cn->Esegui("INSERT INTO [Prima Nota] ([NumeroRegistrazione], [TipoRigaIvaNormale], [NumRigaAVideo], [DareAvere]) "
             "VALUES ('00001', '', '001', 'A')");
  // An accounting row and a VAT row share the line number.
  cn->Esegui(ins, {"I"});
  if (Pg()) {
    cn->Esegui(ins, {Valore::Null()});
    EXPECT_THROW(cn->Esegui(ins, {Valore::Null()}), ErroreDb);
  }
}

// A whole schema is one transaction: a failure in the middle leaves no table behind.
TEST_P(Schema, CreazioneTuttaONiente) {
  cn->Esegui("CREATE VIEW [Descrizione sottoconti] AS SELECT 1 AS [Gruppo]");
  EXPECT_THROW(CreaSchema(*cn), ErroreDb);
  cn->DimenticaSchema();
  auto tabelle = cn->Tabelle();
  EXPECT_EQ(tabelle.size(), 1u);
}

VORN_SU_DUE_MOTORI(Schema);

TEST(NuovaAzienda, FileSqlite) {
  CartellaProva dir;
  std::string file = dir.Percorso() + "/nuova azienda.db";
  auto cn = CreaAziendaSqlite(file);
  ASSERT_TRUE(cn && cn->Aperta());
  EXPECT_EQ(cn->Tabelle().size(), TabelleCatalogo().size() + VisteCatalogo().size());
  cn->Close();
  // An existing file is never overwritten.
  try {
    CreaAziendaSqlite(file);
    FAIL() << "nessun errore su un file esistente";
  } catch (const ErroreDb& e) {
    EXPECT_NE(e.Descrizione().find("esiste già"), std::string::npos) << e.Descrizione();
  }
  auto riaperta = Connessione::ApriSqlite(file);
  EXPECT_EQ(riaperta->Tabelle().size(), TabelleCatalogo().size() + VisteCatalogo().size());
  // A folder that does not exist: a clear error and no file.
  EXPECT_THROW(CreaAziendaSqlite(dir.Percorso() + "/manca/azienda.db"), ErroreDb);
}

TEST(NuovaAzienda, DatabasePostgres) {
  if (!PostgresDisponibile()) GTEST_SKIP() << "PostgreSQL di prova non disponibile";
  ParametriPostgres p = ParametriPostgresTest();
  p.database = NomeUnico("Azienda Prova");  // case and blanks kept
  auto cn = CreaAziendaPostgres(p);
  ASSERT_TRUE(cn && cn->Aperta());
  EXPECT_EQ(cn->Tabelle().size(), TabelleCatalogo().size() + VisteCatalogo().size());
  EXPECT_EQ(cn->Scalare("SELECT datcollate FROM pg_database WHERE datname = current_database()").Testo(), "C");
  EXPECT_EQ(cn->Scalare("SELECT pg_encoding_to_char(encoding) FROM pg_database WHERE datname = current_database()")
                .Testo(),
            "UTF8");
  cn->Close();
  try {
    CreaAziendaPostgres(p);
    ADD_FAILURE() << "nessun errore su un database esistente";
  } catch (const ErroreDb& e) {
    EXPECT_NE(e.Descrizione().find("esiste già"), std::string::npos) << e.Descrizione();
  }
  ParametriPostgres admin = ParametriPostgresTest();
  admin.database = "postgres";
  auto a = Connessione::ApriPostgres(admin);
  a->Esegui("DROP DATABASE \"" + p.database + "\"");
}
