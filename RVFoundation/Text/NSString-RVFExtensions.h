// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "Platform/Export.h"

namespace rvf {

/// The text as one value of a URL query: every byte of its UTF-8 but ASCII letters, digits and
/// "-_.~" becomes "%" and two upper-case hexadecimal digits, so "a b&c" becomes "a%20b%26c".
/// Absent for ill-formed UTF-8, which has no escaped form.
RVF_EXPORT std::optional<std::string> RVF_stringByEscapingForURLArgument(std::string_view text);

/// The text with every percent escape replaced by the byte that it stands for; "+" is no blank.
/// Absent if a "%" is not followed by two hexadecimal digits or the result is ill-formed UTF-8.
RVF_EXPORT std::optional<std::string> RVF_stringByDecodingURLArguments(std::string_view text);

}  // namespace rvf
