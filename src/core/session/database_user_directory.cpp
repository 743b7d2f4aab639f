#include "core/session/database_user_directory.h"

#include <functional>

#include <fmt/format.h>

#include "mox/core/error.h"

namespace mox::core {

namespace {

constexpr char const* kUser =
    "select id, login, nome, id_unidadepadrao, trabalha_por_unidades, aluno, ativo"
    " from ambiente_usuarios where login = ?";
constexpr char const* kOwnUnits =
    "select u.id, u.id_unidadematriz from ambiente_unidades u"
    " join ambiente_usuariosunidades uu on uu.id_unidade = u.id where uu.id_usuario = ? order by "
    "u.id";
constexpr char const* kAllUnits = "select id, id_unidadematriz from ambiente_unidades order by id";
constexpr char const* kUnit = "select id, id_unidadematriz from ambiente_unidades where id = ?";
constexpr char const* kLibraries =
    "select biblioteca from ambiente_usuariosbibliotecas where id_usuario = ?";

using Statement = moxDatabaseConnection::PreparedStatement;

[[noreturn]] void fail(std::string const& login, char const* what) {
  throw moxDefaultErrorImpl<moxError>(fmt::format("user '{}' {}", login, what));
}

/// Reads one user through the connection of the calling thread.
class UserReader {
 public:
  explicit UserReader(moxDatabaseConnection& connection) : connection_(connection) {}

  User read(std::string const& login) {
    User user = readUser(login);
    user.units = user.worksByUnits ? unitsOf(kOwnUnits, user.id) : allUnits();
    readLibraries(user);
    normalizeUnits(user, headOfficeOf(user.defaultUnit));
    return user;
  }

 private:
  // A database may compare texts without regard to case or accents: the row must be that of the
  // login itself.
  User readUser(std::string const& login) {
    auto const statement = connection_.prepare(kUser);
    statement->bindString(0, login);
    statement->execute();
    while (statement->fetch()) {
      if (statement->getString(1) == login) {
        return userOf(*statement, login);
      }
    }
    fail(login, "is not known");
  }

  static User userOf(Statement const& row, std::string const& login) {
    if (!row.getBool(6)) {
      fail(login, "is not active");
    }
    User user;
    user.id = row.getInt(0);
    user.login = login;
    user.name = row.isNull(2) ? login : std::string(row.getString(2));
    user.defaultUnit = row.getInt(3);
    user.worksByUnits = row.getBool(4);
    user.student = row.getBool(5);
    return user;
  }

  std::vector<UserUnit> allUnits() { return readUnits(*connection_.prepare(kAllUnits)); }

  std::vector<UserUnit> unitsOf(char const* sql, int key) {
    auto const statement = connection_.prepare(sql);
    statement->bindInt(0, key);
    return readUnits(*statement);
  }

  static std::vector<UserUnit> readUnits(Statement& statement) {
    std::vector<UserUnit> units;
    statement.execute();
    while (statement.fetch()) {
      units.push_back(unitOf(statement));
    }
    return units;
  }

  // A unit without a head office is one itself.
  static UserUnit unitOf(Statement const& row) {
    return {row.getInt(0), row.isNull(1) ? row.getInt(0) : row.getInt(1)};
  }

  int headOfficeOf(int unit) {
    auto const found = unit != 0 ? unitsOf(kUnit, unit) : std::vector<UserUnit>{};
    return found.empty() ? 0 : found.front().headOffice;
  }

  void readLibraries(User& user) {
    auto const statement = connection_.prepare(kLibraries);
    statement->bindInt(0, user.id);
    statement->execute();
    while (statement->fetch()) {
      user.libraries.emplace(statement->getString(0));
    }
  }

  moxDatabaseConnection& connection_;
};

}  // namespace

User DatabaseUserDirectory::find(std::string const& login) const {
  return UserReader(connection_()).read(login);
}

}  // namespace mox::core
