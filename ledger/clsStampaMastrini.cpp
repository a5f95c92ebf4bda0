#include "ledger/clsStampaMastrini.h"

#include <algorithm>
#include <fstream>
#include <stdexcept>

#include "company/clsParametriAzienda.h"
#include "company/clsProgAzienda.h"
#include "frame/Comuni.h"
#include "frame/FileVorn.h"
#include "frame/Impaginazione.h"
#include "ledger/MovimentiMastrino.h"
#include "ledger/clsPrimaNota.h"
#include "ledger/clsSaldiContabili.h"

namespace vorn {

namespace {

constexpr const char* kSaltoScheda = "\f";

const char* const kIntestazione1 =
    "Data     Data     Data     Numero/Serie   Num.   Descrizione operazione                           DARE        AVERE    Saldo progr.";
const char* const kIntestazione2 = "Compet.  Registr. Docum.   Documento      Prot.";
const char* const kIntestazioneArchivio1 =
    "Data    Data e Numero Data   Numero/Serie  Num.  Descrizione operazione                           DARE        AVERE    Saldo progr.";
const char* const kIntestazioneArchivio2 = "Compet. Registrazione Docum. Documento     Prot.";

// Widths of the row: the description starts at column 50 in both layouts, then the debit ends
// at column 102, the credit at 115 and the running balance with its side at 131.
constexpr int kDescrizione = 40;
constexpr int kImporto = 13;
constexpr int kSaldo = 14;
// The totals of the rows take 15 columns each; after their 43-column label the progressive
// totals fall in the debit and credit columns, as the opening does.
constexpr int kTotale = 15;

std::string Riga(char c) { return std::string(kColonneReport, c); }

// Right-aligned in `n` characters; a longer text is kept whole, so that an amount is never cut.
std::string Destra(const std::string& s, int n) {
  size_t l = LunghezzaTesto(s);
  return l >= static_cast<size_t>(n) ? s : std::string(static_cast<size_t>(n) - l, ' ') + s;
}
// Left-aligned in `n` characters, cut when longer.
std::string Sinistra(const std::string& s, int n) { return PadSinistra(Valore(s), n); }

std::string SenzaBlankFinali(std::string s) {
  while (!s.empty() && s.back() == ' ') s.pop_back();
  return s;
}

std::string Importo_(Importo i) { return FormattaImporto(Valore(i)); }

// An amount with its side: "1.234,00 D"; at zero the side is a blank.
std::string ConSegno(Importo saldo, int larghezza) {
  std::string segno = LatoDareAvere(saldo);
  return Destra(Importo_(ImportoAssoluto(saldo)), larghezza) + " " + (segno.empty() ? " " : segno);
}

std::string Ddmmyy(const Valore& data) {
  auto d = data.ComeData();
  return d ? d->Formato("ddmmyy") : std::string();
}

std::string NumeroSerie(const Valore& numero, const Valore& serie) {
  std::string n = NullToZeroLng(numero) != 0 ? TrimTesto(numero) : std::string();
  std::string s = TrimTesto(serie);
  return s.empty() ? n : n + "/" + s;
}

std::string RigaCorpo(const RigaMastrino& r, const ArgomentiStampaMastrini& a, Importo saldo) {
  std::string prot = NullToZeroLng(r.NumeroDiProtocollo) != 0 ? TrimTesto(r.NumeroDiProtocollo) : "";
  std::string s;
  if (a.avar_StampaPerArchivio) {
    std::string registrazione = Ddmmyy(r.DataRegistrazione) + " " + Format(r.NumeroRegistrazione, "000000");
    s = Sinistra(Ddmmyy(r.DataCompetenza), 8) + Sinistra(registrazione, 13) + " " +
        Sinistra(Ddmmyy(r.DataDocumento), 7) + Sinistra(NumeroSerie(r.NumeroDocumento, r.SerieDocumento), 13) + " " +
        Sinistra(prot, 5) + " ";
  } else {
    s = Sinistra(Ddmmyy(r.DataCompetenza), 9) + Sinistra(Ddmmyy(r.DataRegistrazione), 9) +
        Sinistra(Ddmmyy(r.DataDocumento), 9) + Sinistra(NumeroSerie(r.NumeroDocumento, r.SerieDocumento), 14) + " " +
        Sinistra(prot, 6) + " ";
  }
  std::string descrizione = TrimTesto(r.DescrizioneCausale);
  if (a.avar_StampaDescrizionePN) {
    std::string supplem = TrimTesto(r.DescrizioneSupplem);
    if (!supplem.empty()) descrizione = supplem;
  }
  s += Sinistra(descrizione, kDescrizione - 1) + " ";
  s += Destra(r.Dare() ? Importo_(r.ImportoMovimento) : "", kImporto);
  s += Destra(r.Avere() ? Importo_(r.ImportoMovimento) : "", kImporto);
  if (a.avar_StampaSaldo) s += ConSegno(saldo, kSaldo);
  return SenzaBlankFinali(s);
}

std::string Oggi(const ArgomentiStampaMastrini& a) { return (a.DataStampa ? *a.DataStampa : Data::Oggi()).Testo(); }

}  // namespace

std::string clsStampaMastrini::FileScheda() { return CartellaTemp() + "/mastrino.tmp"; }
std::string clsStampaMastrini::FileAccumulo() { return CartellaTemp() + "/mastrino.txt"; }

bool clsStampaMastrini::Stampa_Completa_Mastrino(const Valore& daData, const Valore& aData,
                                                 const Valore& avar_Sottoconto, const Valore& avar_IndCliFor,
                                                 const Valore& avar_CodCliFor, const ArgomentiStampaMastrini& a) {
  SchedaMastrino scheda = SchedaDa(avar_Sottoconto, avar_IndCliFor, avar_CodCliFor);
  std::string tmp = FileScheda();
  CancellaFile(tmp);
  if (scheda.sottoconto.empty()) return false;

  clsSaldiContabili propri;
  propri.cn = cn;
  clsSaldiContabili& saldi = a.objSaldiContabili ? *a.objSaldiContabili : propri;
  Valore scarico = UltimoScarico(a);

  std::string partner;
  if (scheda.CliFor()) partner = scheda.ind + " " + scheda.cod;
  if (a.frm_FormAttiva)
    a.frm_FormAttiva->msgbar("Stampa sottoconto: " + scheda.sottoconto +
                             (partner.empty() ? std::string() : "   Cliente/Fornitore: " + partner));

  PeriodoMastrino periodo = PeriodoDa(daData, aData, scarico);
  AperturaMastrino apertura = AperturaDa(saldi, scarico, periodo, scheda);
  Importo saldo = apertura.Saldo();

  // The card's title, read before the rows stream.
  std::string titolo = "Sottoconto: " + Trim(FormattaConto(Valore(scheda.sottoconto)));
  std::string descrizione = GetDescrizioneSottoconto(Valore(scheda.sottoconto));
  if (!descrizione.empty()) titolo += " " + descrizione;
  if (!partner.empty()) {
    titolo += "   Cliente/Fornitore: " + partner;
    std::string nome = GetRagioneSocialeCliFor(Valore(scheda.ind), Valore(scheda.cod));
    if (!nome.empty()) titolo += " " + nome;
  }

  std::ofstream out;
  auto apri = [&] {
    if (out.is_open()) return;
    out.open(tmp, std::ios::binary | std::ios::trunc);
    if (!out) throw std::runtime_error("Impossibile creare il file " + tmp);
    out << kSaltoScheda << '\n'
        << '\n'
        << SenzaBlankFinali(titolo) << '\n'
        << '\n'
        << (a.avar_StampaPerArchivio ? kIntestazioneArchivio1 : kIntestazione1) << '\n'
        << (a.avar_StampaPerArchivio ? kIntestazioneArchivio2 : kIntestazione2) << '\n'
        << Riga('-') << '\n';
    if (!saldo.Zero())
      out << std::string(66, ' ') << "SALDO PRECEDENTE ....: " << ConSegno(saldo, kImporto) << '\n';
  };
  if (!saldo.Zero()) apri();

  Importo totaleDare, totaleAvere;
  ScorriRigheMastrino(*cn, scheda, periodo, [&](const RigaMastrino& r) {
    apri();
    if (r.Dare()) {
      saldo += r.ImportoMovimento;
      totaleDare += r.ImportoMovimento;
    } else if (r.Avere()) {
      saldo -= r.ImportoMovimento;
      totaleAvere += r.ImportoMovimento;
    }
    out << RigaCorpo(r, a, saldo) << '\n';
    return true;
  });
  if (!out.is_open()) return false;  // no row and a zero opening: nothing to print

  Importo progrDare = apertura.dare + totaleDare;
  Importo progrAvere = apertura.avere + totaleAvere;
  out << Riga('-') << '\n'
      << " TOTALE MOVIM.: " << Destra(Importo_(totaleDare), kTotale) << Destra(Importo_(totaleAvere), kTotale)
      << "                            TOT. PROGR:    " << Destra(Importo_(progrDare), kImporto)
      << Destra(Importo_(progrAvere), kImporto) << '\n'
      << SenzaBlankFinali(" SALDO  MOVIM.: " + ConSegno(totaleDare - totaleAvere, kTotale - 2) +
                          std::string(kTotale, ' ') + "                            SALDO PROG:    " +
                          ConSegno(progrDare - progrAvere, kImporto))
      << '\n';
  out.close();
  if (!out) throw std::runtime_error("Errore di scrittura del file " + tmp);
  AccodaFile(tmp, FileAccumulo());
  return true;
}

void clsStampaMastrini::ImpaginaMastrini(const std::string& ingresso, const ArgomentiStampaMastrini& a) {
  FileStampa uscita(a.nomeFile);
  std::ostream& out = uscita.Flusso();
  std::ifstream in(ingresso, std::ios::binary);
  if (!in) {
    uscita.Chiudi();  // nothing printed: an empty file
    return;
  }

  // A page holds at least its head, a card's heading and one row.
  const int righe = std::max(a.avar_RighePagina, kRigheTestataPagina + kRigheTestataScheda + 1);
  std::string nome = a.RagioneSocialeAzienda.empty() ? a.AzRagSoc : a.RagioneSocialeAzienda;
  const std::string testata = "===  STAMPA MASTRINI                  Azienda: " + PadSinistra(Valore(nome), 38) +
                              "     Data: " + Oggi(a) + "           Pag: 1     ===";
  RigaPagina("", Valore(0));

  int contatore = 0;
  bool aperta = false;
  std::vector<std::string> testataScheda;
  auto scrivi = [&](const std::string& r) {
    out << r << '\n';
    ++contatore;
  };
  auto apriPagina = [&] {
    scrivi(Riga('='));
    scrivi(RigaPagina(testata));
    scrivi(Riga('='));
    aperta = true;
  };
  auto chiudiPagina = [&] {
    while (contatore < righe) scrivi("");
    contatore = 0;
    aperta = false;
  };

  std::string riga;
  auto leggi = [&] {
    if (!std::getline(in, riga)) return false;
    if (!riga.empty() && riga.back() == '\r') riga.pop_back();
    return true;
  };
  while (leggi()) {
    if (riga == kSaltoScheda) {
      testataScheda.clear();
      for (int i = 0; i < kRigheTestataScheda && leggi(); ++i) testataScheda.push_back(riga);
      if (!aperta) {
        apriPagina();
      } else if (!a.avar_NoSaltoPagina || righe - contatore < kRigheTestataScheda + 1) {
        chiudiPagina();
        apriPagina();
      }
      for (const auto& t : testataScheda) scrivi(t);
      continue;
    }
    if (!aperta) apriPagina();
    if (contatore >= righe) {
      // The card runs on: a new page repeats its heading.
      chiudiPagina();
      apriPagina();
      for (const auto& t : testataScheda) scrivi(t);
    }
    scrivi(riga);
  }
  if (aperta) chiudiPagina();
  uscita.Chiudi();
}

Valore clsStampaMastrini::UltimoScarico(const ArgomentiStampaMastrini& a) {
  if (scarico_) return *scarico_;
  if (a.objProgAzienda) return a.objProgAzienda->GetDataUltimoScaricoPrimaNota();
  clsProgAzienda prog;
  prog.cn = cn;
  return prog.GetDataUltimoScaricoPrimaNota();
}

long clsStampaMastrini::StampaElenco(const ArgomentiStampaMastrini& a, const std::vector<VoceMastrino>& elenco) {
  ArgomentiStampaMastrini b = a;
  clsSaldiContabili propri;
  propri.cn = cn;
  if (!b.objSaldiContabili) b.objSaldiContabili = &propri;
  scarico_.reset();
  scarico_ = UltimoScarico(b);
  struct Dimentica {
    std::optional<Valore>& s;
    ~Dimentica() { s.reset(); }
  } dimentica{scarico_};
  std::string accumulo = FileAccumulo();
  CancellaFile(accumulo);
  long n = 0;
  for (const auto& v : elenco)
    if (Stampa_Completa_Mastrino(b.avar_DaData, b.avar_AData, Valore(v.Sottoconto), Valore(v.IndCliFor),
                                 Valore(v.CodCliFor), b))
      ++n;
  ImpaginaMastrini(accumulo, b);
  return n;
}

long clsStampaMastrini::StampaListaMastrini(const ArgomentiStampaMastrini& a,
                                            const std::vector<VoceMastrino>& grdElenco) {
  return StampaElenco(a, grdElenco);
}

std::vector<VoceMastrino> clsStampaMastrini::SottocontiDa(const std::string& da, const std::string& a) {
  Parametri p;
  auto filtro = [&](const std::string& campo) {
    std::string w;
    if (!da.empty()) {
      w += " AND " + campo + " >= ?";
      p.push_back(Valore(da));
    }
    if (!a.empty()) {
      w += " AND " + campo + " <= ?";
      p.push_back(Valore(a));
    }
    return w;
  };
  std::string sql = "SELECT [Descrizione sottoconti].[Sottoconto] AS Sottoconto FROM [Descrizione sottoconti] "
                    "WHERE COALESCE([Descrizione sottoconti].[Sottoconto], '') <> ''" +
                    filtro("[Descrizione sottoconti].[Sottoconto]");
  sql += " UNION SELECT [Prima Nota].[ContoPrimaNota] AS Sottoconto FROM [Prima Nota] "
         "WHERE COALESCE([Prima Nota].[ContoPrimaNota], '') <> ''" +
         filtro("[Prima Nota].[ContoPrimaNota]");
  sql += " ORDER BY 1";
  std::vector<VoceMastrino> v;
  for (auto rs = cn->Execute(sql, p); !rs.Eof(); rs.MoveNext())
    v.push_back(VoceMastrino{TrimTesto(rs.Fields(0).Value()), "", ""});
  return v;
}

long clsStampaMastrini::StampaTutti(const ArgomentiStampaMastrini& a) { return StampaElenco(a, SottocontiDa("", "")); }

long clsStampaMastrini::StampaSottoconti(const ArgomentiStampaMastrini& a, const Valore& avar_DaConto,
                                         const Valore& avar_AConto) {
  // A group or an account stands for the sub-accounts under it.
  std::string da = TrimTesto(avar_DaConto), al = TrimTesto(avar_AConto);
  if (!da.empty() && LunghezzaTesto(da) < 7) da += std::string(7 - LunghezzaTesto(da), '0');
  if (!al.empty() && LunghezzaTesto(al) < 7) al += std::string(7 - LunghezzaTesto(al), '9');
  return StampaElenco(a, SottocontiDa(da, al));
}

long clsStampaMastrini::StampaMastriniCliFor(const ArgomentiStampaMastrini& a, clsParametriAzienda& objParametriAzienda,
                                             const Valore& avar_TipoStampa, const Valore& avar_DaConto,
                                             const Valore& avar_AConto, bool avar_SortRagioneSociale,
                                             const Valore& avar_SottocontoApparten, const Valore& avar_Agente,
                                             const Valore& avar_Zona) {
  std::string tipo = UCase(TrimTesto(avar_TipoStampa));
  if (tipo != "C" && tipo != "F") return StampaElenco(a, {});

  VerificaIndicatoreCliFor(
      "SELECT DISTINCT [Prima Nota].[ContoPrimaNota], [Prima Nota].[IndClienteFornitore] FROM [Prima Nota] "
      "WHERE [Prima Nota].[IndClienteFornitore] = ? ORDER BY 1",
      objParametriAzienda, {Valore(tipo)});

  const std::string t = tipo == "C" ? "[Anagrafica Clienti]" : "[Anagrafica Fornitori]";
  std::string sottocontoApparten = TrimTesto(avar_SottocontoApparten);
  Parametri p;
  std::string sql = "SELECT " + t + ".[Codice Cliente], " + t + ".[SottocontoApparten] FROM " + t + " WHERE 1 = 1";
  auto condizione = [&](const std::string& testo, const std::string& valore) {
    if (valore.empty()) return;
    sql += " AND " + testo;
    p.push_back(Valore(valore));
  };
  condizione(t + ".[Codice Cliente] >= ?", TrimTesto(avar_DaConto));
  condizione(t + ".[Codice Cliente] <= ?", TrimTesto(avar_AConto));
  condizione("COALESCE(" + t + ".[SottocontoApparten], '') = ?", sottocontoApparten);
  condizione(t + ".[Cod agente] = ?", TrimTesto(avar_Agente));
  condizione(t + ".[Codice Zona] = ?", TrimTesto(avar_Zona));
  sql += " ORDER BY ";
  if (avar_SortRagioneSociale) sql += "COALESCE(" + t + ".[Ragione Sociale], ''), ";
  sql += t + ".[Codice Cliente]";

  std::vector<VoceMastrino> elenco;
  for (auto rs = cn->Execute(sql, p); !rs.Eof(); rs.MoveNext()) {
    std::string codice = TrimTesto(rs.Fields(0).Value());
    std::string controllo = TrimTesto(rs.Fields(1).Value());
    // The sub-accounts on which the partner has rows, and its control sub-account, which may
    // hold no more than the progressives of the last unload.
    std::vector<std::string> conti;
    Parametri q{Valore(tipo), Valore(codice)};
    std::string sc = "SELECT DISTINCT [Prima Nota].[ContoPrimaNota] FROM [Prima Nota] "
                     "WHERE [Prima Nota].[IndClienteFornitore] = ? AND [Prima Nota].[CodClienteFornitore] = ? "
                     "AND COALESCE([Prima Nota].[ContoPrimaNota], '') <> ''";
    if (!sottocontoApparten.empty()) {
      sc += " AND [Prima Nota].[ContoPrimaNota] = ?";
      q.push_back(Valore(sottocontoApparten));
    }
    for (auto rc = cn->Execute(sc, q); !rc.Eof(); rc.MoveNext()) conti.push_back(TrimTesto(rc.Fields(0).Value()));
    if (!controllo.empty() && std::find(conti.begin(), conti.end(), controllo) == conti.end()) conti.push_back(controllo);
    std::sort(conti.begin(), conti.end());
    for (const auto& c : conti) elenco.push_back(VoceMastrino{c, tipo, codice});
  }
  return StampaElenco(a, elenco);
}

bool clsStampaMastrini::VerificaIndicatoreCliFor(const std::string& sqlstm, clsParametriAzienda& objParametriAzienda,
                                                 const Parametri& parametri) {
  // The rows are read whole first: no question is asked while a statement is open.
  std::vector<std::string> conti;
  for (auto rs = cn->Execute(sqlstm, parametri); !rs.Eof(); rs.MoveNext())
    if (!TrimTesto(rs("IndClienteFornitore").Value()).empty()) conti.push_back(TrimTesto(rs("ContoPrimaNota").Value()));
  std::vector<std::string> corretti;
  for (const auto& conto : conti) {
    if (std::find(corretti.begin(), corretti.end(), conto) != corretti.end()) continue;
    if (!objParametriAzienda.GetIndClienteFornitore(Valore(conto)).empty()) continue;
    Host().Beep();
    int risposta = Host().MsgBox("Rilevato l'indicatore Cliente/Fornitore per il  sottoconto " + conto +
                                     " non appartenente ai Gruppi/Conti Clienti/Fornitori indicati in "
                                     "'Parametri Contabili'\rVuoi correggere automaticamente l'anomalia?",
                                 vbYesNo | vbQuestion, "Verifica preliminare registrazioni contabili");
    if (risposta != vbYes) continue;
    // Through the journal, so that the partners' balances lose what the rows gave them.
    clsPrimaNota primaNota;
    primaNota.cn = cn;
    primaNota.TogliCliForDaSottoconto(Valore(conto));
    corretti.push_back(conto);
  }
  return true;
}

std::string clsStampaMastrini::GetDescrizioneSottoconto(const Valore& sottoconto, bool* Cancel,
                                                        IControllo* ControlloDaSelezionare) {
  std::string codice = TrimTesto(sottoconto);
  if (codice.empty()) return "";
  auto manca = [&](const std::string& titolo) {
    if (Cancel) MsgCodiceInesistente(*Cancel, titolo);
    EvidenziaControllo(ControlloDaSelezionare);
    return std::string();
  };
  if (LunghezzaTesto(codice) < 7) return manca("Inserire un sottoconto");
  auto rs = cn->Execute(
      "SELECT [Piano Dei Conti].[Descrizione] FROM [Piano Dei Conti] WHERE [Piano Dei Conti].[Gruppo] = ? "
      "AND [Piano Dei Conti].[Conto] = ? AND [Piano Dei Conti].[Sottoconto] = ? LIMIT 1",
      {Valore(MedioTesto(codice, 1, 2)), Valore(MedioTesto(codice, 3, 2)), Valore(MedioTesto(codice, 5, 3))});
  if (rs.Eof()) return manca("");
  return TrimTesto(rs.Fields(0).Value());
}

std::string clsStampaMastrini::GetRagioneSocialeCliFor(const Valore& IndClienteFornitore,
                                                       const Valore& Codice_Cliente) {
  std::string ind = UCase(TrimTesto(IndClienteFornitore));
  std::string t;
  if (ind == "C") t = "[Anagrafica Clienti]";
  else if (ind == "F") t = "[Anagrafica Fornitori]";
  else return "";
  return TrimTesto(cn->Scalare("SELECT " + t + ".[Ragione Sociale] FROM " + t + " WHERE " + t +
                                   ".[Codice Cliente] = ? LIMIT 1",
                               {Valore(TrimTesto(Codice_Cliente))}));
}

}  // namespace vorn
