// The journal: the rows of `Prima Nota` and the running balances that follow them.
//
// clsPrimaNota is the one writer of the journal. Every save and every delete moves the
// balances of the sub-account (`Saldi Piano Dei Conti`) and of the client or supplier of the
// row in the same unit of work as the row itself: a save or a delete either lands with its
// balance movement or leaves nothing behind, also inside the caller's transaction (a savepoint
// there). So the balances stay a function of the journal, which ledger/VerificaSaldi.h checks.
//
// Inside a transaction the balance movement is held back and written once per balance row,
// in the order of the rows' keys, just before the commit (see Differito in frame/Db.h): a
// long posting run writes each busy balance row once, and concurrent posters never lock the
// same rows in opposite orders. A save or delete outside a transaction that meets a deadlock
// or a busy database is tried again.
//
// A causal's operativity and the chart are read at each movement, so that a long-lived
// instance follows their changes; only a replay (IniziaRaccolta) reads them once beforehand.
#pragma once
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <tuple>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "frame/Db.h"
#include "frame/Valore.h"

namespace vorn {

// The fields of a journal row that move balances, as MovimentaRecordContabile reads them.
struct MovimentoPrimaNota {
  Valore CodiceCausale;
  Valore ContoPrimaNota;
  Valore IndClienteFornitore;
  Valore CodClienteFornitore;
  Valore DareAvere;
  Valore ImportoMovimento;
  Valore Cambio;
  Valore DataCompetenza;
};

// The journal columns a movement reads, in the order of MovimentoPrimaNota, for a SELECT list.
extern const char* const kColonneMovimento;
// A movement from a row whose columns, from `da` on, are kColonneMovimento.
MovimentoPrimaNota MovimentoDaRiga(const std::vector<Valore>& r, size_t da = 0);

// The movement of one balance row: opening, debit and credit, and which of them it touches.
struct DeltaSaldo {
  Importo iniziale, dare, avere;
  bool tocca[3] = {false, false, false};
  void Somma(const DeltaSaldo& d);
};
// A balance row: 'S' sub-account (group, account, sub-account), 'C' client, 'F' supplier (code).
// Balance rows are always written in this key's order.
struct ChiaveSaldo {
  char tipo;
  std::string a, b, c;
  bool operator<(const ChiaveSaldo& o) const { return std::tie(tipo, a, b, c) < std::tie(o.tipo, o.a, o.b, o.c); }
};
using MovimentiSaldi = std::map<ChiaveSaldo, DeltaSaldo>;

// A journal row column by column, in the table's order, for SalvaRiga: what SalvaRecord takes
// by name, without a map of names to fill and read again for every row.
class RigaPrimaNota {
 public:
  RigaPrimaNota();
  // The column of that name (any case); ErroreDb 3265 for a name the journal does not have.
  Valore& operator[](std::string_view nome);
  // The same, or nullptr for a name the journal does not have.
  Valore* Trova(std::string_view nome);
  std::vector<Valore>& Valori() { return dati_; }

 private:
  std::vector<Valore> dati_;
};

class clsPrimaNota {
 public:
  std::shared_ptr<Connessione> cn;
  // Each save and delete lands with its balance movement or not at all. Inside the caller's
  // transaction a savepoint lets the caller go on after one failed row; a bulk poster that
  // commits or rolls back whole batches may turn it off: on PostgreSQL thousands of savepoints
  // in one transaction slow every statement, and without them a failed row undoes the
  // caller's whole transaction instead (its commit rolls back and throws).
  bool UnitaRecuperabili = true;
  // A causal's operativity and whether an account is in the chart are read once per
  // transaction. A run that reads its master data once (the invoice posting) may keep them from
  // one transaction to the next while it is set; a write of this connection to the causals or
  // the chart drops them either way.
  bool LettureDiCorsa = false;

  // ---------------------------------------------------------------- rows

