// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <array>
#include <cstdint>
#include <string_view>

#include "Platform/Export.h"

namespace rvf {

/// The MD5 digest of the bytes (RFC 1321). It protects nothing: use it to tell texts apart, never
/// for passwords or signatures.
RVF_EXPORT std::array<std::uint8_t, 16> md5Digest(std::string_view bytes);

}  // namespace rvf
