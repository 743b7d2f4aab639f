#include "core/run/filter_value.h"

#include <algorithm>
#include <charconv>
#include <cmath>

#include <fmt/format.h>

namespace mox::core {

namespace {

// A statement takes a mark a value, and databases bound the marks; SQLite by 32,766.
constexpr std::size_t kMostListValues = 10'000;

[[noreturn]] void refuse(std::string const& why) {
  throw FilterArgumentError(why);
}

/// One value of a text, without its quotes.
struct Item {
  std::string text;
  bool quoted = false;
};

/// Cuts a text at a separator, which does not count inside double quotes. A quote opens only at the
/// beginning of a value, so that an inch or a nickname needs no care.
class ItemReader {
 public:
  ItemReader(std::string_view text, std::string_view separator)
      : rest_(text), separator_(separator) {}

  /// The next value; afterwards atSeparator() says whether one follows.
  Item next() {
    Item item = rest_.starts_with('"') ? quoted() : plain();
    separated_ = rest_.starts_with(separator_);
    if (separated_) {
      rest_.remove_prefix(separator_.size());
    } else if (!rest_.empty()) {
      refuse("after a closing quote comes " + quotedForMessage(separator_) + " or the end, not " +
             quotedForMessage(rest_));
    }
    return item;
  }

  bool atSeparator() const { return separated_; }
  std::string_view rest() const { return rest_; }

 private:
  Item plain() {
    auto const end = std::min(rest_.find(separator_), rest_.size());
    Item item{std::string(rest_.substr(0, end)), false};
    rest_.remove_prefix(end);
    return item;
  }

  Item quoted() {
    Item item{{}, true};
    std::size_t at = 1;
    for (;; ++at) {
      if (at >= rest_.size()) {
        refuse("a quote is not closed in " + quotedForMessage(rest_));
      }
      if (rest_[at] == '"' && !rest_.substr(at + 1).starts_with('"')) {
        break;
      }
      at += rest_[at] == '"' ? 1 : 0;
      item.text += rest_[at];
    }
    rest_.remove_prefix(at + 1);
    return item;
  }

  std::string_view rest_;
  std::string_view separator_;
  bool separated_ = false;
};

std::string_view withoutBlanks(std::string_view text) {
  while (text.starts_with(' ')) {
    text.remove_prefix(1);
  }
  while (text.ends_with(' ')) {
    text.remove_suffix(1);
  }
  return text;
}

bool isDigits(std::string_view text) {
  return !text.empty() && text.find_first_not_of("0123456789") == text.npos;
}

template <class Number>
std::optional<Number> wholeText(std::string_view text) {
  if (text.starts_with('+') && !text.substr(1).starts_with('-')) {
    text.remove_prefix(1);
  }
  Number number{};
  auto const end = text.data() + text.size();
  auto const result = std::from_chars(text.data(), end, number);
  return result.ec == std::errc() && result.ptr == end ? std::optional(number) : std::nullopt;
}

/// Reads one value of a type. A value that stands between separators must not be empty by mistake.
class ValueReader {
 public:
  explicit ValueReader(FilterValueKind const& kind) : kind_(kind) {}

  void read(Item const& item, int& value) const {
    auto const number = wholeText<int>(withoutBlanks(item.text));
    if (!number) {
      refuse(quotedForMessage(item.text) +
             " is no whole number between -2147483648 and 2147483647");
    }
    value = *number;
  }

  void read(Item const& item, double& value) const {
    std::string text(withoutBlanks(item.text));
    auto const comma = text.find(',');
    if (comma != text.npos && text.find_first_of(".,", comma + 1) == text.npos &&
        text.find('.') == text.npos) {
      text[comma] = '.';
    }
    // The words that from_chars takes for infinity and no number are none here.
    bool const plain = text.find_first_not_of("0123456789+-.eE") == text.npos;
    auto const number = plain ? wholeText<double>(text) : std::nullopt;
    if (!number || !std::isfinite(*number)) {
      refuse(quotedForMessage(item.text) +
             " is no number; it is written like 1234.56 or 1234,56, without groups");
    }
    value = *number;
  }

  void read(Item const& item, std::string& value) const {
    value = item.text;
    if (kind_.removePunctuation) {
      std::erase_if(value, [](char c) {
        return c != '%' && ((c > ' ' && c < '0') || (c > '9' && c < 'A') || (c > 'Z' && c < 'a') ||
                            (c > 'z' && c < '\x7F'));
      });
    }
  }

  void read(Item const& item, date_t& value) const {
    std::string_view const text = withoutBlanks(item.text);
    value = calendarDay(text, '-', {8, 5, 0});
    if (!value) {
      value = calendarDay(text, '/', {0, 3, 6});
    }
    if (!value) {
      refuse(quotedForMessage(item.text) +
             " is no day of the calendar; it is written like 2024-03-05 or 05/03/2024");
    }
  }

 private:
  struct Places {
    std::size_t day;
    std::size_t month;
    std::size_t year;
  };

