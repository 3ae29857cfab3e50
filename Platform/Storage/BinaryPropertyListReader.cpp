// SPDX-License-Identifier: Apache-2.0
#include "Platform/Storage/BinaryPropertyListReader.h"

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <optional>
#include <utility>
#include <vector>

#include "Platform/Storage/ArchiveReference.h"
#include "Platform/Storage/BinaryPropertyListForm.h"
#include "Platform/Storage/PropertyListError.h"
#include "Platform/Text/Utf16.h"
#include "Platform/Text/Utf8.h"
#include "Platform/Values/NSArray.h"
#include "Platform/Values/NSData.h"
#include "Platform/Values/NSDate.h"
#include "Platform/Values/NSDictionary.h"
#include "Platform/Values/NSNumber.h"
#include "Platform/Values/NSString.h"

namespace rvf {
namespace {

using Kind = BinaryObjectKind;

/// An unsigned number, most significant byte first, of at most eight bytes.
std::uint64_t bigEndian(std::string_view bytes) noexcept {
  std::uint64_t value = 0;
  for (const char byte : bytes)
    value = value << 8 | static_cast<unsigned char>(byte);
  return value;
}

/// Files of more than 64 kB may well have numbers of three bytes.
bool isNumberSize(std::size_t size) noexcept {
  return size >= 1 && size <= 8;
}

struct Trailer {
  std::size_t offsetSize = 0;
  std::size_t referenceSize = 0;
  std::uint64_t objectCount = 0;
  std::uint64_t root = 0;
  std::uint64_t offsetTable = 0;
};

/// Absent unless the offset table lies between magic and trailer and has at least one entry.
std::optional<Trailer> trailerOf(std::string_view bytes) noexcept {
  constexpr std::size_t kMagicSize = kBinaryPropertyListMagic.size();
  if (bytes.size() < kMagicSize + kBinaryPropertyListTrailerSize + 2) return {};
  if (!bytes.starts_with(kBinaryPropertyListMagic)) return {};
  const std::uint64_t tableEnd = bytes.size() - kBinaryPropertyListTrailerSize;
  const std::string_view end = bytes.substr(tableEnd);
  const Trailer trailer{static_cast<unsigned char>(end[6]), static_cast<unsigned char>(end[7]),
                        bigEndian(end.substr(8, 8)), bigEndian(end.substr(16, 8)),
                        bigEndian(end.substr(24, 8))};
  if (!isNumberSize(trailer.offsetSize) || !isNumberSize(trailer.referenceSize)) return {};
  if (trailer.offsetTable <= kMagicSize || trailer.offsetTable >= tableEnd) return {};
  const std::uint64_t room = (tableEnd - trailer.offsetTable) / trailer.offsetSize;
  if (trailer.objectCount > room || trailer.root >= trailer.objectCount) return {};
  return trailer;
}

/// One object: its kind, and where its content stands.
struct ObjectHead {
  Kind kind = Kind::constant;
  unsigned low = 0;          ///< the low half of its first byte
  std::uint64_t count = 0;   ///< of elements, bytes or UTF-16 units
  std::string_view content;  ///< from behind the head to the offset table
};

class Reader final {
 public:
  Reader(std::string_view bytes, const Trailer& trailer, ArchiveReferences references)
      : bytes_(bytes), trailer_(trailer), references_(references), slots_(trailer.objectCount) {}

  id read() {
    const Slot* root = slotOf(trailer_.root, 0);
    if (!root) return nullptr;
    if (unfoldsTooFar(root->cost, bytes_.size())) return fail("unfolds too far");
    return root->object;
  }
  const std::string& problem() const noexcept { return problem_; }

 private:
  /// What is known of the object of one number.
  struct Slot {
    id object;
    std::uint64_t cost = 0;    ///< of passing it and all that is in it
    std::uint16_t height = 0;  ///< collections inside one another
    bool isOpen = false;       ///< a collection whose elements are being read
  };

  std::nullptr_t fail(std::string_view problem) {
    if (problem_.empty()) problem_ = problem;
    return nullptr;
  }

  /// Counts what an object is about to take. Objects may lie within one another in the file, so
  /// that few bytes come to many objects; this is asked before any memory is.
  bool canTake(std::uint64_t cost) {
    taken_ = addedCost(taken_, cost);
    if (unfoldsTooFar(taken_, bytes_.size())) fail("objects that overlap too much");
    return problem_.empty();
  }

  /// Whether the object may be the key of one more entry, for which all of its bytes are looked at:
  /// a long key may be that of any number of dictionaries.
  bool canBeKey(const Slot& key) {
    if (!textOfObject(*key.object)) fail("a key that is no text");
    hashed_ = addedCost(hashed_, key.cost);
    if (unfoldsTooFar(hashed_, bytes_.size())) fail("unfolds too far");
    return problem_.empty();
  }

