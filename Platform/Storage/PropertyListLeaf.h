// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string_view>

#include "Platform/Runtime/NSObject.h"

namespace rvf {

/// The leaves of a property list as XML spells them; white space around them is passed over. Absent
/// for any other text.

/// "-12", "0x1F": from -2^63 to 2^64 - 1.
id integerOfText(std::string_view text);
/// "-1.5e3", "nan", "+infinity". Nothing depends on any locale.
id fractionOfText(std::string_view text);
/// "2001-01-01T00:00:00Z" (ISO 8601): UTC, whole seconds.
id dateOfText(std::string_view text);
/// Base64 (RFC 4648, 4) with its padding, broken into lines or not.
id dataOfBase64(std::string_view text);

}  // namespace rvf
