// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

#include "Platform/Export.h"
#include "Platform/Runtime/NSObject.h"
#include "Platform/Storage/BinaryPropertyListReader.h"

namespace rvf {

/// Writes a property list in the binary form, version 00: equal leaves once, and collections as
/// often as there are objects. The time is proportional to their number and size.
///
/// Empty, with `problem` saying why, if an object of another class, an absent one or a text that is
/// not UTF-8 is among them, a key is no text, collections stand more than `kDeepestPropertyList`
/// deep in one another, or the reader would refuse the list because of what is shared.
RVF_EXPORT std::string writtenBinaryPropertyList(const id& root, ArchiveReferences references,
                                                 std::string& problem);

}  // namespace rvf
