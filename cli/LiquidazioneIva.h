// What vorn liquidazione-iva and vorn acconto-iva share with the demo: the arguments of a
// settlement read from the company, the default name of its print, and its outcome (and the
// advance's) told in one line.
#pragma once
#include <memory>
#include <string>

#include "frame/Db.h"
#include "vat/clsLiquidazioneIva.h"

namespace vorn::cli {

// The arguments of a settlement on this company, without the period and the file: the registers
// it takes (NumRegIVA...Liq), pro-rata, the hauliers' VAT date, the book whose sheets a
// definitive print numbers, the regime of the company's periodicity ("T" for a quarterly
// company, "M" otherwise), its name and VAT number for the foot, a work-table prefix of this
// process; a simulation of 72 lines a page.
ArgomentiLiquidazioneIva ArgomentiLiquidazioneIvaAzienda(const std::shared_ptr<Connessione>& cn);

// True when the company settles its VAT every quarter (PeriodicitaLiquidazione "1").
bool LiquidazioneTrimestraleAzienda(const std::shared_ptr<Connessione>& cn);

// "LiquidazioneIva_202401.txt" for a month (13: the annual summary), "LiquidazioneIva_2024T1.txt"
// for a quarter.
std::string NomeFileLiquidazioneIva(int anno, int mese, bool trimestre);

// The outcome in one line: "IVA a debito: 1.234,56, da versare: 1.234,56", a debt not above the
// minimum payment "IVA a debito: 20,00, da versare: 0,00 (non supera il minimo: riportata al
// periodo successivo)", a credit "IVA a credito: 345,67"; a quarter's surcharge is told apart
// ("IVA a debito: 1.000,00, maggiorazione trimestrale: 10,00, da versare: 1.010,00").
std::string RigaEsitoLiquidazioneIva(const EsitoLiquidazioneIva& e);

// The December advance in one line: "Acconto IVA 2025: 1.086,41 (88,00% di 1.234,56)", or
// "Acconto IVA 2025 non dovuto: 88,00 (88,00% di 100,00) non raggiunge il minimo di 103,29".
std::string RigaEsitoAccontoIva(int anno, const AccontoIvaStorico& a);

}  // namespace vorn::cli
