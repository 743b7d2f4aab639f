#include "core/storage/blob.h"

#include <gtest/gtest.h>

#include <limits>
#include <random>
#include <stdexcept>
#include <string>

#include "core/storage/adapter_blob.h"

namespace mox::core {
namespace {

std::string contentOf(moxReadBlob const& blob) {
  return std::string(blob.data(), blob.size());
}

TEST(Blob, IsBornEmpty) {
  Blob const blob;
  EXPECT_EQ(blob.size(), 0U);
  char byte = 'x';
  EXPECT_EQ(blob.openRead()->read(&byte, 1), 0U);
  EXPECT_EQ(byte, 'x');
}

TEST(Blob, IsNamedAsItIsRegistered) {
  EXPECT_EQ(Blob().name(), "moxBlob");
  EXPECT_EQ(AdapterBlob().name(), "moxAdapterBlob");
}

TEST(Blob, AssignReplacesTheContent) {
  Blob blob;
  blob.assign("first and long", 14);
  blob.assign("a\0b", 3);
  EXPECT_EQ(contentOf(blob), std::string("a\0b", 3));
  blob.assign(nullptr, 0);
  EXPECT_EQ(blob.size(), 0U);
}

TEST(Blob, ReserveKeepsSizeAndContent) {
  Blob blob;
  blob.assign("abc", 3);
  blob.reserve(1000);
  EXPECT_EQ(contentOf(blob), "abc");
}

TEST(Blob, ResizeCutsAndFillsWithZeros) {
  Blob blob;
  blob.assign("abcdef", 6);
  blob.resize(2);
  blob.resize(4);
  EXPECT_EQ(contentOf(blob), std::string("ab\0\0", 4));
}

TEST(Blob, BytesCanBeChangedInPlace) {
  Blob blob;
  blob.assign("abc", 3);
  blob.data()[1] = 'X';
  EXPECT_EQ(contentOf(blob), "aXc");
}

TEST(BlobCursor, WritesOverAndLetsTheBlobGrow) {
  Blob blob;
  blob.assign("abcdef", 6);
  auto const cursor = blob.open();
  cursor->write("12", 2);
  EXPECT_EQ(contentOf(blob), "12cdef");
  EXPECT_EQ(cursor->position(), 2U);
  cursor->write("345678", 6);
  EXPECT_EQ(contentOf(blob), "12345678");
  EXPECT_EQ(cursor->position(), 8U);
}

TEST(BlobCursor, ReadsWhereItStands) {
  Blob blob;
  blob.assign("abcdef", 6);
  auto const cursor = blob.open();
  cursor->write("X", 1);
  char bytes[10] = {};
  EXPECT_EQ(cursor->read(bytes, 3), 3U);
  EXPECT_EQ(std::string(bytes), "bcd");
  EXPECT_EQ(cursor->read(bytes, sizeof(bytes)), 2U);
  EXPECT_EQ(cursor->read(bytes, sizeof(bytes)), 0U);
  EXPECT_EQ(cursor->position(), 6U);
}

TEST(BlobCursor, WritesBytesOfItsOwnBlob) {
  Blob blob;
  blob.assign("abcdefghijklmnopqrstuvwxyz", 26);
  auto const cursor = blob.open();
  char skipped[20];
  cursor->read(skipped, sizeof(skipped));
  cursor->write(blob.data(), 26);
  EXPECT_EQ(contentOf(blob), "abcdefghijklmnopqrstabcdefghijklmnopqrstuvwxyz");
}

TEST(BlobCursor, StaysInBoundsWhenTheBlobIsCut) {
  Blob blob;
  blob.assign("abcdef", 6);
  auto const reader = blob.openRead();
  auto const writer = blob.open();
  char bytes[4];
  reader->read(bytes, 4);
  writer->read(bytes, 4);
  blob.resize(1);
  EXPECT_EQ(reader->read(bytes, 4), 0U);
  EXPECT_EQ(writer->read(bytes, 4), 0U);
  writer->write("Z", 1);
  EXPECT_EQ(contentOf(blob), std::string("a\0\0\0Z", 5));
}

TEST(BlobCursor, ReadsNothingForAHugeCountBeyondTheEnd) {
  Blob blob;
  blob.assign("abc", 3);
  auto const cursor = blob.openRead();
  char bytes[3];
  EXPECT_EQ(cursor->read(bytes, 3), 3U);
  EXPECT_EQ(cursor->read(bytes, std::numeric_limits<std::size_t>::max()), 0U);
}

TEST(BlobCursor, EqualsAPlainStringUnderRandomWrites) {
  constexpr unsigned kSeed = 20240601;
  SCOPED_TRACE("seed " + std::to_string(kSeed));
  std::mt19937 random(kSeed);
  for (int round = 0; round < 200; ++round) {
    Blob blob;
    std::string expected;
    auto const cursor = blob.open();
    for (int step = 0; step < 50; ++step) {
      std::string const piece(random() % 40, static_cast<char>('a' + random() % 26));
      cursor->write(piece.data(), piece.size());
      expected += piece;
    }
    ASSERT_EQ(contentOf(blob), expected);
  }
}

TEST(AdapterBlob, IsEmptyUntilItWraps) {
  AdapterBlob const blob;
  EXPECT_EQ(blob.size(), 0U);
  char byte = 'x';
  EXPECT_EQ(blob.openRead()->read(&byte, 1), 0U);
}

TEST(AdapterBlob, ShowsTheVeryBytes) {
  std::string bytes = "abc";
  AdapterBlob blob;
  blob.wrap(bytes.data(), bytes.size(), 0);
  EXPECT_EQ(blob.data(), bytes.data());
  bytes[0] = 'X';
  EXPECT_EQ(contentOf(blob), "Xbc");
}

TEST(AdapterBlob, CanBePointedElsewhere) {
  AdapterBlob blob;
  blob.wrap("abc", 3, 0);
  blob.wrap(nullptr, 0, 0);
  EXPECT_EQ(blob.size(), 0U);
}

TEST(AdapterBlob, RefusesASizeWithoutBytesAndUnknownFlags) {
  AdapterBlob blob;
  EXPECT_THROW(blob.wrap(nullptr, 1, 0), std::logic_error);
  EXPECT_THROW(blob.wrap("a", 1, 1), std::logic_error);
}

}  // namespace
}  // namespace mox::core
