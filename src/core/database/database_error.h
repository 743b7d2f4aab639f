#pragma once

#include <string>
#include <utility>

#include "mox/core/error.h"

namespace mox::core {

/// A failure that a database reported, or that its line met. `code` is the database's own number as
/// text, empty when it gave none; `statement` becomes a detail when it is not empty.
class DatabaseError : public moxDefaultErrorImpl<moxError> {
 public:
  DatabaseError(std::string message, std::string code)
      : moxDefaultErrorImpl<moxError>(std::move(message)) {
    setErrorCode(std::move(code));
  }
  DatabaseError(std::string message, std::string code, std::string const& statement)
      : moxDefaultErrorImpl<moxError>(std::move(message), {statement}) {
    setErrorCode(std::move(code));
  }
};

}  // namespace mox::core
