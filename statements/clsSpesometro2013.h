// The annual statement of operations with VAT ("spesometro"): the extraction of the year's VAT
// rows of the journal into [Spesometro2013], their sum by document into
// [Spesometro2013Riepilogato] and by subject into [Spesometro2013Preaggregazione] and
// [Spesometro2013Totali]; the telematic file of supply "NSP00" written from them, with its
// report of signals; and the readers of a generated file (totals, CSV, the client's grid).
//
// An extraction replaces the rows of its kind and year in one transaction: when it fails, the
// previous extraction stays as it was. The amounts of variation notes are stored with the sign
// of the VAT registers (negative): a note that comes out positive is a note to check; the file
// carries each amount unsigned in its own column.
#pragma once
#include <cstdint>
#include <functional>
#include <iosfwd>
#include <string_view>
#include <string>
#include <vector>

#include "frame/ConnessioneClasse.h"
#include "frame/Db.h"
#include "frame/Host.h"
#include "frame/Valore.h"
#include "statements/Griglia.h"

namespace vorn {

// The values of MakeFileTelematicoSpesometro: the quadri requested (1) and the data of the
// front page. Indexes: indiceTipo 0 annual; indiceTipologiaComunicazione 0 ordinary,
// 1 replacement, 2 cancellation; indiceImpegnoTrasmettere 0 sent by the company, 1 and 2 by an
// intermediary; indiceFormato 0 aggregated, 1 analytic.
struct ArgomentiFileSpesometro {
  std::string nomeFile, nomeFileSegnalazioni;
  int indiceTipo = 0, indiceTipologiaComunicazione = 0;
  std::string Protocollo_telematico_da_sostituire_o_annullare, Protocollo_documento;
  std::string codiceFiscaleSoggettoObbligato;
  int indiceImpegnoTrasmettere = 0, indiceFormato = 1;
  int quadroFA = 0, quadroSA = 0, quadroBL = 0, quadroFE = 0, quadroFR = 0, quadroNE = 0, quadroNR = 0, quadroDF = 0,
      quadroFN = 0, quadroSE = 0, quadroTU = 0;
  std::string partitaIVASRC, codiceAttivitaSRC, telefonoSRC, faxSRC, emailSRC, cognomeSRC, nomeSRC, sessoSRC;
  Valore dataNascitaSRC;
  std::string comuneNascitaSRC, provinciaNascitaSRC, denominazioneSRC;
  int AnnoRiferimento = 0, PeriodoRiferimento = 0;
  std::string codiceFiscaleSTC, codiceCaricaSTC;
  Valore dataInizioProcSTC, dataFineProcSTC;
  std::string cognomeSTC, nomeSTC, sessoSTC;
  Valore dataNascitaSTC;
  std::string comuneNascitaSTC, provinciaNascitaSTC, denominazioneSTC;
  std::string codiceFiscaleIntermediario, iscrizioneCAFIntermediario;
  Valore dataImpegnoTrasmissione;
};

// What a generated file held: its records and the fields of its pages.
struct ContenutoFileSpesometro {
  long recordB = 0, recordC = 0, recordD = 0, recordE = 0;
  long campi = 0;
};

// The records of a page: its head ("C" or "D", the fiscal code, the module) and its body, 1800
// characters (75 fields) a record, left-aligned; a longer page goes on in further records of the
// same module.
std::vector<std::string> RecordDellaPagina(char tipo, const std::string& codiceFiscale, long modulo,
                                           const std::string& pagina);

// A row of a reader, its values by column name (without regard to case).
class RigaLetta {
 public:
  RigaLetta(const std::vector<Colonna>& colonne, const std::vector<Valore>& valori)
      : colonne_(colonne), valori_(valori) {}
  const Valore& operator()(std::string_view nome) const;

 private:
  const std::vector<Colonna>& colonne_;
  const std::vector<Valore>& valori_;
};

class clsSpesometro2013 {
 public:
  ConnessioneClasse cn;
  IForm* formAttiva = nullptr;  // its msgbar tells the progress of long runs

