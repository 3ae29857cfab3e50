// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "Platform/Export.h"
#include "Platform/Runtime/NSObject.h"
#include "Platform/Values/NSDictionary.h"

namespace rvf {

/// Text with attributes (font, colour, …) over its whole length. Immutable, so safe to share
/// between threads: mutable attributes are copied.
///
/// Thread: any; immutable. Lifetime: owns text and attributes.
class RVF_EXPORT NSAttributedString final : public NSObject {
 public:
  /// Absent attributes are none. Raises `NSInvalidArgumentException` for absent text.
  NSAttributedString(std::optional<std::string_view> text, const Ref<NSDictionary>& attributes);

  /// As the constructor.
  static Ref<NSAttributedString> attributedStringWithString(std::optional<std::string_view> text,
                                                            const Ref<NSDictionary>& attributes);

  static Class classObject();
  Class isa() const override;

  /// The text without its attributes, UTF-8.
  const std::string& string() const noexcept { return text_; }
  /// UTF-16 code units.
  std::size_t length() const;
  /// Raises `NSRangeException` beyond the last UTF-16 code unit.
  Ref<NSDictionary> attributesAtIndex(std::size_t index) const;

  bool isEqual(const NSObject* other) const override;
  std::size_t hash() const override;
  std::string description() const override { return text_; }

 private:
  std::string text_;
  Ref<NSDictionary> attributes_;
};

}  // namespace rvf
