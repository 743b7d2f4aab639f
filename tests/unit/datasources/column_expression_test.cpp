#include "zyn/datasources/column_expression.h"

#include "unit/datasources/definition_fixture.h"

namespace {

using Op = moxColumnExpression::Op;

class ColumnExpressionTest : public mox_test::DefinitionTest {
 protected:
  std::shared_ptr<moxColumnExpression> made() {
    return host_.get<moxColumnExpression>("moxColumnExpression");
  }

  std::shared_ptr<moxColumnExpression> readFrom(std::string const& attributes,
                                                std::string const& text = "") {
    auto const held = document("<e " + attributes + ">" + text + "</e>");
    auto const expression = made();
    EXPECT_TRUE(expression->load(held->root()));
    return expression;
  }

  std::string written(moxColumnExpression const& expression) {
    auto const held = document("<e/>");
    EXPECT_TRUE(expression.save(held->root()));
    return held->writeText(0, 0);
  }
};

}  // namespace

TEST_F(ColumnExpressionTest, BeginsAsAnIntWithoutPrecision) {
  auto const expression = made();
  EXPECT_EQ(expression->name(), "moxColumnExpression");
  EXPECT_EQ(expression->columnName(), "");
  EXPECT_EQ(expression->getExpression(), "");
  EXPECT_EQ(expression->tipo(), moxColumnExpression::kInteiro);
  EXPECT_EQ(expression->getDecimalPrecision(), std::pair(-1, moxColumnExpression::kArredonda));
}

TEST_F(ColumnExpressionTest, IsWrittenAsItWasRead) {
  auto const expression = readFrom(
      "name=\"media\" type=\"1\" decimalPrecision=\"2\" decimalOperation=\"1\"", "a(0) / b(0)");
  EXPECT_EQ(expression->columnName(), "media");
  EXPECT_EQ(expression->getExpression(), "a(0) / b(0)");
  EXPECT_EQ(expression->tipo(), moxColumnExpression::kDecimal);
  EXPECT_EQ(expression->getDecimalPrecision(), std::pair(2, moxColumnExpression::kTrunca));
  EXPECT_EQ(written(*expression),
            "<e name=\"media\" type=\"1\" decimalPrecision=\"2\" decimalOperation=\"1\">"
            "a(0) / b(0)</e>");
}

TEST_F(ColumnExpressionTest, WithoutAPrecisionNoneIsKeptAndNeitherAttributeIsWritten) {
  auto const expression = readFrom("name=\"n\" type=\"0\" decimalOperation=\"1\"", "1");
  EXPECT_EQ(expression->getDecimalPrecision(), std::pair(-1, moxColumnExpression::kArredonda));
  EXPECT_EQ(written(*expression), "<e name=\"n\" type=\"0\">1</e>");
}

TEST_F(ColumnExpressionTest, APrecisionOfZeroIsOneAndIsWrittenWithItsOperation) {
  auto const expression = readFrom("decimalPrecision=\"0\"");
  EXPECT_EQ(expression->getDecimalPrecision(), std::pair(0, moxColumnExpression::kArredonda));
  EXPECT_EQ(written(*expression),
            "<e name=\"\" type=\"0\" decimalPrecision=\"0\" decimalOperation=\"0\"/>");
}

TEST_F(ColumnExpressionTest, ANegativePrecisionIsKeptAndNotWritten) {
  auto const expression = readFrom("decimalPrecision=\"-3\" decimalOperation=\"1\"");
  EXPECT_EQ(expression->getDecimalPrecision(), std::pair(-3, moxColumnExpression::kTrunca));
  EXPECT_EQ(written(*expression), "<e name=\"\" type=\"0\"/>");
}

TEST_F(ColumnExpressionTest, NumbersAreReadAsFarAsTheyAreNumbers) {
  auto const precision = [&](std::string const& text) {
    return readFrom("decimalPrecision=\"" + text + "\"")->getDecimalPrecision().first;
  };
  EXPECT_EQ(precision("2"), 2);
  EXPECT_EQ(precision(" 2"), 2);
  EXPECT_EQ(precision("+2"), 2);
  EXPECT_EQ(precision("2.9"), 2);
  EXPECT_EQ(precision("2x"), 2);
  EXPECT_EQ(precision("x"), 0);
  EXPECT_EQ(precision("99999999999999999999"), 2147483647);
  EXPECT_EQ(precision("-99999999999999999999"), -2147483648);
}

TEST_F(ColumnExpressionTest, OperationsThatHaveNoNameAreKept) {
  auto const expression = readFrom("decimalPrecision=\"1\" decimalOperation=\"7\"");
  EXPECT_EQ(expression->getDecimalPrecision(), std::pair(1, static_cast<Op>(7)));
  EXPECT_EQ(written(*expression),
            "<e name=\"\" type=\"0\" decimalPrecision=\"1\" decimalOperation=\"7\"/>");
}

TEST_F(ColumnExpressionTest, OnlyAOneIsTheTypeOfDoubles) {
  for (auto const* const text : {"0", "2", "", "true", " 1"}) {
    EXPECT_EQ(readFrom("type=\"" + std::string(text) + "\"")->tipo(), moxColumnExpression::kInteiro)
        << text;
  }
}

TEST_F(ColumnExpressionTest, AnyTypeButZeroIsWrittenAsOne) {
  auto const expression = made();
  expression->setTipo(static_cast<moxColumnExpression::Tipo>(5));
  EXPECT_EQ(written(*expression), "<e name=\"\" type=\"1\"/>");
}

TEST_F(ColumnExpressionTest, SettersAreWhatIsWritten) {
  auto const expression = made();
  expression->setColumnName("dobro");
  expression->setExpression("x(0)*2 < 3 & 1");
  expression->setTipo(moxColumnExpression::kDecimal);
  expression->setDecimalPrecision(1, moxColumnExpression::kTrunca);
  EXPECT_EQ(written(*expression),
            "<e name=\"dobro\" type=\"1\" decimalPrecision=\"1\" decimalOperation=\"1\">"
            "x(0)*2 &lt; 3 &amp; 1</e>");
}

TEST_F(ColumnExpressionTest, LoadingAnewLeavesNothingOfTheOldColumn) {
  auto const expression = readFrom("name=\"a\" type=\"1\" decimalPrecision=\"2\"", "1");
  auto const held = document("<e/>");
  EXPECT_TRUE(expression->load(held->root()));
  EXPECT_EQ(written(*expression), "<e name=\"\" type=\"0\"/>");
}

TEST_F(ColumnExpressionTest, AnEmptyNodeIsRefusedAndChangesNothing) {
  auto const expression = readFrom("name=\"a\"", "1");
  EXPECT_FALSE(expression->load(nullptr));
  EXPECT_FALSE(expression->save(nullptr));
  EXPECT_EQ(written(*expression), "<e name=\"a\" type=\"0\">1</e>");
}
