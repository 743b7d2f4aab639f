#pragma once

#include <string>
#include <vector>

class moxDataSource;

namespace mox::core {

/// What in a group, and in the groups inside it, cannot work or has no effect: each as a sentence
/// that names group, member and what is missing. Empty for one that is sound, and for a definition
/// that is no group. Runs nothing, and throws nothing of what it finds.
std::vector<std::string> wiringProblems(moxDataSource const& definition);

}  // namespace mox::core
