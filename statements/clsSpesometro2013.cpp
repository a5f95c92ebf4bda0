#include "statements/clsSpesometro2013.h"

#include <chrono>
#include <ctime>
#include <exception>
#include <fstream>
#include <map>
#include <ostream>
#include <sstream>
#include <stdexcept>

#include "frame/Comuni.h"
#include "frame/FileVorn.h"
#include "frame/Formato.h"
#include "statements/modTracciati.h"

namespace vorn {

namespace {

constexpr const char* kTitolo = "Metodo MakeFileTelematicoSpesometro";
const std::string kRiga106(106, '-');

std::string T(const Valore& v) { return Trim(v.Testo()); }
Importo Imp(const Valore& v) { return NullToZeroCy(v); }
Importo Assoluto(Importo i) { return i < Importo() ? -i : i; }

// ---------------------------------------------------------------- extraction

const char* const kColonneSpesometro =
    "[Tipo], [Anno], [Periodo], [DataRegistrazione], [DataCompetenzaIva], [NumeroRegistrazione], [NumRigaAVideo], "
    "[TipoRigaIvaNormale], [IndTipoOperazBlackList], [IndTipoOperazSpesometro], [IndSoggettoSpesometro], "
    "[IndicatoreCliFor], [CodiceCliFor], [RagioneSociale], [Imponibile], [Imposta], [CodiceIVA], [CodiceNazione], "
    "[AreaNazione], [FlagBlackList], [FlagSanMarino], [CodiceCausale], [DescrizioneCausale], [DataDocumento], "
    "[SerieDocumento], [NumeroDocumento], [NumeroDiProtocollo], [TipoRegistroIva], [NumRegistroIva], "
    "[NoteRegistrazione], [FlagNotaVariazione]";

// A variation note: credit notes, debit notes and their reversals.
const char* const kNota = "(COALESCE(C.[TipoCausale], '') IN ('1', '8', '9'))";

// The rows of the clients (`cliFor` "C") or of the suppliers ("F") of the year.
std::string SqlEstrazione(bool clienti, bool senzaFiltri, Parametri& p, int tipo, int anno,
                          const std::string& rsm) {
  const std::string anagrafica = clienti ? "[Anagrafica Clienti]" : "[Anagrafica Fornitori]";
  std::string s = std::string("INSERT INTO [Spesometro2013] (") + kColonneSpesometro +
                  ") SELECT ?, ?, '', P.[DataRegistrazione], P.[DataCompetenzaIVA], P.[NumeroRegistrazione], "
                  "P.[NumRigaAVideo], P.[TipoRigaIvaNormale], COALESCE(I.[Tipo operazione black list], 0), "
                  "COALESCE(I.[Tipo operazione spesometro], 0), COALESCE(A.[Tipo soggetto allegati], 0), "
                  "P.[IndicatoreCliFor], P.[CodiceCliFor], A.[Ragione Sociale], "
                  "CASE WHEN " + std::string(kNota) + " THEN -P.[Imponibile] ELSE P.[Imponibile] END, "
                  "CASE WHEN " + kNota + " THEN -P.[ImportoMovimento] ELSE P.[ImportoMovimento] END, "
                  "P.[CodiceIva], A.[Codice Nazione], COALESCE(N.[Area Nazione], 0), "
                  "COALESCE(N.[Nazione Black List], ?), (COALESCE(A.[Codice Nazione], '') = ?), P.[CodiceCausale], "
                  "C.[DescrizioneCausale], P.[DataDocumento], P.[SerieDocumento], P.[NumeroDocumento], "
                  "P.[NumeroDiProtocollo], P.[TipoRegistroIva], P.[NumRegistroIva], P.[NoteRegistrazione], " +
                  kNota +
                  " FROM ((([Prima Nota] P LEFT JOIN [Causali Contabili] C ON C.[CodiceCausale] = P.[CodiceCausale]) "
                  "LEFT JOIN [Codici Iva] I ON I.[Codice Iva] = P.[CodiceIva]) LEFT JOIN " +
                  anagrafica +
                  " A ON A.[Codice Cliente] = P.[CodiceCliFor]) LEFT JOIN [Nazioni] N ON N.[Codice Nazione] = "
                  "A.[Codice Nazione] WHERE P.[DataRegistrazione] >= ? AND P.[DataRegistrazione] <= ? AND "
                  "P.[TipoRigaIvaNormale] = 'I' AND P.[IndicatoreCliFor] = ? AND P.[TipoRegistroIva] IN " +
                  (clienti ? "('1', '5', '7')" : "('2', '9')");
  p = {Valore(tipo), Valore(anno), Valore(false), Valore(rsm), Valore(*Data::Crea(anno, 1, 1)),
       Valore(*Data::Crea(anno, 12, 31)), Valore(clienti ? "C" : "F")};
  if (!senzaFiltri) {
    s += " AND (I.[Tipo operazione spesometro] = 0 OR I.[Tipo operazione spesometro] IS NULL) AND "
         "(A.[No su allegati IVA] = ? OR A.[No su allegati IVA] IS NULL) AND (C.[No su allegati IVA] = ? OR "
         "C.[No su allegati IVA] IS NULL) AND (N.[Nazione Black List] = ? OR N.[Nazione Black List] IS NULL)";
    p.insert(p.end(), {Valore(false), Valore(false), Valore(false)});
  }
  return s;
}

// ---------------------------------------------------------------- readers

// The subject of a row of the summary: from the clients' or the suppliers' archive.
std::string DiSoggetto(const std::string& colonna, const std::string& alias) {
  return "CASE WHEN R.[IndicatoreCliFor] = 'F' THEN F.[" + colonna + "] ELSE A.[" + colonna + "] END AS [" + alias +
         "]";
}

const std::string& SqlRiepilogo() {
  static const std::string s =
      "SELECT R.[IndicatoreCliFor], R.[CodiceCliFor], R.[RagioneSociale], R.[Imponibile], R.[Imposta], "
      "R.[DataDocumento], R.[DataRegistrazione], R.[NumeroDocumento], R.[SerieDocumento], R.[NumeroDiProtocollo], "
      "R.[NumeroRegistrazione], R.[FlagIVANonEsposta], R.[FlagDocRiepilogativo], R.[FlagNotaVariazione], "
      "R.[FlagBlackList], R.[IndSoggettoSpesometro], " +
      DiSoggetto("Partita Iva", "PartitaIVA") + ", " + DiSoggetto("Codice Fiscale", "CodiceFiscale") + ", " +
      DiSoggetto("Cognome", "Cognome") + ", " + DiSoggetto("Nome", "Nome") + ", " +
      DiSoggetto("Data nascita", "DataNascita") + ", " + DiSoggetto("Località nascita", "ComuneNascita") + ", " +
      DiSoggetto("Provincia nascita", "ProvinciaNascita") + ", " + DiSoggetto("Località", "Citta") + ", " +
      DiSoggetto("Indirizzo", "Indirizzo") + ", " + DiSoggetto("Ragione Sociale", "Denominazione") +
      ", N.[Codice UIC] AS [CodiceUICNazioneSedeLegale] "
      "FROM (([Spesometro2013Riepilogato] R LEFT JOIN [Anagrafica Clienti] A ON A.[Codice Cliente] = "
      "R.[CodiceCliFor] AND R.[IndicatoreCliFor] = 'C') LEFT JOIN [Anagrafica Fornitori] F ON F.[Codice Cliente] "
      "= R.[CodiceCliFor] AND R.[IndicatoreCliFor] = 'F') LEFT JOIN [Nazioni] N ON N.[Codice Nazione] = "
      "R.[CodiceNazione] WHERE R.[Tipo] = 0 AND R.[Anno] = ? AND ";
  return s;
}

const char* const kOrdine = " ORDER BY R.[IndicatoreCliFor], R.[CodiceCliFor], R.[DataRegistrazione], "
                            "R.[NumeroRegistrazione]";

// Residents and subjects of the Community, as the aggregated quadro FA takes them.
const char* const kResidenti =
    "COALESCE(R.[AreaNazione], 0) IN (0, 1) AND COALESCE(R.[IndSoggettoSpesometro], 0) IN (0, 1) AND "
    "(R.[FlagOperazTurismo] = ? OR R.[FlagOperazTurismo] IS NULL)";
const char* const kNonResidenti =
    "(COALESCE(R.[AreaNazione], 0) = 2 OR COALESCE(R.[IndSoggettoSpesometro], 0) IN (2, 3)) AND "
    "(R.[FlagOperazTurismo] = ? OR R.[FlagOperazTurismo] IS NULL)";
std::string Flag(const std::string& colonna, bool vero) {
  return vero ? "R.[" + colonna + "] = ?" : "(R.[" + colonna + "] = ? OR R.[" + colonna + "] IS NULL)";
}

// ---------------------------------------------------------------- descriptions

const std::map<std::string, std::string>& Descrizioni() {
  static const std::map<std::string, std::string> m = [] {
    std::map<std::string, std::string> d;
    auto quadro = [&](const std::string& q, std::initializer_list<const char*> colonne) {
      int c = 1;
      for (const char* testo : colonne) {
        char col[16];
        std::snprintf(col, sizeof col, "%03d", c++);
        if (*testo) d[q + "XXX" + col] = testo;
      }
    };
    quadro("FA", {"Partita IVA", "Codice Fiscale", "Casella Documento riepilogativo",
                  "Numero operazioni attive aggregate", "Numero operazioni passive aggregate", "Noleggio / Leasing",
                  "Totale operazioni imponibili, non imponibili ed esenti", "Totale imposta ",
                  "Totale operazioni con IVA non esposta", "Totale note di variazione a debito per la controparte",
                  "Totale imposta sulle note di variazione a debito",
                  "Totale operazioni imponibili, non imponibili ed esenti", "Totale imposta ",
                  "Totale operazioni con IVA non esposta", "Totale note di variazione a credito per la controparte",
                  "Totale imposta sulle note di variazione a credito"});
    quadro("SA", {"Codice fiscale del cliente", "Numero operazioni", "Importo complessivo", "Noleggio / Leasing"});
    quadro("FE", {"Partita IVA del cliente", "Codice Fiscale del cliente", "Casella Documento riepilogativo",
                  "Casella IVA non esposta in fattura", "Noleggio / Leasing", "Casella Autofattura",
                  "Data del documento", "Data di registrazione", "N° fattura / Documento riepilogativo", "Importo",
                  "Imposta", "Conferma importo"});
    quadro("FR", {"Partita IVA del fornitore", "Casella Documento riepilogativo", "Data del documento",
                  "Data di registrazione", "Casella IVA non esposta in fattura",
                  "Casella Operazione in reverse charge", "Casella Autofattura", "Importo", "Imposta",
                  "Conferma importo"});
    quadro("NE", {"Partita IVA", "Codice Fiscale", "Data di emissione nota", "Data di registrazione nota", "N° nota",
                  "Importo", "Imposta", "Conferma importo"});
    quadro("NR", {"Partita IVA", "Data del documento", "Data di registrazione", "Importo", "Imposta",
                  "Conferma importo"});
    quadro("DF", {"Codice fiscale del cliente", "Data dell'operazione", "Importo del documento", "Noleggio / Leasing",
                  "Conferma importo"});
    quadro("SE", {"Cognome", "Nome", "Data di nascita", "Comune o Stato estero di nascita", "Provincia",
                  "Codice Stato estero del domicilio", "Denominazione / Ragione sociale",
                  "Città estera delle Sede legale", "Codice Stato estero", "Indirizzo estero della sede legale",
                  "Codice identifivativo IVA", "Data di emissione documento / fattura",
                  "Data di registrazione fattura", "N° fattura", "Imponibile / Importo", "Imposta",
                  "Conferma importo"});
    quadro("FN", {"Cognome", "Nome", "Data di nascita", "Comune o Stato estero di nascita", "Provincia",
                  "Codice Stato estero del domicilio", "Denominazione / Ragione sociale",
                  "Città estera delle Sede legale", "Codice Stato estero", "Indirizzo estero della sede legale",
                  "Data di emissione documento / fattura", "Data di registrazione fattura", "N° fattura",
                  "Noleggio / Leasing", "Importo", "Imposta", "Conferma importo"});
    quadro("TU", {"Cognome", "Nome", "Data di nascita", "Comune o Stato estero di nascita", "Provincia",
                  "Città estera di residenza", "Codice Stato estero", "Indirizzo estero di residenza",
                  "Data di emissione documento / fattura", "Data di registrazione", "N° fattura / Documento",
                  "Imponibile/Importo", "Imposta", "Conferma importo"});
    const std::pair<const char*, const char*> bl[] = {
        {"BL001001", "Cognome"},
        {"BL001002", "Nome"},
        {"BL001003", "Data di nascita"},
        {"BL001004", "Comune o Stato estero di nascita"},
        {"BL001005", "Provincia"},
        {"BL001006", "Codice Stato estero"},
        {"BL001007", "Denominazione / Ragione sociale"},
        {"BL001008", "Città estera delle Sede legale"},
        {"BL001009", "Codice Stato estero"},
        {"BL001010", "Indirizzo estero della sede legale"},
        {"BL002001", "Codice identificativo IVA"},
        {"BL002002", "Operazioni con paesi con fiscalità privilegiata"},
        {"BL002003", "Operazioni con soggetti non residenti"},
        {"BL002004", "Acquisti di servizi da soggetti non residenti"},
        {"BL003001", "Operazioni imponibili - Importo complessivo"},
        {"BL003002", "Operazioni imponibili - Imposta"},
        {"BL004001", "Cessione di beni - Importo complessivo"},
        {"BL004002", "Prestazione di servizi - Importo complessivo"},
        {"BL005001", "Note di variazione - Importo complessivo"},
        {"BL005002", "Note di variazione - Imposta"},
        {"BL006001", "Acquisti - Importo complessivo"},
        {"BL006002", "Acquisti - Imposta"},
        {"BL007001", "Operazioni non soggette - Importo complessivo"},
        {"BL008001", "Note di variazione acquisti - Importo complessivo"},
        {"BL008002", "Note di variazione acquisti - Imposta"}};
    for (const auto& [k, v] : bl) d[k] = v;
    return d;
  }();
  return m;
}

// ---------------------------------------------------------------- pages

// The pages of one quadro, filled row by row.
struct Pagine {
  Pagine(std::string n, int r, bool ric) : nome(std::move(n)), righePerPagina(r), richiesto(ric) {}
  std::string nome;
  int righePerPagina = 1;
  bool richiesto = false;
  std::vector<std::string> pagine;
  std::string corrente;
  int riga = 1;
  long righe = 0;  // rows written
  bool aperta = false;

