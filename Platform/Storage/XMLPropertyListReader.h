// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <limits>
#include <string>
#include <string_view>

#include "Platform/Runtime/NSObject.h"

namespace rvf {

/// In bytes; libxml2 counts with `int`.
inline constexpr std::size_t kLongestXMLPropertyList = std::numeric_limits<int>::max();

/// Reads a property list in XML, in any encoding that its declaration may name. Touches neither
/// disk nor network, and follows no entity but XML's own five. Absent if the bytes are not
/// well-formed XML or no property list; `problem` then says why.
id readXMLPropertyList(std::string_view bytes, std::string& problem);

}  // namespace rvf
