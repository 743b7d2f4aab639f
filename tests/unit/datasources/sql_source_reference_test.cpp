#include <filesystem>
#include <fstream>
#include <iterator>
#include <set>
#include <string>
#include <vector>

#include "mox/zyn/filters/filter_specification.h"
#include "unit/datasources/sql_source_fixture.h"
#include "zyn/datasources/column_tags.h"

namespace {

std::string reference() {
  std::ifstream file(std::filesystem::path(TEST_DOCS_DIR) / "reference" / "sql-source.md");
  return {std::istreambuf_iterator<char>(file), {}};
}

/// The indented blocks that begin with the element.
std::vector<std::string> examplesOf(std::string const& element) {
  std::vector<std::string> found;
  std::string block;
  std::string const text = reference() + "\n";
  for (std::size_t start = 0, end = 0; (end = text.find('\n', start)) != std::string::npos;
       start = end + 1) {
    auto const line = text.substr(start, end - start);
    if (line.rfind("    ", 0) == 0) {
      block += line.substr(4) + "\n";
    } else if (!block.empty()) {
      if (block.rfind("<" + element, 0) == 0) {
        found.push_back(block);
      }
      block.clear();
    }
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

std::string const kEverything =
    "<Prefix>p</Prefix><Sufix>s</Sufix><Command type=\"1\"><from>f</from><join>j</join><where>w"
    "</where><group>g</group></Command><mainData columnName=\"a\"/><statusColumn columnName=\"a\"/>"
    "<unidadeColumn columnName=\"a\"/><descricaoColumn columnName=\"a\"/><Columns><Column "
    "columnName=\"a\" dataType=\"int\"><IconColumn columnName=\"a\"/><refColumn columnName=\"a\"/>"
    "<Formatters Visual=\"moxTextFormatter\" "
    "Icon=\"moxTextFormatter\"><Visual/><Icon/></Formatters>"
    "<FiltersType><moxTextInFilter visualRepresentation=\"v\"/></FiltersType><sql alias=\"a\">x"
    "</sql><columnSourceOrigin/></Column></Columns><Order><By columnName=\"a\" "
    "dir=\"Desc\"/></Order>"
    "<Relations><Rel><DataSourceOrigin columnName=\"a\"/></Rel></Relations><Filters><column>"
    "<moxTextInFilter columnName=\"a\"/></column><custom><moxTextInFilter/></custom></Filters>";

}  // namespace

/// What people read about definitions of queries is what they are.
class SqlSourceReference : public sql_source_test::SqlSourceTest {};

TEST_F(SqlSourceReference, EveryNameThatIsWrittenIsTold) {
  auto names = namesIn(textOf(*source(kEverything)));
  for (auto const* const described :
       {"moxTextInFilter", "require", "removePunctuation", "position", "description", "X", "Y",
        "spanX", "spanY", "prefix", "suffix"}) {  // in the pages on filters and on formatters
    names.erase(described);
  }
  EXPECT_EQ(names.size(), 49u);
  auto const text = reference();
  for (auto const& name : names) {
    EXPECT_NE(text.find("`" + name + "`"), std::string::npos) << name;
  }
}

TEST_F(SqlSourceReference, EveryExampleOfASourceLoadsAndMakesTheRoundTrip) {
  auto const examples = examplesOf("moxSQLDataSource ");
  EXPECT_EQ(examples.size(), 3u);
  for (auto const& example : examples) {
    auto const made = newSource();
    ASSERT_TRUE(made->load(document(example)->root())) << example;
    EXPECT_FALSE(made->columns().empty()) << example;
    EXPECT_EQ(textOf(*reread(*made)), textOf(*made)) << example;
  }
}

TEST_F(SqlSourceReference, EveryExampleOfAColumnLoads) {
  for (auto const& example : examplesOf("Column ")) {
    auto const made = source("<Command/><Columns>" + example + "</Columns>");
    EXPECT_NE(made->columnAt(0)->getFormatter(), nullptr);
    EXPECT_EQ(made->getSQLColumnsPlain(), "f.valor as valor");
  }
  EXPECT_EQ(examplesOf("Column ").size(), 1u);
}

TEST_F(SqlSourceReference, TheTableOfShortColumnsIsThatOfTheModule) {
  constexpr char const* const kKinds[] = {"Int", "Double", "Text", "Date", "Blob"};
  auto const text = reference();
  for (auto const& [tag, type] : kColumnTags) {
    auto const row = "| `" + std::string(tag) + "` | " + kKinds[type] + " |";
    EXPECT_NE(text.find(row), std::string::npos) << row;
  }
}

TEST_F(SqlSourceReference, TheTableOfTypesIsThatOfTheModule) {
  constexpr char const* const kKinds[] = {"Int", "Double", "Text", "Date", "Blob"};
  constexpr char const* const kWords[] = {"text", "integer", "blob", "floating point", "date"};
  auto const text = reference();
  for (int type = 1; type <= 5; ++type) {
    SQLDataSourceColumn column;
    column.setDbType(static_cast<moxSQLDataSourceColumn::FieldTypes>(type));
    auto const row = "| " + std::to_string(type) + " | " + kWords[type - 1] + " | " +
                     kKinds[column.getDataMatrixType()] + " |";
    EXPECT_NE(text.find(row), std::string::npos) << row;
  }
}
