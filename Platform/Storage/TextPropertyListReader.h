// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <string_view>

#include "Platform/Runtime/NSObject.h"

namespace rvf {

/// Reads a property list in the older text form:
///
///     // Comments, also /* these */, may stand between any two pieces.
///     { name = "Till 3"; columns = (id, price); picture = <0fbd77 1c>; }
///
/// A dictionary's entries all end with ";"; the comma behind an array's last element is optional. A
/// text stands bare if it consists of ASCII letters, digits and "_$/:.-", else in single or double
/// quotes. Within them a backslash begins one of `\a \b \f \n \r \t \v`, up to three octal digits
/// or `\U` with four hexadecimal ones (two UTF-16 halves make one character), and stands for the
/// next character otherwise. UTF-8 only.
///
/// Absent if the text is anything else; `problem` then says why.
id readTextPropertyList(std::string_view text, std::string& problem);

}  // namespace rvf
