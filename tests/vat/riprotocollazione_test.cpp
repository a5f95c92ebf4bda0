// Reprotocolling of a purchases register on both engines: the protocols of the year's entries
// become 1..n in the order of registration, in the journal and in the due dates, and nothing
// else moves.
#include <gtest/gtest.h>

#include <map>

#include "vat/RegistriIvaBase.h"

namespace vorn::test {
namespace {

class RiprotocollazioneTest : public RegistriIvaTest {
 protected:
  void Acquisto(const char* numero, const char* data, long protocollo, const char* registro = "01") {
    Registra({numero, "FTA", data, "2", "", protocollo * 10, protocollo, "F1", "", "122.00"},
             {{"022", "100.00", "22.00"}}, "100.00");
    if (std::string(registro) != "01")
      cn->Esegui("UPDATE [Prima Nota] SET [NumRegistroIva] = ? WHERE [NumeroRegistrazione] = ?",
                 {Valore(registro), Valore(numero)});
  }
  void Rata(long progressivo, const char* numero, long protocollo) {
    cn->Esegui("INSERT INTO [Scadenziario] ([Tipo], [Codice Cliente], [Numero Documento], [Serie], "
               "[Data Documento], [Numero Progressivo], [numeroRegistrazione], [NumeroDiProtocollo], "
               "[Importo Scadenza]) VALUES ('FO', 'F1', ?, '', ?, ?, ?, ?, -61)",
               {Valore(protocollo * 10), Valore(*Data::Crea(2024, 1, 1)), Valore(progressivo), Valore(numero),
                Valore(protocollo)});
  }
  // The protocol of each entry's rows, as "number:protocol" (several when the rows differ).
  std::map<std::string, std::string> Protocolli() {
    std::map<std::string, std::string> m;
    cn->Scorri("SELECT DISTINCT [NumeroRegistrazione], [NumeroDiProtocollo] FROM [Prima Nota] ORDER BY 1, 2", {},
               [&](const std::vector<Colonna>&, const std::vector<Valore>& v) {
                 std::string& s = m[Trim(v[0].Testo())];
                 s += (s.empty() ? "" : ",") + std::to_string(NullToZeroLng(v[1]));
                 return true;
               });
    return m;
  }
  long ProtocolloRata(long progressivo) {
    return NullToZeroLng(cn->Scalare("SELECT [NumeroDiProtocollo] FROM [Scadenziario] WHERE [Numero Progressivo] = ?",
                                     {Valore(progressivo)}));
  }
  // Every column of the journal but the protocol, row by row.
  std::string Resto() {
    std::string t;
    cn->Scorri("SELECT [NumeroRegistrazione], [NumRigaAVideo], [TipoRigaIvaNormale], [DataRegistrazione], "
               "[DataCompetenza], [ContoPrimaNota], [ImportoMovimento], [Imponibile], [NumRegistroIva], "
               "[NumeroDocumento], [SerieDocumento] FROM [Prima Nota] ORDER BY 1, 2, 3",
               {}, [&](const std::vector<Colonna>&, const std::vector<Valore>& v) {
                 for (const auto& x : v) t += x.Testo() + "|";
                 t += "\n";
                 return true;
               });
    return t;
  }
};

TEST_P(RiprotocollazioneTest, ProtocolliInOrdineDiRegistrazione) {
  Acquisto("00011", "10/03/2024", 5);
  Acquisto("00012", "15/01/2024", 9);
  Acquisto("00013", "15/01/2024", 2);  // same day as 00012, lower old protocol: first
  Acquisto("00014", "20/02/2024", 7);
  Acquisto("00015", "01/02/2024", 3, "02");  // another register
  Acquisto("00016", "30/12/2023", 40);       // another year
  Registra({"00020", "FTV", "10/01/2024", "1", "", 1, 0, "C1", "", "122.00"}, {{"022", "100.00", "22.00"}},
           "100.00");  // the sales register
  Rata(1, "00012", 9);
  Rata(2, "00012", 9);
  Rata(3, "00016", 40);
  const std::string resto = Resto();

  // 00013 → 1, 00012 → 2, 00014 → 3, 00011 → 4: four entries of three rows, and two instalments.
  EXPECT_EQ(reg.EseguiRiprotocollazione("prova", 2024, Valore("01")), 14);
  std::map<std::string, std::string> atteso = {{"00011", "4"}, {"00012", "2"},  {"00013", "1"}, {"00014", "3"},
                                               {"00015", "3"}, {"00016", "40"}, {"00020", "0"}};
  EXPECT_EQ(Protocolli(), atteso);
  EXPECT_EQ(ProtocolloRata(1), 2);
  EXPECT_EQ(ProtocolloRata(2), 2);
  EXPECT_EQ(ProtocolloRata(3), 40);
  EXPECT_EQ(Resto(), resto);

  // Again: the same numbers. A register with nothing in the year: 0, nothing changes.
  EXPECT_EQ(reg.EseguiRiprotocollazione("prova", 2024, Valore(1)), 14);
  EXPECT_EQ(Protocolli(), atteso);
  EXPECT_EQ(reg.EseguiRiprotocollazione("prova", 2024, Valore("03")), 0);
  EXPECT_EQ(reg.EseguiRiprotocollazione("prova", 2025, Valore("01")), 0);
  EXPECT_EQ(Protocolli(), atteso);
}

TEST_P(RiprotocollazioneTest, RegistrazioneSuDueDateDiCompetenza) {
  Acquisto("00011", "10/01/2024", 1);
  Acquisto("00012", "20/01/2024", 2);
  Acquisto("00013", "25/01/2024", 3);
  // 00012's VAT row falls in another competence: the entry is listed twice, walked as 2 and 3,
  // and takes 3 on every row; 00013 follows with 4.
  cn->Esegui("UPDATE [Prima Nota] SET [DataCompetenza] = ? WHERE [NumeroRegistrazione] = '00012' AND "
             "[TipoRigaIvaNormale] = 'I'",
             {Valore(*Data::Crea(2024, 2, 1))});
  EXPECT_EQ(reg.EseguiRiprotocollazione("prova", 2024, Valore("01")), 9);
  std::map<std::string, std::string> atteso = {{"00011", "1"}, {"00012", "3"}, {"00013", "4"}};
  EXPECT_EQ(Protocolli(), atteso);
}

VORN_SU_DUE_MOTORI(RiprotocollazioneTest);

}  // namespace
}  // namespace vorn::test
