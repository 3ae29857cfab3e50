// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string_view>

namespace rvf {

/// Cuts well-formed UTF-8 off the front of a text, at most about a million bytes, because the
/// character library counts in 32 bits. Empty if the text begins with a byte that belongs to no
/// character; that byte stays.
std::string_view takeWellFormedPiece(std::string_view& text) noexcept;

}  // namespace rvf
