#include "core/database/sqlite_bound_list.h"

#include <sqlite3.h>

#include <new>
#include <string>

#include "core/database/database_error.h"
#include "core/database/text_dates.h"

namespace mox::core {
namespace {

// Tells our pointers from those of other functions; SQLite compares it as text.
constexpr char const* kPointerType = "mox-bound-list";

constexpr int kListColumn = 1;  // hidden: the function's argument

struct Cursor : sqlite3_vtab_cursor {
  KeptValue const* begin = nullptr;
  KeptValue const* value = nullptr;
  KeptValue const* end = nullptr;
};

Cursor& cursorOf(sqlite3_vtab_cursor* cursor) {
  return *static_cast<Cursor*>(cursor);
}

/// Texts and bytes stay where they are while the statement runs, so they are not copied.
struct ResultSetter {
  void operator()(MarkNull) const { sqlite3_result_null(context); }
  void operator()(int value) const { sqlite3_result_int(context, value); }
  void operator()(double value) const { sqlite3_result_double(context, value); }
  void operator()(std::string const& value) const {
    sqlite3_result_text64(context, value.data(), value.size(), SQLITE_STATIC, SQLITE_UTF8);
  }
  void operator()(KeptBytes const& value) const {
    sqlite3_result_blob64(context, value.bytes.data(), value.bytes.size(), SQLITE_STATIC);
  }
  void operator()(date_t const& value) const { setCopy(isoText(value)); }
  void operator()(datetime_t const& value) const { setCopy(isoText(value)); }

  void setCopy(std::string const& text) const {
    sqlite3_result_text64(context, text.data(), text.size(), SQLITE_TRANSIENT, SQLITE_UTF8);
  }

  sqlite3_context* context;
};

int connect(sqlite3* line, void*, int, char const* const*, sqlite3_vtab** table, char**) {
  int const status = sqlite3_declare_vtab(line, "create table x(value, list hidden)");
  if (status != SQLITE_OK) {
    return status;
  }
  *table = new (std::nothrow) sqlite3_vtab{};
  if (*table == nullptr) {
    return SQLITE_NOMEM;
  }
  sqlite3_vtab_config(line, SQLITE_VTAB_DIRECTONLY);
  return SQLITE_OK;
}

int disconnect(sqlite3_vtab* table) {
  delete table;
  return SQLITE_OK;
}

/// The argument is the one condition that is used: plans without it are not offered.
int bestIndex(sqlite3_vtab*, sqlite3_index_info* info) {
  constexpr double kCost = 1;
  constexpr sqlite3_int64 kRows = 10000;
  bool refused = false;
  for (int i = 0; i < info->nConstraint; ++i) {
    auto const& constraint = info->aConstraint[i];
    if (constraint.iColumn != kListColumn || constraint.op != SQLITE_INDEX_CONSTRAINT_EQ) {
      continue;
    }
    if (constraint.usable != 0) {
      info->aConstraintUsage[i].argvIndex = 1;
      info->aConstraintUsage[i].omit = 1;
      info->estimatedCost = kCost;
      info->estimatedRows = kRows;
      info->idxNum = 1;
      return SQLITE_OK;
    }
    refused = true;
  }
  return refused ? SQLITE_CONSTRAINT : SQLITE_OK;
}

int openCursor(sqlite3_vtab*, sqlite3_vtab_cursor** cursor) {
  *cursor = new (std::nothrow) Cursor;
  return *cursor == nullptr ? SQLITE_NOMEM : SQLITE_OK;
}

int closeCursor(sqlite3_vtab_cursor* cursor) {
  delete &cursorOf(cursor);
  return SQLITE_OK;
}

int filter(sqlite3_vtab_cursor* base, int, char const*, int count, sqlite3_value** values) {
  Cursor& cursor = cursorOf(base);
  cursor.begin = cursor.value = cursor.end = nullptr;
  if (count == 1) {
    if (auto const* const list =
            static_cast<SqliteBoundList const*>(sqlite3_value_pointer(values[0], kPointerType))) {
      cursor.begin = cursor.value = list->begin;
      cursor.end = list->end;
    }
  }
  return SQLITE_OK;
}

int next(sqlite3_vtab_cursor* cursor) {
  ++cursorOf(cursor).value;
  return SQLITE_OK;
}

int atEnd(sqlite3_vtab_cursor* base) {
  Cursor const& cursor = cursorOf(base);
  return cursor.value == cursor.end ? 1 : 0;
}

int column(sqlite3_vtab_cursor* cursor, sqlite3_context* context, int index) {
  if (index == kListColumn) {
    sqlite3_result_null(context);
    return SQLITE_OK;
  }
  try {
    std::visit(ResultSetter{context}, *cursorOf(cursor).value);
    return SQLITE_OK;
  } catch (std::bad_alloc const&) {
    return SQLITE_NOMEM;
  }
}

int rowNumber(sqlite3_vtab_cursor* base, sqlite3_int64* number) {
  Cursor const& cursor = cursorOf(base);
  *number = cursor.value - cursor.begin;
  return SQLITE_OK;
}

/// Without an xCreate the table exists by itself, and only as a function.
sqlite3_module const& boundListModule() {
  static sqlite3_module const module = [] {
    sqlite3_module made{};
    made.xConnect = connect;
    made.xBestIndex = bestIndex;
    made.xDisconnect = disconnect;
    made.xOpen = openCursor;
    made.xClose = closeCursor;
    made.xFilter = filter;
    made.xNext = next;
    made.xEof = atEnd;
    made.xColumn = column;
    made.xRowid = rowNumber;
    return made;
  }();
  return module;
}

}  // namespace

void registerSqliteBoundList(sqlite3* line) {
  int const status =
      sqlite3_create_module_v2(line, "mox_bound_list", &boundListModule(), nullptr, nullptr);
  if (status != SQLITE_OK) {
    throw DatabaseError(sqlite3_errmsg(line), std::to_string(status));
  }
}

int bindSqliteList(sqlite3_stmt* statement, int mark, SqliteBoundList const& list) {
  return sqlite3_bind_pointer(statement, mark, const_cast<SqliteBoundList*>(&list), kPointerType,
                              nullptr);
}

}  // namespace mox::core
