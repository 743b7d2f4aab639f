#include "mox/core/xml_table.h"

#include <gtest/gtest.h>

#include <array>
#include <memory>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include "core/documents/xml_document.h"
#include "unit/core/error_message.h"

namespace mox::core {
namespace {

std::shared_ptr<moxXMLTable const> tableOf(XmlDocument const& document) {
  return dynamic_cast<moxXMLTableSource const&>(*document.root()).table();
}

std::string textIn(moxXMLTable const& table, std::uint32_t number) {
  auto const& element = table.elements()[number];
  return element.isMixed != 0 ? table.nodeOf(number)->readText()
                              : std::string(table.textOf(element));
}

void expectSame(moxXMLTable const& table, std::uint32_t number, moxXMLNode const& node) {
  auto const* const element = table.elements() + number;
  EXPECT_EQ(table.nameOf(*element), node.elementName());
  EXPECT_EQ(textIn(table, number), node.readText());
  EXPECT_EQ(table.lineOf(number), node.line());
  for (auto at = element[0].firstAttribute; at < element[1].firstAttribute; ++at) {
    auto const& attribute = table.attributes()[at];
    EXPECT_EQ(table.valueOf(attribute), node.readAttribute(table.nameOf(attribute)));
  }
  auto at = number + 1;
  for (int i = 0; auto const child = node.childByIndex(i); ++i) {
    ASSERT_LT(at, element->end);
    expectSame(table, at, *child);
    at = table.elements()[at].end;
  }
  EXPECT_EQ(at, element->end);
}

/// Reads the text by its table and by its nodes, and compares all that they tell.
void expectTableReadsAsNodes(std::string const& text) {
  SCOPED_TRACE(text);
  XmlDocument byTable;
  byTable.loadText(text);
  auto const table = tableOf(byTable);
  ASSERT_NE(table, nullptr);
  XmlDocument byNodes;
  byNodes.loadText(text);
  expectSame(*table, 0, *byNodes.root());
}

TEST(XmlTable, TellsElementsAttributesAndTextsOfADocument) {
  XmlDocument document;
  document.loadText("<a x=\"1\" y='2'>\n  <b>text</b>\n  <c/>\n</a>");
  auto const table = tableOf(document);
  ASSERT_NE(table, nullptr);
  auto const* const elements = table->elements();
  EXPECT_EQ(table->nameOf(elements[0]), "a");
  EXPECT_EQ(elements[0].end, 3U);
  EXPECT_EQ(elements[0].depth, 1U);
  EXPECT_EQ(table->nameOf(elements[1]), "b");
  EXPECT_EQ(table->textOf(elements[1]), "text");
  EXPECT_EQ(elements[2].depth, 2U);
  EXPECT_EQ(table->lineOf(2), 3);
  EXPECT_EQ(table->nameOf(table->attributes()[1]), "y");
  EXPECT_EQ(table->valueOf(table->attributes()[1]), "2");
  EXPECT_EQ(elements[1].firstAttribute, 2U);
}

TEST(XmlTable, ReadsReferencesAndWhiteSpaceAsNodesDo) {
  expectTableReadsAsNodes("<a b=\"&lt;&amp;&gt;&quot;&apos;&#65;&#x4a;&#xE9;&#10;&#x1F600;\"/>");
  expectTableReadsAsNodes("<a b=\"one\ttwo\nthree\r\nfour\rfive&#13;&#10;\"/>");
  expectTableReadsAsNodes("<a>&lt;b&gt; &#9;x\r\ny\rz</a>");
  expectTableReadsAsNodes("<a>   </a>");
  expectTableReadsAsNodes("<a> \r\n </a>");
}

TEST(XmlTable, ReadsTextInPiecesAsNodesDo) {
  for (char const* const text :
       {"<a>x<b/>y</a>", "<a> <b/> </a>", "<a>x<!-- c -->y</a>", "<a> <!-- c --> </a>",
        "<a><!-- c --> </a>", "<a><![CDATA[<&\r\n]]></a>", "<a>x<![CDATA[ y ]]> z</a>",
        "<a> x <b>y</b></a>", "<a><b/>x</a>", "<a><!-- c --><b/> </a>", "<a>x<b/> </a>",
        "<?xml version=\"1.0\"?>\n<!-- c --><a>x</a><!-- d -->\n"}) {
    expectTableReadsAsNodes(text);
  }
}

TEST(XmlTable, ReadsWhateverDocumentAsNodesDo) {
  constexpr std::array<std::string_view, 15> kPieces = {" ",
                                                        "\n",
                                                        "\r\n",
                                                        "text",
                                                        "&lt;",
                                                        "&#10;",
                                                        "<b/>",
                                                        "<b>",
                                                        "</b>",
                                                        "<!-- c -->",
                                                        "<![CDATA[ d ]]>",
                                                        "\xC3\xA9",
                                                        "<b c=\"&amp; \te\"/>",
                                                        "<b c='' d=\"\n\">",
                                                        "\t"};
  std::mt19937 random(20);
  int read = 0;
  for (int i = 0; i < 3000; ++i) {
    std::string text = "<a>";
    int open = 0;
    for (auto left = random() % 9; left > 0; --left) {
      auto const piece = kPieces[random() % kPieces.size()];
      bool const closes = piece == "</b>";
      open += closes ? -1 : (piece.starts_with("<b") && !piece.ends_with("/>") ? 1 : 0);
      text += piece;
    }
    while (open-- > 0) {
      text += "</b>";
    }
    XmlDocument document;
    bool const isRight =
        mox::test::errorMessageOf([&] { document.loadText(text + "</a>"); }).empty();
    if (isRight) {
      ++read;
      expectTableReadsAsNodes(text + "</a>");
    }
  }
  EXPECT_GT(read, 1000);
}

TEST(XmlTable, GivesAnElementAsANodeWithItsLine) {
  XmlDocument document;
  document.loadText("<a>\n<b x=\"&amp;\">\n <c>t</c>\n</b></a>");
  auto const table = tableOf(document);
  auto const node = table->nodeOf(1);
  EXPECT_EQ(node->elementName(), "b");
  EXPECT_EQ(node->line(), 2);
  EXPECT_EQ(node->readAttribute("x"), "&");
  auto const child = node->childByIndex(0);
  EXPECT_EQ(child->line(), 3);
  EXPECT_EQ(child->readText(), "t");
}

TEST(XmlTable, StaysGoodWhenTheDocumentIsAskedForNodesOrDropped) {
  auto document = std::make_unique<XmlDocument>();
  document->loadText("<a><b>t</b></a>");
  auto const table = tableOf(*document);
  auto const root = document->root();
  root->childByIndex(0)->writeText("other");
  EXPECT_EQ(tableOf(*document), nullptr);
  document.reset();
  EXPECT_EQ(table->textOf(table->elements()[1]), "t");
  EXPECT_EQ(root->childByIndex(0)->readText(), "other");
}

TEST(XmlTable, IsOnlyOfDocumentsThatWereReadAndNotYetWalked) {
  XmlDocument document;
  EXPECT_EQ(tableOf(document), nullptr);
  document.loadText("<a><b/></a>");
  EXPECT_NE(tableOf(document), nullptr);
  auto const child = document.root()->childByIndex(0);
  EXPECT_EQ(tableOf(document), nullptr);
  EXPECT_EQ(dynamic_cast<moxXMLTableSource const&>(*child).table(), nullptr);
}

TEST(XmlTable, IsLeftToTheParserWithAProcessingInstruction) {
  XmlDocument document;
  document.loadText("<?xml version=\"1.0\"?><?style x?><a/>");
  EXPECT_EQ(tableOf(document), nullptr);
  EXPECT_EQ(document.root()->elementName(), "a");
  EXPECT_EQ(mox::test::errorMessageOf([&] { document.loadText("<a/>\n<? style?>"); }),
            "XML document: it cannot be read near line 2.");
  EXPECT_EQ(document.root()->elementName(), "a");
}

}  // namespace
}  // namespace mox::core
