#include "cli/definitions/definition_view.h"

#include "cli/definitions/definition_list.h"
#include "cli/definitions/source_view.h"
#include "mox/core/error.h"
#include "mox/zyn/format/generic_formatter.h"
#include "mox/zyn/items/formatter_zyn_item.h"
#include "mox/zyn/items/zyn_pack.h"
#include "mox/zyn/search/search.h"

namespace mox::cli {

namespace {

void addSetting(DefinitionView& view, std::string const& name, std::string const& value) {
  if (!value.empty()) {
    view.settings.emplace_back(name, value);
  }
}

void addFormatter(DefinitionView& view, moxFormatterZYNItem const& item) {
  if (auto const formatter = item.getFormatter()) {
    addSetting(view, "formatter", formatter->name());
    addSetting(view, "prefix", formatter->getPrefix());
    addSetting(view, "suffix", formatter->getSuffix());
  }
}

void addPack(DefinitionView& view, moxZYNPack const& pack) {
  for (auto const& item : pack.items().get()) {
    addSetting(view, "holds", item ? item->name() : "");
  }
}

SearchView searchView(moxSearch const& search) {
  return {.heading = search.getHeaderName(),
          .source = search.dataSourceExterno(),
          .autoFill = search.autoFill(),
          .allowReorder = search.allowReorder(),
          .requireFilter = search.requireFilter(),
          .requirePermission = search.requirePermission(),
          .width = search.getInitialWidth(),
          .height = search.getInitialHeight(),
          .order = {}};
}

void addSearchSource(DefinitionView& view, moxSearch const& search) {
  auto const source = search.getDataSource();
  if (!source) {
    return;
  }
  if (search.dataSourceExterno().empty()) {
    addSource(view, *source);
  } else {
    addColumns(view, *source);
  }
  view.dependencies = {dependencyTree(*source)};
  if (auto const column = search.getInitialOrderColumn()) {
    view.search->order.push_back({column->getColumnName(), !search.getInitialOrderAscending()});
  }
}

void addSearch(DefinitionView& view, moxSearch const& search) {
  view.search = searchView(search);
  try {
    addSearchSource(view, search);
  } catch (moxError const& error) {
    // A definition whose source is missing can still be looked at, to see what it misses.
    addSetting(view, "defect", error.errorMessage());
  }
}

}  // namespace

DefinitionView viewOf(moxZYNItem& item) {
  DefinitionView view;
  view.name = item.description();
  view.kind = kindWord(item);
  view.className = item.name();
  view.library = item.getParentLibName();
  if (auto const* const formatter = dynamic_cast<moxFormatterZYNItem const*>(&item)) {
    addFormatter(view, *formatter);
  } else if (auto const* const pack = dynamic_cast<moxZYNPack const*>(&item)) {
    addPack(view, *pack);
  } else if (auto const* const search = dynamic_cast<moxSearch const*>(&item)) {
    addSearch(view, *search);
  } else if (auto const* const source = dynamic_cast<moxDataSource const*>(&item)) {
    addSource(view, *source);
  }
  if (auto const related = item.getZynItemRelated()) {
    addSetting(view, kindWord(*related), related->description());
  }
  return view;
}

}  // namespace mox::cli
