#include <limits>
#include <memory>
#include <string>

#include "unit/format/formatter_fixture.h"
#include "zyn/format/decimal_formatter.h"
#include "zyn/format/integral_formatter.h"

namespace mox_test {

namespace {

class DecimalFormatterTest : public FormatterFixture {
 protected:
  DecimalFormatter formatter_;
};

class IntegralFormatterTest : public FormatterFixture {
 protected:
  IntegralFormatter formatter_;
};

TEST_F(DecimalFormatterTest, BornWithoutDecimalsGroupsAndPadding) {
  EXPECT_EQ(formatter_.name(), "moxDecimalFormatter");
  EXPECT_EQ(formatter_.getDescription(), "");
  EXPECT_EQ(formatter_.getPrefix(), "");
  EXPECT_EQ(formatter_.getSuffix(), "");
  EXPECT_EQ(formatter_.getGroupCount(), 0);
  EXPECT_EQ(formatter_.getGroupSeparator(), ',');
  EXPECT_EQ(formatter_.getDecimalSeparator(), '.');
  EXPECT_EQ(formatter_.getSpanSize(), 0U);
  EXPECT_EQ(formatter_.getSpanFiller(), '\0');
  EXPECT_EQ(formatter_.getPrecision(), 0U);
  EXPECT_FALSE(formatter_.getAllowShrinkPrecision());
}

TEST_F(DecimalFormatterTest, DefaultsPrintWholeNumbersWithoutSeparators) {
  EXPECT_EQ(formatter_.asString(1234567.6L), "1234568");
  EXPECT_EQ(formatter_.asString(-0.2L), "-0");
}

TEST_F(DecimalFormatterTest, GroupsAndDecimalsOfBrazil) {
  formatter_.setDecimalPrecision(2);
  formatter_.setGroupCount(3);
  formatter_.setGroupSeparator('.');
  formatter_.setDecimalSeparator(',');
  EXPECT_EQ(formatter_.asString(1234567.5L), "1.234.567,50");
}

TEST_F(DecimalFormatterTest, FillerStandsBetweenPrefixAndNumber) {
  formatter_.setSpan(8, '0');
  formatter_.setPrefix("R$");
  formatter_.setSuffix("!");
  EXPECT_EQ(formatter_.asString(12.0L), "R$00000012!");
}

TEST_F(DecimalFormatterTest, FillerStandsBeforeTheSign) {
  formatter_.setSpan(6, '0');
  EXPECT_EQ(formatter_.asString(-12.0L), "000-12");
}

TEST_F(DecimalFormatterTest, ShrinkCutsZerosAtTheEnd) {
  formatter_.setDecimalPrecision(2);
  formatter_.setAllowShrinkPrecision(true);
  EXPECT_EQ(formatter_.asString(12.50L), "12.5");
  EXPECT_EQ(formatter_.asString(12.00L), "12");
  EXPECT_EQ(formatter_.asString(0.00L), "0");
}

TEST_F(DecimalFormatterTest, ShrinkDoesNotSpareAPrefixThatEndsInADigit) {
  formatter_.setAllowShrinkPrecision(true);
  formatter_.setPrefix("N10");
  EXPECT_EQ(formatter_.asString(0.0L), "N1");
}

TEST_F(DecimalFormatterTest, ShrinkWithoutDecimalsCutsTheNumberItself) {
  formatter_.setAllowShrinkPrecision(true);
  EXPECT_EQ(formatter_.asString(100.0L), "1");
}

TEST_F(DecimalFormatterTest, ShrinkLeavesATextOfZerosAndTheSuffix) {
  formatter_.setAllowShrinkPrecision(true);
  formatter_.setSpan(3, '0');
  formatter_.setSuffix("00");
  EXPECT_EQ(formatter_.asString(0.0L), "00000");
}

TEST_F(DecimalFormatterTest, ShrinkTouchesNothingThatStoodBefore) {
  formatter_.setAllowShrinkPrecision(true);
  std::string text = "1.00";
  formatter_.appendTo(text, 0.0);
  EXPECT_EQ(text, "1.000");
}

TEST_F(DecimalFormatterTest, DecimalSeparatorSetAfterUseWaitsForTheNextRebuild) {
  formatter_.setDecimalPrecision(1);
  EXPECT_EQ(formatter_.asString(1.5L), "1.5");
  formatter_.setDecimalSeparator(',');
  EXPECT_EQ(formatter_.getDecimalSeparator(), ',');
  EXPECT_EQ(formatter_.asString(1.5L), "1.5");
  formatter_.setDecimalPrecision(2);
  formatter_.setSpan(6, '*');
  EXPECT_EQ(formatter_.asString(1.5L), "**1.50");
  formatter_.setGroupSeparator('.');
  EXPECT_EQ(formatter_.asString(1.5L), "**1,50");
}

TEST_F(DecimalFormatterTest, DecimalSeparatorSetBeforeUseCountsAtOnce) {
  formatter_.setDecimalPrecision(1);
  formatter_.setDecimalSeparator(',');
  EXPECT_EQ(formatter_.asString(1.5L), "1,5");
}

TEST_F(DecimalFormatterTest, CellsOfOtherKindsAndNullsGiveTheEmptyText) {
  formatter_.setPrefix("x");
  EXPECT_EQ(ofCell(formatter_, doubles(2.0)), "x2");
  EXPECT_EQ(ofCell(formatter_, doubles(null)), "");
  EXPECT_EQ(ofCell(formatter_, ints(2)), "");
  EXPECT_EQ(ofCell(formatter_, texts("2")), "");
  EXPECT_EQ(formatter_.asString(std::shared_ptr<moxIterator const>()), "");
}

TEST_F(DecimalFormatterTest, SavesEverySettingAndLoadsItAgain) {
  formatter_.setDescription("Valor");
  formatter_.setPrefix("R$ ");
  formatter_.setSuffix(" reais");
  formatter_.setDecimalPrecision(2);
  formatter_.setDecimalSeparator(',');
  formatter_.setGroupCount(3);
  formatter_.setGroupSeparator('.');
  formatter_.setSpan(12, '*');
  std::string const text = saved(formatter_);
  EXPECT_EQ(text,
            "<r description=\"Valor\" prefix=\"R$ \" suffix=\" reais\" precision=\"2\" "
            "separator=\",\"><thousand grouping=\"3\" separator=\".\"/>"
            "<span filler=\"*\" width=\"12\"/></r>");
  DecimalFormatter again;
  EXPECT_TRUE(again.load(xml(text)));
  EXPECT_EQ(saved(again), text);
  EXPECT_EQ(again.asString(1234.5L), "R$ ****1.234,50 reais");
}

TEST_F(DecimalFormatterTest, DefaultsAreSavedWithoutGroupsAndSpan) {
  EXPECT_EQ(saved(formatter_),
            "<r description=\"\" prefix=\"\" suffix=\"\" precision=\"0\" separator=\".\"/>");
}

TEST_F(DecimalFormatterTest, AbsentSeparatorIsNulAndIsSavedAsTheEmptyAttribute) {
  EXPECT_TRUE(formatter_.load(xml("<r precision=\"1\"><thousand grouping=\"3\"/></r>")));
  EXPECT_EQ(formatter_.getDecimalSeparator(), '\0');
  EXPECT_EQ(formatter_.getGroupSeparator(), '\0');
  EXPECT_EQ(formatter_.asString(1000.5L), std::string("1\000000\0005", 7));
  EXPECT_EQ(saved(formatter_),
            "<r description=\"\" prefix=\"\" suffix=\"\" precision=\"1\" separator=\"\">"
            "<thousand grouping=\"3\" separator=\"\"/></r>");
}

TEST_F(DecimalFormatterTest, LoadStartsFromTheDefaultsAndRebuilds) {
  formatter_.setGroupCount(3);
  formatter_.setSpan(9, '*');
  formatter_.setDecimalPrecision(2);
  EXPECT_EQ(formatter_.asString(1000.0L), "*1,000.00");
  EXPECT_TRUE(formatter_.load(xml("<r separator=\";\" precision=\"1\"/>")));
  EXPECT_EQ(formatter_.asString(1000.0L), "1000;0");
}

TEST_F(DecimalFormatterTest, ShrinkIsNotKeptInXml) {
  formatter_.setAllowShrinkPrecision(true);
  DecimalFormatter again;
  again.load(xml(saved(formatter_)));
  EXPECT_FALSE(again.getAllowShrinkPrecision());
}

TEST_F(DecimalFormatterTest, EmptyNodeIsRefused) {
  formatter_.setPrefix("x");
  EXPECT_FALSE(formatter_.load(nullptr));
  EXPECT_FALSE(formatter_.save(nullptr));
  EXPECT_EQ(formatter_.getPrefix(), "x");
}

TEST_F(DecimalFormatterTest, HostileNumbersInXmlAreBounded) {
  formatter_.load(
      xml("<r precision=\"-1\" separator=\".\"><thousand grouping=\"259\" "
          "separator=\".\"/><span filler=\"0\" width=\"-1\"/></r>"));
  EXPECT_EQ(formatter_.getPrecision(), std::numeric_limits<unsigned int>::max());
  EXPECT_EQ(formatter_.getGroupCount(), 0);
  EXPECT_EQ(formatter_.asString(1.0L).size(), 65'536U);
}

TEST_F(IntegralFormatterTest, BornWithoutGroupsAndPadding) {
  EXPECT_EQ(formatter_.name(), "moxIntegralFormatter");
  EXPECT_EQ(formatter_.getGroupCount(), 0);
  EXPECT_EQ(formatter_.getGroupSeparator(), ',');
  EXPECT_EQ(formatter_.getSpanSize(), 0U);
  EXPECT_EQ(formatter_.getSpanFiller(), '\0');
  EXPECT_EQ(formatter_.asString(-1234567LL), "-1234567");
}

TEST_F(IntegralFormatterTest, GroupsFillerPrefixAndSuffix) {
  formatter_.setGroupCount(3);
  formatter_.setGroupSeparator('.');
  formatter_.setSpan(10, '*');
  formatter_.setPrefix("<");
  formatter_.setSuffix(">");
  EXPECT_EQ(formatter_.asString(1234567LL), "<*1.234.567>");
  EXPECT_EQ(formatter_.asString(-5LL), "<********-5>");
}

TEST_F(IntegralFormatterTest, CellsOfOtherKindsAndNullsGiveTheEmptyText) {
  formatter_.setPrefix("x");
  EXPECT_EQ(ofCell(formatter_, ints(-2)), "x-2");
  EXPECT_EQ(ofCell(formatter_, ints(null)), "");
  EXPECT_EQ(ofCell(formatter_, doubles(2.0)), "");
  EXPECT_EQ(formatter_.asString(std::shared_ptr<moxIterator const>()), "");
}

TEST_F(IntegralFormatterTest, SavesEverySettingAndLoadsItAgain) {
  formatter_.setDescription("Inteiro");
  formatter_.setPrefix("nº ");
  formatter_.setSuffix(".");
  formatter_.setGroupCount(3);
  formatter_.setGroupSeparator('.');
  formatter_.setSpan(6, '0');
  std::string const text = saved(formatter_);
  EXPECT_EQ(text,
            "<r description=\"Inteiro\" prefix=\"nº \" suffix=\".\"><thousand grouping=\"3\" "
            "separator=\".\"/><span filler=\"0\" width=\"6\"/></r>");
  IntegralFormatter again;
  EXPECT_TRUE(again.load(xml(text)));
  EXPECT_EQ(saved(again), text);
  EXPECT_EQ(again.asString(1234LL), "nº 01.234.");
}

TEST_F(IntegralFormatterTest, DefaultsAreSavedWithoutGroupsAndSpan) {
  EXPECT_EQ(saved(formatter_), "<r description=\"\" prefix=\"\" suffix=\"\"/>");
}

TEST_F(IntegralFormatterTest, EmptyNodeIsRefused) {
  EXPECT_FALSE(formatter_.load(nullptr));
  EXPECT_FALSE(formatter_.save(nullptr));
}

}  // namespace

}  // namespace mox_test
