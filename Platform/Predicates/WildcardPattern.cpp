// SPDX-License-Identifier: Apache-2.0
#include "Platform/Predicates/WildcardPattern.h"

#include <cstddef>

#include "Platform/Text/Utf8.h"

namespace rvf {
namespace {

/// A byte that belongs to no character is a unit of its own, like no character.
char32_t unitFor(const Utf8Unit& unit, char first) noexcept {
  constexpr char32_t kBytes = 0x110000;
  return unit.wellFormed ? unit.codePoint : kBytes + static_cast<unsigned char>(first);
}

std::string_view takeCharacter(std::string_view& text) noexcept {
  const std::string_view character = text.substr(0, firstUtf8Unit(text).length);
  text.remove_prefix(character.size());
  return character;
}

}  // namespace

WildcardPattern::WildcardPattern(std::string_view pattern, TextFolding folding)
    : folding_(folding) {
  while (!pattern.empty()) {
    std::string_view character = takeCharacter(pattern);
    if (character == "?") {
      elements_.push_back({Kind::oneCharacter, 0});
      continue;
    }
    if (character == "*") {
      elements_.push_back({Kind::anyCharacters, 0});
      continue;
    }
    if (character == "\\" && !pattern.empty()) character = takeCharacter(pattern);
    Units units;
    appendUnits(character, units);
    for (const char32_t unit : units)
      elements_.push_back({Kind::literal, unit & ~kGoesOn});
  }
}

void WildcardPattern::appendUnits(std::string_view character, Units& units) const {
  const FoldedText folded(character, folding_);
  std::string_view rest = folded.view();
  for (char32_t mark = 0; !rest.empty(); mark = kGoesOn) {
    const Utf8Unit unit = firstUtf8Unit(rest);
    units.push_back(unitFor(unit, rest.front()) | mark);
    rest.remove_prefix(unit.length);
  }
}

WildcardPattern::Units WildcardPattern::unitsOf(std::string_view text) const {
  Units units;
  units.reserve(text.size());
  while (!text.empty())
    appendUnits(takeCharacter(text), units);
  return units;
}

bool WildcardPattern::matches(std::string_view text) const {
  const Units units = unitsOf(text);
  std::size_t at = 0;
  std::size_t element = 0;
  // Where to try again with one more unit for the last "*".
  std::size_t retryElement = elements_.size() + 1;
  std::size_t retryAt = 0;
  while (at < units.size() || element < elements_.size()) {
    if (element < elements_.size() && elements_[element].kind == Kind::anyCharacters) {
      retryElement = ++element;
      retryAt = at;
    } else if (const std::size_t taken = unitsTaken(element, units, at); taken > 0) {
      ++element;
      at += taken;
    } else {
      if (retryElement > elements_.size() || retryAt >= units.size()) return false;
      element = retryElement;
      at = ++retryAt;
    }
  }
  return true;
}

std::size_t WildcardPattern::unitsTaken(std::size_t element, const Units& units,
                                        std::size_t at) const {
  if (element >= elements_.size() || at >= units.size()) return 0;
  if (elements_[element].kind == Kind::literal)
    return elements_[element].unit == (units[at] & ~kGoesOn) ? 1 : 0;
  if ((units[at] & kGoesOn) != 0) return 0;
  std::size_t end = at + 1;
  while (end < units.size() && (units[end] & kGoesOn) != 0)
    ++end;
  return end - at;
}

}  // namespace rvf