  // Opens the row for update; when found, stamps it with the caller's identity.
  bool LocalizzaRecord(Recordset& T, const Valore& numeroRegistrazione, const Valore& TipoRigaIvaNormale,
                       const Valore& NumRigaAVideo, const Valore& DareAvere, const Valore& clientID, long hWnd);

  // Saves one row: `riga` holds the values by column name (any case). A column left out is
  // stored empty; NumeroRegistrazione2 and DataRegistrazione2 are accepted and ignored; any
  // other name that is not a column of the journal is refused with ErroreDb before anything is
  // written. An existing row first gives back its present effect on the balances, then the new
  // values move them. DescrizioneSupplem keeps its first 20 characters, DataDocumento is Null
  // unless a date. Stringa10indicatori keeps positions 1-2 as given, takes position 3 from the
  // causal's present operativity and keeps positions 4-10 of the stored row (of the given value
  // on a new row). Never asks: Cancel comes back false.
  bool SalvaRecord(const RecordValori& riga, const Valore& clientID, long hWnd, bool& Cancel);
  // The same for a row given column by column.
  bool SalvaRiga(RigaPrimaNota riga, const Valore& clientID, long hWnd);

  // After the last row of an entry: the document or protocol counter of the register and the
  // number of the last entry.
  bool AggiornaProgressiviPrimaNota(const Valore& numeroRegistrazione, const Valore& DataRegistrazione,
                                    const Valore& TipoRegistroIva, const Valore& NumRegistroIva,
                                    const Valore& SerieDocumento, const Valore& NumeroDocumento,
                                    const Valore& DataDocumento, const Valore& NumeroDiProtocollo,
                                    const Valore& clientID, long hWnd);
  // For a caller that knows the entry's register before taking its number: the register's
  // counter row is read with the number (on PostgreSQL in the same round trip), for
  // AggiornaProgressiviPrimaNota of that entry in the same transaction. The same arguments as
  // there.
  void AnticipaProgressiviPrimaNota(const Valore& TipoRegistroIva, const Valore& NumRegistroIva,
                                    const Valore& SerieDocumento);
  bool AggiornaNumeroUltimaRegistrazione(const Valore& UltimaRegistrazionePN, const Valore& clientID, long hWnd);
  // False when it wrote nothing: a lower number, or a refused prompt about an earlier date.
  bool AggiornaNumeroUltimoDocumento(const Valore& TipoRegistro, const Valore& NumeroRegistro,
                                     const Valore& SerieDocumento, const Valore& NumeroUltimoDoc,
                                     const Valore& DataUltimoDoc);

  // Deletes a whole entry with its effect on the balances, all or nothing.
  bool CancellaRecord(const Valore& numeroRegistrazione);
  // Deletes the rows of one kind beyond a screen line (compared as text), with their effect.
  bool CancellaRecordEccedentiRigoReg(const Valore& numeroRegistrazione, const Valore& TipoRigaIvaNormale,
                                      const Valore& NumRigaAVideo);
  // Deletes by number and date range and causal, with the effect; the count of rows.
  int32_t CancellaPrimaNota(const Valore& NumeroRegistrazione_Iniziale, const Valore& NumeroRegistrazione_Finale,
                            const Valore& DataRegistrazione_Iniziale, const Valore& DataRegistrazione_Finale,
                            const Valore& codiceCausale);
  // Deletes every row; balances stay. False on a database error.
  bool AzzeraPrimaNota();

  // ---------------------------------------------------------------- printed marks

