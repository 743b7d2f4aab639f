// The statement that a load would send, put together without a database: equal to the one that the
// database then gets.

#include <stdexcept>
#include <string>

#include "mox/core/error.h"
#include "mox/zyn/sql/composed_select.h"
#include "unit/sql/loader_fixture.h"
#include "zyn/sql/data_matrix_sql_range_filters.h"

namespace mox_test {

namespace {

using Type = moxBoundValue::Type;

char const* nameOf(Type type) {
  switch (type) {
    case Type::kNull:
      return "null";
    case Type::kInt:
      return "int ";
    case Type::kDouble:
      return "double ";
    case Type::kText:
      return "text ";
    case Type::kDate:
      return "date ";
    case Type::kDateTime:
      return "datetime ";
    case Type::kBlob:
      return "blob ";
  }
  return "";
}

class LoaderComposeTest : public LoaderTest {
 protected:
  /// The values in the words of FakeDatabase::binds.
  static Texts bindsOf(moxComposedSelect const& composed) {
    Texts binds;
    for (auto const* const part : {&composed.parameters, &composed.conditions}) {
      for (auto const& filter : *part) {
        for (auto const& value : filter.values) {
          binds.push_back(std::to_string(binds.size()) + ": " + nameOf(value.type) + value.text);
        }
      }
    }
    return binds;
  }

  static Texts conditionsOf(moxComposedSelect const& composed) {
    Texts conditions;
    for (auto const& filter : composed.conditions) {
      conditions.push_back(filter.sql);
    }
    return conditions;
  }

  /// Composes, checks that nothing was asked of the database and nothing changed, executes, and
  /// compares with what the database got.
  moxComposedSelect composeAndExecute(std::vector<int> const& units, int matrixUnit) {
    auto const filters = loader_.getFilters();
    auto const statements = database_.preparedTexts().size();
    auto composed = loader_.compose(units, matrixUnit);
    EXPECT_EQ(database_.preparedTexts().size(), statements);
    EXPECT_EQ(loader_.getFilters(), filters);
    loader_.execute(units, matrixUnit);
    EXPECT_EQ(composed.sql, database_.preparedTexts().back());
    EXPECT_EQ(bindsOf(composed), database_.binds());
    return composed;
  }