  std::string Id(int colonna) const {
    char b[16];
    std::snprintf(b, sizeof b, "%s%03d%03d", nome.c_str(), riga, colonna);
    return b;
  }
  void Campo(int colonna, const Valore& v, const std::string& formato) {
    aperta = true;
    AccodaCampoNonPosizionale(corrente, Id(colonna), v, formato);
  }
  // A field of BL, whose identifier names the section instead of the row.
  void CampoBL(const std::string& id, const Valore& v, const std::string& formato) {
    aperta = true;
    AccodaCampoNonPosizionale(corrente, id, v, formato);
  }
  void FineRiga() {
    aperta = true;
    ++righe;
    if (++riga > righePerPagina) Chiudi();
  }
  void Chiudi() {
    if (!aperta) return;
    if (pagine.size() >= 50000) throw std::length_error("Quadro " + nome + ": superato il limite di 50000 pagine.");
    pagine.push_back(std::move(corrente));
    corrente.clear();
    riga = 1;
    aperta = false;
  }
};


std::string NumeroFatt(const Valore& numero, const Valore& serie) {
  std::string n = T(numero), s = T(serie);
  return s.empty() ? n : n + "/" + s;
}

std::string DataTesto(const Valore& v) {
  auto d = v.ComeData();
  return d ? d->Testo() : std::string();
}

std::string Adesso() {
  auto t = std::chrono::system_clock::to_time_t(std::chrono::system_clock::now());
  std::tm tm{};
  localtime_r(&t, &tm);
  char b[32];
  std::strftime(b, sizeof b, "%d/%m/%Y %H:%M:%S", &tm);
  return b;
}

// The head of a page record ("C", "D", "E") up to the body.
RecordTelematico TestaPagina(char tipo, const std::string& codiceFiscale, long modulo) {
  RecordTelematico r;
  r.Campo(1, std::string(1, tipo))
      .Campo(2, FormatCF(Valore(codiceFiscale)))
      .Campo(18, FormatNU(Valore(static_cast<long long>(modulo)), 8))
      .Riempitivo(26, 3)
      .Riempitivo(29, 25)
      .Riempitivo(54, 20)
      .Campo(74, FormatCF(Valore("")));
  return r;
}

std::string CodaPagina(RecordTelematico& r, const std::string& corpo) {
  r.Campo(90, PadSinistra(Valore(corpo), 1800)).Riempitivo(1890, 8).Campo(1898, "A");
  return r.Testo();
}

}  // namespace

std::vector<std::string> RecordDellaPagina(char tipo, const std::string& codiceFiscale, long modulo,
                                           const std::string& pagina) {
  // By characters: a field of 24 characters may take more bytes, and 1800 characters are 75
  // whole fields.
  std::vector<std::string> v;
  const size_t caratteri = LunghezzaTesto(pagina);
  for (size_t da = 1; da <= caratteri; da += 1800) {
    RecordTelematico r = TestaPagina(tipo, codiceFiscale, modulo);
    v.push_back(CodaPagina(r, MedioTesto(pagina, da, 1800)));
  }
  return v;
}

namespace {

// One field read back from the body of a page record.
struct CampoLetto {
  long modulo = 0;
  std::string quadro, riga, colonna, valore;
  std::string Id() const { return quadro + riga + colonna; }
};

// Reads a statement file: every record checked for its length, its end mark and its place in
// the order A, B, C..., D..., E, Z; the fields of the C and D pages handed to `campo`. An empty
// text when the file is well formed, otherwise why not.
std::string LeggiFile(const std::string& nome, ContenutoFileSpesometro& c,
                      const std::function<void(const CampoLetto&)>& campo) {
  std::ifstream in(nome, std::ios::binary);
  if (!in) return "Impossibile aprire il file " + nome;
  c = ContenutoFileSpesometro{};
  std::string riga;
  long n = 0;
  char precedente = 0;
  const std::string ordine = "ABCDEZ";
  bool coda = false;
  while (std::getline(in, riga)) {
    ++n;
    if (!riga.empty() && riga.back() == '\r') riga.pop_back();
    const std::string dove = "record " + std::to_string(n);
    if (coda) return dove + ": righe dopo il record di coda \"Z\"";
    if (riga.size() != static_cast<size_t>(kLunghezzaRecordTelematico))
      return dove + ": " + std::to_string(riga.size()) + " caratteri invece di 1898";
    if (riga.back() != 'A') return dove + ": manca il carattere di fine \"A\"";
    char tipo = riga[0];
    size_t pos = ordine.find(tipo);
    if (pos == std::string::npos) return dove + ": tipo record sconosciuto '" + std::string(1, tipo) + "'";
    size_t prima = precedente ? ordine.find(precedente) : std::string::npos;
    bool ripetibile = tipo == 'C' || tipo == 'D';
    if ((n == 1) != (tipo == 'A') || (n == 2) != (tipo == 'B') ||
        (tipo == 'Z' && precedente != 'E') ||
        (prima != std::string::npos && (pos < prima || (pos == prima && !ripetibile))))
      return dove + ": record \"" + std::string(1, tipo) + "\" fuori posto";
    precedente = tipo;
    if (tipo == 'B') ++c.recordB;
    if (tipo == 'E') ++c.recordE;
    if (tipo == 'Z') {
      coda = true;
      auto conta = [&](size_t da) { return std::stol(riga.substr(da, 9)); };
      if (conta(15) != c.recordB || conta(24) != c.recordC || conta(33) != c.recordD || conta(42) != c.recordE)
        return dove + ": i conteggi del record di coda non corrispondono ai record del file";
    }
    if (!ripetibile) continue;
    ++(tipo == 'C' ? c.recordC : c.recordD);
    long modulo = std::stol(riga.substr(17, 8));
    for (size_t p = 89; p + 24 <= 1889; p += 24) {
      std::string f = riga.substr(p, 24);
      if (Trim(f).empty()) break;
      CampoLetto l;
      l.modulo = modulo;
      l.quadro = f.substr(0, 2);
      l.riga = f.substr(2, 3);
      l.colonna = f.substr(5, 3);
      l.valore = Trim(DaTestoTelematico(f.substr(8, 16)));
      ++c.campi;
      campo(l);
    }
  }
  if (in.bad()) return "Impossibile leggere il file " + nome;
  if (n == 0) return "Il file " + nome + " è vuoto";
  if (!coda) return "Manca il record di coda \"Z\"";
  return {};
}

std::string Csv(const std::string& s) {
  std::string o = "\"";
  for (char ch : s) o += ch == '"' ? std::string("\"\"") : std::string(1, ch);
  return o + "\"";
}

std::string PrimaRiga(const std::string& percorso, size_t massimo) {
  std::ifstream f(percorso, std::ios::binary);
  std::string r(massimo, '\0');
  f.read(r.data(), static_cast<std::streamsize>(massimo));
  r.resize(static_cast<size_t>(f.gcount()));
  return r;
}

}  // namespace

// ================================================================ extraction

long clsSpesometro2013::EstraiDatiSpesometroDaPrimaNota(int tipo, int anno, const std::string& CodiceNazioneRSM,
                                                        bool estraiSenzaFiltri) {
  if (!Data::Crea(anno, 1, 1)) {
    Host().MsgBox("Anno non valido: " + std::to_string(anno), vbExclamation, "Estrazione dati spesometro");
    return -1;
  }
  long righe = 0;
  try {
    Clessidra c;
    ConRiprova(*cn, [&] {
      Atomico unita(*cn);
      righe = 0;
      if (formAttiva) formAttiva->msgbar("Estrazione dati spesometro " + std::to_string(anno) + "...");
      ForzaTipoOperazioneSpesometroZeroSeNull();
      cn->Esegui("DELETE FROM [Spesometro2013] WHERE [Tipo] = ? AND [Anno] = ?", {Valore(tipo), Valore(anno)});
      for (bool clienti : {true, false}) {
        Parametri p;
        std::string sql = SqlEstrazione(clienti, estraiSenzaFiltri, p, tipo, anno, CodiceNazioneRSM);
        righe += static_cast<long>(cn->Esegui(sql, p));
      }
      for (int mese = 1; mese <= 12; ++mese)
        cn->Esegui("UPDATE [Spesometro2013] SET [Periodo] = ? WHERE [Tipo] = ? AND [Anno] = ? AND "
                   "[DataRegistrazione] >= ? AND [DataRegistrazione] <= ?",
                   {Valore(std::to_string(mese)), Valore(tipo), Valore(anno), Valore(*Data::Crea(anno, mese, 1)),
                    Valore(*Data::Crea(anno, mese, Data::GiorniNelMese(anno, mese)))});
      if (formAttiva) formAttiva->msgbar("Riepilogo per documento...");
      AccodaASpesometro2013RiepilogatoDatiSpesometro(tipo, anno);
      unita.Conferma();
    });
  } catch (const std::exception& e) {
    Host().MsgBox("Estrazione non eseguita, i dati estratti in precedenza sono invariati.\n" + std::string(e.what()),
                  vbCritical, "Estrazione dati spesometro");
    return -1;
  }
  return righe;
}

void clsSpesometro2013::ForzaTipoOperazioneSpesometroZeroSeNull() {
  cn->Esegui("UPDATE [Codici Iva] SET [Tipo operazione spesometro] = 0 WHERE [Tipo operazione spesometro] IS NULL");
}

void clsSpesometro2013::AccodaASpesometro2013RiepilogatoDatiSpesometro(int tipo, int anno) {
  Atomico unita(*cn);
  cn->Esegui("DELETE FROM [Spesometro2013Riepilogato] WHERE [Tipo] = ? AND [Anno] = ?", {Valore(tipo), Valore(anno)});
  const std::string gruppo =
      "S.[Tipo], S.[Anno], S.[Periodo], S.[IndSoggettoSpesometro], S.[DataRegistrazione], S.[DataCompetenzaIva], "
      "S.[NumeroRegistrazione], S.[IndicatoreCliFor], S.[CodiceCliFor], S.[RagioneSociale], S.[CodiceNazione], "
      "S.[AreaNazione], S.[FlagBlackList], S.[FlagSanMarino], S.[CodiceCausale], S.[DescrizioneCausale], "
      "S.[DataDocumento], S.[SerieDocumento], S.[NumeroDocumento], S.[NumeroDiProtocollo], S.[TipoRegistroIva], "
      "S.[NumRegistroIva], S.[NoteRegistrazione], S.[FlagNotaVariazione]";
  cn->Esegui(
      "INSERT INTO [Spesometro2013Riepilogato] ([Tipo], [Anno], [Periodo], [IndSoggettoSpesometro], "
      "[DataRegistrazione], [DataCompetenzaIva], [NumeroRegistrazione], [IndicatoreCliFor], [CodiceCliFor], "
      "[RagioneSociale], [CodiceNazione], [AreaNazione], [FlagBlackList], [FlagSanMarino], [CodiceCausale], "
      "[DescrizioneCausale], [DataDocumento], [SerieDocumento], [NumeroDocumento], [NumeroDiProtocollo], "
      "[TipoRegistroIva], [NumRegistroIva], [NoteRegistrazione], [FlagNotaVariazione], [IndTipoOperazBlackList], "
      "[NumRigaAVideo], [TipoRigaIvaNormale], [Imponibile], [Imposta], [FlagIVANonEsposta], [FlagOperazTurismo], "
      "[FlagDocRiepilogativo]) SELECT " +
          gruppo +
          ", MIN(S.[IndTipoOperazBlackList]), MIN(S.[NumRigaAVideo]), MIN(S.[TipoRigaIvaNormale]), "
          "SUM(S.[Imponibile]), SUM(S.[Imposta]), (MIN(CASE WHEN COALESCE(S.[IndTipoOperazSpesometro], 0) = 4 "
          "THEN 1 ELSE 0 END) = 1), ?, ? FROM [Spesometro2013] S WHERE S.[Tipo] = ? AND S.[Anno] = ? GROUP BY " +
          gruppo,
      {Valore(false), Valore(false), Valore(tipo), Valore(anno)});
  unita.Conferma();
}

bool clsSpesometro2013::ExistDatiAnno(int tipo, int anno) {
  return !cn->Scalare("SELECT 1 FROM [Spesometro2013] WHERE [Tipo] = ? AND [Anno] = ? LIMIT 1",
                      {Valore(tipo), Valore(anno)})
              .IsNull();
}

// ================================================================ aggregation

void clsSpesometro2013::CancellaRecordPreaggregazione(int anno) {
  cn->Esegui("DELETE FROM [Spesometro2013Preaggregazione] WHERE [Anno] = ?", {Valore(anno)});
}
void clsSpesometro2013::CancellaRecordTotali(int anno) {
  cn->Esegui("DELETE FROM [Spesometro2013Totali] WHERE [Anno] = ?", {Valore(anno)});
}

void clsSpesometro2013::AccodaQuadroFA(int anno, const std::string& identificativo, const std::string& cliFor,
                                       bool nota, bool ivaNonEsposta, const std::string& colonna) {
  auto anag = [](const std::string& c) {
    return "MIN(CASE WHEN R.[IndicatoreCliFor] = 'F' THEN F.[" + c + "] ELSE A.[" + c + "] END)";
  };
  cn->Esegui("INSERT INTO [Spesometro2013Preaggregazione] ([Anno], [IndicatoreCliFor], [CodiceCliFor], "
             "[RagioneSociale], [CodiceFiscale], [PartitaIVA], [Identificativo], [Valore], [NumeroRegistrazione]) "
             "SELECT R.[Anno], R.[IndicatoreCliFor], R.[CodiceCliFor], " +
                 anag("Ragione Sociale") + ", " + anag("Codice Fiscale") + ", " + anag("Partita Iva") +
                 ", ?, SUM(R.[" + colonna +
                 "]), R.[NumeroRegistrazione] FROM ([Spesometro2013Riepilogato] R LEFT JOIN [Anagrafica Clienti] A "
                 "ON A.[Codice Cliente] = R.[CodiceCliFor] AND R.[IndicatoreCliFor] = 'C') LEFT JOIN "
                 "[Anagrafica Fornitori] F ON F.[Codice Cliente] = R.[CodiceCliFor] AND R.[IndicatoreCliFor] = 'F' "
                 "WHERE R.[Tipo] = 0 AND R.[Anno] = ? AND " +
                 kResidenti + " AND R.[IndicatoreCliFor] = ? AND " + Flag("FlagNotaVariazione", nota) + " AND " +
                 Flag("FlagIVANonEsposta", ivaNonEsposta) +
                 " GROUP BY R.[Anno], R.[IndicatoreCliFor], R.[CodiceCliFor], R.[NumeroRegistrazione]",
             {Valore(identificativo), Valore(anno), Valore(false), Valore(cliFor), Valore(nota), Valore(ivaNonEsposta)});
}

void clsSpesometro2013::AccodaOperazioniAttiveImponibiliQuadroFA(int a) { AccodaQuadroFA(a, "FAXXX007", "C", false, false, "Imponibile"); }
void clsSpesometro2013::AccodaOperazioniAttiveImposteQuadroFA(int a) { AccodaQuadroFA(a, "FAXXX008", "C", false, false, "Imposta"); }
void clsSpesometro2013::AccodaOperazioniAttiveIVANonEspostaQuadroFA(int a) { AccodaQuadroFA(a, "FAXXX009", "C", false, true, "Imponibile"); }
void clsSpesometro2013::AccodaOperazioniAttiveImponibiliNoteVariazioniQuadroFA(int a) { AccodaQuadroFA(a, "FAXXX010", "C", true, false, "Imponibile"); }
void clsSpesometro2013::AccodaOperazioniAttiveImposteNoteVariazioniQuadroFA(int a) { AccodaQuadroFA(a, "FAXXX011", "C", true, false, "Imposta"); }
void clsSpesometro2013::AccodaOperazioniPassiveImponibiliQuadroFA(int a) { AccodaQuadroFA(a, "FAXXX012", "F", false, false, "Imponibile"); }
void clsSpesometro2013::AccodaOperazioniPassiveImposteQuadroFA(int a) { AccodaQuadroFA(a, "FAXXX013", "F", false, false, "Imposta"); }
void clsSpesometro2013::AccodaOperazioniPassiveIVANonEspostaQuadroFA(int a) { AccodaQuadroFA(a, "FAXXX014", "F", false, true, "Imponibile"); }
void clsSpesometro2013::AccodaOperazioniPassiveImponibiliNoteVariazioniQuadroFA(int a) { AccodaQuadroFA(a, "FAXXX015", "F", true, false, "Imponibile"); }
void clsSpesometro2013::AccodaOperazioniPassiveImposteNoteVariazioniQuadroFA(int a) { AccodaQuadroFA(a, "FAXXX016", "F", true, false, "Imposta"); }

void clsSpesometro2013::AccodaPreaggregazioneATotali(int anno) {
  cn->Esegui("INSERT INTO [Spesometro2013Totali] ([Anno], [IndicatoreCliFor], [CodiceCliFor], [CodiceFiscale], "
             "[PartitaIVA], [Identificativo], [Valore]) SELECT [Anno], [IndicatoreCliFor], [CodiceCliFor], "
             "MIN([CodiceFiscale]), MIN([PartitaIVA]), [Identificativo], SUM([Valore]) FROM "
             "[Spesometro2013Preaggregazione] WHERE [Anno] = ? GROUP BY [Anno], [IndicatoreCliFor], [CodiceCliFor], "
             "[Identificativo]",
             {Valore(anno)});
}

void clsSpesometro2013::AccodaOperazioniSenzaFatturaQuadroSA(int anno) {
  cn->Esegui("INSERT INTO [Spesometro2013Totali] ([Anno], [IndicatoreCliFor], [CodiceCliFor], [CodiceFiscale], "
             "[PartitaIVA], [Identificativo], [Valore]) SELECT N.[Anno], 'C', N.[CodiceCliFor], "
             "MIN(A.[Codice Fiscale]), MIN(A.[Partita Iva]), 'SAXXX003', SUM(N.[ImportoDocumento]) FROM "
             "[Spesometro2013NoFattura] N LEFT JOIN [Anagrafica Clienti] A ON A.[Codice Cliente] = N.[CodiceCliFor] "
             "WHERE N.[Anno] = ? AND N.[IndicatoreCliFor] = 'C' GROUP BY N.[Anno], N.[CodiceCliFor]",
             {Valore(anno)});
}

void clsSpesometro2013::RicostruisciAggregati(int anno) {
  ConRiprova(*cn, [&] {
    Atomico unita(*cn);
    CancellaRecordPreaggregazione(anno);
    CancellaRecordTotali(anno);
    AccodaOperazioniAttiveImponibiliQuadroFA(anno);
    AccodaOperazioniAttiveImposteQuadroFA(anno);
    AccodaOperazioniAttiveIVANonEspostaQuadroFA(anno);
    AccodaOperazioniAttiveImponibiliNoteVariazioniQuadroFA(anno);
    AccodaOperazioniAttiveImposteNoteVariazioniQuadroFA(anno);
    AccodaOperazioniPassiveImponibiliQuadroFA(anno);
    AccodaOperazioniPassiveImposteQuadroFA(anno);
    AccodaOperazioniPassiveIVANonEspostaQuadroFA(anno);
    AccodaOperazioniPassiveImponibiliNoteVariazioniQuadroFA(anno);
    AccodaOperazioniPassiveImposteNoteVariazioniQuadroFA(anno);
    AccodaPreaggregazioneATotali(anno);
    AccodaOperazioniSenzaFatturaQuadroSA(anno);
    unita.Conferma();
  });
}

namespace {
std::vector<std::string> Elenco(Connessione& cn, const std::string& sql, const Parametri& p) {
  std::vector<std::string> v;
  cn.Scorri(sql, p, [&](const std::vector<Colonna>&, const std::vector<Valore>& r) {
    v.push_back(T(r[0]));
    return true;
  });
  return v;
}
}  // namespace

std::vector<std::string> clsSpesometro2013::GetElencoPartiteIVAAggregate(int anno, const std::string& quadro) {
  return Elenco(*cn,
                "SELECT DISTINCT [PartitaIVA] FROM [Spesometro2013Totali] WHERE [Anno] = ? AND "
                "substr([Identificativo], 1, 2) = ? AND [PartitaIVA] IS NOT NULL AND TRIM([PartitaIVA]) <> '' "
                "ORDER BY [PartitaIVA]",
                {Valore(anno), Valore(quadro)});
}

std::vector<std::string> clsSpesometro2013::GetElencoCodiciFiscaliAggregati(int anno, const std::string& quadro) {
  return Elenco(*cn,
                "SELECT [CodiceFiscale] FROM [Spesometro2013Totali] WHERE [Anno] = ? AND substr([Identificativo], 1, "
                "2) = ? AND [CodiceFiscale] IS NOT NULL AND TRIM([CodiceFiscale]) <> '' AND ([PartitaIVA] IS NULL OR "
                "TRIM([PartitaIVA]) = '') GROUP BY [CodiceFiscale] ORDER BY [CodiceFiscale]",
                {Valore(anno), Valore(quadro)});
}

namespace {
long Conta(Connessione& cn, const std::string& sql, const Parametri& p) {
  return static_cast<long>(NullToZeroLng(cn.Scalare(sql, p)));
}
const char* const kContaPreaggregati =
    "SELECT COUNT(*) FROM (SELECT DISTINCT [IndicatoreCliFor], [CodiceCliFor], [NumeroRegistrazione] FROM "
    "[Spesometro2013Preaggregazione] WHERE [Anno] = ? AND [IndicatoreCliFor] = ? AND ";
}  // namespace

long clsSpesometro2013::GetNumeroOperazioniAttiveAggregateByPartitaIVA(int anno, const std::string& pi) {
  return Conta(*cn, std::string(kContaPreaggregati) + "[PartitaIVA] = ?) X", {Valore(anno), Valore("C"), Valore(pi)});
}
long clsSpesometro2013::GetNumeroOperazioniPassiveAggregateByPartitaIVA(int anno, const std::string& pi) {
  return Conta(*cn, std::string(kContaPreaggregati) + "[PartitaIVA] = ?) X", {Valore(anno), Valore("F"), Valore(pi)});
}
long clsSpesometro2013::GetNumeroOperazioniAttiveAggregateByCodiceFiscale(int anno, const std::string& cf) {
  return Conta(*cn,
               std::string(kContaPreaggregati) +
                   "[CodiceFiscale] = ? AND ([PartitaIVA] IS NULL OR TRIM([PartitaIVA]) = '')) X",
               {Valore(anno), Valore("C"), Valore(cf)});
}
long clsSpesometro2013::GetNumeroOperazioniPassiveAggregateByCodiceFiscale(int anno, const std::string& cf) {
  return Conta(*cn,
               std::string(kContaPreaggregati) +
                   "[CodiceFiscale] = ? AND ([PartitaIVA] IS NULL OR TRIM([PartitaIVA]) = '')) X",
               {Valore(anno), Valore("F"), Valore(cf)});
}
long clsSpesometro2013::GetNumeroOperazioniQuadroSA(int anno, const std::string& cf) {
  return Conta(*cn,
               "SELECT COUNT(*) FROM [Spesometro2013NoFattura] N INNER JOIN [Anagrafica Clienti] A ON "
               "A.[Codice Cliente] = N.[CodiceCliFor] WHERE N.[Anno] = ? AND N.[IndicatoreCliFor] = 'C' AND "
               "A.[Codice Fiscale] = ?",
               {Valore(anno), Valore(cf)});
}

Recordset clsSpesometro2013::LocalizzaRecordQuadroAggregatoByPartitaIVA(int anno, const std::string& quadro,
                                                                        const std::string& pi) {
  return cn->Execute("SELECT [Identificativo], SUM([Valore]) AS [Valore] FROM [Spesometro2013Totali] WHERE [Anno] = ? "
                     "AND substr([Identificativo], 1, 2) = ? AND [PartitaIVA] = ? GROUP BY [Identificativo] ORDER BY "
                     "[Identificativo]",
                     {Valore(anno), Valore(quadro), Valore(pi)});
}
Recordset clsSpesometro2013::LocalizzaRecordQuadroAggregatoByCodiceFiscale(int anno, const std::string& quadro,
                                                                           const std::string& cf) {
  return cn->Execute("SELECT [Identificativo], SUM([Valore]) AS [Valore] FROM [Spesometro2013Totali] WHERE [Anno] = ? "
                     "AND substr([Identificativo], 1, 2) = ? AND [CodiceFiscale] = ? AND ([PartitaIVA] IS NULL OR "
                     "TRIM([PartitaIVA]) = '') GROUP BY [Identificativo] ORDER BY [Identificativo]",
                     {Valore(anno), Valore(quadro), Valore(cf)});
}
Recordset clsSpesometro2013::LocalizzaRecordQuadroAggregatoNoCodiceFiscaleNoPartitaIVA(int anno,
                                                                                      const std::string& quadro) {
  return cn->Execute("SELECT DISTINCT [IndicatoreCliFor], [CodiceCliFor] FROM [Spesometro2013Totali] WHERE [Anno] = ? "
                     "AND substr([Identificativo], 1, 2) = ? AND ([PartitaIVA] IS NULL OR TRIM([PartitaIVA]) = '') "
                     "AND ([CodiceFiscale] IS NULL OR TRIM([CodiceFiscale]) = '') ORDER BY [IndicatoreCliFor], "
                     "[CodiceCliFor]",
                     {Valore(anno), Valore(quadro)});
}

// ================================================================ readers

clsSpesometro2013::SqlLettura clsSpesometro2013::SqlQuadro(const std::string& quadro, int anno) {
  auto riepilogo = [&](const std::string& filtro, Parametri p) {
    p.insert(p.begin(), Valore(anno));
    return SqlLettura{SqlRiepilogo() + filtro + kOrdine, std::move(p)};
  };
  const std::string residenti = std::string(kResidenti) + " AND R.[IndicatoreCliFor] = ";
  const std::string nonResidenti = std::string(kNonResidenti) + " AND R.[IndicatoreCliFor] = ";
  const Valore no(false), si(true);
  if (quadro == "FE") return riepilogo(residenti + "'C' AND " + Flag("FlagNotaVariazione", false), {no, no});
  if (quadro == "FR") return riepilogo(residenti + "'F' AND " + Flag("FlagNotaVariazione", false), {no, no});
  if (quadro == "NE") return riepilogo(residenti + "'C' AND " + Flag("FlagNotaVariazione", true), {no, si});
  if (quadro == "NR") return riepilogo(residenti + "'F' AND " + Flag("FlagNotaVariazione", true), {no, si});
  if (quadro == "FN" || quadro == "BL002003")
    return riepilogo(nonResidenti + "'C' AND " + Flag("FlagBlackList", false), {no, no});
  if (quadro == "SE" || quadro == "BL002004")
    return riepilogo(nonResidenti + "'F' AND " + Flag("FlagBlackList", false), {no, no});
  if (quadro == "TU") return riepilogo("R.[FlagOperazTurismo] = ? AND R.[IndicatoreCliFor] = 'C'", {si});
  if (quadro == "BL002002") return riepilogo(Flag("FlagBlackList", true), {si});
  if (quadro == "DF")
    return {"SELECT N.[IndicatoreCliFor], N.[CodiceCliFor], N.[RagioneSociale], N.[DataOperazione], "
            "N.[ImportoDocumento], N.[IndTipoNoleggio], A.[Codice Fiscale] AS [CodiceFiscale] FROM "
            "[Spesometro2013NoFattura] N LEFT JOIN [Anagrafica Clienti] A ON A.[Codice Cliente] = N.[CodiceCliFor] "
            "WHERE N.[Anno] = ? AND N.[IndicatoreCliFor] = 'C' ORDER BY N.[CodiceCliFor], N.[DataOperazione]",
            {Valore(anno)}};
  throw std::invalid_argument("Quadro sconosciuto: '" + quadro + "'");
}

bool clsSpesometro2013::HaRighe(const std::string& quadro, int anno) {
  SqlLettura q = SqlQuadro(quadro, anno);
  return !cn->Scalare("SELECT 1 FROM (" + q.sql + ") X LIMIT 1", q.p).IsNull();
}

void clsSpesometro2013::ScorriQuadro(const std::string& quadro, int anno,
                                     const std::function<void(const RigaLetta&)>& riga) {
  SqlLettura q = SqlQuadro(quadro, anno);
  long n = 0;
  // What the row's work throws stops the scan first and is thrown once the scan is closed.
  std::exception_ptr errore;
  cn->Scorri(q.sql, q.p, [&](const std::vector<Colonna>& c, const std::vector<Valore>& v) {
    try {
      riga(RigaLetta(c, v));
    } catch (...) {
      errore = std::current_exception();
      return false;
    }
    if (++n % 1000 == 0 && formAttiva)
      formAttiva->msgbar("File telematico spesometro: quadro " + quadro.substr(0, 2) + ", " + std::to_string(n) +
                         " righe...");
    return true;
  });
  if (errore) std::rethrow_exception(errore);
}

Recordset clsSpesometro2013::Leggi(const std::string& quadro, int anno) {
  SqlLettura q = SqlQuadro(quadro, anno);
  return cn->Execute(q.sql, q.p);
}

Recordset clsSpesometro2013::LocalizzaRecordQuadroFE(int anno) { return Leggi("FE", anno); }
Recordset clsSpesometro2013::LocalizzaRecordQuadroFR(int anno) { return Leggi("FR", anno); }
Recordset clsSpesometro2013::LocalizzaRecordQuadroNE(int anno) { return Leggi("NE", anno); }
Recordset clsSpesometro2013::LocalizzaRecordQuadroNR(int anno) { return Leggi("NR", anno); }
Recordset clsSpesometro2013::LocalizzaRecordQuadroDF(int anno) { return Leggi("DF", anno); }
Recordset clsSpesometro2013::LocalizzaRecordQuadroFN(int anno) { return Leggi("FN", anno); }
Recordset clsSpesometro2013::LocalizzaRecordQuadroSE(int anno) { return Leggi("SE", anno); }
Recordset clsSpesometro2013::LocalizzaRecordQuadroTU(int anno) { return Leggi("TU", anno); }
Recordset clsSpesometro2013::LocalizzaRecordQuadroBL_TipoBL002002(int anno) { return Leggi("BL002002", anno); }
Recordset clsSpesometro2013::LocalizzaRecordQuadroBL_TipoBL002003(int anno) { return Leggi("BL002003", anno); }
Recordset clsSpesometro2013::LocalizzaRecordQuadroBL_TipoBL002004(int anno) { return Leggi("BL002004", anno); }

const Valore& RigaLetta::operator()(std::string_view nome) const {
  for (size_t i = 0; i < colonne_.size(); ++i)
    if (UgualeNoCase(colonne_[i].nome, nome)) return valori_[i];
  throw ErroreDb(3265, "Colonna non trovata: " + std::string(nome));
}

// ================================================================ checks of the extraction

void clsSpesometro2013::VerificaIndSoggettoSpesometro(int tipo, int anno, const std::string& periodo,
                                                      long& numeroSegnalazioni, std::ostream& report) {
  Parametri p{Valore(tipo), Valore(anno)};
  std::string filtro;
  if (!periodo.empty()) {
    filtro = " AND R.[Periodo] = ?";
    p.push_back(Valore(periodo));
  }
  cn->Scorri("SELECT DISTINCT R.[IndicatoreCliFor], R.[CodiceCliFor], R.[RagioneSociale] FROM "
             "([Spesometro2013Riepilogato] R LEFT JOIN [Anagrafica Clienti] A ON A.[Codice Cliente] = R.[CodiceCliFor] "
             "AND R.[IndicatoreCliFor] = 'C') LEFT JOIN [Anagrafica Fornitori] F ON F.[Codice Cliente] = "
             "R.[CodiceCliFor] AND R.[IndicatoreCliFor] = 'F' WHERE R.[Tipo] = ? AND R.[Anno] = ?" +
                 filtro +
                 " AND COALESCE(R.[IndSoggettoSpesometro], 0) <> COALESCE(CASE WHEN R.[IndicatoreCliFor] = 'F' THEN "
                 "F.[Tipo soggetto allegati] ELSE A.[Tipo soggetto allegati] END, 0) ORDER BY R.[IndicatoreCliFor], "
                 "R.[CodiceCliFor]",
             p, [&](const std::vector<Colonna>&, const std::vector<Valore>& r) {
               report << "Differenza del flag IndTipoSoggetto fra la tabella Spesometro e l'Anagrafica Cli/For per il "
                         "soggetto: "
                      << T(r[0]) << " " << T(r[1]) << " " << T(r[2]) << "\n";
               ++numeroSegnalazioni;
               return true;
             });
}

void clsSpesometro2013::VerificaEsclusivitaAcquistiSanMarino(int tipo, int anno, const std::string& periodo,
                                                             long& numeroSegnalazioni, std::ostream& report) {
  Parametri p{Valore(tipo), Valore(anno), Valore(true)};
  std::string filtro;
  if (!periodo.empty()) {
    filtro = " AND [Periodo] = ?";
    p.push_back(Valore(periodo));
  }
  cn->Scorri("SELECT DISTINCT [CodiceCliFor], [RagioneSociale] FROM [Spesometro2013Riepilogato] WHERE [Tipo] = ? AND "
             "[Anno] = ? AND [IndicatoreCliFor] = 'F' AND [FlagSanMarino] = ?" +
                 filtro + " ORDER BY [CodiceCliFor]",
             p, [&](const std::vector<Colonna>&, const std::vector<Valore>& r) {
               report << "Rilevato un acquisto da San Marino che non può essere incluso nella comunicazione per il "
                         "soggetto "
                      << T(r[0]) << " " << T(r[1])
                      << ", per gli acquisti (di servizi) da San Marino quadro SE si deve effettuare comunicazione "
                         "esclusiva\n";
               ++numeroSegnalazioni;
               return true;
             });
}

// ================================================================ the file

namespace {

// A subject that the file cannot carry: the file is not written.
class Fermo : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

std::string RecordA(const ArgomentiFileSpesometro& a) {
  std::string cf = a.indiceImpegnoTrasmettere != 0 && !Trim(a.codiceFiscaleIntermediario).empty()
                       ? a.codiceFiscaleIntermediario
                       : !Trim(a.codiceFiscaleSTC).empty() ? a.codiceFiscaleSTC : a.codiceFiscaleSoggettoObbligato;
  RecordTelematico r;
  r.Campo(1, "A")
      .Riempitivo(2, 14)
      .Campo(16, "NSP00")
      .Campo(21, a.indiceImpegnoTrasmettere == 0 ? "01" : "10")
      .Campo(23, FormatCF(Valore(cf)))
      .Riempitivo(39, 483)
      .Campo(522, FormatNU(Valore(1), 4))
      .Campo(526, FormatNU(Valore(1), 4))
      .Riempitivo(530, 100)
      .Riempitivo(630, 1068)
      .Riempitivo(1698, 200)
      .Campo(1898, "A");
  return r.Testo();
}

std::string Uno(bool si) { return FormatCB(Valore(si ? 1 : 0)); }

std::string RecordB(const ArgomentiFileSpesometro& a) {
  RecordTelematico r;
  r.Campo(1, "B")
      .Campo(2, FormatCF(Valore(a.codiceFiscaleSoggettoObbligato)))
      .Campo(18, FormatNU(Valore(1), 8))
      .Riempitivo(26, 3)
      .Riempitivo(29, 25)
      .Riempitivo(54, 20)
      .Campo(74, FormatCF(Valore("")))
      .Campo(90, Uno(a.indiceTipologiaComunicazione == 0))
      .Campo(91, Uno(a.indiceTipologiaComunicazione == 1))
      .Campo(92, Uno(a.indiceTipologiaComunicazione == 2))
      .Campo(93, FormatNUProtocolli(Valore(a.Protocollo_telematico_da_sostituire_o_annullare), 17))
      .Campo(110, FormatNUProtocolli(Valore(a.Protocollo_documento), 6))
      .Campo(116, Uno(a.indiceFormato == 0))
      .Campo(117, Uno(a.indiceFormato == 1));
  std::string quadri;
  for (int q : {a.quadroFA, a.quadroSA, a.quadroBL, a.quadroFE, a.quadroFR, a.quadroNE, a.quadroNR, a.quadroDF,
                a.quadroFN, a.quadroSE, a.quadroTU})
    quadri += FormatCB(Valore(q));
  bool intermediario = a.indiceImpegnoTrasmettere == 1 || a.indiceImpegnoTrasmettere == 2;
  r.Campo(118, quadri)
      .Campo(129, FormatCB(Valore(1)))
      .Campo(130, SinistraTesto(FormatPI(Valore(a.partitaIVASRC)), 11))
      .Campo(141, FormatAN(Valore(a.codiceAttivitaSRC), 6))
      .Campo(147, FormatAN(Valore(a.telefonoSRC), 12))
      .Campo(159, FormatAN(Valore(a.faxSRC), 12))
      .Campo(171, FormatAN(Valore(a.emailSRC), 50))
      .Campo(221, FormatAN(Valore(a.cognomeSRC), 24))
      .Campo(245, FormatAN(Valore(a.nomeSRC), 20))
      .Campo(265, FormatAN(Valore(a.sessoSRC), 1))
      .Campo(266, FormatDT(a.dataNascitaSRC, true))
      .Campo(274, FormatAN(Valore(a.comuneNascitaSRC), 40))
      .Campo(314, FormatPN(Valore(a.provinciaNascitaSRC), 2))
      .Campo(316, FormatAN(Valore(a.denominazioneSRC), 60))
      .Campo(376, FormatNU(Valore(a.AnnoRiferimento), 4))
      .Campo(380, FormatNU(Valore(a.PeriodoRiferimento), 2))
      .Campo(382, FormatCF(Valore(a.codiceFiscaleSTC)))
      .Campo(398, FormatNU(Valore(a.codiceCaricaSTC), 2))
      .Campo(400, FormatDT(a.dataInizioProcSTC, true))
      .Campo(408, FormatDT(a.dataFineProcSTC, true))
      .Campo(416, FormatAN(Valore(a.cognomeSTC), 24))
      .Campo(440, FormatAN(Valore(a.nomeSTC), 20))
      .Campo(460, FormatAN(Valore(a.sessoSTC), 1))
      .Campo(461, FormatDT(a.dataNascitaSTC, true))
      .Campo(469, FormatAN(Valore(a.comuneNascitaSTC), 40))
      .Campo(509, FormatPN(Valore(a.provinciaNascitaSTC), 2))
      .Campo(511, FormatAN(Valore(a.denominazioneSTC), 60))
      .Campo(571, intermediario ? FormatCF(Valore(a.codiceFiscaleIntermediario)) : std::string(16, ' '))
      .Campo(587, FormatNU(Valore(a.iscrizioneCAFIntermediario), 5))
      .Campo(592, FormatNU(Valore(a.indiceImpegnoTrasmettere == 1 ? 1 : 0), 1))
      .Campo(593, FormatNU(Valore(a.indiceImpegnoTrasmettere == 2 ? 1 : 0), 1))
      .Campo(594, FormatDT(a.dataImpegnoTrasmissione, true))
      .Riempitivo(602, 1258)
      .Riempitivo(1860, 20)
      .Riempitivo(1880, 18)
      .Campo(1898, "A");
  return r.Testo();
}

Valore F(Recordset& rs, const char* nome) { return rs.Fields(nome).Value(); }

// The subject's identity of FN, SE (columns 1 to 10) and BL (section 001): a person, a company
// or both by the subject's kind.
void BloccoSoggetto(const RigaLetta& rs, const std::function<void(int, const Valore&, const char*)>& campo) {
  int ind = static_cast<int>(NullToZeroLng(rs("IndSoggettoSpesometro")));
  if (ind != 2) {
    campo(1, rs("Cognome"), "AN");
    campo(2, rs("Nome"), "AN");
    campo(3, rs("DataNascita"), "DT");
    campo(4, rs("ComuneNascita"), "AN");
    campo(5, rs("ProvinciaNascita"), "PN");
    campo(6, rs("CodiceUICNazioneSedeLegale"), "UIC");
  }
  if (ind != 3) {
    campo(7, rs("Denominazione"), "AN");
    campo(8, rs("Citta"), "AN");
    campo(9, rs("CodiceUICNazioneSedeLegale"), "UIC");
    campo(10, rs("Indirizzo"), "AN");
  }
}

}  // namespace

void clsSpesometro2013::DatiAzienda(ArgomentiFileSpesometro& a) {
  Recordset az = cn->Execute("SELECT [Codice Fiscale], [Partita IVA], [Codice Attività], [Telefono], [Fax], "
                             "[E-mail], [Ragione Sociale] FROM [Tabella Azienda]");
  if (az.Eof()) return;
  a.codiceFiscaleSoggettoObbligato = TrimTesto(az(0).Value());
  a.partitaIVASRC = TrimTesto(az(1).Value());
  a.codiceAttivitaSRC = TrimTesto(az(2).Value());
  a.telefonoSRC = TrimTesto(az(3).Value());
  a.faxSRC = TrimTesto(az(4).Value());
  a.emailSRC = TrimTesto(az(5).Value());
  a.denominazioneSRC = TrimTesto(az(6).Value());
  if (a.codiceFiscaleSoggettoObbligato.empty()) a.codiceFiscaleSoggettoObbligato = a.partitaIVASRC;
}

void clsSpesometro2013::QuadriConDati(ArgomentiFileSpesometro& a, int anno) {
  auto ha = [&](const char* quadro) { return HaRighe(quadro, anno) ? 1 : 0; };
  bool aggregato = a.indiceFormato == 0;
  int fe = ha("FE"), fr = ha("FR"), ne = ha("NE"), nr = ha("NR"), df = ha("DF"), fn = ha("FN"), se = ha("SE"),
      tu = ha("TU");
  int bl = ha("BL002002") | fn | se;
  a.quadroFA = aggregato ? (fe | fr | ne | nr) : 0;
  a.quadroSA = aggregato ? df : 0;
  a.quadroBL = aggregato ? bl : 0;
  a.quadroFE = aggregato ? 0 : fe;
  a.quadroFR = aggregato ? 0 : fr;
  a.quadroNE = aggregato ? 0 : ne;
  a.quadroNR = aggregato ? 0 : nr;
  a.quadroDF = aggregato ? 0 : df;
  a.quadroFN = aggregato ? 0 : fn;
  a.quadroSE = aggregato ? 0 : se;
  a.quadroTU = aggregato ? 0 : tu;
}

int clsSpesometro2013::MakeFileTelematicoSpesometro(const ArgomentiFileSpesometro& a, long& numeroSegnalazioni) {
  numeroSegnalazioni = 0;
  contenuto_ = {};
  const int anno = a.AnnoRiferimento;
  try {
    Clessidra clessidra;
    FileStampa file(a.nomeFile, SembraFileSpesometro, "un file telematico dello spesometro");
    FileStampa report(a.nomeFileSegnalazioni, SembraReportSpesometro, "un report dello spesometro");
    std::ostream& rep = report.Flusso();
    rep << kRiga106 << "\n" << Adesso() << " - SEGNALAZIONI FILE TELEMATICO\n" << kRiga106 << "\n";
    auto segnala = [&](const std::string& testo) {
      rep << testo << "\n";
      ++numeroSegnalazioni;
    };
    auto progresso = [&](const std::string& q) {
      if (formAttiva) formAttiva->msgbar("File telematico spesometro: quadro " + q + "...");
    };
    VerificaIndSoggettoSpesometro(0, anno, "", numeroSegnalazioni, rep);

    Pagine FA{"FA", 3, a.quadroFA == 1}, SA{"SA", 3, a.quadroSA == 1}, BL{"BL", 1, a.quadroBL == 1},
        FE{"FE", 6, a.quadroFE == 1}, FR{"FR", 6, a.quadroFR == 1}, NE{"NE", 10, a.quadroNE == 1},
        NR{"NR", 10, a.quadroNR == 1}, DF{"DF", 10, a.quadroDF == 1}, FN{"FN", 3, a.quadroFN == 1},
        SE{"SE", 3, a.quadroSE == 1}, TU{"TU", 3, a.quadroTU == 1};
    // The counters of the totals record, in the order of its fields.
    std::map<std::string, long> ta;

    auto vuoto = [&](Pagine& p) {
      if (!p.richiesto || p.righe > 0) return;
      std::string t = "Errore nel 'Quadro " + p.nome + "': è stato richiesto ma non sono state trovate operazioni.";
      segnala(t);
      Host().MsgBox(t, vbExclamation, kTitolo);
    };
    auto numeriFA = [](const std::string& colonna) {
      return colonna == "010" || colonna == "011" || colonna == "015" || colonna == "016";
    };

    // ---- FA and SA, from the aggregates
    if (FA.richiesto || SA.richiesto) RicostruisciAggregati(anno);
    if (FA.richiesto) {
      progresso("FA");
      Recordset senza = LocalizzaRecordQuadroAggregatoNoCodiceFiscaleNoPartitaIVA(anno, "FA");
      for (; !senza.Eof(); senza.MoveNext())
        segnala("Quadro FA: Per il soggetto " + T(F(senza, "IndicatoreCliFor")) + " " + T(F(senza, "CodiceCliFor")) +
                " è stata riscontrata l'assenza della partita IVA e del codice fiscale, occorre impostare uno di "
                "questi due campi.");
      auto riga = [&](const std::string& codice, bool perPartitaIva) {
        FA.Campo(perPartitaIva ? 1 : 2, Valore(codice), perPartitaIva ? "PI" : "CF");
        FA.Campo(4,
                 Valore(static_cast<long long>(perPartitaIva ? GetNumeroOperazioniAttiveAggregateByPartitaIVA(anno, codice)
                                                             : GetNumeroOperazioniAttiveAggregateByCodiceFiscale(anno, codice))),
                 "NP");
        FA.Campo(5,
                 Valore(static_cast<long long>(perPartitaIva ? GetNumeroOperazioniPassiveAggregateByPartitaIVA(anno, codice)
                                                             : GetNumeroOperazioniPassiveAggregateByCodiceFiscale(anno, codice))),
                 "NP");
        Recordset rs = perPartitaIva ? LocalizzaRecordQuadroAggregatoByPartitaIVA(anno, "FA", codice)
                                     : LocalizzaRecordQuadroAggregatoByCodiceFiscale(anno, "FA", codice);
        for (; !rs.Eof(); rs.MoveNext()) {
          std::string colonna = T(rs("Identificativo")).substr(5, 3);
          Importo v = Imp(rs("Valore"));
          FA.Campo(std::stoi(colonna), Valore(numeriFA(colonna) ? Assoluto(v) : v), "NP");
        }
        FA.FineRiga();
        ++ta["TA001001"];
      };
      for (const auto& pi : GetElencoPartiteIVAAggregate(anno, "FA")) riga(pi, true);
      for (const auto& cf : GetElencoCodiciFiscaliAggregati(anno, "FA")) riga(cf, false);
      FA.Chiudi();
      vuoto(FA);
    }
    if (SA.richiesto) {
      progresso("SA");
      for (const auto& cf : GetElencoCodiciFiscaliAggregati(anno, "SA")) {
        SA.Campo(1, Valore(cf), "CF");
        SA.Campo(2, Valore(static_cast<long long>(GetNumeroOperazioniQuadroSA(anno, cf))), "NP");
        Recordset rs = LocalizzaRecordQuadroAggregatoByCodiceFiscale(anno, "SA", cf);
        for (; !rs.Eof(); rs.MoveNext())
          SA.Campo(std::stoi(T(rs("Identificativo")).substr(5, 3)), rs("Valore"), "NP");
        SA.FineRiga();
        ++ta["TA002001"];
      }
      SA.Chiudi();
      vuoto(SA);
    }

    // ---- BL: one page a subject, with the kinds of operation it has
    if (BL.richiesto) {
      progresso("BL");
      struct SoggettoBL {
        bool kind[3] = {false, false, false};
        std::map<std::string, Importo> importi;
        std::function<void(Pagine&)> identita;
      };
      std::vector<std::pair<std::string, SoggettoBL>> soggetti;
      auto trova = [&](const std::string& chiave) -> SoggettoBL* {
        for (auto& s : soggetti)
          if (s.first == chiave) return &s.second;
        return nullptr;
      };
      const char* elenchi[3] = {"BL002002", "BL002003", "BL002004"};
      for (int k = 0; k < 3; ++k) {
        ScorriQuadro(elenchi[k], anno, [&](const RigaLetta& rs) {
          std::string chiave = T(rs("IndicatoreCliFor")) + " " + T(rs("CodiceCliFor"));
          SoggettoBL* s = trova(chiave);
          if (!s) {
            soggetti.push_back({chiave, SoggettoBL{}});
            s = &soggetti.back().second;
            // The identity is read now, while the row is current.
            std::vector<std::pair<std::string, std::pair<Valore, std::string>>> campi;
            BloccoSoggetto(rs, [&](int c, const Valore& v, const char* f) {
              char id[16];
              std::snprintf(id, sizeof id, "BL001%03d", c);
              campi.push_back({id, {v, f}});
            });
            std::string pi = T(rs("PartitaIVA"));
            campi.push_back({"BL002001", {Valore(pi.empty() ? T(rs("CodiceFiscale")) : pi), "AN"}});
            s->identita = [campi](Pagine& p) {
              for (const auto& [id, vf] : campi) p.CampoBL(id, vf.first, vf.second);
            };
          }
          s->kind[k] = true;
          bool cliente = T(rs("IndicatoreCliFor")) != "F";
          bool nota = rs("FlagNotaVariazione").Vero();
          Importo imp = Imp(rs("Imponibile")), iva = Imp(rs("Imposta"));
          if (cliente && nota) {
            s->importi["BL005001"] += Assoluto(imp);
            s->importi["BL005002"] += Assoluto(iva);
          } else if (cliente && k == 0) {
            s->importi["BL003001"] += imp;
            s->importi["BL003002"] += iva;
          } else if (cliente) {
            s->importi["BL004001"] += imp;
          } else if (nota) {
            s->importi["BL008001"] += Assoluto(imp);
            s->importi["BL008002"] += Assoluto(iva);
          } else {
            s->importi["BL006001"] += imp;
            s->importi["BL006002"] += iva;
          }
        });
      }
      for (auto& [chiave, s] : soggetti) {
        s.identita(BL);
        const char* flag[3] = {"BL002002", "BL002003", "BL002004"};
        const char* conta[3] = {"TA003001", "TA003002", "TA003003"};
        for (int k = 0; k < 3; ++k)
          if (s.kind[k]) {
            BL.CampoBL(flag[k], Valore(1), "CB");
            ++ta[conta[k]];
          }
        for (const auto& [id, v] : s.importi) BL.CampoBL(id, Valore(v), "NP");
        BL.FineRiga();
      }
      vuoto(BL);
    }

    // ---- the analytic quadri, one row a document
    auto prefisso = [](const std::string& q, const RigaLetta& rs, bool protocollo) {
      return "Quadro " + q + ": Per il soggetto " + T(rs("IndicatoreCliFor")) + " " + T(rs("CodiceCliFor")) +
             (protocollo ? " ed il protocollo numero " + T(rs("NumeroDiProtocollo"))
                         : " ed il documento numero " + NumeroFatt(rs("NumeroDocumento"), rs("SerieDocumento"))) +
             " del " + DataTesto(rs("DataDocumento"));
    };
    const std::string kNegativa = " è stato riscontrato un imponibile o un'imposta negativa, si consiglia di "
                                  "contrassegnare questo documento come nota di variazione.";
    const std::string kZero = " è stato riscontrato un imponibile uguale a zero e un'imposta uguale a zero, si "
                              "consiglia di verificare questo documento.";
    const std::string kNegativaVerifica =
        " è stato riscontrato un imponibile o un'imposta negativa, si consiglia di verificare questo documento.";

    if (FE.richiesto) {
      progresso("FE");
      ScorriQuadro("FE", anno, [&](const RigaLetta& rs) {
        std::string pi = T(rs("PartitaIVA")), cf = T(rs("CodiceFiscale"));
        bool riepilogativo = rs("FlagDocRiepilogativo").Vero();
        Importo imp = Imp(rs("Imponibile")), iva = Imp(rs("Imposta"));
        std::string pre = prefisso("FE", rs, false);
        if (pi.empty() && cf.empty() && !riepilogativo) {
          segnala(pre + " è stata riscontrata l'assenza della partita IVA, del codice fiscale e del flag documento "
                        "riepilogativo, occorre impostare uno di questi tre campi.");
          throw Fermo("Rilevato soggetto con fattura senza partita IVA e senza codice fiscale per creazione record "
                      "tipo FE (Fatture emesse)");
        }
        if (imp < Importo() || iva < Importo()) segnala(pre + kNegativa);
        if (imp.Zero() && iva.Zero()) segnala(pre + kZero);
        if (riepilogativo) FE.Campo(3, Valore(1), "CB");
        else if (!pi.empty()) FE.Campo(1, Valore(pi), "PI");
        else FE.Campo(2, Valore(cf), "CF");
        FE.Campo(4, rs("FlagIVANonEsposta").Vero() ? Valore(1) : Valore(0), "CB");
        FE.Campo(7, rs("DataDocumento"), "DT");
        FE.Campo(8, rs("DataRegistrazione"), "DT");
        FE.Campo(9, Valore(NumeroFatt(rs("NumeroDocumento"), rs("SerieDocumento"))), "AN");
        FE.Campo(10, Valore(imp), "NP");
        FE.Campo(11, Valore(iva), "NP");
        FE.Campo(12, Valore(SuperaImportoMassimo(imp) ? 1 : 0), "CB");
        FE.FineRiga();
        ++ta[riepilogativo ? "TA004002" : "TA004001"];
      });
      FE.Chiudi();
      vuoto(FE);
    }
    if (FR.richiesto) {
      progresso("FR");
      ScorriQuadro("FR", anno, [&](const RigaLetta& rs) {
        std::string pi = T(rs("PartitaIVA"));
        bool riepilogativo = rs("FlagDocRiepilogativo").Vero();
        Importo imp = Imp(rs("Imponibile")), iva = Imp(rs("Imposta"));
        std::string pre = prefisso("FR", rs, true);
        if (pi.empty() && !riepilogativo)
          segnala(pre + " è stata riscontrata l'assenza della partita IVA e del flag documento riepilogativo, occorre "
                        "impostare uno di questi due campi.");
        if (imp < Importo() || iva < Importo()) segnala(pre + kNegativa);
        if (imp.Zero() && iva.Zero()) segnala(pre + kZero);
        if (riepilogativo) FR.Campo(2, Valore(1), "CB");
        else FR.Campo(1, Valore(pi), "PI");
        FR.Campo(3, rs("DataDocumento"), "DT");
        FR.Campo(4, rs("DataRegistrazione"), "DT");
        FR.Campo(5, rs("FlagIVANonEsposta").Vero() ? Valore(1) : Valore(0), "CB");
        FR.Campo(8, Valore(imp), "NP");
        FR.Campo(9, Valore(iva), "NP");
        FR.Campo(10, Valore(SuperaImportoMassimo(imp) ? 1 : 0), "CB");
        FR.FineRiga();
        ++ta[riepilogativo ? "TA005002" : "TA005001"];
      });
      FR.Chiudi();
      vuoto(FR);
    }
    // Variation notes: stored negative, carried unsigned.
    auto note = [&](Pagine& q, bool emesse) {
      progresso(q.nome);
      ScorriQuadro(q.nome, anno, [&](const RigaLetta& rs) {
        std::string pi = T(rs("PartitaIVA")), cf = T(rs("CodiceFiscale"));
        Importo imp = Imp(rs("Imponibile")), iva = Imp(rs("Imposta"));
        std::string pre = prefisso(q.nome, rs, !emesse);
        if (emesse && pi.empty() && cf.empty())
          segnala(pre + " è stata riscontrata l'assenza della partita IVA e del codice fiscale, occorre impostare uno "
                        "di questi due campi.");
        if (!emesse && pi.empty())
          segnala(pre + " è stata riscontrata l'assenza della partita IVA, occorre impostare questo campo.");
        if (imp > Importo() || iva > Importo())
          segnala(pre + " è stato riscontrato un imponibile o un'imposta positiva, si consiglia di contrassegnare "
                        "questo documento come " +
                  (emesse ? "fattura emessa." : "fattura ricevuta."));
        if (imp.Zero() && iva.Zero()) segnala(pre + kZero);
        int c = 1;
        if (emesse) {
          if (!pi.empty()) q.Campo(1, Valore(pi), "PI");
          else q.Campo(2, Valore(cf), "CF");
          c = 3;
        } else {
          q.Campo(1, Valore(pi), "PI");
          c = 2;
        }
        q.Campo(c++, rs("DataDocumento"), "DT");
        q.Campo(c++, rs("DataRegistrazione"), "DT");
        if (emesse) q.Campo(c++, Valore(NumeroFatt(rs("NumeroDocumento"), rs("SerieDocumento"))), "AN");
        q.Campo(c++, Valore(Assoluto(imp)), "NP");
        q.Campo(c++, Valore(Assoluto(iva)), "NP");
        q.Campo(c, Valore(SuperaImportoMassimo(imp) ? 1 : 0), "CB");
        q.FineRiga();
        ++ta[emesse ? "TA006001" : "TA007001"];
      });
      q.Chiudi();
      vuoto(q);
    };
    if (NE.richiesto) note(NE, true);
    if (NR.richiesto) note(NR, false);
    if (DF.richiesto) {
      progresso("DF");
      ScorriQuadro("DF", anno, [&](const RigaLetta& rs) {
        std::string cf = T(rs("CodiceFiscale"));
        Importo imp = Imp(rs("ImportoDocumento"));
        std::string pre = "Quadro DF: Per il soggetto " + T(rs("IndicatoreCliFor")) + " " +
                          T(rs("CodiceCliFor")) + " e l'operazione del " + DataTesto(rs("DataOperazione"));
        if (cf.empty())
          segnala(pre + " è stata riscontrata l'assenza del codice fiscale, occorre impostare uno di questo campo.");
        if (imp < Importo(3600)) segnala(pre + " è stato riscontrato un importo inferiore a 3600 euro.");
        DF.Campo(1, Valore(cf), "CF");
        DF.Campo(2, rs("DataOperazione"), "DT");
        DF.Campo(3, Valore(imp), "NP");
        DF.Campo(4, rs("IndTipoNoleggio"), "AN");
        DF.Campo(5, Valore(SuperaImportoMassimo(imp) ? 1 : 0), "CB");
        DF.FineRiga();
        ++ta["TA008001"];
      });
      DF.Chiudi();
      vuoto(DF);
    }
    auto esteri = [&](Pagine& q, bool acquisti) {
      progresso(q.nome);
      ScorriQuadro(q.nome, anno, [&](const RigaLetta& rs) {
        Importo imp = Imp(rs("Imponibile")), iva = Imp(rs("Imposta"));
        std::string pre = prefisso(q.nome, rs, false);
        if (imp < Importo() || iva < Importo()) segnala(pre + kNegativaVerifica);
        BloccoSoggetto(rs, [&](int c, const Valore& v, const char* f) { q.Campo(c, v, f); });
        int c = 11;
        if (acquisti) {
          std::string pi = T(rs("PartitaIVA")), cf = T(rs("CodiceFiscale"));
          if (T(rs("CodiceUICNazioneSedeLegale")) == "037" && pi.empty() && cf.empty())
            segnala(pre + " è stata riscontrata l'assenza della partita IVA e del codice fiscale, dato obbligatorio "
                          "per acquisti da operatori San Marino.");
          q.Campo(c++, Valore(pi.empty() ? cf : pi), "AN");
        }
        q.Campo(c++, rs("DataDocumento"), "DT");
        q.Campo(c++, rs("DataRegistrazione"), "DT");
        q.Campo(c++, Valore(NumeroFatt(rs("NumeroDocumento"), rs("SerieDocumento"))), "AN");
        if (!acquisti) ++c;  // FN 014, rental or leasing: not kept by the journal
        q.Campo(c++, Valore(imp), "NP");
        q.Campo(c++, Valore(iva), "NP");
        q.Campo(c, Valore(SuperaImportoMassimo(imp) ? 1 : 0), "CB");
        q.FineRiga();
        ++ta[acquisti ? "TA010001" : "TA009001"];
      });
      q.Chiudi();
      vuoto(q);
    };
    if (FN.richiesto) esteri(FN, false);
    if (SE.richiesto) esteri(SE, true);
    if (TU.richiesto) {
      progresso("TU");
      ScorriQuadro("TU", anno, [&](const RigaLetta& rs) {
        Importo imp = Imp(rs("Imponibile")), iva = Imp(rs("Imposta"));
        if (NullToZeroLng(rs("IndSoggettoSpesometro")) != 3) {
          const std::string t = "Rilevata operazione turismo (record TU) con Indicatore Soggetto Spesometro diverso "
                                "da SOGGETTO NON RESIDENTE PERSONA FISICA";
          segnala(prefisso("TU", rs, false) + ": " + t);
          Host().MsgBox(t, vbExclamation, "Make file telematico spesometro");
        }
        TU.Campo(1, rs("Cognome"), "AN");
        TU.Campo(2, rs("Nome"), "AN");
        TU.Campo(3, rs("DataNascita"), "DT");
        TU.Campo(4, rs("ComuneNascita"), "AN");
        TU.Campo(5, rs("ProvinciaNascita"), "PN");
        TU.Campo(6, rs("Citta"), "AN");
        TU.Campo(7, rs("CodiceUICNazioneSedeLegale"), "UIC");
        TU.Campo(8, rs("Indirizzo"), "AN");
        TU.Campo(9, rs("DataDocumento"), "DT");
        TU.Campo(10, rs("DataRegistrazione"), "DT");
        TU.Campo(11, Valore(NumeroFatt(rs("NumeroDocumento"), rs("SerieDocumento"))), "AN");
        TU.Campo(12, Valore(imp), "NP");
        TU.Campo(13, Valore(iva), "NP");
        TU.Campo(14, Valore(SuperaImportoMassimo(imp) ? 1 : 0), "CB");
        TU.FineRiga();
        ++ta["TA011001"];
      });
      TU.Chiudi();
      vuoto(TU);
    }

    // ---- the records
    std::ostream& out = file.Flusso();
    auto scrivi = [&](const std::string& record) {
      std::string byte = TestoTelematico(record);
      if (byte.size() != static_cast<size_t>(kLunghezzaRecordTelematico))
        throw std::logic_error("Record telematico di " + std::to_string(byte.size()) + " byte invece di 1898");
      out << byte << "\r\n";
    };
    const std::string& cf = a.codiceFiscaleSoggettoObbligato;
    scrivi(RecordA(a));
    scrivi(RecordB(a));
    ++contenuto_.recordB;
    auto pagine = [&](char tipo, std::vector<Pagine*> quadri, long& conta) {
      size_t massimo = 0;
      for (auto* q : quadri)
        if (q->richiesto) massimo = std::max(massimo, q->pagine.size());
      for (size_t i = 0; i < massimo; ++i)
        for (auto* q : quadri) {
          if (!q->richiesto || i >= q->pagine.size()) continue;
          const std::string& testo = q->pagine[i];
          if (testo.empty()) {
            Host().MsgBox("Attenzione è stata riscontata la generazione di una pagina 'bianca' nel quadro " + q->nome,
                          vbExclamation, kTitolo);
            continue;
          }
          for (const auto& record : RecordDellaPagina(tipo, cf, static_cast<long>(i + 1), testo)) {
            scrivi(record);
            ++conta;
          }
        }
    };
    pagine('C', {&BL, &FA, &SA}, contenuto_.recordC);
    pagine('D', {&DF, &FE, &FN, &FR, &NE, &NR, &SE, &TU}, contenuto_.recordD);
    std::string totali;
    for (const char* id : {"TA001001", "TA002001", "TA003001", "TA003002", "TA003003", "TA004001", "TA004002",
                           "TA005001", "TA005002", "TA006001", "TA007001", "TA008001", "TA009001", "TA010001",
                           "TA011001"})
      AccodaCampoNonPosizionale(totali, id, Valore(static_cast<long long>(ta[id])), "NP");
    RecordTelematico e = TestaPagina('E', cf, 1);
    scrivi(CodaPagina(e, totali));
    ++contenuto_.recordE;
    RecordTelematico z;
    z.Campo(1, "Z")
        .Riempitivo(2, 14)
        .Campo(16, FormatNU(Valore(contenuto_.recordB), 9))
        .Campo(25, FormatNU(Valore(contenuto_.recordC), 9))
        .Campo(34, FormatNU(Valore(contenuto_.recordD), 9))
        .Campo(43, FormatNU(Valore(contenuto_.recordE), 9))
        .Riempitivo(52, 1846)
        .Campo(1898, "A");
    scrivi(z.Testo());
    file.Chiudi();
    report.Chiudi();
  } catch (const Fermo& e) {
    Host().MsgBox(e.what(), vbCritical, kTitolo);
    return -1;
  } catch (const std::exception& e) {
    Host().MsgBox("Il file telematico non è stato scritto.\n" + std::string(e.what()), vbCritical, kTitolo);
    return -1;
  }
  if (formAttiva) formAttiva->msgbar("");
  return static_cast<int>(numeroSegnalazioni);
}

// ================================================================ reading a file back

bool clsSpesometro2013::SuperaImportoMassimo(Importo importo) {
  return Assoluto(importo).Arrotonda(0) >= Importo(999999);
}

std::string clsSpesometro2013::GetDescrizioneCampo(const std::string& quadroRigaColonna) {
  const auto& d = Descrizioni();
  auto it = d.find(UCase(Trim(quadroRigaColonna)));
  return it == d.end() ? std::string() : it->second;
}

bool clsSpesometro2013::EseguiVerificheFileSpesometroGenerato(const std::string& nomeFileSpesometro,
                                                              const std::string& nomeFileReport) {
  try {
    // Counts of fields and sums of amounts, by the key of the field.
    std::map<std::string, long> numeri;
    std::map<std::string, int64_t> somme;
    std::map<std::string, bool> contati;  // a FA subject counted once, whatever its row
    std::string errore = LeggiFile(nomeFileSpesometro, contenuto_, [&](const CampoLetto& c) {
      if (!c.valore.empty() && c.valore[0] == '+') return;  // continuation of a text
      std::string chiave = c.quadro == "BL" ? c.Id() : c.quadro + "XXX" + c.colonna;
      ++numeri[chiave];
      if (!c.valore.empty() && c.valore.find_first_not_of("-0123456789") == std::string::npos)
        somme[chiave] += std::stoll(c.valore);
    });
    FileStampa report(nomeFileReport, SembraReportSpesometro, "un report dello spesometro");
    std::ostream& o = report.Flusso();
    o << kRiga106 << "\n" << Adesso() << " - TOTALI RILEVATI DAL FILE TELEMATICO GENERATO\n" << kRiga106 << "\n";
    auto riga = [&](const std::string& etichetta, int64_t valore) {
      o << PadSinistra(Valore(etichetta), 67) << ": " << Format(Valore(static_cast<long long>(valore)), "###,###,###,##0")
        << "\n";
    };
    if (!errore.empty()) {
      o << "File non conforme: " << errore << "\n";
      report.Chiudi();
      Host().MsgBox("Il file " + nomeFileSpesometro + " non è un file telematico conforme.\n" + errore, vbExclamation,
                    "Verifica file telematico spesometro");
      return false;
    }
    auto numero = [&](const std::string& k) { return numeri.count(k) ? numeri[k] : 0L; };
    auto somma = [&](const std::string& k) { return somme.count(k) ? somme[k] : int64_t{0}; };
    auto colonne = [&](const std::string& q, std::initializer_list<int> cols) {
      for (int c : cols) {
        char k[16];
        std::snprintf(k, sizeof k, "%sXXX%03d", q.c_str(), c);
        riga(q + " " + GetDescrizioneCampo(k), somma(k));
      }
    };
    riga("FA Numero totale di soggetti", numero("FAXXX001") + numero("FAXXX002"));
    colonne("FA", {7, 8, 9, 10, 11, 12, 13, 14, 15, 16});
    riga("SA Numero totale di soggetti", numero("SAXXX001"));
    colonne("SA", {3});
    riga("BL Numero totale di soggetti", numero("BL002001"));
    for (const char* k : {"BL002002", "BL002003", "BL002004"}) riga("BL " + GetDescrizioneCampo(k), numero(k));
    for (const char* k : {"BL003001", "BL003002", "BL004001", "BL004002", "BL005001", "BL005002", "BL006001",
                          "BL006002", "BL007001", "BL008001", "BL008002"})
      riga("BL " + GetDescrizioneCampo(k), somma(k));
    riga("FE Numero totale di documenti", numero("FEXXX009"));
    colonne("FE", {10, 11});
    riga("FR Numero totale di soggetti", numero("FRXXX001"));
    riga("FR Numero totale di documenti riepilogativi", numero("FRXXX002"));
    colonne("FR", {8, 9});
    riga("NE Numero totale di note", numero("NEXXX005"));
    colonne("NE", {6, 7});
    riga("NR Numero totale di soggetti", numero("NRXXX001"));
    colonne("NR", {4, 5});
    riga("DF Numero totale di operazioni", numero("DFXXX003"));
    colonne("DF", {3});
    riga("FN Numero totale di documenti", numero("FNXXX013"));
    colonne("FN", {15, 16});
    riga("SE Numero totale di documenti", numero("SEXXX014"));
    colonne("SE", {15, 16});
    riga("TU Numero totale di documenti", numero("TUXXX011"));
    colonne("TU", {12, 13});
    report.Chiudi();
    return true;
  } catch (const std::exception& e) {
    Host().MsgBox(e.what(), vbCritical, "Verifica file telematico spesometro");
    return false;
  }
}

bool clsSpesometro2013::MakeFileCSV(const std::string& nomeFileSpesometro, const std::string& nomeFileReport) {
  try {
    FileStampa csv(nomeFileReport, SembraCsvSpesometro, "un file CSV dello spesometro");
    std::ostream& o = csv.Flusso();
    o << "N.Modulo;Quadro;Riga;Colonna;Valore;Descrizione campo\r\n";
    std::string errore = LeggiFile(nomeFileSpesometro, contenuto_, [&](const CampoLetto& c) {
      o << Csv(std::to_string(c.modulo)) << ";" << Csv(c.quadro) << ";" << Csv(c.riga) << ";" << Csv(c.colonna)
        << ";=" << Csv(c.valore) << ";" << Csv(GetDescrizioneCampo(InsertWildCardRigaColonna(c.Id()))) << "\r\n";
    });
    if (!errore.empty()) {
      Host().MsgBox("Il file " + nomeFileSpesometro + " non è un file telematico conforme.\n" + errore, vbExclamation,
                    "File CSV spesometro");
      return false;
    }
    csv.Chiudi();
    return true;
  } catch (const std::exception& e) {
    Host().MsgBox(e.what(), vbCritical, "File CSV spesometro");
    return false;
  }
}

bool clsSpesometro2013::CaricaCorpoFileSpesometroInGrid(const std::string& nomeFileSpesometro, IGriglia& vsGriglia) {
  std::vector<std::string> righe;
  std::string errore;
  try {
    errore = LeggiFile(nomeFileSpesometro, contenuto_, [&](const CampoLetto& c) {
      righe.push_back(std::to_string(c.modulo) + "|" + c.quadro + "|" + c.riga + "|" + c.colonna + "|" + c.valore +
                      "|" + GetDescrizioneCampo(InsertWildCardRigaColonna(c.Id())));
    });
  } catch (const std::exception& e) {
    errore = e.what();
  }
  if (!errore.empty()) {
    Host().MsgBox("Il file " + nomeFileSpesometro + " non è un file telematico conforme.\n" + errore, vbExclamation,
                  "Carica file telematico spesometro");
    return false;
  }
  // The grid gets the lines only once the whole file has been read.
  for (const auto& r : righe) vsGriglia.AddItem(r);
  return true;
}

bool clsSpesometro2013::SembraFileSpesometro(const std::string& percorso) {
  std::string r = PrimaRiga(percorso, kLunghezzaRecordTelematico + 2);
  return r.size() == static_cast<size_t>(kLunghezzaRecordTelematico + 2) && r[0] == 'A' &&
         r.compare(15, 5, "NSP00") == 0 && r.compare(kLunghezzaRecordTelematico - 1, 3, "A\r\n") == 0;
}

bool clsSpesometro2013::SembraCsvSpesometro(const std::string& percorso) {
  return PrimaRiga(percorso, 55) == "N.Modulo;Quadro;Riga;Colonna;Valore;Descrizione campo\r\n";
}

bool clsSpesometro2013::SembraReportSpesometro(const std::string& percorso) {
  std::string r = PrimaRiga(percorso, 256);
  if (r.compare(0, 107, kRiga106 + "\n") != 0) return false;
  return r.find(" - SEGNALAZIONI FILE TELEMATICO\n") != std::string::npos ||
         r.find(" - TOTALI RILEVATI DAL FILE TELEMATICO GENERATO\n") != std::string::npos;
}

}  // namespace vorn
