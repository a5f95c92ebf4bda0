// The archives of the fixed assets: categories and causals from the standard model, an asset's
// own figures, the movements with their numbers, stepping and the list of an asset's movements.
#include <gtest/gtest.h>

#include "assets/clsCausaliCespiti.h"
#include "assets/clsCespiti.h"
#include "assets/clsCespitiAmm.h"
#include "assets/clsCespitiCategorie.h"
#include "assets/clsCespitiMovimenti.h"
#include "frame/Comuni.h"
#include "support/Azienda.h"

using namespace vorn;
using namespace vorn::test;

namespace {

class ArchiviCespiti : public AziendaStandardTest {};

TEST_P(ArchiviCespiti, CategorieCausaliCespitiEMovimenti) {
  clsCespitiCategorie categorie;
  categorie.cn = cn;
  Valore descrizione;
  int natura = -1;
  double ordFisc = 0, antFisc = 0, ordCiv = 0, antCiv = 0;
  std::string costoOrd, fondoOrd, costoAnt, fondoAnt;
  ASSERT_TRUE(categorie.GetParametriCategoria(Valore("11"), descrizione, natura, ordFisc, antFisc, ordCiv, antCiv,
                                              costoOrd, fondoOrd, costoAnt, fondoAnt));
  EXPECT_EQ(descrizione, Valore("Impianti generici"));
  EXPECT_EQ(natura, 0);
  EXPECT_EQ(ordFisc, 10);
  EXPECT_EQ(costoAnt + "/" + fondoAnt, "6303001/1103001");
  EXPECT_EQ(categorie.GetIndNatura(Valore("02")), 1);
  EXPECT_EQ(categorie.GetIndNatura(Valore("ZZ")), 0);
  EXPECT_FALSE(categorie.GetParametriCategoria(Valore("ZZ"), descrizione, natura, ordFisc, antFisc, ordCiv, antCiv,
                                               costoOrd, fondoOrd, costoAnt, fondoAnt));
  EXPECT_EQ(DescrizioneNatura(2), "Immateriale");

  clsCausaliCespiti causali;
  causali.cn = cn;
  EXPECT_EQ(causali.GetTipoMovimentazione(Valore("AMA")), kAmmortamAnticipato);
  EXPECT_EQ(causali.GetTipoMovimentazione(Valore("ZZZ")), kNessuna);

  // The asset takes its category's rates; a category that does not exist writes nothing.
  clsCespiti cespiti;
  cespiti.cn = cn;
  bool cancel = false;
  ASSERT_TRUE(cespiti.SalvaDaCategoria(Valore("B1"), Valore("Tornio"), Valore("12"), Valore("T"), 0, cancel));
  EXPECT_FALSE(cespiti.SalvaDaCategoria(Valore("B2"), Valore("Altro"), Valore("ZZ"), Valore("T"), 0, cancel));
  ASSERT_TRUE(cespiti.SalvaDaCategoria(Valore("A0"), Valore("Sedia"), Valore("14"), Valore("T"), 0, cancel));
  EXPECT_EQ(cespiti.GetPercAmmAntFisc(Valore("B1")), 12);
  EXPECT_EQ(cespiti.GetCategoriaCespite(Valore("B1")), "12");
  EXPECT_EQ(cespiti.UpdateStato(Valore("B1"), Valore("2")), 1);
  EXPECT_EQ(cespiti.UpdateStato(Valore("NO"), Valore("2")), 0);
  Valore codice("");
  ASSERT_TRUE(cespiti.RecordPrecedente(codice));
  EXPECT_EQ(codice, Valore("A0"));
  ASSERT_TRUE(cespiti.RecordSuccessivo(codice));
  EXPECT_EQ(codice, Valore("B1"));
  EXPECT_FALSE(cespiti.RecordSuccessivo(codice));

  // Movement numbers from the company's counter, never one already taken; stepping by number.
  clsCespitiMovimenti movimenti;
  movimenti.cn = cn;
  cn->Esegui("INSERT INTO [Anagrafica Fornitori] ([Codice Cliente], [Ragione Sociale]) VALUES ('F1', 'Officine Srl')");
  bool c = false;
  ASSERT_TRUE(movimenti.SalvaRecord(Valore(7), Valore("01/03/2024"), Valore("01/03/2024"), Valore("ACQ"), Valore("F"),
                                    Valore("F1"), Valore(2024), Valore(""), Valore(15), Valore("28/02/2024"), Valore(""),
                                    Valore(1.0), Valore("01/03/2024"), Valore(""), Valore(""), Valore("T"), 0, c));
  ASSERT_TRUE(movimenti.SalvaRecordRighe(Valore(7), Valore(1), Valore("B1"), Valore(5000.0), Valore(5000.0),
                                         Valore(5000.0), Valore(""), Valore("T"), 0, c));
  EXPECT_EQ(movimenti.RegistraMovimento("MAN", *Data::Crea(2024, 6, 1), "B1", 120.456, 120.456, 120.456, "", 2), 8);
  EXPECT_THROW(movimenti.RegistraMovimento("ZZZ", *Data::Crea(2024, 6, 1), "B1", 1, 1, 1, "", 2), ErroreDb);
  EXPECT_EQ(movimenti.GetNumeroMovimentiCespite("B1"), 2);
  Valore numero("");
  ASSERT_TRUE(movimenti.RecordSuccessivo(numero));
  EXPECT_EQ(numero, Valore(8));
  ASSERT_TRUE(movimenti.RecordPrecedente(numero));
  EXPECT_EQ(numero, Valore(7));
  EXPECT_FALSE(movimenti.RecordPrecedente(numero));

  Recordset T;
  ASSERT_TRUE(cespiti.LocalizzaMovimentiCespite(T, Valore("B1")));
  EXPECT_EQ(Trim(T("RagioneSociale").Value().Testo()), "Officine Srl");
  EXPECT_EQ(T("DataDocumento").Value().ComeData(), Data::Crea(2024, 2, 28));
  T.MoveNext();
  ASSERT_FALSE(T.Eof());
  EXPECT_EQ(NullToZeroDbl(T("ValoreFiscale").Value()), 120.46);  // rounded when written

  // The purchase by its document date, the start of use by its date of competence.
  clsCespitiAmm amm;
  amm.cn = cn;
  EXPECT_EQ(amm.GetDataAcquistoCespite("B1"), *Data::Crea(2024, 2, 28));
  EXPECT_EQ(amm.GetDataInizioUtilizzoCespite("B1"), *Data::Crea(2024, 3, 1));
  EXPECT_EQ(amm.GetDataVenditaDismissioneCespite("B1"), DataNessunaVendita());
  EXPECT_EQ(amm.GetDataInizioUtilizzoCespite("A0"), DataVuotaCespiti());
}

VORN_SU_DUE_MOTORI(ArchiviCespiti);

}  // namespace
