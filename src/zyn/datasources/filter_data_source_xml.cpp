#include "zyn/datasources/filter_data_source_xml.h"

#include <array>

#include "mox/core/application.h"
#include "mox/core/xml.h"
#include "mox/zyn/frame/plugin_entry.h"
#include "zyn/datasources/column_reference.h"
#include "zyn/datasources/filter_data_source.h"
#include "zyn/items/xml_attributes.h"

namespace {

using Spec = moxFilterDataSourceSpec;

constexpr char const* kFilters = "Filters";
constexpr char const* kSelectColumns = "selectColumns";
constexpr char const* kColumn = "column";
constexpr char const* kTipo = "tipo";
constexpr char const* kPlugin = "plugin";
constexpr char const* kValue = "value";
constexpr char const* kStatement = "SQL";

struct Piece {
  char const* element;
  std::string (moxFilterDataSource::*get)() const;
  void (moxFilterDataSource::*set)(std::string const&);
};

constexpr std::array<Piece, 4> kPieces = {{
    {"join", &moxFilterDataSource::getSQLJoin, &moxFilterDataSource::setSQLJoin},
    {"where", &moxFilterDataSource::getSQLWhere, &moxFilterDataSource::setSQLWhere},
    {"group", &moxFilterDataSource::getSQLGroup, &moxFilterDataSource::setSQLGroup},
    {"order", &moxFilterDataSource::getSQLOrder, &moxFilterDataSource::setSQLOrder},
}};

/// Pieces that old files keep among the conditions, each in an element of its own.
constexpr std::array<Piece, 2> kOldPieces = {{
    {"Join", &moxFilterDataSource::getSQLJoin, &moxFilterDataSource::setSQLJoin},
    {"Where", &moxFilterDataSource::getSQLWhere, &moxFilterDataSource::setSQLWhere},
}};

void readIds(Spec& spec, moxXMLNode const& node) {
  constexpr std::string_view kBlanks = " \t\r\n";
  std::set<int> ids;
  for (int i = 0; auto const value = node.childByIndex(i, kValue); ++i) {
    std::string const text = value->readText();
    auto const begin = std::min(text.find_first_not_of(kBlanks), text.size());
    auto const end = text.find_last_not_of(kBlanks) + 1;
    ids.insert(xml_attributes::intOf(std::string_view(text).substr(begin, end - begin)));
  }
  spec.setIds(ids);
}

void writeIds(Spec& spec, moxXMLNode& node) {
  for (int const id : spec.getIds()) {
    node.addChild(kValue)->writeText(std::to_string(id));
  }
}

void readStatement(Spec& spec, moxXMLNode const& node) {
  if (auto const statement = node.childByIndex(0, kStatement)) {
    spec.setSQL(statement->readText());
  }
}

void writeStatement(Spec& spec, moxXMLNode& node) {
  node.addChild(kStatement)->writeText(spec.getSQL());
}

void readNothing(Spec&, moxXMLNode const&) {}
void writeNothing(Spec&, moxXMLNode&) {}

/// The elements of conditions, by what they hold.
struct Kind {
  char const* element;
  Spec::Tipos tipo;
  void (*read)(Spec&, moxXMLNode const&);
  void (*write)(Spec&, moxXMLNode&);
};

constexpr std::array<Kind, 3> kKinds = {{
    {"Valor", Spec::kValor, readIds, writeIds},
    {"Sql", Spec::kSql, readStatement, writeStatement},
    {"SemFiltro", Spec::kSemFiltro, readNothing, writeNothing},
}};

void readSpec(FilterDataSource& source, moxXMLNode const& element, Kind const& kind) {
  auto const spec = moxApp->get<Spec>("moxFilterDataSourceSpec");
  spec->setTipo(kind.tipo);
  spec->setPluginFilter(element.readAttribute(kPlugin));
  spec->setColumnOrigin(column_reference::read(element, column_reference::kTableOriginFirst));
  kind.read(*spec, element);
  source.addSpec(spec);
}

/// A number that is no kind is no condition.
Kind const& kindOf(Spec const& spec) {
  for (auto const& kind : kKinds) {
    if (kind.tipo == spec.getTipo()) {
      return kind;
    }
  }
  return kKinds.back();
}

void writeSpec(Spec& spec, moxXMLNode& list) {
  auto const& kind = kindOf(spec);
  auto const element = list.addChild(kind.element);
  element->writeAttribute(kPlugin, spec.getPluginFilter());
  column_reference::write(*element, spec.getColumnOrigin(), column_reference::kTableOriginFirst);
  kind.write(spec, *element);
}

void readOldPiece(FilterDataSource& source, moxXMLNode const& element, Piece const& piece) {
  if (auto const statement = element.childByIndex(0, kStatement)) {
    (source.*piece.set)(statement->readText());
  }
}

void readFilter(FilterDataSource& source, moxXMLNode const& element) {
  auto const name = element.elementName();
  for (auto const& kind : kKinds) {
    if (name == kind.element) {
      readSpec(source, element, kind);
    }
  }
  for (auto const& piece : kOldPieces) {
    if (name == piece.element) {
      readOldPiece(source, element, piece);
    }
  }
}

void readFilters(FilterDataSource& source, moxXMLNode const& node) {
  auto const list = node.childByIndex(0, kFilters);
  for (int i = 0; auto const element = list ? list->childByIndex(i) : nullptr; ++i) {
    readFilter(source, *element);
  }
}

void writeFilters(FilterDataSource const& source, moxXMLNode& node) {
  auto const list = node.addChild(kFilters);
  for (auto const& spec : source.specList()) {
    writeSpec(*spec, *list);
  }
}

void readColumns(FilterDataSource& source, moxXMLNode const& node) {
  if (auto const list = node.childByIndex(0, kSelectColumns)) {
    bool const replaces = xml_attributes::readBool(*list, kTipo);
    source.setTipoRetornoSelect(replaces ? moxFilterDataSource::kSubstitui
                                         : moxFilterDataSource::kAdiciona);
    source.columnList().load(*list, kColumn);
  }
}

void writeColumns(FilterDataSource const& source, moxXMLNode& node) {
  auto const list = node.addChild(kSelectColumns);
  bool const replaces = source.getTipoRetornoSelect() == moxFilterDataSource::kSubstitui;
  xml_attributes::writeBool(*list, kTipo, replaces);
  source.columnList().save(*list, kColumn);
}

}  // namespace

void filter_data_source_xml::read(FilterDataSource& source, moxXMLNode const& node) {
  source.setName(node.readAttribute("name"));
  source.setDataSourceName(node.readAttribute("dataSource"));
  for (auto const& piece : kPieces) {
    if (auto const element = node.childByIndex(0, piece.element)) {
      (source.*piece.set)(element->readText());
    }
  }
  readFilters(source, node);
  readColumns(source, node);
}

void filter_data_source_xml::write(FilterDataSource const& source, moxXMLNode& node) {
  node.writeAttribute("name", source.getName());
  node.writeAttribute("dataSource", source.getDataSourceName());
  for (auto const& piece : kPieces) {
    auto const text = (source.*piece.get)();
    if (!text.empty()) {
      node.addChild(piece.element)->writeText(text);
    }
  }
  writeFilters(source, node);
  writeColumns(source, node);
}
