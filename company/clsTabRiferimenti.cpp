#include "company/clsTabRiferimenti.h"

#include <algorithm>
#include <iterator>
#include <string_view>
#include <vector>

#include "company/LetturaAzienda.h"
#include "frame/Catalogo.h"
#include "frame/VornServer.h"

namespace vorn {

using namespace azienda;

namespace {

constexpr const char* kRiferimenti = "Riferimenti Contabili";
constexpr const char* kTabellaAzienda = "Tabella Azienda";

// What a column reads as when null or without the row: the way accessory revenues post
// defaults to one account.
Valore Predefinito(std::string_view colonna) {
  return Valore(UgualeNoCase(colonna, "TipoContabRicAcc") ? "0" : "");
}

// One output of a group getter and the column it comes from.
struct Uscita {
  Valore* v;
  const char* colonna;
};
using Uscite = std::vector<Uscita>;

// The outputs of a group: [Tabella Azienda] first when the group needs it, then [Riferimenti
// Contabili]. Nothing is handed out until both rows are read: a missing row leaves every output
// at its default and gives false.
bool LeggiGruppo(Connessione& cn, const Uscite& azienda, const Uscite& riferimenti) {
  for (const Uscite* g : {&azienda, &riferimenti})
    for (const auto& u : *g) *u.v = Predefinito(u.colonna);
  std::vector<Valore> letti;
  letti.reserve(azienda.size() + riferimenti.size());
  if (!azienda.empty()) {
    Recordset rs = ApriRigaUnica(cn, kTabellaAzienda);
    if (rs.Eof()) return false;
    for (const auto& u : azienda) letti.push_back(LeggiCampoAz(rs, u.colonna, Predefinito(u.colonna)));
    rs.Close();
  }
  Recordset rs = ApriRigaUnica(cn, kRiferimenti);
  if (rs.Eof()) return false;
  for (const auto& u : riferimenti) letti.push_back(LeggiCampoAz(rs, u.colonna, Predefinito(u.colonna)));
  rs.Close();
  size_t i = 0;
  for (const Uscite* g : {&azienda, &riferimenti})
    for (const auto& u : *g) *u.v = letti[i++];
  return true;
}

// One column of a one-row table, as text; empty without the row.
std::string ValoreSingolo(Connessione& cn, const char* tabella, const char* colonna) {
  Recordset rs = ApriRigaUnica(cn, tabella);
  if (rs.Eof()) return Predefinito(colonna).Testo();
  return LeggiCampoAz(rs, colonna, Predefinito(colonna)).Testo();
}

// ---------------------------------------------------------------- VAT account of a row

// The side of the VAT of a row by register, one character per causal type: position 0 for the
// empty type, then "0" to "9". 'D' Dare, 'A' Avere, '#' not settled by the causal. Register 5 is
// always the suspended account; the deferred accounts replace the register's own for types 7
// and 8 where `differito` names one.
struct RegoleRegistro {
  char registro;
  const char* conto;
  const char* differito;  // nullptr: types 7 and 8 stay on `conto`
  const char* lati;
};

constexpr RegoleRegistro kRegole[] = {
    {'1', "SottIVACVendite", "SottEsigDiffVend", "#AD##A##ADD"},
    {'2', "SottIVACAcquisti", "SottEsigDiffAcq", "#DADADDADAA"},
    {'3', "SottIVACScorporo", "SottEsigDiffVend", "#ADAD###AD#"},
    {'5', "SottIVACSospensione", nullptr, "#AD########"},
    {'6', "SottIVACVendite", nullptr, "#AD##A##ADD"},
    {'8', "SottIVACAcquisti", nullptr, "#DADADDADAA"},
};

// The position of a causal type in `lati`, or -1 for a type the rules do not list.
int PosizioneTipo(const std::string& tipo) {
  if (tipo.empty()) return 0;
  if (tipo.size() != 1) return -1;
  char c = tipo[0];
  if (c == ':') c = '4';  // a collection, as "4"
  if (c == ';') c = '9';  // a note, as "9"
  if (c < '0' || c > '9') return -1;
  return 1 + (c - '0');
}

}  // namespace

// ---------------------------------------------------------------- record protocol

bool clsTabRiferimenti::LocalizzaRecord(Recordset& T, const Valore& clientID, long hWnd) {
  return LocalizzaRecordProtocollo(*cn, T, kRiferimenti, {}, {}, clientID, hWnd);
}

bool clsTabRiferimenti::LocalizzaRecordTabellaAzienda(Recordset& T, const Valore& clientID, long hWnd) {
  return LocalizzaRecordProtocollo(*cn, T, kTabellaAzienda, {}, {}, clientID, hWnd);
}

const std::vector<std::string>& clsTabRiferimenti::ColonneSalvaRecord01() {
  static const std::vector<std::string> c = {
      "SottocontoCassa1",       "SottocontoCassa2",         "CausStornoIvaInded",     "SottIVACVendite",
      "SottIVACAcquisti",       "SottIVACScorporo",         "SottIVACCorrispSc",      "SottIVACSospensione",
      "SottAperturaBilancio",   "SottChiusuraBilancio",     "SottUtilePerditaEse",    "CausAperturaBilancio",
      "CausChiusuraBilancio",   "SottTratte",               "SottRicevuteBancarie",   "SottAvvisi",
      "CausEmissioneEffetti",   "CausEmisFatturaClienti",   "CausNotaCreditoClienti", "CausIncassoCliente",
      "CausOmaggio",            "SottImponibileOmaggi",     "SottIvaOmaggi",          "SottRicaviStandard",
      "SottRicaviAccessori",    "SottRisultatoEsercizio",   "CausAnticipiDDT",        "SottErarioRitenute",
      "CausVersamentoRitenute", "CausCorrispettivi",        "SottEsigDiffVend",       "SottEsigDiffAcq",
      "TipoContabRicAcc",       "SottRicaviAccessori2",     "SottRicaviSpeseIncasso", "SottRicaviSpeseTrasporto",
      "SottRicaviBolli",        "CausPresentazioneEffetti"};
  return c;
}

const std::vector<std::string>& clsTabRiferimenti::ColonneSalvaRecord02() {
  static const std::vector<std::string> c = {
      "SottCostiStandard",     "SottCostiSpeseTrasporto",  "SottCostiSpeseIncasso",     "SottCostiSpeseAccessori",
      "SottCostiSpeseBolli",   "SottCostiImponibileOmaggi", "SottCostiIvaOmaggi",       "CausFatturaForn",
      "CausNotaCreditoForn",   "CausPagamentoForn",        "CausAnticipoForn",          "CausOmaggioForn",
      "CausFattAcqCee",        "CausAnnotVenditeCee",      "CausCostoFornCee",          "SottIVAAcqCee",
      "SottFornCee",           "SottClientiCee",           "SottCostoAcqCee",           "CodIvaCee",
      "SottArrotondPassivi",   "SottArrotondAttivi",       "SottConvLireEuro",          "SottAttivitaDiverse",
      "SottPassivitaDiverse",  "SottOneriStraordinari",    "SottProventiStraordinari",  "SottRID",
      "SottCommissioniBancarie", "CausPagamentoFornBonifico"};
  return c;
}

const std::vector<std::string>& clsTabRiferimenti::ColonneSalvaRecord03() {
  static const std::vector<std::string> c = {"SottocontoClienti",   "SottocontoFornitori", "SottocontoBanca",
                                             "Codice Iva Standard", "Codice Iva Art 15",   "Codice Iva Spese Incasso"};
  return c;
}

const std::vector<std::string>& clsTabRiferimenti::ColonneSalvaRecord04() {
  static const std::vector<std::string> c = {
      "CausAmAmmOrd",          "CausAmAmmAnt",         "CausAmAcquisto",        "CausAmRivalutazione",
      "CausAmSvalutazione",    "CausAmDismissione",    "CausAmManutenzione",    "CausAmOneriSpese",
      "CausAmVarFondoAmmOrd",  "CausAmVarFondoAmmAnt", "CausAmPlusvalReinvestita", "CausConAmmOrd",
      "CausConAmmAnt",         "SottIVASplitPaymentVend", "CausSplitPayment",   "CausConRitenuteSubite",
      "SottRitenuteSubite",    "CausConAbbuoni",       "SottAbbuoni"};
  return c;
}

bool clsTabRiferimenti::SalvaRecord01(const std::map<std::string, Valore>& valori, const Valore& clientID, long hWnd,
                                      bool& Cancel) {
  return SalvaRigaUnica(*cn, kRiferimenti, ColonneSalvaRecord01(), valori, clientID, hWnd, Cancel);
}

bool clsTabRiferimenti::SalvaRecord02(const std::map<std::string, Valore>& valori, const Valore& clientID, long hWnd,
                                      bool& Cancel) {
  return SalvaRigaUnica(*cn, kRiferimenti, ColonneSalvaRecord02(), valori, clientID, hWnd, Cancel);
}

bool clsTabRiferimenti::SalvaRecord03(const std::map<std::string, Valore>& valori, const Valore& clientID, long hWnd,
                                      bool& Cancel) {
  return SalvaRigaUnica(*cn, kTabellaAzienda, ColonneSalvaRecord03(), valori, clientID, hWnd, Cancel);
}

bool clsTabRiferimenti::SalvaRecord04(const std::map<std::string, Valore>& valori, const Valore& clientID, long hWnd,
                                      bool& Cancel) {
  return SalvaRigaUnica(*cn, kRiferimenti, ColonneSalvaRecord04(), valori, clientID, hWnd, Cancel);
}

// ---------------------------------------------------------------- one column by name

namespace {

Valore RiferimentoPerNome(Connessione& cn, const std::string& nome) {
  VerificaNome(nome, "colonna");
  const TabellaCatalogo* t = TabellaCatalogoDi(kRiferimenti);
  const ColonnaCatalogo* c = t ? t->Colonna(nome) : nullptr;
  if (!c) throw ErroreDb(3265, "Colonna inesistente nella tabella Riferimenti Contabili: '" + nome + "'.");
  // The catalogue's own spelling goes into the statement, never the caller's text.
  Recordset rs = cn.Execute("SELECT [" + c->nome + "] FROM [" + std::string(kRiferimenti) + "] LIMIT 1;");
  if (rs.Eof()) return Predefinito(c->nome);
  Valore v = LeggiCampoAz(rs, c->nome, Predefinito(c->nome));
  rs.Close();
  return v;
}

}  // namespace

Valore clsTabRiferimenti::GetRiferimentiSottoconti01(const std::string& Nome_campo_riferimento) {
  return RiferimentoPerNome(*cn, Nome_campo_riferimento);
}

Valore clsTabRiferimenti::GetRiferimentiSottoconti02(const std::string& Nome_campo_riferimento) {
  return RiferimentoPerNome(*cn, Nome_campo_riferimento);
}

Valore clsTabRiferimenti::GetRiferimentiSottoconti03(const std::string& Nome_campo_riferimento) {
  return RiferimentoPerNome(*cn, Nome_campo_riferimento);
}

bool clsTabRiferimenti::GetSottocontoIvaCausale(const Valore& TipoRegistroIva, const Valore& TipoCausale,
                                                std::string& Sottoconto_Iva, std::string& DareAvere_Iva) {
  std::string registro = TipoRegistroIva.TestoTrim();
  int pos = PosizioneTipo(TipoCausale.TestoTrim());
  if (registro.size() != 1 || pos < 0) return false;
  const auto* r = std::find_if(std::begin(kRegole), std::end(kRegole),
                               [&](const RegoleRegistro& x) { return x.registro == registro[0]; });
  if (r == std::end(kRegole)) return false;
  bool differita = pos == 8 || pos == 9;  // types "7" and "8"
  const char* conto = differita && r->differito ? r->differito : r->conto;
  char lato = r->lati[pos];
  Sottoconto_Iva = GetRiferimentiSottoconti01(conto).Testo();
  DareAvere_Iva = lato == 'D' ? "Dare" : lato == 'A' ? "Avere" : "#";
  return true;
}

// ---------------------------------------------------------------- groups

bool clsTabRiferimenti::GetRiferimentiPrimaNota(Valore& CausStornoIvaInded) {
  return LeggiGruppo(*cn, {}, {{&CausStornoIvaInded, "CausStornoIvaInded"}});
}

bool clsTabRiferimenti::GetRiferimentiCambioEsercizio(Valore& CausChiusuraBilancio, Valore& CausAperturaBilancio,
                                                      Valore& SottUtilePerditaEse, Valore& SottAperturaBilancio,
                                                      Valore& SottChiusuraBilancio, Valore& SottRisultatoEsercizio) {
  return LeggiGruppo(*cn, {},
                     {{&CausChiusuraBilancio, "CausChiusuraBilancio"},
                      {&CausAperturaBilancio, "CausAperturaBilancio"},
                      {&SottUtilePerditaEse, "SottUtilePerditaEse"},
                      {&SottAperturaBilancio, "SottAperturaBilancio"},
                      {&SottChiusuraBilancio, "SottChiusuraBilancio"},
                      {&SottRisultatoEsercizio, "SottRisultatoEsercizio"}});
}

bool clsTabRiferimenti::GetRiferimentiVisualizzaMastrini(Valore& SottocontoCassa1, Valore& SottocontoCassa2) {
  return LeggiGruppo(*cn, {}, {{&SottocontoCassa1, "SottocontoCassa1"}, {&SottocontoCassa2, "SottocontoCassa2"}});
}

bool clsTabRiferimenti::GetRiferimentiElaborazioneFatture(
    Valore& CausIncassoCliente, Valore& CausEmisFatturaClienti, Valore& CausNotaCreditoClienti,
    Valore& SottRicaviStandard, Valore& SottRicaviAccessori, Valore& SottIVACVendite, Valore& SottIVACScorporo,
    Valore& SottIVACSospensione, Valore& SottEsigDiffVend, Valore& SottocontoCassa1, Valore& Codice_Iva_Spese_Incasso,
    Valore& Codice_Iva_Art_15, Valore& CausOmaggio, Valore& SottImponibileOmaggi, Valore& SottIvaOmaggi,
    Valore& CausEmissioneEffetti, Valore& CausPresentazioneEffetti, Valore& SottTratte, Valore& SottRicevuteBancarie,
    Valore& SottAvvisi, Valore& SottRID, Valore& SottocontoClienti, Valore& SottocontoFornitori,
    Valore& SottocontoBanca, Valore& SottIVASplitPaymentVend, Valore& CausSplitPayment, Valore& TipoContabRicAcc,
    Valore& SottRicaviAccessori2, Valore& SottRicaviSpeseIncasso, Valore& SottRicaviSpeseTrasporto,
    Valore& SottRicaviBolli, Valore& CausConRitenuteSubite, Valore& SottRitenuteSubite, Valore& CausConAbbuoni,
    Valore& SottAbbuoni) {
  return LeggiGruppo(*cn,
                     {{&Codice_Iva_Spese_Incasso, "Codice Iva Spese Incasso"},
                      {&Codice_Iva_Art_15, "Codice Iva Art 15"},
                      {&SottocontoClienti, "SottocontoClienti"},
                      {&SottocontoFornitori, "SottocontoFornitori"},
                      {&SottocontoBanca, "SottocontoBanca"}},
                     {{&CausIncassoCliente, "CausIncassoCliente"},
                      {&CausEmisFatturaClienti, "CausEmisFatturaClienti"},
                      {&CausNotaCreditoClienti, "CausNotaCreditoClienti"},
                      {&SottRicaviStandard, "SottRicaviStandard"},
                      {&SottRicaviAccessori, "SottRicaviAccessori"},
                      {&SottIVACVendite, "SottIVACVendite"},
                      {&SottIVACScorporo, "SottIVACScorporo"},
                      {&SottIVACSospensione, "SottIVACSospensione"},
                      {&SottEsigDiffVend, "SottEsigDiffVend"},
                      {&SottocontoCassa1, "SottocontoCassa1"},
                      {&CausOmaggio, "CausOmaggio"},
                      {&SottImponibileOmaggi, "SottImponibileOmaggi"},
                      {&SottIvaOmaggi, "SottIvaOmaggi"},
                      {&CausEmissioneEffetti, "CausEmissioneEffetti"},
                      {&CausPresentazioneEffetti, "CausPresentazioneEffetti"},
                      {&SottTratte, "SottTratte"},
                      {&SottRicevuteBancarie, "SottRicevuteBancarie"},
                      {&SottAvvisi, "SottAvvisi"},
                      {&SottRID, "SottRID"},
                      {&SottIVASplitPaymentVend, "SottIVASplitPaymentVend"},
                      {&CausSplitPayment, "CausSplitPayment"},
                      {&TipoContabRicAcc, "TipoContabRicAcc"},
                      {&SottRicaviAccessori2, "SottRicaviAccessori2"},
                      {&SottRicaviSpeseIncasso, "SottRicaviSpeseIncasso"},
                      {&SottRicaviSpeseTrasporto, "SottRicaviSpeseTrasporto"},
                      {&SottRicaviBolli, "SottRicaviBolli"},
                      {&CausConRitenuteSubite, "CausConRitenuteSubite"},
                      {&SottRitenuteSubite, "SottRitenuteSubite"},
                      {&CausConAbbuoni, "CausConAbbuoni"},
                      {&SottAbbuoni, "SottAbbuoni"}});
}

bool clsTabRiferimenti::GetRiferimentiElaborazioneScontrini(Valore& SottocontoBanca, Valore& CausCorrispettivi,
                                                            Valore& SottRicaviStandard, Valore& SottIVACScorporo,
                                                            Valore& SottocontoCassa1) {
  return LeggiGruppo(*cn, {{&SottocontoBanca, "SottocontoBanca"}},
                     {{&CausCorrispettivi, "CausCorrispettivi"},
                      {&SottRicaviStandard, "SottRicaviStandard"},
                      {&SottIVACScorporo, "SottIVACScorporo"},
                      {&SottocontoCassa1, "SottocontoCassa1"}});
}

bool clsTabRiferimenti::GetRiferimentiEstrattoConto(std::string& SottocontoClienti, std::string& SottocontoFornitori,
                                                    std::string& SottocontoBanca, std::string& CausAnticipiDDT,
                                                    std::string& CausAnticipoForn, std::string& CausEmisFatturaClienti,
                                                    std::string& CausNotaCreditoClienti, std::string& CausFatturaForn,
                                                    std::string& CausNotaCreditoForn) {
  Valore v[9];
  bool trovato = LeggiGruppo(*cn,
                             {{&v[0], "SottocontoClienti"}, {&v[1], "SottocontoFornitori"}, {&v[2], "SottocontoBanca"}},
                             {{&v[3], "CausAnticipiDDT"},
                              {&v[4], "CausAnticipoForn"},
                              {&v[5], "CausEmisFatturaClienti"},
                              {&v[6], "CausNotaCreditoClienti"},
                              {&v[7], "CausFatturaForn"},
                              {&v[8], "CausNotaCreditoForn"}});
  std::string* uscite[9] = {&SottocontoClienti,      &SottocontoFornitori, &SottocontoBanca,
                            &CausAnticipiDDT,        &CausAnticipoForn,    &CausEmisFatturaClienti,
                            &CausNotaCreditoClienti, &CausFatturaForn,     &CausNotaCreditoForn};
  for (int i = 0; i < 9; ++i) *uscite[i] = v[i].Testo();
  return trovato;
}

bool clsTabRiferimenti::GetRiferimentiElaborazioneBonifici(Valore& SottocontoClienti, Valore& SottocontoFornitori,
                                                           Valore& SottocontoBanca, Valore& SottCommissioniBancarie,
                                                           Valore& CausPagamentoFornBonifico) {
  return LeggiGruppo(*cn,
                     {{&SottocontoClienti, "SottocontoClienti"},
                      {&SottocontoFornitori, "SottocontoFornitori"},
                      {&SottocontoBanca, "SottocontoBanca"}},
                     {{&SottCommissioniBancarie, "SottCommissioniBancarie"},
                      {&CausPagamentoFornBonifico, "CausPagamentoFornBonifico"}});
}

bool clsTabRiferimenti::GetRiferimentiAmmortamenti(Valore& CausAmAmmOrd, Valore& CausAmAmmAnt, Valore& CausAmAcquisto,
                                                   Valore& CausAmRivalutazione, Valore& CausAmSvalutazione,
                                                   Valore& CausAmDismissione, Valore& CausAmManutenzione,
                                                   Valore& CausAmOneriSpese, Valore& CausConAmmOrd,
                                                   Valore& CausConAmmAnt, Valore& CausAmVarFondoAmmOrd,
                                                   Valore& CausAmVarFondoAmmAnt, Valore& CausAmPlusvalReinvestita) {
  return LeggiGruppo(*cn, {},
                     {{&CausAmAmmOrd, "CausAmAmmOrd"},
                      {&CausAmAmmAnt, "CausAmAmmAnt"},
                      {&CausAmAcquisto, "CausAmAcquisto"},
                      {&CausAmRivalutazione, "CausAmRivalutazione"},
                      {&CausAmSvalutazione, "CausAmSvalutazione"},
                      {&CausAmDismissione, "CausAmDismissione"},
                      {&CausAmManutenzione, "CausAmManutenzione"},
                      {&CausAmOneriSpese, "CausAmOneriSpese"},
                      {&CausConAmmOrd, "CausConAmmOrd"},
                      {&CausConAmmAnt, "CausConAmmAnt"},
                      {&CausAmVarFondoAmmOrd, "CausAmVarFondoAmmOrd"},
                      {&CausAmVarFondoAmmAnt, "CausAmVarFondoAmmAnt"},
                      {&CausAmPlusvalReinvestita, "CausAmPlusvalReinvestita"}});
}

bool clsTabRiferimenti::GetRiferimentiImportFattureXML(Valore& CausFatturaForn, Valore& CausNotaCreditoForn,
                                                       Valore& SottIVACAcquisti, Valore& SottCostiStandard,
                                                       Valore& SottCostiSpeseAccessori, Valore& SottCostiSpeseBolli,
                                                       Valore& Codice_Nazione, Valore& SottocontoFornitori) {
  return LeggiGruppo(*cn, {{&Codice_Nazione, "Codice Nazione"}, {&SottocontoFornitori, "SottocontoFornitori"}},
                     {{&CausFatturaForn, "CausFatturaForn"},
                      {&CausNotaCreditoForn, "CausNotaCreditoForn"},
                      {&SottIVACAcquisti, "SottIVACAcquisti"},
                      {&SottCostiStandard, "SottCostiStandard"},
                      {&SottCostiSpeseAccessori, "SottCostiSpeseAccessori"},
                      {&SottCostiSpeseBolli, "SottCostiSpeseBolli"}});
}

std::string clsTabRiferimenti::GetCodiceIvaEsclusoArt15() {
  return ValoreSingolo(*cn, kTabellaAzienda, "Codice Iva Art 15");
}

std::string clsTabRiferimenti::GetCodiceIvaSpeseIncasso() {
  return ValoreSingolo(*cn, kTabellaAzienda, "Codice Iva Spese Incasso");
}

std::string clsTabRiferimenti::GetCausAmAcquisto() { return ValoreSingolo(*cn, kRiferimenti, "CausAmAcquisto"); }

}  // namespace vorn
