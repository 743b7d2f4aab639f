#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "mox/core/xml.h"
#include "mox/zyn/matrix/data_matrix_column.h"
#include "support/matrix_builder.h"
#include "support/test_host.h"

namespace mox_test {

/// A host behind the registry, and short ways to XML and cells.
class FormatterFixture : public testing::Test {
 protected:
  std::shared_ptr<moxXMLNode> xml(std::string const& text) {
    document_ = host_.get<moxXMLDocument>("moxXMLDocument");
    document_->loadText(text);
    return document_->root();
  }

  /// What the object writes into an empty element "r".
  template <class Object>
  std::string saved(Object const& object) {
    auto const document = host_.get<moxXMLDocument>("moxXMLDocument");
    document->create("r");
    EXPECT_TRUE(object.save(document->root()));
    return document->writeText(0, 0);
  }

  /// The text of the first cell of a column.
  template <class Formatter>
  std::string ofCell(Formatter const& formatter, Cells const& cells) {
    auto const values = column("c", cells);
    return formatter.asString(std::shared_ptr<moxIterator const>(values->begin()));
  }

  TestHost host_;

 private:
  std::shared_ptr<moxXMLDocument> document_;
};

}  // namespace mox_test
