// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "Platform/Export.h"

namespace rvf {

/// Escapes every byte of the UTF-8 text but ASCII letters, digits and "-_.~" as "%" and two
/// upper-case hexadecimal digits (RFC 3986, 2.1 and 2.3). Absent for ill-formed UTF-8.
RVF_EXPORT std::optional<std::string> addPercentEscapes(std::string_view text);

/// Replaces every escape, all at once, by the byte that it stands for; "+" stays as it is. Absent
/// if a "%" is not followed by two hexadecimal digits or the result is ill-formed UTF-8.
RVF_EXPORT std::optional<std::string> removePercentEscapes(std::string_view text);

/// Whether two hexadecimal digits follow every "%".
RVF_EXPORT bool hasOnlyWholePercentEscapes(std::string_view text) noexcept;

}  // namespace rvf
