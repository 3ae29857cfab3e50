// SPDX-License-Identifier: Apache-2.0
//
// Whole answers through the decompressor and the parser, cut, truncated and damaged.

#include <gtest/gtest.h>
#include <zlib.h>

#include <algorithm>
#include <cstdio>
#include <numeric>
#include <random>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "Platform/Text/Utf8.h"
#include "RVFoundation/CoreServices/RVFErrors.h"
#include "RVFoundation/Streaming/RVFStreamedDecompressor.h"
#include "RVFoundation/Streaming/RVFStreamedSAXParser.h"
#include "tests/RVFoundation/Streaming/CallDigest.h"
#include "tests/RVFoundation/Streaming/CompressedBytes.h"
#include "tests/RVFoundation/Streaming/HeapUse.h"

namespace rvf {
namespace {

using test::CallDigest;
using test::compressedBytes;
using test::heapBytesInUse;
using test::Wrapper;

#ifdef RVF_TEST_SANITIZED
constexpr std::size_t kLargeAnswer = 50'000'000;
#else
constexpr std::size_t kLargeAnswer = 500'000'000;
#endif

Ref<NSData> dataOf(std::string_view bytes) {
  return NSData::dataWithBytes(bytes);
}

std::string item(unsigned number) {
  const unsigned random = number * 2654435761U;
  const std::string code = std::to_string(random);
  return "<p:item id='" + std::to_string(number) + "' code=\"" + code +
         "\" p:kind='&lt;&amp;&#xe4;'>\r\n <name>Käse &amp; Brot " + code + "</name><!-- " + code +
         " --><empty/><![CDATA[<" + code + "&]]></p:item>\n";
}

/// A catalogue of at least `length` bytes, with everything in it that a cut can fall into.
std::string catalogue(std::size_t length) {
  std::string xml = "<?xml version='1.0' encoding='UTF-8'?>\n<c xmlns='urn:c' xmlns:p='urn:p'>";
  for (unsigned number = 0; xml.size() < length; ++number)
    xml += item(number);
  return xml + "</c>";
}

/// One way of an answer through the classes.
class Passage final {
 public:
  enum class Form { kPlain, kCompressed };

  explicit Passage(Form form)
      : decompressor_(form == Form::kCompressed ? RVFStreamedDecompressor::init() : nullptr) {}

  bool feed(std::string_view chunk) {
    auto data = dataOf(chunk);
    if (decompressor_) data = decompressor_->decompressChunk(data, &error_);
    return data && parser_->parseChunk(data, &error_);
  }
  bool complete() {
    return (!decompressor_ || decompressor_->completeDecompressionUsingError(&error_)) &&
           parser_->completeParsingUsingError(&error_);
  }

  const CallDigest& digest() const { return digest_; }
  const Ref<NSError>& error() const { return error_; }

