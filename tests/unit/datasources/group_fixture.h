#pragma once

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "mox/zyn/datasources/filter_data_source.h"
#include "mox/zyn/datasources/group_data_source.h"
#include "mox/zyn/datasources/run_report.h"
#include "mox/zyn/datasources/sql_data_source_execution.h"
#include "mox/zyn/filters/filter_specification.h"
#include "mox/zyn/sql/data_matrix_sql_in_filters.h"
#include "support/matrix_builder.h"
#include "unit/datasources/definition_fixture.h"
#include "zyn/datasources/group_data_source_execution.h"

namespace mox_test {

using Strings = std::vector<std::string>;
using Pairs = std::vector<std::pair<std::string, std::string>>;

/// A query of integer columns, "table.column" each, on tables of one letter.
inline std::string query(std::string const& name, std::string const& from, Strings const& columns,
                         std::string const& content = "") {
  std::string text = "<moxSQLDataSource name=\"" + name + "\"><Command type=\"1\"><from>" + from +
                     "</from></Command><Columns>";
  for (std::size_t i = 0; i < columns.size(); ++i) {
    auto const column = columns[i].substr(2);
    text += "<Column tableName=\"" + columns[i].substr(0, 1) + "\" columnName=\"" + column +
            "\" columnNameOrigin=\"" + column + "\" Type=\"2\"><sql index=\"" + std::to_string(i) +
            "\">" + columns[i] + "</sql></Column>";
  }
  return text + "</Columns>" + content + "</moxSQLDataSource>";
}

inline std::string filterSource(std::string const& name, std::string const& changed,
                                std::string const& content) {
  return "<moxFilterDataSource name=\"" + name + "\" dataSource=\"" + changed + "\">" + content +
         "</moxFilterDataSource>";
}

/// The comparisons of the condition are written as XML has them.
inline std::string where(std::string condition) {
  for (auto at = condition.find('<'); at != std::string::npos; at = condition.find('<')) {
    condition.replace(at, 1, "&lt;");
  }
  return "<where>" + condition + "</where>";
}

/// What it rules is a list of "source" elements.
inline std::string manager(std::string const& name, std::string const& ruled,
                           std::string const& filters = "") {
  return "<moxManageFilterDataSource name=\"" + name + "\"><sources>" + ruled +
         "</sources><Filters>" + filters + "</Filters></moxManageFilterDataSource>";
}

/// A filter of a manager that answers for a column of the source, and may be used on it.
inline std::string ruled(std::string const& source, std::string const& filter,
                         std::string const& table, std::string const& column) {
  return "<source name=\"" + source + "\"><avaliable><filter filterName=\"" + filter +
         "\"/></avaliable><related><filter tableNameOrigin=\"\" columnNameOrigin=\"\" "
         "tableName=\"" +
         table + "\" columnName=\"" + column + "\" filterNameRelac=\"" + filter +
         "\"/></related></source>";
}

/// A member that holds the source of that element.
inline std::string member(std::string const& name, std::string const& content) {
  return "<moxDadoDataSource name=\"" + name + "\">" + content + "</moxDadoDataSource>";
}

/// A member whose source is elsewhere, with its inputs: (external, internal).
inline std::string externalMember(std::string const& name, std::string const& source,
                                  Pairs const& relations = {}) {
  std::string text = "<moxDadoDataSource name=\"" + name + "\" dataSource=\"" + source +
                     "\"><sourcesExternalRelation>";
  for (auto const& [external, internal] : relations) {
    text += "<relation external=\"" + external + "\" internal=\"" + internal + "\"/>";
  }
  return text + "</sourcesExternalRelation></moxDadoDataSource>";
}

/// A link of a member's own column, "table.column", to a column of another member.
inline std::string relation(std::string const& own, std::string const& otherMember,
                            std::string const& column) {
  return "<Relation columnNameOrigin=\"\" tableNameOrigin=\"\" columnName=\"" + own.substr(2) +
         "\" tableName=\"" + own.substr(0, 1) + "\"><DataSourceOrigin dataSource=\"" + otherMember +
         "\" columnName=\"" + column + "\"/></Relation>";
}

inline std::string group(std::string const& name, std::string const& output,
                         std::string const& filters, std::string const& members) {
  return "<moxGroupDataSource name=\"" + name + "\" outputSource=\"" + output +
         "\" filterSource=\"" + filters + "\"><DataSources>" + members +
         "</DataSources></moxGroupDataSource>";
}

/// A group "G" of the students, with further members.
inline std::string students(std::string const& more = "") {
  return group("G", "a", "a",
               member("a", query("Alunos", "alunos a", {"a.id", "a.curso", "a.unidade"},
                                 "<Order><By tableName=\"a\" columnName=\"id\"/></Order>")) +
                   more);
}

/// The part of a filter source that keeps students to a course.
inline std::string onCourse(int course) {
  return where("a.curso = " + std::to_string(course));
}

/// Six students of two courses: 1 to 3 of course 10, 4 to 6 of course 20, the third of each with a
/// mark below 5.
class GroupSourceTest : public DefinitionTest {
 protected:
  using Matrix = std::shared_ptr<moxDataMatrix>;
  using Filter = std::shared_ptr<moxDataMatrixSQLIntegerInFilter>;
  using ConstMember = std::shared_ptr<moxDadoDataSource const>;

