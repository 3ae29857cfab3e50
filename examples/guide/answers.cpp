// SPDX-License-Identifier: Apache-2.0
#include <iostream>

#include "Platform/Values/NSData.h"
#include "RVFoundation/Streaming/NSData-RVFExtensions.h"
#include "RVFoundation/Streaming/RVFStreamedDecompressor.h"
#include "RVFoundation/Streaming/RVFStreamedSAXParser.h"
#include "RVFoundation/Streaming/XMLAttributes.h"

using namespace rvf;

namespace {

/// What a transfer hands over, piece by piece.
std::vector<Ref<NSData>> chunksOfAnAnswer() {
  const auto answer =
      RVF_deflate(NSData::dataWithBytes("<products><product name=\"Tea\"/></products>"));
  const auto bytes = answer->bytes();
  const std::size_t half = bytes.size() / 2;
  return {NSData::dataWithBytes(bytes.first(half)), NSData::dataWithBytes(bytes.subspan(half))};
}

}  // namespace

int main() {
  Ref<NSError> error;
  const auto decompressor = RVFStreamedDecompressor::init();
  const auto parser = RVFStreamedSAXParser::init();
  parser->setStartElementHandler([](XMLText name, XMLText, XMLText, std::int32_t, const XMLText*,
                                    std::int32_t count, std::int32_t, const XMLText* attributes) {
    std::cout << xmlView(name) << '\n';
    for (const XMLAttribute attribute : XMLAttributes(attributes, count))
      std::cout << attribute.localName() << '=' << attribute.decodedValue() << '\n';
    return true;  // false stops the parse
  });
  for (const auto& chunk : chunksOfAnAnswer()) {
    const auto xml = decompressor->decompressChunk(chunk, &error);
    if (!xml || !parser->parseChunk(xml, &error)) break;
  }
  if (!error) decompressor->completeDecompressionUsingError(&error);
  if (!error) parser->completeParsingUsingError(&error);
  std::cout << (error ? error->localizedDescription() : "complete") << '\n';

  const auto journal = NSData::dataWithBytes(std::string(10'000, '-'));
  const auto packed = RVF_deflate(journal);  // gzip
  std::cout << (packed->length() < 100) << ' ' << RVF_inflate(packed)->isEqual(journal.get())
            << '\n';
  if (!RVF_inflate(NSData::dataWithBytes("no gzip"))) std::cout << "not compressed\n";
}
