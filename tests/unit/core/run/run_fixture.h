#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "core/run/definition_run.h"
#include "mox/core/xml.h"
#include "mox/zyn/filters/filter_specification.h"
#include "mox/zyn/items/zyn_cache.h"
#include "mox/zyn/items/zyn_collection.h"
#include "mox/zyn/matrix/data_matrix.h"
#include "support/test_host.h"

namespace mox::core::run_test {

/// A small school of three units, definitions that a test gives as XML, and their runs.
class RunTest : public testing::Test {
 protected:
  RunTest() {
    auto& database = host_.database();
    database.execute(
        "create table alunos (id int, nome varchar(40), nota double, nascimento date,"
        " id_unidade int, id_unidadematriz int)");
    database.execute(
        "insert into alunos values (1, 'Ana', 9.5, '2001-02-03', 3, 1),"
        " (2, 'Bia', 7.0, '2002-02-03', 4, 1), (3, 'Caio', 5.0, '2003-02-03', 3, 1),"
        " (4, 'Davi', null, null, 6, 2)");
  }

  /// The definitions between the tags of a collection's root element.
  void define(std::string const& elements) {
    auto const document = host_.get<moxXMLDocument>("moxXMLDocument");
    document->loadText("<moxZYNCollection>" + elements + "</moxZYNCollection>");
    auto const collection = host_.get<moxZYNCollection>("moxZYNCollection");
    ASSERT_TRUE(collection->unserialize(document->root()));
    host_.get<moxZYNCache>("moxZYNCache")->appendCollection(collection);
  }

  /// Ana and Caio belong to unit 3, Bia to 4, Davi to 6. With a unit column unless it is empty, and
  /// the given filters.
  void defineStudents(std::string const& unitColumn = "id_unidade",
                      std::string const& filters = "") {
    std::string const unit = unitColumn.empty() ? ""
                                                : "<unidadeColumn tableName=\"a\" columnName=\"" +
                                                      unitColumn + "\" allownull=\"0\"/>";
    define(
        "<moxSQLDataSource name=\"Alunos\"><Command type=\"1\"><from>alunos a</from>"
        "<where>a.id &gt; 0</where></Command>" +
        unit + "<Columns>" + column("id", 2) + column("nome", 1) + column("nota", 4) +
        column("nascimento", 5) + column("id_unidade", 2) + column("id_unidadematriz", 2) +
        "</Columns><Filters><column>" + filters + "</column></Filters></moxSQLDataSource>");
  }

  static std::string column(std::string const& name, int type) {
    return "<Column tableName=\"a\" columnName=\"" + name + "\" columnNameOrigin=\"" + name +
           "\" VisibleName=\"\" Visible=\"1\" Type=\"" + std::to_string(type) + "\"><sql alias=\"" +
           name + "\" index=\"0\">a." + name + "</sql></Column>";
  }

  /// A filter specification's element.
  static std::string filter(std::string const& className, std::string const& column,
                            std::string const& more = "") {
    return "<" + className + " tableName=\"" + (column.starts_with("{{") ? "" : "a") +
           "\" columnName=\"" + column + "\" " + more + "/>";
  }

  void logIn(std::vector<int> const& units, int headOffice = 1) {
    User user{.id = 7, .worksByUnits = true};
    for (int const unit : units) {
      user.units.push_back({unit, headOffice});
    }
    host_.logIn(user);
  }

  DefinitionRun newRun(std::string const& name = "Alunos") {
    return DefinitionRun(host_.application(), host_.application().sessions(), name);
  }

  /// The names of the students that a run shows, in the order of the table.
  std::string names(std::vector<std::string> const& filters, std::vector<int> units = {}) {
    auto run = newRun();
    run.setUnits(std::move(units));
    run.setFilters(filters);
    return namesOf(*run.run());
  }

  static std::string namesOf(moxDataMatrix const& matrix) {
    auto const column =
        std::dynamic_pointer_cast<moxDataMatrixTextColumn const>(matrix.columnByName("nome"));
    std::string names;
    for (unsigned int row = 0; row < column->numRows(); ++row) {
      names += (row == 0 ? "" : " ") + column->getValue(row);
    }
    return names;
  }

  TestHost host_{TestHost::kMemoryDatabase};
};

}  // namespace mox::core::run_test
