// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace rvf {

/// The binary form, version 00: the magic, the objects, a table of their offsets, and a trailer of
/// 32 bytes (6 unused, the sizes of offsets and references, three words: how many objects, which
/// one is the root, where the table stands). Numbers are unsigned, the most significant byte first.
///
/// An object's first byte has its kind in the high half. The low half is its count of elements,
/// bytes or UTF-16 units; 15 says that the count follows as an integer object. Collections hold
/// references: the numbers of their elements, dictionaries first those of all keys.
enum class BinaryObjectKind : unsigned {
  constant = 0x0,  ///< low half 8: false, 9: true
  integer = 0x1,   ///< 1, 2 or 4 bytes unsigned, 8 or 16 signed; low half: which power of 2
  fraction = 0x2,  ///< IEEE 754, 4 or 8 bytes, as above
  date = 0x3,      ///< a fraction of 8 bytes, seconds since 2001
  data = 0x4,
  ascii = 0x5,
  utf16 = 0x6,
  reference = 0x8,  ///< of an archive: the low half is one less than its count of bytes
  array = 0xA,
  dictionary = 0xD,
};

inline constexpr std::string_view kBinaryPropertyListMagic = "bplist00";
inline constexpr std::size_t kBinaryPropertyListTrailerSize = 32;
inline constexpr unsigned kBinaryFalse = 0x08;
inline constexpr unsigned kBinaryTrue = 0x09;
/// In the low half of the first byte.
inline constexpr unsigned kBinaryLongCount = 0xF;

/// Objects that a list holds once may be referred to often, and collections of such collections
/// come to more than any memory when somebody walks them all. So passing an object costs this, in
/// bytes, beside its content, and a list must not cost more than the larger one of the two limits.
/// Only large leaves and collections that are shared can do that: a reference takes at least one
/// byte.
inline constexpr std::uint64_t kBinaryObjectCost = 24;
inline constexpr std::uint64_t kBinaryUsualLimit = std::uint64_t{64} << 20;
inline constexpr std::uint64_t kBinaryGrowthLimit = 64;

/// Texts and data of more bytes are looked at once, however many collections share the object. To
/// remember shorter ones would take longer than to look at them again.
inline constexpr std::size_t kLongLeaf = 256;

/// What passing a leaf costs that has so many bytes of content, its head not counted.
constexpr std::uint64_t costOfLeaf(std::uint64_t bytesOfContent) noexcept {
  return kBinaryObjectCost + bytesOfContent;
}

constexpr bool unfoldsTooFar(std::uint64_t cost, std::size_t bytesOfList) noexcept {
  return cost > kBinaryUsualLimit && cost / kBinaryGrowthLimit > bytesOfList;
}
/// Their sum, which stays far from the largest number.
constexpr std::uint64_t addedCost(std::uint64_t a, std::uint64_t b) noexcept {
  constexpr std::uint64_t kMost = std::uint64_t{1} << 62U;
  return a + b < kMost ? a + b : kMost;
}

}  // namespace rvf
