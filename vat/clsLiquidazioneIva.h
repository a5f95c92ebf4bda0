// The periodic VAT settlement: a month ("M"), a quarter ("T", the month given is the quarter's
// last) or the annual summary (month 13). The simulation reads the journal through the VAT
// registers' work tables and changes nothing lasting; the definitive settlement reads the
// progressives that the definitive register prints left, and, printed "B", moves the company's
// carried balances on: all of it (carried credit or debt, plafond, the period's row, the
// communication figures, the progressives zeroed, the sheet number) in one transaction together
// with its file, or nothing. A period already settled definitively is refused.
//
// Amounts are exact: the percentages (lump sum, pro-rata, quarterly surcharge) are applied once
// and rounded to the company's decimals.
#pragma once
#include <optional>
#include <string>

#include "frame/ConnessioneClasse.h"
#include "frame/Db.h"
#include "frame/Host.h"
#include "frame/Importo.h"
#include "frame/Valore.h"

namespace vorn {

class clsAnagraficaAzienda;
class clsDatiIVA;
class clsImportiFissi;
class clsNumerazioneFogli;
class clsProgAzienda;
class clsProgressiviIva;
class clsRegistriIva;

// The client's payment data, read when the payment box is printed and when the definitive
// settlement stores the period's row.
class IDatiVersamento {
 public:
  virtual ~IDatiVersamento() = default;
  virtual bool StampaDatiVersamento() const { return false; }
  virtual double PercMaggiorazioneTrim() const { return 0; }
  virtual std::string CodiceAzienda() const { return ""; }
  virtual std::string DescrizioneAzienda() const { return ""; }
  virtual std::string CodiceDipendenzaVersam() const { return ""; }
  virtual std::string DescrizioneDipendenza() const { return ""; }
  virtual std::string LocalitaDipendenza() const { return ""; }
  virtual std::string ProvinciaDipendenza() const { return ""; }
  virtual Valore DataVersamento() const { return Valore(); }
  // The index of the kind of payment in the client's list, 0 to 3 ("A" to "D").
  virtual int TipoVersamento() const { return 0; }
};

// Plain payment data, for a client without a form of its own.
struct DatiVersamento : IDatiVersamento {
  bool stampa = false;
  double maggiorazione = 0;
  std::string codiceAzienda, descrizioneAzienda, codiceDipendenza, descrizioneDipendenza, localita, provincia;
  Valore data;
  int tipo = 0;
  bool StampaDatiVersamento() const override { return stampa; }
  double PercMaggiorazioneTrim() const override { return maggiorazione; }
  std::string CodiceAzienda() const override { return codiceAzienda; }
  std::string DescrizioneAzienda() const override { return descrizioneAzienda; }
  std::string CodiceDipendenzaVersam() const override { return codiceDipendenza; }
  std::string DescrizioneDipendenza() const override { return descrizioneDipendenza; }
  std::string LocalitaDipendenza() const override { return localita; }
  std::string ProvinciaDipendenza() const override { return provincia; }
  Valore DataVersamento() const override { return data; }
  int TipoVersamento() const override { return tipo; }
};

// The values of a settlement. The objects are the caller's; a missing one is made on the class's
// connection.
struct ArgomentiLiquidazioneIva {
  IForm* formAttiva = nullptr;
  clsAnagraficaAzienda* objAnagraficaAzienda = nullptr;
  clsProgressiviIva* objProgressiviIVA = nullptr;
  clsProgAzienda* objProgressiviAzienda = nullptr;
  clsImportiFissi* objImportiFissi = nullptr;
  clsRegistriIva* objRegistriIva = nullptr;
  clsNumerazioneFogli* objNumerazioneFogli = nullptr;
  clsDatiIVA* objDatiIVA = nullptr;
  const IDatiVersamento* objDatiVersamento = nullptr;
  std::string AzRagSoc, AzParIva, nomeFile;
  std::string avar_RegimeIva = "M";  // "M" monthly, "T" quarterly
  int avar_Mese = 1;                  // 1..12, the quarter's last month, 13 the year
  int avar_Anno = 0;
  std::string avar_RegistroStampa;  // "L": the heads of the register of settlements
  int avar_RighePagina = 72;
  Importo ImportoCompensatoDL241, ImportoCreditoAnnuale, ImportoTrasferito;
  double PercentualeDetrazione1 = 0, PercentualeDetrazione2 = 0;
  Importo BaseDetrazione1, Detrazione1, BaseDetrazione2, Detrazione2;
  Importo DebitoCreditoForfetario;
  std::string GestioneProrataIVA;  // "1": pro-rata
  double PercentualeProrata = 0;
  Importo CreditoIVAInfrannualeUsato, RimborsoArt38Bis, CompensazioneArt38Bis;
  std::string str_IndIVAAutotrasportatori;
  // The highest register number of each kind that the settlement takes; 0 takes them all.
  int NumRegIVAVenditeLiq = 0, NumRegIVAAcquistiLiq = 0, NumRegIVACorrispScorpLiq = 0, NumRegIVACorrispVentilLiq = 0;
  std::string avar_PrefissoTabelleTmp = "_";
  // The definitive settlement only.
  std::string avar_ProvaBollato;  // "B": definitive
  bool avar_NumerazionePagine = false;
  std::string TipoRegLiquidazione = "0";  // the book the sheets are numbered in
  std::string NumRegLiquidazione;
  Valore clientID = Valore("");
  long hWnd = 0;
};

// The values of the annotation of the December VAT advance. The objects are the caller's; a
// missing one is made on the class's connection.
struct ArgomentiAccontoIva {
  IForm* formAttiva = nullptr;
  clsAnagraficaAzienda* objAnagraficaAzienda = nullptr;
  clsProgressiviIva* objProgressiviIVA = nullptr;
  clsNumerazioneFogli* objNumerazioneFogli = nullptr;
  std::string AzRagSoc, AzParIva, nomeFile;
  Importo avar_ImportoIvaPresunto;
  double avar_PercentualeAcconto = 0;
  Importo avar_TotaleAcconto;
  bool abool_StampaCompleta = true;  // false: the heading and the payment box only
  int avar_Anno = 0;
  int avar_RighePagina = 72;
  const IDatiVersamento* objDatiVersamento = nullptr;
  std::string avar_ProvaBollato;  // "B": definitive
  bool avar_NumerazionePagine = false;
  std::string TipoRegLiquidazione = "0";  // the book the sheets are numbered in
  std::string NumRegLiquidazione;
  std::string avar_PrefissoTabelleTmp = "_";
  Valore clientID = Valore("");
  long hWnd = 0;
};

// The advance by the historical method: a share (PercCalcoloAcconto of the fixed amounts) of
// the VAT of last December's settlement before its own advance (ImpIVACalcoloAcconto, kept by
// the definitive December settlement). Not due when it is under ImportoMinAcconto. The other
// methods give their own base (the VAT expected, or that of the operations to 20 December),
// and the percentage may be the caller's.
struct AccontoIvaStorico {
  Importo base;          // last December's VAT, 0 for a credit
  double percentuale = 0;
  Importo calcolato;     // the share, rounded to the company's decimals
  Importo minimo;        // ImportoMinAcconto
  bool dovuto = false;   // calcolato above 0 and not under the minimum
  Importo totale;        // calcolato when due, 0 otherwise
};

// The outcome of a settlement.
struct EsitoLiquidazioneIva {
  bool stampata = false;
  Importo saldo;         // above 0 a debt, below 0 a credit (the quarterly surcharge apart)
  Importo maggiorazione; // the quarterly surcharge
  Importo daVersare;     // what is to be paid (surcharge included, compensation deducted)
  Importo imposta2733;   // a debt under the minimum, carried to the next period
};

class clsLiquidazioneIva {
 public:
  ConnessioneClasse cn;

