// SPDX-License-Identifier: Apache-2.0
#include "Platform/Storage/BinaryPropertyListWriter.h"

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <limits>
#include <optional>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <utility>
#include <vector>

#include "Platform/Runtime/Runtime.h"
#include "Platform/Storage/ArchiveReference.h"
#include "Platform/Storage/BinaryPropertyListForm.h"
#include "Platform/Storage/PropertyListError.h"
#include "Platform/Storage/PropertyListValue.h"
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

constexpr std::size_t kWord = 8;

/// How many bytes the number takes: 1, 2, 4 or 8.
std::size_t sizeOf(std::uint64_t number) noexcept {
  if (number <= 0xFF) return 1;
  if (number <= 0xFFFF) return 2;
  return number <= 0xFFFFFFFF ? 4 : kWord;
}

/// The low half of the first byte for a number of this size.
unsigned powerOf(std::size_t size) noexcept {
  return static_cast<unsigned>(std::countr_zero(size));
}

void append(std::string& bytes, std::uint64_t number, std::size_t size) {
  for (std::size_t i = size; i-- > 0;)
    bytes += static_cast<char>(number >> (8 * i) & 0xFF);
}

void appendHead(std::string& bytes, Kind kind, unsigned low) {
  bytes += static_cast<char>(static_cast<unsigned>(kind) << 4U | low);
}

void appendInteger(std::string& bytes, std::uint64_t number) {
  const std::size_t size = sizeOf(number);
  appendHead(bytes, Kind::integer, powerOf(size));
  append(bytes, number, size);
}

void appendCountedHead(std::string& bytes, Kind kind, std::uint64_t count) {
  if (count < kBinaryLongCount) return appendHead(bytes, kind, static_cast<unsigned>(count));
  appendHead(bytes, kind, kBinaryLongCount);
  appendInteger(bytes, count);
}

void appendText(std::string& bytes, std::string_view text) {
  if (std::ranges::all_of(text, &isAscii)) {
    appendCountedHead(bytes, Kind::ascii, text.size());
    bytes += text;
    return;
  }
  const std::string units = utf16BigEndianOfText(text);
  appendCountedHead(bytes, Kind::utf16, units.size() / 2);
  bytes += units;
}

/// Negative integers take eight bytes; those beyond 2^63 - 1 take 16, of which the first eight are
/// 0.
void appendNumber(std::string& bytes, const NSNumber& number) {
  const auto word = static_cast<std::uint64_t>(number.unsignedLongValue());
  if (word <= static_cast<std::uint64_t>(std::numeric_limits<long>::max())) {
    appendInteger(bytes, word);
  } else if (number.compare(NSNumber(0)) < 0) {
    appendHead(bytes, Kind::integer, powerOf(kWord));
    append(bytes, word, kWord);
  } else {
    appendHead(bytes, Kind::integer, powerOf(2 * kWord));
    append(bytes, 0, kWord);
    append(bytes, word, kWord);
  }
}

void appendFraction(std::string& bytes, Kind kind, double value) {
  appendHead(bytes, kind, powerOf(kWord));
  append(bytes, std::bit_cast<std::uint64_t>(value), kWord);
}

/// How many bytes stand before the content of a leaf.
std::size_t headSizeOf(std::string_view leaf) noexcept {
  const unsigned first = static_cast<unsigned char>(leaf[0]);
  const bool isCounted = Kind{first >> 4U} >= Kind::data && Kind{first >> 4U} != Kind::reference;
  if (!isCounted || (first & 0xFU) != kBinaryLongCount) return 1;
  return 2 + (std::size_t{1} << (static_cast<unsigned char>(leaf[1]) & 0xFU));
}

/// Numbers all objects and writes the leaves as it comes by them. Collections follow behind: how
/// long their references are is known in the end only.
class Writer final {
 public:
  explicit Writer(ArchiveReferences references) : references_(references) {}

  std::string written(const id& root) {
    const auto added = add(root, 0);
    if (!added) return {};
    const std::size_t referenceSize = sizeOf(offsets_.size() - 1);
    for (const Collection& collection : collections_)
      appendCollection(collection, referenceSize);
    const std::uint64_t table = bytes_.size();
    const std::size_t offsetSize = sizeOf(table);
    for (const std::uint64_t offset : offsets_)
      append(bytes_, offset, offsetSize);
    bytes_.append(6, '\0');
    append(bytes_, offsetSize, 1);
    append(bytes_, referenceSize, 1);
    for (const std::uint64_t number : {std::uint64_t{offsets_.size()}, std::uint64_t{0}, table})
      append(bytes_, number, kWord);
    if (!unfoldsTooFar(added->extent.cost, bytes_.size())) return std::move(bytes_);
    refuse("unfolds too far");
    return {};
  }
  const std::string& problem() const noexcept { return problem_; }

