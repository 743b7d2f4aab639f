#include "zyn/sql/fetch_helpers.h"

using Statement = moxDatabaseConnection::PreparedStatement;

template <>
int FetchIntHelper::read(Statement const& statement) const {
  return statement.getInt(field());
}

template <>
double FetchDoubleHelper::read(Statement const& statement) const {
  return statement.getDouble(field());
}

template <>
std::string FetchTextHelper::read(Statement const& statement) const {
  return std::string(statement.getString(field()));
}

template <>
datetime_t FetchDateHelper::read(Statement const& statement) const {
  return statement.getDateTime(field());
}

template <>
std::shared_ptr<moxReadBlob> FetchBlobHelper::read(Statement const& statement) const {
  return statement.getBlob(field());
}

namespace {

/// Puts a helper into `made` when the column is of the helper's kind.
template <class Helper>
bool makeFor(std::unique_ptr<FetchHelper>& made, int field,
             std::shared_ptr<moxDataMatrixColumn> const& column) {
  auto typed = std::dynamic_pointer_cast<typename Helper::Column>(column);
  if (!typed) {
    return false;
  }
  made = std::make_unique<Helper>(field, std::move(typed));
  return true;
}

}  // namespace

std::unique_ptr<FetchHelper> makeFetchHelper(int field,
                                             std::shared_ptr<moxDataMatrixColumn> const& column) {
  std::unique_ptr<FetchHelper> made;
  bool const isKnown = makeFor<FetchIntHelper>(made, field, column) ||
                       makeFor<FetchDoubleHelper>(made, field, column) ||
                       makeFor<FetchTextHelper>(made, field, column) ||
                       makeFor<FetchDateHelper>(made, field, column) ||
                       makeFor<FetchBlobHelper>(made, field, column);
  return isKnown ? std::move(made) : std::make_unique<FetchDummyHelper>(field);
}
