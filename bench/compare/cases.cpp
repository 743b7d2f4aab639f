#include "compare/cases.h"

namespace bench {

std::vector<Case> const& allCases() {
  static std::vector<Case> const cases = {
      {"load-sqlite", "six columns from SQLite", &loadFromSqliteCase},
      {"load-mariadb", "the same from a MariaDB server over a local socket", &loadFromMariadbCase},
      {"sort-numbers", "six columns by an integer and a double", &sortByNumbersCase},
      {"sort-text", "six columns by a text of ten bytes", &sortByCodeCase},
      {"append", "appending to a column, value by value", &appendCase},
      {"walk", "reading a column with a cursor", &walkCase},
      {"index", "building a key index and looking keys up", &indexCase},
      {"group-int", "sum, lowest and number by an integer", &groupByNumberCase},
      {"group-text", "the same by a text of ten bytes", &groupByTextCase},
      {"group-two", "the same by two integers", &groupByTwoNumbersCase},
      {"expression", "a column computed from three of doubles", &expressionCase},
      {"join", "sales with a table of their customers", &joinCase},
      {"pivot", "a cross table of a thousand keys and fifty headings", &pivotCase},
      {"union", "two tables of four columns, one below the other", &unionCase},
      {"csv", "six formatted columns written to a file", &csvCase},
  };
  return cases;
}

}  // namespace bench