  /// Reads the object unless it has been. Null if that fails.
  const Slot* slotOf(std::uint64_t number, std::size_t depth) {
    if (number >= trailer_.objectCount) return fail("a reference to no object");
    Slot& slot = slots_[number];
    if (slot.isOpen) return fail("a collection contains itself");
    if (slot.object) {
      return depth + slot.height <= kDeepestPropertyList ? &slot : fail("nested too deep");
    }
    const auto head = headOf(number);
    if (head) slot.object = objectOf(*head, slot, depth);
    return slot.object ? &slot : fail("an object that is malformed or cut off");
  }

  /// Absent if the object lies outside of the file.
  std::optional<ObjectHead> headOf(std::uint64_t number) const {
    const std::size_t size = trailer_.offsetSize;
    const std::uint64_t offset =
        bigEndian(bytes_.substr(trailer_.offsetTable + number * size, size));
    if (offset < kBinaryPropertyListMagic.size() || offset >= trailer_.offsetTable) return {};
    const unsigned first = static_cast<unsigned char>(bytes_[offset]);
    ObjectHead head{Kind{first >> 4U}, first & 0xFU, first & 0xFU,
                    bytes_.substr(offset + 1, trailer_.offsetTable - offset - 1)};
    const bool isCounted = head.kind >= Kind::data && head.kind != Kind::reference;
    if (isCounted && head.low == kBinaryLongCount && !readLongCount(head)) return {};
    return head;
  }

  static bool readLongCount(ObjectHead& head) {
    if (head.content.empty()) return false;
    const unsigned first = static_cast<unsigned char>(head.content[0]);
    const std::size_t size = std::size_t{1} << (first & 0xFU);
    const bool isInteger = Kind{first >> 4U} == Kind::integer && size <= 8;
    if (!isInteger || head.content.size() < 1 + size) return false;
    head.count = bigEndian(head.content.substr(1, size));
    head.content.remove_prefix(1 + size);
    return true;
  }

  id objectOf(const ObjectHead& head, Slot& slot, std::size_t depth) {
    if (head.kind != Kind::array && head.kind != Kind::dictionary) return leafOf(head, slot);
    if (depth >= kDeepestPropertyList) return fail("nested too deep");
    slot.cost = kBinaryObjectCost;
    slot.isOpen = true;
    id object = head.kind == Kind::array ? arrayOf(head, slot, depth + 1)
                                         : dictionaryOf(head, slot, depth + 1);
    slot.isOpen = false;
    ++slot.height;
    return object;
  }

  id leafOf(const ObjectHead& head, Slot& slot) {
    switch (head.kind) {
      case Kind::constant:
        return constantOf(head, slot);
      case Kind::integer:
        return head.low > 4 ? nullptr
                            : integerOf(contentOf(head, std::size_t{1} << head.low, slot));
      case Kind::fraction:
        return head.low == 2 || head.low == 3
                   ? fractionOf(contentOf(head, std::size_t{1} << head.low, slot))
                   : nullptr;
      case Kind::date:
        return head.low == 3 ? dateOf(contentOf(head, 8, slot)) : nullptr;
      case Kind::data: {
        const auto content = contentOf(head, head.count, slot);
        return content ? NSData::dataWithBytes(*content) : nullptr;
      }
      case Kind::ascii:
        return asciiOf(contentOf(head, head.count, slot));
      case Kind::utf16:
        return utf16Of(head, slot);
      case Kind::reference:
        return referenceOf(head, slot);
      default:
        return fail("an object of no known kind");
    }
  }

  /// The object's bytes; absent if they are cut off.
  std::optional<std::string_view> contentOf(const ObjectHead& head, std::uint64_t size,
                                            Slot& slot) {
    if (size > head.content.size()) return std::nullopt;
    slot.cost = costOfLeaf(size);
    if (!canTake(slot.cost)) return std::nullopt;
    return head.content.substr(0, size);
  }

  static id constantOf(const ObjectHead& head, Slot& slot) {
    slot.cost = kBinaryObjectCost;
    if (head.low == kBinaryTrue) return box(true);
    return head.low == kBinaryFalse ? box(false) : nullptr;
  }

  static id integerOf(std::optional<std::string_view> bytes) {
    constexpr std::size_t kWord = 8;
    if (!bytes) return nullptr;
    if (bytes->size() <= kWord) return box(static_cast<long>(bigEndian(*bytes)));
    const std::uint64_t value = bigEndian(bytes->substr(kWord));
    const std::uint64_t upper = bigEndian(bytes->substr(0, kWord));
    const bool isBeyondLong = value > static_cast<std::uint64_t>(std::numeric_limits<long>::max());
    const bool isNegative = upper == std::numeric_limits<std::uint64_t>::max() && isBeyondLong;
    if (upper != 0 && !isNegative) return nullptr;
    if (isBeyondLong && !isNegative) return box(value);
    return box(static_cast<long>(value));
  }