 private:
  /// How much there is to an object with all that it holds.
  struct Extent {
    std::uint16_t height = 0;  ///< collections inside one another
    std::uint64_t cost = kBinaryObjectCost;

    void add(const Extent& inner) noexcept {
      height = std::max(height, inner.height);
      cost = addedCost(cost, inner.cost);
    }
  };
  struct Added {
    std::uint64_t number = 0;
    Extent extent;
  };
  struct Collection {
    std::uint64_t number = 0;
    Kind kind = Kind::array;
    std::size_t count = 0;
    std::size_t firstReference = 0;
    bool isOpen = true;  ///< not all elements are known yet
    Extent extent;
  };
  /// Leaves by what is written for them. They are found by number, because the bytes move. The hash
  /// is not noexcept, which makes the set keep hashes instead of computing them again.
  struct LeafHash {
    const Writer* writer;
    std::size_t operator()(std::uint64_t number) const {
      return std::hash<std::string_view>()(writer->leaf(number));
    }
  };
  struct LeafEqual {
    const Writer* writer;
    bool operator()(std::uint64_t a, std::uint64_t b) const noexcept {
      return writer->leaf(a) == writer->leaf(b);
    }
  };

  std::nullopt_t refuse(std::string_view problem) {
    if (problem_.empty()) problem_ = problem;
    return std::nullopt;
  }

  std::string_view leaf(std::uint64_t number) const noexcept {
    return std::string_view(bytes_).substr(offsets_[number], lengths_[number]);
  }

  std::optional<Added> add(const id& object, std::size_t depth) {
    if (!object) return refuse("an absent object");
    const PropertyListKind kind = propertyListKind(*object);
    if (kind == PropertyListKind::array || kind == PropertyListKind::dictionary) {
      return addCollection(*object, kind, depth);
    }
    if (!isLong(*object, kind)) return addLeaf(*object, kind);
    if (const auto known = longLeaves_.find(object.get()); known != longLeaves_.end())
      return known->second;
    const auto added = addLeaf(*object, kind);
    if (added) longLeaves_.emplace(object.get(), *added);
    return added;
  }

  static bool isLong(const NSObject& object, PropertyListKind kind) noexcept {
    if (kind == PropertyListKind::text)
      return static_cast<const NSString&>(object).string().size() > kLongLeaf;
    return kind == PropertyListKind::data &&
           static_cast<const NSData&>(object).length() > kLongLeaf;
  }

  std::optional<Added> addLeaf(const NSObject& object, PropertyListKind kind) {
    const std::uint64_t number = offsets_.size();
    offsets_.push_back(bytes_.size());
    if (!appendLeaf(object, kind)) return std::nullopt;
    lengths_.resize(number);  // collections since the last leaf have none
    lengths_.push_back(bytes_.size() - offsets_.back());
    const Extent extent{0, costOfLeaf(lengths_.back() - headSizeOf(leaf(number)))};
    const auto [known, isNew] = leaves_.insert(number);
    if (isNew) return Added{number, extent};
    bytes_.resize(offsets_.back());
    offsets_.pop_back();
    return Added{*known, extent};
  }

  bool appendLeaf(const NSObject& object, PropertyListKind kind) {
    switch (kind) {
      case PropertyListKind::text: {
        const std::string& text = static_cast<const NSString&>(object).string();
        const std::string_view problem = problemOfText(text, NSPropertyListFormat::binary);
        if (!problem.empty()) {
          refuse(problem);
          return false;
        }
        appendText(bytes_, text);
        return true;
      }
      case PropertyListKind::data: {
        const std::string_view data = static_cast<const NSData&>(object).characters();
        appendCountedHead(bytes_, Kind::data, data.size());
        bytes_ += data;
        return true;
      }
      case PropertyListKind::date:
        appendFraction(bytes_, Kind::date,
                       static_cast<const NSDate&>(object).timeIntervalSinceReferenceDate());
        return true;
      case PropertyListKind::truth:
        appendHead(bytes_, Kind::constant,
                   static_cast<const NSNumber&>(object).boolValue() ? kBinaryTrue : kBinaryFalse);
        return true;
      case PropertyListKind::integer:
        appendNumber(bytes_, static_cast<const NSNumber&>(object));
        return true;
      case PropertyListKind::fraction:
        appendFraction(bytes_, Kind::fraction, static_cast<const NSNumber&>(object).doubleValue());
        return true;
      default:
        return appendReference(object);
    }
  }

