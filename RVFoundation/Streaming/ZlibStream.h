// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <zlib.h>

#include <cstddef>
#include <memory>

#include "Platform/Values/NSData.h"

namespace rvf {

/// The version of zlib's interface that the library is written to.
inline constexpr const char* kZlibInterface = "1.2.8";
inline constexpr int kGzipWrapper = 31;      ///< 15-bit window
inline constexpr int kDetectedWrapper = 47;  ///< 15-bit window, zlib or gzip by its header

/// Makes a block the input of a stream, which must not outlive it; zlib counts input in 32 bits.
inline void setInput(z_stream& stream, const NSData& data) {
  stream.next_in =
      reinterpret_cast<Bytef*>(const_cast<std::byte*>(data.bytes().data()));  // only read
  stream.avail_in = static_cast<uInt>(data.length());
}

/// Frees what zlib keeps for a stream that was started, also when an exception passes by.
template <int (*end)(z_stream*)>
struct StreamEnd {
  void operator()(z_stream* stream) const noexcept { end(stream); }
};
using StartedDeflate = std::unique_ptr<z_stream, StreamEnd<&deflateEnd>>;
using StartedInflate = std::unique_ptr<z_stream, StreamEnd<&inflateEnd>>;

}  // namespace rvf
