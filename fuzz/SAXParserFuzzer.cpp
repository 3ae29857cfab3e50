// SPDX-License-Identifier: Apache-2.0
//
// XML cut into chunks: the first byte says how long the chunks are, the second after how many
// elements a handler stops the parse. Every byte that a handler is shown is read.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <span>
#include <string>
#include <string_view>

#include "RVFoundation/CoreServices/RVFErrors.h"
#include "RVFoundation/Streaming/RVFStreamedSAXParser.h"

namespace {

using rvf::XMLText;

/// Reads everything, so that the sanitizers see a wrong pointer.
class Reader final {
 public:
  explicit Reader(std::size_t elementsUntilStop) : remaining_(elementsUntilStop) {}

  bool mayGoOn() { return remaining_-- > 0; }
  bool hasStopped() const { return stopped_; }
  void stop() { stopped_ = true; }

  void read(std::string_view text) {
    if (stopped_) std::abort();  // called after a stop
    for (const char byte : text)
      sum_ = sum_ + static_cast<unsigned char>(byte);
  }
  void read(const rvf::XMLAttribute& attribute) {
    read(attribute.localName());
    read(attribute.prefix());
    read(attribute.URI());
    read(attribute.decodedValue());
  }

 private:
  std::size_t remaining_;
  bool stopped_ = false;
  volatile unsigned sum_ = 0;
};

void setHandlers(rvf::RVFStreamedSAXParser& parser, Reader& reader) {
  parser.setStartElementHandler([&reader](XMLText localName, XMLText prefix, XMLText URI,
                                          std::int32_t namespaceCount, const XMLText* namespaces,
                                          std::int32_t attributeCount, std::int32_t,
                                          const XMLText* attributes) {
    for (const XMLText text : {localName, prefix, URI})
      reader.read(rvf::xmlView(text));
    for (int i = 0; i < 2 * namespaceCount; ++i)
      reader.read(rvf::xmlView(namespaces[i]));
    for (const auto attribute : rvf::XMLAttributes(attributes, attributeCount)) {
      reader.read(attribute);
    }
    const bool mayGoOn = reader.mayGoOn();
    if (!mayGoOn) reader.stop();
    return mayGoOn;
  });
  parser.setEndElementHandler([&reader](XMLText localName, XMLText prefix, XMLText URI) {
    for (const XMLText text : {localName, prefix, URI})
      reader.read(rvf::xmlView(text));
    return true;
  });
  parser.setFoundCharactersHandler([&reader](XMLText characters, std::int32_t count) {
    reader.read({reinterpret_cast<const char*>(characters), static_cast<std::size_t>(count)});
  });
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* input, std::size_t size) {
  if (size < 3) return 0;
  const std::size_t chunkLength = std::size_t{input[0]} + 1;
  Reader reader(std::size_t{input[1]} + 1);
  const auto parser = rvf::RVFStreamedSAXParser::init();
  setHandlers(*parser, reader);
  auto bytes = std::as_bytes(std::span(input, size)).subspan(2);
  while (!bytes.empty()) {
    const auto chunk = bytes.first(std::min(chunkLength, bytes.size()));
    bytes = bytes.subspan(chunk.size());
    rvf::Ref<rvf::NSError> error;
    parser->parseChunk(rvf::NSData::dataWithBytes(chunk), &error);
    if (reader.hasStopped() && (!error || error->code() != rvf::RVFLIBXMLStoppedError)) {
      std::abort();
    }
  }
  parser->completeParsingUsingError();
  return 0;
}
