#include "core/database/sqlite_functions.h"

#include <sqlite3.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <optional>
#include <string>
#include <string_view>

#include "core/database/database_error.h"
#include "core/database/sqlite_like.h"
#include "core/database/text_dates.h"
#include "core/date/clock.h"

namespace mox::core {
namespace {

constexpr std::size_t kLongestPattern = 50000;  // bytes; time grows with pattern times text

using Function = void (*)(sqlite3_context*, int, sqlite3_value**);

bool isNull(sqlite3_value* value) {
  return sqlite3_value_type(value) == SQLITE_NULL;
}

// Valid until the value is read in another way.
std::string_view textOf(sqlite3_value* value) {
  auto const* const bytes = reinterpret_cast<char const*>(sqlite3_value_text(value));
  return bytes == nullptr
             ? std::string_view()
             : std::string_view(bytes, static_cast<std::size_t>(sqlite3_value_bytes(value)));
}

void resultText(sqlite3_context* context, std::string_view text) {
  sqlite3_result_text64(context, text.data(), text.size(), SQLITE_TRANSIENT, SQLITE_UTF8);
}

std::optional<datetime_t> momentOf(sqlite3_value* value) {
  return isNull(value) ? std::nullopt : parseDateText(textOf(value));
}

// What is no date gives a null, which is the result that SQLite starts with.
void date(sqlite3_context* context, int, sqlite3_value** values) {
  if (auto const moment = momentOf(values[0])) {
    resultText(context, isoText(date_t(*moment)));
  }
}

template <int (*Part)(datetime_t const&)>
void part(sqlite3_context* context, int, sqlite3_value** values) {
  if (auto const moment = momentOf(values[0])) {
    sqlite3_result_int(context, Part(*moment));
  }
}

int yearOf(datetime_t const& moment) {
  return moment.year();
}
int monthOf(datetime_t const& moment) {
  return moment.month();
}
int dayOf(datetime_t const& moment) {
  return moment.day();
}
int quarterOf(datetime_t const& moment) {
  return (moment.month() + 2) / 3;
}

void curdate(sqlite3_context* context, int, sqlite3_value**) {
  resultText(context, isoText(date_t(mox::core::now())));
}

void now(sqlite3_context* context, int, sqlite3_value**) {
  resultText(context, isoText(mox::core::now()));
}

void ifElse(sqlite3_context* context, int, sqlite3_value** values) {
  bool const holds = sqlite3_value_double(values[0]) != 0;
  sqlite3_result_value(context, values[holds ? 1 : 2]);
}

// A double without a fraction shows none, unlike SQLite's own text of it.
void appendText(std::string& text, sqlite3_value* value) {
  double const number = sqlite3_value_double(value);
  if (sqlite3_value_type(value) != SQLITE_FLOAT || !std::isfinite(number)) {
    text += textOf(value);
    return;
  }
  char digits[64];
  bool const plain = number == 0 || (std::abs(number) >= 1e-15 && std::abs(number) < 1e15);
  auto const format = plain ? std::chars_format::fixed : std::chars_format::scientific;
  auto const shortest = std::to_chars(digits, digits + sizeof digits, number, format);
  text.append(digits, std::remove(digits, shortest.ptr, '+'));  // 1e15, not 1e+15
}

void concat(sqlite3_context* context, int count, sqlite3_value** values) {
  std::string text;
  for (int i = 0; i < count; ++i) {
    if (isNull(values[i])) {
      return;
    }
    appendText(text, values[i]);
  }
  resultText(context, text);
}

// The escape of `like ... escape c`: one character, or none for an empty text.
std::optional<char32_t> escapeOf(sqlite3_value* value) {
  std::string_view const text = textOf(value);
  if (text.empty()) {
    return U'\0';
  }
  bool const oneAscii = text.size() == 1 && static_cast<unsigned char>(text[0]) < 0x80;
  return oneAscii ? std::optional<char32_t>(static_cast<char32_t>(text[0])) : std::nullopt;
}

void like(sqlite3_context* context, int count, sqlite3_value** values) {
  if (isNull(values[0]) || isNull(values[1]) || (count == 3 && isNull(values[2]))) {
    return;
  }
  auto const escape = count == 3 ? escapeOf(values[2]) : std::optional<char32_t>(U'\\');
  if (!escape) {
    sqlite3_result_error(context, "the escape of like must be one ASCII character", -1);
    return;
  }
  std::string_view const pattern = textOf(values[0]);
  if (pattern.size() > kLongestPattern) {
    sqlite3_result_error(context, "the pattern of like is too long", -1);
    return;
  }
  sqlite3_result_int(context, isLike(textOf(values[1]), pattern, *escape) ? 1 : 0);
}

class Query {
 public:
  Query(sqlite3* line, char const* sql)
      : status_(sqlite3_prepare_v2(line, sql, -1, &statement_, nullptr)) {}
  ~Query() { sqlite3_finalize(statement_); }
  Query(Query const&) = delete;
  Query& operator=(Query const&) = delete;

