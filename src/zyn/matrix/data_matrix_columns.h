#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>

#include "zyn/matrix/common_column.h"
#include "zyn/matrix/typed_iterator.h"

/// Registered as "moxDataMatrixIntColumn"; the four below likewise.
class moxDataMatrixIntColumn_internal final : public CommonColumn<int>,
                                              public virtual moxDataMatrixIntColumn {
 public:
  std::string name() const override { return "moxDataMatrixIntColumn"; }
  moxDataMatrixTypes::Types getType() const override { return moxDataMatrixTypes::Int; }
};

class moxDataMatrixDoubleColumn_internal final : public CommonColumn<double>,
                                                 public virtual moxDataMatrixDoubleColumn {
 public:
  std::string name() const override { return "moxDataMatrixDoubleColumn"; }
  moxDataMatrixTypes::Types getType() const override { return moxDataMatrixTypes::Double; }
};

class moxDataMatrixTextColumn_internal final : public CommonColumn<std::string>,
                                               public virtual moxDataMatrixTextColumn {
 public:
  std::string name() const override { return "moxDataMatrixTextColumn"; }
  moxDataMatrixTypes::Types getType() const override { return moxDataMatrixTypes::Text; }
};

class moxDataMatrixDateColumn_internal final : public CommonColumn<datetime_t>,
                                               public virtual moxDataMatrixDateColumn {
 public:
  std::string name() const override { return "moxDataMatrixDateColumn"; }
  moxDataMatrixTypes::Types getType() const override { return moxDataMatrixTypes::Date; }
};

class moxDataMatrixBlobColumn_internal final : public CommonColumn<std::shared_ptr<moxReadBlob>>,
                                               public virtual moxDataMatrixBlobColumn {
 public:
  std::string name() const override { return "moxDataMatrixBlobColumn"; }
  moxDataMatrixTypes::Types getType() const override { return moxDataMatrixTypes::Blob; }
};

/// Calls `use` with the storage of one of the module's own columns, typed, once: the place to start
/// a loop over plain arrays. False, and no call, for a column of foreign make, which is read
/// through cursors instead.
template <class Use>
bool withStorage(moxDataMatrixColumn& column, Use&& use) {
  auto const typed = [&]<class T>(std::type_identity<T>) {
    auto* const own = dynamic_cast<CommonColumn<T>*>(&column);
    if (own != nullptr) {
      use(own->storage());
    }
    return own != nullptr;
  };
  switch (column.getType()) {
    case moxDataMatrixTypes::Int:
      return typed(std::type_identity<int>{});
    case moxDataMatrixTypes::Double:
      return typed(std::type_identity<double>{});
    case moxDataMatrixTypes::Text:
      return typed(std::type_identity<std::string>{});
    case moxDataMatrixTypes::Date:
      return typed(std::type_identity<datetime_t>{});
    case moxDataMatrixTypes::Blob:
      return typed(std::type_identity<std::shared_ptr<moxReadBlob>>{});
  }
  return false;
}

/// The same for a column that is only read.
template <class Use>
bool withStorage(moxDataMatrixColumn const& column, Use&& use) {
  return withStorage(const_cast<moxDataMatrixColumn&>(column),
                     [&]<class T>(ColumnStorage<T>& storage) { use(std::as_const(storage)); });
}

/// The registered name of the columns of a kind.
std::string_view columnClassOf(moxDataMatrixTypes::Types type);

/// A new empty column of a kind, made through the registry.
std::shared_ptr<moxDataMatrixColumn> makeColumn(moxDataMatrixTypes::Types type);
