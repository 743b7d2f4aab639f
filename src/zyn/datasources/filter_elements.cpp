#include "zyn/datasources/filter_elements.h"

#include "mox/core/application.h"
#include "mox/zyn/frame/plugin_entry.h"
#include "zyn/items/definition_error.h"

std::shared_ptr<moxFilterSpecification> filter_elements::read(XmlElement const& element) {
  auto const name = element.name();
  auto filter = moxApp->get<moxFilterSpecification>(name);
  if (!filter) {
    throw definitionError("Filtro inválido: " + name, element,
                          "the class of this name is no filter specification");
  }
  loadFrom(*filter, element);
  return filter;
}
