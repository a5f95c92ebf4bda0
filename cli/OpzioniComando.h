// Dates and amounts of a command's options, as the user writes them.
#pragma once
#include <optional>
#include <string>

#include "cli/Comandi.h"
#include "frame/Comuni.h"
#include "frame/Data.h"
#include "frame/Importo.h"

namespace vorn::cli {

// A date GG/MM/AAAA; without the option, ErroreUso when required, else no date.
inline std::optional<Data> DataOpzioneFacoltativa(Argomenti& a, const std::string& nome, bool obbligatoria = false) {
  auto v = a.Opzione(nome);
  if (!v) {
    if (obbligatoria) throw ErroreUso("manca " + nome + " GG/MM/AAAA");
    return std::nullopt;
  }
  auto d = Data::DaTesto(Trim(*v));
  if (!d) throw ErroreUso("data non valida per " + nome + ": " + *v + " (GG/MM/AAAA)");
  return d;
}

// A date option as the library's date arguments take it: the date, or `senza` without the option.
inline Valore ValoreDataOpzione(Argomenti& a, const std::string& nome, const Valore& senza = Valore::Null()) {
  auto d = DataOpzioneFacoltativa(a, nome);
  return d ? Valore(*d) : senza;
}

// An amount: "1234,56", "1.234,56" or "1234.56"; without the option, none.
inline std::optional<Importo> ImportoOpzione(Argomenti& a, const std::string& nome) {
  auto v = a.Opzione(nome);
  if (!v) return std::nullopt;
  std::string t = Trim(*v), punto;
  const bool virgola = t.find(',') != std::string::npos;
  for (char c : t) {
    if (virgola && c == '.') continue;
    punto += c == ',' ? '.' : c;
  }
  auto i = Importo::DaTestoPunto(punto);
  if (!i) throw ErroreUso(nome + " vuole un importo (1234,56): " + *v);
  return *i;
}
// The same, 0 without the option.
inline Importo ImportoOpzioneFacoltativo(Argomenti& a, const std::string& nome) {
  return ImportoOpzione(a, nome).value_or(Importo());
}

}  // namespace vorn::cli
