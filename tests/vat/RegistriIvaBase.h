// The VAT fixture: a company with VAT codes, causals, a client and a supplier, and helpers that
// post documents with their VAT rows and read the progressives back.
#pragma once
#include <string>
#include <utility>
#include <vector>

#include "frame/Comuni.h"
#include "frame/Globali.h"
#include "ledger/clsPrimaNota.h"
#include "support/Azienda.h"
#include "vat/clsProgressiviIva.h"
#include "vat/clsRegistriIva.h"

namespace vorn::test {

inline Importo I(const char* t) { return *Importo::DaTestoPunto(t); }

class RegistriIvaTest : public AziendaTest {
 protected:
  void SetUp() override {
    AziendaTest::SetUp();
    if (IsSkipped() || HasFatalFailure()) return;
    G().DecimaliImporti = 2;
    host->ImpostaCartella(dir->Percorso());
    pn.cn = cn;
    reg.cn = cn;
    prog.cn = cn;
    cn->Esegui("INSERT INTO [Tabella Azienda] ([Ragione Sociale], [Partita IVA], [Codice Fiscale], [Indirizzo], "
               "[Cap], [Citta], [Provincia]) VALUES ('Alfa Srl', '01234567890', '01234567890', 'Via Roma 1', "
               "'20100', 'Milano', 'MI')");
    for (const char* c : {"0501001", "0601001", "1201001", "1202001", "4001001", "6001001", "6002001"})
      cn->Esegui("INSERT INTO [Piano Dei Conti] ([Gruppo], [Conto], [Sottoconto], [Descrizione]) VALUES (?, ?, ?, ?)",
                 {Valore(std::string(c).substr(0, 2)), Valore(std::string(c).substr(2, 2)),
                  Valore(std::string(c).substr(4)), Valore(std::string("Conto ") + c)});
    Codice("022", "Iva 22%", "22", 0, "");
    Codice("010", "Iva 10%", "10", 0, "");
    Codice("I40", "Iva 22% indetr. 40%", "22", 40, "022");
    Causale("FTV", "Fattura di vendita", "1", "0");
    Causale("NCV", "Nota di credito a cliente", "1", "1");
    Causale("FED", "Fattura esig. differita", "1", "7");
    Causale("FTA", "Fattura di acquisto", "2", "0");
    Causale("NCA", "Nota di credito fornitore", "2", "1");
    Causale("SPE", "Spese varie", "0", "");
    cn->Esegui("UPDATE [Causali Contabili] SET [TipoRegistroIVACRSemp] = '2', [RegistroIVACRSemp] = '01' WHERE "
               "[CodiceCausale] = 'SPE'");
    cn->Esegui("INSERT INTO [Anagrafica Clienti] ([Codice Cliente], [Ragione Sociale]) VALUES ('C1', 'Rossi Mario "
               "Srl')");
    cn->Esegui("INSERT INTO [Anagrafica Fornitori] ([Codice Cliente], [Ragione Sociale]) VALUES ('F1', 'Bianchi "
               "Forniture Spa')");
  }

  void Codice(const char* codice, const char* descrizione, const char* aliquota, double indetraibile,
              const char* detraibile) {
    cn->Esegui("INSERT INTO [Codici Iva] ([Codice Iva], [Descrizione Iva], [Aliquota], [Percentuale indetraibilità], "
               "[Flag Articolo 8], [Flag Fatture Esenti], [Acquisto Intracomunitario], [Flag Monte Acquisti], "
               "[Codice IVA detraibile]) VALUES (?, ?, ?, ?, '0', '0', '0', '1', ?)",
               {Valore(codice), Valore(descrizione), Valore(I(aliquota)), Valore(indetraibile), Valore(detraibile)});
  }
  void Causale(const char* codice, const char* descrizione, const char* registro, const char* tipo) {
    cn->Esegui("INSERT INTO [Causali Contabili] ([CodiceCausale], [DescrizioneCausale], [TipoRegistroIva], "
               "[TipoCausale]) VALUES (?, ?, ?, ?)",
               {Valore(codice), Valore(descrizione), Valore(registro), Valore(tipo)});
  }

  struct Doc {
    std::string numero, causale, data, registro = "1", serie;
    long documento = 0, protocollo = 0;
    std::string partner = "C1", stato;
    const char* totale = "0";
  };
  struct RigaIva {
    const char* codice;
    const char* imponibile;
    const char* imposta;
  };

  RecordValori Base(const Doc& d, const std::string& tipo, int riga, const std::string& lato) {
    return RecordValori{{"DataRegistrazione", Valore(d.data)},
                        {"NumeroRegistrazione", Valore(d.numero)},
                        {"TipoRigaIvaNormale", Valore(tipo)},
                        {"NumRigaAVideo", Valore(Format(Valore(riga), "000"))},
                        {"DareAvere", Valore(lato)},
                        {"DataCompetenza", Valore(d.data)},
                        {"DataCompetenzaIVA", Valore(d.data)},
                        {"TipoRegistroIva", Valore(d.registro)},
                        {"NumRegistroIva", Valore("01")},
                        {"NumeroDiProtocollo", Valore(d.protocollo)},
                        {"SerieDocumento", Valore(d.serie)},
                        {"NumeroDocumento", Valore(d.documento)},
                        {"DataDocumento", Valore(d.data)},
                        {"CodiceCausale", Valore(d.causale)},
                        {"TotaleDocumento", Valore(I(d.totale))},
                        {"Cambio", Valore(1.0)},
                        {"Stringa10indicatori", Valore(d.stato)}};
  }

