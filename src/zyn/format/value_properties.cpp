#include "zyn/format/value_properties.h"

#include <cstdlib>
#include <locale>
#include <sstream>

#include "mox/core/xml.h"
#include "mox/zyn/format/decimal_formatter.h"
#include "mox/zyn/format/integral_formatter.h"
#include "zyn/frame/registered.h"

namespace {

constexpr unsigned int kDecimalsInXml = 8;

}  // namespace

bool BooleanProperty::save(std::shared_ptr<moxXMLNode> node) const {
  if (!node) {
    return false;
  }
  node->writeAttribute(propertyName(), value() ? "1" : "0");
  return true;
}

bool BooleanProperty::load(std::shared_ptr<moxXMLNode> node) const {
  if (!node) {
    return false;
  }
  store(node->readAttribute(propertyName()).starts_with('1'));
  return true;
}

bool IntProperty::save(std::shared_ptr<moxXMLNode> node) const {
  auto const formatter = registeredOrNone<moxIntegralFormatter>("moxIntegralFormatter");
  if (!node || !formatter) {
    return false;
  }
  node->writeAttribute(propertyName(), formatter->asString(static_cast<long long>(value())));
  return true;
}

bool IntProperty::load(std::shared_ptr<moxXMLNode> node) const {
  if (!node) {
    return false;
  }
  store(static_cast<int>(std::strtol(node->readAttribute(propertyName()).c_str(), nullptr, 10)));
  return true;
}

bool DoubleProperty::save(std::shared_ptr<moxXMLNode> node) const {
  auto const formatter = registeredOrNone<moxDecimalAsString>("moxDecimalFormatter");
  if (!node || !formatter) {
    return false;
  }
  formatter->setDecimalSeparator('.');
  formatter->setDecimalPrecision(kDecimalsInXml);
  node->writeAttribute(propertyName(), formatter->asString(static_cast<long double>(value())));
  return true;
}

// A text that holds no number is 0, as the stream leaves it; one that holds nothing changes
// nothing.
bool DoubleProperty::load(std::shared_ptr<moxXMLNode> node) const {
  if (!node) {
    return false;
  }
  double number = value();
  std::istringstream text(node->readAttribute(propertyName()));
  text.imbue(std::locale::classic());
  text >> number;
  store(number);
  return true;
}

bool StringProperty::save(std::shared_ptr<moxXMLNode> node) const {
  if (!node) {
    return false;
  }
  node->writeAttribute(propertyName(), value());
  return true;
}

bool StringProperty::load(std::shared_ptr<moxXMLNode> node) const {
  if (!node) {
    return false;
  }
  store(node->readAttribute(propertyName()));
  return true;
}

bool TextProperty::save(std::shared_ptr<moxXMLNode> node) const {
  if (!node) {
    return false;
  }
  node->addChild(propertyName())->writeText(value());
  return true;
}

bool TextProperty::load(std::shared_ptr<moxXMLNode> node) const {
  if (!node) {
    return false;
  }
  auto const child = node->childByIndex(0, propertyName());
  store(child ? child->readText() : value());
  return true;
}
