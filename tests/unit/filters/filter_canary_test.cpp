#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>

#include "mox/zyn/sql/data_matrix_sql_in_filters.h"
#include "mox/zyn/sql/data_matrix_sql_range_filters.h"
#include "mox/zyn/sql/data_matrix_sql_unique_filters.h"
#include "unit/filters/filters_fixture.h"
#include "unit/sql/filter_binds.h"

namespace mox_test {

namespace {

// Whatever a text could open, close or name in a statement. The blank and the letters hold no
// secret, so that the values below are recognised by the marks.
constexpr std::string_view kCanary =
    R"(o'canary" or 1=1; -- /* # {{p_idUsuario}} [x] @ ? \ ` */ drop)";
constexpr std::string_view kOtherCanary = R"(z'canary"; {{p}} ? --)";

/// Values of one kind as numbers, days and texts that a statement would be seen to hold.
struct Values {
  int whole;
  double number;
  date_t day;
  std::string text;
};

Values const kHarmless = {1, 1.5, date_t(1, 1, 2001), "a"};
Values const kHarmlessToo = {2, 2.5, date_t(2, 1, 2001), "b"};
Values const kHostile = {74123687, 8312.40625, date_t(23, 7, 1987), std::string(kCanary)};
Values const kHostileToo = {74123688, 8313.40625, date_t(24, 7, 1987), std::string(kOtherCanary)};

/// Gives a filter its value, or a range its bounds, or a list its values.
using Fill = std::function<void(moxDataMatrixSQLFilter&, Values const&, Values const&)>;

template <class Filter, class Value>
Fill unique(Value Values::*member) {
  return [member](moxDataMatrixSQLFilter& filter, Values const& value, Values const&) {
    dynamic_cast<Filter&>(filter).setValue(value.*member);
  };
}

template <class Filter, class Value>
Fill range(Value Values::*member) {
  return [member](moxDataMatrixSQLFilter& filter, Values const& low, Values const& high) {
    auto& typed = dynamic_cast<Filter&>(filter);
    if constexpr (std::is_same_v<Value, date_t>) {
      typed.setMin(low.*member);
      typed.setMax(high.*member);
    } else {
      typed.setMin(low.*member, true);
      typed.setMax(high.*member, true);
    }
  };
}

template <class Filter, class Value>
Fill list(Value Values::*member) {
  return [member](moxDataMatrixSQLFilter& filter, Values const& one, Values const& other) {
    auto& typed = dynamic_cast<Filter&>(filter);
    typed.pushVal(one.*member);
    typed.pushVal(other.*member);
  };
}

std::map<std::string, Fill> const& fills() {
  static std::map<std::string, Fill> const all = {
      {"moxIntegralUniqueFilter", unique<moxDataMatrixSQLIntegerUniqueFilter>(&Values::whole)},
      {"moxIntegralUniqueSQLFilter",
       unique<moxDataMatrixSQLIntegerUniqueSQLFilter>(&Values::whole)},
      {"moxIntegralRangeFilter", range<moxDataMatrixSQLIntegerRangeFilter>(&Values::whole)},
      {"moxIntegralInFilter", list<moxDataMatrixSQLIntegerInFilter>(&Values::whole)},
      {"moxDoubleUniqueFilter", unique<moxDataMatrixSQLDoubleUniqueFilter>(&Values::number)},
      {"moxDoubleRangeFilter", range<moxDataMatrixSQLDoubleRangeFilter>(&Values::number)},
      {"moxDoubleInFilter", list<moxDataMatrixSQLDoubleInFilter>(&Values::number)},
      {"moxTextUniqueFilter", unique<moxDataMatrixSQLTextUniqueFilter>(&Values::text)},
      {"moxTextRangeFilter", range<moxDataMatrixSQLTextRangeFilter>(&Values::text)},
      {"moxTextInFilter", list<moxDataMatrixSQLTextInFilter>(&Values::text)},
      {"moxDateUniqueFilter", unique<moxDataMatrixSQLDateUniqueFilter>(&Values::day)},
      {"moxDateRangeFilter", range<moxDataMatrixSQLDateRangeFilter>(&Values::day)}};
  return all;
}

/// What FakeDatabase::binds says of the hostile values of a kind, without the position.
std::string bindText(moxDataMatrixTypes::Types type, Values const& values) {
  switch (type) {
    case moxDataMatrixTypes::Int:
      return "int " + std::to_string(values.whole);
    case moxDataMatrixTypes::Double:
      return values.number == kHostile.number ? "double 8312.40625" : "double 8313.40625";
    case moxDataMatrixTypes::Date:
      return values.day == kHostile.day ? "date 1987-07-23" : "date 1987-07-24";
    default:
      return "text " + values.text;
  }
}

}  // namespace

/// Values that a user gives never become a part of a statement's text.
class FilterCanary : public FiltersFixture, public testing::WithParamInterface<FilterRow> {
 protected:
  std::shared_ptr<moxDataMatrixSQLFilter> filled(std::string const& column, Values const& one,
                                                 Values const& other) {
    auto const spec = specification(GetParam().registeredName);
    spec->setTableName("m");
    spec->setColumn(column);
    auto filter = spec->createFilter();
    fills().at(GetParam().registeredName)(*filter, one, other);
    return filter;
  }
};

INSTANTIATE_TEST_SUITE_P(All, FilterCanary, testing::ValuesIn(filterRows()), nameOfRow);

TEST_P(FilterCanary, TheTextHoldsNothingOfTheValues) {
  for (std::string const column : {"valor", "coalesce(m.valor, 0) @", "{{p_valor}}"}) {
    auto const sql = filled(column, kHostile, kHostileToo)->getSql();
    for (std::string_view const piece :
         {"canary", "'", "\"", ";", "--",   "/*",          "*/",      "#",   "{",      "}",
          "[",      "]", "\\", "`", "drop", "p_idUsuario", "7412368", "831", ".40625", "1987"}) {
      // A kind for which the mark is no mark of the statement tests a column of that name.
      bool const ofTheColumn = column.find(piece) != std::string::npos;
      EXPECT_TRUE(ofTheColumn || sql.find(piece) == std::string::npos) << piece << " in " << sql;
    }
  }
}

TEST_P(FilterCanary, TheTextIsTheSameForAnyValues) {
  for (std::string const column : {"valor", "coalesce(m.valor, 0) @", "{{p_valor}}"}) {
    EXPECT_EQ(filled(column, kHostile, kHostileToo)->getSql(),
              filled(column, kHarmless, kHarmlessToo)->getSql())
        << column;
  }
}

TEST_P(FilterCanary, TheValuesAreBoundAsTheyAre) {
  bool const single = GetParam().bindCount == 1;
  auto const type = GetParam().type;
  Binds expected = {"0: " + bindText(type, kHostile)};
  if (!single) {
    expected.push_back("1: " + bindText(type, kHostileToo));
  }
  expected.push_back(single ? "counter 1" : "counter 2");
  EXPECT_EQ(bindsOf(*filled("valor", kHostile, kHostileToo)), expected);
}

}  // namespace mox_test
