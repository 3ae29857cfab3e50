// SPDX-License-Identifier: Apache-2.0
#include "Platform/Storage/LibplistTree.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <limits>
#include <memory>
#include <unordered_map>
#include <utility>
#include <vector>

#include "Platform/Runtime/Runtime.h"
#include "Platform/Storage/PropertyListError.h"
#include "Platform/Storage/PropertyListValue.h"
#include "Platform/Text/Text.h"
#include "Platform/Values/NSArray.h"
#include "Platform/Values/NSData.h"
#include "Platform/Values/NSDate.h"
#include "Platform/Values/NSDictionary.h"
#include "Platform/Values/NSNumber.h"
#include "Platform/Values/NSString.h"

namespace rvf {
namespace {

constexpr std::size_t kHeaderSize = 8;
constexpr std::size_t kWordSize = 8;

struct Freed {
  void operator()(void* memory) const noexcept { std::free(memory); }
};

/// A leaf from its bytes in a binary list.
plist_t nodeOfBinary(std::string_view object) {
  std::string bytes = "bplist00" + std::string(object);
  const std::size_t table = bytes.size();
  bytes += static_cast<char>(kHeaderSize);
  bytes.append(6, '\0').append({1, 1});
  for (const std::size_t number : {std::size_t{1}, std::size_t{0}, table}) {
    for (int shift = 56; shift >= 0; shift -= 8)
      bytes += static_cast<char>(number >> shift & 0xFF);
  }
  plist_t node = nullptr;
  plist_from_bin(bytes.data(), static_cast<std::uint32_t>(bytes.size()), &node);
  return node;
}

std::string wordText(std::uint64_t word) {
  std::string text;
  for (int shift = 56; shift >= 0; shift -= 8)
    text += static_cast<char>(word >> shift & 0xFF);
  return text;
}

/// The first byte and the last eight of a leaf as a binary list has it.
std::pair<unsigned char, std::uint64_t> wordOfNode(plist_t node, std::size_t size) {
  char* bytes = nullptr;
  std::uint32_t length = 0;
  plist_to_bin(node, &bytes, &length);
  const std::unique_ptr<char, Freed> owner(bytes);
  if (length < kHeaderSize + 1 + size) return {0, 0};
  std::uint64_t word = 0;
  for (std::size_t i = 0; i < kWordSize; ++i)
    word = word << 8 | static_cast<unsigned char>(bytes[kHeaderSize + 1 + size - kWordSize + i]);
  return {static_cast<unsigned char>(bytes[kHeaderSize]), word};
}

id integerOfNode(plist_t node) {
  std::uint64_t value = 0;
  plist_get_uint_val(node, &value);
  if (value <= static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max())) {
    return box(static_cast<long>(value));
  }
  // libplist answers negative integers unsigned as well; only the written form tells them apart.
  constexpr unsigned char kSixteenBytes = 0x14;
  const bool isUnsigned = wordOfNode(node, kWordSize).first == kSixteenBytes;
  return isUnsigned ? id(box(static_cast<unsigned long>(value)))
                    : id(box(static_cast<long>(static_cast<std::int64_t>(value))));
}

id textOfNode(plist_t node) {
  std::uint64_t length = 0;
  const char* text = plist_get_string_ptr(node, &length);
  const std::string_view bytes(text ? text : "", text ? length : 0);
  return isValidUtf8(bytes) ? box(bytes) : box(wellFormedUtf8(bytes));
}

id dataOfNode(plist_t node) {
  std::uint64_t length = 0;
  const char* bytes = plist_get_data_ptr(node, &length);
  return NSData::dataWithBytes(std::string_view(bytes ? bytes : "", bytes ? length : 0));
}

/// Makes objects of nodes. Records of one kind have their keys in one order, so the keys that were
/// last seen at each position are tried first and shared.
class ObjectMaker final {
 public:
  id objectOfNode(plist_t node);

 private:
  struct Key {
    std::string text;
    id object;
  };

  id arrayOfNode(plist_t node);
  id dictionaryOfNode(plist_t node);
  const id& keyOfNode(plist_t node, std::size_t position);

