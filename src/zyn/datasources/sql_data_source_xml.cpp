#include "zyn/datasources/sql_data_source_xml.h"

#include <array>
#include <string_view>

#include "mox/core/application.h"
#include "mox/core/xml.h"
#include "mox/zyn/filters/filter_specification.h"
#include "mox/zyn/frame/plugin_entry.h"
#include "mox/zyn/search/search.h"
#include "zyn/datasources/column_reference.h"
#include "zyn/datasources/column_tags.h"
#include "zyn/datasources/filter_elements.h"
#include "zyn/datasources/sql_data_source.h"
#include "zyn/items/definition_error.h"
#include "zyn/items/xml_attributes.h"

namespace {

using Column = moxSQLDataSource::Column;
using Element = std::shared_ptr<moxXMLNode>;

constexpr std::string_view kColumn = "Column";  // an element with all that is known of a column
constexpr std::string_view kUnit = "unidadeColumn";
constexpr std::string_view kAllowNull = "allownull";

struct Piece {
  std::string_view element;
  SQLDataSource::Text text;
};

constexpr std::array<Piece, 2> kScripts = {{
    {"Prefix", SQLDataSource::kPrefix},
    {"Sufix", SQLDataSource::kSufix},
}};

constexpr Piece kFrom = {"from", SQLDataSource::kFrom};

constexpr std::array<Piece, 3> kOptionalPieces = {{
    {"join", SQLDataSource::kJoin},
    {"where", SQLDataSource::kWhere},
    {"group", SQLDataSource::kGroup},
}};

/// Gathers a definition's texts while they are read. They are stored together, so that to set them
/// one by one would copy them all each time.
class GatheredTexts {
 public:
  explicit GatheredTexts(SQLDataSource& source) : source_(source), texts_(source.texts().all()) {}

  void readAttribute(SQLDataSource::Text text, XmlElement const& node, std::string_view name) {
    texts_[text] = node.attribute(name, room_[text]);
  }
  void readContent(SQLDataSource::Text text, XmlElement const& element) {
    texts_[text] = element.text(room_[text]);
  }
  void readPiece(Piece const& piece, XmlElement const& node) {
    if (auto const element = node.child(piece.element)) {
      readContent(piece.text, element);
    }
  }

  /// The document may not go before this.
  void store() { source_.texts().assign(texts_); }

