#include "ledger/VerificaSaldi.h"

#include <algorithm>
#include <array>
#include <map>
#include <stdexcept>
#include <tuple>

#include "frame/Comuni.h"
#include "frame/Formato.h"

namespace vorn {

namespace {

using Terna = std::array<Importo, 3>;  // opening, debit, credit of the year

// The operativity of each row's causal: "0" for a causal that has none, its trimmed text
// otherwise, Null for a causal that does not exist (which moves nothing).
const char* const kJournal =
    "FROM [Prima Nota] LEFT JOIN (SELECT COALESCE([CodiceCausale], '') AS [Cod], "
    "MIN(CASE WHEN [OperativitaContabile] IS NULL THEN '0' ELSE TRIM([OperativitaContabile]) END) AS [Op] "
    "FROM [Causali Contabili] GROUP BY COALESCE([CodiceCausale], '')) [Caus] "
    "ON [Caus].[Cod] = COALESCE(TRIM([Prima Nota].[CodiceCausale]), '') "
    "WHERE COALESCE(TRIM([Prima Nota].[ContoPrimaNota]), '') <> '' AND [Prima Nota].[ImportoMovimento] <> 0";

std::string Testo(const Valore& v) { return v.IsNull() ? std::string() : Trim(v.Testo()); }

Importo Amm(const Valore& v) { return NullToZeroCy(v); }

// Where a sum of one operativity and one side goes.
void Applica(Terna& t, const std::string& op, const std::string& lato, Importo somma) {
  if (op == "0" || op == "2") {
    if (lato == "D") t[1] += somma;
    else if (lato == "A") t[2] += somma;
  } else if (op == "1") {
    if (lato == "D") t[0] += somma;
    else if (lato == "A") t[0] -= somma;
  }
}

bool CodiceMosso(const std::string& codice) {
  try {
    return NullToZeroDbl(Valore(codice)) != 0;
  } catch (const std::exception&) {
    return true;
  }
}

void Confronta(std::vector<DifferenzaSaldo>& out, const std::string& archivio, const char* const colonne[3],
               const std::map<std::string, Terna>& registrati, const std::map<std::string, Terna>& attesi,
               bool conto) {
  std::map<std::string, std::pair<Terna, Terna>> tutti;
  for (const auto& [k, t] : registrati) tutti[k].first = t;
  for (const auto& [k, t] : attesi) tutti[k].second = t;
  for (const auto& [k, coppia] : tutti) {
    for (int i = 0; i < 3; ++i) {
      if (coppia.first[i] == coppia.second[i]) continue;
      std::string codice = k;
      if (conto) codice.erase(std::remove(codice.begin(), codice.end(), '\x1f'), codice.end());
      out.push_back({archivio, codice, colonne[i], coppia.first[i], coppia.second[i]});
    }
  }
}

}  // namespace

std::vector<DifferenzaSaldo> VerificaSaldi(Connessione& cn) {
  // Every read from one snapshot: a poster committing meanwhile shows no false difference.
  // Inside the caller's transaction the deferred balance movement is written first.
  cn.ScriviDifferiti();
  bool propria = cn.Livello() == 0 && !cn.InTransazione();
  if (propria) cn.IniziaLettura();
  struct Fine {
    Connessione& cn;
    bool propria;
    ~Fine() {
      if (propria) cn.FineLettura();
    }
  } fine{cn, propria};
  std::vector<DifferenzaSaldo> out;

  // Sub-accounts: the journal's code split into group (2), account (2) and sub-account (3).
  std::map<std::string, Terna> attesi, registrati;
  auto chiaveConto = [](const std::string& g, const std::string& c, const std::string& s) {
    return g + '\x1f' + c + '\x1f' + s;
  };
  cn.Scorri(std::string("SELECT TRIM([Prima Nota].[ContoPrimaNota]), [Caus].[Op], TRIM([Prima Nota].[DareAvere]), "
                        "SUM([Prima Nota].[ImportoMovimento]) ") +
                kJournal + " GROUP BY TRIM([Prima Nota].[ContoPrimaNota]), [Caus].[Op], TRIM([Prima Nota].[DareAvere])",
            {}, [&](const std::vector<Colonna>&, const std::vector<Valore>& r) {
              std::string conto = Testo(r[0]);
              std::string k = chiaveConto(MedioTesto(conto, 1, 2), MedioTesto(conto, 3, 2), MedioTesto(conto, 5, 3));
              Applica(attesi[k], Testo(r[1]), Testo(r[2]), Amm(r[3]));
              return true;
            });
  cn.Scorri("SELECT [CodiceGruppo], [CodiceConto], [CodiceSottoconto], [SaldoInizialePeriodo], [SaldoDarePeriodo], "
            "[SaldoAverePeriodo] FROM [Saldi Piano Dei Conti]",
            {}, [&](const std::vector<Colonna>&, const std::vector<Valore>& r) {
              Terna& t = registrati[chiaveConto(Testo(r[0]), Testo(r[1]), Testo(r[2]))];
              for (int i = 0; i < 3; ++i) t[i] += Amm(r[3 + i]);
              return true;
            });
  static const char* const colConti[3] = {"SaldoInizialePeriodo", "SaldoDarePeriodo", "SaldoAverePeriodo"};
  Confronta(out, "Saldi Piano Dei Conti", colConti, registrati, attesi, true);

  // Clients and suppliers: rows of a control account whose partner code reads as a number
  // other than zero.
  std::map<std::string, Terna> attesiCF[2], registratiCF[2];
  cn.Scorri(std::string("SELECT TRIM([Prima Nota].[IndClienteFornitore]), TRIM([Prima Nota].[CodClienteFornitore]), "
                        "[Caus].[Op], TRIM([Prima Nota].[DareAvere]), SUM([Prima Nota].[ImportoMovimento]) ") +
                kJournal +
                " AND TRIM([Prima Nota].[IndClienteFornitore]) IN ('C', 'F') GROUP BY "
                "TRIM([Prima Nota].[IndClienteFornitore]), TRIM([Prima Nota].[CodClienteFornitore]), [Caus].[Op], "
                "TRIM([Prima Nota].[DareAvere])",
            {}, [&](const std::vector<Colonna>&, const std::vector<Valore>& r) {
              std::string codice = Testo(r[1]);
              if (!CodiceMosso(codice)) return true;
              Applica(attesiCF[Testo(r[0]) == "C" ? 0 : 1][codice], Testo(r[2]), Testo(r[3]), Amm(r[4]));
              return true;
            });
  static const char* const tabelle[2] = {"Anagrafica Clienti", "Anagrafica Fornitori"};
  static const char* const colCF[3] = {"SaldoInizPeriodo", "SaldoDarePeriodo", "SaldoAverePeriodo"};
  for (int i = 0; i < 2; ++i) {
    cn.Scorri(std::string("SELECT [Codice Cliente], [SaldoInizPeriodo], [SaldoDarePeriodo], [SaldoAverePeriodo] FROM [") +
                  tabelle[i] + "]",
              {}, [&](const std::vector<Colonna>&, const std::vector<Valore>& r) {
                Terna& t = registratiCF[i][Testo(r[0])];
                for (int j = 0; j < 3; ++j) t[j] += Amm(r[1 + j]);
                return true;
              });
    Confronta(out, tabelle[i], colCF, registratiCF[i], attesiCF[i], false);
  }
  return out;
}

std::string DescriviDifferenza(const DifferenzaSaldo& d) {
  const char* maschera = "###,###,###,##0.00##";
  std::string codice = d.archivio == "Saldi Piano Dei Conti" ? Trim(FormattaConto(Valore(d.codice))) : d.codice;
  if (codice.empty()) codice = d.codice;
  return d.archivio + " " + codice + " " + d.colonna + ": registrato " + Format(Valore(d.registrato), maschera) +
         ", dalla prima nota " + Format(Valore(d.ricostruito), maschera);
}

}  // namespace vorn
