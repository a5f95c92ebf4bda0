// What the screen and the print of a ledger card share: the period of its rows, its opening,
// and the journal rows in the order a card shows them.
#pragma once
#include <functional>
#include <optional>
#include <string>

#include "frame/Data.h"
#include "frame/Db.h"
#include "frame/Importo.h"
#include "frame/Valore.h"

namespace vorn {

class clsSaldiContabili;

// One card: a sub-account, or a client ("C") or supplier ("F") on it.
struct SchedaMastrino {
  std::string sottoconto;
  std::string ind;  // "C", "F", or empty for the whole sub-account
  std::string cod;
  bool CliFor() const { return ind == "C" || ind == "F"; }
};
SchedaMastrino SchedaDa(const Valore& sottoconto, const Valore& ind, const Valore& cod);

// The days of the rows; a missing bound leaves that end open. An open start with an unload
// behind it opens with the progressives of the unload and then shows every row the journal
// still holds, also those registered after the unload with an earlier competence date.
struct PeriodoMastrino {
  std::optional<Data> dal, al;
  std::optional<Data> scarico;  // the last unload, when the start is open
};
PeriodoMastrino PeriodoDa(const Valore& daData, const Valore& aData, const Valore& ultimoScarico);

// What stood on the card before its first day: the opening (progressive and period openings),
// and the debit and credit with the opening added to the side it stands on.
struct AperturaMastrino {
  Importo saldoIniziale;
  Importo dare, avere;
  Importo Saldo() const { return dare - avere; }
};
AperturaMastrino AperturaDa(clsSaldiContabili& saldi, const Valore& ultimoScarico, const PeriodoMastrino& periodo,
                            const SchedaMastrino& scheda);

// A journal row as a card shows it.
struct RigaMastrino {
  Valore DataCompetenza, DataRegistrazione, NumeroRegistrazione, TipoRigaIvaNormale, NumRigaAVideo, DareAvere;
  Valore CodiceCausale, DescrizioneCausale, DescrizioneSupplem;
  Valore DataDocumento, NumeroDocumento, SerieDocumento, NumeroDiProtocollo;
  Valore Valuta, SimboloValuta, ImportoInValuta, Cambio;
  Valore ValutaNota, DecimaliValuta;  // the currency's code and decimals in its table, Null when it has none
  Valore IndClienteFornitore, CodClienteFornitore, RagioneSociale;
  Importo ImportoMovimento;
  bool Avere() const { return DareAvere.TestoTrim() == "A"; }
  bool Dare() const { return DareAvere.TestoTrim() == "D"; }
};

// Streams the rows of the card in its order (competence date, entry, document date, number and
// series); `riga` returning false stops. Rows without a competence date belong to no period.
// While the rows stream the connection is busy: `riga` must not run statements of its own.
void ScorriRigheMastrino(Connessione& cn, const SchedaMastrino& scheda, const PeriodoMastrino& periodo,
                         const std::function<bool(const RigaMastrino&)>& riga);

// The mask of an amount in the row's currency: its decimals, the company's when the currency
// is not in its table.
std::string MascheraValuta(const RigaMastrino& r);

// Debit or credit by the sign: "D" above zero, "A" below, empty text at zero.
std::string LatoDareAvere(Importo saldo);
// Absolute value.
Importo ImportoAssoluto(Importo i);

}  // namespace vorn
