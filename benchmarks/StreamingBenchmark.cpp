// SPDX-License-Identifier: Apache-2.0
//
// A compressed XML answer through RVFStreamedDecompressor and RVFStreamedSAXParser, beside a loop
// written by hand over zlib and libxml2 that counts the same things.

#include <benchmark/benchmark.h>
#include <libxml/parser.h>
#include <zlib.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "RVFoundation/Streaming/NSData-RVFExtensions.h"
#include "RVFoundation/Streaming/RVFStreamedDecompressor.h"
#include "RVFoundation/Streaming/RVFStreamedSAXParser.h"
#include "benchmarks/Measure.h"

namespace rvf {
namespace {

constexpr std::size_t kAnswerLength = 32U << 20;
constexpr int kOptions = 67841;

/// What a caller takes from an answer; equal for equal work.
struct Tally {
  std::uint64_t starts = 0;
  std::uint64_t ends = 0;
  std::uint64_t characters = 0;
  std::uint64_t valueBytes = 0;

  bool operator==(const Tally&) const = default;

  void addStart(std::int32_t attributeCount, const XMLText* attributes) {
    ++starts;
    for (const XMLAttribute attribute : XMLAttributes(attributes, attributeCount)) {
      valueBytes += attribute.value().size();
    }
  }
};

std::string catalogue() {
  std::string xml = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<catalogue>\n";
  std::array<char, 512> item;
  for (unsigned i = 0, random = 1; xml.size() < kAnswerLength; ++i) {
    random = random * 1664525U + 1013904223U;
    const int length = std::snprintf(
        item.data(), item.size(),
        "  <item id=\"%u\" barcode=\"%010u\" category=\"%u\">\n    <name>Artikel Nr. %u &amp; "
        "Zubehör</name>\n    <price currency=\"EUR\">%u.%02u</price>\n    <stock>%u</stock>\n  "
        "</item>\n",
        i, random, random % 40, random % 100000, random % 500, random % 100, (random >> 8) % 1000);
    xml.append(item.data(), static_cast<std::size_t>(length));
  }
  return xml + "</catalogue>\n";
}

/// The compressed answer, cut as the network would.
std::vector<Ref<NSData>> chunksOf(std::size_t length) {
  static const Ref<NSData> kAnswer = RVF_deflate(NSData::dataWithBytes(catalogue()));
  std::vector<Ref<NSData>> chunks;
  const std::string_view bytes = kAnswer->characters();
  for (std::size_t at = 0; at < bytes.size(); at += length) {
    chunks.push_back(NSData::dataWithBytes(bytes.substr(at, length)));
  }
  return chunks;
}

Tally throughOurClasses(const std::vector<Ref<NSData>>& chunks) {
  Tally tally;
  const auto decompressor = RVFStreamedDecompressor::init();
  const auto parser = RVFStreamedSAXParser::init();
  parser->setStartElementHandler([&tally](XMLText, XMLText, XMLText, std::int32_t, const XMLText*,
                                          std::int32_t attributeCount, std::int32_t,
                                          const XMLText* attributes) {
    tally.addStart(attributeCount, attributes);
    return true;
  });
  parser->setEndElementHandler([&tally](XMLText, XMLText, XMLText) {
    ++tally.ends;
    return true;
  });
  parser->setFoundCharactersHandler([&tally](XMLText, std::int32_t count) {
    tally.characters += static_cast<std::uint64_t>(count);
  });
  for (const auto& chunk : chunks) {
    const auto data = decompressor->decompressChunk(chunk);
    if (!data || !parser->parseChunk(data)) throw std::runtime_error("chunk refused");
  }
  if (!decompressor->completeDecompressionUsingError() || !parser->completeParsingUsingError()) {
    throw std::runtime_error("answer incomplete");
  }
  return tally;
}

void ignoreError(void*, const char*, ...) {}

xmlSAXHandler handlersByHand() {
  xmlSAXHandler handlers = {};
  handlers.initialized = XML_SAX2_MAGIC;
  handlers.startElementNs = [](void* tally, const xmlChar*, const xmlChar*, const xmlChar*, int,
                               const xmlChar**, int attributeCount, int, const xmlChar** texts) {
    static_cast<Tally*>(tally)->addStart(attributeCount, texts);
  };
  handlers.endElementNs = [](void* tally, const xmlChar*, const xmlChar*, const xmlChar*) {
    ++static_cast<Tally*>(tally)->ends;
  };
  handlers.characters = [](void* tally, const xmlChar*, int count) {
    static_cast<Tally*>(tally)->characters += static_cast<std::uint64_t>(count);
  };
  handlers.error = &ignoreError;
  return handlers;
}

Tally byHand(const std::vector<Ref<NSData>>& chunks) {
  Tally tally;
  xmlSAXHandler handlers = handlersByHand();
  const xmlParserCtxtPtr parser = xmlCreatePushParserCtxt(&handlers, &tally, nullptr, 0, nullptr);
  xmlCtxtUseOptions(parser, kOptions);
  z_stream stream = {};
  inflateInit2(&stream, 47);
  std::array<char, 65536> output;
  int inflated = Z_OK;
  for (const auto& chunk : chunks) {
    stream.next_in = reinterpret_cast<Bytef*>(const_cast<std::byte*>(chunk->bytes().data()));
    stream.avail_in = static_cast<uInt>(chunk->length());
    do {
      stream.next_out = reinterpret_cast<Bytef*>(output.data());
      stream.avail_out = static_cast<uInt>(output.size());
      inflated = inflate(&stream, Z_NO_FLUSH);
      const auto length = static_cast<int>(output.size() - stream.avail_out);
      if (xmlParseChunk(parser, output.data(), length, 0) != 0) throw std::runtime_error("chunk");
    } while (stream.avail_out == 0);
  }
  if (inflated != Z_STREAM_END || xmlParseChunk(parser, nullptr, 0, 1) != 0) {
    throw std::runtime_error("answer incomplete");
  }
  inflateEnd(&stream);
  xmlFreeParserCtxt(parser);
  return tally;
}

using Reading = Tally (*)(const std::vector<Ref<NSData>>& chunks);

template <Reading reading>
void inflateAndParse(benchmark::State& state) {
  const auto chunks = chunksOf(static_cast<std::size_t>(state.range(0)));
  static const Tally kExpected = byHand(chunks);
  Tally tally;
  measure(state, [&] { tally = reading(chunks); });
  if (tally != kExpected) state.SkipWithError("the answer is read otherwise");
  state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * kAnswerLength));
}

void forChunks(benchmark::internal::Benchmark* each) {
  each->ArgName("chunk")->Arg(16384)->Arg(1400)->Unit(benchmark::kMillisecond);
}
BENCHMARK(inflateAndParse<&throughOurClasses>)
    ->Name("inflate and parse XML/ours")
    ->Apply(&forChunks);
BENCHMARK(inflateAndParse<&byHand>)
    ->Name("inflate and parse XML/limit: zlib and libxml2")
    ->Apply(&forChunks);

}  // namespace
}  // namespace rvf
