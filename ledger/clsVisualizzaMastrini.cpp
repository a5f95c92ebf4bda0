#include "ledger/clsVisualizzaMastrini.h"

#include "company/clsProgAzienda.h"
#include "frame/Comuni.h"
#include "ledger/MovimentiMastrino.h"
#include "ledger/clsSaldiContabili.h"

namespace vorn {

namespace {

std::string Unisci(const std::vector<std::string>& celle) {
  std::string s;
  for (size_t i = 0; i < celle.size(); ++i) {
    if (i) s += '|';
    s += celle[i];
  }
  return s;
}

std::string Breve(const Valore& data) { return DataBreve(data).TestoTrim(); }

// "123/A", "123", "/A" or empty text.
std::string NumeroSerie(const Valore& numero, const Valore& serie) {
  std::string n = NullToZeroLng(numero) != 0 ? TrimTesto(numero) : std::string();
  std::string s = TrimTesto(serie);
  if (s.empty()) return n;
  return n + "/" + s;
}

std::string Partner(const Valore& ind, const Valore& cod, const Valore& nome) {
  std::string i = TrimTesto(ind), c = TrimTesto(cod);
  if (i.empty() && c.empty()) return "";
  std::string s = i + " " + c;
  std::string n = TrimTesto(nome);
  if (!n.empty()) s += " " + n;
  return s;
}

// A balance with its side: "1.234,00 D".
std::string SaldoConSegno(Importo saldo) {
  std::string s = FormattaImporto(Valore(ImportoAssoluto(saldo)));
  std::string segno = LatoDareAvere(saldo);
  return segno.empty() ? s : s + " " + segno;
}

}  // namespace

const std::vector<std::string>& clsVisualizzaMastrini::Intestazioni() {
  static const std::vector<std::string> v = {
      "Data comp.", "Data reg.", "N. reg.",   "Causale",       "Descrizione",    "Data doc.",
      "Documento",  "Prot.",     "Dare",      "Avere",         "Saldo progr.",   "Valuta",
      "Importo in valuta",       "Cambio",    "Cliente/Fornitore", "Tipo riga",  "Riga",
      "D/A"};
  return v;
}

void clsVisualizzaMastrini::ImpostaGriglia(IGrigliaMastrino& g) {
  g.Clear();
  g.Cols(NumeroColonne, Intestazioni());
}

bool clsVisualizzaMastrini::VisualizzaMastrini(IFormMastrino& frm_FormAttiva, clsSaldiContabili& objSaldiContabili,
                                               clsProgAzienda& objProgAzienda, const Valore& avar_DaData,
                                               const Valore& avar_AData, const Valore& avar_Sottoconto,
                                               const Valore& avar_IndCliFor, const Valore& avar_CodCliFor,
                                               bool abool_SottocontoCassa) {
  Interrompi = false;
  const Valore UltimoScarico = objProgAzienda.GetDataUltimoScaricoPrimaNota();
  IGrigliaMastrino& g = frm_FormAttiva.vsMovimenti();
  SchedaMastrino scheda = SchedaDa(avar_Sottoconto, avar_IndCliFor, avar_CodCliFor);
  PeriodoMastrino periodo = PeriodoDa(avar_DaData, avar_AData, UltimoScarico);

  Importo totaleDare, totaleAvere;
  ImpostaGriglia(g);

  AperturaMastrino apertura = AperturaDa(objSaldiContabili, UltimoScarico, periodo, scheda);
  Importo saldo = apertura.Saldo();
  if (!saldo.Zero()) {
    std::vector<std::string> c(NumeroColonne);
    c[colCausale] = "Saldo ultimo scarico ";
    c[saldo > Importo() ? colDare : colAvere] = FormattaImporto(Valore(ImportoAssoluto(saldo)));
    c[colSaldo] = SaldoConSegno(saldo);
    g.AddItem(Unisci(c));
    int r = g.Rows() - 1;
    g.Cell(IGrigliaMastrino::ColoreSfondo, r, 0, r, NumeroColonne - 1, kColoreRiepilogo);
  }

  bool interrotto = false;
  long contatore = 0;
  ScorriRigheMastrino(*cn, scheda, periodo, [&](const RigaMastrino& r) {
    if (r.Dare()) {
      saldo += r.ImportoMovimento;
      totaleDare += r.ImportoMovimento;
    } else if (r.Avere()) {
      saldo -= r.ImportoMovimento;
      totaleAvere += r.ImportoMovimento;
    }
    std::vector<std::string> c(NumeroColonne);
    c[colDataCompetenza] = Breve(r.DataCompetenza);
    c[colDataRegistrazione] = Breve(r.DataRegistrazione);
    c[colNumeroRegistrazione] = TrimTesto(r.NumeroRegistrazione);
    c[colCausale] = TrimTesto(r.DescrizioneCausale);
    c[colDescrizione] = TrimTesto(r.DescrizioneSupplem);
    c[colDataDocumento] = Breve(r.DataDocumento);
    c[colDocumento] = NumeroSerie(r.NumeroDocumento, r.SerieDocumento);
    c[colProtocollo] = NullToZeroLng(r.NumeroDiProtocollo) != 0 ? TrimTesto(r.NumeroDiProtocollo) : "";
    if (r.Dare()) c[colDare] = FormattaImporto(Valore(r.ImportoMovimento));
    else if (r.Avere()) c[colAvere] = FormattaImporto(Valore(r.ImportoMovimento));
    c[colSaldo] = SaldoConSegno(saldo);
    std::string valuta = TrimTesto(r.Valuta);
    if (!valuta.empty() && !NullToZeroCy(r.ImportoInValuta).Zero()) {
      c[colValuta] = TrimTesto(r.SimboloValuta);
      c[colImportoValuta] = Format(r.ImportoInValuta, MascheraValuta(r));
      c[colCambio] = Format(r.Cambio, "###,##0.00000");
    }
    c[colCliFor] = Partner(r.IndClienteFornitore, r.CodClienteFornitore, r.RagioneSociale);
    c[colTipoRiga] = TrimTesto(r.TipoRigaIvaNormale);
    c[colRigaVideo] = TrimTesto(r.NumRigaAVideo);
    c[colDareAvere] = TrimTesto(r.DareAvere);
    g.AddItem(Unisci(c));
    // A cash account must not go below zero: its line shows it.
    if (abool_SottocontoCassa && saldo < Importo()) {
      int riga = g.Rows() - 1;
      g.Cell(IGrigliaMastrino::ColoreTesto, riga, 0, riga, NumeroColonne - 1, kColoreCassaNegativa);
    }
    if (++contatore % kRigheAggiornamento == 0) {
      g.Refresh();
      if (Interrompi || g.Interrotto()) {
        interrotto = true;
        return false;
      }
    }
    return true;
  });
  g.Refresh();
  if (interrotto) return false;

  // Today's balance and that of the last unload, for the panel.
  Valore da("");
  Valore oggi(Data::Oggi());
  Importo ip, dp, ap, iper, dper, aper;
  Importo saldoAttuale, saldoScarico;
  if (scheda.CliFor()) {
    saldoAttuale = objSaldiContabili.GetSaldiADataCliFor(UltimoScarico, da, oggi, Valore(scheda.sottoconto),
                                                        Valore(scheda.ind), Valore(scheda.cod), ip, dp, ap, iper,
                                                        dper, aper);
    saldoScarico = objSaldiContabili.GetSaldoUltimoScaricoCliFor(Valore(scheda.sottoconto), Valore(scheda.ind),
                                                                 Valore(scheda.cod));
  } else {
    saldoAttuale = objSaldiContabili.GetSaldiADataSottoconto(UltimoScarico, da, oggi, Valore(scheda.sottoconto), ip,
                                                            dp, ap, iper, dper, aper);
    saldoScarico = objSaldiContabili.GetSaldoUltimoScaricoSottoconto(Valore(scheda.sottoconto));
  }
  Aggiorna_Specchietto_Saldi(frm_FormAttiva, totaleDare, totaleAvere, saldo, saldoAttuale, saldoScarico);
  return true;
}

int clsVisualizzaMastrini::InserisciContropartiteRegistrazione(IFormMastrino& frm_FormAttiva, int avar_RigaGriglia,
                                                               const Valore& avar_NumeroRegistrazione,
                                                               const Valore& avar_TipoRivaIvaNormale,
                                                               const Valore& avar_NumRigaAVideo,
                                                               const Valore& avar_DareAvere) {
  IGrigliaMastrino& g = frm_FormAttiva.vsMovimenti();
  const char* tipo = "COALESCE([Prima Nota].[TipoRigaIvaNormale], '')";
  Parametri p{Valore(TrimTesto(avar_NumeroRegistrazione))};
  std::string condizione;
  if (TrimTesto(avar_TipoRivaIvaNormale) == "I") {
    condizione = std::string("(") + tipo + " <> 'I' OR (" + tipo + " = 'I' AND [Prima Nota].[NumRigaAVideo] <> ?))";
    p.push_back(Valore(TrimTesto(avar_NumRigaAVideo)));
  } else {
    condizione = std::string("(") + tipo + " = 'I' OR (" + tipo +
                 " <> 'I' AND ([Prima Nota].[NumRigaAVideo] <> ? OR [Prima Nota].[DareAvere] <> ?)))";
    p.push_back(Valore(TrimTesto(avar_NumRigaAVideo)));
    p.push_back(Valore(TrimTesto(avar_DareAvere)));
  }
  std::string sql =
      "SELECT [Prima Nota].[NumeroRegistrazione], [Prima Nota].[TipoRigaIvaNormale], [Prima Nota].[NumRigaAVideo], "
      "[Prima Nota].[ContoPrimaNota], "
      "(SELECT [Descrizione sottoconti].[Descrizione] FROM [Descrizione sottoconti] "
      "WHERE [Descrizione sottoconti].[Sottoconto] = [Prima Nota].[ContoPrimaNota] LIMIT 1) AS Descrizione, "
      "[Prima Nota].[IndClienteFornitore], [Prima Nota].[CodClienteFornitore], [Prima Nota].[DareAvere], "
      "[Prima Nota].[ImportoMovimento], "
      "CASE WHEN [Prima Nota].[IndClienteFornitore] = 'F' THEN [Anagrafica Fornitori].[Ragione Sociale] "
      "ELSE [Anagrafica Clienti].[Ragione Sociale] END AS Ragione_Sociale "
      "FROM [Prima Nota] "
      "LEFT JOIN [Anagrafica Clienti] ON [Anagrafica Clienti].[Codice Cliente] = [Prima Nota].[CodClienteFornitore] "
      "AND [Prima Nota].[IndClienteFornitore] = 'C' "
      "LEFT JOIN [Anagrafica Fornitori] ON [Anagrafica Fornitori].[Codice Cliente] = [Prima Nota].[CodClienteFornitore] "
      "AND [Prima Nota].[IndClienteFornitore] = 'F' "
      "WHERE [Prima Nota].[NumeroRegistrazione] = ? AND " +
      condizione +
      " ORDER BY COALESCE([Prima Nota].[TipoRigaIvaNormale], ''), [Prima Nota].[NumRigaAVideo], "
      "[Prima Nota].[DareAvere]";
  auto rs = cn->Execute(sql, p);
  int n = 0;
  for (; !rs.Eof(); rs.MoveNext()) {
    std::vector<std::string> c(NumeroColonne);
    c[colNumeroRegistrazione] = TrimTesto(rs("NumeroRegistrazione").Value());
    c[colCausale] = FormattaConto(rs("ContoPrimaNota").Value());
    c[colDescrizione] = TrimTesto(rs("Descrizione").Value());
    std::string da = TrimTesto(rs("DareAvere").Value());
    Valore importo(NullToZeroCy(rs("ImportoMovimento").Value()));
    if (da == "D") c[colDare] = FormattaImporto(importo);
    else if (da == "A") c[colAvere] = FormattaImporto(importo);
    c[colCliFor] = Partner(rs("IndClienteFornitore").Value(), rs("CodClienteFornitore").Value(),
                           rs("Ragione_Sociale").Value());
    c[colTipoRiga] = TrimTesto(rs("TipoRigaIvaNormale").Value());
    c[colRigaVideo] = TrimTesto(rs("NumRigaAVideo").Value());
    c[colDareAvere] = da;
    g.AddItem(Unisci(c), avar_RigaGriglia + 1 + n);
    ++n;
  }
  g.Refresh();
  return n;
}

SpecchiettoSaldi clsVisualizzaMastrini::Aggiorna_Specchietto_Saldi(IFormMastrino& frm_FormAttiva, Importo TotaleDare,
                                                                   Importo TotaleAvere, Importo SaldoProgressivo,
                                                                   Importo SaldoAttuale, Importo SaldoUltimoScarico) {
  SpecchiettoSaldi s;
  s.txtTotaleDare = FormattaImporto(Valore(TotaleDare));
  s.txtTotaleAvere = FormattaImporto(Valore(TotaleAvere));
  s.txtSaldo = FormattaImporto(Valore(ImportoAssoluto(SaldoProgressivo)));
  s.txtSaldoDA = LatoDareAvere(SaldoProgressivo);
  Importo selezione = TotaleDare - TotaleAvere;
  s.txtSaldoSelezione = FormattaImporto(Valore(ImportoAssoluto(selezione)));
  s.txtSaldoSelezioneDA = LatoDareAvere(selezione);
  s.txtSaldoAttuale = FormattaImporto(Valore(ImportoAssoluto(SaldoAttuale)));
  s.txtSaldoAttualeDA = LatoDareAvere(SaldoAttuale);
  s.txtSaldoUltimoScarico = FormattaImporto(Valore(ImportoAssoluto(SaldoUltimoScarico)));
  s.txtSaldoUltimoScaricoDA = LatoDareAvere(SaldoUltimoScarico);
  frm_FormAttiva.Specchietto(s);
  return s;
}

}  // namespace vorn
