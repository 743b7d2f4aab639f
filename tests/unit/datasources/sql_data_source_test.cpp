#include "zyn/datasources/sql_data_source.h"

#include <vector>

#include "mox/core/registry.h"
#include "mox/core/xml.h"
#include "mox/zyn/filters/filter_specification.h"
#include "unit/datasources/sql_source_fixture.h"
#include "zyn/datasources/data_source_label.h"

namespace {

using Strings = std::vector<std::string>;

class SqlDataSource : public sql_source_test::SqlSourceTest {
 protected:
  std::shared_ptr<moxFilterSpecification> filter() {
    return host_.get<moxFilterSpecification>("moxIntegralUniqueFilter");
  }
};

Strings namesOf(moxSQLDataSource const& source) {
  Strings names;
  for (auto const& [name, type] : source.getColumns()) {
    names.push_back(name);
  }
  return names;
}

/// A column of that name and expression behind the others.
std::shared_ptr<moxSQLDataSourceColumn> add(moxSQLDataSource& source, std::string const& name,
                                            std::string const& expression = "",
                                            std::string const& alias = "", int index = 0) {
  auto column = source.createColumn(nullptr);
  column->setColumnName(name);
  column->setSQLColumn({expression, alias});
  column->setSQLColumnIndex(index);
  return column;
}

}  // namespace

TEST_F(SqlDataSource, KnowsItsNameAndKindAndIsFoundByItsName) {
  auto const made = newSource();
  ASSERT_NE(made, nullptr);
  EXPECT_EQ(made->name(), "moxSQLDataSource");
  EXPECT_EQ(made->getTipo(), 3);
  EXPECT_EQ(made->description(), "");
  made->setName("Alunos");
  EXPECT_EQ(made->description(), "Alunos");
  EXPECT_EQ(made->getParentLibName(), "");
  made->setParentLibraryName("ESCOLA");
  EXPECT_EQ(made->getParentLibName(), "ESCOLA");
}

TEST_F(SqlDataSource, UsersCallTheKindByItsLabel) {
  auto const* const permissions = PluginPermissionsOf<SQLDataSource>::get();
  ASSERT_NE(permissions, nullptr);
  EXPECT_STREQ(permissions->label, "Consulta SQL");
  for (auto const word : permissions->reserved) {
    EXPECT_EQ(word, 0u);
  }
  EXPECT_EQ(sizeof(moxPluginPermissions), 5 * sizeof(void*));
  EXPECT_EQ(moxInternalPluginContainer<SQLDataSource>("x").getPermissions(), permissions);
}

TEST_F(SqlDataSource, DependsOnNothingAndOffersNoOptions) {
  auto const made = threeColumns();
  EXPECT_TRUE(made->options().empty());
  EXPECT_TRUE(made->getRelatedDataSources(false).empty());
  EXPECT_TRUE(made->getRelatedDataSources(true).empty());
  EXPECT_EQ(made->getRelatedColumns({{"other", newSource()}}), made->getColumns());
  EXPECT_EQ(made->getZynItemRelated(), nullptr);
}

TEST_F(SqlDataSource, ColumnsOfAConstantSourceAreConstantAndTheSameObjects) {
  auto const made = threeColumns();
  auto const& constant = std::as_const(*made);
  ASSERT_EQ(constant.columns().size(), 3u);
  EXPECT_EQ(constant.columns()[1], made->columns()[1]);
  EXPECT_EQ(constant.columnAt(2), made->columnAt(2));
  EXPECT_EQ(constant.findColumn("u", "nome"), made->columnAt(2));
}

TEST_F(SqlDataSource, ColumnAtBeyondTheEndIsEmpty) {
  auto const made = threeColumns();
  EXPECT_NE(made->columnAt(2), nullptr);
  EXPECT_EQ(made->columnAt(3), nullptr);
  EXPECT_EQ(std::as_const(*made).columnAt(4000000000u), nullptr);
}

