#include "frame/Catalogo.h"

#include <stdexcept>

namespace vorn {

namespace {

// Column kinds in the definitions below: a name alone is text; a suffix gives the kind.
//   :imp   amount, fixed point with four decimals     :dbl   double (rates, percentages, asset figures)
//   :int   32-bit integer (counts, numbers, years)    :int16 16-bit integer (decimals, months, modes)
//   :sng   single                                     :data  date
//   :bool  boolean                                    :memo  long text
//   :auto  32-bit integer that the database numbers when an insert leaves it out (the key)
//
// PiuRighe: rows by key. UnaRiga: one row of settings, no key. SenzaChiave: rows appended by
// statements with no column or set of columns that tells them apart (edited by row identity).
enum Righe { PiuRighe, UnaRiga, SenzaChiave };
enum Timbri { NoTimbro, Timbro };

struct DefTabella {
  const char* nome;
  Righe righe;
  Timbri timbro;
  std::vector<const char*> chiave;
  std::vector<const char*> colonne;
};

// clang-format off
const std::vector<DefTabella>& Definizioni() {
  // Twin tables with one list of columns each: clients and suppliers, and the chart of accounts
  // and the causals of the simplified model beside the ordinary ones.
  static const std::vector<const char*> kColonneCliFor = {
      "Codice Cliente", "Codice Iva", "Descrizione Iva", "aliquota:imp", "Numero Esenzione",
      "Data Esenzione:data", "Protocollo Esenzione", "Codice Zona", "Codice sottozona", "Descrizione Zona",
      "Descrizione Sottozona", "Codice gruppo", "Codice Pagamento", "Descrizione Pagamento",
      "1 Mese Escluso:int", "2 Mese Escluso:int", "Scadenza al:int", "Codice Banca", "Descrizione Banca",
      "Codice Agenzia", "Descrizione Agenzia", "Numero C/C", "IBAN", "BBAN", "Numero Listino",
      "Descrizione Listino", "Codice valuta", "Sconto %:dbl", "Sconto2 %:dbl", "Saldo:imp", "Fido:imp",
      "Scaglione provvigioni", "Scaglione provvigioni subagente", "Provvigioni su ricavo", "Cod agente",
      "Rag agente", "Cod Subagente", "Rag Subagente", "Addebito spese incasso",
      "Addebito bolli in fattura", "Scorporo iva", "Fattura riepilogativa", "Stampa prezzi in DDT",
      "No stampa codart docven", "Gestione ultimi prezzi", "Proposta ultimi prezzi",
      "Note su documenti vendita", "Note2", "ContrCostoRic", "SottocontoApparten",
      "Tipo soggetto allegati:int16", "No su allegati IVA:bool", "Lingua", "NumeroIscrizioneAlbo",
      "Sconto articolo %:dbl", "Sconto2 articolo %:dbl", "Codice Univoco PA", "IndModalitaCorrisp",
      "IndTipoSoggettoFE", "SaldoInizPeriodo:imp", "SaldoDarePeriodo:imp", "SaldoAverePeriodo:imp",
      "SaldoInizProgress:imp", "SaldoDareProgress:imp", "SaldoAvereProgress:imp", "Ragione Sociale",
      "Ragione Sociale 2", "Indirizzo", "Cap", "Località", "Provincia", "Telefono", "Fax", "Cellulare",
      "Telefono2", "Fax2", "Cellulare2", "Partita Iva", "Codice Nazione", "Codice Fiscale",
      "Persona Fisica", "Richiesta trattamento dati", "Autorizzazione trattamento dati",
      "Codice selezione", "Libero1", "Libero2", "Libero3", "Libero4", "Libero5", "Libero6", "Libero7",
      "Libero8", "Libero9", "Libero10", "Contatto", "E-mail", "PEC", "Sito Web", "User Web",
      "Password Web", "Cognome", "Nome", "Località nascita", "Provincia nascita", "Nazione nascita",
      "Nazione domicilio", "Data nascita:data", "Sesso", "Note", "Obsoleto", "Cod Aspetto Beni",
      "Des Aspetto Beni", "Cod Porto", "Des Porto", "Cod Mezzo", "Des Mezzo", "Mezzo di trasporto",
      "Cod Vettore", "Rag Vettore", "Codice Banca Azienda", "Codice Agenzia Azienda", "FlagVettore"};
  static const std::vector<const char*> kColonnePianoConti = {
      "Gruppo", "Conto", "Sottoconto", "Descrizione", "IndDiBilancio", "SottocontoInBilancio",
      "IndAmmortamenti", "CompATerzi", "CollegamentoSarn", "Libero1", "Libero2", "Libero3", "Libero4",
      "Libero5", "LiberoDescrittivo1", "LiberoDescrittivo2", "LiberoDescrittivo3", "LiberoDescrittivo4",
      "LiberoDescrittivo5", "Riferimento1Iva11", "Riferimento2Iva11", "Riferimento3Iva11",
      "Riferimento4Iva11", "Riferimento5Iva11", "Iva11Segno1", "Iva11Segno2", "Iva11Segno3", "Iva11Segno4",
      "Iva11Segno5", "IndiceRicBilancio", "TrasfMirk", "MovimCentriCosto", "TrasfPelvo", "QuadPelvo"};
  static const std::vector<const char*> kColonneCausali = {
      "CodiceCausale", "DescrizioneCausale", "Conto1", "Conto2", "Conto3", "Conto4", "Conto5", "Conto6",
      "Conto7", "Conto8", "Conto9", "TipoRegistroIva", "TipoCausale", "OperativitaPartite",
      "OperativitaContabile", "IndLibero1", "IndLibero2", "IndLibero3", "IndLibero4", "IndLibero5",
      "LiberoDescrittivo1", "LiberoDescrittivo2", "LiberoDescrittivo3", "LiberoDescrittivo4",
      "LiberoDescrittivo5", "OperativitaIntra", "SerieProposta", "RegistroIVAProposto", "FlagInsoluto",
      "Spostamento", "FlagDatiDocumento", "OperativitaRitenute", "TrasferitaMirk", "TrasferitaPelvo",
      "PosContrClifor:int", "FlagNonUtilizzata", "IndQuadratura", "OperativitaCespiti",
      "RegistroIVAPropostoCorr", "No su allegati IVA:bool", "TipoRegistroIVACRSemp", "RegistroIVACRSemp",
      "SottocontoIVARSM", "OperativitaIntAut:int", "SottocontoDare1", "SottocontoDare2", "SottocontoDare3",
      "SottocontoDare4", "SottocontoDare5", "SottocontoDare6", "SottocontoDare7", "SottocontoDare8",
      "SottocontoDare9", "SottocontoDare10", "SottocontoAvere1", "SottocontoAvere2", "SottocontoAvere3",
      "SottocontoAvere4", "SottocontoAvere5", "SottocontoAvere6", "SottocontoAvere7", "SottocontoAvere8",
      "SottocontoAvere9", "SottocontoAvere10"};

  static const std::vector<DefTabella> d = {

    // The company's settings and counters
    {"Tabella Azienda", UnaRiga, Timbro,
     {},
     {"Rappresentante Azienda", "Partita IVA", "Codice Fiscale", "Codice Nazione", "Codice Attività",
      "Attività Esercitata", "Indirizzo", "Citta", "Provincia", "Cap", "Telefono", "Fax",
      "Indirizzo esercizio", "Citta esercizio", "Provincia esercizio", "CAP esercizio",
      "Telefono esercizio", "Fax esercizio", "Capitale Sociale:dbl", "E-mail", "Sito Web",
      "IndTipoSoggettoFE", "CodiceUnivocoFE", "PEC", "Ragione Sociale", "Iscrizione Tribunale",
      "Iscrizione CCIAA riforma", "Valuta di conto", "Simbolo valuta conto", "Descrizione valuta conto",
      "Cambio fisso LIRE/EURO:dbl", "Data reale passaggio EURO:data", "Data logica passaggio EURO:data",
      "Codice valuta EURO", "Codice valuta LIRE", "Decimali importi:int16", "Decimali cambi:int16",
      "Mese chiusura fiscale:int16", "IAutorizBolliVirt", "ModalitaContabilizzEffetti:int16",
      "Decimali quantità:int16", "Decimali prezzi valuta conto:int16", "Codice Iva Standard",
      "Perc Ritenuta:dbl", "Perc Imponibile Ritenuta:dbl", "Perc Enasarco:dbl", "Mass Enasarco:imp",
      "SottocontoClienti", "SottocontoFornitori", "SottocontoBanca", "Codice Iva Art 15",
      "Codice Iva Spese Incasso", "Contropartita costo", "Contropartita ricavo", "ArchivioContropartite",
      "TelefonoSedeLegale", "IndirizzoSedeAmmin", "CapSedeAmmin", "LocalitaSedeAmmin",
      "ProvinciaSedeAmmin", "TelefonoSedeAmmin", "SiglaSocieta", "DataCostituzione:data", "StatoSocieta",
      "NaturaGiuridica", "SituazioneSocieta", "DataApprovazBilancio:data", "TermineApprovBilancio",
      "IndirizzoResidenza", "CapResidenza", "LocalitaResidenza", "ProvinciaResidenza", "TelefonoResidenza",
      "ObbligoIscrizioneREA:bool", "ProvinciaREA", "NumeroIscrizioneREA", "SocioUnico:bool",
      "RegimeFiscaleFattPA"}},
    {"Tabella Azienda Vorn", UnaRiga, Timbro,
     {},
     {"IndPersonaFisica", "IndirizzoSedeLegale", "CapSedeLegale", "LocalitaSedeLegale",
      "ProvinciaSedeLegale", "TelefonoSedeLegale", "IndirizzoSedeAmmin", "CapSedeAmmin",
      "LocalitaSedeAmmin", "ProvinciaSedeAmmin", "TelefonoSedeAmmin", "SiglaSocieta",
      "DataCostituzione:data", "StatoSocieta", "NaturaGiuridica", "SituazioneSocieta",
      "DataApprovazBilancio:data", "TermineApprovBilancio", "IndirizzoResidenza", "CapResidenza",
      "LocalitaResidenza", "ProvinciaResidenza", "TelefonoResidenza", "Nome", "Cognome",
      "DataDiNascita:data", "Sesso", "LuogoDiNascita", "ProvinciaDiNascita", "ObbligoIscrizioneREA:bool",
      "ProvinciaREA", "NumeroIscrizioneREA", "SocioUnico:bool", "RegimeFiscaleFattPA"}},
    {"Parametri Vorn", UnaRiga, Timbro,
     {},
     {"NumRegIVAVendite", "NumRegIVAVenditeLiq", "NumRegIvaAcquisti", "NumRegIVAAcquistiLiq",
      "NumRegIVACorrispScorp", "NumRegIVACorrispScorpLiq", "NumRegIVACorrispVentil",
      "NumRegIVACorrispVentilLiq", "NumRegIVASospensione", "GruppoConto1Fornitori",
      "GruppoConto2Fornitori", "GruppoConto3Fornitori", "GruppoConto4Fornitori", "GruppoConto5Fornitori",
      "GruppoConto1Clienti", "GruppoConto2Clienti", "GruppoConto3Clienti", "GruppoConto4Clienti",
      "GruppoConto5Clienti", "IndGiornMacchina", "GestioneStoricoContabile:bool", "GestionePartiteAperte",
      "GestioneLingue", "DescrizSupplemRegIVA", "PeriodicitaLiquidazione", "GestMonteAcquistiUnico",
      "ParaVornCampoLibero1", "ParaVornCampoLibero2", "ParaVornCampoLibero3", "ParaVornCampoLibero4",
      "ParaVornCampoLibero5", "ParaVornCampoLibero6", "ParaVornCampoLibero7", "ParaVornCampoLibero8",
      "ModalitaRiepilogoCessioni", "ModalitaRiepilogoAcquisti", "GestioneProrataIVA",
      "PercentualeProrata:dbl", "IVAArt74Ter", "CodIVA74Ter", "IndValoreStatisticoAcquisti",
      "IndValoreStatisticoCessioni", "GestDataCompetenzaIVA", "RifLibGioRegistriIVA",
      "RifDocContrRegistriIVA", "IndOrdinamRegistriIVA", "IndIVAAutotrasportatori",
      "VersamentoIVA4Trim:bool", "NumDecIntra", "NumDecLiquidazione", "NumPagineAutoRegIVA",
      "NumPagineAutoLibGior", "TipoRegLiquidazione", "NumRegLiquidazione", "SogliaAmmIntegrale:dbl",
      "PercAbbattimAmmAnno1:dbl", "PercManutenzioniDeducibili:dbl", "regimeContabile:int16",
      "RegIVASemSoloContiEco", "MeseChiusuraFiscale", "NumeroDecimali"}},
    {"Progressivi Azienda Vorn", UnaRiga, Timbro,
     {},
     {"DataAperturaBilancio:data", "UltimaStampaGiornale:data", "UltimaLiquidazioneIva:data",
      "UltimoScaricoPN:data", "NumRigaLibroGiornale:int", "ProgDareLibroGiornale:imp",
      "ProgAvereLibroGiornale:imp", "CreditoIVAInizioAnno:imp", "CodIvaPerPrec:imp",
      "NumClientiInAllegato:int", "ImpClientiInAllegato:imp", "NumFornitoriInAllegato:int",
      "ImpFornitoriInAllegato:imp", "UltimaRegistrazionePN:int", "PlafondIvaIniziale:imp",
      "PlafondIvaResiduo:imp", "ProgressivoXMovimenti:int", "UltimoAzzStorico:data",
      "DebitoIvaAnnoPrec:imp", "ImpIVACalcoloAcconto:imp", "AcqIntraPerPrecedente:imp",
      "AcqIntraEserPrecedente:imp", "UltimaRettificaIntra:int", "InizioAnnoFiscale:int",
      "DataUltimoVersamento:data", "ValoreTotImpComp:imp", "CreditoIVAInizioAnnoUt:imp",
      "DataInizioPNValida:data", "DataFinePNValida:data", "DataUltimoCalcoloAmm:data",
      "DataUltimoLibroCespiti:data", "DataUltimoScaricoPN:data", "DataAperturaContabile:data"}},
    {"Progressivi Numerazione Vorn", PiuRighe, Timbro,
     {"TipoRegistro", "NumeroRegistro", "SerieDocumento", "Deposito", "IndOrdiniImpegni"},
     {"TipoRegistro", "IndOrdiniImpegni", "NumeroRegistro", "Deposito", "SerieDocumento",
      "NumeroUltimoDoc:int", "DataUltimoDoc:data", "NumeroUltimoDocBollato:int"}},
    {"Progressivi Registri Iva", PiuRighe, Timbro,
     {"IndicatoreFisso", "IndTipoRecord", "TipoRegistroIva", "NumRegistroIva", "CodiceIva"},
     {"IndicatoreFisso", "IndTipoRecord", "TipoRegistroIva", "NumRegistroIva", "CodiceIva",
      "Imponibile:imp", "IVA:imp", "DataUltimaStampaBollato:data", "imposta:imp"}},
    {"Progressivi Scadenze", PiuRighe, Timbro,
     {"IndicatoreFisso"},
     {"ProgressivoPartite:int", "Progressivo:int", "IndicatoreFisso"}},
    {"Riferimenti Contabili", UnaRiga, Timbro,
     {},
     {"SottocontoCassa1", "SottocontoCassa2", "CausStornoIvaInded", "SottIVACVendite", "SottIVACAcquisti",
      "SottIVACScorporo", "SottIVACCorrispSc", "SottIVACSospensione", "SottAperturaBilancio",
      "SottChiusuraBilancio", "SottUtilePerditaEse", "CausAperturaBilancio", "CausChiusuraBilancio",
      "SottTratte", "SottRicevuteBancarie", "SottAvvisi", "CausEmissioneEffetti", "CausEmisFatturaClienti",
      "CausNotaCreditoClienti", "CausIncassoCliente", "CausOmaggio", "SottImponibileOmaggi",
      "SottIvaOmaggi", "SottRicaviStandard", "SottRicaviAccessori", "SottRisultatoEsercizio",
      "CausAnticipiDDT", "SottErarioRitenute", "CausVersamentoRitenute", "CausCorrispettivi",
      "SottEsigDiffVend", "SottEsigDiffAcq", "TipoContabRicAcc", "SottRicaviAccessori2",
      "SottRicaviSpeseIncasso", "SottRicaviSpeseTrasporto", "SottRicaviBolli", "CausPresentazioneEffetti",
      "SottCostiStandard", "SottCostiSpeseTrasporto", "SottCostiSpeseIncasso", "SottCostiSpeseAccessori",
      "SottCostiSpeseBolli", "SottCostiImponibileOmaggi", "SottCostiIvaOmaggi", "CausFatturaForn",
      "CausNotaCreditoForn", "CausPagamentoForn", "CausAnticipoForn", "CausOmaggioForn", "CausFattAcqCee",
      "CausAnnotVenditeCee", "CausCostoFornCee", "SottIVAAcqCee", "SottFornCee", "SottClientiCee",
      "SottCostoAcqCee", "CodIvaCee", "SottArrotondPassivi", "SottArrotondAttivi", "SottConvLireEuro",
      "SottAttivitaDiverse", "SottPassivitaDiverse", "SottOneriStraordinari", "SottProventiStraordinari",
      "SottRID", "SottCommissioniBancarie", "CausPagamentoFornBonifico", "CausAmAmmOrd", "CausAmAmmAnt",
      "CausAmAcquisto", "CausAmRivalutazione", "CausAmSvalutazione", "CausAmDismissione",
      "CausAmManutenzione", "CausAmOneriSpese", "CausAmVarFondoAmmOrd", "CausAmVarFondoAmmAnt",
      "CausAmPlusvalReinvestita", "CausConAmmOrd", "CausConAmmAnt", "SottIVASplitPaymentVend",
      "CausSplitPayment", "CausConRitenuteSubite", "SottRitenuteSubite", "CausConAbbuoni", "SottAbbuoni"}},
    {"Riferimenti Standard", PiuRighe, NoTimbro,
     {"Nome riferimento"},
     {"Valore riferimento", "Valore riferimento memo:memo", "Nome riferimento"}},
    {"Importi Fissi", UnaRiga, Timbro,
     {},
     {"Fino a 1:imp", "Importo 1:imp", "Fino a 2:imp", "Importo 2:imp", "Fino a 3:imp", "Importo 3:imp",
      "Fino a 4:imp", "Importo 4:imp", "Fino a 5:imp", "Importo 5:imp", "Fino a 6:imp", "Importo 6:imp",
      "Fino a 7:imp", "Importo 7:imp", "Fino a 8:imp", "Importo 8:imp", "Fino a 9:imp", "Importo 9:imp",
      "Fino a 10:imp", "Importo 10:imp", "Bollo tratta italiana:sng", "Bollo tratta estera:sng",
      "Arrotondamento bollo tratta:imp", "Valore minimo bollo tratta:imp", "Bollo fattura esente:imp",
      "Importo minimo fattura:imp", "ImportoMinLiqIva:imp", "PercCalcoloAcconto:dbl",
      "ImportoMinAcconto:imp", "PercMaggTrim:dbl", "PercForfSemp:dbl"}},
    {"Numerazione Fogli", PiuRighe, Timbro,
     {"Anno", "TipoStampa", "TipoRegistro", "NumeroRegistro", "Serie"},
     {"TipoStampa", "TipoRegistro", "NumeroRegistro", "Anno:int", "Serie", "Numero:int", "Azienda",
      "PartitaIVA", "Descrizione", "IndSede", "IndZero", "Indirizzo", "IndStampaAnno"}},
    {"Versione Archivi", PiuRighe, NoTimbro,
     {"ID"},
     {"NuovoDBVorn:bool", "ID:int"}},
    {"Tabella Utenti", PiuRighe, NoTimbro,
     {"username"},
     {"password", "Progressivo rete:int", "username", "HWnd:int"}},
    {"Tabella Utenti Autorizzazioni", PiuRighe, NoTimbro,
     {"username", "bandname", "toolname"},
     {"username", "bandname", "toolname", "Stato:int16"}},

    // Master data
    {"Anagrafica Clienti", PiuRighe, Timbro,
     {"Codice Cliente"},
     kColonneCliFor},
    {"Anagrafica Fornitori", PiuRighe, Timbro,
     {"Codice Cliente"},
     kColonneCliFor},
    {"Anagrafica Agenti", PiuRighe, Timbro,
     {"Codice Agente"},
     {"Codice Agente", "Ragione Sociale", "Ragione Sociale 2", "Indirizzo", "Cap", "Località", "Provincia",
      "Telefono", "Fax", "Cellulare", "Telefono2", "Fax2", "Cellulare2", "Partita Iva", "Codice Nazione",
      "Codice Fiscale", "Persona Fisica", "Richiesta trattamento dati", "Autorizzazione trattamento dati",
      "Codice selezione", "Libero1", "Contatto", "E-mail", "PEC", "Sito Web", "User Web", "Password Web",
      "Cognome", "Nome", "Località nascita", "Provincia nascita", "Nazione nascita", "Nazione Domicilio",
      "Data nascita:data", "Sesso", "Note", "Obsoleto", "Codice zona", "Codice sottozona",
      "Descrizione Zona", "Descrizione Sottozona", "Budget 1:imp", "Budget 2:imp",
      "Imponibile provvigioni:imp", "Provvigioni maturate:imp", "Calcolo provvigione", "Scaglione 0:imp",
      "Scaglione 1:imp", "Scaglione 2:imp", "Scaglione 3:imp", "Scaglione 4:imp", "Scaglione 5:imp",
      "Scaglione 6:imp", "Scaglione 7:imp", "Scaglione 8:imp", "Scaglione 9:imp", "Codice Iva",
      "Descrizione Iva", "aliquota:imp", "Perc Ritenuta:dbl", "Perc Imponibile Ritenuta:dbl",
      "Perc Enasarco:dbl"}},
    {"Anagrafica listini", PiuRighe, Timbro,
     {"Numero Listino"},
     {"Numero Listino", "Descrizione Listino", "Codice valuta", "Flag Prezzo Iva Inclusa", "Obsoleto",
      "Note 1", "Note 2"}},
    {"Anagrafiche Comuni", PiuRighe, Timbro,
     {"Codice anagrafico"},
     {"Codice Anagrafico", "Ragione Sociale", "Ragione Sociale 2", "Indirizzo", "Cap", "Località",
      "Provincia", "Telefono", "Fax", "Cellulare", "Telefono2", "Fax2", "Cellulare2", "Partita Iva",
      "Codice Nazione", "Codice Fiscale", "Persona Fisica", "Richiesta trattamento dati",
      "Autorizzazione trattamento dati", "Codice selezione", "Libero1", "Contatto", "E-mail", "PEC",
      "Sito Web", "User Web", "Password Web", "Cognome", "Nome", "Località nascita", "Provincia nascita",
      "Nazione nascita", "Nazione Domicilio", "Data nascita:data", "Sesso", "Note", "Obsoleto"}},
    {"Zone Sottozone", PiuRighe, Timbro,
     {"Codice Zona", "Codice Sottozona"},
     {"Codice Zona", "Codice Sottozona", "Descrizione", "Note 1", "Note 2", "Libero 1", "Libero 2"}},
    {"Nazioni", PiuRighe, Timbro,
     {"Codice Nazione"},
     {"Codice Nazione", "Descrizione Nazione", "Codice ISO", "Codice UIC", "Area Nazione:int",
      "Nazione Black List:bool"}},
    {"Gruppi cli/for", PiuRighe, Timbro,
     {"Codice gruppo"},
     {"Codice gruppo", "Descrizione gruppo"}},
    {"Lingue", PiuRighe, Timbro,
     {"Codice"},
     {"Codice", "Descrizione", "Note 1", "Note 2"}},
    {"Spedizioni", PiuRighe, Timbro,
     {"Tipo record", "Codice"},
     {"Tipo record", "Codice", "Descrizione", "Mezzo di trasporto:int"}},
    {"Destinazioni", PiuRighe, Timbro,
     {"Tipo clifor", "Codice anagrafico", "Codice destinazione"},
     {"Codice anagrafico", "Tipo clifor", "Codice destinazione", "Tipo record", "Descrizione destinazione",
      "Indirizzo", "Località", "Cap", "Provincia", "Telefono", "Fax", "Codice Nazione", "Partita Iva",
      "Codice Fiscale", "Codice EDI"}},
    {"PA Contratti", PiuRighe, Timbro,
     {"Codice"},
     {"Codice", "Descrizione", "IndTipo", "IndStato", "Numero", "Commessa", "CUP", "CIG", "Note"}},
    {"Trascodifiche", PiuRighe, Timbro,
     {"TipoArchivio", "IndClienteFornitore", "CodClienteFornitore", "CodiceEsterno"},
     {"IndClienteFornitore", "CodClienteFornitore", "TipoArchivio", "CodiceEsterno", "CodiceInterno"}},
    {"Localita", PiuRighe, NoTimbro,
     {"ID"},
     {"ID:int", "Localita", "Provincia", "Cap"}},
    {"Causali di Magazzino", PiuRighe, NoTimbro,
     {"Codice Causale"},
     {"Valore Scarichi", "Controparte", "Codice Causale"}},
    {"Codici Iva", PiuRighe, Timbro,
     {"Codice Iva"},
     {"Codice Iva", "Aliquota:imp", "Descrizione Iva", "Percentuale indetraibilità:dbl", "Flag Articolo 8",
      "Flag Fatture Esenti", "Flag Altre Esenzioni", "Acquisto Intracomunitario", "Flag Monte Acquisti",
      "Codice IVA ventilare", "Codice IVA detraibile", "Tipo allegato clifor:int16",
      "Tipo operazione black list:int16", "Tipo operazione spesometro:int16", "Codice EDI",
      "Descrizione Iva Estesa", "Libero 1", "Libero 2", "Libero 3", "Nota su documenti",
      "Natura operazione fattura PA:int", "Flag Split Payment fattura PA", "Flag Reverse Charge",
      "CodiceIva", "CodiceIvaDeducibile"}},
    {"Valute", PiuRighe, Timbro,
     {"Codice valuta"},
     {"Numero decimali valuta:int16", "Codice valuta", "Descrizione valuta", "Simbolo valuta",
      "Cambio:dbl", "Flag valuta EMU", "Data cambio:data"}},
    {"Pagamenti", PiuRighe, Timbro,
     {"Codice Pagamento"},
     {"Codice Pagamento", "Descrizione Pagamento", "Tipo Pagamento", "Numero Rate:int",
      "Numero Giorni Inizio Scadenza:int", "Numero Giorni Inizio Scadenza 2",
      "Numero Giorni Inizio Scadenza 3", "Numero Giorni Inizio Scadenza 4",
      "Numero Giorni Inizio Scadenza 5", "Numero Giorni Inizio Scadenza 6", "Flag Inizio Scadenza",
      "Data Diversa Inizio:data", "Giorno Fisso:int", "Periodicità:int", "Flag prima rata",
      "Flag inizio scadenza prima rata", "Flag calcolo provvigioni", "Flag maturazione provvigioni",
      "Spese incasso:imp", "Sconto pagamento:dbl", "Disattiva stampa scadenze", "GF Da Fine Mese:int"}},
    {"Banche Clienti", PiuRighe, Timbro,
     {"Codice Banca", "Codice Agenzia"},
     {"Codice Banca", "Codice Agenzia", "Descrizione", "Codice ABI", "Codice CAB", "Codice BIC",
      "Libero 1", "Libero 2"}},
    {"Banche Azienda", PiuRighe, Timbro,
     {"Codice banca", "Codice agenzia"},
     {"Codice banca", "Codice agenzia", "Descrizione", "Località", "Codice ABI", "Codice CAB",
      "Codice BIC", "Sottoconto Banca sbf", "Sottoconto Banca cc", "Note", "Codice SIA",
      "Riferimento mittente", "Conto ordinante", "Firma azienda", "Intendenza", "Numero autorizzazione",
      "Data autorizzazione:data", "Plafond:imp", "IBAN", "BBAN", "CodiceCUC"}},
    {"Bolli Utilizzati", PiuRighe, Timbro,
     {"Codice Banca", "Codice Agenzia", "Valore bollo"},
     {"Codice banca", "Codice agenzia", "Valore bollo:imp", "Qta bollo:int"}},
    {"Contropartite", PiuRighe, NoTimbro,
     {"Codice sottoconto"},
     {"Codice sottoconto", "Descrizione sottoconto"}},

    // General ledger
    {"Piano Dei Conti", PiuRighe, Timbro,
     {"Gruppo", "Conto", "Sottoconto"},
     kColonnePianoConti},
    {"Saldi Piano Dei Conti", PiuRighe, Timbro,
     {"CodiceGruppo", "CodiceConto", "CodiceSottoconto"},
     {"CodiceGruppo", "CodiceConto", "CodiceSottoconto", "SaldoInizialePeriodo:imp",
      "SaldoDarePeriodo:imp", "SaldoAverePeriodo:imp", "SaldoInizialeProgr:imp", "DareProgressivo:imp",
      "AvereProgressivo:imp", "SaldoContoSottocon:imp"}},
    {"Causali Contabili", PiuRighe, Timbro,
     {"CodiceCausale"},
     kColonneCausali},
    {"Prima Nota", PiuRighe, Timbro,
     {"NumeroRegistrazione", "TipoRigaIvaNormale", "NumRigaAVideo", "DareAvere"},
     {"DataRegistrazione:data", "NumeroRegistrazione", "TipoRigaIvaNormale", "NumRigaAVideo", "DareAvere",
      "ContoPrimaNota", "IndClienteFornitore", "CodClienteFornitore", "DataCompetenza:data",
      "TipoRegistroIva", "NumRegistroIva", "NumeroDiProtocollo:int", "SerieDocumento",
      "NumeroDocumento:int", "CodiceCausale", "DescrizioneSupplem", "ImportoMovimento:imp",
      "Imponibile:imp", "CodiceIva", "ContropIvaIndeduc", "IndicatoreCliFor", "CodiceCliFor",
      "TotaleDocumento:imp", "RegIvaCorrMonteAcq", "RigaLibroGiornale:int", "Stringa10indicatori",
      "Valuta", "ImportoInValuta:imp", "Cambio:dbl", "DataDelCambio:data", "TrasfMirk", "TrasfVorn",
      "TrasfPelvo", "TrasfZQ", "KeyZQ:int", "KeyScadenze:int", "DataCompetenzaIVA:data",
      "ImponibileValuta:imp", "TotaleDocumentoVal:imp", "IndSpesometro:int16", "NoteRegistrazione",
      "NumeroDocumentoEsteso", "DataDocumento:data"}},
    {"Storico Contabile", PiuRighe, Timbro,
     {"IDProgressivo"},
     {"IDProgressivo:int", "SottocontoMovimento", "IndClientefornitore", "CodClientefornitore",
      "NumeroRegistrazione", "SerieDocumento", "NumeroDocumento:int", "CausaleContabile",
      "DescrizioneSuppleme", "DareAvere", "ImportoMovimento:imp", "NumeroProtocollo:int", "CodiceValuta",
      "Cambio:dbl", "ImportoValuta:imp", "DataCompetenza:data", "DataDocumento:data",
      "DataRegistrazione:data"}},
    {"Piano Dei Conti Mod Semplificati", PiuRighe, Timbro,
     {"Gruppo", "Conto", "Sottoconto"},
     kColonnePianoConti},
    {"Causali Contabili Mod Semplificati", PiuRighe, Timbro,
     {"CodiceCausale"},
     kColonneCausali},

    // VAT
    {"Corrispettivi Ventilazione", PiuRighe, Timbro,
     {"IndicatoreFisso", "NumRegistriCorrisp"},
     {"IndicatoreFisso", "NumRegistriCorrisp", "CorrispettiviPeriodo:imp", "corrispettiviAnno:imp"}},
    {"Monte Acquisti Ventilazione", PiuRighe, Timbro,
     {"IndicatoreFisso", "NumRegistroCorrisp", "CodiceIva"},
     {"IndicatoreFisso", "NumRegistroCorrisp", "CodiceIva", "ImportoMonteAcquisti:imp", "IndicatoreLibero"}},
    {"Liquidazioni Periodiche", PiuRighe, Timbro,
     {"MeseVersamento"},
     {"Importo_versato:imp", "CreditoIvaDaDichAnnualeTrasf:imp", "Importo_versato_netto:imp",
      "MeseVersamento", "CodiceAziendaVersam", "CodiceDipendenzaVersam", "TotaleIVADebito:imp",
      "TotaleIVACredito:imp", "UlterioriDetrazioni1:imp", "UlterioriDetrazioni2:imp",
      "OperazioniAttiveIntra:imp", "OperazioniPassiveIntra:imp", "CompensazioneArt38Bis:imp",
      "ImponibileOroArgento:imp", "IVAOroArgento:imp", "VariazioniImpostaDebito:imp",
      "VariazioniImpostaCredito:imp", "DebitoInferioreMinimo:imp", "ImportoDaVersare:imp",
      "CreditoPeriodoPrecedente:imp", "ImportoCompensato:imp", "CreditoIVA:imp", "DataVersamento:data",
      "TipoVersamento", "CreditoUsato:imp", "Interessi:imp", "RimborsoArt38Bis:imp",
      "OperazioniAttive:imp", "OperazioniPassive:imp", "IVADebitoPeriodo:imp", "IVACreditoPeriodo:imp",
      "IVANonVersata:imp", "IVAVersataEccesso:imp", "IVADovuta:imp", "CreditiSpeciali:imp",
      "AccontoVersato:imp", "ImportoVersato:imp"}},
    {"DatiIVA", PiuRighe, Timbro,
     {"anno", "Mese"},
     {"anno:int", "Mese:int16", "trimestre:int16", "Subfornitura", "EventiEccezionali",
      "TotaleOperazioniAttive:imp", "TotaleOperazioniPassive:imp", "IVAEsigibile:imp", "IVADetratta:imp",
      "IVADovuta:imp", "IVACredito:imp", "DebitoPrecedente:imp", "CreditoPeriodoPrecedente:imp",
      "CreditoAnnoPrecedente:imp", "VersamentiAutoUE:imp", "CreditiImposta:imp", "InteressiDovuti:imp",
      "Acconto:imp", "ImportoDaVersare:imp", "ImportoACredito:imp"}},
    {"Allegati", PiuRighe, NoTimbro,
     {"IndTipoRecord"},
     {"NumNoteCredito:int", "IndTipoRecord"}},

    // Due dates, payments, remittance lists; the sales documents read for posting
    {"Scadenziario", PiuRighe, Timbro,
     {"Tipo", "Codice Cliente", "Numero Documento", "Serie", "Data Documento", "Numero Progressivo"},
     {"Tipo", "Codice Cliente", "Numero Documento:int", "Serie", "Data Documento:data", "Codice valuta",
      "Cambio:dbl", "Importo Documento:imp", "Numero Progressivo:int", "Progressivo Documento:int",
      "Data Scadenza:data", "Tipo di Effetto", "Nostra Banca", "Ragione Sociale", "Indirizzo", "Cap",
      "Località", "Provincia", "Codice recap", "Codice Banca", "Descrizione Banca", "Codice Agenzia",
      "Descrizione Agenzia", "NumeroDiProtocollo:int", "Importo Scadenza:imp", "Importo Pagato:imp",
      "Data pagamento:data", "Note", "Importo Bollo:imp", "Descrizione", "Conto corrente", "IBAN", "BBAN",
      "Distinta:bool", "Emesso:bool", "Sospeso:bool", "Insoluto:bool", "Tipo Presentazione",
      "Codice Banca presentazione", "Codice Agenzia presentazione", "Data presentazione:data",
      "Contabilizzato:bool", "Flag Unificata:int", "numeroRegistrazione", "DataRegistrazione:data",
      "Numero effetto insoluto", "PA codice contratto 1", "Progressivo Distinta:int"}},
    {"Scadenziario Pagamenti", PiuRighe, Timbro,
     {"Numero Progressivo", "Riga"},
     {"Numero Progressivo:int", "Riga", "Importo pagato:imp", "Data pagamento:data",
      "Descrizione Pagamento", "NumeroRegistrazione", "DataRegistrazione:data", "tipo", "Codice Cliente",
      "Numero Documento:int", "Serie", "Data Documento:data", "Codice valuta", "Cambio:dbl",
      "Importo Documento:imp"}},
    {"Distinte", PiuRighe, Timbro,
     {"Numero Distinta"},
     {"Numero Distinta:int", "Data Distinta:data", "Codice Banca", "Codice Agenzia", "ImportoDistinta:imp",
      "EffettiEmessi:bool", "Contabilizzata:bool", "NumeroRegistrazione", "DataRegistrazione:data",
      "SottocontoBanca"}},
    {"Distinte Righe", PiuRighe, NoTimbro,
     {"Numero Distinta", "Numero Progressivo"},
     {"Numero Distinta:int", "Numero Progressivo:int"}},
    {"Distinte Bonifici", PiuRighe, Timbro,
     {"Numero Distinta"},
     {"Data Distinta:data", "Data Esecuzione:data", "SottocontoBanca", "Numero Distinta:int",
      "Codice Banca", "Codice Agenzia", "ImportoLimiteBO:imp", "DataLimiteBO:data", "ImportoDistinta:imp",
      "Contabilizzata:bool", "EffettiEmessi:bool", "numeroRegistrazione", "DataRegistrazione:data"}},
    {"Distinte Bonifici Righe", PiuRighe, Timbro,
     {"Numero Distinta", "Progressivo Riga"},
     {"Numero Distinta:int", "Progressivo Riga:int", "Numero Progressivo:int", "Tipo effetto"}},
    {"Fatture", PiuRighe, NoTimbro,
     {"Serie", "Numero"},
     {"Numero:int", "Serie", "Data:data", "Elaborata:bool", "Stampata", "Tipo fattura:int", "Tipo cli/for",
      "Codice Cliente", "Codice valuta", "Cambio:dbl", "Tipo documento", "Ragione Sociale",
      "Totale Documento:imp", "Sconto (cliente)%:dbl", "Sconto2 (cliente)%:dbl", "Sconto Pagamento %:dbl",
      "Causale Contabile", "DataCompetenzaIVA:data", "Bolli:imp", "Spese di incasso:imp",
      "Spese di trasporto:imp", "Spese accessorie:imp", "Spese varie:imp", "PA Totale Split Payment:imp",
      "TabellaIva", "Totale Righe:imp", "Acconto:imp", "Ritenuta1:imp", "Ritenuta2:imp", "Abbuono:imp"}},
    {"Movimenti Magazzino", SenzaChiave, NoTimbro,
     {},
     {"Cambio:dbl", "Causale Magazzino", "Codice Iva", "Codice valuta", "Contropartita",
      "Data Registrazione:data", "Flag Elaborato Scontrini:bool", "Importo:imp", "Numero:int",
      "Scorporo iva:bool", "Tipo documento", "Serie", "Sconto Pagamento %:dbl", "Sconto (cliente)%:dbl",
      "Sconto2 (cliente)%:dbl"}},

    // Fixed assets
    {"Cespiti", PiuRighe, Timbro,
     {"CodiceCespite"},
     {"CodiceCespite", "DescrizioneCespite", "SerialNumber", "Ubicazione", "Riferimento",
      "CodiceCategoria", "CodiceCespiteCorr", "PercAmmOrdCiv:dbl", "PercAmmAntCiv:dbl",
      "PercAmmOrdFisc:dbl", "PercAmmAntFisc:dbl", "LimiteAmmortizzFisc:dbl", "percDeducFisc:dbl",
      "IndStato", "FlagUsato", "FlagManutenzioneContr:bool", "FlagAmmIntegraleFisc:bool", "Immagine"}},
    {"CespitiCategorie", PiuRighe, Timbro,
     {"CodiceCategoria"},
     {"CodiceCategoria", "DescrizioneCategoria", "percAmmOrdFisc:dbl", "percAmmAntFisc:dbl",
      "PercAmmOrdCiv:dbl", "PercAmmAntCiv:dbl", "indNatura:int", "SottCostoAmmOrd", "SottFondoAmmOrd",
      "SottCostoAmmAnt", "SottFondoAmmAnt"}},
    {"Causali Cespiti", PiuRighe, Timbro,
     {"Codice"},
     {"Codice", "Descrizione", "TipoMovimentazione:int"}},
    {"CespitiMovimentiTestate", PiuRighe, Timbro,
     {"NumeroMovimento"},
     {"NumeroMovimento:int", "DataMovimento:data", "DataCompetenza:data", "CausaleCespiti",
      "IndClienteFornitore", "CodClienteFornitore", "AnnoDocumento:int", "SerieDocumento",
      "NumeroDocumento:int", "DataDocumento:data", "CodiceValuta", "Cambio:dbl", "DataCambio:data",
      "NumeroRegistrazione", "Note", "codiceCespite"}},
    {"CespitiMovimentiRighe", PiuRighe, Timbro,
     {"NumeroMovimento", "NumeroRiga"},
     {"NumeroMovimento:int", "NumeroRiga:int", "CodiceCespite", "ImportoMovimentoFisc:dbl",
      "ImportoMovimentoFiscDed:dbl", "ImportoMovimentoCiv:dbl", "DescrizioneSupplem"}},

    // Fiscal statements
    {"Allegati CliFor", PiuRighe, Timbro,
     {"ID"},
     {"IndicatoreCliFor", "CodiceCliFor", "RagioneSociale", "Imponibile:imp", "Imposta:imp",
      "Tipo allegato clifor:int16", "VarAnniPrec", "Anno:int", "CodiceCausale", "CodiceIVA",
      "DataCompetenzaIva:data", "DataDocumento:data", "DataRegistrazione:data", "DescrizioneCausale",
      "ID:auto", "NumRegistroIva", "NumRigaAVideo", "NumeroDiProtocollo:int", "NumeroDocumento:int",
      "NumeroRegistrazione", "SerieDocumento", "TipoRegistroIva", "TipoRigaIvaNormale"}},
    {"Allegati CliFor Totali", PiuRighe, Timbro,
     {"Anno", "IndicatoreCliFor", "CodiceCliFor", "Identificativo"},
     {"Anno:int", "Progressivo:int", "IndicatoreCliFor", "CodiceCliFor", "RagioneSociale", "CodiceFiscale",
      "PartitaIVA", "Identificativo", "Valore:imp"}},
    {"DatiFatture", SenzaChiave, NoTimbro,
     {},
     {"Anno:int", "tipo:int", "periodo:int", "numeroRegistrazione", "DataRegistrazione:data",
      "DataDocumento:data", "SerieDocumento", "NumeroDocumento:int", "NumeroDiProtocollo:int",
      "TipoRigaIvaNormale", "indicatoreCliFor", "codiceCliFor", "RagioneSociale", "codiceCausale",
      "DescrizioneCausale", "TipoRegistroIva", "NumRegistroIva", "noteRegistrazione",
      "numeroDocumentoEsteso", "TipoDocumento:int", "NumRigaAVideo", "CodiceIva", "Imponib:imp",
      "imposta:imp"}},
    {"DatiFattureTestate", PiuRighe, Timbro,
     {"ID"},
     {"tipo:int", "anno:int", "periodo:int", "numeroRegistrazione", "DataRegistrazione:data",
      "DataDocumento:data", "SerieDocumento", "NumeroDocumento:int", "NumeroDiProtocollo:int",
      "TipoRigaIvaNormale", "indicatoreCliFor", "codiceCliFor", "RagioneSociale", "codiceCausale",
      "DescrizioneCausale", "TipoRegistroIva", "NumRegistroIva", "noteRegistrazione",
      "numeroDocumentoEsteso", "TipoDocumento:int", "RettificaIDFile", "RettificaPosizione", "ID:auto"}},
    {"DatiFattureRighe", PiuRighe, NoTimbro,
     {"ID"},
     {"tipo:int", "anno:int", "periodo:int", "numeroRegistrazione", "NumRigaAVideo", "CodiceIva",
      "Imponib:imp", "imposta:imp", "ID:auto"}},
    {"Spesometro", PiuRighe, NoTimbro,
     {"Anno"},
     {"Anno:int"}},
    {"Spesometro no PIVA", PiuRighe, Timbro,
     {"ID"},
     {"Anno:int", "IndicatoreCliFor", "CodiceCliFor", "RagioneSociale", "ModalitaPagamento",
      "ImportoDovuto:imp", "ID:auto", "DataOperazione:data"}},
    {"Spesometro riepilogato", PiuRighe, Timbro,
     {"ID"},
     {"Anno:int", "IndSoggettoSpesometro:int16", "IndicatoreCliFor", "CodiceCliFor", "RagioneSociale",
      "Imponibile:imp", "Imposta:imp", "IndSpesometro:int16", "DataDocumento:data", "SerieDocumento",
      "NumeroDocumento:int", "ModalitaPagamento", "TipologiaOperazione", "TipologiaNV",
      "DataFattRifNV:data", "SerieFattRifNV", "NumeroFattRifNV", "TipoVariazioneImponibileNV",
      "TipoVariazioneImpostaNV", "ID:auto", "Area Nazione:int", "CodiceCausale", "CodiceNazione",
      "DataRegistrazione:data", "DescrizioneCausale", "NoteRegistrazione", "NumRegistroIva",
      "NumeroDiProtocollo:int", "NumeroRegistrazione", "TipoRegistroIva"}},
    {"Spesometro2013", PiuRighe, NoTimbro,
     {"ID"},
     {"ID:auto", "Tipo:int", "Anno:int", "Periodo", "DataRegistrazione:data", "DataCompetenzaIva:data",
      "NumeroRegistrazione", "NumRigaAVideo", "TipoRigaIvaNormale", "IndTipoOperazBlackList:int16",
      "IndTipoOperazSpesometro:int16", "IndSoggettoSpesometro:int16", "IndicatoreCliFor", "CodiceCliFor",
      "RagioneSociale", "Imponibile:imp", "Imposta:imp", "CodiceIVA", "CodiceNazione", "AreaNazione:int",
      "FlagBlackList:bool", "FlagSanMarino:bool", "CodiceCausale", "DescrizioneCausale",
      "DataDocumento:data", "SerieDocumento", "NumeroDocumento:int", "NumeroDiProtocollo:int",
      "TipoRegistroIva", "NumRegistroIva", "NoteRegistrazione", "FlagNotaVariazione:bool"}},
    {"Spesometro2013NoFattura", PiuRighe, Timbro,
     {"ID"},
     {"Anno:int", "IndicatoreCliFor", "CodiceCliFor", "RagioneSociale", "ImportoDocumento:imp",
      "IndTipoNoleggio", "ID:auto", "DataOperazione:data"}},
    {"Spesometro2013Preaggregazione", SenzaChiave, NoTimbro,
     {},
     {"Anno:int", "IndicatoreCliFor", "CodiceCliFor", "RagioneSociale", "CodiceFiscale", "PartitaIVA",
      "Identificativo", "Valore:imp", "NumeroRegistrazione"}},
    {"Spesometro2013Riepilogato", PiuRighe, Timbro,
     {"ID"},
     {"ID:auto", "Tipo:int", "Anno:int", "Periodo", "IndTipoOperazBlackList:int16",
      "IndSoggettoSpesometro:int16", "DataRegistrazione:data", "DataCompetenzaIva:data",
      "NumeroRegistrazione", "NumRigaAVideo", "TipoRigaIvaNormale", "IndicatoreCliFor", "CodiceCliFor",
      "RagioneSociale", "Imponibile:imp", "Imposta:imp", "CodiceNazione", "AreaNazione:int",
      "FlagBlackList:bool", "FlagSanMarino:bool", "CodiceCausale", "DescrizioneCausale",
      "DataDocumento:data", "SerieDocumento", "NumeroDocumento:int", "NumeroDiProtocollo:int",
      "TipoRegistroIva", "NumRegistroIva", "NoteRegistrazione", "FlagNotaVariazione:bool",
      "FlagIVANonEsposta:bool", "ClientName", "FlagOperazTurismo:bool", "FlagDocRiepilogativo:bool"}},
    {"Spesometro2013Totali", SenzaChiave, NoTimbro,
     {},
     {"Anno:int", "IndicatoreCliFor", "CodiceCliFor", "CodiceFiscale", "PartitaIVA", "Identificativo",
      "Valore:imp"}},

    // Report tables kept in the database and shared by the clients: a run deletes its own rows (by
    // ClientName) and writes them anew
    {"Elaborazione stampa bilancio", SenzaChiave, NoTimbro,
     {},
     {"ClientName", "IDSezione:int", "Progressivo:int", "DesSezione", "StringaPeriodo", "TitoloColonnaSx",
      "TitoloColonnaDx", "ContoSx", "DesContoSx", "SaldoSx:imp", "ContoDx", "DesContoDx", "SaldoDx:imp",
      "TotaleSx:imp", "TotaleDx:imp", "TitoloRisultatoEsercizioSx", "RisultatoEsercizioSx:imp",
      "TitoloRisultatoEsercizioDx", "RisultatoEsercizioDx:imp", "TitoloTotalePareggioSx",
      "TotalePareggioSx:imp", "TitoloTotalePareggioDx", "TotalePareggioDx:imp", "NoteQuadratura"}},
    {"Elaborazione stampa prima nota", SenzaChiave, NoTimbro,
     {},
     {"ClientName", "Progressivo:int", "NumeroRegistrazione", "DataRegistrazione:data",
      "DataCompetenza:data", "DataDocumento:data", "NumeroDocumento:int", "SerieDocumento",
      "NumeroDiProtocollo:int", "DataCompetenzaIVA:data", "CodiceCausale", "DescrizioneCausale",
      "DescrizioneSupplem", "Imponibile:imp", "CodiceIVA", "NumRegistroIVA", "PercIndetraibile:dbl",
      "Dare:imp", "Avere:imp", "ContoPrimaNota", "CodClientefornitore", "StringaDescrizione",
      "NoteQuadratura"}},
    {"Elaborazione saldi piano conti", SenzaChiave, NoTimbro,
     {},
     {"ClientName", "Conto", "Descrizione", "SaldoIniziale:imp", "DareProgressivo:imp",
      "AvereProgressivo:imp", "DarePeriodo:imp", "AverePeriodo:imp", "SaldoAttuale:imp"}},
    {"Elaborazione stampa contabile piano conti", SenzaChiave, NoTimbro,
     {},
     {"ClientName", "Progressivo:int", "Conto", "Descrizione", "SaldoIniziale:imp", "DareProgressivo:imp",
      "AvereProgressivo:imp", "DarePeriodo:imp", "AverePeriodo:imp", "SaldoAttuale:imp"}},
    {"Elaborazione stampa contabile clifor", SenzaChiave, NoTimbro,
     {},
     {"ClientName", "Progressivo:int", "Codice", "Descrizione", "SaldoIniziale:imp", "DareProgressivo:imp",
      "AvereProgressivo:imp", "DarePeriodo:imp", "AverePeriodo:imp", "SaldoAttuale:imp"}},
    {"Elaborazione riprotocollazione", SenzaChiave, NoTimbro,
     {},
     {"ClientName", "DataCompetenza:data", "DataRegistrazione:data", "NumeroRegistrazione",
      "TipoRegistroIva", "NumRegistroIva", "NumeroDiProtocollo:int", "SerieDocumento",
      "NumeroDocumento:int"}},
    {"Elaborazione Estratto Conto Vorn", PiuRighe, NoTimbro,
     {"ID"},
     {"ID:auto", "ClientName", "TipoCliFor", "CodiceCliente", "RagioneSociale", "Descrizione",
      "TextNumeroDoc", "SerieDoc", "Filler", "TextDataDoc", "SimboloValuta", "TextImportoScadenza",
      "TextImportoPagato", "TextImportoProgressivo", "Note", "Numero Progressivo:int",
      "NumeroRegistrazione", "CausaleContabile"}},
    {"Elaborazione verifica PI CF duplicati", SenzaChiave, NoTimbro,
     {},
     {"IndicatoreCliFor", "clientName", "CodiceCliFor", "RagSociale", "PartitaIVA", "CodiceFiscale"}},
    {"Elaborazione cespiti schede contabili", SenzaChiave, NoTimbro,
     {},
     {"clientName", "numeroRiga:int", "codiceCespite", "anno:int", "dataAcquisto:data", "dataVendita:data",
      "costoAcquistoFisc:dbl", "AnnoAmmFisc:int", "immobilizzazioneFisc:dbl", "oneriSpeseFisc:dbl",
      "manutenzioniFisc:dbl", "rivalutazioniFisc:dbl", "svalutazioniFisc:dbl", "valoreCespiteFisc:dbl",
      "fondoPrecAmmOrdFisc:dbl", "fondoPrecAmmAntFisc:dbl", "ammOrdFisc:dbl", "percAmmOrdFisc:dbl",
      "ammAntFisc:dbl", "percAmmAntFisc:dbl", "residuoDaAmmFisc:dbl", "fondoAmmOrdFisc:dbl",
      "fondoAmmAntFisc:dbl", "venditaDismissioneFisc:dbl", "plusvalenzaFisc:dbl", "minusvalenzaFisc:dbl",
      "rettificaPlusvalenzaFisc:dbl", "rettificaMinusvalenzaFisc:dbl", "plusvalenzaReinvestitaFisc:dbl",
      "acquistiPeriodoFisc:dbl", "dismissioniPeriodoFisc:dbl", "ammOrdPeriodoFisc:dbl",
      "ammAntPeriodoFisc:dbl", "fondiAmmOrdPeriodoFisc:dbl", "fondiAmmAntPeriodoFisc:dbl",
      "plusvalenzePeriodoFisc:dbl", "minusvalenzePeriodoFisc:dbl", "plusvalenzeReinvestitePeriodoFisc:dbl",
      "costoAcquistoCiv:dbl", "AnnoAmmCiv:int", "immobilizzazioneCiv:dbl", "oneriSpeseCiv:dbl",
      "manutenzioniCiv:dbl", "rivalutazioniCiv:dbl", "svalutazioniCiv:dbl", "valoreCespiteCiv:dbl",
      "fondoPrecAmmOrdCiv:dbl", "fondoPrecAmmAntCiv:dbl", "ammOrdCiv:dbl", "PercAmmOrdCiv:dbl",
      "ammAntCiv:dbl", "PercAmmAntCiv:dbl", "ResiduoDaAmmCiv:dbl", "FondoAmmOrdCiv:dbl",
      "FondoAmmAntCiv:dbl", "VenditaDismissioneCiv:dbl", "PlusvalenzaCiv:dbl", "MinusvalenzaCiv:dbl",
      "RettificaPlusvalenzaCiv:dbl", "RettificaMinusvalenzaCiv:dbl", "PlusvalenzaReinvestitaCiv:dbl",
      "AcquistiPeriodoCiv:dbl", "DismissioniPeriodoCiv:dbl", "AmmOrdPeriodoCiv:dbl",
      "AmmAntPeriodoCiv:dbl", "FondiAmmOrdPeriodoCiv:dbl", "FondiAmmAntPeriodoCiv:dbl",
      "PlusvalenzePeriodoCiv:dbl", "MinusvalenzePeriodoCiv:dbl", "PlusvalenzeReinvestitePeriodoCiv:dbl",
      "Nota", "valoreCespiteFiscNoLimite:dbl", "ammOrdFiscDed:dbl", "ammAntFiscDed:dbl"}},
  };
  return d;
}
// clang-format on

ColonnaCatalogo Colonna(const char* def) {
  std::string s(def);
  auto p = s.rfind(':');
  if (p == std::string::npos) return {s, TipoCampo::Testo};
  std::string k = s.substr(p + 1);
  std::string nome = s.substr(0, p);
  TipoCampo t;
  if (k == "auto") return {nome, TipoCampo::Intero32, true};
  if (k == "imp") t = TipoCampo::Importo;
  else if (k == "dbl") t = TipoCampo::Doppio;
  else if (k == "int") t = TipoCampo::Intero32;
  else if (k == "int16") t = TipoCampo::Intero16;
  else if (k == "sng") t = TipoCampo::Singolo;
  else if (k == "data") t = TipoCampo::Data;
  else if (k == "bool") t = TipoCampo::Booleano;
  else if (k == "memo") t = TipoCampo::Memo;
  else throw std::logic_error("catalogo: tipo sconosciuto in " + s);
  return {nome, t};
}

std::vector<TabellaCatalogo> Costruisci() {
  std::vector<TabellaCatalogo> out;
  for (const auto& d : Definizioni()) {
    TabellaCatalogo t;
    t.nome = d.nome;
    t.rigaUnica = d.righe == UnaRiga;
    t.senzaChiave = d.righe == SenzaChiave;
    t.timbro = d.timbro == Timbro;
    for (const char* c : d.colonne) {
      auto col = Colonna(c);
      if (t.Colonna(col.nome)) throw std::logic_error("catalogo: colonna doppia " + t.nome + "." + col.nome);
      t.colonne.push_back(col);
    }
    for (const char* k : d.chiave) {
      const ColonnaCatalogo* c = t.Colonna(k);
      if (!c) throw std::logic_error("catalogo: chiave fuori tabella " + t.nome + "." + k);
      t.chiave.push_back(c->nome);
    }
    if ((t.rigaUnica || t.senzaChiave) != t.chiave.empty())
      throw std::logic_error("catalogo: chiave incoerente in " + t.nome);
    for (const auto& c : t.colonne)
      if (c.automatico && (t.chiave.size() != 1 || !UgualeNoCase(t.chiave[0], c.nome)))
        throw std::logic_error("catalogo: colonna numerata fuori chiave " + t.nome + "." + c.nome);
    if (t.timbro) {
      // A table may list clientName among its own columns (the statements' rows of one client).
      if (!t.Colonna("clientName")) t.colonne.push_back({"clientName", TipoCampo::Testo});
      if (!t.Colonna("hWnd")) t.colonne.push_back({"hWnd", TipoCampo::Intero32});
    }
    out.push_back(std::move(t));
  }
  return out;
}

}  // namespace

const ColonnaCatalogo* TabellaCatalogo::Colonna(std::string_view n) const {
  for (const auto& c : colonne)
    if (UgualeNoCase(c.nome, n)) return &c;
  return nullptr;
}

const std::vector<TabellaCatalogo>& TabelleCatalogo() {
  static const std::vector<TabellaCatalogo> t = Costruisci();
  return t;
}

const TabellaCatalogo* TabellaCatalogoDi(std::string_view nome) {
  for (const auto& t : TabelleCatalogo())
    if (UgualeNoCase(t.nome, nome)) return &t;
  return nullptr;
}

const std::vector<VistaCatalogo>& VisteCatalogo() {
  static const std::vector<VistaCatalogo> v = {
      // The sub-accounts with their descriptions: [Sottoconto] is the seven-character code
      // that journal rows carry in [ContoPrimaNota].
      {"Descrizione sottoconti",
       {"Gruppo", "Sottoconto", "Descrizione"},
       "SELECT [Piano Dei Conti].[Gruppo] AS [Gruppo], "
       "COALESCE([Piano Dei Conti].[Gruppo], '') || COALESCE([Piano Dei Conti].[Conto], '') || "
       "COALESCE([Piano Dei Conti].[Sottoconto], '') AS [Sottoconto], "
       "[Piano Dei Conti].[Descrizione] AS [Descrizione] FROM [Piano Dei Conti] "
       "WHERE COALESCE([Piano Dei Conti].[Sottoconto], '') <> ''"},
      // The groups (rows without account and sub-account) with their balance-sheet section.
      {"Query sezione bilancio gruppi",
       {"Gruppo", "IndDiBilancio"},
       "SELECT [Piano Dei Conti].[Gruppo] AS [Gruppo], [Piano Dei Conti].[IndDiBilancio] AS [IndDiBilancio] "
       "FROM [Piano Dei Conti] WHERE COALESCE([Piano Dei Conti].[Conto], '') = '' "
       "AND COALESCE([Piano Dei Conti].[Sottoconto], '') = ''"},
  };
  return v;
}

const std::vector<IndiceCatalogo>& IndiciCatalogo() {
  static const std::vector<IndiceCatalogo> i = {
      {"ix_pn_numreg", "Prima Nota", {"NumeroRegistrazione"}},
      {"ix_pn_datareg", "Prima Nota", {"DataRegistrazione"}},
      {"ix_pn_datacomp", "Prima Nota", {"DataCompetenza"}},
      {"ix_pn_dataciva", "Prima Nota", {"DataCompetenzaIVA"}},
      // The rows of one VAT register in a period: what the registers and the settlement read.
      {"ix_pn_registro", "Prima Nota", {"TipoRegistroIva", "NumRegistroIva", "DataCompetenzaIVA"}},
      {"ix_pn_conto", "Prima Nota", {"ContoPrimaNota"}},
      {"ix_pn_clifor", "Prima Nota", {"IndClienteFornitore", "CodClienteFornitore"}},
      {"ix_spdc_conto", "Saldi Piano Dei Conti", {"CodiceGruppo", "CodiceConto", "CodiceSottoconto"}},
      {"ix_cli_conto", "Anagrafica Clienti", {"SottocontoApparten"}},
      {"ix_for_conto", "Anagrafica Fornitori", {"SottocontoApparten"}},
      // A party's instalments, and a document's (the posting stamps its first instalment).
      {"ix_sc_documento", "Scadenziario", {"Tipo", "Codice Cliente", "Numero Documento"}},
      {"ix_sc_doc", "Scadenziario", {"Progressivo Documento"}},
      {"ix_sc_numprog", "Scadenziario", {"Numero Progressivo"}},
      {"ix_sc_scad", "Scadenziario", {"Data Scadenza"}},
      {"ix_fat_data", "Fatture", {"Data"}},
      {"ix_mm_doc", "Movimenti Magazzino", {"Numero", "Tipo documento"}},
      {"ix_sto_datareg", "Storico Contabile", {"DataRegistrazione"}},
      {"ix_sto_conto", "Storico Contabile", {"SottocontoMovimento"}},
  };
  return i;
}

std::string EspressioneNumeroRegistrazione(bool postgres) {
  if (postgres)
    return "CASE WHEN trim([NumeroRegistrazione]) ~ '^[0-9]{1,18}$' THEN CAST(trim([NumeroRegistrazione]) AS BIGINT) "
           "END";
  return "CASE WHEN trim([NumeroRegistrazione]) <> '' AND trim([NumeroRegistrazione]) NOT GLOB '*[^0-9]*' THEN "
         "CAST(trim([NumeroRegistrazione]) AS INTEGER) END";
}

std::string SqlIndiceNumeroRegistrazione(bool postgres) {
  return std::string("CREATE INDEX [") + kIndiceNumeroRegistrazione + "] ON [Prima Nota] ((" +
         EspressioneNumeroRegistrazione(postgres) + "))";
}

std::string TipoSql(TipoCampo tipo) {
  switch (tipo) {
    case TipoCampo::Importo:
      return "NUMERIC(19,4)";
    case TipoCampo::Doppio:
      return "DOUBLE PRECISION";
    case TipoCampo::Singolo:
      return "REAL";
    case TipoCampo::Data:
      return "DATE";
    case TipoCampo::Booleano:
      return "BOOLEAN";
    case TipoCampo::Intero16:
      return "SMALLINT";
    case TipoCampo::Intero32:
      return "INTEGER";
    default:
      return "TEXT";
  }
}

}  // namespace vorn
