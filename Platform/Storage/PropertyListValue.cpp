// SPDX-License-Identifier: Apache-2.0
#include "Platform/Storage/PropertyListValue.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <typeinfo>
#include <unordered_map>
#include <unordered_set>
#include <utility>
#include <vector>

#include "Platform/Runtime/NSException.h"
#include "Platform/Runtime/Runtime.h"
#include "Platform/Storage/BinaryPropertyListForm.h"
#include "Platform/Storage/BinaryPropertyListWriter.h"
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
  const std::string_view problem = problemOfText(text, NSPropertyListFormat::binary);
  if (!problem.empty()) refuse(problem);
}

/// Copies every collection once, however often it is shared.
class Snapshots final {
 public:
  id snapshotOf(const id& root) {
    Copy copy = copyOf(root, 1);
    std::string problem;
    // Only what is large at all may unfold too far for its size, which the written bytes tell.
    const bool isSmall = copy.cost <= kBinaryUsualLimit;
    if (!isSmall &&
        writtenBinaryPropertyList(copy.object, ArchiveReferences::refused, problem).empty())
      refuse(problem);
    return std::move(copy.object);
  }

 private:
  struct Copy {
    id object;
    std::uint64_t cost = kBinaryObjectCost;  ///< of passing all of it, see `unfoldsTooFar`
    std::size_t height = 0;                  ///< collections inside one another
  };

  Copy copyOf(const id& object, std::size_t depth) {
    if (!object) refuse("absent");
    const PropertyListKind kind = propertyListKind(*object);
    switch (kind) {
      case PropertyListKind::array:
      case PropertyListKind::dictionary:
        return copyOfCollection(object, kind, depth);
      case PropertyListKind::text: {
        const std::string& text = static_cast<const NSString&>(*object).string();
        if (text.size() <= kLongLeaf || longTexts_.insert(object.get()).second) requireText(text);
        return {object, costOfLeaf(text.size())};
      }
      case PropertyListKind::data:
        return {object, costOfLeaf(static_cast<const NSData&>(*object).length())};
      case PropertyListKind::none:
        refuse(object->description());
      default:
        return {object, costOfLeaf(sizeof(double))};
    }
  }

  Copy copyOfCollection(const id& object, PropertyListKind kind, std::size_t depth) {
    const auto known = copies_.find(object.get());
    const std::size_t height = known == copies_.end() ? 1 : known->second.height;
    if (depth + height - 1 >= kDeepestPropertyList) refuse("nested too deep");
    if (known != copies_.end()) return known->second;
    Copy copy;
    copy.object = kind == PropertyListKind::array ? copyOfArray(object, copy, depth + 1)
                                                  : copyOfDictionary(object, copy, depth + 1);
    ++copy.height;
    copies_.emplace(object.get(), copy);
    return copy;
  }

  id copyOfElement(const id& element, Copy& collection, std::size_t depth) {
    Copy copy = copyOf(element, depth);
    collection.cost = addedCost(collection.cost, copy.cost);
    collection.height = std::max(collection.height, copy.height);
    return std::move(copy.object);
  }

  /// The array itself if it is immutable to its leaves.
  id copyOfArray(const id& object, Copy& copy, std::size_t depth) {
    const auto& array = static_cast<const NSArray&>(*object);
    bool isShared = typeid(array) == typeid(NSArray);
    std::vector<id> objects;
    objects.reserve(array.count());
    for (const id& element : array) {
      objects.push_back(copyOfElement(element, copy, depth));
      isShared = isShared && objects.back() == element;
    }
    return isShared ? object : NSArray::arrayWithObjects(std::move(objects));
  }

  /// The dictionary itself if it is immutable to its leaves.
  id copyOfDictionary(const id& object, Copy& copy, std::size_t depth) {
    const auto& dictionary = static_cast<const NSDictionary&>(*object);
    bool isShared = typeid(dictionary) == typeid(NSDictionary);
    NSDictionary::Entries entries;
    if (!isShared) entries.reserve(dictionary.count());
    for (const auto& [key, value] : dictionary) {
      const std::string* text = textOfObject(*key);
      if (!text) refuse("a key of class " + std::string(class_getName(key->isa())));
      requirePropertyListKey(*text);
      copy.cost = addedCost(copy.cost, costOfLeaf(text->size()));
      id element = copyOfElement(value, copy, depth);
      isShared = isShared && element == value;
      entries.emplace(key, std::move(element));
    }
    return isShared ? object : std::make_shared<NSDictionary>(std::move(entries));
  }

  std::unordered_map<const NSObject*, Copy> copies_;
  std::unordered_set<const NSObject*> longTexts_;  // that were looked at
};

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

std::string_view problemOfText(std::string_view text, NSPropertyListFormat format) noexcept {
  if (!isValidUtf8(text)) return "a text that is not UTF-8";
  if (format != NSPropertyListFormat::xml) return {};
  while (!text.empty()) {
    const Utf8Unit unit = firstUtf8Unit(text);
    if (!isXMLCharacter(unit.codePoint)) return "a character that XML excludes";
    text.remove_prefix(unit.length);
  }
  return {};
}

id propertyListSnapshot(const id& object) {
  return Snapshots().snapshotOf(object);
}

void requirePropertyListKey(std::string_view key) {
  requireText(key);
}

}  // namespace rvf
