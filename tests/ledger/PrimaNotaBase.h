// The journal fixture: a company with a small chart and causals of every operativity, a
// clsPrimaNota on the test's connection, and helpers that build rows and read balances.
#pragma once
#include <ostream>
#include <string>

#include "frame/Comuni.h"
#include "frame/Globali.h"
#include "ledger/clsPrimaNota.h"
#include "support/Azienda.h"

namespace vorn::test {

// The three balance columns of the year of one sub-account, client or supplier.
struct Saldo {
  Importo iniziale, dare, avere;
  bool esiste = false;
  friend bool operator==(const Saldo& a, const Saldo& b) {
    return a.iniziale == b.iniziale && a.dare == b.dare && a.avere == b.avere && a.esiste == b.esiste;
  }
  friend std::ostream& operator<<(std::ostream& o, const Saldo& s) {
    return o << (s.esiste ? "" : "(assente) ") << "iniziale " << s.iniziale.TestoPunto() << ", dare "
             << s.dare.TestoPunto() << ", avere " << s.avere.TestoPunto();
  }
};

inline Importo Imp(const char* t) { return *Importo::DaTestoPunto(t); }
inline Saldo S(const char* iniziale, const char* dare, const char* avere) {
  return Saldo{Imp(iniziale), Imp(dare), Imp(avere), true};
}

class PrimaNotaBase : public AziendaTest {
 protected:
  void SetUp() override {
    AziendaTest::SetUp();
    if (IsSkipped() || HasFatalFailure()) return;
    G().DecimaliImporti = 2;
    pn.cn = cn;
    for (const char* c : {"1201001", "1202001", "1401001", "2501001", "2502001", "4001001", "6001001"}) Conto(c);
    Causale("V01", Valore("0"), "1", "0");
    Causale("AP", Valore("1"));
    Causale("G2", Valore("2"));
    Causale("X9", Valore("9"));
    Causale("NUL", Valore::Null());
    Causale("ACQ", Valore("0"), "2", "0");
  }

  void Conto(const std::string& codice) {
    cn->Esegui("INSERT INTO [Piano Dei Conti] ([Gruppo], [Conto], [Sottoconto], [Descrizione]) VALUES (?, ?, ?, ?)",
               {Valore(codice.substr(0, 2)), Valore(codice.substr(2, 2)), Valore(codice.substr(4)),
                Valore("Conto " + codice)});
  }
  void Causale(const std::string& codice, const Valore& operativita, const std::string& registro = "0",
               const std::string& tipo = "") {
    cn->Esegui(
        "INSERT INTO [Causali Contabili] ([CodiceCausale], [DescrizioneCausale], [OperativitaContabile], "
        "[TipoRegistroIva], [TipoCausale]) VALUES (?, ?, ?, ?, ?)",
        {Valore(codice), Valore("Causale " + codice), operativita, Valore(registro), Valore(tipo)});
  }

  // A journal row with the columns that matter to the balances; the rest as a caller leaves them.
  static RecordValori Riga(const std::string& numero, const std::string& tipo, const std::string& riga,
                           const std::string& lato, const std::string& conto, const char* importo,
                           const std::string& causale = "V01", const std::string& ind = "",
                           const std::string& cod = "") {
    return RecordValori{{"DataRegistrazione", Valore("15/01/2024")},
                        {"NumeroRegistrazione", Valore(numero)},
                        {"TipoRigaIvaNormale", Valore(tipo)},
                        {"NumRigaAVideo", Valore(riga)},
                        {"DareAvere", Valore(lato)},
                        {"ContoPrimaNota", Valore(conto)},
                        {"IndClienteFornitore", Valore(ind)},
                        {"CodClienteFornitore", Valore(cod)},
                        {"DataCompetenza", Valore("15/01/2024")},
                        {"CodiceCausale", Valore(causale)},
                        {"DescrizioneSupplem", Valore("Riga " + riga)},
                        {"ImportoMovimento", Valore(Imp(importo))},
                        {"Cambio", Valore(1.0)},
                        {"Stringa10indicatori", Valore("")}};
  }

  void Salva(const RecordValori& r) {
    bool cancel = true;
    ASSERT_TRUE(pn.SalvaRecord(r, Valore("prova"), 1, cancel));
    EXPECT_FALSE(cancel);
  }

  Saldo SaldoConto(const std::string& codice) {
    Recordset rs = cn->Execute(
        "SELECT [SaldoInizialePeriodo], [SaldoDarePeriodo], [SaldoAverePeriodo] FROM [Saldi Piano Dei Conti] "
        "WHERE [CodiceGruppo] = ? AND [CodiceConto] = ? AND [CodiceSottoconto] = ?",
        {Valore(MedioTesto(codice, 1, 2)), Valore(MedioTesto(codice, 3, 2)), Valore(MedioTesto(codice, 5, 3))});
    if (rs.Eof()) return Saldo{};
    return Saldo{NullToZeroCy(rs.Fields(0).Value()), NullToZeroCy(rs.Fields(1).Value()),
                 NullToZeroCy(rs.Fields(2).Value()), true};
  }

  Saldo SaldoCF(char tipo, const std::string& codice) {
    std::string tabella = tipo == 'C' ? "Anagrafica Clienti" : "Anagrafica Fornitori";
    Recordset rs = cn->Execute("SELECT [SaldoInizPeriodo], [SaldoDarePeriodo], [SaldoAverePeriodo] FROM [" + tabella +
                                   "] WHERE [Codice Cliente] = ?",
                               {Valore(codice)});
    if (rs.Eof()) return Saldo{};
    return Saldo{NullToZeroCy(rs.Fields(0).Value()), NullToZeroCy(rs.Fields(1).Value()),
                 NullToZeroCy(rs.Fields(2).Value()), true};
  }

  Valore Colonna(const std::string& colonna, const std::string& numero, const std::string& tipo,
                 const std::string& riga, const std::string& lato) {
    return cn->Scalare("SELECT [" + colonna +
                           "] FROM [Prima Nota] WHERE [NumeroRegistrazione] = ? AND [TipoRigaIvaNormale] = ? AND "
                           "[NumRigaAVideo] = ? AND [DareAvere] = ?",
                       {Valore(numero), Valore(tipo), Valore(riga), Valore(lato)});
  }

  long Conta(const std::string& tabella) {
    return static_cast<long>(NullToZeroLng(cn->Scalare("SELECT COUNT(*) FROM [" + tabella + "]")));
  }

  clsPrimaNota pn;
};

}  // namespace vorn::test
