#pragma once

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "mox/core/error.h"
#include "mox/zyn/datasources/sorter_data_source.h"

namespace mox::core {

/// An order that a user wrote wrongly, or that nobody offers.
class SortArgumentError : public moxDefaultErrorImpl<moxError> {
 public:
  using moxDefaultErrorImpl<moxError>::moxDefaultErrorImpl;
};

/// A sorter of a run whose order is the user's to choose.
struct SortOffer {
  std::string source;                                       // the sorter, by its name in the run
  std::shared_ptr<moxSorterDataSourceOption const> option;  // never empty
};

/// A column as a user wrote it: its name on offer or, where no column is called so, its text for
/// users; either behind "SOURCE:", the sorter.
struct SortArgument {
  std::string column;
  bool descending = false;
};

/// A column of a sorter, understood.
struct SortAnswer {
  std::string source;
  std::string column;
  bool descending = false;
};

/// What the sources let their user choose, in their order.
std::vector<SortOffer> sortOffersOf(
    std::vector<std::shared_ptr<moxDataSource const>> const& sources);

/// Where several sorters offer a column, the first of `offers` is meant. Throws SortArgumentError,
/// which for an unknown column lists what is offered.
std::vector<SortAnswer> readSortArguments(std::vector<SortArgument> const& arguments,
                                          std::vector<SortOffer> const& offers);

/// The answers as the sorters take them, by source.
std::map<std::string, std::vector<std::shared_ptr<moxDataSourceOptionData>>> sortOptionData(
    std::vector<SortAnswer> const& answers, std::vector<SortOffer> const& offers);

/// "nota, descending, then nome".
std::string sortText(std::vector<SortAnswer> const& answers);

}  // namespace mox::core
