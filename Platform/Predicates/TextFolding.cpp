// SPDX-License-Identifier: Apache-2.0
#include "Platform/Predicates/TextFolding.h"

#include <unicode/bytestream.h>
#include <unicode/casemap.h>
#include <unicode/normalizer2.h>
#include <unicode/uchar.h>

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <stdexcept>

#include "Platform/Text/Utf8.h"
#include "Platform/Text/Utf8Pieces.h"

namespace rvf {
namespace {

void requireSuccess(UErrorCode status) {
  if (U_FAILURE(status)) throw std::runtime_error(u_errorName(status));
}

icu::StringPiece icuPiece(std::string_view piece) {
  return {piece.data(), static_cast<std::int32_t>(piece.size())};
}

std::string withoutNonSpacingMarks(std::string_view text) {
  std::string result;
  result.reserve(text.size());
  while (!text.empty()) {
    const Utf8Unit unit = firstUtf8Unit(text);
    if (u_charType(static_cast<UChar32>(unit.codePoint)) != U_NON_SPACING_MARK)
      result.append(text, 0, unit.length);
    text.remove_prefix(unit.length);
  }
  return result;
}

std::string withoutDiacritics(std::string_view piece) {
  UErrorCode status = U_ZERO_ERROR;
  const icu::Normalizer2* decomposition = icu::Normalizer2::getNFDInstance(status);
  requireSuccess(status);
  std::string decomposed;
  icu::StringByteSink<std::string> sink(&decomposed);
  decomposition->normalizeUTF8(0, icuPiece(piece), sink, nullptr, status);
  requireSuccess(status);
  return withoutNonSpacingMarks(decomposed);
}

std::string withoutCase(std::string_view piece) {
  UErrorCode status = U_ZERO_ERROR;
  std::string folded;
  icu::StringByteSink<std::string> sink(&folded);
  icu::CaseMap::utf8Fold(U_FOLD_CASE_DEFAULT, icuPiece(piece), sink, nullptr, status);
  requireSuccess(status);
  return folded;
}

/// Well-formed text through the library.
std::string foldedByLibrary(std::string_view piece, TextFolding folding) {
  if (!folding.isDiacriticInsensitive) return withoutCase(piece);
  const std::string plain = withoutDiacritics(piece);
  return folding.isCaseInsensitive ? withoutCase(plain) : plain;
}

std::string encodedUtf8(char32_t c) {
  const auto tail = [c](int shift) { return static_cast<char>(0x80 | (c >> shift & 0x3F)); };
  if (c < 0x80) return {static_cast<char>(c)};
  if (c < 0x800) return {static_cast<char>(0xC0 | c >> 6), tail(0)};
  return {static_cast<char>(0xE0 | c >> 12), tail(6), tail(0)};
}

/// What the library makes of each character of the alphabets that tills meet (Latin, Greek,
/// Cyrillic, Hebrew, precomposed Latin and Greek), asked once. Nothing in these folds depends on
/// the characters around: no mark that stays is ever reordered.
class FoldingTable final {
 public:
  explicit FoldingTable(TextFolding folding) {
    for (std::size_t index = 0; index < entries_.size(); ++index)
      entries_[index] = entryOf(foldedByLibrary(encodedUtf8(characterAt(index)), folding));
  }

  /// Null for a character that is not in the table.
  const char* find(char32_t c, std::size_t& length) const noexcept {
    if (c >= kSecondStart && c < kSecondEnd)
      c = c - kSecondStart + kFirstEnd;
    else if (c >= kFirstEnd)
      return nullptr;
    const Entry& entry = entries_[c];
    length = entry.length;
    return length == kTooLong ? nullptr : entry.bytes.data();
  }

 private:
  static constexpr char32_t kFirstEnd = 0x600;
  static constexpr char32_t kSecondStart = 0x1E00;
  static constexpr char32_t kSecondEnd = 0x2000;
  static constexpr std::uint8_t kTooLong = 0xFF;

  struct Entry {
    std::uint8_t length;
    std::array<char, 7> bytes;
  };

