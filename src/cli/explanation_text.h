#pragma once

#include <string>

namespace mox::core {
struct Explanation;
}

namespace mox::cli {

/// The explanation for people: a text in UTF-8 whose lines hold no control characters, whatever
/// definitions, users and databases put into it.
std::string explanationText(core::Explanation const& explanation);

}  // namespace mox::cli
