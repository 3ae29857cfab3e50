// SPDX-License-Identifier: Apache-2.0
#include "Platform/Storage/BinaryPropertyListCheck.h"

#include <algorithm>
#include <limits>
#include <optional>

#include "Platform/Storage/PropertyListError.h"

namespace rvf {
namespace {

constexpr std::string_view kMagic = "bplist00";
constexpr std::size_t kTrailerSize = 32;
/// About what libplist keeps for an object beside its content.
constexpr std::uint64_t kObjectCost = 100;
constexpr std::uint64_t kUsualLimit = std::uint64_t{256} << 20;

/// An unsigned number, most significant byte first, of at most eight bytes.
std::uint64_t bigEndian(std::string_view bytes) noexcept {
  std::uint64_t value = 0;
  for (const char byte : bytes)
    value = value << 8 | static_cast<unsigned char>(byte);
  return value;
}

void appendBigEndian(std::string& bytes, std::uint64_t value, std::size_t size) {
  for (std::size_t i = size; i-- > 0;)
    bytes += static_cast<char>(value >> (8 * i) & 0xFF);
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

/// Absent unless the offset table lies between header and trailer and has at least one entry.
std::optional<Trailer> trailerOf(std::string_view bytes) noexcept {
  if (bytes.size() < kMagic.size() + kTrailerSize + 2 || !bytes.starts_with(kMagic)) return {};
  const std::string_view end = bytes.substr(bytes.size() - kTrailerSize);
  const Trailer trailer{static_cast<unsigned char>(end[6]), static_cast<unsigned char>(end[7]),
                        bigEndian(end.substr(8, 8)), bigEndian(end.substr(16, 8)),
                        bigEndian(end.substr(24, 8))};
  const std::uint64_t tableEnd = bytes.size() - kTrailerSize;
  if (!isNumberSize(trailer.offsetSize) || !isNumberSize(trailer.referenceSize)) return {};
  if (trailer.offsetTable <= kMagic.size() || trailer.offsetTable >= tableEnd) return {};
  const std::uint64_t room = (tableEnd - trailer.offsetTable) / trailer.offsetSize;
  if (trailer.objectCount > room || trailer.root >= trailer.objectCount) return {};
  return trailer;
}

/// One object: its kind, and where its content stands.
struct ObjectHead {
  unsigned kind = 0;         ///< the high half of its first byte
  unsigned low = 0;          ///< the low half
  std::uint64_t count = 0;   ///< of elements, bytes or UTF-16 units
  std::string_view content;  ///< from behind the head to the offset table
};

class Checker final {
 public:
  Checker(std::string_view bytes, const Trailer& trailer)
      : bytes_(bytes),
        trailer_(trailer),
        limit_(std::max(kUsualLimit, std::uint64_t{4} * bytes.size())),
        visits_(trailer.objectCount) {}

  BinaryPropertyListFindings run() {
    if (check(trailer_.root, 0) && visits_[trailer_.root].cost > limit_) fail("unfolds too far");
    return std::move(findings_);
  }

  /// Absent if the object lies outside of the file.
  std::optional<ObjectHead> headOf(std::uint64_t number) const {
    const std::size_t size = trailer_.offsetSize;
    const std::uint64_t offset =
        bigEndian(bytes_.substr(trailer_.offsetTable + number * size, size));
    if (offset < kMagic.size() || offset >= trailer_.offsetTable) return {};
    std::string_view rest = bytes_.substr(offset, trailer_.offsetTable - offset);
    const unsigned first = static_cast<unsigned char>(rest[0]);
    rest.remove_prefix(1);
    ObjectHead head{first >> 4U, first & 0xFU, first & 0xFU, rest};
    const bool hasLongCount = head.low == 0xF && head.kind >= 4 && head.kind != 8;
    if (hasLongCount && !readLongCount(head)) return {};
    return head;
  }

 private:
  enum class State : std::uint8_t { unseen, open, done };
  struct Visit {
    State state = State::unseen;
    bool isText = false;
    std::uint16_t height = 0;  ///< collections inside one another
    std::uint64_t cost = 0;    ///< of the object unfolded
  };

  bool fail(std::string_view problem) {
    findings_.problem = problem;
    return false;
  }

  bool check(std::uint64_t number, std::size_t depth) {
    if (number >= trailer_.objectCount) return fail("a reference to no object");
    Visit& visit = visits_[number];
    if (visit.state == State::open) return fail("a collection contains itself");
    if (visit.state == State::done) {
      return depth + visit.height <= kDeepestPropertyList || fail("nested too deep");
    }
    visit.state = State::open;
    const auto head = headOf(number);
    if (!head || !checkContent(number, *head, visit, depth)) {
      return findings_.problem.empty() ? fail("an object that is malformed or cut off") : false;
    }
    visit.state = State::done;
    return true;
  }

  /// A count of 15 or more is an integer object of its own behind the first byte.
  static bool readLongCount(ObjectHead& head) {
    if (head.content.empty()) return false;
    const unsigned first = static_cast<unsigned char>(head.content[0]);
    const std::size_t size = std::size_t{1} << (first & 0xFU);
    if (first >> 4U != 1 || (first & 0xFU) > 3 || head.content.size() < 1 + size) return false;
    head.count = bigEndian(head.content.substr(1, size));
    head.content.remove_prefix(1 + size);
    return true;
  }

  bool checkContent(std::uint64_t number, const ObjectHead& head, Visit& visit, std::size_t depth) {
    switch (head.kind) {
      case 0x0:
        return (head.low == 8 || head.low == 9) && fits(head, 0, visit);
      case 0x1:
        return head.low <= 4 && fits(head, std::uint64_t{1} << head.low, visit) && isWord(head);
      case 0x2:
        return (head.low == 2 || head.low == 3) && fits(head, std::uint64_t{1} << head.low, visit);
      case 0x3:
        return head.low == 3 && fits(head, 8, visit);
      case 0x4:
        return fits(head, head.count, visit);
      case 0x5:
        return fits(head, head.count, visit) && checkAscii(number, head, visit);
      case 0x6:
        visit.isText = true;
        return head.count <= head.content.size() && fits(head, 2 * head.count, visit);
      case 0xA:
        return checkCollection(head, 1, visit, depth);
      case 0xD:
        return checkCollection(head, 2, visit, depth);
      default:
        return fail("an object of no known kind");
    }
  }

  static bool fits(const ObjectHead& head, std::uint64_t size, Visit& visit) {
    visit.cost = kObjectCost + size;
    return size <= head.content.size();
  }

  /// Integers of 16 bytes carry unsigned numbers of eight.
  static bool isWord(const ObjectHead& head) {
    return head.low != 4 || bigEndian(head.content.substr(0, 8)) == 0;
  }

  bool checkAscii(std::uint64_t number, const ObjectHead& head, Visit& visit) {
    visit.isText = true;
    const std::string_view text = head.content.substr(0, head.count);
    if (std::ranges::any_of(text, [](char c) { return static_cast<unsigned char>(c) > 0x7F; })) {
      return fail("an ASCII text that is none");
    }
    if (text.find('\0') != std::string_view::npos) findings_.textsWithNul.push_back(number);
    return true;
  }

  bool checkCollection(const ObjectHead& head, std::uint64_t perEntry, Visit& visit,
                       std::size_t depth) {
    const std::size_t size = trailer_.referenceSize;
    if (depth >= kDeepestPropertyList) return fail("nested too deep");
    if (head.count > head.content.size() / size / perEntry) return false;
    visit.cost = kObjectCost;
    for (std::uint64_t i = 0; i < head.count * perEntry; ++i) {
      const std::uint64_t element = bigEndian(head.content.substr(i * size, size));
      if (!check(element, depth + 1)) return false;
      const bool isKey = perEntry == 2 && i < head.count;
      if (isKey && !isKeyWithoutNul(element)) return fail("a key that is no text, or holds U+0000");
      const Visit& inner = visits_[element];
      visit.cost = std::min(visit.cost + inner.cost, std::numeric_limits<std::uint64_t>::max() / 2);
      visit.height = std::max(visit.height, inner.height);
    }
    ++visit.height;
    return true;
  }

  bool isKeyWithoutNul(std::uint64_t number) const {
    if (!visits_[number].isText) return false;
    const auto head = headOf(number);
    const std::size_t unit = head->kind == 6 ? 2 : 1;
    for (std::uint64_t i = 0; i < head->count; ++i) {
      if (bigEndian(head->content.substr(i * unit, unit)) == 0) return false;
    }
    return true;
  }

  const std::string_view bytes_;
  const Trailer trailer_;
  const std::uint64_t limit_;
  std::vector<Visit> visits_;
  BinaryPropertyListFindings findings_;
};

}  // namespace

BinaryPropertyListFindings checkBinaryPropertyList(std::string_view bytes) {
  const auto trailer = trailerOf(bytes);
  if (!trailer) return {"no trailer, or one that does not fit the file", {}};
  return Checker(bytes, *trailer).run();
}

/// Everything stays where it is; the texts, a new offset table and a new trailer follow.
std::string withTextsInUtf16(std::string_view bytes, const std::vector<std::uint64_t>& texts) {
  const Trailer trailer = *trailerOf(bytes);
  const Checker checker(bytes, trailer);
  std::vector<std::uint64_t> offsets;
  for (std::uint64_t i = 0; i < trailer.objectCount; ++i) {
    const std::size_t size = trailer.offsetSize;
    offsets.push_back(bigEndian(bytes.substr(trailer.offsetTable + i * size, size)));
  }
  std::string result(bytes.substr(0, trailer.offsetTable));
  for (const std::uint64_t text : texts) {
    const ObjectHead head = *checker.headOf(text);
    offsets[text] = result.size();
    result += "\x6F\x13";
    appendBigEndian(result, head.count, 8);
    for (const char c : head.content.substr(0, head.count))
      result.append({'\0', c});
  }
  const std::size_t table = result.size();
  for (const std::uint64_t offset : offsets)
    appendBigEndian(result, offset, 8);
  result.append(6, '\0').append({'\x08', static_cast<char>(trailer.referenceSize)});
  for (const std::uint64_t number : {trailer.objectCount, trailer.root, std::uint64_t{table}})
    appendBigEndian(result, number, 8);
  return result;
}

}  // namespace rvf
