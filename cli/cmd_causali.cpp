// vorn causali, vorn codici-iva, vorn stampa codici-iva: the accounting causals and the VAT
// codes of a company, and the print of the VAT codes.
#include <filesystem>

#include "cli/Comandi.h"
#include "cli/OpzioniComando.h"
#include "frame/Comuni.h"
#include "ledger/clsCausaliContabili.h"
#include "masterdata/clsCodiciIva.h"

namespace vorn::cli {

namespace {

// The head of the print (an empty line and six lines) and its foot (one line), and a line of body.
constexpr int kMinimoRigheCodiciIva = 9;

std::string Col(const std::string& testo, int larghezza) { return PadSinistra(Valore(testo), larghezza); }
std::string ColDestra(const std::string& testo, int larghezza) { return PadDestra(Valore(testo), larghezza); }

int EseguiCausali(Contesto& ctx) {
  AziendaCli az = LeggiAzienda(ctx.args);
  ctx.args.Fine();
  auto db = ApriAzienda(az, Accesso::Lettura);
  clsCausaliContabili causali;
  causali.cn = db->cn;
  Recordset rs;
  if (!causali.LocalizzaTuttiRecord(rs)) {
    ctx.out << "Nessuna causale contabile.\n";
    db->DisconnettiDatabase();
    return 0;
  }
  ctx.out << Col("Codice", 6) << " " << Col("Descrizione", 30) << " " << Col("Registro IVA", 34) << " "
          << Col("Tipo causale", 44) << " " << "Oper.\n";
  for (; !rs.Eof(); rs.MoveNext()) {
    std::string codice = LeggiCampo(rs("CodiceCausale"), Valore("")).Testo();
    std::string registro = LeggiCampo(rs("TipoRegistroIva"), Valore("0")).Testo();
    std::string tipo = LeggiCampo(rs("TipoCausale"), Valore("")).Testo();
    std::string testoRegistro = registro + " " + clsCausaliContabili::GetDescrizioneTipoRegistroIva(Valore(registro)).Testo();
    std::string testoTipo = tipo;
    if (const auto* v = clsCausaliContabili::TipoCausaleDi(Valore(tipo)))
      testoTipo += " (" + std::string(v->lettera) + ") " + std::string(v->documento);
    ctx.out << Col(codice, 6) << " " << Col(LeggiCampo(rs("DescrizioneCausale"), Valore("")).Testo(), 30) << " "
            << Col(testoRegistro, 34) << " " << Col(testoTipo, 44) << " "
            << LeggiCampo(rs("OperativitaContabile"), Valore("0")).Testo() << "\n";
  }
  db->DisconnettiDatabase();
  return 0;
}

int EseguiCodiciIva(Contesto& ctx) {
  AziendaCli az = LeggiAzienda(ctx.args);
  ctx.args.Fine();
  auto db = ApriAzienda(az, Accesso::Lettura);
  clsCodiciIva iva;
  iva.cn = db->cn;
  Recordset rs = db->cn->Execute("SELECT [Codice Iva] FROM [Codici Iva] ORDER BY [Codice Iva];");
  if (rs.Eof()) {
    ctx.out << "Nessun codice IVA.\n";
    db->DisconnettiDatabase();
    return 0;
  }
  ctx.out << Col("Codice", 6) << " " << Col("Descrizione", 20) << " " << ColDestra("Aliquota", 8) << " "
          << ColDestra("%Indetr.", 8) << " " << ColDestra("Natura", 6) << " " << Col("Split", 5) << " "
          << "Rev.ch.\n";
  for (; !rs.Eof(); rs.MoveNext()) {
    Valore codice = LeggiCampo(rs("Codice Iva"), Valore(""));
    Valore aliquota, indetraibile, art8, esenti, altre, monte, intra;
    iva.GetDatiIVA(codice, aliquota, indetraibile, art8, esenti, altre, monte, intra);
    // The electronic-invoice getters read the code in their own way: give them a copy.
    Valore perNatura = codice, perSplit = codice, perReverse = codice;
    ctx.out << Col(codice.Testo(), 6) << " " << Col(iva.GetDescrizioneIva(codice), 20) << " "
            << ColDestra(FormattaDecimali(aliquota, Valore(2)), 8) << " "
            << ColDestra(FormattaDecimali(indetraibile, Valore(2)), 8) << " "
            << ColDestra(std::to_string(iva.GetNaturaIVAFatturaPA(perNatura)), 6) << " "
            << Col(iva.GetFlagSplitPayment(perSplit) == "1" ? "Si" : "No", 5) << " "
            << (iva.IsReverseCharge(perReverse) ? "Si" : "No") << "\n";
  }
  db->DisconnettiDatabase();
  return 0;
}

int EseguiStampa(Contesto& ctx) {
  int righePagina = RighePagina(ctx.args, 66, kMinimoRigheCodiciIva);
  const Valore dataStampa = ValoreDataOpzione(ctx.args, "--data", Valore());
  auto presso = ctx.args.Opzione("--presso");
  auto pressoPiva = ctx.args.Opzione("--presso-piva");
  AziendaCli az = LeggiAzienda(ctx.args);
  std::string uscita = ctx.args.Posizionale("il file della stampa (OUT)");
  ctx.args.Fine();
  UscitaStampa(az, uscita);

  auto db = ApriAzienda(az, Accesso::Lettura);
  // Who printed it: the company itself unless told otherwise.
  std::string ragione, piva;
  Recordset ditta = db->cn->Execute("SELECT [Ragione Sociale], [Partita IVA] FROM [Tabella Azienda] LIMIT 1;");
  if (!ditta.Eof()) {
    ragione = LeggiCampo(ditta("Ragione Sociale"), Valore("")).Testo();
    piva = LeggiCampo(ditta("Partita IVA"), Valore("")).Testo();
  }
  clsCodiciIva iva;
  iva.cn = db->cn;
  bool scritta = iva.StampaCodiciIVA(&ctx.form, Valore(presso.value_or(ragione)), Valore(pressoPiva.value_or(piva)),
                                     uscita, dataStampa, Valore(righePagina));
  db->DisconnettiDatabase();
  if (!scritta) throw ErroreComando("");  // the message has said why
  ctx.form.Fine();
  ctx.out << std::filesystem::absolute(uscita).string() << "\n";
  return 0;
}

const RegistraComando registraCausali({
    "causali",
    "le causali contabili",
    "Uso: vorn causali FILE\n"
    "     vorn causali --pg-database NOME [--pg-host HOST[:PORTA]] [--pg-user UTENTE]\n\n"
    "Elenca le causali contabili in ordine di codice con la descrizione, il tipo di registro\n"
    "IVA, il tipo di causale (con la lettera del registro IVA) e l'operatività contabile.\n\n" +
        std::string(kUsoAzienda),
    EseguiCausali,
});

const RegistraComando registraCodiciIva({
    "codici-iva",
    "i codici IVA",
    "Uso: vorn codici-iva FILE\n"
    "     vorn codici-iva --pg-database NOME [--pg-host HOST[:PORTA]] [--pg-user UTENTE]\n\n"
    "Elenca i codici IVA in ordine di codice con descrizione, aliquota, percentuale di\n"
    "indetraibilità, natura per la fattura elettronica, split payment e reverse charge.\n\n" +
        std::string(kUsoAzienda),
    EseguiCodiciIva,
});

const RegistraComando registraStampa({
    "stampa codici-iva",
    "la stampa dei codici IVA",
    "Uso: vorn stampa codici-iva FILE OUT [--righe N] [--data GG/MM/AAAA]\n"
    "                            [--presso NOME] [--presso-piva PARTITA_IVA]\n\n"
    "Scrive in OUT la stampa impaginata dei codici IVA e ne stampa il percorso.\n"
    "  --righe N          righe di una pagina, testata e piede compresi (predefinite 66, almeno 9)\n"
    "  --data             data di stampa (predefinita oggi)\n"
    "  --presso, --presso-piva\n"
    "                     chi ha elaborato la stampa, nel piede (predefinita l'azienda)\n\n" +
        std::string(kUsoUscitaStampa) + "\n" + kUsoAzienda,
    EseguiStampa,
});

}  // namespace

}  // namespace vorn::cli
