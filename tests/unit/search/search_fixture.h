#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "mox/core/error.h"
#include "mox/core/xml.h"
#include "mox/zyn/datasources/sql_data_source.h"
#include "mox/zyn/datasources/sql_data_source_column.h"
#include "mox/zyn/items/zyn_cache.h"
#include "mox/zyn/items/zyn_collection.h"
#include "mox/zyn/search/search.h"
#include "support/test_host.h"

/// Definitions of searches from texts, and back.
namespace search_test {

struct Failure {
  std::string message;
  std::vector<std::string> details;
};

/// What a call fails with; empty texts when it does not.
template <class Call>
Failure failureOf(Call const& call) {
  try {
    call();
  } catch (moxError const& error) {
    return {error.errorMessage(), error.errorDetails()};
  }
  return {};
}

class SearchTest : public testing::Test {
 protected:
  std::shared_ptr<moxXMLDocument> document(std::string const& text) {
    auto document = host_.get<moxXMLDocument>("moxXMLDocument");
    document->loadText(text);
    return document;
  }

  std::shared_ptr<moxSearch> newSearch() { return host_.get<moxSearch>("moxSearch"); }

  /// A search of a whole document.
  std::shared_ptr<moxSearch> search(std::string const& text) {
    auto made = newSearch();
    EXPECT_TRUE(made->load(document(text)->root()));
    return made;
  }

  /// A search with what stands between the element's tags.
  std::shared_ptr<moxSearch> searchOf(std::string const& content) {
    return search("<moxSearch InternalName=\"pesq\">" + content + "</moxSearch>");
  }

  std::string textOf(moxSearch const& written) {
    auto document = host_.get<moxXMLDocument>("moxXMLDocument");
    document->create("moxSearch");
    EXPECT_TRUE(written.save(document->root()));
    return document->writeText(0, 0);
  }

  /// Enters a collection with what stands between its tags into the cache.
  void cached(std::string const& content) {
    auto const collection = host_.get<moxZYNCollection>("moxZYNCollection");
    collection->unserialize(
        document("<moxZYNCollection>" + content + "</moxZYNCollection>")->root());
    host_.get<moxZYNCache>("moxZYNCache")->appendCollection(collection);
  }

  /// The source in force.
  static std::shared_ptr<moxDataSource const> sourceOf(moxSearch const& search) {
    return search.getDataSource();
  }

  TestHost host_{TestHost::kMemoryDatabase};
};

}  // namespace search_test
