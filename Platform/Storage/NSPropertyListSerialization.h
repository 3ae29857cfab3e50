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
/// seconds and lie in the years 1000 to 9999. XML has no room for most controls, U+0000 among them.
/// XML may be 2 GB long; if it declares entities or names another encoding than UTF-8, a text or
/// data block in it 10 MB, and collections 254 deep. What a binary list holds once and refers to
/// several times is one object; lists that would come to more than 64 MB, and 64 times the file, if
/// it were not, are neither read nor written, in XML neither. References of an archive are refused.
///
/// Thread: any; without state. Lifetime: what is read belongs to the caller.
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
