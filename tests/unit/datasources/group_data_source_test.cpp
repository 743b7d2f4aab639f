#include "zyn/datasources/group_data_source.h"

#include "mox/core/registry.h"
#include "unit/datasources/group_fixture.h"
#include "zyn/datasources/data_source_label.h"

namespace mox_test {

namespace {

using Types = moxDataMatrixTypes::Types;

std::string const kInvalid = "Fonte de dados externa inválida";
std::string const kNoOrigin = "Não localizado source origem do filtro";

using GroupDataSourceTest = GroupSourceTest;

/// A group whose only member is the group of that name.
std::string groupOf(std::string const& name, std::string const& other) {
  return group(name, "m", "m", externalMember("m", other));
}

}  // namespace

TEST_F(GroupDataSourceTest, KnowsItsNameAndKindAndIsFoundByItsName) {
  auto const made = host_.get<moxGroupDataSource>("moxGroupDataSource");
  EXPECT_EQ(made->name(), "moxGroupDataSource");
  EXPECT_EQ(made->getTipo(), 3);
  made->setName("Boletim");
  EXPECT_EQ(made->description(), "Boletim");
  EXPECT_EQ(made->getZynItemRelated(), nullptr);
  made->setParentLibraryName("ESCOLA");
  EXPECT_EQ(made->getParentLibName(), "ESCOLA");
}

TEST_F(GroupDataSourceTest, UsersCallTheKindByItsLabel) {
  auto const* const permissions = moxInternalPluginContainer<GroupDataSource>("x").getPermissions();
  ASSERT_NE(permissions, nullptr);
  EXPECT_STREQ(permissions->label, "Grupo");
}

TEST_F(GroupDataSourceTest, MembersStandInTheOrderThatEditorsGiveThem) {
  auto const made = host_.get<moxGroupDataSource>("moxGroupDataSource");
  auto const a = host_.get<moxDadoDataSource>("moxDadoDataSource");
  auto const b = host_.get<moxDadoDataSource>("moxDadoDataSource");
  made->dataSources().add(a);
  made->dataSources().add(b);
  made->dataSources().add(a);
  EXPECT_EQ(made->dataSources().get(), (std::vector{a, b}));
  made->dataSources().move(b, a);
  EXPECT_EQ(made->dataSources().get(), (std::vector{b, a}));
}

// The element.

TEST_F(GroupDataSourceTest, AnEmptyNodeGivesFalseAndChangesNothing) {
  auto const text = group("G", "Alunos", "Alunos", "");
  auto const made = readGroup(text);
  EXPECT_FALSE(made->load({}));
  EXPECT_FALSE(made->save({}));
  EXPECT_EQ(made->getOutputSource(), "Alunos");
}

TEST_F(GroupDataSourceTest, MembersAreReadInTheirOrderAndWrittenBack) {
  auto const made = readGroup(
      group("G", "x", "f",
            member("Alunos", kStudents) + externalMember("f", "Do curso", {{"Alunos", "x"}}) +
                member("interno", group("H", "y", "z", member("y", kMarks)))));
  EXPECT_EQ(made->getName(), "G");
  EXPECT_EQ(made->getOutputSource(), "x");
  EXPECT_EQ(made->getFilterSource(), "f");
  Strings names;
  for (auto const& each : made->dataSources().get()) {
    names.push_back(each->getName());
  }
  EXPECT_EQ(names, (Strings{"Alunos", "f", "interno"}));
  auto const text = textOf(*made);
  EXPECT_EQ(textOf(*readGroup(text)), text);
  EXPECT_NE(text.find("<relation external=\"Alunos\" internal=\"x\"/>"), std::string::npos);
  EXPECT_NE(text.find("<moxGroupDataSource name=\"H\" outputSource=\"y\" filterSource=\"z\">"),
            std::string::npos);
}

TEST_F(GroupDataSourceTest, TheLeastGroupIsWrittenWithItsAttributesAndAnEmptyList) {
  EXPECT_EQ(textOf(*host_.get<moxGroupDataSource>("moxGroupDataSource")),
            "<moxGroupDataSource name=\"\" outputSource=\"\" filterSource=\"\"><DataSources/>"
            "</moxGroupDataSource>");
}

TEST_F(GroupDataSourceTest, AGroupWithoutAListHasNoMembers) {
  EXPECT_TRUE(readGroup("<moxGroupDataSource/>")->dataSources().get().empty());
}

TEST_F(GroupDataSourceTest, AnElementThatIsNoMemberFailsAndNamesIt) {
  auto const held = document(group("G", "", "", kStudents));
  auto const made = host_.get<moxGroupDataSource>("moxGroupDataSource");
  EXPECT_EQ(failureOf([&] { made->load(held->root()); }),
            "Membro de grupo inválido: moxSQLDataSource");
}

TEST_F(GroupDataSourceTest, AGroupWithAMemberOfAnUnknownKindIsLeftOutWhole) {
  enter(group("G", "m", "", member("m", "<moxDesconhecida/>")) + kStudents);
  EXPECT_EQ(entered("G"), nullptr);
  EXPECT_NE(entered("Alunos"), nullptr);
}

// Columns.

TEST_F(GroupDataSourceTest, ColumnsAreThoseOfTheMemberThatGivesTheResult) {
  auto const made = readGroup(group("G", "b", "", member("a", kMarks) + member("b", kStudents)));
  EXPECT_EQ(made->getColumns(), (Columns{{"id", Types::Int}, {"curso", Types::Int}}));
  EXPECT_EQ(made->getRelatedColumns({{"a", read(kMarks)}}), made->getColumns());
}

TEST_F(GroupDataSourceTest, WithoutThatMemberThereAreNoColumns) {
  EXPECT_TRUE(readGroup(group("G", "b", "", member("a", kMarks)))->getColumns().empty());
  EXPECT_TRUE(readGroup(group("G", "b", "", member("b", "")))->getColumns().empty());
}

TEST_F(GroupDataSourceTest, ColumnsOfAnExternalMemberThatIsGoneFail) {
  auto const made = readGroup(group("G", "b", "", externalMember("b", "Alunos")));
  EXPECT_EQ(failureOf([&] { made->getColumns(); }), kInvalid);
}

TEST_F(GroupDataSourceTest, DependsOnNothingAndOffersNoOptions) {
  enter(kStudents);
  auto const made = readGroup(group("G", "b", "b", externalMember("b", "Alunos")));
  EXPECT_TRUE(made->getRelatedDataSources(true).empty());
  EXPECT_TRUE(made->getRelatedDataSources(false).empty());
  EXPECT_TRUE(made->options().empty());
}

// Filters.

TEST_F(GroupDataSourceTest, FiltersAreThoseOfTheMemberThatTakesThem) {
  auto const made = readGroup(group("G", "a", "b", member("a", kMarks) + member("b", kStudents)));
  EXPECT_EQ(columnsOf(made->getFilters()), Strings{"curso"});
  EXPECT_EQ(columnsOf(made->createExecution()->getFilters()), Strings{"curso"});
}

TEST_F(GroupDataSourceTest, WithoutThatMemberThereAreNoFilters) {
  EXPECT_TRUE(readGroup(group("G", "a", "x", member("a", kStudents)))->getFilters().empty());
}

TEST_F(GroupDataSourceTest, AMembersManagerNarrowsTheFilters) {
  auto const made = readGroup(group(
      "G", "a", "a", member("a", kStudents) + member("m", manager("M", "<source name=\"a\"/>"))));
  EXPECT_TRUE(made->getFilters().empty());
}

TEST_F(GroupDataSourceTest, AMembersFilterSourceAnswersAFilterInTheUsersPlace) {
  auto const made = readGroup(group(
      "G", "a", "a",
      member("a", kStudents) +
          member("f", filterSource("F", "a",
                                   "<Filters><SemFiltro tableName=\"a\" columnName=\"curso\"/>"
                                   "</Filters>"))));
  EXPECT_TRUE(made->getFilters().empty());
}

TEST_F(GroupDataSourceTest, AManagerMayTakeTheGroupsFilters) {
  auto const made =
      readGroup(group("G", "a", "m",
                      member("a", kStudents) +
                          member("m", manager("M", ruled("a", "periodo", "a", "curso"),
                                              "<moxIntegralInFilter columnName=\"periodo\"/>"))));
  EXPECT_EQ(columnsOf(made->getFilters()), Strings{"periodo"});
}

TEST_F(GroupDataSourceTest, FiltersOfAGroupInAGroupAreItsOwn) {
  auto const made =
      readGroup(group("G", "h", "h", member("h", group("H", "a", "a", member("a", kStudents)))));
  EXPECT_EQ(columnsOf(made->getFilters()), Strings{"curso"});
}

TEST_F(GroupDataSourceTest, FiltersOfAGroupThatCannotBeWiredFail) {
  EXPECT_EQ(failureOf([&] { readGroup(group("G", "a", "a", member("a", "")))->getFilters(); }),
            kInvalid);
  auto const lost =
      group("G", "a", "a", member("f", filterSource("F", "a", "")) + member("a", kStudents));
  EXPECT_EQ(failureOf([&] { readGroup(lost)->getFilters(); }), kNoOrigin);
}

// Rings.

TEST_F(GroupDataSourceTest, AGroupThatHoldsItselfFailsInEveryLookUp) {
  enter(groupOf("G", "G"));
  EXPECT_EQ(failureOf([&] { entered("G")->getColumns(); }), kInvalid);
  EXPECT_EQ(failureOf([&] { entered("G")->getFilters(); }), kInvalid);
  EXPECT_EQ(failureOf([&] { entered("G")->getRelatedColumns({}); }), kInvalid);
  EXPECT_EQ(failureOf([&] { entered("G")->createExecution()->getFilters(); }), kInvalid);
}

TEST_F(GroupDataSourceTest, GroupsThatHoldEachOtherFailInEveryLookUp) {
  enter(groupOf("G", "H") + groupOf("H", "G"));
  EXPECT_EQ(failureOf([&] { entered("G")->getColumns(); }), kInvalid);
  EXPECT_EQ(failureOf([&] { entered("H")->getFilters(); }), kInvalid);
}

TEST_F(GroupDataSourceTest, LookUpsWorkAgainAfterARing) {
  enter(groupOf("G", "G") + groupOf("H", "Alunos") + kStudents);
  EXPECT_EQ(failureOf([&] { entered("G")->getColumns(); }), kInvalid);
  EXPECT_EQ(entered("H")->getColumns().size(), 2u);
  EXPECT_EQ(columnsOf(entered("H")->getFilters()), Strings{"curso"});
}

}  // namespace mox_test
