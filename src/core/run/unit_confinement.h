#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "core/run/filter_argument.h"
#include "mox/zyn/datasources/manage_filter_data_source.h"

class moxDataSource;
class moxSQLDataSource;

namespace mox::core {

/// The units whose rows a run may show, and their head office; 0 for none.
struct UnitScope {
  std::vector<int> units;
  int headOffice = 0;
};

/// Keeps what users write from widening what they see. The module takes a filter on a statement's
/// unit column as the caller's own restriction and adds none itself, so such a filter must not
/// reach it as a user wrote it. A filter may come to such a column under another name, by way of a
/// filter manager; it is known by every name under which it can be given. Made for the sources of
/// one run; then constant.
class UnitConfinement {
 public:
  /// Looks into groups too, at any depth. Throws what withMembers throws.
  UnitConfinement(std::vector<std::shared_ptr<moxDataSource const>> const& sources,
                  UnitScope scope);

  /// Whether any of the sources keeps to units.
  bool keepsToUnits() const { return keepsToUnits_; }

  /// A filter on a column called like a unit column, whatever its table and source, or called like
  /// what a manager puts on one, becomes the list of those of its units that are the run's; a
  /// column of head offices is held to the head office. Others stay as they are. Throws
  /// FilterArgumentError for one on a unit column that is not made of whole numbers, and for one
  /// that stands in for what the session says, be it by way of a manager: its user and units.
  FilterArgument confined(FilterArgument argument) const;

 private:
  using ManageFilterData = moxManageFilterDataSource::ManageFilterData;
  using Kinds = std::uint8_t;  // of columns that a name stands for, or-ed

  void addUnitColumn(moxSQLDataSource const& source);
  bool addNamesOf(ManageFilterData const& manager);
  bool addName(std::string const& name, std::string const& target);
  Kinds kindsOf(std::string const& name) const;
  std::vector<int> allowedFor(Kinds kinds) const;

  std::map<std::string, Kinds> unitNames_;
  std::map<std::string, std::string> tokensByName_;  // the session's, by what managers bind to them
  bool keepsToUnits_ = false;
  UnitScope scope_;
};

}  // namespace mox::core
