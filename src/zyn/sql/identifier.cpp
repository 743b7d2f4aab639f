#include "zyn/sql/identifier.h"

#include <algorithm>
#include <iterator>

namespace {

/// Lower case, sorted: the words that MariaDB 10.11 or SQLite 3.40 refuses, or reads as something
/// else, where they stand bare as the name of a column or a table. Found by trying every keyword of
/// both.
// clang-format off
constexpr std::string_view kReservedWords[] = {
    "accessible", "add", "all", "alter", "analyze", "and", "as", "asc", "asensitive",
    "autoincrement", "before", "between", "bigint", "binary", "blob", "both", "by", "call",
    "cascade", "case", "cast", "change", "char", "character", "check", "collate", "column",
    "commit", "condition", "constraint", "continue", "convert", "create", "cross", "current_date",
    "current_role", "current_time", "current_timestamp", "current_user", "cursor", "databases",
    "day_hour", "day_microsecond", "day_minute", "day_second", "dec", "decimal", "declare",
    "default", "deferrable", "delayed", "delete", "delete_domain_id", "desc", "describe",
    "deterministic", "distinct", "distinctrow", "div", "do_domain_ids", "double", "drop", "dual",
    "each", "else", "elseif", "enclosed", "escape", "escaped", "except", "exists", "exit",
    "explain", "false", "fetch", "float", "float4", "float8", "for", "force", "foreign", "from",
    "fulltext", "grant", "group", "having", "high_priority", "hour_microsecond", "hour_minute",
    "hour_second", "if", "ignore", "ignore_domain_ids", "in", "index", "infile", "inner", "inout",
    "insensitive", "insert", "int", "int1", "int2", "int3", "int4", "int8", "integer", "intersect",
    "interval", "into", "is", "isnull", "iterate", "join", "key", "keys", "kill", "leading",
    "leave", "left", "like", "limit", "linear", "lines", "load", "localtime", "localtimestamp",
    "lock", "long", "longblob", "longtext", "loop", "low_priority", "master_demote_to_replica",
    "master_demote_to_slave", "master_ssl_verify_server_cert", "match", "maxvalue", "mediumblob",
    "mediumint", "mediumtext", "middleint", "minute_microsecond", "minute_second", "mod",
    "modifies", "natural", "no_write_to_binlog", "not", "nothing", "notnull", "null", "numeric",
    "offset", "on", "optimize", "optionally", "or", "order", "out", "outer", "outfile", "over",
    "page_checksum", "parse_vcol_expr", "partition", "portion", "precision", "primary", "procedure",
    "purge", "raise", "range", "read", "read_write", "reads", "real", "recursive", "ref_system_id",
    "references", "regexp", "release", "rename", "repeat", "replace", "require", "resignal",
    "restrict", "return", "returning", "revoke", "right", "rlike", "row_number", "rows", "schemas",
    "second_microsecond", "select", "sensitive", "separator", "set", "show", "signal", "smallint",
    "spatial", "specific", "sql", "sql_big_result", "sql_buffer_result", "sql_cache",
    "sql_calc_found_rows", "sql_no_cache", "sql_small_result", "sqlexception", "sqlstate",
    "sqlwarning", "ssl", "starting", "stats_auto_recalc", "stats_persistent", "stats_sample_pages",
    "straight_join", "table", "terminated", "then", "tinyblob", "tinyint", "tinytext", "to",
    "trailing", "transaction", "trigger", "true", "undo", "union", "unique", "unlock", "unsigned",
    "update", "usage", "use", "using", "utc_date", "utc_time", "utc_timestamp", "value", "values",
    "varbinary", "varchar", "varcharacter", "varying", "when", "where", "while", "with", "write",
    "xor", "year_month", "zerofill"
};
// clang-format on
static_assert(std::is_sorted(std::begin(kReservedWords), std::end(kReservedWords)));

bool isLetter(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_';
}

bool mayFollow(char c) {
  return isLetter(c) || (c >= '0' && c <= '9') || c == '$';
}

char toLower(char c) {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

bool isReserved(std::string_view name) {
  std::string lower;
  std::transform(name.begin(), name.end(), std::back_inserter(lower), toLower);
  return std::binary_search(std::begin(kReservedWords), std::end(kReservedWords), lower);
}

bool canStandBare(std::string_view name) {
  return !name.empty() && isLetter(name.front()) &&
         std::all_of(name.begin(), name.end(), mayFollow) && !isReserved(name);
}

}  // namespace

std::string identifier(std::string_view name) {
  if (canStandBare(name)) {
    return std::string(name);
  }
  std::string quoted = "`";
  for (char const c : name) {
    quoted.append(c == '`' ? 2 : 1, c);
  }
  return quoted + '`';
}
