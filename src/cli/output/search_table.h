#pragma once

#include "cli/output/result_table.h"
#include "mox/zyn/search/search_runner.h"

namespace mox::cli {

/// Which rows of a search are wanted.
struct SearchPage {
  unsigned int firstRow = 0;
  unsigned int rowCount = 0;
};

/// What a search screen shows: the visible columns, with icons ahead of the texts, and behind a
/// column the key of what it refers to, when that is not shown by itself. A cell is formatted when
/// it is asked for, so the rows of other pages cost nothing. The table reads from the runner, in
/// its thread and while it lives.
ResultTable searchScreen(moxSearchRunner const& runner, SearchPage page);

/// All columns under their names: plain values, or what a screen would show of them.
ResultTable searchValues(moxSearchRunner const& runner, SearchPage page, bool formatted);

}  // namespace mox::cli
