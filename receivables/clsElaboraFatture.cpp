#include "receivables/clsElaboraFatture.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <deque>
#include <fstream>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "company/clsTabRiferimenti.h"
#include "frame/Comuni.h"
#include "frame/Formato.h"
#include "frame/Globali.h"
#include "frame/Int128.h"
#include "ledger/clsCausaliContabili.h"
#include "ledger/clsPrimaNota.h"
#include "masterdata/clsClientiFornitori.h"
#include "masterdata/clsCodiciIva.h"
#include "receivables/clsSaldaconto.h"
#include "receivables/clsScadenze.h"

namespace vorn {

namespace {

constexpr const char* kTitolo = "Elaborazione fatture";

std::string T(const Valore& v) { return TrimTesto(v); }

// A percentage as the documents keep it (single precision) to four decimals: 12.5 -> 12,5000.
Importo Percentuale(const Valore& v) { return Importo::DaDouble(static_cast<double>(NullToZeroSng(v))); }

// - p/100 as a fraction over 1,000,000 (p in ten-thousandths of a percent).
int64_t FattoreSconto(Importo p) { return 1000000 - p.Raw(); }

// a x (1 - s1/100) x (1 - s2/100) x (1 - s3/100), worked out exactly and rounded once.
Importo Scontato(Importo a, Importo s1, Importo s2, Importo s3, int decimali) {
  Int128 n = static_cast<Int128>(a.Raw()) * FattoreSconto(s1) * FattoreSconto(s2) * FattoreSconto(s3);
  Int128 d = static_cast<Int128>(1000000) * 1000000 * 1000000;
  return ArrotondaRapporto(n, d, decimali);
}

// a x aliquota / 100, rounded once.
Importo Imposta(Importo a, Importo aliquota, int decimali) {
  return ArrotondaRapporto(static_cast<Int128>(a.Raw()) * aliquota.Raw(), static_cast<Int128>(Importo::kScala) * 100,
                           decimali);
}

// An exchange rate as a fraction over 1,000,000 (rates keep up to six decimals); 0 reads 1.
int64_t CambioMilionesimi(double cambio) {
  int64_t c = std::llround(cambio * 1000000.0);
  return c == 0 ? 1000000 : c;
}

// A VAT code as the table keeps it: a number as "000" (0 and nothing: a free row), any other
// code as it is.
std::string CodiceIva(const std::string& testo) {
  std::string c = Trim(testo);
  if (c.empty()) return c;
  if (NormalizzaNumero(c)) {
    long n = std::lround(Val(c));
    return n == 0 ? std::string() : Format(Valore(n), "000");
  }
  return c;
}

// A gift's code brought back to its base: the last two digits of a numeric code ("822" -> "022").
std::string CodiceBase(const std::string& codice) {
  if (codice.size() != 3 || !NormalizzaNumero(codice)) return codice;
  return "0" + codice.substr(1);
}

// A document refused by a check: rolled back, told, skipped.
struct Rifiuto {
  std::string testo;
};
// A document found posted by another run, met on the way to a refusal.
struct GiaElaborata {};
// A line of a document as the posting reads it.
struct RigaDocumento {
  std::string contropartita;
  Importo importo;
  bool scorporo = false;
  Importo aliquota;
};

}  // namespace

// ---------------------------------------------------------------- VAT table

TabellaIvaDocumento TabellaIvaDocumento::DaTesto(const std::string& testo) {
  TabellaIvaDocumento t;
  auto campo = [&](size_t pos) -> std::string {
    if (pos >= testo.size()) return {};
    return Trim(testo.substr(pos, 14));
  };
  for (int i = 1; i <= 5; ++i) {
    size_t base = static_cast<size_t>(i - 1) * 42;
    std::string codice = campo(base), imponibile = campo(base + 14), aliquota = campo(base + 28);
    // Each field is read as a number; a numeric code is kept formatted "000".
    t[i].codice = CodiceIva(codice);
    t[i].imponibile = ValImporto(imponibile);
    t[i].aliquota = ValImporto(aliquota);
  }
  return t;
}

bool RiferimentiElaboraFatture(clsTabRiferimenti& r, ArgomentiElaboraFatture& a) {
  Valore CodiceIvaSpeseIncasso, CodiceIvaArt15, CausEmissioneEffetti, CausPresentazioneEffetti, SottTratte,
      SottRicevuteBancarie, SottAvvisi, SottRID, SottocontoFornitori, SottocontoBanca;
  return r.GetRiferimentiElaborazioneFatture(
      a.avar_CausaleIncassi, a.avar_CausaleFatture, a.avar_CausaleNoteCredito, a.avar_RicaviStandard,
      a.avar_RicaviAccessori, a.avar_IvaVendite, a.avar_IvaCorrispettiviScorporo, a.avar_IvaSospensione,
      a.avar_IvaEsigDiff, a.avar_SottocontoCassa, CodiceIvaSpeseIncasso, CodiceIvaArt15, a.avar_CausaleOmaggi,
      a.avar_SottocontoImponibileOmaggi, a.avar_SottocontoIvaOmaggi, CausEmissioneEffetti, CausPresentazioneEffetti,
      SottTratte, SottRicevuteBancarie, SottAvvisi, SottRID, a.avar_ClientiStandard, SottocontoFornitori,
      SottocontoBanca, a.avar_SottIVASplitPaymentVend, a.avar_CausaleSplitPayment, a.avar_TipoContabRicAcc,
      a.avar_SottRicaviAccessori2, a.avar_SottRicaviSpeseIncasso, a.avar_SottRicaviSpeseTrasporto,
      a.avar_SottRicaviBolli, a.avar_CausaleRitenuteSubite, a.avar_SottocontoRitenuteSubite, a.avar_CausaleAbbuoni,
      a.avar_SottocontoAbbuoni);
}

// ---------------------------------------------------------------- journal rows

bool clsElaboraFatture::ScriviRecordPrimaNota(
    clsPrimaNota& objPrimaNota, clsCausaliContabili& objCausaliContabili, int32_t NumeroRegistrazioneTmp,
    const Valore& DataRegistrazioneTmp, const std::string& TipoRigaIvaNormaleTmp, int32_t NumRigaAVideoTmp,
    const std::string& DareAvereTmp, const Valore& SottocontoTmp, const Valore& IndClienteFornitoreTmp,
    const Valore& CodClienteFornitoreTmp, const Valore& DataCompetenzaTmp, const Valore& CodiceCausaleTmp,
    const Valore& DescrizioneSupplementareTmp, Importo ImportoMovimentoTmp, Importo imponibileTmp,
    const Valore& CodiceIvaTmp, const Valore& IndicatoreCliFor_IvaTmp, const Valore& CodiceCliFor_IvaTmp,
    const Valore& TipoRegistroIvaTmp, const Valore& NumRegistroIvaTmp, const Valore& DataDocumentoTmp,
    const Valore& SerieDocumentoTmp, const Valore& NumeroDocumentoTmp, Importo TotaleDocumentoTmp,
    const Valore& ValutaTmp, double CambioTmp, const Valore& KeyScadenzeTmp, const Valore& NumeroDiProtocolloTmp,
    const Valore& numeroDocumentoEstesoTmp, const Valore& DataCompetenzaIvaTmp, const Valore& clientID, long hWnd) {
  // The company's currency: the amount divided by the exchange rate, rounded once to the
  // company's decimals. The currency amounts: rounded to the currency's decimals.
  const int64_t cambio = CambioMilionesimi(CambioTmp);
  const int decConto = G().DecimaliImporti;
  const int decValuta = DecimaliValutaDocumento(T(ValutaTmp));
  auto inConto = [&](Importo x) {
    return ArrotondaRapporto(static_cast<Int128>(x.Raw()) * 1000000, static_cast<Int128>(cambio), decConto);
  };
  auto inValuta = [&](Importo x) { return x.Arrotonda(decValuta); };

  std::string data = DataInTesto(DataRegistrazioneTmp).Testo();
  Valore competenza = DataInTesto(DataCompetenzaTmp);
  RigaPrimaNota r;
  r["DataRegistrazione"] = Valore(data);
  r["NumeroRegistrazione"] = Valore(Format(Valore(NumeroRegistrazioneTmp), "00000"));
  r["TipoRigaIvaNormale"] = Valore(TipoRigaIvaNormaleTmp);
  r["NumRigaAVideo"] = Valore(Format(Valore(NumRigaAVideoTmp), "000"));
  r["DareAvere"] = Valore(DareAvereTmp);
  r["ContoPrimaNota"] = SottocontoTmp;
  r["IndClienteFornitore"] = IndClienteFornitoreTmp;
  r["CodClienteFornitore"] = CodClienteFornitoreTmp;
  r["DataCompetenza"] = competenza;
  r["DataDelCambio"] = competenza;
  r["TipoRegistroIva"] = TipoRegistroIvaTmp;
  r["NumRegistroIva"] = NumRegistroIvaTmp;
  r["NumeroDiProtocollo"] = NumeroDiProtocolloTmp;
  r["DataDocumento"] = DataDocumentoTmp;
  r["SerieDocumento"] = SerieDocumentoTmp;
  r["NumeroDocumento"] = NumeroDocumentoTmp;
  r["CodiceCausale"] = CodiceCausaleTmp;
  r["DescrizioneSupplem"] = DescrizioneSupplementareTmp;
  r["ImportoMovimento"] = Valore(inConto(ImportoMovimentoTmp));
  r["Imponibile"] = Valore(inConto(imponibileTmp));
  r["TotaleDocumento"] = Valore(inConto(TotaleDocumentoTmp));
  r["ImportoInValuta"] = Valore(inValuta(ImportoMovimentoTmp));
  r["ImponibileValuta"] = Valore(inValuta(imponibileTmp));
  r["TotaleDocumentoVal"] = Valore(inValuta(TotaleDocumentoTmp));
  r["CodiceIva"] = CodiceIvaTmp;
  r["IndicatoreCliFor"] = IndicatoreCliFor_IvaTmp;
  r["CodiceCliFor"] = CodiceCliFor_IvaTmp;
  r["Valuta"] = ValutaTmp;
  r["Cambio"] = Valore(CambioTmp);
  r["KeyScadenze"] = KeyScadenzeTmp;
  r["NumeroDocumentoEsteso"] = numeroDocumentoEstesoTmp;
  std::string operativita;
  if (cache_) {
    auto it = cache_->operativita.find(T(CodiceCausaleTmp));
    if (it == cache_->operativita.end())
      it = cache_->operativita
               .emplace(T(CodiceCausaleTmp), objCausaliContabili.GetOperativitàCausaleContabile(CodiceCausaleTmp))
               .first;
    operativita = it->second;
  } else {
    operativita = objCausaliContabili.GetOperativitàCausaleContabile(CodiceCausaleTmp);
  }
  r["Stringa10indicatori"] = Valore(std::string(7, ' ') + operativita + "  ");
  r["DataCompetenzaIVA"] = DataCompetenzaIvaTmp.IsDate() ? DataInTesto(DataCompetenzaIvaTmp) : competenza;
  for (const char* vuoto : {"ContropIvaIndeduc", "RegIvaCorrMonteAcq", "NoteRegistrazione", "TrasfMirk", "TrasfVorn",
                            "TrasfPelvo", "TrasfZQ"})
    r[vuoto] = Valore("");
  r["RigaLibroGiornale"] = Valore(0);
  r["KeyZQ"] = Valore(0);
  r["IndSpesometro"] = Valore(0);
  return objPrimaNota.SalvaRiga(std::move(r), clientID, hWnd);
}

// ---------------------------------------------------------------- VAT table

bool clsElaboraFatture::CompletaTabellaIva(clsTabRiferimenti& objTabRiferimenti, clsCodiciIva& objCodiciIVA,
                                           TabellaIvaDocumento& t, double ScontoCliente1, double ScontoCliente2,
                                           double ScontoPagamento, Importo SpeseIncasso, Importo SpeseTrasporto,
                                           Importo SpeseAccessorie, Importo TotaleRighe, Importo Bolli, int decimali) {
  const Importo s1 = Importo::DaDouble(static_cast<double>(static_cast<float>(ScontoCliente1)));
  const Importo s2 = Importo::DaDouble(static_cast<double>(static_cast<float>(ScontoCliente2)));
  const Importo sp = Importo::DaDouble(static_cast<double>(static_cast<float>(ScontoPagamento)));
  // The discounts one upon the other, each taxable amount worked out exactly and rounded once.
  for (int i = 1; i <= 5; ++i) {
    t[i].nettoSconti = Scontato(t[i].imponibile, s1, s2, Importo(), decimali);
    t[i].netto = Scontato(t[i].imponibile, s1, s2, sp, decimali);
  }
  // Collection expenses with a VAT code of their own stay apart.
  auto aliquotaDi = [&](const std::string& codice) -> std::optional<Importo> {
    if (codice.empty()) return std::nullopt;
    return NullToZeroCy(objCodiciIVA.GetAliquotaIva(Valore(codice)));
  };
  Cache letti;
  Cache& k = cache_ ? *cache_ : letti;
  if (!k.codiciLetti) {
    k.codiceIncasso = objTabRiferimenti.GetCodiceIvaSpeseIncasso();
    k.codiceArt15 = objTabRiferimenti.GetCodiceIvaEsclusoArt15();
    k.aliqIncasso = aliquotaDi(k.codiceIncasso);
    k.aliqArt15 = aliquotaDi(k.codiceArt15);
    k.codiciLetti = true;
  }
  const std::string codiceIncasso = k.codiceIncasso, codiceArt15 = k.codiceArt15;
  Importo F = codiceIncasso.empty() ? Importo() : SpeseIncasso;
  // The expenses to apportion by the rows' discounted taxable amounts.
  Importo E = SpeseTrasporto + SpeseAccessorie + (codiceIncasso.empty() ? SpeseIncasso : Importo());
  auto quota = [&](Importo netto) {
    if (TotaleRighe.Zero()) return Importo();
    return ArrotondaRapporto(static_cast<Int128>(netto.Raw()) * E.Raw(), static_cast<Int128>(TotaleRighe.Raw()),
                             decimali);
  };
  const std::optional<Importo> aliqIncasso = k.aliqIncasso, aliqArt15 = k.aliqArt15;
  // By rate. A row without a code takes no expense of its own: it would carry it out of the
  // VAT rows.
  bool Fcollocate = false, bolliCollocati = false;
  for (int i = 1; i <= 5; ++i) {
    Importo q = quota(t[i].netto);
    if (!t[i].codice.empty() && aliqIncasso && t[i].aliquota == *aliqIncasso) {
      t[i].spese = F + q;
      Fcollocate = true;
    } else if (!t[i].codice.empty() && aliqArt15 && t[i].aliquota == *aliqArt15) {
      t[i].spese = Bolli + q;
      bolliCollocati = true;
    } else {
      t[i].spese = q;
    }
  }
  // The VAT of each row, rounded once.
  for (int i = 1; i <= 5; ++i) t[i].iva = Imposta(t[i].netto + t[i].spese, t[i].aliquota, decimali);
  // What was not placed takes the first free row.
  bool ok = true;
  auto colloca = [&](Importo importo, const std::string& codice) {
    for (int i = 1; i <= 5; ++i) {
      if (!t[i].codice.empty()) continue;
      t[i].codice = CodiceIva(codice);
      t[i].spese = importo;
      t[i].imponibile = Importo();
      t[i].nettoSconti = Importo();
      t[i].netto = Importo();
      t[i].aliquota = NullToZeroCy(objCodiciIVA.GetAliquotaIva(Valore(codice)));
      t[i].iva = Imposta(t[i].spese + t[i].imponibile, t[i].aliquota, decimali);
      return;
    }
    Host().MsgBox("Impossibile gestire piu' di 5 codici iva.", vbExclamation, "Calcolo totali documento ");
    ok = false;
  };
  if (!F.Zero() && !Fcollocate) colloca(F, codiceIncasso);
  if (!Bolli.Zero() && !bolliCollocati) colloca(Bolli, codiceArt15);
  return ok;
}

void clsElaboraFatture::CompilaTabellaIvaRiepilogata(const std::string& codice, Importo aliquota, Importo ImponibileNettoSconti,
                                                     Importo imposta, Importo SpeseRipartite) {
  auto& t = TabellaIvaRiepilogata;
  for (int i = 1; i <= 5; ++i) {
    if (t[i].codice.empty()) {
      t[i].codice = codice;
      t[i].spese = SpeseRipartite;
      t[i].aliquota = aliquota;
      t[i].iva = imposta;
      t[i].netto = ImponibileNettoSconti;
      return;
    }
    if (t[i].codice == codice) {
      t[i].spese += SpeseRipartite;
      t[i].iva += imposta;
      t[i].netto += ImponibileNettoSconti;
      return;
    }
  }
}

// ---------------------------------------------------------------- stamps

namespace {
// One document of [Fatture] by its key, in a form the key's index answers: a series of Null
// finds Null, an empty or blank one finds '' and Null (unless `esatta`: the series as stored),
// any other its text as given.
std::string FiltroFattura(Parametri& p, const Valore& NumeroDocumento, const Valore& SerieDocumento,
                          bool esatta = false) {
  p.push_back(Valore(static_cast<long long>(NullToZeroLng(NumeroDocumento))));
  if (SerieDocumento.IsNull()) return "[Fatture].[Serie] IS NULL AND [Fatture].[Numero] = ?";
  std::string serie = SerieDocumento.IsEmpty() ? std::string() : SerieDocumento.Testo();
  if (Trim(serie).empty() && !esatta) {
    p.push_back(p.back());
    return "(([Fatture].[Serie] = '' AND [Fatture].[Numero] = ?) OR ([Fatture].[Serie] IS NULL AND "
           "[Fatture].[Numero] = ?))";
  }
  p.push_back(Valore(serie));
  return "[Fatture].[Numero] = ? AND [Fatture].[Serie] = ?";
}
}  // namespace

bool clsElaboraFatture::Aggiorna_Campo_Fattura_Elaborata(const Valore&, const Valore& NumeroDocumento,
                                                         const Valore& SerieDocumento, bool Stato) {
  Parametri p{Valore(Stato)};
  cn->Esegui("UPDATE [Fatture] SET [Elaborata] = ? WHERE " + FiltroFattura(p, NumeroDocumento, SerieDocumento), p);
  return true;
}

bool clsElaboraFatture::Aggiorna_Campo_Generato_Scadenze(const Valore&, const Valore& NumeroDocumento,
                                                         const Valore& SerieDocumento, bool Stato) {
  Parametri p{Valore(Stato ? "1" : " ")};
  cn->Esegui("UPDATE [Fatture] SET [Stampata] = ? WHERE " + FiltroFattura(p, NumeroDocumento, SerieDocumento), p);
  return true;
}

bool clsElaboraFatture::Aggiorna_Campo_Effetto_Contabilizzato(const Valore& Numero_progressivo, bool Stato) {
  cn->Esegui("UPDATE [Scadenziario] SET [Contabilizzato] = ? WHERE [Numero Progressivo] = ?",
             {Valore(Stato), Valore(static_cast<long long>(NullToZeroLng(Numero_progressivo)))});
  return true;
}

bool clsElaboraFatture::Aggiorna_Campo_Distinta_Contabilizzata(const Valore& Numero_Distinta, bool Stato,
                                                               const Valore& numeroRegistrazione,
                                                               const Valore& DataRegistrazione) {
  cn->Esegui("UPDATE [Distinte] SET [Contabilizzata] = ?, [NumeroRegistrazione] = ?, [DataRegistrazione] = ? "
             "WHERE [Numero Distinta] = ?",
             {Valore(Stato), Valore(numeroRegistrazione.Testo()),
              DataRegistrazione.IsDate() ? DataInTesto(DataRegistrazione) : Valore::Null(),
              Valore(static_cast<long long>(NullToZeroLng(Numero_Distinta)))});
  return true;
}

bool clsElaboraFatture::LocalizzaTuttiRecordFatture(Recordset& T_) {
  T_ = cn->Execute("SELECT * FROM [Fatture] ORDER BY [Numero], [Serie]");
  return !T_.Eof();
}

bool clsElaboraFatture::PresentiFattureNonStampate(const Valore& avar_DaData, const Valore& avar_AData,
                                                   const std::string& nomeFile) {
  Recordset rs = cn->Execute(
      "SELECT [Numero], [Serie], [Data] FROM [Fatture] WHERE [Data] BETWEEN ? AND ? "
      "AND ([Stampata] <> '1' OR [Stampata] IS NULL) AND ([Elaborata] = ? OR [Elaborata] IS NULL) "
      "AND COALESCE([Tipo fattura], 0) NOT IN (8, 9, 10, 11) ORDER BY [Numero], [Serie]",
      {DataIngresso(avar_DaData), DataIngresso(avar_AData), Valore(false)});
  if (rs.Eof()) return false;
  std::ofstream f(nomeFile, std::ios::binary | std::ios::trunc);
  if (!f) throw std::runtime_error("Impossibile scrivere il file " + nomeFile);
  f << "Le seguenti fatture risultano ancora non stampate \n";
  f << "e quindi non contabilizzabili.                    \n";
  f << std::string(50, '-') << "\n";
  for (; !rs.Eof(); rs.MoveNext()) {
    Valore d = rs("Data").Value();
    f << "Fattura n. " << T(rs("Numero").Value()) << AggiungiBarra(T(rs("Serie").Value())) << " del "
      << (d.IsDate() ? d.ComeData()->Formato("dd.mm.yyyy") : std::string("00.00.0000")) << "\n";
  }
  f << std::string(50, '-') << "\n";
  return true;
}

// ---------------------------------------------------------------- instalments

namespace {
void FiltroDocumento(std::string& w, Parametri& p, const Valore& tipo, const Valore& Codice_Cliente,
                     const Valore& DataDocumento, const Valore& Serie, const Valore& NumeroDocumento) {
  w = "[Tipo] = ? AND [Codice Cliente] = ? AND [Data Documento] = ? AND TRIM(COALESCE([Serie], '')) = ? "
      "AND [Numero Documento] = ?";
  p = {Valore(T(tipo)), Valore(T(Codice_Cliente)), DataIngresso(DataDocumento), Valore(T(Serie)),
       Valore(static_cast<long long>(NullToZeroLng(NumeroDocumento)))};
}

// The registration stamped on the document's first instalment, found and written in one
// statement.
std::pair<std::string, Parametri> RegistrazioneInScadenza(const Valore& tipo, const Valore& Codice_Cliente,
                                                          const Valore& DataDocumento, const Valore& Serie,
                                                          const Valore& NumeroDocumento, int32_t numeroRegistrazione,
                                                          const Valore& DataRegistrazione) {
  std::string w;
  Parametri p;
  FiltroDocumento(w, p, tipo, Codice_Cliente, DataDocumento, Serie, NumeroDocumento);
  Parametri pu{Valore(Format(Valore(numeroRegistrazione), "00000")), DataInTesto(DataRegistrazione)};
  pu.insert(pu.end(), p.begin(), p.end());
  return {"UPDATE [Scadenziario] SET [numeroRegistrazione] = ?, [DataRegistrazione] = ? "
          "WHERE [Numero Progressivo] = (SELECT MIN([Numero Progressivo]) FROM [Scadenziario] WHERE " +
              w + ")",
          std::move(pu)};
}
}  // namespace

bool clsElaboraFatture::UpdateDatiRegistrazioneInScadenza(const Valore& tipo, const Valore& Codice_Cliente,
                                                          const Valore& DataDocumento, const Valore& Serie,
                                                          const Valore& NumeroDocumento, int32_t numeroRegistrazione,
                                                          const Valore& DataRegistrazione) {
  auto [sql, p] = RegistrazioneInScadenza(tipo, Codice_Cliente, DataDocumento, Serie, NumeroDocumento,
                                          numeroRegistrazione, DataRegistrazione);
  return cn->Esegui(sql, p) > 0;
}

int32_t clsElaboraFatture::GetNumeroScadenzaAcconto(const Valore& tipo, const Valore& Codice_Cliente,
                                                    const Valore& DataDocumento, const Valore& Serie,
                                                    const Valore& NumeroDocumento, const Valore& TipoEffetto,
                                                    Importo ImportoEffetto, const Valore& Note) {
  std::string w;
  Parametri p;
  FiltroDocumento(w, p, tipo, Codice_Cliente, DataDocumento, Serie, NumeroDocumento);
  w += " AND [Tipo di Effetto] = ? AND [Importo Scadenza] = ? AND [Note] = ?";
  p.push_back(Valore(T(TipoEffetto)));
  p.push_back(Valore(ImportoEffetto));
  p.push_back(Valore(T(Note)));
  Valore n = cn->Scalare("SELECT MIN([Numero Progressivo]) FROM [Scadenziario] WHERE " + w, p);
  return n.IsNull() ? 0 : NullToZeroLng(n);
}

// ---------------------------------------------------------------- allowance on an instalment

int32_t clsElaboraFatture::ContabilizzaAbbuono(
    IForm* objFormAttiva, clsPrimaNota& objPrimaNota, clsCausaliContabili& objCausaliContabili,
    clsClientiFornitori& objClientiFornitori, clsSaldaconto& objSaldaconto, clsScadenze& objScadenze,
    const Valore& avar_ClientiStandard, const Valore& avar_FornitoriStandard,
    const Valore& Numero_Progressivo_Scadenza_Partenza, Importo ImportoRegistrazione,
    const Valore& CodiceCausaleAbbuoni, const Valore& ContoPrimaNota_Abbuoni, const std::string& DareAvere_CliFor,
    const std::string& DareAvere_Abbuono, const Valore& clientID, long hWnd) {
  Recordset rs = cn->Execute("SELECT * FROM [Scadenziario] WHERE [Numero Progressivo] = ?",
                             {Valore(static_cast<long long>(NullToZeroLng(Numero_Progressivo_Scadenza_Partenza)))});
  if (rs.Eof()) return 0;
  std::string tipo = T(rs("Tipo").Value());
  std::string ind, conto, codice = T(rs("Codice Cliente").Value());
  if (tipo == "CL") {
    ind = "C";
    conto = T(objClientiFornitori.GetSottocontoCliFor(Valore("C"), Valore(codice)));
    if (conto.empty()) conto = T(avar_ClientiStandard);
  } else if (tipo == "FO") {
    ind = "F";
    conto = T(objClientiFornitori.GetSottocontoCliFor(Valore("F"), Valore(codice)));
    if (conto.empty()) conto = T(avar_FornitoriStandard);
  } else {
    codice.clear();
  }
  Valore dataScadenza = rs("Data Scadenza").Value();
  if (objFormAttiva)
    objFormAttiva->msgbar("Elaborazione abbuono relativo all'effetto N. " + T(Numero_Progressivo_Scadenza_Partenza) +
                          " con scadenza " + DataInTesto(dataScadenza).Testo());
  Valore numeroDoc = rs("Numero Documento").Value(), serie = rs("Serie").Value(),
         dataDoc = rs("Data Documento").Value(), valuta = rs("Codice valuta").Value();
  double cambio = rs("Cambio").Value().IsNull() ? 1.0 : NullToZeroDbl(rs("Cambio").Value());
  if (cambio == 0) cambio = 1.0;
  rs.Close();

  int32_t numero = 0;
  ConRiprova(*cn, [&] {
    Atomico unita(*cn);
    numero = objPrimaNota.GetNumeroNuovaRegistrazionePrimaNota();
    ScriviRecordPrimaNota(objPrimaNota, objCausaliContabili, numero, dataScadenza, "", 1, DareAvere_CliFor,
                          Valore(conto), Valore(ind), Valore(codice), dataScadenza, CodiceCausaleAbbuoni, Valore(""),
                          ImportoRegistrazione, Importo(), Valore(""), Valore(""), Valore(""), Valore("0"),
                          Valore("00"), dataDoc, serie, numeroDoc, Importo(), valuta, cambio,
                          Numero_Progressivo_Scadenza_Partenza, Valore(0), Valore(""), Valore(), clientID, hWnd);
    Importo chiuso = DareAvere_Abbuono == "A" ? -ImportoRegistrazione : ImportoRegistrazione;
    objSaldaconto.ChiudiScadenza(Numero_Progressivo_Scadenza_Partenza, Valore(chiuso), Valore(numero), dataScadenza,
                                 Valore("Abbuono"), true, &objScadenze, clientID, hWnd);
    objScadenze.RiallineaImportoPagatoScadenza(Numero_Progressivo_Scadenza_Partenza);
    ScriviRecordPrimaNota(objPrimaNota, objCausaliContabili, numero, dataScadenza, "", 2, DareAvere_Abbuono,
                          ContoPrimaNota_Abbuoni, Valore(""), Valore(""), dataScadenza, CodiceCausaleAbbuoni,
                          Valore(""), ImportoRegistrazione, Importo(), Valore(""), Valore(""), Valore(""), Valore("0"),
                          Valore("00"), dataDoc, serie, numeroDoc, Importo(), valuta, cambio, Valore(), Valore(0),
                          Valore(""), Valore(), clientID, hWnd);
    objPrimaNota.AggiornaProgressiviPrimaNota(Valore(Format(Valore(numero), "00000")), DataInTesto(dataScadenza),
                                              Valore("0"), Valore("00"), serie, numeroDoc, dataDoc, Valore(0), clientID,
                                              hWnd);
    unita.Conferma();
  });
  return numero;
}

// ---------------------------------------------------------------- the run

namespace {

// The run's collaborators: the caller's, or the run's own on the same connection.
struct Collaboratori {
  clsPrimaNota pn;
  clsCausaliContabili cau;
  clsClientiFornitori cli;
  clsSaldaconto sal;
  clsScadenze sca;
  clsTabRiferimenti rif;
  clsCodiciIva iva;
};

struct Messaggio {
  std::string testo, titolo;
  int stile;
  bool beep;
};

}  // namespace

int clsElaboraFatture::DecimaliValutaDocumento(const std::string& valuta) {
  const int conto = G().DecimaliImporti;
  if (valuta.empty() || valuta == G().ValutaDiConto) return conto;
  if (cache_) {
    auto it = cache_->decimaliValute.find(valuta);
    if (it != cache_->decimaliValute.end()) return it->second;
  }
  Valore d = cn->Scalare("SELECT [Numero decimali valuta] FROM [Valute] WHERE [Codice Valuta] = ?", {Valore(valuta)});
  const int decimali = d.IsNull() ? conto : static_cast<int>(NullToZeroLng(d));
  if (cache_) cache_->decimaliValute.emplace(valuta, decimali);
  return decimali;
}

bool clsElaboraFatture::EsisteContoCorsa(clsPrimaNota& pn, const std::string& conto) {
  auto it = cache_->conti.find(conto);
  if (it != cache_->conti.end()) return it->second;
  bool esiste = pn.ExistSottoconto(Valore(conto.substr(0, std::min<size_t>(2, conto.size()))),
                                   Valore(MedioTesto(conto, 3, 2)), Valore(MedioTesto(conto, 5, 3)));
  cache_->conti.emplace(conto, esiste);
  return esiste;
}

EsitoElaboraFatture clsElaboraFatture::ElaboraFatture(ArgomentiElaboraFatture& a) {
  EsitoElaboraFatture esito;
  Connessione& c = *cn;
  const std::shared_ptr<Connessione>& conn = cn;
  Collaboratori propri;
  propri.pn.cn = conn;
  // Each document commits or rolls back whole: its rows need no savepoint of their own (a
  // failed row fails the document's transaction). Inside the caller's transaction a document
  // is a savepoint level, and its rows keep theirs, so that a failed document does not spoil
  // the caller's work.
  propri.pn.UnitaRecuperabili = c.InTransazione();
  propri.cau.cn = conn;
  propri.cli.cn = conn;
  propri.sal.cn = conn;
  propri.sca.cn = conn;
  propri.rif.cn = conn;
  propri.iva.cn = conn;
  clsPrimaNota& pn = a.objPrimaNota ? *a.objPrimaNota : propri.pn;
  clsCausaliContabili& cau = a.objCausaliContabili ? *a.objCausaliContabili : propri.cau;
  clsClientiFornitori& cli = a.objClientiFornitori ? *a.objClientiFornitori : propri.cli;
  clsScadenze& sca = a.objScadenze ? *a.objScadenze : propri.sca;
  clsTabRiferimenti& rif = a.objTabRiferimenti ? *a.objTabRiferimenti : propri.rif;
  clsCodiciIva& civa = a.objCodiciIVA ? *a.objCodiciIVA : propri.iva;
  IForm* form = a.objFormAttiva;
  auto msgbar = [&](const std::string& s) {
    if (form) form->msgbar(s);
  };

  Valore daData = DataIngresso(a.avar_DaData, "dalla data"), aData = DataIngresso(a.avar_AData, "alla data");
  Valore dataContab = DataIngresso(a.avar_DataContabilizzazione, "data di contabilizzazione");

  // The documents of the range, printed, not posted, not of kinds 8 to 11.
  const std::string daElaborare =
      "[Fatture].[Data] BETWEEN ? AND ? AND ([Fatture].[Elaborata] = ? OR [Fatture].[Elaborata] IS NULL) AND "
      "[Fatture].[Stampata] = '1' AND COALESCE([Fatture].[Tipo fattura], 0) NOT IN (8, 9, 10, 11)";
  const Parametri pDaElaborare{daData, aData, Valore(false)};
  Recordset docs = c.Execute("SELECT * FROM [Fatture] WHERE " + daElaborare + " ORDER BY [Numero], [Serie]", pDaElaborare);
  if (docs.Eof()) {
    Host().MsgBox("Nessuna fattura da elaborare.", vbInformation, kTitolo);
    return esito;
  }
  // Their lines, read once as their heads were: by number and series (trimmed).
  std::map<std::pair<int64_t, std::string>, std::vector<RigaDocumento>> righeDocumenti;
  {
    Recordset righe = c.Execute(
        "SELECT [Movimenti Magazzino].[Numero], TRIM(COALESCE([Movimenti Magazzino].[Serie], '')), "
        "[Movimenti Magazzino].[Contropartita], [Movimenti Magazzino].[Importo], [Movimenti Magazzino].[Scorporo iva], "
        "[Codici Iva].[Aliquota] FROM [Movimenti Magazzino] LEFT JOIN [Codici Iva] ON [Movimenti Magazzino].[Codice Iva] "
        "= [Codici Iva].[Codice Iva] WHERE [Movimenti Magazzino].[Tipo documento] = 'F' AND [Movimenti Magazzino].[Numero] "
        "IN (SELECT [Fatture].[Numero] FROM [Fatture] WHERE " + daElaborare + ")",
        pDaElaborare);
    for (; !righe.Eof(); righe.MoveNext()) {
      const Valore numero = righe(0).Value();
      if (numero.tipo() != Valore::Tipo::Intero) continue;
      righeDocumenti[{numero.Int(), righe(1).Value().Testo()}].push_back(
          {T(righe(2).Value()), NullToZeroCy(righe(3).Value()), righe(4).Value().Vero(), NullToZeroCy(righe(5).Value())});
    }
  }

  // The run's cache, dropped however the run ends; the journal keeps what it reads of causals
  // and accounts for the run as well.
  cache_.emplace();
  struct FineCorsa {
    std::optional<Cache>& c;
    clsPrimaNota& pn;
    bool letture;
    ~FineCorsa() {
      c.reset();
      pn.LettureDiCorsa = letture;
    }
  } fineCorsa{cache_, pn, pn.LettureDiCorsa};
  pn.LettureDiCorsa = true;
  // The clients' accounts, read together before the first document, a few hundred at a time.
  {
    std::vector<std::string> codici;
    std::set<std::string> visti;
    for (; !docs.Eof(); docs.MoveNext()) {
      std::string codice = T(docs("Codice Cliente").Value());
      if (visti.insert(codice).second) codici.push_back(std::move(codice));
    }
    docs.MoveFirst();
    constexpr size_t kInsieme = 500;
    for (size_t da = 0; da < codici.size(); da += kInsieme) {
      std::vector<std::string> parte(codici.begin() + static_cast<std::ptrdiff_t>(da),
                                     codici.begin() + static_cast<std::ptrdiff_t>(std::min(codici.size(), da + kInsieme)));
      std::vector<Valore> conti = cli.GetSottocontiCliFor(Valore("C"), parte);
      for (size_t i = 0; i < parte.size(); ++i) cache_->contiClienti.emplace(parte[i], T(conti[i]));
    }
  }
  const std::string tipoContabRicAcc = T(a.avar_TipoContabRicAcc);

  // A document's commit goes without waiting for the server's answer, which comes back with the
  // next document's first round trip (on PostgreSQL; elsewhere at once): the document's
  // messages and its count wait for it. A document whose commit failed for a clash with another
  // writer is posted again, next; any other failure is told as the document's error.
  struct InAttesa {
    size_t posizione = 0;
    int tentativo = 1;
    std::string numSerie;
    std::vector<Messaggio> messaggi;
    long registrazioni = 0;
    bool arrivato = false;
    std::optional<ErroreDb> errore;
  };
  constexpr int kTentativi = 6;
  std::deque<std::shared_ptr<InAttesa>> inAttesa;
  std::deque<std::pair<size_t, int>> daFare;  // the documents' rows, with their attempt
  for (size_t i = 0; i < docs.RecordCount(); ++i) daFare.emplace_back(i, 1);
  auto segnalaErrore = [&](const std::string& numSerie, const std::string& testoErrore) {
    ++esito.Scartati;
    std::string testo = "Impossibile elaborare la fattura n. " + numSerie + ": " + testoErrore;
    esito.Errori.push_back(testo);
    Host().Beep();
    Host().MsgBox(testo, vbCritical, kTitolo);
  };
  auto chiudiArrivati = [&] {
    while (!inAttesa.empty() && inAttesa.front()->arrivato) {
      std::shared_ptr<InAttesa> d = std::move(inAttesa.front());
      inAttesa.pop_front();
      if (!d->errore) {
        for (const auto& m : d->messaggi) {
          if (m.beep) Host().Beep();
          Host().MsgBox(m.testo, m.stile, m.titolo);
        }
        ++esito.Documenti;
        esito.Registrazioni += d->registrazioni;
      } else if (ErroreDiConcorrenza(*d->errore) && d->tentativo < kTentativi && c.Aperta()) {
        daFare.emplace_front(d->posizione, d->tentativo + 1);
      } else {
        segnalaErrore(d->numSerie, d->errore->what());
      }
    }
  };
  // However the run ends, the last commit's answer is read before it returns.
  struct Atterraggio {
    Connessione& c;
    ~Atterraggio() {
      try {
        c.AttendiConferme();
      } catch (...) {
        // A connection that dropped: the document's outcome was told as an error.
      }
    }
  } atterraggio{c};

  for (;;) {
    if (daFare.empty()) {
      // The last commit's answer: a document to post again comes back to the list.
      try {
        c.AttendiConferme();
      } catch (const std::exception&) {
        // The connection dropped: the document waiting was told so, as its error.
      }
      chiudiArrivati();
      if (daFare.empty()) break;
    }
    const auto [posizione, tentativo] = daFare.front();
    daFare.pop_front();
    docs.Vai(posizione);
    auto campo = [&](const char* n) -> Valore { return docs(n).Value(); };
    const Valore numero = campo("Numero"), serie = Valore(T(campo("Serie"))), serieGrezza = campo("Serie"),
                 dataDoc = campo("Data");
    const std::string numSerie = T(numero) + AggiungiBarra(T(serie));
    std::vector<Messaggio> messaggi;  // shown once the document's commit has answered
    long registrazioni = 0;
    auto attesa = std::make_shared<InAttesa>();
    attesa->posizione = posizione;
    attesa->tentativo = tentativo;
    attesa->numSerie = numSerie;
    auto avvisa = [&](std::string testo, std::string titolo, int stile, bool beep) {
      messaggi.push_back({std::move(testo), std::move(titolo), stile, beep});
    };

    std::optional<Rifiuto> rifiuto;
    std::string errore;
    bool giaFatto = false;  // posted by another run meanwhile
    try {
      ConRiprova(c, [&] {
        messaggi.clear();
        registrazioni = 0;
        rifiuto.reset();
        giaFatto = false;
        Atomico unita(c, true);
        // The document is claimed first: a run that meets it already posted (by another run
        // since this one read the list) leaves it alone. On PostgreSQL the claim goes to the
        // server with the entry counter's lock, in the same round trip, and waits for the other
        // run's transaction and then finds the stamp; its count is known once the number is.
        const Valore numDoc = Valore(static_cast<long long>(NullToZeroLng(numero)));
        auto rivendicata = std::make_shared<int64_t>(-1);
        {
          Parametri p{Valore(true)};
          std::string w = FiltroFattura(p, numero, serieGrezza, true);
          p.push_back(Valore(false));
          c.EseguiInCoda("UPDATE [Fatture] SET [Elaborata] = ? WHERE " + w +
                             " AND ([Fatture].[Elaborata] = ? OR [Fatture].[Elaborata] IS NULL)",
                         p, rivendicata);
        }
        auto postataDaAltri = [&] {
          if (*rivendicata < 0) c.InviaCoda();
          return *rivendicata == 0;
        };
        if (*rivendicata == 0) {
          giaFatto = true;
          return;
        }
        // A document refused before its claim has answered: one that another run has posted is
        // left alone, as the claim would have found it.
        auto rifiuta = [&](std::string testo) {
          if (postataDaAltri()) throw GiaElaborata{};
          throw Rifiuto{std::move(testo)};
        };

        // The client's account.
        const std::string tipoCliFor = T(campo("Tipo cli/for"));
        const std::string codiceCliente = T(campo("Codice Cliente"));
        std::string contoCliente = cache_->contiClienti.at(codiceCliente);  // read before the first document
        if (contoCliente.empty()) {
          contoCliente = T(a.avar_ClientiStandard);
        } else if (!EsisteContoCorsa(pn, contoCliente)) {
          avvisa("Attenzione per il cliente con codice " + codiceCliente + " (utilizzato nella fattura numero " +
                     numSerie + ") è stato impostato il sottoconto " + contoCliente +
                     " non esistente nel piano dei conti.",
                 "ElaborazioneFatture", vbInformation, false);
        }
        // Sides and default causal.
        const bool notaCredito = UgualeNoCase(T(campo("Tipo documento")), "NOTA CREDITO");
        const std::string latoDoc = notaCredito ? "A" : "D", latoOpposto = notaCredito ? "D" : "A";
        std::string causale = T(notaCredito ? a.avar_CausaleNoteCredito : a.avar_CausaleFatture);
        // The document's causal and the VAT account.
        Valore contoIva = a.avar_IvaVendite;
        std::string tipoRegistro = "1", numRegistro = "01";
        const std::string causaleDoc = T(campo("Causale Contabile"));
        if (!causaleDoc.empty()) {
          const std::string testa = "Impossibile elaborare la fattura/nota credito n. " + numSerie;
          auto letta = cache_->causali.find(causaleDoc);
          if (letta == cache_->causali.end()) {
            Cache::Causale k;
            k.esiste = cau.ExistCausaleContabile(Valore(causaleDoc));
            if (k.esiste) {
              k.registro = cau.GetTipoRegistroIvaCausaleContabile(Valore(causaleDoc));
              k.tipo = cau.GetTipoCausale(Valore(causaleDoc));
              Valore proposto;
              cau.GetRegistroIVAProposto(Valore(causaleDoc), proposto);
              k.proposto = T(proposto);
            }
            letta = cache_->causali.emplace(causaleDoc, std::move(k)).first;
          }
          const Cache::Causale& letti = letta->second;
          if (!letti.esiste)
            rifiuta(testa + " la causale contabile indicata non è codificata su VornXP.");
          const std::string& reg = letti.registro;
          const std::string& tipoCau = letti.tipo;
          if (reg == "1")
            contoIva = (tipoCau == "7" || tipoCau == "8") ? a.avar_IvaEsigDiff : a.avar_IvaVendite;
          else if (reg == "3")
            contoIva = a.avar_IvaCorrispettiviScorporo;
          else if (reg == "5")
            contoIva = a.avar_IvaSospensione;
          else if (reg == "7")
            contoIva = a.avar_IvaEsigDiff;
          else
            rifiuta(testa + " la causale contabile indicata non è una causale IVA utilizzabile.");
          if (notaCredito && tipoCau != "1" && tipoCau != "8")
            rifiuta("Impossibile elaborare la nota credito n. " + numSerie +
                    " la causale contabile indicata non è allineata al tipo di documento.");
          if (!notaCredito && tipoCau != "0" && tipoCau != "7")
            rifiuta("Impossibile elaborare la fattura n. " + numSerie +
                    " la causale contabile indicata non è allineata al tipo di documento.");
          causale = causaleDoc;
          tipoRegistro = reg;
          numRegistro = letti.proposto;
          if (numRegistro.empty() || numRegistro == "0" || numRegistro == "00") numRegistro = "01";
        }
        // Progress and the dates.
        msgbar("Elaborazione fattura n. " + numSerie + " del " + DataInTesto(dataDoc).Testo());
        if (!dataDoc.IsDate())
          rifiuta("Impossibile elaborare la fattura n. " + numSerie + " data documento non indicata.");
        const Valore dataReg = DataInTesto(a.bool_ContabilizzaDataFattura ? dataDoc : dataContab);
        if (dataReg.IsNull())
          rifiuta("Impossibile elaborare la fattura n. " + numSerie + " data di contabilizzazione non indicata.");
        const Valore dataIva = campo("DataCompetenzaIVA");
        const Valore valuta = Valore(T(campo("Codice valuta")));
        double cambio = campo("Cambio").IsNull() ? 1.0 : NullToZeroDbl(campo("Cambio"));
        if (cambio == 0) cambio = 1.0;
        const Valore ragione = Valore(T(campo("Ragione Sociale")));
        const Importo totale = NullToZeroCy(campo("Totale Documento"));
        const int decimali = DecimaliValutaDocumento(T(valuta));

        // A row of this document's registrations.
        auto scrivi = [&](int32_t reg, const std::string& tipoRiga, int32_t riga, const std::string& lato,
                          const Valore& conto, const Valore& ind, const Valore& cod, const Valore& caus,
                          const Valore& descr, Importo importo, Importo imponibile, const Valore& codiceIva,
                          const Valore& indIva, const Valore& codIva, const Valore& tipoReg, const Valore& numReg,
                          Importo totaleDoc, const Valore& key, const Valore& protocollo) {
          ScriviRecordPrimaNota(pn, cau, reg, dataReg, tipoRiga, riga, lato, conto, ind, cod, dataReg, caus, descr,
                                importo, imponibile, codiceIva, indIva, codIva, tipoReg, numReg, dataDoc, serie, numDoc,
                                totaleDoc, valuta, cambio, key, protocollo, Valore(""), dataIva, a.clientID, a.hWnd);
        };
        auto esisteConto = [&](const std::string& conto) { return EsisteContoCorsa(pn, conto); };

        // The main registration; its register's counter is read with its number.
        pn.AnticipaProgressiviPrimaNota(Valore(tipoRegistro), Valore(numRegistro), serie);
        const int32_t nReg = pn.GetNumeroNuovaRegistrazionePrimaNota();
        if (postataDaAltri()) {
          giaFatto = true;  // the rollback gives the number back
          return;
        }
        ++registrazioni;
        const Valore vReg = Valore(Format(Valore(nReg), "00000"));
        int32_t riga = 0;
        scrivi(nReg, "", ++riga, latoDoc, Valore(contoCliente), Valore(tipoCliFor), Valore(codiceCliente),
               Valore(causale), Valore(""), totale, Importo(), Valore(""), Valore(""), Valore(""), Valore("0"),
               Valore("00"), Importo(), Valore(), Valore(0));

        // Revenues: the document's lines by account, a line with VAT inside brought out of it.
        const Importo s1 = Percentuale(campo("Sconto (cliente)%")), s2 = Percentuale(campo("Sconto2 (cliente)%")),
                      sp = Percentuale(campo("Sconto Pagamento %"));
        std::map<std::string, Importo> ricavi;
        if (auto righe = righeDocumenti.find({numDoc.Int(), serie.Testo()}); righe != righeDocumenti.end()) {
          for (const RigaDocumento& r : righe->second) {
            Importo imp = r.importo;
            if (r.scorporo) {
              // amount / (1 + rate/100) = amount x 1,000,000 / (1,000,000 + rate in ten-thousandths)
              imp = ArrotondaRapporto(static_cast<Int128>(imp.Raw()) * 1000000, 1000000 + r.aliquota.Raw(), 4);
            }
            ricavi[r.contropartita] += imp;
          }
        }
        bool unRicavo = false;
        for (const auto& [conto0, somma] : ricavi) {
          if (somma.Zero()) continue;
          unRicavo = true;
          std::string conto = conto0.empty() ? T(a.avar_RicaviStandard) : conto0;
          if (!esisteConto(conto))
            avvisa("Attenzione per la registrazione n. " + vReg.Testo() + " è stato impostato il sottoconto " + conto +
                       " non esistente nel piano dei conti.",
                   kTitolo, vbInformation, false);
          scrivi(nReg, "", ++riga, latoOpposto, Valore(conto), Valore(""), Valore(""), Valore(causale), ragione,
                 Scontato(somma, s1, s2, sp, decimali), Importo(), Valore(""), Valore(""), Valore(""), Valore("0"),
                 Valore("00"), Importo(), Valore(), Valore(0));
        }
        if (!unRicavo) {
          avvisa("Attenzione per il documento n. " + numSerie + " non sono state rilevate contropartite di ricavo.",
                 kTitolo, vbInformation, false);
          scrivi(nReg, "", ++riga, latoOpposto, a.avar_RicaviStandard, Valore(""), Valore(""), Valore(causale), ragione,
                 Importo(), Importo(), Valore(""), Valore(""), Valore(""), Valore("0"), Valore("00"), Importo(), Valore(),
                 Valore(0));
        }
        // Expenses.
        const Importo trasporto = NullToZeroCy(campo("Spese di trasporto")),
                      incasso = NullToZeroCy(campo("Spese di incasso")),
                      accessorie = NullToZeroCy(campo("Spese accessorie")) + NullToZeroCy(campo("Spese varie")),
                      bolli = NullToZeroCy(campo("Bolli"));
        auto spesa = [&](const Valore& conto, Importo imp) {
          if (imp.Zero()) return;
          scrivi(nReg, "", ++riga, latoOpposto, conto, Valore(""), Valore(""), Valore(causale), ragione, imp, Importo(),
                 Valore(""), Valore(""), Valore(""), Valore("0"), Valore("00"), Importo(), Valore(), Valore(0));
        };
        if (tipoContabRicAcc == "1") {
          spesa(a.avar_SottRicaviSpeseTrasporto, trasporto);
          spesa(a.avar_SottRicaviAccessori2, accessorie);
          spesa(a.avar_SottRicaviSpeseIncasso, incasso);
          spesa(a.avar_SottRicaviBolli, bolli);
        } else {
          spesa(a.avar_RicaviAccessori, trasporto + incasso + accessorie + bolli);
        }
        // Split payment: the VAT the public customer pays itself.
        const Importo split = NullToZeroCy(campo("PA Totale Split Payment"));
        if (!split.Zero()) {
          scrivi(nReg, "", ++riga, latoDoc, contoIva, Valore(""), Valore(""), Valore(causale), Valore(""), split,
                 Importo(), Valore(""), Valore(""), Valore(""), Valore("0"), Valore("00"), Importo(), Valore(), Valore(0));
          scrivi(nReg, "", ++riga, latoOpposto, a.avar_SottIVASplitPaymentVend, Valore(""), Valore(""), Valore(causale),
                 Valore(""), split, Importo(), Valore(""), Valore(""), Valore(""), Valore("0"), Valore("00"), Importo(),
                 Valore(), Valore(0));
        }
        // VAT rows, one per code, the gifts merged with their base code.
        TabellaIvaDocumento tab = TabellaIvaDocumento::DaTesto(T(campo("TabellaIva")));
        CompletaTabellaIva(rif, civa, tab, NullToZeroSng(campo("Sconto (cliente)%")),
                           NullToZeroSng(campo("Sconto2 (cliente)%")), NullToZeroSng(campo("Sconto Pagamento %")),
                           incasso, trasporto, accessorie, NullToZeroCy(campo("Totale Righe")), bolli, decimali);
        TabellaIvaRiepilogata = TabellaIvaDocumento{};
        for (int i = 1; i <= 5; ++i)
          if (!tab[i].codice.empty())
            CompilaTabellaIvaRiepilogata(CodiceBase(tab[i].codice), tab[i].aliquota, tab[i].netto, tab[i].iva,
                                         tab[i].spese);
        int32_t rigaIva = 0;
        for (int i = 1; i <= 5; ++i) {
          const auto& r = TabellaIvaRiepilogata[i];
          if (r.codice.empty()) continue;
          scrivi(nReg, "I", ++rigaIva, latoOpposto, contoIva, Valore(""), Valore(""), Valore(causale), ragione, r.iva,
                 r.netto + r.spese, Valore(r.codice), Valore(tipoCliFor), Valore(codiceCliente),
                 Valore(tipoRegistro), Valore(numRegistro), totale, Valore(), numDoc);
        }
        // The registers' counters and the registration on the first instalment.
        pn.AggiornaProgressiviPrimaNota(vReg, dataReg, Valore(tipoRegistro), Valore(numRegistro), serie, numDoc, dataDoc,
                                        numDoc, a.clientID, a.hWnd);
        const Valore tipoSca = Valore(tipoCliFor == "F" ? "FO" : "CL");
        {
          // A document without instalments has nothing to stamp: the write goes with the next statement.
          auto [sql, p] = RegistrazioneInScadenza(tipoSca, Valore(codiceCliente), dataDoc, serie, numDoc, nReg, dataReg);
          c.EseguiInCoda(sql, p);
        }

        // The amounts the document settles at once.
        auto saldo = [&](Importo importo, const char* tipoEff, const char* nota, const Valore& caus,
                         const Valore& contoAltro, const Valore& descrizione, const char* etichetta,
                         Importo iva = Importo(), const Valore& contoIvaAltro = Valore()) {
          const Importo totaleSaldo = importo + iva;
          int32_t chiave = GetNumeroScadenzaAcconto(tipoSca, Valore(codiceCliente), dataDoc, serie, numDoc,
                                                    Valore(tipoEff), totaleSaldo, Valore(nota));
          // The due-date step marks the split payment's settled row "CO".
          if (chiave == 0 && std::string(nota) == "Rilevaz. Split Payment")
            chiave = GetNumeroScadenzaAcconto(tipoSca, Valore(codiceCliente), dataDoc, serie, numDoc, Valore("CO"),
                                              totaleSaldo, Valore(nota));
          const int32_t n = pn.GetNumeroNuovaRegistrazionePrimaNota();
          ++registrazioni;
          const Valore key = chiave ? Valore(chiave) : Valore();
          scrivi(n, "", 1, latoOpposto, Valore(contoCliente), Valore(tipoCliFor), Valore(codiceCliente), caus,
                 descrizione, totaleSaldo, Importo(), Valore(""), Valore(""), Valore(""), Valore("0"), Valore("00"),
                 Importo(), key, Valore(0));
          bool pagato = false;
          if (chiave != 0) {
            RecordValori p;
            p["Numero Progressivo"] = Valore(chiave);
            p["Riga"] = Valore(sca.GetMaxRigaPagamento(Valore(chiave)) + 1);
            p["Importo Pagato"] = Valore(totaleSaldo);
            p["Data pagamento"] = dataReg;
            p["Descrizione Pagamento"] = Valore(etichetta);
            p["numeroRegistrazione"] = Valore(Format(Valore(n), "00000"));
            p["DataRegistrazione"] = dataReg;
            p["tipo"] = tipoSca;
            p["Codice Cliente"] = Valore(codiceCliente);
            p["Numero Documento"] = numDoc;
            p["Serie"] = serie;
            p["Data Documento"] = dataDoc;
            p["Codice valuta"] = valuta;
            p["Cambio"] = Valore(cambio);
            p["Importo Documento"] = Valore(totale);
            bool annulla = false;
            pagato = sca.SalvaRecordPagamento(p, a.clientID, a.hWnd, annulla) && !annulla;
            // The instalment's paid amount follows its payment rows, in the same transaction,
            // so that the book shows it settled.
            if (pagato) sca.RiallineaImportoPagatoScadenza(Valore(chiave));
          }
          if (!pagato)
            avvisa("Errore in fase di registrazione del pagamento relativo alla scadenza n. " + std::to_string(chiave),
                   "Attenzione", vbExclamation, true);
          scrivi(n, "", 2, latoDoc, contoAltro, Valore(""), Valore(""), caus, descrizione, importo, Importo(), Valore(""),
                 Valore(""), Valore(""), Valore("0"), Valore("00"), Importo(), Valore(), Valore(0));
          if (!iva.Zero())
            scrivi(n, "", 3, latoDoc, contoIvaAltro, Valore(""), Valore(""), caus, descrizione, iva, Importo(),
                   Valore(""), Valore(""), Valore(""), Valore("0"), Valore("00"), Importo(), Valore(), Valore(0));
          pn.AggiornaProgressiviPrimaNota(Valore(Format(Valore(n), "00000")), dataReg, Valore("0"), Valore("00"), serie,
                                          numDoc, dataDoc, Valore(0), a.clientID, a.hWnd);
        };
        const std::string alData = DataInTesto(dataDoc).Testo();
        if (!split.Zero())
          saldo(split, "RD", "Rilevaz. Split Payment", a.avar_CausaleSplitPayment, a.avar_SottIVASplitPaymentVend,
                Valore("Giroconto split payment al " + alData), "Split payment");
        const Importo acconto = NullToZeroCy(campo("Acconto"));
        if (!acconto.Zero())
          saldo(acconto, "CO", "Rilevaz. acconto", a.avar_CausaleIncassi, a.avar_SottocontoCassa,
                Valore("Contanti al " + alData), "Acconto");
        const Importo rit1 = NullToZeroCy(campo("Ritenuta1")), rit2 = NullToZeroCy(campo("Ritenuta2"));
        if (!rit1.Zero())
          saldo(rit1, "RD", "Rilevaz. ritenuta 1", a.avar_CausaleRitenuteSubite, a.avar_SottocontoRitenuteSubite,
                Valore(""), "Ritenuta");
        if (!rit2.Zero())
          saldo(rit2, "RD", "Rilevaz. ritenuta 2", a.avar_CausaleRitenuteSubite, a.avar_SottocontoRitenuteSubite,
                Valore(""), "Ritenuta");
        const Importo abbuono = NullToZeroCy(campo("Abbuono"));
        if (!abbuono.Zero())
          saldo(abbuono, "RD", "Rilevaz. abbuono", a.avar_CausaleAbbuoni, a.avar_SottocontoAbbuoni, Valore(""),
                "Abbuono");
        for (int i = 1; i <= 5; ++i) {
          if (tab[i].codice.empty() || !NormalizzaNumero(tab[i].codice)) continue;
          const char caso = tab[i].codice[0];
          if (caso == '8')
            saldo(tab[i].imponibile, "CO", "Rilevaz. omaggi", a.avar_CausaleOmaggi, a.avar_SottocontoImponibileOmaggi,
                  Valore(""), "Omaggi", Imposta(tab[i].imponibile, tab[i].aliquota, decimali),
                  a.avar_SottocontoIvaOmaggi);
          else if (caso == '9')
            saldo(tab[i].imponibile, "CO", "Rilevaz. omaggi", a.avar_CausaleOmaggi, a.avar_SottocontoImponibileOmaggi,
                  Valore(""), "Omaggi");
        }

        // Posted (the stamp of the claim), with the commit.
        unita.ConfermaSenzaAttesa([attesa](const ErroreDb* e) {
          attesa->arrivato = true;
          if (e) attesa->errore = *e;
        });
      });
    } catch (const Rifiuto& r) {
      rifiuto = r;
    } catch (const GiaElaborata&) {
      giaFatto = true;
    } catch (const std::exception& e) {
      errore = e.what();
    }

    // The previous document's answer, which came with this one's first round trip.
    chiudiArrivati();
    if (rifiuto) {
      // Rolled back: the messages of the attempt go with it, the refusal is told.
      messaggi.clear();
      ++esito.Scartati;
      Host().Beep();
      Host().MsgBox(rifiuto->testo, vbExclamation, kTitolo);
      continue;
    }
    if (!errore.empty()) {
      messaggi.clear();
      segnalaErrore(numSerie, errore);
      // A connection that is gone takes nothing more: the run stops here.
      if (!c.Aperta()) break;
      continue;
    }
    if (giaFatto) continue;
    attesa->messaggi = std::move(messaggi);
    attesa->registrazioni = registrazioni;
    inAttesa.push_back(std::move(attesa));
    chiudiArrivati();
  }
  // An answer that never came (the run stopped with the connection gone): posted or not, it is
  // not known.
  for (auto& d : inAttesa)
    if (!d->arrivato) {
      d->arrivato = true;
      d->errore = ErroreDb(3709, "connessione chiusa prima della risposta del server.");
    }
  daFare.clear();
  chiudiArrivati();

  FineElaborazione(form, "Elaborazione fattura completata.", esito.Registrazioni, "Nessuna fattura da elaborare.",
                   vbInformation, kTitolo);
  return esito;
}

void clsElaboraFatture::FineElaborazione(IForm* form, const std::string& riga, long registrazioni,
                                         const std::string& nessuno, int stile, const std::string& titolo) {
  if (form) form->msgbar(riga);
  Host().MsgBox(registrazioni > 0 ? "Create " + std::to_string(registrazioni) + " registrazioni di prima nota." : nessuno,
                stile, titolo);
}

}  // namespace vorn
