// SPDX-License-Identifier: Apache-2.0
//
// Fills placeholders in any bytes: the result is text or an `NSInvalidArgumentException`, and what
// holds no placeholder comes back unchanged. The other text operations take the same bytes.

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include "Platform/Runtime/NSException.h"
#include "Platform/Text/Text.h"
#include "Platform/Values/NSString.h"
#include "RVFoundation/Text/NSString-RVFDigests.h"
#include "RVFoundation/Text/NSString-RVFEscaping.h"
#include "RVFoundation/Text/NSString-RVFPlaceholders.h"
#include "RVFoundation/Text/NSString-RVFWords.h"

namespace {

void require(bool isTrue) {
  if (!isTrue) std::abort();
}

void fillPlaceholders(std::string_view text) {
  static const auto kValues = rvf::NSDictionary::dictionaryWithEntries(
      {{"a", rvf::box("%@(a)")}, {"name", rvf::box("World")}, {" ", rvf::box("")}});
  const bool hasPlaceholder = text.find("%@(") != std::string_view::npos;
  try {
    const std::string filled =
        rvf::stringByReplacingPlaceholdersWithDictionaryValues(text, kValues);
    require(hasPlaceholder || filled == text);
  } catch (const rvf::NSException& exception) {
    require(hasPlaceholder && exception.name() == rvf::NSInvalidArgumentException);
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  fillPlaceholders(text);
  const std::string_view half = text.substr(0, size / 2);
  require(rvf::RVF_occurrenceCountOfSubstring(text, half) == rvf::splitText(text, half).size() - 1);
  const std::string clean = rvf::RVF_cleanStringRemovingNewlinesAndTabs(text);
  require(rvf::RVF_cleanStringRemovingNewlinesAndTabs(clean) == clean);
  require(rvf::stringByEscapingXMLEntities(text).size() >= size);
  require(rvf::RVF_stringByEscapingPredicateWildcards(text).size() >= size);
  require(rvf::RVF_md5(text).size() == 32);
  std::size_t words = 0;
  for (const std::string& word : rvf::wordComponents(text))
    words += word.size();
  require(words <= size);
  return 0;
}
