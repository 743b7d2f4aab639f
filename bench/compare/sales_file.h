#pragma once

#include <string>

#include "compare/floor_table.h"

namespace bench {

/// The table as peers in processes of their own read it, as CSV under a line of names; gone with
/// this object.
class SalesFile {
 public:
  explicit SalesFile(std::string const& path) : path_(path) {}
  ~SalesFile();
  SalesFile(SalesFile const&) = delete;
  SalesFile& operator=(SalesFile const&) = delete;

  /// Throws std::runtime_error.
  void write(FloorTable const& table) const;

  std::string const& path() const { return path_; }

 private:
  std::string path_;
};

}  // namespace bench
