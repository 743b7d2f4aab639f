#include "core/run/filter_argument.h"

#include <gtest/gtest.h>

#include "mox/zyn/datasources/sql_data_source.h"
#include "mox/zyn/filters/filter_specification.h"
#include "mox/zyn/sql/data_matrix_sql_filter.h"
#include "mox/zyn/sql/data_matrix_sql_in_filters.h"
#include "support/test_host.h"
#include "unit/core/error_message.h"
#include "unit/sql/filter_binds.h"

namespace mox::core {
namespace {

class FilterArgumentTest : public testing::Test {
 protected:
  std::shared_ptr<moxFilterSpecification> offer(std::string const& className,
                                                std::string const& table, std::string const& column,
                                                std::string const& source = "Alunos") {
    auto specification = host_.get<moxFilterSpecification>(className);
    specification->setTableName(table);
    specification->setColumn(column);
    offers_.push_back({source, specification});
    return specification;
  }

  /// The column that a filter is bound to, by its names in the result and in its table.
  std::shared_ptr<moxSQLDataSourceColumn> resultColumn(std::string const& name,
                                                       std::string const& origin) {
    moxDatabaseConnection::FieldInfo info;
    info.name = name;
    info.columnName = origin;
    info.tableAlias = "t";
    source_ = host_.get<moxSQLDataSource>("moxSQLDataSource");
    return source_->createColumn(&info);
  }

  FilterArgument read(std::string const& text) { return readFilterArgument(text, offers_); }

  std::string refusal(std::string const& text) {
    return test::errorMessageOf([&] { read(text); });
  }

  std::string refusal(std::vector<std::string> const& texts) {
    return test::errorMessageOf([&] { readFilterArguments(texts, offers_); });
  }

  /// The condition's text and its values, as the module would send them.
  std::pair<std::string, std::vector<std::string>> sent(std::string const& text) {
    auto const filter = makeSqlFilter(host_.application(), read(text));
    auto binds = mox_test::bindsOf(*filter);
    binds.pop_back();  // the counter
    return {filter->getSql(), binds};
  }

