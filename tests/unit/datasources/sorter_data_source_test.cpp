#include "zyn/datasources/sorter_data_source.h"

#include "mox/core/registry.h"
#include "unit/datasources/definition_fixture.h"
#include "zyn/datasources/data_source_label.h"
#include "zyn/datasources/user_defined_sort_option.h"

/// Beside the record, where comparisons look for it.
bool operator==(moxSorterDataSource::ColumnInfo const& one,
                moxSorterDataSource::ColumnInfo const& other) {
  return one.name == other.name && one.description == other.description && one.mode == other.mode;
}

namespace {

using Strings = std::vector<std::string>;
using Types = moxDataMatrixTypes::Types;
using ColumnInfo = moxSorterDataSource::ColumnInfo;
using Infos = std::vector<ColumnInfo>;

std::string const kMarks =
    "<moxSQLDataSource name=\"Notas\"><Command>select 1</Command><Columns>"
    "<Column tableName=\"n\" columnName=\"turma\" Type=\"1\"/>"
    "<Column tableName=\"n\" columnName=\"nota\" Type=\"4\"/></Columns></moxSQLDataSource>";

std::string const kSorter =
    "<moxSorterDataSource name=\"Em ordem\" source=\"Notas\" replace=\"yes\" userDefined=\"yes\" "
    "description=\"Ordenar por\"><column name=\"turma\" desc=\"Turma\"/>"
    "<column name=\"nota\" desc=\"Nota\" dir=\"desc\"/>"
    "<column name=\"dia\" desc=\"Dia\" dir=\"asc\"/></moxSorterDataSource>";

std::string sorterElement(std::string const& name, std::string const& source) {
  return "<moxSorterDataSource name=\"" + name + "\" source=\"" + source + "\"/>";
}

std::string const kInvalid = "Fonte de dados externa inválida";

class SorterDataSourceTest : public mox_test::DefinitionTest {
 protected:
  std::shared_ptr<moxSorterDataSource> newSource() {
    return host_.get<moxSorterDataSource>("moxSorterDataSource");
  }

  std::shared_ptr<moxSorterDataSource> sorter(std::string const& text) {
    return read<moxSorterDataSource>(text);
  }

  /// The element of one column, read and written again.
  std::string columnAgain(std::string const& element) {
    return textOf(*sorter("<moxSorterDataSource>" + element + "</moxSorterDataSource>"));
  }
};

std::string around(std::string const& column) {
  return "<moxSorterDataSource name=\"\" source=\"\" replace=\"no\" userDefined=\"no\">" + column +
         "</moxSorterDataSource>";
}

}  // namespace

TEST_F(SorterDataSourceTest, KnowsItsNameAndKindAndIsFoundByItsName) {
  auto const made = newSource();
  EXPECT_EQ(made->name(), "moxSorterDataSource");
  EXPECT_EQ(made->getTipo(), 3);
  made->setName("Em ordem");
  EXPECT_EQ(made->getName(), "Em ordem");
  EXPECT_EQ(made->description(), "Em ordem");
  EXPECT_EQ(made->getZynItemRelated(), nullptr);
  made->setParentLibraryName("ESCOLA");
  EXPECT_EQ(made->getParentLibName(), "ESCOLA");
}

TEST_F(SorterDataSourceTest, UsersCallTheKindByItsLabel) {
  auto const* const permissions =
      moxInternalPluginContainer<SorterDataSource>("x").getPermissions();
  ASSERT_NE(permissions, nullptr);
  EXPECT_STREQ(permissions->label, "Ordenação");
}

TEST_F(SorterDataSourceTest, BeginsEmptyAndUserDefined) {
  auto const made = newSource();
  EXPECT_EQ(made->getName(), "");
  EXPECT_EQ(made->getDataSourceName(), "");
  EXPECT_TRUE(made->getUserDefined());
  EXPECT_TRUE(made->getOrderColumns().empty());
  ASSERT_EQ(made->options().size(), 1u);
  EXPECT_EQ(made->options()[0]->getName(), "");
}

TEST_F(SorterDataSourceTest, DeclaresNoColumnsAndNoFilters) {
  enter(kMarks);
  auto const made = sorter(kSorter);
  EXPECT_TRUE(made->getColumns().empty());
  EXPECT_TRUE(made->getFilters().empty());
}

TEST_F(SorterDataSourceTest, IsWrittenInItsOrderAndReadAgain) {
  auto const made = sorter(kSorter);
  EXPECT_EQ(textOf(*made), kSorter);
  EXPECT_EQ(made->getName(), "Em ordem");
  EXPECT_EQ(made->getDataSourceName(), "Notas");
  EXPECT_TRUE(made->getUserDefined());
  EXPECT_EQ(made->options().at(0)->getName(), "Ordenar por");
  EXPECT_EQ(made->getOrderColumns(), (Infos{{"turma", "Turma", ColumnInfo::kSemDirecao},
                                            {"nota", "Nota", ColumnInfo::kDecrescente},
                                            {"dia", "Dia", ColumnInfo::kCrescente}}));
  EXPECT_EQ(textOf(*read(textOf(*made))), kSorter);
}

