#pragma once

#include <string>
#include <vector>

namespace mox::cli {

/// What a user should know of a run that went well. Told at its end, so that the line of a failure
/// stays the only one.
class Notes {
 public:
  void add(std::string note) { notes_.push_back(std::move(note)); }

  /// Writes a line for each note, in order, to standard error.
  void tell() const;

 private:
  std::vector<std::string> notes_;
};

}  // namespace mox::cli
