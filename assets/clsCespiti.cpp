#include "assets/clsCespiti.h"

#include "assets/clsCespitiCategorie.h"
#include "frame/Comuni.h"

namespace vorn {

const DefinizioneAnagrafica& clsCespiti::Definizione() {
  static const DefinizioneAnagrafica d{
      "Cespiti",
      {{"CodiceCespite", TipoChiave::Testo}},
      "DescrizioneCespite",
      "Cespiti",
      {"DescrizioneCespite", "SerialNumber", "Ubicazione", "Riferimento", "CodiceCategoria", "CodiceCespiteCorr",
       "PercAmmOrdCiv", "PercAmmAntCiv", "PercAmmOrdFisc", "PercAmmAntFisc", "LimiteAmmortizzFisc", "percDeducFisc",
       "IndStato", "FlagUsato", "FlagManutenzioneContr", "FlagAmmIntegraleFisc", "Immagine"}};
  return d;
}

bool clsCespiti::LocalizzaMovimentiCespite(Recordset& T, const Valore& codiceCespite) {
  T = C().Execute(
      "SELECT R.[NumeroMovimento], R.[NumeroRiga], M.[DataCompetenza] AS DataComp, K.[Descrizione] AS DesCausale, "
      "M.[DataDocumento], M.[AnnoDocumento], M.[NumeroDocumento], M.[SerieDocumento], M.[IndClienteFornitore], "
      "CASE WHEN M.[IndClienteFornitore] = 'F' THEN F.[Ragione Sociale] WHEN M.[IndClienteFornitore] = 'C' "
      "THEN C.[Ragione Sociale] ELSE NULL END AS RagioneSociale, R.[ImportoMovimentoFisc] AS ValoreFiscale, "
      "R.[ImportoMovimentoCiv] AS ValoreCivile "
      "FROM [CespitiMovimentiRighe] R INNER JOIN [CespitiMovimentiTestate] M ON M.[NumeroMovimento] = "
      "R.[NumeroMovimento] LEFT JOIN [Causali Cespiti] K ON K.[Codice] = M.[CausaleCespiti] "
      "LEFT JOIN [Anagrafica Fornitori] F ON F.[Codice Cliente] = M.[CodClienteFornitore] "
      "LEFT JOIN [Anagrafica Clienti] C ON C.[Codice Cliente] = M.[CodClienteFornitore] "
      "WHERE R.[CodiceCespite] = ? ORDER BY M.[DataCompetenza], R.[NumeroMovimento], R.[NumeroRiga];",
      {Valore(Trim(codiceCespite.Testo()))});
  return !T.Eof();
}

bool clsCespiti::SalvaRecord(const Valore& codiceCespite, const Valore& DescrizioneCespite, const Valore& SerialNumber,
                             const Valore& Ubicazione, const Valore& Riferimento, const Valore& CodiceCategoria,
                             const Valore& CodiceCespiteCorr, const Valore& PercAmmOrdCiv, const Valore& PercAmmAntCiv,
                             const Valore& PercAmmOrdFisc, const Valore& PercAmmAntFisc,
                             const Valore& LimiteAmmortizzFisc, const Valore& percDeducFisc, const Valore& IndStato,
                             const Valore& FlagUsato, const Valore& FlagManutenzioneContr,
                             const Valore& FlagAmmIntegraleFisc, const Valore& Immagine, const Valore& clientID,
                             long hWnd, bool& Cancel) {
  return SalvaRecord(codiceCespite,
                     anagrafiche::Record(D().colonne, {DescrizioneCespite, SerialNumber, Ubicazione, Riferimento,
                                                       CodiceCategoria, CodiceCespiteCorr, PercAmmOrdCiv, PercAmmAntCiv,
                                                       PercAmmOrdFisc, PercAmmAntFisc, LimiteAmmortizzFisc,
                                                       percDeducFisc, IndStato, FlagUsato, FlagManutenzioneContr,
                                                       FlagAmmIntegraleFisc, Immagine}),
                     clientID, hWnd, Cancel);
}

bool clsCespiti::SalvaDaCategoria(const Valore& codiceCespite, const Valore& DescrizioneCespite,
                                  const Valore& CodiceCategoria, const Valore& clientID, long hWnd, bool& Cancel) {
  Cancel = false;
  clsCespitiCategorie categorie;
  categorie.cn = cn;
  Valore descrizione;
  int natura = 0;
  double ordFisc = 0, antFisc = 0, ordCiv = 0, antCiv = 0;
  std::string c1, c2, c3, c4;
  if (!categorie.GetParametriCategoria(CodiceCategoria, descrizione, natura, ordFisc, antFisc, ordCiv, antCiv, c1, c2,
                                       c3, c4))
    return false;
  return SalvaRecord(codiceCespite, DescrizioneCespite, Valore(""), Valore(""), Valore(""),
                     Valore(Trim(CodiceCategoria.Testo())), Valore(""), Valore(ordCiv), Valore(antCiv), Valore(ordFisc),
                     Valore(antFisc), Valore(0.0), Valore(0.0), Valore("0"), Valore("0"), Valore(false), Valore(false),
                     Valore(""), clientID, hWnd, Cancel);
}

int32_t clsCespiti::UpdateStato(const Valore& codiceCespite, const Valore& IndStato) {
  return static_cast<int32_t>(C().Esegui("UPDATE [Cespiti] SET [IndStato] = ? WHERE [Cespiti].[CodiceCespite] = ?;",
                                         {Valore(Trim(IndStato.Testo())), Valore(Trim(codiceCespite.Testo()))}));
}

Valore clsCespiti::GetDescrizioneCespite(const Valore& codiceCespite, bool* Cancel, IControllo* ControlloDaSelezionare) {
  return LeggiDescrizione({codiceCespite}, Cancel, ControlloDaSelezionare);
}

std::string clsCespiti::GetCategoriaCespite(const Valore& codiceCespite) {
  return Trim(LeggiValore({codiceCespite}, "CodiceCategoria", Valore(std::string())).Testo());
}

double clsCespiti::Numero(const Valore& codiceCespite, const char* colonna) {
  return NullToZeroDbl(LeggiValore({codiceCespite}, colonna, Valore(0.0)));
}

bool clsCespiti::Flag(const Valore& codiceCespite, const char* colonna) {
  return LeggiValore({codiceCespite}, colonna, Valore(false)).Vero();
}

}  // namespace vorn