  bool ManipolaIndicatoriPrimaNota(const Valore& NumeroRegistrazione_Iniziale, const Valore& NumeroRegistrazione_Finale,
                                   const Valore& DataRegistrazione_Iniziale, const Valore& DataRegistrazione_Finale,
                                   const Valore& Causale, const Valore& Tipo_Manipolazione,
                                   const Valore& Valore_Indicatori, const Valore& IndIVAAutotrasportatori = Valore());
  bool MarcaIndicatoriStampatoRegistriIva(const Valore& daData, const Valore& aData, const Valore& avar_TipoRegistroIva,
                                          const Valore& avar_NumRegistroIva,
                                          const Valore& str_IndIVAAutotrasportatori = Valore());
  // Marks "R" the rows of a register listed (by their key columns NumeroRegistrazione,
  // TipoRigaIvaNormale, NumRigaAVideo, DareAvere) in the work table `tabellaStampata`, among
  // those of the period (`colonnaData` between the dates, or DataCompetenza when that is
  // null) not marked yet: exactly the rows a print showed. The count of rows marked.
  int64_t MarcaRigheStampateRegistroIva(const Data& daData, const Data& aData, const std::string& colonnaData,
                                        const Valore& avar_TipoRegistroIva, const Valore& avar_NumRegistroIva,
                                        const std::string& tabellaStampata);

  // ---------------------------------------------------------------- navigation and reading

  bool RecordSuccessivo(Valore& numeroRegistrazione);
  bool RecordPrecedente(Valore& numeroRegistrazione);
  std::string GetMaxRegistrazionePrimaNota();
  int32_t GetNumeroNuovaRegistrazionePrimaNota();
  bool ExistRegistrazione(const Valore& numeroRegistrazione);
  // ImpostaIva less ImponibileIva x AliquotaIva / 100, to four decimals.
  Importo GetDifferenzaIva(const Valore& ImponibileIva, const Valore& ImpostaIva, const Valore& AliquotaIva);
  int32_t GetMaxRigheVideo(const Valore& numeroRegistrazione, const Valore& TipoRigaIvaNormale);
  int32_t GetNumeroRecordContabili(const Valore& numeroRegistrazione);
  int32_t GetNumeroRecordIva(const Valore& numeroRegistrazione);
  std::string GetCausaleContabileRegistrazione(const Valore& numeroRegistrazione);
  std::string GetDataRegistrazione(const Valore& numeroRegistrazione);
  // The lowest DataRegistrazione on the given connection (this class's when null); Null when none.
  Valore GetDataMinimaRegistrazionePrimaNota(const std::shared_ptr<Connessione>& conn = nullptr);
  // A road haulier's VAT date: the end of the month (PeriodicitaLiquidazione "" or "0") or of
  // the quarter ("1") after the document's; Null for another periodicity.
  Valore GetDataCompetenzaIVAPropostaAutotrasportatori(const Valore& strDataDocumento,
                                                       const Valore& PeriodicitaLiquidazione);
  int32_t GetNumeroScadenzeCollegate(const Valore& numeroRegistrazione);
  std::string GetDataDocumento(const Valore& AnnoCompetenza, const Valore& NumeroDocumento, const Valore& SerieDocumento,
                               const Valore& TipoRegistroIva, const Valore& NumRegistroIva);
  std::string GetDataCompetenzaProtocollo(const Valore& AnnoCompetenza, const Valore& NumeroDiProtocollo,
                                          const Valore& TipoRegistroIva, const Valore& NumRegistroIva);
  // Another entry of the same VAT document; its number comes back in numeroRegistrazione.
  bool ExistsRegistrazioneDocumento(Valore& numeroRegistrazione, const Valore& DataDocumento,
                                    const Valore& NumeroDocumento, const Valore& SerieDocumento,
                                    const Valore& indicatoreCliFor, const Valore& codiceCliFor,
                                    const Valore& TipoCausale, const Valore& TipoRegistroIva,
                                    const Valore& NumRegistroIva, const std::string& numeroDocumentoEsteso = {});
  bool ExistsRegistrazioneDocumentoEsteso(Valore& numeroRegistrazione, const Valore& DataDocumento,
                                          const Valore& numeroDocumentoEsteso, const Valore& indicatoreCliFor,
                                          const Valore& codiceCliFor, const Valore& TipoCausale,
                                          const Valore& TipoRegistroIva, const Valore& NumRegistroIva);
  bool GetDatiIVARegistrazione(const Valore& numeroRegistrazione, Valore& indicatoreCliFor, Valore& codiceCliFor,
                               Valore& DataRegistrazione, Valore& DataCompetenzaIVA, Valore& codiceCausale,
                               Valore& NumRegistroIva, int32_t& NumeroDiProtocollo, Valore& DataDocumento,
                               Valore& SerieDocumento, int32_t& NumeroDocumento, Valore& Valuta, double& Cambio);
  bool GetEstremiDocumento(const Valore& numeroRegistrazione, Valore& indicatoreCliFor, Valore& codiceCliFor,
                           Valore& DataDocumento, Valore& SerieDocumento, Valore& NumeroDocumento);

