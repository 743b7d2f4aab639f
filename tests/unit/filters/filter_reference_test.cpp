#include <cxxabi.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "unit/filters/filters_fixture.h"
#include "zyn/datasources/sql_data_source_column.h"

namespace mox_test {

namespace {

std::vector<std::string> referenceLines() {
  std::ifstream file(std::filesystem::path(TEST_DOCS_DIR) / "reference" / "filters.md");
  std::vector<std::string> lines;
  for (std::string line; std::getline(file, line);) {
    lines.push_back(line);
  }
  return lines;
}

/// The indented blocks, each with its lines joined.
std::vector<std::string> examples() {
  std::vector<std::string> found;
  bool inside = false;
  for (auto const& line : referenceLines()) {
    bool const indented = line.rfind("    ", 0) == 0;
    if (indented && !inside) {
      found.emplace_back();
    }
    if (indented) {
      found.back() += line.substr(4) + "\n";
    }
    inside = indented;
  }
  return found;
}

std::string nameOf(std::type_info const& type) {
  std::unique_ptr<char, decltype(&std::free)> const readable(
      abi::__cxa_demangle(type.name(), nullptr, nullptr, nullptr), &std::free);
  return readable.get();
}

std::string kindOf(moxDataMatrixTypes::Types type) {
  switch (type) {
    case moxDataMatrixTypes::Int:
      return "integer";
    case moxDataMatrixTypes::Double:
      return "double";
    case moxDataMatrixTypes::Text:
      return "text";
    default:
      return "date";
  }
}

std::string rowOf(moxFilterSpecification const& spec) {
  auto const count = spec.bindCount();
  return "| `" + spec.name() + "` | " + kindOf(spec.getType()) + " | " +
         (count == 0 ? "any number" : std::to_string(count)) + " | `" +
         nameOf(spec.getAcceptedVisualRepresentationType()) + "` |";
}

/// Attributes of an element as `name="value"`, whose values hold no quote.
std::set<std::string> attributesOf(std::string const& xml) {
  std::set<std::string> attributes;
  for (std::size_t end = xml.find("=\""); end != std::string::npos; end = xml.find("=\"", end)) {
    auto const start = xml.find_last_of(" \n", end) + 1;
    end = xml.find('"', end + 2);
    attributes.insert(xml.substr(start, end + 1 - start));
  }
  return attributes;
}

/// Names of elements and attributes.
std::set<std::string> namesIn(std::string const& xml) {
  std::set<std::string> names;
  for (auto const& attribute : attributesOf(xml)) {
    names.insert(attribute.substr(0, attribute.find('=')));
  }
  for (auto start = xml.find('<'); start != std::string::npos; start = xml.find('<', start + 1)) {
    if (xml[start + 1] != '/') {
      names.insert(xml.substr(start + 1, xml.find_first_of(" />", start) - start - 1));
    }
  }
  return names;
}

}  // namespace

/// What people read about filter specifications is what they are.
class FilterReference : public FiltersFixture {
 protected:
  /// Those of the registry, in their order.
  std::vector<std::shared_ptr<moxFilterSpecification>> specifications() {
    std::vector<std::shared_ptr<moxFilterSpecification>> all;
    for (auto const& entry : host_.application().registry().classes()) {
      if (auto spec = specification(entry.name)) {
        all.push_back(std::move(spec));
      }
    }
    return all;
  }
};

TEST_F(FilterReference, TheTableIsThatOfTheRegistry) {
  std::vector<std::string> expected;
  for (auto const& spec : specifications()) {
    expected.push_back(rowOf(*spec));
  }
  std::vector<std::string> told;
  for (auto const& line : referenceLines()) {
    if (line.rfind("| `mox", 0) == 0) {
      told.push_back(line);
    }
  }
  EXPECT_EQ(told, expected);
}

TEST_F(FilterReference, EveryAttributeAndChildIsTold) {
  auto const spec = specification("moxTextUniqueFilter");
  spec->setVisualRepresentation("testCalendar");
  spec->setSQLDataSourceColumn(std::make_shared<SQLDataSourceColumn>());
  auto names = namesIn(saved(*spec));
  ASSERT_EQ(names.erase("r"), 1u);
  ASSERT_EQ(names.erase("weeks"), 1u);
  EXPECT_EQ(names.size(), 14u);

  std::string text;
  for (auto const& line : referenceLines()) {
    text += line;
  }
  for (auto const& name : names) {
    EXPECT_NE(text.find("`" + name + "`"), std::string::npos) << name;
  }
}

TEST_F(FilterReference, EveryExampleLoadsAndLosesNothing) {
  for (auto const& example : examples()) {
    auto const kept = attributesOf(saved(*loaded(example)));
    for (auto const& attribute : attributesOf(example)) {
      EXPECT_EQ(kept.count(attribute), 1u) << attribute << " of\n" << example;
    }
  }
}

TEST_F(FilterReference, EverySpecificationHasAnExample) {
  auto const all = examples();
  for (auto const& spec : specifications()) {
    EXPECT_TRUE(std::any_of(all.begin(), all.end(), [&](std::string const& example) {
      return example.rfind("<" + spec->name() + " ", 0) == 0;
    })) << spec->name();
  }
}

}  // namespace mox_test