TEST_F(SqlDataSource, FindColumnTakesTheTableFirstAndComparesExactly) {
  auto const made = threeColumns();
  EXPECT_EQ(made->findColumn("t", "nome"), made->columnAt(1));
  EXPECT_EQ(made->findColumn("u", "nome"), made->columnAt(2));
  EXPECT_EQ(made->findColumn("nome", "t"), nullptr);
  EXPECT_EQ(made->findColumn("T", "nome"), nullptr);
  EXPECT_EQ(made->findColumn("", "nome"), nullptr);
}

TEST_F(SqlDataSource, FindColumnGivesTheFirstOfTwo) {
  auto const made = newSource();
  auto const first = add(*made, "a");
  add(*made, "a");
  EXPECT_EQ(made->findColumn("", "a"), first);
}

TEST_F(SqlDataSource, CreateColumnStartsFromAField) {
  auto const made = newSource();
  moxDatabaseConnection::FieldInfo const field = {"n", "nome", "a", "aluno",
                                                  moxDatabaseConnection::FieldType::kText};
  auto const created = made->createColumn(&field);
  EXPECT_EQ(made->columnAt(0), created);
  EXPECT_EQ(created->getColumnNameFull(), "a.n (aluno.nome)");
  EXPECT_EQ(made->getColumns()[0], moxDataSourceColumnType("n", moxDataMatrixTypes::Text));
}

TEST_F(SqlDataSource, MovesAColumnAmongTheRemainingOnes) {
  auto const made = newSource();
  auto const a = add(*made, "a");
  add(*made, "b");
  auto const c = add(*made, "c");
  made->moveColumn(a, 1);
  EXPECT_EQ(namesOf(*made), (Strings{"b", "a", "c"}));
  made->moveColumn(c, 0);
  EXPECT_EQ(namesOf(*made), (Strings{"c", "b", "a"}));
  made->moveColumn(c, 2);
  EXPECT_EQ(namesOf(*made), (Strings{"b", "a", "c"}));
}

TEST_F(SqlDataSource, MovesToTheEndForAPlaceThatThereIsNot) {
  auto const made = newSource();
  auto const a = add(*made, "a");
  auto const b = add(*made, "b");
  made->moveColumn(a, 7);
  EXPECT_EQ(namesOf(*made), (Strings{"b", "a"}));
  made->moveColumn(b, -1);
  EXPECT_EQ(namesOf(*made), (Strings{"a", "b"}));
  made->moveColumn(add(*newSource(), "foreign"), 0);
  made->moveColumn({}, 0);
  EXPECT_EQ(namesOf(*made), (Strings{"a", "b"}));
}

TEST_F(SqlDataSource, RemovesAColumnByTheObject) {
  auto const made = newSource();
  add(*made, "a");
  auto const second = add(*made, "a");
  made->removeColumn(add(*newSource(), "a"));
  made->removeColumn({});
  EXPECT_EQ(made->columns().size(), 2u);
  made->removeColumn(second);
  ASSERT_EQ(made->columns().size(), 1u);
  EXPECT_NE(made->columnAt(0), second);
}

TEST_F(SqlDataSource, VisibleColumnsComeFirstEachGroupInItsOrder) {
  auto const made = newSource();
  for (auto const* const name : {"a", "b", "c", "d"}) {
    add(*made, name)->setVisible(name[0] == 'b' || name[0] == 'd');
  }
  made->normalizeColumnsVisibility();
  EXPECT_EQ(namesOf(*made), (Strings{"b", "d", "a", "c"}));
}

TEST_F(SqlDataSource, AnOrderColumnThatIsThereKeepsPlaceAndDirection) {
  auto const made = newSource();
  auto const a = add(*made, "a");
  auto const b = add(*made, "b");
  made->addOrderColumn(a, true);
  made->addOrderColumn(b, false);
  made->addOrderColumn(a, false);
  made->addOrderColumn({}, false);
  ASSERT_EQ(made->getOrderColumns().size(), 2u);
  EXPECT_EQ(made->getOrderColumns()[0].first, a);
  EXPECT_TRUE(made->getOrderColumns()[0].second);
  made->removeOrderColumn(a);
  ASSERT_EQ(made->getOrderColumns().size(), 1u);
  EXPECT_EQ(made->getOrderColumns()[0].first, b);
}