  // A document: the partner's row for the total, a revenue or cost row, and the VAT rows.
  void Registra(const Doc& d, const std::vector<RigaIva>& iva, const char* contropartita) {
    bool vendita = d.registro != "2";
    bool nota = d.causale == "NCV" || d.causale == "NCA";
    std::string latoPartner = (vendita != nota) ? "D" : "A", latoAltro = latoPartner == "D" ? "A" : "D";
    RecordValori p = Base(d, "", 1, latoPartner);
    p["ContoPrimaNota"] = Valore(vendita ? "0501001" : "0601001");
    p["IndClienteFornitore"] = Valore(vendita ? "C" : "F");
    p["CodClienteFornitore"] = Valore(d.partner);
    p["ImportoMovimento"] = Valore(I(d.totale));
    Salva(p);
    RecordValori c = Base(d, "", 2, latoAltro);
    c["ContoPrimaNota"] = Valore(vendita ? "4001001" : "6001001");
    c["ImportoMovimento"] = Valore(I(contropartita));
    Salva(c);
    int n = 1;
    for (const auto& r : iva) {
      RecordValori v = Base(d, "I", n++, latoAltro);
      v["ContoPrimaNota"] = Valore(vendita ? "1201001" : "1202001");
      v["CodiceIva"] = Valore(r.codice);
      v["Imponibile"] = Valore(I(r.imponibile));
      v["ImportoMovimento"] = Valore(I(r.imposta));
      v["IndicatoreCliFor"] = Valore(vendita ? "C" : "F");
      v["CodiceCliFor"] = Valore(d.partner);
      Salva(v);
    }
  }
  void Salva(const RecordValori& r) {
    bool cancel = true;
    ASSERT_TRUE(pn.SalvaRecord(r, Valore("prova"), 1, cancel));
  }

  // January's sales: an invoice of two VAT rows, a credit note, a deferred invoice, an invoice
  // already printed.
  void Vendite() {
    Registra({"00001", "FTV", "10/01/2024", "1", "A", 1, 0, "C1", "", "1330.00"},
             {{"022", "1000.00", "220.00"}, {"010", "100.00", "10.00"}}, "1100.00");
    Registra({"00002", "NCV", "12/01/2024", "1", "A", 2, 0, "C1", "", "244.00"}, {{"022", "200.00", "44.00"}},
             "200.00");
    Registra({"00003", "FED", "20/01/2024", "1", "", 1, 0, "C1", "", "610.00"}, {{"022", "500.00", "110.00"}},
             "500.00");
    Registra({"00004", "FTV", "05/01/2024", "1", "", 7, 0, "C1", "R", "122.00"}, {{"022", "100.00", "22.00"}},
             "100.00");
  }
  // January's purchases: an invoice on the 40% non-deductible code, a credit note.
  void Acquisti() {
    Registra({"00011", "FTA", "15/01/2024", "2", "", 88, 1, "F1", "", "610.00"}, {{"I40", "500.00", "110.00"}},
             "500.00");
    Registra({"00012", "NCA", "18/01/2024", "2", "", 90, 2, "F1", "", "122.00"}, {{"022", "100.00", "22.00"}},
             "100.00");
  }

  ArgomentiRegistroIva Argomenti(const std::string& nome) {
    ArgomentiRegistroIva a;
    a.AzRagSoc = "Studio Beta";
    a.AzParIva = "09876543210";
    a.nomeFile = dir->Percorso() + "/" + nome;
    a.avar_NumeroRegistro = Valore("01");
    a.avar_Mese = 1;
    a.avar_Anno = 2024;
    a.avar_RighePagina = 40;
    a.avar_PrefissoTabelleTmp = "t";
    return a;
  }

  std::string Stampa(const std::string& tipo, const ArgomentiRegistroIva& a) {
    EXPECT_TRUE(reg.StampaRegistro(tipo, a));
    return LeggiFile(a.nomeFile);
  }

  std::string Stato(const std::string& numero) {
    return Trim(cn->Scalare("SELECT MIN(substr([Stringa10indicatori], 1, 1)) FROM [Prima Nota] WHERE "
                            "[NumeroRegistrazione] = ? AND [TipoRigaIvaNormale] = 'I'",
                            {Valore(numero)})
                    .Testo());
  }
  std::pair<Importo, Importo> Progressivo(const char* ind, const char* tipo, const char* codice) {
    Importo a, b;
    prog.GetProgressivoIva(Valore("PI"), Valore(ind), Valore(tipo), Valore("01"), Valore(codice), a, b);
    return {a, b};
  }

  clsPrimaNota pn;
  clsRegistriIva reg;
  clsProgressiviIva prog;
};

}  // namespace vorn::test
