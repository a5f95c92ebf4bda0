// Translation of outside codes into ours, by archive type, for the imports. The one archive
// type is the chart of accounts.
#pragma once
#include <string>

#include "masterdata/FamigliaAnagrafiche.h"

namespace vorn {

// A combo box of the client's form, which a build without a screen leaves alone.
class ICombo {
 public:
  virtual ~ICombo() = default;
  virtual void Clear() {}
  virtual void AddItem(const std::string&) {}
  // The number tied to the item last added.
  virtual void ItemData(long) {}
};

class clsTrascodifiche : public FamigliaAnagrafiche<clsTrascodifiche, 4, 0> {
 public:
  static const DefinizioneAnagrafica& Definizione();
  // The archive type of the chart of accounts.
  static constexpr int kTipoPianoDeiConti = 1;

  using FamigliaAnagrafiche::SalvaRecord;
  bool SalvaRecord(const Valore& IndClienteFornitore, const Valore& CodClienteFornitore, const Valore& TipoArchivio,
                   const Valore& CodiceEsterno, const Valore& CodiceInterno, const Valore& clientID, long hWnd,
                   bool& Cancel);

  // All the translations of one archive, by outside code, editable and left open in T.
  bool LocalizzaTuttiRecord(Recordset& T, const Valore& IndClienteFornitore, const Valore& CodClienteFornitore,
                            const Valore& TipoArchivio);
  bool CancellaTuttiRecord(const Valore& IndClienteFornitore, const Valore& CodClienteFornitore,
                           const Valore& TipoArchivio);
  // Our code for an outside code, or empty text.
  Valore GetCodiceInterno(const Valore& IndClienteFornitore, const Valore& CodClienteFornitore,
                          const Valore& TipoArchivio, const Valore& CodiceEsterno);
  bool ExistsTrascodifica(const Valore& IndClienteFornitore, const Valore& CodClienteFornitore,
                          const Valore& TipoArchivio, const Valore& CodiceEsterno);
  void LoadTipoTrascodificheInCombo(ICombo& Combo);
  // Deletes every translation.
  bool AzzeraTrascodifiche();
};

}  // namespace vorn
