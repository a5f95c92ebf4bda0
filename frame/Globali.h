// Process-wide values that connecting loads from the company parameters. One connected
// company per process: a second connection replaces them.
#pragma once
#include <memory>
#include <string>

#include "frame/Valore.h"

namespace vorn {

class Connessione;

struct Globali {
  std::string IndSqlServer;  // "1" on PostgreSQL, "0" on SQLite, empty until loaded
  std::shared_ptr<Connessione> ConnessioneGlobale;
  std::string ValutaDiConto = "1";
  std::string SimboloValutaConto = "EUR";
  std::string DescrizioneValutaConto = "EURO";
  int DecimaliImporti = 2;
  std::string CodiceValutaLire = "16";
  std::string CodiceValutaEuro = "06";
  double CambioFissoLireEuro = 1936.27;
  int DecimaliCambi = 5;
  int DecimaliQuantita = 3;
  int DecimaliPrezziValutaConto = 5;
  Valore ContatorePagina;
};

Globali& G();
// Back to the values a process starts with (tests use it between cases).
void AzzeraGlobali();

}  // namespace vorn
