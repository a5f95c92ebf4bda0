#include "receivables/clsDistinteBonifici.h"

#include <cmath>

#include "company/clsProgAzienda.h"
#include "frame/Comuni.h"
#include "frame/Globali.h"
#include "frame/Int128.h"
#include "frame/VornServer.h"

namespace vorn {

namespace {

constexpr const char* kTesta = "Distinte Bonifici";
constexpr const char* kRighe = "Distinte Bonifici Righe";

Valore Numero(const Valore& v) { return Valore(static_cast<long long>(NullToZeroLng(v))); }

// The supplier instalments that may join a list: owed (below 0), not unified away, in no list,
// not suspended. The kind is the first parameter.
constexpr const char* kCandidate =
    "[Scadenziario].[Tipo di Effetto] = ? AND [Scadenziario].[Importo Scadenza] < 0 AND "
    "COALESCE([Scadenziario].[Flag Unificata], 0) <> 2 AND [Scadenziario].[Tipo] IN ('F', 'FO') AND "
    "COALESCE([Scadenziario].[Distinta], ?) = ? AND COALESCE([Scadenziario].[Sospeso], ?) = ? AND "
    "COALESCE([Scadenziario].[Contabilizzato], ?) = ?";

Parametri ParametriCandidate(const Valore& tipo) {
  const Valore no(false);
  return {Valore(TrimTesto(tipo)), no, no, no, no, no, no};
}

std::string TestoColonna(Connessione& cn, const char* colonna, const Valore& n) {
  Valore v = cn.Scalare(std::string("SELECT [") + colonna + "] FROM [Distinte Bonifici] WHERE [Numero Distinta] = ?",
                        {Numero(n)});
  if (v.IsNull() || v.IsEmpty()) return {};
  if (v.IsDate()) return DataInTesto(v).Testo();
  return TrimTesto(v);
}

}  // namespace

int32_t clsDistinteBonifici::GetMaxDiNumeroDistinta() {
  return static_cast<int32_t>(NullToZeroLng(cn->Scalare("SELECT MAX([Numero Distinta]) FROM [Distinte Bonifici]")));
}

std::string clsDistinteBonifici::GetDataDistinta(const Valore& n) { return TestoColonna(*cn, "Data Distinta", n); }
std::string clsDistinteBonifici::GetDataEsecuzione(const Valore& n) { return TestoColonna(*cn, "Data Esecuzione", n); }
std::string clsDistinteBonifici::GetSottocontoBancaDistinta(const Valore& n) {
  return TestoColonna(*cn, "SottocontoBanca", n);
}

bool clsDistinteBonifici::SmarcaPresentazioneDistintaTutteLeRighe(const Valore& Numero_Distinta) {
  std::vector<Valore> numeri;
  cn->Scorri(
      "SELECT [Distinte Bonifici Righe].[Numero Progressivo] FROM [Distinte Bonifici Righe] INNER JOIN [Scadenziario] "
      "ON [Distinte Bonifici Righe].[Numero Progressivo] = [Scadenziario].[Numero Progressivo] "
      "WHERE [Distinte Bonifici Righe].[Numero Distinta] = ? "
      "ORDER BY [Distinte Bonifici Righe].[Progressivo Riga], [Scadenziario].[Data Scadenza]",
      {Numero(Numero_Distinta)}, [&](const std::vector<Colonna>&, const std::vector<Valore>& r) {
        numeri.push_back(r[0]);
        return true;
      });
  Atomico unita(*cn);
  for (const Valore& n : numeri)
    AggiornaFlagPresentatoInDistinta(n, false, Valore(""), Valore(""), Valore::Null(), Valore(0));
  unita.Conferma();
  return true;
}

bool clsDistinteBonifici::AggiornaFlagPresentatoInDistinta(const Valore& Numero_progressivo, bool Stato,
                                                           const Valore& Codice_Banca_Presentazione,
                                                           const Valore& Codice_Agenzia_Presentazione,
                                                           const Valore& Data_presentazione,
                                                           const Valore& Progressivo_Distinta) {
  Parametri p;
  if (Stato)
    p = {Valore(true), Valore(TrimTesto(Codice_Banca_Presentazione)), Valore(TrimTesto(Codice_Agenzia_Presentazione)),
         Data_presentazione.IsDate() ? DataIngresso(Data_presentazione) : Valore::Null(), Numero(Progressivo_Distinta)};
  else
    p = {Valore(false), Valore(""), Valore(""), Valore::Null(), Valore(0)};
  p.push_back(Numero(Numero_progressivo));
  return cn->Esegui("UPDATE [Scadenziario] SET [Distinta] = ?, [Tipo Presentazione] = '', "
                    "[Codice Banca presentazione] = ?, [Codice Agenzia presentazione] = ?, [Data presentazione] = ?, "
                    "[Progressivo Distinta] = ? WHERE [Numero Progressivo] = ?",
                    p) > 0;
}

bool clsDistinteBonifici::SalvaRecord(const RecordValori& valori, const Valore& clientID, long hWnd, bool& Cancel) {
  auto it = valori.find("Numero Distinta");
  if (it == valori.end() || NullToZeroLng(it->second) == 0)
    throw ErroreDb(13, "SalvaRecord: numero della distinta mancante");
  const Valore n = Numero(it->second);
  return SalvaRecordProtocollo(*cn, kTesta, "[Numero Distinta] = ?", {n}, clientID, hWnd, Cancel,
                               [&](Recordset& rs, bool) {
                                 for (const auto& [c, v] : valori) rs(c) = c == "Numero Distinta" ? n : v;
                               });
}

bool clsDistinteBonifici::SalvaRecordRighe(const Valore& Numero_Distinta, const Valore& Progressivo_Riga,
                                           const Valore& Numero_progressivo, const Valore& Tipo_effetto,
                                           const Valore& clientID, long hWnd, bool& Cancel) {
  return SalvaRecordProtocollo(*cn, kRighe, "[Numero Distinta] = ? AND [Progressivo Riga] = ?",
                               {Numero(Numero_Distinta), Numero(Progressivo_Riga)}, clientID, hWnd, Cancel,
                               [&](Recordset& rs, bool) {
                                 rs("Numero Distinta") = Numero(Numero_Distinta);
                                 rs("Progressivo Riga") = Numero(Progressivo_Riga);
                                 rs("Numero Progressivo") = Numero(Numero_progressivo);
                                 rs("Tipo effetto") = Valore(TrimTesto(Tipo_effetto));
                               });
}

bool clsDistinteBonifici::CancellaRecordRighe(const Valore& n) {
  cn->Esegui("DELETE FROM [Distinte Bonifici Righe] WHERE [Numero Distinta] = ?", {Numero(n)});
  return true;
}

bool clsDistinteBonifici::CancellaRecord(const Valore& n) {
  return cn->Esegui("DELETE FROM [Distinte Bonifici] WHERE [Numero Distinta] = ?", {Numero(n)}) > 0;
}

bool clsDistinteBonifici::ExistNumeroDistinta(const Valore& n) {
  return !cn->Scalare("SELECT [Numero Distinta] FROM [Distinte Bonifici] WHERE [Numero Distinta] = ?", {Numero(n)})
              .IsNull();
}

bool clsDistinteBonifici::ExistEffettiEmessiDistinta(const Valore& n) {
  return NullToZeroLng(cn->Scalare(
             "SELECT COUNT(*) FROM [Distinte Bonifici Righe] INNER JOIN [Scadenziario] ON "
             "[Distinte Bonifici Righe].[Numero Progressivo] = [Scadenziario].[Numero Progressivo] "
             "WHERE [Distinte Bonifici Righe].[Numero Distinta] = ? AND [Scadenziario].[Emesso] = ?",
             {Numero(n), Valore(true)})) > 0;
}

bool clsDistinteBonifici::RecordPrecedente(Valore& n) {
  Valore v = NullToZeroLng(n) == 0
                 ? cn->Scalare("SELECT MAX([Numero Distinta]) FROM [Distinte Bonifici]")
                 : cn->Scalare("SELECT MAX([Numero Distinta]) FROM [Distinte Bonifici] WHERE [Numero Distinta] < ?",
                               {Numero(n)});
  if (v.IsNull()) return false;
  n = Numero(v);
  return true;
}

bool clsDistinteBonifici::RecordSuccessivo(Valore& n) {
  Valore v = NullToZeroLng(n) == 0
                 ? cn->Scalare("SELECT MIN([Numero Distinta]) FROM [Distinte Bonifici]")
                 : cn->Scalare("SELECT MIN([Numero Distinta]) FROM [Distinte Bonifici] WHERE [Numero Distinta] > ?",
                               {Numero(n)});
  if (v.IsNull()) return false;
  n = Numero(v);
  return true;
}

bool clsDistinteBonifici::LocalizzaRecord(Recordset& T, const Valore& n, const Valore& clientID, long hWnd) {
  return LocalizzaRecordProtocollo(*cn, T, kTesta, "[Numero Distinta] = ?", {Numero(n)}, clientID, hWnd);
}

bool clsDistinteBonifici::LocalizzaRecordRighe(Recordset& T, const Valore& n, const Valore&, long) {
  T = cn->Execute(
      "SELECT [Distinte Bonifici Righe].[Numero Distinta], [Distinte Bonifici Righe].[Progressivo Riga], "
      "[Distinte Bonifici Righe].[Tipo effetto], [Distinte Bonifici Righe].[Numero Progressivo] AS [Numero "
      "Progressivo Riga], [Scadenziario].* FROM [Scadenziario] RIGHT JOIN [Distinte Bonifici Righe] ON "
      "[Scadenziario].[Numero Progressivo] = [Distinte Bonifici Righe].[Numero Progressivo] "
      "WHERE [Distinte Bonifici Righe].[Numero Distinta] = ? "
      "ORDER BY [Distinte Bonifici Righe].[Progressivo Riga], [Scadenziario].[Data Scadenza]",
      {Numero(n)});
  return !T.Eof();
}

bool clsDistinteBonifici::LocalizzaEffettiDaEmettere(Recordset& T, const Valore& Tipo_di_Effetto,
                                                     const Valore& Data_Scadenza_Limite) {
  Parametri p = ParametriCandidate(Tipo_di_Effetto);
  p.push_back(DataIngresso(Data_Scadenza_Limite, "data di scadenza limite"));
  T = cn->Execute(
      std::string("SELECT [Numero Progressivo], [Tipo di Effetto], [Codice Cliente], [Ragione Sociale], [Codice Banca], "
                  "[Codice Agenzia], [Descrizione Banca], [Descrizione Agenzia], '' AS [AbiCab], [Conto corrente], "
                  "[IBAN], [BBAN], [Data Scadenza], [Importo Scadenza], [Cambio] FROM [Scadenziario] WHERE ") +
          kCandidate + " AND [Data Scadenza] <= ? ORDER BY [Data Scadenza], [Codice Cliente], [Numero Progressivo]",
      p);
  return !T.Eof();
}

bool clsDistinteBonifici::LocalizzaEffettiEmissione(Recordset& T, const Valore& n) {
  T = cn->Execute(
      "SELECT [Distinte Bonifici].[Numero Distinta], [Distinte Bonifici Righe].[Progressivo Riga], "
      "[Distinte Bonifici].[Data Distinta], [Distinte Bonifici].[Data Esecuzione], [Banche Azienda].[Codice ABI], "
      "[Banche Azienda].[Codice CAB], [Banche Azienda].[Codice SIA], [Banche Azienda].[Conto ordinante], "
      "[Banche Azienda].[Firma azienda], [Anagrafica Fornitori].[IBAN] AS [IBANAzienda], "
      "[Banche Azienda].[BBAN] AS [BBANAzienda], [Scadenziario].[Numero Progressivo], [Scadenziario].[Tipo], "
      "[Scadenziario].[Data Scadenza], [Scadenziario].[Codice Cliente], [Scadenziario].[Ragione Sociale], "
      "[Anagrafica Fornitori].[Ragione Sociale 2], [Anagrafica Fornitori].[Partita Iva], "
      "[Anagrafica Fornitori].[Codice Nazione], [Anagrafica Fornitori].[Codice Fiscale], [Scadenziario].[Indirizzo], "
      "[Scadenziario].[Cap], [Scadenziario].[Località], [Scadenziario].[Provincia], [Scadenziario].[Numero Documento], "
      "[Scadenziario].[Serie], [Scadenziario].[Data Documento], [Scadenziario].[NumeroDiProtocollo], "
      "[Scadenziario].[Codice valuta], [Scadenziario].[Cambio], [Scadenziario].[Importo Documento], "
      "[Scadenziario].[Importo Scadenza], [Scadenziario].[Codice Banca], [Scadenziario].[Codice Agenzia], "
      "[Scadenziario].[Conto corrente], [Scadenziario].[IBAN], [Scadenziario].[BBAN], "
      "[Anagrafica Fornitori].[IBAN] AS [IBANFornitore], [Anagrafica Fornitori].[BBAN] AS [BBANFornitore], "
      "[PA Contratti].[CUP], [PA Contratti].[CIG] "
      "FROM ((([Distinte Bonifici] INNER JOIN [Distinte Bonifici Righe] ON [Distinte Bonifici].[Numero Distinta] = "
      "[Distinte Bonifici Righe].[Numero Distinta]) INNER JOIN [Scadenziario] ON [Distinte Bonifici Righe].[Numero "
      "Progressivo] = [Scadenziario].[Numero Progressivo]) INNER JOIN [Banche Azienda] ON "
      "[Distinte Bonifici].[Codice Banca] = [Banche Azienda].[Codice banca] AND [Distinte Bonifici].[Codice Agenzia] = "
      "[Banche Azienda].[Codice agenzia]) LEFT JOIN [Anagrafica Fornitori] ON [Scadenziario].[Codice Cliente] = "
      "[Anagrafica Fornitori].[Codice Cliente] LEFT JOIN [PA Contratti] ON [Scadenziario].[PA codice contratto 1] = "
      "[PA Contratti].[Codice] WHERE [Distinte Bonifici].[Numero Distinta] = ? AND "
      "COALESCE([Scadenziario].[Flag Unificata], 0) <> 2 "
      "ORDER BY [Distinte Bonifici].[Numero Distinta], [Distinte Bonifici Righe].[Progressivo Riga]",
      {Numero(n)});
  return !T.Eof();
}

bool clsDistinteBonifici::GetDatiAzienda(Valore& Ragione_Sociale, Valore& Indirizzo, Valore& Cap, Valore& Citta,
                                         Valore& Provincia) {
  Recordset rs = cn->Execute("SELECT [Ragione Sociale], [Indirizzo], [Cap], [Citta], [Provincia] FROM [Tabella Azienda]");
  if (rs.Eof()) return false;
  Ragione_Sociale = Valore(TrimTesto(rs(0).Value()));
  Indirizzo = Valore(TrimTesto(rs(1).Value()));
  Cap = Valore(TrimTesto(rs(2).Value()));
  Citta = Valore(TrimTesto(rs(3).Value()));
  Provincia = Valore("(" + TrimTesto(rs(4).Value()) + ")");
  return true;
}

Importo clsDistinteBonifici::GetResiduiTipoEffetto(const Valore& Tipo_di_Effetto) {
  // Each amount in the company's currency: divided by its rate (none or 0 reads 1), rounded
  // once at the end.
  Int128 somma = 0;
  cn->Scorri(std::string("SELECT [Importo Scadenza], [Cambio] FROM [Scadenziario] WHERE ") + kCandidate,
             ParametriCandidate(Tipo_di_Effetto), [&](const std::vector<Colonna>&, const std::vector<Valore>& r) {
               double c = r[1].IsNull() ? 1.0 : NullToZeroDbl(r[1]);
               int64_t m = std::llround((c == 0 ? 1.0 : c) * 1000000.0);
               somma += static_cast<Int128>(NullToZeroCy(r[0]).Raw()) * 1000000000000LL / m;
               return true;
             });
  return ArrotondaRapporto(somma, 1000000, G().DecimaliImporti);
}

bool clsDistinteBonifici::LocalizzaDatiBancaAzienda(const Valore& Codice_Banca, const Valore& Codice_Agenzia,
                                                    Valore& Descrizione, Valore& codice_ABI, Valore& codice_CAB) {
  Recordset rs = cn->Execute(
      "SELECT [Descrizione], [Codice ABI], [Codice CAB] FROM [Banche Azienda] WHERE [Codice banca] = ? AND "
      "[Codice agenzia] = ?",
      {Valore(TrimTesto(Codice_Banca)), Valore(TrimTesto(Codice_Agenzia))});
  if (rs.Eof()) return false;
  Descrizione = Valore(TrimTesto(rs(0).Value()));
  codice_ABI = Valore(TrimTesto(rs(1).Value()));
  codice_CAB = Valore(TrimTesto(rs(2).Value()));
  return true;
}

bool clsDistinteBonifici::GetDatiBancaAgenziaPresDistintaBonifici(const Valore& n, Valore& Codice_Banca_Presentazione,
                                                                  Valore& Codice_Agenzia_Presentazione) {
  Recordset rs = cn->Execute(
      "SELECT [Codice Banca], [Codice Agenzia] FROM [Distinte Bonifici] WHERE [Numero Distinta] = ?", {Numero(n)});
  if (rs.Eof()) return false;
  Codice_Banca_Presentazione = Valore(TrimTesto(rs(0).Value()));
  Codice_Agenzia_Presentazione = Valore(TrimTesto(rs(1).Value()));
  return true;
}

bool clsDistinteBonifici::AggiornaFlagEffettiEmessi(const Valore& n, bool Stato) {
  cn->Esegui("UPDATE [Scadenziario] SET [Emesso] = ? WHERE [Numero Progressivo] IN (SELECT [Numero Progressivo] "
             "FROM [Distinte Bonifici Righe] WHERE [Numero Distinta] = ?)",
             {Valore(Stato), Numero(n)});
  return true;
}

bool clsDistinteBonifici::AggiornaEffettiEmessiInDistinta(const Valore& n, bool Stato) {
  return cn->Esegui("UPDATE [Distinte Bonifici] SET [EffettiEmessi] = ? WHERE [Numero Distinta] = ?",
                    {Valore(Stato), Numero(n)}) > 0;
}

bool clsDistinteBonifici::AggiornaDistintaContabilizzata(const Valore& n, bool Stato) {
  return cn->Esegui("UPDATE [Distinte Bonifici] SET [Contabilizzata] = ? WHERE [Numero Distinta] = ?",
                    {Valore(Stato), Numero(n)}) > 0;
}

bool clsDistinteBonifici::EmettiDistinta(const Valore& n) {
  Atomico unita(*cn);
  if (!AggiornaEffettiEmessiInDistinta(n, true)) return false;
  AggiornaFlagEffettiEmessi(n, true);
  unita.Conferma();
  return true;
}

bool clsDistinteBonifici::AnnullaDistinta(const Valore& n) {
  Atomico unita(*cn);
  // Claimed first: a list posted meanwhile stays as it is.
  if (cn->Esegui("DELETE FROM [Distinte Bonifici] WHERE [Numero Distinta] = ? AND COALESCE([Contabilizzata], ?) = ?",
                 {Numero(n), Valore(false), Valore(false)}) == 0)
    return false;
  cn->Esegui("UPDATE [Scadenziario] SET [Distinta] = ?, [Emesso] = ?, [Tipo Presentazione] = '', "
             "[Codice Banca presentazione] = '', [Codice Agenzia presentazione] = '', [Data presentazione] = NULL, "
             "[Progressivo Distinta] = 0 WHERE [Numero Progressivo] IN (SELECT [Numero Progressivo] FROM "
             "[Distinte Bonifici Righe] WHERE [Numero Distinta] = ?)",
             {Valore(false), Valore(false), Numero(n)});
  CancellaRecordRighe(n);
  unita.Conferma();
  return true;
}

int32_t clsDistinteBonifici::CreaDistinta(const NuovaDistintaBonifici& d, const Valore& clientID, long hWnd) {
  const Valore dataDistinta = DataIngresso(d.Data_Distinta, "data della distinta");
  const Valore dataEsecuzione = DataIngresso(d.Data_Esecuzione, "data di esecuzione");
  const Valore limite = DataIngresso(d.Data_Scadenza_Limite, "data di scadenza limite");
  if (dataDistinta.IsNull() || dataEsecuzione.IsNull() || limite.IsNull())
    throw ErroreDb(13, "CreaDistinta: date della distinta mancanti");
  int32_t numero = 0;
  ConRiprova(*cn, [&] {
    numero = 0;
    Atomico unita(*cn);
    // The candidates read inside the transaction, each taken by a write that finds it still
    // free: an instalment another list took meanwhile is left to it.
    struct Rata {
      Valore numero;
      Importo importo;
    };
    std::vector<Rata> rate;
    Recordset T;
    LocalizzaEffettiDaEmettere(T, Valore("BO"), limite);
    Importo totale;
    for (; !T.Eof(); T.MoveNext()) {
      Importo imp = NullToZeroCy(T("Importo Scadenza").Value());
      if (!d.ImportoLimite.Zero() && -(totale + imp) > d.ImportoLimite) continue;
      rate.push_back({T("Numero Progressivo").Value(), imp});
      totale += imp;
    }
    T.Close();
    if (rate.empty()) return;
    clsProgAzienda prog;
    prog.cn = static_cast<const std::shared_ptr<Connessione>&>(cn);
    numero = prog.PrendiNumeroDistintaBonifici();
    Importo presi;
    int32_t riga = 0;
    for (const Rata& r : rate) {
      if (cn->Esegui("UPDATE [Scadenziario] SET [Distinta] = ?, [Tipo Presentazione] = '', "
                     "[Codice Banca presentazione] = ?, [Codice Agenzia presentazione] = ?, [Data presentazione] = ?, "
                     "[Progressivo Distinta] = ? WHERE [Numero Progressivo] = ? AND COALESCE([Distinta], ?) = ?",
                     {Valore(true), Valore(TrimTesto(d.Codice_Banca)), Valore(TrimTesto(d.Codice_Agenzia)),
                      dataDistinta, Valore(numero), Numero(r.numero), Valore(false), Valore(false)}) == 0)
        continue;
      bool cancel = false;
      SalvaRecordRighe(Valore(numero), Valore(++riga), r.numero, Valore("BO"), clientID, hWnd, cancel);
      presi += r.importo;
    }
    if (riga == 0) {
      numero = 0;
      return;
    }
    RecordValori testa;
    testa["Numero Distinta"] = Valore(numero);
    testa["Data Distinta"] = dataDistinta;
    testa["Data Esecuzione"] = dataEsecuzione;
    testa["Codice Banca"] = Valore(TrimTesto(d.Codice_Banca));
    testa["Codice Agenzia"] = Valore(TrimTesto(d.Codice_Agenzia));
    testa["ImportoLimiteBO"] = Valore(d.ImportoLimite);
    testa["DataLimiteBO"] = limite;
    testa["ImportoDistinta"] = Valore(-presi);
    testa["EffettiEmessi"] = Valore(false);
    testa["Contabilizzata"] = Valore(false);
    testa["numeroRegistrazione"] = Valore("");
    testa["DataRegistrazione"] = Valore::Null();
    testa["SottocontoBanca"] = Valore(TrimTesto(d.SottocontoBanca));
    bool cancel = false;
    SalvaRecord(testa, clientID, hWnd, cancel);
    unita.Conferma();
  });
  return numero;
}

// ---------------------------------------------------------------- effects' lists

int32_t clsDistinteEffetti::CreaDistinta(const NuovaDistintaEffetti& d, const std::vector<int32_t>& rate,
                                         const Valore& clientID, long hWnd) {
  const Valore data = DataIngresso(d.Data_Distinta, "data della distinta");
  if (data.IsNull()) throw ErroreDb(13, "CreaDistinta: data della distinta mancante");
  int32_t numero = 0;
  ConRiprova(*cn, [&] {
    numero = 0;
    Atomico unita(*cn);
    clsProgAzienda prog;
    prog.cn = static_cast<const std::shared_ptr<Connessione>&>(cn);
    Importo totale;
    long prese = 0;
    for (int32_t np : rate) {
      if (numero == 0) numero = prog.PrendiNumeroDistintaEffetti();
      // Taken only while still free: a client's, in no list, not posted, not suspended.
      if (cn->Esegui("UPDATE [Scadenziario] SET [Distinta] = ?, [Emesso] = ?, [Tipo Presentazione] = '', "
                     "[Codice Banca presentazione] = ?, [Codice Agenzia presentazione] = ?, [Data presentazione] = ?, "
                     "[Progressivo Distinta] = ? WHERE [Numero Progressivo] = ? AND [Tipo] = 'CL' AND " +
                         std::string("COALESCE([Distinta], ?) = ? AND COALESCE([Contabilizzato], ?) = ? AND "
                                     "COALESCE([Sospeso], ?) = ? AND COALESCE([Flag Unificata], 0) <> 2"),
                     {Valore(true), Valore(d.Emessa), Valore(TrimTesto(d.Codice_Banca)),
                      Valore(TrimTesto(d.Codice_Agenzia)), data, Valore(numero), Valore(np), Valore(false),
                      Valore(false), Valore(false), Valore(false), Valore(false), Valore(false)}) == 0)
        continue;
      cn->Esegui("INSERT INTO [Distinte Righe] ([Numero Distinta], [Numero Progressivo]) VALUES (?, ?)",
                 {Valore(numero), Valore(np)});
      totale += NullToZeroCy(
          cn->Scalare("SELECT [Importo Scadenza] FROM [Scadenziario] WHERE [Numero Progressivo] = ?", {Valore(np)}));
      ++prese;
    }
    if (prese == 0) {
      numero = 0;
      return;
    }
    bool cancel = false;
    SalvaRecordProtocollo(*cn, "Distinte", "[Numero Distinta] = ?", {Valore(numero)}, clientID, hWnd, cancel,
                          [&](Recordset& rs, bool) {
                            rs("Numero Distinta") = Valore(numero);
                            rs("Data Distinta") = data;
                            rs("Codice Banca") = Valore(TrimTesto(d.Codice_Banca));
                            rs("Codice Agenzia") = Valore(TrimTesto(d.Codice_Agenzia));
                            rs("ImportoDistinta") = Valore(totale);
                            rs("EffettiEmessi") = Valore(d.Emessa);
                            rs("Contabilizzata") = Valore(false);
                            rs("SottocontoBanca") = Valore(TrimTesto(d.SottocontoBanca));
                          });
    unita.Conferma();
  });
  return numero;
}

bool clsDistinteEffetti::GetSottocontoBanca(const Valore& Numero_progressivo, Valore& SottocontoBanca) {
  Recordset rs = cn->Execute(
      "SELECT [Distinte].[SottocontoBanca] FROM [Distinte] INNER JOIN [Distinte Righe] ON [Distinte].[Numero "
      "Distinta] = [Distinte Righe].[Numero Distinta] WHERE [Distinte Righe].[Numero Progressivo] = ?",
      {Numero(Numero_progressivo)});
  if (rs.Eof()) return false;
  SottocontoBanca = Valore(TrimTesto(rs(0).Value()));
  return true;
}

bool clsDistinteEffetti::AzzeraArchivio() {
  Atomico unita(*cn);
  cn->Esegui("DELETE FROM [Distinte]");
  cn->Esegui("DELETE FROM [Distinte Righe]");
  unita.Conferma();
  return true;
}

}  // namespace vorn