TEST_F(SorterDataSourceTest, ANewOneIsWrittenWithItsEmptyDescription) {
  EXPECT_EQ(textOf(*newSource()),
            "<moxSorterDataSource name=\"\" source=\"\" replace=\"no\" userDefined=\"yes\" "
            "description=\"\"/>");
}

TEST_F(SorterDataSourceTest, AMissingDirectionIsWrittenWithoutOneAgain) {
  auto const bare = around("<column name=\"a\" desc=\"A\"/>");
  EXPECT_EQ(columnAgain("<column name=\"a\" desc=\"A\"/>"), bare);
  EXPECT_EQ(columnAgain("<column name=\"a\" desc=\"A\" dir=\"\"/>"), bare);
}

TEST_F(SorterDataSourceTest, ADirectionOfAnyOtherTextIsAscendingAndIsWrittenAsSuch) {
  for (auto const* const dir : {"asc", "DESC", "down", " desc", "0"}) {
    EXPECT_EQ(columnAgain("<column name=\"a\" desc=\"\" dir=\"" + std::string(dir) + "\"/>"),
              around("<column name=\"a\" desc=\"\" dir=\"asc\"/>"))
        << dir;
  }
  EXPECT_EQ(columnAgain("<column name=\"a\" desc=\"\" dir=\"desc\"/>"),
            around("<column name=\"a\" desc=\"\" dir=\"desc\"/>"));
}

TEST_F(SorterDataSourceTest, ChildrenOfAnyNameAreColumns) {
  EXPECT_EQ(columnAgain("<By name=\"b\" desc=\"\"/><column name=\"a\" desc=\"\"/><x/>"),
            around("<column name=\"b\" desc=\"\"/><column name=\"a\" desc=\"\"/>"
                   "<column name=\"\" desc=\"\"/>"));
}

TEST_F(SorterDataSourceTest, WithoutUserDefinedTheOptionOfTheConstructorIsLost) {
  for (auto const* const text : {"", "no", "1", "YES", "true"}) {
    auto const made = sorter("<moxSorterDataSource userDefined=\"" + std::string(text) +
                             "\" description=\"d\"/>");
    EXPECT_FALSE(made->getUserDefined()) << text;
    EXPECT_TRUE(made->options().empty()) << text;
    EXPECT_EQ(textOf(*made), around("").replace(around("").find("></"), std::string::npos, "/>"));
  }
}

TEST_F(SorterDataSourceTest, TheDescriptionIsOnlyReadWithAnOption) {
  auto const made = sorter(kSorter);
  EXPECT_TRUE(made->load(document("<moxSorterDataSource description=\"d\"/>")->root()));
  made->setUserDefined(true);
  EXPECT_EQ(made->options().at(0)->getName(), "Ordenar por");
}

TEST_F(SorterDataSourceTest, LoadingReplacesTheColumnsAndKeepsTheOption) {
  auto const made = sorter(kSorter);
  auto const option = made->options().at(0);
  EXPECT_TRUE(made->load(
      document(
          "<moxSorterDataSource userDefined=\"yes\"><column name=\"z\"/></moxSorterDataSource>")
          ->root()));
  EXPECT_EQ(made->getOrderColumns(), (Infos{{"z", "", ColumnInfo::kSemDirecao}}));
  EXPECT_EQ(made->options().at(0), option);
  EXPECT_EQ(option->getName(), "");
}

TEST_F(SorterDataSourceTest, ReplaceIsReadAsYesAlone) {
  for (auto const* const text : {"", "no", "1", "Yes"}) {
    auto const made = sorter("<moxSorterDataSource replace=\"" + std::string(text) + "\"/>");
    EXPECT_NE(textOf(*made).find("replace=\"no\""), std::string::npos) << text;
  }
}

TEST_F(SorterDataSourceTest, AnEmptyNodeGivesFalseAndChangesNothing) {
  auto const made = sorter(kSorter);
  EXPECT_FALSE(made->load(nullptr));
  EXPECT_FALSE(made->save(nullptr));
  EXPECT_EQ(textOf(*made), kSorter);
}

TEST_F(SorterDataSourceTest, SettingAColumnThatIsThereKeepsItsPlace) {
  auto const made = newSource();
  EXPECT_TRUE(made->setOrderColumn("a", "A", ColumnInfo::kSemDirecao));
  EXPECT_TRUE(made->setOrderColumn("b", "B", ColumnInfo::kCrescente));
  EXPECT_TRUE(made->setOrderColumn("a", "novo", ColumnInfo::kDecrescente));
  EXPECT_EQ(made->getOrderColumns(),
            (Infos{{"a", "novo", ColumnInfo::kDecrescente}, {"b", "B", ColumnInfo::kCrescente}}));
}

