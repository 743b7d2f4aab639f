#include "core/database/sqlite_types.h"

#include <algorithm>
#include <array>
#include <utility>

namespace mox::core {
namespace {

// A statement may nest names as it likes: the tokens looked at for all its columns, and the depth,
// are bounded.
constexpr int kMostWork = 2'000'000;
constexpr int kDeepest = 40;

struct TypeWord {
  std::string_view word;
  FieldType type;
};

constexpr std::array kTypeWords = {
    TypeWord{"int", FieldType::kInt},         TypeWord{"integer", FieldType::kInt},
    TypeWord{"tinyint", FieldType::kInt},     TypeWord{"smallint", FieldType::kInt},
    TypeWord{"mediumint", FieldType::kInt},   TypeWord{"bigint", FieldType::kInt},
    TypeWord{"bool", FieldType::kInt},        TypeWord{"boolean", FieldType::kInt},
    TypeWord{"bit", FieldType::kInt},         TypeWord{"year", FieldType::kInt},
    TypeWord{"signed", FieldType::kInt},      TypeWord{"double", FieldType::kDouble},
    TypeWord{"real", FieldType::kDouble},     TypeWord{"float", FieldType::kDouble},
    TypeWord{"decimal", FieldType::kDouble},  TypeWord{"dec", FieldType::kDouble},
    TypeWord{"numeric", FieldType::kDouble},  TypeWord{"fixed", FieldType::kDouble},
    TypeWord{"date", FieldType::kDate},       TypeWord{"datetime", FieldType::kDate},
    TypeWord{"timestamp", FieldType::kDate},  TypeWord{"blob", FieldType::kBlob},
    TypeWord{"tinyblob", FieldType::kBlob},   TypeWord{"mediumblob", FieldType::kBlob},
    TypeWord{"longblob", FieldType::kBlob},   TypeWord{"binary", FieldType::kBlob},
    TypeWord{"varbinary", FieldType::kBlob},  TypeWord{"char", FieldType::kText},
    TypeWord{"character", FieldType::kText},  TypeWord{"nchar", FieldType::kText},
    TypeWord{"varchar", FieldType::kText},    TypeWord{"nvarchar", FieldType::kText},
    TypeWord{"text", FieldType::kText},       TypeWord{"tinytext", FieldType::kText},
    TypeWord{"mediumtext", FieldType::kText}, TypeWord{"longtext", FieldType::kText},
    TypeWord{"clob", FieldType::kText},       TypeWord{"json", FieldType::kText},
    TypeWord{"enum", FieldType::kText},       TypeWord{"set", FieldType::kText},
    TypeWord{"time", FieldType::kText},       TypeWord{"uuid", FieldType::kText}};

// What a function makes of its values.
enum class Makes { kInt, kDouble, kDate, kText, kFirstValue, kNumberOrValue, kBranches };

struct FunctionWord {
  std::string_view word;
  Makes makes;
};

constexpr std::array kFunctions = {
    FunctionWord{"sum", Makes::kDouble},
    FunctionWord{"avg", Makes::kDouble},
    FunctionWord{"total", Makes::kDouble},
    FunctionWord{"round", Makes::kDouble},
    FunctionWord{"sqrt", Makes::kDouble},
    FunctionWord{"pow", Makes::kDouble},
    FunctionWord{"power", Makes::kDouble},
    FunctionWord{"exp", Makes::kDouble},
    FunctionWord{"ln", Makes::kDouble},
    FunctionWord{"log", Makes::kDouble},
    FunctionWord{"count", Makes::kInt},
    FunctionWord{"year", Makes::kInt},
    FunctionWord{"month", Makes::kInt},
    FunctionWord{"day", Makes::kInt},
    FunctionWord{"quarter", Makes::kInt},
    FunctionWord{"length", Makes::kInt},
    FunctionWord{"instr", Makes::kInt},
    FunctionWord{"row_number", Makes::kInt},
    FunctionWord{"rank", Makes::kInt},
    FunctionWord{"dense_rank", Makes::kInt},
    FunctionWord{"ntile", Makes::kInt},
    FunctionWord{"exists", Makes::kInt},
    FunctionWord{"date", Makes::kDate},
    FunctionWord{"curdate", Makes::kDate},
    FunctionWord{"now", Makes::kDate},
    FunctionWord{"datetime", Makes::kDate},
    FunctionWord{"concat", Makes::kText},
    FunctionWord{"group_concat", Makes::kText},
    FunctionWord{"upper", Makes::kText},
    FunctionWord{"lower", Makes::kText},
    FunctionWord{"trim", Makes::kText},
    FunctionWord{"ltrim", Makes::kText},
    FunctionWord{"rtrim", Makes::kText},
    FunctionWord{"replace", Makes::kText},
    FunctionWord{"substr", Makes::kText},
    FunctionWord{"substring", Makes::kText},
    FunctionWord{"hex", Makes::kText},
    FunctionWord{"strftime", Makes::kText},
    FunctionWord{"printf", Makes::kText},
    FunctionWord{"time", Makes::kText},
    FunctionWord{"min", Makes::kFirstValue},
    FunctionWord{"max", Makes::kFirstValue},
    FunctionWord{"abs", Makes::kFirstValue},
    FunctionWord{"nullif", Makes::kFirstValue},
    FunctionWord{"lag", Makes::kFirstValue},
    FunctionWord{"lead", Makes::kFirstValue},
    FunctionWord{"first_value", Makes::kFirstValue},
    FunctionWord{"last_value", Makes::kFirstValue},
    FunctionWord{"coalesce", Makes::kNumberOrValue},
    FunctionWord{"ifnull", Makes::kNumberOrValue},
    FunctionWord{"if", Makes::kBranches},
    FunctionWord{"iif", Makes::kBranches},
    FunctionWord{"ambiente_buscadadostringconfiguracao", Makes::kText}};

constexpr std::array<std::string_view, 9> kTestWords = {"and", "or",      "not",    "is",  "like",
                                                        "in",  "between", "regexp", "glob"};

InferredType known(FieldType type) {
  return {type, false};
}

bool isNumber(InferredType const& type) {
  return type.isArithmetic || type.type == FieldType::kInt || type.type == FieldType::kDouble;
}

// The type that takes the values of both; a side that is not known leaves the decision to the
// other.
InferredType common(InferredType const& left, InferredType const& right) {
  if (!left.type || !right.type) {
    return {left.type ? left.type : right.type, left.isArithmetic || right.isArithmetic};
  }
  if (left.type == right.type) {
    return left;
  }
  return known(isNumber(left) && isNumber(right) ? FieldType::kDouble : FieldType::kText);
}

class Inference {
 public:
  Inference(SqlTokens const& tokens, ColumnTypes const& columnTypes, int& work)
      : tokens_(tokens), columnTypes_(columnTypes), work_(work) {}

