#pragma once

#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "core/database/kept_value.h"
#include "core/database/line_statement.h"
#include "core/database/physical_connection.h"
#include "core/database/value_placement.h"

namespace mox::core {

/// Face of a statement whose database takes a whole list for one mark.
class ListBinder {
 public:
  virtual ~ListBinder() = default;

  /// The mark at `position` stands in what boundListSelect gives. The values outlive every
  /// execution with them.
  virtual void bindList(int position, std::span<KeptValue const> values) = 0;
};

/// What stands between the brackets of "in (...)" for a list that is bound to one mark.
std::string_view boundListSelect();

/// A statement with more marks than its database takes. It keeps its values and sends nothing until
/// it is executed: only then do the values tell which of them can go another way. So a text that
/// the database refuses is refused at the execution.
///
/// Binding a value ends the rows of the execution before. Executed again with the same values it
/// uses what was prepared.
class ManyValuesStatement final : public LineStatement {
 public:
  ManyValuesStatement(std::shared_ptr<PhysicalConnection> line, StatementScript script,
                      ManyValuesRules const& rules, MarkPlaces marks);

  void setRowObserver(RowObserver observer) override;

  void bindInt(int position, int value) override { keep(position, value); }
  void bindDouble(int position, double value) override { keep(position, value); }
  void bindString(int position, std::string_view value) override {
    keep(position, std::string(value));
  }
  void bindDate(int position, date_t const& value) override;
  void bindNull(int position) override { keep(position, MarkNull{}); }
  void bindDateTime(int position, datetime_t const& value) override;
  void bindBlob(int position, moxReadBlob const& value) override;

  void execute() override;
  bool fetch() override;
  int fetchBlock(std::vector<moxFieldBlock>& fields, int capacity) override;
  int fieldCount() const override;
  moxDatabaseConnection::FieldInfo const& field(int index) const override;
  std::int64_t rowCount() const override;
  bool isNull(int field) const override { return executed().isNull(field); }
  int getInt(int field) const override { return executed().getInt(field); }
  double getDouble(int field) const override { return executed().getDouble(field); }
  std::string_view getString(int field) const override { return executed().getString(field); }
  bool getBool(int field) const override { return executed().getBool(field); }
  date_t getDate(int field) const override { return executed().getDate(field); }
  datetime_t getDateTime(int field) const override { return executed().getDateTime(field); }
  std::shared_ptr<moxReadBlob> getBlob(int field) const override {
    return executed().getBlob(field);
  }

 private:
  /// A value, or a list of values, and the mark that takes it.
  struct BoundMark {
    std::size_t first;  // of the values
    std::size_t count;  // above 1 for a list
  };

  void keep(int position, KeptValue value);
  std::vector<moxValueKind> kinds() const;
  void prepareInner();
  std::string writeStatement(ValuePlacement const& placement, std::vector<BoundMark>& marks) const;
  void bindInner(std::vector<BoundMark> const& marks);
  LineStatement& executed() const;

  std::shared_ptr<PhysicalConnection> const line_;
  StatementScript const script_;
  ManyValuesRules const rules_;
  MarkPlaces const marks_;
  std::vector<KeptValue> values_;  // one a mark
  RowObserver observer_;
  std::shared_ptr<LineStatement> inner_;  // made for the values as they are; it may refer to them
};

}  // namespace mox::core
