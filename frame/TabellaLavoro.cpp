#include "frame/TabellaLavoro.h"

#include <cstdio>
#include <functional>

#include "frame/Catalogo.h"

namespace vorn {

namespace {

void VerificaPrefisso(const std::string& p) {
  bool ok = !p.empty() && p.size() <= 30 &&
            ((p[0] >= 'A' && p[0] <= 'Z') || (p[0] >= 'a' && p[0] <= 'z') || p[0] == '_');
  for (char c : p)
    ok = ok && ((c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '_');
  if (!ok)
    throw ErroreDb(3265, "Prefisso di tabella di lavoro non valido: '" + p +
                             "' (lettere, cifre e trattini bassi, una lettera o un trattino basso per primo, al più 30 caratteri).");
}

std::string TipoColonna(const Connessione& cn, const ColonnaLavoro& c) {
  if ((c.tipo == TipoCampo::Testo || c.tipo == TipoCampo::Memo) && c.larghezza > 0) {
    std::string tipo = "VARCHAR(" + std::to_string(c.larghezza) + ")";
    // SQLite does not enforce a declared width: a check does, as PostgreSQL would.
    if (!cn.IsPostgres())
      tipo += " CHECK (length([" + c.nome + "]) <= " + std::to_string(c.larghezza) + ")";
    return tipo;
  }
  return TipoSql(c.tipo);
}

}  // namespace

TabellaLavoro::TabellaLavoro(Connessione& cn, const std::string& prefisso, const std::string& nome,
                             std::vector<ColonnaLavoro> colonne)
    : cn_(cn), colonne_(std::move(colonne)) {
  VerificaPrefisso(prefisso);
  VerificaNome(nome);
  nome_ = prefisso + nome;
  Verifica();
}

TabellaLavoro::TabellaLavoro(Connessione& cn, NomeFisso, const std::string& nome, std::vector<ColonnaLavoro> colonne)
    : cn_(cn), nome_(nome), colonne_(std::move(colonne)) {
  Verifica();
}

void TabellaLavoro::Verifica() {
  VerificaNome(nome_);
  // PostgreSQL cuts longer names, and two tables could then meet under one: refused on both
  // engines alike.
  if (nome_.size() > 63)
    throw ErroreDb(3265, "Nome di tabella di lavoro troppo lungo (al più 63 byte): '" + nome_ + "'");
  if (TabellaCatalogoDi(nome_))
    throw ErroreDb(3265, "'" + nome_ + "' è un archivio dell'azienda: non può essere una tabella di lavoro.");
  if (colonne_.empty()) throw ErroreDb(3265, "Tabella di lavoro senza colonne: " + nome_);
  for (const auto& c : colonne_) VerificaNome(c.nome, "colonna");
}

std::string TabellaLavoro::SqlCrea() const {
  std::string sql = "CREATE TABLE [" + nome_ + "] (";
  for (size_t i = 0; i < colonne_.size(); ++i)
    sql += (i ? ", [" : "[") + colonne_[i].nome + "] " + TipoColonna(cn_, colonne_[i]);
  return sql + ")";
}

void TabellaLavoro::Crea() {
  Atomico a(cn_);
  cn_.Esegui("DROP TABLE IF EXISTS [" + nome_ + "]");
  cn_.Esegui(SqlCrea());
  a.Conferma();
  cn_.DimenticaSchema();
}

int64_t TabellaLavoro::Riempi(std::string_view select, const Parametri& p) {
  std::string cols;
  for (const auto& c : colonne_) cols += (cols.empty() ? "[" : ", [") + c.nome + "]";
  return cn_.Esegui("INSERT INTO [" + nome_ + "] (" + cols + ") " + std::string(select), p);
}

void TabellaLavoro::CreaIndice(const std::vector<std::string>& colonne) {
  std::string cols;
  for (const auto& c : colonne) {
    VerificaNome(c, "colonna");
    cols += (cols.empty() ? "[" : ", [") + c + "]";
  }
  // The index is named after the table (a digest of its name, short on every engine), so that
  // it goes with it.
  char cifre[17];
  std::snprintf(cifre, sizeof cifre, "%016llx", static_cast<unsigned long long>(std::hash<std::string>{}(nome_)));
  std::string indice = std::string("ix_") + cifre;
  VerificaNome(indice);
  cn_.Esegui("CREATE INDEX [" + indice + "] ON [" + nome_ + "] (" + cols + ")");
}

void TabellaLavoro::Elimina() {
  cn_.Esegui("DROP TABLE IF EXISTS [" + nome_ + "]");
  cn_.DimenticaSchema();
}

}  // namespace vorn
