#include "ledger/clsStampaPrimaNota.h"

#include <array>
#include <fstream>
#include <memory>
#include <set>

#include "company/StampaLibri.h"
#include "company/clsAnagraficaAzienda.h"
#include "frame/Comuni.h"
#include "frame/FileVorn.h"
#include "frame/Formato.h"
#include "frame/Impaginazione.h"
#include "ledger/clsSaldiContabili.h"

namespace vorn {

using namespace stampa_libri;

const char* const clsStampaPrimaNota::kTitolo = "Stampa prima nota";
const char* const clsStampaPrimaNota::kNonQuadrano = "** Non quadrano i totali **";
const char* const clsStampaPrimaNota::kIntestazione =
    "Causale               Descr. Contabile         Imponibile CI  RI   %IND           DARE  AVERE   Conto   Cl/Fr  "
    "Descrizione Conto   ";

namespace {

constexpr const char* kSegnato =
    "CASE WHEN [Prima Nota].[DareAvere] = 'A' THEN -[Prima Nota].[ImportoMovimento] "
    "ELSE [Prima Nota].[ImportoMovimento] END";

// The entry-level part of the selection (registration dates and entry numbers), on `t`.
std::string FiltroRegistrazioni(const SelezionePrimaNota& s, const std::string& t, Parametri& p) {
  std::string da = TrimTesto(s.avar_DaRegistrazione), a = TrimTesto(s.avar_ARegistrazione);
  std::string w = t + ".[NumeroRegistrazione] BETWEEN ? AND ?";
  p.push_back(Valore(da.empty() ? "00001" : da));
  p.push_back(Valore(a.empty() ? "99999" : a));
  if (auto d = DataCorretta(s.avar_DaData)) {
    w += " AND " + t + ".[DataRegistrazione] >= ?";
    p.push_back(Valore(*d));
  }
  if (auto d = DataCorretta(s.avar_AData)) {
    w += " AND " + t + ".[DataRegistrazione] <= ?";
    p.push_back(Valore(*d));
  }
  return w;
}

std::string DataTesto(const Valore& v) {
  auto d = v.ComeData();
  return d ? d->Testo() : std::string();
}
std::string Numero(const Valore& v) { return NullToZeroLng(v) != 0 ? TrimTesto(v) : std::string(); }

}  // namespace

Importo clsStampaPrimaNota::GetSaldoRegistrazione(const Valore& numeroRegistrazione) {
  return NullToZeroCy(cn->Scalare(std::string("SELECT SUM(") + kSegnato +
                                      ") FROM [Prima Nota] WHERE [Prima Nota].[NumeroRegistrazione] = ?",
                                  {Valore(TrimTesto(numeroRegistrazione))}));
}

bool clsStampaPrimaNota::ThereIsSottocontoInReg(const Valore& numeroRegistrazione, const Valore& avar_Sottoconto,
                                                const Valore& avar_IndCliFor, const Valore& avar_CliFor) {
  Parametri p{Valore(TrimTesto(numeroRegistrazione)), Valore(TrimTesto(avar_Sottoconto))};
  std::string sql = "SELECT 1 FROM [Prima Nota] WHERE [NumeroRegistrazione] = ? AND [ContoPrimaNota] = ?";
  if (!TrimTesto(avar_IndCliFor).empty()) {
    sql += " AND [IndClienteFornitore] = ?";
    p.push_back(Valore(TrimTesto(avar_IndCliFor)));
  }
  if (!TrimTesto(avar_CliFor).empty()) {
    sql += " AND [CodClienteFornitore] = ?";
    p.push_back(Valore(TrimTesto(avar_CliFor)));
  }
  return !cn->Execute(sql + " LIMIT 1", p).Eof();
}

bool clsStampaPrimaNota::ThereIsCodIvaInReg(const Valore& numeroRegistrazione, const Valore& avar_CodIva) {
  return !cn->Execute("SELECT 1 FROM [Prima Nota] WHERE [NumeroRegistrazione] = ? AND [CodiceIva] = ? LIMIT 1",
                      {Valore(TrimTesto(numeroRegistrazione)), Valore(TrimTesto(avar_CodIva))})
              .Eof();
}

bool clsStampaPrimaNota::Scorri(
    const ArgomentiStampaPrimaNota& a,
    const std::function<void(const std::vector<RigaStampaPrimaNota>&, bool quadra)>& registrazione) {
  esito_ = EsitoStampaPrimaNota{};
  const SelezionePrimaNota& s = a.selezione;

  // The entries that do not balance, over all their rows.
  std::set<std::string> nonQuadrate;
  {
    Parametri p;
    std::string w = FiltroRegistrazioni(s, "[Prima Nota]", p);
    for (auto rs = cn->Execute(std::string("SELECT [Prima Nota].[NumeroRegistrazione] FROM [Prima Nota] WHERE ") + w +
                                   " GROUP BY [Prima Nota].[NumeroRegistrazione] HAVING SUM(" + kSegnato + ") <> 0",
                               p);
         !rs.Eof(); rs.MoveNext())
      nonQuadrate.insert(TrimTesto(rs(0).Value()));
  }

  Parametri p;
  std::string sql =
      "SELECT [Prima Nota].[NumeroRegistrazione], [Prima Nota].[DataRegistrazione], [Prima Nota].[DataCompetenza], "
      "[Prima Nota].[DataDocumento], [Prima Nota].[NumeroDocumento], [Prima Nota].[SerieDocumento], "
      "[Prima Nota].[NumeroDiProtocollo], [Prima Nota].[DataCompetenzaIVA], [Prima Nota].[CodiceCausale], "
      "[Causali Contabili].[DescrizioneCausale], [Prima Nota].[DescrizioneSupplem], [Prima Nota].[Imponibile], "
      "[Prima Nota].[CodiceIva], [Prima Nota].[NumRegistroIva], [Codici Iva].[Percentuale indetraibilità], "
      "[Prima Nota].[DareAvere], [Prima Nota].[ImportoMovimento], [Prima Nota].[ContoPrimaNota], "
      "[Prima Nota].[IndClienteFornitore], [Prima Nota].[CodClienteFornitore], [Piano Dei Conti].[Descrizione], "
      "CASE WHEN [Prima Nota].[IndClienteFornitore] = 'F' THEN [Anagrafica Fornitori].[Ragione Sociale] "
      "ELSE [Anagrafica Clienti].[Ragione Sociale] END AS Ragione_Sociale "
      "FROM [Prima Nota] "
      "LEFT JOIN [Piano Dei Conti] ON [Piano Dei Conti].[Gruppo] = substr([Prima Nota].[ContoPrimaNota], 1, 2) "
      "AND [Piano Dei Conti].[Conto] = substr([Prima Nota].[ContoPrimaNota], 3, 2) "
      "AND [Piano Dei Conti].[Sottoconto] = substr([Prima Nota].[ContoPrimaNota], 5, 3) "
      "LEFT JOIN [Causali Contabili] ON [Causali Contabili].[CodiceCausale] = [Prima Nota].[CodiceCausale] "
      "LEFT JOIN [Codici Iva] ON [Codici Iva].[Codice Iva] = [Prima Nota].[CodiceIva] "
      "LEFT JOIN [Anagrafica Clienti] ON [Anagrafica Clienti].[Codice Cliente] = [Prima Nota].[CodClienteFornitore] "
      "AND [Prima Nota].[IndClienteFornitore] = 'C' "
      "LEFT JOIN [Anagrafica Fornitori] ON [Anagrafica Fornitori].[Codice Cliente] = "
      "[Prima Nota].[CodClienteFornitore] AND [Prima Nota].[IndClienteFornitore] = 'F' WHERE " +
      FiltroRegistrazioni(s, "[Prima Nota]", p);
  if (!TrimTesto(s.avar_Causale).empty()) {
    sql += " AND [Prima Nota].[CodiceCausale] = ?";
    p.push_back(Valore(TrimTesto(s.avar_Causale)));
  }
  if (!TrimTesto(s.avar_CodValuta).empty()) {
    sql += " AND [Prima Nota].[Valuta] = ?";
    p.push_back(Valore(TrimTesto(s.avar_CodValuta)));
  }
  // Entries kept whole when one of their rows matches.
  if (!TrimTesto(s.avar_Sottoconto).empty()) {
    sql += " AND [Prima Nota].[NumeroRegistrazione] IN (SELECT [y].[NumeroRegistrazione] FROM [Prima Nota] [y] "
           "WHERE [y].[ContoPrimaNota] = ?";
    p.push_back(Valore(TrimTesto(s.avar_Sottoconto)));
    if (!TrimTesto(s.avar_IndCliFor).empty()) {
      sql += " AND [y].[IndClienteFornitore] = ?";
      p.push_back(Valore(TrimTesto(s.avar_IndCliFor)));
    }
    if (!TrimTesto(s.avar_CliFor).empty()) {
      sql += " AND [y].[CodClienteFornitore] = ?";
      p.push_back(Valore(TrimTesto(s.avar_CliFor)));
    }
    sql += ")";
  }
  if (!TrimTesto(s.avar_CodIva).empty()) {
    sql += " AND [Prima Nota].[NumeroRegistrazione] IN (SELECT [z].[NumeroRegistrazione] FROM [Prima Nota] [z] "
           "WHERE [z].[CodiceIva] = ?)";
    p.push_back(Valore(TrimTesto(s.avar_CodIva)));
  }
  sql += " ORDER BY [Prima Nota].[DataRegistrazione], [Prima Nota].[NumeroRegistrazione], "
         "COALESCE([Prima Nota].[TipoRigaIvaNormale], ''), COALESCE([Prima Nota].[NumRigaAVideo], ''), "
         "COALESCE([Prima Nota].[DareAvere], '')";

  std::vector<RigaStampaPrimaNota> righe;
  auto chiudi = [&] {
    if (righe.empty()) return;
    const bool quadra = !nonQuadrate.count(righe.front().NumeroRegistrazione);
    if (!s.avar_SoloErrate || !quadra) {
      if (a.frm_FormAttiva) a.frm_FormAttiva->msgbar("Stampa registrazione numero " + righe.front().NumeroRegistrazione);
      ++esito_.registrazioni;
      if (!quadra) ++esito_.nonQuadrate;
      for (const auto& r : righe) {
        ++esito_.righe;
        esito_.dare += r.Dare;
        esito_.avere += r.Avere;
      }
      registrazione(righe, quadra);
    }
    righe.clear();
  };
  cn->Scorri(sql, p, [&](const std::vector<Colonna>&, const std::vector<Valore>& v) {
    RigaStampaPrimaNota r;
    r.NumeroRegistrazione = TrimTesto(v[0]);
    if (!righe.empty() && righe.front().NumeroRegistrazione != r.NumeroRegistrazione) chiudi();
    r.DataRegistrazione = v[1];
    r.DataCompetenza = v[2];
    r.DataDocumento = v[3];
    r.NumeroDocumento = v[4];
    r.SerieDocumento = v[5];
    r.NumeroDiProtocollo = v[6];
    r.DataCompetenzaIVA = v[7];
    r.CodiceCausale = TrimTesto(v[8]);
    r.DescrizioneCausale = TrimTesto(v[9]);
    r.DescrizioneSupplem = SinistraTesto(TrimTesto(v[10]), 20);
    r.Imponibile = NullToZeroCy(v[11]);
    r.CodiceIVA = TrimTesto(v[12]);
    r.NumRegistroIVA = TrimTesto(v[13]);
    r.PercIndetraibile = v[14];
    const Importo importo = NullToZeroCy(v[16]);
    if (TrimTesto(v[15]) == "A") r.Avere = importo;
    else r.Dare = importo;
    r.ContoPrimaNota = TrimTesto(v[17]);
    r.IndClienteFornitore = TrimTesto(v[18]);
    r.CodClienteFornitore = TrimTesto(v[19]);
    r.DescrizioneConto = r.CodClienteFornitore.empty() ? TrimTesto(v[20]) : TrimTesto(v[21]);
    righe.push_back(std::move(r));
    return true;
  });
  chiudi();
  if (a.frm_FormAttiva) a.frm_FormAttiva->msgbar("");
  if (esito_.registrazioni == 0) {
    Host().MsgBox("Nessun dato da stampare.", vbInformation, kTitolo);
    return false;
  }
  return true;
}

bool clsStampaPrimaNota::MakeStampaPrimaNota(const ArgomentiStampaPrimaNota& a) {
  std::vector<std::pair<RigaStampaPrimaNota, bool>> tutte;
  Atomico unita(*cn);
  cn->Esegui("DELETE FROM [Elaborazione stampa prima nota] WHERE [ClientName] = ?", {Valore(a.clientName)});
  const bool dati = Scorri(a, [&](const std::vector<RigaStampaPrimaNota>& righe, bool quadra) {
    for (const auto& r : righe) tutte.emplace_back(r, quadra);
  });
  long progressivo = 0;
  for (const auto& [r, quadra] : tutte) {
    auto data = [](const Valore& v) { return v.ComeData() ? Valore(*v.ComeData()) : Valore(Nullo{}); };
    auto intero = [](const Valore& v) { return v.IsNull() || TrimTesto(v).empty() ? Valore(Nullo{}) : Valore(NullToZeroLng(v)); };
    cn->EseguiInCoda(
        "INSERT INTO [Elaborazione stampa prima nota] ([ClientName], [Progressivo], [NumeroRegistrazione], "
        "[DataRegistrazione], [DataCompetenza], [DataDocumento], [NumeroDocumento], [SerieDocumento], "
        "[NumeroDiProtocollo], [DataCompetenzaIVA], [CodiceCausale], [DescrizioneCausale], [DescrizioneSupplem], "
        "[Imponibile], [CodiceIVA], [NumRegistroIVA], [PercIndetraibile], [Dare], [Avere], [ContoPrimaNota], "
        "[CodClientefornitore], [StringaDescrizione], [NoteQuadratura]) "
        "VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?)",
        {Valore(a.clientName), Valore(++progressivo), Valore(r.NumeroRegistrazione), data(r.DataRegistrazione),
         data(r.DataCompetenza), data(r.DataDocumento), intero(r.NumeroDocumento), Valore(TrimTesto(r.SerieDocumento)),
         intero(r.NumeroDiProtocollo), data(r.DataCompetenzaIVA), Valore(r.CodiceCausale), Valore(r.DescrizioneCausale),
         Valore(r.DescrizioneSupplem), Valore(r.Imponibile), Valore(r.CodiceIVA), Valore(r.NumRegistroIVA),
         r.PercIndetraibile.IsNull() ? Valore(Nullo{}) : Valore(NullToZeroDbl(r.PercIndetraibile)), Valore(r.Dare),
         Valore(r.Avere), Valore(r.ContoPrimaNota), Valore(r.CodClienteFornitore), Valore(r.DescrizioneConto),
         Valore(quadra ? "" : kNonQuadrano)});
  }
  unita.Conferma();
  return dati;
}

bool clsStampaPrimaNota::StampaPrimaNotaTesto(const ArgomentiStampaPrimaNota& a) {
  VerificaUscitaStampa(a.nomeFile);
  FileLavoro lavoro({"StamPrim.tmp"});
  const std::string corpo = lavoro[0];
  std::ofstream out(corpo, std::ios::binary | std::ios::trunc);
  if (!out) throw ErroreStampa("Impossibile scrivere il file " + corpo);
  const bool dati = Scorri(a, [&](const std::vector<RigaStampaPrimaNota>& righe, bool quadra) {
    const RigaStampaPrimaNota& t = righe.front();
    Scrivi(out,
           "*N.Reg.: " + t.NumeroRegistrazione + " Data Reg.: " + DataTesto(t.DataRegistrazione) +
               " Data Comp.: " + DataTesto(t.DataCompetenza) + " Data doc.: " + DataTesto(t.DataDocumento) +
               " N.Doc.: " + Numero(t.NumeroDocumento) + " Prot.: " + Numero(t.NumeroDiProtocollo) +
               " Comp.IVA: " + DataTesto(t.DataCompetenzaIVA) + "*",
           corpo);
    for (const auto& r : righe) {
      // The columns of the heading: the credit stands seven columns right of the debit.
      std::string s;
      Accoda(s, r.CodiceCausale + " " + r.DescrizioneCausale, 21);
      s += " ";
      Accoda(s, r.DescrizioneSupplem, 20);
      Accoda(s, r.Imponibile.Zero() ? "" : Cifra(r.Imponibile), 15, true);
      s += " ";
      Accoda(s, r.CodiceIVA, 3);
      s += " ";
      Accoda(s, r.CodiceIVA.empty() ? std::string() : r.NumRegistroIVA, 3);
      const double perc = r.PercIndetraibile.IsNull() ? 0 : NullToZeroDbl(r.PercIndetraibile);
      Accoda(s, perc != 0 ? Format(Valore(perc), "##0.00") : "", 7, true);
      if (!r.Dare.Zero()) {
        Accoda(s, Cifra(r.Dare), 15, true);
        s += std::string(7, ' ');
      } else {
        s += std::string(7, ' ');
        Accoda(s, r.Avere.Zero() ? "" : Cifra(r.Avere), 15, true);
      }
      s += " ";
      Accoda(s, r.ContoPrimaNota, 7);
      s += "  ";
      Accoda(s, r.CodClienteFornitore, 6);
      s += "  ";
      Accoda(s, r.DescrizioneConto, 19);
      while (!s.empty() && s.back() == ' ') s.pop_back();
      Scrivi(out, s, corpo);
    }
    if (!quadra) Scrivi(out, std::string(40, '*') + " Non quadrano i totali", corpo);
    Scrivi(out, "", corpo);
  });
  if (!dati) return false;
  Scrivi(out, std::string(kColonneReport, '-'), corpo);
  Scrivi(out, "                     T O T A L I   G E N E R A L I    Avere               " + Dx(Cifra(esito_.avere), 15),
         corpo);
  Scrivi(out, "                                                      Dare         " + Dx(Cifra(esito_.dare), 15), corpo);
  out.close();
  if (!out) throw ErroreStampa("Impossibile scrivere il file " + corpo);

  std::unique_ptr<clsAnagraficaAzienda> propria;
  clsAnagraficaAzienda* anagrafica = Usa(a.objAnagraficaAzienda, propria, cn);
  std::string ragione, indEs, capEs, locEs, provEs, indDom, capDom, locDom, provDom, cf, piva;
  anagrafica->GetDatiFiscaliAzienda(ragione, indEs, capEs, locEs, provEs, indDom, capDom, locDom, provDom, cf, piva);
  const std::string data = (a.DataStampa ? *a.DataStampa : Data::Oggi()).Testo();
  const std::string uguale(kColonneReport, '=');
  std::array<std::string, 7> testata = {
      uguale,
      Largo("===                                         S T A M P A   P R I M A   N O T A                      Data: " +
                data,
            kColonneReport - 14) +
          "Pag:     1 ===",
      "DITTA : " + Trim(ragione) + " - " + Trim(locDom) + " P.IVA : " + Trim(piva),
      uguale,
      kIntestazione,
      std::string(kColonneReport, '-'),
      ""};
  std::array<std::string, 2> piede = {
      "", "****************** STAMPA ELABORATA PRESSO : " + a.AzRagSoc + " P. IVA: " + a.AzParIva +
              "  ************************"};
  RigaPagina("", Valore(0));
  FileStampa stampa(a.nomeFile);
  ImpaginaFile(corpo, stampa.Flusso(), a.avar_RighePagina, testata, piede, false, 2);
  stampa.Chiudi();
  return true;
}

}  // namespace vorn
