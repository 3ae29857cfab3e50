// SPDX-License-Identifier: Apache-2.0
#include "RVFoundation/RuntimeServices/PropertyAttributes.h"

#include "Platform/Runtime/ClassRecord.h"
#include "Platform/Runtime/NSAssertionHandler.h"
#include "RVFoundation/RuntimeServices/RVFPropertyHelpers.h"

namespace rvf {
namespace {

constexpr std::size_t kCapacity = RVFPropertyInfo::Text::kCapacity;
constexpr std::string_view kSetterStart = "set";

// uncovered: ends the process
[[noreturn]] void failParsing(std::string_view condition) {
  failAssertion("RVFParsePropertyAttributes", "RVFoundation/RVFPropertyHelpers", 49, condition);
}

std::string_view checkedValue(std::string_view value) {
  if (value.size() > kCapacity) failParsing("value.length <= 64");
  return value;
}

/// As in the "C" locale, whatever the process has set.
char upperCase(char character) noexcept {
  const bool isLower = character >= 'a' && character <= 'z';
  return isLower ? static_cast<char>(character - 'a' + 'A') : character;
}

}  // namespace

std::size_t writeGeneratedSetter(std::string_view name, char* text, std::size_t capacity) noexcept {
  std::size_t length = 0;
  const auto append = [&](std::string_view part) {
    length += part.copy(text + length, capacity - length);
  };
  append(kSetterStart);
  if (!name.empty()) {
    const char first = upperCase(name.front());
    append({&first, 1});
    append(name.substr(1));
  }
  append(":");
  return length;
}

PropertyAttributes::PropertyAttributes(const Property& property) : name_(property.name) {
  std::string_view rest = property.attributes;
  bool isAtEnd = rest.empty();
  while (!isAtEnd) {
    if (rest.empty()) failParsing("0");  // an attribute without even a letter
    const std::size_t comma = rest.find(',', 1);
    readAttribute(rest.front(), rest.substr(1, comma == rest.npos ? comma : comma - 1));
    isAtEnd = comma == rest.npos;
    rest.remove_prefix(isAtEnd ? rest.size() : comma + 1);
  }
  if (getter_.empty()) getter_ = name_.substr(0, kCapacity);
}

void PropertyAttributes::readAttribute(char letter, std::string_view value) {
  switch (letter) {
    case 'T':
      type_ = checkedValue(value);
      return;
    case 'G':
      getter_ = checkedValue(value);
      return;
    case 'S':
      setter_ = checkedValue(value);
      return;
    case 'V':
      ivar_ = checkedValue(value);
      return;
    default:
      break;
  }
  if (kFlags.find(letter) == kFlags.npos) failParsing("0");
  flags_ |= bitOf(letter);
}

bool PropertyAttributes::isAccessor(std::string_view selectorName) const noexcept {
  if (selectorName == getter_) return true;
  if (!hasGeneratedSetter()) return selectorName == setter_;
  if (!selectorName.starts_with(kSetterStart)) return false;
  char setter[kCapacity - 1];  // a terminator stands behind it in the record
  return selectorName ==
         std::string_view(setter, writeGeneratedSetter(name_, setter, kCapacity - 1));
}

std::optional<PropertyAttributes> findPropertyForSelector(Class aClass, SEL selector) {
  if (!selector) return std::nullopt;
  for (; aClass; aClass = class_getSuperclass(aClass)) {
    for (const Property& property : aClass->properties()) {
      const PropertyAttributes attributes(property);
      if (attributes.isAccessor(selector.name())) return attributes;
    }
  }
  return std::nullopt;
}

}  // namespace rvf
