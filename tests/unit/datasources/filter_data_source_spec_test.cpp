#include "zyn/datasources/filter_data_source_spec.h"

#include <gmock/gmock.h>

#include "mox/core/error.h"
#include "mox/zyn/sql/data_matrix_sql_in_filters.h"
#include "support/fake_database.h"
#include "support/test_host.h"

using mox_test::FakeCall;
using mox_test::FakeDatabase;
using testing::ElementsAre;

namespace {

using Spec = moxFilterDataSourceSpec;
using InFilter = moxDataMatrixSQLIntegerInFilter;

class FilterDataSourceSpecTest : public testing::Test {
 protected:
  FilterDataSourceSpecTest()
      : host_(std::unique_ptr<moxDatabaseConnection>(database_ = new FakeDatabase)) {
    spec_ = host_.get<Spec>("moxFilterDataSourceSpec");
    spec_->setColumnOrigin({"cursos", "id", "c", "curso"});
  }

  std::shared_ptr<InFilter> filter() {
    auto const made = spec_->getDataMatrixFilter();
    return std::dynamic_pointer_cast<InFilter>(made);
  }

  FakeDatabase* database_;  // the host's
  TestHost host_;
  std::shared_ptr<Spec> spec_;
};

}  // namespace

TEST_F(FilterDataSourceSpecTest, BeginsAsAListWithoutValues) {
  auto const made = host_.get<Spec>("moxFilterDataSourceSpec");
  EXPECT_EQ(made->name(), "moxFilterDataSourceSpec");
  EXPECT_EQ(made->getTipo(), Spec::kValor);
  EXPECT_TRUE(made->getIds().empty());
  EXPECT_EQ(made->getSQL(), "");
  EXPECT_EQ(made->getPluginFilter(), "");
  EXPECT_EQ(made->getColumnOrigin(), moxSQLDataSourceColumn::SQLColum());
}

TEST_F(FilterDataSourceSpecTest, TheNumbersOfTheKindsArePartOfTheInterface) {
  EXPECT_EQ(Spec::kValor, 0);
  EXPECT_EQ(Spec::kSql, 1);
  EXPECT_EQ(Spec::kSemFiltro, 2);
}

TEST_F(FilterDataSourceSpecTest, AListIsAConditionOnTheColumnInTheDatabase) {
  spec_->setIds({7, -1, 3});
  auto const made = filter();
  ASSERT_NE(made, nullptr);
  EXPECT_EQ(made->getTableName(), "c");
  EXPECT_EQ(made->getColumnName(), "id");
  EXPECT_THAT(made->getValues(), ElementsAre(-1, 3, 7));
  EXPECT_EQ(made->getSql(), "c.id in (?, ?, ?)");
  EXPECT_TRUE(database_->preparedTexts().empty());
}

TEST_F(FilterDataSourceSpecTest, AListWithoutValuesLetsNothingPass) {
  EXPECT_EQ(filter()->getSql(), "1=0");
}

TEST_F(FilterDataSourceSpecTest, EveryCallMakesAFilterOfItsOwn) {
  EXPECT_NE(filter(), filter());
}

TEST_F(FilterDataSourceSpecTest, AStatementIsSentAsItStandsAndItsFirstColumnIsTaken) {
  database_->result = {{{"id", moxDatabaseConnection::FieldType::kInt},
                        {"x", moxDatabaseConnection::FieldType::kInt}},
                       {{9, 1}, {4, 2}, {9, 3}}};
  spec_->setTipo(Spec::kSql);
  spec_->setIds({100});
  spec_->setSQL("select id, {{x}} from v");
  EXPECT_THAT(filter()->getValues(), ElementsAre(4, 9));
  EXPECT_THAT(database_->preparedTexts(), ElementsAre("select id, {{x}} from v"));
  EXPECT_THAT(database_->extraWheres(), ElementsAre("where:"));
  EXPECT_TRUE(database_->binds().empty());
}

TEST_F(FilterDataSourceSpecTest, AStatementIsRunOnEveryCall) {
  spec_->setTipo(Spec::kSql);
  spec_->setSQL("select id from v");
  database_->result = {{{"id", moxDatabaseConnection::FieldType::kInt}}, {{1}}};
  EXPECT_THAT(filter()->getValues(), ElementsAre(1));
  database_->result.rows = {{2}};
  EXPECT_THAT(filter()->getValues(), ElementsAre(2));
}

TEST_F(FilterDataSourceSpecTest, ANullIsNoId) {
  spec_->setTipo(Spec::kSql);
  database_->result = {{{"id", moxDatabaseConnection::FieldType::kInt}}, {{{}}, {5}, {{}}}};
  EXPECT_THAT(filter()->getValues(), ElementsAre(5));
}

TEST_F(FilterDataSourceSpecTest, AStatementWithoutRowsLetsNothingPass) {
  spec_->setTipo(Spec::kSql);
  EXPECT_EQ(filter()->getSql(), "1=0");
}

TEST_F(FilterDataSourceSpecTest, AStatementThatFailsFailsTheCall) {
  spec_->setTipo(Spec::kSql);
  for (auto const call : {FakeCall::kPrepare, FakeCall::kExecute, FakeCall::kFetch}) {
    database_->failAt(call, 1);
    EXPECT_THROW((void)filter(), moxError);
  }
}

TEST_F(FilterDataSourceSpecTest, NoConditionAndANumberThatIsNoKindGiveNoFilter) {
  spec_->setIds({1});
  for (int const kind : {2, 3}) {
    spec_->setTipo(static_cast<Spec::Tipos>(kind));
    EXPECT_EQ(spec_->getDataMatrixFilter(), nullptr) << kind;
  }
  EXPECT_TRUE(database_->preparedTexts().empty());
}
