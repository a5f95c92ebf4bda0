// The smallest client of the library: it makes a company from the standard model, posts a
// purchase invoice with its VAT row through the journal, and prints the supplier's ledger card.
//
//   cliente FOLDER            the company is FOLDER/azienda.db (made anew), the prints go under
//                             FOLDER/Temp
//   cliente FOLDER DATABASE   the company is a new PostgreSQL database of that name on the server
//                             of VORN_PG_HOST, VORN_PG_PORT, VORN_PG_USER, VORN_PG_PASSWORD,
//                             removed at the end
//
// The library talks to the user only through the host the application gives it: here, the
// terminal.
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <optional>
#include <string>

#include "frame/Formato.h"
#include "frame/Host.h"
#include "frame/Schema.h"
#include "frame/clsDB.h"
#include "interchange/ModelloStandard.h"
#include "ledger/clsPrimaNota.h"
#include "ledger/clsStampaMastrini.h"

namespace {

// Messages on the standard error; a question is answered no, so that nothing is done that the
// user did not ask for.
class HostTerminale : public vorn::IHost {
 public:
  explicit HostTerminale(std::string cartella) : cartella_(std::move(cartella)) {}
  int MsgBox(const std::string& testo, int stile, const std::string& titolo) override {
    std::cerr << titolo << ": " << testo << "\n";
    return vorn::StileDomanda(stile) ? vorn::vbNo : vorn::vbOK;
  }
  std::string CartellaApplicazione() override { return cartella_; }

 private:
  std::string cartella_;
};

std::string Ambiente(const char* nome) {
  const char* v = std::getenv(nome);
  return v ? v : "";
}

// A PostgreSQL company this program made, removed when the program ends.
struct AziendaPostgres {
  vorn::ParametriPostgres p;
  ~AziendaPostgres() {
    try {
      vorn::EliminaAziendaPostgres(p);
    } catch (const std::exception& e) {
      std::cerr << "errore: " << e.what() << "\n";
    }
  }
};

}  // namespace

int main(int argc, char** argv) {
  using namespace vorn;
  if (argc != 2 && argc != 3) {
    std::cerr << "uso: cliente CARTELLA [DATABASE]\n";
    return 2;
  }
  const std::string cartella = argv[1];
  HostTerminale host(cartella);
  ImpostaHost(&host);
  ImpostaCartellaModelli(CARTELLA_MODELLI);
  std::optional<AziendaPostgres> server;
  try {
    // A new company: the schema and the standard model in one go; an existing file (or a
    // database with a company in it) is refused.
    auto modello = [](Connessione& cn) { CaricaModello(cn, "standard"); };
    // Opened as a client opens it: the company's parameters are loaded for the process.
    clsDB db;
    if (argc == 3) {
      ParametriPostgres p;
      p.database = argv[2];
      p.host = Ambiente("VORN_PG_HOST");
      p.port = Ambiente("VORN_PG_PORT");
      p.user = Ambiente("VORN_PG_USER");
      p.password = Ambiente("VORN_PG_PASSWORD");
      CreaAziendaPostgres(p, modello)->Close();
      server.emplace().p = p;
      if (!db.ConnettiDatabasePostgreSQL(Valore(p.database), Valore(p.host + (p.port.empty() ? "" : ":" + p.port)),
                                         Valore(p.user), Valore(p.password)))
        return 1;
    } else {
      const std::string file = cartella + "/azienda.db";
      CreaAziendaSqlite(file, modello)->Close();
      if (!db.ConnettiDatabaseSQLite(Valore(file))) return 1;
    }
    db.cn->Esegui("INSERT INTO [Anagrafica Fornitori] ([Codice Cliente], [Ragione Sociale], [SottocontoApparten]) "
                  "VALUES (?, ?, ?)",
                  {Valore("F1"), Valore("Bianchi Forniture Spa"), Valore("1301001")});

    // A purchase invoice of 1.000,00 + VAT 22% = 1.220,00: the supplier, the cost, the VAT row.
    // Every row goes through SalvaRecord, which moves the balances with it.
    clsPrimaNota pn;
    pn.cn = db.cn;
    const std::string numero = Format(Valore(pn.GetNumeroNuovaRegistrazionePrimaNota()), "00000");
    const Data data = *Data::Crea(2024, 3, 10);
    auto riga = [&](const char* tipo, const char* n, const char* lato, const char* conto, const char* importo) {
      RecordValori r = {{"NumeroRegistrazione", Valore(numero)}, {"TipoRigaIvaNormale", Valore(tipo)},
                        {"NumRigaAVideo", Valore(n)},            {"DareAvere", Valore(lato)},
                        {"ContoPrimaNota", Valore(conto)},       {"DataRegistrazione", Valore(data)},
                        {"DataCompetenza", Valore(data)},        {"DataCompetenzaIVA", Valore(data)},
                        {"CodiceCausale", Valore("FTA")},        {"TipoRegistroIva", Valore("2")},
                        {"NumRegistroIva", Valore("01")},        {"NumeroDiProtocollo", Valore(1)},
                        {"NumeroDocumento", Valore(15)},         {"DataDocumento", Valore(data)},
                        {"TotaleDocumento", Valore(*Importo::DaTestoPunto("1220.00"))},
                        {"ImportoMovimento", Valore(*Importo::DaTestoPunto(importo))}};
      return r;
    };
    RecordValori fornitore = riga("", "001", "A", "1301001", "1220.00");
    fornitore["IndClienteFornitore"] = Valore("F");
    fornitore["CodClienteFornitore"] = Valore("F1");
    RecordValori costo = riga("", "002", "D", "6001001", "1000.00");
    RecordValori iva = riga("I", "001", "D", "0601001", "220.00");
    iva["Imponibile"] = Valore(*Importo::DaTestoPunto("1000.00"));
    iva["CodiceIva"] = Valore("022");
    iva["IndicatoreCliFor"] = Valore("F");
    iva["CodiceCliFor"] = Valore("F1");
    db.cn->BeginTrans();
    bool cancel = false;
    for (const RecordValori* r : {&fornitore, &costo, &iva})
      if (!pn.SalvaRecord(*r, Valore("cliente"), 0, cancel)) {
        db.cn->RollbackTrans();
        return 1;
      }
    db.cn->CommitTrans();

    // The supplier's card, printed to a file under the application's Temp, then shown.
    clsStampaMastrini stampa;
    stampa.cn = db.cn;
    ArgomentiStampaMastrini a;
    a.RagioneSocialeAzienda = "Azienda di prova";
    a.nomeFile = cartella + "/Temp/mastrino.txt";
    a.avar_DaData = Valore(*Data::Crea(2024, 1, 1));
    a.avar_AData = Valore(*Data::Crea(2024, 12, 31));
    a.avar_StampaSaldo = true;
    a.avar_RighePagina = 30;
    if (stampa.StampaListaMastrini(a, {{"1301001", "F", "F1"}}) != 1) return 1;
    std::ifstream in(a.nomeFile);
    std::cout << "Registrazione " << numero << " scritta; mastrino del fornitore F1:\n" << in.rdbuf();
    db.DisconnettiDatabase();
    return 0;
  } catch (const std::exception& e) {
    std::cerr << "errore: " << e.what() << "\n";
    return 1;
  }
}