TEST_F(SorterDataSourceTest, RemovingAColumnMovesTheLaterOnesUp) {
  auto const made = newSource();
  for (auto const* const column : {"a", "b", "c"}) {
    made->setOrderColumn(column, "", ColumnInfo::kSemDirecao);
  }
  made->removeOrderColumn("B");
  EXPECT_EQ(made->getOrderColumns().size(), 3u);
  made->removeOrderColumn("b");
  EXPECT_EQ(made->getOrderColumns(),
            (Infos{{"a", "", ColumnInfo::kSemDirecao}, {"c", "", ColumnInfo::kSemDirecao}}));
}

TEST_F(SorterDataSourceTest, ClearingLeavesNoColumns) {
  auto const made = sorter(kSorter);
  made->clearOrderColumns();
  EXPECT_TRUE(made->getOrderColumns().empty());
  EXPECT_TRUE(made->getUserDefined());
}

TEST_F(SorterDataSourceTest, TheColumnsHandedOutAreACopy) {
  auto const made = sorter(kSorter);
  auto copy = made->getOrderColumns();
  copy[0].name = "x";
  EXPECT_EQ(made->getOrderColumns()[0].name, "turma");
}

TEST_F(SorterDataSourceTest, UserDefinedKeepsAnOptionMakesOneAndDropsIt) {
  auto const made = newSource();
  auto const first = made->options().at(0);
  made->setUserDefined(true);
  EXPECT_EQ(made->options().at(0), first);
  made->setUserDefined(false);
  EXPECT_FALSE(made->getUserDefined());
  EXPECT_TRUE(made->options().empty());
  made->setUserDefined(true);
  EXPECT_TRUE(made->getUserDefined());
  EXPECT_NE(made->options().at(0), first);
}

TEST_F(SorterDataSourceTest, AnOrderIsFoundByTheWholeName) {
  SorterDataSource::OrderFindCriterion const isNota("nota");
  EXPECT_TRUE(isNota({"nota", "x", ColumnInfo::kCrescente}));
  for (auto const* const other : {"", "not", "notas", "Nota"}) {
    EXPECT_FALSE(isNota({other, "nota", ColumnInfo::kCrescente})) << other;
  }
}

TEST_F(SorterDataSourceTest, RelatedColumnsAreThoseOfTheInputAsTheyAre) {
  auto const marks = read(kMarks);
  auto const made = sorter(kSorter);
  Columns const ofMarks{{"turma", Types::Text}, {"nota", Types::Double}};
  EXPECT_EQ(made->getRelatedColumns({{"a", marks}}), ofMarks);
  EXPECT_EQ(made->getRelatedColumns({{"x", nullptr}, {"Notas", marks}}), ofMarks);
  EXPECT_TRUE(made->getRelatedColumns({}).empty());
  EXPECT_TRUE(made->getRelatedColumns({{"b", read(sorterElement("c", "d"))}}).empty());
}

TEST_F(SorterDataSourceTest, RelatedSourcesAreTheInputAndWithDepthThoseBelowAheadOfIt) {
  enter(kMarks + sorterElement("s", "Notas"));
  auto const made = sorter(sorterElement("t", "s"));
  EXPECT_EQ(namesOf(made->getRelatedDataSources(false)), Strings{"s"});
  EXPECT_EQ(namesOf(made->getRelatedDataSources(true)), (Strings{"Notas", "s"}));
  EXPECT_TRUE(sorter(sorterElement("t", "Nenhuma"))->getRelatedDataSources(true).empty());
}

TEST_F(SorterDataSourceTest, SortersInARingAreRefused) {
  enter(sorterElement("a", "b") + sorterElement("b", "a"));
  auto const one = entered("a");
  EXPECT_EQ(failureOf([&] { (void)one->getRelatedDataSources(true); }), kInvalid);
  std::vector<moxNamedDataSource> const both{{"a", one}, {"b", entered("b")}};
  EXPECT_EQ(failureOf([&] { (void)one->getRelatedColumns(both); }), kInvalid);
}

TEST_F(SorterDataSourceTest, AnExecutionNeedsADefinitionHeldBySharedPointers) {
  SorterDataSource onTheStack;
  EXPECT_THROW((void)onTheStack.createExecution(), std::bad_weak_ptr);
}

TEST_F(SorterDataSourceTest, AnExecutionKeepsTheDefinition) {
  auto made = sorter(kSorter);
  std::weak_ptr<moxSorterDataSource> const watched = made;
  auto const execution = made->createExecution();
  made.reset();
  EXPECT_FALSE(watched.expired());
}
