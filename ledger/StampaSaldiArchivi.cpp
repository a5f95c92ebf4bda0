#include "ledger/StampaSaldiArchivi.h"

#include <fstream>

#include "company/StampaLibri.h"
#include "frame/Comuni.h"
#include "frame/FileVorn.h"
#include "frame/Impaginazione.h"
#include "ledger/MovimentiMastrino.h"
#include "ledger/clsSaldiContabili.h"

namespace vorn::stampa_saldi {

using namespace stampa_libri;

namespace {

constexpr const char* kImporti =
    "Saldo iniziale     Dare progr.    Avere progr.   Dare periodo  Avere periodo    Saldo attuale";

// A signed balance with its side: "1.234,00 D".
std::string ConLato(Importo i, int n) {
  std::string lato = LatoDareAvere(i);
  return Dx(Cifra(ImportoAssoluto(i)) + " " + (lato.empty() ? " " : lato), n);
}

std::string Importi(const RigaSaldiArchivio& r) {
  return ConLato(r.saldoIniziale, 14) + Dx(Cifra(r.dareProgressivo), 16) + Dx(Cifra(r.avereProgressivo), 16) +
         Dx(Cifra(r.darePeriodo), 15) + Dx(Cifra(r.averePeriodo), 15) + ConLato(r.saldoAttuale, 17);
}

}  // namespace

Valore InizioSaldi(const Valore& daData, const Valore& ultimoScarico) {
  auto da = DataCorretta(daData), scarico = DataCorretta(ultimoScarico);
  if (da && scarico && *da <= *scarico) return Valore("");
  return daData;
}

std::string Intestazione(const std::string& colonne) { return Largo(colonne, 38) + kImporti; }

std::string Linea(const RigaSaldiArchivio& r, int larghezzaCodice) {
  return Sx(r.codice, larghezzaCodice) + " " + Sx(r.descrizione, 37 - larghezzaCodice) + Importi(r);
}

std::string LineaTotale(const RigaSaldiArchivio& t) { return Largo("T O T A L E                     ", 38) + Importi(t); }

void ScriviStampa(const std::vector<std::string>& righe, const std::string& nomeFile, int righePagina,
                  const std::string& titolo, const std::string& azienda, const Data& data,
                  const std::string& intestazione, const std::string& AzRagSoc, const std::string& AzParIva) {
  VerificaUscitaStampa(nomeFile);
  FileLavoro lavoro({"StamSaldi.tmp"});
  {
    std::ofstream out(lavoro[0], std::ios::binary | std::ios::trunc);
    if (!out) throw ErroreStampa("Impossibile scrivere il file " + lavoro[0]);
    for (const auto& r : righe) Scrivi(out, r, lavoro[0]);
    out.close();
    if (!out) throw ErroreStampa("Impossibile scrivere il file " + lavoro[0]);
  }
  const std::string uguale(kColonneReport, '=');
  std::array<std::string, 7> testata = {
      uguale, Largo(titolo + Trim(azienda) + "     Data: " + data.Testo(), kColonneReport - 14) + "Pag:     1 ===",
      uguale, intestazione, std::string(kColonneReport, '-'), "", ""};
  std::array<std::string, 2> piede = {"", PiedeElaborato(AzRagSoc, AzParIva)};
  RigaPagina("", Valore(0));
  FileStampa stampa(nomeFile);
  ImpaginaFile(lavoro[0], stampa.Flusso(), righePagina, testata, piede, false, 2);
  stampa.Chiudi();
}

void ScriviTabella(Connessione& cn, const std::string& tabella, const std::string& colonnaCodice,
                   const std::string& clientName, const std::vector<RigaSaldiArchivio>& righe) {
  VerificaNome(tabella);
  VerificaNome(colonnaCodice, "colonna");
  Atomico unita(cn);
  cn.Esegui("DELETE FROM [" + tabella + "] WHERE [ClientName] = ?", {Valore(clientName)});
  long progressivo = 0;
  for (const auto& r : righe)
    cn.EseguiInCoda("INSERT INTO [" + tabella + "] ([ClientName], [Progressivo], [" + colonnaCodice +
                        "], [Descrizione], [SaldoIniziale], [DareProgressivo], [AvereProgressivo], [DarePeriodo], "
                        "[AverePeriodo], [SaldoAttuale]) VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?, ?)",
                    {Valore(clientName), Valore(++progressivo), Valore(r.codice), Valore(r.descrizione),
                     Valore(r.saldoIniziale), Valore(r.dareProgressivo), Valore(r.avereProgressivo),
                     Valore(r.darePeriodo), Valore(r.averePeriodo), Valore(r.saldoAttuale)});
  unita.Conferma();
}

}  // namespace vorn::stampa_saldi