TEST_F(SqlDataSource, AddFilterTwiceWithOneObjectKeepsOneEntry) {
  auto const made = newSource();
  auto const one = filter();
  made->addFilter(one);
  made->addFilter(one);
  made->addFilter({});
  EXPECT_EQ(made->getFilters().size(), 1u);
  made->addFilter(filter());
  EXPECT_EQ(made->getFilters().size(), 2u);
  EXPECT_EQ(std::as_const(*made).getFilters()[0], one);
  made->removeFilter(filter());
  EXPECT_EQ(made->getFilters().size(), 2u);
  made->removeFilter(one);
  ASSERT_EQ(made->getFilters().size(), 1u);
  EXPECT_NE(made->getFilters()[0], one);
}

TEST_F(SqlDataSource, ThePlainStatementIsTakenAsItStands) {
  auto const made = newSource();
  made->setSQL("  select 1 ;");
  made->setSQLFrom("ignored");
  EXPECT_EQ(made->getSQL(), "  select 1 ;");
}

TEST_F(SqlDataSource, EachTextIsKeptForItself) {
  auto const made = newSource();
  std::string const text(300, 'x');
  made->setHeaderName("1" + text);
  made->setPrefix("2" + text);
  made->setSQL("3" + text);
  made->setSQLFrom("4" + text);
  made->setSQLJoin("5" + text);
  made->setSQLWhere("6" + text);
  made->setSQLGroup("7" + text);
  made->setSufix("8" + text);
  made->setWhereAnd("9" + text);
  made->setSQLJoin("");
  EXPECT_EQ(made->getHeaderName(), "1" + text);
  EXPECT_EQ(made->getPrefix(), "2" + text);
  EXPECT_EQ(made->getSQL(), "3" + text);
  EXPECT_EQ(made->getSQLFrom(), "4" + text);
  EXPECT_EQ(made->getSQLJoin(), "");
  EXPECT_EQ(made->getSQLWhere(), "6" + text);
  EXPECT_EQ(made->getSQLGroup(), "7" + text);
  EXPECT_EQ(made->getSufix(), "8" + text);
  EXPECT_EQ(made->getWhereAnd(), "9" + text);
}

TEST_F(SqlDataSource, PiecesThatAnElementLacksStayAsTheyWereSet) {
  auto const made = newSource();
  made->setPrefix("set @a = 1");
  made->setSQLWhere("a.x < 2");
  made->setSQLGroup("a.id");
  auto const text = document(
      "<moxSQLDataSource><Command type=\"1\"><from>aluno a</from><where>a.y &gt; "
      "3</where></Command>"
      "</moxSQLDataSource>");
  EXPECT_TRUE(made->load(text->root()));
  EXPECT_EQ(made->getPrefix(), "set @a = 1");
  EXPECT_EQ(made->getSQL(), "select  from aluno a where a.y > 3 group by a.id");
}

TEST_F(SqlDataSource, TheComposedStatementWithoutColumnsHasTwoBlanks) {
  auto const made = newSource();
  made->setSQLTipo(moxSQLDataSource::kComposed);
  made->setSQLFrom("aluno a");
  EXPECT_EQ(made->getSQL(), "select  from aluno a");
  EXPECT_EQ(made->getSQLColumnsPlain(), "");
}

