// SPDX-License-Identifier: Apache-2.0
#include "Platform/Locale/WordTokenizer.h"

#include <unicode/brkiter.h>
#include <unicode/locid.h>
#include <unicode/ubrk.h>
#include <unicode/utext.h>

#include <cstdint>
#include <limits>
#include <string>
#include <utility>

#include "Platform/Text/Utf8.h"

namespace rvf {
namespace {

/// The rules of a locale. To read them takes a thousand times as long as to break a short text by
/// them, so each thread keeps those that it used last.
class KeptRules final {
 public:
  struct Rules {
    std::string localeIdentifier;
    std::unique_ptr<icu::BreakIterator> iterator;  ///< absent if the rules cannot be had
  };

  static Rules take(const std::string& localeIdentifier) {
    Rules& kept = ofThisThread().rules_;
    if (kept.iterator && kept.localeIdentifier == localeIdentifier)
      return {localeIdentifier, std::move(kept.iterator)};
    UErrorCode status = U_ZERO_ERROR;
    std::unique_ptr<icu::BreakIterator> iterator(
        icu::BreakIterator::createWordInstance(icu::Locale(localeIdentifier.c_str()), status));
    if (U_FAILURE(status)) iterator.reset();
    return {localeIdentifier, std::move(iterator)};
  }

  static void putBack(Rules rules) {
    if (!hasThreadEnded) ofThisThread().rules_ = std::move(rules);
  }

  KeptRules(const KeptRules&) = delete;
  KeptRules& operator=(const KeptRules&) = delete;
  ~KeptRules() { hasThreadEnded = true; }

 private:
  KeptRules() = default;

  static KeptRules& ofThisThread() {
    thread_local KeptRules kept;
    return kept;
  }

  /// A tokenizer may outlive what its thread kept.
  static thread_local constinit bool hasThreadEnded;

  Rules rules_;
};

thread_local constinit bool KeptRules::hasThreadEnded = false;

/// One U+FFFD, which is no part of a word, for each byte that belongs to no character.
std::u16string utf16Of(std::string_view text) {
  std::u16string units(text.size(), u'\0');
  char16_t* end = units.data();
  while (!text.empty()) {
    const Utf8Unit unit = firstUtf8Unit(text);
    text.remove_prefix(unit.length);
    if (unit.codePoint <= 0xFFFF) {
      *end++ = static_cast<char16_t>(unit.codePoint);
      continue;
    }
    *end++ = static_cast<char16_t>(0xD7C0 + (unit.codePoint >> 10));
    *end++ = static_cast<char16_t>(0xDC00 | (unit.codePoint & 0x3FF));
  }
  units.resize(static_cast<std::size_t>(end - units.data()));
  return units;
}

}  // namespace

class WordTokenizer::State {
 public:
  State(std::string_view text, KeptRules::Rules rules)
      : rest_(text), units_(utf16Of(text)), rules_(std::move(rules)) {
    UErrorCode status = U_ZERO_ERROR;
    utext_openUChars(&source_, units_.data(), static_cast<std::int64_t>(units_.size()), &status);
    rules_.iterator->setText(&source_, status);
    isUsable_ = U_SUCCESS(status);
    rules_.iterator->first();
  }
  State(const State&) = delete;
  State& operator=(const State&) = delete;

  ~State() {
    utext_close(&source_);
    KeptRules::putBack(std::move(rules_));
  }

  bool isUsable() const noexcept { return isUsable_; }

  std::optional<std::string_view> nextWord() {
    icu::BreakIterator& rules = *rules_.iterator;
    std::int32_t start = rules.current();
    for (std::int32_t end = rules.next(); end != icu::BreakIterator::DONE; end = rules.next()) {
      if (rules.getRuleStatus() >= UBRK_WORD_NUMBER) {
        skipTo(start);
        return take(end);
      }
      start = end;
    }
    return std::nullopt;
  }

 private:
  std::size_t bytesUpTo(std::int32_t unit) noexcept {
    std::size_t bytes = 0;
    while (position_ < unit) {
      const Utf8Unit character = firstUtf8Unit(rest_.substr(bytes));
      bytes += character.length;
      position_ += character.codePoint > 0xFFFF ? 2 : 1;
    }
    return bytes;
  }

  void skipTo(std::int32_t unit) noexcept { rest_.remove_prefix(bytesUpTo(unit)); }

  std::string_view take(std::int32_t end) noexcept {
    const std::size_t length = bytesUpTo(end);
    const std::string_view word = rest_.substr(0, length);
    rest_.remove_prefix(length);
    return word;
  }

  std::string_view rest_;
  std::int32_t position_ = 0;  ///< of `rest_`, in UTF-16 units
  std::u16string units_;
  UText source_ = UTEXT_INITIALIZER;
  KeptRules::Rules rules_;
  bool isUsable_ = false;
};

WordTokenizer::WordTokenizer(std::unique_ptr<State> state) noexcept : state_(std::move(state)) {}
WordTokenizer::WordTokenizer(WordTokenizer&& other) noexcept = default;
WordTokenizer& WordTokenizer::operator=(WordTokenizer&& other) noexcept = default;
WordTokenizer::~WordTokenizer() = default;

std::optional<WordTokenizer> WordTokenizer::create(std::string_view text,
                                                   const Ref<NSLocale>& locale) {
  constexpr std::size_t kLongestText = std::numeric_limits<std::int32_t>::max();
  if (!locale || text.size() >= kLongestText) return std::nullopt;
  KeptRules::Rules rules = KeptRules::take(locale->localeIdentifier());
  if (!rules.iterator) return std::nullopt;
  auto state = std::make_unique<State>(text, std::move(rules));
  if (!state->isUsable()) return std::nullopt;
  return WordTokenizer(std::move(state));
}

std::optional<std::string_view> WordTokenizer::nextWord() {
  return state_->nextWord();
}

}  // namespace rvf
