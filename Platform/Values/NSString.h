// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "Platform/Export.h"
#include "Platform/Runtime/NSObject.h"

namespace rvf {

/// Text as an object, for dictionaries, arrays and everything else that holds objects. Typed
/// interfaces take `std::string_view` and return `std::string` instead.
///
/// Immutable UTF-8. Embedded zero bytes and bytes that are no valid UTF-8 are kept as they are.
/// Equality is literal: byte for byte, no normalization.
///
/// Thread: any; immutable. Lifetime: owns its text; views of it end with it.
class RVF_EXPORT NSString final : public NSObject {
 public:
  explicit NSString(std::string text) : text_(std::move(text)) {}

  /// Keeps the bytes whatever they encode.
  static Ref<NSString> stringWithString(std::string_view text);
  /// Strict UTF-8 decoding: absent if the bytes are not valid UTF-8.
  static Ref<NSString> stringWithUTF8Bytes(std::string_view bytes);

  static Class classObject();
  Class isa() const override;

  /// The bytes as they were given, which need not be valid UTF-8.
  const std::string& string() const noexcept { return text_; }
  /// UTF-16 code units.
  std::size_t length() const;
  /// What the text reads as, see `integerValueOfText` and `doubleValueOfText`.
  long integerValue() const;
  float floatValue() const;
  double doubleValue() const;
  /// Negative, 0 or positive: the order by UTF-16 code unit.
  int compare(const NSString& other) const;
  /// See `boolValueOfText`.
  bool boolValue() const noexcept;
  /// In upper case, whatever the user's locale (see `uppercaseText`).
  std::string uppercaseString() const;

  bool isEqual(const NSObject* other) const override;
  std::size_t hash() const override;
  std::string description() const override { return text_; }

 private:
  std::string text_;
};

/// The object form of a text; absent stays absent.
RVF_EXPORT Ref<NSString> box(std::string_view text);
RVF_EXPORT Ref<NSString> box(const std::string& text);
RVF_EXPORT Ref<NSString> box(const char* text);
RVF_EXPORT Ref<NSString> box(const std::optional<std::string>& text);
/// Numbers are boxed in NSNumber.h; without it a literal 0 would be taken for an absent text.
Ref<NSString> box(std::nullptr_t) = delete;

/// The text of an `NSString`; absent for an absent object or one of another class.
RVF_EXPORT std::optional<std::string> unboxText(const id& object);

}  // namespace rvf
