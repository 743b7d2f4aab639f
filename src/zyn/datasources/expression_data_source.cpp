#include "zyn/datasources/expression_data_source.h"

#include <iterator>

#include "mox/core/application.h"
#include "mox/core/xml.h"
#include "mox/zyn/frame/plugin_entry.h"
#include "zyn/datasources/expression_data_source_execution.h"
#include "zyn/datasources/related_data_sources.h"
#include "zyn/items/definition_error.h"
#include "zyn/items/polymorphic_list.h"
#include "zyn/items/xml_attributes.h"

namespace {

constexpr char const* kName = "name";
constexpr char const* kSource = "source";
constexpr char const* kConvertZero = "convertZeroToNull";
constexpr char const* kExpressions = "expressions";

std::shared_ptr<moxColumnExpression> newExpression(moxXMLNode const& element) {
  auto const name = element.elementName();
  auto expression = moxApp->get<moxColumnExpression>(name);
  if (!expression) {
    throw definitionError("Expressão inválida: " + name, element,
                          "the class of this name is no computed column");
  }
  return expression;
}

}  // namespace

bool ExpressionDataSource::load(std::shared_ptr<moxXMLNode> node) {
  if (!node) {
    return false;
  }
  setName(node->readAttribute(kName));
  source_ = node->readAttribute(kSource);
  convertZeroToNull_ = xml_attributes::readBool(*node, kConvertZero);
  auto const list = node->childByIndex(0, kExpressions);
  for (int i = 0; auto const element = list ? list->childByIndex(i) : nullptr; ++i) {
    auto expression = newExpression(*element);
    if (!expression->load(element)) {
      break;
    }
    expressions_.append(std::move(expression));
  }
  return true;
}

bool ExpressionDataSource::save(std::shared_ptr<moxXMLNode> node) const {
  if (!node) {
    return false;
  }
  node->writeAttribute(kName, getName());
  node->writeAttribute(kSource, source_);
  xml_attributes::writeBool(*node, kConvertZero, convertZeroToNull_);
  polymorphic_list::save(expressions_.all(), *node->addChild(kExpressions));
  return true;
}

std::vector<moxDataSourceColumnType> ExpressionDataSource::getColumns() const {
  std::vector<moxDataSourceColumnType> columns;
  for (auto const& expression : expressions_.all()) {
    if (expression) {
      columns.emplace_back(expression->columnName(), moxDataMatrixTypes::Double);
    }
  }
  return columns;
}

std::vector<moxDataSourceColumnType> ExpressionDataSource::getRelatedColumns(
    std::vector<moxNamedDataSource> const& sources) const {
  auto columns = relatedColumnsOf(sources, source_);
  auto computed = getColumns();
  columns.insert(columns.end(), std::make_move_iterator(computed.begin()),
                 std::make_move_iterator(computed.end()));
  return columns;
}

std::shared_ptr<moxDataSourceExecution> ExpressionDataSource::createExecution() const {
  return std::make_shared<ExpressionDataSourceExecution>(shared_from_this());
}
