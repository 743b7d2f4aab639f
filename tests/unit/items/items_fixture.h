#pragma once

#include <memory>
#include <string>

#include <gtest/gtest.h>

#include "mox/core/blob.h"
#include "mox/core/error.h"
#include "mox/core/registry.h"
#include "mox/core/xml.h"
#include "mox/zyn/format/generic_formatter.h"
#include "mox/zyn/frame/plugin_entry.h"
#include "mox/zyn/items/fetch_desc_from_id.h"
#include "mox/zyn/items/zyn_collection.h"
#include "mox/zyn/items/zyn_item.h"
#include "mox/zyn/items/zyn_pack.h"
#include "support/test_host.h"
#include "zyn/frame/class_table.h"
#include "zyn/frame/plugin_containers.h"

/// Classes of a small module of the tests' own: definitions whose element says how they behave.
namespace items_test {

/// An item whose attributes are its fields: "name", "refuse" "1" refuses to load, "unsaveable" "1"
/// refuses to save, "related" names a related item that it makes.
class TestItem : public moxZYNItem {
 public:
  std::string name() const override { return "moxTestItem"; }
  bool load(std::shared_ptr<moxXMLNode> node) override {
    description_ = node->readAttribute("name");
    unsaveable = node->readAttribute("unsaveable") == "1";
    setRelated(node->readAttribute("related"));
    return node->readAttribute("refuse") != "1";
  }
  bool save(std::shared_ptr<moxXMLNode> node) const override {
    node->writeAttribute("name", description_);
    return !unsaveable;
  }
  std::string description() const override { return description_; }
  int getTipo() const override { return kDataSource; }
  std::shared_ptr<moxZYNItem> getZynItemRelated() override { return related; }
  void setParentLibraryName(std::string const& library) override { library_ = library; }
  std::string getParentLibName() const override { return library_; }

  void setDescription(std::string const& description) { description_ = description; }
  void setRelated(std::string const& description) {
    if (!description.empty()) {
      auto item = std::make_shared<TestItem>();
      item->setDescription(description);
      related = item;
    }
  }

  bool unsaveable = false;
  std::shared_ptr<moxZYNItem> related;

 private:
  std::string description_;
  std::string library_;
};

class DerivedItem final : public TestItem {
 public:
  std::string name() const override { return "moxDerivedItem"; }
};

class TestPackItem final : public moxZYNPackItem {
 public:
  std::string name() const override { return "moxTestPackItem"; }
  bool load(std::shared_ptr<moxXMLNode> node) override {
    value = node->readAttribute("value");
    return true;
  }
  bool save(std::shared_ptr<moxXMLNode> node) const override {
    node->writeAttribute("value", value);
    return true;
  }

  std::string value;
};

class TestFetch final : public moxZYNFetchDescFromID {
 public:
  std::string name() const override { return "moxTestFetch"; }
  bool load(std::shared_ptr<moxXMLNode> node) override {
    select = node->readAttribute("select");
    where = node->readAttribute("where");
    return true;
  }
  bool save(std::shared_ptr<moxXMLNode>) const override { return true; }
  std::string selectPart() const override { return select; }
  std::string wherePart() const override { return where; }
  std::string table() const override { return "aluno"; }
  std::string idColumn() const override { return "id_aluno"; }

  std::string select = "select aluno.id_aluno, aluno.nome from aluno";
  std::string where;
};

class TestFormatter final : public moxGenericFormatter {
 public:
  std::string name() const override { return "moxTestFormatter"; }
  bool save(std::shared_ptr<moxXMLNode> node) const override {
    node->writeAttribute("description", description_);
    return true;
  }
  bool load(std::shared_ptr<moxXMLNode> node) override {
    description_ = node->readAttribute("description");
    return node->readAttribute("refuse") != "1";
  }
  std::string asString(std::shared_ptr<moxIterator const> const&) const override { return {}; }
  void setDescription(std::string const& description) override { description_ = description; }
  std::string getDescription() const override { return description_; }
  void setPrefix(std::string const&) override {}
  void setSuffix(std::string const&) override {}
  std::string getPrefix() const override { return {}; }
  std::string getSuffix() const override { return {}; }

 private:
  std::string description_;
};

template <class T>
void enterClass(moxPluginRegistry& registry, char const* registeredName) {
  registry.registerClass(std::make_unique<moxInternalPluginContainer<T>>(registeredName));
}

inline int registerClasses(moxPluginRegistry* registry) {
  registry->setLibraryName(kLibraryName);
  enterClass<TestItem>(*registry, "moxTestItem");
  enterClass<DerivedItem>(*registry, "moxDerivedItem");
  enterClass<TestPackItem>(*registry, "moxTestPackItem");
  enterClass<TestFetch>(*registry, "moxTestFetch");
  enterClass<TestFormatter>(*registry, "moxTestFormatter");
  return 1;
}

inline void enterPoint(VELMORApplication* application, moxSessionService* session) {
  moxPlugIn_EntryPoint(application, session);
}

inline moxModuleEntryPoints entryPoints() {
  return {moxPlugIn_ModuleVersion, moxPlugIn_DoValidityCheck, enterPoint, registerClasses};
}

/// A host with the classes of above; texts become collections and back.
class ItemsTest : public testing::Test {
 protected:
  ItemsTest() { host_.application().addModule(entryPoints(), "the tests' items"); }

  std::shared_ptr<moxXMLDocument> document(std::string const& text) {
    auto document = host_.get<moxXMLDocument>("moxXMLDocument");
    document->loadText(text);
    return document;
  }

  std::shared_ptr<moxZYNCollection> newCollection() {
    return host_.get<moxZYNCollection>("moxZYNCollection");
  }

  /// The collection of a library with what stands between the root's tags.
  std::shared_ptr<moxZYNCollection> collection(std::string const& content,
                                               std::string const& library = "") {
    auto read = newCollection();
    read->unserialize(document("<moxZYNCollection parentLibraryName=\"" + library + "\">" +
                               content + "</moxZYNCollection>")
                          ->root());
    return read;
  }

  std::string textOf(moxZYNCollection const& written) {
    auto document = host_.get<moxXMLDocument>("moxXMLDocument");
    written.serialize(document->root());
    return document->writeText(0, 0);
  }

  std::shared_ptr<TestItem> item(std::string const& description) {
    auto made = std::make_shared<TestItem>();
    made->setDescription(description);
    return made;
  }

  TestHost host_;
};

/// The message that a call fails with; empty when it does not.
template <class Error = moxError, class Call>
std::string messageOf(Call const& call) {
  try {
    call();
  } catch (Error const& error) {
    return error.errorMessage();
  }
  return {};
}

}  // namespace items_test
