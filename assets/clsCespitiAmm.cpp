#include "assets/clsCespitiAmm.h"

#include <utility>

#include "assets/clsCausaliCespiti.h"
#include "assets/clsCespiti.h"
#include "assets/clsCespitiCategorie.h"
#include "assets/clsCespitiMovimenti.h"
#include "company/clsParametriAzienda.h"
#include "frame/Comuni.h"
#include "frame/Importo.h"

namespace vorn {

namespace {

constexpr const char* kTitolo = "Ammortamento cespiti";

Data Gennaio(int anno) { return *Data::Crea(anno, 1, 1); }
Data Dicembre(int anno) { return *Data::Crea(anno, 12, 31); }

// A figure of the movements, as the queries give it: the sum to four decimals, so that the
// amounts stored with the currency's decimals add up exactly.
double Quattro(const Valore& v) {
  const double d = NullToZeroDbl(v);
  return Importo::DaDouble(d).ToDouble();
}

// The amount of a row as stored: to the currency's decimals.
double Arrotondato(double v, int decimali) { return Importo::DaDouble(v).Arrotonda(decimali).ToDouble(); }

std::optional<Data> DataDi(const Valore& v) { return v.IsNull() || v.IsEmpty() ? std::nullopt : v.ComeData(); }

// The join of a row to its head and its causal.
constexpr const char* kMovimenti =
    " FROM [CespitiMovimentiRighe] R INNER JOIN [CespitiMovimentiTestate] M ON M.[NumeroMovimento] = "
    "R.[NumeroMovimento] INNER JOIN [Causali Cespiti] K ON K.[Codice] = M.[CausaleCespiti] ";

}  // namespace

Data DataVuotaCespiti() { return Data::DaSeriale(2); }
Data DataNessunaVendita() { return *Data::Crea(3000, 12, 31); }

double clsCespitiAmm::Saldo(const std::string& codiceCespite, int tipo, int anno, const char* colonna, bool finoAnno) {
  Parametri p{Valore(codiceCespite), Valore(tipo)};
  std::string periodo = " AND M.[DataCompetenza] <= ?";
  if (!finoAnno) {
    periodo = " AND M.[DataCompetenza] >= ?" + periodo;
    p.push_back(Valore(Gennaio(anno)));
  }
  p.push_back(Valore(Dicembre(anno)));
  return Quattro(cn->Scalare(std::string("SELECT SUM(R.[") + colonna +
                                 "] * CASE WHEN COALESCE(M.[Cambio], 0) = 0 THEN 1 ELSE M.[Cambio] END)" + kMovimenti +
                                 "WHERE R.[CodiceCespite] = ? AND K.[TipoMovimentazione] = ?" + periodo,
                             p));
}

double clsCespitiAmm::GetSaldoMovimentazioneFinoAnnoFisc(const std::string& c, int t, int anno) {
  return Saldo(c, t, anno, "ImportoMovimentoFisc", true);
}
double clsCespitiAmm::GetSaldoMovimentazioneFinoAnnoFiscDed(const std::string& c, int t, int anno) {
  return Saldo(c, t, anno, "ImportoMovimentoFiscDed", true);
}
double clsCespitiAmm::GetSaldoMovimentazioneFinoAnnoCiv(const std::string& c, int t, int anno) {
  return Saldo(c, t, anno, "ImportoMovimentoCiv", true);
}
double clsCespitiAmm::GetSaldoMovimentazioneAnnoFisc(const std::string& c, int t, int anno) {
  return Saldo(c, t, anno, "ImportoMovimentoFisc", false);
}
double clsCespitiAmm::GetSaldoMovimentazioneAnnoFiscDed(const std::string& c, int t, int anno) {
  return Saldo(c, t, anno, "ImportoMovimentoFiscDed", false);
}
double clsCespitiAmm::GetSaldoMovimentazioneAnnoCiv(const std::string& c, int t, int anno) {
  return Saldo(c, t, anno, "ImportoMovimentoCiv", false);
}

Data clsCespitiAmm::GetDataVenditaDismissioneCespite(const std::string& codiceCespite) {
  auto d = DataDi(cn->Scalare(std::string("SELECT MIN(M.[DataDocumento])") + kMovimenti +
                                  "WHERE R.[CodiceCespite] = ? AND K.[TipoMovimentazione] IN (2, 7)",
                              {Valore(codiceCespite)}));
  return d.value_or(DataNessunaVendita());
}

Data clsCespitiAmm::GetDataInizioUtilizzoCespite(const std::string& codiceCespite) {
  auto d = DataDi(cn->Scalare(std::string("SELECT MIN(M.[DataCompetenza])") + kMovimenti +
                                  "WHERE R.[CodiceCespite] = ? AND K.[TipoMovimentazione] = 1",
                              {Valore(codiceCespite)}));
  return d.value_or(DataVuotaCespiti());
}

Data clsCespitiAmm::GetDataAcquistoCespite(const std::string& codiceCespite) {
  auto d = DataDi(cn->Scalare(std::string("SELECT MIN(M.[DataDocumento])") + kMovimenti +
                                  "WHERE R.[CodiceCespite] = ? AND K.[TipoMovimentazione] = 1",
                              {Valore(codiceCespite)}));
  return d.value_or(DataVuotaCespiti());
}

int clsCespitiAmm::GetNumeroRecordAmmortamentoCespitePeriodo(const Data& daData, const Data& aData,
                                                             const std::string& codiceCespite) {
  return NullToZeroLng(cn->Scalare(std::string("SELECT COUNT(*)") + kMovimenti +
                                       "WHERE R.[CodiceCespite] = ? AND K.[TipoMovimentazione] IN (11, 12) AND "
                                       "M.[DataCompetenza] >= ? AND M.[DataCompetenza] <= ?",
                                   {Valore(codiceCespite), Valore(daData), Valore(aData)}));
}

std::optional<Data> clsCespitiAmm::GetMinDataMovimentiCespite(const std::string& codiceCespite) {
  return DataDi(cn->Scalare(std::string("SELECT MIN(M.[DataCompetenza])") + kMovimenti + "WHERE R.[CodiceCespite] = ?",
                            {Valore(codiceCespite)}));
}

std::optional<Data> clsCespitiAmm::GetMaxDataMovimentiCespite(const std::string& codiceCespite) {
  return DataDi(cn->Scalare(std::string("SELECT MAX(M.[DataCompetenza])") + kMovimenti + "WHERE R.[CodiceCespite] = ?",
                            {Valore(codiceCespite)}));
}

int clsCespitiAmm::GetAnnoInizioUtilizzoCespite(const std::string& codiceCespite) {
  return GetDataInizioUtilizzoCespite(codiceCespite).Anno();
}

int clsCespitiAmm::GetMinAnnoMovimentiCespite(const std::string& codiceCespite) {
  auto d = GetMinDataMovimentiCespite(codiceCespite);
  return d ? d->Anno() : 0;
}

int clsCespitiAmm::GetMaxAnnoMovimentiCespite(const std::string& codiceCespite) {
  auto d = GetMaxDataMovimentiCespite(codiceCespite);
  return d ? d->Anno() : 0;
}

int clsCespitiAmm::GetAnniAmmortamentoCespiteAdAnno(const std::string& codiceCespite, int annoAcquisto, int anno) {
  int anni = 0;
  auto rs = cn->Execute(std::string("SELECT DISTINCT M.[DataCompetenza]") + kMovimenti +
                            "WHERE R.[CodiceCespite] = ? AND K.[TipoMovimentazione] IN (11, 12) AND "
                            "M.[DataCompetenza] >= ? AND M.[DataCompetenza] <= ? ORDER BY M.[DataCompetenza]",
                        {Valore(codiceCespite), Valore(Gennaio(annoAcquisto)), Valore(Dicembre(anno))});
  int ultimo = 0;
  for (; !rs.Eof(); rs.MoveNext())
    if (auto d = rs.Fields(0).Value().ComeData(); d && d->Anno() != ultimo) {
      ultimo = d->Anno();
      ++anni;
    }
  return anni;
}

// ---------------------------------------------------------------- the year's depreciation

int32_t clsCespitiAmm::CalcolaAmmortamento(const ArgomentiAmmortamento& a, EsitoAmmortamento& esito) {
  Connessione& db = *cn;
  if (a.anno < 1900 || a.anno > 9999) throw ErroreDb(3265, "Anno di elaborazione non valido: " + std::to_string(a.anno));
  // The causals must be of the depreciation kinds: a movement written under another kind would
  // not be found by the next run, which would write the year again.
  clsCausaliCespiti causali;
  causali.cn = cn;
  if (causali.GetTipoMovimentazione(Valore(a.causaleAmmOrd)) != kAmmortamOrdinarioRidotto)
    throw ErroreDb(3265, "La causale cespiti '" + a.causaleAmmOrd + "' non è di ammortamento ordinario (tipo 11).");
  if (a.indMetodoAmmortamento == 1 && causali.GetTipoMovimentazione(Valore(a.causaleAmmAnt)) != kAmmortamAnticipato)
    throw ErroreDb(3265, "La causale cespiti '" + a.causaleAmmAnt + "' non è di ammortamento anticipato (tipo 12).");
  double soglia = 0, abbattimento = 0, manutenzioni = 0;
  clsParametriAzienda parametri;
  parametri.cn = cn;
  parametri.GetParametriAmmortamenti(soglia, abbattimento, manutenzioni);
  const Data D = Dicembre(a.anno), inizioAnno = Gennaio(a.anno);
  const double Y = Data::Bisestile(a.anno) ? 366.0 : 365.0;

  // The assets of the selection, in code order.
  std::string where = "1 = 1";
  Parametri p;
  const std::string da = Trim(a.daCodiceCategoria), al = Trim(a.aCodiceCategoria);
  if (!da.empty() && !al.empty()) {
    where += " AND [CodiceCategoria] BETWEEN ? AND ?";
    p = {Valore(da), Valore(al)};
  } else if (!da.empty()) {
    where += " AND [CodiceCategoria] >= ?";
    p = {Valore(da)};
  } else if (!al.empty()) {
    where += " AND [CodiceCategoria] <= ?";
    p = {Valore(al)};
  }
  if (!Trim(a.filtroCodiceCespite).empty()) {
    where += " AND [CodiceCespite] = ?";
    p.push_back(Valore(Trim(a.filtroCodiceCespite)));
  }
  if (a.IndStato != 0) {
    where += " AND [IndStato] = ?";
    p.push_back(Valore(std::to_string(a.IndStato)));
  }
  std::vector<std::string> codici;
  {
    auto rs = db.Execute("SELECT [CodiceCespite] FROM [Cespiti] WHERE " + where + " ORDER BY [CodiceCespite];", p);
    for (; !rs.Eof(); rs.MoveNext()) codici.push_back(Trim(rs.Fields(0).Value().Testo()));
  }
  esito = {};
  if (codici.empty()) {
    Host().Beep();
    Host().MsgBox("Non è stato trovato nessun cespite per i parametri di selezione indicati", vbInformation, kTitolo);
    return 0;
  }

  clsCespiti cespiti;
  cespiti.cn = cn;
  clsCespitiCategorie categorie;
  categorie.cn = cn;
  clsCespitiMovimenti movimenti;
  movimenti.cn = cn;

  ConRiprova(db, [&] {
    esito = {};
    Atomico unita(db);
    int32_t rigaOrd = 0, rigaAnt = 0;
    auto errore = [&](const std::string& codice, const std::string& testo) {
      esito.stringaErroriRiscontrati += "Cespite: " + PadSinistra(Valore(codice), 23) + testo + "\n";
    };
    // The first number is taken before anything is read: the counter's lock makes two runs
    // take turns, and the second then finds the first one's movements and refuses the assets.
    int32_t prenotato = movimenti.PrendiNumeroMovimento();
    auto testata = [&](const Data& data, const std::string& causale) {
      const int32_t n = prenotato ? std::exchange(prenotato, 0) : movimenti.PrendiNumeroMovimento();
      bool cancel = false;
      movimenti.SalvaRecord(Valore(n), Valore(data), Valore(data), Valore(causale), Valore(""), Valore(""), Valore(0),
                            Valore(""), Valore(0), Valore::Null(), Valore(""), Valore(1.0), Valore(data), Valore(""),
                            Valore(a.riferimentiTestata), a.clientID, a.hWnd, cancel);
      return n;
    };
    auto riga = [&](int32_t numero, int32_t nriga, const std::string& codice, double fisc, double ded, double civ,
                    const std::string& testo) {
      bool cancel = false;
      movimenti.SalvaRecordRighe(Valore(numero), Valore(nriga), Valore(codice),
                                 Valore(Arrotondato(fisc, a.DecimaliValuta)), Valore(Arrotondato(ded, a.DecimaliValuta)),
                                 Valore(Arrotondato(civ, a.DecimaliValuta)), Valore(testo), a.clientID, a.hWnd, cancel);
    };

    for (const auto& codice : codici) {
      // ---- the checks
      const std::string categoria = cespiti.GetCategoriaCespite(Valore(codice));
      if (categoria.empty()) {
        errore(codice, " - Categoria non indicata quindi impossibile calcolare l'ammortamento.");
        continue;
      }
      if (!categorie.ExistCespitiCategoria(Valore(categoria))) {
        errore(codice, " - La categoria indicata '" + categoria +
                           "' non piu' esistente, impossibile calcolare l'ammortamento.");
        continue;
      }
      if (GetNumeroRecordAmmortamentoCespitePeriodo(inizioAnno, D, codice) > 0) {
        errore(codice,
               " - Per il periodo elaborato esistono già dei movimenti di ammortamento, per poterli rigenerare vanno "
               "eliminati quelli precedenti.");
        continue;
      }
      const Data A = GetDataInizioUtilizzoCespite(codice);
      if (A == DataVuotaCespiti()) {
        errore(codice, " - Non è stato caricato il movimento di acquisto, impossibile calcolare l'ammortamento.");
        continue;
      }
      if (A > D) {
        errore(codice, " - Non incluso in quanto acquistato in data " + A.Testo() +
                           " che è successiva all'anno di elaborazione " + std::to_string(a.anno));
        continue;
      }
      const Data X = GetDataVenditaDismissioneCespite(codice);
      if (X < A) {
        errore(codice,
               " - E' stata caricata una data di dismissione inferiore alla data di acquisto, impossibile calcolare "
               "l'ammortamento.");
        continue;
      }
      if (X.Anno() < a.anno) {
        errore(codice, " - Risulta dismesso nell'anno " + std::to_string(X.Anno()) + ", ammortamento non calcolato.");
        continue;
      }
      // ---- the days of use
      double G = Y;
      if (A.Anno() == a.anno && X.Anno() == a.anno)
        G = static_cast<double>(X.Seriale() - A.Seriale());
      else if (A.Anno() == a.anno)
        G = static_cast<double>(D.Seriale() - A.Seriale() + 1);
      else if (X.Anno() == a.anno)
        G = static_cast<double>(X.Seriale() - inizioAnno.Seriale());
      if (a.objFormAttiva) a.objFormAttiva->msgbar("Calcolo ammortamento cespite: " + codice);

      const bool materiale = categorie.GetIndNatura(Valore(categoria)) == 0;
      const bool primoAnno = A.Anno() == a.anno, dismesso = X.Anno() == a.anno;

      // ---- the fiscal track
      auto fino = [&](int tipo, int anno) { return GetSaldoMovimentazioneFinoAnnoFisc(codice, tipo, anno); };
      double V = fino(kAcquisto, a.anno) + fino(kOneriSpese, a.anno) + fino(kManutenzioneRiparazione, a.anno) +
                 fino(kRivalutazione, a.anno) - fino(kSvalutazione, a.anno);
      const double limite = cespiti.GetLimiteAmmortizzFisc(Valore(codice));
      if (limite != 0 && V > limite) V = limite;
      const double FO = fino(kVariazioneFondoOrdinario, a.anno - 1) + fino(kAmmortamOrdinarioRidotto, a.anno - 1);
      const double FA = fino(kVariazioneFondoAnticipato, a.anno - 1) + fino(kAmmortamAnticipato, a.anno - 1);
      double R = V - FO - FA;
      QuotaAmmortamento q;
      q.codiceCespite = codice;
      q.valoreFisc = V;
      q.residuoFisc = R;
      q.infrannuale = dismesso;
      double O = 0, T = 0;
      // A whole depreciation in the year of purchase: the asset's flag, or a purchase whose value
      // is within the company's threshold (later years find no residual).
      const bool integrale = cespiti.GetFlagAmmIntegraleFisc(Valore(codice)) ||
                             (primoAnno && soglia > 0 && V > 0 && V <= soglia);
      if (integrale) {
        O = primoAnno ? V : 0;
      } else {
        double pOrd = cespiti.GetPercAmmOrdFisc(Valore(codice));
        if (primoAnno && materiale) pOrd = pOrd * abbattimento / 100;
        O = pOrd / 100 * V;
        if (a.indMetodoAmmortamento == 1) {
          double pAnt = cespiti.GetPercAmmAntFisc(Valore(codice));
          if (primoAnno && materiale) pAnt = pAnt * abbattimento / 100;
          T = pAnt * V / 100;
        }
      }
      if (O > R) O = R;
      if (dismesso) O = O / Y * G;
      R -= O;
      if (T > R) T = R;
      if (dismesso) T = T / Y * G;
      R -= T;
      // Ordinary and anticipated that exhaust the residual together come out equal.
      if (R == 0 && T != 0 && a.indMetodoAmmortamento == 1) O = T = (O + T) / 2;
      const double deducibile = cespiti.GetPercDeducFisc(Valore(codice));
      const double OD = deducibile != 0 ? O * deducibile / 100 : O;
      const double TD = deducibile != 0 ? T * deducibile / 100 : T;

      // ---- the civil track
      auto finoCiv = [&](int tipo, int anno) { return GetSaldoMovimentazioneFinoAnnoCiv(codice, tipo, anno); };
      const double VC = finoCiv(kAcquisto, a.anno) + finoCiv(kOneriSpese, a.anno) +
                        finoCiv(kManutenzioneRiparazione, a.anno) + finoCiv(kRivalutazione, a.anno) -
                        finoCiv(kSvalutazione, a.anno);
      const double RC = VC - finoCiv(kVariazioneFondoOrdinario, a.anno - 1) -
                        finoCiv(kAmmortamOrdinarioRidotto, a.anno - 1) -
                        finoCiv(kVariazioneFondoAnticipato, a.anno - 1) - finoCiv(kAmmortamAnticipato, a.anno - 1);
      double r = cespiti.GetPercAmmOrdCiv(Valore(codice));
      if (primoAnno && a.indModalitaAnno1Civ == 0 && materiale) r = r * abbattimento / 100;
      double Cv = r * VC / 100;
      if (Cv > RC) Cv = RC;
      Cv = G * Cv / Y;

      q.ordinario = O;
      q.anticipato = T;
      q.ordinarioDed = OD;
      q.anticipatoDed = TD;
      q.civile = Cv;
      esito.quote.push_back(q);

      // ---- the writing
      if (dismesso) {
        if (!a.generaAmmortamentiInfrannuali) continue;
        if (O != 0 || OD != 0 || Cv != 0) {
          const int32_t n = testata(X, a.causaleAmmOrd);
          riga(n, 1, codice, O, OD, Cv, "Amm.to ordinario infrannuale");
          ++esito.numeroMovimentiInfrannuali;
        }
        if (T != 0 || TD != 0) {
          const int32_t n = testata(X, a.causaleAmmAnt);
          riga(n, 1, codice, T, TD, 0, "Amm.to anticipato infrannuale");
          ++esito.numeroMovimentiInfrannuali;
        }
        continue;
      }
      if (O != 0 || Cv != 0) {
        if (esito.numeroMovimentoAmmOrd == 0) esito.numeroMovimentoAmmOrd = testata(D, a.causaleAmmOrd);
        riga(esito.numeroMovimentoAmmOrd, ++rigaOrd, codice, O, OD, Cv,
             "Amm.to ordinario per l'anno " + std::to_string(a.anno));
      }
      if (T != 0) {
        if (esito.numeroMovimentoAmmAnt == 0) esito.numeroMovimentoAmmAnt = testata(D, a.causaleAmmAnt);
        riga(esito.numeroMovimentoAmmAnt, ++rigaAnt, codice, T, TD, 0,
             "Amm.to anticipato per l'anno " + std::to_string(a.anno));
      }
    }
    esito.righe = rigaOrd + rigaAnt;
    // Nothing written: the unit is undone and the number taken goes back.
    if (esito.righe == 0 && esito.numeroMovimentiInfrannuali == 0) return;
    unita.Conferma();
  });
  if (a.objFormAttiva) a.objFormAttiva->msgbar("");
  return esito.righe;
}

// ---------------------------------------------------------------- the base of deductible maintenance

double clsCespitiAmm::GetBaseCalcoloLimiteDeducibilita(IForm* objFormAttiva, int anno, int annoCostituzione,
                                                      std::string& stringaDatiBaseCalcolo,
                                                      std::string& stringaErroriRiscontrati) {
  clsCespiti cespiti;
  cespiti.cn = cn;
  clsCespitiCategorie categorie;
  categorie.cn = cn;
  std::vector<std::string> codici;
  {
    auto rs = cn->Execute("SELECT [CodiceCespite] FROM [Cespiti] ORDER BY [CodiceCespite]");
    for (; !rs.Eof(); rs.MoveNext()) codici.push_back(Trim(rs.Fields(0).Value().Testo()));
  }
  auto errore = [&](const std::string& codice, const std::string& testo) {
    stringaErroriRiscontrati += "Cespite: " + PadSinistra(Valore(codice), 23) + testo + "\n";
  };
  double base = 0;
  for (const auto& codice : codici) {
    if (objFormAttiva) objFormAttiva->msgbar("Calcolo base calcolo limite deducibilità cespite: " + codice);
    if (!cespiti.GetFlagManutenzioneContr(Valore(codice))) continue;
    if (categorie.GetIndNatura(Valore(cespiti.GetCategoriaCespite(Valore(codice)))) != 0) {
      errore(codice, " - Riscontrato il flag Manutenzioni Contrattuali per un bene immateriale, il cespite non è "
                     "considerato nella calcolo.");
      continue;
    }
    const Data acquisto = GetDataAcquistoCespite(codice);
    if (acquisto == DataVuotaCespiti()) {
      errore(codice, " - Il cespite ha il flag Manutenzioni Contrattuali ma non ha una data di acquisto, non è stato "
                     "considerato nel calcolo.");
      continue;
    }
    const int vendita = GetDataVenditaDismissioneCespite(codice).Anno();
    const bool costituzione = anno == annoCostituzione;
    if (acquisto.Anno() > anno || (acquisto.Anno() == anno && !costituzione) || vendita < anno ||
        (vendita == anno && costituzione))
      continue;
    if (objFormAttiva) objFormAttiva->msgbar("Creazione scheda cespite: " + codice);
    const int annoValore = costituzione ? anno : anno - 1;
    auto scheda = SchedaCespite(codice, annoValore);
    if (scheda.empty() || scheda.back().anno != annoValore) continue;
    const double valore = scheda.back().valore[0];
    base += valore * cespiti.GetPercDeducFisc(Valore(codice)) / 100;
    stringaDatiBaseCalcolo += "Cespite: " + codice + " - Valore cespite al 31/12/" + std::to_string(annoValore) +
                              " : " + PadDestra(Valore(Format(Valore(valore), "###,###,###,##0.000")), 16) +
                              " - DataAcq.: " + PadSinistra(Valore(acquisto.Testo()), 10) + "\n";
  }
  if (objFormAttiva) objFormAttiva->msgbar("");
  return base;
}

// ---------------------------------------------------------------- the card

SchedaCespiteAnno clsCespitiAmm::AnnoScheda(const std::string& c, int anno, double limite, const Data& acquisto,
                                            const Data& vendita) {
  SchedaCespiteAnno s;
  s.codiceCespite = c;
  s.anno = anno;
  if (acquisto != DataVuotaCespiti()) s.dataAcquisto = acquisto;
  const bool venduto = vendita.Anno() <= anno;
  if (venduto) s.dataVendita = vendita;
  for (int k = 0; k < 2; ++k) {
    const bool civ = k == 1;
    auto fino = [&](int tipo, int y) { return civ ? GetSaldoMovimentazioneFinoAnnoCiv(c, tipo, y)
                                                  : GetSaldoMovimentazioneFinoAnnoFisc(c, tipo, y); };
    auto nel = [&](int tipo) { return civ ? GetSaldoMovimentazioneAnnoCiv(c, tipo, anno)
                                          : GetSaldoMovimentazioneAnnoFisc(c, tipo, anno); };
    s.costoAcquisto[k] = nel(kAcquisto);
    s.oneriSpese[k] = nel(kOneriSpese);
    s.manutenzioni[k] = nel(kManutenzioneRiparazione);
    s.rivalutazioni[k] = nel(kRivalutazione);
    s.svalutazioni[k] = nel(kSvalutazione);
    double v = fino(kAcquisto, anno) + fino(kOneriSpese, anno) + fino(kManutenzioneRiparazione, anno) +
               fino(kRivalutazione, anno) - fino(kSvalutazione, anno);
    if (!civ) {
      s.valoreFiscNoLimite = v;
      if (limite != 0 && v > limite) v = limite;
    }
    s.valore[k] = v;
    s.fondoPrecOrd[k] = fino(kVariazioneFondoOrdinario, anno - 1) + fino(kAmmortamOrdinarioRidotto, anno - 1);
    s.fondoPrecAnt[k] = fino(kVariazioneFondoAnticipato, anno - 1) + fino(kAmmortamAnticipato, anno - 1);
    s.ammOrd[k] = nel(kVariazioneFondoOrdinario) + nel(kAmmortamOrdinarioRidotto);
    s.ammAnt[k] = nel(kVariazioneFondoAnticipato) + nel(kAmmortamAnticipato);
    s.percOrd[k] = v == 0 ? 0 : s.ammOrd[k] * 100 / v;
    s.percAnt[k] = v == 0 ? 0 : s.ammAnt[k] * 100 / v;
    s.residuo[k] = v - s.fondoPrecOrd[k] - s.fondoPrecAnt[k] - s.ammOrd[k] - s.ammAnt[k];
    s.fondoOrd[k] = s.fondoPrecOrd[k] + s.ammOrd[k];
    s.fondoAnt[k] = s.fondoPrecAnt[k] + s.ammAnt[k];
    s.venditaDismissione[k] = nel(kDismissionePerScissione) + nel(kVenditaDismissione);
    if (venduto) {
      const double d = fino(kDismissionePerScissione, anno) + fino(kVenditaDismissione, anno) - s.residuo[k];
      if (d > 0) s.plusvalenza[k] = d;
      if (d < 0) s.minusvalenza[k] = -d;
    }
  }
  s.ammOrdFiscDed = GetSaldoMovimentazioneAnnoFiscDed(c, kVariazioneFondoOrdinario, anno) +
                    GetSaldoMovimentazioneAnnoFiscDed(c, kAmmortamOrdinarioRidotto, anno);
  s.ammAntFiscDed = GetSaldoMovimentazioneAnnoFiscDed(c, kVariazioneFondoAnticipato, anno) +
                    GetSaldoMovimentazioneAnnoFiscDed(c, kAmmortamAnticipato, anno);
  if (venduto)
    s.Nota = "Cespite venduto/dismesso il " + vendita.Testo();
  else if (Importo::DaDouble(s.residuo[0]) <= Importo())
    s.Nota = "Cespite totalmente ammortizzato";
  return s;
}

std::vector<SchedaCespiteAnno> clsCespitiAmm::SchedaCespite(const std::string& codiceCespite, std::optional<int> maxAnno) {
  std::vector<SchedaCespiteAnno> anni;
  int primo = GetAnnoInizioUtilizzoCespite(codiceCespite);
  auto minData = GetMinDataMovimentiCespite(codiceCespite);
  if (!minData) return anni;
  if (primo == DataVuotaCespiti().Anno()) primo = minData->Anno();
  const int ultimo = maxAnno ? *maxAnno : GetMaxDataMovimentiCespite(codiceCespite)->Anno();
  clsCespiti cespiti;
  cespiti.cn = cn;
  const double limite = cespiti.GetLimiteAmmortizzFisc(Valore(codiceCespite));
  const Data acquisto = GetDataAcquistoCespite(codiceCespite), vendita = GetDataVenditaDismissioneCespite(codiceCespite);
  for (int anno = primo; anno <= ultimo; ++anno) {
    anni.push_back(AnnoScheda(codiceCespite, anno, limite, acquisto, vendita));
    if (vendita.Anno() <= anno) break;  // nothing follows a dismissal
  }
  return anni;
}

int clsCespitiAmm::MakeSchedaCespite(IForm* objFormAttiva, const std::string& clientName, int& numeroRiga,
                                     const std::string& codiceCespite, std::optional<int> maxAnno) {
  auto anni = SchedaCespite(codiceCespite, maxAnno);
  int scritte = 0;
  for (const auto& s : anni) {
    if (objFormAttiva)
      objFormAttiva->msgbar("Valore cespite: " + FormattaImporto(Valore(Importo::DaDouble(s.valore[0]))) +
                            "   -   Residuo: " + FormattaImporto(Valore(Importo::DaDouble(s.residuo[0]))));
    auto data = [](const std::optional<Data>& d) { return d ? Valore(*d) : Valore::Null(); };
    cn->Esegui(
        "INSERT INTO [Elaborazione cespiti schede contabili] ([clientName], [numeroRiga], [codiceCespite], [anno], "
        "[dataAcquisto], [dataVendita], [costoAcquistoFisc], [oneriSpeseFisc], [manutenzioniFisc], "
        "[rivalutazioniFisc], [svalutazioniFisc], [valoreCespiteFisc], [fondoPrecAmmOrdFisc], [fondoPrecAmmAntFisc], "
        "[ammOrdFisc], [percAmmOrdFisc], [ammAntFisc], [percAmmAntFisc], [residuoDaAmmFisc], [fondoAmmOrdFisc], "
        "[fondoAmmAntFisc], [venditaDismissioneFisc], [plusvalenzaFisc], [minusvalenzaFisc], [costoAcquistoCiv], "
        "[oneriSpeseCiv], [manutenzioniCiv], [rivalutazioniCiv], [svalutazioniCiv], [valoreCespiteCiv], "
        "[fondoPrecAmmOrdCiv], [fondoPrecAmmAntCiv], [ammOrdCiv], [PercAmmOrdCiv], [ammAntCiv], [PercAmmAntCiv], "
        "[ResiduoDaAmmCiv], [FondoAmmOrdCiv], [FondoAmmAntCiv], [VenditaDismissioneCiv], [PlusvalenzaCiv], "
        "[MinusvalenzaCiv], [Nota], [valoreCespiteFiscNoLimite], [ammOrdFiscDed], [ammAntFiscDed]) VALUES (?, ?, ?, ?, "
        "?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, "
        "?, ?, ?, ?, ?, ?)",
        {Valore(clientName), Valore(++numeroRiga), Valore(codiceCespite), Valore(s.anno), data(s.dataAcquisto),
         data(s.dataVendita), Valore(s.costoAcquisto[0]), Valore(s.oneriSpese[0]), Valore(s.manutenzioni[0]),
         Valore(s.rivalutazioni[0]), Valore(s.svalutazioni[0]), Valore(s.valore[0]), Valore(s.fondoPrecOrd[0]),
         Valore(s.fondoPrecAnt[0]), Valore(s.ammOrd[0]), Valore(s.percOrd[0]), Valore(s.ammAnt[0]),
         Valore(s.percAnt[0]), Valore(s.residuo[0]), Valore(s.fondoOrd[0]), Valore(s.fondoAnt[0]),
         Valore(s.venditaDismissione[0]), Valore(s.plusvalenza[0]), Valore(s.minusvalenza[0]),
         Valore(s.costoAcquisto[1]), Valore(s.oneriSpese[1]), Valore(s.manutenzioni[1]), Valore(s.rivalutazioni[1]),
         Valore(s.svalutazioni[1]), Valore(s.valore[1]), Valore(s.fondoPrecOrd[1]), Valore(s.fondoPrecAnt[1]),
         Valore(s.ammOrd[1]), Valore(s.percOrd[1]), Valore(s.ammAnt[1]), Valore(s.percAnt[1]), Valore(s.residuo[1]),
         Valore(s.fondoOrd[1]), Valore(s.fondoAnt[1]), Valore(s.venditaDismissione[1]), Valore(s.plusvalenza[1]),
         Valore(s.minusvalenza[1]), Valore(s.Nota), Valore(s.valoreFiscNoLimite), Valore(s.ammOrdFiscDed),
         Valore(s.ammAntFiscDed)});
    ++scritte;
  }
  if (objFormAttiva) objFormAttiva->msgbar("Pronto");
  return scritte;
}

}  // namespace vorn
