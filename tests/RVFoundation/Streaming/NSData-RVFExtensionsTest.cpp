// SPDX-License-Identifier: Apache-2.0
#include "RVFoundation/Streaming/NSData-RVFExtensions.h"

#include <gtest/gtest.h>
#include <rapidcheck.h>
#include <zlib.h>

#include <new>
#include <string>
#include <string_view>

#include "tests/RVFoundation/Streaming/CompressedBytes.h"
#include "tests/RVFoundation/Streaming/HeapUse.h"

namespace rvf {
namespace {

using namespace std::string_literals;
using test::compressedBytes;
using test::heapBytesInUse;
using test::noise;
using test::ScarceMemory;
using test::Wrapper;

Ref<NSData> dataOf(std::string_view bytes) {
  return NSData::dataWithBytes(bytes);
}

TEST(NSDataRVFExtensions, ReadsUtf8Strictly) {
  EXPECT_EQ(RVF_stringUsingUTF8Encoding(dataOf("Käse ½ €")), "Käse ½ €");
  EXPECT_EQ(RVF_stringUsingUTF8Encoding(dataOf("")), "");
  EXPECT_EQ(RVF_stringUsingUTF8Encoding(dataOf("a\0b"s)), "a\0b"s);
  for (const std::string_view invalid : {"\xff", "a\xc3", "\xed\xa0\x80", "\xc0\x80"}) {
    EXPECT_EQ(RVF_stringUsingUTF8Encoding(dataOf(invalid)), std::nullopt) << invalid;
  }
}

TEST(NSDataRVFExtensions, AbsentBlockAnswersAbsent) {
  EXPECT_EQ(RVF_stringUsingUTF8Encoding(nullptr), std::nullopt);
  EXPECT_EQ(RVF_deflate(nullptr), nullptr);
  EXPECT_EQ(RVF_inflate(nullptr), nullptr);
  EXPECT_EQ(RVF_encryptWithSeed(nullptr, "seed"), nullptr);
  EXPECT_EQ(RVF_decryptWithSeed(nullptr, ""), nullptr);
}

TEST(NSDataRVFExtensions, EmptyBlockIsReturnedItself) {
  const auto empty = NSData::data();
  EXPECT_EQ(RVF_deflate(empty), empty);
  EXPECT_EQ(RVF_inflate(empty), empty);
}

TEST(NSDataRVFExtensions, DeflateEqualsZlibWithAGzipWrapper) {
  for (const std::size_t length : {1UL, 100UL, 16384UL, 100000UL}) {
    const std::string content = noise(length);
    const auto deflated = RVF_deflate(dataOf(content));
    ASSERT_TRUE(deflated);
    EXPECT_EQ(deflated->characters(), compressedBytes(content)) << length;
  }
}

TEST(NSDataRVFExtensions, DeflateFillsItsBufferStepsExactly) {
  // Incompressible input has a predictable compressed length: try those around one step.
  for (std::size_t length = 16300; length < 16384 + 8; ++length) {
    const std::string content = noise(length);
    EXPECT_EQ(RVF_inflate(RVF_deflate(dataOf(content)))->characters(), content) << length;
  }
}

TEST(NSDataRVFExtensions, InflateDetectsTheWrapper) {
  const std::string content = "<item name=\"Milk\"/>";
  for (const Wrapper wrapper : {Wrapper::kZlib, Wrapper::kGzip}) {
    const auto inflated = RVF_inflate(dataOf(compressedBytes(content, wrapper)));
    ASSERT_TRUE(inflated);
    EXPECT_EQ(inflated->characters(), content);
  }
}

TEST(NSDataRVFExtensions, InflateExpandsFarBeyondItsFirstBuffer) {
  const std::string content(5'000'000, 'x');
  const auto inflated = RVF_inflate(dataOf(compressedBytes(content)));
  ASSERT_TRUE(inflated);
  EXPECT_EQ(inflated->characters(), content);
}

TEST(NSDataRVFExtensions, InflateOfOneByteIsAbsent) {
  for (const std::string_view byte : {"\x1f", "x", "\x78"}) {
    EXPECT_EQ(RVF_inflate(dataOf(byte)), nullptr);
  }
}

TEST(NSDataRVFExtensions, InflateOfEveryTruncationIsAbsent) {
  const std::string bytes = compressedBytes("the quick brown fox jumps over the lazy dog");
  for (std::size_t length = 1; length < bytes.size(); ++length) {
    EXPECT_EQ(RVF_inflate(dataOf(bytes.substr(0, length))), nullptr) << length;
  }
}

TEST(NSDataRVFExtensions, InflateOfCorruptInputIsAbsent) {
  EXPECT_EQ(RVF_inflate(dataOf("this is plain text")), nullptr);
  EXPECT_EQ(RVF_inflate(dataOf(test::bytesWithPresetDictionary("item name"))), nullptr);
  std::string bytes = compressedBytes("checked by its sum");
  bytes[bytes.size() - 8] ^= 1;  // the first byte of the check sum
  EXPECT_EQ(RVF_inflate(dataOf(bytes)), nullptr);
}

TEST(NSDataRVFExtensions, InflateIgnoresWhatFollowsTheStream) {
  const auto inflated = RVF_inflate(dataOf(compressedBytes("content") + "trailing bytes"));
  ASSERT_TRUE(inflated);
  EXPECT_EQ(inflated->characters(), "content");
}

TEST(NSDataRVFExtensions, InflateUndoesDeflate) {
  EXPECT_TRUE(rc::check([](const std::string& content) {
    RC_ASSERT(RVF_inflate(RVF_deflate(dataOf(content)))->characters() == content);
  }));
}

TEST(NSDataRVFExtensions, NothingLeaksWhereMemoryForTheResultRunsOut) {
  const auto content = dataOf(noise(100'000));
  const auto bomb = dataOf(compressedBytes(std::string(5'000'000, 'x')));
  const auto exhaust = [&] {
    const ScarceMemory scarce(50'000);  // room for the first buffers only
    EXPECT_THROW(RVF_deflate(content), std::bad_alloc);
    EXPECT_THROW(RVF_inflate(bomb), std::bad_alloc);
  };
  exhaust();
  const std::size_t before = heapBytesInUse();
  exhaust();
  EXPECT_LT(heapBytesInUse(), before + 5'000);  // zlib keeps 7 KB and more for a stream
}

TEST(NSDataRVFExtensions, ScramblingCombinesBytesWithTheSeedInTurn) {
  const auto data = dataOf("abcde");
  EXPECT_EQ(RVF_encryptWithSeed(data, "\x01\x02")->characters(), "``bfd");
  EXPECT_EQ(RVF_encryptWithSeed(dataOf("AA"), "ä")->characters(), "\x82\xe5");
  EXPECT_EQ(data->characters(), "abcde");
}

TEST(NSDataRVFExtensions, ScramblingIsItsOwnInverse) {
  EXPECT_TRUE(rc::check([](const std::string& content, const std::string& seedTail) {
    const std::string seed = "s" + seedTail;
    const auto scrambled = RVF_encryptWithSeed(dataOf(content), seed);
    RC_ASSERT(RVF_decryptWithSeed(scrambled, seed)->characters() == content);
    RC_ASSERT(scrambled->characters() == RVF_decryptWithSeed(dataOf(content), seed)->characters());
  }));
}

TEST(NSDataRVFExtensions, ScramblingAnEmptyBlockGivesAnEmptyCopy) {
  const auto empty = NSData::data();
  for (const std::string_view seed : {"seed", ""}) {
    const auto copy = RVF_encryptWithSeed(empty, seed);
    ASSERT_TRUE(copy);
    EXPECT_TRUE(copy->empty());
    EXPECT_NE(copy, empty);
  }
}

TEST(NSDataRVFExtensionsDeathTest, EmptySeedForAFilledBlockEndsTheProcess) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  EXPECT_DEATH(RVF_encryptWithSeed(dataOf("a"), ""),
               "RVFoundation/NSData-RVFExtensions, line 0\\.");
  EXPECT_DEATH(RVF_decryptWithSeed(dataOf("a"), ""), "seed.length!=0");
}

}  // namespace
}  // namespace rvf
