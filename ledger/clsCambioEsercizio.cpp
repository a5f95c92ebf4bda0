#include "ledger/clsCambioEsercizio.h"

#include <algorithm>
#include <cstdio>
#include <functional>
#include <map>
#include <optional>
#include <set>
#include <tuple>

#include "company/clsProgAzienda.h"
#include "company/clsTabRiferimenti.h"
#include "frame/Comuni.h"
#include "frame/Formato.h"
#include "ledger/clsPrimaNota.h"

namespace vorn {

const char* const clsCambioEsercizio::kTitolo = "Cambio esercizio";

namespace {

// The balance of one sub-account, or of one client or supplier of it, in the year: debit positive.
struct SaldoAnno {
  std::string conto, ind, cod;
  Importo saldo;
  std::string GruppoConto() const { return conto.substr(0, 4); }
};

// The balances of the year by sub-account and partner, with the section of the account's group
// ("0" patrimonial, "1" economic, "2" summary; empty when the group is not in the chart).
struct SaldiAnno {
  std::map<std::tuple<std::string, std::string, std::string>, Importo> saldi;
  std::map<std::string, std::string> sezioni;  // group -> section
  std::string Sezione(const std::string& conto) const {
    auto s = sezioni.find(conto.substr(0, 2));
    return s == sezioni.end() ? "" : s->second;
  }
  // The non-zero balances of one section.
  std::vector<SaldoAnno> DellaSezione(const std::string& sezione) const {
    std::vector<SaldoAnno> v;
    for (auto& [k, s] : saldi)
      if (!s.Zero() && Sezione(std::get<0>(k)) == sezione)
        v.push_back({std::get<0>(k), std::get<1>(k), std::get<2>(k), s});
    return v;
  }
};

// What the last unload took out of the journal, when it joins the year (the unload on the day
// before its start) or lies inside it: the journal then lacks those rows, and their totals stand
// in the progressives (opening + debit - credit). An unload before that belongs to years already
// closed and reopened by their entries, which are in the journal. A sub-account of clients or
// suppliers takes the progressives of each partner instead of its own.
void AggiungiProgressivi(Connessione& cn, SaldiAnno& s) {
  std::set<std::string> conPartner;
  for (const char* t : {"Anagrafica Clienti", "Anagrafica Fornitori"})
    for (auto rs = cn.Execute(std::string("SELECT [SottocontoApparten], [Codice Cliente], COALESCE([SaldoInizProgress], "
                                          "0) + COALESCE([SaldoDareProgress], 0) - COALESCE([SaldoAvereProgress], 0) "
                                          "FROM [") + t + "]");
         !rs.Eof(); rs.MoveNext()) {
      const std::string conto = TrimTesto(rs(0).Value()), cod = TrimTesto(rs(1).Value());
      if (conto.empty()) continue;
      conPartner.insert(conto);
      s.saldi[{conto, t[11] == 'C' ? "C" : "F", cod}] += NullToZeroCy(rs(2).Value());
    }
  for (auto rs = cn.Execute("SELECT COALESCE([CodiceGruppo], '') || COALESCE([CodiceConto], '') || "
                            "COALESCE([CodiceSottoconto], ''), COALESCE([SaldoInizialeProgr], 0) + "
                            "COALESCE([DareProgressivo], 0) - COALESCE([AvereProgressivo], 0) FROM [Saldi Piano Dei Conti]");
       !rs.Eof(); rs.MoveNext()) {
    const std::string conto = TrimTesto(rs(0).Value());
    if (conto.size() == 7 && !conPartner.count(conto)) s.saldi[{conto, "", ""}] += NullToZeroCy(rs(1).Value());
  }
}

SaldiAnno LeggiSaldiAnno(Connessione& cn, const Data& dal, const Data& al, bool conProgressivi) {
  SaldiAnno s;
  for (auto rs = cn.Execute("SELECT [Gruppo], [IndDiBilancio] FROM [Piano Dei Conti] "
                            "WHERE COALESCE([Conto], '') = '' AND COALESCE([Sottoconto], '') = ''");
       !rs.Eof(); rs.MoveNext())
    s.sezioni[TrimTesto(rs(0).Value())] = TrimTesto(rs(1).Value());
  // Every row of the year by its competence date, VAT rows included: they move balances alike.
  const std::string sql =
      "SELECT [Prima Nota].[ContoPrimaNota], COALESCE([Prima Nota].[IndClienteFornitore], ''), "
      "COALESCE([Prima Nota].[CodClienteFornitore], ''), "
      "SUM(CASE WHEN [Prima Nota].[DareAvere] = 'A' THEN -[Prima Nota].[ImportoMovimento] "
      "ELSE [Prima Nota].[ImportoMovimento] END) FROM [Prima Nota] "
      "WHERE [Prima Nota].[DataCompetenza] BETWEEN ? AND ? AND COALESCE([Prima Nota].[ContoPrimaNota], '') <> '' "
      "GROUP BY [Prima Nota].[ContoPrimaNota], COALESCE([Prima Nota].[IndClienteFornitore], ''), "
      "COALESCE([Prima Nota].[CodClienteFornitore], '')";
  for (auto rs = cn.Execute(sql, {Valore(dal), Valore(al)}); !rs.Eof(); rs.MoveNext()) {
    std::string ind = TrimTesto(rs(1).Value()), cod = TrimTesto(rs(2).Value());
    if (ind != "C" && ind != "F") ind.clear();  // balances follow a partner only with both marks
    if (ind.empty() || cod.empty()) ind.clear(), cod.clear();
    s.saldi[{TrimTesto(rs(0).Value()), ind, cod}] += NullToZeroCy(rs(3).Value());
  }
  if (conProgressivi) AggiungiProgressivi(cn, s);
  return s;
}

// The date of the last unload, when there is one.
std::optional<Data> UltimoScarico(const std::shared_ptr<Connessione>& cn) {
  clsProgAzienda progressivi;
  progressivi.cn = cn;
  return progressivi.GetDataUltimoScaricoPrimaNota().ComeData();
}

// True when the unload's progressives are part of the year from `dal` (see AggiungiProgressivi).
bool ProgressiviNellAnno(const std::optional<Data>& scarico, const Data& dal) {
  return scarico && *scarico >= dal.AggiungiGiorni(-1);
}

Importo SommaSezione(const SaldiAnno& s, const std::string& sezione) {
  Importo t;
  for (auto& x : s.DellaSezione(sezione)) t += x.saldo;
  return t;
}

// The rows of one entry, numbered on from 001, each saved through the journal.
class Registrazione {
 public:
  Registrazione(clsPrimaNota& pn, const ArgomentiCambioEsercizio& a, const std::string& operativita, int32_t numero,
                const Valore& data, const Valore& competenza, const Valore& causale, const Valore& descrizione)
      : pn_(pn), a_(a), numero_(numero), data_(data), competenza_(competenza), causale_(causale),
        descrizione_(descrizione), indicatori_("  " + (operativita.empty() ? std::string(" ") : operativita.substr(0, 1)) +
                                               std::string(7, ' ')) {}

