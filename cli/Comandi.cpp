#include "cli/Comandi.h"
#include "frame/Versione.h"

#include <sys/stat.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <sstream>

#include "frame/Comuni.h"
#include "frame/FileVorn.h"
#include "frame/Globali.h"
#include "frame/Valore.h"

namespace vorn::cli {

const char* const kUsoAzienda =
    "L'azienda: un file SQLite (FILE), oppure un database PostgreSQL con\n"
    "  --pg-database NOME  [--pg-host HOST[:PORTA]]  [--pg-user UTENTE]  [--pg-schema SCHEMA]\n"
    "  (la password da VORN_PG_PASSWORD, altrimenti chiesta sul terminale senza eco)\n";

std::optional<std::string> Argomenti::Opzione(const std::string& nome) {
  for (size_t i = 0; i < a_.size(); ++i) {
    if (a_[i] == nome) {
      if (i + 1 >= a_.size()) throw ErroreUso("manca il valore di " + nome);
      std::string v = a_[i + 1];
      a_.erase(a_.begin() + static_cast<long>(i), a_.begin() + static_cast<long>(i) + 2);
      return v;
    }
    if (a_[i].rfind(nome + "=", 0) == 0) {
      std::string v = a_[i].substr(nome.size() + 1);
      a_.erase(a_.begin() + static_cast<long>(i));
      return v;
    }
  }
  return std::nullopt;
}

bool Argomenti::Flag(const std::string& nome) {
  for (size_t i = 0; i < a_.size(); ++i)
    if (a_[i] == nome) {
      a_.erase(a_.begin() + static_cast<long>(i));
      return true;
    }
  return false;
}

std::optional<std::string> Argomenti::PosizionaleFacoltativo() {
  for (size_t i = 0; i < a_.size(); ++i) {
    if (a_[i].size() > 1 && a_[i].rfind("--", 0) == 0) continue;
    std::string v = a_[i];
    a_.erase(a_.begin() + static_cast<long>(i));
    return v;
  }
  return std::nullopt;
}

std::string Argomenti::Posizionale(const std::string& descrizione) {
  auto v = PosizionaleFacoltativo();
  if (!v) throw ErroreUso("manca " + descrizione);
  return *v;
}

void Argomenti::Fine() const {
  if (!a_.empty()) throw ErroreUso("argomento non previsto: " + a_.front());
}

namespace {
std::map<std::string, Comando>& Mappa() {
  static std::map<std::string, Comando> m;
  return m;
}
}  // namespace

void Registra(Comando c) { Mappa()[c.nome] = std::move(c); }
const std::map<std::string, Comando>& Registro() { return Mappa(); }

std::string AziendaCli::Descrizione() const {
  if (!postgres) return file;
  return "PostgreSQL " + pg.database + (pg.host.empty() ? "" : "@" + pg.host);
}

AziendaCli LeggiAzienda(Argomenti& a) {
  AziendaCli az;
  auto db = a.Opzione("--pg-database");
  auto host = a.Opzione("--pg-host");
  auto user = a.Opzione("--pg-user");
  auto schema = a.Opzione("--pg-schema");
  if (db) {
    az.pg.schema = schema.value_or("");
    az.postgres = true;
    az.pg.database = *db;
    az.pg.host = host.value_or("");
    az.pg.user = user.value_or("");
    if (const char* p = std::getenv("VORN_PG_PASSWORD")) az.pg.password = p;
    else az.pg.password = LeggiPasswordNascosta("Password PostgreSQL: ");
    return az;
  }
  if (host || user || schema) throw ErroreUso("--pg-host, --pg-user e --pg-schema vanno con --pg-database");
  az.file = a.Posizionale("il file dell'azienda (FILE)");
  return az;
}

std::unique_ptr<clsDB> ApriAzienda(const AziendaCli& az, Accesso accesso) {
  if (!az.postgres) {
    std::error_code ec;
    if (!std::filesystem::exists(az.file, ec)) throw ErroreComando("l'azienda " + az.file + " non esiste");
    if (std::filesystem::is_directory(az.file, ec))
      throw ErroreComando(az.file + " è una cartella, non il file di un'azienda");
  }
  auto db = std::make_unique<clsDB>();
  bool ok;
  if (az.postgres) {
    db->schemaPostgreSQL = az.pg.schema;
    std::string server = az.pg.host;
    if (!az.pg.port.empty()) server += ":" + az.pg.port;
    ok = db->ConnettiDatabasePostgreSQL(Valore(az.pg.database), Valore(server), Valore(az.pg.user), Valore(az.pg.password));
  } else {
    db->solaLetturaSQLite = accesso == Accesso::Lettura;
    ok = db->ConnettiDatabaseSQLite(Valore(az.file), Valore());
  }
  if (!ok) throw ErroreComando("");  // the host has already said why
  return db;
}

const char* const kUsoUscitaStampa =
    "Il file della stampa non può essere il file dell'azienda (con qualunque nome lo si indichi).\n"
    "Un file che esiste già viene sostituito solo se è vuoto o se è una stampa (testo con il numero\n"
    "di pagina, \"Pag:\"): mai un database, un programma o un altro file. La stampa è scritta a parte\n"
    "e prende il nome indicato solo quando è completa; se non si può scrivere tutta (disco pieno)\n"
    "il comando termina con un errore e il file di prima resta com'era.\n";

std::string UscitaStampa(const AziendaCli& az, const std::string& uscita) {
  struct stat out{};
  if (!az.postgres && stat(uscita.c_str(), &out) == 0) {
    for (const char* parte : {"", "-wal", "-shm", "-journal"}) {
      struct stat f{};
      if (stat((az.file + parte).c_str(), &f) == 0 && f.st_dev == out.st_dev && f.st_ino == out.st_ino)
        throw ErroreComando("il file della stampa " + uscita + " è " +
                            (*parte ? std::string("un file di lavoro dell'azienda ") : std::string("l'azienda ")) +
                            az.file + ": indicare un altro file");
    }
  }
  try {
    VerificaUscitaStampa(uscita);
  } catch (const ErroreStampa& e) {
    throw ErroreComando(e.what());
  }
  return uscita;
}

int RighePagina(Argomenti& a, int predefinite, int minimo) {
  auto r = a.Opzione("--righe");
  if (!r) return predefinite;
  auto n = Valore(*r).ComeIntero();
  if (!n || *n < minimo || *n > 10000)
    throw ErroreUso("--righe vuole le righe di una pagina, testata e piede compresi, da " + std::to_string(minimo) +
                    " a 10000: " + *r);
  return static_cast<int>(*n);
}

int ValoreIntero(const std::string& nome, const std::string& valore, int minimo, int massimo) {
  std::string s = Trim(valore);
  auto n = Valore(s).ComeIntero();
  if (s.empty() || s.find_first_not_of("0123456789") != std::string::npos || !n || *n < minimo || *n > massimo)
    throw ErroreUso(nome + " vuole un numero intero da " + std::to_string(minimo) + " a " + std::to_string(massimo) +
                    ": " + valore);
  return static_cast<int>(*n);
}

int OpzioneIntera(Argomenti& a, const std::string& nome, int minimo, int massimo) {
  auto v = a.Opzione(nome);
  if (!v) throw ErroreUso("manca " + nome);
  return ValoreIntero(nome, *v, minimo, massimo);
}

int OpzioneInteraFacoltativa(Argomenti& a, const std::string& nome, int predefinito, int minimo, int massimo) {
  auto v = a.Opzione(nome);
  return v ? ValoreIntero(nome, *v, minimo, massimo) : predefinito;
}

namespace {

void Aiuto(std::ostream& out) {
  out << "vorn " << VORN_VERSION << ": il motore contabile da riga di comando.\n\n"
      << "Uso: vorn [--cartella DIR] [--si|--no] COMANDO [ARGOMENTI]\n\n"
      << "Comandi:\n";
  for (const auto& [nome, c] : Registro()) {
    std::string n = nome;
    n.resize(std::max<size_t>(22, n.size()), ' ');
    out << "  " << n << c.sintesi << "\n";
  }
  out << "\nOpzioni generali:\n"
      << "  --cartella DIR        cartella dell'applicazione (le stampe vanno in DIR/Temp);\n"
      << "                        predefinita: $VORN_CARTELLA, $XDG_DATA_HOME/vorn o ~/.local/share/vorn\n"
      << "  --si, --no            risposta alle domande in uso non interattivo\n"
      << "  --help, --version\n\n"
      << kUsoAzienda << "\nvorn COMANDO --help descrive ogni comando.\n";
}

// True when `parola` opens commands of two words ("stampa" of "stampa mastrini").
bool Gruppo(const std::string& parola) {
  for (const auto& [nome, c] : Registro())
    if (nome.rfind(parola + " ", 0) == 0) return true;
  return false;
}

void ElencoGruppo(std::ostream& out, const std::string& parola) {
  out << "Uso: vorn " << parola << " SCELTA [ARGOMENTI]\n\nScelte:\n";
  for (const auto& [nome, c] : Registro()) {
    if (nome.rfind(parola + " ", 0) != 0) continue;
    std::string n = nome.substr(parola.size() + 1);
    n.resize(std::max<size_t>(22, n.size()), ' ');
    out << "  " << n << c.sintesi << "\n";
  }
  out << "\nvorn " << parola << " SCELTA --help descrive ogni scelta.\n";
}

}  // namespace

int Esegui(const std::vector<std::string>& argv, std::ostream& out, std::FILE* err) {
  std::vector<std::string> args;
  std::optional<int> risposta;
  std::string cartella;
  bool aiuto = false;
  for (size_t i = 0; i < argv.size(); ++i) {
    const std::string& a = argv[i];
    if (a == "--si" || a == "--sì" || a == "--no") {
      int r = a == "--no" ? vbNo : vbYes;
      if (risposta && *risposta != r) {
        std::fprintf(err, "vorn: --si e --no insieme: indicarne uno solo (vorn --help)\n");
        return 2;
      }
      risposta = r;
    }
    else if (a == "--help" || a == "-h") aiuto = true;
    else if (a == "--cartella" && i + 1 < argv.size()) cartella = argv[++i];
    else if (a.rfind("--cartella=", 0) == 0) cartella = a.substr(11);
    else args.push_back(a);
  }
  if (!args.empty() && args[0] == "--version") {
    out << "vorn " << VORN_VERSION << "\n";
    return 0;
  }
  if (args.empty()) {
    Aiuto(out);
    return aiuto ? 0 : 2;
  }
  const Comando* cmd = nullptr;
  size_t consumati = 0;
  if (args.size() >= 2) {
    auto it = Registro().find(args[0] + " " + args[1]);
    if (it != Registro().end()) {
      cmd = &it->second;
      consumati = 2;
    }
  }
  if (!cmd) {
    auto it = Registro().find(args[0]);
    if (it != Registro().end()) {
      cmd = &it->second;
      consumati = 1;
    }
  }
  if (!cmd) {
    // A word that opens a group of commands ("stampa"): alone it lists the group.
    if (Gruppo(args[0])) {
      if (args.size() >= 2) {
        std::fprintf(err, "vorn %s: scelta sconosciuta: %s (vorn %s elenca le scelte)\n", args[0].c_str(),
                     args[1].c_str(), args[0].c_str());
        return 2;
      }
      ElencoGruppo(out, args[0]);
      return aiuto ? 0 : 2;
    }
    std::fprintf(err, "vorn: comando sconosciuto: %s (vorn --help elenca i comandi)\n", args[0].c_str());
    return 2;
  }
  if (aiuto) {
    out << "vorn " << cmd->nome << ": " << cmd->sintesi << "\n\n" << cmd->uso;
    return 0;
  }
  if (cartella.empty()) cartella = HostConsole::CartellaPredefinita();
  HostConsole host(cartella, risposta, err);
  FormConsole form(err);
  ImpostaHost(&host);
  Argomenti a(std::vector<std::string>(args.begin() + static_cast<long>(consumati), args.end()));
  Contesto ctx{a, host, form, out, cartella};
  int rc;
  try {
    rc = cmd->esegui(ctx);
  } catch (const ErroreUso& e) {
    form.Fine();
    std::fprintf(err, "vorn %s: %s (vorn %s --help)\n", cmd->nome.c_str(), UnaRigaErrore(e.what()).c_str(),
                 cmd->nome.c_str());
    rc = 2;
  } catch (const ErroreComando& e) {
    form.Fine();
    if (*e.what()) std::fprintf(err, "vorn %s: %s\n", cmd->nome.c_str(), UnaRigaErrore(e.what()).c_str());
    rc = 1;
  } catch (const DomandaSenzaRisposta& e) {
    form.Fine();
    std::fprintf(err, "vorn %s: %s\n", cmd->nome.c_str(), UnaRigaErrore(e.what()).c_str());
    rc = 1;
  } catch (const ErroreDb& e) {
    form.Fine();
    std::fprintf(err, "vorn %s: errore del database %ld: %s\n", cmd->nome.c_str(), e.Numero(),
                 UnaRigaErrore(e.Descrizione()).c_str());
    rc = 1;
  } catch (const std::exception& e) {
    form.Fine();
    std::fprintf(err, "vorn %s: %s\n", cmd->nome.c_str(), UnaRigaErrore(e.what()).c_str());
    rc = 1;
  }
  form.Fine();
  ChiudiCartellaTemp();
  ImpostaHost(nullptr);
  if (G().ConnessioneGlobale) G().ConnessioneGlobale.reset();
  return rc;
}

void ScriviTabella(std::ostream& out, const std::vector<std::pair<std::string, Allinea>>& testata,
                   const std::vector<std::vector<std::string>>& righe, const char* seVuota) {
  if (righe.empty() && seVuota) {
    out << seVuota << "\n";
    return;
  }
  std::vector<size_t> larghezza;
  for (const auto& [t, _] : testata) larghezza.push_back(LunghezzaTesto(t));
  for (const auto& r : righe)
    for (size_t i = 0; i < r.size() && i < larghezza.size(); ++i)
      larghezza[i] = std::max(larghezza[i], LunghezzaTesto(r[i]));
  auto riga = [&](const std::vector<std::string>& celle) {
    std::string s;
    for (size_t i = 0; i < celle.size() && i < larghezza.size(); ++i) {
      int l = static_cast<int>(larghezza[i]);
      if (i) s += ' ';
      if (testata[i].second == Allinea::Destra) {
        s += PadDestra(Valore(celle[i]), l);
      } else {
        // Left-aligned as given: an indent of the cell stays.
        s += celle[i] + std::string(static_cast<size_t>(l) - std::min(static_cast<size_t>(l), LunghezzaTesto(celle[i])), ' ');
      }
    }
    while (!s.empty() && s.back() == ' ') s.pop_back();
    out << s << '\n';
  };
  std::vector<std::string> titoli;
  for (const auto& [t, _] : testata) titoli.push_back(t);
  riga(titoli);
  for (const auto& r : righe) riga(r);
}

}  // namespace vorn::cli