  // ------------------------------------------------------------ extraction (all-or-nothing)

  // The year's VAT rows of clients (sales registers 1, 5, 7) and suppliers (2, 9) into
  // [Spesometro2013] under `tipo`, then their sum by document (AccodaASpesometro2013Riepilogato-
  // DatiSpesometro). Without estraiSenzaFiltri the VAT codes, subjects and causals excluded from
  // the statements and the black-listed nations stay out. The rows extracted; -1 when the run
  // failed (told to the user; the previous extraction is untouched).
  long EstraiDatiSpesometroDaPrimaNota(int tipo, int anno, const std::string& CodiceNazioneRSM,
                                       bool estraiSenzaFiltri = false);
  void AccodaASpesometro2013RiepilogatoDatiSpesometro(int tipo, int anno);
  bool ExistDatiAnno(int tipo, int anno);
  void ForzaTipoOperazioneSpesometroZeroSeNull();

  // ------------------------------------------------------------ aggregation by subject (FA, SA)

  void CancellaRecordPreaggregazione(int anno);
  void CancellaRecordTotali(int anno);
  void AccodaOperazioniAttiveImponibiliQuadroFA(int anno);
  void AccodaOperazioniAttiveImposteQuadroFA(int anno);
  void AccodaOperazioniAttiveIVANonEspostaQuadroFA(int anno);
  void AccodaOperazioniAttiveImponibiliNoteVariazioniQuadroFA(int anno);
  void AccodaOperazioniAttiveImposteNoteVariazioniQuadroFA(int anno);
  void AccodaOperazioniPassiveImponibiliQuadroFA(int anno);
  void AccodaOperazioniPassiveImposteQuadroFA(int anno);
  void AccodaOperazioniPassiveIVANonEspostaQuadroFA(int anno);
  void AccodaOperazioniPassiveImponibiliNoteVariazioniQuadroFA(int anno);
  void AccodaOperazioniPassiveImposteNoteVariazioniQuadroFA(int anno);
  void AccodaPreaggregazioneATotali(int anno);
  void AccodaOperazioniSenzaFatturaQuadroSA(int anno);
  // The whole rebuild of the aggregates of a year, in one transaction.
  void RicostruisciAggregati(int anno);

  std::vector<std::string> GetElencoPartiteIVAAggregate(int anno, const std::string& quadro);
  std::vector<std::string> GetElencoCodiciFiscaliAggregati(int anno, const std::string& quadro);
  long GetNumeroOperazioniAttiveAggregateByPartitaIVA(int anno, const std::string& partitaIVA);
  long GetNumeroOperazioniPassiveAggregateByPartitaIVA(int anno, const std::string& partitaIVA);
  long GetNumeroOperazioniAttiveAggregateByCodiceFiscale(int anno, const std::string& codiceFiscale);
  long GetNumeroOperazioniPassiveAggregateByCodiceFiscale(int anno, const std::string& codiceFiscale);
  long GetNumeroOperazioniQuadroSA(int anno, const std::string& codiceFiscale);
  // Identificativo and Valore (summed) of a subject's totals, by its VAT number or fiscal code.
  Recordset LocalizzaRecordQuadroAggregatoByPartitaIVA(int anno, const std::string& quadro, const std::string& partitaIVA);
  Recordset LocalizzaRecordQuadroAggregatoByCodiceFiscale(int anno, const std::string& quadro,
                                                          const std::string& codiceFiscale);
  Recordset LocalizzaRecordQuadroAggregatoNoCodiceFiscaleNoPartitaIVA(int anno, const std::string& quadro);

  // ------------------------------------------------------------ readers of the analytic quadri

