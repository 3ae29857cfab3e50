// SPDX-License-Identifier: Apache-2.0
#include "RVFoundation/Streaming/NSData-RVFExtensions.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <utility>
#include <vector>

#include "Platform/Runtime/NSAssertionHandler.h"
#include "Platform/Values/NSString.h"
#include "RVFoundation/Streaming/ZlibStream.h"

namespace rvf {
namespace {

constexpr int kMemoryLevel = 8;
constexpr std::size_t kDeflateStep = 16384;

/// Assertions of the block extensions name their source so, without a line.
constexpr std::string_view kSource = "RVFoundation/NSData-RVFExtensions";
constexpr int kNoLine = 0;

/// Lets the stream write behind what it has produced, after lengthening a full buffer by `step`.
void makeRoom(z_stream& stream, std::vector<std::byte>& buffer, std::size_t step) {
  if (stream.total_out >= buffer.size()) buffer.resize(buffer.size() + step);
  stream.next_out = reinterpret_cast<Bytef*>(buffer.data()) + stream.total_out;
  stream.avail_out = static_cast<uInt>(buffer.size() - stream.total_out);
}

Ref<NSData> dataFromStart(std::vector<std::byte> buffer, std::size_t length) {
  buffer.resize(length);
  buffer.shrink_to_fit();
  return std::make_shared<NSData>(std::move(buffer));
}

}  // namespace

std::optional<std::string> RVF_stringUsingUTF8Encoding(const Ref<NSData>& data) {
  if (!data) return std::nullopt;
  return unboxText(NSString::stringWithUTF8Bytes(data->characters()));
}

Ref<NSData> RVF_deflate(const Ref<NSData>& data) {
  if (!data || data->empty()) return data;
  z_stream stream = {};
  setInput(stream, *data);
  if (deflateInit2_(&stream, Z_DEFAULT_COMPRESSION, Z_DEFLATED, kGzipWrapper, kMemoryLevel,
                    Z_DEFAULT_STRATEGY, kZlibInterface, sizeof stream) != Z_OK) {
    // uncovered: only without memory
    return nullptr;
  }
  const StartedDeflate started(&stream);
  std::vector<std::byte> buffer(kDeflateStep);
  do {
    makeRoom(stream, buffer, kDeflateStep);
    deflate(&stream, Z_FINISH);
  } while (stream.avail_out == 0);
  return dataFromStart(std::move(buffer), stream.total_out);
}

Ref<NSData> RVF_inflate(const Ref<NSData>& data) {
  if (!data || data->empty()) return data;
  const auto inputLength = static_cast<std::uint32_t>(data->length());
  const std::uint32_t step = inputLength / 2;
  z_stream stream = {};
  setInput(stream, *data);
  if (inflateInit2_(&stream, kDetectedWrapper, kZlibInterface, sizeof stream) != Z_OK) {
    // uncovered: only without memory
    return nullptr;
  }
  StartedInflate started(&stream);
  std::vector<std::byte> buffer(inputLength + step);  // a 32-bit sum
  int result = Z_OK;
  while (result == Z_OK) {
    makeRoom(stream, buffer, step);
    result = inflate(&stream, Z_SYNC_FLUSH);
  }
  if (inflateEnd(started.release()) != Z_OK || result != Z_STREAM_END) return nullptr;
  return dataFromStart(std::move(buffer), stream.total_out);
}

Ref<NSData> RVF_encryptWithSeed(const Ref<NSData>& data, std::string_view seed) {
  if (!data) return nullptr;
  if (seed.empty() && !data->empty()) {  // uncovered: ends the process
    failAssertion("RVF_encryptWithSeed", kSource, kNoLine, "seed.length!=0");
  }
  std::vector<std::byte> bytes(data->bytes().begin(), data->bytes().end());
  const auto key = std::as_bytes(std::span(seed));
  for (std::size_t i = 0; i < bytes.size(); ++i)
    bytes[i] ^= key[i % key.size()];
  return std::make_shared<NSData>(std::move(bytes));
}

Ref<NSData> RVF_decryptWithSeed(const Ref<NSData>& data, std::string_view seed) {
  return RVF_encryptWithSeed(data, seed);
}

}  // namespace rvf
