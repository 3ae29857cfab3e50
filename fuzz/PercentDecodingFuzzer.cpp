// SPDX-License-Identifier: Apache-2.0
//
// Decodes and escapes any bytes: what is decoded is well-formed UTF-8 and not longer, and what is
// escaped decodes to the same text.

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "Platform/Text/Text.h"
#include "RVFoundation/Text/NSString-RVFExtensions.h"

namespace {

void require(bool isTrue) {
  if (!isTrue) std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  if (const auto decoded = rvf::RVF_stringByDecodingURLArguments(text)) {
    require(rvf::isValidUtf8(*decoded) && decoded->size() <= size);
    require(rvf::RVF_stringByDecodingURLArguments(
                *rvf::RVF_stringByEscapingForURLArgument(*decoded)) == decoded);
  }
  const auto escaped = rvf::RVF_stringByEscapingForURLArgument(text);
  require(escaped.has_value() == rvf::isValidUtf8(text));
  if (escaped) require(rvf::RVF_stringByDecodingURLArguments(*escaped) == text);
  return 0;
}
