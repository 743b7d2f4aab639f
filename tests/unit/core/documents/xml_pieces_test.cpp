#include <gtest/gtest.h>

#include <cstdint>
#include <stdexcept>
#include <string>
#include <vector>

#include "core/documents/xml_document.h"
#include "core/storage/blob.h"
#include "mox/core/xml_table.h"
#include "unit/core/error_message.h"

namespace mox::core {
namespace {

using mox::test::errorMessageOf;

using Texts = std::vector<std::string>;

/// "line name attribute=value ... text" of an element, then the same of what stands in it.
void tell(moxXMLTable const& table, std::uint32_t number, Texts& told) {
  auto const* const element = table.elements() + number;
  std::string text = std::to_string(table.lineOf(number)) + " ";
  text += table.nameOf(*element);
  for (auto at = element[0].firstAttribute; at < element[1].firstAttribute; ++at) {
    auto const& attribute = table.attributes()[at];
    text.append(" ").append(table.nameOf(attribute)).append("=").append(table.valueOf(attribute));
  }
  told.push_back(text + " " + std::string(table.textOf(*element)));
  for (auto at = number + 1; number != 0 && at < element->end; at = table.elements()[at].end) {
    tell(table, at, told);
  }
}

Texts piecesOf(std::string const& text) {
  Texts told;
  EXPECT_TRUE(XmlDocument().readPieces(
      Blob(text),
      [&](moxXMLTable const& table, std::uint32_t number) { tell(table, number, told); }));
  return told;
}

bool isRead(std::string const& text) {
  return XmlDocument().readPieces(Blob(text), [](moxXMLTable const&, std::uint32_t) {});
}

TEST(XmlPieces, TheRootComesAloneAndThenEachChildWithWhatStandsInIt) {
  EXPECT_EQ(piecesOf("<?xml version='1.0'?>\n<r a='1' b='&lt;'>\n <c d='&amp;2'>x<e/>\n</c>\n"
                     " <!-- between --> <f>&gt;</f>\n</r>\n"),
            Texts({"2 r a=1 b=< ", "3 c d=&2 x", "3 e ", "5 f >"}));
}

TEST(XmlPieces, ARootWithoutChildrenComesAlone) {
  EXPECT_EQ(piecesOf("<r a='1'/>"), Texts({"1 r a=1 "}));
  EXPECT_EQ(piecesOf("<r>text</r>"), Texts({"1 r "}));
}

TEST(XmlPieces, EveryChildIsNumberOneAndCanBeANode) {
  Texts texts;
  XmlDocument().readPieces(Blob("<r><a>1<b/>2</a><c>3</c></r>"),
                           [&](moxXMLTable const& table, std::uint32_t number) {
                             if (number == 0) {
                               return;
                             }
                             EXPECT_EQ(number, 1U);
                             texts.push_back(table.nodeOf(number)->readText());
                           });
  EXPECT_EQ(texts, Texts({"12", "3"}));
}

TEST(XmlPieces, OtherEncodingsAreRead) {
  EXPECT_EQ(piecesOf("\xEF\xBB\xBF<r a='\xC3\xA9'/>"), Texts({"1 r a=\xC3\xA9 "}));
  EXPECT_EQ(piecesOf("<?xml version='1.0' encoding='ISO-8859-1'?><r><c a='\xE9'/></r>"),
            Texts({"1 r ", "1 c a=\xC3\xA9 "}));
}

TEST(XmlPieces, ADocumentWithAProcessingInstructionIsLeftToTheParser) {
  EXPECT_FALSE(isRead("<?style x?><r><c/></r>"));
  EXPECT_FALSE(isRead("<r><c/><?x y?></r>"));
  EXPECT_TRUE(isRead("<?xml version='1.0'?><r><!-- <?x y?> --></r>"));
}

TEST(XmlPieces, DefectsAreToldAsByParse) {
  for (std::string const text :
       {"", "<r>", "<r><c></r>", "<r><c a='1' a='2'/></r>", "<r/><r/>", "<r><c>&x;</c></r>",
        "<r><c/>\x01</r>", "<!DOCTYPE r><r/>", "<r></r>x"}) {
    SCOPED_TRACE(text);
    auto const told = errorMessageOf([&] { isRead(text); });
    EXPECT_NE(told, "");
    EXPECT_EQ(told, errorMessageOf([&] { XmlDocument().parse(Blob(text)); }));
  }
}

TEST(XmlPieces, FailuresOfTheVisitorPassAndEndTheReading) {
  int visits = 0;
  EXPECT_THROW(XmlDocument().readPieces(Blob("<r><a/><b/></r>"),
                                        [&](moxXMLTable const&, std::uint32_t number) {
                                          ++visits;
                                          if (number == 1) {
                                            throw std::runtime_error("enough");
                                          }
                                        }),
               std::runtime_error);
  EXPECT_EQ(visits, 2);
}

TEST(XmlPieces, TheDocumentStaysAsItWas) {
  XmlDocument document;
  document.create("kept");
  document.readPieces(Blob("<r><a/></r>"), [](moxXMLTable const&, std::uint32_t) {});
  EXPECT_EQ(document.root()->elementName(), "kept");
}

}  // namespace
}  // namespace mox::core
