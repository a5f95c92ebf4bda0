// vorn prima-nota, vorn ricostruisci-saldi, vorn verifica: the journal on the terminal, the
// full rebuild of the balances and the check that they agree with the journal.
#include "cli/cmd_prima_nota.h"

#include <ostream>
#include <sstream>

#include "cli/Comandi.h"
#include "cli/OpzioniComando.h"
#include "frame/Comuni.h"
#include "ledger/VerificaSaldi.h"
#include "ledger/clsPrimaNota.h"
#include "ledger/clsRicosContabile.h"

namespace vorn::cli {

namespace {

std::string Testo(const Valore& v) { return v.IsNull() ? std::string() : Trim(v.Testo()); }

std::string Importo15(const Importo& i) {
  if (i.Zero()) return std::string(15, ' ');
  return PadDestra(Valore(FormattaImporto(Valore(i))), 15);
}

// One line per row: number, date, causal, kind, line, side, account, partner, description and
// the amount in its column.
class ElencoPrimaNota {
 public:
  explicit ElencoPrimaNota(std::ostream& out) : out_(out) {}

  void Intestazione() {
    std::ostringstream l;
    l << PadSinistra(Valore("Num."), 6) << PadSinistra(Valore("Data reg."), 11) << PadSinistra(Valore("Caus."), 6)
         << PadSinistra(Valore("Riga"), 6) << PadSinistra(Valore("Conto"), 10) << PadSinistra(Valore("Cli/For"), 11)
         << PadSinistra(Valore("Descrizione"), 21) << PadDestra(Valore("Dare"), 15) << " "
         << PadDestra(Valore("Avere"), 15);
    Scrivi(l.str());
  }

  void Riga(const std::string& numero, const Valore& data, const std::string& causale, const std::string& tipo,
            const std::string& riga, const std::string& lato, const std::string& conto, const std::string& indCF,
            const std::string& codCF, const std::string& descrizione, const Importo& importo) {
    if (numero != corrente_) {
      Chiudi();
      corrente_ = numero;
      ++registrazioni_;
    }
    ++righe_;
    Importo dare, avere;
    if (lato == "D") dare = importo;
    else if (lato == "A") avere = importo;
    totDare_ += dare;
    totAvere_ += avere;
    std::string dataTesto = data.IsNull() ? std::string() : DataInTesto(data).Testo();
    std::string cf = indCF.empty() && codCF.empty() ? std::string() : indCF + " " + codCF;
    std::ostringstream l;
    l << PadSinistra(Valore(numero), 6) << PadSinistra(Valore(dataTesto), 11) << PadSinistra(Valore(causale), 6)
         << PadSinistra(Valore(tipo + riga), 6) << PadSinistra(Valore(FormattaConto(Valore(conto))), 10)
         << PadSinistra(Valore(cf), 11) << PadSinistra(Valore(descrizione), 21) << Importo15(dare) << " "
         << Importo15(avere);
    if (lato != "D" && lato != "A") l << " " << lato;
    Scrivi(l.str());
  }

  size_t Fine() {
    Chiudi();
    out_ << registrazioni_ << (registrazioni_ == 1 ? " registrazione, " : " registrazioni, ") << righe_
         << (righe_ == 1 ? " riga.\n" : " righe.\n");
    return static_cast<size_t>(righe_);
  }

 private:
  void Chiudi() {
    if (corrente_.empty() && righe_ == 0) return;
    std::string riga = std::string(71, ' ') + Importo15(totDare_) + " " + Importo15(totAvere_);
    if (totDare_ != totAvere_) riga += "  ** Non quadrano i totali **";
    Scrivi(riga);
    out_ << "\n";
    totDare_ = totAvere_ = Importo();
  }

  // A line without its trailing blanks.
  void Scrivi(std::string riga) {
    while (!riga.empty() && riga.back() == ' ') riga.pop_back();
    out_ << riga << "\n";
  }

  std::ostream& out_;
  std::string corrente_;
  Importo totDare_, totAvere_;
  long registrazioni_ = 0, righe_ = 0;
};

// Forwards the progress line and counts the rows it is told.
class FormContatore : public IForm {
 public:
  explicit FormContatore(IForm& f) : f_(f) {}
  void Caption(const std::string& t) override { f_.Caption(t); }
  void msgbar(const std::string& t) override {
    ++n_;
    f_.msgbar(t);
  }
  long n_ = 0;