  InferredType infer(TokenRange range, SelectShape const& shape) {
    if (range.isEmpty() || isSpent(range)) {
      return {};
    }
    ++nesting_;
    InferredType const type = inferUnbounded(withoutBrackets(range), shape);
    --nesting_;
    return type;
  }

  // A column by its name among the sources; an empty qualifier means any of them, the first that
  // has it.
  InferredType column(std::string const& qualifier, std::string const& name,
                      SelectShape const& shape) {
    for (SelectSource const& source : shape.sources) {
      if (!qualifier.empty() && !equalIgnoringCase(source.alias, qualifier)) {
        continue;
      }
      InferredType const found = columnOf(source, name, shape);
      if (found.type || found.isArithmetic) {
        return found;
      }
    }
    return {};
  }

 private:
  bool isSpent(TokenRange range) {
    work_ += 1 + std::max(0, range.end - range.begin);
    return work_ > kMostWork || nesting_ > kDeepest;
  }

  TokenRange withoutBrackets(TokenRange range) const {
    while (range.end - range.begin > 2 && tokens_.isPunctuation(range.begin, '(') &&
           tokens_.behindBracket(range.begin, range.end) == range.end) {
      ++range.begin;
      --range.end;
    }
    return range;
  }

  InferredType inferUnbounded(TokenRange range, SelectShape const& shape) {
    if (tokens_.isWord(range.begin, "select") || tokens_.isWord(range.begin, "with")) {
      return firstItem(range, shape);
    }
    if (tokens_.isPunctuation(range.begin, '-') || tokens_.isPunctuation(range.begin, '+')) {
      InferredType const operand = infer({range.begin + 1, range.end}, shape);
      return isNumber(operand) ? operand : InferredType{std::nullopt, true};
    }
    if (isTest(range)) {
      return known(FieldType::kInt);
    }
    if (isArithmetic(range)) {
      return inferArithmetic(range, shape);
    }
    if (tokens_.isWord(range.begin, "case")) {
      return branchesOfCase(range, shape);
    }
    return inferOperand(range, shape);
  }

