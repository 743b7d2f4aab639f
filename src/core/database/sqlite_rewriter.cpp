#include "core/database/sqlite_rewriter.h"

#include <algorithm>
#include <array>

#include "core/database/database_error.h"
#include "core/database/sql_tokens.h"
#include "core/database/text_dates.h"

namespace mox::core {
namespace {

// The characters of a literal between its quotes, for a literal that is put between single ones.
std::string withoutBackslashes(std::string_view inner, char quote) {
  std::string result;
  for (std::size_t i = 0; i < inner.size(); ++i) {
    char c = inner[i];
    if (c == quote) {
      ++i;
    } else if (c == '\\' && i + 1 < inner.size()) {
      c = inner[++i];
      switch (c) {
        case '0':
          result += "'||char(0)||'";
          continue;
        case 'b':
          c = '\b';
          break;
        case 'n':
          c = '\n';
          break;
        case 'r':
          c = '\r';
          break;
        case 't':
          c = '\t';
          break;
        case 'Z':
          c = '\x1A';
          break;
        case '%':
        case '_':
          result += '\\';
          break;  // kept for the like that reads them
        default:
          break;
      }
    }
    result.append(c == '\'' ? 2 : 1, c);
  }
  return result;
}

std::string literal(std::string_view token) {
  std::string const text =
      "'" + withoutBackslashes(token.substr(1, token.size() - 2), token.front()) + "'";
  return text.find("||char(0)||") == std::string::npos ? text : "(" + text + ")";
}

// Exactly digits, "/", digits, "/", digits: other texts that a lenient reader takes for a date stay
// texts.
bool hasSlashForm(std::string_view text) {
  int slashes = 0;
  bool digitBefore = false;
  for (char const c : text) {
    bool const digit = c >= '0' && c <= '9';
    if (!digit && (c != '/' || !digitBefore)) {
      return false;
    }
    slashes += digit ? 0 : 1;
    digitBefore = digit;
  }
  return slashes == 2 && digitBefore && text.size() <= 10;
}

class Rewriter {
 public:
  explicit Rewriter(std::string_view text) : text_(text), tokens_(text) {}

  SqliteText run() {
    if (tokens_.isCutOff()) {
      throw DatabaseError("The statement ends inside a literal or a quoted name", "",
                          std::string(text_));
    }
    int const first = rewriteHead();
    for (int i = first; i < tokens_.count(); ++i) {
      copyGap(i);
      followBetween(i);
      copyToken(i);
    }
    result_.statement += rest();
    return std::move(result_);
  }

 private:
  bool hasWords(std::initializer_list<std::string_view> words) const {
    int index = 0;
    return std::all_of(words.begin(), words.end(),
                       [&](auto word) { return tokens_.isWord(index++, word); });
  }

  // Writes the statement's first words where they differ, and gives the token behind them.
  int rewriteHead() {
    if (hasWords({"create", "or", "replace", "temporary", "table"}) && isPlainName(5)) {
      result_.ahead.push_back("drop table if exists temp." + std::string(tokens_.textAt(5)));
      result_.statement = "create temporary table";
      return skipTo(5);
    }
    if (hasWords({"drop", "temporary", "table", "if", "exists"}) && isPlainName(5)) {
      result_.statement = "drop table if exists temp.";
      return takeOver(5);
    }
    if (hasWords({"drop", "temporary", "table"}) && isPlainName(3)) {
      result_.statement = "drop table temp.";
      return takeOver(3);
    }
    return 0;
  }

  // A name with its database in front is not one of SQLite's temporary tables; what stands between
  // double quotes is a text.
  bool isPlainName(int index) const {
    return tokens_.isName(index) && !tokens_.isKind(index, SqlTokenKind::kDoubleQuoted) &&
           !tokens_.isPunctuation(index + 1, '.');
  }

  int skipTo(int index) {
    copied_ = tokens_.at(index - 1).end;
    return index;
  }

  int takeOver(int index) {
    result_.statement += tokens_.textAt(index);
    copied_ = tokens_.at(index).end;
    return index + 1;
  }

  // Blanks and comments between two tokens. SQLite has no comment that begins with "#".
  std::string filler(std::string_view gap) const {
    return gap.find('#') == std::string_view::npos ? std::string(gap) : std::string(" ");
  }

  void copyGap(int index) {
    std::size_t const begin = tokens_.at(index).begin;
    std::string const gap = filler(text_.substr(copied_, begin - copied_));
    bool const minusAgain =
        tokens_.isPunctuation(index, '-') && tokens_.isPunctuation(index - 1, '-');
    result_.statement += gap.empty() && minusAgain ? " " : gap;
  }

  std::string rest() const { return filler(text_.substr(copied_)); }

  void copyToken(int index) {
    SqlToken const& token = tokens_.at(index);
    std::string_view const text = tokens_.textAt(index);
    bool const escaped =
        (token.kind == SqlTokenKind::kString || token.kind == SqlTokenKind::kDoubleQuoted) &&
        text.find('\\') != std::string_view::npos;
    if (isBoundOfBetween_ && isSlashDate(index)) {
      result_.statement += "'" + isoText(date_t(*parseDateText(tokens_.nameAt(index)))) + "'";
    } else {
      result_.statement += escaped ? literal(text) : std::string(text);
    }
    isBoundOfBetween_ = false;
    expectBound(index);
    copied_ = token.end;
  }

  bool isSlashDate(int index) const {
    if (!tokens_.isKind(index, SqlTokenKind::kString)) {
      return false;
    }
    std::string const inner = tokens_.nameAt(index);
    return hasSlashForm(inner) && parseDateText(inner).has_value();
  }

  // Keeps the betweens whose "and" is still to come, innermost last. One in a bracket that closes
  // without its "and" is none: the database refuses that text.
  void followBetween(int index) {
    while (!open_.empty() && tokens_.at(index).depth < open_.back()) {
      open_.pop_back();
    }
  }

  void expectBound(int index) {
    if (tokens_.isWord(index, "between")) {
      open_.push_back(tokens_.at(index).depth);
      isBoundOfBetween_ = true;
    } else if (tokens_.isWord(index, "and") && !open_.empty() &&
               open_.back() == tokens_.at(index).depth) {
      open_.pop_back();
      isBoundOfBetween_ = true;
    }
  }

  std::string_view text_;
  SqlTokens tokens_;
  SqliteText result_;
  std::size_t copied_ = 0;         // the text before it was written
  std::vector<int> open_;          // depths of open betweens
  bool isBoundOfBetween_ = false;  // the next token is where a bound begins
};

}  // namespace

SqliteText rewriteForSqlite(std::string_view statement) {
  return Rewriter(statement).run();
}

}  // namespace mox::core
