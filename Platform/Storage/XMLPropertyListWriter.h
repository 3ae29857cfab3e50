// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

#include "Platform/Runtime/NSObject.h"

namespace rvf {

/// Writes a property list in XML. Empty, with `problem` saying why, if an object of another class
/// or a value that XML has no room for is among the objects, collections stand more than
/// `kDeepestPropertyList` deep in one another, or it would be longer than
/// `kLongestXMLPropertyList`.
std::string writtenXMLPropertyList(const id& root, std::string& problem);

}  // namespace rvf