  std::vector<Key> keys_;
};

id ObjectMaker::arrayOfNode(plist_t node) {
  std::vector<id> objects;
  objects.reserve(plist_array_get_size(node));
  plist_array_iter position = nullptr;
  plist_array_new_iter(node, &position);
  const std::unique_ptr<void, Freed> owner(position);
  for (plist_t item = nullptr;;) {
    plist_array_next_item(node, position, &item);
    if (!item) return NSArray::arrayWithObjects(std::move(objects));
    id object = objectOfNode(item);
    if (!object) return nullptr;
    objects.push_back(std::move(object));
  }
}

id ObjectMaker::dictionaryOfNode(plist_t node) {
  NSDictionary::Entries entries;
  entries.reserve(plist_dict_get_size(node));
  plist_dict_iter position = nullptr;
  plist_dict_new_iter(node, &position);
  const std::unique_ptr<void, Freed> owner(position);
  for (plist_t item = nullptr;;) {
    plist_dict_next_item(node, position, nullptr, &item);
    if (!item) return std::make_shared<NSDictionary>(std::move(entries));
    id object = objectOfNode(item);
    if (!object) return nullptr;
    entries.insert_or_assign(keyOfNode(plist_dict_item_get_key(item), entries.size()),
                             std::move(object));
  }
}

const id& ObjectMaker::keyOfNode(plist_t node, std::size_t position) {
  constexpr std::size_t kMost = 64;  // what has more keys is no record
  const std::size_t place = std::min(position, kMost);
  if (place >= keys_.size()) keys_.resize(place + 1);
  Key& key = keys_[place];
  if (key.object && plist_key_val_compare(node, key.text.c_str()) == 0) return key.object;
  char* text = nullptr;
  plist_get_key_val(node, &text);
  const std::unique_ptr<char, Freed> owner(text);
  key.text = text ? text : "";
  key.object = box(wellFormedUtf8(key.text));
  return key.object;
}

id ObjectMaker::objectOfNode(plist_t node) {
  switch (plist_get_node_type(node)) {
    case PLIST_BOOLEAN: {
      std::uint8_t value = 0;
      plist_get_bool_val(node, &value);
      return box(value != 0);
    }
    case PLIST_UINT:
      return integerOfNode(node);
    case PLIST_REAL: {
      double value = 0;
      plist_get_real_val(node, &value);
      return box(value);
    }
    case PLIST_DATE:
      return NSDate::dateWithTimeIntervalSinceReferenceDate(
          std::bit_cast<double>(wordOfNode(node, kWordSize).second));
    case PLIST_STRING:
      return textOfNode(node);
    case PLIST_DATA:
      return dataOfNode(node);
    case PLIST_ARRAY:
      return arrayOfNode(node);
    case PLIST_DICT:
      return dictionaryOfNode(node);
    default:
      return nullptr;
  }
}

}  // namespace

id objectOfNode(plist_t node) {
  return ObjectMaker().objectOfNode(node);
}

plist_t LibplistNodeMaker::refuse(std::string_view problem) {
  if (problem_.empty()) problem_ = problem;
  return nullptr;
}

plist_t LibplistNodeMaker::nodeOf(const id& object, std::size_t depth) {
  if (!object) return refuse("an absent object");
  switch (propertyListKind(*object)) {
    case PropertyListKind::text:
      return nodeOfText(static_cast<const NSString&>(*object).string());
    case PropertyListKind::data: {
      const auto bytes = static_cast<const NSData&>(*object).characters();
      return plist_new_data(bytes.empty() ? "" : bytes.data(), bytes.size());
    }
    case PropertyListKind::date:
      return nodeOfDate(static_cast<const NSDate&>(*object).timeIntervalSinceReferenceDate());
    case PropertyListKind::truth:
      return plist_new_bool(static_cast<const NSNumber&>(*object).boolValue() ? 1 : 0);
    case PropertyListKind::integer: {
      const auto& number = static_cast<const NSNumber&>(*object);
      const auto word = static_cast<std::uint64_t>(number.unsignedLongValue());
      const bool isBeyond = number.compare(NSNumber(std::numeric_limits<long>::max())) > 0;
      return isBeyond ? nodeOfBinary("\x14" + wordText(0) + wordText(word)) : plist_new_uint(word);
    }
    case PropertyListKind::fraction:
      return plist_new_real(static_cast<const NSNumber&>(*object).doubleValue());
    case PropertyListKind::array:
      return nodeOfArray(*object, depth);
    case PropertyListKind::dictionary:
      return nodeOfDictionary(*object, depth);
    default:
      return refuse("an object of class " + std::string(class_getName(object->isa())));
  }
}

plist_t LibplistNodeMaker::nodeOfArray(const NSObject& object, std::size_t depth) {
  if (depth >= kDeepestPropertyList) return refuse("nested too deep");
  const plist_t node = plist_new_array();
  for (const id& element : static_cast<const NSArray&>(object)) {
    const plist_t child = nodeOf(element, depth + 1);
    if (!child) {
      plist_free(node);
      return nullptr;
    }
    plist_array_append_item(node, child);
  }
  return node;
}

plist_t LibplistNodeMaker::nodeOfDictionary(const NSObject& object, std::size_t depth) {
  if (depth >= kDeepestPropertyList) return refuse("nested too deep");
  const plist_t node = plist_new_dict();
  for (const auto& [key, value] : static_cast<const NSDictionary&>(object)) {
    const std::string* text = textOfObject(*key);
    const std::string keyProblem = text ? problemOfText(*text, format_) : "a key that is no text";
    plist_t child = nullptr;
    if (!keyProblem.empty()) {
      refuse(keyProblem);
    } else {
      child = nodeOf(value, depth + 1);
    }
    if (!child) {
      plist_free(node);
      return nullptr;
    }
    plist_dict_set_item(node, text->c_str(), child);
  }
  return node;
}

plist_t LibplistNodeMaker::nodeOfText(const std::string& text) {
  const std::string problem = problemOfText(text, format_);
  if (!problem.empty()) return refuse(problem);
  return plist_new_string(text.c_str());
}

plist_t LibplistNodeMaker::nodeOfDate(double seconds) {
  if (format_ == NSPropertyListFormat::xml) {
    constexpr double kFirst = -31588531200;   // 1000-01-01: libplist does not pad years
    constexpr double kBehind = 252423993600;  // 10000-01-01
    if (!(seconds >= kFirst && seconds < kBehind)) return refuse("a date beyond the form's years");
    seconds = std::floor(seconds);
  }
  return nodeOfBinary("\x33" + wordText(std::bit_cast<std::uint64_t>(seconds)));
}

}  // namespace rvf
