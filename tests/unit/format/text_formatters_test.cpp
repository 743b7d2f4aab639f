#include <memory>
#include <random>
#include <regex>
#include <string>
#include <utility>
#include <vector>

#include "mox/zyn/format/properties_collection.h"
#include "unit/format/formatter_fixture.h"
#include "zyn/format/ascii_text.h"
#include "zyn/format/date_formatter.h"
#include "zyn/format/text_filter.h"
#include "zyn/format/text_formatter.h"

namespace mox_test {

namespace {

constexpr char const* kDefaultPattern = "[^a-zA-Z0-9 ]";

class FormattersTest : public FormatterFixture {
 protected:
  using Labels = std::vector<std::pair<std::string, std::string>>;

  template <class Formatter>
  static Labels labelsOf(Formatter const& formatter) {
    Labels labels;
    for (auto const& property : formatter.getProperties()->getProperties()) {
      labels.emplace_back(property->propertyName(), property->propertyDescription());
    }
    return labels;
  }
};

using TextFormatterTest = FormattersTest;
using TextFilterTest = FormattersTest;
using DateFormatterTest = FormattersTest;

TEST_F(TextFormatterTest, SettingsAndTheirLabels) {
  TextFormatter const formatter;
  EXPECT_EQ(formatter.name(), "moxTextFormatter");
  EXPECT_EQ(labelsOf(formatter),
            (Labels{{"description", "Descrição"}, {"prefix", "Prefixo"}, {"suffix", "Sufixo"}}));
  EXPECT_EQ(saved(formatter), "<r description=\"\" prefix=\"\" suffix=\"\"/>");
}

TEST_F(TextFormatterTest, EmptyTextStaysEmptyWhateverThePrefix) {
  TextFormatter formatter;
  formatter.setPrefix("x");
  EXPECT_EQ(formatter.asString(std::string()), "");
  EXPECT_EQ(formatter.asString(std::string("a")), "xa");
}

TEST_F(TextFormatterTest, TakesTextsAndBlobs) {
  TextFormatter formatter;
  formatter.setPrefix("<");
  formatter.setSuffix(">");
  EXPECT_EQ(ofCell(formatter, texts("a")), "<a>");
  EXPECT_EQ(ofCell(formatter, texts("")), "");
  EXPECT_EQ(ofCell(formatter, texts(null)), "");
  EXPECT_EQ(ofCell(formatter, blobs("bytes")), "<bytes>");
  EXPECT_EQ(ofCell(formatter, blobs("")), "");
  EXPECT_EQ(ofCell(formatter, blobs(null)), "");
  EXPECT_EQ(ofCell(formatter, blobs(std::shared_ptr<moxReadBlob>())), "");
  EXPECT_EQ(ofCell(formatter, ints(1)), "");
}

TEST_F(TextFormatterTest, SavesAndLoadsAgain) {
  TextFormatter formatter;
  std::string const text = "<r description=\"d\" prefix=\"p \" suffix=\" s\"/>";
  EXPECT_TRUE(formatter.load(xml(text)));
  EXPECT_EQ(formatter.getDescription(), "d");
  EXPECT_EQ(formatter.getPrefix(), "p ");
  EXPECT_EQ(formatter.getSuffix(), " s");
  EXPECT_EQ(saved(formatter), text);
  EXPECT_FALSE(formatter.load(nullptr));
  EXPECT_FALSE(formatter.save(nullptr));
  EXPECT_EQ(formatter.getDescription(), "d");
}

TEST_F(TextFilterTest, SettingsAndTheirLabels) {
  TextFilter const filter;
  EXPECT_EQ(filter.name(), "moxTextFilter");
  EXPECT_EQ(labelsOf(filter), (Labels{{"name", "Nome"},
                                      {"prefix", "Prefixo"},
                                      {"suffix", "Sufixo"},
                                      {"upper", "Tornar maiúsculas"},
                                      {"asciiOnly", "Somente ASCII"},
                                      {"trim", "Remover Espaços iniciais e finais"}}));
  EXPECT_EQ(saved(filter),
            "<r name=\"\" prefix=\"\" suffix=\"\" upper=\"0\" asciiOnly=\"0\" trim=\"0\"/>");
}

TEST_F(TextFilterTest, EmptyTextGetsThePrefixToo) {
  TextFilter filter;
  filter.setPrefix("x");
  EXPECT_EQ(filter.asString(std::string()), "x");
  EXPECT_EQ(ofCell(filter, texts("")), "x");
  EXPECT_EQ(ofCell(filter, texts(null)), "");
  EXPECT_EQ(ofCell(filter, blobs("")), "");
  EXPECT_EQ(ofCell(filter, blobs("b")), "xb");
  EXPECT_EQ(ofCell(filter, doubles(1.0)), "");
}

TEST_F(TextFilterTest, AsciiOnlyStripsAccentsAndWhatThePatternRemoves) {
  TextFilter filter;
  filter.setAsciiOnly(true, kDefaultPattern);
  EXPECT_EQ(filter.asString(std::string("São Paulo-SP")), "Sao PauloSP");
  EXPECT_EQ(filter.asString(std::string("a\tb")), "ab");
  EXPECT_EQ(filter.asString(std::string("ñandu")), "nandu");
}

TEST_F(TextFilterTest, OneByteSignsTakeTheirNeighbourAway) {
  TextFilter filter;
  filter.setAsciiOnly(true, kDefaultPattern);
  EXPECT_EQ(filter.asString(std::string("a@b")), "aA");
  EXPECT_EQ(filter.asString(std::string("R$ 5")), "RS5");
  EXPECT_EQ(filter.asString(std::string("P&D")), "PE");
  EXPECT_EQ(filter.asString(std::string("@")), "A");
}

TEST_F(TextFilterTest, ThreeByteLettersLeaveAByteForThePatternToRemove) {
  std::string text = "Ẽx";
  replaceAccents(text);
  EXPECT_EQ(text, "E\xbcx");
  TextFilter filter;
  filter.setAsciiOnly(true, kDefaultPattern);
  EXPECT_EQ(filter.asString(std::string("Ẽẽ")), "Ee");
}

TEST_F(TextFilterTest, OnlyTheUpperRingIsInTheTable) {
  TextFilter filter;
  filter.setAsciiOnly(true, kDefaultPattern);
  EXPECT_EQ(filter.asString(std::string("ÅåA")), "AA");
}

TEST_F(TextFilterTest, AsciiOnlyComesFromXmlWithTheDefaultPattern) {
  TextFilter filter;
  EXPECT_TRUE(filter.load(xml("<r name=\"n\" asciiOnly=\"1\" upper=\"1\" trim=\"1\"/>")));
  EXPECT_EQ(filter.getDescription(), "n");
  EXPECT_EQ(filter.asString(std::string("  maçã! ")), "MACA");
  EXPECT_EQ(saved(filter),
            "<r name=\"n\" prefix=\"\" suffix=\"\" upper=\"1\" asciiOnly=\"1\" trim=\"1\"/>");
  EXPECT_FALSE(filter.load(nullptr));
  EXPECT_FALSE(filter.save(nullptr));
}

TEST_F(TextFilterTest, UpperLeavesAccentedLettersAlone) {
  TextFilter filter;
  filter.load(xml("<r upper=\"1\"/>"));
  EXPECT_EQ(filter.asString(std::string("maçã")), "MAçã");
}

TEST_F(TextFilterTest, TrimTakesWhiteSpaceFromBothEnds) {
  TextFilter filter;
  filter.setTrim(true);
  EXPECT_EQ(filter.asString(std::string("\t\n a b \v\f\r")), "a b");
  EXPECT_EQ(filter.asString(std::string(" \t ")), "");
}

TEST_F(TextFilterTest, OwnPatternReplacesTheDefault) {
  TextFilter filter;
  filter.setAsciiOnly(true, "[0-9]+");
  EXPECT_EQ(filter.asString(std::string("é1-23x")), "e-x");
  filter.setAsciiOnly(false, "[0-9]+");
  EXPECT_EQ(filter.asString(std::string("é1")), "é1");
}

TEST_F(TextFilterTest, BadPatternThrowsWhenItIsUsed) {
  TextFilter filter;
  filter.setAsciiOnly(false, "[");
  EXPECT_EQ(filter.asString(std::string("a")), "a");
  EXPECT_NO_THROW(filter.setAsciiOnly(true, "["));
  EXPECT_THROW(filter.asString(std::string("a")), std::regex_error);
}

// The steps as they are told: each string searched in the text, two bytes away at each hit.
std::string replacedStepByStep(std::string text) {
  std::vector<std::pair<std::vector<std::string>, std::string>> const rows = {
      {{"Ä", "Á", "Â", "À", "Ã", "Å", "@"}, "A"},
      {{"ä", "á", "â", "à", "ã"}, "a"},
      {{"Ë", "É", "Ê", "È", "Ẽ", "&"}, "E"},
      {{"ë", "é", "ê", "è", "ẽ"}, "e"},
      {{"Ï", "Í", "Î", "Ì", "Ĩ"}, "I"},
      {{"ï", "í", "î", "ì", "ĩ"}, "i"},
      {{"Ö", "Ó", "Ô", "Ò", "Õ"}, "O"},
      {{"ö", "ó", "ô", "ò", "õ"}, "o"},
      {{"Ü", "Ú", "Û", "Ù", "Ũ"}, "U"},
      {{"ü", "ú", "û", "ù", "ũ"}, "u"},
      {{"Ç"}, "C"},
      {{"ç"}, "c"},
      {{"Ñ"}, "N"},
      {{"ñ"}, "n"},
      {{"$"}, "S"},
      {{"º", "°"}, "o"},
      {{"§"}, ""}};
  for (auto const& [found, by] : rows) {
    for (auto const& letter : found) {
      for (std::size_t at = 0; (at = text.find(letter, at)) != std::string::npos; ++at) {
        text.replace(at, 2, by);
      }
    }
  }
  return text;
}

TEST(AsciiText, RandomTextsReadAsTheStepsOneByOne) {
  std::vector<std::string> const parts = {
      "á", "Ã", "ẽ", "Ẽ", "@",    "&",    "$",    "§",        "§", "º", "°", "ç", "Ñ",
      "å", "a", "B", " ", "\xc3", "\xa3", "\xc2", "\xe1\xba", "ü", "Ĩ", "ĩ", "Ũ", "€"};
  std::mt19937_64 random(42);
  for (int i = 0; i < 50'000; ++i) {
    std::string text;
    for (auto left = random() % 24; left > 0; --left) {
      text += parts[random() % parts.size()];
    }
    std::string replaced = text;
    replaceAccents(replaced);
    ASSERT_EQ(replaced, replacedStepByStep(text)) << text;
  }
}

TEST(AsciiText, DefaultPatternRemovesWhatTheRegularExpressionRemoves) {
  std::string every;
  for (int byte = 0; byte < 256; ++byte) {
    every += static_cast<char>(byte);
  }
  std::string kept = every;
  keepLettersDigitsAndBlanks(kept);
  EXPECT_EQ(kept, std::regex_replace(every, std::regex(kDefaultPattern), ""));
}

TEST(AsciiText, LongAccentedTextsTakeOnePassALetter) {
  std::string text;
  for (int i = 0; i < 500'000; ++i) {
    text += "áé";
  }
  replaceAccents(text);
  EXPECT_EQ(text.size(), 1'000'000U);
  EXPECT_EQ(text.substr(999'996), "aeae");
}

TEST_F(DateFormatterTest, SettingsAndTheirLabels) {
  DateFormatter const formatter;
  EXPECT_EQ(formatter.name(), "moxDateFormatter");
  EXPECT_EQ(labelsOf(formatter), (Labels{{"description", "Descrição"},
                                         {"prefix", "Prefixo"},
                                         {"suffix", "Sufixo"},
                                         {"mask", "Máscara"}}));
  EXPECT_EQ(saved(formatter), "<r description=\"\" prefix=\"\" suffix=\"\" mask=\"\"/>");
}

TEST_F(DateFormatterTest, EmptyMaskGivesPrefixAndSuffixForADateAndNothingForNone) {
  DateFormatter formatter;
  formatter.setPrefix("<");
  formatter.setSuffix(">");
  EXPECT_EQ(formatter.asString(datetime_t(5, 3, 2024)), "<>");
  EXPECT_EQ(formatter.asString(date_t(5, 3, 2024)), "<>");
  EXPECT_EQ(formatter.asString(datetime_t()), "");
  EXPECT_EQ(formatter.asString(date_t()), "");
}

TEST_F(DateFormatterTest, MaskThatNeeds100BytesGivesAnEmptyText) {
  DateFormatter formatter;
  formatter.setSuffix(">");
  formatter.setMask(std::string(96, 'x') + "%Y");
  EXPECT_EQ(formatter.asString(datetime_t(5, 3, 2024)), ">");
  formatter.setMask(std::string(95, 'x') + "%Y");
  EXPECT_EQ(formatter.asString(datetime_t(5, 3, 2024)), std::string(95, 'x') + "2024>");
}

TEST_F(DateFormatterTest, TakesDateCells) {
  DateFormatter formatter;
  formatter.setMask("%d/%m/%Y %H:%M");
  EXPECT_EQ(formatter.getMask(), "%d/%m/%Y %H:%M");
  EXPECT_EQ(ofCell(formatter, dates("2024-03-05 10:20:30")), "05/03/2024 10:20");
  EXPECT_EQ(ofCell(formatter, dates(null)), "");
  EXPECT_EQ(ofCell(formatter, texts("2024-03-05")), "");
  EXPECT_EQ(formatter.asString(std::shared_ptr<moxIterator const>()), "");
}

TEST_F(DateFormatterTest, SavesAndLoadsAgain) {
  DateFormatter formatter;
  std::string const text = "<r description=\"d\" prefix=\"p\" suffix=\"s\" mask=\"%d/%m\"/>";
  EXPECT_TRUE(formatter.load(xml(text)));
  EXPECT_EQ(saved(formatter), text);
  EXPECT_EQ(formatter.asString(date_t(5, 3, 2024)), "p05/03s");
  EXPECT_FALSE(formatter.load(nullptr));
  EXPECT_FALSE(formatter.save(nullptr));
}

TEST_F(DateFormatterTest, MaskSetThroughItsPropertyCounts) {
  DateFormatter formatter;
  auto const property = formatter.getProperties()->findProperty("mask", typeid(moxStringProperty));
  std::dynamic_pointer_cast<moxStringProperty const>(property)->set("%Y");
  EXPECT_EQ(formatter.asString(date_t(5, 3, 2024)), "2024");
}

TEST_F(DateFormatterTest, PropertiesThatOutliveTheFormatterReadEmptyAndIgnoreValues) {
  auto formatter = std::make_unique<DateFormatter>();
  formatter->setMask("%Y");
  auto const collection = formatter->getProperties();
  auto const property = std::dynamic_pointer_cast<moxStringProperty const>(
      collection->findProperty("mask", typeid(moxStringProperty)));
  EXPECT_EQ(property->get(), "%Y");
  formatter.reset();
  EXPECT_EQ(property->get(), "");
  property->set("%d");
  EXPECT_EQ(property->get(), "");
  EXPECT_FALSE(property->hasValue());
}

}  // namespace

}  // namespace mox_test
