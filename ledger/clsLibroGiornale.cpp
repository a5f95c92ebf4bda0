#include "ledger/clsLibroGiornale.h"

#include <array>
#include <cstdio>
#include <fstream>
#include <limits>
#include <map>
#include <memory>
#include <vector>

#include "company/StampaLibri.h"
#include "company/clsAnagraficaAzienda.h"
#include "company/clsNumerazioneFogli.h"
#include "company/clsProgAzienda.h"
#include "frame/Comuni.h"
#include "frame/FileVorn.h"
#include "frame/Formato.h"
#include "frame/Impaginazione.h"

namespace vorn {

namespace {

using namespace stampa_libri;

constexpr const char* kTitolo = "Stampa libro giornale";

std::string Riga(char c) { return std::string(kColonneReport, c); }

// The rows of the period that the book has not printed yet.
constexpr const char* kDaStampare =
    "P.[DataRegistrazione] >= ? AND P.[DataRegistrazione] <= ? AND "
    "COALESCE(substr(P.[Stringa10indicatori], 2, 1), '') <> 'G'";

// The key of a journal row, its account and its amount: what the print showed of it.
constexpr const char* kChiave =
    "P.[DataRegistrazione], P.[NumeroRegistrazione], P.[TipoRigaIvaNormale], P.[NumRigaAVideo], P.[DareAvere], "
    "P.[ContoPrimaNota], P.[CodClienteFornitore], P.[ImportoMovimento]";

// The rows a print showed, summed up: their count, their debit and credit totals and a digest
// of their keys, accounts and amounts that does not depend on the order they were read in.
struct Impronta {
  int64_t righe = 0;
  Importo dare, avere;
  uint64_t digest = 0;

  // v: the columns of kChiave, in order; the digest only when it is to be compared.
  void Aggiungi(const std::vector<Valore>& v, bool conDigest = true) {
    Importo importo = Imp(v[7]);
    ++righe;
    if (T(v[4]) == "A") avere += importo;
    else dare += importo;
    if (!conDigest) return;
    uint64_t h = 1469598103934665603ull;
    auto mescola = [&h](const std::string& s) {
      for (unsigned char c : s) h = (h ^ c) * 1099511628211ull;
      h = (h ^ 0x1f) * 1099511628211ull;
    };
    auto d = v[0].ComeData();
    mescola(d ? d->Formato("yyyymmdd") : std::string());
    for (size_t i = 1; i < 7; ++i) mescola(T(v[i]));
    mescola(std::to_string(importo.Raw()));
    digest += h;
  }
  bool operator==(const Impronta& o) const {
    return righe == o.righe && dare == o.dare && avere == o.avere && digest == o.digest;
  }
};

// The stored progressives of the book.
struct Progressivi {
  int32_t riga = 0;
  Importo dare, avere;
  bool operator==(const Progressivi& o) const { return riga == o.riga && dare == o.dare && avere == o.avere; }
};

bool LeggiProgressivi(clsProgAzienda& prog, Progressivi& p) {
  Valore ultima, riga, dare, avere;
  if (!prog.GetProgressiviLibroGiornale(ultima, riga, dare, avere)) return false;
  p.riga = static_cast<int32_t>(NullToZeroLng(riga));
  p.dare = Imp(dare);
  p.avere = Imp(avere);
  return true;
}

// The names a line prints, read once a run: the sub-accounts, the causals, clients and
// suppliers.
class Nomi {
 public:
  explicit Nomi(Connessione& cn) {
    Carica(cn, "SELECT [Sottoconto], [Descrizione] FROM [Descrizione sottoconti]", conti_);
    Carica(cn, "SELECT [CodiceCausale], [DescrizioneCausale] FROM [Causali Contabili]", causali_);
    Carica(cn, "SELECT [Codice Cliente], [Ragione Sociale] FROM [Anagrafica Clienti]", clienti_);
    Carica(cn, "SELECT [Codice Cliente], [Ragione Sociale] FROM [Anagrafica Fornitori]", fornitori_);
  }
  const std::string& Conto(const std::string& c) const { return Di(conti_, c); }
  const std::string& Causale(const std::string& c) const { return Di(causali_, c); }
  const std::string& Soggetto(const std::string& ind, const std::string& c) const {
    return Di(ind == "F" ? fornitori_ : clienti_, c);
  }