  InferredType firstItem(TokenRange range, SelectShape const& outer) {
    SelectShape const inner = parseSelect(tokens_, range, outer.known);
    return inner.items.empty() ? InferredType{} : infer(inner.items.front().expression, inner);
  }

  template <class Predicate>
  bool anyAtTop(TokenRange range, Predicate predicate) const {
    int const depth = tokens_.at(range.begin).depth;
    int cases = 0;
    for (int i = range.begin; i < range.end; ++i) {
      cases += tokens_.isWord(i, "case") ? 1 : 0;
      if (cases == 0 && tokens_.at(i).depth == depth && predicate(i)) {
        return true;
      }
      cases -= cases > 0 && tokens_.isWord(i, "end") ? 1 : 0;
    }
    return false;
  }

  bool isTest(TokenRange range) const {
    return anyAtTop(range, [&](int i) {
      return tokens_.isPunctuation(i, '=') || tokens_.isPunctuation(i, '<') ||
             tokens_.isPunctuation(i, '>') ||
             std::any_of(kTestWords.begin(), kTestWords.end(),
                         [&](auto word) { return tokens_.isWord(i, word); });
    });
  }

  bool isSign(int i) const {
    return tokens_.isPunctuation(i, '+') || tokens_.isPunctuation(i, '-') ||
           tokens_.isPunctuation(i, '*') || tokens_.isPunctuation(i, '/') ||
           tokens_.isPunctuation(i, '%') || tokens_.isWord(i, "div") || tokens_.isWord(i, "mod");
  }

  bool isArithmetic(TokenRange range) const {
    bool const lone = range.end - range.begin == 1;
    return !lone && anyAtTop(range, [&](int i) { return isSign(i); });
  }

  // With a double among the operands a double, whatever the first row's value is: a price less a
  // price is a whole number on some rows only.
  InferredType inferArithmetic(TokenRange range, SelectShape const& shape) {
    int begin = range.begin;
    auto const endsInDouble = [&](int end) {
      TokenRange const operand{begin, end};
      begin = end + 1;
      return infer(operand, shape).type == FieldType::kDouble;
    };
    bool const hasDouble = anyAtTop(range, [&](int i) { return isSign(i) && endsInDouble(i); }) ||
                           endsInDouble(range.end);
    return hasDouble ? known(FieldType::kDouble) : InferredType{std::nullopt, true};
  }

  // The values behind "then" and "else" of the outer case.
  InferredType branchesOfCase(TokenRange range, SelectShape const& shape) {
    InferredType result;
    int cases = 0;
    int begin = -1;
    for (int i = range.begin; i < range.end; ++i) {
      bool const ends = cases == 1 && (tokens_.isWord(i, "when") || tokens_.isWord(i, "else") ||
                                       tokens_.isWord(i, "end"));
      if (ends && begin >= 0) {
        result = common(result, infer({begin, i}, shape));
        begin = -1;
      }
      if (cases == 1 && (tokens_.isWord(i, "then") || tokens_.isWord(i, "else"))) {
        begin = i + 1;
      }
      cases += tokens_.isWord(i, "case") ? 1 : 0;
      cases -= tokens_.isWord(i, "end") ? 1 : 0;
    }
    return result;
  }

