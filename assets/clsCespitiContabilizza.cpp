#include "assets/clsCespitiContabilizza.h"

#include <algorithm>
#include <map>

#include "assets/clsCespitiCategorie.h"
#include "frame/Comuni.h"
#include "frame/Formato.h"
#include "ledger/clsCausaliContabili.h"
#include "ledger/clsPrimaNota.h"
#include "receivables/clsElaboraFatture.h"

namespace vorn {

namespace {

constexpr const char* kNonContabilizzati =
    " FROM [CespitiMovimentiRighe] R INNER JOIN [CespitiMovimentiTestate] M ON M.[NumeroMovimento] = "
    "R.[NumeroMovimento] INNER JOIN [Causali Cespiti] K ON K.[Codice] = M.[CausaleCespiti] "
    "INNER JOIN [Cespiti] A ON A.[CodiceCespite] = R.[CodiceCespite] "
    "INNER JOIN [CespitiCategorie] G ON G.[CodiceCategoria] = A.[CodiceCategoria] "
    "WHERE K.[TipoMovimentazione] IN (11, 12) AND M.[DataCompetenza] >= ? AND M.[DataCompetenza] <= ? "
    "AND COALESCE(M.[NumeroRegistrazione], '') = ''";

Parametri Anno(int anno) { return {Valore(*Data::Crea(anno, 1, 1)), Valore(*Data::Crea(anno, 12, 31))}; }

std::string T(const Valore& v) { return Trim(v.Testo()); }

// The description of a sub-account; nullopt when it is not in the chart.
std::optional<std::string> DescrizioneSottoconto(Connessione& cn, const std::string& conto) {
  if (conto.empty()) return std::nullopt;
  auto rs = cn.Execute("SELECT [Descrizione] FROM [Descrizione sottoconti] WHERE [Sottoconto] = ?", {Valore(conto)});
  if (rs.Eof()) return std::nullopt;
  return T(rs.Fields(0).Value());
}

}  // namespace

bool clsCespitiContabilizza::LocalizzaAmmDaContab(std::vector<RigaAmmDaContab>& righe, int anno) {
  righe.clear();
  auto rs = cn->Execute(
      std::string("SELECT COALESCE(G.[indNatura], 0), G.[CodiceCategoria], G.[DescrizioneCategoria], "
                  "K.[TipoMovimentazione], G.[SottCostoAmmOrd], G.[SottFondoAmmOrd], G.[SottCostoAmmAnt], "
                  "G.[SottFondoAmmAnt], SUM(R.[ImportoMovimentoFisc]), COALESCE(M.[CodiceValuta], ''), "
                  "AVG(COALESCE(M.[Cambio], 1)), M.[DataCompetenza]") +
          kNonContabilizzati +
          " GROUP BY COALESCE(G.[indNatura], 0), G.[CodiceCategoria], G.[DescrizioneCategoria], "
          "K.[TipoMovimentazione], G.[SottCostoAmmOrd], G.[SottFondoAmmOrd], G.[SottCostoAmmAnt], G.[SottFondoAmmAnt], "
          "COALESCE(M.[CodiceValuta], ''), M.[DataCompetenza] "
          "ORDER BY COALESCE(G.[indNatura], 0), G.[CodiceCategoria], K.[TipoMovimentazione], M.[DataCompetenza]",
      Anno(anno));
  std::map<std::string, std::string> descrizioni;
  auto descrizione = [&](const std::string& conto) {
    auto it = descrizioni.find(conto);
    if (it == descrizioni.end())
      it = descrizioni.emplace(conto, DescrizioneSottoconto(*cn, conto).value_or("")).first;
    return it->second;
  };
  for (; !rs.Eof(); rs.MoveNext()) {
    RigaAmmDaContab r;
    r.IndNatura = NullToZeroLng(rs.Fields(0).Value());
    r.DesNatura = DescrizioneNatura(r.IndNatura);
    r.CodiceCategoria = T(rs.Fields(1).Value());
    r.DescrizioneCategoria = T(rs.Fields(2).Value());
    r.TipoMovimentazione = NullToZeroLng(rs.Fields(3).Value());
    const bool ordinario = r.TipoMovimentazione == 11;
    r.DesTipoAmm = ordinario ? "Ammort. Ordin." : "Ammort. Anticip.";
    r.CDare = T(rs.Fields(ordinario ? 4 : 6).Value());
    r.cAvere = T(rs.Fields(ordinario ? 5 : 7).Value());
    r.importo = Importo::DaDouble(NullToZeroDbl(rs.Fields(8).Value()));
    r.DesCDare = descrizione(r.CDare);
    r.DesCAvere = descrizione(r.cAvere);
    r.CodiceValuta = T(rs.Fields(9).Value());
    r.Cambio = NullToZeroDbl(rs.Fields(10).Value());
    if (r.Cambio == 0) r.Cambio = 1;
    r.DataReg = rs.Fields(11).Value().ComeData().value_or(Data());
    righe.push_back(std::move(r));
  }
  return !righe.empty();
}

bool clsCespitiContabilizza::LocalizzaAmmDaContabRiepilogoDate(std::vector<Data>& date, int anno) {
  date.clear();
  auto rs = cn->Execute(std::string("SELECT DISTINCT M.[DataCompetenza]") + kNonContabilizzati +
                            " ORDER BY M.[DataCompetenza]",
                        Anno(anno));
  for (; !rs.Eof(); rs.MoveNext())
    if (auto d = rs.Fields(0).Value().ComeData()) date.push_back(*d);
  return !date.empty();
}

int32_t clsCespitiContabilizza::GeneraScritturaPrimaNota(
    IForm* objFormAttiva, clsPrimaNota& objPrimaNota, clsCausaliContabili& objCausaliContabili,
    clsElaboraFatture& objElaboraFatture, const std::vector<RigaAmmDaContab>& vsMovimenti,
    int tipoMovimentiDiAmmDaContab, const Data& DataRegistrazione, const std::string& codiceCausaleAmmOrd,
    const std::string& codiceCausaleAmmAnt, int32_t& numeroRegistrazioneCreata, const Valore& clientID, long hWnd) {
  numeroRegistrazioneCreata = objPrimaNota.GetNumeroNuovaRegistrazionePrimaNota();
  const Valore data(DataRegistrazione);
  int32_t riga = 0, posteggiate = 0;
  for (const auto& r : vsMovimenti) {
    if (!(r.DataReg == DataRegistrazione) || r.TipoMovimentazione != tipoMovimentiDiAmmDaContab || r.importo.Zero())
      continue;
    for (const auto* conto : {&r.CDare, &r.cAvere})
      if (!DescrizioneSottoconto(*cn, *conto))
        throw ErroreDb(3265, "Categoria cespiti " + r.CodiceCategoria + ": il sottoconto " +
                                 (conto->empty() ? std::string("di ") + (conto == &r.CDare ? "costo" : "fondo") +
                                                       " non è indicato"
                                                 : *conto + " non esiste nel piano dei conti") +
                                 ", l'ammortamento non può essere contabilizzato.");
    const Valore causale(r.TipoMovimentazione == 11 ? codiceCausaleAmmOrd : codiceCausaleAmmAnt);
    if (objFormAttiva) objFormAttiva->msgbar("Contabilizzazione categoria: " + r.CodiceCategoria);
    const Valore descrizione(r.DescrizioneCategoria);
    for (const auto& [lato, conto] : {std::pair<const char*, const std::string*>{"D", &r.CDare}, {"A", &r.cAvere}})
      objElaboraFatture.ScriviRecordPrimaNota(objPrimaNota, objCausaliContabili, numeroRegistrazioneCreata, data, "",
                                              ++riga, lato, Valore(*conto), Valore(""), Valore(""), data, causale,
                                              descrizione, r.importo, Importo(), Valore(""), Valore(""), Valore(""),
                                              Valore("0"), Valore("00"), Valore::Null(), Valore(""), Valore(""),
                                              Importo(), Valore(r.CodiceValuta), r.Cambio, Valore(), Valore(0),
                                              Valore(""), Valore(), clientID, hWnd);
    ++posteggiate;
  }
  objPrimaNota.AggiornaProgressiviPrimaNota(Valore(Format(Valore(numeroRegistrazioneCreata), "00000")), data,
                                            Valore("0"), Valore("00"), Valore(""), Valore(""), Valore::Null(),
                                            Valore(0), clientID, hWnd);
  return posteggiate;
}

bool clsCespitiContabilizza::ContabilizzaAmmortamenti(int anno, const std::string& codiceCausaleAmmOrd,
                                                      const std::string& codiceCausaleAmmAnt,
                                                      EsitoContabilizzazioneCespiti& esito, IForm* objFormAttiva,
                                                      const Valore& clientID, long hWnd) {
  if (anno < 1900 || anno > 9999) throw ErroreDb(3265, "Anno non valido: " + std::to_string(anno));
  Connessione& db = *cn;
  clsPrimaNota primaNota;
  primaNota.cn = cn;
  clsCausaliContabili causali;
  causali.cn = cn;
  for (const auto* c : {&codiceCausaleAmmOrd, &codiceCausaleAmmAnt})
    if (Trim(*c).empty() || !causali.ExistCausaleContabile(Valore(Trim(*c))))
      throw ErroreDb(3265, "La causale contabile dell'ammortamento '" + Trim(*c) + "' non esiste.");
  clsElaboraFatture elabora;
  elabora.cn = cn;
  ConRiprova(db, [&] {
    esito = {};
    Atomico unita(db);
    std::vector<RigaAmmDaContab> griglia;
    std::vector<Data> date;
    LocalizzaAmmDaContab(griglia, anno);
    LocalizzaAmmDaContabRiepilogoDate(date, anno);
    for (const Data& data : date)
      for (int tipo : {11, 12}) {
        const bool daFare = std::any_of(griglia.begin(), griglia.end(), [&](const RigaAmmDaContab& r) {
          return r.DataReg == data && r.TipoMovimentazione == tipo && !r.importo.Zero();
        });
        if (!daFare) continue;
        int32_t numero = 0;
        esito.righe += GeneraScritturaPrimaNota(objFormAttiva, primaNota, causali, elabora, griglia, tipo, data,
                                                codiceCausaleAmmOrd, codiceCausaleAmmAnt, numero, clientID, hWnd);
        esito.registrazioni.push_back(numero);
        // The movements of the entry are marked with it; one that another user posted meanwhile
        // stops the run.
        const std::string testate =
            "SELECT M.[NumeroMovimento] FROM [CespitiMovimentiTestate] M INNER JOIN [Causali Cespiti] K ON "
            "K.[Codice] = M.[CausaleCespiti] WHERE K.[TipoMovimentazione] = ? AND M.[DataCompetenza] = ? AND "
            "COALESCE(M.[NumeroRegistrazione], '') = ''";
        const Parametri p{Valore(tipo), Valore(data)};
        const int64_t attese = NullToZeroLng(db.Scalare("SELECT COUNT(*) FROM (" + testate + ") X", p));
        Parametri pu{Valore(Format(Valore(numero), "00000"))};
        pu.insert(pu.end(), p.begin(), p.end());
        const int64_t marcate = db.Esegui(
            "UPDATE [CespitiMovimentiTestate] SET [NumeroRegistrazione] = ? WHERE [NumeroMovimento] IN (" + testate + ")",
            pu);
        if (marcate != attese || marcate == 0)
          throw ErroreDb(3197, "I movimenti di ammortamento del " + data.Testo() +
                                   " sono stati contabilizzati da un altro utente: nulla è stato registrato.");
      }
    if (esito.registrazioni.empty())
      esito.giaContabilizzato =
          NullToZeroLng(db.Scalare("SELECT COUNT(*) FROM [CespitiMovimentiTestate] M INNER JOIN [Causali Cespiti] K "
                                   "ON K.[Codice] = M.[CausaleCespiti] WHERE K.[TipoMovimentazione] IN (11, 12) AND "
                                   "M.[DataCompetenza] >= ? AND M.[DataCompetenza] <= ? AND "
                                   "COALESCE(M.[NumeroRegistrazione], '') <> ''",
                                   Anno(anno))) > 0;
    unita.Conferma();
  });
  if (objFormAttiva) objFormAttiva->msgbar("");
  return !esito.registrazioni.empty();
}

}  // namespace vorn