 private:
  static void Carica(Connessione& cn, const std::string& sql, std::map<std::string, std::string>& m) {
    cn.Scorri(sql, {}, [&](const std::vector<Colonna>&, const std::vector<Valore>& v) {
      m.emplace(T(v[0]), T(v[1]));
      return true;
    });
  }
  static const std::string& Di(const std::map<std::string, std::string>& m, const std::string& c) {
    static const std::string vuoto;
    auto i = m.find(c);
    return i == m.end() ? vuoto : i->second;
  }
  std::map<std::string, std::string> conti_, causali_, clienti_, fornitori_;
};

std::string Numero(const Valore& v) {
  if (v.IsNull() || v.IsEmpty() || NullToZeroLng(v) == 0) return "";
  return std::to_string(NullToZeroLng(v));
}

std::string DataLunga(const Data& d) { return d.Formato("dd/mm/yyyy"); }

// The head of a page of the book: its two empty lines and seven; the foot: two.
constexpr int kRigheTestata = 9, kRighePiede = 2;

// The body of the print, written knowing where the pages will break: the last line of a page
// that is followed by more carries the running totals forward ("A RIPORTARE"), and the next
// page opens with them ("RIPORTO"), as does the first page when earlier months carried any.
class Corpo {
 public:
  Corpo(const std::string& nome, int righePagina, const Importo& dare, const Importo& avere)
      : nome_(nome), out_(nome, std::ios::binary), capienza_(righePagina - kRigheTestata - kRighePiede),
        dare_(dare), avere_(avere) {
    if (!out_) throw ErroreStampa("Impossibile scrivere il file " + nome);
    // A print that goes on from earlier months opens with what they carried.
    if (capienza_ >= 3 && !(dare_.Zero() && avere_.Zero())) {
      Scrivi(out_, Riporto("RIPORTO"), nome_);
      sullaPagina_ = 1;
    }
  }

  void Riga(const std::string& riga) {
    if (capienza_ >= 3 && sullaPagina_ == capienza_ - 1) {
      Scrivi(out_, Riporto("A RIPORTARE"), nome_);
      Scrivi(out_, Riporto("RIPORTO"), nome_);
      sullaPagina_ = 1;
    }
    Scrivi(out_, riga, nome_);
    ++sullaPagina_;
  }
  // A row printed: its amount joins the running totals.
  void Somma(bool avere, const Importo& importo) { (avere ? avere_ : dare_) += importo; }
  const Importo& Dare() const { return dare_; }
  const Importo& Avere() const { return avere_; }

  void Chiudi() {
    out_.close();
    if (!out_) throw ErroreStampa("Impossibile scrivere il file " + nome_);
  }