  InferredType inferOperand(TokenRange range, SelectShape const& shape) {
    int const length = range.end - range.begin;
    if (length >= 3 && tokens_.isName(range.begin) && tokens_.isPunctuation(range.begin + 1, '(')) {
      return inferCall(range, shape);
    }
    if (length == 1) {
      return inferSingle(range.begin, shape);
    }
    bool const qualified =
        length >= 3 && tokens_.isName(range.end - 1) && tokens_.isPunctuation(range.end - 2, '.');
    return qualified ? column(tokens_.nameAt(range.end - 3), tokens_.nameAt(range.end - 1), shape)
                     : InferredType{};
  }

  InferredType inferSingle(int index, SelectShape const& shape) {
    if (tokens_.isKind(index, SqlTokenKind::kNumber)) {
      std::string_view const text = tokens_.textAt(index);
      bool const hex = text.starts_with("0x") || text.starts_with("0X");
      bool const whole = hex || text.find_first_of(".eE") == std::string_view::npos;
      return known(whole ? FieldType::kInt : FieldType::kDouble);
    }
    if (tokens_.isKind(index, SqlTokenKind::kString)) {
      return known(FieldType::kText);
    }
    if (tokens_.isWord(index, "true") || tokens_.isWord(index, "false")) {
      return known(FieldType::kInt);
    }
    if (tokens_.isWord(index, "current_date") || tokens_.isWord(index, "current_timestamp")) {
      return known(FieldType::kDate);
    }
    return tokens_.isName(index) ? column("", tokens_.nameAt(index), shape) : InferredType{};
  }

  InferredType inferCall(TokenRange range, SelectShape const& shape) {
    int const behind = tokens_.behindBracket(range.begin + 1, range.end);
    bool const window = tokens_.isWord(behind, "over") || tokens_.isWord(behind, "filter");
    if (behind != range.end && !window) {
      return {};
    }
    TokenRange const inner{range.begin + 2, behind - 1};
    std::string const name = lowerCase(tokens_.textAt(range.begin));
    if (name == "cast") {
      return castType(inner);
    }
    auto const found = std::find_if(kFunctions.begin(), kFunctions.end(),
                                    [&](FunctionWord const& entry) { return entry.word == name; });
    return found == kFunctions.end() ? InferredType{} : made(found->makes, inner, shape);
  }

  InferredType castType(TokenRange inner) const {
    for (int i = inner.begin; i < inner.end; ++i) {
      if (tokens_.isWord(i, "as") && tokens_.at(i).depth == tokens_.at(inner.begin).depth) {
        return {declaredType(tokens_.textAt(i + 1)), false};
      }
    }
    return {};
  }

  InferredType made(Makes makes, TokenRange inner, SelectShape const& shape) {
    switch (makes) {
      case Makes::kInt:
        return known(FieldType::kInt);
      case Makes::kDouble:
        return known(FieldType::kDouble);
      case Makes::kDate:
        return known(FieldType::kDate);
      case Makes::kText:
        return known(FieldType::kText);
      case Makes::kFirstValue:
        return commonOfValues(inner, shape, 0, 1);
      case Makes::kBranches:
        return commonOfValues(inner, shape, 1, 3);
      case Makes::kNumberOrValue:
        break;
    }
    InferredType const value = commonOfValues(inner, shape, 0, inner.end);
    return isNumber(value) ? known(FieldType::kDouble) : value;
  }

  // The common type of the values from the `first`-th to before the `last`-th.
  InferredType commonOfValues(TokenRange inner, SelectShape const& shape, int first, int last) {
    InferredType result;
    if (inner.isEmpty()) {
      return result;
    }
    int begin = inner.begin + (tokens_.isWord(inner.begin, "distinct") ? 1 : 0);
    int number = 0;
    for (int i = begin; i <= inner.end && number < last; ++i) {
      bool const comma = i < inner.end && tokens_.isPunctuation(i, ',') &&
                         tokens_.at(i).depth == tokens_.at(inner.begin).depth;
      if (i < inner.end && !comma) {
        continue;
      }
      if (number >= first) {
        result = common(result, infer({begin, i}, shape));
      }
      ++number;
      begin = i + 1;
    }
    return result;
  }

