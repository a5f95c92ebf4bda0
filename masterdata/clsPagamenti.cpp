#include "masterdata/clsPagamenti.h"

#include <array>

#include "frame/Comuni.h"

namespace vorn {

namespace {

struct TipoPagamento {
  const char* codice;
  const char* descrizione;
  const char* abbreviata;
};

constexpr std::array<TipoPagamento, 15> kTipi = {{
    {"RD", "Rimessa diretta", "Rim.Dir."},
    {"CO", "Contanti", "Contanti"},
    {"RB", "Ric.Bancaria", "Ric.Banc."},
    {"TR", "Tratta", "Tratta"},
    {"AB", "Avviso banc.", "Avv.Banc."},
    {"CE", "Cessioni", "Cessioni"},
    {"BO", "Bonifico", "Bonifico"},
    {"AC", "Assegno Cir.", "Ass.Cir."},
    {"CT", "Contrassegno", "Contras."},
    {"RI", "R.I.D.", "R.I.D."},
    {"AS", "Assegno banc.", "Ass.Banc."},
    {"CP", "Carta Pagam.", "Carta Pag."},
    {"GR", "Giroconto", "Giroconto"},
    {"TT", "Trattenute", "Trattenute"},
    {"PA", "PagoPA", "PagoPA"},
}};

const TipoPagamento* Trova(const Valore& tipo) {
  std::string t = TrimTesto(tipo);
  for (const auto& k : kTipi)
    if (t == k.codice) return &k;
  return nullptr;
}

}  // namespace

const DefinizioneAnagrafica& clsPagamenti::Definizione() {
  static const DefinizioneAnagrafica d{"Pagamenti",
                                       {{"Codice Pagamento"}},
                                       "Descrizione Pagamento",
                                       "Pagamenti",
                                       {"Descrizione Pagamento",
                                        "Tipo Pagamento",
                                        "Numero Rate",
                                        "Numero Giorni Inizio Scadenza",
                                        "Numero Giorni Inizio Scadenza 2",
                                        "Numero Giorni Inizio Scadenza 3",
                                        "Numero Giorni Inizio Scadenza 4",
                                        "Numero Giorni Inizio Scadenza 5",
                                        "Numero Giorni Inizio Scadenza 6",
                                        "Flag Inizio Scadenza",
                                        "Data Diversa Inizio",
                                        "Giorno Fisso",
                                        "Periodicità",
                                        "Flag prima rata",
                                        "Flag inizio scadenza prima rata",
                                        "Flag calcolo provvigioni",
                                        "Flag maturazione provvigioni",
                                        "Spese incasso",
                                        "Sconto pagamento",
                                        "Disattiva stampa scadenze",
                                        "GF Da Fine Mese"}};
  return d;
}

Valore clsPagamenti::GetDescrizionePagamento(const Valore& Codice_Pagamento, bool* Cancel,
                                             IControllo* ControlloDaSelezionare) {
  return LeggiDescrizione({Codice_Pagamento}, Cancel, ControlloDaSelezionare);
}

bool clsPagamenti::ExistCodicePagamento(const Valore& Codice_Pagamento) { return ExistCodice(Codice_Pagamento); }

Valore clsPagamenti::GetTipoPagamento(const Valore& Codice_Pagamento) {
  return LeggiValore({Codice_Pagamento}, "Tipo Pagamento", Valore(std::string()));
}

const std::vector<std::string>& clsPagamenti::TipiPagamento() {
  static const std::vector<std::string> v = [] {
    std::vector<std::string> r;
    for (const auto& k : kTipi) r.emplace_back(k.codice);
    return r;
  }();
  return v;
}

std::string clsPagamenti::GetDesTipoPagamento(const Valore& a_varTipo) {
  const auto* k = Trova(a_varTipo);
  return k ? k->descrizione : "";
}

std::string clsPagamenti::GetDesTipoPagamentoAbbreviato(const Valore& a_varTipo) {
  const auto* k = Trova(a_varTipo);
  return k ? k->abbreviata : "";
}

}  // namespace vorn
