// The arguments that name the test's company to a vorn command, on either engine.
#pragma once
#include <cstdio>
#include <cstdlib>
#include <sstream>
#include <string>
#include <vector>

#include "cli/Comandi.h"
#include "frame/Db.h"

namespace vorn::test {

// The SQLite file, or the PostgreSQL database, server, user and the test's own schema. The
// password goes through VORN_PG_PASSWORD (empty when the server wants none), so that the
// command never stops to ask for it on the terminal.
inline std::vector<std::string> ArgomentiAzienda(bool postgres, const std::string& file, const ParametriPostgres& pg) {
  if (!postgres) return {file};
  setenv("VORN_PG_PASSWORD", pg.password.c_str(), 1);
  std::vector<std::string> a = {"--pg-database", pg.database, "--pg-schema", pg.schema};
  if (!pg.host.empty()) {
    a.push_back("--pg-host");
    a.push_back(pg.port.empty() ? pg.host : pg.host + ":" + pg.port);
  }
  if (!pg.user.empty()) {
    a.push_back("--pg-user");
    a.push_back(pg.user);
  }
  return a;
}

// `vorn` followed by `comando` and the company's arguments, with the application folder.
inline std::vector<std::string> RigaComando(const std::string& cartella, const std::string& comando, bool postgres,
                                            const std::string& file, const ParametriPostgres& pg) {
  std::vector<std::string> a = {"--cartella", cartella, comando};
  for (auto& s : ArgomentiAzienda(postgres, file, pg)) a.push_back(std::move(s));
  return a;
}
// The same, followed by the command's own options.
inline std::vector<std::string> RigaComando(const std::string& cartella, const std::string& comando, bool postgres,
                                            const std::string& file, const ParametriPostgres& pg,
                                            const std::vector<std::string>& opzioni) {
  std::vector<std::string> a = RigaComando(cartella, comando, postgres, file, pg);
  a.insert(a.end(), opzioni.begin(), opzioni.end());
  return a;
}

// What a run of vorn gave: its exit code, what it printed and its messages.
struct EsitoComando {
  int rc = 0;
  std::string out, err;
};
// Runs vorn with `argv` (without the program's name), its messages into a file read back.
inline EsitoComando EseguiVorn(const std::vector<std::string>& argv) {
  std::ostringstream o;
  std::FILE* e = std::tmpfile();
  EsitoComando r;
  r.rc = cli::Esegui(argv, o, e);
  std::rewind(e);
  char buf[4096];
  size_t n;
  while ((n = std::fread(buf, 1, sizeof buf, e)) > 0) r.err.append(buf, n);
  std::fclose(e);
  r.out = o.str();
  return r;
}

}  // namespace vorn::test
