// SPDX-License-Identifier: Apache-2.0
//
// Compressed bytes cut into chunks: the first byte says how long the chunks are. Whatever arrives,
// a chunk gives content or one of the stated errors, and a whole-block inflation that succeeds
// agrees with the chunks.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <span>
#include <string>

#include "RVFoundation/CoreServices/RVFErrors.h"
#include "RVFoundation/Streaming/NSData-RVFExtensions.h"
#include "RVFoundation/Streaming/RVFStreamedDecompressor.h"

namespace {

void require(bool condition) {
  if (!condition) std::abort();
}

/// Feeds every chunk, those after a failure too; answers the content if the stream is complete.
std::string contentInChunks(std::span<const std::byte> bytes, std::size_t chunkLength,
                            bool& complete) {
  const auto decompressor = rvf::RVFStreamedDecompressor::init();
  std::string content;
  bool failed = false;
  while (!bytes.empty()) {
    const auto chunk = bytes.first(std::min(chunkLength, bytes.size()));
    bytes = bytes.subspan(chunk.size());
    rvf::Ref<rvf::NSError> error;
    const auto data = decompressor->decompressChunk(rvf::NSData::dataWithBytes(chunk), &error);
    require((data == nullptr) == (error != nullptr));
    if (data) {
      require(!failed);
      content += data->characters();
    } else {
      require(error->code() == rvf::RVFInconsistentStreamStateError ||
              (!failed && error->code() == rvf::RVFCorruptStreamError));
      failed = true;
    }
  }
  complete = decompressor->completeDecompressionUsingError();
  return content;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* input, std::size_t size) {
  if (size < 2) return 0;
  const std::size_t chunkLength = std::size_t{input[0]} + 1;
  const auto bytes = std::as_bytes(std::span(input, size)).subspan(1);
  bool complete = false;
  const std::string content = contentInChunks(bytes, chunkLength, complete);
  if (const auto whole = rvf::RVF_inflate(rvf::NSData::dataWithBytes(bytes))) {
    require(complete && whole->characters() == content);
  }
  return 0;
}