  // ---------------------------------------------------------------- lookups of its own

  // The movement settings of a causal; unknown: every output "" and false.
  bool GetParametriCausaleMovimentazione(const Valore& codiceCausale, Valore& TipoRegistroIva, Valore& TipoCausale,
                                         Valore& OperativitaPartite, Valore& OperativitaContabile,
                                         Valore& OperativitaIntra, Valore& IndQuadratura);
  // True when the chart has the row (an empty part matches an empty or missing one).
  bool ExistSottoconto(const Valore& CodiceGruppo, const Valore& CodiceConto, const Valore& CodiceSottoconto);
  // Forgets the causals and sub-accounts found so far.
  void DimenticaCache();

  // ---------------------------------------------------------------- balance movement

  // Turns a stored row back into a movement (Storno: with the amount negated, same side).
  void MovimentaRecordContabile(Recordset& T, bool Storno);
  void MovimentaRecordContabile(const MovimentoPrimaNota& m, bool Storno);
  // The gate of every movement: nothing without an account or an amount; an unknown causal
  // or sub-account is told and the movement goes on. Always true.
  bool MovimentaSaldiContabili(const Valore& codiceCausale, const Valore& ContoPrimaNota,
                               const Valore& IndClienteFornitore, const Valore& CodClienteFornitore,
                               const Valore& DareAvere, const Valore& ImportoMovimento, const Valore& Cambio,
                               const Valore& DataCompetenza);
  bool MovimentaSaldiSottoconti(const Valore& CodiceGruppo, const Valore& CodiceConto, const Valore& CodiceSottoconto,
                                const Valore& DareAvere, const Valore& ImportoMovimento,
                                const Valore& OperativitaContabile);
  bool MovimentaSaldiClientiFornitori(const Valore& ContoPrimaNota, const Valore& IndClienteFornitore,
                                      const Valore& codiceCliFor, const Valore& DareAvere,
                                      const Valore& ImportoMovimento, const Valore& OperativitaContabile);

  // A replay of the whole journal: between IniziaRaccolta and ScaricaRaccolta movements add up
  // in memory, one entry per balance row touched, and ScaricaRaccolta writes each balance row
  // once. IniziaRaccolta reads every causal and the chart beforehand, so that no statement runs
  // while the journal is being streamed. AnnullaRaccolta drops what was gathered.
  void IniziaRaccolta();
  void ScaricaRaccolta();
  void AnnullaRaccolta();
  bool InRaccolta() const { return raccolta_.has_value(); }

  // ---------------------------------------------------------------- partner indicators

  // Clears the client or supplier indicator and code of every journal row of one sub-account,
  // taking the rows' effect off the partners' balances in the same unit: the sub-account's
  // balance stays as it was. The count of rows cleared.
  int64_t TogliCliForDaSottoconto(const Valore& ContoPrimaNota);

