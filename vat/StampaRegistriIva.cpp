// The print of a VAT register and the bookkeeping of a definitive print.
#include <array>
#include <fstream>
#include <map>
#include <memory>
#include <set>
#include <vector>

#include "company/clsAnagraficaAzienda.h"
#include "company/clsNumerazioneFogli.h"
#include "company/clsProgrNumerazione.h"
#include "frame/Comuni.h"
#include "frame/FileVorn.h"
#include "frame/Globali.h"
#include "frame/Impaginazione.h"
#include "frame/TabellaLavoro.h"
#include "ledger/clsCausaliContabili.h"
#include "ledger/clsPrimaNota.h"
#include "vat/clsProgressiviIva.h"
#include "company/StampaLibri.h"
#include "vat/clsRegistriIva.h"

namespace vorn {

namespace {

using namespace stampa_libri;

std::string DataCorta(const Valore& v) {
  if (!v.ComeData()) return "00.00.00";
  return DataBreve(v).Testo();
}
std::string Numero(const Valore& v) {
  if (v.IsNull() || v.IsEmpty()) return "";
  return std::to_string(NullToZeroLng(v));
}
std::string Riga(char c) { return std::string(kColonneReport, c); }

const char* const kCosto = "**COSTO/RICAVO SEMPLIFICATI**";

// The register kinds as this file needs them.
struct Forma {
  std::string tipo;
  bool acquisti = false, ventilazione = false, stampa = true;
  std::string foglio, tipoDifferite, titolo, dataFiltro;
};

Forma FormaDi(const std::string& tipo, const std::string& autotrasportatori) {
  Forma f;
  f.tipo = tipo;
  bool autot = Trim(autotrasportatori) == "1" && (tipo == "1" || tipo == "3" || tipo == "4");
  f.dataFiltro = (tipo == "3" || tipo == "4") && !autot ? "DataCompetenza" : "DataCompetenzaIVA";
  if (tipo == "1") f = {tipo, false, false, true, "V", "7", "REGISTRO FATTURE VENDITA", f.dataFiltro};
  else if (tipo == "2") f = {tipo, true, false, true, "A", "9", "REGISTRO FATTURE ACQUISTI", f.dataFiltro};
  else if (tipo == "3") f = {tipo, false, false, true, "C", "", "REGISTRO CORRISPETTIVI SCORPORAZIONE", f.dataFiltro};
  else if (tipo == "4") f = {tipo, false, true, true, "E", "", "REGISTRO CORRISPETTIVI VENTILAZIONE", f.dataFiltro};
  else if (tipo == "5") f = {tipo, false, false, true, "S", "", "REGISTRO FATTURE SOSPENSIONE IVA", f.dataFiltro};
  else if (tipo == "6") f = {tipo, false, false, false, "", "", "", f.dataFiltro};
  else if (tipo == "8") f = {tipo, true, false, false, "", "", "", f.dataFiltro};
  else throw ErroreDb(3265, "Tipo di registro IVA sconosciuto: '" + tipo + "'");
  return f;
}

// The column heading of a body, with its variants.
std::string Sostituisci(std::string testo, const std::string& vecchio, const std::string& nuovo) {
  size_t p = testo.find(vecchio);
  if (p == std::string::npos) return testo;
  // The new word takes the old one's place and as many of the blanks after it as it needs.
  size_t fine = p + vecchio.size();
  size_t spazi = 0;
  while (fine + spazi < testo.size() && testo[fine + spazi] == ' ') ++spazi;
  std::string campo = Sx(nuovo, static_cast<int>(vecchio.size() + spazi));
  return testo.substr(0, p) + campo + testo.substr(fine + spazi);
}

std::string Intestazione(const Forma& f, const ArgomentiRegistroIva& a) {
  bool autot = Trim(a.str_IndIVAAutotrasportatori) == "1" && (f.tipo == "1" || f.tipo == "3" || f.tipo == "4");
  bool semplificata = a.avar_RegimeContabile == 1;
  std::string h;
  if (f.acquisti) {
    h = Trim(a.RifDocContrRegistriIVA) == "1"
            ? "Data Reg Data Doc N.Prot N.Doc.Forn.   Conto/Ragione Sociale           Tipo   Totale Doc.  Imponibile "
              "CI     Imposta Note          "
            : "Data Reg Data Doc  N.Prot  Conto/Ragione Sociale                 Tipo   Totale Doc.  Imponibile CI     "
              "Imposta Note                ";
    if (!semplificata) h = Sostituisci(h, "Conto/Ragione Sociale", "Fornitore");
    return h;
  }
  if (f.ventilazione) {
    h = "Data Reg Data Doc  N.Doc S.Doc  Descrizione                                           Tipo   Totale Doc. ";
    if (semplificata) h = Sostituisci(h, "Descrizione", "Conto/Descrizione");
  } else {
    h = "Data Reg Data Doc  N.Doc S.Doc  Cliente                               Tipo   Totale Doc.  Imponibile CI     "
        "Imposta Note           ";
    if (semplificata) h = Sostituisci(h, "Cliente", "Conto/Ragione Sociale");
  }
  if (autot) h = "Data Ann" + h.substr(8);
  return h;
}

// Names of clients and suppliers, of causals and of VAT codes, read once a run.
class Nomi {
 public:
  Nomi(clsRegistriIva& reg, Connessione& cn, clsCausaliContabili& causali)
      : reg_(reg), cn_(cn), causali_(causali) {}

