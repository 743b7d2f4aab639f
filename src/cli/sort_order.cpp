#include "cli/sort_order.h"

#include "cli/error_text.h"

namespace mox::cli {

namespace {

/// Reads one order from left to right.
class SortOrderReader {
 public:
  explicit SortOrderReader(std::string const& text) : text_(text) {}

  std::vector<SortColumn> read() {
    std::vector<SortColumn> columns;
    do {
      columns.push_back(readColumn());
    } while (take(','));
    if (at_ != text_.size()) {
      refuse("a comma is missing");
    }
    return columns;
  }

 private:
  SortColumn readColumn() {
    SortColumn column = text_[at_] == '"' ? readQuoted() : readBare();
    if (column.name.empty()) {
      refuse("a column has no name");
    }
    return column;
  }

  /// Up to the next comma; an ending that is no direction belongs to the name.
  SortColumn readBare() {
    auto const end = std::min(text_.find(',', at_), text_.size());
    std::string name = text_.substr(at_, end - at_);
    at_ = end;
    if (auto const colon = name.rfind(':'); colon != name.npos) {
      std::string const direction = name.substr(colon + 1);
      if (direction == "asc" || direction == "desc") {
        return {name.substr(0, colon), direction == "desc"};
      }
    }
    return {name, false};
  }

  SortColumn readQuoted() {
    std::string name;
    ++at_;
    do {
      auto const quote = text_.find('"', at_);
      if (quote == text_.npos) {
        refuse("a quote is not closed");
      }
      name += text_.substr(at_, quote - at_);
      at_ = quote + 1;
      name += text_[at_] == '"' ? "\"" : "";
    } while (take('"'));
    return {name, readDirection()};
  }

  bool readDirection() {
    if (!take(':')) {
      return false;
    }
    auto const end = std::min(text_.find(',', at_), text_.size());
    std::string const direction = text_.substr(at_, end - at_);
    at_ = end;
    if (direction != "asc" && direction != "desc") {
      refuse("the direction is asc or desc, not " + direction);
    }
    return direction == "desc";
  }

  bool take(char character) {
    bool const isThere = at_ < text_.size() && text_[at_] == character;
    at_ += isThere ? 1 : 0;
    return isThere;
  }

  [[noreturn]] void refuse(std::string const& why) const {
    throw UsageError("--sort " + text_ + ": " + why);
  }

  std::string const& text_;
  std::size_t at_ = 0;
};

}  // namespace

std::vector<SortColumn> parseSortOrder(std::string const& text) {
  return SortOrderReader(text).read();
}

}  // namespace mox::cli
