#include "receivables/clsScadenze.h"

#include <array>
#include <cmath>
#include <map>

#include "company/clsProgAzienda.h"
#include "frame/Catalogo.h"
#include "frame/Comuni.h"
#include "frame/Globali.h"
#include "frame/Host.h"
#include "frame/VornServer.h"
#include "masterdata/clsPagamenti.h"

namespace vorn {

namespace {

constexpr const char* kTabella = "Scadenziario";

std::string T(const Valore& v) { return Trim(v.Testo()); }

// What the generator reads of a payment code; the defaults of a null column.
struct Pagamento {
  std::string tipo, flagInizio = "DF", flagPrimaRata = "NO";
  std::array<int64_t, 7> giorni{};  // 1-based: the day counts of instalments 1 to 6
  int64_t periodicita = 0, giornoFisso = 15, gfDaFineMese = 0, rate = 1;
};

// The stamp duty steps and the rates of bills.
struct Bolli {
  std::array<Importo, 8> finoA{}, importo{};  // 1-based, seven steps
  double bolloTratta = 0;
  Importo arrotondamentoTratta, minimoTratta;
};

std::string Campi(const std::vector<std::string>& campi) {
  std::string s;
  for (const auto& c : campi) s += c + "|";
  return s;
}

Data FineMese(const Data& d) { return *Data::Crea(d.Anno(), d.Mese(), Data::GiorniNelMese(d.Anno(), d.Mese())); }

// One step of the running date: whole months for a multiple of 30 days, days otherwise.
Data Avanza(const Data& d, int64_t passo) {
  if (clsScadenze::Multiplo30(Valore(static_cast<long long>(passo))))
    return d.AggiungiMesi(static_cast<int>(passo / 30));
  return d.AggiungiGiorni(passo);
}

}  // namespace

std::vector<std::string> clsScadenze::CampiRiga(const std::string& riga) {
  std::vector<std::string> c;
  size_t p = 0;
  for (size_t q; (q = riga.find('|', p)) != std::string::npos; p = q + 1) c.push_back(riga.substr(p, q - p));
  return c;
}

bool clsScadenze::Multiplo30(const Valore& giorni) {
  Importo g = NullToZeroCy(giorni);
  return g > Importo() && g.Raw() % (30 * Importo::kScala) == 0;
}

std::string clsScadenze::GetDesTipoPagamento(const Valore& a_varTipo) {
  return clsPagamenti::GetDesTipoPagamento(a_varTipo);
}

bool clsScadenze::GeneraScadenze(std::vector<std::string>& righe, long& indice, const DocumentoScadenze& d) {
  auto metti = [&](std::string riga) {
    ++indice;
    if (indice < 0) indice = 0;
    if (righe.size() <= static_cast<size_t>(indice)) righe.resize(static_cast<size_t>(indice) + 1);
    righe[static_cast<size_t>(indice)] = std::move(riga);
  };
  std::optional<Valore> valuta;
  if (!Trim(d.a_varCodiceValuta).empty()) valuta = Valore(Trim(d.a_varCodiceValuta));
  auto cifra = [&](Importo i) { return FormattaImporto(Valore(i), valuta); };
  const std::string data = d.a_datDataDocumento.Testo();
  const std::string cc = d.a_varContoCorrente;

  bool lettura = true;  // reading the payment and the counterparty, or working the rows out
  try {
    // 1. The stamp duty of receipts and bills.
    Bolli b;
    {
      Recordset rs = cn->Execute("SELECT * FROM [Importi Fissi] LIMIT 1");
      if (!rs.Eof()) {
        for (int k = 1; k <= 7; ++k) {
          b.finoA[static_cast<size_t>(k)] = NullToZeroCy(rs("Fino a " + std::to_string(k)).Value());
          b.importo[static_cast<size_t>(k)] = NullToZeroCy(rs("Importo " + std::to_string(k)).Value());
        }
        b.bolloTratta = NullToZeroDbl(rs("Bollo tratta italiana").Value());
        b.arrotondamentoTratta = NullToZeroCy(rs("Arrotondamento bollo tratta").Value());
        b.minimoTratta = NullToZeroCy(rs("Valore minimo bollo tratta").Value());
      }
    }
    // 2. What the document settles itself.
    const std::pair<Importo, std::pair<const char*, const char*>> saldati[] = {
        {d.a_curAcconto, {"CO", "Rilevaz. acconto"}},       {d.a_curRitenuta1, {"RD", "Rilevaz. ritenuta 1"}},
        {d.a_curRitenuta2, {"RD", "Rilevaz. ritenuta 2"}},  {d.a_curAbbuono, {"RD", "Rilevaz. abbuono"}},
        {d.a_curOmaggi, {"CO", "Rilevaz. omaggi"}},         {d.a_curSplitPayment, {"CO", "Rilevaz. Split Payment"}}};
    for (const auto& [importo, tipo] : saldati) {
      if (importo.Zero()) continue;
      std::string t = tipo.first;
      metti(Campi({t + " " + GetDesTipoPagamento(Valore(t)), data, cifra(importo), cifra(importo), "", "", "", "", "",
                   "0", "", tipo.second, "0", cc, "", "", "", ""}));
    }
    // 3. The payment code: unknown, no instalment.
    Pagamento p;
    {
      Recordset rs = cn->Execute("SELECT * FROM [Pagamenti] WHERE [Codice Pagamento] = ?",
                                 {Valore(Trim(d.a_varCodicePagamento))});
      if (rs.Eof()) return false;
      auto testo = [&](const char* c, const std::string& predefinito) {
        Valore v = rs(c).Value();
        return v.IsNull() ? predefinito : T(v);
      };
      auto numero = [&](const std::string& c, int64_t predefinito) {
        Valore v = rs(c).Value();
        return v.IsNull() ? predefinito : static_cast<int64_t>(NullToZeroLng(v));
      };
      p.tipo = testo("Tipo Pagamento", "");
      p.flagInizio = testo("Flag Inizio Scadenza", "DF");
      p.flagPrimaRata = testo("Flag prima rata", "NO");
      if (p.flagPrimaRata.empty()) p.flagPrimaRata = "NO";
      p.giorni[1] = numero("Numero Giorni Inizio Scadenza", 0);
      for (int k = 2; k <= 6; ++k)
        p.giorni[static_cast<size_t>(k)] = numero("Numero Giorni Inizio Scadenza " + std::to_string(k), 0);
      p.periodicita = numero("Periodicità", 0);
      p.giornoFisso = numero("Giorno Fisso", 15);
      p.gfDaFineMese = numero("GF Da Fine Mese", 0);
      p.rate = numero("Numero Rate", 1);
      if (p.rate <= 0) p.rate = 1;
    }
    // 4. The counterparty's excluded months (always read from the suppliers' archive).
    int64_t escluso1 = 0, escluso2 = 0, scadenzaAl = 0;
    {
      Recordset rs = cn->Execute("SELECT [1 Mese Escluso], [2 Mese Escluso], [Scadenza al] FROM [Anagrafica Fornitori] "
                                 "WHERE [Codice Cliente] = ?",
                                 {Valore(Trim(d.a_varCodiceCliente))});
      if (!rs.Eof()) {
        escluso1 = NullToZeroLng(rs(0).Value());
        escluso2 = NullToZeroLng(rs(1).Value());
        scadenzaAl = NullToZeroLng(rs(2).Value());
      }
    }
    lettura = false;

    // 5. to 7. The first instalment, the others, and the rest.
    const Importo totale = d.a_curImportoDocumento, iva = d.a_curIvaDocumento, spese = d.a_curSpeseDocumento;
    const int64_t n = p.rate;
    const int decValuta = RegolaFormattaImporto(valuta, std::nullopt).decimali;
    auto quota = [&](Importo a, int64_t parti) { return ArrotondaRapporto(a.Raw(), parti, decValuta); };
    Importo prima, rata;
    bool dueRate = false;
    const std::string& f = p.flagPrimaRata;
    if (f == "NO") rata = quota(totale, n), prima = rata;
    else if (f == "CI") rata = quota(totale - iva, n), prima = iva + rata;
    else if (f == "IV") dueRate = true, prima = iva;
    else if (f == "SP") rata = quota(totale - spese, n), prima = spese + rata;
    else if (f == "SI") rata = quota(totale - spese - iva, n), prima = iva + spese + rata;
    else if (f == "SS") dueRate = true, prima = iva + spese;
    if (dueRate) {
      if (n >= 2) {
        rata = quota(f == "IV" ? totale - iva : totale - iva - spese, n - 1);
      } else {
        Host().Beep();
        Host().MsgBox("Calcolo delle scadenze incompleto, il pagamento deve avere almeno 2 rate!", vbExclamation,
                      "Generazione automatica scadenze");
      }
    }
    Importo resto = totale - (prima + rata * (n - 1));

    // 8. A term that starts from a different date.
    Data corrente = d.a_datDataDocumento;
    if (p.flagInizio == "DD") {
      if (d.a_datDataDiversa && *d.a_datDataDiversa != Data()) {
        corrente = *d.a_datDataDiversa;
      } else if (auto scelta = Host().ChiediData("Inserimento data diversa", corrente)) {
        corrente = *scelta;
      }
    }

    // 9. The instalments.
    Importo unita = Importo::DaRaw(1);
    for (int i = G().DecimaliImporti; i < 4; ++i) unita = unita * 10;
    const bool flagNoto = p.flagInizio == "FM" || p.flagInizio == "DF" || p.flagInizio == "DD" || p.flagInizio == "GF";
    for (int64_t i = 1; i <= n; ++i) {
      std::optional<Data> scadenza;
      if (flagNoto) {
        int64_t passo;
        if (i == 1) passo = p.giorni[1];
        else if (i <= 6)
          passo = p.giorni[static_cast<size_t>(i)] != 0 ? p.giorni[static_cast<size_t>(i)] - p.giorni[static_cast<size_t>(i - 1)]
                                                        : p.periodicita;
        else passo = p.periodicita;
        corrente = Avanza(corrente, passo);
        Data s = corrente;
        if (p.flagInizio == "FM") {
          s = FineMese(corrente);
        } else if (p.flagInizio == "GF") {
          Data e = corrente;
          if (p.gfDaFineMese == 1 || e.Giorno() > p.giornoFisso) e = e.AggiungiMesi(1);
          if (p.giornoFisso == 0) p.giornoFisso = 1;
          int giorno = static_cast<int>(std::min<int64_t>(p.giornoFisso, Data::GiorniNelMese(e.Anno(), e.Mese())));
          s = *Data::Crea(e.Anno(), e.Mese(), giorno);
        }
        // An excluded month moves the date to the day given in the month after, once.
        if ((escluso1 != 0 && s.Mese() == escluso1) || (escluso2 != 0 && s.Mese() == escluso2)) {
          Data dopo = *Data::Crea(s.Anno(), s.Mese(), 1);
          dopo = dopo.AggiungiMesi(1);
          int64_t giorni = Data::GiorniNelMese(dopo.Anno(), dopo.Mese());
          if (scadenzaAl > giorni) scadenzaAl = giorni;
          if (scadenzaAl <= 0) scadenzaAl = 1;
          s = *Data::Crea(dopo.Anno(), dopo.Mese(), static_cast<int>(scadenzaAl));
        }
        scadenza = s;
      }
      Importo a = i == 1 ? prima : rata;
      // The rest, a unit at a time to the first instalments.
      if (resto > Importo()) a += unita, resto -= unita;
      else if (resto < Importo()) a -= unita, resto += unita;
      // The stamp duty.
      Importo bollo;
      if (p.tipo == "RB") {
        for (size_t k = 1; k <= 7; ++k)
          if (a <= b.finoA[k]) {
            bollo = b.importo[k];
            break;
          }
      } else if (p.tipo == "TR") {
        double r = b.bolloTratta;
        double x = a.ToDouble() + a.ToDouble() * r / 1000;
        Importo valore = Importo::DaDouble(x * r / 1000);
        Importo passo = b.arrotondamentoTratta.Zero() ? Importo(1) : b.arrotondamentoTratta;
        // Always upwards, to a whole number of steps.
        if (valore.Raw() % passo.Raw() != 0)
          valore = Importo::DaRaw((valore.Raw() / passo.Raw() + (valore.Raw() > 0 ? 1 : 0)) * passo.Raw());
        if (valore < b.minimoTratta) valore = b.minimoTratta;
        bollo = valore;
      }
      metti(Campi({p.tipo + " " + GetDesTipoPagamento(Valore(p.tipo)), scadenza ? scadenza->Testo() : "", cifra(a),
                   cifra(Importo()), "", "", "", "", "", "", "0", "", "", bollo.TestoPunto(), cc, "", "", "", "", ""}));
    }
  } catch (const std::exception& e) {
    Host().Beep();
    std::string numero = "0";
    if (auto* db = dynamic_cast<const ErroreDb*>(&e)) numero = std::to_string(db->Numero());
    Host().MsgBox(std::string(e.what()) + " " + numero + "\n" +
                      (lettura ? "Ho avuto problemi nella consultazione dell'archivio pagamenti"
                               : "Ho avuto problemi nella generazione delle scadenze"),
                  vbCritical,
                  lettura ? "Errore non gestito nel metodo GeneraScadenze" : "Errore non gestito nel metodo Aggiorna_Totali");
  }
  return false;
}

// ---------------------------------------------------------------- numbering

int32_t clsScadenze::GetNuovoProgressivoDocumento() {
  return NullToZeroLng(cn->Scalare("SELECT MAX([Progressivo Documento]) FROM [Scadenziario]")) + 1;
}

int32_t clsScadenze::GetNuovoNumeroEffetto() {
  int32_t contatore =
      NullToZeroLng(cn->Scalare("SELECT MAX([Progressivo]) FROM [Progressivi Scadenze] WHERE [IndicatoreFisso] = 'SCA'"));
  int32_t tabella = NullToZeroLng(cn->Scalare("SELECT MAX([Numero Progressivo]) FROM [Scadenziario]"));
  return std::max(contatore, tabella) + 1;
}

bool clsScadenze::SetProgressivoScadenze(const Valore& Numero_progressivo, const Valore& clientID, long hWnd) {
  Atomico unita(*cn);
  Recordset rs = cn->Apri("Progressivi Scadenze", "[IndicatoreFisso] = ?", {Valore("SCA")});
  if (rs.Eof()) {
    rs.AddNew();
    rs("IndicatoreFisso") = Valore("SCA");
  }
  rs("Progressivo") = Valore(static_cast<long long>(NullToZeroLng(Numero_progressivo)));
  MarcaRecord(rs, clientID, hWnd);
  rs.Update();
  unita.Conferma();
  return true;
}

int32_t clsScadenze::PrendiNumeroEffetto() {
  clsProgAzienda prog;
  prog.cn = static_cast<const std::shared_ptr<Connessione>&>(cn);
  return prog.PrendiProgressivoScadenze();
}

int32_t clsScadenze::PrendiProgressivoDocumento() {
  clsProgAzienda prog;
  prog.cn = static_cast<const std::shared_ptr<Connessione>&>(cn);
  return prog.PrendiProgressivoDocumenti();
}

// ---------------------------------------------------------------- rows

namespace {
const std::vector<std::string>& ColonneScadenziario() {
  static const std::vector<std::string> c = [] {
    std::vector<std::string> v;
    for (const auto& col : TabellaCatalogoDi(kTabella)->colonne) v.push_back(col.nome);
    return v;
  }();
  return c;
}
}  // namespace

bool clsScadenze::SalvaRecord(RecordValori& valori, const Valore& clientID, long hWnd, bool& Cancel) {
  Cancel = false;
  ColonneValori colonne = ColonneDaScrivere(valori, ColonneScadenziario(), [](const std::string& nome) {
    return "Colonna sconosciuta nello scadenziario: " + nome;
  });
  auto valore = [&](const char* nome) -> Valore* {
    for (auto& [c, v] : colonne)
      if (c == nome) return &v;
    return nullptr;
  };
  Atomico unita(*cn);
  Valore* numero = valore("Numero Progressivo");
  if (!numero || NullToZeroLng(*numero) == 0) {
    Valore n(static_cast<long long>(PrendiNumeroEffetto()));
    if (numero) *numero = n;
    else colonne.emplace_back("Numero Progressivo", n);
    valori["Numero Progressivo"] = n;
  }
  Valore* documento = valore("Progressivo Documento");
  if (!documento || NullToZeroLng(*documento) == 0) {
    Valore n(static_cast<long long>(PrendiProgressivoDocumento()));
    if (documento) *documento = n;
    else colonne.emplace_back("Progressivo Documento", n);
    valori["Progressivo Documento"] = n;
  }
  const Valore chiave = *valore("Numero Progressivo");
  bool ok = SalvaRecordProtocollo(*cn, kTabella, "[Numero Progressivo] = ?", {chiave}, clientID, hWnd, Cancel,
                                  [&](Recordset& rs, bool) {
                                    for (const auto& [c, v] : colonne) rs(c) = v;
                                  });
  if (!ok) return false;
  unita.Conferma();
  return true;
}

long clsScadenze::SalvaScadenzeGenerate(const std::vector<std::string>& righe, long daIndice, long aIndice,
                                        const RecordValori& documento, const Valore& clientID, long hWnd,
                                        Importo* totale) {
  Valore progressivo;
  if (auto p = documento.find("Progressivo Documento"); p != documento.end()) progressivo = p->second;
  long salvate = 0;
  for (long i = std::max(1L, daIndice); i <= aIndice && static_cast<size_t>(i) < righe.size(); ++i) {
    // kind and description | due date | amount | ... | stamp duty (the 14th field)
    std::vector<std::string> campi = CampiRiga(righe[static_cast<size_t>(i)]);
    // An instalment, or a row the document settled itself (down payment, withholding...), which
    // keeps what it settles in [Note]: the invoice posting finds it so and pays it.
    const bool saldata = campi.size() == kCampiSaldata;
    if (campi.size() != kCampiRata && !saldata) continue;
    if (NullToZeroLng(progressivo) == 0) progressivo = Valore(static_cast<long long>(PrendiProgressivoDocumento()));
    const Importo importo = NullToZeroCy(ImportoIngresso(Valore(campi[2])));
    RecordValori r = documento;
    r["Progressivo Documento"] = progressivo;
    r["Data Scadenza"] = Valore(campi[1]);
    r["Tipo di Effetto"] = Valore(campi[0].substr(0, 2));
    r["Importo Scadenza"] = Valore(importo);
    r["Importo Pagato"] = Valore(Importo());
    r["Importo Bollo"] = Valore(saldata ? Importo() : Importo::DaTestoPunto(campi[13]).value_or(Importo()));
    if (saldata) r["Note"] = Valore(campi[11]);
    bool cancel = false;
    if (!SalvaRecord(r, clientID, hWnd, cancel) || cancel)
      throw ErroreDb(3265, "Rata non scritta nello scadenziario: " + campi[1] + " " + campi[2]);
    ++salvate;
    if (totale) *totale += importo;
  }
  return salvate;
}

bool clsScadenze::LocalizzaRecord(Recordset& T_, const Valore& Numero_progressivo, const Valore& clientID, long hWnd) {
  return LocalizzaRecordProtocollo(*cn, T_, kTabella, "[Numero Progressivo] = ?",
                                   {Valore(static_cast<long long>(NullToZeroLng(Numero_progressivo)))}, clientID, hWnd);
}

bool clsScadenze::LocalizzaRecordDocumento(Recordset& T_, const Valore& Progressivo_Documento) {
  T_ = cn->Apri(kTabella, "[Progressivo Documento] = ?",
                {Valore(static_cast<long long>(NullToZeroLng(Progressivo_Documento)))},
                "[Data Scadenza], [Numero Progressivo]");
  return !T_.Eof();
}

bool clsScadenze::CancellaRecord(const Valore& Numero_progressivo) {
  cn->Esegui("DELETE FROM [Scadenziario] WHERE [Numero Progressivo] = ?",
             {Valore(static_cast<long long>(NullToZeroLng(Numero_progressivo)))});
  return true;
}

bool clsScadenze::CancellaRecordDocumento(const Valore& Progressivo_Documento) {
  cn->Esegui("DELETE FROM [Scadenziario] WHERE [Progressivo Documento] = ?",
             {Valore(static_cast<long long>(NullToZeroLng(Progressivo_Documento)))});
  return true;
}

namespace {
bool Passo(Connessione& cn, Valore& numero, bool avanti) {
  long long n = NullToZeroLng(numero);
  Valore v = avanti ? cn.Scalare("SELECT MIN([Numero Progressivo]) FROM [Scadenziario] WHERE [Numero Progressivo] > ?",
                                 {Valore(n)})
                    : cn.Scalare("SELECT MAX([Numero Progressivo]) FROM [Scadenziario] WHERE [Numero Progressivo] < ?",
                                 {Valore(n == 0 ? INT32_MAX : n)});
  if (v.IsNull() || v.IsEmpty()) return false;
  numero = Valore(static_cast<long long>(NullToZeroLng(v)));
  return true;
}
}  // namespace

bool clsScadenze::RecordSuccessivo(Valore& Numero_progressivo) { return Passo(*cn, Numero_progressivo, true); }
bool clsScadenze::RecordPrecedente(Valore& Numero_progressivo) { return Passo(*cn, Numero_progressivo, false); }

bool clsScadenze::AzzeraScadenze() {
  cn->Esegui("DELETE FROM [Scadenziario]");
  return true;
}

}  // namespace vorn