  // ScriviRigaCambioEsercizio: one row of the entry.
  void Riga(const std::string& conto, const std::string& ind, const std::string& cod, const char* lato,
            Importo importo) {
    char linea[16];
    std::snprintf(linea, sizeof linea, "%03d", ++righe_);
    char numero[16];
    std::snprintf(numero, sizeof numero, "%05d", numero_);
    const std::string data = data_.ComeData()->Testo();
    RecordValori r{{"NumeroRegistrazione", Valore(numero)},
                   {"TipoRigaIvaNormale", Valore("")},
                   {"NumRigaAVideo", Valore(linea)},
                   {"DataRegistrazione", Valore(data)},
                   {"DataCompetenza", Valore(competenza_.ComeData()->Testo())},
                   {"DataDocumento", Valore(data)},
                   {"DareAvere", Valore(lato)},
                   {"ContoPrimaNota", Valore(conto)},
                   {"IndClienteFornitore", Valore(ind)},
                   {"CodClienteFornitore", Valore(cod)},
                   {"CodiceCausale", causale_},
                   {"DescrizioneSupplem", descrizione_},
                   {"ImportoMovimento", Valore(importo)},
                   {"TipoRegistroIva", Valore("0")},
                   {"NumRegistroIva", Valore("00")},
                   {"Cambio", Valore(1.0)},
                   {"Stringa10indicatori", Valore(indicatori_)}};
    bool cancel = false;
    pn_.SalvaRecord(r, a_.clientID, a_.hWnd, cancel);
  }
  int Righe() const { return righe_; }
  int32_t Numero() const { return numero_; }

