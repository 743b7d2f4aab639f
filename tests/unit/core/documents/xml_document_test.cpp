#include "core/documents/xml_document.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <string_view>

#include "core/storage/blob.h"
#include "unit/core/error_message.h"

namespace mox::core {
namespace {

using mox::test::errorMessageOf;

std::string failureOf(std::string_view text) {
  XmlDocument document;
  return errorMessageOf([&] { document.loadText(text); });
}

/// A text read and written again, without layout and declaration.
std::string rewritten(std::string_view text) {
  XmlDocument document;
  document.loadText(text);
  return document.writeText(0, 0);
}

std::string parsed(std::string const& bytes) {
  XmlDocument document;
  document.parse(Blob(bytes));
  return document.root()->readText();
}

std::string utf16(std::u16string const& text, bool bigEndian) {
  std::string bytes;
  for (char16_t const unit : text) {
    char const high = static_cast<char>(unit >> 8);
    char const low = static_cast<char>(unit & 0xFF);
    bytes += bigEndian ? high : low;
    bytes += bigEndian ? low : high;
  }
  return bytes;
}

std::string nested(int depth, std::string const& inside = "") {
  std::string text;
  for (int i = 0; i < depth; ++i) {
    text += "<a>";
  }
  text += inside;
  for (int i = 0; i < depth; ++i) {
    text += "</a>";
  }
  return text;
}

TEST(XmlDocument, IsNamedAsItIsRegistered) {
  EXPECT_EQ(XmlDocument().name(), "moxXMLDocument");
}

TEST(XmlDocument, IsBornWithAnEmptyRoot) {
  EXPECT_EQ(XmlDocument().writeText(0, 0), "<root/>");
  EXPECT_EQ(XmlDocument().root()->elementName(), "root");
}

TEST(XmlDocument, CreateStartsAnewAndLeavesOldNodesAlone) {
  XmlDocument document;
  document.loadText("<old><x/></old>");
  auto const old = document.root();
  document.create("moxZYNCollection");
  EXPECT_EQ(document.writeText(0, 0), "<moxZYNCollection/>");
  EXPECT_EQ(old->elementName(), "old");
  EXPECT_NE(old->childByIndex(0), nullptr);
}

TEST(XmlDocument, CreateRefusesWhatIsNoName) {
  EXPECT_EQ(errorMessageOf([] { XmlDocument().create("a b"); }),
            "XML document: \"a b\" cannot be the name of an element or attribute.");
}

TEST(XmlDocument, RootIsTheSameObjectEachTime) {
  XmlDocument const document;
  EXPECT_EQ(document.root(), document.root());
}

TEST(XmlDocument, AFailedReadLeavesTheDocument) {
  XmlDocument document;
  document.loadText("<kept a='1'/>");
  EXPECT_NE(errorMessageOf([&] { document.loadText("<broken>"); }), "");
  EXPECT_NE(errorMessageOf([&] { document.parse(Blob(std::string("<!DOCTYPE a><a/>"))); }), "");
  EXPECT_EQ(document.writeText(0, 0), "<kept a=\"1\"/>");
}

TEST(XmlDocumentWrite, LayoutPutsElementsOnLines) {
  XmlDocument document;
  document.loadText("<a x='1'><b><c/></b><d>text</d></a>");
  EXPECT_EQ(document.writeText(1, 0),
            "<a x=\"1\">\n"
            "  <b>\n"
            "    <c/>\n"
            "  </b>\n"
            "  <d>text</d>\n"
            "</a>\n");
}

TEST(XmlDocumentWrite, WithoutLayoutNothingIsAdded) {
  EXPECT_EQ(rewritten("<a x='1'>\n  <b>\n <c/></b>\n<d>text</d> </a>"),
            "<a x=\"1\"><b><c/></b><d>text</d></a>");
}

TEST(XmlDocumentWrite, DeclarationIsPutInFront) {
  XmlDocument const document;
  EXPECT_EQ(document.writeText(0, 1), "<?xml version=\"1.0\" encoding=\"UTF-8\"?><root/>");
  EXPECT_EQ(document.writeText(1, 1), "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<root/>\n");
}

TEST(XmlDocumentWrite, LayoutNeverTouchesATextOrWhatStandsBesideIt) {
  XmlDocument document;
  document.loadText("<a><b>one <c><d/></c> two</b></a>");
  EXPECT_EQ(document.writeText(1, 0), "<a>\n  <b>one <c><d/></c> two</b>\n</a>\n");
}

TEST(XmlDocumentWrite, MarkupInValuesIsWrittenAsReferences) {
  XmlDocument document;
  document.root()->writeAttribute("a", "<&>\"'\t\n\r\x01");
  document.root()->writeText("<&>\"'\t\n\r\x01]]>");
  EXPECT_EQ(document.writeText(0, 0),
            "<root a=\"&lt;&amp;&gt;&quot;'&#9;&#10;&#13;&#1;\">"
            "&lt;&amp;&gt;\"'\t\n&#13;&#1;]]&gt;</root>");
}

TEST(XmlDocumentWrite, WhatWasAddedReadsBackAsTheSame) {
  XmlDocument document;
  document.create("moxZYNCollection");
  document.root()->writeAttribute("parentLibraryName", "ZYNC");
  auto const item = document.root()->addChild("moxSQLDataSource");
  item->writeAttribute("name", "Alunos & Turmas");
  item->addChild("Command")->writeText("select *\nfrom alunos a where a.id<10");
  for (int const indent : {0, 1}) {
    std::string const text = document.writeText(indent, 1);
    XmlDocument again;
    again.loadText(text);
    EXPECT_EQ(again.writeText(indent, 1), text);
    EXPECT_EQ(again.root()->childByIndex(0)->childByIndex(0)->readText(),
              "select *\nfrom alunos a where a.id<10");
  }
}

TEST(XmlDocumentWrite, TextsSideBySideAreOneText) {
  for (std::string_view const source :
       {"<a>y<?p i?>&#10;</a>", "<a>y<!-- c -->&#10;</a>", "<a><![CDATA[y]]>&#10;</a>"}) {
    EXPECT_EQ(rewritten(source), "<a>y\n</a>") << source;
    EXPECT_EQ(rewritten(rewritten(source)), "<a>y\n</a>") << source;
  }
}

TEST(XmlDocumentRead, DropsCommentsAndProcessingInstructions) {
  EXPECT_EQ(rewritten("<?xml version='1.0'?><!-- - < & --><a><?php <x?><!---->t<!--b-->u</a><?z?>"),
            "<a>tu</a>");
}

TEST(XmlDocumentRead, TakesCDataAsText) {
  EXPECT_EQ(rewritten("<a>x<![CDATA[<b>&amp;]]>y</a>"), "<a>x&lt;b&gt;&amp;amp;y</a>");
}

TEST(XmlDocumentRead, ResolvesTheFiveEntitiesAndCharacterReferences) {
  XmlDocument document;
  document.loadText("<a b='&lt;&gt;&amp;&quot;&apos;'>&#65;&#x42;&#xe9;&#x1F600;&#0000067;</a>");
  EXPECT_EQ(document.root()->readAttribute("b"), "<>&\"'");
  EXPECT_EQ(document.root()->readText(),
            "AB\xC3\xA9\xF0\x9F\x98\x80"
            "C");
}

TEST(XmlDocumentRead, TurnsLineEndsIntoLineFeedsAndKeepsThoseWrittenAsReferences) {
  XmlDocument document;
  document.loadText("<a b='1\r\n2\t3&#13;&#10;4'>1\r\n2\r3&#13;4</a>");
  EXPECT_EQ(document.root()->readText(), "1\n2\n3\r4");
  EXPECT_EQ(document.root()->readAttribute("b"), "1 2 3\r\n4");
}

TEST(XmlDocumentRead, PassesAByteOrderMark) {
  EXPECT_EQ(rewritten("\xEF\xBB\xBF<a/>"), "<a/>");
  EXPECT_EQ(parsed("\xEF\xBB\xBF<a>\xC3\xA9</a>"), "\xC3\xA9");
}

TEST(XmlDocumentRead, ATextIsUtf8WhateverItsDeclarationSays) {
  EXPECT_EQ(rewritten("<?xml version='1.0' encoding='ISO-8859-1'?><a>\xC3\xA9</a>"),
            "<a>\xC3\xA9</a>");
}

TEST(XmlDocumentRead, AFileIsReadInItsDeclaredEncoding) {
  EXPECT_EQ(parsed("<?xml version='1.0' encoding='ISO-8859-1'?><a>\xE9\x80</a>"),
            "\xC3\xA9\xC2\x80");
  EXPECT_EQ(parsed("<?xml version=\"1.0\" encoding=\"latin1\"?><a>\xE9</a>"), "\xC3\xA9");
  EXPECT_EQ(parsed("<?xml version='1.0' encoding='Windows-1252'?><a>\x80\xE9\x9F\x81</a>"),
            "\xE2\x82\xAC\xC3\xA9\xC5\xB8\xC2\x81");
  EXPECT_EQ(parsed("<?xml version='1.0' encoding='UTF-8'?><a>\xC3\xA9</a>"), "\xC3\xA9");
  EXPECT_EQ(parsed("<?xml version='1.0' encoding='us-ascii'?><a>e</a>"), "e");
  EXPECT_EQ(parsed("<?xml version='1.0' standalone='yes'?><a>\xC3\xA9</a>"), "\xC3\xA9");
}

TEST(XmlDocumentRead, AFileMayBeUtf16) {
  std::u16string const text = u"<?xml version='1.0' encoding='UTF-16'?><a>\u00E9\U0001F600</a>";
  std::string const expected = "\xC3\xA9\xF0\x9F\x98\x80";
  EXPECT_EQ(parsed("\xFF\xFE" + utf16(text, false)), expected);
  EXPECT_EQ(parsed("\xFE\xFF" + utf16(text, true)), expected);
  EXPECT_EQ(parsed(utf16(text, false)), expected);
  EXPECT_EQ(parsed(utf16(text, true)), expected);
}

TEST(XmlDocumentRead, BrokenUtf16IsAnError) {
  XmlDocument document;
  auto const failure = [&](std::string const& bytes) {
    return errorMessageOf([&] { document.parse(Blob(bytes)); });
  };
  EXPECT_EQ(failure("\xFF\xFE" + utf16(u"<a/>", false) + "x"),
            "XML document: it is UTF-16 with an odd number of bytes.");
  std::u16string alone = u"<a>x</a>";
  for (char16_t const surrogate : {u'\xD800', u'\xDC00'}) {
    alone[3] = surrogate;
    EXPECT_EQ(failure("\xFF\xFE" + utf16(alone, false)),
              "XML document, line 1, column 4: the text is not valid in its encoding.");
  }
}

TEST(XmlDocumentRead, AnUnknownEncodingIsAnError) {
  XmlDocument document;
  EXPECT_EQ(errorMessageOf([&] {
              document.parse(Blob(std::string("<?xml version='1.0' encoding='EBCDIC\n'?><a/>")));
            }),
            "XML document: the encoding \"ebcdic?\" is not known; save the document as UTF-8.");
}

TEST(XmlDocumentRead, DoctypeIsRefused) {
  EXPECT_EQ(failureOf("<?xml version='1.0'?>\n<!DOCTYPE a SYSTEM 'file:///etc/passwd'>\n<a/>"),
            "XML document, line 2, column 1: a DOCTYPE is not allowed.");
  EXPECT_EQ(failureOf("<!DOCTYPE a [<!ENTITY x 'y'>]><a>&x;</a>"),
            "XML document, line 1, column 1: a DOCTYPE is not allowed.");
}

TEST(XmlDocumentRead, EntitiesAreRefusedInTextAndAttributes) {
  std::string const expected = "entities are not allowed; a plain \"&\" is written &amp;.";
  EXPECT_EQ(failureOf("<a>x &eacute; y</a>"), "XML document, line 1, column 6: " + expected);
  EXPECT_EQ(failureOf("<a b='&x;'/>"), "XML document, line 1, column 7: " + expected);
  EXPECT_EQ(failureOf("<a>AT&T</a>"), "XML document, line 1, column 6: " + expected);
  EXPECT_EQ(failureOf("<a>&</a>"), "XML document, line 1, column 4: " + expected);
  EXPECT_EQ(failureOf("<a>&amp</a>"), "XML document, line 1, column 4: " + expected);
}

TEST(XmlDocumentRead, AReferenceMustNameACharacter) {
  for (char const* const reference :
       {"&#0;", "&#;", "&#x;", "&#12", "&#12 ;", "&#a;", "&#xG;", "&#XA;", "&#xD800;", "&#xDFFF;",
        "&#x110000;", "&#1114112;", "&#4294967361;", "&#99999999999999999999999;"}) {
    EXPECT_EQ(failureOf("<a>" + std::string(reference) + "</a>"),
              "XML document, line 1, column 4: the character reference names no character.")
        << reference;
  }
  EXPECT_EQ(failureOf("<a>&#x10FFFF;&#xE000;&#1;</a>"), "");
}

TEST(XmlDocumentRead, ErrorsTellLineAndColumnInCharacters) {
  EXPECT_EQ(failureOf("<a>\n  <b c=\"á\xF0\x9F\x98\x80é\" <d/>\n</a>"),
            "XML document, line 2, column 14: an attribute name is expected here.");
}

struct Malformed {
  char const* text;
  char const* message;
};

TEST(XmlDocumentRead, WhatIsNotWellFormedIsRefusedWithItsPlace) {
  for (Malformed const& sample : {
           Malformed{"", "line 1, column 1: there is no root element"},
           Malformed{" \n ", "line 2, column 2: there is no root element"},
           Malformed{"<!-- x -->", "line 1, column 11: there is no root element"},
           Malformed{"text", "line 1, column 1: there is text outside the root element"},
           Malformed{"<a/>\ntext", "line 2, column 1: there is text outside the root element"},
           Malformed{"<a/>&amp;", "line 1, column 5: there is text outside the root element"},
           Malformed{"<a/><b/>", "line 1, column 5: there is more than one root element"},
           Malformed{"<a>", "line 1, column 1: the element <a> is never closed"},
           Malformed{"<a>\n<b></b>", "line 1, column 1: the element <a> is never closed"},
           Malformed{"<a>\n<b></a>",
                     "line 2, column 4: </a> is found where </b> is expected, for the element "
                     "opened in line 2"},
           Malformed{"</a>", "line 1, column 1: </a> closes no element"},
           Malformed{"<a></a></a>", "line 1, column 8: </a> closes no element"},
           Malformed{"<a", "line 1, column 1: the tag never ends"},
           Malformed{"<a ", "line 1, column 1: the tag never ends"},
           Malformed{"<a></a", "line 1, column 7: \">\" is expected here"},
           Malformed{"<a></a b>", "line 1, column 8: \">\" is expected here"},
           Malformed{"<", "line 1, column 2: an element name is expected behind \"<\""},
           Malformed{"< a/>", "line 1, column 2: an element name is expected behind \"<\""},
           Malformed{"<1/>", "line 1, column 2: an element name is expected behind \"<\""},
           Malformed{"<a></>", "line 1, column 6: an element name is expected behind \"</\""},
           Malformed{"<a/ >", "line 1, column 3: white space, \">\" or \"/>\" is expected here"},
           Malformed{"<a b='1'c='2'/>",
                     "line 1, column 9: white space, \">\" or \"/>\" is expected here"},
           Malformed{"<a 1='x'/>", "line 1, column 4: an attribute name is expected here"},
           Malformed{"<a b/>", "line 1, column 5: \"=\" is expected behind the attribute name"},
           Malformed{"<a b", "line 1, column 5: \"=\" is expected behind the attribute name"},
           Malformed{"<a b=1/>", "line 1, column 6: the attribute's value must stand in quotes"},
           Malformed{"<a b=", "line 1, column 6: the attribute's value must stand in quotes"},
           Malformed{"<a b='1/>", "line 1, column 6: the attribute's value never ends"},
           Malformed{"<a b='<'/>",
                     "line 1, column 7: \"<\" is not allowed in an attribute's value; "
                     "it is written &lt;"},
           Malformed{"<a b='1' b='2'/>", "line 1, column 10: the attribute \"b\" is written twice"},
           Malformed{"<a><!-- x</a>", "line 1, column 4: the comment never ends"},
           Malformed{"<a><![CDATA[x</a>", "line 1, column 4: the CDATA section never ends"},
           Malformed{"<a><?x </a>", "line 1, column 4: the processing instruction never ends"},
           Malformed{"<a><!ELEMENT b></a>", "line 1, column 4: \"<!\" is not expected here"},
           Malformed{"<![CDATA[x]]>", "line 1, column 1: \"<!\" is not expected here"},
           Malformed{"<a>\x01</a>", "line 1, column 4: control characters are not allowed"},
           Malformed{"<a>\xFF</a>", "line 1, column 4: the text is not valid in its encoding"},
       }) {
    EXPECT_EQ(failureOf(sample.text), "XML document, " + std::string(sample.message) + ".")
        << sample.text;
  }
}

TEST(XmlDocumentRead, ANulIsRefused) {
  EXPECT_EQ(failureOf(std::string_view("<a>\0</a>", 8)),
            "XML document, line 1, column 4: control characters are not allowed.");
}

TEST(XmlDocumentRead, ManyAttributesAreCheckedForTwins) {
  std::string text = "<a";
  for (int i = 0; i < 100000; ++i) {
    text += " b" + std::to_string(i) + "='1'";
  }
  EXPECT_EQ(failureOf(text + "/>"), "");
  EXPECT_NE(failureOf(text + " b3='2'/>").find("the attribute \"b3\" is written twice"),
            std::string::npos);
  EXPECT_NE(failureOf(text + " b99999='2'/>").find("the attribute \"b99999\" is written twice"),
            std::string::npos);
}

TEST(XmlDocumentRead, ALongNameIsCutInMessages) {
  std::string const name(100000, 'n');
  EXPECT_EQ(failureOf("<" + name + ">"), "XML document, line 1, column 1: the element <" +
                                             std::string(60, 'n') + "...> is never closed.");
}

TEST(XmlDocumentRead, DepthIsBoundedAt256) {
  EXPECT_EQ(failureOf(nested(256)), "");
  EXPECT_EQ(failureOf(nested(255, "<b/>")), "");
  EXPECT_EQ(failureOf(nested(257)),
            "XML document, line 1, column 769: elements are nested deeper than 256.");
  EXPECT_EQ(failureOf(nested(256, "<b/>")),
            "XML document, line 1, column 769: elements are nested deeper than 256.");
}

TEST(XmlDocumentRead, AMillionLevelsAreRefusedLikeAnyOther) {
  EXPECT_EQ(failureOf(nested(1000000)),
            "XML document, line 1, column 769: elements are nested deeper than 256.");
}

TEST(XmlDocumentRead, ManySiblingsAreNoDepth) {
  std::string text = "<r>";
  for (int i = 0; i < 100000; ++i) {
    text += "<a/>";
  }
  EXPECT_EQ(failureOf(text + "</r>"), "");
}

TEST(XmlDocumentRead, LengthIsBoundedAt64MiB) {
  std::size_t const bound = std::size_t{64} << 20;
  std::string text = "<a>" + std::string(bound - 7, 'x') + "</a>";
  ASSERT_EQ(text.size(), bound);
  EXPECT_EQ(failureOf(text), "");
  text.insert(3, 1, 'x');
  EXPECT_EQ(failureOf(text), "XML document: it is longer than 67108864 bytes.");
  XmlDocument document;
  EXPECT_EQ(errorMessageOf([&] { document.parse(Blob(std::move(text))); }),
            "XML document: it is longer than 67108864 bytes.");
}

TEST(XmlDocumentRead, ElementsAndAttributesAreBounded) {
  std::string text = "<a>";
  text.reserve(std::size_t{34} << 20);
  for (std::size_t i = 0; i < (std::size_t{8} << 20); ++i) {
    text += "<b/>";
  }
  EXPECT_NE(failureOf(text + "</a>").find("there are more than 8388608 elements and attributes"),
            std::string::npos);
}

TEST(XmlDocumentRead, ADocumentCutAtAnyByteIsAnError) {
  std::string const whole =
      "<?xml version=\"1.0\"?><!-- á --><a b=\"1 &amp; 2\"><c>t&#233;xt<![CDATA[<>]]></c><d/></a>";
  ASSERT_EQ(failureOf(whole), "");
  for (std::size_t length = 0; length < whole.size(); ++length) {
    EXPECT_NE(failureOf(whole.substr(0, length)), "") << "cut at " << length;
  }
}

}  // namespace
}  // namespace mox::core
