#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "mox/core/error.h"
#include "mox/core/xml.h"
#include "mox/zyn/datasources/data_source.h"
#include "mox/zyn/datasources/data_source_execution.h"
#include "mox/zyn/datasources/data_source_execution_context.h"
#include "mox/zyn/items/zyn_cache.h"
#include "mox/zyn/items/zyn_collection.h"
#include "support/test_host.h"

namespace mox_test {

/// Definitions from texts, back to texts, and where definitions look each other up.
class DefinitionTest : public testing::Test {
 protected:
  using Columns = std::vector<moxDataSourceColumnType>;
  using Sources = std::vector<std::shared_ptr<moxDataSource const>>;

  DefinitionTest() : DefinitionTest(TestHost::kMemoryDatabase) {}
  explicit DefinitionTest(std::string const& databaseUrl) : host_(databaseUrl) {}

  std::shared_ptr<moxXMLDocument> document(std::string const& text) {
    auto document = host_.get<moxXMLDocument>("moxXMLDocument");
    document->loadText(text);
    return document;
  }

  /// A definition of its element's class, which is not in the cache.
  template <class T = moxDataSource>
  std::shared_ptr<T> read(std::string const& text) {
    auto const held = document(text);
    auto made = host_.get<T>(held->root()->elementName());
    EXPECT_TRUE(made->load(held->root()));
    return made;
  }

  std::string textOf(moxZYNItem const& written) {
    auto document = host_.get<moxXMLDocument>("moxXMLDocument");
    document->create(written.name());
    EXPECT_TRUE(written.save(document->root()));
    return document->writeText(0, 0);
  }

  std::shared_ptr<moxZYNCollection> collection(std::string const& items) {
    auto const held = document("<moxZYNCollection>" + items + "</moxZYNCollection>");
    auto made = host_.get<moxZYNCollection>("moxZYNCollection");
    made->unserialize(held->root());
    return made;
  }

  /// Puts definitions where all look them up.
  void enter(std::string const& items) { cache()->appendCollection(collection(items)); }

  std::shared_ptr<moxZYNCache> cache() { return host_.get<moxZYNCache>("moxZYNCache"); }

  std::shared_ptr<moxDataSource> entered(std::string const& name) {
    return std::dynamic_pointer_cast<moxDataSource>(cache()->getCollection(name));
  }

  std::shared_ptr<moxDataSourceExecutionContext> newContext() {
    return host_.get<moxDataSourceExecutionContext>("moxDataSourceExecutionContext");
  }

  static std::vector<std::string> namesOf(Sources const& sources) {
    std::vector<std::string> names;
    for (auto const& source : sources) {
      names.push_back(source->getName());
    }
    return names;
  }

  /// The message of the moxError that the call throws; empty when it throws none.
  template <class Call>
  static std::string failureOf(Call const& call) {
    try {
      call();
    } catch (moxError const& error) {
      return error.errorMessage();
    }
    return {};
  }

  TestHost host_;
};

}  // namespace mox_test
