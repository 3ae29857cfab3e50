// SPDX-License-Identifier: Apache-2.0
#include "tools/rvf/AnswerReader.h"

#include <stdexcept>

namespace rvf::tool {

AnswerReader::AnswerReader()
    : decompressor_(RVFStreamedDecompressor::init()), parser_(RVFStreamedSAXParser::init()) {
  if (!decompressor_ || !parser_) throw std::runtime_error("no memory for reading an answer");
  parser_->setStartElementHandler([this](XMLText localName, auto&&...) {
    ++elementCount_;
    if (xmlView(localName) == "product") ++productCount_;
    return true;
  });
}

bool AnswerReader::read(const Ref<NSData>& chunk, Ref<NSError>* error) {
  bytesReceived_ += chunk->length();
  const Ref<NSData> xml = decompressor_->decompressChunk(chunk, error);
  if (!xml) return false;
  bytesInflated_ += xml->length();
  return xml->empty() || parser_->parseChunk(xml, error);
}

bool AnswerReader::complete(Ref<NSError>* error) {
  return decompressor_->completeDecompressionUsingError(error) &&
         parser_->completeParsingUsingError(error);
}

}  // namespace rvf::tool
