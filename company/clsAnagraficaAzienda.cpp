#include "company/clsAnagraficaAzienda.h"

#include <functional>
#include <utility>

#include "company/LetturaAzienda.h"
#include "frame/VornServer.h"

namespace vorn {

using namespace azienda;

namespace {

constexpr const char* kTabellaAzienda = "Tabella Azienda";
constexpr const char* kTabellaAziendaVorn = "Tabella Azienda Vorn";

// Columns of the identity save with the name of the argument that carries each.
const std::vector<std::pair<std::string, std::string>>& ColonneArgomenti() {
  static const std::vector<std::pair<std::string, std::string>> c = {
      {"Ragione Sociale", "Ragione_Sociale"},
      {"Rappresentante Azienda", "Rappresentante_Azienda"},
      {"Partita IVA", "Partita_IVA"},
      {"Codice Fiscale", "Codice_Fiscale"},
      {"Codice Nazione", "Codice_Nazione"},
      {"Codice Attività", "Codice_attività"},
      {"Attività Esercitata", "Attività_Esercitata"},
      {"Indirizzo", "Indirizzo"},
      {"Citta", "Citta"},
      {"Provincia", "Provincia"},
      {"Cap", "Cap"},
      {"Telefono", "Telefono"},
      {"Fax", "Fax"},
      {"Indirizzo esercizio", "Indirizzo_esercizio"},
      {"Citta esercizio", "Citta_esercizio"},
      {"Provincia esercizio", "Provincia_esercizio"},
      {"CAP esercizio", "Cap_esercizio"},
      {"Telefono esercizio", "Telefono_esercizio"},
      {"Fax esercizio", "Fax_esercizio"},
      {"Capitale Sociale", "Capitale_Sociale"},
      {"E-mail", "E_mail"},
      {"Sito Web", "Sito_Web"},
      {"IndTipoSoggettoFE", "IndTipoSoggettoFE"},
      {"CodiceUnivocoFE", "CodiceUnivocoFE"},
      {"PEC", "PEC"},
  };
  return c;
}

std::string Testo(Recordset& rs, const char* colonna, const char* predefinito = "") {
  return LeggiCampoAz(rs, colonna, Valore(predefinito)).Testo();
}

// Text outputs and the columns they come from.
using UsciteTesto = std::vector<std::pair<std::string*, const char*>>;

// Clears the outputs, then fills them from the row of a one-row table; `altre`, when passed,
// reads the further columns of the row found. False when the table has no row.
bool LeggiTesti(Connessione& cn, const char* tabella, const UsciteTesto& uscite,
                const std::function<void(Recordset&)>& altre = {}) {
  for (auto& [u, c] : uscite) u->clear();
  auto rs = ApriRigaUnica(cn, tabella);
  if (rs.Eof()) return false;
  for (auto& [u, c] : uscite) *u = Testo(rs, c);
  if (altre) altre(rs);
  return true;
}

}  // namespace

bool clsAnagraficaAzienda::LocalizzaRecord(Recordset& T, const Valore& clientID, long hWnd) {
  return LocalizzaRecordProtocollo(*cn, T, kTabellaAzienda, {}, {}, clientID, hWnd);
}

bool clsAnagraficaAzienda::LocalizzaRecordVorn(Recordset& T, const Valore& clientID, long hWnd) {
  return LocalizzaRecordProtocollo(*cn, T, kTabellaAziendaVorn, {}, {}, clientID, hWnd);
}

const std::vector<std::string>& clsAnagraficaAzienda::ColonneSalvaRecord() {
  static const std::vector<std::string> c = [] {
    std::vector<std::string> v;
    for (const auto& [colonna, argomento] : ColonneArgomenti()) v.push_back(colonna);
    return v;
  }();
  return c;
}

const std::vector<std::string>& clsAnagraficaAzienda::ColonneSalvaRecordVorn() {
  static const std::vector<std::string> c = {
      "IndPersonaFisica",   "IndirizzoSedeLegale", "CapSedeLegale",        "LocalitaSedeLegale",
      "ProvinciaSedeLegale", "TelefonoSedeLegale", "IndirizzoSedeAmmin",   "CapSedeAmmin",
      "LocalitaSedeAmmin",  "ProvinciaSedeAmmin",  "TelefonoSedeAmmin",    "SiglaSocieta",
      "DataCostituzione",   "StatoSocieta",        "NaturaGiuridica",      "SituazioneSocieta",
      "DataApprovazBilancio", "TermineApprovBilancio", "IndirizzoResidenza", "CapResidenza",
      "LocalitaResidenza",  "ProvinciaResidenza",  "TelefonoResidenza",    "Nome",
      "Cognome",            "DataDiNascita",       "Sesso",                "LuogoDiNascita",
      "ProvinciaDiNascita", "ObbligoIscrizioneREA", "ProvinciaREA",        "NumeroIscrizioneREA",
      "SocioUnico",         "RegimeFiscaleFattPA"};
  return c;
}

bool clsAnagraficaAzienda::SalvaRecord(const std::map<std::string, Valore>& valori, const Valore& clientID,
                                       long hWnd, bool& Cancel) {
  // Argument names become column names; the note has no column and is dropped.
  std::map<std::string, Valore> perColonna;
  for (const auto& [nome, valore] : valori) {
    if (UgualeNoCase(nome, "Note")) continue;
    std::string colonna = nome;
    for (const auto& [c, a] : ColonneArgomenti())
      if (UgualeNoCase(nome, a)) colonna = c;
    perColonna[colonna] = valore;
  }
  return SalvaRigaUnica(*cn, kTabellaAzienda, ColonneSalvaRecord(), perColonna, clientID, hWnd, Cancel);
}

bool clsAnagraficaAzienda::SalvaRecordVorn(const std::map<std::string, Valore>& valori, const Valore& clientID,
                                           long hWnd, bool& Cancel) {
  return SalvaRigaUnica(*cn, kTabellaAziendaVorn, ColonneSalvaRecordVorn(), valori, clientID, hWnd, Cancel);
}

std::string clsAnagraficaAzienda::GetRagioneSocialeAzienda() {
  try {
    Recordset rs = LeggiProtetto(*cn, "SELECT [Tabella Azienda].* FROM [Tabella Azienda] LIMIT 1;");
    if (rs.Eof()) return {};
    return Testo(rs, "Ragione Sociale");
  } catch (const std::exception&) {
    return "Azienda non installata.";
  }
}

std::string clsAnagraficaAzienda::GetPartitaIVAAzienda() {
  auto rs = ApriRigaUnica(*cn, kTabellaAzienda);
  return rs.Eof() ? std::string() : Testo(rs, "Partita Iva");
}

std::string clsAnagraficaAzienda::GetNazioneAzienda() {
  auto rs = ApriRigaUnica(*cn, kTabellaAzienda);
  return rs.Eof() ? std::string() : Testo(rs, "Codice Nazione");
}

bool clsAnagraficaAzienda::GetDatiFiscaliAzienda(std::string& Ragione_Sociale, std::string& Indirizzo_esercizio,
                                                 std::string& CAP_Ubicazione_Eserc, std::string& Localita_Esercizio,
                                                 std::string& Provincia_esercizio, std::string& Indirizzo_Domicilio,
                                                 std::string& CAP_DomicilioFiscale, std::string& Localita_Domicilio,
                                                 std::string& Provincia_Domicilio, std::string& Codice_Fiscale,
                                                 std::string& Partita_IVA) {
  return LeggiTesti(*cn, kTabellaAzienda,
                    {{&Ragione_Sociale, "Ragione Sociale"},
                     {&Indirizzo_esercizio, "Indirizzo esercizio"},
                     {&CAP_Ubicazione_Eserc, "CAP esercizio"},
                     {&Localita_Esercizio, "Citta esercizio"},
                     {&Provincia_esercizio, "Provincia esercizio"},
                     {&Indirizzo_Domicilio, "Indirizzo"},
                     {&CAP_DomicilioFiscale, "Cap"},
                     {&Localita_Domicilio, "Citta"},
                     {&Provincia_Domicilio, "Provincia"},
                     {&Codice_Fiscale, "Codice Fiscale"},
                     {&Partita_IVA, "Partita Iva"}});
}

bool clsAnagraficaAzienda::GetDatiFiscaliNumerazioneFogli(
    std::string& Ragione_Sociale, std::string& Indirizzo_Domicilio, std::string& CAP_DomicilioFiscale,
    std::string& Localita_Domicilio, std::string& Provincia_Domicilio, std::string& Codice_Fiscale,
    std::string& Partita_IVA, std::string& IndPersonaFisica, std::string& IndirizzoSedeLegale,
    std::string& CapSedeLegale, std::string& LocalitaSedeLegale, std::string& ProvinciaSedeLegale) {
  IndPersonaFisica = "0";
  LeggiTesti(*cn, kTabellaAziendaVorn,
             {{&IndirizzoSedeLegale, "IndirizzoSedeLegale"},
              {&CapSedeLegale, "CapSedeLegale"},
              {&LocalitaSedeLegale, "LocalitaSedeLegale"},
              {&ProvinciaSedeLegale, "ProvinciaSedeLegale"}},
             [&](Recordset& rv) { IndPersonaFisica = Testo(rv, "IndPersonaFisica", "0"); });
  return LeggiTesti(*cn, kTabellaAzienda,
                    {{&Ragione_Sociale, "Ragione Sociale"},
                     {&Indirizzo_Domicilio, "Indirizzo"},
                     {&CAP_DomicilioFiscale, "Cap"},
                     {&Localita_Domicilio, "Citta"},
                     {&Provincia_Domicilio, "Provincia"},
                     {&Codice_Fiscale, "Codice Fiscale"},
                     {&Partita_IVA, "Partita Iva"}});
}

bool clsAnagraficaAzienda::GetDatiFiscaliAllegatiCliFor(
    std::string& Codice_Fiscale, std::string& Partita_IVA, std::string& Ragione_Sociale, std::string& IndPersonaFisica,
    std::string& Nome, std::string& Cognome, std::string& Sesso, Valore& DataNascita, std::string& LuogoDiNascita,
    std::string& ProvinciaDiNascita, std::string& LocalitaSedeLegale, std::string& ProvinciaSedeLegale,
    std::string& Telefono, std::string& Fax) {
  IndPersonaFisica = "0";
  std::string sesso = "1";
  DataNascita = Valore();
  LeggiTesti(*cn, kTabellaAziendaVorn,
             {{&Nome, "Nome"},
              {&Cognome, "Cognome"},
              {&LuogoDiNascita, "LuogoDiNascita"},
              {&ProvinciaDiNascita, "ProvinciaDiNascita"},
              {&LocalitaSedeLegale, "LocalitaSedeLegale"},
              {&ProvinciaSedeLegale, "ProvinciaSedeLegale"}},
             [&](Recordset& rv) {
               IndPersonaFisica = Testo(rv, "IndPersonaFisica", "0");
               sesso = Testo(rv, "Sesso", "1");
               DataNascita = LeggiCampoAz(rv, "DataDiNascita", Valore());
             });
  Sesso = sesso == "0" ? "F" : "M";
  return LeggiTesti(*cn, kTabellaAzienda,
                    {{&Codice_Fiscale, "Codice Fiscale"},
                     {&Partita_IVA, "Partita Iva"},
                     {&Ragione_Sociale, "Ragione Sociale"},
                     {&Telefono, "Telefono"},
                     {&Fax, "Fax"}});
}

bool clsAnagraficaAzienda::IsPersonaFisica() {
  auto rs = ApriRigaUnica(*cn, kTabellaAziendaVorn);
  if (rs.Eof()) return false;
  return Testo(rs, "IndPersonaFisica", "0") == "1";
}

bool clsAnagraficaAzienda::GetDatiAzienda(std::string& Ragione_Sociale, std::string& Partita_IVA,
                                          std::string& Indirizzo, std::string& Citta, std::string& Provincia,
                                          std::string& Cap, std::string& Codice_Nazione,
                                          std::string& Iscrizione_Tribunale, std::string& Iscrizione_CCIAA_riforma,
                                          std::string& Codice_Fiscale, std::string& Telefono, std::string& Fax,
                                          double& Capitale_Sociale, std::string& Email_Azienda,
                                          std::string& Web_Azienda) {
  Capitale_Sociale = 0;
  return LeggiTesti(*cn, kTabellaAzienda,
                    {{&Ragione_Sociale, "Ragione Sociale"},
                     {&Partita_IVA, "Partita Iva"},
                     {&Indirizzo, "Indirizzo"},
                     {&Citta, "Citta"},
                     {&Provincia, "Provincia"},
                     {&Cap, "Cap"},
                     {&Codice_Nazione, "Codice Nazione"},
                     {&Iscrizione_Tribunale, "Iscrizione Tribunale"},
                     {&Iscrizione_CCIAA_riforma, "Iscrizione CCIAA riforma"},
                     {&Codice_Fiscale, "Codice Fiscale"},
                     {&Telefono, "Telefono"},
                     {&Fax, "Fax"},
                     {&Email_Azienda, "E-mail"},
                     {&Web_Azienda, "Sito Web"}},
                    [&](Recordset& rs) {
                      Capitale_Sociale = DoubleDi(LeggiCampoAz(rs, "Capitale Sociale", Valore(0.0)));
                    });
}

bool clsAnagraficaAzienda::GetDatiPersonaFisicaAzienda(std::string& IndPersonaFisica, std::string& Nome,
                                                       std::string& Cognome, Valore& DataDiNascita,
                                                       std::string& Sesso, std::string& LuogoDiNascita,
                                                       std::string& ProvinciaDiNascita) {
  IndPersonaFisica = "0";
  Sesso = "1";
  DataDiNascita = Valore();
  return LeggiTesti(*cn, kTabellaAziendaVorn,
                    {{&Nome, "Nome"},
                     {&Cognome, "Cognome"},
                     {&LuogoDiNascita, "LuogoDiNascita"},
                     {&ProvinciaDiNascita, "ProvinciaDiNascita"}},
                    [&](Recordset& rs) {
                      IndPersonaFisica = Testo(rs, "IndPersonaFisica", "0");
                      DataDiNascita = LeggiCampoAz(rs, "DataDiNascita", Valore());
                      Sesso = Testo(rs, "Sesso", "1");
                    });
}

bool clsAnagraficaAzienda::GetDatiREAAzienda(bool& ObbligoIscrizioneREA, std::string& ProvinciaREA,
                                             std::string& NumeroIscrizioneREA, bool& SocioUnico,
                                             std::string& RegimeFiscaleFattPA, std::string& StatoSocieta,
                                             std::string& NaturaGiuridica, std::string& SituazioneSocieta) {
  ObbligoIscrizioneREA = SocioUnico = false;
  return LeggiTesti(*cn, kTabellaAziendaVorn,
                    {{&ProvinciaREA, "ProvinciaREA"},
                     {&NumeroIscrizioneREA, "NumeroIscrizioneREA"},
                     {&RegimeFiscaleFattPA, "RegimeFiscaleFattPA"},
                     {&StatoSocieta, "StatoSocieta"},
                     {&NaturaGiuridica, "NaturaGiuridica"},
                     {&SituazioneSocieta, "SituazioneSocieta"}},
                    [&](Recordset& rs) {
                      ObbligoIscrizioneREA = LeggiCampoAz(rs, "ObbligoIscrizioneREA", Valore(false)).Vero();
                      SocioUnico = LeggiCampoAz(rs, "SocioUnico", Valore(false)).Vero();
                    });
}

}  // namespace vorn