  // The partner of each registration listed in the work table: its first accounting row with
  // a client or supplier.
  void CaricaControparti(const std::string& corpo) {
    cn_.Scorri("SELECT P.[NumeroRegistrazione], P.[IndClienteFornitore], P.[CodClienteFornitore] FROM [Prima Nota] P "
               "WHERE P.[NumeroRegistrazione] IN (SELECT [NumeroRegistrazione] FROM [" +
                   corpo +
                   "]) AND COALESCE(P.[TipoRigaIvaNormale], '') = '' AND COALESCE(P.[CodClienteFornitore], '') <> '' "
                   "ORDER BY P.[NumeroRegistrazione], P.[NumRigaAVideo], P.[DareAvere]",
               {}, [&](const std::vector<Colonna>&, const std::vector<Valore>& v) {
                 controparti_.emplace(T(v[0]), std::make_pair(T(v[1]), T(v[2])));
                 return true;
               });
  }

  std::string Riga(const std::string& causale, const std::string& tipoCausale, const std::string& registrazione) {
    static const std::set<std::string> conNome = {"0", "1", "4", "5", "6", "7", "8", ":", "9", ";"};
    if (conNome.count(tipoCausale)) {
      auto c = controparti_.find(registrazione);
      if (c == controparti_.end()) return "";
      std::string chiave = c->second.first + "\x1f" + c->second.second;
      auto n = soggetti_.find(chiave);
      if (n == soggetti_.end())
        n = soggetti_.emplace(chiave, reg_.GetRagioneSocialeCliFor(Valore(c->second.first), Valore(c->second.second)))
                .first;
      return n->second;
    }
    if (tipoCausale == "2" || tipoCausale == "3") return Causale(causale);
    return "";
  }

  std::string Causale(const std::string& codice) {
    auto n = causaliLette_.find(codice);
    if (n == causaliLette_.end()) n = causaliLette_.emplace(codice, causali_.GetDescrizioneCausale(Valore(codice))).first;
    return n->second;
  }

