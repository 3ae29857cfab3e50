// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <any>
#include <string_view>

#include "Platform/Runtime/NSObject.h"

namespace rvf {

/// Whether values of this type encoding have an object form: integers, flags, fractions, records,
/// objects, text and blocks. Pointers, selectors and classes have none.
bool isBoxableEncoding(std::string_view encoding) noexcept;

/// What `objectOfValue` and `valueOfObject` go by: the first letter of the encoding; '?' for
/// blocks.
char boxingCode(std::string_view encoding) noexcept;

/// Whether such values have no form for "absent".
bool isScalarEncoding(std::string_view encoding) noexcept;

/// The object form of a run-time value: an `NSNumber` of the type code, an `NSValue` for a record,
/// an object itself, an opaque object for a block.
id objectOfValue(const std::any& value, char typeCode);

/// The run-time value of a present object for a method or variable. A number is read as that type,
/// wrapping as a C cast; a text is read as a number. Raises the unrecognized-selector exception for
/// an object that has no such reading.
std::any valueOfObject(const id& object, char typeCode);

}  // namespace rvf
