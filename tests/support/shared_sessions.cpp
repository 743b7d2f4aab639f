#include "support/shared_sessions.h"

#include <stdexcept>

#include "mox/core/xml.h"
#include "mox/zyn/items/zyn_cache.h"

std::shared_ptr<moxZYNCollection> readCollection(TestHost& host, std::string const& xml) {
  auto const document = host.get<moxXMLDocument>("moxXMLDocument");
  document->loadText(xml);
  auto collection = host.get<moxZYNCollection>("moxZYNCollection");
  if (!collection->unserialize(document->root())) {
    throw std::invalid_argument("the text is no collection of definitions");
  }
  return collection;
}

std::shared_ptr<moxZYNCollection> shareDefinitions(TestHost& host, std::string const& xml) {
  auto collection = readCollection(host, xml);
  host.get<moxZYNCache>("moxZYNCache")->appendCollection(collection);
  return collection;
}

std::vector<std::shared_ptr<mox::core::Session>> openUnitSessions(TestHost& host, int count,
                                                                  int units) {
  std::vector<std::shared_ptr<mox::core::Session>> sessions;
  for (int i = 0; i < count; ++i) {
    int const unit = i % units + 1;
    sessions.push_back(host.application().sessions().open(
        {.id = i + 1, .defaultUnit = unit, .units = {{unit, 1}}, .worksByUnits = true}));
  }
  return sessions;
}