 private:
  clsRegistriIva& reg_;
  Connessione& cn_;
  clsCausaliContabili& causali_;
  std::map<std::string, std::pair<std::string, std::string>> controparti_;
  std::map<std::string, std::string> soggetti_, causaliLette_;
};

// The working files of a print.
struct FileRegistro : FileLavoro {
  FileRegistro() : FileLavoro({"regiva.tmp", "totiva.tmp", "totiva.txt", "~regiva.tmp", "~regivanum.tmp"}) {}
  const std::string& corpo = (*this)[0];
  const std::string& totali = (*this)[1];
  const std::string& totaliPagine = (*this)[2];
  const std::string& pagine = (*this)[3];
  const std::string& numerato = (*this)[4];
};

}  // namespace

bool clsRegistriIva::RegistroIvaVendite(const ArgomentiRegistroIva& a) { return Stampa("1", a); }
bool clsRegistriIva::RegistroIvaAcquisti(const ArgomentiRegistroIva& a) { return Stampa("2", a); }
bool clsRegistriIva::RegistroIvaCorrispettivi(const ArgomentiRegistroIva& a) { return Stampa("3", a); }
bool clsRegistriIva::RegistroIvaCorrispettiviVen(const ArgomentiRegistroIva& a) { return Stampa("4", a); }
bool clsRegistriIva::RegistroIvaSospensione(const ArgomentiRegistroIva& a) { return Stampa("5", a); }
bool clsRegistriIva::RegistroIvaDifferitaVendite(const ArgomentiRegistroIva& a) { return Stampa("6", a); }
bool clsRegistriIva::RegistroIvaDifferitaAcquisti(const ArgomentiRegistroIva& a) { return Stampa("8", a); }
bool clsRegistriIva::StampaRegistro(const std::string& TipoRegistroIva, const ArgomentiRegistroIva& a) {
  return Stampa(Trim(TipoRegistroIva), a);
}

bool clsRegistriIva::Stampa(const std::string& tipo, const ArgomentiRegistroIva& a) {
  esito_ = {};
  const Forma f = FormaDi(tipo, a.str_IndIVAAutotrasportatori);
  const std::shared_ptr<Connessione>& conn = cn;
  Connessione& db = *cn;
  const auto [da, al] = MeseDelLibro(a.avar_Anno, a.avar_Mese);
  const bool bollato = Trim(a.avar_ProvaBollato) == "B";
  const std::string pref = a.avar_PrefissoTabelleTmp;
  const std::string registro = T(a.avar_NumeroRegistro);

  std::unique_ptr<clsAnagraficaAzienda> pAnag;
  std::unique_ptr<clsProgressiviIva> pProg;
  std::unique_ptr<clsPrimaNota> pPn;
  std::unique_ptr<clsProgrNumerazione> pNum;
  std::unique_ptr<clsNumerazioneFogli> pFogli;
  std::unique_ptr<clsCausaliContabili> pCaus;
  clsAnagraficaAzienda* anagrafica = Usa(a.objAnagraficaAzienda, pAnag, conn);
  clsProgressiviIva* progressivi = Usa(a.objProgressiviIVA, pProg, conn);
  clsPrimaNota* primaNota = Usa(a.objPrimaNota, pPn, conn);
  clsProgrNumerazione* numerazione = Usa(a.objProgrNumerazione, pNum, conn);
  clsNumerazioneFogli* fogli = Usa(a.objNumerazioneFogli, pFogli, conn);
  clsCausaliContabili* causali = Usa(a.objCausaliContabili, pCaus, conn);

  // The work tables go at the end, whatever happens; a previous run's are dropped first.
  struct Tabelle {
    clsRegistriIva& r;
    const std::string& tipo;
    const std::string& pref;
    ~Tabelle() {
      try {
        r.EliminaTabelleTemporaneeIva(tipo, pref);
      } catch (...) {
      }
    }
  } tabelle{*this, tipo, pref};
  EliminaTabelleTemporaneeIva(tipo, pref);
  FileRegistro file;
  const std::string corpo = NomeTabella(tipo, "corpo", pref);
  const std::string totali = NomeTabella(tipo, "totali", pref);

  if (a.formAttiva) a.formAttiva->msgbar("Preparazione registro IVA nr. " + registro);
  int64_t righe = MakeTable_RegistroIvaCorpo(tipo, Valore(registro), da, al, pref, false, a.str_IndIVAAutotrasportatori);
  if (a.avar_RegimeContabile == 1 && !f.ventilazione && f.stampa)
    righe += AppendCostiRicavi_RegistroIvaCorpo(tipo, Valore(registro), da, al, pref);
  if (!f.ventilazione) MakeTable_RegistroIvaTotali(tipo, pref);

  // ---- the definitive bookkeeping, all in one transaction: it runs last, once the print is
  // ready, and the print's file takes its name only once it is committed.
  auto registra = [&]() {
    Atomico unita(db);
    bool cancel = false;
    // The marks first: exactly the rows printed, and all of them, or another user got there.
    int64_t attese = NullToZeroLng(
        db.Scalare("SELECT COUNT(*) FROM [" + corpo + "] WHERE [NumRigaAVideo] IS NOT NULL"));
    int64_t marcate = primaNota->MarcaRigheStampateRegistroIva(da, al, f.dataFiltro, Valore(tipo), Valore(registro),
                                                              corpo);
    if (marcate != attese) {
      std::string messaggio =
          tipo == "6" ? "Problema in fase di variazione indicatori stampato su registri iva per il registro IVA vendite "
                        "ad esigibilità differita."
          : tipo == "8"
              ? "Problema in fase di variazione indicatori stampato su registri IVA tipo '8' pagamento fatture "
                "acquisto IVA esigibilità differita."
              : "Problema in fase di variazione indicatori stampato su registri iva.";
      Host().MsgBox(messaggio + "\nLe righe del mese sono state variate o stampate da un altro utente durante la "
                                "stampa: nulla è stato registrato, ripetere la stampa.",
                    vbExclamation, "Stampa registri iva");
      return false;  // the unit is undone
    }
    // The month's amounts by progressive and code.
    std::map<std::pair<std::string, std::string>, std::pair<Importo, Importo>> somme;
    if (!f.ventilazione) {
      std::string sql = std::string("SELECT [CodiceIva], [TipoCausale], ") + (f.acquisti ? "[Indeducibile]" : "0") +
                        ", SUM([SommadiImponibileRigo]), SUM([SommadiImposta]) FROM [" + totali +
                        "] WHERE COALESCE([CodiceIva], '') <> '' GROUP BY [CodiceIva], [Aliquota], " +
                        (f.acquisti ? "[Indeducibile], " : "") + "[TipoCausale]";
      db.Scorri(sql, {}, [&](const std::vector<Colonna>&, const std::vector<Valore>& v) {
        std::string tc = T(v[1]);
        std::string progressivo = (tc == "7" || tc == "8") && !f.tipoDifferite.empty() ? f.tipoDifferite : tipo;
        Importo imponibile = Imp(v[3]);
        Importo imposta = NullToZeroLng(v[2]) != 0 ? Importo() : Imp(v[4]);
        auto& s = somme[{progressivo, T(v[0])}];
        s.first += imponibile;
        s.second += imposta;
        return true;
      });
    }
    for (const auto& [chiave, s] : somme) {
      if (s.first.Zero() && s.second.Zero()) continue;
      for (const char* ind : {"R", "D"}) {
        Importo imponibile, imposta;
        progressivi->GetProgressivoIva(Valore("PI"), Valore(ind), Valore(chiave.first), Valore(registro),
                                       Valore(chiave.second), imponibile, imposta);
        progressivi->SalvaRecord_ProgressivoIva(Valore("PI"), Valore(ind), Valore(chiave.first), Valore(registro),
                                                Valore(chiave.second), Valore(imponibile + s.first),
                                                Valore(imposta + s.second), Valore::Null(), a.clientID, a.hWnd, cancel);
      }
    }
    if (f.acquisti && f.stampa) {
      // The purchases that make the base of the receipts by ventilation.
      std::vector<std::pair<std::string, Importo>> monte;
      db.Scorri("SELECT K.[CodiceIva], SUM(K.[ImponibileRigo] + K.[Imposta]) FROM [" + corpo +
                    "] K LEFT JOIN [Codici Iva] I ON I.[Codice Iva] = K.[CodiceIva] WHERE K.[TipoCausale] IN ('5', "
                    "'6') AND I.[Flag Monte Acquisti] = '1' AND K.[Percentuale indetraibilità] = 0 GROUP BY "
                    "K.[CodiceIva]",
                {}, [&](const std::vector<Colonna>&, const std::vector<Valore>& v) {
                  monte.emplace_back(T(v[0]), Imp(v[1]));
                  return true;
                });
      for (const auto& [codice, importo] : monte) {
        Importo prima;
        progressivi->GetProgressivoMonteAcquisti(Valore("00"), Valore(codice), prima);
        progressivi->SalvaRecord_MonteAcquisti(Valore("00"), Valore(codice), Valore(prima + importo), Valore(""),
                                               a.clientID, a.hWnd, cancel);
      }
    }
    if (f.ventilazione) {
      Importo periodo, anno, mese = GetCorrispettiviPeriodo(pref);
      progressivi->GetProgressivoVentilazione(Valore(registro), periodo, anno);
      progressivi->SalvaRecord_CorrispettivoVen(Valore(registro), Valore(periodo + mese), Valore(anno + mese),
                                                a.clientID, a.hWnd, cancel);
    }
    // The date of the last definitive print.
    progressivi->SalvaRecord_ProgressivoIva(Valore("P2"), Valore("R"), Valore(tipo), Valore(registro), Valore("00"),
                                            Valore(Importo()), Valore(Importo()), Valore(al), a.clientID, a.hWnd,
                                            cancel);
    // The last document numbers printed, by series.
    if (f.stampa) {
      std::vector<std::pair<std::string, int64_t>> ultimi;
      db.Scorri(std::string("SELECT COALESCE([SerieDocumento], ''), MAX(") +
                    (f.acquisti ? "[NumeroDiProtocollo]" : "[NumeroDocumento]") + ") FROM [" + corpo +
                    "] GROUP BY COALESCE([SerieDocumento], '')",
                {}, [&](const std::vector<Colonna>&, const std::vector<Valore>& v) {
                  if (!v[1].IsNull()) ultimi.emplace_back(T(v[0]), NullToZeroLng(v[1]));
                  return true;
                });
      for (const auto& [serie, numero] : ultimi)
        numerazione->SalvaNumeroUltimoDocBollato(Valore(tipo), Valore(registro), Valore(serie),
                                                 Valore(static_cast<long long>(numero)), a.clientID, a.hWnd);
    }
    if (a.avar_NumerazionePagine && esito_.fogli > 0) {
      if (!fogli->SalvaFogliStampati(Valore("R"), Valore(f.foglio), Valore(registro), a.avar_Anno, ultimoFoglio_,
                                     a.clientID, a.hWnd))
        return false;
    }
    unita.Conferma();
    return true;
  };

  if (!f.stampa) {
    // The deferred-payment registers: bookkeeping only.
    bool ok = !bollato || registra();
    if (a.formAttiva) a.formAttiva->msgbar("");
    return ok;
  }

  if (righe == 0) {
    Host().MsgBox("Nessun dato da stampare.", vbInformation, "Stampa registri IVA");
    bool ok = !bollato || registra();
    if (a.formAttiva) a.formAttiva->msgbar("");
    return ok;
  }

  // ---- the body
  Nomi nomi(*this, db, *causali);
  nomi.CaricaControparti(corpo);
  const bool conRif = f.acquisti && Trim(a.RifDocContrRegistriIVA) == "1";
  {
    std::ofstream out(file.corpo, std::ios::binary);
    if (!out) throw ErroreStampa("Impossibile scrivere il file " + file.corpo);
    Scrivi(out, Intestazione(f, a), file.corpo);
    Scrivi(out, Riga('-'), file.corpo);
    if (f.acquisti && a.avar_Mese == 1 && !a.acur_CreditoIva.Zero())
      Scrivi(out, "CREDITO IVA INIZIO ANNO: " + Dx(Cifra(a.acur_CreditoIva), 18), file.corpo);

    std::string ordine;
    if (f.acquisti)
      ordine = "[DataRegistrazione], COALESCE([NumeroDiProtocollo], 0), COALESCE([SerieDocumento], ''), "
               "COALESCE([NumeroDocumento], 0)";
    else if (f.ventilazione)
      ordine = "[DataRegistrazione], COALESCE([NumeroDocumento], 0), COALESCE([SerieDocumento], '')";
    else if (Trim(a.IndOrdinamRegistriIVA) == "1")
      ordine = "COALESCE([SerieDocumento], ''), [DataRegistrazione], COALESCE([NumeroDocumento], 0)";
    else
      ordine = "[DataRegistrazione], COALESCE([SerieDocumento], ''), COALESCE([NumeroDocumento], 0)";
    // The rows of one registration together, in the order of the journal.
    ordine += ", [NumeroRegistrazione], COALESCE([TipoRigaIvaNormale], ''), COALESCE([NumRigaAVideo], ''), "
              "COALESCE([DareAvere], '')";

    std::string precedente;
    bool primo = true;
    Importo periodo;
    db.Scorri(
        "SELECT [DataRegistrazione], [DataDocumento], [NumeroDocumento], [SerieDocumento], [NumeroDiProtocollo], "
        "[NumeroRegistrazione], [CodiceCausale], [TipoCausale], [TipoDiCausale], [TotaleDocumento], "
        "[ImponibileRigo], [CodiceIva], [Imposta], [Descrizione Iva], [Descrizione] FROM [" +
            corpo + "] ORDER BY " + ordine,
        {}, [&](const std::vector<Colonna>&, const std::vector<Valore>& v) {
          ++esito_.righe;
          if (a.formAttiva && esito_.righe % 1000 == 0)
            a.formAttiva->msgbar("Stampa registro IVA nr. " + registro + ": riga " + std::to_string(esito_.righe));
          const std::string reg = T(v[5]);
          const bool nuovo = primo || reg != precedente;
          primo = false;
          precedente = reg;
          const std::string dataReg = DataCorta(v[0]), dataDoc = DataCorta(v[1]);
          if (T(v[14]) == kCosto) {
            // The accounts of a registration of costs and revenues.
            Recordset rs;
            LocalizzaRecordsRilevazioneCostiRicavi(rs, Valore(reg), f.acquisti, a.str_RegIVASemSoloContiEco);
            bool prima = true;
            for (; !rs.Eof(); rs.MoveNext()) {
              std::string testa = prima ? Sx(dataReg + " " + Dx(Numero(v[2]), 6) + " " + AggiungiBarra(T(v[3])), 39)
                                        : std::string(39, ' ');
              prima = false;
              Scrivi(out,
                     testa + Sx(T(rs(0).Value()), 7) + " " + Sx(T(rs(1).Value()), 36) + Dx(Cifra(rs(2).Value()), 15) +
                         Sx(T(rs(3).Value()), 1) + " Descr.Op.: " + Sx(T(rs(4).Value()), 20),
                     file.corpo);
            }
            return true;
          }
          const std::string coda = Dx(Cifra(v[10]), 11) + " " + Sx(T(v[11]), 3) + " " + Dx(Cifra(v[12]), 10) + " ";
          if (f.ventilazione) {
            periodo += Imp(v[9]);
            if (!nuovo) return true;
            Scrivi(out,
                   dataReg + " " + dataDoc + " " + Dx(Numero(v[2]), 6) + " " + Sx(T(v[3]), 6) + " " +
                       Sx(nomi.Causale(T(v[6])), 56) + " " + Sx(T(v[8]), 1) + " " + Dx(Cifra(v[9]), 13),
                   file.corpo);
          } else if (f.acquisti && conRif) {
            if (nuovo)
              Scrivi(out,
                     dataReg + " " + dataDoc + " " + Dx(Numero(v[4]), 6) + " " + Dx(Numero(v[2]), 6) +
                         Sx(AggiungiBarra(T(v[3])), 7) + " " + Sx(nomi.Riga(T(v[6]), T(v[7]), reg), 34) + " " +
                         Sx(T(v[8]), 1) + " " + Dx(Cifra(v[9]), 13) + " " + coda + Sx(T(v[13]), 14),
                     file.corpo);
            else
              Scrivi(out, std::string(90, ' ') + coda + Sx(T(v[13]), 14), file.corpo);
          } else if (f.acquisti) {
            if (nuovo)
              Scrivi(out,
                     dataReg + " " + dataDoc + "  " + Dx(Numero(v[4]), 6) + "  " +
                         Sx(nomi.Riga(T(v[6]), T(v[7]), reg), 40) + " " + Sx(T(v[8]), 1) + " " + Dx(Cifra(v[9]), 13) +
                         " " + coda + Sx(T(v[13]), 20),
                     file.corpo);
            else
              Scrivi(out, std::string(84, ' ') + coda + Sx(T(v[13]), 20), file.corpo);
          } else {
            if (nuovo)
              Scrivi(out,
                     dataReg + " " + dataDoc + " " + Dx(Numero(v[2]), 6) + " " + Sx(T(v[3]), 6) + " " +
                         Sx(nomi.Riga(T(v[6]), T(v[7]), reg), 40) + " " + Sx(T(v[8]), 1) + " " + Dx(Cifra(v[9]), 13) +
                         " " + coda + Sx(T(v[13]), 15),
                     file.corpo);
            else
              Scrivi(out, std::string(89, ' ') + coda + Sx(T(v[13]), 15), file.corpo);
          }
          return true;
        });

    Scrivi(out, Riga('-'), file.corpo);
    if (f.ventilazione) {
      Importo periodoProg, annoProg;
      progressivi->GetProgressivoVentilazione(Valore(registro), periodoProg, annoProg);
      Scrivi(out,
             Largo("     Totali Corrispettivi Ventilazione       Mese di " + NomeMese(Valore(a.avar_Mese)) + " " +
                       std::to_string(a.avar_Anno),
                   90) +
                 Dx(Cifra(periodo), 13),
             file.corpo);
      Scrivi(out, Largo("   Totale                   Anno " + std::to_string(a.avar_Anno), 90) +
                      Dx(Cifra(annoProg + periodo), 13),
             file.corpo);
      Scrivi(out, Riga('-'), file.corpo);
      Scrivi(out,
             "TIPO:  F,f=Fattura          P=Fattura Differita         C=Corrispettivi/Costo          D=Fattura IVA "
             "Esigibilita' differita        ",
             file.corpo);
      Scrivi(out,
             "       N,n=Nota Accredito   I=Incasso Fattura Sospesa   S=Storno Corrispettivi/Costo   E=Nota Accredito "
             "IVA Esigibilita' differita ",
             file.corpo);
    } else {
      Scrivi(out,
             "Tipo:  f,F=Fattura          C=Corrispettivi/Costo          D=Fattura IVA ad esigibilita' differita      "
             "P=Fattura differita        ",
             file.corpo);
      Scrivi(out,
             "       n,N=Nota accredito   S=Storno Corrispettivi/Costo   E=Nota accredito IVA esigibilita' differita  "
             "I=Incasso fattura sospesa  ",
             file.corpo);
    }
    out.close();
    if (!out) throw ErroreStampa("Impossibile scrivere il file " + file.corpo);
  }

  // ---- the totals by code: the month and the year to date
  std::string stampaTotali = totali;
  if (!f.ventilazione) {
    const std::vector<std::string> tipiAnno =
        f.tipoDifferite.empty() ? std::vector<std::string>{tipo} : std::vector<std::string>{tipo, f.tipoDifferite};
    std::string destinazione = totali;
    if (f.acquisti) {
      // The month regrouped with the year's rows beside it.
      std::vector<ColonnaLavoro> colonne = {{"CodiceIva"},
                                            {"Aliquota", TipoCampo::Importo},
                                            {"SommadiImponibileRigo", TipoCampo::Importo},
                                            {"SommadiImposta", TipoCampo::Importo},
                                            {"ProgressivoImponibile", TipoCampo::Importo},
                                            {"ProgressivoImposta", TipoCampo::Importo},
                                            {"TipoCausale"},
                                            {"Indeducibile", TipoCampo::Intero16}};
      TabellaLavoro generali(db, pref, NomeTabella(tipo, "totali generali", ""), colonne);
      generali.Crea();
      generali.Riempi("SELECT [CodiceIva], [Aliquota], SUM([SommadiImponibileRigo]), SUM([SommadiImposta]), "
                      "SUM([ProgressivoImponibile]), SUM([ProgressivoImposta]), [TipoCausale], [Indeducibile] FROM [" +
                      totali + "] GROUP BY [CodiceIva], [Aliquota], [Indeducibile], [TipoCausale]");
      destinazione = generali.Nome();
    }
    for (const auto& t : tipiAnno)
      db.Esegui("INSERT INTO [" + destinazione +
                    "] ([CodiceIva], [Aliquota], [SommadiImponibileRigo], [SommadiImposta], [ProgressivoImponibile], "
                    "[ProgressivoImposta], [TipoCausale]" +
                    (f.acquisti ? ", [Indeducibile]" : "") +
                    ") SELECT R.[CodiceIva], I.[Aliquota], 0, 0, R.[Imponibile], R.[IVA], ''" +
                    (f.acquisti ? ", 0" : "") +
                    " FROM [Progressivi Registri Iva] R LEFT JOIN [Codici Iva] I ON I.[Codice Iva] = R.[CodiceIva] "
                    "WHERE R.[IndicatoreFisso] = 'PI' AND R.[IndTipoRecord] = 'R' AND R.[TipoRegistroIva] = ? AND "
                    "R.[NumRegistroIva] = ? AND COALESCE(R.[CodiceIva], '') <> '00'",
                {Valore(t), Valore(registro)});
    stampaTotali = destinazione;

    std::ofstream out(file.totali, std::ios::binary);
    if (!out) throw ErroreStampa("Impossibile scrivere il file " + file.totali);
    Scrivi(out,
           " Cod.Iva Aliquota  Descrizione                     Imponibile Mese         Imposta Mese        Imponibile "
           "Tot.         Imposta Tot.",
           file.totali);
    Scrivi(out, Riga('-'), file.totali);
    auto importi = [](Importo mi, Importo mv, Importo ti, Importo tv) {
      return Dx(Cifra(mi), 15) + std::string(6, ' ') + Dx(Cifra(mv), 15) + std::string(8, ' ') + Dx(Cifra(ti), 15) +
             std::string(6, ' ') + Dx(Cifra(tv), 15);
    };
    std::map<std::string, std::string> descrizioni;
    const std::string indeducibile = f.acquisti ? "[Indeducibile]" : "0";
    db.Scorri("SELECT [CodiceIva], [Aliquota], " + indeducibile +
                  ", SUM([SommadiImponibileRigo]), SUM([SommadiImposta]), SUM([ProgressivoImponibile]), "
                  "SUM([ProgressivoImposta]) FROM [" +
                  stampaTotali + "] WHERE COALESCE([CodiceIva], '') <> '' GROUP BY [CodiceIva], [Aliquota]" +
                  (f.acquisti ? ", [Indeducibile]" : "") + " ORDER BY [CodiceIva], [Aliquota]" +
                  (f.acquisti ? ", [Indeducibile] DESC" : ""),
              {}, [&](const std::vector<Colonna>&, const std::vector<Valore>& v) {
                std::string codice = T(v[0]);
                auto d = descrizioni.find(codice);
                if (d == descrizioni.end()) d = descrizioni.emplace(codice, GetDescrizioneIva(Valore(codice))).first;
                Importo mi = Imp(v[3]), mv = Imp(v[4]);
                Scrivi(out,
                       " " + Sx(codice, 3) + "    " + Dx(Cifra(Imp(v[1])), 9) + "  " + Sx(d->second, 31) + " " +
                           importi(mi, mv, mi + Imp(v[5]), mv + Imp(v[6])),
                       file.totali);
                return true;
              });
    Scrivi(out, Riga('-'), file.totali);
    auto totale = [&](const std::string& etichetta, const std::string& filtro) {
      Importo s[4];
      db.Scorri("SELECT SUM([SommadiImponibileRigo]), SUM([SommadiImposta]), SUM([ProgressivoImponibile]), "
                "SUM([ProgressivoImposta]) FROM [" +
                    stampaTotali + "]" + filtro,
                {}, [&](const std::vector<Colonna>&, const std::vector<Valore>& v) {
                  for (int i = 0; i < 4; ++i) s[i] = Imp(v[static_cast<size_t>(i)]);
                  return false;
                });
      Scrivi(out, etichetta + importi(s[0], s[1], s[0] + s[2], s[1] + s[3]), file.totali);
    };
    if (f.acquisti) {
      totale("                   Totali IVA Detraibile           ", " WHERE [Indeducibile] = 0");
      totale("                   Totali IVA Non Detraibile       ", " WHERE [Indeducibile] = -1");
    } else {
      totale("                   Totali                          ", "");
    }
    out.close();
    if (!out) throw ErroreStampa("Impossibile scrivere il file " + file.totali);
  }

  // ---- pages: the head of the register, the totals after the body, the sheets numbered
  const auto azienda = RigheAzienda(*anagrafica);
  const std::string coda = std::string(15, ' ') + "nr. " + registro + "     di competenza del Mese di " +
                           NomeMese(Valore(a.avar_Mese)) + " " + std::to_string(a.avar_Anno);
  std::array<std::string, 7> testa = {std::string(26, ' ') + f.titolo + coda, Riga('='), azienda[0], azienda[1],
                                      Riga('='), "", ""};
  std::array<std::string, 2> piede = {PiedeElaborato(a.AzRagSoc, a.AzParIva), ""};
  RigaPagina("", Valore(0));
  ImpaginaFile(file.corpo, file.pagine, a.avar_RighePagina, testa, piede, false, 2);
  if (!f.ventilazione) {
    testa[0] = std::string(19, ' ') + "TOTALI " + f.titolo + coda;
    ImpaginaFile(file.totali, file.totaliPagine, a.avar_RighePagina, testa, piede, false, 2);
    AccodaFile(file.totaliPagine, file.pagine);
  }
  std::string finale = file.pagine;
  if (a.avar_NumerazionePagine) {
    auto numerati = fogli->NumeraFogli(file.pagine, file.numerato, a.avar_RighePagina, Valore("R"), Valore(f.foglio),
                                       Valore(registro), a.avar_Anno, a.clientID, a.hWnd);
    ultimoFoglio_ = numerati.prossimo;  // the next sheet to print, as the numbering keeps it
    esito_.fogli = numerati.prossimo - numerati.primo;
    finale = file.numerato;
  }

  // ---- the caller's file, named once the bookkeeping is committed
  FileStampa stampa(a.nomeFile);
  CopiaInStampa(finale, stampa, a.nomeFile);
  if (bollato && !registra()) return false;
  stampa.Chiudi();
  esito_.stampato = true;
  if (a.formAttiva) a.formAttiva->msgbar("");
  return true;
}

}  // namespace vorn