  int status() const { return status_; }
  sqlite3_stmt* get() const { return statement_; }

 private:
  sqlite3_stmt* statement_ = nullptr;
  int status_;
};

// The row of the unit stands before the general one. A database without the table has nothing
// configured.
constexpr char const* kConfigurationSql =
    "select valor from ambiente_configuracoes where modulo = ?1 and chave = ?2 "
    "and (id_unidade = ?3 or id_unidade is null) order by id_unidade is null limit 1";

void configuration(sqlite3_context* context, int, sqlite3_value** values) {
  sqlite3* const line = sqlite3_context_db_handle(context);
  Query const query(line, kConfigurationSql);
  if (query.status() != SQLITE_OK) {
    std::string_view const message = sqlite3_errmsg(line);
    if (!message.starts_with("no such table")) {
      sqlite3_result_error(context, message.data(), static_cast<int>(message.size()));
    }
    return;
  }
  for (int i = 0; i < 3; ++i) {
    sqlite3_bind_value(query.get(), i + 1, values[i]);
  }
  int const status = sqlite3_step(query.get());
  if (status == SQLITE_ROW) {
    sqlite3_result_value(context, sqlite3_column_value(query.get(), 0));
  } else if (status != SQLITE_DONE) {
    sqlite3_result_error_code(context, status);
  }
}

// No exception may cross SQLite's own frames; what is thrown here can only be a lack of memory.
template <Function Body>
void guarded(sqlite3_context* context, int count, sqlite3_value** values) noexcept {
  try {
    Body(context, count, values);
  } catch (...) {
    sqlite3_result_error_nomem(context);
  }
}

struct Entry {
  char const* name;
  int valueCount;  // -1: any
  int flags;
  Function function;
};

constexpr int kPure = SQLITE_DETERMINISTIC | SQLITE_INNOCUOUS;

constexpr Entry kEntries[] = {
    {"date", 1, kPure, guarded<date>},
    {"year", 1, kPure, guarded<part<yearOf>>},
    {"month", 1, kPure, guarded<part<monthOf>>},
    {"day", 1, kPure, guarded<part<dayOf>>},
    {"quarter", 1, kPure, guarded<part<quarterOf>>},
    {"curdate", 0, SQLITE_INNOCUOUS, guarded<curdate>},
    {"now", 0, SQLITE_INNOCUOUS, guarded<now>},
    {"if", 3, kPure, guarded<ifElse>},
    {"concat", -1, kPure, guarded<concat>},
    {"like", 2, kPure, guarded<like>},
    {"like", 3, kPure, guarded<like>},
    {"ambiente_buscadadostringconfiguracao", 3, SQLITE_INNOCUOUS, guarded<configuration>},
};

}  // namespace

void registerSqliteFunctions(sqlite3* line) {
  for (Entry const& entry : kEntries) {
    int const status =
        sqlite3_create_function_v2(line, entry.name, entry.valueCount, entry.flags | SQLITE_UTF8,
                                   nullptr, entry.function, nullptr, nullptr, nullptr);
    if (status != SQLITE_OK) {
      throw DatabaseError(sqlite3_errmsg(line), std::to_string(status));
    }
  }
}

}  // namespace mox::core