  static char32_t characterAt(std::size_t index) noexcept {
    const auto c = static_cast<char32_t>(index);
    return c < kFirstEnd ? c : c - kFirstEnd + kSecondStart;
  }
  static Entry entryOf(const std::string& folded) {
    Entry entry{kTooLong, {}};
    if (folded.size() > entry.bytes.size()) return entry;
    entry.length = static_cast<std::uint8_t>(folded.size());
    std::memcpy(entry.bytes.data(), folded.data(), folded.size());
    return entry;
  }

  std::array<Entry, kFirstEnd + (kSecondEnd - kSecondStart)> entries_;
};

const FoldingTable& tableFor(TextFolding folding) {
  if (!folding.isDiacriticInsensitive) {
    static const FoldingTable kCase({true, false});
    return kCase;
  }
  if (!folding.isCaseInsensitive) {
    static const FoldingTable kDiacritics({false, true});
    return kDiacritics;
  }
  static const FoldingTable kBoth({true, true});
  return kBoth;
}

/// Folds character by character as far as the table goes; answers what is left.
std::string_view foldByTable(std::string_view text, const FoldingTable& table,
                             std::string& result) {
  while (!text.empty()) {
    const Utf8Unit unit = firstUtf8Unit(text);
    std::size_t length = 0;
    const char* folded = unit.wellFormed ? table.find(unit.codePoint, length) : nullptr;
    if (!folded) break;
    result.append(folded, length);
    text.remove_prefix(unit.length);
  }
  return text;
}

using Word = std::uint64_t;
constexpr Word kEveryByte = 0x0101010101010101;
constexpr Word kHighBits = 0x80 * kEveryByte;

/// Eight ASCII characters in lower case.
constexpr Word lowercaseWord(Word word) noexcept {
  const Word fromA = word + (0x80 - 'A') * kEveryByte;        // high bit: "A" or beyond
  const Word beyondZ = word + (0x80 - 'Z' - 1) * kEveryByte;  // high bit: beyond "Z"
  return word | ((fromA & ~beyondZ & kHighBits) >> 2);
}

/// Copies in lower case; false, with the rest left undone, if the text is not all ASCII.
bool lowercaseASCII(std::string_view text, char* result) noexcept {
  std::size_t at = 0;
  for (; at + sizeof(Word) <= text.size(); at += sizeof(Word)) {
    Word word = 0;
    std::memcpy(&word, text.data() + at, sizeof(Word));
    if ((word & kHighBits) != 0) return false;
    word = lowercaseWord(word);
    std::memcpy(result + at, &word, sizeof(Word));
  }
  for (; at < text.size(); ++at) {
    const char c = text[at];
    if (!isAscii(c)) return false;
    result[at] = c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
  }
  return true;
}

bool isAllASCII(std::string_view text) noexcept {
  for (const char c : text)
    if (!isAscii(c)) return false;
  return true;
}

}  // namespace

std::string foldedText(std::string_view text, TextFolding folding) {
  if (folding.isLiteral()) return std::string(text);
  const FoldingTable& table = tableFor(folding);
  std::string result;
  result.reserve(text.size());
  text = foldByTable(text, table, result);
  if (text.empty()) return result;
  // A character beyond the table; the library takes what is left, up to bytes that are none.
  while (!text.empty()) {
    const std::string_view piece = takeWellFormedPiece(text);
    if (!piece.empty()) {
      result += foldedByLibrary(piece, folding);
      continue;
    }
    result += text.front();
    text.remove_prefix(1);
  }
  return result;
}

FoldedText::FoldedText(std::string_view text, TextFolding folding) : view_(text) {
  if (folding.isLiteral()) return;
  if (!folding.isCaseInsensitive) {
    if (isAllASCII(text)) return;
  } else if (text.size() <= kShort && lowercaseASCII(text, short_.data())) {
    view_ = {short_.data(), text.size()};
    return;
  }
  long_ = foldedText(text, folding);
  view_ = long_;
}

}  // namespace rvf
