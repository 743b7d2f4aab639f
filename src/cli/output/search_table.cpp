#include "cli/output/search_table.h"

#include <algorithm>
#include <optional>

#include "cli/output/column_visit.h"
#include "cli/output/display_text.h"
#include "cli/output/shown_column.h"
#include "mox/zyn/datasources/sql_data_source_column.h"

namespace mox::cli {

namespace {

using Runner = moxSearchRunner;

/// The cells of a column as the runner shows them.
class RunnerColumn : public ShownColumn {
 public:
  RunnerColumn(Runner const& runner, unsigned int index)
      : ShownColumn(runner.getDataMatrix()->columnAt(index)), runner_(runner), index_(index) {}

  std::string name() const override { return "zynSearchColumn"; }

  std::string getValue(unsigned int row) const override {
    return runner_.getVisibleValue(row, index_);
  }

 protected:
  Runner const& runner() const { return runner_; }
  unsigned int index() const { return index_; }

 private:
  Runner const& runner_;
  unsigned int index_;
};

/// With the icons of the page's rows, all of one width, ahead of the texts.
class IconColumn final : public RunnerColumn {
 public:
  IconColumn(Runner const& runner, unsigned int index, SearchPage page)
      : RunnerColumn(runner, index), page_(page) {}

  /// A cell without a value may have an icon all the same.
  bool isNull(unsigned int row) const override {
    return ShownColumn::isNull(row) && icon(row).empty();
  }

  std::string getValue(unsigned int row) const override {
    std::string text = icon(row);
    text.append(static_cast<std::size_t>(std::max(0, width() - displayWidth(text))), ' ');
    text += text.empty() ? "" : " ";
    return text + RunnerColumn::getValue(row);
  }

 private:
  std::string icon(unsigned int row) const {
    auto const text = runner().getIcon(row, index());
    return text.empty() ? text : "[" + text + "]";
  }

  int width() const {
    if (!width_) {
      width_ = 0;
      for (unsigned int row = page_.firstRow; row < page_.firstRow + page_.rowCount; ++row) {
        width_ = std::max(*width_, displayWidth(icon(row)));
      }
    }
    return *width_;
  }

  SearchPage page_;
  mutable std::optional<int> width_;  // measured once, when the first cell is asked for
};

/// A place among the matrix's columns and its definition, where both are there.
struct Place {
  unsigned int index = 0;
  std::shared_ptr<moxSQLDataSourceColumn const> definition;
};

std::optional<Place> placeOf(Runner const& runner, std::string const& name) {
  int const index = runner.columnIndex(name);
  auto const count = runner.getDataMatrix()->columnCount();
  if (index < 0 || static_cast<unsigned int>(index) >= count) {
    return {};
  }
  auto const place = static_cast<unsigned int>(index);
  return Place{place, runner.getColumn(place)};
}

std::vector<Place> visiblePlaces(Runner const& runner) {
  std::vector<Place> places;
  for (unsigned int i = 0; i < runner.getDataMatrix()->columnCount(); ++i) {
    auto const definition = runner.getColumn(i);
    if (definition && definition->getVisible()) {
      places.push_back({i, definition});
    }
  }
  return places;
}

bool holds(std::vector<Place> const& places, unsigned int index) {
  return std::ranges::find(places, index, &Place::index) != places.end();
}

/// The visible columns, each key behind the first column that refers to it.
std::vector<Place> shownPlaces(Runner const& runner) {
  auto const visible = visiblePlaces(runner);
  std::vector<Place> shown;
  for (auto const& place : visible) {
    shown.push_back(place);
    auto const key = place.definition->getIdColumn();
    auto const keyPlace = key ? placeOf(runner, key->getColumnName()) : std::nullopt;
    if (keyPlace && !holds(visible, keyPlace->index) && !holds(shown, keyPlace->index)) {
      shown.push_back(*keyPlace);
    }
  }
  return shown;
}

/// A blob has no text of its own.
std::shared_ptr<moxDataMatrixColumn const> textsOf(Runner const& runner, unsigned int index) {
  auto column = runner.getDataMatrix()->columnAt(index);
  if (column->getType() == moxDataMatrixTypes::Blob) {
    return column;
  }
  return std::make_shared<RunnerColumn>(runner, index);
}

std::shared_ptr<moxDataMatrixColumn const> shownColumn(Runner const& runner, unsigned int index,
                                                       SearchPage page) {
  if (runner.columnHasIcon(index)) {
    return std::make_shared<IconColumn>(runner, index, page);
  }
  return textsOf(runner, index);
}

std::string headingOf(Place const& place, moxDataMatrixColumn const& column) {
  auto heading = place.definition ? place.definition->getVisibleName() : std::string();
  return heading.empty() ? column.getName() : heading;
}

ResultTable emptyTable(SearchPage page) {
  ResultTable table;
  table.firstRow = page.firstRow;
  table.rowCount = page.rowCount;
  return table;
}

}  // namespace

ResultTable searchScreen(Runner const& runner, SearchPage page) {
  auto table = emptyTable(page);
  for (auto const& place : shownPlaces(runner)) {
    table.columns.push_back(shownColumn(runner, place.index, page));
    table.headings.push_back(headingOf(place, *table.columns.back()));
  }
  return table;
}

ResultTable searchValues(Runner const& runner, SearchPage page, bool formatted) {
  auto table = emptyTable(page);
  auto const& matrix = *runner.getDataMatrix();
  table.columns = columnsOf(matrix);
  for (unsigned int i = 0; formatted && i < matrix.columnCount(); ++i) {
    table.columns[i] = textsOf(runner, i);
  }
  return table;
}

}  // namespace mox::cli
