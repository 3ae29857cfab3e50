// SPDX-License-Identifier: Apache-2.0
#include "RVFoundation/Text/NSString-RVFExtensions.h"

#include "Platform/Text/PercentEncoding.h"

namespace rvf {

std::optional<std::string> RVF_stringByEscapingForURLArgument(std::string_view text) {
  return addPercentEscapes(text);
}

std::optional<std::string> RVF_stringByDecodingURLArguments(std::string_view text) {
  return removePercentEscapes(text);
}

}  // namespace rvf
