// SPDX-License-Identifier: Apache-2.0
#include "RVFoundation/RuntimeServices/NSString-RVFPredicateExtensions.h"

#include "Platform/Text/Text.h"

namespace rvf {

std::vector<std::string> RVF_wordComponents(std::string_view text) {
  std::vector<std::string> words(1);
  text = trimText(text, &isWhiteSpaceOrNewline);
  while (!text.empty()) {
    const Utf8Unit unit = firstUtf8Unit(text);
    if (isWhiteSpaceOrNewline(unit.codePoint)) {
      words.emplace_back();
    } else {
      words.back().append(text, 0, unit.length);
    }
    text.remove_prefix(unit.length);
  }
  return words;
}

}  // namespace rvf
