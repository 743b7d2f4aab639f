#pragma once

#include <cstddef>
#include <string>

namespace bench {

/// What the command line says, and where run.sh has put the peers. Empty texts: not here.
struct BenchContext {
  std::size_t loadRows = 1'000'000;
  std::size_t sortRows = 10'000'000;
  std::size_t columnRows = 10'000'000;
  std::size_t indexRows = 1'000'000;
  std::size_t joinRows = 10'000'000;
  std::size_t tableRows = 10'000'000;
  std::size_t csvRows = 1'000'000;
  int rounds = 5;
  std::string workDirectory;  // for databases and files; exists
  std::string mariadbSocket;
  std::string duckdbLibrary;
  std::string python;  // an interpreter
  std::string pandasScript;
  std::string pandasGroupScript;
  std::string pandasJoinScript;
  std::string numexprScript;
  std::string node;
  std::string polarsScript;
  std::string polarsExpressionScript;
  std::string polarsGroupScript;
  std::string polarsJoinScript;
  std::string pandasTablesScript;
  std::string polarsTablesScript;
  std::string npmDirectory;  // where polars is installed
};

}  // namespace bench
