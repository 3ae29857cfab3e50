// SPDX-License-Identifier: Apache-2.0
#include "Platform/Text/MessageDigest.h"

#include <md5.h>

namespace rvf {

std::array<std::uint8_t, 16> md5Digest(std::string_view bytes) {
  std::array<std::uint8_t, MD5_DIGEST_LENGTH> digest{};
  MD5_CTX context;
  MD5Init(&context);
  MD5Update(&context, reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
  MD5Final(digest.data(), &context);
  return digest;
}

}  // namespace rvf
