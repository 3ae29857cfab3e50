// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "Platform/Export.h"
#include "Platform/Runtime/NSObject.h"
#include "Platform/Text/Utf8.h"

namespace rvf {

/// Reads a text piece by piece from its start:
///
///     const auto scanner = NSScanner::scannerWithString(" 12 kg");
///     std::int32_t amount = 0;
///     scanner->scanInt(&amount) && scanner->scanString("KG");   // true, 12
///
/// Every scan first passes over the characters to be skipped. It then answers true and moves behind
/// what it read, or answers false, does not move, and leaves its output as it was.
///
/// Thread: one at a time. Lifetime: keeps a copy of the text.
class RVF_EXPORT NSScanner final : public NSObject {
 public:
  explicit NSScanner(std::string_view text) : text_(text) {}

  /// Stands before the first character.
  static Ref<NSScanner> scannerWithString(std::string_view text);

  static Class classObject();
  Class isa() const override;

  /// What is passed over before a scan: white space and line breaks unless set; null for nothing.
  void setCharactersToBeSkipped(CharacterSet characters) noexcept { skipped_ = characters; }
  /// Whether letters match only themselves; else, as it is at first, also their other case.
  void setCaseSensitive(bool isSensitive) noexcept { isCaseSensitive_ = isSensitive; }

  /// UTF-16 code units before what is read next.
  std::size_t scanLocation() const noexcept;
  /// Whether only characters to be skipped are left.
  bool isAtEnd() const noexcept;

  /// An optional sign and ASCII digits directly behind it. A number out of range is read to its end
  /// and gives the nearest limit. False if there is no digit. `value` may be null.
  bool scanInt(std::int32_t* value = nullptr) noexcept;
  /// This text; false if another one follows, or for the empty text.
  bool scanString(std::string_view text) noexcept;
  /// Everything up to this text, or to the end where it does not occur. False if that is nothing.
  /// `passed`, which may be null, receives what was moved over.
  bool scanUpToString(std::string_view text, std::string* passed = nullptr);

 private:
  std::string_view rest() const noexcept { return std::string_view(text_).substr(position_); }
  std::string_view restBehindSkipped() const noexcept;
  /// The length in bytes of what matches the text at the start of `rest`; 0 if that does not match.
  std::size_t matchLength(std::string_view rest, std::string_view text) const noexcept;
  void moveTo(std::string_view rest) noexcept { position_ = text_.size() - rest.size(); }

  std::string text_;
  std::size_t position_ = 0;  // bytes
  CharacterSet skipped_ = &isWhiteSpaceOrNewline;
  bool isCaseSensitive_ = false;
};

}  // namespace rvf
