#pragma once

#include <memory>
#include <string>
#include <vector>

class moxDataSource;

namespace mox::core {

/// The sources whose rows the definition computes its own from, as it names them, each once; also
/// those that nobody finds. None for one that asks the database or wires others, such as a group.
std::vector<std::string> inputNamesOf(moxDataSource const& source);

/// What the definition does with these rows, in words that follow its name: "groups by turma".
/// Empty for one that computes nothing.
std::string whatItDoes(moxDataSource const& source);

/// Whether it is run for what it changes in the database, and gives no rows.
bool changesData(moxDataSource const& source);

/// What keeps sources from computing their rows: inputs that are not among `sources`, and inputs
/// that give no rows. Sentences that name both.
std::vector<std::string> chainProblems(
    std::vector<std::shared_ptr<moxDataSource const>> const& sources);

}  // namespace mox::core
