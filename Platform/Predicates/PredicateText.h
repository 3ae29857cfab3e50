// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <string_view>

#include "Platform/Runtime/NSObject.h"

/// How parts of a predicate are written in a format text.
namespace rvf {

/// In double quotes, with backslashes before what would end or change the text.
std::string quotedText(std::string_view text);

/// A key path, with "SELF." before what would read as something else.
std::string textOfKeyPath(std::string_view keyPath);

/// A constant: nil, a text in quotes, a number, a collection in braces, anything else by its
/// description, which does not read back.
std::string textOfConstant(const NSObject* value);

}  // namespace rvf