  TestHost host_;
  std::shared_ptr<moxSQLDataSource> source_;
  std::vector<FilterOffer> offers_;
};

using Sent = std::pair<std::string, std::vector<std::string>>;

TEST_F(FilterArgumentTest, EveryFormOfEveryKindBecomesACondition) {
  offer("moxIntegralUniqueFilter", "t", "iu");
  offer("moxIntegralUniqueSQLFilter", "", "select 1 from x where x.id = ?")
      ->setDescription("Tem x");
  offer("moxIntegralRangeFilter", "t", "ir");
  offer("moxIntegralInFilter", "t", "ii");
  offer("moxDoubleUniqueFilter", "t", "du");
  offer("moxDoubleRangeFilter", "t", "dr");
  offer("moxDoubleInFilter", "t", "di");
  offer("moxTextUniqueFilter", "t", "tu");
  offer("moxTextRangeFilter", "t", "tr");
  offer("moxTextInFilter", "t", "ti");
  offer("moxDateUniqueFilter", "t", "au");
  offer("moxDateRangeFilter", "t", "ar");
  EXPECT_EQ(sent("iu=5"), Sent("t.iu = ? ", {"0: int 5"}));
  EXPECT_EQ(sent("Tem x=5"), Sent("exists (select 1 from x where x.id = ?)", {"0: int 5"}));
  EXPECT_EQ(sent("ir=5..9"), Sent("t.ir between ? and ? ", {"0: int 5", "1: int 9"}));
  EXPECT_EQ(sent("ir=5.."), Sent("t.ir >= ? ", {"0: int 5"}));
  EXPECT_EQ(sent("ii=2,1,2"), Sent("t.ii in (?, ?)", {"0: int 1", "1: int 2"}));
  EXPECT_EQ(sent("du=2,5"), Sent("t.du = ? ", {"0: double 2.5"}));
  EXPECT_EQ(sent("dr=..2.5"), Sent("t.dr <= ? ", {"0: double 2.5"}));
  EXPECT_EQ(sent("di=1,5"), Sent("t.di in (?, ?)", {"0: double 1", "1: double 5"}));
  EXPECT_EQ(sent("tu=a..b"), Sent("t.tu = ? ", {"0: text a..b"}));
  EXPECT_EQ(sent("tu=a%"), Sent("t.tu like ? ", {"0: text a%"}));
  EXPECT_EQ(sent("tr=A..M"), Sent("t.tr between ? and ? ", {"0: text A", "1: text M"}));
  EXPECT_EQ(sent("ti=b,a"), Sent("t.ti in (?, ?)", {"0: text a", "1: text b"}));
  EXPECT_EQ(sent("au=05/03/2024"), Sent("date(t.au) = ? ", {"0: date 2024-03-05"}));
  EXPECT_EQ(sent("ar=2024-03-05.."), Sent("date(t.ar) >= ? ", {"0: date 2024-03-05"}));
  EXPECT_EQ(sent("ar=..2024-03-05"), Sent("date(t.ar) <= ? ", {"0: date 2024-03-05"}));
}

TEST_F(FilterArgumentTest, ValuesNeverBecomePartOfTheText) {
  offer("moxTextUniqueFilter", "t", "tu");
  offer("moxTextRangeFilter", "t", "tr");
  offer("moxTextInFilter", "t", "ti");
  std::string const canary = "'; drop table x; -- /* \" {{p}} @ ? #";
  EXPECT_EQ(sent("tu=" + canary), Sent("t.tu = ? ", {"0: text " + canary}));
  EXPECT_EQ(sent("tr=" + canary + ".."), Sent("t.tr >= ? ", {"0: text " + canary}));
  EXPECT_EQ(sent("ti=" + canary), Sent("t.ti in (?)", {"0: text " + canary}));
}

TEST_F(FilterArgumentTest, ColumnsAreNamedWithOrWithoutTheirTable) {
  offer("moxIntegralUniqueFilter", "t", "id");
  EXPECT_EQ(read("id=5").value, FilterValue(FilterOne<int>{5}));
  EXPECT_EQ(read("t.id=5").value, FilterValue(FilterOne<int>{5}));
  EXPECT_EQ(read("id=5").text, "id=5");
  EXPECT_EQ(read("id=5").offer.source, "Alunos");
}

TEST_F(FilterArgumentTest, BoundColumnsAreNamedAsInTheResultToo) {
  auto const specification = offer("moxIntegralUniqueFilter", "t", "");
  specification->setSQLDataSourceColumn(resultColumn("codigo_aluno", "codigo"));
  EXPECT_EQ(read("codigo_aluno=5").offer.specification, specification);
  EXPECT_EQ(read("t.codigo_aluno=5").offer.specification, specification);
  EXPECT_EQ(read("codigo=5").offer.specification, specification);
  EXPECT_EQ(filterLabel(*specification), "codigo_aluno");
}

TEST_F(FilterArgumentTest, TokensAreNamedWithOrWithoutTheirBraces) {
  auto const specification = offer("moxIntegralUniqueFilter", "", "{{mes}}");
  EXPECT_EQ(read("mes=5").offer.specification, specification);
  EXPECT_EQ(read("{{mes}}=5").offer.specification, specification);
  EXPECT_EQ(filterLabel(*specification), "mes");
}

TEST_F(FilterArgumentTest, TokensTakeOneValue) {
  offer("moxIntegralInFilter", "", "{{serie}}");
  EXPECT_EQ(read("serie=5").value, FilterValue(FilterList<int>{{5}}));
  EXPECT_EQ(refusal("serie=5,6"), "filter 'serie=5,6': a token takes one value");
}

TEST_F(FilterArgumentTest, ExpressionsMayHoldAnEqualsSign) {
  auto const expression = offer("moxIntegralUniqueFilter", "", "if(a=1, b, c) @");
  offer("moxIntegralUniqueFilter", "", "if(a");
  EXPECT_EQ(read("if(a=1, b, c) @=5").offer.specification, expression);
}

TEST_F(FilterArgumentTest, LabelsCountWhereNoColumnIsCalledSo) {
  auto const labelled = offer("moxTextUniqueFilter", "", "coalesce(x, y) @");
  labelled->setDescription("Nome");
  EXPECT_EQ(read("Nome=a").offer.specification, labelled);
  EXPECT_EQ(filterLabel(*labelled), "Nome");
  auto const column = offer("moxTextUniqueFilter", "", "Nome");
  EXPECT_EQ(read("Nome=a").offer.specification, column);
}

TEST_F(FilterArgumentTest, ColumnsOfOneNameAreToldApartByTheirTables) {
  offer("moxIntegralUniqueFilter", "t", "id");
  auto const other = offer("moxIntegralUniqueFilter", "u", "id");
  EXPECT_EQ(read("u.id=5").offer.specification, other);
  EXPECT_EQ(refusal("id=5"),
            "filter 'id=5': 'id' can be any of Alunos: t.id, Alunos: u.id; write TABLE.COLUMN");
}

TEST_F(FilterArgumentTest, OfSeveralFormsOnAColumnTheValuesOwnIsTaken) {
  auto const range = offer("moxIntegralRangeFilter", "t", "id");
  auto const list = offer("moxIntegralInFilter", "t", "id");
  auto const one = offer("moxIntegralUniqueFilter", "t", "id");
  EXPECT_EQ(read("id=5").offer.specification, one);
  EXPECT_EQ(read("id=5..").offer.specification, range);
  EXPECT_EQ(read("id=5,6").offer.specification, list);
}

TEST_F(FilterArgumentTest, UnknownColumnsAreAnsweredWithWhatIsOffered) {
  EXPECT_EQ(refusal("x=5"), "filter 'x=5': there is no filter on 'x'; none is offered");
  offer("moxIntegralUniqueFilter", "t", "id");
  offer("moxDateRangeFilter", "t", "dia");
  offer("moxTextInFilter", "", "{{nomes}}");
  EXPECT_EQ(refusal("x=5"),
            "filter 'x=5': there is no filter on 'x'; offered: id=NUMBER; dia=MIN..MAX; "
            "nomes=TEXT,...");
  EXPECT_EQ(refusal("id"),
            "filter 'id': it is written COLUMN=VALUE; offered: id=NUMBER; dia=MIN..MAX; "
            "nomes=TEXT,...");
  EXPECT_TRUE(refusal("=5").starts_with("filter '=5': it is written COLUMN=VALUE; "));
  EXPECT_TRUE(refusal("ID=5").starts_with("filter 'ID=5': there is no filter on 'ID'; "));
}

TEST_F(FilterArgumentTest, WrongValuesNameTheFilter) {
  offer("moxIntegralUniqueFilter", "t", "id");
  EXPECT_EQ(refusal("id=x"),
            "filter 'id=x': 'x' is no whole number between -2147483648 and 2147483647");
}

TEST_F(FilterArgumentTest, LongArgumentsAreRefusedShortly) {
  std::string const text = "id=" + std::string(1 << 20, '1');
  EXPECT_EQ(refusal(text), "filter " + quotedForMessage(text) + ": longer than 1048576 bytes");
}

TEST_F(FilterArgumentTest, GivenTwiceIsRefused) {
  offer("moxIntegralUniqueFilter", "t", "id");
  EXPECT_EQ(refusal(std::vector<std::string>{"id=5", "t.id=6"}),
            "filter 't.id=6': this filter is given twice");
}

TEST_F(FilterArgumentTest, MissingRequiredFiltersAreNamedTogether) {
  offer("moxIntegralUniqueFilter", "", "{{mes}}")->setRequire(true);
  offer("moxTextUniqueFilter", "t", "nome");
  offer("moxDoubleRangeFilter", "t", "nota")->setRequire(true);
  EXPECT_EQ(test::errorMessageOf([&] { demandRequiredFilters({}, offers_); }),
            "a required filter is missing: mes=NUMBER; nota=MIN..MAX");
  EXPECT_EQ(test::errorMessageOf(
                [&] { demandRequiredFilters(readFilterArguments({"mes=5"}, offers_), offers_); }),
            "a required filter is missing: nota=MIN..MAX");
  EXPECT_NO_THROW(
      demandRequiredFilters(readFilterArguments({"mes=5", "nota=5.."}, offers_), offers_));
}

TEST_F(FilterArgumentTest, OneOfSeveralFormsAnswersARequiredColumn) {
  offer("moxIntegralUniqueFilter", "t", "id")->setRequire(true);
  offer("moxIntegralInFilter", "t", "id")->setRequire(true);
  EXPECT_NO_THROW(demandRequiredFilters(readFilterArguments({"id=5,6"}, offers_), offers_));
}

TEST_F(FilterArgumentTest, PunctuationOfTextsIsTakenOutWhereAskedFor) {
  auto const specification = std::dynamic_pointer_cast<moxTextFilterSpecification>(
      offer("moxTextUniqueFilter", "t", "cpf"));
  specification->setRemovePunctuation(true);
  EXPECT_EQ(sent("cpf=123.456.789-09"), Sent("t.cpf = ? ", {"0: text 12345678909"}));
}

}  // namespace
}  // namespace mox::core