 private:
  std::string Riporto(const char* voce) const {
    return std::string(37, ' ') + Largo(voce, 24) + "DARE " + Dx(Cifra(dare_), 18) + "    AVERE " +
           Dx(Cifra(avere_), 18);
  }
  std::string nome_;
  std::ofstream out_;
  int capienza_;  // body lines on a page
  int sullaPagina_ = 0;
  Importo dare_, avere_;
};

}  // namespace

bool clsLibroGiornale::StampaLibroGiornale(const ArgomentiLibroGiornale& a) {
  esito_ = {};
  const std::shared_ptr<Connessione>& conn = cn;
  Connessione& db = *cn;
  if (a.avar_RighePagina < kMinimoRighePagina)
    throw ErroreStampa("Righe per pagina troppo poche: " + std::to_string(a.avar_RighePagina) + " (almeno " +
                       std::to_string(kMinimoRighePagina) + ")");
  const auto [da, al] = MeseDelLibro(a.avar_Anno, a.avar_Mese);
  const bool bollato = Trim(a.avar_ProvaBollato) == "B";

  std::unique_ptr<clsAnagraficaAzienda> pAnag;
  std::unique_ptr<clsProgAzienda> pProg;
  std::unique_ptr<clsNumerazioneFogli> pFogli;
  clsAnagraficaAzienda* anagrafica = Usa(a.objAnagraficaAzienda, pAnag, conn);
  clsProgAzienda* progressivi = Usa(a.objProgressiviAzienda, pProg, conn);
  clsNumerazioneFogli* fogli = Usa(a.objNumerazioneFogli, pFogli, conn);

  Progressivi inizioAnno;
  if (!LeggiProgressivi(*progressivi, inizioAnno)) {
    Host().Beep();
    Host().MsgBox("Mancano i dati nell'archivio progressivi azienda.", vbExclamation, kTitolo);
    return false;
  }

  FileLavoro file({"libgio.tmp", "~libgio.tmp"});
  const std::string &corpo = file[0], &pagine = file[1];

  // ---- the body: the rows of each day, the day's totals, then the running totals. One read of
  // the month gives both: the rows already on the book count in their day's totals and are
  // not printed; a day with no row left to print is not printed at all.
  Nomi nomi(db);
  Impronta stampate;
  int32_t progressivoRiga = inizioAnno.riga;
  {
    Corpo out(corpo, a.avar_RighePagina, inizioAnno.dare, inizioAnno.avere);
    std::string giorno, registrazione;
    std::string data;  // of the day, dd/mm/yyyy
    bool aperto = false;
    Importo dareGiorno, avereGiorno;
    std::string linea, cifra;
    Importo ultimoImporto;
    auto chiudiGiorno = [&]() {
      if (aperto) {
        out.Riga("                                     Totale DARE  del giorno  " + data + std::string(36, ' ') +
                 Dx(Cifra(dareGiorno), 18));
        out.Riga("                                     Totale AVERE del giorno  " + data + std::string(41, ' ') +
                 Dx(Cifra(avereGiorno), 18));
      }
      aperto = false;
      dareGiorno = avereGiorno = Importo();
    };
    db.Scorri(std::string("SELECT ") + kChiave +
                  ", P.[DataDocumento], P.[NumeroDocumento], P.[SerieDocumento], P.[NumeroDiProtocollo], "
                  "P.[IndClienteFornitore], P.[CodiceCausale], P.[DescrizioneSupplem], "
                  "COALESCE(substr(P.[Stringa10indicatori], 2, 1), '') FROM [Prima Nota] P WHERE "
                  "P.[DataRegistrazione] >= ? AND P.[DataRegistrazione] <= ? ORDER BY P.[DataRegistrazione], "
                  "P.[NumeroRegistrazione], COALESCE(P.[TipoRigaIvaNormale], ''), COALESCE(P.[NumRigaAVideo], ''), "
                  "P.[DareAvere]",
              {Valore(da), Valore(al)}, [&](const std::vector<Colonna>&, const std::vector<Valore>& v) {
                // The day changes when the stored date does: it is read only then.
                const std::string chiaveGiorno = v[0].Testo();
                if (chiaveGiorno != giorno) {
                  chiudiGiorno();
                  giorno = chiaveGiorno;
                  auto d = v[0].ComeData();
                  data = d ? DataLunga(*d) : std::string(10, ' ');
                }
                const bool avere = T(v[4]) == "A";
                const Importo importo = Imp(v[7]);
                (avere ? avereGiorno : dareGiorno) += importo;
                if (T(v[15]) == "G") return true;  // already on the book

                const std::string reg = T(v[1]);
                if (!aperto) {
                  aperto = true;
                  if (a.formAttiva) a.formAttiva->msgbar(" Elaborazione registrazioni del " + data);
                  out.Riga("         Movimenti del  " + data + std::string(35, ' ') + std::string(62, '-'));
                } else if (reg != registrazione) {
                  out.Riga(std::string(69, ' ') + std::string(62, '-'));
                }
                registrazione = reg;
                if (progressivoRiga == std::numeric_limits<int32_t>::max())
                  throw ErroreDb(6, "Overflow: numero di riga del libro giornale");
                ++progressivoRiga;

                const std::string conto = T(v[5]), soggetto = T(v[6]);
                const std::string& nome = soggetto.empty() ? nomi.Conto(conto) : nomi.Soggetto(T(v[12]), soggetto);
                auto doc = v[8].ComeData();
                // The line, built in one buffer that keeps its room from row to row.
                char numeroRiga[16];
                std::snprintf(numeroRiga, sizeof numeroRiga, "%06d ", static_cast<int>(progressivoRiga));
                linea.assign(numeroRiga);
                Accoda(linea, doc ? doc->Formato("dd/mm/yy") : std::string(), 8);
                linea += "  ";
                Accoda(linea, Numero(v[9]), 6, true);
                linea += '/';
                Accoda(linea, v[10].Testo(), 6);
                Accoda(linea, Numero(v[11]), 6, true);
                linea += ' ';
                if (a.avar_StampaCodiciConti)
                  Accoda(linea, conto + (soggetto.empty() ? "" : "/" + soggetto) + " " + nome, 31);
                else
                  Accoda(linea, nome, 31);
                linea += ' ';
                Accoda(linea, nomi.Causale(T(v[13])), 20);
                linea += ' ';
                Accoda(linea, v[14].Testo(), 20);
                if (avere) linea.append(5, ' ');
                if (!(importo == ultimoImporto) || cifra.empty()) {  // an entry's two sides share it
                  ultimoImporto = importo;
                  cifra = Cifra(importo);
                }
                Accoda(linea, cifra, 16, true);
                out.Riga(linea);
                out.Somma(avere, importo);
                stampate.Aggiungi(v, bollato);
                return true;
              });
    chiudiGiorno();
    esito_.righe = stampate.righe;
    esito_.primaRiga = inizioAnno.riga + 1;
    esito_.ultimaRiga = progressivoRiga;
    esito_.dare = inizioAnno.dare + stampate.dare;
    esito_.avere = inizioAnno.avere + stampate.avere;
    out.Riga("                                     TOTALE DARE  PROGRESSIVO                                              " +
             Dx(Cifra(esito_.dare), 16));
    out.Riga("                                     TOTALE AVERE PROGRESSIVO                                                    " +
             Dx(Cifra(esito_.avere), 16));
    out.Chiudi();
  }
  if (stampate.righe == 0) {
    Host().Beep();
    Host().MsgBox("Nessun dato da stampare.", vbInformation, "STAMPA");
    esito_ = {};
    esito_.nessunDato = true;
    return false;
  }
  // ---- pages and sheets
  const auto azienda = RigheAzienda(*anagrafica);
  std::array<std::string, 7> testa = {
      Riga('='),
      "                                             G I O R N A L E     G E N E R A L E",
      azienda[0],
      azienda[1],
      Riga('='),
      "Riga   Data Doc  N.Doc/S.Doc  Prot.  Descrizione Conto               Desc. Causale        Desc. Supplementare "
      "           Dare Avere",
      Riga('=')};
  std::array<std::string, 2> piede = {PiedeElaborato(a.AzRagSoc, a.AzParIva), ""};
  RigaPagina("", Valore(0));
  {
    // A work file: written plainly, the print's own file is the one kept whole.
    std::ofstream out(pagine, std::ios::binary);
    if (!out) throw ErroreStampa("Impossibile scrivere il file " + pagine);
    ImpaginaFile(corpo, out, a.avar_RighePagina, testa, piede, false, 1);
    out.close();
    if (!out) throw ErroreStampa("Impossibile scrivere il file " + pagine);
  }

  // ---- the caller's file, the sheets numbered straight into it; it is named once the
  // bookkeeping is committed
  FileStampa stampa(a.nomeFile);
  if (a.avar_NumerazionePagine) {
    auto numerati = fogli->NumeraFogli(pagine, stampa.Flusso(), a.avar_RighePagina, Valore("G"), Valore(""),
                                       Valore(""), a.avar_Anno, a.clientID, a.hWnd);
    if (!stampa.Flusso()) throw ErroreStampa("Impossibile scrivere il file " + a.nomeFile);
    esito_.primoFoglio = numerati.primo;
    esito_.prossimoFoglio = numerati.prossimo;
  } else {
    CopiaInStampa(pagine, stampa, a.nomeFile);
  }
  if (bollato) {
    Atomico unita(db);
    auto rifiuta = [&](const std::string& perche) {
      Host().MsgBox("Problema in fase di variazione indicatori stampato su libro giornale.\n" + perche +
                        ": nulla è stato registrato, ripetere la stampa.",
                    vbExclamation, kTitolo);
      return false;  // the unit is undone, the file is not named
    };
    // The book as it stood when the print began, and the rows of the month as they were printed.
    Progressivi ora;
    if (!LeggiProgressivi(*progressivi, ora) || !(ora == inizioAnno))
      return rifiuta("I progressivi del libro giornale sono stati variati da un altro utente durante la stampa");
    Impronta attuale;
    db.Scorri(std::string("SELECT ") + kChiave + " FROM [Prima Nota] P WHERE " + kDaStampare,
              {Valore(da), Valore(al)}, [&](const std::vector<Colonna>&, const std::vector<Valore>& v) {
                attuale.Aggiungi(v);
                return true;
              });
    if (!(attuale == stampate))
      return rifiuta("Le righe del mese sono state variate o stampate da un altro utente durante la stampa");
    const std::string s = "[Stringa10indicatori]";
    int64_t marcate = db.Esegui(
        "UPDATE [Prima Nota] SET " + s + " = CASE WHEN COALESCE(substr(" + s + ", 1, 1), '') = '' THEN ' ' ELSE substr(" +
            s + ", 1, 1) END || 'G' || COALESCE(substr(" + s +
            ", 3), '') WHERE [DataRegistrazione] >= ? AND [DataRegistrazione] <= ? AND COALESCE(substr(" + s +
            ", 2, 1), '') <> 'G'",
        {Valore(da), Valore(al)});
    if (marcate != stampate.righe)
      return rifiuta("Le righe del mese sono state variate o stampate da un altro utente durante la stampa");
    progressivi->AggiornaProgressiviLibroGiornale(Valore(al), Valore(static_cast<long long>(esito_.ultimaRiga)),
                                                  Valore(esito_.dare), Valore(esito_.avere), a.clientID, a.hWnd);
    if (a.avar_NumerazionePagine &&
        !fogli->SalvaFogliStampati(Valore("G"), Valore(""), Valore(""), a.avar_Anno, esito_.prossimoFoglio,
                                   a.clientID, a.hWnd))
      return false;
    unita.Conferma();
  }
  stampa.Chiudi();
  esito_.stampato = true;
  if (a.formAttiva) a.formAttiva->msgbar("");
  return true;
}

}  // namespace vorn