  Recordset LocalizzaRecordQuadroFE(int anno);
  Recordset LocalizzaRecordQuadroFR(int anno);
  Recordset LocalizzaRecordQuadroNE(int anno);
  Recordset LocalizzaRecordQuadroNR(int anno);
  Recordset LocalizzaRecordQuadroDF(int anno);
  Recordset LocalizzaRecordQuadroFN(int anno);
  Recordset LocalizzaRecordQuadroSE(int anno);
  Recordset LocalizzaRecordQuadroTU(int anno);
  Recordset LocalizzaRecordQuadroBL_TipoBL002002(int anno);
  Recordset LocalizzaRecordQuadroBL_TipoBL002003(int anno);
  Recordset LocalizzaRecordQuadroBL_TipoBL002004(int anno);

  // ------------------------------------------------------------ the file

  // The front page's data of the company, from [Tabella Azienda]: its fiscal code (its VAT
  // number when it has none), VAT number, activity, telephone, fax, e-mail and name.
  void DatiAzienda(ArgomentiFileSpesometro& a);
  // Requests the quadri of the form of a.indiceFormato (0 aggregated FA, SA, BL; 1 analytic FE,
  // FR, NE, NR, DF, FN, SE, TU) that have rows in the year's extraction, and no other.
  void QuadriConDati(ArgomentiFileSpesometro& a, int anno);

  // Writes the file and its report of signals. The count of signals; -1 when the file was
  // stopped (a subject without identifiers, a file that may not be written): nothing is then
  // left at either name.
  int MakeFileTelematicoSpesometro(const ArgomentiFileSpesometro& a, long& numeroSegnalazioni);
  void VerificaIndSoggettoSpesometro(int tipo, int anno, const std::string& periodo, long& numeroSegnalazioni,
                                     std::ostream& numeroFileSegnalazioni);
  void VerificaEsclusivitaAcquistiSanMarino(int tipo, int anno, const std::string& periodo, long& numeroSegnalazioni,
                                            std::ostream& numeroFileSegnalazioni);

  // ------------------------------------------------------------ reading a file back

  // The totals by quadro read from the file, into the report. False (the reason in the report
  // and told to the user) when the file is not a well-formed statement file.
  bool EseguiVerificheFileSpesometroGenerato(const std::string& nomeFileSpesometro, const std::string& nomeFileReport);
  bool MakeFileCSV(const std::string& nomeFileSpesometro, const std::string& nomeFileReport);
  bool CaricaCorpoFileSpesometroInGrid(const std::string& nomeFileSpesometro, IGriglia& vsGriglia);
  static std::string GetDescrizioneCampo(const std::string& quadroRigaColonna);
  // "Conferma importo": the amount, unsigned and rounded to the unit, is 999999 or more.
  static bool SuperaImportoMassimo(Importo importo);
  const ContenutoFileSpesometro& Contenuto() const { return contenuto_; }

  // Recognisers of the files written here, for the checked writer: a statement file (its first
  // record a head "A" of supply "NSP00"), a CSV of one, a report of signals or of totals.
  static bool SembraFileSpesometro(const std::string& percorso);
  static bool SembraCsvSpesometro(const std::string& percorso);
  static bool SembraReportSpesometro(const std::string& percorso);

 private:
  // The reader of a quadro ("FE", ..., "DF", and "BL002002" to "BL002004" for BL's three kinds).
  struct SqlLettura {
    std::string sql;
    Parametri p;
  };
  SqlLettura SqlQuadro(const std::string& quadro, int anno);
  Recordset Leggi(const std::string& quadro, int anno);
  bool HaRighe(const std::string& quadro, int anno);
  // Streams the rows, without holding them all, telling the progress every thousand.
  void ScorriQuadro(const std::string& quadro, int anno, const std::function<void(const RigaLetta&)>& riga);
  void AccodaQuadroFA(int anno, const std::string& identificativo, const std::string& cliFor, bool nota,
                      bool ivaNonEsposta, const std::string& colonna);
  ContenutoFileSpesometro contenuto_;
};

}  // namespace vorn