 private:
  IForm& f_;
};

int PrimaNota(Contesto& ctx) {
  AziendaCli az = LeggiAzienda(ctx.args);
  auto numero = ctx.args.Opzione("--numero");
  const auto dal = DataOpzioneFacoltativa(ctx.args, "--dal");
  const auto al = DataOpzioneFacoltativa(ctx.args, "--al");
  ctx.args.Fine();
  if (numero && (dal || al)) throw ErroreUso("--numero non va con --dal e --al");
  FiltroPrimaNota f;
  if (numero) {
    std::string n = Trim(*numero);
    if (n.empty() || n.find_first_not_of("0123456789") != std::string::npos)
      throw ErroreUso("numero di registrazione non valido: " + *numero);
    f.numero = n;
  }
  f.dal = dal;
  f.al = al;
  auto db = ApriAzienda(az, Accesso::Lettura);
  ElencaPrimaNota(*db->cn, f, ctx.out);
  return 0;
}

int RicostruisciSaldi(Contesto& ctx) {
  AziendaCli az = LeggiAzienda(ctx.args);
  ctx.args.Fine();
  auto db = ApriAzienda(az, Accesso::Scrittura);
  long righe = RicostruisciTuttiSaldi(db->cn, ctx.form);
  ctx.form.Fine();
  if (righe > 0)
    ctx.out << "Saldi ricostruiti da " << righe << (righe == 1 ? " riga" : " righe") << " di prima nota.\n";
  else
    ctx.out << "Saldi azzerati: la prima nota è vuota.\n";
  return 0;
}

int Verifica(Contesto& ctx) {
  AziendaCli az = LeggiAzienda(ctx.args);
  ctx.args.Fine();
  auto db = ApriAzienda(az, Accesso::Lettura);
  return StampaVerificaSaldi(*db->cn, ctx.out) == 0 ? 0 : 1;
}

const RegistraComando kPrimaNota{{"prima-nota", "elenca le registrazioni di prima nota",
                                  std::string("Uso: vorn prima-nota FILE [--numero N | --dal GG/MM/AAAA --al GG/MM/AAAA]\n\n"
                                              "Elenca le righe di prima nota per registrazione, con i totali dare e "
                                              "avere di ciascuna.\n\n") +
                                      kUsoAzienda,
                                  PrimaNota}};
const RegistraComando kRicostruisci{{"ricostruisci-saldi", "ricostruisce i saldi contabili dalla prima nota",
                                     std::string("Uso: vorn ricostruisci-saldi FILE\n\n"
                                                 "Elimina i conti doppi del piano dei conti, azzera i saldi dei "
                                                 "sottoconti, dei clienti e dei fornitori e li ricostruisce dalla "
                                                 "prima nota, tutto o niente.\n\n") +
                                         kUsoAzienda,
                                     RicostruisciSaldi}};
const RegistraComando kVerifica{{"verifica", "confronta i saldi con la prima nota",
                                 std::string("Uso: vorn verifica FILE\n\n"
                                             "Ricalcola dalla prima nota i saldi dell'esercizio di ogni sottoconto, "
                                             "cliente e fornitore e elenca ogni differenza (codice di uscita 1 se ce "
                                             "ne sono).\n\n") +
                                     kUsoAzienda,
                                 Verifica}};

}  // namespace

size_t ElencaPrimaNota(Connessione& cn, const FiltroPrimaNota& f, std::ostream& out) {
  std::string where;
  Parametri p;
  if (f.numero) {
    where = " WHERE [NumeroRegistrazione] = ?";
    std::string n = Trim(*f.numero);
    p.push_back(Valore(n.find_first_not_of("0123456789") == std::string::npos ? Format(Valore(n), "00000") : n));
  } else if (f.dal || f.al) {
    where = " WHERE [DataRegistrazione] >= ? AND [DataRegistrazione] <= ?";
    p.push_back(Valore(f.dal ? *f.dal : *Data::Crea(1900, 1, 1)));
    p.push_back(Valore(f.al ? *f.al : *Data::Crea(3000, 12, 31)));
  }
  ElencoPrimaNota elenco(out);
  elenco.Intestazione();
  cn.Scorri(
      "SELECT [NumeroRegistrazione], [DataRegistrazione], [CodiceCausale], [TipoRigaIvaNormale], [NumRigaAVideo], "
      "[DareAvere], [ContoPrimaNota], [IndClienteFornitore], [CodClienteFornitore], [DescrizioneSupplem], "
      "[ImportoMovimento] FROM [Prima Nota]" + where +
          " ORDER BY [NumeroRegistrazione], [TipoRigaIvaNormale], [NumRigaAVideo], [DareAvere]",
      p, [&](const std::vector<Colonna>&, const std::vector<Valore>& r) {
        elenco.Riga(Testo(r[0]), r[1], Testo(r[2]), Testo(r[3]), Testo(r[4]), Testo(r[5]), Testo(r[6]), Testo(r[7]),
                    Testo(r[8]), Testo(r[9]), NullToZeroCy(r[10]));
        return true;
      });
  return elenco.Fine();
}

long RicostruisciTuttiSaldi(const std::shared_ptr<Connessione>& cn, IForm& form) {
  clsRicosContabile ricos;
  ricos.cn = cn;
  clsPrimaNota primaNota;
  primaNota.cn = cn;
  FormContatore contatore(form);
  // The four steps stand or fall together: a failure leaves the balances as they were.
  Atomico unita(*cn);
  ricos.VerificaContiDoppiPianoConti();
  ricos.AzzeraSaldiPianoConti();
  ricos.AzzeraSaldiClientiFornitori();
  bool ok = ricos.RicostruisciSaldiContabili(&contatore, primaNota);
  unita.Conferma();
  return ok ? contatore.n_ : 0;
}

size_t StampaVerificaSaldi(Connessione& cn, std::ostream& out) {
  auto differenze = VerificaSaldi(cn);
  if (differenze.empty()) {
    out << "Saldi allineati alla prima nota.\n";
    return 0;
  }
  for (const auto& d : differenze) out << DescriviDifferenza(d) << "\n";
  out << differenze.size() << (differenze.size() == 1 ? " differenza" : " differenze")
      << " tra saldi e prima nota: vorn ricostruisci-saldi li riallinea.\n";
  return differenze.size();
}

}  // namespace vorn::cli
