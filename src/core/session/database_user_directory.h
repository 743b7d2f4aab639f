#pragma once

#include <functional>
#include <string>

#include "core/session/user_directory.h"
#include "mox/core/database_connection.h"

namespace mox::core {

/// Users as the tables ambiente_usuarios, ambiente_usuariosunidades, ambiente_usuariosbibliotecas
/// and ambiente_unidades have them. Who does not work by units may work in every unit that there
/// is.
class DatabaseUserDirectory final : public UserDirectory {
 public:
  /// `connection` gives the calling thread's database, each time it is asked.
  explicit DatabaseUserDirectory(std::function<moxDatabaseConnection&()> connection)
      : connection_(std::move(connection)) {}

  User find(std::string const& login) const override;

 private:
  std::function<moxDatabaseConnection&()> const connection_;
};

}  // namespace mox::core
