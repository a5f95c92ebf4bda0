// The runs of clsElaboraFatture that post without a sales document behind them: the issue and
// presentation of the clients' commercial papers, the day's till receipts, the posting of a
// transfer remittance list. Each registration is one transaction with the stamps that say it
// was posted (the instalment's [Contabilizzato], the list's [Contabilizzata], the movements'
// [Flag Elaborato Scontrini]); each stamp is taken first, by a write that finds it still clear,
// so that what another run posted meanwhile is left alone and nothing is posted twice.
#include <cmath>
#include <map>
#include <optional>

#include "company/clsProgrNumerazione.h"
#include "company/clsTabRiferimenti.h"
#include "frame/Comuni.h"
#include "frame/Formato.h"
#include "frame/Globali.h"
#include "frame/Int128.h"
#include "ledger/clsCausaliContabili.h"
#include "ledger/clsPrimaNota.h"
#include "masterdata/clsBancheAzienda.h"
#include "masterdata/clsClientiFornitori.h"
#include "receivables/clsDistinteBonifici.h"
#include "receivables/clsElaboraFatture.h"
#include "receivables/clsSaldaconto.h"
#include "receivables/clsScadenze.h"

namespace vorn {

namespace {

std::string T(const Valore& v) { return TrimTesto(v); }
Valore Numero(const Valore& v) { return Valore(static_cast<long long>(NullToZeroLng(v))); }
Valore Reg(int32_t n) { return Valore(Format(Valore(n), "00000")); }

// A registration refused by a check: rolled back, told, skipped.
struct Rifiuto {
  std::string testo;
};

// The collaborators of a run: the caller's, or the run's own on the same connection.
struct Propri {
  clsPrimaNota pn;
  clsCausaliContabili cau;
  clsClientiFornitori cli;
  clsBancheAzienda ban;
  clsDistinteEffetti eff;
  clsDistinteBonifici bon;
  clsSaldaconto sal;
  clsScadenze sca;
  clsProgrNumerazione prog;
  explicit Propri(const std::shared_ptr<Connessione>& c) {
    pn.cn = c;
    cau.cn = c;
    cli.cn = c;
    ban.cn = c;
    eff.cn = c;
    bon.cn = c;
    sal.cn = c;
    sca.cn = c;
    prog.cn = c;
  }
};

template <class C>
C& O(C* dato, C& proprio) {
  return dato ? *dato : proprio;
}

double Cambio(const Valore& v) {
  double c = v.IsNull() ? 1.0 : NullToZeroDbl(v);
  return c == 0 ? 1.0 : c;
}

// The counterparty of an instalment: "CL" a client, "FO" (or "F") a supplier; its account, the
// standard one when it has none. Any other kind: no indicator, no code.
struct Controparte {
  std::string ind, codice, conto;
};
Controparte ControparteRata(clsClientiFornitori& cli, const std::string& tipo, const std::string& codice,
                            const Valore& clientiStandard, const Valore& fornitoriStandard) {
  Controparte c;
  if (tipo == "CL" || tipo == "C") c.ind = "C";
  else if (tipo == "FO" || tipo == "F") c.ind = "F";
  else return c;
  c.codice = codice;
  c.conto = T(cli.GetSottocontoCliFor(Valore(c.ind), Valore(codice)));
  if (c.conto.empty()) c.conto = T(c.ind == "C" ? clientiStandard : fornitoriStandard);
  return c;
}

// One unit of a run: its transaction with retries, a refusal or a failure told after the
// rollback, the run stopped when the connection is gone. `unita` gives false when it found
// its work already done (nothing to count).
template <class F>
bool Unita(Connessione& c, EsitoElaborazione& esito, const char* titolo, const std::string& cosa, F&& unita) {
  std::optional<Rifiuto> rifiuto;
  std::string errore;
  bool fatto = false;
  try {
    ConRiprova(c, [&] {
      rifiuto.reset();
      Atomico t(c);
      fatto = unita();
      if (fatto) t.Conferma();
    });
  } catch (const Rifiuto& r) {
    rifiuto = r;
  } catch (const std::exception& e) {
    errore = e.what();
  }
  if (rifiuto) {
    ++esito.Scartati;
    Host().Beep();
    Host().MsgBox(rifiuto->testo, vbExclamation, titolo);
    return true;
  }
  if (!errore.empty()) {
    ++esito.Scartati;
    esito.Errori.push_back(cosa + ": " + errore);
    Host().Beep();
    Host().MsgBox(cosa + ": " + errore, vbCritical, titolo);
    return c.Aperta();
  }
  if (fatto) ++esito.Registrazioni;
  return true;
}

// The clear state of a flag column: false or null.
std::string Chiaro(const std::string& colonna) { return "COALESCE(" + colonna + ", ?) = ?"; }

// A row's flag set where it is still clear: the claim of a unit of a run. False when another
// run set it first.
bool Prendi(Connessione& c, const char* tabella, const char* flag, const char* chiave, const Valore& valore) {
  return c.Esegui(std::string("UPDATE [") + tabella + "] SET [" + flag + "] = ? WHERE [" + chiave + "] = ? AND " +
                      Chiaro(std::string("[") + flag + "]"),
                  {Valore(true), valore, Valore(false), Valore(false)}) > 0;
}

// The date range's ends that are given, as conditions on a column.
void Intervallo(std::string& sql, Parametri& p, const char* colonna, const Valore& da, const Valore& a) {
  if (!da.IsNull()) {
    sql += std::string(" AND ") + colonna + " >= ?";
    p.push_back(da);
  }
  if (!a.IsNull()) {
    sql += std::string(" AND ") + colonna + " <= ?";
    p.push_back(a);
  }
}

// The first column of a selection, as whole numbers.
std::vector<Valore> Numeri(Connessione& c, const std::string& sql, const Parametri& p) {
  std::vector<Valore> v;
  c.Scorri(sql, p, [&](const std::vector<Colonna>&, const std::vector<Valore>& r) {
    v.push_back(Numero(r[0]));
    return true;
  });
  return v;
}

// The run's cache, dropped however the run ends.
template <class C>
struct FineCorsa {
  std::optional<C>& c;
  explicit FineCorsa(std::optional<C>& x) : c(x) { c.emplace(); }
  ~FineCorsa() { c.reset(); }
  FineCorsa(const FineCorsa&) = delete;
  FineCorsa& operator=(const FineCorsa&) = delete;
};

}  // namespace

// ---------------------------------------------------------------- references

bool RiferimentiElaboraEffetti(clsTabRiferimenti& r, ArgomentiElaboraEffetti& a) {
  ArgomentiElaboraFatture f;
  Valore CodiceIvaSpeseIncasso, CodiceIvaArt15, SottocontoFornitori;
  const bool ok = r.GetRiferimentiElaborazioneFatture(
      f.avar_CausaleIncassi, f.avar_CausaleFatture, f.avar_CausaleNoteCredito, f.avar_RicaviStandard,
      f.avar_RicaviAccessori, f.avar_IvaVendite, f.avar_IvaCorrispettiviScorporo, f.avar_IvaSospensione,
      f.avar_IvaEsigDiff, f.avar_SottocontoCassa, CodiceIvaSpeseIncasso, CodiceIvaArt15, f.avar_CausaleOmaggi,
      f.avar_SottocontoImponibileOmaggi, f.avar_SottocontoIvaOmaggi, a.CodiceCausale_EmissioneEffetti,
      a.CodiceCausale_PresentazioneEffetti, a.ContoPrimaNota_ContoEffettiAttivi,
      a.ContoPrimaNota_ContoRicevuteBancarie, a.ContoPrimaNota_ClientiContoAvvisi, a.ContoPrimaNota_ClientiContoRID,
      a.avar_ClientiStandard, a.avar_FornitoriStandard, a.ContoPrimaNota_ContoBanca, f.avar_SottIVASplitPaymentVend,
      f.avar_CausaleSplitPayment, f.avar_TipoContabRicAcc, f.avar_SottRicaviAccessori2, f.avar_SottRicaviSpeseIncasso,
      f.avar_SottRicaviSpeseTrasporto, f.avar_SottRicaviBolli, f.avar_CausaleRitenuteSubite,
      f.avar_SottocontoRitenuteSubite, f.avar_CausaleAbbuoni, f.avar_SottocontoAbbuoni);
  return ok;
}

bool RiferimentiElaboraScontrini(clsTabRiferimenti& r, ArgomentiElaboraScontrini& a) {
  Valore banca;
  return r.GetRiferimentiElaborazioneScontrini(banca, a.CodiceCausale_CorrispettiviScorporo,
                                                a.ContoPrimaNota_RicaviStandard, a.ContoPrimaNota_IVA,
                                                a.ContoPrimaNota_ContoCassa);
}

bool RiferimentiDistintaBonifici(clsTabRiferimenti& r, ArgomentiDistintaBonifici& a) {
  return r.GetRiferimentiElaborazioneBonifici(a.avar_ClientiStandard, a.avar_FornitoriStandard,
                                               a.ContoPrimaNota_ContoBanca, a.ContoPrimaNota_CommissioniBancarie,
                                               a.CodiceCausale_BonificiFornitori);
}

// ---------------------------------------------------------------- effects

EsitoElaborazione clsElaboraFatture::ElaboraEffetti(ArgomentiElaboraEffetti& a) {
  constexpr const char* kTitolo = "Elaborazione effetti";
  EsitoElaborazione esito;
  Connessione& c = *cn;
  Propri propri(cn);
  clsPrimaNota& pn = O(a.objPrimaNota, propri.pn);
  clsCausaliContabili& cau = O(a.objCausaliContabili, propri.cau);
  clsClientiFornitori& cli = O(a.objClientiFornitori, propri.cli);
  clsBancheAzienda& ban = O(a.objBancheAzienda, propri.ban);
  clsDistinteEffetti& eff = O(a.objDistinteEffetti, propri.eff);
  clsSaldaconto& sal = O(a.objSaldaconto, propri.sal);
  clsScadenze& sca = O(a.objScadenze, propri.sca);
  auto msgbar = [&](const std::string& s) {
    if (a.objFormAttiva) a.objFormAttiva->msgbar(s);
  };
  const Valore daData = DataIngresso(a.avar_DaData, "dalla data"), aData = DataIngresso(a.avar_AData, "alla data");
  const Valore dataContab = DataIngresso(a.avar_DataContabilizzazione, "data di contabilizzazione");
  FineCorsa fine(cache_);
  const Valore no(false), si(true);

  struct Carta {
    const char *tipo, *testo, *descrizione, *marca;
    const Valore& conto;
  };
  const Carta carte[] = {
      {"RB", "Elaborazione Ricevuta Bancaria n. ", "Ric.Ban al ", "Emiss. R.B.", a.ContoPrimaNota_ContoRicevuteBancarie},
      {"TR", "Elaborazione tratta n. ", "Tratta  al ", "Emiss. Tratte", a.ContoPrimaNota_ContoEffettiAttivi},
      {"AB", "Elaborazione Avviso Bancario n. ", "Avviso  al ", "Emiss. A.B.", a.ContoPrimaNota_ClientiContoAvvisi},
      {"RI", "Elaborazione R.I.D. n. ", "R.I.D.  al ", "Emiss. RID", a.ContoPrimaNota_ClientiContoRID}};
  bool avanti = true;
  for (const Carta& k : carte) {
    if (!avanti) break;
    std::string sql = "SELECT [Numero Progressivo] FROM [Scadenziario] WHERE [Tipo] = 'CL' AND [Tipo di Effetto] = ? "
                      "AND " + Chiaro("[Contabilizzato]") + " AND " + Chiaro("[Sospeso]") +
                      " AND COALESCE([Flag Unificata], 0) IN (0, 1)";
    Parametri p{Valore(k.tipo), no, no, no, no};
    Intervallo(sql, p, "[Data Documento]", daData, aData);
    if (a.bool_ContabilizzazioneDiretta) {
      sql += " AND [Distinta] = ?";
      p.push_back(si);
    }
    sql += " ORDER BY [Data Documento], [Numero Documento], [Serie], [Numero Progressivo]";
    for (const Valore& np : Numeri(c, sql, p)) {
      avanti = Unita(c, esito, kTitolo, "Effetto numero " + np.Testo(), [&]() -> bool {
        // The instalment claimed: one posted meanwhile is left alone.
        if (!Prendi(c, "Scadenziario", "Contabilizzato", "Numero Progressivo", np)) return false;
        Recordset rs = c.Execute("SELECT * FROM [Scadenziario] WHERE [Numero Progressivo] = ?", {np});
        auto campo = [&](const char* n) -> Valore { return rs(n).Value(); };
        const Controparte cp = ControparteRata(cli, T(campo("Tipo")), T(campo("Codice Cliente")),
                                               a.avar_ClientiStandard, a.avar_FornitoriStandard);
        const Valore valuta = Valore(T(campo("Codice valuta")));
        const double cambio = Cambio(campo("Cambio"));
        const Valore serie = Valore(T(campo("Serie"))), numDoc = Numero(campo("Numero Documento"));
        const Valore dataDoc = campo("Data Documento"), dataScad = campo("Data Scadenza");
        const Importo importo = NullToZeroCy(campo("Importo Scadenza"));
        const Valore bancaPres = campo("Codice Banca presentazione"), agenziaPres = campo("Codice Agenzia presentazione");
        rs.Close();
        msgbar(k.testo + np.Testo() + " con scadenza " + DataInTesto(dataScad).Testo());
        if (!dataDoc.IsDate())
          throw Rifiuto{"Impossibile elaborare l'effetto numero " + np.Testo() + ": Data Documento non indicata."};
        const Valore dataReg = DataInTesto(a.bool_ContabilizzaDataFattura ? dataDoc : dataContab);
        if (dataReg.IsNull())
          throw Rifiuto{"Impossibile elaborare l'effetto numero " + np.Testo() +
                        ": data di contabilizzazione non indicata."};
        // The due date short, so that the description keeps it whole.
        const Valore descr = Valore(k.descrizione + DataBreve(DataInTesto(dataScad)).Testo());
        const int32_t n = pn.GetNumeroNuovaRegistrazionePrimaNota();
        ScriviRecordPrimaNota(pn, cau, n, dataReg, "", 1, "A", Valore(cp.conto), Valore(cp.ind), Valore(cp.codice),
                              dataReg, a.CodiceCausale_EmissioneEffetti, descr, importo, Importo(), Valore(""),
                              Valore(""), Valore(""), Valore("0"), Valore("00"), dataDoc, serie, numDoc, Importo(),
                              valuta, cambio, np, Valore(0), Valore(""), Valore(), a.clientID, a.hWnd);
        if (!sal.ChiudiScadenza(np, Valore(importo), Valore(n), dataReg, Valore(k.marca), true, &sca, a.clientID,
                                a.hWnd))
          throw std::runtime_error("pagamento non registrato sulla scadenza");
        // The paper's account: straight to the bank of the list that holds it, when direct.
        std::string conto;
        if (a.bool_ContabilizzazioneDiretta) {
          Valore s;
          if (eff.GetSottocontoBanca(np, s)) conto = T(s);
          if (conto.empty()) conto = T(ban.GetSottocontoBanca(bancaPres, agenziaPres));
        }
        if (conto.empty()) conto = T(k.conto);
        ScriviRecordPrimaNota(pn, cau, n, dataReg, "", 2, "D", Valore(conto), Valore(""), Valore(""), dataReg,
                              a.CodiceCausale_EmissioneEffetti, descr, importo, Importo(), Valore(""), Valore(""),
                              Valore(""), Valore("0"), Valore("00"), dataDoc, serie, numDoc, Importo(), valuta, cambio,
                              Valore(), Valore(0), Valore(""), Valore(), a.clientID, a.hWnd);
        pn.AggiornaProgressiviPrimaNota(Reg(n), dataReg, Valore("0"), Valore("00"), serie, numDoc, dataDoc, Valore(0),
                                        a.clientID, a.hWnd);
        Aggiorna_Campo_Effetto_Contabilizzato(np, true);
        // A list whose papers go straight to its bank is presented by them: it is stamped
        // posted with its first paper, and never presented a second time.
        if (a.bool_ContabilizzazioneDiretta)
          c.Esegui("UPDATE [Distinte] SET [Contabilizzata] = ? WHERE [Numero Distinta] IN (SELECT [Numero Distinta] "
                   "FROM [Distinte Righe] WHERE [Numero Progressivo] = ?) AND " + Chiaro("[Contabilizzata]"),
                   {si, np, no, no});
        return true;
      });
      if (!avanti) break;
    }
  }

  if (avanti && !a.bool_ContabilizzazioneDiretta) {
    // The issued lists not yet posted, from the first date on.
    std::string sql = "SELECT [Numero Distinta] FROM [Distinte] WHERE " + Chiaro("[Contabilizzata]") +
                      " AND [EffettiEmessi] = ?";
    Parametri p{no, no, si};
    Intervallo(sql, p, "[Data Distinta]", daData, Valore::Null());
    sql += " ORDER BY [Numero Distinta]";
    for (const Valore& nd : Numeri(c, sql, p)) {
      avanti = Unita(c, esito, kTitolo, "Distinta effetti n. " + nd.Testo(), [&]() -> bool {
        if (!Prendi(c, "Distinte", "Contabilizzata", "Numero Distinta", nd)) return false;
        Recordset rs = c.Execute("SELECT * FROM [Distinte] WHERE [Numero Distinta] = ?", {nd});
        const Valore banca = rs("Codice Banca").Value(), agenzia = rs("Codice Agenzia").Value();
        const Valore dataDistinta = rs("Data Distinta").Value();
        const Importo importo = NullToZeroCy(rs("ImportoDistinta").Value());
        std::string conto = T(rs("SottocontoBanca").Value());
        rs.Close();
        msgbar("Elaborazione Distinta Effetti n. " + nd.Testo());
        if (conto.empty()) conto = T(ban.GetSottocontoBanca(banca, agenzia));
        if (conto.empty()) conto = T(a.ContoPrimaNota_ContoBanca);
        const Valore dataReg =
            DataInTesto(a.bool_ContabilizzaDataFattura && dataDistinta.IsDate() ? dataDistinta : dataContab);
        if (dataReg.IsNull())
          throw Rifiuto{"Impossibile elaborare la distinta n. " + nd.Testo() +
                        ": data di contabilizzazione non indicata."};
        const Valore descr = Valore(T(ban.GetDescrizioneBanca(banca, agenzia)));
        const int32_t n = pn.GetNumeroNuovaRegistrazionePrimaNota();
        ScriviRecordPrimaNota(pn, cau, n, dataReg, "", 1, "D", Valore(conto), Valore(""), Valore(""), dataReg,
                              a.CodiceCausale_PresentazioneEffetti, descr, importo, Importo(), Valore(""), Valore(""),
                              Valore(""), Valore("0"), Valore("00"), dataReg, Valore(""), nd, Importo(), Valore(""),
                              1.0, Valore(), Valore(0), Valore(""), Valore(), a.clientID, a.hWnd);
        ScriviRecordPrimaNota(pn, cau, n, dataReg, "", 2, "A", a.ContoPrimaNota_ContoRicevuteBancarie, Valore(""),
                              Valore(""), dataReg, a.CodiceCausale_PresentazioneEffetti, descr, importo, Importo(),
                              Valore(""), Valore(""), Valore(""), Valore("0"), Valore("00"), dataReg, Valore(""), nd,
                              Importo(), Valore(""), 1.0, Valore(), Valore(0), Valore(""), Valore(), a.clientID,
                              a.hWnd);
        pn.AggiornaProgressiviPrimaNota(Reg(n), dataReg, Valore("0"), Valore("00"), Valore(""), nd, dataReg, Valore(0),
                                        a.clientID, a.hWnd);
        Aggiorna_Campo_Distinta_Contabilizzata(nd, true, Reg(n), dataReg);
        return true;
      });
      if (!avanti) break;
    }
  }

  FineElaborazione(a.objFormAttiva, "Elaborazione effetti completata.", esito.Registrazioni, "Nessun effetto da elaborare.", vbExclamation, kTitolo);
  return esito;
}

// ---------------------------------------------------------------- till receipts

int64_t clsElaboraFatture::Aggiorna_Campo_Movimento_Elaborato_Scontrino(const Valore& data, const Valore& causale,
                                                                        bool esito) {
  return cn->Esegui("UPDATE [Movimenti Magazzino] SET [Flag Elaborato Scontrini] = ? WHERE [Data Registrazione] = ? "
                    "AND [Causale Magazzino] = ? AND " + Chiaro("[Flag Elaborato Scontrini]"),
                    {Valore(esito), DataIngresso(data), Valore(T(causale)), Valore(false), Valore(false)});
}

EsitoElaborazione clsElaboraFatture::ElaboraScontrini(ArgomentiElaboraScontrini& a) {
  constexpr const char* kTitolo = "Elaborazione scontrini";
  EsitoElaborazione esito;
  Connessione& c = *cn;
  Propri propri(cn);
  clsPrimaNota& pn = O(a.objPrimaNota, propri.pn);
  clsCausaliContabili& cau = O(a.objCausaliContabili, propri.cau);
  clsProgrNumerazione& prog = O(a.objProgrNumerazione, propri.prog);
  auto msgbar = [&](const std::string& s) {
    if (a.objFormAttiva) a.objFormAttiva->msgbar(s);
  };
  const Valore daData = DataIngresso(a.avar_DaData, "dalla data"), aData = DataIngresso(a.avar_AData, "alla data");
  const Valore causaleMag = Valore(T(a.causale_magazzino_corrispettivi));
  FineCorsa fine(cache_);
  const Valore no(false), si(true);

  // The register of the receipts' causal, "01" when it proposes none.
  const std::string tipoRegistro = cau.GetTipoRegistroIvaCausaleContabile(a.CodiceCausale_CorrispettiviScorporo);
  Valore proposto;
  cau.GetRegistroIVAProposto(a.CodiceCausale_CorrispettiviScorporo, proposto);
  std::string numRegistro = T(proposto);
  if (numRegistro.empty() || numRegistro == "0" || numRegistro == "00") numRegistro = "01";
  if (tipoRegistro.empty() || tipoRegistro == "0") {
    Host().Beep();
    Host().MsgBox("La causale contabile dei corrispettivi " + T(a.CodiceCausale_CorrispettiviScorporo) +
                      " non è una causale IVA: nessuno scontrino elaborato.",
                  vbExclamation, kTitolo);
    return esito;
  }
  // The rates of the VAT codes, read once.
  std::map<std::string, Importo> aliquote;
  c.Scorri("SELECT [Codice Iva], [Aliquota] FROM [Codici Iva]", {},
           [&](const std::vector<Colonna>&, const std::vector<Valore>& r) {
             aliquote[T(r[0])] = NullToZeroCy(r[1]);
             return true;
           });

  // The days, each currency and rate apart.
  const std::string gruppo = "[Data Registrazione] = ? AND [Causale Magazzino] = ? AND COALESCE([Codice valuta], '') = ? "
                             "AND COALESCE([Cambio], 0) = ? AND " + Chiaro("[Flag Elaborato Scontrini]");
  struct Giorno {
    Valore data, valuta, cambio;
  };
  std::vector<Giorno> giorni;
  {
    std::string sql = "SELECT DISTINCT [Data Registrazione], COALESCE([Codice valuta], ''), COALESCE([Cambio], 0) "
                      "FROM [Movimenti Magazzino] WHERE [Causale Magazzino] = ? AND " +
                      Chiaro("[Flag Elaborato Scontrini]") + " AND [Data Registrazione] IS NOT NULL";
    Parametri p{causaleMag, no, no};
    Intervallo(sql, p, "[Data Registrazione]", daData, aData);
    c.Scorri(sql + " ORDER BY 1, 2, 3", p, [&](const std::vector<Colonna>&, const std::vector<Valore>& r) {
      giorni.push_back({r[0], Valore(T(r[1])), Valore(NullToZeroDbl(r[2]))});
      return true;
    });
  }

  for (const Giorno& g : giorni) {
    const std::string testoData = DataInTesto(g.data).Testo();
    const bool avanti = Unita(c, esito, kTitolo, "Scontrini del giorno " + testoData, [&]() -> bool {
      const Parametri pg{g.data, causaleMag, g.valuta, g.cambio, no, no};
      struct PerCodice {
        Importo lordo, netto;  // amounts with VAT inside, amounts without (four decimals)
      };
      std::map<std::string, PerCodice> codici;
      long righe = 0;
      c.Scorri("SELECT [Codice Iva], [Importo], [Sconto Pagamento %], [Sconto (cliente)%], [Sconto2 (cliente)%], "
               "[Scorporo iva] FROM [Movimenti Magazzino] WHERE " + gruppo,
               pg, [&](const std::vector<Colonna>&, const std::vector<Valore>& r) {
                 ++righe;
                 // The stored code carries one leading character more than the VAT table's.
                 std::string codice = T(r[0]);
                 codice = codice.size() > 1 ? Trim(codice.substr(1)) : std::string();
                 if (!codice.empty() && NormalizzaNumero(codice)) {
                   long v = std::lround(Val(codice));
                   codice = v == 0 ? std::string() : Format(Valore(v), "000");
                 }
                 auto fattore = [](const Valore& s) {
                   return 1000000 - Importo::DaDouble(static_cast<double>(NullToZeroSng(s))).Raw();
                 };
                 Int128 num = static_cast<Int128>(NullToZeroCy(r[1]).Raw()) * fattore(r[2]) * fattore(r[3]) *
                              fattore(r[4]);
                 Importo netto = ArrotondaRapporto(num, static_cast<Int128>(1000000) * 1000000 * 1000000, 4);
                 (r[5].Vero() ? codici[codice].lordo : codici[codice].netto) += netto;
                 return true;
               });
      if (righe == 0) return false;
      // The day claimed: its movements are stamped now; another run that took some of them
      // meanwhile makes this one start again from what is left.
      if (c.Esegui("UPDATE [Movimenti Magazzino] SET [Flag Elaborato Scontrini] = ? WHERE " + gruppo,
                   {si, g.data, causaleMag, g.valuta, g.cambio, no, no}) != righe)
        throw ErroreDb(0, "i movimenti del giorno sono cambiati durante l'elaborazione: ripetere l'operazione",
                       "40001");
      const double cambio = NullToZeroDbl(g.cambio) == 0 ? 1.0 : NullToZeroDbl(g.cambio);
      const int dec = DecimaliValutaDocumento(T(g.valuta));
      struct Iva {
        std::string codice;
        Importo imponibile, imposta;
      };
      std::vector<Iva> iva;
      Importo imponibile, totale;
      for (const auto& [codice, x] : codici) {
        auto trovata = aliquote.find(codice);
        const Importo aliq = trovata == aliquote.end() ? Importo() : trovata->second;
        // Out of the amounts with VAT inside, the taxable amount and the rest; on the others the
        // VAT at the rate. Each rounded once for the code.
        const Importo imponibileLordo =
            ArrotondaRapporto(static_cast<Int128>(x.lordo.Raw()) * 1000000, 1000000 + aliq.Raw(), dec);
        const Importo imp = imponibileLordo + x.netto.Arrotonda(dec);
        const Importo imposta =
            (x.lordo.Arrotonda(dec) - imponibileLordo) +
            ArrotondaRapporto(static_cast<Int128>(x.netto.Raw()) * aliq.Raw(), static_cast<Int128>(Importo::kScala) * 100,
                              dec);
        imponibile += imp;
        totale += imp + imposta;
        if (!codice.empty()) iva.push_back({codice, imp, imposta});
      }
      msgbar("Elaborazione scontrini del giorno " + testoData);
      const int32_t numDoc = prog.PrendiNumeroDocumento(Valore(tipoRegistro), Valore(numRegistro), Valore(""));
      const Valore vDoc(numDoc), data = DataInTesto(g.data);
      const int32_t n = pn.GetNumeroNuovaRegistrazionePrimaNota();
      auto riga = [&](const std::string& tipoRiga, int32_t r, const char* lato, const Valore& conto, Importo importo,
                      Importo imp, const Valore& codice, Importo tot, const Valore& tipoReg, const Valore& numReg) {
        ScriviRecordPrimaNota(pn, cau, n, data, tipoRiga, r, lato, conto, Valore(""), Valore(""), data,
                              a.CodiceCausale_CorrispettiviScorporo, Valore(""), importo, imp, codice, Valore(""),
                              Valore(""), tipoReg, numReg, data, Valore(""), vDoc, tot, g.valuta, cambio, Valore(),
                              vDoc, Valore(""), Valore(), a.clientID, a.hWnd);
      };
      riga("", 1, "D", a.ContoPrimaNota_ContoCassa, totale, Importo(), Valore(""), Importo(), Valore("0"),
           Valore("00"));
      riga("", 2, "A", a.ContoPrimaNota_RicaviStandard, imponibile, Importo(), Valore(""), Importo(), Valore("0"),
           Valore("00"));
      int32_t r = 0;
      for (const Iva& v : iva)
        riga("I", ++r, "A", a.ContoPrimaNota_IVA, v.imposta, v.imponibile, Valore(v.codice), totale,
             Valore(tipoRegistro), Valore(numRegistro));
      pn.AggiornaProgressiviPrimaNota(Reg(n), data, Valore(tipoRegistro), Valore(numRegistro), Valore(""), vDoc, data,
                                      vDoc, a.clientID, a.hWnd);
      return true;
    });
    if (!avanti) break;
  }

  FineElaborazione(a.objFormAttiva, "Elaborazione scontrini completata.", esito.Registrazioni, "Nessuno scontrino elaborabile.", vbExclamation, kTitolo);
  return esito;
}

// ---------------------------------------------------------------- transfer remittance lists

long clsElaboraFatture::ContabilizzaDistintaBonifici(ArgomentiDistintaBonifici& a, int32_t& numeroNuovaRegistrazione) {
  constexpr const char* kTitolo = "Metodo ContabilizzaDistintaBonifici";
  Connessione& c = *cn;
  Propri propri(cn);
  clsPrimaNota& pn = O(a.objPrimaNota, propri.pn);
  clsCausaliContabili& cau = O(a.objCausaliContabili, propri.cau);
  clsClientiFornitori& cli = O(a.objClientiFornitori, propri.cli);
  clsBancheAzienda& ban = O(a.objBancheAzienda, propri.ban);
  clsDistinteBonifici& bon = O(a.objDistinteBonifici, propri.bon);
  clsSaldaconto& sal = O(a.objSaldaconto, propri.sal);
  clsScadenze& sca = O(a.objScadenze, propri.sca);
  const Valore nd = Numero(a.Numero_Distinta);
  const Valore no(false), si(true);
  numeroNuovaRegistrazione = 0;
  long righe = 0;
  bool vuota = false;
  ConRiprova(c, [&] {
    righe = 0;
    numeroNuovaRegistrazione = 0;
    vuota = false;
    Atomico t(c);
    // The list claimed: one posted already (or missing) has nothing to post.
    if (!Prendi(c, "Distinte Bonifici", "Contabilizzata", "Numero Distinta", nd)) {
      vuota = true;
      return;
    }
    const Valore D = DataInTesto(Valore(bon.GetDataEsecuzione(nd)));
    if (D.IsNull()) throw ErroreDb(13, "la distinta n. " + nd.Testo() + " non ha la data di esecuzione");
    Recordset rs = c.Execute(
        "SELECT [Scadenziario].* FROM [Distinte Bonifici Righe] INNER JOIN [Scadenziario] ON "
        "[Distinte Bonifici Righe].[Numero Progressivo] = [Scadenziario].[Numero Progressivo] "
        "WHERE [Distinte Bonifici Righe].[Numero Distinta] = ? AND [Scadenziario].[Tipo] IN ('FO', 'F') AND "
        "[Scadenziario].[Tipo di Effetto] = 'BO' AND " + Chiaro("[Scadenziario].[Contabilizzato]") + " AND " +
            Chiaro("[Scadenziario].[Sospeso]") +
            " AND COALESCE([Scadenziario].[Flag Unificata], 0) IN (0, 1) "
            "ORDER BY [Distinte Bonifici Righe].[Numero Distinta], [Distinte Bonifici Righe].[Progressivo Riga]",
        {nd, no, no, no, no});
    if (rs.Eof()) {
      vuota = true;
      return;
    }
    const int32_t n = pn.GetNumeroNuovaRegistrazionePrimaNota();
    const int decConto = G().DecimaliImporti;
    Importo somma;  // in the company's currency
    for (; !rs.Eof(); rs.MoveNext()) {
      auto campo = [&](const char* x) -> Valore { return rs(x).Value(); };
      const Valore np = Numero(campo("Numero Progressivo"));
      const Controparte cp = ControparteRata(cli, T(campo("Tipo")), T(campo("Codice Cliente")), a.avar_ClientiStandard,
                                             a.avar_FornitoriStandard);
      const Valore dataScad = campo("Data Scadenza"), dataDoc = campo("Data Documento");
      const Valore serie = Valore(T(campo("Serie"))), numDoc = Numero(campo("Numero Documento"));
      const Valore valuta = Valore(T(campo("Codice valuta")));
      const double cambio = Cambio(campo("Cambio"));
      const Importo scadenza = NullToZeroCy(campo("Importo Scadenza"));
      if (a.objFormAttiva)
        a.objFormAttiva->msgbar("Elaborazione Bonifico Bancario n. " + np.Testo() + " con scadenza " +
                                DataInTesto(dataScad).Testo());
      const Valore descr = Valore("Bon.FT " + numDoc.Testo() + AggiungiBarra(T(serie)) + " " +
                                  DataBreve(DataInTesto(dataDoc)).Testo());
      ScriviRecordPrimaNota(pn, cau, n, D, "", ++righe, "D", Valore(cp.conto), Valore(cp.ind), Valore(cp.codice), D,
                            a.CodiceCausale_BonificiFornitori, descr, -scadenza, Importo(), Valore(""), Valore(""),
                            Valore(""), Valore("0"), Valore("00"), dataDoc, serie, numDoc, Importo(), valuta, cambio, np,
                            Valore(0), Valore(""), Valore(), a.clientID, a.hWnd);
      // What that row put in the journal, in the company's currency, as ScriviRecordPrimaNota
      // converts it.
      int64_t mil = std::llround(cambio * 1000000.0);
      somma += ArrotondaRapporto(static_cast<Int128>((-scadenza).Raw()) * 1000000, mil == 0 ? 1000000 : mil, decConto);
      if (!sal.ChiudiScadenza(np, Valore(scadenza), Valore(n), D, Valore("Bonifico"), true, &sca, a.clientID, a.hWnd))
        throw std::runtime_error("pagamento non registrato sulla scadenza " + np.Testo());
      Aggiorna_Campo_Effetto_Contabilizzato(np, true);
    }
    rs.Close();
    const Valore descr = Valore("Bonifico al " + DataBreve(D).Testo());
    const Importo commissioni = a.commissioniBancarie.Arrotonda(decConto);
    if (!commissioni.Zero())
      ScriviRecordPrimaNota(pn, cau, n, D, "", ++righe, "D", a.ContoPrimaNota_CommissioniBancarie, Valore(""),
                            Valore(""), D, a.CodiceCausale_BonificiFornitori, descr, commissioni, Importo(), Valore(""),
                            Valore(""), Valore(""), Valore("0"), Valore("00"), Valore::Null(), Valore(""), Valore(0),
                            Importo(), Valore(""), 1.0, Valore(), Valore(0), Valore(""), Valore(), a.clientID, a.hWnd);
    Valore banca, agenzia;
    std::string conto = T(bon.GetSottocontoBancaDistinta(nd));
    if (conto.empty() && bon.GetDatiBancaAgenziaPresDistintaBonifici(nd, banca, agenzia))
      conto = T(ban.GetSottocontoBanca(banca, agenzia));
    if (conto.empty()) conto = T(a.ContoPrimaNota_ContoBanca);
    ScriviRecordPrimaNota(pn, cau, n, D, "", ++righe, "A", Valore(conto), Valore(""), Valore(""), D,
                          a.CodiceCausale_BonificiFornitori, descr, somma + commissioni, Importo(), Valore(""),
                          Valore(""), Valore(""), Valore("0"), Valore("00"), Valore::Null(), Valore(""), Valore(0),
                          Importo(), Valore(""), 1.0, Valore(), Valore(0), Valore(""), Valore(), a.clientID, a.hWnd);
    pn.AggiornaProgressiviPrimaNota(Reg(n), D, Valore("0"), Valore("00"), Valore(""), Valore(0), D, Valore(0),
                                    a.clientID, a.hWnd);
    c.Esegui("UPDATE [Distinte Bonifici] SET [numeroRegistrazione] = ?, [DataRegistrazione] = ? "
             "WHERE [Numero Distinta] = ?",
             {Reg(n), D, nd});
    numeroNuovaRegistrazione = n;
    t.Conferma();
  });
  if (vuota) {
    Host().Beep();
    Host().MsgBox("Per la distinta indicata non è stata trovata nessuna scadenza contabilizzabile, impossibile "
                  "eseguire la contabilizzazione.",
                  vbExclamation, kTitolo);
    return 0;
  }
  return righe;
}

}  // namespace vorn
