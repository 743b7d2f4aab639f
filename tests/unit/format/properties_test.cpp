#include <cmath>
#include <limits>
#include <map>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "mox/core/error.h"
#include "mox/core/xml.h"
#include "mox/zyn/format/properties_object.h"
#include "mox/zyn/frame/plugin_entry.h"
#include "mox/zyn/items/formatter_zyn_item.h"
#include "mox/zyn/items/zyn_cache.h"
#include "unit/format/formatter_fixture.h"
#include "zyn/format/decimal_formatter.h"
#include "zyn/format/formatter_property.h"
#include "zyn/format/properties_collection.h"
#include "zyn/format/text_formatter.h"
#include "zyn/format/value_properties.h"

namespace mox_test {

namespace {

class Owner final : public moxPropertiesObject {
 public:
  std::string name() const override { return "Owner"; }
  std::shared_ptr<moxPropertiesCollection> getProperties() const override { return properties; }
  void propertyChanged() override { ++changes; }

  std::shared_ptr<PropertiesCollection> properties = std::make_shared<PropertiesCollection>();
  int changes = 0;
  bool flag = false;
  int whole = 0;
  double number = 0;
  std::string line;
  std::string text;
  std::shared_ptr<moxGenericFormatter const> formatter;
};

class Item final : public moxFormatterZYNItem {
 public:
  std::string name() const override { return "moxFormatterZYNItem"; }
  bool load(std::shared_ptr<moxXMLNode>) override { return true; }
  bool save(std::shared_ptr<moxXMLNode>) const override { return true; }
  std::string description() const override { return formatter_->getDescription(); }
  int getTipo() const override { return kFormatter; }
  std::shared_ptr<moxZYNItem> getZynItemRelated() override { return {}; }
  void setParentLibraryName(std::string const&) override {}
  std::string getParentLibName() const override { return {}; }
  void setFormatterPlugin(std::string const&) override {}
  std::shared_ptr<moxGenericFormatter> getFormatter() override { return formatter_; }
  std::shared_ptr<moxGenericFormatter const> getFormatter() const override { return formatter_; }
  void setFormatter(std::shared_ptr<moxGenericFormatter> formatter) override {
    formatter_ = std::move(formatter);
  }
  void setDescription(std::string const&) override {}

 private:
  std::shared_ptr<moxGenericFormatter> formatter_;
};

class Cache final : public moxZYNCache {
 public:
  std::string name() const override { return "moxZYNCache"; }
  void appendCollection(std::shared_ptr<moxZYNCollection>) override {}
  std::shared_ptr<moxZYNItem> getCollection(std::string const& description) override {
    ++lookups;
    auto const found = items.find(description);
    return found != items.end() ? found->second : nullptr;
  }
  std::vector<std::shared_ptr<moxZYNItem const>> getItemsByType(std::type_info const&) override {
    return {};
  }
  void clear() override {}

  std::map<std::string, std::shared_ptr<moxZYNItem>> items;
  int lookups = 0;
};

// The application, but for the item cache, and for classes that a test takes away.
class Substitute final : public VELMORApplication {
 public:
  Substitute() : behind_(moxApp) { moxApp = this; }
  ~Substitute() override { moxApp = behind_; }

  using VELMORApplication::get;
  std::shared_ptr<moxPluginBase> get(std::string const& name, std::type_info const& type) override {
    if (name == missing) {
      throw moxDefaultErrorImpl<moxPluginNotFound>(name);
    }
    return name == "moxZYNCache" ? cache : behind_->get(name, type);
  }
  moxSettings& settings() override { return behind_->settings(); }
  moxDatabaseConnection& databaseConnection() override { return behind_->databaseConnection(); }
  moxTypeService& typeService() override { return behind_->typeService(); }
  std::unique_ptr<moxQueryCursor> query(std::string const&, std::string const&, int,
                                        std::string const&, int) override {
    return {};
  }
  std::weak_ptr<moxGuiUserInterface> userInterface() override { return {}; }
  std::vector<std::shared_ptr<moxReadBlob>> documents(std::string const&) override { return {}; }

