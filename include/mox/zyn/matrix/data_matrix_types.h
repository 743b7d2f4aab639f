#pragma once

#include <memory>
#include <string>

#include "mox/core/datetime.h"

class moxReadBlob;

/// The five kinds of values that a column can hold. The numbers are part of the interface.
struct moxDataMatrixTypes {
  enum Types { Int = 0, Double = 1, Text = 2, Date = 3, Blob = 4 };
};

/// The C++ type behind each kind.
template <moxDataMatrixTypes::Types>
struct moxDataMatrixValue;

template <>
struct moxDataMatrixValue<moxDataMatrixTypes::Int> {
  using Type = int;  // 32 bits
};
template <>
struct moxDataMatrixValue<moxDataMatrixTypes::Double> {
  using Type = double;
};
template <>
struct moxDataMatrixValue<moxDataMatrixTypes::Text> {
  using Type = std::string;  // UTF-8 bytes
};
template <>
struct moxDataMatrixValue<moxDataMatrixTypes::Date> {
  using Type = datetime_t;
};
template <>
struct moxDataMatrixValue<moxDataMatrixTypes::Blob> {
  using Type = std::shared_ptr<moxReadBlob>;
};
