#pragma once

#include <memory>
#include <set>
#include <string>
#include <vector>

#include "core/run/filter_argument.h"

class moxDataSource;

namespace mox::core {

/// The units whose rows a run may show, and their head office; 0 for none.
struct UnitScope {
  std::vector<int> units;
  int headOffice = 0;
};

/// Keeps what users write from widening what they see. The module takes a filter on a statement's
/// unit column as the caller's own restriction and adds none itself, so such a filter must not
/// reach it as a user wrote it. Made for the sources of one run; then constant.
class UnitConfinement {
 public:
  UnitConfinement(std::vector<std::shared_ptr<moxDataSource const>> const& sources,
                  UnitScope scope);

  /// Whether any of the sources keeps to units.
  bool keepsToUnits() const { return !unitColumns_.empty(); }

  /// A filter on a column called like a unit column, whatever its table, becomes the list of those
  /// of its units that are the run's; a column of head offices is held to the head office. Others
  /// stay as they are. Throws FilterArgumentError for one on a unit column that is not made of
  /// whole numbers, and for one that stands in for what the session says: its user and units.
  FilterArgument confined(FilterArgument argument) const;

 private:
  std::set<std::string> unitColumns_;
  std::set<std::string> headOfficeColumns_;  // those among them that hold head offices
  UnitScope scope_;
};

}  // namespace mox::core
