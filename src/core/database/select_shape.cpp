#include "core/database/select_shape.h"

#include <algorithm>
#include <array>

namespace mox::core {
namespace {

constexpr std::array<std::string_view, 10> kEndsList = {
    "from", "where", "group", "having", "order", "limit", "union", "intersect", "except", "window"};
constexpr std::array<std::string_view, 12> kEndsSource = {
    "on",    "using", "join",  "left",    "right",         "full",
    "inner", "outer", "cross", "natural", "straight_join", "as"};
// Behind one of these stands an operand, so that a name there is no alias.
constexpr std::array<std::string_view, 18> kBeforeOperand = {
    "and",  "or",   "not", "is",  "like",   "in",       "between", "then",   "else",
    "when", "case", "div", "mod", "regexp", "distinct", "collate", "select", "interval"};
constexpr std::array<std::string_view, 4> kEndsExpression = {"end", "null", "true", "false"};

template <std::size_t N>
bool isOneOf(SqlTokens const& tokens, int index, std::array<std::string_view, N> const& words) {
  return std::any_of(words.begin(), words.end(),
                     [&](auto word) { return tokens.isWord(index, word); });
}

class Parser {
 public:
  Parser(SqlTokens const& tokens, TokenRange range, std::vector<SelectSource> known)
      : tokens_(tokens),
        place_(range.begin),
        end_(std::min(range.end, tokens.count())),
        known_(std::move(known)) {}

  SelectShape run() {
    readShape();
    shape_.known = std::move(known_);
    return std::move(shape_);
  }

 private:
  void readShape() {
    while (tokens_.isPunctuation(place_, '(') && place_ < end_) {
      end_ = tokens_.behindBracket(place_, end_) - 1;
      ++place_;
    }
    readWith();
    if (place_ >= end_ || !tokens_.isWord(place_, "select")) {
      return;
    }
    depth_ = tokens_.at(place_).depth;
    ++place_;
    if (tokens_.isWord(place_, "distinct") || tokens_.isWord(place_, "all")) {
      ++place_;
    }
    readItems();
    if (place_ < end_ && tokens_.isWord(place_, "from")) {
      ++place_;
      readSources();
    }
  }

  bool isHere(int index) const { return tokens_.at(index).depth == depth_; }

  void readWith() {
    if (place_ >= end_ || !tokens_.isWord(place_, "with")) {
      return;
    }
    ++place_;
    place_ += tokens_.isWord(place_, "recursive") ? 1 : 0;
    while (place_ < end_ && tokens_.isName(place_) && !tokens_.isWord(place_, "select")) {
      known_.push_back(readNamedSubquery());
      if (!tokens_.isPunctuation(place_, ',')) {
        return;
      }
      ++place_;
    }
  }

  SelectSource readNamedSubquery() {
    SelectSource source;
    source.alias = tokens_.nameAt(place_++);
    if (tokens_.isPunctuation(place_, '(')) {
      int const behind = tokens_.behindBracket(place_, end_);
      for (++place_; place_ < behind; ++place_) {
        if (tokens_.isName(place_)) {
          source.names.push_back(tokens_.nameAt(place_));
        }
      }
    }
    while (place_ < end_ && tokens_.isKind(place_, SqlTokenKind::kWord)) {
      ++place_;  // as, not, materialized
    }
    source.subquery = takeBracket();
    return source;
  }

  // What stands inside the bracket at the place, which moves behind it; empty when there is none.
  TokenRange takeBracket() {
    if (place_ >= end_ || !tokens_.isPunctuation(place_, '(')) {
      return {};
    }
    TokenRange inner{place_ + 1, 0};
    place_ = tokens_.behindBracket(place_, end_);
    inner.end = place_ - 1;
    return inner;
  }

  void readItems() {
    int begin = place_;
    for (; place_ < end_ && !(isHere(place_) && isOneOf(tokens_, place_, kEndsList)); ++place_) {
      if (isHere(place_) && tokens_.isPunctuation(place_, ',')) {
        shape_.items.push_back(itemIn({begin, place_}));
        begin = place_ + 1;
      }
    }
    shape_.items.push_back(itemIn({begin, place_}));
  }

