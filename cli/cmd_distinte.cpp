// vorn distinte: the remittance lists of supplier instalments paid by bank transfer: a new list
// of what is due up to a date, the lists and their instalments, the issue, the posting.
#include <ostream>

#include "cli/Comandi.h"
#include "cli/OpzioniComando.h"
#include "company/clsTabRiferimenti.h"
#include "frame/Comuni.h"
#include "frame/Formato.h"
#include "receivables/clsDistinteBonifici.h"
#include "receivables/clsElaboraFatture.h"

namespace vorn::cli {

namespace {

const char* const kUso =
    "Uso: vorn distinte FILE\n"
    "     vorn distinte FILE --crea --scadenza-al GG/MM/AAAA [--data GG/MM/AAAA] [--esecuzione GG/MM/AAAA]\n"
    "                       [--banca CODICE --agenzia CODICE] [--sottoconto SOTTOCONTO] [--limite IMPORTO]\n"
    "     vorn distinte FILE --mostra N\n"
    "     vorn distinte FILE --emetti N\n"
    "     vorn distinte FILE --annulla N\n"
    "     vorn distinte FILE --contabilizza N [--commissioni IMPORTO]\n\n"
    "Le distinte dei bonifici ai fornitori. Senza opzioni elenca le distinte con il loro stato.\n\n"
    "  --crea           una nuova distinta con le rate aperte dei fornitori da pagare con bonifico\n"
    "                   (tipo effetto BO) che scadono entro --scadenza-al, non sospese e non già in\n"
    "                   un'altra distinta; le rate sono segnate presentate alla banca della distinta.\n"
    "                   --data è la data della distinta (senza: --scadenza-al), --esecuzione la data\n"
    "                   in cui la banca esegue i bonifici (senza: la data della distinta), --banca e\n"
    "                   --agenzia la banca dell'azienda, --sottoconto il conto che il pagamento\n"
    "                   accredita (senza: quello della banca), --limite l'importo massimo della\n"
    "                   distinta (le rate che lo supererebbero restano fuori)\n"
    "  --mostra N       le rate della distinta N\n"
    "  --emetti N       segna la distinta N e le sue rate come emesse (il flusso per la banca è fatto)\n"
    "  --annulla N      annulla la distinta N non contabilizzata: le sue rate tornano libere\n"
    "  --contabilizza N registra in prima nota il pagamento della distinta N alla data di esecuzione:\n"
    "                   una riga per rata sul fornitore, le --commissioni bancarie se indicate, la banca;\n"
    "                   le rate risultano pagate. Tutto o niente: una distinta già contabilizzata non\n"
    "                   viene registrata di nuovo.\n"
    "Causale e sottoconti sono quelli dei riferimenti contabili dell'azienda.\n";

std::string Testo(const Valore& v) { return v.IsDate() ? DataInTesto(v).Testo() : TrimTesto(v); }

int Elenco(clsDB& db, std::ostream& out) {
  std::vector<std::vector<std::string>> righe;
  db.cn->Scorri(
      "SELECT [Distinte Bonifici].[Numero Distinta], [Data Distinta], [Data Esecuzione], [Codice Banca], "
      "[Codice Agenzia], (SELECT COUNT(*) FROM [Distinte Bonifici Righe] WHERE [Distinte Bonifici Righe].[Numero "
      "Distinta] = [Distinte Bonifici].[Numero Distinta]), [ImportoDistinta], [EffettiEmessi], [Contabilizzata], "
      "[numeroRegistrazione] FROM [Distinte Bonifici] ORDER BY [Distinte Bonifici].[Numero Distinta]",
      {}, [&](const std::vector<Colonna>&, const std::vector<Valore>& r) {
        std::string banca = TrimTesto(r[3]);
        if (!TrimTesto(r[4]).empty()) banca += "/" + TrimTesto(r[4]);
        std::string stato = r[8].Vero() ? "contabilizzata (reg. " + TrimTesto(r[9]) + ")"
                            : r[7].Vero() ? "emessa"
                                          : "presentata";
        righe.push_back({Testo(r[0]), Testo(r[1]), Testo(r[2]), banca, Testo(r[5]),
                         FormattaImporto(Valore(NullToZeroCy(r[6]))), stato});
        return true;
      });
  ScriviTabella(out,
                {{"Numero", Allinea::Destra},
                 {"Data", Allinea::Sinistra},
                 {"Esecuzione", Allinea::Sinistra},
                 {"Banca", Allinea::Sinistra},
                 {"Rate", Allinea::Destra},
                 {"Importo", Allinea::Destra},
                 {"Stato", Allinea::Sinistra}},
                righe, "Nessuna distinta di bonifici.");
  return 0;
}

int Mostra(clsDB& db, long numero, std::ostream& out) {
  clsDistinteBonifici d;
  d.cn = db.cn;
  if (!d.ExistNumeroDistinta(Valore(numero))) throw ErroreComando("la distinta n. " + std::to_string(numero) + " non esiste");
  Recordset rs;
  d.LocalizzaRecordRighe(rs, Valore(numero), Valore("vorn"), 0);
  std::vector<std::vector<std::string>> righe;
  for (; !rs.Eof(); rs.MoveNext()) {
    auto c = [&](const char* n) { return rs(n).Value(); };
    std::string doc = TrimTesto(c("Numero Documento")) + AggiungiBarra(TrimTesto(c("Serie")));
    righe.push_back({Testo(c("Progressivo Riga")), Testo(c("Numero Progressivo Riga")), Testo(c("Data Scadenza")),
                     TrimTesto(c("Codice Cliente")), TrimTesto(c("Ragione Sociale")), doc,
                     c("Importo Scadenza").IsNull() ? std::string() : FormattaImporto(Valore(-NullToZeroCy(c("Importo Scadenza")))),
                     TrimTesto(c("IBAN"))});
  }
  ScriviTabella(out,
                {{"Riga", Allinea::Destra},
                 {"Rata", Allinea::Destra},
                 {"Scadenza", Allinea::Sinistra},
                 {"Fornitore", Allinea::Sinistra},
                 {"Ragione sociale", Allinea::Sinistra},
                 {"Documento", Allinea::Sinistra},
                 {"Importo", Allinea::Destra},
                 {"IBAN", Allinea::Sinistra}},
                righe, "La distinta non ha rate.");
  return 0;
}

long NumeroDistinta(const std::string& nome, const std::string& testo) {
  std::string t = Trim(testo);
  if (t.empty() || t.size() > 9 || t.find_first_not_of("0123456789") != std::string::npos || std::stol(t) == 0)
    throw ErroreUso(nome + " vuole il numero di una distinta: " + testo);
  return std::stol(t);
}

int Esegui(Contesto& ctx) {
  Argomenti& a = ctx.args;
  const bool crea = a.Flag("--crea");
  auto mostra = a.Opzione("--mostra"), emetti = a.Opzione("--emetti"), contabilizza = a.Opzione("--contabilizza"),
       annulla = a.Opzione("--annulla");
  if (crea + mostra.has_value() + emetti.has_value() + contabilizza.has_value() + annulla.has_value() > 1)
    throw ErroreUso("--crea, --mostra, --emetti, --annulla e --contabilizza non vanno insieme");

  if (crea) {
    NuovaDistintaBonifici n;
    const Data limite = *DataOpzioneFacoltativa(a, "--scadenza-al", true);
    const Data data = DataOpzioneFacoltativa(a, "--data").value_or(limite);
    const Data esecuzione = DataOpzioneFacoltativa(a, "--esecuzione").value_or(data);
    if (esecuzione < data) throw ErroreUso("--esecuzione viene prima della data della distinta");
    n.Data_Scadenza_Limite = Valore(limite);
    n.Data_Distinta = Valore(data);
    n.Data_Esecuzione = Valore(esecuzione);
    auto banca = a.Opzione("--banca"), agenzia = a.Opzione("--agenzia"), sottoconto = a.Opzione("--sottoconto");
    if (banca.has_value() != agenzia.has_value()) throw ErroreUso("--banca e --agenzia vanno indicate insieme");
    n.ImportoLimite = ImportoOpzioneFacoltativo(a, "--limite");
    if (n.ImportoLimite < Importo()) throw ErroreUso("--limite non può essere negativo");
    AziendaCli az = LeggiAzienda(a);
    a.Fine();
    auto db = ApriAzienda(az, Accesso::Scrittura);
    if (banca) {
      n.Codice_Banca = Valore(Trim(*banca));
      n.Codice_Agenzia = Valore(Trim(*agenzia));
      if (NullToZeroLng(db->cn->Scalare(
              "SELECT COUNT(*) FROM [Banche Azienda] WHERE [Codice banca] = ? AND [Codice agenzia] = ?",
              {n.Codice_Banca, n.Codice_Agenzia})) == 0)
        throw ErroreComando("la banca " + *banca + "/" + *agenzia + " non è tra le banche dell'azienda");
    }
    if (sottoconto) n.SottocontoBanca = Valore(Trim(*sottoconto));
    clsDistinteBonifici d;
    d.cn = db->cn;
    const int32_t numero = d.CreaDistinta(n, Valore("vorn"), 0);
    if (numero == 0) {
      ctx.out << "Nessuna rata da pagare con bonifico fino al " << limite.Testo() << ".\n";
      return 0;
    }
    Recordset rs = db->cn->Execute(
        "SELECT [ImportoDistinta], (SELECT COUNT(*) FROM [Distinte Bonifici Righe] WHERE [Numero Distinta] = ?) "
        "FROM [Distinte Bonifici] WHERE [Numero Distinta] = ?",
        {Valore(numero), Valore(numero)});
    ctx.out << "Distinta n. " << numero << " del " << data.Testo() << ": " << TrimTesto(rs(1).Value())
            << " rate per " << FormattaImporto(Valore(NullToZeroCy(rs(0).Value()))) << ", esecuzione il "
            << esecuzione.Testo() << "\n";
    return 0;
  }
  if (mostra || emetti) {
    const long numero = NumeroDistinta(mostra ? "--mostra" : "--emetti", mostra ? *mostra : *emetti);
    AziendaCli az = LeggiAzienda(a);
    a.Fine();
    auto db = ApriAzienda(az, mostra ? Accesso::Lettura : Accesso::Scrittura);
    if (mostra) return Mostra(*db, numero, ctx.out);
    clsDistinteBonifici d;
    d.cn = db->cn;
    if (!d.EmettiDistinta(Valore(numero))) throw ErroreComando("la distinta n. " + std::to_string(numero) + " non esiste");
    ctx.out << "Distinta n. " << numero << " emessa.\n";
    return 0;
  }
  if (annulla) {
    const long numero = NumeroDistinta("--annulla", *annulla);
    AziendaCli az = LeggiAzienda(a);
    a.Fine();
    auto db = ApriAzienda(az, Accesso::Scrittura);
    clsDistinteBonifici d;
    d.cn = db->cn;
    if (!d.AnnullaDistinta(Valore(numero)))
      throw ErroreComando("la distinta n. " + std::to_string(numero) + " non esiste o è già contabilizzata");
    ctx.out << "Distinta n. " << numero << " annullata: le sue rate sono di nuovo libere.\n";
    return 0;
  }
  if (contabilizza) {
    const long numero = NumeroDistinta("--contabilizza", *contabilizza);
    const Importo commissioni = ImportoOpzioneFacoltativo(a, "--commissioni");
    if (commissioni < Importo()) throw ErroreUso("--commissioni non può essere negativo");
    AziendaCli az = LeggiAzienda(a);
    a.Fine();
    auto db = ApriAzienda(az, Accesso::Scrittura);
    clsDistinteBonifici d;
    d.cn = db->cn;
    if (!d.ExistNumeroDistinta(Valore(numero))) throw ErroreComando("la distinta n. " + std::to_string(numero) + " non esiste");
    clsTabRiferimenti rif;
    rif.cn = db->cn;
    ArgomentiDistintaBonifici arg;
    if (!RiferimentiDistintaBonifici(rif, arg))
      throw ErroreComando("l'azienda non ha i riferimenti contabili: causale e sottoconti dei bonifici mancano");
    arg.objFormAttiva = &ctx.form;
    arg.Numero_Distinta = Valore(numero);
    arg.commissioniBancarie = commissioni;
    arg.clientID = Valore("vorn");
    clsElaboraFatture ef;
    ef.cn = db->cn;
    ctx.form.Caption("Contabilizzazione distinta bonifici");
    int32_t registrazione = 0;
    const long righe = ef.ContabilizzaDistintaBonifici(arg, registrazione);
    ctx.form.Fine();
    if (righe == 0) return 1;
    ctx.out << "Distinta n. " << numero << " contabilizzata: registrazione " << Format(Valore(registrazione), "00000")
            << " di " << righe << " righe.\n";
    return 0;
  }
  AziendaCli az = LeggiAzienda(a);
  a.Fine();
  auto db = ApriAzienda(az, Accesso::Lettura);
  return Elenco(*db, ctx.out);
}

RegistraComando reg(Comando{"distinte", "le distinte dei bonifici ai fornitori: crea, elenca, emette, contabilizza",
                            std::string(kUso) + "\n" + kUsoAzienda, Esegui});

}  // namespace

}  // namespace vorn::cli
