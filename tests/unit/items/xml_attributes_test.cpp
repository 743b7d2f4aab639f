#include "zyn/items/xml_attributes.h"

#include <climits>

#include "unit/items/items_fixture.h"

namespace {

class XmlAttributes : public items_test::ItemsTest {
 protected:
  std::shared_ptr<moxXMLDocument> document_ = document(
      "<n yes=\"1\" no=\"0\" word=\"true\" number=\"-12\" tail=\"12x\" big=\"2147483648\"/>");
  moxXMLNode& node_ = *document_->root();
};

}  // namespace

TEST_F(XmlAttributes, OneIsTrueAndZeroIsFalse) {
  EXPECT_TRUE(xml_attributes::readBool(node_, "yes", false));
  EXPECT_FALSE(xml_attributes::readBool(node_, "no", true));
}

TEST_F(XmlAttributes, WhatIsNoValueReadsAsTheDefault) {
  EXPECT_TRUE(xml_attributes::readBool(node_, "word", true));
  EXPECT_FALSE(xml_attributes::readBool(node_, "absent"));
  EXPECT_EQ(xml_attributes::readInt(node_, "tail", 7), 7);
  EXPECT_EQ(xml_attributes::readInt(node_, "big", 7), 7);
  EXPECT_EQ(xml_attributes::readInt(node_, "absent"), 0);
}

TEST_F(XmlAttributes, TheTextOfAnElementIsReadByTheSameRule) {
  EXPECT_EQ(xml_attributes::intOf("-12"), -12);
  EXPECT_EQ(xml_attributes::intOf("12x", 7), 7);
  EXPECT_EQ(xml_attributes::intOf(" 12", 7), 7);
  EXPECT_EQ(xml_attributes::intOf("", 7), 7);
}

TEST_F(XmlAttributes, WhatIsWrittenReadsBack) {
  EXPECT_EQ(xml_attributes::readInt(node_, "number"), -12);
  for (int const value : {0, -1, INT_MAX, INT_MIN}) {
    xml_attributes::writeInt(node_, "i", value);
    EXPECT_EQ(xml_attributes::readInt(node_, "i", 5), value);
  }
  for (bool const value : {false, true}) {
    xml_attributes::writeBool(node_, "b", value);
    EXPECT_EQ(xml_attributes::readBool(node_, "b", !value), value);
  }
}
