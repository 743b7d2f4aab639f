#pragma once

#include <string>
#include <vector>

#include "unit/core/run/run_fixture.h"

namespace mox::core::run_test {

/// Groups over the students of the small school: Ana and Caio of unit 3, Bia of 4, Davi of 6.
class GroupTest : public RunTest {
 protected:
  /// A query over the students; with a unit column unless it is empty.
  static std::string students(std::string const& name, std::string const& unitColumn = "id_unidade",
                              std::string const& filters = "", std::string const& where = "") {
    std::string const unit = unitColumn.empty() ? ""
                                                : "<unidadeColumn tableName=\"a\" columnName=\"" +
                                                      unitColumn + "\" allownull=\"0\"/>";
    return "<moxSQLDataSource name=\"" + name +
           "\"><Command type=\"1\"><from>alunos a</from><where>" +
           (where.empty() ? "a.id &gt; 0" : where) + "</where></Command>" + unit + "<Columns>" +
           column("id", 2) + column("nome", 1) + column("nota", 4) + column("nascimento", 5) +
           column("id_unidade", 2) + column("id_unidadematriz", 2) + "</Columns><Filters><column>" +
           filters + "</column></Filters></moxSQLDataSource>";
  }

  /// A member that holds its source.
  static std::string member(std::string const& name, std::string const& source,
                            std::string const& attributes = "", std::string const& more = "") {
    return "<moxDadoDataSource name=\"" + name + "\" " + attributes + ">" + source + more +
           "</moxDadoDataSource>";
  }

  /// A member that names its source.
  static std::string external(std::string const& name, std::string const& source,
                              std::string const& attributes = "", std::string const& more = "") {
    return "<moxDadoDataSource name=\"" + name + "\" dataSource=\"" + source + "\" " + attributes +
           ">" + more + "</moxDadoDataSource>";
  }

  static std::string group(std::string const& name, std::string const& output,
                           std::string const& filterSource, std::string const& members) {
    return "<moxGroupDataSource name=\"" + name + "\" outputSource=\"" + output +
           "\" filterSource=\"" + filterSource + "\"><DataSources>" + members +
           "</DataSources></moxGroupDataSource>";
  }

  /// A manager that puts its filter `given` on `column` of the source `ruled`.
  static std::string manager(std::string const& ruled, std::string const& given,
                             std::string const& column,
                             std::string const& filterClass = "moxIntegralInFilter") {
    return "<moxManageFilterDataSource name=\"G\"><sources><source name=\"" + ruled +
           "\"><avaliable/><related><filter tableNameOrigin=\"\" columnNameOrigin=\"\" "
           "tableName=\"a\" columnName=\"" +
           column + "\" filterNameRelac=\"" + given +
           "\"/></related></source></sources><Filters><" + filterClass + " columnName=\"" + given +
           "\" tableName=\"\"/></Filters></moxManageFilterDataSource>";
  }

  static std::string relation(std::string const& from, std::string const& fromColumn,
                              std::string const& column) {
    return "<Relation columnNameOrigin=\"" + column +
           "\" tableNameOrigin=\"alunos\" columnName=\"" + column +
           "\" tableName=\"a\"><DataSourceOrigin dataSource=\"" + from + "\" columnName=\"" +
           fromColumn + "\"/></Relation>";
  }

  std::string namesIn(std::string const& definition, std::vector<std::string> const& filters = {},
                      std::vector<int> units = {}) {
    auto run = newRun(definition);
    run.setUnits(std::move(units));
    run.setFilters(filters);
    return namesOf(*run.run());
  }
};

}  // namespace mox::core::run_test