 private:
  using Delta = DeltaSaldo;
  // The causal's operativity as the movement reads it; nullopt when the causal is unknown.
  std::optional<std::string> OperativitaCausale(const std::string& codice);
  bool EsisteSottocontoCache(const std::string& g, const std::string& c, const std::string& s);
  static Delta CalcolaDelta(const std::string& operativita, const std::string& dareAvere, Importo importo);
  // A movement of one balance row: gathered by a replay, held back until the commit inside a
  // transaction, written at once outside one.
  void Movimenta(const ChiaveSaldo& k, const Delta& d);
  // Messages of a movement: shown at once, or, during a save or a delete, gathered and shown
  // when its unit has ended, so that nobody is asked while a write lock is held.
  void Avvisa(const std::string& testo, const std::string& titolo, bool beep);
  void MostraAvvisi();
  // Runs a unit of a save or a delete: tried again on a deadlock outside a transaction, its
  // messages shown after it.
  void UnitaConAvvisi(const std::function<void()>& unita);
  void SalvaUnita(Parametri& valori, const Valore& indicatori);
  // True when the journal's key is its four key columns (a row may then be inserted with
  // ON CONFLICT DO NOTHING and found to be there when nothing was added).
  bool ChiaveUnicaPN();
  int64_t StornaECancellaUnita(const std::string& where, const Parametri& p);
  // Rows selected by `where`: their effect off the balances, then one DELETE. The count.
  int64_t StornaECancella(const std::string& where, const Parametri& p);
  void AssicuraConnessione() const;

  // Every causal (code -> operativity) and chart row, read by IniziaRaccolta for a replay.
  std::unordered_map<std::string, std::string> causali_;
  std::unordered_set<std::string> sottoconti_;
  bool causaliComplete_ = false, pianoCompleto_ = false;  // everything read (replay)
  // What was read inside the open transaction (causal -> operativity, or none for a causal
  // that is not there; account -> exists), kept while the transaction lasts and nobody on this
  // connection writes the causals or the chart (Connessione::SerieTransazione, ScrittureDi).
  struct LettureTransazione {
    const Connessione* cn = nullptr;
    uint64_t serie = 0, causali = 0, piano = 0;
    std::unordered_map<std::string, std::optional<std::string>> operativita;
    std::unordered_map<std::string, bool> sottoconti;
    // Entry numbers that had no row when this transaction first saved one of them, and the
    // writes to the journal on this connection that were all this object's own since.
    const Connessione* cnNuove = nullptr;
    uint64_t serieNuove = 0, primaNota = 0;
    std::unordered_set<std::string> registrazioniNuove;
    std::unordered_set<std::string> chiaviScritte;  // keys of the rows this object added to them
  } letture_;
  // True when the reads kept may be used (cleared first when they are stale).
  bool LettureValide();
  // True when every row of the entry saved in this transaction was added by this object, and it
  // had none before: a row of it is then found by its exact key.
  bool RegistrazioneNuova(const std::string& numero);
  // True inside a transaction, what is known of new entries dropped when it is stale.
  bool RegistrazioniNuoveValide();
  // Movement of one row with its causal's operativity already read (none: not there).
  void MovimentaRiga(const MovimentoPrimaNota& m, const std::optional<std::string>& operativita);
  // The transaction (connection and serial) in which this object last took an entry number:
  // the company's row is there until it ends.
  const Connessione* cnNumero_ = nullptr;
  uint64_t serieNumero_ = 0;
  uint64_t scritturaNumero_ = 0;  // the counter's write of that number, while it waits to be sent
  // The register's counter row asked for with the next entry number, then read with it (in the
  // transaction cnNumero_/serieNumero_).
  struct ContatoreRegistro {
    std::string where;
    Parametri p;
    std::optional<Recordset> rs;
    uint64_t scritture = 0;  // writes to the counters' table when it was read
  };
  std::optional<ContatoreRegistro> registro_;
  // The series under which a register of this kind keeps its document or protocol counter;
  // none for a register without one.
  static std::optional<Valore> SerieContatoreRegistro(const Valore& TipoRegistroIva, const Valore& SerieDocumento);
  static void FiltroRegistro(std::string& w, Parametri& p, const Valore& TipoRegistro, const Valore& NumeroRegistro,
                             const Valore& SerieDocumento);
  std::optional<MovimentiSaldi> raccolta_;
  std::map<std::string, bool> upsert_;  // table -> its key allows INSERT ... ON CONFLICT
  struct Avviso {
    std::string testo, titolo;
    bool beep;
  };
  std::vector<Avviso> avvisi_;
  int trattieni_ = 0;  // > 0 while a save or a delete runs
};

}  // namespace vorn
