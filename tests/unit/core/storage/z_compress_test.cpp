#include "core/storage/z_compress.h"

#include <gtest/gtest.h>
#include <zlib.h>

#include <random>
#include <string>

#include "core/storage/adapter_blob.h"
#include "core/storage/blob.h"
#include "unit/core/error_message.h"

namespace mox::core {
namespace {

using mox::test::errorMessageOf;

constexpr std::size_t kMiB = std::size_t{1} << 20;

std::string contentOf(moxReadBlob const& blob) {
  return std::string(blob.data(), blob.size());
}

std::string compressed(std::string const& plain) {
  return contentOf(*ZCompress().compress(Blob(plain)));
}

std::string decompressed(std::string const& bytes, ZCompress const& compress = ZCompress()) {
  return contentOf(*compress.decompress(Blob(bytes)));
}

std::string failureOf(std::string const& bytes, ZCompress const& compress = ZCompress()) {
  return errorMessageOf([&] { decompressed(bytes, compress); });
}

std::string randomBytes(std::mt19937& random, std::size_t count, unsigned kinds) {
  std::string bytes(count, '\0');
  for (char& byte : bytes) {
    byte = static_cast<char>(random() % kinds);
  }
  return bytes;
}

TEST(ZCompress, IsNamedAsItIsRegistered) {
  EXPECT_EQ(ZCompress().name(), "moxZCompress");
}

TEST(ZCompress, GivesBackWhatWentIn) {
  constexpr unsigned kSeed = 7;
  std::mt19937 random(kSeed);
  for (std::size_t const size : {0U, 1U, 2U, 100U, 65535U, 65536U, 65537U, 300000U}) {
    for (unsigned const kinds : {1U, 3U, 256U}) {
      std::string const plain = randomBytes(random, size, kinds);
      EXPECT_EQ(decompressed(compressed(plain)), plain) << size << " bytes, " << kinds << " kinds";
    }
  }
}

TEST(ZCompress, WritesTheZlibFormat) {
  std::string const plain = "Matrícula; Aluno; Turma";
  std::string const bytes = compressed(plain);
  std::string read(100, '\0');
  uLongf length = read.size();
  ASSERT_EQ(uncompress(reinterpret_cast<Bytef*>(read.data()), &length,
                       reinterpret_cast<Bytef const*>(bytes.data()), bytes.size()),
            Z_OK);
  EXPECT_EQ(read.substr(0, length), plain);
}

TEST(ZCompress, ReadsWhatZlibWrote) {
  std::string const plain(1000, 'x');
  std::string bytes(compressBound(plain.size()), '\0');
  uLongf length = bytes.size();
  ASSERT_EQ(compress2(reinterpret_cast<Bytef*>(bytes.data()), &length,
                      reinterpret_cast<Bytef const*>(plain.data()), plain.size(), 9),
            Z_OK);
  EXPECT_EQ(decompressed(bytes.substr(0, length)), plain);
}

TEST(ZCompress, TakesACursorFromItsPositionOn) {
  Blob blob(std::string("head") + compressed("payload"));
  auto const cursor = blob.openRead();
  char head[4];
  cursor->read(head, sizeof(head));
  EXPECT_EQ(contentOf(*ZCompress().decompress(*cursor)), "payload");
  EXPECT_EQ(cursor->position(), blob.size());

  auto const plain = blob.openRead();
  plain->read(head, sizeof(head));
  std::string const again = contentOf(*ZCompress().compress(*plain));
  EXPECT_EQ(decompressed(again), compressed("payload"));
}

TEST(ZCompress, TakesAnAdapterBlob) {
  std::string const plain = "text of somebody else";
  AdapterBlob blob;
  blob.wrap(plain.data(), plain.size(), 0);
  EXPECT_EQ(decompressed(contentOf(*ZCompress().compress(blob))), plain);
}

TEST(ZCompress, DataThatGrowsUnevenlyComesBackWhole) {
  std::mt19937 random(13);
  std::string const noise = randomBytes(random, 3 * kMiB, 256);
  std::string const text = randomBytes(random, 3 * kMiB, 2);
  for (auto const& plain : {noise + text, text + noise, text + noise + text}) {
    EXPECT_TRUE(decompressed(compressed(plain)) == plain);
  }
}

TEST(ZCompress, EmptyDataIsAnError) {
  EXPECT_EQ(failureOf(""), "The compressed data is empty.");
}

TEST(ZCompress, DataCutAtAnyByteIsAnError) {
  std::mt19937 random(11);
  std::string const whole = compressed(randomBytes(random, 3000, 5));
  for (std::size_t length = 1; length < whole.size(); ++length) {
    EXPECT_EQ(failureOf(whole.substr(0, length)), "The compressed data ends too early.")
        << "cut at " << length;
  }
}

TEST(ZCompress, BytesBehindTheEndAreAnError) {
  EXPECT_EQ(failureOf(compressed("abc") + "x"),
            "The compressed data has further bytes behind its end.");
  std::mt19937 random(12);
  EXPECT_EQ(failureOf(compressed("abc") + randomBytes(random, 200000, 256)),
            "The compressed data has further bytes behind its end.");
}

TEST(ZCompress, DamagedDataIsAnError) {
  EXPECT_EQ(failureOf("this is no compressed data"), "The compressed data is damaged.");
  std::string sum = compressed("some text, with a check sum at its end");
  sum.back() = static_cast<char>(sum.back() ^ 1);
  EXPECT_EQ(failureOf(sum), "The compressed data is damaged.");
}

TEST(ZCompress, EveryFlippedBitIsNoticedOrHarmless) {
  std::string const plain = "Fundamental I; Fundamental II; Ensino Médio; Fundamental I";
  std::string const whole = compressed(plain);
  for (std::size_t bit = 0; bit < whole.size() * 8; ++bit) {
    std::string flipped = whole;
    flipped[bit / 8] = static_cast<char>(flipped[bit / 8] ^ (1 << (bit % 8)));
    try {
      EXPECT_EQ(decompressed(flipped), plain) << "bit " << bit;
    } catch (moxError const& error) {
      EXPECT_NE(error.errorMessage(), "");
    }
  }
}

TEST(ZCompress, AStreamThatAsksForADictionaryIsDamaged) {
  // 0x78 0xBB: the header with the dictionary bit and a right check.
  EXPECT_EQ(failureOf(std::string("\x78\xBB\x00\x00\x00\x01rest", 10)),
            "The compressed data is damaged.");
}

TEST(ZCompress, AMillionZerosPass) {
  std::string const plain(kMiB, '\0');
  EXPECT_EQ(decompressed(compressed(plain)), plain);
}

TEST(ZCompress, ABombIsStoppedByItsRatio) {
  std::string const bomb = compressed(std::string(64 * kMiB, '\0'));
  ASSERT_GT(64 * kMiB / bomb.size(), 1000U);
  EXPECT_EQ(failureOf(bomb), "The compressed data grows beyond 1000 times its size.");
}

TEST(ZCompress, ABombIsStoppedByItsSize) {
  ZCompress const small(ZCompress::Bounds{100000, 1000, kMiB});
  std::mt19937 random(13);
  std::string const fits = randomBytes(random, 100000, 256);
  EXPECT_EQ(decompressed(compressed(fits), small), fits);
  EXPECT_EQ(failureOf(compressed(fits + "x"), small),
            "The compressed data grows beyond 100000 bytes.");
  EXPECT_EQ(failureOf(compressed(randomBytes(random, 10 * kMiB, 256)), small),
            "The compressed data grows beyond 100000 bytes.");
}

TEST(ZCompress, TheUsualBoundIs256MiB) {
  EXPECT_EQ(ZCompress::Bounds().maxBytes, 256 * kMiB);
  EXPECT_EQ(ZCompress::Bounds().maxRatio, 1000U);
}

}  // namespace
}  // namespace mox::core
