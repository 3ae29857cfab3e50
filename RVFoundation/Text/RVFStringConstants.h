// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string_view>

namespace rvf {

/// PARAGRAPH SEPARATOR.
inline constexpr std::string_view RVFStringNewParagraph = "\u2029";
/// LINE SEPARATOR: a new line in the same paragraph.
inline constexpr std::string_view RVFStringNewLine = "\u2028";
/// HORIZONTAL ELLIPSIS, "…".
inline constexpr std::string_view RVFStringEllipsis = "\u2026";

}  // namespace rvf
