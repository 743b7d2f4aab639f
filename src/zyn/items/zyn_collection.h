#pragma once

#include <memory>
#include <string>
#include <vector>

#include "mox/zyn/items/zyn_collection.h"
#include "mox/zyn/items/zyn_load_report.h"
#include "zyn/items/typed_collection.h"

class XmlElement;
class moxReadBlob;
class moxXMLPieces;

class zynCollection final : public moxZYNCollection, public moxZYNLoadReport {
 public:
  std::string name() const override { return "moxZYNCollection"; }
  bool serialize(std::shared_ptr<moxXMLNode> node) const override;
  bool unserialize(std::shared_ptr<moxXMLNode> node) override;
  std::shared_ptr<moxZYNItem> findItem(std::string const& description) const override;
  moxSortableTypedCollection<moxZYNItem>& items() override { return items_; }
  moxSortableTypedCollection<moxZYNItem> const& items() const override { return items_; }
  std::string getParentLibraryName() const override { return parentLibraryName_; }
  void setParentLibraryName(std::string const& libraryName) override {
    parentLibraryName_ = libraryName;
  }

  std::vector<moxZYNSkippedElement> skippedElements() const override;

  /// As unserialize, of the document that `reader` reads, item by item. False for a document that
  /// cannot be read so; the collection is then of no use.
  bool readPieces(moxXMLPieces const& reader, moxReadBlob const& document);

  /// The file that the elements came from, for the report.
  void setFile(std::string const& path) { file_ = path; }

 private:
  bool readItem(XmlElement const& element);
  void enter(std::shared_ptr<moxZYNItem> item);

  moxSortableTypedCollectionImplementation<moxZYNItem, zynCollection> items_;
  std::string parentLibraryName_;
  std::string file_;
  std::vector<moxZYNSkippedElement> skipped_;
};
