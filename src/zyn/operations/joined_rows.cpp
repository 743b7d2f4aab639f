#include "zyn/operations/joined_rows.h"

#include <algorithm>
#include <numeric>
#include <utility>

#include "zyn/operations/operation_errors.h"

namespace {

constexpr std::uint32_t kNone = JoinIndex::kNone;

RowOrder rowsUpTo(std::size_t rows) {
  RowOrder order(rows);
  std::iota(order.begin(), order.end(), 0U);
  return order;
}

/// Hands over the copies in their order: the row that stayed, and the source's row.
template <class Use>
void eachCopy(JoinedRows const& joined, RowMatches const& matches, Use const& use) {
  for (std::size_t row = 0; row < joined.stayed; ++row) {
    std::uint32_t const first = joined.source[row];
    matches.lists->each(matches.listOf[row], [&](std::uint32_t further) {
      if (further > first) {
        use(row, further);
      }
    });
  }
}

/// Takes out the rows that meet nothing, and tells which the others were. Every row is written, and
/// the next one over it if it does not stay: which do cannot be foreseen by the processor.
RowOrder keepThoseThatMeet(RowOrder& listOf) {
  RowOrder before(listOf.size());
  std::size_t kept = 0;
  for (std::size_t row = 0; row < listOf.size(); ++row) {
    std::uint32_t const list = listOf[row];
    before[kept] = static_cast<std::uint32_t>(row);
    listOf[kept] = list;
    kept += static_cast<std::size_t>(list != kNone);
  }
  before.resize(kept);
  listOf.resize(kept);
  return before;
}

/// Makes room for that many copies; a row is no longer what it was.
void prepare(JoinedRows& joined, std::uint64_t copies) {
  refuseTooManyRows(joined.stayed + copies);
  if (joined.unchanged) {
    joined.before = rowsUpTo(joined.stayed);
    joined.unchanged = false;
  }
  joined.before.reserve(joined.stayed + copies);
  joined.source.reserve(joined.stayed + copies);
}

}  // namespace

std::uint32_t JoinedRows::firstBeside(std::size_t row) const {
  if (row < stayed) {
    return source[row];
  }
  auto const end = before.begin() + static_cast<std::ptrdiff_t>(stayed);
  return source[static_cast<std::size_t>(std::lower_bound(before.begin(), end, before[row]) -
                                         before.begin())];
}

JoinedRows crossedRows(std::uint32_t rows, std::uint32_t sourceRows) {
  JoinedRows joined{{}, {}, rows, true};
  std::uint64_t const copies = std::uint64_t{rows} * (sourceRows - 1);
  refuseTooManyRows(rows + copies);
  joined.source.resize(rows);
  if (copies != 0) {
    prepare(joined, copies);
  }
  for (std::uint32_t row = 0; copies != 0 && row < rows; ++row) {
    for (std::uint32_t sourceRow = 1; sourceRow < sourceRows; ++sourceRow) {
      joined.before.push_back(row);
      joined.source.push_back(sourceRow);
    }
  }
  return joined;
}

JoinedRows rowsThatMeet(RowMatches& matches) {
  RowOrder& listOf = matches.listOf;
  JoinedRows joined;
  auto const lost = static_cast<std::size_t>(std::count(listOf.begin(), listOf.end(), kNone));
  joined.stayed = listOf.size() - lost;
  joined.unchanged = lost == 0;
  if (!joined.unchanged) {
    joined.before = keepThoseThatMeet(listOf);
  }
  if (matches.lists->areSingleRows()) {  // so there will be no copies, and nobody asks for lists
    joined.source = std::move(listOf);
    listOf.clear();
    return joined;
  }
  joined.source.reserve(joined.stayed);
  std::transform(listOf.begin(), listOf.end(), std::back_inserter(joined.source),
                 [&](std::uint32_t list) { return matches.lists->front(list); });
  return joined;
}

void addCopies(JoinedRows& joined, RowMatches const& matches) {
  if (matches.listOf.empty()) {
    return;
  }
  std::uint64_t copies = 0;
  eachCopy(joined, matches, [&](std::size_t, std::uint32_t) { ++copies; });
  if (copies == 0) {
    return;
  }
  prepare(joined, copies);
  eachCopy(joined, matches, [&](std::size_t row, std::uint32_t further) {
    joined.before.push_back(joined.before[row]);
    joined.source.push_back(further);
  });
}