TEST_F(SqlDataSource, TheComposedStatementPutsItsPiecesTogether) {
  auto const made = newSource();
  made->setSQLTipo(moxSQLDataSource::kComposed);
  made->setSQL("ignored");
  add(*made, "id", "a.id_aluno", "id");
  add(*made, "n", "count(*)");
  made->setSQLFrom("aluno a");
  EXPECT_EQ(made->getSQL(), "select a.id_aluno as id,count(*) from aluno a");
  made->setSQLJoin("join turma t on t.id_turma = a.id_turma");
  made->setSQLWhere("a.ativo = 1");
  made->setSQLGroup("a.id_aluno");
  EXPECT_EQ(made->getSQL(),
            "select a.id_aluno as id,count(*) from aluno a join turma t on t.id_turma = a.id_turma "
            "where a.ativo = 1 group by a.id_aluno");
}

TEST_F(SqlDataSource, TheSelectListLosesItsLastCommaOnly) {
  auto const made = newSource();
  add(*made, "a", "x", "a");
  add(*made, "b");
  add(*made, "c", "", "c");
  EXPECT_EQ(made->getSQLColumnsPlain(), "x as a,, as c");
  made->removeColumn(made->columnAt(2));
  EXPECT_EQ(made->getSQLColumnsPlain(), "x as a,");
}

TEST_F(SqlDataSource, ExpressionsComeByIndexAndTheLastOfOneIndexCounts) {
  auto const made = newSource();
  add(*made, "a", "x", "a", 5);
  add(*made, "b", "y", "b", -1);
  add(*made, "c", "z", "c", 5);
  add(*made, "d", "w", "d");
  using Pairs = std::vector<std::pair<std::string, std::string>>;
  EXPECT_EQ(made->getSQLColumns(), (Pairs{{"y", "b"}, {"w", "d"}, {"z", "c"}}));
}

TEST_F(SqlDataSource, SettingTheUnitColumnOverwritesColumnAndNulls) {
  auto const made =
      source("<Command/><unidadeColumn tableName=\"t\" columnName=\"id\" allownull=\"1\"/>" +
             kThreeColumns);
  EXPECT_EQ(made->getUnidadeColumn().first, made->columnAt(0));
  EXPECT_TRUE(made->getUnidadeColumn().second);
  made->setUnidadeColumn(made->columnAt(1), false);
  EXPECT_EQ(made->getUnidadeColumn().first, made->columnAt(1));
  EXPECT_FALSE(made->getUnidadeColumn().second);
}

TEST_F(SqlDataSource, ColumnsThatReferToEachOtherDieWithTheirSource) {
  auto made = newSource();
  auto a = add(*made, "a");
  auto b = add(*made, "b");
  auto alone = add(*made, "c");
  a->setIconColumn(b);
  b->setIdColumn(a);
  alone->setIdColumn(alone);
  alone->setIconColumn(alone);
  made->removeColumn(alone);
  std::weak_ptr<moxSQLDataSourceColumn> const watched[] = {a, b, alone};
  a.reset();
  b.reset();
  alone.reset();
  EXPECT_FALSE(watched[0].expired());
  made.reset();
  for (auto const& column : watched) {
    EXPECT_TRUE(column.expired());
  }
}

TEST_F(SqlDataSource, AColumnThatOutlivesItsSourceRefersToNothing) {
  auto made = newSource();
  auto const a = add(*made, "a");
  a->setIdColumn(add(*made, "b"));
  made.reset();
  EXPECT_EQ(a->getIdColumn(), nullptr);
  EXPECT_EQ(a->getColumnName(), "a");
}

TEST_F(SqlDataSource, AnExecutionKeepsItsDefinition) {
  auto made = threeColumns();
  std::weak_ptr<moxSQLDataSource> const watched = made;
  auto execution = made->createExecution();
  ASSERT_NE(execution, nullptr);
  EXPECT_NE(execution, made->createExecution());
  made.reset();
  EXPECT_FALSE(watched.expired());
  execution.reset();
  EXPECT_TRUE(watched.expired());
}

TEST_F(SqlDataSource, ADefinitionThatNothingHoldsGivesNoExecution) {
  SQLDataSource const unheld;
  EXPECT_THROW(unheld.createExecution(), std::bad_weak_ptr);
}
