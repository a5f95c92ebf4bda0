// A new company's archives from a model company (the data folder of interchange/modelli): the
// chart of accounts, the causals, the parameters and account references, the asset causals and
// categories, each copied by an operation of its own, and the few values that tie them together
// (the control sub-accounts of clients and suppliers, the default counter-accounts, the fixed
// amounts, the accounting regime). clsGestioneAziende tells whether a company's chart and
// causals are still empty, so that the client can ask before a copy replaces them.
#pragma once
#include <memory>
#include <string>
#include <vector>

#include "frame/Db.h"
#include "frame/Host.h"
#include "frame/Importo.h"
#include "frame/Valore.h"
#include "interchange/ModelloStandard.h"

namespace vorn {

class clsCaricaTabelleStandard {
 public:
  // The origin: a model by name ("standard", "semplificato"); ErroreModello when there is none.
  void ConnettiDatabaseOrigine(const std::string& modello);
  // The destination: the company's SQLite file (it has no password: one given is refused), or
  // a connection the caller already has, on either engine.
  void ConnettiDatabaseDestinazione(const std::string& file, const std::string& password = {});
  void ConnettiDatabaseDestinazione(std::shared_ptr<Connessione> cn);
  void DisconnettiDatabase();

  // Each copy replaces every row of the company's table with the model's (with `semplificati`,
  // the model's simplified chart or causals into the ordinary table). A table that the model
  // leaves empty is told in a box, the company's stays as it was and the result is false.
  bool CaricaPianoDeiContiStandard(IForm* objFormAttiva, bool semplificati);
  bool CaricaCausaliContabiliStandard(IForm* objFormAttiva, bool semplificati);
  bool CaricaParametriContabiliStandard(IForm* objFormAttiva);
  bool CaricaRiferimentiContabiliStandard(IForm* objFormAttiva);
  bool CaricaCausaliCespitiStandard(IForm* objFormAttiva);
  bool CaricaCespitiCategorieStandard(IForm* objFormAttiva);
  // The asset columns only, in the company's existing row (one is made when there is none).
  bool CaricaParametriCespitiStandard(IForm* objFormAttiva);
  bool CaricaRiferimentiCespitiStandard(IForm* objFormAttiva);

  // Every table of the model in its order, through the copies above where one exists, in one
  // transaction: what vorn crea-azienda loads. Every file is read before the company is touched.
  std::vector<EsitoTabellaModello> CaricaModelloCompleto(IForm* objFormAttiva);

  // The control sub-account of every client (supplier); recordsAffected the rows changed.
  bool SetSottocontoStandardAClienti(const Valore& SottocontoApparten, long& recordsAffected);
  bool SetSottocontoStandardAFornitori(const Valore& SottocontoApparten, long& recordsAffected);
  // The five accounts of the company's profile.
  bool SetSottocontiStandard(const Valore& SottocontoClienti, const Valore& SottocontoFornitori,
                             const Valore& SottocontoBanca, const Valore& Contropartita_costo,
                             const Valore& Contropartita_ricavo);
  bool GetSottocontiStandard(Valore& SottocontoClienti, Valore& SottocontoFornitori, Valore& SottocontoBanca,
                             Valore& Contropartita_costo, Valore& Contropartita_ricavo);
  // A counter-account for the entry screens, when its code is not there yet.
  bool InsertContropartiteStandard(const Valore& Codice_sottoconto, const Valore& Descrizione_sottoconto);
  std::string GetDesSottocontoStandard(const Valore& sottoconto);
  bool GetImportiFissiVornStandard(double& PercCalcoloAcconto, Importo& ImportoMinAcconto, Importo& ImportoMinLiqIva,
                                   double& PercMaggTrim, double& PercForfSemp);
  bool SetImportiFissiVornStandard(double PercCalcoloAcconto, Importo ImportoMinAcconto, Importo ImportoMinLiqIva,
                                   double PercMaggTrim, double PercForfSemp);
  // The entry screens take their counter-accounts from the company's own archive.
  bool SetArchivioContropartiteVorn();
  bool SetRegimeContabile(const Valore& regimeContabile);

 private:
  std::string modello_;
  std::shared_ptr<Connessione> cn_;
  Connessione& Destinazione();
  const std::string& Origine();
  bool Copia(IForm* form, const std::string& tabella, const std::string& destinazione);
  bool CopiaColonne(IForm* form, const std::string& tabella, const std::vector<std::string>& colonne,
                    const std::string& titolo);
};

class clsGestioneAziende {
 public:
  // True when the company of the SQLite file (no password) has no sub-account, or no causal.
  bool PianoDeiContiVuotoSQLite(const std::string& file, const std::string& password = {});
  bool CausaliContabiliVuoteSQLite(const std::string& file, const std::string& password = {});
  // The same on a connection of either engine.
  static bool PianoDeiContiVuoto(Connessione& cn);
  static bool CausaliContabiliVuote(Connessione& cn);
};

}  // namespace vorn
