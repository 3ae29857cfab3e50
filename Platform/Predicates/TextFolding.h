// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <array>
#include <string>
#include <string_view>

namespace rvf {

/// What a comparison of texts overlooks.
struct TextFolding {
  bool isCaseInsensitive = false;
  bool isDiacriticInsensitive = false;

  bool isLiteral() const noexcept { return !isCaseInsensitive && !isDiacriticInsensitive; }
};

/// The text without what the folding overlooks, the same in every locale. Diacritics go by
/// canonical decomposition and dropping of the non-spacing marks (category Mn), then case by the
/// full case folding of Unicode (3.13, D144). Bytes that belong to no character stay.
std::string foldedText(std::string_view text, TextFolding folding);

/// A folded text for one comparison: short ASCII texts are folded in place, without an allocation.
/// It may point into the text that it was made from.
class FoldedText final {
 public:
  FoldedText(std::string_view text, TextFolding folding);
  FoldedText(const FoldedText&) = delete;
  FoldedText& operator=(const FoldedText&) = delete;

  std::string_view view() const noexcept { return view_; }

 private:
  static constexpr std::size_t kShort = 128;

  std::array<char, kShort> short_;  // not initialized: most of it is never used
  std::string long_;
  std::string_view view_;
};

}  // namespace rvf
