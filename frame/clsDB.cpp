#include "frame/clsDB.h"

#include <sqlite3.h>

#include <fstream>

#include "company/clsParametriAzienda.h"
#include "frame/Comuni.h"
#include "frame/Data.h"
#include "frame/FileVorn.h"
#include "frame/Globali.h"
#include "frame/Host.h"
#include "frame/Schema.h"
#include "frame/VornServer.h"
#include "frame/clsUtenti.h"

namespace vorn {

namespace {

void FallisciConnessione(const std::string& testo) {
  Host().Clessidra(false);
  Host().MsgBox(testo, vbExclamation, Host().TitoloApplicazione());
}

std::string NonGestito(const std::string& nome, const std::string& numero, const std::string& descrizione) {
  return "Errore non gestito durante il tentativo di connessione al database " + nome + "\r" + numero + " " + descrizione;
}

}  // namespace

bool clsDB::ConnettiDatabaseSQLite(const Valore& NomeDatabase, const Valore& PasswordDB, bool NonSettareParametriGlobali) {
  Host().Clessidra(true);
  nome_ = NomeDatabase.Testo();
  if (!Trim(PasswordDB.Testo()).empty()) {
    FallisciConnessione(
        "Il database SQLite non ha una password propria: il file " + nome_ +
        " va protetto con i permessi del sistema. Connettersi lasciando vuota la password.");
    return false;
  }
  try {
    OpzioniSqlite o;
    o.attesaMs = attesaSQLiteMs;
    o.solaLettura = solaLetturaSQLite;
    cn = Connessione::ApriSqlite(nome_, o);
    G().ConnessioneGlobale = cn;
    if (!NonSettareParametriGlobali) ImpostaVariabiliGlobaliServer();
  } catch (const ErroreDb& e) {
    if (e.Numero() == SQLITE_BUSY || e.Numero() == SQLITE_LOCKED)
      FallisciConnessione("Archivi bloccati in modo esclusivo da un'altro utente o istanza.");
    else
      FallisciConnessione(NonGestito(nome_, std::to_string(e.Numero()), e.Descrizione()));
    return false;
  } catch (const std::exception& e) {
    FallisciConnessione(NonGestito(nome_, "0", e.what()));
    return false;
  }
  Host().Clessidra(false);
  return true;
}

bool clsDB::ConnettiDatabasePostgreSQL(const Valore& NomeDatabase, const Valore& NomeServer, const Valore& NomeUtenteDB,
                                       const Valore& PasswordDB, bool NonSettareParametriGlobali) {
  Host().Clessidra(true);
  nome_ = NomeDatabase.Testo();
  ParametriPostgres p;
  p.database = nome_;
  p.host = NomeServer.Testo();
  p.user = NomeUtenteDB.Testo();
  p.password = PasswordDB.Testo();
  p.schema = schemaPostgreSQL;
  try {
    cn = Connessione::ApriPostgres(p);
    G().ConnessioneGlobale = Connessione::ApriPostgres(p);
    if (!NonSettareParametriGlobali) ImpostaVariabiliGlobaliServer();
  } catch (const ErroreDb& e) {
    const std::string& st = e.SqlState();
    if (st == "28P01")
      FallisciConnessione("Password del database non valida.");
    else if (st.rfind("08", 0) == 0 || st == "3D000" || st == "28000")
      FallisciConnessione("Codice errore: " + st + " " + e.Descrizione());
    else
      FallisciConnessione(NonGestito(nome_, st.empty() ? std::to_string(e.Numero()) : st, e.Descrizione()));
    return false;
  } catch (const std::exception& e) {
    FallisciConnessione(NonGestito(nome_, "0", e.what()));
    return false;
  }
  Host().Clessidra(false);
  return true;
}

void clsDB::ImpostaVariabiliGlobaliServer() {
  clsParametriAzienda par;
  par.cn = cn;
  auto& g = G();
  par.GetParametriGlobali(g.ValutaDiConto, g.SimboloValutaConto, g.DescrizioneValutaConto, g.DecimaliImporti,
                          g.CodiceValutaLire, g.CodiceValutaEuro, g.CambioFissoLireEuro, g.DecimaliCambi,
                          g.DecimaliQuantita, g.DecimaliPrezziValutaConto);
  g.IndSqlServer = std::string(1, cn && cn->IsPostgres() ? '1' : '0');
}

void clsDB::DisconnettiDatabase() {
  try {
    if (G().ConnessioneGlobale) G().ConnessioneGlobale->Close();
  } catch (...) {
  }
  try {
    if (cn) cn->Close();
  } catch (...) {
  }
  G().ConnessioneGlobale.reset();
  cn.reset();
}

Valore clsDB::Begin_Transazione() {
  if (!cn) throw ErroreDb(3709, "La connessione non è aperta.");
  cn->BeginTrans();
  return Valore();
}
Valore clsDB::Commit_Transazione() {
  if (!cn) throw ErroreDb(3709, "La connessione non è aperta.");
  cn->CommitTrans();
  return Valore();
}
Valore clsDB::Rollback_Transazione() {
  if (!cn) throw ErroreDb(3709, "La connessione non è aperta.");
  cn->RollbackTrans();
  return Valore();
}

// ------------------------------------------------------------------ upgrade of old databases

const std::vector<TabellaDaAggiornare>& CampiDaAggiornare() {
  static const std::vector<TabellaDaAggiornare> lista = {
    // clang-format off
    {"Allegati", {
        {"NumNoteAccredito", "NumNoteCredito"},
    }},
    {"Causali Contabili", {
        {"TipoOperativita", "OperativitaContabile"}, {"Serienumerazproposta", "SerieProposta"},
        {"IndTipoQuadratura", "IndQuadratura"}, {"TipomovimentazIntra", "OperativitaIntra"},
        {"GestioneRitenute", "OperativitaRitenute"}, {"IndCespiti", "OperativitaCespiti"},
        {"IndGestionePartite", "OperativitaPartite"}, {"NRegistroIVAproposto", "RegistroIVAProposto"},
        {"NumRegIvaCorrisp", "RegistroIVAPropostoCorr"}, {"FlgNonUtil", "FlagNonUtilizzata"},
        {"IndPelvoModtrasf", "TrasferitaPelvo"}, {"FlagTraferMirk", "TrasferitaMirk"},
    }},
    {"Corrispettivi Ventilazione", {
        {"ParteFissa", "IndicatoreFisso"},
    }},
    {"Monte Acquisti Ventilazione", {
        {"ParteFissa", "IndicatoreFisso"}, {"ImportoMonteAcquis", "ImportoMonteAcquisti"},
    }},
    {"Liquidazioni Periodiche", {
        {"MeseDiVersamento", "MeseVersamento"}, {"CodAziendaDiCredi", "CodiceAziendaVersam"},
        {"CodiceDipendenza", "CodiceDipendenzaVersam"}, {"TotIVAdebito", "TotaleIVADebito"},
        {"TotIVAcredito", "TotaleIVACredito"}, {"UltDetraz1", "UlterioriDetrazioni1"},
        {"UltDetraz2", "UlterioriDetrazioni2"}, {"OperattiveIntra", "OperazioniAttiveIntra"},
        {"OperpassiveIntra", "OperazioniPassiveIntra"}, {"CompensArt38Bis", "CompensazioneArt38Bis"},
        {"ImponOperazOroArg", "ImponibileOroArgento"}, {"IVAOperazOroArg", "IVAOroArgento"},
        {"VariazImpostaDeb", "VariazioniImpostaDebito"}, {"VariazImpostaCred", "VariazioniImpostaCredito"},
        {"DebitoInferioreMin", "DebitoInferioreMinimo"}, {"ImportodaVersare", "ImportoDaVersare"},
        {"CreditoPeriodoPrec", "CreditoPeriodoPrecedente"}, {"ImpCompensato", "ImportoCompensato"},
    }},
    {"Parametri Vorn", {
        {"NumRegIvaVendite", "NumRegIVAVendite"}, {"NRegIvaVenInLiq", "NumRegIVAVenditeLiq"},
        {"NRegIvaAcqInLiq", "NumRegIVAAcquistiLiq"}, {"NRegIvaCorrScorp", "NumRegIVACorrispScorp"},
        {"NRegIvaCorScLiq", "NumRegIVACorrispScorpLiq"}, {"NRegIvaCorVentil", "NumRegIVACorrispVentil"},
        {"NRegCorVentLiq", "NumRegIVACorrispVentilLiq"}, {"MRegIvaSospension", "NumRegIVASospensione"},
        {"IndGestStoricoCon", "GestioneStoricoContabile"}, {"IndGestPartiteAp", "GestionePartiteAperte"},
        {"IndGestLingue", "GestioneLingue"}, {"IndDescSuppRegiva", "DescrizSupplemRegIVA"},
        {"PeriodicitaLiquidaz", "PeriodicitaLiquidazione"}, {"IndMonteAcqUnico", "GestMonteAcquistiUnico"},
        {"GruppConto1Fornit", "GruppoConto1Fornitori"}, {"GruppConto2Fornit", "GruppoConto2Fornitori"},
        {"GruppConto3Fornit", "GruppoConto3Fornitori"}, {"GruppConto4Fornit", "GruppoConto4Fornitori"},
        {"GruppConto5Fornit", "GruppoConto5Fornitori"}, {"GruppConto1Client", "GruppoConto1Clienti"},
        {"GruppConto2Client", "GruppoConto2Clienti"}, {"GruppConto3Client", "GruppoConto3Clienti"},
        {"GruppConto4Client", "GruppoConto4Clienti"}, {"GruppConto5Client", "GruppoConto5Clienti"},
        {"ParamCampoLibero1", "ParaVornCampoLibero1"}, {"ParamCampoLibero2", "ParaVornCampoLibero2"},
        {"ParamCampoLibero3", "ParaVornCampoLibero3"}, {"ParamCampoLibero4", "ParaVornCampoLibero4"},
        {"ParamCampoLibero5", "ParaVornCampoLibero5"}, {"ParamCampoLibero6", "ParaVornCampoLibero6"},
        {"ParamCampoLibero7", "ParaVornCampoLibero7"}, {"ParamCampoLibero8", "ParaVornCampoLibero8"},
        {"TipoRiepilCessioni", "ModalitaRiepilogoCessioni"},
        {"TipoRiepilAcquisti", "ModalitaRiepilogoAcquisti"}, {"IndGestioneProrata", "GestioneProrataIVA"},
        {"Ind74ter", "IVAArt74Ter"}, {"CodIva74ter", "CodIVA74Ter"},
        {"IndAvalstat", "IndValoreStatisticoAcquisti"}, {"IndCvalstat", "IndValoreStatisticoCessioni"},
        {"IndDatacompiva", "GestDataCompetenzaIVA"}, {"IndRiflgsuriva", "RifLibGioRegistriIVA"},
        {"IndOrdStampaRegiv", "IndOrdinamRegistriIVA"}, {"IndAutotrasp", "IndIVAAutotrasportatori"},
        {"IndVers4trim", "VersamentoIVA4Trim"}, {"NumFogliAutIva", "NumPagineAutoRegIVA"},
        {"Numfogliautlibrogior", "NumPagineAutoLibGior"}, {"TipoRegLiq", "TipoRegLiquidazione"},
        {"NumRegLiq", "NumRegLiquidazione"}, {"IndGiornalemacchina", "IndGiornMacchina"},
    }},
    {"Piano Dei Conti", {
        {"IndSottocInBilanc", "SottocontoInBilancio"}, {"IndCollegamentosarn", "CollegamentoSarn"},
        {"IndCompenaiATerzi", "CompATerzi"}, {"IndiceRiclassifBil", "IndiceRicBilancio"},
        {"FlagTrasferMirk", "TrasfMirk"}, {"IndPelvoTrasferi", "TrasfPelvo"},
        {"IndPelvoQuadrat", "QuadPelvo"}, {"IndCentroDiCosto", "MovimCentriCosto"},
    }},
    {"Prima Nota", {
        {"NRegcorrXMonteacq", "RegIvaCorrMonteAcq"}, {"FlagTrasferVorn", "TrasfVorn"},
        {"IndPelvoTrasfer", "TrasfPelvo"}, {"FlagTrasferBea", "TrasfZQ"}, {"KeydocBea", "KeyZQ"},
        {"SerieNumDocumento", "SerieDocumento"},
    }},
    {"Progressivi Azienda Vorn", {
        {"UltLiquidazioneIva", "UltimaLiquidazioneIva"}, {"ProgDareLibroGiornal", "ProgDareLibroGiornale"},
        {"ProgAvereLibroGiorna", "ProgAvereLibroGiornale"}, {"CODIvaperiodoprec", "CodIvaPerPrec"},
        {"NumClientiAllegati", "NumClientiInAllegato"}, {"ImpClientiAllegati", "ImpClientiInAllegato"},
        {"NumFornitoriAllegati", "NumFornitoriInAllegato"},
        {"ImpFornitoriAllegati", "ImpFornitoriInAllegato"}, {"NUltregistrazionepn", "UltimaRegistrazionePN"},
        {"ProgXRandomizMovm", "ProgressivoXMovimenti"}, {"UltCompStoricoContab", "UltimoAzzStorico"},
        {"ImpIvaXCalcAccon", "ImpIVACalcoloAcconto"}, {"AcqIntraPeriodoPr", "AcqIntraPerPrecedente"},
        {"AcqIntraEsercPrec", "AcqIntraEserPrecedente"}, {"NUltRettificaintra", "UltimaRettificaIntra"},
        {"ValTotImpComp", "ValoreTotImpComp"}, {"CreIvaIniUtil", "CreditoIVAInizioAnnoUt"},
    }},
    {"Progressivi Numerazione Vorn", {
        {"NumProgressivoDoc", "NumeroUltimoDoc"}, {"DataEmissioUltDoc", "DataUltimoDoc"},
        {"NUltDocStampaBol", "NumeroUltimoDocBollato"},
    }},
    {"Progressivi Registri Iva", {
        {"ParteFissa", "IndicatoreFisso"}, {"TipoRecord", "IndTipoRecord"},
        {"DataUltStampaBoll", "DataUltimaStampaBollato"},
    }},
    {"Progressivi Scadenze", {
        {"ParteFissa", "IndicatoreFisso"},
    }},
    {"Riferimenti Contabili", {
        {"CausStornoivaInded", "CausStornoIvaInded"}, {"ScontoIvaCVendite", "SottIVACVendite"},
        {"ScontoIvaCAcquist", "SottIVACAcquisti"}, {"ScontoIvaCScorpor", "SottIVACScorporo"},
        {"ScontoivacCorrispsc", "SottIVACCorrispSc"}, {"ScontoIvaCSospens", "SottIVACSospensione"},
        {"ScontoAperturaBilanc", "SottAperturaBilancio"}, {"ScontoChiusuraBilanc", "SottChiusuraBilancio"},
        {"ScontoUtilePerditaEs", "SottUtilePerditaEse"}, {"CausaleAperturaBilan", "CausAperturaBilancio"},
        {"CausaleChiusuraBilan", "CausChiusuraBilancio"}, {"ScontoTratte", "SottTratte"},
        {"ScontoRicevutebanca", "SottRicevuteBancarie"}, {"ScontoAvvisi", "SottAvvisi"},
        {"CausEmisFatturaClien", "CausEmisFatturaClienti"},
        {"CausNotaAccreditoCli", "CausNotaCreditoClienti"}, {"CausalIncassoCliente", "CausIncassoCliente"},
        {"CausaleOmaggio", "CausOmaggio"}, {"ScontoImponibileOmag", "SottImponibileOmaggi"},
        {"ScontoIvaOmaggio", "SottIvaOmaggi"}, {"ScontoRicaviStandard", "SottRicaviStandard"},
        {"ScontoRicaviAccessor", "SottRicaviAccessori"}, {"ScontoRisultatoEserc", "SottRisultatoEsercizio"},
        {"CausaleAnticipiBolla", "CausAnticipiDDT"}, {"SContoErarioRitenute", "SottErarioRitenute"},
        {"CausaliVersamRitenut", "CausVersamentoRitenute"}, {"CausaleCorrispettivi", "CausCorrispettivi"},
        {"ScontoEsdifvend", "SottEsigDiffVend"}, {"ScontoEsdifacqu", "SottEsigDiffAcq"},
        {"TipoContabRicaviAcc", "TipoContabRicAcc"}, {"ScontoRicaviacc", "SottRicaviAccessori2"},
        {"ScontoRicspeseincas", "SottRicaviSpeseIncasso"},
        {"ScontoRicspesetrasp", "SottRicaviSpeseTrasporto"}, {"ScontoRicavibolli", "SottRicaviBolli"},
        {"ContrCostiStd", "SottCostiStandard"}, {"ContrCostoSpeseTrasp", "SottCostiSpeseTrasporto"},
        {"ContrCostoSpeseIncas", "SottCostiSpeseIncasso"},
        {"ContrCostoSpeseAcces", "SottCostiSpeseAccessori"}, {"ContrCostoSpeseBolli", "SottCostiSpeseBolli"},
        {"ContrCostoImponOmagg", "SottCostiImponibileOmaggi"}, {"ContrCostoIvaOmaggio", "SottCostiIvaOmaggi"},
        {"CausaleFatturaFor", "CausFatturaForn"}, {"CausaleNotaAccFor", "CausNotaCreditoForn"},
        {"CausalePagamenFor", "CausPagamentoForn"}, {"CausaleAnticipoFor", "CausAnticipoForn"},
        {"CausaleOmaggioFor", "CausOmaggioForn"}, {"CausaleFattAcqCee", "CausFattAcqCee"},
        {"CausaleAnnotVendCee", "CausAnnotVenditeCee"}, {"CausaleCostoForCee", "CausCostoFornCee"},
        {"SottocIvaAcqCee", "SottIVAAcqCee"}, {"SottocFornitoCee", "SottFornCee"},
        {"SottocClientiCee", "SottClientiCee"}, {"SottocCostoAcqCee", "SottCostoAcqCee"},
        {"CodiceIvaCee", "CodIvaCee"}, {"SContoArrotonPassivi", "SottArrotondPassivi"},
        {"SContoArrotonAttivi", "SottArrotondAttivi"}, {"SContocnvlireeuro", "SottConvLireEuro"},
        {"SContoAttivDiver", "SottAttivitaDiverse"}, {"SContoPassiDiver", "SottPassivitaDiverse"},
        {"SContoOneriStraord", "SottOneriStraordinari"}, {"SContoProvvStraord", "SottProventiStraordinari"},
        {"ScontoRID", "SottRID"},
    }},
    {"Tabella Azienda Vorn", {
        {"IndirizzoSedelegale", "IndirizzoSedeLegale"}, {"NumTelSedeLegale", "TelefonoSedeLegale"},
        {"CapSedeAmministrat", "CapSedeAmmin"}, {"NumTelSedeAmmin", "TelefonoSedeAmmin"},
        {"DataTerminePerApprov", "TermineApprovBilancio"}, {"NumTelResidenza", "TelefonoResidenza"},
    }},
    // clang-format on
  };
  return lista;
}

namespace {

constexpr const char* kTestaLog = "Segnalazioni per aggiornamento DB Vorn - Data: ";
constexpr const char* kFileLog = "AggiornamentoArchivi.txt";

// The log is replaced only by a log: an existing file must begin as one.
bool LogAggiornamento(const std::string& percorso) {
  std::ifstream in(percorso);
  std::string riga;
  return in && std::getline(in, riga) && riga.rfind(kTestaLog, 0) == 0;
}

std::string RigaCopia(const std::string& tabella, const std::string& destinazione, bool riuscito) {
  return "Aggiornamento del campo  " + destinazione + " nella tabella " + tabella +
         (riuscito ? " riuscito." : " non riuscito.");
}

void TestaLog(std::ostream& out) { out << kTestaLog << Data::Oggi().Testo() << "\n" << std::string(64, '-') << "\n"; }

bool HaColonna(const std::vector<Colonna>& colonne, const std::string& nome) {
  for (const auto& c : colonne)
    if (UgualeNoCase(c.nome, nome)) return true;
  return false;
}

// The nulls that the old archives left where the statements expect text, in the order of the run.
struct NulloDaSostituire {
  const char* tabella;
  const char* colonna;
  const char* valore;
};
const NulloDaSostituire kNulli[] = {
    {"Prima Nota", "TipoRigaIvaNormale", ""},   {"Prima Nota", "IndClientefornitore", ""},
    {"Prima Nota", "CodClientefornitore", ""},  {"Prima Nota", "SerieDocumento", ""},
    {"Prima Nota", "CodiceIva", ""},            {"Prima Nota", "ContropIvaIndeduc", ""},
    {"Prima Nota", "IndicatoreCliFor", ""},     {"Prima Nota", "CodiceCliFor", ""},
    {"Prima Nota", "Stringa10indicatori", "  0       "},
    {"Prima Nota", "Valuta", ""},               {"Piano Dei Conti", "Gruppo", ""},
    {"Piano Dei Conti", "Conto", ""},           {"Piano Dei Conti", "Sottoconto", ""},
};

// On PostgreSQL the statements reach a column by its lower-case name; an old database moved
// there by a tool that kept the capitals ("NumRegIvaVendite") has columns no statement reaches.
// Each is renamed to its lower-case spelling, unless a column of that spelling is there too.
std::vector<std::string> RinominaMaiuscole(Connessione& cn) {
  std::vector<std::string> fatte;
  if (!cn.IsPostgres()) return fatte;
  for (const auto& t : CampiDaAggiornare()) {
    auto colonne = cn.ColonneTabella(t.tabella);
    for (const auto& c : colonne) {
      std::string minuscolo = LCase(c.nome);
      if (minuscolo == c.nome || c.nome.find('"') != std::string::npos) continue;
      bool doppia = false;
      for (const auto& altra : colonne) doppia = doppia || altra.nome == minuscolo;
      if (doppia) continue;
      cn.Esegui("ALTER TABLE [" + std::string(t.tabella) + "] RENAME COLUMN \"" + c.nome + "\" TO [" + minuscolo + "]");
      fatte.push_back(std::string(t.tabella) + "." + c.nome);
    }
  }
  if (!fatte.empty()) cn.DimenticaSchema();
  return fatte;
}

// The passwords that the earlier generation kept in clear, replaced by their salted hash.
int CifraPasswordInChiaro(Connessione& cn) {
  std::vector<std::pair<std::string, std::string>> inChiaro;
  Recordset rs = cn.Execute("SELECT [username], [password] FROM [Tabella Utenti] WHERE [password] IS NOT NULL");
  for (; !rs.Eof(); rs.MoveNext()) {
    std::string p = rs.Fields(1).Value().Testo();
    if (!p.empty() && !IsHashPassword(p)) inChiaro.emplace_back(rs.Fields(0).Value().Testo(), p);
  }
  for (const auto& [utente, p] : inChiaro)
    cn.Esegui("UPDATE [Tabella Utenti] SET [password] = ? WHERE [username] = ?", {HashPassword(p), utente});
  return static_cast<int>(inChiaro.size());
}

}  // namespace

Connessione& clsDB::Cn() {
  if (!cn) throw ErroreDb(3709, "La connessione non è aperta.");
  return *cn;
}

bool clsDB::IsNuovoDBVorn() {
  if (!EsisteTabella(Cn(), "Versione Archivi")) return false;
  Recordset rs = cn->Execute("SELECT [Versione Archivi].[NuovoDBVorn] FROM [Versione Archivi] WHERE [ID] = ?", {1});
  if (rs.Eof()) return false;
  return LeggiCampo(rs.Fields(0), false).Vero();
}

bool clsDB::SetNuovoDBVorn() {
  Atomico a(Cn());
  if (!EsisteTabella(*cn, "Versione Archivi")) {
    cn->Esegui(SqlCreaTabella(*cn, "Versione Archivi"));
    cn->DimenticaSchema();
  }
  Recordset rs = cn->Apri("Versione Archivi", "[ID] = ?", {1});
  if (rs.Eof()) {
    rs.AddNew();
    rs("ID") = 1;
  }
  rs("NuovoDBVorn") = true;
  rs.Update();
  rs.Close();
  a.Conferma();
  return false;
}

clsDB::EsitoCopia clsDB::Copia(const std::string& tabella, const std::string& origine, const std::string& destinazione,
                               std::string& errore) {
  VerificaNome(tabella);
  VerificaNome(origine, "colonna");
  VerificaNome(destinazione, "colonna");
  // A table or a column the database does not have is a line of the log, not a failed
  // statement: on PostgreSQL that would spoil the transaction the copy runs in.
  std::vector<Colonna> colonne = Cn().ColonneTabella(tabella);
  if (!HaColonna(colonne, origine) || !HaColonna(colonne, destinazione)) return EsitoCopia::Mancante;
  // Names that differ only in case are one column on both engines: nothing to copy.
  if (UgualeNoCase(origine, destinazione)) return EsitoCopia::Copiata;
  try {
    Atomico a(*cn);
    cn->Esegui("UPDATE [" + tabella + "] SET [" + destinazione + "] = [" + origine + "]");
    a.Conferma();
  } catch (const ErroreDb& e) {
    errore = e.Descrizione();
    return EsitoCopia::Errore;
  }
  return EsitoCopia::Copiata;
}

bool clsDB::CopiaCampoInTabella(const Valore& NomeTabella, const Valore& NomeCampoOrigine,
                                const Valore& NomeCampoDestinazione) {
  const std::string tabella = NomeTabella.Testo(), destinazione = NomeCampoDestinazione.Testo();
  bool ok = false;
  try {
    std::string errore;
    ok = Copia(tabella, NomeCampoOrigine.Testo(), destinazione, errore) == EsitoCopia::Copiata;
  } catch (const std::exception&) {
    ok = false;
  }
  if (log_) *log_ << RigaCopia(tabella, destinazione, ok) << "\n";
  return ok;
}

void clsDB::AggiornaCampiDb() {
  Cn();
  const std::string percorso = CartellaStampe() + "/" + kFileLog;
  FileStampa f(percorso, LogAggiornamento, "un registro dell'aggiornamento degli archivi");
  TestaLog(f.Flusso());
  log_ = &f.Flusso();
  for (const auto& t : CampiDaAggiornare())
    for (const auto& c : t.campi) CopiaCampoInTabella(t.tabella, c.origine, c.destinazione);
  log_ = nullptr;
  f.Chiudi();
  try {
    Host().ApriFile(percorso);
  } catch (...) {
  }
}

bool clsDB::RistrutturaPrimaNota() {
  Cn();
  for (const auto& n : kNulli) {
    try {
      Atomico a(*cn);
      cn->Esegui(std::string("UPDATE [") + n.tabella + "] SET [" + n.colonna + "] = ? WHERE [" + n.colonna + "] IS NULL",
                 {std::string(n.valore)});
      a.Conferma();
    } catch (const ErroreDb&) {
      return false;
    }
  }
  return true;
}

EsitoAggiornamentoArchivi clsDB::AggiornaArchivi(IForm* form) {
  EsitoAggiornamentoArchivi e;
  if (IsNuovoDBVorn()) {
    e.giaNuovo = true;
    return e;
  }
  Clessidra clessidra;
  e.report = CartellaStampe() + "/" + kFileLog;
  FileStampa f(e.report, LogAggiornamento, "un registro dell'aggiornamento degli archivi");
  std::ostream& out = f.Flusso();
  TestaLog(out);
  struct Chiudi {
    std::ostream*& log;
    ~Chiudi() { log = nullptr; }
  } chiudi{log_};
  try {
    Atomico a(*cn);
    // Two upgrades of one database run one after the other (on SQLite the transaction holds the
    // file already), and the second finds the mark of the first.
    if (cn->IsPostgres() && EsisteTabella(*cn, "Prima Nota"))
      cn->Esegui("LOCK TABLE [Prima Nota] IN SHARE ROW EXCLUSIVE MODE");
    if (IsNuovoDBVorn()) {
      e.giaNuovo = true;
      e.report.clear();
      return e;  // the log is left unwritten
    }
    e.rinominate = RinominaMaiuscole(*cn);
    for (const auto& r : e.rinominate) out << "Colonna " << r << " rinominata in minuscolo." << "\n";
    if (form) form->msgbar("Completamento della struttura degli archivi");
    e.aggiunte = AssicuraSchema(*cn);
    for (const auto& x : e.aggiunte) out << "Aggiunta al database: " << x << "." << "\n";
    for (const auto& t : CampiDaAggiornare()) {
      if (form) form->msgbar(std::string("Aggiornamento della tabella ") + t.tabella);
      for (const auto& c : t.campi) {
        std::string errore;
        EsitoCopia esito = Copia(t.tabella, c.origine, c.destinazione, errore);
        out << RigaCopia(t.tabella, c.destinazione, esito == EsitoCopia::Copiata) << "\n";
        if (esito == EsitoCopia::Errore)
          throw ErroreDb(0, std::string("copia di ") + c.origine + " in " + c.destinazione + " nella tabella " +
                                t.tabella + ": " + errore);
        ++(esito == EsitoCopia::Copiata ? e.copiati : e.nonRiusciti);
      }
    }
    if (form) form->msgbar("Sostituzione dei valori nulli di Prima Nota e Piano Dei Conti");
    if (!RistrutturaPrimaNota())
      throw ErroreDb(0, "sostituzione dei valori nulli di Prima Nota e Piano Dei Conti non riuscita");
    out << "Sostituzione dei valori nulli di Prima Nota e Piano Dei Conti riuscita." << "\n";
    e.passwordCifrate = CifraPasswordInChiaro(*cn);
    if (e.passwordCifrate > 0)
      out << "Password in chiaro sostituite dalla loro impronta: " << e.passwordCifrate << "." << "\n";
    SetNuovoDBVorn();
    a.Conferma();
    e.riuscito = true;
    out << "Archivi aggiornati: il database è segnato come nuovo." << "\n";
  } catch (const std::exception& x) {
    e.riuscito = false;
    e.errore = x.what();
    out << "Aggiornamento annullato (" << e.errore << "): il database è rimasto com'era." << "\n";
  }
  // The database's outcome is settled by now: a report that cannot be written is told, and does
  // not turn a committed upgrade into a failure.
  try {
    f.Chiudi();
  } catch (const std::exception& x) {
    e.erroreReport = x.what();
    e.report.clear();
    return e;
  }
  try {
    Host().ApriFile(e.report);
  } catch (...) {
  }
  return e;
}

}  // namespace vorn
