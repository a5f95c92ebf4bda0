// The company's identity: [Tabella Azienda] (name, addresses, fiscal codes) and
// [Tabella Azienda Vorn] (registered data for the fiscal statements), both of one row.
#pragma once
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "frame/ConnessioneClasse.h"
#include "frame/Db.h"
#include "frame/Valore.h"

namespace vorn {

class clsAnagraficaAzienda {
 public:
  ConnessioneClasse cn;

  // Open, stamped recordset of the row; true when there is one.
  bool LocalizzaRecord(Recordset& T, const Valore& clientID, long hWnd);
  bool LocalizzaRecordVorn(Recordset& T, const Valore& clientID, long hWnd);

  // Saves the identity found in `valori`, keyed by column name ("Ragione Sociale",
  // "Partita IVA", "Codice Attività", "E-mail", ...) or by the argument's name
  // ("Ragione_Sociale", "E_mail", ...); "Note" is accepted and not stored. See ColonneSalvaRecord.
  bool SalvaRecord(const std::map<std::string, Valore>& valori, const Valore& clientID, long hWnd, bool& Cancel);
  // The columns of [Tabella Azienda Vorn] (ColonneSalvaRecordVorn).
  bool SalvaRecordVorn(const std::map<std::string, Valore>& valori, const Valore& clientID, long hWnd, bool& Cancel);
  // The columns each save writes, in their order.
  static const std::vector<std::string>& ColonneSalvaRecord();
  static const std::vector<std::string>& ColonneSalvaRecordVorn();

  // The company's name; empty with no row; "Azienda non installata." when the table cannot be
  // read at all (no message).
  std::string GetRagioneSocialeAzienda();
  std::string GetPartitaIVAAzienda();
  std::string GetNazioneAzienda();

  // The outputs below are emptied first; the result is true when [Tabella Azienda] has a row.
  bool GetDatiFiscaliAzienda(std::string& Ragione_Sociale, std::string& Indirizzo_esercizio,
                             std::string& CAP_Ubicazione_Eserc, std::string& Localita_Esercizio,
                             std::string& Provincia_esercizio, std::string& Indirizzo_Domicilio,
                             std::string& CAP_DomicilioFiscale, std::string& Localita_Domicilio,
                             std::string& Provincia_Domicilio, std::string& Codice_Fiscale, std::string& Partita_IVA);
  bool GetDatiFiscaliNumerazioneFogli(std::string& Ragione_Sociale, std::string& Indirizzo_Domicilio,
                                      std::string& CAP_DomicilioFiscale, std::string& Localita_Domicilio,
                                      std::string& Provincia_Domicilio, std::string& Codice_Fiscale,
                                      std::string& Partita_IVA, std::string& IndPersonaFisica,
                                      std::string& IndirizzoSedeLegale, std::string& CapSedeLegale,
                                      std::string& LocalitaSedeLegale, std::string& ProvinciaSedeLegale);
  // Sesso comes as "F" (stored "0") or "M"; DataNascita is a date or empty.
  bool GetDatiFiscaliAllegatiCliFor(std::string& Codice_Fiscale, std::string& Partita_IVA,
                                    std::string& Ragione_Sociale, std::string& IndPersonaFisica, std::string& Nome,
                                    std::string& Cognome, std::string& Sesso, Valore& DataNascita,
                                    std::string& LuogoDiNascita, std::string& ProvinciaDiNascita,
                                    std::string& LocalitaSedeLegale, std::string& ProvinciaSedeLegale,
                                    std::string& Telefono, std::string& Fax);
  bool IsPersonaFisica();
  bool GetDatiAzienda(std::string& Ragione_Sociale, std::string& Partita_IVA, std::string& Indirizzo,
                      std::string& Citta, std::string& Provincia, std::string& Cap, std::string& Codice_Nazione,
                      std::string& Iscrizione_Tribunale, std::string& Iscrizione_CCIAA_riforma,
                      std::string& Codice_Fiscale, std::string& Telefono, std::string& Fax, double& Capitale_Sociale,
                      std::string& Email_Azienda, std::string& Web_Azienda);
  // From [Tabella Azienda Vorn]; true when it has a row. Sesso stays as stored.
  bool GetDatiPersonaFisicaAzienda(std::string& IndPersonaFisica, std::string& Nome, std::string& Cognome,
                                   Valore& DataDiNascita, std::string& Sesso, std::string& LuogoDiNascita,
                                   std::string& ProvinciaDiNascita);
  bool GetDatiREAAzienda(bool& ObbligoIscrizioneREA, std::string& ProvinciaREA, std::string& NumeroIscrizioneREA,
                         bool& SocioUnico, std::string& RegimeFiscaleFattPA, std::string& StatoSocieta,
                         std::string& NaturaGiuridica, std::string& SituazioneSocieta);
};

}  // namespace vorn
