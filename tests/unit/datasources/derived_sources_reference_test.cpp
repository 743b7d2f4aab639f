#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <set>
#include <string>
#include <vector>

#include "mox/core/registry.h"
#include "mox/zyn/matrix/aggregation_function.h"
#include "mox/zyn/matrix/data_matrix_column.h"
#include "unit/datasources/definition_fixture.h"

namespace {

using Strings = std::vector<std::string>;

std::string reference() {
  std::ifstream file(std::filesystem::path(TEST_DOCS_DIR) / "reference" / "derived-sources.md");
  return {std::istreambuf_iterator<char>(file), {}};
}

Strings linesOf(std::string const& text) {
  Strings lines;
  for (std::size_t start = 0, end = 0; (end = text.find('\n', start)) != std::string::npos;
       start = end + 1) {
    lines.push_back(text.substr(start, end - start));
  }
  return lines;
}

/// What stands under the heading, up to the next one.
std::string sectionOf(std::string const& heading) {
  auto const text = reference();
  auto const start = text.find("\n## " + heading + "\n");
  return start == std::string::npos ? ""
                                    : text.substr(start, text.find("\n## ", start + 1) - start);
}

/// The indented blocks of the section.
Strings examplesOf(std::string const& heading) {
  Strings found;
  bool inside = false;
  for (auto const& line : linesOf(sectionOf(heading))) {
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

/// Names of elements and attributes in a text whose values hold neither "<" nor "=".
std::set<std::string> namesIn(std::string const& xml) {
  std::set<std::string> names;
  for (auto at = xml.find('<'); at != std::string::npos; at = xml.find('<', at + 1)) {
    if (xml[at + 1] != '/') {
      names.insert(xml.substr(at + 1, xml.find_first_of(" />", at) - at - 1));
    }
  }
  for (auto at = xml.find("=\""); at != std::string::npos; at = xml.find("=\"", at + 1)) {
    auto const start = xml.rfind(' ', at) + 1;
    names.insert(xml.substr(start, at - start));
  }
  return names;
}

/// A kind of source: where people read of it, and an element that has everything.
struct Kind {
  char const* heading;
  char const* label;
  char const* everything;
};

constexpr Kind kKinds[] = {
    {"Aggregation", "Sumarização",
     "<moxAggregationDataSource><moxDataMatrixAggregator><Indexes><Index name=\"a\"/></Indexes>"
     "<Functions><moxIntegralSum/></Functions></moxDataMatrixAggregator>"
     "</moxAggregationDataSource>"},
    {"Sorter", "Ordenação",
     "<moxSorterDataSource userDefined=\"yes\"><column dir=\"asc\"/></moxSorterDataSource>"},
    {"Object", "Execução SQL", "<moxObjectDataSource/>"},
    {"Union", "União",
     "<moxUnionDataSource><sources><source><moxDataMatrixIntColumn/><moxDataMatrixDoubleColumn/>"
     "<moxDataMatrixTextColumn/><moxDataMatrixDateColumn/></source></sources></"
     "moxUnionDataSource>"},
    {"Expression", "Expressão",
     "<moxExpressionDataSource><expressions><moxColumnExpression decimalPrecision=\"2\"/>"
     "</expressions></moxExpressionDataSource>"},
    {"Pivot", "Pivô",
     "<moxDataSourcePivoting><columns><column/></columns><rows><row/></rows><cells><cell/></cells>"
     "</moxDataSourcePivoting>"},
};

/// What people read about sources made of other sources is what they are.
class DerivedSourcesReference : public mox_test::DefinitionTest {
 protected:
  static Columns rowsOfFunctions(TestHost& host) {
    Columns rows;
    for (auto const& entry : host.application().registry().classes()) {
      auto const made = host.get<moxPluginBase>(entry.name);
      auto const function = std::dynamic_pointer_cast<moxAggregationFunction>(made);
      if (function) {
        rows.emplace_back(entry.name, function->columns().at(0)->getType());
      }
    }
    return rows;
  }
};

}  // namespace

TEST_F(DerivedSourcesReference, EveryNameThatIsWrittenIsTold) {
  for (auto const& kind : kKinds) {
    auto const text = sectionOf(kind.heading);
    auto const names = namesIn(textOf(*read(kind.everything)));
    EXPECT_GE(names.size(), 4u) << kind.heading;
    for (auto const& name : names) {
      EXPECT_NE(text.find("`" + name + "`"), std::string::npos) << kind.heading << ": " << name;
    }
  }
}

TEST_F(DerivedSourcesReference, EveryKindTellsItsLabel) {
  for (auto const& kind : kKinds) {
    auto const label = "under the label \"" + std::string(kind.label) + "\"";
    EXPECT_NE(sectionOf(kind.heading).find(label), std::string::npos) << kind.heading;
  }
}

TEST_F(DerivedSourcesReference, EveryExampleLoadsAndMakesTheRoundTrip) {
  for (auto const& kind : kKinds) {
    auto const examples = examplesOf(kind.heading);
    EXPECT_FALSE(examples.empty()) << kind.heading;
    for (auto const& example : examples) {
      auto const kept = textOf(*read(example));
      EXPECT_EQ(textOf(*read(kept)), kept) << example;
      auto const names = namesIn(kept);
      for (auto const& name : namesIn(example)) {
        EXPECT_EQ(names.count(name), 1u) << name << " of\n" << example;
      }
    }
  }
}

TEST_F(DerivedSourcesReference, TheTableOfFunctionsIsThatOfTheRegistry) {
  constexpr char const* const kTypes[] = {"Int", "Double", "Text", "Date", "Blob"};
  Strings expected;
  for (auto const& [name, type] : rowsOfFunctions(host_)) {
    expected.push_back("| `" + name + "` | " + kTypes[type] + " |");
  }
  EXPECT_EQ(expected.size(), 18u);
  Strings told;
  for (auto const& line : linesOf(sectionOf("Aggregation"))) {
    if (line.rfind("| `mox", 0) == 0 && line.find("| must be there") == std::string::npos) {
      told.push_back(line.substr(0, line.find('|', line.find('|', 2) + 1) + 1));
    }
  }
  EXPECT_EQ(told, expected);
}
