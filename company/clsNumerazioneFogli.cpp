#include "company/clsNumerazioneFogli.h"

#include <algorithm>

#include "company/LetturaAzienda.h"
#include "company/clsAnagraficaAzienda.h"
#include "company/PresaNumero.h"
#include "frame/Comuni.h"
#include "frame/FileVorn.h"
#include "frame/Host.h"
#include "frame/Impaginazione.h"
#include "frame/VornServer.h"

namespace vorn {

using namespace azienda;

namespace {

constexpr const char* kTabella = "Numerazione Fogli";

ChiaveComposta Chiave(const Valore& TipoStampa, const Valore& TipoRegistro, const Valore& NumeroRegistro,
                  const Valore& anno, const Valore& Serie) {
  ChiaveComposta k(kTabella);
  k.Testo("TipoStampa", TipoStampa)
      .Testo("TipoRegistro", TipoRegistro)
      .Testo("NumeroRegistro", NumeroRegistro)
      .Numero("Anno", anno)
      .Testo("Serie", Serie);
  return k;
}

// The parts of an address, trimmed, joined by one blank; empty parts leave no gap.
std::string UnisciIndirizzo(std::initializer_list<std::string> parti) {
  std::string s;
  for (const auto& p : parti) {
    std::string t = Trim(p);
    if (t.empty()) continue;
    if (!s.empty()) s += ' ';
    s += t;
  }
  return s;
}

}  // namespace

bool clsNumerazioneFogli::LocalizzaRecord(Recordset& T, const Valore& TipoStampa, const Valore& TipoRegistro,
                                          const Valore& NumeroRegistro, const Valore& anno, const Valore& Serie,
                                          const Valore& clientID, long hWnd) {
  FiltroChiave f = Chiave(TipoStampa, TipoRegistro, NumeroRegistro, anno, Serie).Filtro();
  return LocalizzaRecordProtocollo(*cn, T, kTabella, f.Where(), f.Valori(), clientID, hWnd);
}

bool clsNumerazioneFogli::SalvaRecord(const Valore& TipoStampa, const Valore& TipoRegistro,
                                      const Valore& NumeroRegistro, const Valore& anno, const Valore& Serie,
                                      const Valore& Numero, const Valore& Azienda, const Valore& PartitaIVA,
                                      const Valore& Descrizione, const Valore& IndSede, const Valore& IndZero,
                                      const Valore& Indirizzo, const Valore& IndStampaAnno, const Valore& clientID,
                                      long hWnd, bool& Cancel) {
  ChiaveComposta k = Chiave(TipoStampa, TipoRegistro, NumeroRegistro, anno, Serie);
  FiltroChiave f = k.Filtro();
  return SalvaRecordProtocollo(*cn, kTabella, f.Where(), f.Valori(), clientID, hWnd, Cancel,
                               [&](Recordset& rs, bool) {
                                 k.Scrivi(rs);
                                 rs("Numero") = Numero;
                                 rs("Azienda") = Azienda;
                                 rs("PartitaIVA") = PartitaIVA;
                                 rs("Descrizione") = Descrizione;
                                 rs("IndSede") = IndSede;
                                 rs("IndZero") = IndZero;
                                 rs("Indirizzo") = Indirizzo;
                                 rs("IndStampaAnno") = IndStampaAnno;
                               });
}

bool clsNumerazioneFogli::CancellaRecord(const Valore& TipoStampa, const Valore& TipoRegistro,
                                         const Valore& NumeroRegistro, const Valore& anno, const Valore& Serie) {
  FiltroChiave f = Chiave(TipoStampa, TipoRegistro, NumeroRegistro, anno, Serie).Filtro();
  cn->Esegui("DELETE FROM [Numerazione Fogli] WHERE " + f.Where(), f.Valori());
  return true;
}

Valore clsNumerazioneFogli::GetDescrizioneRegistroProposta(const Valore& TipoStampa, const Valore& TipoRegistro) {
  std::string stampa = Trim(TipoStampa.Testo());
  std::string registro = Trim(TipoRegistro.Testo());
  if (stampa == "R") {
    if (registro == "V") return Valore("REGISTRO IVA VENDITE");
    if (registro == "A") return Valore("REGISTRO IVA ACQUISTI");
    if (registro == "E") return Valore("REGISTRO IVA CORRISPETTIVI IN VENTILAZIONE");
    if (registro == "C") return Valore("REGISTRO IVA CORRISPETTIVI IN SCORPORO");
    if (registro == "S") return Valore("REGISTRO IVA IN SOSPENSIONE");
    return Valore();
  }
  if (stampa == "L") return Valore("REGISTRO RIEPILOGATIVO LIQUIDAZIONE IVA");
  if (stampa == "G") return Valore("LIBRO GIORNALE");
  return Valore();
}

void clsNumerazioneFogli::GetDatiFiscaliProposti(Valore& Azienda, Valore& Partita_IVA, Valore& Ind_TipoSede,
                                                 Valore& Indirizzo) {
  clsAnagraficaAzienda anagrafica;
  anagrafica.cn = cn;
  std::string ragione, via, cap, citta, provincia, codiceFiscale, partitaIva, personaFisica, viaLegale, capLegale,
      cittaLegale, provinciaLegale;
  anagrafica.GetDatiFiscaliNumerazioneFogli(ragione, via, cap, citta, provincia, codiceFiscale, partitaIva,
                                            personaFisica, viaLegale, capLegale, cittaLegale, provinciaLegale);
  Azienda = Valore(ragione);
  if (Trim(personaFisica) == "1") {
    Ind_TipoSede = Valore("1");
    Partita_IVA = Valore(codiceFiscale);
    Indirizzo = Valore(UnisciIndirizzo({via, cap, citta, provincia}));
  } else {
    Ind_TipoSede = Valore("0");
    Partita_IVA = Valore(partitaIva);
    Indirizzo = Valore(UnisciIndirizzo({viaLegale, capLegale, cittaLegale, provinciaLegale}));
  }
}

bool clsNumerazioneFogli::GetDatiNumerazioneAutomatica(const Valore& TipoStampa, const Valore& TipoRegistro,
                                                       const Valore& NumeroRegistro, const Valore& anno,
                                                       const Valore& Serie, Valore& Azienda, Valore& Partita_IVA,
                                                       Valore& Descrizione, Valore& Indirizzo, Valore& Ind_TipoSede,
                                                       Valore& DaNumero, const Valore& clientID, long hWnd) {
  Recordset T;
  if (LocalizzaRecord(T, TipoStampa, TipoRegistro, NumeroRegistro, anno, Serie, clientID, hWnd)) {
    const Valore vuoto("");
    DaNumero = LeggiCampoAz(T, "Numero", Valore(1));
    Azienda = LeggiCampoAz(T, "Azienda", vuoto);
    Partita_IVA = LeggiCampoAz(T, "PartitaIVA", vuoto);
    Descrizione = LeggiCampoAz(T, "Descrizione", vuoto);
    Indirizzo = LeggiCampoAz(T, "Indirizzo", vuoto);
    Ind_TipoSede = LeggiCampoAz(T, "IndSede", Valore("0"));
    T.Close();
    return true;
  }
  Descrizione = GetDescrizioneRegistroProposta(TipoStampa, TipoRegistro);
  GetDatiFiscaliProposti(Azienda, Partita_IVA, Ind_TipoSede, Indirizzo);
  DaNumero = Valore("1");
  return false;
}

bool clsNumerazioneFogli::SalvaUltimoNumero(const Valore& TipoStampa, const Valore& TipoRegistro,
                                            const Valore& NumeroRegistro, const Valore& anno, const Valore& Serie,
                                            const Valore& Numero, const Valore& clientID, long hWnd) {
  if (Trim(TipoStampa.Testo()).empty()) return false;
  ChiaveComposta k = Chiave(TipoStampa, TipoRegistro, NumeroRegistro, anno, Serie);
  FiltroChiave f = k.Filtro();
  ScriviRiga(
      *cn, kTabella, f.Where(), f.Valori(), clientID, hWnd, [&](Recordset& rs) { rs("Numero") = Numero; },
      [&](Recordset& rs) {
        // A new sheet numbering starts from the proposed heading.
        Valore azienda, partitaIva, tipoSede, indirizzo;
        GetDatiFiscaliProposti(azienda, partitaIva, tipoSede, indirizzo);
        k.Scrivi(rs);
        rs("Descrizione") = GetDescrizioneRegistroProposta(TipoStampa, TipoRegistro);
        rs("Azienda") = azienda;
        rs("PartitaIVA") = partitaIva;
        rs("IndSede") = tipoSede;
        rs("Indirizzo") = indirizzo;
        rs("IndZero") = Valore("0");
      });
  return true;
}

bool clsNumerazioneFogli::AzzeraNumerazioneFogliIVA() {
  cn->Esegui("DELETE FROM [Numerazione Fogli] WHERE [TipoStampa] = 'R' OR [TipoStampa] = 'L'");
  return true;
}

bool clsNumerazioneFogli::AzzeraNumerazioneFogliLibroGiornale() {
  cn->Esegui("DELETE FROM [Numerazione Fogli] WHERE [TipoStampa] = 'G'");
  return true;
}

bool clsNumerazioneFogli::AzzeraNumerazioneFogliRegistroCespiti() {
  cn->Esegui("DELETE FROM [Numerazione Fogli] WHERE [TipoStampa] = 'B'");
  return true;
}

clsNumerazioneFogli::Fogli clsNumerazioneFogli::NumeraFogli(const std::string& ingresso, const std::string& uscita,
                                                             int righe, const Valore& TipoStampa,
                                                             const Valore& TipoRegistro,
                                                             const Valore& NumeroRegistro, int anno,
                                                             const Valore& clientID, long hWnd) {
  FileStampa out(uscita);
  Fogli f = NumeraFogli(ingresso, out.Flusso(), righe, TipoStampa, TipoRegistro, NumeroRegistro, anno, clientID, hWnd);
  out.Chiudi();
  return f;
}

clsNumerazioneFogli::Fogli clsNumerazioneFogli::NumeraFogli(const std::string& ingresso, std::ostream& uscita,
                                                             int righe, const Valore& TipoStampa,
                                                             const Valore& TipoRegistro,
                                                             const Valore& NumeroRegistro, int anno,
                                                             const Valore& clientID, long hWnd) {
  Valore azienda, partitaIva, descrizione, indirizzo, sede, daNumero;
  GetDatiNumerazioneAutomatica(TipoStampa, TipoRegistro, NumeroRegistro, Valore(anno), Valore(""), azienda, partitaIva,
                               descrizione, indirizzo, sede, daNumero, clientID, hWnd);
  auto testo = [](const Valore& v, int n) { return PadSinistra(Valore(Trim(v.Testo())), n); };
  std::string testata = testo(azienda, 40) + (Trim(sede.Testo()) == "1" ? "  COD. FISC.: " : "  P. IVA: ") +
                        testo(partitaIva, 16) + " " + testo(descrizione, 60);
  Fogli f;
  f.primo = std::max<long>(1, NullToZeroLng(daNumero));
  Valore numero(static_cast<long long>(f.primo));
  ImpaginaSemplice(ingresso, uscita, righe, 2, testata, 3, "", 2, std::to_string(anno), numero);
  f.prossimo = NullToZeroLng(numero);
  return f;
}

bool clsNumerazioneFogli::SalvaFogliStampati(const Valore& TipoStampa, const Valore& TipoRegistro,
                                             const Valore& NumeroRegistro, int anno, long prossimo,
                                             const Valore& clientID, long hWnd) {
  if (SalvaUltimoNumero(TipoStampa, TipoRegistro, NumeroRegistro, Valore(anno), Valore(""),
                        Valore(static_cast<long long>(prossimo)), clientID, hWnd))
    return true;
  Host().MsgBox("Errore in fase di aggiornamento ultimo numero pagina stampato", vbExclamation, "Numerazione fogli");
  return false;
}

}  // namespace vorn
