// What the balance prints of the chart and of the clients and suppliers share: the six amounts of
// a line, the line and page layout of their text form, and the rows of their report tables.
#pragma once
#include <array>
#include <optional>
#include <string>
#include <vector>

#include "frame/Data.h"
#include "frame/Db.h"
#include "frame/Importo.h"
#include "frame/Valore.h"

namespace vorn {

// One line: a code (a sub-account, account or group; a partner's code) with its balances.
struct RigaSaldiArchivio {
  std::string codice, descrizione;
  Importo saldoIniziale;            // progressive opening plus the period's opening, signed
  Importo dareProgressivo, avereProgressivo;  // of the last unload
  Importo darePeriodo, averePeriodo;
  Importo saldoAttuale;             // the signed total
  bool Zero() const {
    return saldoIniziale.Zero() && dareProgressivo.Zero() && avereProgressivo.Zero() && darePeriodo.Zero() &&
           averePeriodo.Zero() && saldoAttuale.Zero();
  }
  void Somma(const RigaSaldiArchivio& r) {
    saldoIniziale += r.saldoIniziale;
    dareProgressivo += r.dareProgressivo;
    avereProgressivo += r.avereProgressivo;
    darePeriodo += r.darePeriodo;
    averePeriodo += r.averePeriodo;
    saldoAttuale += r.saldoAttuale;
  }
};

namespace stampa_saldi {

// The start a print asks the balances from: a start that the last unload reaches into is left
// open, so that the months unloaded come in as the progressives (the journal no longer holds
// them); any other start as it is.
Valore InizioSaldi(const Valore& daData, const Valore& ultimoScarico);
// "Codice Ragione sociale                Saldo iniziale ...": the first two columns' heading
// (38 characters) and the amounts' heading.
std::string Intestazione(const std::string& colonne);
// A line of the text form: code and description in 38 characters, then the six amounts.
std::string Linea(const RigaSaldiArchivio& r, int larghezzaCodice);
// "T O T A L E" and the sums.
std::string LineaTotale(const RigaSaldiArchivio& t);
// Lays `righe` out on pages of `nomeFile` (FileStampa): the head line `titolo` + company +
// date with the page stamp, the heading, a foot with who produced the print.
void ScriviStampa(const std::vector<std::string>& righe, const std::string& nomeFile, int righePagina,
                  const std::string& titolo, const std::string& azienda, const Data& data,
                  const std::string& intestazione, const std::string& AzRagSoc, const std::string& AzParIva);
// The rows of a report table ([Elaborazione stampa contabile piano conti] or [... clifor], whose
// code column is `colonnaCodice`) for `clientName`, its old rows deleted first.
void ScriviTabella(Connessione& cn, const std::string& tabella, const std::string& colonnaCodice,
                   const std::string& clientName, const std::vector<RigaSaldiArchivio>& righe);

}  // namespace stampa_saldi
}  // namespace vorn
