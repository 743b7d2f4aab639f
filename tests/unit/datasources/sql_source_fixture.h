#pragma once

#include <memory>
#include <string>

#include <gtest/gtest.h>

#include "mox/core/error.h"
#include "mox/core/xml.h"
#include "mox/zyn/datasources/sql_data_source.h"
#include "support/test_host.h"
#include "zyn/datasources/sql_data_source_column.h"

/// Definitions of queries from texts, and back.
namespace sql_source_test {

class SqlSourceTest : public testing::Test {
 protected:
  std::shared_ptr<moxXMLDocument> document(std::string const& text) {
    auto document = host_.get<moxXMLDocument>("moxXMLDocument");
    document->loadText(text);
    return document;
  }

  std::shared_ptr<moxSQLDataSource> newSource() {
    return host_.get<moxSQLDataSource>("moxSQLDataSource");
  }

  /// A source with what stands between the element's tags.
  std::shared_ptr<moxSQLDataSource> source(std::string const& content,
                                           std::string const& attributes = "") {
    auto made = newSource();
    EXPECT_TRUE(made->load(
        document("<moxSQLDataSource " + attributes + ">" + content + "</moxSQLDataSource>")
            ->root()));
    return made;
  }

  /// A plain one with the columns t.id, t.nome and u.nome, and what follows them.
  std::shared_ptr<moxSQLDataSource> threeColumns(std::string const& content = "") {
    return source("<Command type=\"0\">select 1</Command>" + kThreeColumns + content);
  }

  std::string textOf(moxSQLDataSource const& written) {
    auto document = host_.get<moxXMLDocument>("moxXMLDocument");
    document->create("moxSQLDataSource");
    EXPECT_TRUE(written.save(document->root()));
    return document->writeText(0, 0);
  }

  /// The definition after it was written and read again.
  std::shared_ptr<moxSQLDataSource> reread(moxSQLDataSource const& written) {
    auto made = newSource();
    EXPECT_TRUE(made->load(document(textOf(written))->root()));
    return made;
  }

  inline static std::string const kThreeColumns =
      "<Columns><Column tableName=\"t\" columnName=\"id\"/><Column tableName=\"t\" "
      "columnName=\"nome\"/><Column tableName=\"u\" columnName=\"nome\"/></Columns>";

  TestHost host_;
};

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

}  // namespace sql_source_test