  static id fractionOf(std::optional<std::string_view> bytes) {
    if (!bytes) return nullptr;
    const std::uint64_t bits = bigEndian(*bytes);
    if (bytes->size() == sizeof bits) return box(std::bit_cast<double>(bits));
    return box(double{std::bit_cast<float>(static_cast<std::uint32_t>(bits))});
  }

  static id dateOf(std::optional<std::string_view> bytes) {
    return bytes ? NSDate::dateWithTimeIntervalSinceReferenceDate(
                       std::bit_cast<double>(bigEndian(*bytes)))
                 : nullptr;
  }

  id asciiOf(std::optional<std::string_view> bytes) {
    if (!bytes) return nullptr;
    if (!std::ranges::all_of(*bytes, &isAscii)) return fail("an ASCII text that is none");
    return box(*bytes);
  }

  id utf16Of(const ObjectHead& head, Slot& slot) {
    if (head.count > head.content.size()) return nullptr;  // twice as much may not be a number
    const auto bytes = contentOf(head, 2 * head.count, slot);
    return bytes ? std::make_shared<NSString>(textOfUtf16BigEndian(*bytes)) : nullptr;
  }

  id referenceOf(const ObjectHead& head, Slot& slot) {
    if (references_ == ArchiveReferences::refused) return fail("a reference of an archive");
    const auto bytes = head.low < 8 ? contentOf(head, head.low + 1, slot) : std::nullopt;
    return bytes ? std::make_shared<ArchiveReference>(bigEndian(*bytes)) : nullptr;
  }

  /// The references of a collection, as bytes; absent if they are cut off.
  std::optional<std::string_view> referencesOf(const ObjectHead& head, std::size_t perElement) {
    const std::size_t size = trailer_.referenceSize;
    if (head.count > head.content.size() / size / perElement) return std::nullopt;
    if (!canTake(kBinaryObjectCost * (1 + head.count * perElement))) return std::nullopt;
    return head.content.substr(0, head.count * perElement * size);
  }

  /// The element at this position among the references of `collection`. Null if that fails.
  const Slot* elementOf(std::string_view references, std::uint64_t position, Slot& collection,
                        std::size_t depth) {
    const std::size_t size = trailer_.referenceSize;
    const Slot* slot = slotOf(bigEndian(references.substr(position * size, size)), depth);
    if (!slot) return nullptr;
    collection.cost = addedCost(collection.cost, slot->cost);
    collection.height = std::max(collection.height, slot->height);
    return slot;
  }

  id arrayOf(const ObjectHead& head, Slot& slot, std::size_t depth) {
    const auto references = referencesOf(head, 1);
    if (!references) return nullptr;
    std::vector<id> objects;
    objects.reserve(head.count);
    for (std::uint64_t i = 0; i < head.count; ++i) {
      const Slot* element = elementOf(*references, i, slot, depth);
      if (!element) return nullptr;
      objects.push_back(element->object);
    }
    return NSArray::arrayWithObjects(std::move(objects));
  }

  id dictionaryOf(const ObjectHead& head, Slot& slot, std::size_t depth) {
    const auto references = referencesOf(head, 2);
    if (!references) return nullptr;
    NSDictionary::Entries entries;
    entries.reserve(head.count);
    for (std::uint64_t i = 0; i < head.count; ++i) {
      const Slot* key = elementOf(*references, i, slot, depth);
      if (!key || !canBeKey(*key)) return nullptr;
      const Slot* value = elementOf(*references, head.count + i, slot, depth);
      if (!value) return nullptr;
      entries.insert_or_assign(key->object, value->object);
    }
    return std::make_shared<NSDictionary>(std::move(entries));
  }

  const std::string_view bytes_;
  const Trailer trailer_;
  const ArchiveReferences references_;
  std::vector<Slot> slots_;
  std::uint64_t taken_ = 0;   // by all objects that were read, see canTake
  std::uint64_t hashed_ = 0;  // of all entries' keys, see canBeKey
  std::string problem_;
};

}  // namespace

id readBinaryPropertyList(std::string_view bytes, ArchiveReferences references,
                          std::string& problem) {
  const auto trailer = trailerOf(bytes);
  if (!trailer) {
    problem = "no trailer, or one that does not fit the file";
    return nullptr;
  }
  Reader reader(bytes, *trailer, references);
  id root = reader.read();
  if (!root) problem = reader.problem();
  return root;
}

}  // namespace rvf
