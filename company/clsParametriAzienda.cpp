#include "company/clsParametriAzienda.h"

#include <cstdio>

#include "company/LetturaAzienda.h"
#include "frame/Host.h"
#include "frame/VornServer.h"

namespace vorn {

using namespace azienda;

namespace {

constexpr const char* kTabellaAzienda = "Tabella Azienda";
constexpr const char* kParametriVorn = "Parametri Vorn";

const char* const kGruppiClienti[] = {"GruppoConto1Clienti", "GruppoConto2Clienti", "GruppoConto3Clienti",
                                      "GruppoConto4Clienti", "GruppoConto5Clienti"};
const char* const kGruppiFornitori[] = {"GruppoConto1Fornitori", "GruppoConto2Fornitori", "GruppoConto3Fornitori",
                                        "GruppoConto4Fornitori", "GruppoConto5Fornitori"};

void CaricaGruppi(Recordset& rs, Valore (&clienti)[6], Valore (&fornitori)[6]) {
  for (int i = 0; i < 5; ++i) {
    clienti[i + 1] = LeggiCampoAz(rs, kGruppiClienti[i], Valore(""));
    fornitori[i + 1] = LeggiCampoAz(rs, kGruppiFornitori[i], Valore(""));
  }
}

int MeseApertura(const Valore& meseChiusura) {
  int64_t m = 0;
  if (auto i = meseChiusura.ComeIntero()) m = *i;
  else m = static_cast<int64_t>(Val(meseChiusura.Testo()));
  // The month after the closing one; December closes a calendar year.
  int64_t r = ((m % 12) + 12) % 12;
  return static_cast<int>(r) + 1;
}

Data Apertura(const Valore& meseChiusura, std::optional<Data> oggi) {
  Data o = oggi ? *oggi : Data::Oggi();
  int mese = MeseApertura(meseChiusura);
  int anno = mese > o.Mese() ? o.Anno() - 1 : o.Anno();
  auto d = Data::Crea(anno, mese, 1);
  return d ? *d : o;  // only outside the calendar's years

}

}  // namespace

bool clsParametriAzienda::LocalizzaRecord(Recordset& T, const Valore& clientID, long hWnd) {
  return LocalizzaRecordProtocollo(*cn, T, kTabellaAzienda, {}, {}, clientID, hWnd);
}

bool clsParametriAzienda::LocalizzaRecordParametriVorn(Recordset& T, const Valore& clientID, long hWnd) {
  return LocalizzaRecordProtocollo(*cn, T, kParametriVorn, {}, {}, clientID, hWnd);
}

const std::vector<std::string>& clsParametriAzienda::ColonneSalvaRecord() {
  static const std::vector<std::string> c = {
      "Valuta di conto",       "Simbolo valuta conto",       "Descrizione valuta conto",
      "Cambio fisso LIRE/EURO", "Data reale passaggio EURO", "Data logica passaggio EURO",
      "Codice valuta EURO",    "Codice valuta LIRE",         "Decimali importi",
      "Decimali cambi",        "Mese chiusura fiscale",      "IAutorizBolliVirt",
      "ModalitaContabilizzEffetti"};
  return c;
}

const std::vector<std::string>& clsParametriAzienda::ColonneSalvaRecordParametriVorn() {
  static const std::vector<std::string> c = {
      "NumRegIVAVendite",        "NumRegIVAVenditeLiq",       "NumRegIvaAcquisti",
      "NumRegIVAAcquistiLiq",    "NumRegIVACorrispScorp",     "NumRegIVACorrispScorpLiq",
      "NumRegIVACorrispVentil",  "NumRegIVACorrispVentilLiq", "NumRegIVASospensione",
      "GruppoConto1Fornitori",   "GruppoConto2Fornitori",     "GruppoConto3Fornitori",
      "GruppoConto4Fornitori",   "GruppoConto5Fornitori",     "GruppoConto1Clienti",
      "GruppoConto2Clienti",     "GruppoConto3Clienti",       "GruppoConto4Clienti",
      "GruppoConto5Clienti",     "IndGiornMacchina",          "GestioneStoricoContabile",
      "GestionePartiteAperte",   "GestioneLingue",            "DescrizSupplemRegIVA",
      "PeriodicitaLiquidazione", "GestMonteAcquistiUnico",    "ParaVornCampoLibero1",
      "ParaVornCampoLibero2",    "ParaVornCampoLibero3",      "ParaVornCampoLibero4",
      "ParaVornCampoLibero5",    "ParaVornCampoLibero6",      "ParaVornCampoLibero7",
      "ParaVornCampoLibero8",    "ModalitaRiepilogoCessioni", "ModalitaRiepilogoAcquisti",
      "GestioneProrataIVA",      "PercentualeProrata",        "IVAArt74Ter",
      "CodIVA74Ter",             "IndValoreStatisticoAcquisti", "IndValoreStatisticoCessioni",
      "GestDataCompetenzaIVA",   "RifLibGioRegistriIVA",      "RifDocContrRegistriIVA",
      "IndOrdinamRegistriIVA",   "IndIVAAutotrasportatori",   "VersamentoIVA4Trim",
      "NumDecIntra",             "NumDecLiquidazione",        "NumPagineAutoRegIVA",
      "NumPagineAutoLibGior",    "TipoRegLiquidazione",       "NumRegLiquidazione"};
  return c;
}

const std::vector<std::string>& clsParametriAzienda::ColonneSalvaRecordParametriVorn2() {
  static const std::vector<std::string> c = {"SogliaAmmIntegrale", "PercAbbattimAmmAnno1", "PercManutenzioniDeducibili",
                                             "regimeContabile", "RegIVASemSoloContiEco"};
  return c;
}

bool clsParametriAzienda::SalvaRecord(const std::map<std::string, Valore>& valori, const Valore& clientID, long hWnd,
                                      bool& Cancel) {
  return SalvaRigaUnica(*cn, kTabellaAzienda, ColonneSalvaRecord(), valori, clientID, hWnd, Cancel);
}

bool clsParametriAzienda::SalvaRecordParametriVorn(const std::map<std::string, Valore>& valori,
                                                   const Valore& clientID, long hWnd, bool& Cancel) {
  return SalvaRigaUnica(*cn, kParametriVorn, ColonneSalvaRecordParametriVorn(), valori, clientID, hWnd, Cancel);
}

bool clsParametriAzienda::SalvaRecordParametriVorn2(const std::map<std::string, Valore>& valori,
                                                    const Valore& clientID, long hWnd, bool& Cancel) {
  return SalvaRigaUnica(*cn, kParametriVorn, ColonneSalvaRecordParametriVorn2(), valori, clientID, hWnd, Cancel);
}

std::string clsParametriAzienda::GetIndClienteFornitore(const Valore& sottoconto) {
  std::string s = sottoconto.Testo();
  if (s.empty()) return {};
  std::string prefisso = PrimiCaratteri(s, 4);
  auto rs = ApriRigaUnica(*cn, kParametriVorn);
  if (rs.Eof()) return {};
  for (const char* c : kGruppiClienti)
    if (LeggiCampoAz(rs, c, Valore("")).Testo() == prefisso) return "C";
  for (const char* c : kGruppiFornitori)
    if (LeggiCampoAz(rs, c, Valore("")).Testo() == prefisso) return "F";
  return {};
}

bool clsParametriAzienda::GetGruppiContiCliFor(Valore (&GruppiContiClienti)[6], Valore (&GruppiContiFornitori)[6]) {
  auto rs = ApriRigaUnica(*cn, kParametriVorn);
  if (rs.Eof()) return false;
  CaricaGruppi(rs, GruppiContiClienti, GruppiContiFornitori);
  return true;
}

Valore clsParametriAzienda::GetParametriPrimaNota(Valore& NumRegIVAVendite, Valore& NumRegIvaAcquisti,
                                                  Valore& NumRegIVACorrispScorp, Valore& NumRegIVACorrispVentil,
                                                  Valore& NumRegIVASospensione, Valore& GestDataCompetenzaIVA,
                                                  Valore (&GruppiContiClienti)[6], Valore (&GruppiContiFornitori)[6],
                                                  Valore& MeseChiusuraFiscale, Valore& IndIVAAutotrasportatori,
                                                  Valore& PeriodicitaLiquidazione) {
  auto rs = ApriRigaUnica(*cn, kParametriVorn);
  const Valore zero("0");
  if (rs.Eof()) {
    NumRegIVAVendite = zero;
    NumRegIvaAcquisti = zero;
    NumRegIVACorrispScorp = zero;
    NumRegIVACorrispVentil = zero;
    NumRegIVASospensione = zero;
    GestDataCompetenzaIVA = zero;
    MeseChiusuraFiscale = Valore("12");
    IndIVAAutotrasportatori = zero;
    PeriodicitaLiquidazione = zero;
    return Valore(false);
  }
  NumRegIVAVendite = LeggiCampoAz(rs, "NumRegIVAVendite", zero);
  NumRegIvaAcquisti = LeggiCampoAz(rs, "NumRegIvaAcquisti", zero);
  NumRegIVACorrispScorp = LeggiCampoAz(rs, "NumRegIVACorrispScorp", zero);
  NumRegIVACorrispVentil = LeggiCampoAz(rs, "NumRegIVACorrispVentil", zero);
  NumRegIVASospensione = LeggiCampoAz(rs, "NumRegIVASospensione", zero);
  GestDataCompetenzaIVA = LeggiCampoAz(rs, "GestDataCompetenzaIVA", zero);
  CaricaGruppi(rs, GruppiContiClienti, GruppiContiFornitori);
  MeseChiusuraFiscale = LeggiCampoAz(rs, "MeseChiusuraFiscale", Valore("12"));
  IndIVAAutotrasportatori = LeggiCampoAz(rs, "IndIVAAutotrasportatori", zero);
  PeriodicitaLiquidazione = LeggiCampoAz(rs, "PeriodicitaLiquidazione", zero);
  return Valore(true);
}

Valore clsParametriAzienda::GetMeseChiusuraFiscale() {
  auto rs = ApriRigaUnica(*cn, kTabellaAzienda);
  if (rs.Eof()) return {};
  return LeggiCampoAz(rs, "Mese chiusura fiscale", Valore());
}

bool clsParametriAzienda::GetGestioneStoricoContabile() {
  auto rs = ApriRigaUnica(*cn, kParametriVorn);
  if (rs.Eof()) return false;
  return LeggiCampoAz(rs, "GestioneStoricoContabile", Valore(false)).Vero();
}

std::string clsParametriAzienda::GetDataLogicaAperturaBilancio(const Valore& avar_MeseChiusuraFiscale,
                                                               std::optional<Data> oggi) {
  return Apertura(avar_MeseChiusuraFiscale, oggi).Testo();
}

std::string clsParametriAzienda::GetDataLogicaChiusuraBilancio(const Valore& avar_MeseChiusuraFiscale,
                                                               std::optional<Data> oggi) {
  return Apertura(avar_MeseChiusuraFiscale, oggi).AggiungiGiorni(-1).Testo();
}

int clsParametriAzienda::AutorizzazioneBolliVirtuali() {
  auto rs = ApriRigaUnica(*cn, kTabellaAzienda);
  if (rs.Eof()) return 0;
  Valore v = LeggiCampoAz(rs, "IAutorizBolliVirt", Valore(0));
  if (auto i = v.ComeIntero()) return static_cast<int>(*i);
  return static_cast<int>(Val(v.Testo()));
}

Valore clsParametriAzienda::GetParametriIva(
    Valore& NumRegIVAVendite, Valore& NumRegIVAVenditeLiq, Valore& NumRegIvaAcquisti, Valore& NumRegIVAAcquistiLiq,
    Valore& NumRegIVACorrispScorp, Valore& NumRegIVACorrispScorpLiq, Valore& NumRegIVACorrispVentil,
    Valore& NumRegIVACorrispVentilLiq, Valore& NumRegIVASospensione, Valore& PeriodicitaLiquidazione,
    Valore& IndOrdinamRegistriIVA, Valore& NumPagineAutoRegIVA, Valore& NumPagineAutoLibGior,
    Valore& TipoRegLiquidazione, Valore& NumRegLiquidazione, Valore& GestioneProrataIVA, Valore& PercentualeProrata,
    Valore& RifDocContrRegistriIVA, std::string& IndIVAAutotrasportatori, int& regimeContabile,
    std::string& RegIVASemSoloContiEco) {
  auto rs = ApriRigaUnica(*cn, kParametriVorn);
  const Valore zero("0");
  struct Uscita {
    Valore* v;
    const char* colonna;
  };
  const Uscita uscite[] = {{&NumRegIVAVendite, "NumRegIVAVendite"},
                           {&NumRegIVAVenditeLiq, "NumRegIVAVenditeLiq"},
                           {&NumRegIvaAcquisti, "NumRegIvaAcquisti"},
                           {&NumRegIVAAcquistiLiq, "NumRegIVAAcquistiLiq"},
                           {&NumRegIVACorrispScorp, "NumRegIVACorrispScorp"},
                           {&NumRegIVACorrispScorpLiq, "NumRegIVACorrispScorpLiq"},
                           {&NumRegIVACorrispVentil, "NumRegIVACorrispVentil"},
                           {&NumRegIVACorrispVentilLiq, "NumRegIVACorrispVentilLiq"},
                           {&NumRegIVASospensione, "NumRegIVASospensione"},
                           {&PeriodicitaLiquidazione, "PeriodicitaLiquidazione"},
                           {&IndOrdinamRegistriIVA, "IndOrdinamRegistriIVA"},
                           {&NumPagineAutoRegIVA, "NumPagineAutoRegIVA"},
                           {&NumPagineAutoLibGior, "NumPagineAutoLibGior"},
                           {&TipoRegLiquidazione, "TipoRegLiquidazione"},
                           {&NumRegLiquidazione, "NumRegLiquidazione"},
                           {&GestioneProrataIVA, "GestioneProrataIVA"},
                           {&PercentualeProrata, "PercentualeProrata"},
                           {&RifDocContrRegistriIVA, "RifDocContrRegistriIVA"}};
  if (rs.Eof()) {
    for (const auto& u : uscite) *u.v = zero;
    NumRegLiquidazione = Valore("01");
    PercentualeProrata = Valore(0);
    IndIVAAutotrasportatori.clear();
    regimeContabile = 0;
    RegIVASemSoloContiEco.clear();
    return Valore(false);
  }
  for (const auto& u : uscite) *u.v = LeggiCampoAz(rs, u.colonna, zero);
  IndIVAAutotrasportatori = LeggiCampoAz(rs, "IndIVAAutotrasportatori", zero).Testo();
  Valore reg = LeggiCampoAz(rs, "regimeContabile", zero);
  auto r = reg.ComeIntero();
  regimeContabile = r ? static_cast<int>(*r) : static_cast<int>(Val(reg.Testo()));
  RegIVASemSoloContiEco = LeggiCampoAz(rs, "RegIVASemSoloContiEco", zero).Testo();
  return Valore(true);
}

Valore clsParametriAzienda::GetParametriLibroGiornale(Valore& NumPagineAutoLibGior) {
  auto rs = ApriRigaUnica(*cn, kParametriVorn);
  if (rs.Eof()) {
    NumPagineAutoLibGior = Valore("0");
    return Valore(false);
  }
  NumPagineAutoLibGior = LeggiCampoAz(rs, "NumPagineAutoLibGior", Valore("0"));
  return Valore(true);
}

Valore clsParametriAzienda::GetParametriGlobali(std::string& Valuta_di_conto, std::string& Simbolo_valuta_conto,
                                                std::string& Descrizione_valuta_conto, int& Decimali_importi,
                                                std::string& CodiceValuta_LIRE, std::string& CodiceValuta_EURO,
                                                double& Cambio_fisso_LIRE_EURO, int& Decimali_Cambi,
                                                int& Decimali_quantita, int& Decimali_prezzi_valuta_conto) {
  try {
    Recordset rs = cn->Execute(
        "SELECT [Valuta di conto], [Simbolo valuta conto], [Descrizione valuta conto], [Decimali importi], "
        "[Codice valuta LIRE], [Codice valuta EURO], [Cambio fisso LIRE/EURO], [Decimali cambi], "
        "[Decimali quantità], [Decimali prezzi valuta conto] FROM [Tabella Azienda] LIMIT 1;");
    if (rs.Eof()) {
      Valuta_di_conto = "1";
      Simbolo_valuta_conto = "EUR";
      Descrizione_valuta_conto = "EURO";
      Decimali_importi = 2;
      CodiceValuta_LIRE = "16";
      CodiceValuta_EURO = "06";
      Cambio_fisso_LIRE_EURO = 1936.27;
      Decimali_Cambi = 5;
      Decimali_quantita = 3;
      Decimali_prezzi_valuta_conto = 5;
      return {};
    }
    Valuta_di_conto = LeggiCampoAz(rs, "Valuta di conto", Valore("0")).Testo();
    Simbolo_valuta_conto = LeggiCampoAz(rs, "Simbolo valuta conto", Valore("EUR")).Testo();
    Descrizione_valuta_conto = LeggiCampoAz(rs, "Descrizione valuta conto", Valore("EURO")).Testo();
    Decimali_importi = InteroDi(LeggiCampoAz(rs, "Decimali importi", Valore(2)));
    CodiceValuta_LIRE = LeggiCampoAz(rs, "Codice valuta LIRE", Valore("")).Testo();
    CodiceValuta_EURO = LeggiCampoAz(rs, "Codice valuta EURO", Valore("")).Testo();
    Cambio_fisso_LIRE_EURO = DoubleDi(LeggiCampoAz(rs, "Cambio fisso LIRE/EURO", Valore(0.0)));
    Decimali_Cambi = InteroDi(LeggiCampoAz(rs, "Decimali cambi", Valore(0)));
    Decimali_quantita = InteroDi(LeggiCampoAz(rs, "Decimali quantità", Valore(0)));
    Decimali_prezzi_valuta_conto = InteroDi(LeggiCampoAz(rs, "Decimali prezzi valuta conto", Valore(0)));
    return Valore(true);
  } catch (const std::exception&) {
    Host().Clessidra(false);
    Host().MsgBox("Errore non previsto in fase di lettura parametri globali.", vbCritical,
                  "Caricamento parametri globali.");
    return Valore(false);
  }
}

bool clsParametriAzienda::GetParametriElaborazioneFatture(Valore& ModalitaContabilizzEffetti) {
  auto rs = ApriRigaUnica(*cn, kTabellaAzienda);
  if (rs.Eof()) return false;
  ModalitaContabilizzEffetti = LeggiCampoAz(rs, "ModalitaContabilizzEffetti", Valore());
  return true;
}

Valore clsParametriAzienda::GetParametriAgenti(Valore& Codice_Iva_Standard, Valore& Perc_Ritenuta,
                                               Valore& Perc_Imponibile_Ritenuta, Valore& Perc_Enasarco,
                                               Valore& Mass_Enasarco) {
  auto rs = ApriRigaUnica(*cn, kTabellaAzienda);
  if (rs.Eof()) {
    Codice_Iva_Standard = Perc_Ritenuta = Perc_Imponibile_Ritenuta = Perc_Enasarco = Mass_Enasarco = Valore();
    return Valore(false);
  }
  Codice_Iva_Standard = LeggiCampoAz(rs, "Codice Iva Standard", Valore());
  Perc_Ritenuta = LeggiCampoAz(rs, "Perc Ritenuta", Valore());
  Perc_Imponibile_Ritenuta = LeggiCampoAz(rs, "Perc Imponibile Ritenuta", Valore());
  Perc_Enasarco = LeggiCampoAz(rs, "Perc Enasarco", Valore());
  Mass_Enasarco = LeggiCampoAz(rs, "Mass Enasarco", Valore());
  return Valore(true);
}

bool clsParametriAzienda::GetParametriAmmortamenti(double& SogliaAmmIntegrale, double& PercAbbattimAmmAnno1,
                                                   double& PercManutenzioniDeducibili) {
  auto rs = ApriRigaUnica(*cn, kParametriVorn);
  if (rs.Eof()) return false;
  SogliaAmmIntegrale = DoubleDi(LeggiCampoAz(rs, "SogliaAmmIntegrale", Valore(0.0)));
  PercAbbattimAmmAnno1 = DoubleDi(LeggiCampoAz(rs, "PercAbbattimAmmAnno1", Valore(0.0)));
  PercManutenzioniDeducibili = DoubleDi(LeggiCampoAz(rs, "PercManutenzioniDeducibili", Valore(0.0)));
  return true;
}

bool clsParametriAzienda::GetVersamentoIVA4Trim() {
  auto rs = ApriRigaUnica(*cn, kParametriVorn);
  if (rs.Eof()) return false;
  return LeggiCampoAz(rs, "VersamentoIVA4Trim", Valore(false)).Vero();
}

bool clsParametriAzienda::GetLiquidazioneTrimestale() {
  auto rs = ApriRigaUnica(*cn, kParametriVorn);
  if (rs.Eof()) return false;
  return LeggiCampoAz(rs, "PeriodicitaLiquidazione", Valore("")).Testo() == "1";
}

}  // namespace vorn
