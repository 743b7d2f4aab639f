#include "zyn/matrix/text_arena.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <utility>
#include <vector>

TEST(TextArena, BytesStayWhereTheyWereWrittenWhileItGrows) {
  TextArena arena;
  std::vector<char const*> places;
  for (int i = 0; i < 20000; ++i) {
    places.push_back(arena.store("text number " + std::to_string(i)));
  }

  for (int i = 0; i < 20000; ++i) {
    std::string const expected = "text number " + std::to_string(i);
    ASSERT_EQ(std::string_view(places[i], expected.size()), expected);
  }
}

TEST(TextArena, CopiesTextsOfEveryLengthWhole) {
  TextArena arena;
  std::string const letters = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ";

  for (std::size_t length = 0; length <= letters.size(); ++length) {
    char const* const place = arena.store(letters.substr(0, length));
    char const* const next = arena.store("#");

    ASSERT_EQ(std::string_view(place, length), letters.substr(0, length));
    ASSERT_EQ(*next, '#');
  }
}

TEST(TextArena, TakesTextsLargerThanAnyChunk) {
  TextArena arena;
  std::string const large(5 << 20, 'x');

  char const* const place = arena.store(large);
  char const* const next = arena.store("next");

  EXPECT_EQ(std::string_view(place, large.size()), large);
  EXPECT_EQ(std::string_view(next, 4), "next");
}

TEST(TextArena, WastesLittle) {
  TextArena arena;
  std::size_t stored = 0;
  for (int i = 0; i < 200000; ++i) {
    arena.store(std::string(30, 'x'));
    stored += 30;
  }

  EXPECT_LT(arena.capacity(), stored + (2 << 20));
}

TEST(TextArena, SharedBytesOutliveTheirFirstOwner) {
  std::optional<TextArena> first(std::in_place);
  char const* const place = first->store("a text of some length");
  TextArena second;

  second.share(*first);
  first.reset();

  EXPECT_EQ(std::string_view(place, 21), "a text of some length");
}

TEST(TextArena, ClearLetsGoButNotOfWhatAnotherShares) {
  TextArena first;
  char const* const place = first.store("a text of some length");
  TextArena second;
  second.share(first);

  first.clear();
  first.store(std::string(1000, '#'));

  EXPECT_EQ(std::string_view(place, 21), "a text of some length");
}

TEST(TextArena, SharingWithItselfChangesNothing) {
  TextArena arena;
  char const* const place = arena.store("text");

  arena.share(arena);

  EXPECT_EQ(std::string_view(place, 4), "text");
  EXPECT_EQ(arena.capacity(), 1024U);
}

TEST(TextArena, AMovedOneTakesItsBytesAlongAndLeavesTheOtherEmpty) {
  TextArena first;
  char const* const place = first.store("text");
  TextArena second(std::move(first));

  char const* const other = first.store("next");
  second.store("more");

  EXPECT_EQ(std::string_view(place, 4), "text");
  EXPECT_EQ(std::string_view(other, 4), "next");

  first = std::move(second);
  EXPECT_EQ(std::string_view(place, 4), "text");
  EXPECT_EQ(first.capacity(), 1024U);
}
