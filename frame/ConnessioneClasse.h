// The connection of a record class. The client assigns it (`obj.cn = connessione`) before the
// first call; a class used without it throws ErroreDb with one clear text instead of following
// a null pointer. Every class keeps its `cn` in this type, so that the check is one.
#pragma once
#include <cstddef>
#include <memory>
#include <utility>

#include "frame/Db.h"

namespace vorn {

// The connection held in `cn`, or ErroreDb 3709 "La connessione non è stata assegnata alla
// classe (cn)." when there is none.
Connessione& ConnessioneAssegnata(const std::shared_ptr<Connessione>& cn);

class ConnessioneClasse {
 public:
  ConnessioneClasse() = default;
  ConnessioneClasse(std::nullptr_t) {}
  ConnessioneClasse(std::shared_ptr<Connessione> c) : c_(std::move(c)) {}
  ConnessioneClasse& operator=(std::shared_ptr<Connessione> c) {
    c_ = std::move(c);
    return *this;
  }

  Connessione* operator->() const { return &ConnessioneAssegnata(c_); }
  Connessione& operator*() const { return ConnessioneAssegnata(c_); }
  explicit operator bool() const { return static_cast<bool>(c_); }
  bool operator==(std::nullptr_t) const { return !c_; }
  // What is held, possibly nothing: for handing the connection on to another class.
  operator const std::shared_ptr<Connessione>&() const { return c_; }
  Connessione* get() const { return c_.get(); }
  void reset() { c_.reset(); }

 private:
  std::shared_ptr<Connessione> c_;
};

}  // namespace vorn