 private:
  SQLDataSource& source_;
  SQLDataSource::Texts::Views texts_;
  std::array<std::string, SQLDataSource::kTextCount> room_;  // not used where there is a table
};

Column unitColumnOf(SQLDataSource const& source) {
  return source.getUnidadeColumn().first;
}

void setUnitColumn(SQLDataSource& source, Column column) {
  source.setUnidadeColumn(std::move(column), source.getUnidadeColumn().second);
}

struct Role {
  std::string_view element;
  Column (*get)(SQLDataSource const&);
  void (*set)(SQLDataSource&, Column);
};

constexpr std::array<Role, 4> kRoles = {{
    {"mainData", [](SQLDataSource const& source) { return source.getMainColumn(); },
     [](SQLDataSource& source, Column column) { source.setMainColumn(std::move(column)); }},
    {"statusColumn", [](SQLDataSource const& source) { return source.getStatusColumn(); },
     [](SQLDataSource& source, Column column) { source.setStatusColumn(std::move(column)); }},
    {kUnit, unitColumnOf, setUnitColumn},
    {"descricaoColumn", [](SQLDataSource const& source) { return source.getDescricaoColumn(); },
     [](SQLDataSource& source, Column column) { source.setDescricaoColumn(std::move(column)); }},
}};

void writePiece(SQLDataSource const& source, moxXMLNode& node, Piece const& piece) {
  auto const text = source.texts()[piece.text];
  if (!text.empty()) {
    node.addChild(piece.element)->writeText(text);
  }
}

/// "table.column", as people call it.
std::string displayed(std::string const& table, std::string const& column) {
  return table.empty() ? column : table + "." + column;
}

/// What the author of a definition that names a wrong column is told.
std::string adviceOnColumn(SQLDataSource const& source, std::string const& table,
                           std::string const& column) {
  constexpr std::size_t kListed = 40;
  std::string advice = "no column is called \"" + displayed(table, column) + "\" (tableName \"" +
                       table + "\", columnName \"" + column + "\"); the source has ";
  auto const& columns = source.columnList().columns();
  if (columns.empty()) {
    return advice + "no columns";
  }
  for (std::size_t i = 0; i < columns.size() && i < kListed; ++i) {
    advice +=
        (i == 0 ? "" : ", ") + displayed(columns[i]->getTableName(), columns[i]->getColumnName());
  }
  return columns.size() > kListed ? advice + ", ..." : advice;
}

Column requireColumn(SQLDataSource const& source, std::string const& table,
                     std::string const& column, XmlElement const& element, char const* message) {
  auto const found = source.columnList().find(table, column);
  if (!found) {
    throw definitionError(message, element, adviceOnColumn(source, table, column));
  }
  return found;
}

void readComposed(SQLDataSource const& source, GatheredTexts& texts, XmlElement const& command) {
  if (!command.child(kFrom.element)) {
    throw definitionError("Fonte de dados " + source.getName() + " sem \"from\"", command,
                          "a statement of type 1 needs a child \"from\", which may be empty");
  }
  texts.readPiece(kFrom, command);
  for (auto const& piece : kOptionalPieces) {
    texts.readPiece(piece, command);
  }
}

void readCommand(SQLDataSource& source, GatheredTexts& texts, XmlElement const& command) {
  if (command.attribute("type") == "1") {
    source.setSQLTipo(moxSQLDataSource::kComposed);
    readComposed(source, texts, command);
  } else {
    source.setSQLTipo(moxSQLDataSource::kPlain);
    texts.readContent(SQLDataSource::kSql, command);
  }
}

void writeCommand(SQLDataSource const& source, moxXMLNode& node) {
  auto const command = node.addChild("Command");
  bool const isComposed = source.getSQLTipo() == moxSQLDataSource::kComposed;
  command->writeAttribute("type", isComposed ? "1" : "0");
  if (!isComposed) {
    command->writeText(source.texts()[SQLDataSource::kSql]);
    return;
  }
  command->addChild(kFrom.element)->writeText(source.texts()[kFrom.text]);
  for (auto const& piece : kOptionalPieces) {
    writePiece(source, *command, piece);
  }
}

moxSQLDataSourceColumn::FieldTypes databaseTypeOf(moxDataMatrixTypes::Types type) {
  switch (type) {
    case moxDataMatrixTypes::Double:
      return moxSQLDataSourceColumn::kDouble;
    case moxDataMatrixTypes::Text:
      return moxSQLDataSourceColumn::kText;
    case moxDataMatrixTypes::Date:
      return moxSQLDataSourceColumn::kDate;
    case moxDataMatrixTypes::Blob:
      return moxSQLDataSourceColumn::kBlob;
    default:
      return moxSQLDataSourceColumn::kInt;
  }
}

/// Whether there was one.
bool readShortColumns(SQLDataSource& source, XmlElement const& list) {
  bool isAny = false;
  list.eachChild({}, [&](XmlElement const& element) {
    auto const type = columnTypeOfTag(element.name()).value_or(moxDataMatrixTypes::Int);
    auto const column = source.columnList().append();
    column->setColumnName(element.attribute("name"));
    column->setDbType(databaseTypeOf(type));
    isAny = true;
  });
  return isAny;
}

bool isSubqueryAllowed(XmlElement const& node) {
  auto const avoided = node.attribute("evitarSubquery");
  return avoided.empty() || avoided == "0";
}

// Columns of the short form know neither tables nor expressions, so that a condition can name them
// only from outside the statement.
void readColumns(SQLDataSource& source, XmlElement const& node) {
  auto const list = node.child("Columns");
  if (!list) {
    return;
  }
  if (list.child(kColumn)) {
    source.columnList().load(list, kColumn);
  } else if (readShortColumns(source, list) && isSubqueryAllowed(node)) {
    std::string const statement(source.texts()[SQLDataSource::kSql]);
    source.setSQL("select * from ( " + statement + " ) command ");
  }
}

void writeColumns(SQLDataSource const& source, moxXMLNode& node) {
  source.columnList().save(*node.addChild("Columns"), kColumn);
}

void readOrderColumn(SQLDataSource& source, XmlElement const& by) {
  auto name = by.attribute("columnName");
  if (name.empty()) {
    name = by.attribute("column");
  }
  auto column =
      requireColumn(source, by.attribute("tableName"), name, by, "Ordem By com coluna inválida");
  source.addOrderColumn(std::move(column), by.attribute("dir") == "Desc");
}

void readOrder(SQLDataSource& source, XmlElement const& node) {
  if (auto const list = node.child("Order")) {
    list.eachChild("By", [&](XmlElement const& by) { readOrderColumn(source, by); });
  }
}

void writeOrder(SQLDataSource const& source, moxXMLNode& node) {
  auto const order = source.getOrderColumns();
  if (order.empty()) {
    return;
  }
  auto const list = node.addChild("Order");
  for (auto const& [column, isDescending] : order) {
    auto const by = list->addChild("By");
    column_reference::write(*by, column_reference::namesOf(*column),
                            column_reference::kColumnFirst);
    if (isDescending) {
      by->writeAttribute("dir", "Desc");
    }
  }
}

moxSQLDataSource::Relation readRelation(SQLDataSource const& source, XmlElement const& element) {
  constexpr char const* kMessage = "Relação entre datasources inválida";
  auto const origin = element.child("DataSourceOrigin");
  if (!origin) {
    throw definitionError(kMessage, element, "it needs a child \"DataSourceOrigin\"");
  }
  auto column = requireColumn(source, origin.attribute("tableName"), origin.attribute("columnName"),
                              origin, kMessage);
  return {element.attribute("dataSource"), element.attribute("columnName"), std::move(column)};
}

void readRelations(SQLDataSource& source, XmlElement const& node) {
  auto const list = node.child("Relations");
  if (!list) {
    return;
  }
  auto relations = source.getRelations();
  list.eachChild("Rel", [&](XmlElement const& element) {
    relations.push_back(readRelation(source, element));
  });
  source.setRelations(relations);
}

/// A relation that an editor left without a column is no relation, and could not be read again.
void writeRelations(SQLDataSource const& source, moxXMLNode& node) {
  Element list;
  for (auto const& relation : source.getRelations()) {
    if (!relation.column) {
      continue;
    }
    list = list ? list : node.addChild("Relations");
    auto const element = list->addChild("Rel");
    element->writeAttribute("dataSource", relation.dataSource);
    element->writeAttribute("columnName", relation.columnName);
    column_reference::write(*element->addChild("DataSourceOrigin"),
                            column_reference::namesOf(*relation.column),
                            column_reference::kOriginFirst);
  }
}

/// Of several columns of the names the last one has the role.
void readRole(SQLDataSource& source, XmlElement const& element, Role const& role) {
  auto const table = element.attribute("tableName");
  auto const name = element.attribute("columnName");
  for (auto const& column : source.columnList().columns()) {
    if (column->isCalled(table, name)) {
      role.set(source, column);
    }
  }
}

void readRoles(SQLDataSource& source, XmlElement const& node) {
  for (auto const& role : kRoles) {
    if (auto const element = node.child(role.element)) {
      readRole(source, element, role);
    }
  }
  auto const unit = node.child(kUnit);
  if (unit && unit.attribute(kAllowNull) == "1") {
    source.setUnidadeColumn(unitColumnOf(source), true);
  }
}

void writeRoles(SQLDataSource const& source, moxXMLNode& node) {
  for (auto const& role : kRoles) {
    auto const column = role.get(source);
    if (!column) {
      continue;
    }
    auto const element = node.addChild(role.element);
    column_reference::write(*element, column_reference::namesOf(*column),
                            column_reference::kTableFirst);
    if (role.get == unitColumnOf) {
      xml_attributes::writeBool(*element, kAllowNull, source.getUnidadeColumn().second);
    }
  }
}

void readFilterOnColumn(SQLDataSource& source, XmlElement const& element) {
  auto const filter = filter_elements::read(element);
  filter->setSQLDataSourceColumn(requireColumn(source, filter->getTableName(), filter->getColumn(),
                                               element, "Coluna de Filtro inválida"));
  source.addFilter(filter);
}

void readCustomFilters(SQLDataSource& source, XmlElement const& list) {
  filter_elements::readAll(list, [&](auto const& filter) { source.addFilter(filter); });
}

void readFilters(SQLDataSource& source, XmlElement const& node) {
  auto const filters = node.child("Filters");
  if (!filters) {
    return;
  }
  if (auto const onColumns = filters.child("column")) {
    onColumns.eachChild({}, [&](XmlElement const& each) { readFilterOnColumn(source, each); });
  }
  if (auto const custom = filters.child("custom")) {
    readCustomFilters(source, custom);
  }
}

void writeFilters(SQLDataSource const& source, moxXMLNode& node) {
  if (source.filterList().empty()) {
    return;
  }
  auto const filters = node.addChild("Filters");
  Element onColumns;
  Element custom;
  for (auto const& filter : source.filterList()) {
    bool const isOnColumn = filter->getSQLDataSourceColumn() != nullptr;
    auto& list = isOnColumn ? onColumns : custom;
    list = list ? list : filters->addChild(isOnColumn ? "column" : "custom");
    filter->save(list->addChild(filter->name()));
  }
}

void readSearch(SQLDataSource& source, XmlElement const& node) {
  auto const element = node.child("moxSearch");
  auto const search = element ? moxApp->get<moxSearch>("moxSearch") : nullptr;
  if (search) {
    loadFrom(*search, element);
    search->setDataSourceExterno(source.getName(), source.shared_from_this());
    source.setSearch(search);
  }
}

void readOldForm(SQLDataSource& source, XmlElement const& node) {
  auto const sql = node.child("Sql");
  if (!sql) {
    return;
  }
  source.setModoCompatibilidade();
  source.setSQL(sql.text());
  if (auto const columns = node.child("Columns")) {
    source.columnList().load(columns, kColumn);
  }
  if (auto const filters = node.child("Filters")) {
    readCustomFilters(source, filters);
  }
  auto const general = node.child("General");
  auto const mainData = general ? general.attribute("mainData") : std::string();
  if (!mainData.empty()) {
    source.setMainColumn(source.columnList().findByName(mainData));
  }
}

}  // namespace