  /// The empty date for a text of another form, and for a day that no month has: date_t itself
  /// would carry 30 February on into March.
  static date_t calendarDay(std::string_view text, char mark, Places const& places) {
    constexpr std::size_t kLength = 10;
    if (text.size() != kLength || std::count(text.begin(), text.end(), mark) != 2) {
      return {};
    }
    auto const part = [&](std::size_t from, std::size_t count) {
      auto const digits = text.substr(from, count);
      return isDigits(digits) ? wholeText<int>(digits).value_or(0) : 0;
    };
    int const day = part(places.day, 2);
    int const month = part(places.month, 2);
    int const year = part(places.year, 4);
    date_t const date(day, month, year);
    bool const same = date.day() == day && date.month() == month && date.year() == year;
    return same ? date : date_t();
  }

  FilterValueKind const& kind_;
};

template <class T>
FilterOne<T> readOne(std::string_view text, ValueReader const& reader) {
  FilterOne<T> one;
  reader.read({std::string(text), false}, one.value);
  return one;
}

template <class T>
std::optional<T> readBound(Item const& item, ValueReader const& reader) {
  if (item.text.empty() && !item.quoted) {
    return std::nullopt;
  }
  T value{};
  reader.read(item, value);
  return value;
}

template <class T>
bool isBefore(T const& left, T const& right) {
  return left < right;
}

bool isBefore(date_t const& left, date_t const& right) {
  return right.daysTo(left) < 0;
}

/// Texts are compared by the database, which knows its own order of letters.
template <class T>
void demandOrder(FilterRange<T> const& range, std::string_view text) {
  if constexpr (!std::is_same_v<T, std::string>) {
    if (range.min && range.max && isBefore(*range.max, *range.min)) {
      refuse("the range " + quotedForMessage(text) + " ends before it begins");
    }
  }
}

template <class T>
FilterRange<T> readRange(std::string_view text, ValueReader const& reader) {
  ItemReader items(text, "..");
  FilterRange<T> range;
  range.min = readBound<T>(items.next(), reader);
  if (!items.atSeparator()) {
    range.max = range.min;
  } else if (items.rest().starts_with('"')) {
    range.max = readBound<T>(ItemReader(items.rest(), "\n").next(), reader);
  } else {
    range.max = readBound<T>({std::string(items.rest()), false}, reader);
  }
  if (!range.min && !range.max) {
    refuse("a range needs a value at one end at least");
  }
  demandOrder(range, text);
  return range;
}

template <class T>
FilterList<T> readList(std::string_view text, ValueReader const& reader) {
  ItemReader items(text, ",");
  FilterList<T> list;
  do {
    Item const item = items.next();
    if (item.text.empty() && !item.quoted) {
      refuse("a list has an empty value; the empty text is written \"\"");
    }
    if (list.values.size() == kMostListValues) {
      refuse(fmt::format("a list has at most {} values", kMostListValues));
    }
    reader.read(item, list.values.emplace_back());
  } while (items.atSeparator());
  return list;
}

template <class T>
FilterValue readOf(std::string_view text, FilterValueKind const& kind) {
  ValueReader const reader(kind);
  switch (kind.form) {
    case FilterForm::kOne:
      return readOne<T>(text, reader);
    case FilterForm::kRange:
      return readRange<T>(text, reader);
    case FilterForm::kList:
      break;
  }
  if constexpr (std::is_same_v<T, date_t>) {
    refuse("there are no lists of days");
  } else {
    return readList<T>(text, reader);
  }
}

}  // namespace

FilterValue readFilterValue(std::string_view text, FilterValueKind const& kind) {
  switch (kind.type) {
    case moxDataMatrixTypes::Int:
      return readOf<int>(text, kind);
    case moxDataMatrixTypes::Double:
      return readOf<double>(text, kind);
    case moxDataMatrixTypes::Text:
      return readOf<std::string>(text, kind);
    case moxDataMatrixTypes::Date:
      return readOf<date_t>(text, kind);
    case moxDataMatrixTypes::Blob:
      break;
  }
  refuse("values of this kind cannot be written as a text");
}

FilterForm looksLike(std::string_view text) {
  bool inQuotes = false;
  bool hasComma = false;
  for (std::size_t at = 0; at < text.size(); ++at) {
    inQuotes = inQuotes != (text[at] == '"');
    if (!inQuotes && text.substr(at).starts_with("..")) {
      return FilterForm::kRange;
    }
    hasComma = hasComma || (!inQuotes && text[at] == ',');
  }
  return hasComma ? FilterForm::kList : FilterForm::kOne;
}

std::string quotedForMessage(std::string_view text) {
  constexpr std::size_t kLongest = 60;
  std::string shown = "'";
  std::size_t length = std::min(text.size(), kLongest);
  while (length < text.size() && length > 0 && (text[length] & '\xC0') == '\x80') {
    --length;  // no character is cut in two
  }
  for (char const c : text.substr(0, length)) {
    shown += static_cast<unsigned char>(c) < ' ' || c == '\x7F' ? ' ' : c;
  }
  return shown + (length < text.size() ? "...'" : "'");
}

}  // namespace mox::core
