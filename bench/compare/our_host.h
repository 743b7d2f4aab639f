#pragma once

#include <memory>
#include <string>

#include "compare/floor_table.h"
#include "core/app/application.h"
#include "core/session/session.h"
#include "mox/core/database_connection.h"
#include "mox/zyn/matrix/data_matrix.h"

namespace bench {

/// Ours as a program uses it: the framework with the module loaded from its file, a session, and
/// classes asked for by name. `databaseUrl` may be empty.
class OurHost {
 public:
  explicit OurHost(std::string const& databaseUrl);

  template <class T>
  std::shared_ptr<T> get(std::string const& name) {
    return application_.get<T>(name);
  }

  moxDatabaseConnection& database() { return application_.databaseConnection(); }

  /// A matrix with the table's rows, filled through the published interface.
  std::shared_ptr<moxDataMatrix> matrixOf(FloorTable const& table);

 private:
  mox::core::Application application_;
  std::shared_ptr<mox::core::Session> session_;
  mox::core::SessionScope scope_;
};

/// Throws std::runtime_error naming the first cell that differs.
void requireEqual(FloorTable const& expected, moxDataMatrix& found);

}  // namespace bench
