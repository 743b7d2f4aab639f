#pragma once

#include <memory>
#include <string>
#include <utility>

#include "mox/core/database_connection.h"
#include "mox/zyn/matrix/data_matrix_column.h"

/// Carries one field of a statement's current row into a column. Which of the statement's readings
/// is used is the column's choice, not the field's; the statement's null test alone decides what is
/// a null.
class FetchHelper {
 public:
  explicit FetchHelper(int field) : field_(field) {}
  virtual ~FetchHelper() = default;

  /// Adds the field of the row that the statement stands on to the column.
  virtual void fetch(
      std::shared_ptr<moxDatabaseConnection::PreparedStatement> const& statement) = 0;

  /// The column; empty when the field is left out.
  virtual std::shared_ptr<moxDataMatrixColumn> target() const = 0;

 protected:
  int field() const { return field_; }

 private:
  int const field_;
};

/// Over a column of values `T`. The column is shared, so that a matrix which drops it between two
/// runs leaves nothing dangling here.
template <class T>
class TypedFetchHelper final : public FetchHelper {
 public:
  using Column = moxDataMatrixTypedColumn<T>;

  TypedFetchHelper(int field, std::shared_ptr<Column> column)
      : FetchHelper(field), column_(std::move(column)) {}

  void fetch(std::shared_ptr<moxDatabaseConnection::PreparedStatement> const& statement) override {
    if (statement->isNull(field())) {
      column_->appendNull();
    } else {
      column_->appendValue(read(*statement));
    }
  }

  std::shared_ptr<moxDataMatrixColumn> target() const override { return column_; }

 private:
  /// The field's value, which is not null, by the reading that suits the column.
  T read(moxDatabaseConnection::PreparedStatement const& statement) const;

  std::shared_ptr<Column> column_;
};

using FetchIntHelper = TypedFetchHelper<int>;
using FetchDoubleHelper = TypedFetchHelper<double>;
using FetchTextHelper = TypedFetchHelper<std::string>;
using FetchDateHelper = TypedFetchHelper<datetime_t>;  // keeps the time of day
using FetchBlobHelper = TypedFetchHelper<std::shared_ptr<moxReadBlob>>;

template <>
int FetchIntHelper::read(moxDatabaseConnection::PreparedStatement const& statement) const;
template <>
double FetchDoubleHelper::read(moxDatabaseConnection::PreparedStatement const& statement) const;
template <>
std::string FetchTextHelper::read(moxDatabaseConnection::PreparedStatement const& statement) const;
template <>
datetime_t FetchDateHelper::read(moxDatabaseConnection::PreparedStatement const& statement) const;
template <>
std::shared_ptr<moxReadBlob> FetchBlobHelper::read(
    moxDatabaseConnection::PreparedStatement const& statement) const;

/// Leaves the field out.
class FetchDummyHelper final : public FetchHelper {
 public:
  using FetchHelper::FetchHelper;

  void fetch(std::shared_ptr<moxDatabaseConnection::PreparedStatement> const&) override {}
  std::shared_ptr<moxDataMatrixColumn> target() const override { return {}; }
};

/// The helper for a field and its column; one that leaves the field out for an empty column or one
/// of no known kind.
std::unique_ptr<FetchHelper> makeFetchHelper(int field,
                                             std::shared_ptr<moxDataMatrixColumn> const& column);