void sql_data_source_xml::read(SQLDataSource& source, XmlElement const& node) {
  GatheredTexts texts(source);
  texts.readAttribute(SQLDataSource::kHeaderName, node, "VisibleName");
  source.setName(node.attribute("name"));
  for (auto const& script : kScripts) {
    texts.readPiece(script, node);
  }
  auto const command = node.child("Command");
  if (!command) {
    texts.store();
    readOldForm(source, node);
    return;
  }
  readCommand(source, texts, command);
  texts.readAttribute(SQLDataSource::kWhereAnd, node, "whereand");
  texts.store();
  readColumns(source, node);
  readOrder(source, node);
  readRelations(source, node);
  readRoles(source, node);
  readFilters(source, node);
  readSearch(source, node);
}

void sql_data_source_xml::write(SQLDataSource const& source, moxXMLNode& node) {
  node.writeAttribute("name", source.getName());
  for (auto const& script : kScripts) {
    writePiece(source, node, script);
  }
  writeCommand(source, node);
  node.writeAttribute("VisibleName", source.getHeaderName());
  writeRoles(source, node);
  writeColumns(source, node);
  writeOrder(source, node);
  writeRelations(source, node);
  writeFilters(source, node);
  node.writeAttribute("whereand", source.getWhereAnd());
  if (auto const search = source.search()) {
    search->save(node.addChild("moxSearch"));
  }
}
