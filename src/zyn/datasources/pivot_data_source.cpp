#include "zyn/datasources/pivot_data_source.h"

#include "mox/core/xml.h"
#include "zyn/datasources/pivot_data_source_execution.h"

namespace {

using Pair = moxPivotDataSource::Pair;

constexpr char const* kName = "name";
constexpr char const* kSource = "source";

/// A list of columns, and what the definition says of each besides.
struct ListForm {
  char const* list;
  char const* entry;
  char const* second;  // attribute; null for none
};

constexpr ListForm kColumns = {"columns", "column", "formatter"};
constexpr ListForm kRows = {"rows", "row", nullptr};
constexpr ListForm kCells = {"cells", "cell", "aggregation"};

/// Hands each entry's element to `visit`.
template <class Visit>
void eachEntry(moxXMLNode const& node, ListForm const& form, Visit const& visit) {
  auto const list = node.childByIndex(0, form.list);
  for (int i = 0; auto const entry = list ? list->childByIndex(i, form.entry) : nullptr; ++i) {
    visit(*entry);
  }
}

std::vector<Pair> readPairs(moxXMLNode const& node, ListForm const& form) {
  std::vector<Pair> pairs;
  eachEntry(node, form, [&](moxXMLNode const& entry) {
    pairs.emplace_back(entry.readAttribute(kSource), entry.readAttribute(form.second));
  });
  return pairs;
}

void writePairs(std::vector<Pair> const& pairs, moxXMLNode& node, ListForm const& form) {
  auto const list = node.addChild(form.list);
  for (auto const& [column, second] : pairs) {
    auto const entry = list->addChild(form.entry);
    entry->writeAttribute(kSource, column);
    entry->writeAttribute(form.second, second);
  }
}

std::vector<std::string> readRows(moxXMLNode const& node) {
  std::vector<std::string> rows;
  eachEntry(node, kRows,
            [&](moxXMLNode const& entry) { rows.push_back(entry.readAttribute(kSource)); });
  return rows;
}

void writeRows(std::vector<std::string> const& rows, moxXMLNode& node) {
  auto const list = node.addChild(kRows.list);
  for (auto const& column : rows) {
    list->addChild(kRows.entry)->writeAttribute(kSource, column);
  }
}

}  // namespace

bool DataSourcePivoting::load(std::shared_ptr<moxXMLNode> node) {
  if (!node) {
    return false;
  }
  setName(node->readAttribute(kName));
  dataSourceName_ = node->readAttribute(kSource);
  columnsPivot_ = readPairs(*node, kColumns);
  rowsPivot_ = readRows(*node);
  cellsPivot_ = readPairs(*node, kCells);
  return true;
}

bool DataSourcePivoting::save(std::shared_ptr<moxXMLNode> node) const {
  if (!node) {
    return false;
  }
  node->writeAttribute(kName, getName());
  node->writeAttribute(kSource, dataSourceName_);
  writePairs(columnsPivot_, *node, kColumns);
  writeRows(rowsPivot_, *node);
  writePairs(cellsPivot_, *node, kCells);
  return true;
}

std::shared_ptr<moxDataSourceExecution> DataSourcePivoting::createExecution() const {
  return std::make_shared<DataSourcePivotingExecution>(shared_from_this());
}
