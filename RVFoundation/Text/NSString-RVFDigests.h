// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <string_view>

#include "Platform/Export.h"

namespace rvf {

/// The MD5 digest (RFC 1321) of the text's UTF-8 up to its first zero byte, as 32 lower-case
/// hexadecimal digits.
RVF_EXPORT std::string RVF_md5(std::string_view text);

}  // namespace rvf
