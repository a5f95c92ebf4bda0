// vorn esporta and vorn importa on either engine: the files named by --archivi, the prompt of an
// import into an archive with rows answered by --no (nothing written) and by --si.
#include <gtest/gtest.h>

#include <fstream>

#include "ComandoAzienda.h"
#include "support/Azienda.h"

using namespace vorn;
using namespace vorn::test;

namespace {

class ComandiEsportaImporta : public AziendaStandardTest {
 protected:
  EsitoComando Vorn(const std::string& risposta, const std::string& comando, const std::vector<std::string>& opzioni) {
    auto a = RigaComando(dir->Percorso(), comando, Pg(), file, pg, opzioni);
    if (!risposta.empty()) a.insert(a.begin() + 2, risposta);
    return EseguiVorn(a);
  }
  std::string Dollaro() {
    return cn->Scalare("SELECT [Descrizione valuta] FROM [Valute] WHERE [Codice valuta] = '01'").TestoTrim();
  }
};

TEST_P(ComandiEsportaImporta, ExportsTheArchivesNamedAndImportsOnlyWhenTheUserAgrees) {
  const std::string cartella = dir->Percorso() + "/scambio";
  auto r = Vorn("", "esporta", {cartella, "--archivi", "valute,piano-conti"});
  ASSERT_EQ(r.rc, 0) << r.err;
  EXPECT_EQ(r.out, "Scritto " + cartella + "/valute.txt\nScritto " + cartella + "/pianoconti.txt\n");
  ASSERT_EQ(Dollaro(), "DOLLARO USA");

  // The file renames the dollar; the same width keeps the line whole.
  std::string valute = LeggiFile(cartella + "/valute.txt");
  valute.replace(valute.find("DOLLARO USA   "), 14, "DOLLARO US$   ");
  std::ofstream(cartella + "/valute.txt", std::ios::binary) << valute;

  r = Vorn("--no", "importa", {cartella, "--archivi", "valute"});
  EXPECT_EQ(r.rc, 1);
  EXPECT_NE(r.err.find("L'archivio Valute dell'azienda contiene già dei dati"), std::string::npos) << r.err;
  EXPECT_NE(r.err.find("Importazione annullata. Nessun dato importato."), std::string::npos) << r.err;
  EXPECT_EQ(Dollaro(), "DOLLARO USA");

  r = Vorn("--si", "importa", {cartella, "--archivi", "valute"});
  ASSERT_EQ(r.rc, 0) << r.err;
  EXPECT_EQ(r.out, "Importato valute.txt: 5 righe\n");
  EXPECT_EQ(Dollaro(), "DOLLARO US$");

  // A missing file: told, exit 1, nothing written; an unknown archive is a usage error.
  r = Vorn("--si", "importa", {cartella, "--archivi", "causali"});
  EXPECT_EQ(r.rc, 1);
  EXPECT_NE(r.err.find("Impossibile trovare il file " + cartella + "/causali.txt."), std::string::npos) << r.err;
  EXPECT_EQ(Vorn("", "importa", {cartella, "--archivi", "magazzino"}).rc, 2);
}

VORN_SU_DUE_MOTORI(ComandiEsportaImporta);

}  // namespace
