#include "assets/clsCespitiRegistro.h"

#include <array>
#include <fstream>
#include <memory>

#include "assets/clsCespitiAmm.h"
#include "assets/clsCespitiCategorie.h"
#include "company/StampaLibri.h"
#include "company/clsAnagraficaAzienda.h"
#include "company/clsNumerazioneFogli.h"
#include "company/clsProgAzienda.h"
#include "frame/Comuni.h"
#include "frame/FileVorn.h"
#include "frame/Formato.h"
#include "frame/Globali.h"
#include "frame/Impaginazione.h"

namespace vorn {

using namespace stampa_libri;

namespace {

constexpr const char* kTitolo = "Registro cespiti";

std::string Riga(char c) { return std::string(kColonneReport, c); }

// Code, description and date of purchase come before the track and its figures.
constexpr size_t kColonnaTraccia = 43;

Importo Imp2(double v) { return Importo::DaDouble(v).Arrotonda(G().DecimaliImporti); }

// The figures of a track, summed exactly.
struct Cifre {
  Importo valore, fondoPrec, ammortamento, fondo, residuo;
  void Somma(const Cifre& c) {
    valore += c.valore;
    fondoPrec += c.fondoPrec;
    ammortamento += c.ammortamento;
    fondo += c.fondo;
    residuo += c.residuo;
  }
};

// "Fisc." or "Civ. " and the five figures with the year's rate.
void Colonne(std::string& riga, const char* traccia, const Cifre& c) {
  Accoda(riga, traccia, 5);
  riga += ' ';
  Accoda(riga, Cifra(c.valore), 14, true);
  riga += ' ';
  Accoda(riga, Cifra(c.fondoPrec), 14, true);
  riga += ' ';
  const double perc = c.valore.Zero() ? 0 : c.ammortamento.ToDouble() * 100 / c.valore.ToDouble();
  Accoda(riga, Format(Valore(perc), "0.00"), 6, true);
  riga += ' ';
  Accoda(riga, Cifra(c.ammortamento), 14, true);
  riga += ' ';
  Accoda(riga, Cifra(c.fondo), 14, true);
  riga += ' ';
  Accoda(riga, Cifra(c.residuo), 14, true);
}

// The columns' captions, in the widths of the figures.
std::string Intestazione() {
  std::string r;
  Accoda(r, "Codice", 8);
  r += ' ';
  Accoda(r, "Descrizione", 22);
  r += ' ';
  Accoda(r, "Data acq.", 10);
  r += ' ';
  Accoda(r, "Trac.", 5);
  for (auto [testo, n] : {std::pair<const char*, int>{"Valore", 14}, {"Fondo prec.", 14}, {"Aliq.", 6},
                          {"Ammortamento", 14}, {"Fondo fine", 14}, {"Residuo", 14}}) {
    r += ' ';
    Accoda(r, testo, n, true);
  }
  return r;
}

}  // namespace

int16_t clsCespitiRegistro::MakeDatiStampaGiornaleCespiti(IForm* objFormAttiva, const std::string& clientName,
                                                          int anno) {
  Connessione& db = *cn;
  Atomico unita(db);
  db.Esegui("DELETE FROM [Elaborazione cespiti schede contabili] WHERE [clientName] = ?", {Valore(clientName)});
  std::vector<std::string> codici;
  {
    auto rs = db.Execute("SELECT [CodiceCespite] FROM [Cespiti] ORDER BY [CodiceCespite]");
    for (; !rs.Eof(); rs.MoveNext()) codici.push_back(Trim(rs.Fields(0).Value().Testo()));
  }
  if (codici.empty()) {
    unita.Conferma();
    Host().Beep();
    Host().MsgBox("Non è stato trovato nessun cespite per i parametri di selezione indicati", vbInformation, kTitolo);
    return 0;
  }
  clsCespitiAmm amm;
  amm.cn = cn;
  int16_t n = 0;
  int numeroRiga = 0;
  for (const auto& codice : codici) {
    const int annoAcquisto = amm.GetDataAcquistoCespite(codice).Anno();
    if (annoAcquisto == DataVuotaCespiti().Anno() || annoAcquisto > anno) continue;
    if (objFormAttiva) objFormAttiva->msgbar("Creazione scheda cespite: " + codice);
    amm.MakeSchedaCespite(nullptr, clientName, numeroRiga, codice, anno);
    ++n;
  }
  unita.Conferma();
  if (objFormAttiva) objFormAttiva->msgbar("");
  return n;
}

bool clsCespitiRegistro::StampaRegistroCespiti(const ArgomentiRegistroCespiti& a) {
  esito_ = {};
  Connessione& db = *cn;
  if (a.avar_RighePagina < kMinimoRighePaginaCespiti)
    throw ErroreStampa("Righe per pagina troppo poche: " + std::to_string(a.avar_RighePagina) + " (almeno " +
                       std::to_string(kMinimoRighePaginaCespiti) + ")");
  if (a.anno < 1900 || a.anno > 9999) throw ErroreDb(3265, "Anno non valido: " + std::to_string(a.anno));
  VerificaNome(a.clientName, "nome del client");
  std::unique_ptr<clsAnagraficaAzienda> pAnag;
  clsAnagraficaAzienda* anagrafica = Usa(a.objAnagraficaAzienda, pAnag, cn);

  const bool bollato = Trim(a.avar_ProvaBollato) == "B";
  std::unique_ptr<clsProgAzienda> pProg;
  std::unique_ptr<clsNumerazioneFogli> pFogli;
  clsProgAzienda* progressivi = Usa(a.objProgressiviAzienda, pProg, cn);
  clsNumerazioneFogli* fogli = Usa(a.objNumerazioneFogli, pFogli, cn);
  const Data fine = *Data::Crea(a.anno, 12, 31);
  const Valore ultimaStampa = progressivi->GetDataUltimoLibroCespiti();
  if (bollato) {
    // A year is on the book once: its sheets would be numbered twice.
    auto ultima = ultimaStampa.ComeData();
    if (ultimaStampa.IsDate() && ultima && *ultima >= fine) {
      Host().Beep();
      Host().MsgBox("Il registro cespiti è già stato stampato in definitivo fino al " + ultima->Testo() + ".",
                    vbExclamation, kTitolo);
      esito_.giaBollato = true;
      return false;
    }
  }

  MakeDatiStampaGiornaleCespiti(a.objFormAttiva, a.clientName, a.anno);
  // The work rows go whatever happens.
  struct Pulizia {
    Connessione& db;
    std::string nome;
    ~Pulizia() {
      try {
        db.Esegui("DELETE FROM [Elaborazione cespiti schede contabili] WHERE [clientName] = ?", {Valore(nome)});
      } catch (...) {
      }
    }
  } pulizia{db, a.clientName};

  FileLavoro file({"regces.tmp", "~regces.tmp"});
  const std::string &corpo = file[0], &pagine = file[1];
  {
    std::ofstream out(corpo, std::ios::binary);
    if (!out) throw ErroreStampa("Impossibile scrivere il file " + corpo);
    std::string categoria;
    Cifre totCategoria, totAnno;
    auto chiudiCategoria = [&]() {
      if (categoria.empty()) return;
      std::string r = "     Totale categoria ";
      Accoda(r, categoria, kColonnaTraccia - 22);
      Colonne(r, "Fisc.", totCategoria);
      Scrivi(out, r, corpo);
      Scrivi(out, "", corpo);
      totCategoria = {};
    };
    db.Scorri(
        "SELECT S.[codiceCespite], C.[DescrizioneCespite], C.[CodiceCategoria], G.[DescrizioneCategoria], "
        "COALESCE(G.[indNatura], 0), S.[dataAcquisto], S.[valoreCespiteFisc], S.[fondoPrecAmmOrdFisc], "
        "S.[fondoPrecAmmAntFisc], S.[ammOrdFisc], S.[ammAntFisc], S.[residuoDaAmmFisc], S.[valoreCespiteCiv], "
        "S.[fondoPrecAmmOrdCiv], S.[fondoPrecAmmAntCiv], S.[ammOrdCiv], S.[ammAntCiv], S.[ResiduoDaAmmCiv], S.[Nota] "
        "FROM [Elaborazione cespiti schede contabili] S INNER JOIN [Cespiti] C ON C.[CodiceCespite] = "
        "S.[codiceCespite] LEFT JOIN [CespitiCategorie] G ON G.[CodiceCategoria] = C.[CodiceCategoria] "
        "WHERE S.[clientName] = ? AND S.[anno] = ? ORDER BY C.[CodiceCategoria], S.[codiceCespite]",
        {Valore(a.clientName), Valore(a.anno)}, [&](const std::vector<Colonna>&, const std::vector<Valore>& v) {
          const std::string cat = Trim(v[2].Testo());
          if (cat != categoria || esito_.cespiti == 0) {
            chiudiCategoria();
            categoria = cat;
            std::string r = "Categoria: " + cat + " " + Trim(v[3].Testo()) + " (" +
                            DescrizioneNatura(NullToZeroLng(v[4])) + ")";
            Scrivi(out, r, corpo);
            Scrivi(out, std::string(LunghezzaTesto(r), '-'), corpo);
          }
          auto cifre = [&](size_t i) {
            Cifre c;
            c.valore = Imp2(NullToZeroDbl(v[i]));
            c.fondoPrec = Imp2(NullToZeroDbl(v[i + 1])) + Imp2(NullToZeroDbl(v[i + 2]));
            c.ammortamento = Imp2(NullToZeroDbl(v[i + 3])) + Imp2(NullToZeroDbl(v[i + 4]));
            c.fondo = c.fondoPrec + c.ammortamento;
            c.residuo = Imp2(NullToZeroDbl(v[i + 5]));
            return c;
          };
          const Cifre fisc = cifre(6), civ = cifre(12);
          std::string r;
          Accoda(r, Trim(v[0].Testo()), 8);
          r += ' ';
          Accoda(r, Trim(v[1].Testo()), 22);
          r += ' ';
          auto acq = v[5].ComeData();
          Accoda(r, acq ? acq->Testo() : "", 10);
          r += ' ';
          Colonne(r, "Fisc.", fisc);
          Scrivi(out, r, corpo);
          r.assign(kColonnaTraccia, ' ');
          Colonne(r, "Civ.", civ);
          Scrivi(out, r, corpo);
          const std::string nota = Trim(v[18].Testo());
          if (!nota.empty()) Scrivi(out, std::string(kColonnaTraccia, ' ') + nota, corpo);
          totCategoria.Somma(fisc);
          totAnno.Somma(fisc);
          ++esito_.cespiti;
          return true;
        });
    chiudiCategoria();
    if (esito_.cespiti > 0) {
      std::string r = "     TOTALE GENERALE ";
      r.append(kColonnaTraccia - LunghezzaTesto(r), ' ');
      Colonne(r, "Fisc.", totAnno);
      Scrivi(out, r, corpo);
    }
    esito_.valoreFisc = totAnno.valore;
    esito_.ammortamentoFisc = totAnno.ammortamento;
    esito_.fondoFisc = totAnno.fondo;
    esito_.residuoFisc = totAnno.residuo;
    out.close();
    if (!out) throw ErroreStampa("Impossibile scrivere il file " + corpo);
  }
  if (esito_.cespiti == 0) {
    Host().Beep();
    Host().MsgBox("Nessun dato da stampare.", vbInformation, "STAMPA");
    return false;
  }
  const auto azienda = RigheAzienda(*anagrafica);
  std::array<std::string, 7> testa = {
      Riga('='),
      "                              R E G I S T R O   D E I   B E N I   A M M O R T I Z Z A B I L I   -   A N N O  " +
          std::to_string(a.anno),
      azienda[0],
      azienda[1],
      Riga('='),
      Intestazione(),
      Riga('=')};
  std::array<std::string, 2> piede = {PiedeElaborato(a.AzRagSoc, a.AzParIva), ""};
  RigaPagina("", Valore(0));
  if (!bollato) {
    // A trial: the pages go straight into the print, named only when whole.
    FileStampa stampa(a.nomeFile);
    ImpaginaFile(corpo, stampa.Flusso(), a.avar_RighePagina, testa, piede, false, 1);
    if (!stampa.Flusso()) throw ErroreStampa("Impossibile scrivere il file " + a.nomeFile);
    stampa.Chiudi();
    esito_.stampato = true;
    return true;
  }
  // Definitive: the pages, then the book's sheets numbered into the print; the sheets and the
  // date of the book commit together, and only then is the print named.
  {
    std::ofstream out(pagine, std::ios::binary);
    if (!out) throw ErroreStampa("Impossibile scrivere il file " + pagine);
    ImpaginaFile(corpo, out, a.avar_RighePagina, testa, piede, false, 1);
    out.close();
    if (!out) throw ErroreStampa("Impossibile scrivere il file " + pagine);
  }
  FileStampa stampa(a.nomeFile);
  auto numerati = fogli->NumeraFogli(pagine, stampa.Flusso(), a.avar_RighePagina, Valore("B"), Valore(""), Valore(""),
                                     a.anno, a.clientID, a.hWnd);
  if (!stampa.Flusso()) throw ErroreStampa("Impossibile scrivere il file " + a.nomeFile);
  esito_.primoFoglio = numerati.primo;
  esito_.prossimoFoglio = numerati.prossimo;
  {
    Atomico unita(db);
    if (!(progressivi->GetDataUltimoLibroCespiti() == ultimaStampa)) {
      Host().MsgBox("Il registro cespiti è stato stampato in definitivo da un altro utente durante la stampa: nulla "
                    "è stato registrato, ripetere la stampa.",
                    vbExclamation, kTitolo);
      return false;
    }
    progressivi->AggiornaDataUltimoLibroCespiti(Valore(fine), a.clientID, a.hWnd);
    if (!fogli->SalvaFogliStampati(Valore("B"), Valore(""), Valore(""), a.anno, esito_.prossimoFoglio, a.clientID,
                                   a.hWnd))
      return false;
    unita.Conferma();
  }
  stampa.Chiudi();
  esito_.stampato = true;
  return true;
}

}  // namespace vorn
