// What the library asks of the application that hosts it: message boxes, the hourglass, the
// application's folder and title, the date prompt, and the client's form that long runs
// report to. The library never writes to a terminal by itself.
#pragma once
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "frame/Data.h"

namespace vorn {

// Message box styles and answers, with the host's numbers.
enum StileMsg : int {
  vbOKOnly = 0,
  vbOKCancel = 1,
  vbAbortRetryIgnore = 2,
  vbYesNoCancel = 3,
  vbYesNo = 4,
  vbRetryCancel = 5,
  vbCritical = 16,
  vbQuestion = 32,
  vbExclamation = 48,
  vbInformation = 64,
};
enum RispostaMsg : int { vbOK = 1, vbCancel = 2, vbAbort = 3, vbRetry = 4, vbIgnore = 5, vbYes = 6, vbNo = 7 };

// True when the style asks a question (more than an OK button).
inline bool StileDomanda(int stile) { return (stile & 7) != vbOKOnly; }

class IHost {
 public:
  virtual ~IHost() = default;
  // Shows a message and returns the button chosen (vbOK for an OK-only box).
  virtual int MsgBox(const std::string& testo, int stile, const std::string& titolo) = 0;
  virtual void Beep() {}
  virtual void Clessidra(bool /*attiva*/) {}
  // The folder of the hosting application; reports go under its "/Temp".
  virtual std::string CartellaApplicazione() = 0;
  virtual std::string TitoloApplicazione() { return "Vorn XP"; }
  // The small modal date form: returns the date chosen, or nullopt when the user gives up.
  virtual std::optional<Data> ChiediData(const std::string& /*titolo*/, const Data& proposta) { return proposta; }
  // Opens a file for the user (a report just written).
  virtual void ApriFile(const std::string& /*percorso*/) {}
};

// The client's active form, to which long runs report.
class IForm {
 public:
  virtual ~IForm() = default;
  virtual void Caption(const std::string& /*testo*/) {}
  virtual void msgbar(const std::string& /*testo*/) {}
};

// A host for batch use: it records every message and answers each question with the
// configured answer (vbNo unless told otherwise), an OK-only box with vbOK.
class HostSilenzioso : public IHost {
 public:
  struct Messaggio {
    std::string testo;
    int stile;
    std::string titolo;
    int risposta;
  };
  explicit HostSilenzioso(std::string cartella = "/tmp/vorn", int risposta = vbNo)
      : cartella_(std::move(cartella)), risposta_(risposta) {}

  int MsgBox(const std::string& testo, int stile, const std::string& titolo) override;
  std::string CartellaApplicazione() override { return cartella_; }
  void ImpostaCartella(std::string c) { cartella_ = std::move(c); }
  void ImpostaRisposta(int r) { risposta_ = r; }
  const std::vector<Messaggio>& Messaggi() const { return messaggi_; }
  void Pulisci() { messaggi_.clear(); }

 protected:
  std::string cartella_;
  int risposta_;
  std::vector<Messaggio> messaggi_;
};

// The host of this process. Until the application sets one, a silent host answers.
IHost& Host();
// Sets the host of the process; nullptr goes back to the silent one. The caller keeps ownership.
void ImpostaHost(IHost* host);

// Shows the hourglass for a scope.
class Clessidra {
 public:
  Clessidra() { Host().Clessidra(true); }
  ~Clessidra() { Host().Clessidra(false); }
  Clessidra(const Clessidra&) = delete;
  Clessidra& operator=(const Clessidra&) = delete;
};

}  // namespace vorn
