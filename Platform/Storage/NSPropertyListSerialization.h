// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Platform/Export.h"
#include "Platform/Runtime/NSObject.h"
#include "Platform/Values/NSData.h"
#include "Platform/Values/NSError.h"

namespace rvf {

/// The forms of a property list.
enum class NSPropertyListFormat : unsigned long {
  olderText = 1,  ///< { key = value; list = (a, b); data = <0fbd77>; }; read only
  xml = 100,
  binary = 200,  ///< version 00
};

/// Codes in `NSCocoaErrorDomain`.
inline constexpr long NSPropertyListReadCorruptError = 3840;
inline constexpr long NSPropertyListWriteInvalidError = 3851;

/// A property list is a tree of dictionaries with text keys, arrays, texts, data blocks, dates and
/// numbers, among them truth values. Here it becomes bytes, and bytes become it.
///
///     Ref<NSError> error;
///     const id root = NSPropertyListSerialization::propertyListWithData(data, nullptr, &error);
///
/// What is read is immutable. A truth value is a number of type code "c"; an integer "q", or "Q"
/// beyond 2^63 - 1; a fraction "d". Of equal keys in one dictionary the last counts. In the older
/// text form every leaf is a text or a data block, and a file of one bare word is a text.
///
/// Limits: 256 collections inside one another, in both directions. Dates in XML are cut to whole
/// seconds and lie in the years 1000 to 9999. Keys with U+0000 are neither read nor written; texts
/// with it are read, but not written. XML has no room for most other controls either. One text or
/// data block in XML may be 10 MB long. Binary lists without room for themselves (shared
/// collections that unfold to more than 256 MB, or four times the file) are refused, and so are
/// references of an archive.
///
/// Thread-safe.
class RVF_EXPORT NSPropertyListSerialization final : public NSObject {
 public:
  NSPropertyListSerialization() = delete;

  static Class classObject();

  /// Reads bytes of any form, stores which one if asked, and answers the root. Absent with error
  /// `NSPropertyListReadCorruptError` for bytes that are no property list; "NSDebugDescription" in
  /// its user info says what is wrong with them.
  static id propertyListWithData(const Ref<NSData>& data, NSPropertyListFormat* format = nullptr,
                                 Ref<NSError>* error = nullptr);

  /// Absent with error `NSPropertyListWriteInvalidError` if an object of another class, or a value
  /// that the form has no room for, is among the objects; also for the older text form.
  static Ref<NSData> dataWithPropertyList(const id& propertyList, NSPropertyListFormat format,
                                          Ref<NSError>* error = nullptr);
};

}  // namespace rvf
