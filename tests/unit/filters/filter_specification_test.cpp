#include "zyn/filters/filter_specification.h"

#include <limits>
#include <memory>
#include <string>

#include "unit/filters/filters_fixture.h"
#include "zyn/datasources/sql_data_source_column.h"
#include "zyn/filters/filter_specifications.h"

namespace mox_test {

namespace {

struct Dimension {
  unsigned x = 0;
  unsigned y = 0;
  unsigned spanX = 0;
  unsigned spanY = 0;

  bool operator==(Dimension const&) const = default;
};

void PrintTo(Dimension const& dimension, std::ostream* out) {
  *out << dimension.x << ", " << dimension.y << " over " << dimension.spanX << ", "
       << dimension.spanY;
}

Dimension dimensionOf(moxFilterSpecification const& spec) {
  Dimension dimension;
  spec.getDimension(&dimension.x, &dimension.y, &dimension.spanX, &dimension.spanY);
  return dimension;
}

/// The column that a query calls m.situacao, and its table matricula.cod_situacao.
std::shared_ptr<SQLDataSourceColumn> statusColumn(std::string const& origin = "cod_situacao") {
  moxDatabaseConnection::FieldInfo info;
  info.name = "situacao";
  info.tableAlias = "m";
  info.tableName = "matricula";
  info.columnName = origin;
  auto column = std::make_shared<SQLDataSourceColumn>();
  column->startFrom(&info);
  return column;
}

/// The attribute of the texts alone, where its place is, or nothing.
std::string punctuation(moxFilterSpecification const& spec) {
  return spec.getType() == moxDataMatrixTypes::Text ? " removePunctuation=\"1\"" : "";
}

}  // namespace

class FilterSpecification : public FiltersFixture {};

class FilterSpecificationOfEachKind : public FiltersFixture,
                                      public testing::WithParamInterface<FilterRow> {
 protected:
  std::shared_ptr<moxFilterSpecification> spec_ = specification(GetParam().registeredName);
};

INSTANTIATE_TEST_SUITE_P(All, FilterSpecificationOfEachKind, testing::ValuesIn(filterRows()),
                         nameOfRow);

TEST_P(FilterSpecificationOfEachKind, AnswersWhatItIs) {
  EXPECT_EQ(spec_->name(), GetParam().registeredName);
  EXPECT_EQ(spec_->getType(), GetParam().type);
  EXPECT_EQ(spec_->bindCount(), GetParam().bindCount);
  EXPECT_EQ(spec_->getAcceptedVisualRepresentationType(), *GetParam().control);
}

TEST_P(FilterSpecificationOfEachKind, OffersTheInterfaceOfItsKindAlone) {
  auto const* const spec = spec_.get();
  auto const type = GetParam().type;
  EXPECT_EQ(dynamic_cast<moxIntegralFilterSpecification const*>(spec) != nullptr,
            type == moxDataMatrixTypes::Int);
  EXPECT_EQ(dynamic_cast<moxDoubleFilterSpecification const*>(spec) != nullptr,
            type == moxDataMatrixTypes::Double);
  EXPECT_EQ(dynamic_cast<moxTextFilterSpecification const*>(spec) != nullptr,
            type == moxDataMatrixTypes::Text);
  EXPECT_EQ(dynamic_cast<moxDateTimeFilterSpecification const*>(spec) != nullptr,
            type == moxDataMatrixTypes::Date);
}

TEST_P(FilterSpecificationOfEachKind, IsBornEmpty) {
  EXPECT_EQ(spec_->getTableName(), "");
  EXPECT_EQ(spec_->getColumn(), "");
  EXPECT_EQ(spec_->getVisualRepresentation(), "");
  EXPECT_EQ(spec_->getDescription(), "");
  EXPECT_EQ(spec_->visualExtraProperties(), nullptr);
  EXPECT_EQ(spec_->getSQLDataSourceColumn(), nullptr);
  EXPECT_FALSE(spec_->getRequire());
  EXPECT_EQ(dimensionOf(*spec_), Dimension());
}

TEST_P(FilterSpecificationOfEachKind, CreateFilterMakesANewFilterOnTheColumn) {
  spec_->setTableName("m");
  spec_->setColumn("valor");
  auto const filter = spec_->createFilter();
  ASSERT_NE(filter, nullptr);
  EXPECT_EQ(filter->name(), GetParam().sqlFilter);
  EXPECT_EQ(filter->getTableName(), "m");
  EXPECT_EQ(filter->getColumnName(), "valor");
  EXPECT_NE(spec_->createFilter(), filter);
}

TEST_P(FilterSpecificationOfEachKind, CreateFilterOfAnUnboundFilterWithATokenIsOnTheToken) {
  spec_->setColumn("{{p_serie}}");
  auto const filter = spec_->createFilter();
  ASSERT_NE(filter, nullptr);
  EXPECT_EQ(filter->getColumnName(), "{{p_serie}}");
  EXPECT_EQ(filter->getTableName(), "");
}

TEST_P(FilterSpecificationOfEachKind, EmptyNodeIsRefusedAndChangesNothing) {
  spec_->setColumn("valor");
  spec_->setSpan(2, 1);
  EXPECT_FALSE(spec_->load(nullptr));
  EXPECT_FALSE(spec_->save(nullptr));
  EXPECT_EQ(spec_->getColumn(), "valor");
  EXPECT_EQ(dimensionOf(*spec_), (Dimension{0, 0, 2, 1}));
}

TEST_P(FilterSpecificationOfEachKind, LoadSaveLoadKeepsEverything) {
  auto const written =
      R"(<r tableName="m" columnName="valor" require="1")" + punctuation(*spec_) +
      R"( visualRepresentation="testCalendar" description="Valor &lt;até&gt;">)"
      R"(<visualExtraProperties weeks="6"/><position X="1" Y="2" spanX="3" spanY="4"/></r>)";
  EXPECT_TRUE(spec_->load(xml(written)));
  EXPECT_EQ(spec_->getDescription(), "Valor <até>");
  EXPECT_EQ(dimensionOf(*spec_), (Dimension{1, 2, 3, 4}));
  EXPECT_EQ(saved(*spec_), written);

  auto const again = specification(GetParam().registeredName);
  EXPECT_TRUE(again->load(xml(saved(*spec_))));
  EXPECT_EQ(saved(*again), written);
}

TEST_F(FilterSpecification, SaveOfANewOneWritesEveryAttribute) {
  EXPECT_EQ(saved(*specification("moxDateRangeFilter")),
            R"(<r tableName="" columnName="" require="0" visualRepresentation="" description="">)"
            R"(<position X="0" Y="0" spanX="0" spanY="0"/></r>)");
  EXPECT_EQ(saved(*specification("moxTextInFilter")),
            R"(<r tableName="" columnName="" require="0" removePunctuation="0")"
            R"( visualRepresentation="" description="">)"
            R"(<position X="0" Y="0" spanX="0" spanY="0"/></r>)");
}

TEST_F(FilterSpecification, LoadOfAnElementWithNothingGivesTheDefaults) {
  auto const spec = loaded("<moxTextUniqueFilter/>");
  EXPECT_EQ(saved(*spec), saved(*specification("moxTextUniqueFilter")));
}

TEST_F(FilterSpecification, WithoutAPositionTheCellsStay) {
  auto const spec = specification("moxIntegralInFilter");
  spec->setPosition(5, 6);
  spec->setSpan(7, 8);
  EXPECT_TRUE(spec->load(xml("<r/>")));
  EXPECT_EQ(dimensionOf(*spec), (Dimension{5, 6, 7, 8}));
}

TEST_F(FilterSpecification, RequireIsOneExactly) {
  for (std::string const text : {"true", "yes", "11", " 1", "2", "-1", "0", ""}) {
    EXPECT_FALSE(loaded("<moxIntegralUniqueFilter require=\"" + text + "\"/>")->getRequire())
        << text;
  }
  EXPECT_TRUE(loaded("<moxIntegralUniqueFilter require=\"1\"/>")->getRequire());
}

TEST_F(FilterSpecification, RequireWithTrueIsFalse) {
  auto const spec = specification("moxIntegralUniqueFilter");
  spec->setRequire(true);
  EXPECT_TRUE(spec->load(xml(R"(<r require="true"/>)")));
  EXPECT_FALSE(spec->getRequire());
}

TEST_F(FilterSpecification, RemovePunctuationIsOneExactly) {
  auto const spec = specification("moxTextRangeFilter");
  auto const text = std::dynamic_pointer_cast<moxTextFilterSpecification>(spec);
  EXPECT_FALSE(text->getRemovePunctuation());
  EXPECT_TRUE(spec->load(xml(R"(<r removePunctuation="1"/>)")));
  EXPECT_TRUE(text->getRemovePunctuation());
  EXPECT_TRUE(spec->load(xml(R"(<r removePunctuation="true"/>)")));
  EXPECT_FALSE(text->getRemovePunctuation());
  text->setRemovePunctuation(true);
  EXPECT_TRUE(text->getRemovePunctuation());
}

TEST_F(FilterSpecification, GetDimensionPassesOverNullPointers) {
  auto const spec = specification("moxDoubleRangeFilter");
  spec->setPosition(1, 2);
  spec->setSpan(3, 4);
  unsigned y = 9;
  spec->getDimension(nullptr, &y, nullptr, nullptr);
  EXPECT_EQ(y, 2u);

  unsigned x = 9;
  unsigned spanX = 9;
  unsigned spanY = 9;
  spec->getDimension(&x, nullptr, nullptr, nullptr);
  EXPECT_EQ(x, 1u);
  spec->getDimension(nullptr, nullptr, &spanX, nullptr);
  EXPECT_EQ(spanX, 3u);
  spec->getDimension(nullptr, nullptr, nullptr, &spanY);
  EXPECT_EQ(spanY, 4u);
  spec->getDimension(nullptr, nullptr, nullptr, nullptr);
}

TEST_F(FilterSpecification, NumbersThatAreNoneCountAsZero) {
  for (std::string const text : {"", "abc", "-3", "-2147483648", "12px", "1e3", " 7", "+7", "0x10",
                                 "4294967295", "99999999999999999999", "2147483648", "1.5"}) {
    auto const spec =
        loaded("<moxTextInFilter><position X=\"" + text + "\" Y=\"" + text + "\" spanX=\"" + text +
               "\" spanY=\"" + text + "\"/></moxTextInFilter>");
    EXPECT_EQ(dimensionOf(*spec), Dimension()) << text;
  }
}

TEST_F(FilterSpecification, NumbersFromFilesEndAt65536) {
  auto const spec =
      loaded(R"(<moxTextInFilter><position X="65535" Y="65536" spanX="65537" spanY="2147483647"/>)"
             R"(</moxTextInFilter>)");
  EXPECT_EQ(dimensionOf(*spec), (Dimension{65535, 65536, 65536, 65536}));
}

TEST_F(FilterSpecification, NumbersAreWrittenInPlainDigits) {
  auto const spec = specification("moxDateUniqueFilter");
  spec->setPosition(1234567, std::numeric_limits<unsigned>::max());
  EXPECT_EQ(saved(*spec),
            R"(<r tableName="" columnName="" require="0" visualRepresentation="" description="">)"
            R"(<position X="1234567" Y="4294967295" spanX="0" spanY="0"/></r>)");
}

TEST_F(FilterSpecification, SetVisualRepresentationMakesTheControlsProperties) {
  auto const spec = specification("moxDateRangeFilter");
  spec->setVisualRepresentation("testCalendar");
  EXPECT_EQ(spec->getVisualRepresentation(), "testCalendar");
  ASSERT_NE(spec->visualExtraProperties(), nullptr);
  EXPECT_EQ(spec->visualExtraProperties()->name(), "testCalendar_ep");
}

TEST_F(FilterSpecification, SetVisualRepresentationTwiceKeepsTheExtraProperties) {
  auto const spec = specification("moxDateRangeFilter");
  spec->setVisualRepresentation("testCalendar");
  auto const properties = spec->visualExtraProperties();
  spec->setVisualRepresentation("testCalendar");
  EXPECT_EQ(spec->visualExtraProperties(), properties);
}

TEST_F(FilterSpecification, SetVisualRepresentationToAnotherAndBackMakesNewProperties) {
  auto const spec = specification("moxDateRangeFilter");
  spec->setVisualRepresentation("testCalendar");
  auto const properties = spec->visualExtraProperties();
  spec->setVisualRepresentation("");
  EXPECT_EQ(spec->visualExtraProperties(), nullptr);
  spec->setVisualRepresentation("testCalendar");
  EXPECT_NE(spec->visualExtraProperties(), nullptr);
  EXPECT_NE(spec->visualExtraProperties(), properties);
}

TEST_F(FilterSpecification, PropertiesThatCannotBeMadeAreNoError) {
  for (std::string const control : {"testUnknown", "testFaulty", "testOther"}) {
    auto const spec = specification("moxDateRangeFilter");
    spec->setVisualRepresentation("testCalendar");
    EXPECT_NO_THROW(spec->setVisualRepresentation(control)) << control;
    EXPECT_EQ(spec->visualExtraProperties(), nullptr) << control;
    EXPECT_EQ(spec->getVisualRepresentation(), control);
  }
}

TEST_F(FilterSpecification, LoadWithAnUnknownVisualRepresentationReadsTheRest) {
  auto const spec =
      loaded(R"(<moxIntegralInFilter tableName="m" columnName="serie" require="1")"
             R"( visualRepresentation="testUnknown" description="Série">)"
             R"(<visualExtraProperties weeks="6"/><position X="1" Y="2" spanX="3" spanY="4"/>)"
             R"(</moxIntegralInFilter>)");
  EXPECT_EQ(spec->visualExtraProperties(), nullptr);
  EXPECT_EQ(spec->getVisualRepresentation(), "testUnknown");
  EXPECT_EQ(spec->getTableName(), "m");
  EXPECT_EQ(spec->getColumn(), "serie");
  EXPECT_TRUE(spec->getRequire());
  EXPECT_EQ(spec->getDescription(), "Série");
  EXPECT_EQ(dimensionOf(*spec), (Dimension{1, 2, 3, 4}));
}

TEST_F(FilterSpecification, ExtraPropertiesAreLoadedIntoTheControlOfTheSameElement) {
  auto const spec = loaded(R"(<moxDateUniqueFilter visualRepresentation="testCalendar">)"
                           R"(<visualExtraProperties weeks="6"/></moxDateUniqueFilter>)");
  auto const calendar =
      std::dynamic_pointer_cast<CalendarProperties>(spec->visualExtraProperties());
  ASSERT_NE(calendar, nullptr);
  EXPECT_EQ(calendar->weeks(), 6);
}

TEST_F(FilterSpecification, WithoutTheirElementExtraPropertiesKeepTheirDefaults) {
  auto const spec = loaded(R"(<moxDateUniqueFilter visualRepresentation="testCalendar"/>)");
  auto const calendar =
      std::dynamic_pointer_cast<CalendarProperties>(spec->visualExtraProperties());
  ASSERT_NE(calendar, nullptr);
  EXPECT_EQ(calendar->weeks(), 4);
}

TEST_F(FilterSpecification, BindingAColumnAddressesItsOrigin) {
  auto const spec = specification("moxIntegralUniqueFilter");
  auto const column = statusColumn();
  spec->setTableName("m");
  spec->setColumn("situacao");
  spec->setSQLDataSourceColumn(column);
  EXPECT_EQ(spec->getSQLDataSourceColumn(), column);
  EXPECT_EQ(spec->getColumn(), "cod_situacao");
  EXPECT_EQ(spec->createFilter()->getColumnName(), "cod_situacao");
  EXPECT_EQ(spec->createFilter()->getTableName(), "m");
}

TEST_F(FilterSpecification, BindingAColumnWithoutAnOriginAddressesItsNameInTheResult) {
  auto const spec = specification("moxIntegralUniqueFilter");
  spec->setColumn("outra");
  spec->setSQLDataSourceColumn(statusColumn(""));
  EXPECT_EQ(spec->getColumn(), "situacao");
}

TEST_F(FilterSpecification, BindingNoColumnUnbindsAndKeepsTheName) {
  auto const spec = specification("moxIntegralUniqueFilter");
  spec->setSQLDataSourceColumn(statusColumn());
  spec->setSQLDataSourceColumn(nullptr);
  EXPECT_EQ(spec->getSQLDataSourceColumn(), nullptr);
  EXPECT_EQ(spec->getColumn(), "cod_situacao");
}

TEST_F(FilterSpecification, SaveOfABoundOneNamesTheColumnOfTheResultAndItsOrigin) {
  auto const spec = specification("moxIntegralUniqueFilter");
  spec->setTableName("other");
  spec->setSQLDataSourceColumn(statusColumn());
  EXPECT_EQ(saved(*spec), R"(<r tableName="m" columnName="situacao" tableNameOrigin="matricula")"
                          R"( columnNameOrigin="cod_situacao" require="0" visualRepresentation="")"
                          R"( description=""><position X="0" Y="0" spanX="0" spanY="0"/></r>)");
}

TEST_F(FilterSpecification, NamesOfTheOriginAreNotRead) {
  auto const spec = loaded(R"(<moxIntegralUniqueFilter tableName="m" columnName="situacao")"
                           R"( tableNameOrigin="matricula" columnNameOrigin="cod_situacao"/>)");
  EXPECT_EQ(spec->getTableName(), "m");
  EXPECT_EQ(spec->getColumn(), "situacao");
  EXPECT_EQ(spec->getSQLDataSourceColumn(), nullptr);
}

namespace {

constexpr FilterForm kForeign = {"testForeignFilter", "testNobodyRegisteredThis", 1};
constexpr FilterForm kMistaken = {"testMistakenFilter", "moxDataMatrix", 1};

class ForeignFilter final
    : public FilterSpec<TextFilterSpecCommons, moxTextUniqueFilterControl, kForeign> {};
class MistakenFilter final
    : public FilterSpec<TextFilterSpecCommons, moxTextUniqueFilterControl, kMistaken> {};

}  // namespace

TEST_F(FilterSpecification, CreateFilterIsEmptyWhenTheRegistryGivesNone) {
  EXPECT_EQ(ForeignFilter().createFilter(), nullptr);
  EXPECT_EQ(MistakenFilter().createFilter(), nullptr);
}

}  // namespace mox_test
