// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string_view>

#include "Platform/Runtime/NSObject.h"
#include "Platform/Storage/NSPropertyListSerialization.h"

namespace rvf {

enum class PropertyListKind {
  text,
  data,
  date,
  truth,
  integer,
  fraction,
  array,
  dictionary,
  none,  ///< not of a class that property lists are made of
};

/// What an object is in a property list; its elements are not looked at.
PropertyListKind propertyListKind(const NSObject& object);

/// Why a form has no room for a text: it is not UTF-8, or holds a character that XML excludes (XML
/// 1.0, 2.2). Empty if there is room.
std::string_view problemOfText(std::string_view text, NSPropertyListFormat format) noexcept;

/// A deep immutable copy that shares what is immutable anyway, to be put into a dictionary. Raises
/// `NSInvalidArgumentException` if the object is absent or no property list that the binary form
/// has room for, also because it unfolds too far. Linear in the number of distinct objects.
id propertyListSnapshot(const id& object);

/// Raises `NSInvalidArgumentException` if no dictionary of a property list may have the key.
void requirePropertyListKey(std::string_view key);

}  // namespace rvf
