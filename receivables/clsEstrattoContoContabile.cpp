#include "receivables/clsEstrattoContoContabile.h"

#include <algorithm>
#include <memory>
#include <utility>
#include <vector>

#include "frame/Comuni.h"
#include "frame/Globali.h"
#include "masterdata/clsValute.h"

namespace vorn {

namespace {

constexpr const char* kTitolo = "Estratto conto";

std::string T(const Valore& v) { return Trim(v.Testo()); }
std::string TestoData(const Valore& v) { return v.ComeData() ? v.ComeData()->Testo() : std::string(); }

// "CL" or "FO" of the due-date book from what the client passes ("C", "F", "CL", "FO").
std::string TipoScadenziario(const Valore& tipo) {
  std::string t = UCase(T(tipo));
  if (t == "C") return "CL";
  if (t == "F") return "FO";
  return t;
}

// The range's ends: an empty one is the widest.
Valore Estremo(const Valore& v, int anno, int mese, int giorno) {
  Valore d = DataIngresso(v, "data dell'estratto conto");
  return d.IsNull() ? Valore(*Data::Crea(anno, mese, giorno)) : d;
}

// The document's filter on the due-date book, text keys null or empty alike.
const char* const kFiltroDocumento =
    "[Tipo] = ? AND [Codice Cliente] = ? AND [Numero Documento] = ? AND COALESCE([Serie], '') = ? AND "
    "[Data Documento] = ? AND COALESCE([Flag Unificata], 0) <> 2";

}  // namespace

struct clsEstrattoContoContabile::Riga {
  std::string clientName, tipo, codice, ragione, descrizione, numeroDoc, serie, dataDoc, simbolo, scadenza, pagato,
      progressivo, note;
  Valore numeroProgressivo = Valore::Null();
  std::string numeroRegistrazione, causale;
};

std::string clsEstrattoContoContabile::DescrizioneTipoEffetto(const std::string& codice) {
  static const std::pair<const char*, const char*> kTipi[] = {
      {"TR", "Tratta"},        {"RB", "Ricevuta bancaria"}, {"AB", "Avviso bancario"}, {"RD", "Rimessa diretta"},
      {"CO", "Contanti"},      {"CE", "Cessioni"},          {"GR", "Giroconto"},       {"PA", "PagoPA"},
      {"BO", "Bonifico bancario"}, {"CT", "Contrassegno"}, {"AC", "Assegno circolare"}, {"RI", "R.I.D."},
      {"AS", "Assegno banc."}, {"CP", "Carta Pagam."},      {"TT", "Trattenute"}};
  for (const auto& [c, d] : kTipi)
    if (codice == c) return d;
  return codice;
}

void clsEstrattoContoContabile::Scrivi(const Riga& r) {
  // A parameter written exactly as a date binds as a date: the date's text goes with a mark in
  // front that the statement takes off, so that the column holds "dd/mm/yyyy" on both engines.
  cn->Esegui(
      "INSERT INTO [Elaborazione Estratto Conto Vorn] ([ClientName], [TipoCliFor], [CodiceCliente], [RagioneSociale], "
      "[Descrizione], [TextNumeroDoc], [SerieDoc], [Filler], [TextDataDoc], [SimboloValuta], [TextImportoScadenza], "
      "[TextImportoPagato], [TextImportoProgressivo], [Note], [Numero Progressivo], [NumeroRegistrazione], "
      "[CausaleContabile]) VALUES (?, ?, ?, ?, ?, ?, ?, ?, substr(?, 2), ?, ?, ?, ?, ?, ?, ?, ?)",
      {Valore(r.clientName), Valore(r.tipo), Valore(r.codice), Valore(r.ragione), Valore(r.descrizione),
       Valore(r.numeroDoc), Valore(r.serie), Valore(""), Valore("#" + r.dataDoc), Valore(r.simbolo), Valore(r.scadenza),
       Valore(r.pagato), Valore(r.progressivo), Valore(r.note), r.numeroProgressivo, Valore(r.numeroRegistrazione),
       Valore(r.causale)});
}

std::string clsEstrattoContoContabile::Formatta(Importo i, const Valore& valuta) {
  if (valute_) return valute_->FormatValuta(Valore(i), T(valuta).empty() ? std::nullopt : std::optional<Valore>(valuta));
  return FormattaImporto(Valore(i));
}

Importo clsEstrattoContoContabile::GetPagatoNumeroProgressivoEffetto(const Valore& Numero_progressivo) {
  return NullToZeroCy(cn->Scalare("SELECT SUM([Importo pagato]) FROM [Scadenziario Pagamenti] WHERE "
                                  "[Numero Progressivo] = ?",
                                  {Valore(static_cast<long long>(NullToZeroLng(Numero_progressivo)))}));
}

Valore clsEstrattoContoContabile::GetPagatoPartita(const Valore& avarTipoCliFor, const Valore& avarCodiceCliFor,
                                                   const Valore& avar_NumeroDoc, const Valore& avar_SerieDoc,
                                                   const Valore& avar_DataDoc) {
  // The payment rows of the document's instalments, summed once.
  return Valore(NullToZeroCy(cn->Scalare(
      std::string("SELECT SUM(P.[Importo pagato]) FROM [Scadenziario Pagamenti] P WHERE P.[Numero Progressivo] IN "
                  "(SELECT [Numero Progressivo] FROM [Scadenziario] WHERE ") +
          kFiltroDocumento + ")",
      {Valore(TipoScadenziario(avarTipoCliFor)), Valore(T(avarCodiceCliFor)),
       Valore(static_cast<long long>(NullToZeroLng(avar_NumeroDoc))), Valore(T(avar_SerieDoc)),
       DataIngresso(avar_DataDoc)})));
}

std::string clsEstrattoContoContabile::StringaDocumento(const Valore& codice_causale) {
  Valore v = cn->Scalare("SELECT COALESCE([Valore Scarichi], '') FROM [Causali di Magazzino] WHERE [Codice Causale] = ?",
                         {Valore(T(codice_causale))});
  if (v.IsNull()) {
    Host().MsgBox("Codice causale " + T(codice_causale) + " non in archivio.", vbExclamation,
                  "Estratto conto - Codice causale di magazzino");
    return "";
  }
  return T(v) == "-" ? "Nota di credito" : "Fattura emessa";
}

void clsEstrattoContoContabile::AggiungiPagamenti(IForm* objFormAttiva, const std::string& clientName,
                                                  long& numeroRiga, const Valore& Numero_progressivo,
                                                  Importo& SaldoPartita, Importo& SaldoProgressivo,
                                                  const Valore& dataRiferimento) {
  const Valore numero(static_cast<long long>(NullToZeroLng(Numero_progressivo)));
  if (objFormAttiva) objFormAttiva->msgbar("Estratto conto: pagamenti della scadenza n. " + numero.Testo());
  Recordset rs = cn->Execute(
      "SELECT P.[Riga], P.[Importo pagato], P.[Data pagamento], P.[Descrizione Pagamento], P.[NumeroRegistrazione], "
      "S.[tipo], S.[Codice Cliente], S.[Ragione Sociale], S.[Codice valuta], S.[Importo Scadenza], "
      "S.[Numero Documento], S.[Serie] FROM [Scadenziario Pagamenti] P LEFT JOIN [Scadenziario] S ON "
      "S.[Numero Progressivo] = P.[Numero Progressivo] WHERE P.[Numero Progressivo] = ?",
      {numero});
  struct Pagamento {
    long riga;
    size_t pos;
  };
  // Rows 1, 2... 10 in number order, whatever their text.
  std::vector<Pagamento> ordine;
  std::vector<std::vector<Valore>> righe;
  for (; !rs.Eof(); rs.MoveNext()) {
    std::vector<Valore> v;
    for (int i = 0; i < rs.FieldCount(); ++i) v.push_back(rs(i).Value());
    ordine.push_back({NullToZeroLng(Valore(T(v[0]))), righe.size()});
    righe.push_back(std::move(v));
  }
  std::stable_sort(ordine.begin(), ordine.end(), [](const Pagamento& a, const Pagamento& b) { return a.riga < b.riga; });
  const auto riferimento = dataRiferimento.ComeData();
  for (const auto& o : ordine) {
    const auto& v = righe[o.pos];
    if (riferimento && v[2].ComeData() && *riferimento < *v[2].ComeData()) continue;
    const Importo pagato = NullToZeroCy(v[1]);
    const std::string tipo = T(v[5]);
    // The side of the payment: one that lowers the open amount of its instalment is the
    // ordinary one (a receipt from a client, a payment to a supplier).
    const bool ordinario = (NullToZeroCy(v[9]) < Importo()) == (pagato < Importo());
    std::string descrizione = T(v[3]);
    if (descrizione.empty())
      descrizione = tipo == "FO" ? (ordinario ? "Pagamento a fornitore" : "Incasso da fornitore")
                                 : (ordinario ? "Incasso cliente" : "Pagamento a cliente");
    SaldoPartita -= pagato;
    SaldoProgressivo -= pagato;
    Riga r;
    r.clientName = clientName;
    r.tipo = tipo;
    r.codice = T(v[6]);
    r.ragione = T(v[7]);
    r.descrizione = descrizione;
    r.numeroDoc = T(v[10]);
    r.serie = T(v[11]);
    r.dataDoc = TestoData(v[2]);
    r.simbolo = valute_ ? valute_->GetSimboloValuta(v[8]) : std::string();
    if (r.simbolo.empty()) r.simbolo = G().SimboloValutaConto;
    r.pagato = Formatta(pagato, v[8]);
    r.progressivo = Formatta(SaldoProgressivo, v[8]);
    r.numeroProgressivo = numero;
    r.numeroRegistrazione = T(v[4]);
    if (!r.numeroRegistrazione.empty()) attribuito_[r.numeroRegistrazione] -= pagato;
    Scrivi(r);
    ++numeroRiga;
  }
}

bool clsEstrattoContoContabile::MakeEstrattoConto(IForm* objFormAttiva, const std::string& clientName,
                                                  clsValute* objValute, const Valore& avarTipoCliFor,
                                                  const Valore& avarCodiceCliFor, const Valore& avar_DaData,
                                                  const Valore& avar_AData, const Valore& avar_DataRiferimento,
                                                  Recordset& TE) {
  const std::string tipo = TipoScadenziario(avarTipoCliFor);
  if (tipo != "CL" && tipo != "FO")
    throw ErroreDb(13, "Estratto conto: tipo \"" + T(avarTipoCliFor) + "\" non valido (C o F).");
  const std::string codice = T(avarCodiceCliFor);
  const std::string ind = tipo == "CL" ? "C" : "F";
  const Valore da = Estremo(avar_DaData, 1980, 1, 1), a = Estremo(avar_AData, 2050, 12, 31);
  const Valore riferimento = DataIngresso(avar_DataRiferimento, "data di riferimento");
  // The journal is read up to the end of the range or to the date of the statement.
  Valore finoA = a;
  if (riferimento.ComeData() && *riferimento.ComeData() < *a.ComeData()) finoA = riferimento;

  std::unique_ptr<clsValute> propria;
  if (!objValute) {
    propria = std::make_unique<clsValute>();
    propria->cn = static_cast<const std::shared_ptr<Connessione>&>(cn);
    objValute = propria.get();
  }
  valute_ = objValute;
  struct Ripristina {
    clsValute*& v;
    ~Ripristina() { v = nullptr; }
  } ripristina{valute_};

  const std::string ragioneAnagrafica =
      T(cn->Scalare(std::string("SELECT [Ragione Sociale] FROM ") +
                        (ind == "C" ? "[Anagrafica Clienti]" : "[Anagrafica Fornitori]") + " WHERE [Codice Cliente] = ?",
                    {Valore(codice)}));
  const std::string simboloConto = G().SimboloValutaConto;

  bool dati = false;
  saldoFinale_ = Importo();
  ConRiprova(*cn, [&] {
    Atomico unita(*cn);
    dati = false;
    differenze_ = 0;
    attribuito_.clear();
    cn->Esegui("DELETE FROM [Elaborazione Estratto Conto Vorn] WHERE [ClientName] = ?", {Valore(clientName)});
    Recordset documenti = cn->Execute(
        "SELECT [Tipo], [Codice Cliente], MIN([Ragione Sociale]), [Numero Documento], COALESCE([Serie], ''), "
        "[Data Documento], COALESCE([Codice valuta], ''), [Importo Documento], MIN([Numero Progressivo]), "
        "MIN([numeroRegistrazione]) FROM [Scadenziario] WHERE [Tipo] = ? AND [Codice Cliente] = ? AND "
        "[Data Documento] >= ? AND [Data Documento] <= ? GROUP BY [Tipo], [Codice Cliente], [Numero Documento], "
        "COALESCE([Serie], ''), [Data Documento], COALESCE([Codice valuta], ''), [Importo Documento] "
        "ORDER BY [Data Documento], [Numero Documento], COALESCE([Serie], '')",
        {Valore(tipo), Valore(codice), da, a});
    long numeroRiga = 0;
    Importo saldoProgressivo;
    for (; !documenti.Eof(); documenti.MoveNext()) {
      dati = true;
      const Valore numeroDoc = documenti(3).Value(), serie = documenti(4).Value(), dataDoc = documenti(5).Value(),
                   valuta = documenti(6).Value();
      const Importo importoDoc = NullToZeroCy(documenti(7).Value());
      std::string simbolo = objValute->GetSimboloValuta(valuta);
      if (simbolo.empty()) simbolo = simboloConto;
      Riga testa;
      testa.clientName = clientName;
      testa.tipo = tipo;
      testa.codice = codice;
      testa.ragione = T(documenti(2).Value()).empty() ? ragioneAnagrafica : T(documenti(2).Value());
      testa.descrizione = (tipo == "CL" ? (importoDoc < Importo() ? "Nota di credito emessa" : "Fattura emessa")
                                        : (importoDoc < Importo() ? "Fattura di acquisto" : "Nota credito da fornitore")) +
                          std::string(" Partita n. ") + T(documenti(8).Value());
      testa.numeroDoc = T(numeroDoc);
      testa.serie = T(serie);
      testa.dataDoc = TestoData(dataDoc);
      testa.simbolo = simbolo;
      testa.numeroRegistrazione = T(documenti(9).Value());
      Scrivi(testa);
      ++numeroRiga;
      if (objFormAttiva)
        objFormAttiva->msgbar("Estratto conto: documento n. " + T(numeroDoc) + " del " + TestoData(dataDoc));

      Recordset rate = cn->Execute(
          std::string("SELECT [Numero Progressivo], [Tipo di Effetto], [Insoluto], [Data Scadenza], "
                      "[Importo Scadenza], [Note] FROM [Scadenziario] WHERE ") +
              kFiltroDocumento + " ORDER BY [Data Scadenza], [Insoluto], [Numero Progressivo]",
          {Valore(tipo), Valore(codice), numeroDoc, serie, dataDoc});
      Importo saldoPartita;
      for (; !rate.Eof(); rate.MoveNext()) {
        const Importo importo = NullToZeroCy(rate(4).Value());
        saldoPartita += importo;
        saldoProgressivo += importo;
        Riga r = testa;
        r.descrizione = DescrizioneTipoEffetto(T(rate(1).Value())) + (rate(2).Value().Vero() ? " da insol." : "") +
                        " scad. il " + TestoData(rate(3).Value());
        r.scadenza = Formatta(importo, valuta);
        r.progressivo = Formatta(saldoProgressivo, valuta);
        r.note = T(rate(5).Value());
        r.numeroProgressivo = rate(0).Value();
        if (!testa.numeroRegistrazione.empty()) attribuito_[testa.numeroRegistrazione] += importo;
        r.numeroRegistrazione.clear();
        Scrivi(r);
        ++numeroRiga;
        AggiungiPagamenti(objFormAttiva, clientName, numeroRiga, rate(0).Value(), saldoPartita, saldoProgressivo,
                          riferimento);
      }
      Riga saldo = testa;
      saldo.descrizione = " Saldo partita";
      saldo.scadenza = Formatta(saldoPartita, valuta);
      saldo.progressivo = Formatta(saldoProgressivo, valuta);
      saldo.numeroRegistrazione.clear();
      Scrivi(saldo);
      ++numeroRiga;
    }

    // The journal entries of the counterparty in the range, by date, each with the sum of its
    // rows on the account: an entry the book does not name is a line of its own; one it names
    // gives a line only for what the journal moved beyond the book's lines.
    const Parametri p = {Valore(ind), Valore(codice), da, finoA};
    Recordset movimenti = cn->Execute(
        "SELECT P.[NumeroRegistrazione], MIN(P.[DataRegistrazione]), MIN(P.[CodiceCausale]), "
        "MIN(C.[DescrizioneCausale]), MIN(P.[DescrizioneSupplem]), MIN(P.[NumeroDocumento]), "
        "MIN(P.[SerieDocumento]), SUM(CASE WHEN P.[DareAvere] = 'D' THEN P.[ImportoMovimento] ELSE "
        "-P.[ImportoMovimento] END) FROM [Prima Nota] P LEFT JOIN [Causali Contabili] C ON "
        "C.[CodiceCausale] = P.[CodiceCausale] WHERE P.[IndClienteFornitore] = ? AND P.[CodClienteFornitore] = ? AND "
        "P.[DataRegistrazione] >= ? AND P.[DataRegistrazione] <= ? GROUP BY P.[NumeroRegistrazione] "
        "ORDER BY MIN(P.[DataRegistrazione]), P.[NumeroRegistrazione]",
        p);
    // A line of the counterparty outside its documents.
    Riga conto;
    conto.clientName = clientName;
    conto.tipo = tipo;
    conto.codice = codice;
    conto.ragione = ragioneAnagrafica;
    conto.simbolo = simboloConto;
    bool primo = true;
    for (; !movimenti.Eof(); movimenti.MoveNext()) {
      const std::string registrazione = T(movimenti(0).Value());
      Importo importo = NullToZeroCy(movimenti(7).Value());
      auto nominata = attribuito_.find(registrazione);
      if (nominata != attribuito_.end()) importo -= nominata->second;
      if (nominata != attribuito_.end() && importo.Zero()) continue;
      dati = true;
      Riga r = conto;
      if (primo) {
        primo = false;
        r.descrizione = "Movimenti contabili senza scadenze";
        Scrivi(r);
        ++numeroRiga;
      }
      std::string descrizione = T(movimenti(3).Value());
      if (!T(movimenti(4).Value()).empty()) descrizione += (descrizione.empty() ? "" : " ") + T(movimenti(4).Value());
      r.descrizione = descrizione;
      r.numeroDoc = NullToZeroLng(movimenti(5).Value()) ? T(movimenti(5).Value()) : std::string();
      r.serie = T(movimenti(6).Value());
      r.dataDoc = TestoData(movimenti(1).Value());
      if (nominata != attribuito_.end()) {
        r.note = "Differenza tra scadenziario e prima nota";
        ++differenze_;
      }
      // A movement on the counterparty's own side (a client's debit, a supplier's credit) stands
      // among the amounts due with the sign of the instalments, the others among the amounts
      // paid with the sign of the payments.
      const bool dovuto = tipo == "CL" ? importo > Importo() : importo < Importo();
      if (dovuto) r.scadenza = Formatta(importo, Valore(""));
      else r.pagato = Formatta(-importo, Valore(""));
      saldoProgressivo += importo;
      r.progressivo = Formatta(saldoProgressivo, Valore(""));
      r.numeroRegistrazione = registrazione;
      r.causale = T(movimenti(2).Value());
      Scrivi(r);
      ++numeroRiga;
    }
    if (dati) {
      Riga fine = conto;
      fine.descrizione = " Saldo finale";
      fine.progressivo = Formatta(saldoProgressivo, Valore(""));
      Scrivi(fine);
    }
    unita.Conferma();
    saldoFinale_ = saldoProgressivo;
  });
  if (!dati) {
    Host().MsgBox("Nessun dato da elaborare.", vbInformation, kTitolo);
    return false;
  }
  TE = cn->Execute("SELECT * FROM [Elaborazione Estratto Conto Vorn] WHERE [ClientName] = ? ORDER BY [ID]",
                   {Valore(clientName)});
  return true;
}

}  // namespace vorn
