#include "zyn/datasources/related_data_sources.h"

#include "definition_fixture.h"

namespace {

using mox_test::DefinitionTest;
using Strings = std::vector<std::string>;

std::string query(std::string const& name) {
  return "<moxSQLDataSource name=\"" + name + "\"/>";
}

std::string filterOn(std::string const& name, std::string const& source) {
  return "<moxFilterDataSource name=\"" + name + "\" dataSource=\"" + source + "\"/>";
}

class RelatedDataSourcesTest : public DefinitionTest {
 protected:
  RelatedDataSourcesTest() {
    enter(query("alunos") + query("notas") + filterOn("do curso", "alunos") +
          filterOn("do turno", "do curso"));
  }
};

}  // namespace

TEST_F(RelatedDataSourcesTest, GivesTheSourcesInTheOrderOfTheNamesWithoutTheUnknown) {
  EXPECT_EQ(namesOf(relatedDataSources({"notas", "ninguem", "", "do turno"}, false)),
            (Strings{"notas", "do turno"}));
}

TEST_F(RelatedDataSourcesTest, GivesEachBehindThoseThatItReadsItself) {
  EXPECT_EQ(namesOf(relatedDataSources({"do turno", "notas"}, true)),
            (Strings{"alunos", "do curso", "do turno", "notas"}));
}

TEST_F(RelatedDataSourcesTest, GivesASourceForEachWhoReadsIt) {
  EXPECT_EQ(namesOf(relatedDataSources({"alunos", "do curso"}, true)),
            (Strings{"alunos", "alunos", "do curso"}));
}

TEST_F(RelatedDataSourcesTest, ARingIsRefusedWithTheNamesOfThoseInIt) {
  enter(filterOn("a", "b") + filterOn("b", "c") + filterOn("c", "b"));
  try {
    (void)relatedDataSources({"a"}, true);
    FAIL() << "a ring was followed to its end";
  } catch (moxError const& error) {
    EXPECT_EQ(error.errorMessage(), "Fonte de dados externa inválida");
    EXPECT_EQ(error.errorDetails(), Strings{"a source of data reads itself: b -> c -> b"});
  }
  EXPECT_EQ(namesOf(relatedDataSources({"do turno"}, true)),
            (Strings{"alunos", "do curso", "do turno"}));
}

TEST_F(RelatedDataSourcesTest, InAContextTheFirstOfThatNameOrThatIsCalledSoCounts) {
  std::vector<moxNamedDataSource> const sources{
      {"vazio", nullptr}, {"x", entered("notas")}, {"notas", entered("alunos")}};
  EXPECT_EQ(sourceInContext(sources, "notas"), entered("notas"));
  EXPECT_EQ(sourceInContext(sources, "x"), entered("notas"));
  EXPECT_EQ(sourceInContext(sources, "vazio"), nullptr);
}

TEST_F(RelatedDataSourcesTest, RelatedColumnsAreThoseThatTheSourceTells) {
  enter(
      "<moxSQLDataSource name=\"turmas\"><columns>"
      "<moxDataMatrixIntColumn name=\"id\"/></columns></moxSQLDataSource>");
  std::vector<moxNamedDataSource> const sources{{"t", entered("turmas")}};
  EXPECT_EQ(relatedColumnsOf(sources, "t"), entered("turmas")->getRelatedColumns(sources));
  EXPECT_TRUE(relatedColumnsOf(sources, "alunos").empty());
}
