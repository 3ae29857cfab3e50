// SPDX-License-Identifier: Apache-2.0
#include "tests/RVFoundation/Streaming/CompressedBytes.h"

#include <zlib.h>

#include <random>
#include <stdexcept>

namespace rvf::test {
namespace {

std::string finished(z_stream& stream, std::string_view content) {
  std::string bytes(deflateBound(&stream, content.size()), '\0');
  stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(content.data()));
  stream.avail_in = static_cast<uInt>(content.size());
  stream.next_out = reinterpret_cast<Bytef*>(bytes.data());
  stream.avail_out = static_cast<uInt>(bytes.size());
  if (deflate(&stream, Z_FINISH) != Z_STREAM_END) throw std::runtime_error("deflate");
  bytes.resize(stream.total_out);
  deflateEnd(&stream);
  return bytes;
}

}  // namespace

std::string compressedBytes(std::string_view content, Wrapper wrapper) {
  z_stream stream = {};
  const int windowBits = wrapper == Wrapper::kGzip ? MAX_WBITS + 16 : MAX_WBITS;
  deflateInit2(&stream, Z_DEFAULT_COMPRESSION, Z_DEFLATED, windowBits, 8, Z_DEFAULT_STRATEGY);
  return finished(stream, content);
}

std::string bytesWithPresetDictionary(std::string_view content) {
  z_stream stream = {};
  deflateInit(&stream, Z_DEFAULT_COMPRESSION);
  const std::string_view dictionary = "item name price";
  deflateSetDictionary(&stream, reinterpret_cast<const Bytef*>(dictionary.data()),
                       static_cast<uInt>(dictionary.size()));
  return finished(stream, content);
}

std::string noise(std::size_t length, unsigned seed) {
  std::minstd_rand random(seed);
  std::string bytes(length, '\0');
  for (char& byte : bytes)
    byte = static_cast<char>(random() >> 8);
  return bytes;
}

}  // namespace rvf::test