  std::shared_ptr<Cache> cache = std::make_shared<Cache>();
  std::string missing;

 private:
  VELMORApplication* behind_;
};

class PropertiesTest : public FormatterFixture {
 protected:
  PropertiesTest() { owner_.properties->setObject(&owner_); }

  moxPropertiesCollection& properties() { return *owner_.properties; }

  std::shared_ptr<FormatterProperty> addFormatter(bool allowReplace = true) {
    auto property = std::make_shared<FormatterProperty>();
    property->setup("format", "Formato", &owner_.formatter, allowReplace);
    properties().addCustomProperty(property);
    return property;
  }

  Owner owner_;
  Substitute application_;
};

TEST_F(PropertiesTest, BooleanIsTrueOnlyForAFirstByte1) {
  properties().addBooleanProperty("b", "B", &owner_.flag);
  for (char const* const text : {"true", "2", "", " 1"}) {
    owner_.flag = true;
    EXPECT_TRUE(properties().load(xml("<r b=\"" + std::string(text) + "\"/>")));
    EXPECT_FALSE(owner_.flag) << text;
  }
  properties().load(xml("<r b=\"1x\"/>"));
  EXPECT_TRUE(owner_.flag);
  EXPECT_EQ(saved(properties()), "<r b=\"1\"/>");
}

TEST_F(PropertiesTest, IntReadsLeadingDigitsAndAbsentIs0) {
  properties().addIntProperty("i", "I", &owner_.whole);
  properties().load(xml("<r i=\"12abc\"/>"));
  EXPECT_EQ(owner_.whole, 12);
  properties().load(xml("<r/>"));
  EXPECT_EQ(owner_.whole, 0);
  owner_.whole = -1234567;
  EXPECT_EQ(saved(properties()), "<r i=\"-1234567\"/>");
}

TEST_F(PropertiesTest, DoubleIsWrittenWithEightDecimalsWhateverTheLocale) {
  properties().addDoubleProperty("d", "D", &owner_.number);
  owner_.number = 1.5;
  EXPECT_EQ(saved(properties()), "<r d=\"1.50000000\"/>");
  properties().load(xml("<r d=\"2.25\"/>"));
  EXPECT_EQ(owner_.number, 2.25);
  properties().load(xml("<r d=\"\"/>"));
  EXPECT_EQ(owner_.number, 2.25);
  properties().load(xml("<r/>"));
  EXPECT_EQ(owner_.number, 2.25);
  properties().load(xml("<r d=\"abc\"/>"));
  EXPECT_EQ(owner_.number, 0);
}

TEST_F(PropertiesTest, TextIsAnElementAndStaysWhereThatIsAbsent) {
  properties().addTextProperty("t", "T", &owner_.text);
  owner_.text = "a b";
  EXPECT_EQ(saved(properties()), "<r><t>a b</t></r>");
  EXPECT_TRUE(properties().load(xml("<r/>")));
  EXPECT_EQ(owner_.text, "a b");
  properties().load(xml("<r><t>c</t></r>"));
  EXPECT_EQ(owner_.text, "c");
}

TEST_F(PropertiesTest, HasValue) {
  EXPECT_FALSE(properties().addBooleanProperty("b", "B", &owner_.flag)->hasValue());
  auto const whole = properties().addIntProperty("i", "I", &owner_.whole);
  auto const number = properties().addDoubleProperty("d", "D", &owner_.number);
  auto const line = properties().addStringProperty("s", "S", &owner_.line);
  auto const text = properties().addTextProperty("t", "T", &owner_.text);
  EXPECT_FALSE(whole->hasValue() || number->hasValue() || line->hasValue() || text->hasValue());
  owner_.flag = true;
  owner_.whole = -1;
  owner_.number = std::numeric_limits<double>::quiet_NaN();
  owner_.line = owner_.text = "x";
  EXPECT_TRUE(whole->hasValue() && number->hasValue() && line->hasValue() && text->hasValue());
}

TEST_F(PropertiesTest, NamesOfTheClasses) {
  EXPECT_EQ(properties().name(), "moxPropertiesCollection");
  EXPECT_EQ(properties().addBooleanProperty("", "", &owner_.flag)->name(), "BooleanProperty");
  EXPECT_EQ(properties().addIntProperty("", "", &owner_.whole)->name(), "IntProperty");
  EXPECT_EQ(properties().addDoubleProperty("", "", &owner_.number)->name(), "DoubleProperty");
  EXPECT_EQ(properties().addStringProperty("", "", &owner_.line)->name(), "StringProperty");
  EXPECT_EQ(properties().addTextProperty("", "", &owner_.text)->name(), "TextProperty");
  EXPECT_EQ(addFormatter()->name(), "FormatterProperty");
}

TEST_F(PropertiesTest, SetAndLoadTellTheOwner) {
  auto const property = properties().addStringProperty("s", "Texto", &owner_.line);
  EXPECT_EQ(property->propertyName(), "s");
  EXPECT_EQ(property->propertyDescription(), "Texto");
  EXPECT_TRUE(property->userVisible());
  property->setUserVisible(false);
  EXPECT_FALSE(property->userVisible());
  property->set("x");
  EXPECT_EQ(owner_.line, "x");
  EXPECT_EQ(owner_.changes, 1);
  properties().load(xml("<r s=\"y\"/>"));
  EXPECT_EQ(property->get(), "y");
  EXPECT_EQ(owner_.changes, 2);
}

TEST_F(PropertiesTest, WithoutItsCollectionAPropertyChangesTheValueSilently) {
  auto const property = properties().addIntProperty("i", "I", &owner_.whole);
  owner_.properties.reset();
  property->set(5);
  EXPECT_EQ(owner_.whole, 5);
  EXPECT_EQ(owner_.changes, 0);
}

TEST_F(PropertiesTest, WithoutAnOwnerNobodyIsTold) {
  properties().setObject(nullptr);
  properties().addIntProperty("i", "I", &owner_.whole)->set(5);
  EXPECT_EQ(owner_.changes, 0);
}

TEST_F(PropertiesTest, DetachedPropertiesReadEmptyAndIgnoreValues) {
  owner_.whole = 3;
  owner_.formatter = std::make_shared<TextFormatter>();
  auto const whole = properties().addIntProperty("i", "I", &owner_.whole);
  auto const format = addFormatter();
  owner_.properties->detach();
  whole->set(9);
  format->setNewFormatter(nullptr, false);
  EXPECT_EQ(whole->get(), 0);
  EXPECT_EQ(format->formatter(), nullptr);
  EXPECT_EQ(owner_.whole, 3);
  EXPECT_NE(owner_.formatter, nullptr);
  EXPECT_EQ(owner_.changes, 0);
}

TEST_F(PropertiesTest, GroupsAreElementsBehindTheEmptyGroup) {
  properties().addIntProperty("before", "", &owner_.whole);
  properties().setXMLGroup("x");
  properties().addStringProperty("one", "", &owner_.line);
  properties().addBooleanProperty("two", "", &owner_.flag);
  owner_.line = "l";
  EXPECT_EQ(saved(properties()), "<r before=\"0\"><x one=\"l\" two=\"0\"/></r>");
  EXPECT_TRUE(properties().load(xml("<r before=\"7\"><x one=\"m\" two=\"1\"/></r>")));
  EXPECT_EQ(owner_.whole, 7);
  EXPECT_EQ(owner_.line, "m");
  EXPECT_TRUE(owner_.flag);
}

TEST_F(PropertiesTest, GroupsAreWrittenInTheOrderOfTheirNames) {
  properties().setXMLGroup("b");
  properties().addIntProperty("i", "", &owner_.whole);
  properties().setXMLGroup("a");
  properties().addStringProperty("s", "", &owner_.line);
  EXPECT_EQ(saved(properties()), "<r><a s=\"\"/><b i=\"0\"/></r>");
}

TEST_F(PropertiesTest, AGroupWhoseElementIsAbsentIsRefusedWithoutAChange) {
  properties().setXMLGroup("x");
  properties().addIntProperty("i", "", &owner_.whole);
  owner_.whole = 4;
  EXPECT_FALSE(properties().load(xml("<r/>")));
  EXPECT_EQ(owner_.whole, 4);
}

TEST_F(PropertiesTest, FirstFailureLeavesLaterPropertiesAtTheirValues) {
  addFormatter();
  properties().addIntProperty("i", "", &owner_.whole);
  properties().setXMLGroup("x");
  properties().addStringProperty("s", "", &owner_.line);
  owner_.whole = 4;
  EXPECT_FALSE(properties().load(xml("<r i=\"1\"><format/><x s=\"l\"/></r>")));
  EXPECT_EQ(owner_.whole, 4);
  EXPECT_EQ(owner_.line, "");
}

TEST_F(PropertiesTest, EmptyNodeIsRefusedByEveryClass) {
  properties().addBooleanProperty("b", "", &owner_.flag);
  properties().addIntProperty("i", "", &owner_.whole);
  properties().addDoubleProperty("d", "", &owner_.number);
  properties().addStringProperty("s", "", &owner_.line);
  properties().addTextProperty("t", "", &owner_.text);
  addFormatter();
  owner_.flag = true;
  for (auto const& property : properties().getProperties()) {
    EXPECT_FALSE(property->load(nullptr)) << property->name();
    EXPECT_FALSE(property->save(nullptr)) << property->name();
  }
  EXPECT_FALSE(properties().load(nullptr));
  EXPECT_TRUE(owner_.flag);
  EXPECT_EQ(owner_.changes, 0);
}

TEST_F(PropertiesTest, ACollectionWithoutPropertiesIsAlwaysDone) {
  EXPECT_TRUE(properties().load(nullptr));
  EXPECT_TRUE(properties().save(nullptr));
}

TEST_F(PropertiesTest, NumbersNeedTheirFormattersToBeSaved) {
  auto const whole = properties().addIntProperty("i", "", &owner_.whole);
  auto const number = properties().addDoubleProperty("d", "", &owner_.number);
  auto const node = xml("<r/>");
  application_.missing = "moxIntegralFormatter";
  EXPECT_FALSE(whole->save(node));
  application_.missing = "moxDecimalFormatter";
  EXPECT_FALSE(number->save(node));
  EXPECT_EQ(node->readAttribute("i") + node->readAttribute("d"), "");
}

TEST_F(PropertiesTest, FindPropertyGoesOnPastAWrongClass) {
  properties().addIntProperty("x", "", &owner_.whole);
  EXPECT_EQ(properties().findProperty("x", typeid(moxStringProperty)), nullptr);
  auto const wanted = properties().addStringProperty("x", "", &owner_.line);
  EXPECT_EQ(properties().findProperty("x", typeid(moxStringProperty)), wanted);
  EXPECT_EQ(properties().findProperty("X", typeid(moxStringProperty)), nullptr);
  EXPECT_EQ(properties().findProperties(typeid(moxProperty)).size(), 2U);
  EXPECT_EQ(properties().findProperties(typeid(moxStringProperty)).size(), 1U);
}

TEST_F(PropertiesTest, CustomPropertyComesBackAndAnEmptyOneChangesNothing) {
  EXPECT_EQ(properties().addCustomProperty(nullptr), nullptr);
  EXPECT_TRUE(properties().getProperties().empty());
  auto const added = addFormatter();
  EXPECT_EQ(properties().getProperties().front(), added);
}

TEST_F(PropertiesTest, AddingToACollectionThatNobodyHoldsThrows) {
  PropertiesCollection unheld;
  EXPECT_THROW(unheld.addIntProperty("i", "", &owner_.whole), std::bad_weak_ptr);
  EXPECT_TRUE(unheld.getProperties().empty());
}

TEST_F(PropertiesTest, EmbeddedFormatterIsSavedAndLoadedAgain) {
  auto const property = addFormatter();
  std::string const text =
      "<r><format><moxDecimalFormatter description=\"\" prefix=\"R$\" suffix=\"\" "
      "precision=\"2\" separator=\",\"/></format></r>";
  EXPECT_TRUE(properties().load(xml(text)));
  EXPECT_EQ(owner_.changes, 1);
  EXPECT_FALSE(property->getExterno());
  ASSERT_NE(property->formatter(), nullptr);
  EXPECT_EQ(property->formatter()->name(), "moxDecimalFormatter");
  EXPECT_EQ(saved(properties()), text);
}

TEST_F(PropertiesTest, FormatterThatCannotBeHadIsRefused) {
  addFormatter();
  owner_.formatter = std::make_shared<TextFormatter>();
  for (char const* const element : {"moxNobody", "moxDataMatrix"}) {
    EXPECT_FALSE(properties().load(xml("<r><format><" + std::string(element) + "/></format></r>")));
    EXPECT_EQ(owner_.formatter, nullptr);
  }
  EXPECT_TRUE(properties().load(xml("<r/>")));
  EXPECT_FALSE(properties().load(xml("<r><format/></r>")));
  EXPECT_EQ(saved(properties()), "<r/>");
  EXPECT_EQ(owner_.changes, 0);
}

TEST_F(PropertiesTest, ReferenceIsLookedUpOnceWhenItIsFirstNeeded) {
  auto const item = std::make_shared<Item>();
  auto const shared = std::make_shared<DecimalFormatter>();
  shared->setDescription("Moeda");
  item->setFormatter(shared);
  application_.cache->items["Moeda"] = item;
  auto const property = addFormatter();
  std::string const text = "<r><format><moxZYNFormatter description=\"Moeda\"/></format></r>";
  EXPECT_FALSE(properties().load(xml(text)));
  EXPECT_TRUE(property->getExterno());
  EXPECT_EQ(application_.cache->lookups, 0);
  EXPECT_TRUE(property->hasValue());
  EXPECT_EQ(property->formatter(), shared);
  EXPECT_EQ(application_.cache->lookups, 1);
  EXPECT_EQ(owner_.changes, 0);
  EXPECT_EQ(saved(properties()), text);
}

TEST_F(PropertiesTest, ReferenceThatIsNotFoundIsNotLookedUpAgain) {
  auto const property = addFormatter();
  properties().load(xml("<r><format><moxZYNFormatter description=\"x\"/></format></r>"));
  EXPECT_EQ(property->formatter(), nullptr);
  EXPECT_EQ(property->formatter(), nullptr);
  EXPECT_EQ(saved(properties()), "<r/>");
  EXPECT_EQ(application_.cache->lookups, 1);
}

TEST_F(PropertiesTest, WithoutACacheAReferenceFindsNothing) {
  auto const property = addFormatter();
  application_.missing = "moxZYNCache";
  properties().load(xml("<r><format><moxZYNFormatter description=\"x\"/></format></r>"));
  EXPECT_FALSE(property->hasValue());
}

TEST_F(PropertiesTest, FormatterThatMayNotBeReplacedStays) {
  auto const property = addFormatter(false);
  EXPECT_FALSE(property->allowReplace());
  property->setNewFormatter(std::make_shared<TextFormatter>(), true);
  EXPECT_EQ(owner_.formatter, nullptr);
  EXPECT_FALSE(property->getExterno());
  EXPECT_EQ(owner_.changes, 0);
}

TEST_F(PropertiesTest, NewFormatterMustBeOfTheAllowedClass) {
  auto const property = addFormatter();
  EXPECT_EQ(property->allowedType(), typeid(moxGenericFormatter));
  property->setAllowedType(typeid(moxDecimalFormatter));
  EXPECT_EQ(property->allowedType(), typeid(moxDecimalFormatter));
  property->setNewFormatter(std::make_shared<TextFormatter>(), false);
  EXPECT_EQ(owner_.formatter, nullptr);
  auto const decimal = std::make_shared<DecimalFormatter>();
  property->setNewFormatter(decimal, true);
  EXPECT_EQ(owner_.formatter, decimal);
  EXPECT_TRUE(property->getExterno());
  EXPECT_EQ(owner_.changes, 1);
  property->setNewFormatter(nullptr, false);
  EXPECT_EQ(owner_.formatter, nullptr);
  EXPECT_FALSE(property->hasValue());
  EXPECT_EQ(owner_.changes, 2);
}

}  // namespace

}  // namespace mox_test
