#include "core/documents/xml_node.h"

#include <gtest/gtest.h>

#include <memory>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include "core/documents/utf8.h"
#include "core/documents/xml_document.h"
#include "unit/core/error_message.h"

namespace mox::core {
namespace {

using mox::test::errorMessageOf;

XmlDocument documentOf(std::string_view text) {
  XmlDocument document;
  document.loadText(text);
  return document;
}

std::shared_ptr<moxXMLNode> rootOf(std::string_view text) {
  return documentOf(text).root();
}

/// Values of the attribute "n" of the children found by raising the index.
std::string walked(moxXMLNode const& node, std::string_view element = {},
                   std::string_view attribute = {}, std::string_view value = {}) {
  std::string found;
  for (int i = 0; auto const child = node.childByIndex(i, element, attribute, value); ++i) {
    found += child->readAttribute("n");
  }
  return found;
}

TEST(XmlNodeChildByIndex, CountsElementsOfTheName) {
  auto const root = rootOf("<r><a n='1'/>text<b n='2'/><a n='3'/><!-- x --><a n='4'/></r>");
  EXPECT_EQ(walked(*root, "a"), "134");
  EXPECT_EQ(walked(*root, "b"), "2");
  EXPECT_EQ(walked(*root, "c"), "");
  EXPECT_EQ(walked(*root, "A"), "");
}

TEST(XmlNodeChildByIndex, AnEmptyNameMatchesEveryElement) {
  EXPECT_EQ(walked(*rootOf("<r>t<a n='1'/>t<b n='2'/><c n='3'/></r>")), "123");
}

TEST(XmlNodeChildByIndex, FiltersByAttribute) {
  auto const root = rootOf("<r><a n='1' k='x'/><b n='2' k='x'/><a n='3' k='y'/><a n='4'/></r>");
  EXPECT_EQ(walked(*root, "a", "k", "x"), "1");
  EXPECT_EQ(walked(*root, "", "k", "x"), "12");
  EXPECT_EQ(walked(*root, "a", "k", "z"), "");
}

TEST(XmlNodeChildByIndex, AnEmptyWantedValueMatchesAnAbsentAttribute) {
  auto const root = rootOf("<r><a n='1' k='x'/><a n='2'/><a n='3' k=''/></r>");
  EXPECT_EQ(walked(*root, "a", "k", ""), "23");
}

TEST(XmlNodeChildByIndex, IsEmptyBeyondTheLastAndForANegativeIndex) {
  auto const root = rootOf("<r><a/></r>");
  EXPECT_EQ(root->childByIndex(1), nullptr);
  EXPECT_EQ(root->childByIndex(1000000), nullptr);
  EXPECT_EQ(root->childByIndex(-1), nullptr);
  EXPECT_NE(root->childByIndex(0), nullptr);
}

TEST(XmlNodeChildByIndex, AnyOrderOfIndexesGivesTheSame) {
  auto const root = rootOf("<r><a n='0'/><b n='x'/><a n='1'/><a n='2'/><a n='3'/></r>");
  std::mt19937 random(5);
  for (int i = 0; i < 200; ++i) {
    int const index = static_cast<int>(random() % 5);
    bool const ofA = random() % 2 == 0;
    auto const child = root->childByIndex(index, ofA ? "a" : "b");
    std::string const found = child ? child->readAttribute("n") : "none";
    EXPECT_EQ(found,
              ofA ? (index < 4 ? std::to_string(index) : "none") : (index == 0 ? "x" : "none"));
  }
}

TEST(XmlNodeChildByIndex, SeesChangesInTheMiddleOfAWalk) {
  XmlDocument document = documentOf("<r><a n='1'/><a n='2'/><a n='3'/></r>");
  auto const root = document.root();
  auto const second = root->childByIndex(1, "a");
  root->childByIndex(0, "a")->setElementName("b");
  EXPECT_EQ(root->childByIndex(1, "a")->readAttribute("n"), "3");
  second->writeAttribute("k", "x");
  EXPECT_EQ(root->childByIndex(0, "a", "k", "x")->readAttribute("n"), "2");
  root->addChild("a")->writeAttribute("n", "4");
  EXPECT_EQ(walked(*root, "a"), "234");
  root->clear();
  EXPECT_EQ(root->childByIndex(1, "a"), nullptr);
  EXPECT_EQ(root->childByIndex(0, "a"), nullptr);
}

TEST(XmlNodeChildByIndex, SeesWhatAnotherHandleAddedAndClearedAway) {
  auto const document = documentOf("<r><p n='1'/></r>");
  auto const one = document.root()->childByIndex(0);
  auto const other = document.root()->childByIndex(0);
  EXPECT_EQ(one->childByIndex(0), nullptr);
  other->addChild("a")->writeAttribute("n", "1");
  EXPECT_EQ(walked(*one), "1");
  other->addChild("b");
  EXPECT_NE(one->childByIndex(0, "b"), nullptr) << "also when nothing else changed";
  EXPECT_NE(one->childByIndex(1, ""), nullptr);
  other->clear();
  EXPECT_EQ(one->childByIndex(0), nullptr);
}

TEST(XmlNodeChildByIndex, AskingAgainForThePlaceOfAWalkGivesTheSame) {
  auto const root = rootOf("<r><a n='1'/><b n='2'/><a n='3'/><a n='4'/></r>");
  for (int i = 0; i < 3; ++i) {
    EXPECT_EQ(root->childByIndex(2, "a")->readAttribute("n"), "4");
    EXPECT_EQ(root->childByIndex(1, "a")->readAttribute("n"), "3");
    EXPECT_EQ(root->childByIndex(0, "a")->readAttribute("n"), "1");
  }
}

TEST(XmlNodeChildByIndex, AWalkOverAHundredThousandChildrenIsOneWalk) {
  // Were each index counted from the start, this would be five billion steps.
  XmlDocument document;
  for (int i = 0; i < 100000; ++i) {
    document.root()->addChild("a")->writeAttribute("n", std::to_string(i));
  }
  document.root()->addChild("last");
  int count = 0;
  while (auto const child = document.root()->childByIndex(count, "a")) {
    ASSERT_NE(document.root()->childByIndex(0), nullptr);
    ++count;
  }
  EXPECT_EQ(count, 100000);
}

TEST(XmlNodeAttributes, AnAbsentOneReadsAsEmpty) {
  auto const root = rootOf("<r a=''/>");
  EXPECT_EQ(root->readAttribute("a"), "");
  EXPECT_EQ(root->readAttribute("b"), "");
  EXPECT_EQ(root->readAttribute(""), "");
}

TEST(XmlNodeAttributes, WritingReplacesInPlaceAndAppendsNewOnes) {
  XmlDocument document = documentOf("<r a='1' b='2'/>");
  document.root()->writeAttribute("a", "x");
  document.root()->writeAttribute("c", "3");
  EXPECT_EQ(document.writeText(0, 0), "<r a=\"x\" b=\"2\" c=\"3\"/>");
}

TEST(XmlNodeAttributes, AreReadInAnyOrder) {
  auto const node = rootOf("<r a=\"1\" ab=\"2\" b=\"3\" c=\"4\"/>");
  std::string read;
  for (auto const* const name : {"c", "a", "b", "x", "ab", "c", "c", "x", "a"}) {
    read += node->readAttribute(name) + ",";
  }
  EXPECT_EQ(read, "4,1,3,,2,4,4,,1,");
  EXPECT_EQ(node->readAttribute(std::string_view("a\0b", 3)), "");
}

TEST(XmlNodeAttributes, AreReadAsTheyAreAfterAnotherHandleChangedThem) {
  auto const document = documentOf("<r a=\"1\" b=\"2\"/>");
  auto const node = document.root();
  EXPECT_EQ(node->readAttribute("a"), "1");
  document.root()->clear();
  EXPECT_EQ(node->readAttribute("b"), "");
  document.root()->writeAttribute("b", "3");
  document.root()->writeAttribute("a", "4");
  EXPECT_EQ(node->readAttribute("a"), "4");
  EXPECT_EQ(node->readAttribute("b"), "3");
}

TEST(XmlNodeAttributes, ManyAreReadAsFew) {
  constexpr int kMany = 40;
  auto const node = rootOf("<r/>");
  for (int i = 0; i < kMany; ++i) {
    node->writeAttribute("k" + std::to_string(i), std::to_string(i));
  }
  for (int i = kMany - 1; i >= 0; --i) {
    EXPECT_EQ(node->readAttribute("k" + std::to_string(i)), std::to_string(i));
  }
  EXPECT_EQ(node->readAttribute("k"), "");
  EXPECT_EQ(node->readAttribute("k40"), "");
}

TEST(XmlNodeText, JoinsThePiecesThatStandDirectlyInTheElement) {
  EXPECT_EQ(rootOf("<r>one<b>inner</b> two<!-- x --><![CDATA[ three]]></r>")->readText(),
            "one two three");
  EXPECT_EQ(rootOf("<r/>")->readText(), "");
}

TEST(XmlNodeText, LayoutBetweenTagsIsNoText) {
  EXPECT_EQ(rootOf("<r>\n  <a/>\n  <b/>\n</r>")->readText(), "");
  EXPECT_EQ(rootOf("<r>  </r>")->readText(), "  ");
}

TEST(XmlNodeText, WritingReplacesAllPiecesAndKeepsChildren) {
  XmlDocument document = documentOf("<r>one<b/>two<c/><![CDATA[three]]></r>");
  auto const child = document.root()->childByIndex(0);
  document.root()->writeText("new");
  EXPECT_EQ(document.writeText(0, 0), "<r>new<b/><c/></r>");
  EXPECT_EQ(child->elementName(), "b");
  document.root()->writeText("");
  EXPECT_EQ(document.writeText(0, 0), "<r><b/><c/></r>");
}

TEST(XmlNodeText, WhiteSpaceAloneSurvivesBesideChildren) {
  for (std::string const text : {" ", "\n", "\r", "\t\n ", "\r\n"}) {
    XmlDocument document;
    document.root()->writeText(text);
    EXPECT_EQ(rootOf(document.writeText(1, 1))->readText(), text);
    document.root()->addChild("a");
    EXPECT_EQ(rootOf(document.writeText(1, 1))->readText(), text);
  }
}

TEST(XmlNode, NamesAreReadAndWritten) {
  XmlDocument document = documentOf("<r><Célula/></r>");
  EXPECT_EQ(document.root()->childByIndex(0)->elementName(), "Célula");
  document.root()->setElementName("moxModeloEDI");
  EXPECT_EQ(document.writeText(0, 0), "<moxModeloEDI><Célula/></moxModeloEDI>");
}

TEST(XmlNode, ANameThatWouldBreakTheDocumentIsRefused) {
  XmlDocument document;
  auto const root = document.root();
  for (std::string const& name : std::vector<std::string>{
           "", "a b", "1a", "-a", "a/", "a>", "a<b/><c", "a=\"1\"", "a\n", "\xFF", "a&b"}) {
    std::string const message = errorMessageOf([&] { root->addChild(name); });
    EXPECT_NE(message.find("cannot be the name of an element or attribute."), std::string::npos)
        << name;
    EXPECT_EQ(errorMessageOf([&] { root->setElementName(name); }), message);
    EXPECT_EQ(errorMessageOf([&] { root->writeAttribute(name, "x"); }), message);
  }
  EXPECT_EQ(document.writeText(0, 0), "<root/>");
}

TEST(XmlNode, ATextThatNoDocumentCanHoldIsRefused) {
  XmlDocument document;
  auto const root = document.root();
  std::string const nul("a\0b", 3);
  EXPECT_EQ(errorMessageOf([&] { root->writeText(nul); }),
            "XML document: a text with a NUL in it cannot be written.");
  EXPECT_EQ(errorMessageOf([&] { root->writeAttribute("a", nul); }),
            "XML document: a text with a NUL in it cannot be written.");
  EXPECT_EQ(errorMessageOf([&] { root->writeText("\xE9"); }),
            "XML document: a text that is not UTF-8 cannot be written.");
  EXPECT_EQ(document.writeText(0, 0), "<root/>");
}

TEST(XmlNode, NestingIsBoundedWhereADocumentIsBuilt) {
  XmlDocument document;
  auto node = document.root();
  for (int depth = 2; depth <= 256; ++depth) {
    node = node->addChild("a");
  }
  EXPECT_EQ(errorMessageOf([&] { node->addChild("a"); }),
            "XML document: elements cannot be nested deeper than 256.");
  XmlDocument again;
  again.loadText(document.writeText(1, 1));
  EXPECT_EQ(again.writeText(0, 0), document.writeText(0, 0));
}

TEST(XmlNodeClear, TakesAttributesTextAndChildrenAndKeepsTheName) {
  XmlDocument document = documentOf("<r><a x='1'>t<b/><c/>u</a><d/></r>");
  document.root()->childByIndex(0)->clear();
  EXPECT_EQ(document.writeText(0, 0), "<r><a/><d/></r>");
}

TEST(XmlNodeClear, NodesThatWereHeldStayGood) {
  XmlDocument document = documentOf("<r><a n='1'><b>inner</b></a></r>");
  auto const child = document.root()->childByIndex(0);
  auto const inner = child->childByIndex(0);
  document.root()->clear();
  document.root()->clear();
  EXPECT_EQ(child->readAttribute("n"), "1");
  EXPECT_EQ(inner->readText(), "inner");
  inner->writeText("changed");
  child->addChild("c");
  child->clear();
  inner->clear();
  EXPECT_EQ(inner->elementName(), "b");
  EXPECT_EQ(document.writeText(0, 0), "<r/>");
}

TEST(XmlNode, OutlivesItsDocument) {
  std::shared_ptr<moxXMLNode> child;
  {
    XmlDocument document = documentOf("<r><a n='1'><b/></a></r>");
    child = document.root()->childByIndex(0);
  }
  EXPECT_EQ(child->readAttribute("n"), "1");
  child->addChild("c");
  EXPECT_NE(child->childByIndex(1), nullptr);
}

TEST(XmlNodeLine, TellsWhereTheElementStands) {
  XmlDocument document =
      documentOf("<?xml version='1.0'?>\r\n<r>\n  <a x='1\n2'/><b/>\n\n<c/></r>");
  auto const root = document.root();
  EXPECT_EQ(root->line(), 2);
  EXPECT_EQ(root->childByIndex(0, "a")->line(), 3);
  EXPECT_EQ(root->childByIndex(0, "b")->line(), 4);
  EXPECT_EQ(root->childByIndex(0, "c")->line(), 6);
}

TEST(XmlNodeLine, IsZeroForWhatWasNotRead) {
  XmlDocument document = documentOf("<r><a/></r>");
  EXPECT_EQ(document.root()->addChild("new")->line(), 0);
  document.root()->childByIndex(0)->setElementName("renamed");
  EXPECT_EQ(document.root()->childByIndex(0)->line(), 0);
  EXPECT_EQ(XmlDocument().root()->line(), 0);
}

TEST(XmlNodeText, EveryCharacterComesBack) {
  for (char32_t from = 1; from < 0x110000; from += 0x1000) {
    std::string text;
    for (char32_t c = from; c < from + 0x1000; ++c) {
      if (c < 0x110000 && (c < 0xD800 || c > 0xDFFF)) {
        appendUtf8(text, c);
      }
    }
    XmlDocument document;
    document.root()->writeText(text);
    document.root()->writeAttribute("a", text);
    XmlDocument again;
    again.loadText(document.writeText(1, 1));
    ASSERT_EQ(again.root()->readText(), text) << "from " << static_cast<unsigned>(from);
    ASSERT_EQ(again.root()->readAttribute("a"), text) << "from " << static_cast<unsigned>(from);
  }
}

/// A random tree, built through the interface.
class RandomTree {
 public:
  explicit RandomTree(unsigned seed) : random_(seed) {}