  bool LiquidazioneIvaSimulazione(const ArgomentiLiquidazioneIva& a);
  bool LiquidazioneIvaBollata(const ArgomentiLiquidazioneIva& a);
  const EsitoLiquidazioneIva& Esito() const { return esito_; }

  // The annotation of the December advance; definitive ("B"), it also stores the advance as the
  // row "14" of the periodic settlements, which the December settlement deducts, with the last
  // sheet, together with the print or not at all (a second one replaces the first). A definitive
  // advance is refused once the year's December is settled definitively: it would never be
  // deducted.
  bool AccontoIva(const ArgomentiAccontoIva& a);
  AccontoIvaStorico CalcolaAccontoIvaStorico(std::optional<Importo> base = std::nullopt,
                                             std::optional<double> percentuale = std::nullopt);

  // "1" when the VAT code counts against the plafond of exporters; empty with no code.
  Valore GetPlafondIva(const Valore& CodiceIva);
  // The taxable amount of the period that belongs to documents of earlier years, on codes of
  // the plafond.
  Importo GetPlafondFattureAnniPrecedenti(const Data& daData, const Data& aData, const Valore& TipoRegistroIva,
                                          const Valore& NumeroRegistro, bool bool_NoFattureIvaDifferita);

  // The payment box, as lines of the print.
  static std::vector<std::string> ScriviSpecchiettoVersamento(const IDatiVersamento* objDatiVersamento);

 private:
  EsitoLiquidazioneIva esito_;
  bool Esegui(const ArgomentiLiquidazioneIva& a, bool bollata);
};

}  // namespace vorn
