// SPDX-License-Identifier: Apache-2.0
#include "Platform/Text/NSScanner.h"

#include <unicode/uchar.h>

#include "Platform/Runtime/ClassBuilder.h"
#include "Platform/Runtime/ClassRegistration.h"
#include "Platform/Text/NumberReading.h"
#include "Platform/Text/Text.h"

namespace rvf {
namespace {

const ClassRegistration kRegistration(&NSScanner::classObject);

bool isSameLetter(char32_t a, char32_t b) noexcept {
  const auto folded = [](char32_t c) {
    return u_foldCase(static_cast<UChar32>(c), U_FOLD_CASE_DEFAULT);
  };
  return a == b || folded(a) == folded(b);
}

}  // namespace

Ref<NSScanner> NSScanner::scannerWithString(std::string_view text) {
  return std::make_shared<NSScanner>(text);
}

Class NSScanner::classObject() {
  static const Class kClass =
      ClassBuilder<NSScanner>("NSScanner", NSObject::classObject()).registered();
  return kClass;
}

Class NSScanner::isa() const {
  return classObject();
}

std::size_t NSScanner::scanLocation() const noexcept {
  return utf16Length(std::string_view(text_).substr(0, position_));
}

bool NSScanner::isAtEnd() const noexcept {
  return restBehindSkipped().empty();
}

std::string_view NSScanner::restBehindSkipped() const noexcept {
  return skipped_ ? withoutPrefix(rest(), skipped_) : rest();
}

bool NSScanner::scanInt(std::int32_t* value) noexcept {
  const std::string_view start = restBehindSkipped();
  const auto number = leadingInteger(start);
  if (!number) return false;
  if (value) *value = number->value;
  moveTo(start.substr(number->length));
  return true;
}

bool NSScanner::scanString(std::string_view text) noexcept {
  const std::string_view start = restBehindSkipped();
  const std::size_t length = matchLength(start, text);
  if (length > 0) moveTo(start.substr(length));
  return length > 0;
}

bool NSScanner::scanUpToString(std::string_view text, std::string* passed) {
  const std::string_view start = restBehindSkipped();
  std::string_view end = start;
  while (!end.empty() && matchLength(end, text) == 0)
    end.remove_prefix(firstUtf8Unit(end).length);
  if (end.size() == start.size()) return false;
  if (passed) *passed = start.substr(0, start.size() - end.size());
  moveTo(end);
  return true;
}

std::size_t NSScanner::matchLength(std::string_view rest, std::string_view text) const noexcept {
  if (isCaseSensitive_) return rest.starts_with(text) ? text.size() : 0;
  std::string_view left = rest;
  for (; !text.empty(); text.remove_prefix(firstUtf8Unit(text).length)) {
    if (left.empty()) return 0;
    const Utf8Unit unit = firstUtf8Unit(left);
    const Utf8Unit wanted = firstUtf8Unit(text);
    if (unit.wellFormed != wanted.wellFormed) return 0;
    if (unit.wellFormed ? !isSameLetter(unit.codePoint, wanted.codePoint)
                        : left.front() != text.front()) {
      return 0;
    }
    left.remove_prefix(unit.length);
  }
  return rest.size() - left.size();
}

}  // namespace rvf
