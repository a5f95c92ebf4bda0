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
  EXPECT_EQ(tipo("Prima Nota", "DataCompetenza"), TipoCampo::Data);
  EXPECT_EQ(tipo("Saldi Piano Dei Conti", "DareProgressivo"), TipoCampo::Importo);
  EXPECT_EQ(tipo("Scadenziario", "Importo Scadenza"), TipoCampo::Importo);
  EXPECT_EQ(tipo("Scadenziario", "Distinta"), TipoCampo::Booleano);
  EXPECT_EQ(tipo("Tabella Azienda", "Cambio fisso LIRE/EURO"), TipoCampo::Doppio);
  EXPECT_EQ(tipo("Tabella Azienda", "Decimali importi"), TipoCampo::Intero16);
  EXPECT_EQ(tipo("Parametri Vorn", "GestioneStoricoContabile"), TipoCampo::Booleano);
  EXPECT_EQ(tipo("Codici Iva", "Aliquota"), TipoCampo::Importo);
  EXPECT_EQ(tipo("Codici Iva", "Percentuale indetraibilità"), TipoCampo::Doppio);
  EXPECT_EQ(tipo("Bolli Utilizzati", "Qta bollo"), TipoCampo::Intero32);
  EXPECT_EQ(tipo("Fatture", "Elaborata"), TipoCampo::Booleano);
  EXPECT_EQ(tipo("Fatture", "Totale Documento"), TipoCampo::Importo);
  EXPECT_EQ(tipo("CespitiMovimentiRighe", "ImportoMovimentoFisc"), TipoCampo::Doppio);
  EXPECT_EQ(tipo("Liquidazioni Periodiche", "IVADovuta"), TipoCampo::Importo);
  EXPECT_EQ(tipo("Importi Fissi", "Bollo tratta italiana"), TipoCampo::Singolo);
  EXPECT_EQ(tipo("Anagrafica Fornitori", "Codice Cliente"), TipoCampo::Testo);
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

VORN_SU_DUE_MOTORI(Schema);