  void fill(moxXMLNode& node, int depth) {
    for (int i = pick(4); i > 0; --i) {
      node.writeAttribute("k" + std::to_string(pick(5)), text());
    }
    if (pick(2) == 0) {
      node.writeText(text());
    }
    for (int i = depth > 0 ? pick(4) : 0; i > 0; --i) {
      fill(*node.addChild("e" + std::to_string(pick(3))), depth - 1);
    }
  }

 private:
  int pick(int count) { return static_cast<int>(random_() % static_cast<unsigned>(count)); }

  std::string text() {
    constexpr char32_t kCharacters[] = {' ', '\n', '\r', '\t', '<',  '>',  '&',    '"',    '\'',
                                        ']', 'a',  0x01, 0x7F, 0x85, 0xE9, 0x2028, 0xFFFE, 0x1F600};
    std::string result;
    for (int i = pick(8); i > 0; --i) {
      appendUtf8(result, kCharacters[pick(std::size(kCharacters))]);
    }
    return result;
  }

  std::mt19937 random_;
};

void expectEqual(moxXMLNode const& left, moxXMLNode const& right) {
  ASSERT_EQ(left.elementName(), right.elementName());
  ASSERT_EQ(left.readText(), right.readText());
  for (int i = 0; i < 5; ++i) {
    std::string const key = "k" + std::to_string(i);
    ASSERT_EQ(left.readAttribute(key), right.readAttribute(key));
  }
  for (int i = 0;; ++i) {
    auto const leftChild = left.childByIndex(i);
    auto const rightChild = right.childByIndex(i);
    ASSERT_EQ(leftChild == nullptr, rightChild == nullptr);
    if (leftChild == nullptr) {
      return;
    }
    expectEqual(*leftChild, *rightChild);
  }
}

TEST(XmlNode, RandomDocumentsReadBackEqual) {
  for (unsigned seed = 1; seed <= 300; ++seed) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    XmlDocument document;
    RandomTree(seed).fill(*document.root(), 4);
    for (int const indent : {0, 1}) {
      XmlDocument again;
      again.loadText(document.writeText(indent, 1));
      expectEqual(*document.root(), *again.root());
      ASSERT_EQ(again.writeText(indent, 1), document.writeText(indent, 1));
    }
    if (testing::Test::HasFailure()) {
      return;
    }
  }
}

}  // namespace
}  // namespace mox::core
