#pragma once

#include <memory>
#include <string>

#include "mox/core/blob.h"
#include "mox/zyn/matrix/iterator.h"

/// The cursor as one over values of the kind `T`; null for an empty pointer, another kind, a class
/// that is none of the matrix's own, and a null cell.
template <class T>
moxIteratorBase<T> const* valueCursor(moxIterator const* cell, moxDataMatrixTypes::Types type) {
  if (cell == nullptr || cell->getType() != type || cell->isNull()) {
    return nullptr;
  }
  return dynamic_cast<moxIteratorBase<T> const*>(cell);
}

/// Hands the bytes of a text cell, or of a blob cell that holds at least one, to `use`; gives what
/// that gives, or an empty text for any other cell.
template <class Use>
std::string withBytesOf(moxIterator const* cell, Use const& use) {
  if (auto const* const text = valueCursor<std::string>(cell, moxDataMatrixTypes::Text)) {
    return use(text->get());
  }
  using Blob = std::shared_ptr<moxReadBlob>;
  if (auto const* const blobs = valueCursor<Blob>(cell, moxDataMatrixTypes::Blob)) {
    auto const blob = blobs->get();
    if (blob && blob->size() != 0) {
      return use(std::string(blob->data(), blob->size()));
    }
  }
  return {};
}
