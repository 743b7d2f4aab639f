#pragma once

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

/// Under which names the context of a run knows the sources that its definition reads.
class ExternalRelations {
 public:
  /// (name in the definition, name in the context)
  using Pairs = std::vector<std::pair<std::string, std::string>>;

  void set(Pairs const& pairs) { pairs_ = pairs; }

  /// Of several pairs for one name the first holds; a name that no pair has stands for itself. Not
  /// to be kept beyond the next set, or beyond `name`.
  std::string const& nameInContext(std::string const& name) const {
    auto const found = std::find_if(pairs_.begin(), pairs_.end(),
                                    [&](auto const& pair) { return pair.first == name; });
    return found != pairs_.end() ? found->second : name;
  }

 private:
  Pairs pairs_;
};
