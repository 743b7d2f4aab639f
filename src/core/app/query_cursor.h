#pragma once

#include <memory>

#include "mox/core/application.h"
#include "mox/core/database_connection.h"

namespace mox::core {

/// Rows of a statement that was executed already.
class QueryCursor final : public moxQueryCursor {
 public:
  explicit QueryCursor(std::shared_ptr<moxDatabaseConnection::PreparedStatement> statement)
      : statement_(std::move(statement)) {}

  bool step() override {
    hasRow_ = hasRow_ && statement_->fetch();
    return hasRow_;
  }

  int getInt(int columnIndex) const override { return statement_->getInt(columnIndex); }

 private:
  std::shared_ptr<moxDatabaseConnection::PreparedStatement> const statement_;
  bool hasRow_ = true;  // false from the end on: a statement must not be fetched again then
};

}  // namespace mox::core