  SelectItem itemIn(TokenRange range) const {
    SelectItem item;
    item.expression = range;
    if (range.isEmpty()) {
      return item;
    }
    int const last = range.end - 1;
    bool const dotBefore = range.end - range.begin == 3 && tokens_.isPunctuation(last - 1, '.');
    if (tokens_.isPunctuation(last, '*') && (range.begin == last || dotBefore)) {
      item.isStar = true;
      item.starOf = dotBefore ? tokens_.nameAt(range.begin) : std::string();
      return item;
    }
    nameItem(item, last);
    return item;
  }

  void nameItem(SelectItem& item, int last) const {
    int const begin = item.expression.begin;
    bool const nameable = tokens_.isName(last) || tokens_.isKind(last, SqlTokenKind::kString);
    if (nameable && last - 1 > begin && tokens_.isWord(last - 1, "as")) {
      item.name = tokens_.nameAt(last);
      item.expression.end = last - 1;
    } else if (tokens_.isName(last) && isBareAlias(begin, last)) {
      item.name = tokens_.nameAt(last);
      item.expression.end = last;
    } else if (tokens_.isName(last) && (last == begin || tokens_.isPunctuation(last - 1, '.'))) {
      item.name = tokens_.nameAt(last);
    }
  }

  bool isBareAlias(int begin, int last) const {
    if (last == begin || isOneOf(tokens_, last, kEndsExpression)) {
      return false;
    }
    int const before = last - 1;
    bool const operand = tokens_.isPunctuation(before, ')') ||
                         (!tokens_.isKind(before, SqlTokenKind::kPunctuation) &&
                          !isOneOf(tokens_, before, kBeforeOperand));
    return operand;
  }

  bool sourcesEnd() const {
    return place_ >= end_ || (isHere(place_) && isOneOf(tokens_, place_, kEndsList)) ||
           tokens_.at(place_).depth < depth_;
  }

  void readSources() {
    bool expected = true;
    while (!sourcesEnd()) {
      if (expected) {
        expected = false;
        readSource();
        continue;
      }
      expected = isHere(place_) && (tokens_.isPunctuation(place_, ',') || isJoin(place_));
      ++place_;
    }
  }

  bool isJoin(int index) const {
    return tokens_.isWord(index, "join") || tokens_.isWord(index, "straight_join");
  }

  void readSource() {
    SelectSource source;
    if (tokens_.isPunctuation(place_, '(')) {
      source.subquery = takeBracket();
    } else if (tokens_.isName(place_)) {
      source = tableAtPlace();
    } else {
      ++place_;
      return;
    }
    readAlias(source);
    shape_.sources.push_back(std::move(source));
  }

  SelectSource tableAtPlace() {
    std::string table = tokens_.nameAt(place_++);
    bool const qualified = place_ + 1 < end_ && tokens_.isPunctuation(place_, '.');
    if (qualified) {
      table = tokens_.nameAt(place_ + 1);
      place_ += 2;
    }
    auto const named = std::find_if(known_.rbegin(), known_.rend(), [&](auto const& other) {
      return equalIgnoringCase(other.alias, table);
    });
    if (named != known_.rend() && !qualified) {
      return *named;
    }
    return {table, table, {}, {}};
  }

  void readAlias(SelectSource& source) {
    if (place_ < end_ && tokens_.isWord(place_, "as")) {
      ++place_;
    }
    if (!sourcesEnd() && tokens_.isName(place_) && !isOneOf(tokens_, place_, kEndsSource)) {
      source.alias = tokens_.nameAt(place_++);
    }
  }

  SqlTokens const& tokens_;
  int place_;
  int end_;
  int depth_ = 0;
  std::vector<SelectSource> known_;
  SelectShape shape_;
};

}  // namespace

SelectShape parseSelect(SqlTokens const& tokens, TokenRange range,
                        std::vector<SelectSource> const& known) {
  return Parser(tokens, range, known).run();
}

}  // namespace mox::core
