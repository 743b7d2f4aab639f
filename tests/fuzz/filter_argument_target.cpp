#include <algorithm>
#include <string>
#include <vector>

#include "core/run/filter_argument.h"
#include "fuzz/promise.h"
#include "fuzz/targets.h"
#include "mox/zyn/filters/filter_specification.h"
#include "mox/zyn/sql/data_matrix_sql_filter.h"
#include "support/test_host.h"
#include "zyn/sql/value_recorder.h"

namespace mox::fuzz {

namespace {

struct Offered {
  char const* className;
  char const* table;
  char const* column;
};

// Every kind and form, tokens, an expression, one column with two forms, and one name in two
// tables.
constexpr Offered kOffered[] = {{"moxIntegralUniqueFilter", "t", "iu"},
                                {"moxIntegralRangeFilter", "t", "ir"},
                                {"moxIntegralInFilter", "t", "ii"},
                                {"moxDoubleUniqueFilter", "t", "du"},
                                {"moxDoubleRangeFilter", "t", "dr"},
                                {"moxDoubleInFilter", "t", "di"},
                                {"moxTextUniqueFilter", "t", "tu"},
                                {"moxTextRangeFilter", "t", "tr"},
                                {"moxTextInFilter", "t", "ti"},
                                {"moxTextUniqueFilter", "t", "tp"},
                                {"moxDateUniqueFilter", "t", "au"},
                                {"moxDateRangeFilter", "t", "ar"},
                                {"moxIntegralUniqueFilter", "", "{{mes}}"},
                                {"moxIntegralInFilter", "", "{{serie}}"},
                                {"moxIntegralUniqueSQLFilter", "", "select x from d"},
                                {"moxIntegralRangeFilter", "t", "id"},
                                {"moxIntegralInFilter", "t", "id"},
                                {"moxIntegralUniqueFilter", "t", "dup"},
                                {"moxIntegralUniqueFilter", "u", "dup"}};

std::vector<core::FilterOffer> offers(TestHost& host) {
  std::vector<core::FilterOffer> made;
  for (auto const& offered : kOffered) {
    auto const specification = host.get<moxFilterSpecification>(offered.className);
    specification->setTableName(offered.table);
    specification->setColumn(offered.column);
    if (std::string_view(offered.column).starts_with("select")) {
      specification->setDescription("Tem disciplina");
    }
    auto const text = std::dynamic_pointer_cast<moxTextFilterSpecification>(specification);
    if (text && std::string_view(offered.column) == "tp") {
      text->setRemovePunctuation(true);
    }
    made.push_back({"Fonte", specification});
  }
  return made;
}

/// What a condition may hold beside the column: marks, and the words and signs of its operators.
void checkText(std::string sql, std::string const& column, bool isToken) {
  if (isToken) {
    require(sql.empty(), "a token's value adds no condition");
    return;
  }
  auto const place = sql.find(column);
  require(place != std::string::npos, "a condition tests its column");
  sql.erase(place, column.size());
  require(sql.find_first_not_of(" .=<>?(),abdeiklnstwxu") == std::string::npos,
          "no byte of a value stands in the text");
}

}  // namespace

void readFilter(std::string_view bytes) {
  TestHost host;
  auto const offered = offers(host);
  std::string const text(bytes);
  core::FilterArgument argument;
  if (!accepted([&] { argument = core::readFilterArgument(text, offered); })) {
    return;
  }
  auto const column = argument.offer.specification->getColumn();
  auto const filter = core::makeSqlFilter(host.application(), argument);
  auto const sql = filter->getSql();
  bool const isToken = column.starts_with("{{");
  checkText(sql, column, isToken);
  auto const marks = static_cast<std::size_t>(std::count(sql.begin(), sql.end(), '?'));
  bool const isSubquery = column.starts_with("select");
  require(valuesOf(*filter).size() == (isToken || isSubquery ? 1 : marks),
          "every mark has its value");
  require(!accepted([&] {
    core::readFilterArguments({text, text}, offered);
  }),
          "no filter is taken twice");
}

}  // namespace mox::fuzz
