// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <string_view>

#include "Platform/Runtime/NSObject.h"

namespace rvf {

/// Whether a property list may hold references, see `ArchiveReference`.
enum class ArchiveReferences { refused, allowed };

/// Reads a property list in the binary form, version 00. What its root does not reach is not looked
/// at. An object that the list holds once and refers to several times is one object afterwards.
///
/// Absent, with `problem` saying why, if an offset, length or reference leads out of the file, a
/// key is no text, an ASCII text none, an object of an unknown kind or contained in itself; if
/// collections stand more than `kDeepestPropertyList` deep in one another; or if whoever walks the
/// whole would come by more than 64 MB, and 64 times the file, because objects are shared. Time and
/// memory stay within the same limits.
id readBinaryPropertyList(std::string_view bytes, ArchiveReferences references,
                          std::string& problem);

}  // namespace rvf