  bool appendReference(const NSObject& object) {
    const auto* reference = dynamic_cast<const ArchiveReference*>(&object);
    if (!reference || references_ == ArchiveReferences::refused) {
      refuse("an object of class " + std::string(class_getName(object.isa())));
      return false;
    }
    const std::size_t size = sizeOf(reference->number());
    appendHead(bytes_, Kind::reference, static_cast<unsigned>(size - 1));
    append(bytes_, reference->number(), size);
    return true;
  }

  std::optional<Added> addCollection(const NSObject& object, PropertyListKind kind,
                                     std::size_t depth) {
    const auto [known, isNew] = byObject_.try_emplace(&object, collections_.size());
    if (!isNew) {
      const Collection& collection = collections_[known->second];
      if (collection.isOpen) return refuse("a collection that contains itself");
      if (depth + collection.extent.height > kDeepestPropertyList) {
        return refuse("nested too deep");
      }
      return Added{collection.number, collection.extent};
    }
    if (depth >= kDeepestPropertyList) return refuse("nested too deep");
    const std::size_t index = collections_.size();
    const bool isArray = kind == PropertyListKind::array;
    Collection opened;
    opened.number = offsets_.size();
    opened.kind = isArray ? Kind::array : Kind::dictionary;
    collections_.push_back(opened);
    offsets_.push_back(0);
    const bool isWhole =
        isArray ? addElements(static_cast<const NSArray&>(object), index, depth + 1)
                : addEntries(static_cast<const NSDictionary&>(object), index, depth + 1);
    if (!isWhole) return std::nullopt;
    Collection& collection = collections_[index];
    collection.isOpen = false;
    ++collection.extent.height;
    return Added{collection.number, collection.extent};
  }

  /// Room for a collection's references, which stay together. The position of the first one.
  std::size_t reserve(std::size_t index, std::size_t count, std::size_t references) {
    const std::size_t first = numbers_.size();
    collections_[index].count = count;
    collections_[index].firstReference = first;
    numbers_.resize(first + references);
    return first;
  }

  bool addElements(const NSArray& array, std::size_t index, std::size_t depth) {
    std::size_t position = reserve(index, array.count(), array.count());
    for (const id& element : array.objects()) {
      if (!addAt(position++, element, index, depth)) return false;
    }
    return true;
  }

  bool addEntries(const NSDictionary& dictionary, std::size_t index, std::size_t depth) {
    const std::size_t count = dictionary.count();
    std::size_t position = reserve(index, count, 2 * count);
    for (const auto& [key, value] : dictionary.entries()) {
      if (!textOfObject(*key)) {
        refuse("a key that is no text");
        return false;
      }
      if (!addAt(position, key, index, depth)) return false;
      if (!addAt(count + position++, value, index, depth)) return false;
    }
    return true;
  }

  /// Adds what the collection refers to at this position.
  bool addAt(std::size_t position, const id& element, std::size_t index, std::size_t depth) {
    const auto added = add(element, depth);
    if (!added) return false;
    numbers_[position] = added->number;
    collections_[index].extent.add(added->extent);
    return true;
  }

  void appendCollection(const Collection& collection, std::size_t referenceSize) {
    offsets_[collection.number] = bytes_.size();
    appendCountedHead(bytes_, collection.kind, collection.count);
    const std::size_t references = collection.count * (collection.kind == Kind::array ? 1 : 2);
    for (std::size_t i = 0; i < references; ++i)
      append(bytes_, numbers_[collection.firstReference + i], referenceSize);
  }

  const ArchiveReferences references_;
  std::string bytes_ = std::string(kBinaryPropertyListMagic);
  std::vector<std::uint64_t> offsets_;  // by number
  std::vector<std::size_t> lengths_;    // of leaves, by number
  std::unordered_set<std::uint64_t, LeafHash, LeafEqual> leaves_{0, LeafHash{this},
                                                                 LeafEqual{this}};
  std::unordered_map<const NSObject*, Added> longLeaves_;
  std::vector<Collection> collections_;
  std::unordered_map<const NSObject*, std::size_t> byObject_;
  std::vector<std::uint64_t> numbers_;  // the references of all collections
  std::string problem_;
};

}  // namespace

std::string writtenBinaryPropertyList(const id& root, ArchiveReferences references,
                                      std::string& problem) {
  Writer writer(references);
  std::string bytes = writer.written(root);
  problem = writer.problem();
  return bytes;
}

}  // namespace rvf