  std::shared_ptr<DataMatrixSQLDateRangeFilter> between(std::string const& column,
                                                        date_t const& from, date_t const& to) {
    auto filter = std::make_shared<DataMatrixSQLDateRangeFilter>();
    filter->setColumnName("t", column);
    filter->setMin(from);
    filter->setMax(to);
    return filter;
  }
};

TEST_F(LoaderComposeTest, PlainStatement) {
  loader_.setSql("select 1", kNoUnitColumn, "", false);
  auto const composed = composeAndExecute({}, 0);
  EXPECT_EQ(composed.sql, "select 1");
  EXPECT_TRUE(composed.parameters.empty());
  EXPECT_TRUE(composed.conditions.empty());
}

TEST_F(LoaderComposeTest, StatementWithEverything) {
  loader_.setPrefixSufix("set x = 1;", "; drop y");
  loader_.setSql("select ? from t", "inner join u", " group by t.a", {"t", "id_unidade"}, "and",
                 true);
  loader_.addOrderColumn("t", "a", true);
  loader_.addParameter(equals("{{p}}", 4));
  auto const name = std::make_shared<DataMatrixSQLTextUniqueFilter>();
  name->setColumnName("t", "name");
  name->setValue("d'Ávila -- {{");
  auto const share = std::make_shared<DataMatrixSQLDoubleUniqueFilter>();
  share->setColumnName("t", "share");
  share->setValue(2.5);
  loader_.addFilter(name);
  loader_.addFilter(share);
  loader_.addFilter(between("day", date_t(1, 2, 2024), date_t(5, 3, 2024)));
  loader_.addFilter(among("t", "a", {8, 7}));
  auto const composed = composeAndExecute({3, 1}, 9);
  EXPECT_EQ(composed.sql.find("Ávila"), std::string::npos);
  EXPECT_EQ(bindsOf(composed),
            (Texts{"0: int 4", "1: text d'Ávila -- {{", "2: double 2.5", "3: date 2024-02-01",
                   "4: date 2024-03-05", "5: int 7", "6: int 8", "7: int 1", "8: int 3"}));
}

TEST_F(LoaderComposeTest, PartsAreTiedToTheirFilters) {
  loader_.setSql("select ? from t", kNoUnitColumn, "", false);
  auto const parameter = equals("{{p}}", 4);
  auto const filter = equals("a", 5);
  loader_.addParameter(parameter);
  loader_.addFilter(filter);
  auto const composed = composeAndExecute({}, 0);
  ASSERT_EQ(composed.parameters.size(), 1u);
  EXPECT_EQ(composed.parameters[0].filter, parameter);
  EXPECT_EQ(composed.parameters[0].sql, "");
  ASSERT_EQ(composed.conditions.size(), 1u);
  EXPECT_EQ(composed.conditions[0].filter, filter);
  EXPECT_EQ(composed.conditions[0].sql, filter->getSql());
}

TEST_F(LoaderComposeTest, OneParameterForTwoMarks) {
  loader_.setSql("select ?, ?", kNoUnitColumn, "", false);
  auto const parameter = equals("{{p}}", 4);
  loader_.addParameter(parameter);
  loader_.addParameter(parameter);
  EXPECT_EQ(composeAndExecute({}, 0).parameters.size(), 2u);
}

TEST_F(LoaderComposeTest, ParameterThatNobodyGaveIsANull) {
  loader_.setSql("select ?", kNoUnitColumn, "", false);
  auto const parameter = equals("{{p}}", 4);
  parameter->setNull();
  loader_.addParameter(parameter);
  EXPECT_EQ(bindsOf(composeAndExecute({}, 0)), Texts{"0: null"});
}

TEST_F(LoaderComposeTest, UnitRestrictionComesLastAndIsNotKept) {
  loader_.setSql("select a from t", {"t", "id_unidade"}, "", false);
  loader_.addFilter(equals("a", 5));
  auto const composed = loader_.compose({4, 3}, 9);
  EXPECT_EQ(conditionsOf(composed), (Texts{"a = ? ", " ( t.id_unidade in (?,?)  ) "}));
  EXPECT_NE(composed.conditions.back().filter, nullptr);
  EXPECT_EQ(loader_.getFilters().size(), 1u);
  EXPECT_EQ(conditionsOf(loader_.compose({7}, 9)), (Texts{"a = ? ", " ( t.id_unidade in (?)  ) "}));
}

TEST_F(LoaderComposeTest, HeadOfficeColumnTakesTheHeadOffice) {
  loader_.setSql("select a from t", {"t", "id_unidadematriz"}, "", false);
  EXPECT_EQ(bindsOf(composeAndExecute({4, 3}, 9)), Texts{"0: int 9"});
}

TEST_F(LoaderComposeTest, NoUnitsLetNothingPass) {
  loader_.setSql("select a from t", {"t", "id_unidade"}, "", true);
  EXPECT_EQ(composeAndExecute({}, 0).sql, "select a from t  where 1=0");
}

TEST_F(LoaderComposeTest, CallersOwnUnitFilterStandsAlone) {
  loader_.setSql("select a from t", {"t", "id_unidade"}, "", false);
  loader_.addFilter(among("t", "id_unidade", {8}));
  EXPECT_EQ(conditionsOf(composeAndExecute({3}, 1)), Texts{"t.id_unidade in (?)"});
}

TEST_F(LoaderComposeTest, AfterARunItTellsTheStatementOfTheNextOne) {
  loader_.setSql("select a from t", {"t", "id_unidade"}, "", false);
  composeAndExecute({3}, 1);
  EXPECT_EQ(bindsOf(composeAndExecute({4}, 1)), Texts{"0: int 3"});
}

TEST_F(LoaderComposeTest, RefusesWhatExecuteRefuses) {
  loader_.setSql("select a from t", {"t", "id_unidade"}, "", false);
  mox::core::User user;
  user.id = 7;
  user.units = {{3, 1}};
  user.worksByUnits = true;
  host_.logIn(user);
  auto const messageFor = [&](std::vector<int> const& units, int matrixUnit) -> std::string {
    try {
      loader_.compose(units, matrixUnit);
    } catch (moxError const& error) {
      return error.errorMessage();
    }
    return "no failure";
  };
  EXPECT_EQ(messageFor({}, 1), "Não foram identificadas unidades para processamento");
  EXPECT_EQ(messageFor({3}, 0), "Não foi identificado a unidade matriz para processamento");
  EXPECT_EQ(messageFor({3}, 1), "no failure");
  loader_.setDataMatrix(nullptr);
  EXPECT_THROW(loader_.compose({3}, 1), std::logic_error);
}

TEST_F(LoaderComposeTest, NeedsNoDatabase) {
  loader_.setDBConnection(nullptr);
  loader_.setSql("select a from t", kNoUnitColumn, "", false);
  EXPECT_EQ(loader_.compose({}, 0).sql, "select a from t");
}

TEST_F(LoaderComposeTest, IsASecondFaceOfTheRegisteredClass) {
  auto const loader = host_.get<moxDataMatrixSQLLoader>("moxDataMatrixSQLLoader");
  EXPECT_NE(dynamic_cast<moxSelectComposer*>(loader.get()), nullptr);
}

}  // namespace

}  // namespace mox_test
