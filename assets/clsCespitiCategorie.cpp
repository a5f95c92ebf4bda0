#include "assets/clsCespitiCategorie.h"

#include "frame/Comuni.h"

namespace vorn {

std::string DescrizioneNatura(int64_t indNatura) { return indNatura == 0 ? "Materiale" : "Immateriale"; }

const DefinizioneAnagrafica& clsCespitiCategorie::Definizione() {
  static const DefinizioneAnagrafica d{
      "CespitiCategorie",
      {{"CodiceCategoria", TipoChiave::Testo}},
      "DescrizioneCategoria",
      "Categorie Cespiti",
      {"DescrizioneCategoria", "percAmmOrdFisc", "percAmmAntFisc", "PercAmmOrdCiv", "PercAmmAntCiv", "indNatura",
       "SottCostoAmmOrd", "SottFondoAmmOrd", "SottCostoAmmAnt", "SottFondoAmmAnt"}};
  return d;
}

bool clsCespitiCategorie::LocalizzaTuttiRecord(Recordset& T) {
  T = C().Execute("SELECT [CespitiCategorie].* FROM [CespitiCategorie] ORDER BY [CespitiCategorie].[CodiceCategoria];");
  return !T.Eof();
}

bool clsCespitiCategorie::SalvaRecord(const Valore& codiceCategoria, const Valore& DescrizioneCategoria,
                                      const Valore& percAmmOrdFisc, const Valore& percAmmAntFisc,
                                      const Valore& PercAmmOrdCiv, const Valore& PercAmmAntCiv,
                                      const Valore& indNatura, const Valore& SottCostoAmmOrd,
                                      const Valore& SottFondoAmmOrd, const Valore& SottCostoAmmAnt,
                                      const Valore& SottFondoAmmAnt, const Valore& clientID, long hWnd, bool& Cancel,
                                      bool NoPrompt) {
  return anagrafiche::Salva(C(), D(), {codiceCategoria},
                            anagrafiche::Record(D().colonne, {DescrizioneCategoria, percAmmOrdFisc, percAmmAntFisc,
                                                              PercAmmOrdCiv, PercAmmAntCiv, indNatura, SottCostoAmmOrd,
                                                              SottFondoAmmOrd, SottCostoAmmAnt, SottFondoAmmAnt}),
                            D().colonne, clientID, hWnd, Cancel, NoPrompt);
}

Valore clsCespitiCategorie::GetDescrizioneCategoria(const Valore& codiceCategoria, bool* Cancel,
                                                    IControllo* ControlloDaSelezionare) {
  return LeggiDescrizione({codiceCategoria}, Cancel, ControlloDaSelezionare);
}

bool clsCespitiCategorie::GetParametriCategoria(const Valore& codiceCategoria, Valore& DescrizioneCategoria,
                                                int& indNatura, double& percAmmOrdFisc, double& percAmmAntFisc,
                                                double& PercAmmOrdCiv, double& PercAmmAntCiv,
                                                std::string& SottCostoAmmOrd, std::string& SottFondoAmmOrd,
                                                std::string& SottCostoAmmAnt, std::string& SottFondoAmmAnt) {
  Parametri p;
  std::string w = anagrafiche::FiltroChiavi(D(), {codiceCategoria}, p);
  auto rs = C().Execute("SELECT [DescrizioneCategoria], [indNatura], [percAmmOrdFisc], [percAmmAntFisc], "
                        "[PercAmmOrdCiv], [PercAmmAntCiv], [SottCostoAmmOrd], [SottFondoAmmOrd], [SottCostoAmmAnt], "
                        "[SottFondoAmmAnt] FROM [CespitiCategorie] WHERE " + w + ";",
                        p);
  const bool trovato = !rs.Eof();
  auto campo = [&](int i) { return trovato ? rs.Fields(i).Value() : Valore::Null(); };
  DescrizioneCategoria = Valore(trovato ? Trim(campo(0).Testo()) : std::string());
  indNatura = NullToZeroLng(campo(1));
  percAmmOrdFisc = NullToZeroDbl(campo(2));
  percAmmAntFisc = NullToZeroDbl(campo(3));
  PercAmmOrdCiv = NullToZeroDbl(campo(4));
  PercAmmAntCiv = NullToZeroDbl(campo(5));
  SottCostoAmmOrd = Trim(campo(6).Testo());
  SottFondoAmmOrd = Trim(campo(7).Testo());
  SottCostoAmmAnt = Trim(campo(8).Testo());
  SottFondoAmmAnt = Trim(campo(9).Testo());
  return trovato;
}

bool clsCespitiCategorie::AzzeraCespitiCategorie() {
  C().Esegui("DELETE FROM [CespitiCategorie];");
  return true;
}

int clsCespitiCategorie::GetIndNatura(const Valore& codiceCategoria) {
  return NullToZeroLng(LeggiValore({codiceCategoria}, "indNatura", Valore(0)));
}

}  // namespace vorn
