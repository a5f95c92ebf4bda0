// Balances of a sub-account, or of a client or supplier on a sub-account, over a period or at a
// date. The running columns of the balance tables know only the present: this class reads the
// journal itself, by competence date, and adds what the last unload took out of it (the
// progressive columns of [Saldi Piano Dei Conti] and of the client and supplier tables).
//
// In the journal half, position 3 of [Stringa10indicatori] splits the rows: "1" is an opening
// (debit plus, credit minus), "0", "2", "" and " " are movements of the period; a row without
// the string counts as a movement. Signs: debit positive. A missing row means zero: nothing here
// reports an error of its own.
#pragma once
#include <memory>
#include <optional>
#include <string>

#include "frame/ConnessioneClasse.h"
#include "frame/Data.h"
#include "frame/Db.h"
#include "frame/Importo.h"
#include "frame/Valore.h"

namespace vorn {

class clsProgAzienda;

class clsSaldiContabili {
 public:
  ConnessioneClasse cn;

  // The opening, debit and credit of the period [daData, aData]. The result is true; bounds that
  // are not dates give zeros.
  bool GetSaldiPeriodoSottoconto(const Valore& daData, const Valore& aData, const Valore& avar_Sottoconto,
                                 Importo& InizialePeriodo, Importo& DarePeriodo, Importo& AverePeriodo);
  // The same, for the rows of one client ("C") or supplier ("F") on the sub-account.
  bool GetSaldiPeriodoCliFor(const Valore& daData, const Valore& aData, const Valore& avar_Sottoconto,
                             const Valore& avar_IndCliFor, const Valore& avar_CodCliFor, Importo& InizialePeriodoCliFor,
                             Importo& DarePeriodoCliFor, Importo& AverePeriodoCliFor);

  // The highest and lowest competence date of the journal, or empty text when it has none.
  Valore GetDataMassimaCompetenzaPrimaNota();
  Valore GetDataMinimaCompetenzaPrimaNota();

  // The progressives of the last unload; zeros and false when the account has no balance row.
  bool GetProgressiviUltimoScaricoSottoconto(const Valore& avar_Sottoconto, Importo& SaldoInizialeProgr,
                                             Importo& DareProgressivo, Importo& AvereProgressivo);
  // The same from the client's or supplier's master row, chosen by its control sub-account and
  // code; an indicator other than "C" and "F", or no row, gives zeros and false.
  bool GetProgressiviUltimoScaricoCliFor(const Valore& avar_Sottoconto, const Valore& avar_IndCliFor,
                                         const Valore& avar_CodCliFor, Importo& SaldoInizProgress,
                                         Importo& SaldoDareProgress, Importo& SaldoAvereProgress);
  // Opening + debit - credit of the last unload.
  Importo GetSaldoUltimoScaricoSottoconto(const Valore& avar_Sottoconto);
  Importo GetSaldoUltimoScaricoCliFor(const Valore& avar_Sottoconto, const Valore& avar_IndCliFor,
                                      const Valore& avar_CodCliFor);

  // The signed balance at a date (the last date of the journal when `avar_AData` is not a
  // date): the unload's balance plus debit minus credit of every journal row up to it, openings
  // included as plain movements.
  Importo GetSaldoSottocontoAData(const Valore& avar_AData, const Valore& avar_Sottoconto);
  Importo GetSaldoSottocontoCliForAData(const Valore& avar_AData, const Valore& avar_Sottoconto,
                                        const Valore& avar_IndCliFor, const Valore& avar_CodCliFor);

  // The full statement of an account over a period that may start anywhere, from the last
  // unload of the journal that `objProgAzienda` tells.
  //  - a start the day after the unload joins it: the progressives are fetched;
  //  - no start, with an unload: the progressives are fetched and `avar_DaData` becomes the day
  //    after the unload, "dd/mm/yyyy", for the caller too;
  //  - any other start: the progressives are zero.
  // The period runs from the start (the journal's first date when none) to `avar_AData` (its
  // last date when none); a period that ends before it starts gives zero period amounts. A
  // period that joins the unload also takes the journal's rows dated before its start: they
  // were registered after the unload, which left them in the journal. So the result at a date
  // is always that of GetSaldoSottocontoAData.
  // The result is the signed total of the six outputs.
  Importo GetSaldiADataSottoconto(clsProgAzienda& objProgAzienda, Valore& avar_DaData, const Valore& avar_AData,
                                  const Valore& avar_Sottoconto, Importo& SaldoInizialeProgr, Importo& DareProgressivo,
                                  Importo& AvereProgressivo, Importo& InizialePeriodo, Importo& DarePeriodo,
                                  Importo& AverePeriodo);
  Importo GetSaldiADataCliFor(clsProgAzienda& objProgAzienda, Valore& avar_DaData, const Valore& avar_AData,
                              const Valore& avar_Sottoconto, const Valore& avar_IndCliFor,
                              const Valore& avar_CodCliFor, Importo& SaldoInizialeProgr, Importo& DareProgressivo,
                              Importo& AvereProgressivo, Importo& InizialePeriodo, Importo& DarePeriodo,
                              Importo& AverePeriodo);
  // The same with the date of the last unload already read (a date, or anything else for none):
  // for a caller that asks many balances at once.
  Importo GetSaldiADataSottoconto(const Valore& UltimoScarico, Valore& avar_DaData, const Valore& avar_AData,
                                  const Valore& avar_Sottoconto, Importo& SaldoInizialeProgr, Importo& DareProgressivo,
                                  Importo& AvereProgressivo, Importo& InizialePeriodo, Importo& DarePeriodo,
                                  Importo& AverePeriodo);
  Importo GetSaldiADataCliFor(const Valore& UltimoScarico, Valore& avar_DaData, const Valore& avar_AData,
                              const Valore& avar_Sottoconto, const Valore& avar_IndCliFor,
                              const Valore& avar_CodCliFor, Importo& SaldoInizialeProgr, Importo& DareProgressivo,
                              Importo& AvereProgressivo, Importo& InizialePeriodo, Importo& DarePeriodo,
                              Importo& AverePeriodo);

 private:
  // The rows a balance reads: one sub-account, and optionally one partner on it.
  struct Filtro {
    std::string sottoconto;
    std::optional<std::string> ind, cod;
  };
  static Filtro FiltroSottoconto(const Valore& sottoconto);
  static Filtro FiltroCliFor(const Valore& sottoconto, const Valore& ind, const Valore& cod);
  void SaldiPeriodo(const Valore& daData, const Valore& aData, const Filtro& f, Importo& iniziale, Importo& dare,
                    Importo& avere);
  bool Progressivi(const Filtro& f, Importo& iniziale, Importo& dare, Importo& avere);
  Importo SaldoAData(const Valore& aData, const Filtro& f);
  Importo SaldiAData(const Valore& ultimoScarico, Valore& daData, const Valore& aData, const Filtro& f,
                     Importo& inizialeProgr, Importo& dareProgr, Importo& avereProgr, Importo& inizialePeriodo,
                     Importo& darePeriodo, Importo& averePeriodo);
  Valore DataEstrema(const char* funzione);
};

// A value as a date with the century put right (years above 2080 go back a hundred years), or
// nullopt when it is not a date.
std::optional<Data> DataCorretta(const Valore& v);

}  // namespace vorn
