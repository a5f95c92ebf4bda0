// What vorn registro-iva shares with the demo and the benchmark: the register kinds by the
// names the command takes, the default name of a register's print, and the arguments of a print
// read from the company.
#pragma once
#include <memory>
#include <string>

#include "frame/Db.h"
#include "vat/clsRegistriIva.h"

namespace vorn::cli {

struct TipoRegistroCli {
  const char* opzione;      // "vendite", as --tipo takes it
  const char* tipo;         // TipoRegistroIva: "1"
  const char* nomeFile;     // "Vendite", in the default file name
  const char* descrizione;  // "vendite", in the messages
  bool stampa;              // false: the deferred-payment registers, which print nothing
};

// nullptr for a name or a code that is none of the kinds.
const TipoRegistroCli* TipoRegistroDaOpzione(const std::string& opzione);
const TipoRegistroCli* TipoRegistroDaCodice(const std::string& tipo);
// "vendite|acquisti|...", for the messages.
std::string ElencoTipiRegistro();

// "RegistroIvaVendite01_202401.txt": the kind, the register in two digits, year and month.
std::string NomeFileRegistroIva(const TipoRegistroCli& t, int registro, int anno, int mese);

// A prefix for the work tables of this process: "vorn" and the process id, so that two runs on
// one database never meet.
std::string PrefissoTabelleProcesso();

// The arguments of a print on this company, without the register, the period and the file: the
// company's VAT parameters (order of the registers, the supplier's document on purchases, the
// hauliers' VAT date, the accounting regime, the accounts of the simplified regime), its name
// and VAT number for the foot, a work-table prefix of this process; a trial of 72 lines a page.
ArgomentiRegistroIva ArgomentiRegistroIvaAzienda(const std::shared_ptr<Connessione>& cn);

}  // namespace vorn::cli
