// What vorn libro-giornale shares with the demo and the benchmark: the default name of a
// month's print and the arguments of a print read from the company.
#pragma once
#include <memory>
#include <string>

#include "frame/Db.h"
#include "ledger/clsLibroGiornale.h"

namespace vorn::cli {

// "LibroGiornale_202401.txt": year and month.
std::string NomeFileLibroGiornale(int anno, int mese);

// The arguments of a print on this company, without the period and the file: its name and VAT
// number for the foot, the sheets numbered; a trial of 72 lines a page.
ArgomentiLibroGiornale ArgomentiLibroGiornaleAzienda(const std::shared_ptr<Connessione>& cn);

}  // namespace vorn::cli
