#include "escola/generator/database_writer.h"

#include <algorithm>

#include "core/storage/adapter_blob.h"

namespace escola {

namespace {

constexpr std::int64_t kRowsPerTransaction = 100'000;
constexpr int kMarksPerStatement = 4000;  // servers stop at 65,535

date_t dateOf(Day day) {
  std::chrono::year_month_day const parts(day);
  return {static_cast<int>(static_cast<unsigned>(parts.day())),
          static_cast<int>(static_cast<unsigned>(parts.month())), static_cast<int>(parts.year())};
}

void bindBytes(moxDatabaseConnection::PreparedStatement& statement, int position,
               std::string_view bytes) {
  mox::core::AdapterBlob blob;
  blob.wrap(bytes.data(), bytes.size(), 0);
  statement.bindBlob(position, blob);
}

void bind(moxDatabaseConnection::PreparedStatement& statement, int position, Cell const& cell) {
  switch (cell.kind()) {
    case Cell::Kind::kNull:
      return statement.bindNull(position);
    case Cell::Kind::kInt:
      return statement.bindInt(position, static_cast<int>(cell.number()));
    case Cell::Kind::kHundredths:
      return statement.bindDouble(position, static_cast<double>(cell.number()) / 100.0);
    case Cell::Kind::kDay:
      return statement.bindDate(position, dateOf(Day(std::chrono::days(cell.number()))));
    case Cell::Kind::kMoment:
      return statement.bindDateTime(position, datetime_t::fromTime_t(cell.number()));
    case Cell::Kind::kText:
      return statement.bindString(position, cell.text());
    case Cell::Kind::kBytes:
      return bindBytes(statement, position, cell.text());
  }
}

}  // namespace

DatabaseWriter::DatabaseWriter(moxDatabaseConnection& connection, int rowsPerStatement)
    : connection_(connection), rowsPerStatement_(rowsPerStatement), pending_(allTables().size()) {
  connection_.execute("begin");
}

int DatabaseWriter::rowsOf(Table const& table) const {
  return std::clamp(kMarksPerStatement / static_cast<int>(table.columns.size()), 1,
                    rowsPerStatement_);
}

std::string DatabaseWriter::insertText(Table const& table, int rows) const {
  std::string names;
  std::string marks;
  for (Column const& column : table.columns) {
    names += (names.empty() ? "" : ",") + std::string(column.name);
    marks += marks.empty() ? "?" : ",?";
  }
  std::string text = "insert into " + std::string(table.name) + " (" + names + ") values ";
  for (int row = 0; row < rows; ++row) {
    text += (row == 0 ? "(" : ",(") + marks + ")";
  }
  return text;
}

void DatabaseWriter::row(TableId table, std::span<Cell const> cells) {
  Table const& description = tableOf(table);
  Pending& pending = pending_[static_cast<std::size_t>(table)];
  int const capacity = rowsOf(description);
  if (!pending.statement) {
    pending.statement = connection_.prepare(insertText(description, capacity));
    pending.texts.resize(static_cast<std::size_t>(capacity) * description.columns.size());
  }
  if (capacity == 1) {
    return execute(*pending.statement, cells);
  }
  for (Cell const& cell : cells) {
    std::string& text = pending.texts[pending.cells.size()];
    text = cell.text();
    pending.cells.push_back(cell.kind() == Cell::Kind::kText    ? Cell(text)
                            : cell.kind() == Cell::Kind::kBytes ? Cell(Bytes{text})
                                                                : cell);
  }
  if (++pending.rows == capacity) {
    flush(description, pending);
  }
}

void DatabaseWriter::flush(Table const& table, Pending& pending) {
  if (pending.rows == 0) {
    return;
  }
  auto const statement = pending.rows == rowsOf(table)
                             ? pending.statement
                             : connection_.prepare(insertText(table, pending.rows));
  uncommittedRows_ += pending.rows - 1;
  execute(*statement, pending.cells);
  pending.cells.clear();
  pending.rows = 0;
}

void DatabaseWriter::execute(Statement& statement, std::span<Cell const> cells) {
  for (std::size_t position = 0; position < cells.size(); ++position) {
    bind(statement, static_cast<int>(position), cells[position]);
  }
  statement.execute();
  if (++uncommittedRows_ >= kRowsPerTransaction) {
    connection_.execute("commit");
    connection_.execute("begin");
    uncommittedRows_ = 0;
  }
}

void DatabaseWriter::finish() {
  for (Table const& table : allTables()) {
    flush(table, pending_[static_cast<std::size_t>(table.id)]);
  }
  connection_.execute("commit");
}

}  // namespace escola
