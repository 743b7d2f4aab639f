#pragma once

#include <functional>

#include "mox/core/datetime.h"

namespace mox::core {

/// Tells the civil moment that counts as now. Called from any thread, also from several at once.
using Clock = std::function<datetime_t()>;

/// Puts a clock in place of the current one; an empty function puts the system's local time back.
/// Safe from any thread: whoever asks for the time meanwhile gets it from the old clock or from the
/// new one.
void setClock(Clock clock);

/// The moment by the current clock, by default the system's local time.
datetime_t now();

}  // namespace mox::core
