#include "ledger/clsCausaliContabili.h"

#include <cmath>

#include "frame/Comuni.h"

namespace vorn {

namespace {

constexpr const char* kTabella = "Causali Contabili";
constexpr const char* kCodice = "[Causali Contabili].[CodiceCausale]";

constexpr auto P = SegnoTipoCausale::Positivo;
constexpr auto N = SegnoTipoCausale::Negativo;
constexpr auto R = SegnoTipoCausale::SecondoRegistro;

FiltroCodice Filtro(const Valore& codice) { return FiltraCodice(kCodice, codice); }

std::string Numerata(const char* radice, int i) { return radice + std::to_string(i); }

// Every occurrence of `vecchio`, left to right, replaced by `nuovo`.
std::string Sostituisci(std::string s, std::string_view vecchio, std::string_view nuovo) {
  for (size_t i = s.find(vecchio); i != std::string::npos; i = s.find(vecchio, i + nuovo.size()))
    s.replace(i, vecchio.size(), nuovo);
  return s;
}

}  // namespace

// ---------------------------------------------------------------- code tables

const std::vector<VoceTipoCausale>& clsCausaliContabili::TipiCausale() {
  static const std::vector<VoceTipoCausale> t = {
      {"0", "F", "Fattura", P, P, false, false},
      {"1", "N", "Nota di credito", N, N, true, false},
      {"2", "C", "Corrispettivi o costo", P, P, false, false},
      {"3", "S", "Storno corrispettivi o costo", N, P, false, false},
      {"4", "I", "Incasso fattura in sospensione", P, P, false, false},
      {"5", "f", "Fattura (seconda famiglia)", P, P, false, false},
      {"6", "n", "Nota di credito (seconda famiglia)", R, R, false, false},
      {"7", "D", "Fattura ad esigibilità differita", P, P, false, true},
      {"8", "E", "Nota di credito ad esigibilità differita", N, N, true, true},
      {"9", "O", "Nota di variazione (O)", N, P, true, false},
      {":", "I", "Incasso (come 4)", P, P, false, false},
      {";", "O", "Nota (O, come 9)", N, P, false, false},
  };
  return t;
}

const VoceTipoCausale* clsCausaliContabili::TipoCausaleDi(const Valore& TipoCausale) {
  std::string c = TipoCausale.TestoTrim();
  for (const auto& v : TipiCausale())
    if (v.codice == c) return &v;
  return nullptr;
}

const std::vector<VoceTipoRegistroIva>& clsCausaliContabili::TipiRegistroIva() {
  static const std::vector<VoceTipoRegistroIva> t = {
      {0, "NESSUNO"},
      {1, "VENDITE"},
      {2, "ACQUISTI"},
      {3, "CORRISPETTIVI IN SCORPORO"},
      {4, "CORRISPETTIVI IN VENTILAZIONE"},
      {5, "SOSPENSIONE"},
      {6, "INCASSO FATT. ESIGIBILITA' DIFFERITA"},
      {7, "FATT. VENDITA IVA AD ESIG. DIFFERITA"},
      {8, "PAGAMENTO FATTURE CON ESIG. DIFF."},
      {9, "FATT. ACQUISTI IVA AD ESIG. DIFF."},
  };
  return t;
}

Valore clsCausaliContabili::GetDescrizioneTipoRegistroIva(const Valore& TipoRegistroIva) {
  if (TipoRegistroIva.IsNull()) return Valore();
  auto d = TipoRegistroIva.ComeDouble();
  if (!d || *d != std::floor(*d)) return Valore();
  for (const auto& v : TipiRegistroIva())
    if (static_cast<double>(v.valore) == *d) return Valore(std::string(v.testo));
  return Valore();
}

// ---------------------------------------------------------------- columns

const std::vector<std::string>& clsCausaliContabili::ColonneSalvaRecord() {
  static const std::vector<std::string> c = [] {
    std::vector<std::string> v = {"DescrizioneCausale"};
    for (int i = 1; i <= 9; ++i) v.push_back(Numerata("Conto", i));
    for (const char* s : {"TipoRegistroIva", "TipoCausale", "OperativitaPartite", "OperativitaContabile"})
      v.push_back(s);
    for (int i = 1; i <= 5; ++i) v.push_back(Numerata("IndLibero", i));
    for (int i = 1; i <= 5; ++i) v.push_back(Numerata("LiberoDescrittivo", i));
    for (const char* s :
         {"OperativitaIntra", "SerieProposta", "RegistroIVAProposto", "FlagInsoluto", "Spostamento",
          "FlagDatiDocumento", "OperativitaRitenute", "TrasferitaMirk", "TrasferitaPelvo", "PosContrClifor",
          "FlagNonUtilizzata", "IndQuadratura", "OperativitaCespiti", "RegistroIVAPropostoCorr",
          "No su allegati IVA", "TipoRegistroIVACRSemp", "RegistroIVACRSemp", "SottocontoIVARSM",
          "OperativitaIntAut"})
      v.push_back(s);
    return v;
  }();
  return c;
}

const std::vector<std::string>& clsCausaliContabili::ColonneSottocontiProposti() {
  static const std::vector<std::string> c = [] {
    std::vector<std::string> v;
    for (int i = 1; i <= 10; ++i) v.push_back(Numerata("SottocontoDare", i));
    for (int i = 1; i <= 10; ++i) v.push_back(Numerata("SottocontoAvere", i));
    return v;
  }();
  return c;
}

// ---------------------------------------------------------------- record operations

Recordset clsCausaliContabili::Leggi(const Valore& codiceCausale, const std::string& colonne) {
  auto f = Filtro(codiceCausale);
  return cn->Execute("SELECT " + colonne + " FROM [Causali Contabili] WHERE " + f.where + ";", f.p);
}

std::string clsCausaliContabili::LeggiTesto(const Valore& codiceCausale, const std::string& colonna,
                                            const char* predefinito) {
  Recordset rs = Leggi(codiceCausale, "[" + colonna + "]");
  return rs.Eof() ? predefinito : LeggiCampo(rs(colonna), Valore(predefinito)).Testo();
}

bool clsCausaliContabili::LocalizzaTuttiRecord(Recordset& T) {
  T = cn->Execute("SELECT * FROM [Causali Contabili] ORDER BY [CodiceCausale];");
  return !T.Eof();
}

bool clsCausaliContabili::LocalizzaRecord(Recordset& T, const Valore& codiceCausale, const Valore& clientID,
                                          long hWnd) {
  auto f = Filtro(codiceCausale);
  return LocalizzaRecordProtocollo(*cn, T, kTabella, f.where, f.p, clientID, hWnd);
}

bool clsCausaliContabili::SalvaRecord(const Valore& codiceCausale, const RecordValori& campi, const Valore& clientID,
                                      long hWnd, bool& Cancel, bool NoPrompt) {
  auto valori = ColonneDaScrivere(campi, ColonneSalvaRecord(), [](const std::string& nome) {
    return "Causali Contabili: colonna sconosciuta \"" + nome + "\"";
  });
  std::string codice = codiceCausale.TestoTrim();
  auto f = Filtro(Valore(codice));
  return SalvaRecordProtocollo(
      *cn, kTabella, f.where, f.p, clientID, hWnd, Cancel,
      [&](Recordset& rs, bool) {
        rs("CodiceCausale") = Valore(codice);
        for (const auto& [colonna, valore] : valori) rs(colonna) = valore;
      },
      !NoPrompt);
}

bool clsCausaliContabili::SalvaRecordSottocontiProposti(const Valore& codiceCausale, const Valore (&SottocontoDare)[11],
                                                        const Valore (&SottocontoAvere)[11], const Valore& clientID,
                                                        long hWnd, bool& Cancel, bool NoPrompt) {
  std::string codice = codiceCausale.TestoTrim();
  auto f = Filtro(Valore(codice));
  return SalvaRecordProtocollo(
      *cn, kTabella, f.where, f.p, clientID, hWnd, Cancel,
      [&](Recordset& rs, bool) {
        rs("CodiceCausale") = Valore(codice);
        for (int i = 1; i <= 10; ++i) {
          rs(Numerata("SottocontoDare", i)) = SottocontoDare[i];
          rs(Numerata("SottocontoAvere", i)) = SottocontoAvere[i];
        }
      },
      !NoPrompt);
}

bool clsCausaliContabili::CancellaRecord(const Valore& codiceCausale) {
  auto f = Filtro(codiceCausale);
  cn->Esegui("DELETE FROM [Causali Contabili] WHERE " + f.where + ";", f.p);
  return true;
}

bool clsCausaliContabili::RecordSuccessivo(Valore& codiceCausale) {
  return PassoCodice(*cn, kTabella, "CodiceCausale", codiceCausale, true);
}

bool clsCausaliContabili::RecordPrecedente(Valore& codiceCausale) {
  return PassoCodice(*cn, kTabella, "CodiceCausale", codiceCausale, false);
}

bool clsCausaliContabili::AzzeraCausaliContabili() {
  cn->Esegui("DELETE FROM [Causali Contabili];");
  return true;
}

// ---------------------------------------------------------------- getters

std::string clsCausaliContabili::GetDescrizioneCausale(const Valore& codiceCausale, bool* Cancel,
                                                       IControllo* ControlloDaSelezionare) {
  Recordset rs = Leggi(codiceCausale, "[DescrizioneCausale]");
  if (!rs.Eof()) return LeggiCampo(rs("DescrizioneCausale"), Valore("")).Testo();
  if (!codiceCausale.TestoTrim().empty()) {
    if (Cancel) MsgCodiceInesistente(*Cancel, "Causale Contabile");
    EvidenziaControllo(ControlloDaSelezionare);
  }
  return "";
}

bool clsCausaliContabili::GetParametriCausale(
    const Valore& codiceCausale, Valore& DescrizioneCausale, Valore& TipoRegistroIva, Valore& TipoCausale,
    Valore& OperativitaPartite, Valore& OperativitaContabile, Valore& OperativitaIntra, Valore& serieProposta,
    Valore& RegistroIVAProposto, Valore& IndQuadratura, Valore (&Sottoconti_proposti_dare)[11],
    Valore (&Sottoconti_proposti_avere)[11], Valore (&Sottoconti_ammessi)[10], Valore& PosContrClifor,
    Valore& str_FlagNonUtilizzata, Valore& str_FlagInsoluto, Valore& OperativitaCespiti,
    Valore& TipoRegistroIVACRSemp, Valore& RegistroIVACRSemp, Valore& SottocontoIVARSM, Valore& OperativitaIntAut) {
  Recordset rs = Leggi(codiceCausale);
  bool trovato = !rs.Eof();
  // Each output from its column with its default; with no row, the default alone.
  auto campo = [&](const std::string& colonna, const char* predefinito) {
    return trovato ? LeggiCampo(rs(colonna), Valore(predefinito)) : Valore(predefinito);
  };
  DescrizioneCausale = campo("DescrizioneCausale", "");
  TipoRegistroIva = campo("TipoRegistroIva", "0");
  TipoCausale = campo("TipoCausale", "");
  OperativitaPartite = campo("OperativitaPartite", "0");
  OperativitaContabile = campo("OperativitaContabile", "0");
  OperativitaIntra = campo("OperativitaIntra", "0");
  serieProposta = campo("SerieProposta", "");
  RegistroIVAProposto = campo("RegistroIVAProposto", "01");
  IndQuadratura = campo("IndQuadratura", "0");
  for (int i = 1; i <= 10; ++i) {
    Sottoconti_proposti_dare[i] = campo(Numerata("SottocontoDare", i), "");
    Sottoconti_proposti_avere[i] = campo(Numerata("SottocontoAvere", i), "");
  }
  for (int i = 1; i <= 9; ++i) Sottoconti_ammessi[i] = campo(Numerata("Conto", i), "");
  PosContrClifor = campo("PosContrClifor", "");
  str_FlagNonUtilizzata = campo("FlagNonUtilizzata", "0");
  str_FlagInsoluto = campo("FlagInsoluto", "0");
  OperativitaCespiti = campo("OperativitaCespiti", "0");
  TipoRegistroIVACRSemp = campo("TipoRegistroIVACRSemp", "0");
  RegistroIVACRSemp = campo("RegistroIVACRSemp", "");
  SottocontoIVARSM = campo("SottocontoIVARSM", "");
  OperativitaIntAut = campo("OperativitaIntAut", "0");
  return trovato;
}

bool clsCausaliContabili::GetParametriCausaleMovimentazione(const Valore& codiceCausale, Valore& TipoRegistroIva,
                                                            Valore& TipoCausale, Valore& OperativitaPartite,
                                                            Valore& OperativitaContabile, Valore& OperativitaIntra,
                                                            Valore& IndQuadratura) {
  Recordset rs = Leggi(codiceCausale,
                       "[TipoRegistroIva], [TipoCausale], [OperativitaPartite], [OperativitaContabile], "
                       "[OperativitaIntra], [IndQuadratura]");
  if (rs.Eof()) {
    for (Valore* v : {&TipoRegistroIva, &TipoCausale, &OperativitaPartite, &OperativitaContabile, &OperativitaIntra,
                      &IndQuadratura})
      *v = Valore("");
    return false;
  }
  TipoRegistroIva = LeggiCampo(rs("TipoRegistroIva"), Valore("0"));
  TipoCausale = LeggiCampo(rs("TipoCausale"), Valore(""));
  OperativitaPartite = LeggiCampo(rs("OperativitaPartite"), Valore("0"));
  OperativitaContabile = LeggiCampo(rs("OperativitaContabile"), Valore("0"));
  OperativitaIntra = LeggiCampo(rs("OperativitaIntra"), Valore("0"));
  IndQuadratura = LeggiCampo(rs("IndQuadratura"), Valore("0"));
  return true;
}

bool clsCausaliContabili::GetParametriCausaleContabilizzazione(const Valore& codiceCausale, Valore& TipoRegistroIva,
                                                               Valore& TipoCausale, Valore& RegistroIVAProposto) {
  Recordset rs = Leggi(codiceCausale, "[TipoRegistroIva], [TipoCausale], [RegistroIVAProposto]");
  if (rs.Eof()) {
    TipoRegistroIva = Valore("0");
    TipoCausale = Valore("");
    return false;
  }
  TipoRegistroIva = LeggiCampo(rs("TipoRegistroIva"), Valore("0"));
  TipoCausale = LeggiCampo(rs("TipoCausale"), Valore(""));
  RegistroIVAProposto = LeggiCampo(rs("RegistroIVAProposto"), Valore("01"));
  return true;
}

bool clsCausaliContabili::ExistCausaleContabile(const Valore& codiceCausale) {
  return !Leggi(codiceCausale, "[CodiceCausale]").Eof();
}

bool clsCausaliContabili::LoadCausaliInCombo(const std::function<void(const std::string&)>& AddItem) {
  Recordset rs =
      cn->Execute("SELECT [CodiceCausale], [DescrizioneCausale] FROM [Causali Contabili] ORDER BY [CodiceCausale];");
  bool letti = !rs.Eof();
  for (; !rs.Eof(); rs.MoveNext())
    AddItem(LeggiCampo(rs("CodiceCausale"), Valore("")).Testo() + " " +
            LeggiCampo(rs("DescrizioneCausale"), Valore("")).Testo());
  return letti;
}

std::string clsCausaliContabili::GetTipoRegistroIvaCausaleContabile(const Valore& codiceCausale) {
  return LeggiTesto(codiceCausale, "TipoRegistroIva", "0");
}

std::string clsCausaliContabili::GetOperativitàCausaleContabile(const Valore& codiceCausale) {
  return LeggiTesto(codiceCausale, "OperativitaContabile", "0");
}

std::string clsCausaliContabili::GetTipoCausale(const Valore& codiceCausale) {
  return LeggiTesto(codiceCausale, "TipoCausale", "");
}

bool clsCausaliContabili::GetRegistroIVAProposto(const Valore& codiceCausale, Valore& RegistroIVAProposto) {
  Recordset rs = Leggi(codiceCausale, "[RegistroIVAProposto]");
  if (rs.Eof()) return false;
  RegistroIVAProposto = LeggiCampo(rs("RegistroIVAProposto"), Valore("01"));
  return true;
}

std::string clsCausaliContabili::GetSerieProposta(const Valore& codiceCausale) {
  return LeggiTesto(codiceCausale, "SerieProposta", "");
}

std::string clsCausaliContabili::GetSeriePropostaDecodificata(const Valore& serieProposta,
                                                              const Valore& DataDocumento) {
  auto data = DataDocumento.ComeData();
  std::string anno = std::to_string((data ? *data : Data::Oggi()).Anno());
  std::string corto = anno.size() > 2 ? anno.substr(2) : anno;
  // The long token first, or "%A" would take the head of "%AAA".
  return Sostituisci(Sostituisci(serieProposta.Testo(), "%AAA", anno), "%A", corto);
}

}  // namespace vorn
