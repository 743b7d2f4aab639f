#include "zyn/datasources/related_data_sources.h"

#include "definition_fixture.h"
#include "zyn/datasources/named_data_source.h"

namespace {

using mox_test::DefinitionTest;
using Strings = std::vector<std::string>;

std::string query(std::string const& name) {
  return "<moxSQLDataSource name=\"" + name + "\"/>";
}

std::string filterOn(std::string const& name, std::string const& source) {
  return "<moxFilterDataSource name=\"" + name + "\" dataSource=\"" + source + "\"/>";
}

std::string unionOf(std::string const& name, std::string const& first, std::string const& second) {
  return "<moxUnionDataSource name=\"" + name + "\"><sources><source name=\"" + first +
         "\"/><source name=\"" + second + "\"/></sources></moxUnionDataSource>";
}

/// Counts how often it is asked what it reads.
class AskedSource final : public NamedDataSource<moxDataSource> {
 public:
  std::string name() const override { return "askedSource"; }
  bool load(std::shared_ptr<moxXMLNode>) override { return false; }
  bool save(std::shared_ptr<moxXMLNode>) const override { return false; }
  std::vector<moxDataSourceColumnType> getColumns() const override { return {}; }
  std::vector<std::shared_ptr<moxFilterSpecification const>> getFilters() const override {
    return {};
  }
  std::vector<moxDataSourceColumnType> getRelatedColumns(
      std::vector<moxNamedDataSource> const&) const override {
    return {};
  }
  std::vector<std::shared_ptr<moxDataSource const>> getRelatedDataSources(bool) const override {
    ++questions;
    return {};
  }
  std::shared_ptr<moxDataSourceExecution> createExecution() const override { return {}; }

  mutable int questions = 0;
};

class RelatedDataSourcesTest : public DefinitionTest {
 protected:
  RelatedDataSourcesTest() {
    enter(query("alunos") + query("notas") + filterOn("do curso", "alunos") +
          filterOn("do turno", "do curso"));
  }

  /// Each level reads the one ahead twice; the first reads `base`.
  void enterFan(std::string const& base, int levels) {
    std::string items;
    for (int level = 1; level <= levels; ++level) {
      auto const ahead = level == 1 ? base : "F" + std::to_string(level - 1);
      items += unionOf("F" + std::to_string(level), ahead, ahead);
    }
    enter(items);
  }
};

}  // namespace

TEST_F(RelatedDataSourcesTest, GivesTheSourcesInTheOrderOfTheNamesWithoutTheUnknown) {
  EXPECT_EQ(namesOf(relatedDataSources("leitor", {"notas", "ninguem", "", "do turno"}, false)),
            (Strings{"notas", "do turno"}));
}

TEST_F(RelatedDataSourcesTest, GivesEachBehindThoseThatItReadsItself) {
  EXPECT_EQ(namesOf(relatedDataSources("leitor", {"do turno", "notas"}, true)),
            (Strings{"alunos", "do curso", "do turno", "notas"}));
}

TEST_F(RelatedDataSourcesTest, GivesASourceForEachWhoReadsIt) {
  EXPECT_EQ(namesOf(relatedDataSources("leitor", {"alunos", "do curso"}, true)),
            (Strings{"alunos", "alunos", "do curso"}));
}

TEST_F(RelatedDataSourcesTest, ASourceThatIsReadByManyIsAskedOnceForWhatItReads) {
  auto const asked = std::make_shared<AskedSource>();
  asked->setName("perguntada");
  auto const own = host_.get<moxZYNCollection>("moxZYNCollection");
  own->items().add(asked);
  cache()->appendCollection(own);
  enterFan("perguntada", 10);
  EXPECT_EQ(entered("F10")->getRelatedDataSources(true).size(), 2046U);
  EXPECT_EQ(asked->questions, 1);
  EXPECT_EQ(entered("F10")->getRelatedDataSources(true).size(), 2046U);
  EXPECT_EQ(asked->questions, 2) << "nothing is kept for the next who asks";
}

TEST_F(RelatedDataSourcesTest, ANewDefinitionIsFoundByTheNextQuestion) {
  enter(unionOf("ambas", "alunos", "nova"));
  EXPECT_EQ(namesOf(entered("ambas")->getRelatedDataSources(true)), Strings{"alunos"});
  enter(filterOn("nova", "notas"));
  EXPECT_EQ(namesOf(entered("ambas")->getRelatedDataSources(true)),
            (Strings{"alunos", "notas", "nova"}));
}

TEST_F(RelatedDataSourcesTest, ListsThatDoubleAtEachLevelAreRefusedWithTheLevelAndTheBound) {
  enterFan("alunos", 40);
  EXPECT_EQ(entered("F15")->getRelatedDataSources(true).size(), 65'534U);
  for (auto const* name : {"F16", "F40"}) {
    try {
      (void)entered(name)->getRelatedDataSources(true);
      ADD_FAILURE() << name;
    } catch (moxError const& error) {
      EXPECT_EQ(error.errorMessage(), "Fonte de dados externa inválida");
      EXPECT_EQ(error.errorDetails(),
                Strings{"sources of data read each other in more than 200000 ways, met at: F16"});
    }
  }
  EXPECT_EQ(entered("F15")->getRelatedDataSources(true).size(), 65'534U) << "after a refusal";
}

TEST_F(RelatedDataSourcesTest, TheDepthIsRefusedWithTheNameOfTheReader) {
  std::string items = filterOn("N1", "alunos");
  for (int level = 2; level <= 66; ++level) {
    items += filterOn("N" + std::to_string(level), "N" + std::to_string(level - 1));
  }
  enter(items);
  EXPECT_EQ(entered("N64")->getRelatedDataSources(true).size(), 64U);
  try {
    (void)entered("N66")->getRelatedDataSources(true);
    FAIL() << "66 levels were walked";
  } catch (moxError const& error) {
    EXPECT_EQ(error.errorDetails(),
              Strings{"sources of data name each other more than 64 deep, met at: N2"});
  }
}

TEST_F(RelatedDataSourcesTest, ARingIsRefusedWithTheNamesOfThoseInIt) {
  enter(filterOn("a", "b") + filterOn("b", "c") + filterOn("c", "b"));
  try {
    (void)relatedDataSources("leitor", {"a"}, true);
    FAIL() << "a ring was followed to its end";
  } catch (moxError const& error) {
    EXPECT_EQ(error.errorMessage(), "Fonte de dados externa inválida");
    EXPECT_EQ(error.errorDetails(), Strings{"a source of data reads itself: b -> c -> b"});
  }
  EXPECT_EQ(namesOf(relatedDataSources("leitor", {"do turno"}, true)),
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
