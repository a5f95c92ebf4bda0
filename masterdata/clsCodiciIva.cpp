#include "masterdata/clsCodiciIva.h"

#include <array>
#include <fstream>
#include <stdexcept>

#include "frame/Comuni.h"
#include "frame/FileVorn.h"
#include "frame/Impaginazione.h"

namespace vorn {

namespace {

constexpr const char* kTabella = "Codici Iva";
constexpr const char* kCodice = "[Codici Iva].[Codice Iva]";

FiltroCodice Filtro(const Valore& codice) { return FiltraCodice(kCodice, codice); }

// A column of a read row with its default, as every getter reads it.
Valore Leggi(Recordset& rs, const char* colonna, const Valore& predefinito) {
  return LeggiCampo(rs(colonna), predefinito);
}

// A percentage column as an amount: Null and a missing value are 0.
Valore ComeImporto(const Valore& v) { return Valore(NullToZeroCy(v)); }

const char* SiNo(const Valore& flag) { return flag.TestoTrim() == "1" ? "Si" : "No"; }

// A label by the value plus one as index into the list; a value outside it gives "".
template <size_t N>
std::string Etichetta(const Valore& tipo, const std::array<const char*, N>& etichette) {
  if (tipo.IsNull() || tipo.IsEmpty()) return etichette[0];
  auto n = tipo.ComeIntero();
  if (!n || *n < 0 || *n >= static_cast<int64_t>(N)) return "";
  return etichette[static_cast<size_t>(*n)];
}

constexpr std::array<const char*, 6> kTipiAllegato = {
    "Non defin.", "Imponibile", "Non imponibile", "Esente", "Impon.IVA non esp.in ft.", "Impon. compr. imposta"};
constexpr std::array<const char*, 8> kTipiBlackList = {
    "Non definito",         "Imponib. relativo beni",  "Imponibile relativo servizi", "Non impon. relativo beni",
    "Non impon. relativo servizi", "Operazione esente", "Non sogg. relativo beni",     "Non sogg. relat. servizi"};

// The company's name, address and VAT number for the head of the print.
struct DatiDitta {
  std::string ragioneSociale, indirizzo, cap, citta, provincia, partitaIva;
};
DatiDitta LeggiDitta(Connessione& cn) {
  DatiDitta d;
  Recordset rs = cn.Execute(
      "SELECT [Ragione Sociale], [Indirizzo], [Cap], [Citta], [Provincia], [Partita IVA] "
      "FROM [Tabella Azienda] LIMIT 1;");
  if (rs.Eof()) return d;
  auto testo = [&](const char* c) { return LeggiCampo(rs(c), Valore("")).Testo(); };
  d.ragioneSociale = testo("Ragione Sociale");
  d.indirizzo = testo("Indirizzo");
  d.cap = testo("Cap");
  d.citta = testo("Citta");
  d.provincia = testo("Provincia");
  d.partitaIva = testo("Partita IVA");
  return d;
}

// One line of the body, 132 characters wide.
std::string RigaStampa(Recordset& rs) {
  std::string r;
  r += PadSinistra(Leggi(rs, "Codice Iva", Valore("")), 5) + " ";
  r += PadSinistra(Leggi(rs, "Descrizione Iva", Valore("")), 20) + " ";
  r += PadDestra(Valore(FormattaDecimali(Leggi(rs, "Aliquota", Valore(0)), Valore(2))), 8) + " ";
  r += PadDestra(Valore(FormattaDecimali(Leggi(rs, "Percentuale indetraibilità", Valore(0)), Valore(2))), 10) + " ";
  r += PadDestra(Valore(SiNo(Leggi(rs, "Flag Articolo 8", Valore("0")))), 6) + " ";
  r += PadDestra(Valore(SiNo(Leggi(rs, "Flag Fatture Esenti", Valore("0")))), 6) + " ";
  r += PadDestra(Valore(SiNo(Leggi(rs, "Flag Altre Esenzioni", Valore("0")))), 7) + "   ";
  bool esclusoSpesometro = NullToZeroLng(Leggi(rs, "Tipo operazione spesometro", Valore(0))) != 0;
  r += PadDestra(Valore(esclusoSpesometro ? "Si" : "No"), 6) + "    ";
  r += PadSinistra(Valore(Etichetta(rs("Tipo allegato clifor").Value(), kTipiAllegato)), 25) + " ";
  r += PadSinistra(Valore(Etichetta(rs("Tipo operazione black list").Value(), kTipiBlackList)), 25);
  return r;
}

}  // namespace

const std::vector<std::string>& clsCodiciIva::ColonneSalvaRecord() {
  static const std::vector<std::string> c = {
      "Aliquota",           "Descrizione Iva",       "Percentuale indetraibilità",   "Flag Articolo 8",
      "Flag Fatture Esenti", "Flag Altre Esenzioni", "Acquisto Intracomunitario",    "Flag Monte Acquisti",
      "Codice IVA ventilare", "Codice IVA detraibile", "Tipo allegato clifor",       "Tipo operazione black list",
      "Tipo operazione spesometro", "Codice EDI",    "Descrizione Iva Estesa",       "Libero 1",
      "Libero 2",           "Libero 3",              "Nota su documenti",            "Natura operazione fattura PA",
      "Flag Split Payment fattura PA", "Flag Reverse Charge"};
  return c;
}

std::string clsCodiciIva::EtichettaTipoAllegato(const Valore& tipo) { return Etichetta(tipo, kTipiAllegato); }
std::string clsCodiciIva::EtichettaTipoBlackList(const Valore& tipo) { return Etichetta(tipo, kTipiBlackList); }

// ---------------------------------------------------------------- record operations

bool clsCodiciIva::LocalizzaRecord(Recordset& T, const Valore& CodiceIva, const Valore& clientID, long hWnd) {
  auto f = Filtro(CodiceIva);
  return LocalizzaRecordProtocollo(*cn, T, kTabella, f.where, f.p, clientID, hWnd);
}

bool clsCodiciIva::SalvaRecord(const Valore& CodiceIva, const RecordValori& campi, const Valore& clientID, long hWnd,
                               bool& Cancel, bool NoPrompt) {
  // Every name is checked before the row is touched, so that a bad record writes nothing.
  auto valori = ColonneDaScrivere(campi, ColonneSalvaRecord(), [](const std::string& nome) {
    return "Codici Iva: colonna sconosciuta \"" + nome + "\"";
  });
  std::string codice = CodiceIva.TestoTrim();
  auto f = Filtro(Valore(codice));
  return SalvaRecordProtocollo(
      *cn, kTabella, f.where, f.p, clientID, hWnd, Cancel,
      [&](Recordset& rs, bool) {
        rs("Codice Iva") = Valore(codice);
        for (const auto& [colonna, valore] : valori) rs(colonna) = valore;
      },
      !NoPrompt);
}

bool clsCodiciIva::CancellaRecord(const Valore& CodiceIva) {
  auto f = Filtro(CodiceIva);
  cn->Esegui("DELETE FROM [Codici Iva] WHERE " + f.where + ";", f.p);
  return true;
}

bool clsCodiciIva::RecordSuccessivo(Valore& CodiceIva) {
  return PassoCodice(*cn, kTabella, "Codice Iva", CodiceIva, true);
}

bool clsCodiciIva::RecordPrecedente(Valore& CodiceIva) {
  return PassoCodice(*cn, kTabella, "Codice Iva", CodiceIva, false);
}

bool clsCodiciIva::AzzeraCodiciIva() {
  cn->Esegui("DELETE FROM [Codici Iva];");
  return true;
}

// ---------------------------------------------------------------- getters

std::optional<Valore> clsCodiciIva::LeggiColonna(const std::string& colonna, const Valore& CodiceIva) {
  auto f = Filtro(CodiceIva);
  Recordset rs = cn->Execute("SELECT [" + colonna + "] FROM [Codici Iva] WHERE " + f.where + ";", f.p);
  if (rs.Eof()) return std::nullopt;
  return rs.Fields(0).Value();
}

Valore clsCodiciIva::GetAliquotaIva(const Valore& CodiceIva) {
  auto v = LeggiColonna("Aliquota", CodiceIva);
  return v ? ComeImporto(*v) : Valore(0);
}

Valore clsCodiciIva::GetPercentualeIndetraibile(const Valore& CodiceIva) {
  auto v = LeggiColonna("Percentuale indetraibilità", CodiceIva);
  return v ? ComeImporto(*v) : Valore(0);
}

std::string clsCodiciIva::GetDescrizioneIva(const Valore& CodiceIva, bool* Cancel,
                                            IControllo* ControlloDaSelezionare) {
  auto v = LeggiColonna("Descrizione Iva", CodiceIva);
  if (v) return v->TestoTrim();
  if (!CodiceIva.TestoTrim().empty()) {
    if (Cancel) MsgCodiceInesistente(*Cancel);
    EvidenziaControllo(ControlloDaSelezionare);
  }
  return "";
}

bool clsCodiciIva::ExistCodiceIva(const Valore& CodiceIva, Valore* Descrizione_Iva) {
  auto v = LeggiColonna("Descrizione Iva", CodiceIva);
  if (Descrizione_Iva) *Descrizione_Iva = Valore(v ? v->TestoTrim() : std::string());
  return v.has_value();
}

bool clsCodiciIva::GetDatiIVA(const Valore& CodiceIva, Valore& aliquota, Valore& Percentuale_indetraibilità,
                              Valore& Flag_Articolo_8, Valore& Flag_Fatture_Esenti, Valore& Flag_Altre_Esenzioni,
                              Valore& Flag_Monte_Acquisti, Valore& Acquisto_Intracomunitario) {
  auto f = Filtro(CodiceIva);
  Recordset rs = cn->Execute(
      "SELECT [Aliquota], [Percentuale indetraibilità], [Flag Articolo 8], [Flag Fatture Esenti], "
      "[Flag Altre Esenzioni], [Flag Monte Acquisti], [Acquisto Intracomunitario] FROM [Codici Iva] WHERE " +
          f.where + ";",
      f.p);
  bool trovato = !rs.Eof();
  auto flag = [&](const char* colonna) { return trovato ? Leggi(rs, colonna, Valore("0")) : Valore("0"); };
  aliquota = trovato ? ComeImporto(rs("Aliquota").Value()) : Valore(Importo());
  Percentuale_indetraibilità = trovato ? ComeImporto(rs("Percentuale indetraibilità").Value()) : Valore(Importo());
  Flag_Articolo_8 = flag("Flag Articolo 8");
  Flag_Fatture_Esenti = flag("Flag Fatture Esenti");
  Flag_Altre_Esenzioni = flag("Flag Altre Esenzioni");
  Flag_Monte_Acquisti = flag("Flag Monte Acquisti");
  Acquisto_Intracomunitario = flag("Acquisto Intracomunitario");
  return trovato;
}

// ---------------------------------------------------------------- electronic-invoice getters

void clsCodiciIva::NormalizzaCodiceIva(Valore& Codice_IVA) {
  std::string c = Codice_IVA.Testo();
  if (LunghezzaTesto(c) != 3) return;
  char primo = c[0];
  if (primo != '0' && primo != '8' && primo != '9') return;
  Codice_IVA = Valore(Format(Valore(c.substr(1)), "000"));
}

bool clsCodiciIva::IsReverseCharge(Valore& Codice_IVA) {
  NormalizzaCodiceIva(Codice_IVA);
  auto v = LeggiColonna("Flag Reverse Charge", Codice_IVA);
  return v && v->TestoTrim() == "1";
}

int clsCodiciIva::GetNaturaIVAFatturaPA(Valore& Codice_IVA) {
  NormalizzaCodiceIva(Codice_IVA);
  auto v = LeggiColonna("Natura operazione fattura PA", Codice_IVA);
  return v ? NullToZeroLng(*v) : 0;
}

std::string clsCodiciIva::GetFlagSplitPayment(Valore& Codice_IVA) {
  NormalizzaCodiceIva(Codice_IVA);
  auto v = LeggiColonna("Flag Split Payment fattura PA", Codice_IVA);
  if (!v || v->IsNull()) return "0";
  return v->TestoTrim();
}

bool clsCodiciIva::IsNaturaIvaN2(Valore& Codice_IVA) {
  int n = GetNaturaIVAFatturaPA(Codice_IVA);
  return n == 2 || (n >= 8 && n <= 9);
}

bool clsCodiciIva::IsNaturaIvaN3(Valore& Codice_IVA) {
  int n = GetNaturaIVAFatturaPA(Codice_IVA);
  return n == 3 || (n >= 10 && n <= 15);
}

bool clsCodiciIva::IsNaturaIvaN6(Valore& Codice_IVA) {
  int n = GetNaturaIVAFatturaPA(Codice_IVA);
  return n == 6 || (n >= 16 && n <= 24);
}

// ---------------------------------------------------------------- print

bool clsCodiciIva::StampaCodiciIVA(IForm* frm_FormAttiva, const Valore& AzRagSoc, const Valore& AzParIva,
                                   const std::string& nomeFile, const Valore& avar_DataStampa,
                                   const Valore& avar_RighePagina) {
  const std::string corpo = CartellaTemp() + "/StamCIVA.tmp";
  auto data = avar_DataStampa.ComeData();
  std::string dataStampa = (data ? *data : Data::Oggi()).Testo();

  Recordset rs = cn->Execute("SELECT * FROM [Codici IVA] ORDER BY [Codice IVA];");
  {
    std::ofstream out(corpo, std::ios::binary | std::ios::trunc);
    if (!out) throw std::runtime_error("Impossibile creare il file " + corpo);
    if (rs.Eof()) {
      out.close();
      Host().MsgBox("Nessun dato da stampare.", vbInformation, "Stampa codici IVA.");
      return false;
    }
    for (; !rs.Eof(); rs.MoveNext()) out << RigaStampa(rs) << '\n';
    // A full disk shows at the flush: the body must be whole before the pages are made of it.
    out.close();
    if (!out) throw std::runtime_error("Scrittura non riuscita del file " + corpo + ": disco pieno o non scrivibile.");
  }

  DatiDitta ditta = LeggiDitta(*cn);
  // Name, address, postal code, town and province in brackets, each within the width the
  // company record gives it; a part left blank in the record is left out.
  std::string nomeDitta;
  auto aggiungi = [&](const std::string& parte) {
    if (parte.empty()) return;
    nomeDitta += (nomeDitta.empty() ? "" : " ") + parte;
  };
  aggiungi(SinistraTesto(ditta.ragioneSociale, 40));
  aggiungi(SinistraTesto(ditta.indirizzo, 25));
  aggiungi(SinistraTesto(ditta.cap, 5));
  aggiungi(SinistraTesto(ditta.citta, 25));
  if (!ditta.provincia.empty()) aggiungi("(" + SinistraTesto(ditta.provincia, 2) + ")");
  const std::string uguale(kColonneReport, '=');
  const std::string trattino(kColonneReport, '-');
  std::array<std::string, 9> testata = {
      PadSinistra(Valore("DITTA : " + nomeDitta), 62) + " P.IVA : " + PadSinistra(Valore(ditta.partitaIva), 11),
      uguale,
      "===" + std::string(35, ' ') + "S T A M P A   C O D I C I  I V A" + "Data: " +
          DataBreve(Valore(dataStampa)).Testo() + "    Pag: 1     ===",
      uguale,
      "C.IVA Descrizione            Aliquota %Indetr.  Art.8 Fat.Es. Altre.Es. Escl.Sp. Tipo operaz spesom.       "
      "Tipo operaz. B.L.       ",
      trattino,
      "",
      "",
      ""};
  std::array<std::string, 4> piede = {"****************** STAMPA ELABORATA PRESSO : " + AzRagSoc.TestoTrim() +
                                          " P. IVA: " + AzParIva.TestoTrim() + "  ************************",
                                      "", "", ""};
  try {
    ImpaginaFileAzienda(corpo, nomeFile, NullToZeroLng(avar_RighePagina), testata, piede, 3);
  } catch (...) {
    CancellaFile(corpo);
    throw;
  }
  CancellaFile(corpo);
  if (frm_FormAttiva) frm_FormAttiva->msgbar("Operazione completata");
  return true;
}

}  // namespace vorn
