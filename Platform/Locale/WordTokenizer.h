// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <memory>
#include <optional>
#include <string_view>

#include "Platform/Export.h"
#include "Platform/Locale/NSLocale.h"

namespace rvf {

/// Finds the words of a text one after the other, by the rules of a locale (Unicode annex 29 and
/// its dictionaries). Numbers and symbols in words are kept together ("3.14", "don't"); white
/// space, punctuation and bytes that belong to no character are between the words.
///
///     if (auto tokenizer = WordTokenizer::create(text, NSLocale::currentLocale()))
///       while (const auto word = tokenizer->nextWord()) { … }
///
/// Thread: one at a time. Lifetime: refers to the text, which the caller keeps; so do the words.
class RVF_EXPORT WordTokenizer final {
 public:
  /// `text` must stay as it is meanwhile. Absent for an absent locale, a text of 2 GB or more, and
  /// if the rules cannot be had.
  static std::optional<WordTokenizer> create(std::string_view text, const Ref<NSLocale>& locale);

  WordTokenizer(WordTokenizer&& other) noexcept;
  WordTokenizer& operator=(WordTokenizer&& other) noexcept;
  ~WordTokenizer();

  /// The next word as a part of the text; absent behind the last.
  std::optional<std::string_view> nextWord();

 private:
  class State;
  explicit WordTokenizer(std::unique_ptr<State> state) noexcept;

  std::unique_ptr<State> state_;
};

}  // namespace rvf