  InferredType columnOf(SelectSource const& source, std::string const& name,
                        SelectShape const& shape) {
    if (isSpent(source.subquery)) {
      return {};
    }
    if (source.subquery.isEmpty()) {
      return source.table.empty() ? InferredType{}
                                  : InferredType{columnTypes_(source.table, name), false};
    }
    ++nesting_;
    InferredType const type = columnOfSubquery(source, name, shape);
    --nesting_;
    return type;
  }

  InferredType columnOfSubquery(SelectSource const& source, std::string const& name,
                                SelectShape const& shape) {
    SelectShape const inner = parseSelect(tokens_, source.subquery, shape.known);
    for (std::size_t i = 0; i < inner.items.size(); ++i) {
      SelectItem const& item = inner.items[i];
      std::string const& itemName = i < source.names.size() ? source.names[i] : item.name;
      if (!item.isStar && equalIgnoringCase(itemName, name)) {
        return infer(item.expression, inner);
      }
      if (item.isStar) {
        InferredType const behindStar = column(item.starOf, name, inner);
        if (behindStar.type || behindStar.isArithmetic) {
          return behindStar;
        }
      }
    }
    return {};
  }

  SqlTokens const& tokens_;
  ColumnTypes const& columnTypes_;
  int& work_;
  int nesting_ = 0;
};

std::optional<FieldType> typeOfWord(std::string_view word) {
  auto const found = std::find_if(kTypeWords.begin(), kTypeWords.end(),
                                  [&](TypeWord const& entry) { return entry.word == word; });
  return found == kTypeWords.end() ? std::nullopt : std::optional(found->type);
}

}  // namespace

std::optional<FieldType> declaredType(std::string_view declaration) {
  SqlTokens const tokens(declaration);
  for (int i = 0; i < tokens.count(); ++i) {
    if (auto const type = typeOfWord(lowerCase(tokens.textAt(i)))) {
      return type;
    }
  }
  return std::nullopt;
}

FieldType InferredType::withoutRows() const {
  return type.value_or(isArithmetic ? FieldType::kDouble : FieldType::kText);
}

ResultTypes::ResultTypes(std::string statement, std::vector<std::string> fieldNames,
                         ColumnTypes columnTypes)
    : statement_(std::move(statement)),
      tokens_(statement_),
      fieldNames_(std::move(fieldNames)),
      columnTypes_(std::move(columnTypes)),
      shape_(parseSelect(tokens_, {0, tokens_.count()})) {}

SelectItem const* ResultTypes::itemOf(int field) const {
  auto const isStar = [](SelectItem const& item) { return item.isStar; };
  auto const& items = shape_.items;
  auto const index = static_cast<std::ptrdiff_t>(field);
  auto const fields = static_cast<std::ptrdiff_t>(fieldNames_.size());
  auto const beforeStar = std::find_if(items.begin(), items.end(), isStar) - items.begin();
  auto const count = static_cast<std::ptrdiff_t>(items.size());
  if (beforeStar == count) {
    return count == fields ? &items[static_cast<std::size_t>(field)] : nullptr;
  }
  auto const behindStar = std::find_if(items.rbegin(), items.rend(), isStar) - items.rbegin();
  if (index < beforeStar) {
    return &items[static_cast<std::size_t>(field)];
  }
  auto const fromEnd = fields - index;
  return fromEnd <= behindStar ? &items[static_cast<std::size_t>(count - fromEnd)] : nullptr;
}

InferredType ResultTypes::at(int field) {
  Inference inference(tokens_, columnTypes_, work_);
  if (SelectItem const* const item = itemOf(field)) {
    return inference.infer(item->expression, shape_);
  }
  return inference.column("", fieldNames_[static_cast<std::size_t>(field)], shape_);
}

std::string ResultTypes::tableAlias(int field, std::string const& table) const {
  if (table.empty()) {
    return {};
  }
  SelectItem const* const item = itemOf(field);
  if (item != nullptr && item->expression.end - item->expression.begin >= 3) {
    return tokens_.nameAt(item->expression.end - 3);
  }
  auto const source =
      std::find_if(shape_.sources.begin(), shape_.sources.end(),
                   [&](SelectSource const& each) { return equalIgnoringCase(each.table, table); });
  return source == shape_.sources.end() ? std::string() : source->alias;
}

}  // namespace mox::core
