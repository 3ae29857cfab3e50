// SPDX-License-Identifier: Apache-2.0
//
// Fills any bytes as a format, with arguments of every kind and with the rest of the bytes as an
// argument: the result is text or an `NSInvalidArgumentException`. The format ends at the first
// zero byte.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <limits>
#include <string_view>

#include "Platform/Runtime/NSException.h"
#include "Platform/Text/Format.h"
#include "Platform/Values/NSString.h"

namespace {

template <class... Arguments>
void fill(std::string_view format, const Arguments&... arguments) {
  try {
    rvf::stringWithFormat(format, arguments...);
  } catch (const rvf::NSException& exception) {
    if (exception.name() != rvf::NSInvalidArgumentException) std::abort();
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  // Each conversion may print 64 kB; more than this many only take time.
  constexpr std::size_t kLongestFormat = 256;
  const std::string_view bytes(reinterpret_cast<const char*>(data), size);
  const std::string_view format = bytes.substr(0, bytes.find('\0'));
  if (format.size() > kLongestFormat) return 0;
  const std::string_view rest = bytes.substr(std::min(format.size() + 1, size));
  fill(format, rvf::box("object"), -1, 2.5, "text", 18446744073709551615U, 40, nullptr, -0.0,
       static_cast<const void*>(data), 1e300);
  // Texts of any bytes, numbers at their limits, and a "*" that asks for a huge width.
  fill(format, rest, rvf::box(rest), rest, std::numeric_limits<int>::min(), rest,
       std::numeric_limits<double>::quiet_NaN(), rest, std::numeric_limits<int>::max());
  fill(format, std::numeric_limits<double>::infinity(), std::numeric_limits<long long>::min(),
       5e-324, -1, static_cast<int>(size), rest);
  fill(format);
  return 0;
}
