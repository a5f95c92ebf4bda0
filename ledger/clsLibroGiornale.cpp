#include "ledger/clsLibroGiornale.h"

#include <array>
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
#include "frame/TabellaLavoro.h"
#include "ledger/clsPrimaNota.h"

namespace vorn {

namespace {

using namespace stampa_libri;

constexpr const char* kTitolo = "Stampa libro giornale";
constexpr const char* kGiorni = "Giorni da stampare su libro giornale";

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

  // v: the columns of kChiave, in order.
  void Aggiungi(const std::vector<Valore>& v) {
    uint64_t h = 1469598103934665603ull;
    auto mescola = [&h](const std::string& s) {
      for (unsigned char c : s) h = (h ^ c) * 1099511628211ull;
      h = (h ^ 0x1f) * 1099511628211ull;
    };
    auto d = v[0].ComeData();
    mescola(d ? d->Formato("yyyymmdd") : std::string());
    for (size_t i = 1; i < 7; ++i) mescola(T(v[i]));
    Importo importo = Imp(v[7]);
    mescola(std::to_string(importo.Raw()));
    digest += h;
    ++righe;
    if (T(v[4]) == "A") avere += importo;
    else dare += importo;
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

// The debit and credit of each day of the period, the rows already printed included.
std::map<std::string, std::pair<Importo, Importo>> TotaliGiorni(Connessione& cn, const Data& da, const Data& al) {
  std::map<std::string, std::pair<Importo, Importo>> t;
  cn.Scorri("SELECT P.[DataRegistrazione], P.[DareAvere], SUM(P.[ImportoMovimento]) FROM [Prima Nota] P WHERE "
            "P.[DataRegistrazione] >= ? AND P.[DataRegistrazione] <= ? GROUP BY P.[DataRegistrazione], P.[DareAvere]",
            {Valore(da), Valore(al)}, [&](const std::vector<Colonna>&, const std::vector<Valore>& v) {
              auto d = v[0].ComeData();
              if (!d) return true;
              auto& g = t[d->Formato("yyyymmdd")];
              (T(v[1]) == "A" ? g.second : g.first) += Imp(v[2]);
              return true;
            });
  return t;
}

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

std::string clsLibroGiornale::NomeTabellaGiorni(const std::string& prefisso) { return prefisso + kGiorni; }

bool clsLibroGiornale::StampaLibroGiornale(const ArgomentiLibroGiornale& a) {
  esito_ = {};
  const std::shared_ptr<Connessione>& conn = cn;
  Connessione& db = *cn;
  auto inizio = Data::Crea(a.avar_Anno, a.avar_Mese, 1);
  if (!inizio || a.avar_Mese < 1 || a.avar_Mese > 12)
    throw ErroreDb(3265, "Periodo non valido: mese " + std::to_string(a.avar_Mese) + " anno " +
                             std::to_string(a.avar_Anno));
  if (a.avar_RighePagina < kMinimoRighePagina)
    throw ErroreStampa("Righe per pagina troppo poche: " + std::to_string(a.avar_RighePagina) + " (almeno " +
                       std::to_string(kMinimoRighePagina) + ")");
  const Data da = *inizio, al = da.AggiungiMesi(1).AggiungiGiorni(-1);
  const bool bollato = Trim(a.avar_ProvaBollato) == "B";

  std::unique_ptr<clsAnagraficaAzienda> pAnag;
  std::unique_ptr<clsProgAzienda> pProg;
  std::unique_ptr<clsPrimaNota> pPn;
  std::unique_ptr<clsNumerazioneFogli> pFogli;
  clsAnagraficaAzienda* anagrafica = Usa(a.objAnagraficaAzienda, pAnag, conn);
  clsProgAzienda* progressivi = Usa(a.objProgressiviAzienda, pProg, conn);
  clsNumerazioneFogli* fogli = Usa(a.objNumerazioneFogli, pFogli, conn);
  Usa(a.objPrimaNota, pPn, conn);

  // The days to print, in the caller's work table: gone at the end whatever happens.
  TabellaLavoro giorni(db, a.avar_PrefissoTabelleTmp, kGiorni,
                       {{"DataRegistrazione", TipoCampo::Data}, {"Stato", TipoCampo::Testo, 1}});
  struct Elimina {
    TabellaLavoro& t;
    ~Elimina() {
      try {
        t.Elimina();
      } catch (...) {
      }
    }
  } elimina{giorni};
  giorni.Elimina();

  Progressivi inizioAnno;
  if (!LeggiProgressivi(*progressivi, inizioAnno)) {
    Host().Beep();
    Host().MsgBox("Mancano i dati nell'archivio progressivi azienda.", vbExclamation, kTitolo);
    return false;
  }

  giorni.Crea();
  int64_t nGiorni = giorni.Riempi(
      std::string("SELECT DISTINCT P.[DataRegistrazione], '' FROM [Prima Nota] P WHERE ") + kDaStampare,
      {Valore(da), Valore(al)});
  if (nGiorni == 0) {
    Host().Beep();
    Host().MsgBox("Nessun dato da stampare.", vbInformation, "STAMPA");
    esito_.nessunDato = true;
    return false;
  }

  FileLavoro file({"libgio.tmp", "~libgio.tmp", "~libgionum.tmp"});
  const std::string &corpo = file[0], &pagine = file[1], &numerato = file[2];

  // ---- the body: the rows of each day, the day's totals, then the running totals
  const auto totaliGiorni = TotaliGiorni(db, da, al);
  Nomi nomi(db);
  Impronta stampate;
  int32_t progressivoRiga = inizioAnno.riga;
  {
    Corpo out(corpo, a.avar_RighePagina, inizioAnno.dare, inizioAnno.avere);
    std::string giorno, registrazione;
    long giorniFatti = 0;
    auto chiudiGiorno = [&]() {
      if (giorno.empty()) return;
      auto t = totaliGiorni.find(giorno);
      std::pair<Importo, Importo> s = t == totaliGiorni.end() ? std::pair<Importo, Importo>{} : t->second;
      const std::string data = giorno.substr(6, 2) + "/" + giorno.substr(4, 2) + "/" + giorno.substr(0, 4);
      out.Riga("                                     Totale DARE  del giorno  " + data + std::string(36, ' ') +
               Dx(Cifra(s.first), 18));
      out.Riga("                                     Totale AVERE del giorno  " + data + std::string(41, ' ') +
               Dx(Cifra(s.second), 18));
    };
    db.Scorri(std::string("SELECT ") + kChiave +
                  ", P.[DataDocumento], P.[NumeroDocumento], P.[SerieDocumento], P.[NumeroDiProtocollo], "
                  "P.[IndClienteFornitore], P.[CodiceCausale], P.[DescrizioneSupplem] FROM [Prima Nota] P WHERE " +
                  kDaStampare +
                  " ORDER BY P.[DataRegistrazione], P.[NumeroRegistrazione], COALESCE(P.[TipoRigaIvaNormale], ''), "
                  "COALESCE(P.[NumRigaAVideo], ''), P.[DareAvere]",
              {Valore(da), Valore(al)}, [&](const std::vector<Colonna>&, const std::vector<Valore>& v) {
                auto d = v[0].ComeData();
                const std::string chiaveGiorno = d ? d->Formato("yyyymmdd") : std::string();
                const std::string reg = T(v[1]);
                if (chiaveGiorno != giorno) {
                  chiudiGiorno();
                  giorno = chiaveGiorno;
                  const std::string data = d ? DataLunga(*d) : std::string(10, ' ');
                  if (a.formAttiva)
                    a.formAttiva->msgbar(" Elaborazione registrazioni del " + data + " (" +
                                         std::to_string(++giorniFatti) + " di " + std::to_string(nGiorni) + ")");
                  out.Riga("         Movimenti del  " + data + std::string(35, ' ') + std::string(62, '-'));
                } else if (reg != registrazione) {
                  out.Riga(std::string(69, ' ') + std::string(62, '-'));
                }
                registrazione = reg;
                if (progressivoRiga == std::numeric_limits<int32_t>::max())
                  throw ErroreDb(6, "Overflow: numero di riga del libro giornale");
                ++progressivoRiga;

                const std::string conto = T(v[5]), soggetto = T(v[6]);
                std::string testo = soggetto.empty() ? nomi.Conto(conto) : nomi.Soggetto(T(v[12]), soggetto);
                if (a.avar_StampaCodiciConti)
                  testo = conto + (soggetto.empty() ? "" : "/" + soggetto) + " " + testo;
                const std::string dataDoc = v[8].ComeData() ? DataBreve(v[8]).Testo() : "";
                const bool avere = T(v[4]) == "A";
                const Importo importo = Imp(v[7]);
                out.Riga(Format(Valore(static_cast<long long>(progressivoRiga)), "000000") + " " + Largo(dataDoc, 8) +
                         "  " + Dx(Numero(v[9]), 6) + "/" + Sx(T(v[10]), 6) + Dx(Numero(v[11]), 6) + " " +
                         Sx(testo, 31) + " " + Sx(nomi.Causale(T(v[13])), 20) + " " + Sx(T(v[14]), 20) +
                         (avere ? std::string(5, ' ') : std::string()) + Dx(Cifra(importo), 16));
                out.Somma(avere, importo);
                stampate.Aggiungi(v);
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
    // Every row of the month was printed by another user since the days were read.
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
  ImpaginaFile(corpo, pagine, a.avar_RighePagina, testa, piede, false, 1);
  std::string finale = pagine;
  if (a.avar_NumerazionePagine) {
    auto numerati = fogli->NumeraFogli(pagine, numerato, a.avar_RighePagina, Valore("G"), Valore(""), Valore(""),
                                       a.avar_Anno, a.clientID, a.hWnd);
    esito_.primoFoglio = numerati.primo;
    esito_.prossimoFoglio = numerati.prossimo;
    finale = numerato;
  }

  // ---- the caller's file, named once the bookkeeping is committed
  FileStampa stampa(a.nomeFile);
  CopiaInStampa(finale, stampa, a.nomeFile);
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