 private:
  Ref<RVFStreamedDecompressor> decompressor_;
  Ref<RVFStreamedSAXParser> parser_ = RVFStreamedSAXParser::init();
  CallDigest digest_{*parser_};
  Ref<NSError> error_;
};

/// The digest of an answer cut at the given places, in ascending order; 0 on any failure.
std::uint64_t digestWithCuts(Passage::Form form, std::string_view bytes,
                             const std::vector<std::size_t>& cuts) {
  Passage passage(form);
  std::size_t at = 0;
  for (const std::size_t cut : cuts) {
    if (cut <= at || cut >= bytes.size()) continue;
    if (!passage.feed(bytes.substr(at, cut - at))) return 0;
    at = cut;
  }
  return passage.feed(bytes.substr(at)) && passage.complete() ? passage.digest().value() : 0;
}

struct Answer {
  const char* name;
  Passage::Form form;
  std::string bytes;
};

/// The same catalogue in the three forms that answers have. Its first 64 KiB are cut; compressed,
/// that is more of the catalogue.
std::vector<Answer> answers(const std::string& xml) {
  return {{"plain", Passage::Form::kPlain, xml},
          {"gzip", Passage::Form::kCompressed, compressedBytes(xml, Wrapper::kGzip)},
          {"zlib", Passage::Form::kCompressed, compressedBytes(xml, Wrapper::kZlib)}};
}

constexpr std::size_t kCutRegion = 65536;

TEST(StreamedAnswer, CutAtEveryBoundaryGivesTheSameCalls) {
  constexpr std::size_t kDistance = 128;  // of the cuts of one passage; the passages are shifted
  const std::string xml = catalogue(540'000);
  const std::uint64_t whole = digestWithCuts(Passage::Form::kPlain, xml, {});
  ASSERT_NE(whole, 0U);
  for (const auto& answer : answers(xml)) {
    ASSERT_GE(answer.bytes.size(), kCutRegion) << answer.name;
    for (std::size_t shift = 1; shift <= kDistance; ++shift) {
      std::vector<std::size_t> cuts;
      for (std::size_t at = shift; at <= kCutRegion; at += kDistance)
        cuts.push_back(at);
      ASSERT_EQ(digestWithCuts(answer.form, answer.bytes, cuts), whole) << answer.name << shift;
    }
  }
}

TEST(StreamedAnswer, CutOnceAtEveryBoundaryOfAShortAnswerGivesTheSameCalls) {
  const std::string xml = catalogue(2000);
  const std::uint64_t whole = digestWithCuts(Passage::Form::kPlain, xml, {});
  ASSERT_NE(whole, 0U);
  for (const auto& answer : answers(xml)) {
    for (std::size_t cut = 1; cut < answer.bytes.size(); ++cut) {
      ASSERT_EQ(digestWithCuts(answer.form, answer.bytes, {cut}), whole) << answer.name << cut;
    }
  }
}

constexpr std::string_view kUtf8Declaration = "<?xml version='1.0' encoding='UTF-8'?>";

/// A document of characters up to U+00FF in ISO-8859-1, and says so.
std::string inLatin1(std::string_view xml) {
  std::string bytes = "<?xml version='1.0' encoding='ISO-8859-1'?>";
  xml.remove_prefix(kUtf8Declaration.size());
  while (!xml.empty()) {
    const Utf8Unit unit = firstUtf8Unit(xml);
    bytes += static_cast<char>(unit.codePoint);
    xml.remove_prefix(unit.length);
  }
  return bytes;
}

/// The same in UTF-16 with a byte order mark, which needs no declaration.
std::string inUtf16(std::string_view xml, bool isBigEndian) {
  std::string bytes;
  const auto append = [&](char32_t unit) {
    const char high = static_cast<char>(unit >> 8);
    const char low = static_cast<char>(unit & 0xFF);
    bytes += isBigEndian ? high : low;
    bytes += isBigEndian ? low : high;
  };
  append(0xFEFF);
  xml.remove_prefix(kUtf8Declaration.size());
  while (!xml.empty()) {
    const Utf8Unit unit = firstUtf8Unit(xml);
    append(unit.codePoint);
    xml.remove_prefix(unit.length);
  }
  return bytes;
}

TEST(StreamedAnswer, OfAnotherEncodingCutOnceAtEveryBoundaryGivesTheSameCalls) {
  const std::string xml = catalogue(1000);
  const std::uint64_t whole = digestWithCuts(Passage::Form::kPlain, xml, {});
  ASSERT_NE(whole, 0U);
  const std::pair<const char*, std::string> rows[] = {
      {"ISO-8859-1", inLatin1(xml)},
      {"UTF-16LE", inUtf16(xml, false)},
      {"UTF-16BE", inUtf16(xml, true)},
  };
  for (const auto& [name, bytes] : rows) {
    ASSERT_EQ(digestWithCuts(Passage::Form::kPlain, bytes, {}), whole) << name;
    for (std::size_t cut = 1; cut < bytes.size(); ++cut) {
      ASSERT_EQ(digestWithCuts(Passage::Form::kPlain, bytes, {cut}), whole) << name << cut;
    }
    std::vector<std::size_t> everywhere(bytes.size());
    std::iota(everywhere.begin(), everywhere.end(), std::size_t{0});
    ASSERT_EQ(digestWithCuts(Passage::Form::kPlain, bytes, everywhere), whole) << name;
  }
}

TEST(StreamedAnswer, AThousandRandomCutsGiveTheSameCalls) {
  constexpr int kPassages = 1000;
  const std::string xml = catalogue(30'000);
  const std::uint64_t whole = digestWithCuts(Passage::Form::kPlain, xml, {});
  ASSERT_NE(whole, 0U);
  std::minstd_rand random(7);
  for (const auto& answer : answers(xml)) {
    for (int i = 0; i < kPassages; ++i) {
      std::vector<std::size_t> cuts(random() % 20 + 1);
      for (std::size_t& cut : cuts)
        cut = random() % answer.bytes.size();
      std::sort(cuts.begin(), cuts.end());
      ASSERT_EQ(digestWithCuts(answer.form, answer.bytes, cuts), whole) << answer.name << i;
    }
  }
}

TEST(StreamedAnswer, TruncatedAnywhereIsAnErrorAtTheEnd) {
  const std::string xml = catalogue(1500);
  for (const auto& answer : answers(xml)) {
    for (std::size_t length = 1; length < answer.bytes.size(); ++length) {
      Passage passage(answer.form);
      for (std::size_t at = 0; at < length; at += 100) {
        const std::size_t chunk = std::min<std::size_t>(100, length - at);
        ASSERT_TRUE(passage.feed(std::string_view(answer.bytes).substr(at, chunk)))
            << answer.name << length;
      }
      ASSERT_FALSE(passage.complete()) << answer.name << length;
      ASSERT_TRUE(passage.error());
      ASSERT_EQ(passage.error()->code(), answer.form == Passage::Form::kPlain
                                             ? long{RVFLIBXMLParserError}
                                             : long{RVFIncompleteStreamError});
    }
  }
}

TEST(StreamedAnswer, DamagedAnywhereIsAnErrorOrDoesNotMatter) {
  const std::string xml = catalogue(1500);
  const std::uint64_t whole = digestWithCuts(Passage::Form::kPlain, xml, {});
  for (const auto wrapper : {Wrapper::kGzip, Wrapper::kZlib}) {
    const std::string intact = compressedBytes(xml, wrapper);
    int noticed = 0;
    for (std::size_t at = 0; at < intact.size(); ++at) {
      std::string bytes = intact;
      bytes[at] = static_cast<char>(bytes[at] ^ 0x55);
      Passage passage(Passage::Form::kCompressed);
      if (passage.feed(bytes) && passage.complete()) {
        ASSERT_EQ(passage.digest().value(), whole) << at;  // a time stamp in the wrapper
      } else {
        ASSERT_TRUE(passage.error()) << at;
        ++noticed;
      }
    }
    EXPECT_GT(noticed, static_cast<int>(intact.size()) - 8);
  }
}

/// Makes a large compressed answer chunk by chunk.
class AnswerSource final {
 public:
  explicit AnswerSource(std::size_t contentLength) : remaining_(contentLength) {
    deflateInit2(&stream_, Z_BEST_SPEED, Z_DEFLATED, MAX_WBITS + 16, 8, Z_DEFAULT_STRATEGY);
    for (unsigned number = 0; block_.size() < 100'000; ++number)
      block_ += item(number);
    pending_ = "<c xmlns:p='urn:p'>";
  }
  ~AnswerSource() { deflateEnd(&stream_); }
  AnswerSource(const AnswerSource&) = delete;
  AnswerSource& operator=(const AnswerSource&) = delete;

  /// The next compressed bytes, at most 16 KiB; empty at the end.
  std::string_view next() {
    stream_.next_out = reinterpret_cast<Bytef*>(chunk_.data());
    stream_.avail_out = static_cast<uInt>(chunk_.size());
    while (stream_.avail_out > 0 && !finished_) {
      if (stream_.avail_in == 0 && !pending_.empty()) takePending();
      const bool isLast = pending_.empty();
      finished_ = deflate(&stream_, isLast ? Z_FINISH : Z_NO_FLUSH) == Z_STREAM_END;
    }
    return {chunk_.data(), chunk_.size() - stream_.avail_out};
  }

 private:
  void takePending() {
    current_ = std::exchange(pending_, remaining_ > 0 ? block_ : hasEnd_ ? "" : "</c>");
    if (remaining_ == 0) hasEnd_ = true;
    remaining_ -= std::min(remaining_, block_.size());
    stream_.next_in = reinterpret_cast<Bytef*>(current_.data());
    stream_.avail_in = static_cast<uInt>(current_.size());
  }

  z_stream stream_ = {};
  std::size_t remaining_;
  std::string block_;
  std::string pending_;
  std::string current_;
  std::string chunk_ = std::string(16384, '\0');
  bool hasEnd_ = false;
  bool finished_ = false;
};

TEST(StreamedAnswer, MemoryDoesNotGrowWithTheAnswer) {
  constexpr std::size_t kBound = 4'000'000;  // bytes, for 16 KiB chunks that expand 20 times
  AnswerSource source(kLargeAnswer);
  Passage passage(Passage::Form::kCompressed);
  const std::size_t before = heapBytesInUse();
  std::size_t most = before;
  for (auto chunk = source.next(); !chunk.empty(); chunk = source.next()) {
    ASSERT_TRUE(passage.feed(chunk)) << passage.error()->description();
    most = std::max(most, heapBytesInUse());
  }
  EXPECT_TRUE(passage.complete());
  EXPECT_GT(passage.digest().elements(), kLargeAnswer / 100);
  EXPECT_LT(most - before, kBound);
}

TEST(StreamedAnswer, ABombExpandsOneChunkAtATime) {
  const std::string bomb = compressedBytes(std::string(100'000'000, ' '));
  constexpr std::size_t kChunk = 1400;
  constexpr std::size_t kBound = 4 * 1032 * kChunk;  // deflate expands at most 1,032 times
  const auto decompressor = RVFStreamedDecompressor::init();
  const std::size_t before = heapBytesInUse();
  std::size_t most = before;
  std::size_t total = 0;
  for (std::size_t at = 0; at < bomb.size(); at += kChunk) {
    const auto data = decompressor->decompressChunk(dataOf(bomb.substr(at, kChunk)));
    ASSERT_TRUE(data);
    total += data->length();
    most = std::max(most, heapBytesInUse());
  }
  EXPECT_EQ(total, 100'000'000U);
  EXPECT_LT(most - before, kBound);
}

}  // namespace
}  // namespace rvf
