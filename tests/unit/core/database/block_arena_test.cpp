#include "core/database/block_arena.h"

#include <gtest/gtest.h>

#include <string>

namespace mox::core {
namespace {

TEST(BlockArena, KeepsEveryTextUntilItIsCleared) {
  BlockArena arena;
  for (int block = 0; block < 3; ++block) {
    arena.clear();
    std::vector<std::string_view> views;
    for (std::size_t i = 0; i < 3000; ++i) {
      std::string const text(i % 97, static_cast<char>('a' + i % 26));
      views.push_back(arena.keep(text.data(), text.size()));
    }
    for (std::size_t i = 0; i < views.size(); ++i) {
      ASSERT_EQ(views[i], std::string(i % 97, static_cast<char>('a' + i % 26)));
    }
  }
}

TEST(BlockArena, CopiesTextsOfEveryLengthWhole) {
  std::string const letters = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ";
  BlockArena arena;
  for (std::size_t length = 0; length <= letters.size(); ++length) {
    auto const text = arena.keep(letters.data(), length);
    auto const next = arena.keep("#", 1);
    ASSERT_EQ(text, letters.substr(0, length));
    ASSERT_EQ(next, "#");
  }
}

TEST(BlockArena, TakesTextsLargerThanAllItKeeps) {
  BlockArena arena;
  std::string const small = "abc";
  std::string const huge(std::size_t{20} * 1024 * 1024, 'x');
  auto const first = arena.keep(small.data(), small.size());
  EXPECT_EQ(arena.keep(huge.data(), huge.size()), huge);
  EXPECT_EQ(first, "abc");
  arena.clear();
  EXPECT_EQ(arena.keep(small.data(), small.size()), "abc");
}

TEST(BlockArena, AnEmptyTextNeedsNoMemory) {
  BlockArena arena;
  EXPECT_EQ(arena.keep("", 0), "");
  EXPECT_EQ(arena.keep(nullptr, 0), "");
}

}  // namespace
}  // namespace mox::core
