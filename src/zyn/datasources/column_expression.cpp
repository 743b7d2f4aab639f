#include "zyn/datasources/column_expression.h"

#include <algorithm>
#include <cstdlib>
#include <limits>

#include "mox/core/xml.h"
#include "zyn/items/xml_attributes.h"

namespace {

constexpr char const* kName = "name";
constexpr char const* kType = "type";
constexpr char const* kPrecision = "decimalPrecision";
constexpr char const* kOperation = "decimalOperation";

/// The number at the beginning of the text, behind white space; 0 without one. One that does not
/// fit gives the nearest that does.
int leadingInt(std::string const& text) {
  using Limits = std::numeric_limits<int>;
  long const value = std::strtol(text.c_str(), nullptr, 10);
  return static_cast<int>(
      std::clamp(value, static_cast<long>(Limits::min()), static_cast<long>(Limits::max())));
}

}  // namespace

bool ColumnExpression::load(std::shared_ptr<moxXMLNode> const& node) {
  if (!node) {
    return false;
  }
  columnName_ = node->readAttribute(kName);
  expression_ = node->readText();
  tipo_ = xml_attributes::readBool(*node, kType) ? kDecimal : kInteiro;
  auto const precision = node->readAttribute(kPrecision);
  precision_ = precision.empty()
                   ? kNoPrecision
                   : std::pair(leadingInt(precision),
                               static_cast<Op>(leadingInt(node->readAttribute(kOperation))));
  return true;
}

bool ColumnExpression::save(std::shared_ptr<moxXMLNode> const& node) const {
  if (!node) {
    return false;
  }
  node->writeAttribute(kName, columnName_);
  node->writeText(expression_);
  xml_attributes::writeBool(*node, kType, tipo_ != kInteiro);
  if (precision_.first >= 0) {
    xml_attributes::writeInt(*node, kPrecision, precision_.first);
    xml_attributes::writeInt(*node, kOperation, precision_.second);
  }
  return true;
}
