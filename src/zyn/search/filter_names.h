#pragma once

#include <memory>
#include <string>
#include <vector>

class moxDataMatrixSQLFilter;

/// Gives filters their names back when a run is over. A filter that a manager passes on bears the
/// statement's name during the query; that it may keep the table of it, and all of it when the
/// query fails, does no harm where the filter ends with its run. A runner's filters are used again.
class FilterNames {
 public:
  using Filters = std::vector<std::shared_ptr<moxDataMatrixSQLFilter const>>;

  explicit FilterNames(Filters const& filters);
  ~FilterNames();

  FilterNames(FilterNames const&) = delete;
  FilterNames& operator=(FilterNames const&) = delete;

 private:
  struct Named {
    std::shared_ptr<moxDataMatrixSQLFilter> filter;
    std::string table;
    std::string column;
  };

  std::vector<Named> names_;
};