  GroupSourceTest() : GroupSourceTest(TestHost::kMemoryDatabase) {}
  explicit GroupSourceTest(std::string const& databaseUrl)
      : DefinitionTest(databaseUrl), context_(newContext()) {
    auto& database = host_.database();
    database.execute("create table alunos (id int, curso int, unidade int)");
    database.execute(
        "insert into alunos values (1, 10, 1), (2, 10, 1), (3, 10, 2), (4, 20, 1), (5, 20, 1), "
        "(6, 20, 2)");
    database.execute("create table notas (aluno int, nota int)");
    database.execute("insert into notas values (1, 9), (2, 7), (3, 4), (4, 8), (5, 6), (6, 3)");
  }

  inline static std::string const kStudents =
      query("Alunos", "alunos a", {"a.id", "a.curso"},
            "<Order><By tableName=\"a\" columnName=\"id\"/></Order>"
            "<Filters><column><moxIntegralInFilter tableName=\"a\" columnName=\"curso\"/></column>"
            "</Filters>");
  inline static std::string const kMarks =
      query("Notas", "notas n", {"n.aluno", "n.nota"},
            "<Order><By tableName=\"n\" columnName=\"aluno\"/></Order>");

  std::shared_ptr<moxGroupDataSource> readGroup(std::string const& text) {
    return read<moxGroupDataSource>(text);
  }

  Filter among(std::string const& table, std::string const& column, std::vector<int> values) {
    auto filter = host_.get<moxDataMatrixSQLIntegerInFilter>("moxDataMatrixSQLIntegerInFilter");
    filter->setColumnName(table, column);
    for (int const value : values) {
      filter->pushVal(value);
    }
    return filter;
  }

  static std::shared_ptr<GroupDataSourceExecution> executionOf(moxDataSource const& definition) {
    auto made = std::dynamic_pointer_cast<GroupDataSourceExecution>(definition.createExecution());
    EXPECT_NE(made, nullptr);
    return made;
  }

  void process(std::shared_ptr<moxDataSourceExecution> const& execution,
               std::string const& target = "G", std::vector<int> const& units = {},
               int headOffice = 0) {
    context_->processDataSources({}, {{target, {false, execution}}}, units, headOffice);
  }

  /// The integers of a column in the result of the group, which runs as "G".
  std::vector<int> run(std::shared_ptr<moxDataSourceExecution> const& execution,
                       std::string const& column = "id") {
    process(execution);
    return integers(context_->getDataMatrix("G"), column);
  }

  std::vector<int> run(std::string const& groupText, std::string const& column = "id") {
    return run(readGroup(groupText)->createExecution(), column);
  }

  static std::vector<int> integers(Matrix const& rows, std::string const& column) {
    std::vector<int> values;
    auto const found = rows ? rows->columnByName(column) : nullptr;
    EXPECT_NE(found, nullptr) << column;
    auto const cursor = found ? found->begin() : nullptr;
    if (cursor && !cursor->atEnd()) {
      auto const& typed = dynamic_cast<moxIteratorBase<int> const&>(*cursor);
      do {
        values.push_back(typed.get());
      } while (cursor->next());
    }
    return values;
  }

  static Strings columnsOf(
      std::vector<std::shared_ptr<moxFilterSpecification const>> const& filters) {
    Strings columns;
    for (auto const& filter : filters) {
      columns.push_back(filter->getColumn());
    }
    return columns;
  }

  /// A filter source from outside the group, whose source bears that name.
  std::shared_ptr<moxFilterDataSource const> filterOn(std::string const& source,
                                                      std::string const& condition) {
    return read<moxFilterDataSource>(filterSource("De fora", source, where(condition)));
  }

  ConstMember memberOf(std::string const& name, std::string const& source) {
    auto made = host_.get<moxDadoDataSource>("moxDadoDataSource");
    made->setName(name);
    made->setDataSource(read(source));
    return made;
  }

  /// The failure of a run of the group as "G".
  std::string failureOfRun(std::string const& groupText) {
    auto const held = readGroup(groupText);
    return failureOf([&] { process(held->createExecution()); });
  }

  moxRunReporter& reporter() { return dynamic_cast<moxRunReporter&>(*context_); }

  std::shared_ptr<moxDataSourceExecutionContext> context_;
};

}  // namespace mox_test
