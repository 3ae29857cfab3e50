// SPDX-License-Identifier: Apache-2.0
//
// Fills any bytes as a format with arguments of every kind: the result is text or an
// `NSInvalidArgumentException`.

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "Platform/Runtime/NSException.h"
#include "Platform/Text/Format.h"
#include "Platform/Values/NSString.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  // Each conversion may print 64 kB; more than this many only take time.
  constexpr std::size_t kLongestFormat = 256;
  if (size > kLongestFormat) return 0;
  const std::string_view format(reinterpret_cast<const char*>(data), size);
  try {
    rvf::stringWithFormat(format, rvf::box("object"), -1, 2.5, "text", 18446744073709551615U, 40,
                          nullptr, -0.0, static_cast<const void*>(data), 1e300);
  } catch (const rvf::NSException& exception) {
    if (exception.name() != rvf::NSInvalidArgumentException) std::abort();
  }
  return 0;
}
