// SPDX-License-Identifier: Apache-2.0
#include "Platform/Storage/PropertyListValue.h"

#include <utility>
#include <vector>

#include "Platform/Runtime/NSException.h"
#include "Platform/Runtime/Runtime.h"
#include "Platform/Storage/PropertyListError.h"
#include "Platform/Text/Text.h"
#include "Platform/Values/NSArray.h"
#include "Platform/Values/NSData.h"
#include "Platform/Values/NSDate.h"
#include "Platform/Values/NSDictionary.h"
#include "Platform/Values/NSNumber.h"
#include "Platform/Values/NSString.h"

namespace rvf {
namespace {

[[noreturn]] void refuse(std::string_view what) {
  NSException::raise(NSInvalidArgumentException,
                     "Attempt to insert non-property list object: " + std::string(what));
}

PropertyListKind kindOfNumber(const NSNumber& number) {
  const std::string& code = number.objCType();
  if (code == "f" || code == "d") return PropertyListKind::fraction;
  // A number of type "signed char" has the code of a truth value.
  const bool isTruth = code == "c" && (number.intValue() == 0 || number.intValue() == 1);
  return isTruth ? PropertyListKind::truth : PropertyListKind::integer;
}

void requireText(std::string_view text) {
  const std::string problem = problemOfText(text, NSPropertyListFormat::binary);
  if (!problem.empty()) refuse(problem);
}

id snapshot(const id& object, std::size_t depth);

id snapshotOfArray(const NSArray& array, std::size_t depth) {
  std::vector<id> objects;
  objects.reserve(array.count());
  for (const id& element : array)
    objects.push_back(snapshot(element, depth + 1));
  return NSArray::arrayWithObjects(std::move(objects));
}

id snapshotOfDictionary(const NSDictionary& dictionary, std::size_t depth) {
  NSDictionary::Entries entries;
  entries.reserve(dictionary.count());
  for (const auto& [key, value] : dictionary) {
    const std::string* text = textOfObject(*key);
    if (!text) refuse("a key of class " + std::string(class_getName(key->isa())));
    requirePropertyListKey(*text);
    entries.emplace(key, snapshot(value, depth + 1));
  }
  return std::make_shared<NSDictionary>(std::move(entries));
}

id snapshot(const id& object, std::size_t depth) {
  if (!object) refuse("absent");
  const PropertyListKind kind = propertyListKind(*object);
  const bool isCollection = kind == PropertyListKind::array || kind == PropertyListKind::dictionary;
  if (isCollection && depth >= kDeepestPropertyList) refuse("nested too deep");
  switch (kind) {
    case PropertyListKind::array:
      return snapshotOfArray(static_cast<const NSArray&>(*object), depth);
    case PropertyListKind::dictionary:
      return snapshotOfDictionary(static_cast<const NSDictionary&>(*object), depth);
    case PropertyListKind::text:
      requireText(static_cast<const NSString&>(*object).string());
      return object;
    case PropertyListKind::none:
      refuse(object->description());
    default:
      return object;
  }
}

/// XML 1.0, 2.2: everything but most controls and the two last code points of the first plane.
bool isXMLCharacter(char32_t c) noexcept {
  if (c < 0x20) return c == '\t' || c == '\n' || c == '\r';
  return c != 0xFFFE && c != 0xFFFF;
}

}  // namespace

PropertyListKind propertyListKind(const NSObject& object) {
  if (textOfObject(object)) return PropertyListKind::text;
  if (dynamic_cast<const NSDictionary*>(&object)) return PropertyListKind::dictionary;
  if (dynamic_cast<const NSArray*>(&object)) return PropertyListKind::array;
  if (const auto* number = dynamic_cast<const NSNumber*>(&object)) return kindOfNumber(*number);
  if (dynamic_cast<const NSData*>(&object)) return PropertyListKind::data;
  if (dynamic_cast<const NSDate*>(&object)) return PropertyListKind::date;
  return PropertyListKind::none;
}

std::string problemOfText(std::string_view text, NSPropertyListFormat format) {
  if (!isValidUtf8(text)) return "a text that is not UTF-8";
  // libplist takes texts for equal that differ behind U+0000 only, and writes one for both.
  if (text.find('\0') != std::string_view::npos) return "a text with U+0000";
  if (format != NSPropertyListFormat::xml) return {};
  while (!text.empty()) {
    const Utf8Unit unit = firstUtf8Unit(text);
    if (!isXMLCharacter(unit.codePoint)) return "a character that XML excludes";
    text.remove_prefix(unit.length);
  }
  return {};
}

id propertyListSnapshot(const id& object) {
  return snapshot(object, 1);
}

void requirePropertyListKey(std::string_view key) {
  requireText(key);
}

}  // namespace rvf
