// SPDX-License-Identifier: Apache-2.0
#include "RVFoundation/Text/NSString-RVFDigests.h"

#include "Platform/Text/MessageDigest.h"

namespace rvf {

std::string RVF_md5(std::string_view text) {
  constexpr std::string_view kDigits = "0123456789abcdef";
  const auto digest = md5Digest(text.substr(0, text.find('\0')));
  std::string result(2 * digest.size(), '0');
  for (std::size_t i = 0; i < digest.size(); ++i) {
    result[2 * i] = kDigits[digest[i] >> 4];
    result[2 * i + 1] = kDigits[digest[i] & 15];
  }
  return result;
}

}  // namespace rvf
