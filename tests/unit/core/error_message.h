#pragma once

#include <string>

#include "mox/core/error.h"

namespace mox::test {

/// The message of the moxError that `action` throws; empty when it throws none.
template <class Action>
std::string errorMessageOf(Action action) {
  try {
    action();
  } catch (moxError const& error) {
    return error.errorMessage();
  }
  return {};
}

}  // namespace mox::test
