#include "cli/definitions/collection_text.h"

#include <gtest/gtest.h>

namespace mox::cli {
namespace {

TEST(ContentOfRoot, IsWhatStandsBetweenItsTags) {
  EXPECT_EQ(contentOfRoot("<a> x<b/>\n</a>"), " x<b/>\n");
  EXPECT_EQ(
      contentOfRoot("<?xml version=\"1.0\"?>\n<!-- <a> -->\n<a c=\"1\">t</a >\n<!-- </a> -->"),
      "t");
}

TEST(ContentOfRoot, IsEmptyForAnElementThatIsClosedInItsOwnTag) {
  EXPECT_EQ(contentOfRoot("<a/>"), "");
  EXPECT_EQ(contentOfRoot("<a b='>' />"), "");
  EXPECT_EQ(contentOfRoot("<a></a>"), "");
}

TEST(ContentOfRoot, TakesNoTagFromTextThatIsNone) {
  for (std::string const content : {
           "<!-- </a> -->",
           "<!--->-->",
           "<![CDATA[</a>]]>",
           "<![CDATA[</a>]]]]><b/>",
           "<?p </a> ?>",
           "<b c=\"</a>\" d='/>'>x</b>",
           "<a><a/></a>",
           "a > b",
       }) {
    EXPECT_EQ(contentOfRoot("<a>" + content + "</a>"), content);
  }
}

TEST(MergedCollection, HoldsTheContentsInOrderAsTheyAreWritten) {
  EXPECT_EQ(mergedCollection("escola",
                             {"<r>\n\n  <!-- um -->\n  <x/>\n</r>", "<r/>", "<r> <y>\n </y></r>"}),
            "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
            "<moxZYNCollection parentLibraryName=\"escola\">\n"
            "  <!-- um -->\n"
            "  <x/>\n"
            "<y>\n </y>\n"
            "</moxZYNCollection>\n");
}

TEST(MergedCollection, WritesTheLibraryAsAnAttributeCanHoldIt) {
  auto const text = mergedCollection("a\"<&>\tb", {});
  EXPECT_NE(text.find("parentLibraryName=\"a&#34;&#60;&#38;&#62;&#9;b\""), std::string::npos);
}

}  // namespace
}  // namespace mox::cli