 private:
  clsPrimaNota& pn_;
  const ArgomentiCambioEsercizio& a_;
  int32_t numero_;
  Valore data_, competenza_, causale_, descrizione_;
  std::string indicatori_;
  int righe_ = 0;
};

const char* Opposto(const char* lato) { return lato[0] == 'D' ? "A" : "D"; }

// The balances given onto a summary account, as one entry: the debit balances first, then the
// credit ones, each in order of account (first four characters), amount and sub-account. Each
// balance has its row (`chiude`: on the opposite side, closing it; otherwise on its own side,
// opening it) and each account its contra row on `contropartita` for the sum of its balances, on
// the other side. Nothing when there are no balances.
void GiraSaldi(Registrazione& reg, std::vector<SaldoAnno> saldi, const std::string& contropartita, bool chiude) {
  for (int segno : {1, -1}) {
    std::vector<SaldoAnno> v;
    for (auto& s : saldi)
      if ((segno > 0) == (s.saldo > Importo())) v.push_back(s);
    std::sort(v.begin(), v.end(), [](const SaldoAnno& x, const SaldoAnno& y) {
      return std::make_tuple(x.GruppoConto(), x.saldo, x.conto, x.ind, x.cod) <
             std::make_tuple(y.GruppoConto(), y.saldo, y.conto, y.ind, y.cod);
    });
    const char* proprio = segno > 0 ? "D" : "A";
    const char* riga = chiude ? Opposto(proprio) : proprio;
    Importo subtotale;
    for (size_t i = 0; i < v.size(); ++i) {
      const Importo importo = segno > 0 ? v[i].saldo : -v[i].saldo;
      reg.Riga(v[i].conto, v[i].ind, v[i].cod, riga, importo);
      subtotale += importo;
      if (i + 1 == v.size() || v[i + 1].GruppoConto() != v[i].GruppoConto()) {
        reg.Riga(contropartita, "", "", Opposto(riga), subtotale);
        subtotale = Importo();
      }
    }
  }
}

}  // namespace

bool ArgomentiCambioEsercizioAzienda(const std::shared_ptr<Connessione>& cn, const Data& inizio, const Data& fine,
                                     ArgomentiCambioEsercizio& a) {
  clsTabRiferimenti rif;
  rif.cn = cn;
  const bool trovati =
      rif.GetRiferimentiCambioEsercizio(a.avar_CausaleBilancioChiusura, a.avar_CausaleBilancioApertura,
                                        a.avar_SottocontoProfittiPerdite, a.avar_SottocontoBilancioApertura,
                                        a.avar_SottocontoBilancioChiusura, a.avar_SottocontoUtilePerdita);
  const Data apertura = fine.AggiungiGiorni(1);
  a.avar_DaData = Valore(inizio);
  a.avar_AData = a.avar_DataRegistrazioneChiusura = a.avar_DataCompetenzaChiusura = Valore(fine);
  a.avar_DataRegistrazioneApertura = a.avar_DataCompetenzaApertura = Valore(apertura);
  a.var_DescrizioneSupplem_Chiusura = Valore("Chiusura conti " + std::to_string(fine.Anno()));
  a.var_DescrizioneSupplem_Apertura = Valore("Apertura conti " + std::to_string(apertura.Anno()));
  return trovati;
}

Importo clsCambioEsercizio::GetSaldoContoEconomico(const Valore& avar_DaData, const Valore& avar_AData) {
  const Data dal = *avar_DaData.ComeData();
  return SommaSezione(LeggiSaldiAnno(*cn, dal, *avar_AData.ComeData(), ProgressiviNellAnno(UltimoScarico(cn), dal)),
                      "1");
}

Importo clsCambioEsercizio::GetSaldoSituazionePatrimoniale(const Valore& avar_DaData, const Valore& avar_AData) {
  const Data dal = *avar_DaData.ComeData();
  return SommaSezione(LeggiSaldiAnno(*cn, dal, *avar_AData.ComeData(), ProgressiviNellAnno(UltimoScarico(cn), dal)),
                      "0");
}

bool clsCambioEsercizio::CambioEsercizioVorn(const ArgomentiCambioEsercizio& a, clsPrimaNota& pn,
                                             EsitoCambioEsercizio* esito) {
  // A refusal is told once the transaction is over: nobody is asked while a lock is held.
  std::string motivo;
  auto rifiuta = [&](const std::string& testo) {
    motivo = testo;
    return false;
  };
  auto rifiutato = [&] {
    Host().MsgBox(motivo, vbExclamation, kTitolo);
    return false;
  };
  // A refusal before the transaction is told at once.
  auto ferma = [&](const std::string& testo) {
    rifiuta(testo);
    return rifiutato();
  };
  auto progresso = [&](const std::string& testo) {
    if (a.frm_FormAttiva) a.frm_FormAttiva->msgbar(testo);
  };
  for (const Valore* d : {&a.avar_DaData, &a.avar_AData, &a.avar_DataRegistrazioneChiusura,
                          &a.avar_DataCompetenzaChiusura, &a.avar_DataRegistrazioneApertura,
                          &a.avar_DataCompetenzaApertura})
    if (!d->IsDate()) return ferma("Date del cambio esercizio mancanti o non corrette. Impossibile continuare");
  const Data dal = *a.avar_DaData.ComeData(), al = *a.avar_AData.ComeData();
  const Data competenzaChiusura = *a.avar_DataCompetenzaChiusura.ComeData();
  const Data competenzaApertura = *a.avar_DataCompetenzaApertura.ComeData();
  if (dal > al)
    return ferma("La data iniziale dell'esercizio è successiva a quella finale. Impossibile continuare");
  if (competenzaChiusura < dal || competenzaChiusura > al)
    return ferma("La data di competenza della chiusura deve cadere nell'esercizio dal " + dal.Testo() + " al " +
                 al.Testo() + ". Impossibile continuare");
  if (competenzaApertura <= al)
    return ferma("La data di competenza dell'apertura deve seguire la fine dell'esercizio (" + al.Testo() +
                 "). Impossibile continuare");

  pn.cn = cn;
  const std::string contoPP = TrimTesto(a.avar_SottocontoProfittiPerdite),
                    contoRisultato = TrimTesto(a.avar_SottocontoUtilePerdita),
                    contoChiusura = TrimTesto(a.avar_SottocontoBilancioChiusura),
                    contoApertura = TrimTesto(a.avar_SottocontoBilancioApertura);
  const std::string causaleChiusura = TrimTesto(a.avar_CausaleBilancioChiusura),
                    causaleApertura = TrimTesto(a.avar_CausaleBilancioApertura);

  bool risultato = false;
  EsitoCambioEsercizio e;
  // The run's unit: a refusal inside it returns false, and the unit is undone.
  [&]() -> bool {
    Atomico unita(*cn);
    // The first entry number is taken at once: its counter row is held until the end, so that
    // two year changes (or a poster) on one database run one after the other, and the check
    // below sees what a run before this one committed.
    int32_t numeroPronto = pn.GetNumeroNuovaRegistrazionePrimaNota();
    auto numero = [&] {
      int32_t n = numeroPronto ? numeroPronto : pn.GetNumeroNuovaRegistrazionePrimaNota();
      numeroPronto = 0;
      return n;
    };

    // A year whose end the journal has already been unloaded past has lost rows after it too.
    const std::optional<Data> scarico = UltimoScarico(cn);
    if (scarico && *scarico > al)
      return rifiuta("La prima nota è stata scaricata fino al " + scarico->Testo() +
                     ", oltre la fine dell'esercizio. Impossibile continuare");
    SaldiAnno saldi = LeggiSaldiAnno(*cn, dal, al, ProgressiviNellAnno(scarico, dal));
    // The references: sub-accounts in the chart, of the section their part needs, and causals.
    struct Rif {
      const std::string& conto;
      const char* nome;
      const char* sezione;
    };
    for (const Rif& r : {Rif{contoPP, "Profitti e Perdite", "2"}, Rif{contoChiusura, "Bilancio Chiusura", "2"},
                         Rif{contoApertura, "Bilancio Apertura", "2"}, Rif{contoRisultato, "Risultato di esercizio", "0"}}) {
      if (r.conto.size() != 7 ||
          !pn.ExistSottoconto(Valore(r.conto.substr(0, 2)), Valore(r.conto.substr(2, 2)), Valore(r.conto.substr(4))))
        return rifiuta(std::string("Sottoconto '") + r.nome + "' mancante o inesistente nel piano dei conti (" +
                       r.conto + "). Impossibile continuare");
      if (saldi.Sezione(r.conto) != r.sezione)
        return rifiuta(std::string("Il sottoconto '") + r.nome + "' (" + r.conto + ") non è " +
                       (r.sezione[0] == '2' ? "un conto di riepilogo" : "un conto patrimoniale") +
                       ". Impossibile continuare");
    }
    std::string operativita[2];
    for (int i = 0; i < 2; ++i) {
      const std::string& c = i == 0 ? causaleChiusura : causaleApertura;
      Valore tr, tc, op, oc, oi, q;
      if (c.empty() || !pn.GetParametriCausaleMovimentazione(Valore(c), tr, tc, op, oc, oi, q))
        return rifiuta(std::string("Causale di ") + (i == 0 ? "chiusura" : "apertura") +
                       " bilancio mancante o inesistente (" + c + "). Impossibile continuare");
      operativita[i] = TrimTesto(oc);
    }
    // The opening entry must feed the new year's opening balances.
    if (operativita[1] != "1")
      return rifiuta("La causale di apertura bilancio (" + causaleApertura +
                     ") non movimenta i saldi iniziali (operatività contabile diversa da 1). Impossibile continuare");
    for (auto& [k, s] : saldi.saldi)
      if (!s.Zero() && saldi.Sezione(std::get<0>(k)).empty())
        return rifiuta("Il sottoconto " + std::get<0>(k) +
                       " ha un saldo nell'esercizio ma il suo gruppo non ha sezione di bilancio. Impossibile "
                       "continuare");

    // A year is changed when the journal has a row of the closing causal with its competence in
    // the year, or a row of the opening causal with the new year's opening competence date: that
    // is what the run writes, in the same transaction, so the mark and the entries never part
    // (the company's opening date alone could be set by hand). Either refuses a second run.
    {
      const std::string sql =
          "SELECT MIN([NumeroRegistrazione]) FROM [Prima Nota] WHERE ([CodiceCausale] = ? AND [DataCompetenza] "
          "BETWEEN ? AND ?) OR ([CodiceCausale] = ? AND [DataCompetenza] = ?)";
      Valore gia = cn->Scalare(sql, {Valore(causaleChiusura), Valore(dal), Valore(al), Valore(causaleApertura),
                                     Valore(competenzaApertura)});
      if (!gia.IsNull() && !TrimTesto(gia).empty())
        return rifiuta("Il cambio esercizio dal " + dal.Testo() + " al " + al.Testo() +
                       " risulta già eseguito (registrazione n. " + TrimTesto(gia) +
                       "). Il cambio esercizio non viene ripetuto");
    }
    if (saldi.DellaSezione("0").empty() && saldi.DellaSezione("1").empty())
      return rifiuta("Nessun saldo da chiudere nell'esercizio dal " + dal.Testo() + " al " + al.Testo() +
                     ". Impossibile continuare");

    const bool recuperabili = pn.UnitaRecuperabili;
    pn.UnitaRecuperabili = false;  // the run is one unit: a failed row fails it whole
    struct Ripristina {
      clsPrimaNota& p;
      bool v;
      ~Ripristina() { p.UnitaRecuperabili = v; }
    } ripristina{pn, recuperabili};

    progresso("Generazione tabella 'Tmp tabella movimenti prima nota' per calcolo saldi alla data di cambio esercizio");
    // One entry of the run, closing (on the closing date and causal) or opening: its number
    // and rows go to the outcome.
    auto registra = [&](bool apertura, int32_t& numeroEsito, const std::function<void(Registrazione&)>& righe) {
      Registrazione reg(pn, a, operativita[apertura ? 1 : 0], numero(),
                        apertura ? a.avar_DataRegistrazioneApertura : a.avar_DataRegistrazioneChiusura,
                        apertura ? a.avar_DataCompetenzaApertura : a.avar_DataCompetenzaChiusura,
                        Valore(apertura ? causaleApertura : causaleChiusura),
                        apertura ? a.var_DescrizioneSupplem_Apertura : a.var_DescrizioneSupplem_Chiusura);
      righe(reg);
      numeroEsito = reg.Numero();
      e.righe += reg.Righe();
    };

    progresso("Chiusura s/conti 'Conto Economico' girandoli a 'Profitti e Perdite' (Conto di Riepilogo)");
    std::vector<SaldoAnno> economici = saldi.DellaSezione("1");
    Importo economico;  // costs less revenues
    for (auto& s : economici) economico += s.saldo;
    if (!economici.empty())
      registra(false, e.registrazioneChiusuraEconomici,
               [&](Registrazione& reg) { GiraSaldi(reg, economici, contoPP, true); });

    progresso(" Giroconto 'Profitti e Perdite' a 'Risultato di esercizio' (Stato Patrimoniale)");
    // Profits and losses now hold the year's costs on debit and revenues on credit: a profit
    // (costs below revenues) is a credit balance, which goes to the result on credit.
    e.risultato = -economico;
    if (!economico.Zero()) {
      const bool utile = economico < Importo();
      const Importo importo = utile ? -economico : economico;
      registra(false, e.registrazioneRisultato, [&](Registrazione& reg) {
        reg.Riga(contoPP, "", "", utile ? "D" : "A", importo);
        reg.Riga(contoRisultato, "", "", utile ? "A" : "D", importo);
      });
      saldi.saldi[{contoRisultato, "", ""}] += economico;  // the result account, as now posted
    }

    progresso(" Chiusura s/conti Patrimoniali girandoli a 'Bilancio Chiusura' (Conto di Riepilogo)");
    std::vector<SaldoAnno> patrimoniali = saldi.DellaSezione("0");
    if (!patrimoniali.empty()) {
      registra(false, e.registrazioneChiusuraPatrimoniali,
               [&](Registrazione& reg) { GiraSaldi(reg, patrimoniali, contoChiusura, true); });
      progresso(" Apertura saldi dei s/conti Patrimoniali nel nuovo esercizio");
      registra(true, e.registrazioneApertura,
               [&](Registrazione& reg) { GiraSaldi(reg, patrimoniali, contoApertura, false); });
    }

    progresso("Aggiornata la data di apertura di bilancio");
    clsProgAzienda progressivi;
    progressivi.cn = cn;
    progressivi.AggiornaDataAperturaBilancio(Valore(competenzaApertura), a.clientID, a.hWnd);
    unita.Conferma();
    risultato = true;
    return true;
  }();
  progresso("");
  if (!motivo.empty()) return rifiutato();
  if (esito) *esito = e;
  return risultato;
}

}  // namespace vorn
