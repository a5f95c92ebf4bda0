#include "vat/clsLiquidazioneIva.h"

#include <algorithm>
#include <array>
#include <fstream>
#include <map>
#include <memory>
#include <vector>

#include "company/clsAnagraficaAzienda.h"
#include "company/clsImportiFissi.h"
#include "company/clsNumerazioneFogli.h"
#include "company/clsProgAzienda.h"
#include "frame/Catalogo.h"
#include "frame/Comuni.h"
#include "frame/FileVorn.h"
#include "frame/Globali.h"
#include "frame/Impaginazione.h"
#include "frame/TabellaLavoro.h"
#include "frame/VornServer.h"
#include "company/StampaLibri.h"
#include "vat/clsDatiIVA.h"
#include "vat/clsProgressiviIva.h"
#include "vat/clsRegistriIva.h"

namespace vorn {

namespace {

using namespace stampa_libri;

Importo Abs(Importo i) { return i < Importo() ? -i : i; }
int Decimali() { return G().DecimaliImporti; }

const std::string kMargine(37, ' ');
const std::string kRigaCalcolo = kMargine + std::string(55, '-');

// A line of the calculation: the label, the amount, an optional sign behind.
std::string Voce(const std::string& etichetta, Importo importo, const std::string& segno = "") {
  return kMargine + etichetta + Dx(Cifra(importo), 18) + segno;
}

std::string Maiuscolo(std::string s) {
  for (auto& c : s)
    if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
  return s;
}

std::string Riga(char c, int n) { return std::string(static_cast<size_t>(n), c); }

// The book whose sheets a settlement or an advance numbers: the book of settlements ("L") or a
// VAT register ("R" with its kind), and its number, "01" for none.
struct LibroFogli {
  std::string tipo, registro, numero;
};
LibroFogli LibroLiquidazioni(const std::string& TipoRegLiquidazione, const std::string& NumRegLiquidazione) {
  LibroFogli l{"L", "", Trim(NumRegLiquidazione)};
  if (l.numero.empty() || NullToZeroLng(Valore(l.numero)) == 0) l.numero = "01";
  const std::string t = Trim(TipoRegLiquidazione);
  if (t == "1") l.tipo = "R", l.registro = "V";
  else if (t == "2") l.tipo = "R", l.registro = "A";
  else if (t == "3") l.tipo = "R", l.registro = "C";
  else if (t == "4") l.tipo = "R", l.registro = "E";
  return l;
}

// The letter of a payment's kind, 0 to 3.
std::string LetteraVersamento(const IDatiVersamento* d) {
  int tipo = d ? d->TipoVersamento() : 0;
  if (tipo < 0 || tipo > 3) tipo = 0;
  return std::string(1, "ABCD"[tipo]);
}

// The registers a settlement takes, by kind.
struct SezioneRegistro {
  std::string titolo;  // 40 characters, then "N. "
  int limite = 0;      // the highest number settled; 0 all
  std::string avviso;  // the warning of a register left out
};

struct Somme {
  Importo imponibile, imposta;
};

}  // namespace

// ---------------------------------------------------------------- plafond

Valore clsLiquidazioneIva::GetPlafondIva(const Valore& CodiceIva) {
  Recordset rs = cn->Execute("SELECT [Flag Articolo 8] FROM [Codici Iva] WHERE [Codice Iva] = ?", {Valore(T(CodiceIva))});
  if (rs.Eof()) return Valore("");
  return Valore(T(rs(0).Value()));
}

Importo clsLiquidazioneIva::GetPlafondFattureAnniPrecedenti(const Data& daData, const Data& aData,
                                                            const Valore& TipoRegistroIva, const Valore& NumeroRegistro,
                                                            bool bool_NoFattureIvaDifferita) {
  std::string sql =
      "SELECT SUM(CASE WHEN C.[TipoCausale] IN ('1', '3', '6', '8', '9', ';') THEN -P.[Imponibile] ELSE "
      "P.[Imponibile] END) FROM ([Prima Nota] P LEFT JOIN [Codici Iva] I ON I.[Codice Iva] = P.[CodiceIva]) LEFT JOIN "
      "[Causali Contabili] C ON C.[CodiceCausale] = P.[CodiceCausale] WHERE P.[TipoRigaIvaNormale] = 'I' AND "
      "I.[Flag Articolo 8] = '1' AND P.[TipoRegistroIva] = ? AND P.[NumRegistroIva] = ? AND "
      "P.[DataCompetenzaIVA] >= ? AND P.[DataCompetenzaIVA] <= ? AND P.[DataDocumento] < ?";
  if (bool_NoFattureIvaDifferita) sql += " AND COALESCE(C.[TipoCausale], '') NOT IN ('7', '8')";
  return Imp(cn->Scalare(sql, {Valore(T(TipoRegistroIva)), Valore(T(NumeroRegistro)), Valore(daData), Valore(aData),
                               Valore(*Data::Crea(daData.Anno(), 1, 1))}));
}

// ---------------------------------------------------------------- the payment box

std::vector<std::string> clsLiquidazioneIva::ScriviSpecchiettoVersamento(const IDatiVersamento* d) {
  if (!d) return {};
  auto riga = [](const std::string& etichetta, const std::string& valore) { return kMargine + etichetta + valore; };
  Valore data = d->DataVersamento();
  return {riga("Cod. Azienda di Credito (o ABI).:    ", d->CodiceAzienda()),
          riga("Descrizione Azienda di Credito..:    ", d->DescrizioneAzienda()),
          riga("Codice Dipendenza (o CAB).......:    ", d->CodiceDipendenzaVersam()),
          riga("Descrizione Dipendenza .........:    ", d->DescrizioneDipendenza()),
          riga("Localita' Dipendenza ...........:    ", d->LocalitaDipendenza()),
          riga("Provincia Dipendenza ...........:    ", d->ProvinciaDipendenza()),
          riga("Data Versamento ................:    ", data.ComeData() ? data.ComeData()->Testo() : T(data))};
}

// ---------------------------------------------------------------- the settlement

bool clsLiquidazioneIva::LiquidazioneIvaSimulazione(const ArgomentiLiquidazioneIva& a) { return Esegui(a, false); }
bool clsLiquidazioneIva::LiquidazioneIvaBollata(const ArgomentiLiquidazioneIva& a) { return Esegui(a, true); }

bool clsLiquidazioneIva::Esegui(const ArgomentiLiquidazioneIva& a, bool bollata) {
  esito_ = {};
  const std::shared_ptr<Connessione>& conn = cn;
  Connessione& db = *cn;
  const bool annuale = a.avar_Mese == 13;
  const bool trimestrale = Trim(a.avar_RegimeIva) == "T";
  const bool definitiva = bollata && Trim(a.avar_ProvaBollato) == "B";
  const std::string titoloErrore = bollata ? "Stampa liquidazione iva" : "Stampa liquidazione iva in simulazione";
  const int dec = Decimali();
  if (a.avar_Mese < 1 || a.avar_Mese > 13 || a.avar_Anno < 1900 || a.avar_Anno > 9999)
    throw ErroreDb(3265, "Periodo non valido: mese " + std::to_string(a.avar_Mese) + " anno " +
                             std::to_string(a.avar_Anno));
  if (trimestrale && !annuale && a.avar_Mese % 3 != 0)
    throw ErroreDb(3265, "Il mese di una liquidazione trimestrale è l'ultimo del trimestre: " +
                             std::to_string(a.avar_Mese));

  // 1. The period.
  Data da, al;
  if (annuale) {
    da = *Data::Crea(a.avar_Anno, 1, 1);
    al = *Data::Crea(a.avar_Anno, 12, 31);
  } else {
    Data primo = *Data::Crea(a.avar_Anno, a.avar_Mese, 1);
    da = trimestrale ? primo.AggiungiMesi(-2) : primo;
    al = primo.AggiungiMesi(1).AggiungiGiorni(-1);
  }

  std::unique_ptr<clsAnagraficaAzienda> pAnag;
  std::unique_ptr<clsProgressiviIva> pProg;
  std::unique_ptr<clsProgAzienda> pAz;
  std::unique_ptr<clsImportiFissi> pFissi;
  std::unique_ptr<clsRegistriIva> pReg;
  std::unique_ptr<clsNumerazioneFogli> pFogli;
  std::unique_ptr<clsDatiIVA> pDati;
  clsAnagraficaAzienda* anagrafica = Usa(a.objAnagraficaAzienda, pAnag, conn);
  clsProgressiviIva* progressivi = Usa(a.objProgressiviIVA, pProg, conn);
  clsProgAzienda* progAzienda = Usa(a.objProgressiviAzienda, pAz, conn);
  clsImportiFissi* fissi = Usa(a.objImportiFissi, pFissi, conn);
  clsRegistriIva* registri = Usa(a.objRegistriIva, pReg, conn);
  clsNumerazioneFogli* fogli = Usa(a.objNumerazioneFogli, pFogli, conn);
  clsDatiIVA* datiIva = Usa(a.objDatiIVA, pDati, conn);

  // The carried balances and the fixed amounts.
  Valore debitoAnnoPrec, impAcconto, ultimaLiq, creditoInizio, creditoInizioUt, codIvaPerPrec, plafondIniziale,
      plafondResiduo, totImpComp;
  if (!progAzienda->GetProgressiviLiquidazioneIva(debitoAnnoPrec, impAcconto, ultimaLiq, creditoInizio,
                                                  creditoInizioUt, codIvaPerPrec, plafondIniziale, plafondResiduo,
                                                  totImpComp)) {
    Host().MsgBox("Mancano i dati nell'archivio progressivi azienda.", vbExclamation, "Liquidazione IVA");
    return false;
  }
  double percAcconto = 0, percMaggTrim = 0, percForfSemp = 0;
  Importo minAcconto, importoMinLiqIva;
  if (!fissi->GetImportiFissiLiquidazioneIva(percAcconto, minAcconto, importoMinLiqIva) ||
      !fissi->GetImportiFissiLiquidazioneIva2(percMaggTrim, percForfSemp)) {
    Host().MsgBox("Mancano i dati nell'archivio importi fissi.", vbExclamation, "Liquidazione IVA");
    return false;
  }

  if (definitiva) {
    // A period settled definitively is not settled again: its progressives are already spent.
    auto ultima = ultimaLiq.ComeData();
    if (ultima && *ultima >= al) {
      Host().MsgBox("La liquidazione IVA del periodo è già stata stampata sul bollato (ultima liquidazione: " +
                        ultima->Testo() + ").",
                    vbExclamation, "Liquidazione IVA bollata");
      return false;
    }
    // The period's progressives must be the period's alone: a register printed definitively
    // beyond it has already added later months to them.
    if (!annuale) {
      Valore oltre = db.Scalare("SELECT MAX([DataUltimaStampaBollato]) FROM [Progressivi Registri Iva] WHERE "
                                "[IndicatoreFisso] = 'P2' AND [IndTipoRecord] = 'R' AND [DataUltimaStampaBollato] > ?",
                                {Valore(al)});
      if (auto d = oltre.ComeData()) {
        Host().MsgBox("I registri IVA sono già stati stampati sul bollato fino al " + d->Testo() +
                          ": i loro progressivi comprendono mesi successivi al periodo, che va liquidato prima della "
                          "stampa definitiva dei registri dei mesi seguenti.",
                      vbExclamation, "Liquidazione IVA bollata");
        return false;
      }
    }
  }

  // 2. The work tables and files.
  const std::string pref = a.avar_PrefissoTabelleTmp;
  const std::vector<std::string> tipiRegistro = {"1", "2", "3", "4", "6", "8"};
  struct Pulizia {
    clsRegistriIva& r;
    Connessione& db;
    std::string pref;
    std::vector<std::string> file;
    ~Pulizia() {
      for (const char* t : {"1", "2", "3", "4", "6", "8"}) {
        try {
          r.EliminaTabelleTemporaneeIva(t, pref);
        } catch (...) {
        }
      }
      try {
        EliminaTabella(db, pref + "Riepilogo liquidazione iva");
      } catch (...) {
      }
      for (const auto& x : file) {
        try {
          CancellaFile(x);
        } catch (...) {
        }
      }
    }
  };
  const std::string fileLiq = CartellaTemp() + "/liqiva.tmp", fileSez = CartellaTemp() + "/toliqiva.tmp",
                    fileSezPag = CartellaTemp() + "/toliqiva.txt", filePag = CartellaTemp() + "/~liqiva.tmp",
                    fileNum = CartellaTemp() + "/~toliqiva.tmp";
  Pulizia pulizia{*registri, db, pref, {fileLiq, fileSez, fileSezPag, filePag, fileNum}};
  for (const auto& f : pulizia.file) CancellaFile(f);
  if (a.formAttiva) a.formAttiva->msgbar("Eliminazione tabelle temporanee");
  TabellaLavoro riepilogo(db, pref, "Riepilogo liquidazione iva",
                          {{"CodiceIva"},
                           {"Imponibile Incassi", TipoCampo::Importo},
                           {"Imposta Incassi", TipoCampo::Importo},
                           {"Imponibile Fatture Emesse", TipoCampo::Importo},
                           {"Imposta Fatture Emesse", TipoCampo::Importo},
                           {"Imponibile Fatture Ricevute", TipoCampo::Importo},
                           {"Imposta Fatture Ricevute", TipoCampo::Importo}});
  riepilogo.Crea();
  const std::string tabRiepilogo = "[" + riepilogo.Nome() + "]";

  // 3. The registers to settle.
  std::vector<std::pair<std::string, std::string>> elenco;
  const std::string indTipo = annuale ? "R" : "D";
  if (bollata) {
    db.Scorri("SELECT DISTINCT [TipoRegistroIva], [NumRegistroIva] FROM [Progressivi Registri Iva] WHERE "
              "[IndicatoreFisso] = 'PI' AND [IndTipoRecord] = ? AND [TipoRegistroIva] <> '4' AND "
              "COALESCE([CodiceIva], '') <> '00' ORDER BY [TipoRegistroIva], [NumRegistroIva]",
              {Valore(indTipo)}, [&](const std::vector<Colonna>&, const std::vector<Valore>& v) {
                elenco.emplace_back(T(v[0]), T(v[1]));
                return true;
              });
    db.Scorri(std::string("SELECT DISTINCT [NumRegistriCorrisp] FROM [Corrispettivi Ventilazione] WHERE ") +
                  (annuale ? "[corrispettiviAnno]" : "[CorrispettiviPeriodo]") + " <> 0 ORDER BY [NumRegistriCorrisp]",
              {}, [&](const std::vector<Colonna>&, const std::vector<Valore>& v) {
                elenco.emplace_back("4", T(v[0]));
                return true;
              });
    std::sort(elenco.begin(), elenco.end());
  } else {
    // The registers with rows in the period by either date; a register whose rows all fall
    // outside its own date gives an empty section and is left out below.
    db.Scorri("SELECT DISTINCT [TipoRegistroIva], [NumRegistroIva] FROM [Prima Nota] WHERE (([TipoRigaIvaNormale] = "
              "'I' AND [TipoRegistroIva] IN ('1', '2', '3', '6', '8')) OR (COALESCE([TipoRigaIvaNormale], '') <> 'I' "
              "AND [TipoRegistroIva] = '4')) AND (([DataCompetenzaIVA] >= ? AND [DataCompetenzaIVA] <= ?) OR "
              "([DataCompetenza] >= ? AND [DataCompetenza] <= ?)) ORDER BY [TipoRegistroIva], [NumRegistroIva]",
              {Valore(da), Valore(al), Valore(da), Valore(al)},
              [&](const std::vector<Colonna>&, const std::vector<Valore>& v) {
                elenco.emplace_back(T(v[0]), T(v[1]));
                return true;
              });
  }

  // 4. and 5. The sections of the registers.
  std::ofstream sez(fileSez, std::ios::binary);
  if (!sez) throw ErroreStampa("Impossibile scrivere il file " + fileSez);
  auto scrivi = [&](std::ofstream& f, const std::string& riga, const std::string& nome) {
    f << riga << '\n';
    if (!f) throw ErroreStampa("Impossibile scrivere il file " + nome);
  };
  Importo differitaVendite, differitaAcquisti, plafondUsato, plafondAnniPrec, correzioneVentilazione;
  bool qualcuno = false;
  for (const auto& [tipo, numero] : elenco) {
    SezioneRegistro s;
    if (tipo == "1") s = {"Registro IVA Vendite", a.NumRegIVAVenditeLiq, "Attenzione il registro IVA vendite n. "};
    else if (tipo == "6") s = {"Registro Inc. fatture IVA ad esig.diff.", 0, ""};
    else if (tipo == "2") s = {"Registro IVA Acquisti", a.NumRegIVAAcquistiLiq, "Attenzione il registro IVA acquisti n. "};
    else if (tipo == "8") s = {"Registro Pag. fatture IVA ad esig.diff.", 0, ""};
    else if (tipo == "3")
      s = {"Registro IVA Corrispettivi Scorporo", a.NumRegIVACorrispScorpLiq, "Attenzione il registro IVA corrispettivi n. "};
    else if (tipo == "4")
      s = {"Registro IVA Corrispettivi Ventilazione", a.NumRegIVACorrispVentilLiq,
           "Attenzione il registro IVA corrispettivi in ventilazione n. "};
    else
      continue;  // the invoices with deferred VAT and the suspended VAT wait for their payment
    const int n = NullToZeroLng(Valore(numero));
    if (s.limite != 0 && n > s.limite) {
      if (tipo != "4" || bollata)
        Host().MsgBox(s.avviso + numero +
                          " non verrà liquidato: di indice superiore al numero di registri da portare in liquidazione",
                      vbExclamation, "Liquidazione IVA");
      continue;
    }
    if (a.formAttiva) a.formAttiva->msgbar(s.titolo + " N. " + numero);
    const bool acquisti = tipo == "2" || tipo == "8";
    const std::string totali = clsRegistriIva::NomeTabella(tipo, "totali", pref);

    if (tipo == "4") {
      // Ventilation: the period's receipts over the rates of the purchases.
      if (bollata) {
        registri->MakeTable_RegistroIvaCorrispettiviVentilazioneTotaliLiquidazioneBol(pref, progressivi, Valore(numero),
                                                                                     a.avar_Mese);
      } else {
        if (registri->MakeTable_RegistroIvaCorpo("4", Valore(numero), da, al, pref, true,
                                                 a.str_IndIVAAutotrasportatori) == 0)
          continue;
        registri->MakeTable_RegistroIvaCorrispettiviVentilazioneTotaliLiquidazioneSim(pref, al, Valore(numero));
      }
      Importo corrispettivi;
      if (bollata) {
        Importo periodo, anno;
        progressivi->GetProgressivoVentilazione(Valore(numero), periodo, anno);
        corrispettivi = annuale ? anno : periodo;
      } else {
        corrispettivi = registri->GetCorrispettiviPeriodo(pref);
      }
      qualcuno = true;
      scrivi(sez, Largo(s.titolo, 40) + "N. " + numero, fileSez);
      scrivi(sez, Riga('=', 132), fileSez);
      scrivi(sez,
             "Cod. IVA              Aliquota              Descrizione                    Imponibile                Imposta"
             "      Base Ventilazione",
             fileSez);
      scrivi(sez, Riga('-', 132), fileSez);
      Somme tot;
      Importo totBase;
      db.Scorri("SELECT T.[CodiceIVA], T.[Aliquota], I.[Descrizione Iva], T.[SommadiImponibileRigo], "
                "T.[SommadiImposta], T.[BaseVentilazione] FROM [" +
                    totali + "] T LEFT JOIN [Codici Iva] I ON I.[Codice Iva] = T.[CodiceIVA] ORDER BY T.[CodiceIVA]",
                {}, [&](const std::vector<Colonna>&, const std::vector<Valore>& v) {
                  scrivi(sez,
                         Sx(T(v[0]), 22) + Dx(Cifra(Imp(v[1])), 8) + std::string(14, ' ') + Sx(T(v[2]), 25) +
                             Dx(Cifra(Imp(v[3])), 16) + Dx(Cifra(Imp(v[4])), 23) + Dx(Cifra(Imp(v[5])), 23),
                         fileSez);
                  tot.imponibile += Imp(v[3]);
                  tot.imposta += Imp(v[4]);
                  totBase += Imp(v[5]);
                  return true;
                });
      scrivi(sez, Riga('-', 132), fileSez);
      scrivi(sez,
             Largo("                                            Totali", 69) + Dx(Cifra(tot.imponibile), 16) +
                 Dx(Cifra(tot.imposta), 23) + Dx(Cifra(totBase), 23),
             fileSez);
      scrivi(sez, "                                                     Tot. Corrisp.    " + Dx(Cifra(corrispettivi), 15),
             fileSez);
      scrivi(sez, "", fileSez);
      correzioneVentilazione += tot.imposta;
      db.Esegui("INSERT INTO " + tabRiepilogo +
                    " ([CodiceIva], [Imponibile Incassi], [Imposta Incassi], [Imponibile Fatture Emesse], "
                    "[Imposta Fatture Emesse], [Imponibile Fatture Ricevute], [Imposta Fatture Ricevute]) SELECT "
                    "[CodiceIVA], [SommadiImponibileRigo], [SommadiImposta], 0, 0, 0, 0 FROM [" +
                    totali + "]");
      continue;
    }

    if (bollata) {
      // The figures of the definitive prints.
      TabellaLavoro t(db, pref, clsRegistriIva::NomeTabella(tipo, "totali", ""),
                      {{"CodiceIva"},
                       {"Aliquota", TipoCampo::Importo},
                       {"SommadiImponibileRigo", TipoCampo::Importo},
                       {"SommadiImposta", TipoCampo::Importo},
                       {"ProgressivoImponibile", TipoCampo::Importo},
                       {"ProgressivoImposta", TipoCampo::Importo},
                       {"TipoCausale"},
                       {"Indeducibile", TipoCampo::Intero16},
                       {"Percentuale indetraibilità", TipoCampo::Doppio}});
      t.Crea();
      t.Riempi("SELECT R.[CodiceIva], I.[Aliquota], SUM(R.[Imponibile]), SUM(R.[IVA]), 0, 0, '', CASE WHEN "
               "COALESCE(I.[Percentuale indetraibilità], 0) <> 0 THEN -1 ELSE 0 END, COALESCE(I.[Percentuale "
               "indetraibilità], 0) FROM [Progressivi Registri Iva] R LEFT JOIN [Codici Iva] I ON I.[Codice Iva] = "
               "R.[CodiceIva] WHERE R.[IndicatoreFisso] = 'PI' AND R.[IndTipoRecord] = ? AND R.[TipoRegistroIva] = ? "
               "AND R.[NumRegistroIva] = ? AND COALESCE(R.[CodiceIva], '') <> '00' GROUP BY R.[CodiceIva], "
               "I.[Aliquota], I.[Percentuale indetraibilità]",
               {Valore(indTipo), Valore(tipo), Valore(numero)});
      if (tipo == "1") differitaVendite += registri->GetTotaliIvaDifferitaVenditeBol(Valore(indTipo), Valore(numero));
      if (tipo == "2") differitaAcquisti += registri->GetTotaliIvaDifferitaAcquistiBol(Valore(indTipo), Valore(numero));
    } else {
      // The invoices with deferred VAT are told even when nothing else of the register is due.
      Importo dv, da2;
      if (tipo == "1") dv = registri->GetTotaliIvaDifferitaVenditeSim(Valore(numero), da, al, pref);
      if (tipo == "2") da2 = registri->GetTotaliIvaDifferitaAcquistiSim(Valore(numero), da, al, pref);
      differitaVendite += dv;
      differitaAcquisti += da2;
      if (!dv.Zero() || !da2.Zero()) qualcuno = true;
      if (registri->MakeTable_RegistroIvaCorpo(tipo, Valore(numero), da, al, pref, true,
                                               a.str_IndIVAAutotrasportatori) == 0)
        continue;
      registri->MakeTable_RegistroIvaTotali(tipo, pref);
    }
    // The non-deductible share counts for its taxable amount only.
    if (acquisti) db.Esegui("UPDATE [" + totali + "] SET [SommadiImposta] = 0 WHERE [Indeducibile] = -1");

    qualcuno = true;
    scrivi(sez, Largo(s.titolo, 40) + "N. " + numero, fileSez);
    scrivi(sez, Riga('=', 132), fileSez);
    scrivi(sez,
           "Cod. IVA              Aliquota              Descrizione                                   Imponibile     "
           "                   Imposta",
           fileSez);
    scrivi(sez, Riga('-', 132), fileSez);
    Somme detraibile, indetraibile;
    db.Scorri("SELECT T.[CodiceIva], T.[Aliquota], I.[Descrizione Iva], " +
                  std::string(acquisti ? "T.[Indeducibile]" : "0") +
                  ", SUM(T.[SommadiImponibileRigo]), SUM(T.[SommadiImposta]) FROM [" + totali +
                  "] T LEFT JOIN [Codici Iva] I ON I.[Codice Iva] = T.[CodiceIva] WHERE COALESCE(T.[CodiceIva], '') <> "
                  "'' GROUP BY T.[CodiceIva], T.[Aliquota], I.[Descrizione Iva]" +
                  (acquisti ? ", T.[Indeducibile]" : "") + " ORDER BY T.[CodiceIva]" +
                  (acquisti ? ", T.[Indeducibile] DESC" : ""),
              {}, [&](const std::vector<Colonna>&, const std::vector<Valore>& v) {
                Importo imponibile = Imp(v[4]), imposta = Imp(v[5]);
                scrivi(sez,
                       Sx(T(v[0]), 22) + Dx(Cifra(Imp(v[1])), 8) + std::string(14, ' ') + Sx(T(v[2]), 40) +
                           Dx(Cifra(imponibile), 16) + Dx(Cifra(imposta), 31),
                       fileSez);
                Somme& s2 = NullToZeroLng(v[3]) != 0 ? indetraibile : detraibile;
                s2.imponibile += imponibile;
                s2.imposta += imposta;
                if (acquisti && T(GetPlafondIva(v[0])) == "1") plafondUsato += imponibile;
                return true;
              });
    scrivi(sez, Riga('-', 132), fileSez);
    if (acquisti) {
      scrivi(sez,
             Largo("                                            Totali IVA Detraibile", 84) +
                 Dx(Cifra(detraibile.imponibile), 16) + Dx(Cifra(detraibile.imposta), 31),
             fileSez);
      scrivi(sez,
             Largo("                                            Totali IVA Non Detraibile", 84) +
                 Dx(Cifra(indetraibile.imponibile), 16) + Dx(Cifra(indetraibile.imposta), 31),
             fileSez);
      if (tipo == "2")
        plafondAnniPrec += GetPlafondFattureAnniPrecedenti(da, al, Valore(tipo), Valore(numero), true);
    } else {
      scrivi(sez,
             Largo("                                            Totali", 84) + Dx(Cifra(detraibile.imponibile), 16) +
                 Dx(Cifra(detraibile.imposta), 31),
             fileSez);
    }
    scrivi(sez, "", fileSez);
    std::string colonne = (tipo == "3") ? "[Imponibile Incassi], [Imposta Incassi]"
                          : acquisti   ? "[Imponibile Fatture Ricevute], [Imposta Fatture Ricevute]"
                                       : "[Imponibile Fatture Emesse], [Imposta Fatture Emesse]";
    db.Esegui("INSERT INTO " + tabRiepilogo + " ([CodiceIva], " + colonne +
              ") SELECT [CodiceIva], SUM([SommadiImponibileRigo]), SUM([SommadiImposta]) FROM [" + totali +
              "] WHERE COALESCE([CodiceIva], '') <> '' GROUP BY [CodiceIva]");
  }
  sez.close();
  if (!sez) throw ErroreStampa("Impossibile scrivere il file " + fileSez);
  if (!qualcuno) {
    Host().MsgBox("Nessun dato da stampare.", vbInformation, titoloErrore);
    return true;
  }

  // 6. The summary by code.
  std::ofstream liq(fileLiq, std::ios::binary);
  if (!liq) throw ErroreStampa("Impossibile scrivere il file " + fileLiq);
  const std::string regola =
      "--------------------------+----------------------------------+----------------------------------+------------"
      "----------------------";
  scrivi(liq, regola, fileLiq);
  scrivi(liq,
         "CI  Aliq. Descrizione     |              Incassi             |           Fatture Emesse         |         "
         "Fatture Ricevute         ",
         fileLiq);
  scrivi(liq,
         "                          |       Imponibile         Imposta |       Imponibile         Imposta |       "
         "Imponibile          Imposta",
         fileLiq);
  scrivi(liq, regola, fileLiq);
  auto coppie = [](const std::array<Importo, 6>& x) {
    std::string s;
    for (int i = 0; i < 6; i += 2)
      s += "|" + Dx(Cifra(x[static_cast<size_t>(i)]), 17) + Dx(Cifra(x[static_cast<size_t>(i) + 1]), 16) + " ";
    return s.substr(0, s.size() - 1);
  };
  std::array<Importo, 6> totaleRiepilogo{};
  db.Scorri("SELECT R.[CodiceIva], I.[Aliquota], I.[Descrizione Iva], SUM(R.[Imponibile Incassi]), SUM(R.[Imposta "
            "Incassi]), SUM(R.[Imponibile Fatture Emesse]), SUM(R.[Imposta Fatture Emesse]), SUM(R.[Imponibile "
            "Fatture Ricevute]), SUM(R.[Imposta Fatture Ricevute]) FROM " +
                tabRiepilogo +
                " R LEFT JOIN [Codici Iva] I ON I.[Codice Iva] = R.[CodiceIva] GROUP BY R.[CodiceIva], I.[Aliquota], "
                "I.[Descrizione Iva] ORDER BY R.[CodiceIva]",
            {}, [&](const std::vector<Colonna>&, const std::vector<Valore>& v) {
              std::array<Importo, 6> x;
              for (size_t i = 0; i < 6; ++i) {
                x[i] = Imp(v[3 + i]);
                totaleRiepilogo[i] += x[i];
              }
              scrivi(liq,
                     Sx(T(v[0]), 3) + " " + Dx(FormattaDecimali(Valore(Imp(v[1])), Valore(0)), 5) + " " +
                         Sx(T(v[2]), 15) + " " + coppie(x),
                     fileLiq);
              return true;
            });
  scrivi(liq, regola, fileLiq);
  scrivi(liq, "   Totali ----->          " + coppie(totaleRiepilogo), fileLiq);
  scrivi(liq, "", fileLiq);

  // 7. The sums, and those of split payment.
  std::array<Importo, 12> somme{};
  db.Scorri("SELECT SUM(R.[Imponibile Incassi]), SUM(R.[Imposta Incassi]), SUM(R.[Imponibile Fatture Emesse]), "
            "SUM(R.[Imposta Fatture Emesse]), SUM(R.[Imponibile Fatture Ricevute]), SUM(R.[Imposta Fatture "
            "Ricevute]), SUM(CASE WHEN I.[Flag Split Payment fattura PA] = '1' THEN R.[Imponibile Incassi] ELSE 0 "
            "END), SUM(CASE WHEN I.[Flag Split Payment fattura PA] = '1' THEN R.[Imposta Incassi] ELSE 0 END), "
            "SUM(CASE WHEN I.[Flag Split Payment fattura PA] = '1' THEN R.[Imponibile Fatture Emesse] ELSE 0 END), "
            "SUM(CASE WHEN I.[Flag Split Payment fattura PA] = '1' THEN R.[Imposta Fatture Emesse] ELSE 0 END), "
            "SUM(CASE WHEN I.[Flag Split Payment fattura PA] = '1' THEN R.[Imponibile Fatture Ricevute] ELSE 0 END), "
            "SUM(CASE WHEN I.[Flag Split Payment fattura PA] = '1' THEN R.[Imposta Fatture Ricevute] ELSE 0 END) "
            "FROM " +
                tabRiepilogo + " R LEFT JOIN [Codici Iva] I ON I.[Codice Iva] = R.[CodiceIva]",
            {}, [&](const std::vector<Colonna>&, const std::vector<Valore>& v) {
              for (size_t i = 0; i < 12; ++i) somme[i] = Imp(v[i]);
              return false;
            });
  const Importo V = somme[1] + somme[3], S = somme[7] + somme[9], R = somme[11];
  Importo D = somme[5];

  // The calculation.
  auto linea = [&](const std::string& r) { scrivi(liq, r, fileLiq); };
  auto quota = [&](Importo base, double perc) { return QuotaPercentuale(base, perc, dec); };
  Importo A;
  if (annuale || a.avar_Mese == 12) {
    A = Imp(progressivi->GetAccontoIvaVersato());
    if (A < Importo()) A = Importo();
  }
  const Importo codPrec = Imp(codIvaPerPrec);
  const Importo C0 = codPrec >= Importo() ? codPrec : Importo();
  const Importo B0 = codPrec < Importo() ? -codPrec : Importo();
  const Importo P = C0 + a.ImportoCreditoAnnuale + a.CreditoIVAInfrannualeUsato;
  Importo ivaVersata, T_, I_;
  if (annuale) {
    ivaVersata = progressivi->GetIvaVersataConInteressi();
    T_ = progressivi->GetCreditoIvaDaDichAnnualeTrasf();
    I_ = progressivi->GetInteressiVersati();
  }
  const Importo creditoInizioAnnoUt = Imp(creditoInizioUt);
  Importo saldo;
  if (percForfSemp > 0) {
    Importo forfait = quota(V, percForfSemp);
    linea(Voce("Totale  IVA  vendite ...........:    ", V));
    linea(Voce("Determinaz. forfetaria " + FormattaDecimali(Valore(percForfSemp), Valore(2)) + " %.:    ", forfait,
               " +"));
    linea(Voce("Totale  IVA  Vend. Split Payment:    ", S, " -"));
    linea(Voce("Totale  IVA  Dovuta ............:    ", forfait - S));
    if (annuale)
      saldo = forfait - S + a.DebitoCreditoForfetario + T_ - creditoInizioAnnoUt - A - ivaVersata + I_;
    else
      saldo = forfait - S + a.DebitoCreditoForfetario + a.ImportoTrasferito - P - a.Detrazione1 - a.Detrazione2 - A +
              B0;
  } else {
    linea(Voce("Totale  IVA  Vendite ...........:    ", V));
    linea(Voce("Totale  IVA  Vend. Split Payment:    ", S, " -"));
    linea(Voce("Totale  IVA  Dovuta ............:    ", V - S));
    if (!differitaVendite.Zero())
      linea(kMargine + "Totale  IVA ad esig. diff. vend.:   (" + Dx(Cifra(differitaVendite), 18) + " )");
    if (!differitaAcquisti.Zero())
      linea(kMargine + "Totale  IVA ad esig. diff. acqu.:   (" + Dx(Cifra(differitaAcquisti), 18) + " )");
    if (Trim(a.GestioneProrataIVA) == "1") {
      linea(Voce("IVA Detraibile su acquisti .....:    ", D));
      Importo prorata = quota(D, a.PercentualeProrata);
      linea(Voce(FormattaDecimali(Valore(a.PercentualeProrata), Valore(2)) + " % IVA detr. (PRORATA)....:    ",
                 prorata));
      D = prorata;
    }
    linea(Voce("Totale  IVA  Detraibile ........:    ", D));
    // The lump-sum adjustment is printed below but does not enter this sum.
    if (annuale)
      saldo = V - S - D + R + T_ - creditoInizioAnnoUt - A - ivaVersata + I_;
    else
      saldo = V - S - D + R + a.ImportoTrasferito - P - a.Detrazione1 - a.Detrazione2 - A + B0;
  }
  if (!annuale) {
    if (!a.Detrazione1.Zero())
      linea(kMargine + "Ulteriore detrazione IVA ........" + FormattaDecimali(Valore(a.PercentualeDetrazione1), Valore(2)) +
            "% su   " + Cifra(a.BaseDetrazione1) + Dx(Cifra(a.Detrazione1), 18));
    if (!a.Detrazione2.Zero())
      linea(kMargine + "Ulteriore detrazione IVA ........" + FormattaDecimali(Valore(a.PercentualeDetrazione2), Valore(2)) +
            "% su   " + Cifra(a.BaseDetrazione2) + Dx(Cifra(a.Detrazione2), 18));
    if (!a.ImportoTrasferito.Zero()) linea(Voce("Cred. IVA da dichiar. ann. trasf.    ", a.ImportoTrasferito));
    linea(Voce("Credito Precedente .............:    ", P));
    if (!B0.Zero()) linea(Voce("Debito Artt. 27 e 33 DPR 633/72.:    ", B0));
  } else {
    linea(Voce("Cred. IVA da dichiar. ann. trasf.    ", T_));
    linea(Voce("Credito Inizio Anno ............:    ", creditoInizioAnnoUt));
  }
  if (a.DebitoCreditoForfetario > Importo()) linea(Voce("Ulteriore IVA debito ...........:    ", a.DebitoCreditoForfetario));
  if (a.DebitoCreditoForfetario < Importo())
    linea(Voce("Ulteriore IVA credito ..........:    ", Abs(a.DebitoCreditoForfetario)));
  if (!A.Zero() || annuale) linea(Voce("Acconto versato ................:    ", A));
  if (annuale) {
    if (!I_.Zero()) linea(Voce("Interessi precedenti liquidazioni    ", I_));
    linea(Voce("IVA Versata/Compensata nell'anno:    ", ivaVersata));
  }
  linea(kRigaCalcolo);
  if (saldo < Importo()) linea(Voce("IVA  A  CREDITO ................:    ", Abs(saldo)));
  else linea(Voce("IVA  A  DEBITO .................:    ", saldo));

  // Article 38-bis.
  Importo rimborso = annuale ? progressivi->GetSommaDiRimborsoArt38Bis() : a.RimborsoArt38Bis;
  Importo compensazione = annuale ? progressivi->GetSommaDiCompensazioneArt38Bis() : a.CompensazioneArt38Bis;
  const bool art38 = rimborso > Importo() || compensazione > Importo();
  const std::string avviso38 =
      "Attenzione l'importo totale indicato per il credito IVA infrannuale articolo 38 bis non è coerente con gli "
      "importi risultanti in liquidazione, se si eseguendo la stampa su 'Bollato' occorre riallineare manualmente i "
      "progressivi di credito IVA memorizzati automaticamente dalla procedura.";
  if (saldo < Importo()) {
    if (rimborso > Importo()) {
      linea(Voce("Cred.art.38bis chiesto a rimborso    ", rimborso));
      saldo += rimborso;
    }
    if (compensazione > Importo()) {
      linea(Voce("Cred.art.38bis da usare x compen.    ", compensazione));
      saldo += compensazione;
    }
    if (art38) {
      if (saldo < Importo()) linea(Voce("IVA  A  CREDITO RESIDUA.........:    ", Abs(saldo)));
      else Host().MsgBox(avviso38, vbExclamation, "Liquidazione IVA");
    }
  } else if (art38) {
    Host().MsgBox(avviso38, vbExclamation, "Liquidazione IVA");
    linea(Voce("Cred.art.38bis chiesto a rimborso    ", rimborso));
    linea(Voce("Cred.art.38bis da usare x compen.    ", compensazione));
    rimborso = Importo();
    compensazione = Importo();
  }

  // The minimum payment: a smaller debt is carried to the next period.
  Importo imposta2733;
  if (!annuale && saldo > Importo() && saldo <= importoMinLiqIva) {
    imposta2733 = saldo;
    linea(Voce("IMPOSTA Artt. 27 e 33 DPR 633/72:    ", imposta2733));
  }
  if (!correzioneVentilazione.Zero()) {
    linea(kRigaCalcolo);
    if (annuale)
      linea("     N.B. L' importo totale annuale stornato dai ricavi ventilazione al conto IVA corrispondente deve "
            "essere di " +
            Cifra(correzioneVentilazione));
    else
      linea("     N.B. Effettuare registrazione in Prima Nota stornando ricavi ventilazione per " +
            Cifra(correzioneVentilazione) + " al conto IVA corrispondente!");
    linea(kRigaCalcolo);
  }
  Importo maggiorazione, daVersare;
  Importo compensato = a.ImportoCompensatoDL241;
  if (saldo > Importo() && imposta2733.Zero()) {
    if (a.objDatiVersamento && a.objDatiVersamento->StampaDatiVersamento())
      for (const auto& r : ScriviSpecchiettoVersamento(a.objDatiVersamento)) linea(r);
    linea(Voce("Importo da Versare .............:    ", saldo));
    // The client's surcharge; without its data, the company's for a quarterly settlement.
    double perc = a.objDatiVersamento ? a.objDatiVersamento->PercMaggiorazioneTrim() : trimestrale ? percMaggTrim : 0;
    if (perc != 0) {
      maggiorazione = quota(saldo, perc);
      saldo += maggiorazione;
      linea(Voce("Maggiorazione del " + Format(Valore(perc), "##0.00") + " % .....:    ", maggiorazione));
      linea(Voce("Importo da Versare Maggiorato ..:    ", saldo));
    }
    daVersare = saldo;
    if (!compensato.Zero()) {
      if (compensato > saldo) compensato = saldo;
      daVersare = saldo - compensato;
      linea(Voce("Importo compensato D.Lgs 241/97.:    ", compensato));
      linea(kRigaCalcolo);
      linea(Voce("Importo da versare al netto comp:    ", daVersare));
    }
  }
  // The plafond of exporters.
  Importo residuoPlafond = Imp(plafondResiduo);
  const bool conPlafond = Imp(plafondResiduo) > Importo() || (annuale && Imp(plafondIniziale) > Importo());
  if (conPlafond) {
    linea(Voce(annuale ? "Plafond Iniziale ...............:    " : "Plafond Precedente .............:    ",
               annuale ? Imp(plafondIniziale) : Imp(plafondResiduo)));
    linea(Voce("Plafond Utilizzato .............:    ", plafondUsato));
    if (!plafondAnniPrec.Zero()) linea(Voce("(plafond competenza anni preced.:    ", plafondAnniPrec));
    linea(kRigaCalcolo);
    residuoPlafond = (annuale ? Imp(plafondIniziale) : Imp(plafondResiduo)) - (plafondUsato - plafondAnniPrec);
    if (residuoPlafond >= Importo()) {
      linea(Voce("Plafond Residuo ................:    ", residuoPlafond));
    } else {
      residuoPlafond = Importo();
      linea(Voce("Plafond Residuo ................:    ", residuoPlafond));
      linea("                              ***  ATTENZIONE !!  Plafond Utilizzato superiore alla disponibilita' !! ***");
    }
  }
  liq.close();
  if (!liq) throw ErroreStampa("Impossibile scrivere il file " + fileLiq);
  esito_.saldo = saldo - maggiorazione;
  esito_.maggiorazione = maggiorazione;
  esito_.daVersare = daVersare;
  esito_.imposta2733 = imposta2733;

  // 8. Pages: the heads, the sections after the summary, the sheets numbered.
  std::string periodo;
  if (trimestrale && !annuale) {
    for (int m = a.avar_Mese - 2; m <= a.avar_Mese; ++m)
      periodo += (periodo.empty() ? "" : "-") + Maiuscolo(NomeMese(Valore(m)));
  } else if (!annuale) {
    periodo = Maiuscolo(NomeMese(Valore(a.avar_Mese)));
  }
  periodo += " " + std::to_string(a.avar_Anno);
  std::string t1, t2;
  if (Trim(a.avar_RegistroStampa) == "L") {
    if (annuale) {
      t1 = "LIQUIDAZIONE I.V.A. RIEPILOGATIVA    REGISTRO DELLE LIQUIDAZIONI D.M. 20/06/79  E  REGISTRO "
           "RIEPILOGATIVO I.V.A.      D.M. 24/01/77";
      t2 = "E  D.M. 20/06/79                                         DELL' ANNO " + std::to_string(a.avar_Anno);
    } else {
      t1 = "ANNOTAZIONE PERIODICA D'IMPOSTA I.V.A.    REGISTRO DELLE LIQUIDAZIONI D.M. 20/06/79  E  REGISTRO "
           "RIEPILOGATIVO I.V.A. D.M. 24/01/77";
      t2 = "E  D.M. 20/06/79                          DEL PERIODO " + periodo;
    }
  } else {
    t1 = annuale ? "                            LIQUIDAZIONE I.V.A.RIEPILOGATIVA DELL' ANNO " + std::to_string(a.avar_Anno)
                 : "           ANNOTAZIONE PERIODICA D'IMPOSTA I.V.A. DEL PERIODO " + periodo;
  }
  const auto azienda = RigheAzienda(*anagrafica);
  std::array<std::string, 7> testa = {t1, t2, Riga('=', 132), azienda[0], azienda[1], Riga('=', 132), ""};
  std::array<std::string, 2> piede = {PiedeElaborato(a.AzRagSoc, a.AzParIva), ""};
  RigaPagina("", Valore(0));
  ImpaginaFile(fileLiq, filePag, a.avar_RighePagina, testa, piede, false, 3);
  ImpaginaFile(fileSez, fileSezPag, a.avar_RighePagina, testa, piede, false, 3);
  AccodaFile(fileSezPag, filePag);
  std::string finale = filePag;
  long prossimoFoglio = 0, fogliStampati = 0;
  const auto [tipoFoglio, registroFoglio, numRegLiq] = LibroLiquidazioni(a.TipoRegLiquidazione, a.NumRegLiquidazione);
  if (bollata && a.avar_NumerazionePagine) {
    auto numerati = fogli->NumeraFogli(filePag, fileNum, a.avar_RighePagina, Valore(tipoFoglio), Valore(registroFoglio),
                                       Valore(numRegLiq), a.avar_Anno, a.clientID, a.hWnd);
    prossimoFoglio = numerati.prossimo;
    fogliStampati = numerati.prossimo - numerati.primo;
    finale = fileNum;
  }

  FileStampa stampa(a.nomeFile);
  CopiaInStampa(finale, stampa, a.nomeFile);

  if (definitiva) {
    // The carried balances, the period's row, the communication and the sheets: together.
    Atomico unita(db);
    bool cancel = false;
    if (!annuale) {
      Importo nuovoCodPrec = saldo <= Importo() ? Abs(saldo) : imposta2733 > Importo() ? -imposta2733 : Importo();
      Importo nuovoCreditoUt = creditoInizioAnnoUt + a.ImportoCreditoAnnuale;
      if (nuovoCreditoUt > Imp(creditoInizio)) nuovoCreditoUt = Imp(creditoInizio);
      Importo nuovoTotComp = Imp(totImpComp) + compensato;
      progAzienda->AggiornaProgressiviLiquidazioneIva(Valore(al), Valore(residuoPlafond), Valore(nuovoCodPrec),
                                                      Valore(nuovoCreditoUt), Valore(nuovoTotComp), a.clientID,
                                                      a.hWnd);
      progressivi->AzzeraProgressiviIvaPeriodo();
      progressivi->AzzeraProgressiviVentilazionePeriodo();
      RecordValori riga = {
          {"Importo_versato", Valore(saldo)},
          {"CodiceAziendaVersam", Valore(a.objDatiVersamento ? a.objDatiVersamento->CodiceAzienda() : "")},
          {"CodiceDipendenzaVersam", Valore(a.objDatiVersamento ? a.objDatiVersamento->CodiceDipendenzaVersam() : "")},
          {"DataVersamento", a.objDatiVersamento ? a.objDatiVersamento->DataVersamento() : Valore::Null()},
          {"TipoVersamento", Valore(LetteraVersamento(a.objDatiVersamento))},
          {"TotaleIVADebito", Valore(V - S)},
          {"TotaleIVACredito", Valore(D - R)},
          {"UlterioriDetrazioni1", Valore(a.Detrazione1)},
          {"UlterioriDetrazioni2", Valore(a.Detrazione2)},
          {"CreditoUsato", Valore(a.ImportoCreditoAnnuale + a.CreditoIVAInfrannualeUsato)},
          {"ImportoCompensato", Valore(compensato)},
          {"CreditoIVA", Valore(saldo < Importo() ? Abs(saldo) : Importo())},
          {"Interessi", Valore(maggiorazione)},
          {"RimborsoArt38Bis", Valore(rimborso)},
          {"CompensazioneArt38Bis", Valore(compensazione)}};
      char mese[3];
      std::snprintf(mese, sizeof mese, "%02d", a.avar_Mese);
      progressivi->SalvaRecord_LiquidazioneIva(Valore(mese), riga, a.clientID, a.hWnd, cancel);
      // The figures of the periodic communication.
      const int trimestre = (a.avar_Mese - 1) / 3 + 1;
      datiIva->CancellaRecord(Valore(a.avar_Anno), Valore(a.avar_Mese));
      RecordValori dati = {
          {"trimestre", Valore(trimestre)},
          {"TotaleOperazioniAttive", Valore(somme[0] + somme[2])},
          {"TotaleOperazioniPassive", Valore(somme[4])},
          {"IVAEsigibile", Valore(V - S)},
          {"IVADetratta", Valore(D - R)},
          {"IVADovuta", Valore((V - S) - (D - R) > Importo() ? (V - S) - (D - R) : Importo())},
          {"IVACredito", Valore((D - R) - (V - S) > Importo() ? (D - R) - (V - S) : Importo())},
          {"DebitoPrecedente", Valore(B0)},
          {"CreditoPeriodoPrecedente", Valore(C0 + a.CreditoIVAInfrannualeUsato)},
          {"CreditoAnnoPrecedente", Valore(a.ImportoCreditoAnnuale)},
          {"InteressiDovuti", Valore(maggiorazione)},
          {"Acconto", Valore(A)},
          {"ImportoDaVersare", Valore(saldo > Importo() ? saldo : Importo())},
          {"ImportoACredito", Valore(saldo < Importo() ? Abs(saldo) : Importo())}};
      datiIva->SalvaRecord(Valore(a.avar_Anno), Valore(a.avar_Mese), dati, a.clientID, a.hWnd, cancel, true);
      if (a.avar_Mese == 12)
        progAzienda->AggiornaProgressiviLiquidazioneIvaAcconto(Valore(saldo - maggiorazione + A),
                                                                Valore(saldo - maggiorazione + A), a.clientID, a.hWnd);
    } else {
      progAzienda->AggiornaProgressiviLiquidazioneIvaAnnuali(Valore(saldo <= Importo() ? Abs(saldo) : Importo()),
                                                             Valore(Importo()), Valore(Importo()), a.clientID,
                                                             a.hWnd);
    }
    if (a.avar_NumerazionePagine && fogliStampati > 0 &&
        !fogli->SalvaFogliStampati(Valore(tipoFoglio), Valore(registroFoglio), Valore(numRegLiq), a.avar_Anno,
                                   prossimoFoglio, a.clientID, a.hWnd))
      return false;
    unita.Conferma();
    if (!annuale) {
      Host().MsgBox("Aggiornati i dati per la comunicazione trimestrale dei dati IVA richiesta dal 2017." +
                        std::string(trimestrale ? " - Trimestre: " + std::to_string((a.avar_Mese - 1) / 3 + 1)
                                                : " - Mese: " + std::to_string(a.avar_Mese)) +
                        " Anno: " + std::to_string(a.avar_Anno),
                    vbInformation, "Liquidazione IVA bollata");
    }
  }
  stampa.Chiudi();
  esito_.stampata = true;
  if (a.formAttiva) a.formAttiva->msgbar("");
  return true;
}

// ---------------------------------------------------------------- the December advance

AccontoIvaStorico clsLiquidazioneIva::CalcolaAccontoIvaStorico(std::optional<Importo> base,
                                                                std::optional<double> percentuale) {
  AccontoIvaStorico r;
  clsProgAzienda progAzienda;
  progAzienda.cn = cn;
  clsImportiFissi fissi;
  fissi.cn = cn;
  Valore debitoAnnoPrec, impAcconto, ultimaLiq, creditoInizio, creditoInizioUt, codIvaPerPrec, plafondIniziale,
      plafondResiduo, totImpComp;
  progAzienda.GetProgressiviLiquidazioneIva(debitoAnnoPrec, impAcconto, ultimaLiq, creditoInizio, creditoInizioUt,
                                            codIvaPerPrec, plafondIniziale, plafondResiduo, totImpComp);
  Importo minLiq;
  fissi.GetImportiFissiLiquidazioneIva(r.percentuale, r.minimo, minLiq);
  if (base) impAcconto = Valore(*base);
  if (percentuale) r.percentuale = *percentuale;
  r.base = Imp(impAcconto) > Importo() ? Imp(impAcconto) : Importo();
  r.calcolato = QuotaPercentuale(r.base, r.percentuale, Decimali());
  r.dovuto = r.calcolato > Importo() && r.calcolato >= r.minimo;
  r.totale = r.dovuto ? r.calcolato : Importo();
  return r;
}

bool clsLiquidazioneIva::AccontoIva(const ArgomentiAccontoIva& a) {
  const std::shared_ptr<Connessione>& conn = cn;
  Connessione& db = *cn;
  const bool definitiva = Trim(a.avar_ProvaBollato) == "B";
  if (a.avar_Anno < 1900 || a.avar_Anno > 9999)
    throw ErroreDb(3265, "Anno non valido: " + std::to_string(a.avar_Anno));
  std::unique_ptr<clsAnagraficaAzienda> pAna;
  std::unique_ptr<clsProgressiviIva> pProg;
  std::unique_ptr<clsNumerazioneFogli> pFogli;
  clsAnagraficaAzienda* anagrafica = Usa(a.objAnagraficaAzienda, pAna, conn);
  clsProgressiviIva* progressivi = Usa(a.objProgressiviIVA, pProg, conn);
  clsNumerazioneFogli* fogli = Usa(a.objNumerazioneFogli, pFogli, conn);

  if (definitiva) {
    // Stored after the year's December settlement, the advance would never be deducted.
    clsProgAzienda progAzienda;
    progAzienda.cn = conn;
    Valore debitoAnnoPrec, impAcconto, ultimaLiq, creditoInizio, creditoInizioUt, codIvaPerPrec, plafondIniziale,
        plafondResiduo, totImpComp;
    progAzienda.GetProgressiviLiquidazioneIva(debitoAnnoPrec, impAcconto, ultimaLiq, creditoInizio, creditoInizioUt,
                                              codIvaPerPrec, plafondIniziale, plafondResiduo, totImpComp);
    auto ultima = ultimaLiq.ComeData();
    if (ultima && *ultima >= *Data::Crea(a.avar_Anno, 12, 1)) {
      Host().MsgBox("La liquidazione IVA di dicembre " + std::to_string(a.avar_Anno) +
                        " è già stata stampata sul bollato (ultima liquidazione: " + ultima->Testo() +
                        "): l'acconto non sarebbe più detratto.",
                    vbExclamation, "Acconto IVA");
      return false;
    }
  }

  // 1-2. The body.
  FileLavoro file({"liqiva.tmp", "~liqiva.tmp", "~toliqiva.tmp"});
  {
    std::ofstream corpo(file[0], std::ios::binary);
    if (!corpo) throw ErroreStampa("Impossibile scrivere il file " + file[0]);
    auto linea = [&](const std::string& r) { Scrivi(corpo, r, file[0]); };
    const std::string regola = std::string(36, ' ') + Riga('-', 60);
    const char* maschera = "###,###,###,##0.00";
    linea("");
    if (a.abool_StampaCompleta) {
      linea(regola);
      linea(kMargine + "Importo IVA presunto ...........:" + Dx(Format(Valore(a.avar_ImportoIvaPresunto), maschera), 18));
      linea(kMargine + "Percentuale acconto ............:" + Dx(Format(Valore(a.avar_PercentualeAcconto), maschera), 18));
      linea(kMargine + "Totale acconto .................:" + Dx(Format(Valore(a.avar_TotaleAcconto), maschera), 18));
      linea(regola);
    }
    if (a.objDatiVersamento && a.objDatiVersamento->StampaDatiVersamento())
      for (const auto& r : ScriviSpecchiettoVersamento(a.objDatiVersamento)) linea(r);
    linea(regola);
  }

  // 3-5. The pages: the title with the page stamp, the company's fiscal data, the foot.
  const auto azienda = RigheAzienda(*anagrafica);
  std::array<std::string, 9> testa = {Largo("ANNOTAZIONE ACCONTO I.V.A. ANNO " + std::to_string(a.avar_Anno), 131),
                                      Riga('=', 131), azienda[0], azienda[1], Riga('=', 131), "", "", "", ""};
  std::array<std::string, 4> piede = {PiedeElaborato(a.AzRagSoc, a.AzParIva), "", "", ""};
  ImpaginaFileAzienda(file[0], file[1], a.avar_RighePagina, testa, piede, 1);
  std::string finale = file[1];
  const auto libro = LibroLiquidazioni(a.TipoRegLiquidazione, a.NumRegLiquidazione);
  clsNumerazioneFogli::Fogli numerati;
  if (definitiva && a.avar_NumerazionePagine) {
    numerati = fogli->NumeraFogli(file[1], file[2], a.avar_RighePagina, Valore(libro.tipo), Valore(libro.registro),
                                  Valore(libro.numero), a.avar_Anno, a.clientID, a.hWnd);
    finale = file[2];
  }
  FileStampa stampa(a.nomeFile);
  CopiaInStampa(finale, stampa, a.nomeFile);

  // 6. Definitive: the last sheet and the advance, with the print or not at all.
  if (definitiva) {
    Atomico unita(db);
    if (a.avar_NumerazionePagine && numerati.prossimo > numerati.primo &&
        !fogli->SalvaFogliStampati(Valore(libro.tipo), Valore(libro.registro), Valore(libro.numero), a.avar_Anno,
                                   numerati.prossimo, a.clientID, a.hWnd))
      return false;  // the numbering has said why
    RecordValori riga = {
        {"Importo_versato", Valore(a.avar_TotaleAcconto)},
        {"CodiceAziendaVersam", Valore(a.objDatiVersamento ? a.objDatiVersamento->CodiceAzienda() : "")},
        {"CodiceDipendenzaVersam", Valore(a.objDatiVersamento ? a.objDatiVersamento->CodiceDipendenzaVersam() : "")},
        {"DataVersamento", a.objDatiVersamento ? a.objDatiVersamento->DataVersamento() : Valore::Null()},
        {"TipoVersamento", Valore(LetteraVersamento(a.objDatiVersamento))}};
    // Every amount after the kind of payment is 0.
    for (const char* c :
         {"TotaleIVADebito", "TotaleIVACredito", "UlterioriDetrazioni1", "UlterioriDetrazioni2", "CreditoUsato",
          "ImportoCompensato", "CreditoIVA", "Interessi", "RimborsoArt38Bis", "CompensazioneArt38Bis",
          "OperazioniAttive", "OperazioniAttiveIntra", "OperazioniPassive", "OperazioniPassiveIntra",
          "ImponibileOroArgento", "IVAOroArgento", "IVADebitoPeriodo", "IVACreditoPeriodo", "VariazioniImpostaDebito",
          "VariazioniImpostaCredito", "IVANonVersata", "IVAVersataEccesso", "DebitoInferioreMinimo",
          "CreditoPeriodoPrecedente", "IVADovuta", "IVACredito", "CreditiSpeciali", "AccontoVersato",
          "ImportoDaVersare", "ImportoVersato"})
      if (TabellaCatalogoDi("Liquidazioni Periodiche")->Colonna(c)) riga[c] = Valore(Importo());
    bool cancel = false;
    progressivi->SalvaRecord_LiquidazioneIva(Valore("14"), riga, a.clientID, a.hWnd, cancel);
    unita.Conferma();
  }
  stampa.Chiudi();
  if (a.formAttiva) a.formAttiva->msgbar("");
  return true;
}

}  // namespace vorn
