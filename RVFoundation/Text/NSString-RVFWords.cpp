// SPDX-License-Identifier: Apache-2.0
#include "RVFoundation/Text/NSString-RVFWords.h"

#include <cstring>

#include "Platform/Locale/NSLocale.h"
#include "Platform/Locale/WordTokenizer.h"
#include "Platform/Runtime/NSAssertionHandler.h"

namespace rvf {
namespace {

/// Assertions of the text extensions name their source so, without a line.
constexpr std::string_view kSource = "RVFoundation/NSString-RVFExtensions";
constexpr int kNoLine = 0;

std::vector<std::string> failWords(std::string_view description) {
  static const SEL kWordComponents("wordComponents");
  NSAssertionHandler::currentHandler()->handleFailureInMethod(kWordComponents, nullptr, kSource,
                                                              kNoLine, description);
  return {};
}

}  // namespace

std::vector<std::string> wordComponents(std::string_view text) {
  const Ref<NSLocale> locale = NSLocale::currentLocale();
  if (!locale) return failWords("Cannot get the current Locale");
  auto tokenizer = WordTokenizer::create(text, locale);
  if (!tokenizer) return failWords("Could not create tokenizer");
  std::vector<std::string> words;
  while (const auto word = tokenizer->nextWord())
    words.emplace_back(*word);
  return words;
}

std::size_t RVF_occurrenceCountOfSubstring(std::string_view text,
                                           std::string_view substring) noexcept {
  if (substring.empty() || text.size() < substring.size()) return 0;
  std::size_t count = 0;
  // Unlike std::search and find, memmem takes linear time for every text and substring.
  const char* end = text.data() + text.size();
  const char* at = text.data();
  while (const void* found =
             memmem(at, static_cast<std::size_t>(end - at), substring.data(), substring.size())) {
    ++count;
    at = static_cast<const char*>(found) + substring.size();
  }
  return count;
}

}  // namespace rvf