// ---------------------------------------------------------------- payments

namespace vorn {

namespace {
constexpr const char* kPagamenti = "Scadenziario Pagamenti";
Valore Numero(const Valore& v) { return Valore(static_cast<long long>(NullToZeroLng(v))); }
const std::vector<std::string>& ColonnePagamenti() {
  static const std::vector<std::string> c = [] {
    std::vector<std::string> v;
    for (const auto& col : TabellaCatalogoDi(kPagamenti)->colonne) v.push_back(col.nome);
    return v;
  }();
  return c;
}
// The registration number as the journal keeps it: five digits.
Valore Registrazione(const Valore& v) { return Valore(Format(Valore(Trim(v.Testo())), "00000")); }
}  // namespace

bool clsScadenze::SalvaRecordPagamento(const RecordValori& valori, const Valore& clientID, long hWnd, bool& Cancel) {
  Cancel = false;
  ColonneValori colonne = ColonneDaScrivere(valori, ColonnePagamenti(), [](const std::string& nome) {
    return "Colonna sconosciuta nei pagamenti dello scadenziario: " + nome;
  });
  Valore numero, riga;
  for (auto& [c, v] : colonne) {
    if (c == "Numero Progressivo") numero = v = Numero(v);
    if (c == "Riga") riga = v = Valore(std::to_string(NullToZeroLng(v)));
    if (c == "NumeroRegistrazione" && !Trim(v.Testo()).empty()) v = Registrazione(v);
  }
  if (NullToZeroLng(numero) == 0 || NullToZeroLng(riga) == 0)
    throw ErroreDb(3265, "Un pagamento vuole il numero della scadenza e la riga.");
  return SalvaRecordProtocollo(*cn, kPagamenti, "[Numero Progressivo] = ? AND [Riga] = ?", {numero, riga}, clientID,
                               hWnd, Cancel, [&](Recordset& rs, bool) {
                                 for (const auto& [c, v] : colonne) rs(c) = v;
                               });
}

bool clsScadenze::CancellaTuttiRecordsPagamento(const Valore& Numero_progressivo) {
  cn->Esegui("DELETE FROM [Scadenziario Pagamenti] WHERE [Numero Progressivo] = ?", {Numero(Numero_progressivo)});
  return true;
}

bool clsScadenze::CancellaRecordPagamenti(const Valore& Numero_progressivo, const Valore& Riga) {
  cn->Esegui("DELETE FROM [Scadenziario Pagamenti] WHERE [Numero Progressivo] = ? AND [Riga] = ?",
             {Numero(Numero_progressivo), Valore(std::to_string(NullToZeroLng(Riga)))});
  return true;
}

bool clsScadenze::LocalizzaRecordPagamenti(Recordset& T_, const Valore& Numero_progressivo, const Valore& clientID,
                                           long hWnd) {
  return LocalizzaRecordProtocollo(*cn, T_, kPagamenti, "[Numero Progressivo] = ?", {Numero(Numero_progressivo)},
                                   clientID, hWnd);
}

int32_t clsScadenze::GetMaxRigaPagamento(const Valore& Numero_progressivo) {
  return NullToZeroLng(cn->Scalare("SELECT MAX(CAST([Riga] AS INTEGER)) FROM [Scadenziario Pagamenti] WHERE "
                                   "[Numero Progressivo] = ?",
                                   {Numero(Numero_progressivo)}));
}

double clsScadenze::GetImportoPagatoNumeroProgressivo(const Valore& Numero_progressivo) {
  return NullToZeroCy(cn->Scalare("SELECT SUM([Importo pagato]) FROM [Scadenziario Pagamenti] WHERE [Numero "
                                  "Progressivo] = ?",
                                  {Numero(Numero_progressivo)}))
      .ToDouble();
}

bool clsScadenze::RiallineaImportoPagatoScadenza(const Valore& Numero_progressivo) {
  // The sum of the rows, exact, as the instalment's paid amount.
  Importo somma = NullToZeroCy(cn->Scalare(
      "SELECT SUM([Importo pagato]) FROM [Scadenziario Pagamenti] WHERE [Numero Progressivo] = ?",
      {Numero(Numero_progressivo)}));
  cn->Esegui("UPDATE [Scadenziario] SET [Importo Pagato] = ? WHERE [Numero Progressivo] = ?",
             {Valore(somma), Numero(Numero_progressivo)});
  return true;
}

bool clsScadenze::LocalizzaRecordPagamentiRegistrazione(Recordset& T_, const Valore& numeroRegistrazione,
                                                        const Valore& clientID, long hWnd) {
  return LocalizzaRecordProtocollo(*cn, T_, kPagamenti, "[NumeroRegistrazione] = ?",
                                   {Registrazione(numeroRegistrazione)}, clientID, hWnd);
}

bool clsScadenze::CancellaRecordPagamentiRegistrazione(const Valore& numeroRegistrazione, int64_t& recordsAffected) {
  recordsAffected = cn->Esegui("DELETE FROM [Scadenziario Pagamenti] WHERE [NumeroRegistrazione] = ?",
                               {Registrazione(numeroRegistrazione)});
  return true;
}

bool clsScadenze::ExistsPagamentiRegistrazione(const Valore& numeroRegistrazione) {
  return NullToZeroLng(cn->Scalare("SELECT COUNT(*) FROM [Scadenziario Pagamenti] WHERE [NumeroRegistrazione] = ?",
                                   {Registrazione(numeroRegistrazione)})) > 0;
}

namespace {
// The five reasons an instalment may no longer change, as the user reads them.
bool Bloccata(const std::vector<Valore>& v, std::string& stato) {
  // v: Importo Pagato, Distinta, Emesso, Flag Unificata, Contabilizzato
  bool b = false;
  auto prova = [&](bool c, const char* testo) {
    if (!c) return;
    b = true;
    stato += testo;
  };
  prova(!NullToZeroCy(v[0]).Zero(), "- Scadenza parzialmente o totalmente pagata.");
  prova(v[1].Vero(), "- Scadenza presentata in distinta.");
  prova(v[2].Vero(), "- Scadenza emessa.");
  prova(NullToZeroLng(v[3]) != 0, "- Scadenza unificata.");
  prova(v[4].Vero(), "- Scadenza contabilizzata.");
  return b;
}
const char* kStato = "SELECT [Importo Pagato], [Distinta], [Emesso], [Flag Unificata], [Contabilizzato] FROM [Scadenziario] ";
}  // namespace

bool clsScadenze::IsScadenzaBloccata(const Valore& Numero_progressivo, std::string& strStato) {
  bool b = false;
  cn->Scorri(std::string(kStato) + "WHERE [Numero Progressivo] = ?", {Numero(Numero_progressivo)},
             [&](const std::vector<Colonna>&, const std::vector<Valore>& v) {
               b = Bloccata(v, strStato);
               return false;
             });
  return b;
}

bool clsScadenze::IsScadenzeDocumentoBloccate(const Valore& tipo, const Valore& Codice_Cliente,
                                              const Valore& DataDocumento, const Valore& Serie,
                                              const Valore& NumeroDocumento, std::string& strStato) {
  bool b = false;
  FiltroCodice f = FiltraCodice("[tipo]", tipo);
  f.Parte("[Codice Cliente]", Codice_Cliente).Parte("[Serie]", Serie);
  f.E("[Numero Documento] = ?", {Numero(NumeroDocumento)});
  f.E("[Data Documento] = ?", {DataIngresso(DataDocumento)});
  cn->Scorri(std::string(kStato) + "WHERE " + f.where + " ORDER BY [Data Scadenza]", f.p,
             [&](const std::vector<Colonna>&, const std::vector<Valore>& v) {
               if (Bloccata(v, strStato)) b = true;
               return !b;
             });
  return b;
}

bool clsScadenze::EffettoCollegatoADistinta(const Valore& Numero_progressivo) {
  return NullToZeroLng(cn->Scalare("SELECT COUNT(*) FROM [Distinte Righe] WHERE [Numero Progressivo] = ?",
                                   {Numero(Numero_progressivo)})) > 0;
}

bool clsScadenze::AzzeraScadenzePagamenti() {
  cn->Esegui("DELETE FROM [Scadenziario Pagamenti]");
  return true;
}

}  // namespace vorn
