#include "zyn/datasources/dado_data_source.h"

#include <array>

#include "mox/core/error.h"
#include "mox/core/xml.h"
#include "zyn/datasources/data_source_look_up.h"
#include "zyn/items/definition_error.h"
#include "zyn/items/xml_attributes.h"

namespace {

using Relation = moxDadoDataSource::Relation;
using Pairs = std::vector<std::pair<std::string, std::string>>;

constexpr char const* kName = "name";
constexpr char const* kJoinsFilterScreen = "unificarTelaFiltro";
constexpr char const* kDataSource = "dataSource";
constexpr char const* kExternalRelations = "sourcesExternalRelation";
constexpr char const* kExternalRelation = "relation";
constexpr char const* kExternal = "external";
constexpr char const* kInternal = "internal";
constexpr char const* kRelation = "Relation";
constexpr char const* kRelated = "DataSourceOrigin";
constexpr char const* kUndefined = "Fonte de dados externa não definida";
constexpr char const* kInvalid = "Fonte de dados externa inválida";

struct Attribute {
  char const* name;
  std::string Relation::*field;
};

constexpr std::array<Attribute, 4> kOwnColumn = {{
    {"columnNameOrigin", &Relation::columnNameOrigin},
    {"tableNameOrigin", &Relation::tableNameOrigin},
    {"columnName", &Relation::column},
    {"tableName", &Relation::tableName},
}};

constexpr std::array<Attribute, 2> kRelatedColumn = {{
    {kDataSource, &Relation::dataSource},
    {"columnName", &Relation::columnName},
}};

template <class Attributes>
void readAttributes(moxXMLNode const& node, Attributes const& attributes, Relation& relation) {
  for (auto const& attribute : attributes) {
    relation.*attribute.field = node.readAttribute(attribute.name);
  }
}

template <class Attributes>
void writeAttributes(moxXMLNode& node, Attributes const& attributes, Relation const& relation) {
  for (auto const& attribute : attributes) {
    node.writeAttribute(attribute.name, relation.*attribute.field);
  }
}

Relation readRelation(moxXMLNode const& node) {
  Relation relation;
  if (auto const element = node.childByIndex(0, kRelation)) {
    readAttributes(*element, kOwnColumn, relation);
    if (auto const related = element->childByIndex(0, kRelated)) {
      readAttributes(*related, kRelatedColumn, relation);
    }
  }
  return relation;
}

void writeRelation(moxXMLNode& node, Relation const& relation) {
  if (relation.dataSource.empty() && relation.column.empty()) {
    return;
  }
  auto const element = node.addChild(kRelation);
  writeAttributes(*element, kOwnColumn, relation);
  writeAttributes(*element->addChild(kRelated), kRelatedColumn, relation);
}

Pairs readExternalRelations(moxXMLNode const& node) {
  Pairs relations;
  auto const list = node.childByIndex(0, kExternalRelations);
  for (int i = 0; auto const element = list ? list->childByIndex(i, kExternalRelation) : nullptr;
       ++i) {
    relations.emplace_back(element->readAttribute(kExternal), element->readAttribute(kInternal));
  }
  return relations;
}

void writeExternalRelations(moxXMLNode& node, Pairs const& relations) {
  auto const list = node.addChild(kExternalRelations);
  for (auto const& [external, internal] : relations) {
    auto const element = list->addChild(kExternalRelation);
    element->writeAttribute(kExternal, external);
    element->writeAttribute(kInternal, internal);
  }
}

/// The element of the source that the member holds: the first that is none of the member's own.
std::shared_ptr<moxXMLNode> sourceElement(moxXMLNode const& node) {
  for (int i = 0; auto element = node.childByIndex(i); ++i) {
    auto const name = element->elementName();
    if (name != kRelation && name != kExternalRelations) {
      return element;
    }
  }
  return {};
}

std::shared_ptr<moxDataSource> newSource(moxXMLNode const& element) {
  auto source = moxApp->get<moxDataSource>(element.elementName());
  if (!source) {
    throw definitionError("Fonte de dados inválida: " + element.elementName(), element,
                          "the class of this name is no data source");
  }
  return source;
}

}  // namespace

void DadoDataSource::setDataSource(std::shared_ptr<moxDataSource> dataSource) {
  held_ = std::move(dataSource);
  lent_.reset();
  externalName_.clear();
}

void DadoDataSource::setDataSource(std::shared_ptr<moxDataSource const> dataSource) {
  lent_ = std::move(dataSource);
  held_.reset();
}

std::shared_ptr<moxDataSource const> DadoDataSource::getDataSource() const {
  if (lent_) {
    return lent_;
  }
  if (externalName_.empty()) {
    return held_;
  }
  auto source = findDataSource(externalName_);
  if (!source) {
    throw moxDefaultErrorImpl<moxError>(kInvalid, {"the member \"" + name_ + "\" names \"" +
                                                   externalName_ + "\", which is no data source"});
  }
  return source;
}

void DadoDataSource::setDataSourceExterno(std::string const& name) {
  if (name.empty()) {
    throw moxDefaultErrorImpl<moxError>(kUndefined);
  }
  if (!findDataSource(name)) {
    throw moxDefaultErrorImpl<moxError>(kInvalid, {"there is no data source \"" + name + "\""});
  }
  externalName_ = name;
  held_.reset();
  lent_.reset();
}

std::vector<std::shared_ptr<moxFilterSpecification const>> DadoDataSource::getFilters() const {
  auto const source = getDataSource();
  return source ? source->getFilters()
                : std::vector<std::shared_ptr<moxFilterSpecification const>>();
}

/// Without a name of its own the member bears its source's, which for one elsewhere is the name
/// that it is found by.
bool DadoDataSource::load(std::shared_ptr<moxXMLNode> node) {
  if (!node) {
    return false;
  }
  DadoDataSource read;
  read.externalName_ = node->readAttribute(kDataSource);
  if (!read.externalName_.empty()) {
    read.externalRelations_ = readExternalRelations(*node);
    read.name_ = read.externalName_;
  } else if (auto const element = sourceElement(*node)) {
    read.held_ = newSource(*element);
    if (!read.held_->load(element)) {
      return false;
    }
    read.name_ = read.held_->getName();
  } else if (node->childByIndex(0, kExternalRelations)) {
    throw definitionError(kUndefined, *node, "give the member the attribute \"dataSource\"");
  }
  auto const name = node->readAttribute(kName);
  read.name_ = name.empty() ? read.name_ : name;
  read.joinsFilterScreen_ = xml_attributes::readBool(*node, kJoinsFilterScreen);
  read.relation_ = readRelation(*node);
  *this = std::move(read);
  return true;
}

bool DadoDataSource::save(std::shared_ptr<moxXMLNode> node) const {
  if (!node) {
    return false;
  }
  node->writeAttribute(kName, name_);
  xml_attributes::writeBool(*node, kJoinsFilterScreen, joinsFilterScreen_);
  if (!externalName_.empty()) {
    node->writeAttribute(kDataSource, externalName_);
    if (!externalRelations_.empty()) {
      writeExternalRelations(*node, externalRelations_);
    }
  } else if (auto const source = getDataSource()) {
    if (!source->save(node->addChild(source->name()))) {
      return false;
    }
  }
  writeRelation(*node, relation_);
  return true;
}
