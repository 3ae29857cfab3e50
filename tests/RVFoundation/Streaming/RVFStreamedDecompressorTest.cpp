// SPDX-License-Identifier: Apache-2.0
#include "RVFoundation/Streaming/RVFStreamedDecompressor.h"

#include <gtest/gtest.h>
#include <rapidcheck.h>

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "Platform/Locale/NSLocale.h"
#include "Platform/Runtime/Runtime.h"
#include "RVFoundation/CoreServices/RVFErrors.h"
#include "RVFoundation/CoreServices/RVFLibraryBundle.h"
#include "tests/RVFoundation/Streaming/CompressedBytes.h"
#include "tests/RVFoundation/Streaming/HeapUse.h"

namespace rvf {
namespace {

using test::compressedBytes;
using test::ScarceMemory;
using test::Wrapper;

Ref<NSData> dataOf(std::string_view bytes) {
  return NSData::dataWithBytes(bytes);
}

void expectOwnError(const Ref<NSError>& error, long code) {
  ASSERT_TRUE(error);
  EXPECT_EQ(error->domain(), "RVFErrorDomain");
  EXPECT_EQ(error->code(), code);
}

/// Everything that comes out of `bytes` in chunks of `length`; fails the test on an error.
std::string decompressed(RVFStreamedDecompressor& decompressor, std::string_view bytes,
                         std::size_t length) {
  std::string content;
  for (std::size_t at = 0; at < bytes.size(); at += length) {
    Ref<NSError> error;
    const auto data = decompressor.decompressChunk(dataOf(bytes.substr(at, length)), &error);
    EXPECT_TRUE(data) << "at " << at << ": " << error->description();
    if (!data) break;
    content += data->characters();
  }
  return content;
}

TEST(RVFStreamedDecompressor, InflatesBothWrappersInChunksOfAnyLength) {
  const std::string content = test::noise(3000) + std::string(7000, 'x');
  for (const Wrapper wrapper : {Wrapper::kZlib, Wrapper::kGzip}) {
    const std::string bytes = compressedBytes(content, wrapper);
    for (const std::size_t length : {std::size_t{1}, std::size_t{2}, std::size_t{7},
                                     std::size_t{100}, std::size_t{1400}, bytes.size()}) {
      const auto decompressor = RVFStreamedDecompressor::init();
      EXPECT_EQ(decompressed(*decompressor, bytes, length), content) << length;
      EXPECT_TRUE(decompressor->completeDecompressionUsingError()) << length;
    }
  }
}

TEST(RVFStreamedDecompressor, ChunkWithoutContentYetAnswersAnEmptyBlock) {
  const auto decompressor = RVFStreamedDecompressor::init();
  const auto data = decompressor->decompressChunk(dataOf("\x1f\x8b"));
  ASSERT_TRUE(data);
  EXPECT_TRUE(data->empty());
}

TEST(RVFStreamedDecompressor, EmptyChunkIsAnErrorAndAnswersThatVeryChunk) {
  const auto decompressor = RVFStreamedDecompressor::init();
  const auto empty = NSData::data();
  Ref<NSError> error;
  EXPECT_EQ(decompressor->decompressChunk(empty, &error), empty);
  expectOwnError(error, RVFEmptyChunkError);
  EXPECT_EQ(error->userInfo(), nullptr);
  EXPECT_EQ(decompressor->decompressChunk(empty), empty);
  EXPECT_EQ(decompressor->decompressChunk(nullptr), nullptr);
}

TEST(RVFStreamedDecompressor, EmptyChunkChangesNothing) {
  const auto decompressor = RVFStreamedDecompressor::init();
  decompressor->decompressChunk(NSData::data());
  Ref<NSError> error;
  EXPECT_FALSE(decompressor->completeDecompressionUsingError(&error));
  expectOwnError(error, RVFNoChunkError);
  EXPECT_EQ(decompressed(*decompressor, compressedBytes("content"), 5), "content");
  decompressor->decompressChunk(NSData::data());
  EXPECT_TRUE(decompressor->completeDecompressionUsingError());
}

TEST(RVFStreamedDecompressor, CorruptStreamsAreOneError) {
  std::string badSum = compressedBytes("checked by its sum");
  badSum[badSum.size() - 8] ^= 1;
  for (const std::string& bytes :
       {std::string("no wrapper at all"), badSum, test::bytesWithPresetDictionary("item name")}) {
    const auto decompressor = RVFStreamedDecompressor::init();
    Ref<NSError> error;
    EXPECT_EQ(decompressor->decompressChunk(dataOf(bytes), &error), nullptr);
    expectOwnError(error, RVFCorruptStreamError);
    EXPECT_EQ(error->userInfo(), nullptr);
    EXPECT_FALSE(decompressor->completeDecompressionUsingError(&error));
    expectOwnError(error, RVFIncompleteStreamError);
  }
}

TEST(RVFStreamedDecompressor, AShortChunkAfterOneThatExpandedFarTakesLittleMemory) {
  const std::string bytes = compressedBytes(std::string(20'000'000, 'x'), Wrapper::kGzip);
  const auto decompressor = RVFStreamedDecompressor::init();
  ASSERT_TRUE(decompressor->decompressChunk(dataOf(bytes.substr(0, 16'384))));
  const ScarceMemory scarce(10'000);
  EXPECT_TRUE(decompressor->decompressChunk(dataOf(bytes.substr(16'384, 1))));
}

TEST(RVFStreamedDecompressor, ChunkAfterTheEndFindsTheStateInconsistent) {
  NSLocale::setCurrentLocaleIdentifier("en_US_POSIX");
  const auto decompressor = RVFStreamedDecompressor::init();
  decompressed(*decompressor, compressedBytes("content"), 100);
  for (int i = 0; i < 2; ++i) {
    Ref<NSError> error;
    EXPECT_EQ(decompressor->decompressChunk(dataOf("more"), &error), nullptr);
    expectOwnError(error, RVFInconsistentStreamStateError);
    EXPECT_EQ(error->localizedDescription(), "An error occurred while receiving data.");
    EXPECT_EQ(error->localizedRecoverySuggestion(),
              "Please check your network connection and try again.");
    EXPECT_EQ(error->userInfo()->count(), 2U);
  }
  NSLocale::setCurrentLocaleIdentifier(std::nullopt);
  EXPECT_TRUE(decompressor->completeDecompressionUsingError());
}

TEST(RVFStreamedDecompressor, TextsOfTheInconsistentStateAreTranslated) {
  RVFLibraryBundle()->setCatalogueFolder(RVF_BUILD_CATALOGUE_FOLDER);
  NSLocale::setCurrentLocaleIdentifier("de_DE");
  const auto decompressor = RVFStreamedDecompressor::init();
  decompressor->decompressChunk(dataOf("corrupt"));
  Ref<NSError> error;
  decompressor->decompressChunk(dataOf("more"), &error);
  expectOwnError(error, RVFInconsistentStreamStateError);
  EXPECT_EQ(error->localizedDescription(), "Beim Empfangen von Daten ist ein Fehler aufgetreten.");
  NSLocale::setCurrentLocaleIdentifier(std::nullopt);
  RVFLibraryBundle()->setCatalogueFolder(std::nullopt);
}

TEST(RVFStreamedDecompressor, ChunkAfterAFailureFindsTheStateInconsistent) {
  const auto decompressor = RVFStreamedDecompressor::init();
  EXPECT_EQ(decompressor->decompressChunk(dataOf("corrupt")), nullptr);
  Ref<NSError> error;
  EXPECT_EQ(decompressor->decompressChunk(dataOf(compressedBytes("fine")), &error), nullptr);
  expectOwnError(error, RVFInconsistentStreamStateError);
}

TEST(RVFStreamedDecompressor, WhereMemoryRunsOutTheAnswerIsLostAndNotContinuedWithAGap) {
  const std::string bytes = compressedBytes(std::string(5'000'000, 'x'));
  const auto first = dataOf(bytes.substr(0, bytes.size() / 2));
  const auto second = dataOf(bytes.substr(bytes.size() / 2));
  const auto decompressor = RVFStreamedDecompressor::init();
  Ref<NSError> error;
  {
    const test::ScarceMemory scarce(100'000);
    EXPECT_EQ(decompressor->decompressChunk(first, &error), nullptr);
  }
  expectOwnError(error, RVFCorruptStreamError);
  EXPECT_EQ(decompressor->decompressChunk(second, &error), nullptr);
  expectOwnError(error, RVFInconsistentStreamStateError);
  EXPECT_FALSE(decompressor->completeDecompressionUsingError(&error));
  expectOwnError(error, RVFIncompleteStreamError);
}

TEST(RVFStreamedDecompressor, CompletionTellsHowFarTheStreamCame) {
  const auto decompressor = RVFStreamedDecompressor::init();
  Ref<NSError> error;
  EXPECT_FALSE(decompressor->completeDecompressionUsingError(&error));
  expectOwnError(error, RVFNoChunkError);
  EXPECT_EQ(error->userInfo(), nullptr);

  const std::string bytes = compressedBytes("content");
  decompressed(*decompressor, bytes.substr(0, bytes.size() - 1), 4);
  EXPECT_FALSE(decompressor->completeDecompressionUsingError(&error));
  expectOwnError(error, RVFIncompleteStreamError);
  EXPECT_EQ(error->userInfo(), nullptr);
  EXPECT_FALSE(decompressor->completeDecompressionUsingError());

  Ref<NSError> untouched;
  decompressed(*decompressor, bytes.substr(bytes.size() - 1), 1);
  EXPECT_TRUE(decompressor->completeDecompressionUsingError(&untouched));
  EXPECT_EQ(untouched, nullptr);
}

TEST(RVFStreamedDecompressor, ContentThatFillsWholeScratchBuffersStillEndsComplete) {
  int tried = 0;
  for (std::size_t length = 1; length < 3000; ++length) {
    const std::string content(length, 'x');
    const std::string bytes = compressedBytes(content);
    if (length % bytes.size() != 0) continue;
    ++tried;
    const auto decompressor = RVFStreamedDecompressor::init();
    EXPECT_EQ(decompressed(*decompressor, bytes, bytes.size()), content) << length;
    EXPECT_TRUE(decompressor->completeDecompressionUsingError()) << length;
  }
  EXPECT_GT(tried, 10);
}

TEST(RVFStreamedDecompressor, BytesBehindTheEndInTheLastChunkAreIgnored) {
  const auto decompressor = RVFStreamedDecompressor::init();
  const auto data = decompressor->decompressChunk(dataOf(compressedBytes("content") + "tail"));
  ASSERT_TRUE(data);
  EXPECT_EQ(data->characters(), "content");
  EXPECT_TRUE(decompressor->completeDecompressionUsingError());
}

TEST(RVFStreamedDecompressor, RandomChunkLengthsGiveTheSameContent) {
  EXPECT_TRUE(rc::check([](const std::string& content) {
    const std::string bytes = compressedBytes(content);
    const auto decompressor = RVFStreamedDecompressor::init();
    std::string result;
    for (std::size_t at = 0; at < bytes.size();) {
      const auto length = *rc::gen::inRange<std::size_t>(1, bytes.size() - at + 1);
      result += decompressor->decompressChunk(dataOf(bytes.substr(at, length)))->characters();
      at += length;
    }
    RC_ASSERT(result == content);
    RC_ASSERT(decompressor->completeDecompressionUsingError());
  }));
}

TEST(RVFStreamedDecompressor, ListsItsStateAtRunTime) {
  const auto ivars = class_copyIvarList(objc_getClass("RVFStreamedDecompressor"));
  ASSERT_EQ(ivars.size(), 3U);
  EXPECT_EQ(ivars[0].name, "strm");
  EXPECT_EQ(ivars[1].name, "decompressionStarted");
  EXPECT_EQ(ivars[2].name, "decompressionComplete");
  EXPECT_TRUE(class_copyPropertyList(objc_getClass("RVFStreamedDecompressor")).empty());
}

}  // namespace
}  // namespace rvf
