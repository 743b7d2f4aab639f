#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <ostream>
#include <string>
#include <typeinfo>
#include <vector>

#include "mox/core/filter_controls.h"
#include "mox/core/registry.h"
#include "mox/zyn/filters/filter_specification.h"
#include "mox/zyn/format/properties_collection.h"
#include "mox/zyn/format/properties_object.h"
#include "mox/zyn/frame/plugin_entry.h"
#include "mox/zyn/sql/data_matrix_sql_filter.h"
#include "unit/format/formatter_fixture.h"
#include "zyn/frame/class_table.h"
#include "zyn/frame/plugin_containers.h"

namespace mox_test {

/// What is laid down of one of the twelve classes.
struct FilterRow {
  char const* registeredName;
  moxDataMatrixTypes::Types type;
  int bindCount;
  char const* sqlFilter;
  std::type_info const* control;
};

inline std::vector<FilterRow> const& filterRows() {
  using Types = moxDataMatrixTypes;
  static std::vector<FilterRow> const rows = {
      {"moxIntegralUniqueFilter", Types::Int, 1, "moxDataMatrixSQLIntegerUniqueFilter",
       &typeid(moxIntegralUniqueFilterControl)},
      {"moxIntegralUniqueSQLFilter", Types::Int, 1, "moxDataMatrixSQLIntegerUniqueSQLFilter",
       &typeid(moxIntegralUniqueFilterControl)},
      {"moxIntegralRangeFilter", Types::Int, 2, "moxDataMatrixSQLIntegerRangeFilter",
       &typeid(moxIntegralRangeFilterControl)},
      {"moxIntegralInFilter", Types::Int, 0, "moxDataMatrixSQLIntegerInFilter",
       &typeid(moxIntegralInFilterControl)},
      {"moxDoubleUniqueFilter", Types::Double, 1, "moxDataMatrixSQLDoubleUniqueFilter",
       &typeid(moxDoubleUniqueFilterControl)},
      {"moxDoubleRangeFilter", Types::Double, 2, "moxDataMatrixSQLDoubleRangeFilter",
       &typeid(moxDoubleRangeFilterControl)},
      {"moxDoubleInFilter", Types::Double, 0, "moxDataMatrixSQLDoubleInFilter",
       &typeid(moxDoubleInFilterControl)},
      {"moxTextUniqueFilter", Types::Text, 1, "moxDataMatrixSQLTextUniqueFilter",
       &typeid(moxTextUniqueFilterControl)},
      {"moxTextRangeFilter", Types::Text, 2, "moxDataMatrixSQLTextRangeFilter",
       &typeid(moxTextRangeFilterControl)},
      {"moxTextInFilter", Types::Text, 0, "moxDataMatrixSQLTextInFilter",
       &typeid(moxTextInFilterControl)},
      {"moxDateUniqueFilter", Types::Date, 1, "moxDataMatrixSQLDateUniqueFilter",
       &typeid(moxDateUniqueFilterControl)},
      {"moxDateRangeFilter", Types::Date, 2, "moxDataMatrixSQLDateRangeFilter",
       &typeid(moxDateRangeFilterControl)}};
  return rows;
}

inline void PrintTo(FilterRow const& row, std::ostream* out) {
  *out << row.registeredName;
}

inline std::string nameOfRow(testing::TestParamInfo<FilterRow> const& info) {
  return info.param.registeredName;
}

/// Settings of a control "testCalendar": how many weeks it shows.
class CalendarProperties final : public moxPropertiesObject {
 public:
  CalendarProperties() { properties_->addIntProperty("weeks", "Semanas", &weeks_); }

  std::string name() const override { return "testCalendar_ep"; }
  std::shared_ptr<moxPropertiesCollection> getProperties() const override { return properties_; }
  void propertyChanged() override {}

  int weeks() const { return weeks_; }

 private:
  int weeks_ = 4;
  std::shared_ptr<moxPropertiesCollection> properties_ =
      moxApp->get<moxPropertiesCollection>("moxPropertiesCollection");
};

/// Settings that cannot be made: the failure is not even an exception of the library.
class FaultyProperties final : public moxPropertiesObject {
 public:
  FaultyProperties() { throw 7; }

  std::string name() const override { return "testFaulty_ep"; }
  std::shared_ptr<moxPropertiesCollection> getProperties() const override { return {}; }
  void propertyChanged() override {}
};

/// A class that bears the name of a control's settings and is none.
class NoProperties final : public moxPluginBase {
 public:
  std::string name() const override { return "testOther_ep"; }
};

inline int registerTestControls(moxPluginRegistry* registry) {
  registry->setLibraryName(kLibraryName);
  registry->registerClass(
      std::make_unique<moxInternalPluginContainer<CalendarProperties>>("testCalendar_ep"));
  registry->registerClass(
      std::make_unique<moxInternalPluginContainer<FaultyProperties>>("testFaulty_ep"));
  registry->registerClass(
      std::make_unique<moxInternalPluginContainer<NoProperties>>("testOther_ep"));
  return 1;
}

inline void enterTestControls(VELMORApplication* application, moxSessionService* session) {
  moxPlugIn_EntryPoint(application, session);
}

/// A host that also knows the settings of the tests' controls.
class FiltersFixture : public FormatterFixture {
 protected:
  FiltersFixture() {
    host_.application().addModule({moxPlugIn_ModuleVersion, moxPlugIn_DoValidityCheck,
                                   enterTestControls, registerTestControls},
                                  "the tests' controls");
  }

  std::shared_ptr<moxFilterSpecification> specification(std::string const& registeredName) {
    return host_.get<moxFilterSpecification>(registeredName);
  }

  /// A specification that has loaded that element.
  std::shared_ptr<moxFilterSpecification> loaded(std::string const& text) {
    auto const node = xml(text);
    auto spec = specification(node->elementName());
    EXPECT_TRUE(spec->load(node));
    return spec;
  }
};

}  // namespace mox_test
