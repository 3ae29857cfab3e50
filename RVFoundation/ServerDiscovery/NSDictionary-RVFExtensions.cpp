// SPDX-License-Identifier: Apache-2.0
#include "RVFoundation/ServerDiscovery/NSDictionary-RVFExtensions.h"

#include <algorithm>
#include <utility>
#include <vector>

#include "Platform/Runtime/NSException.h"
#include "Platform/Text/Text.h"
#include "Platform/Values/NSMutableDictionary.h"
#include "Platform/Values/NSString.h"
#include "RVFoundation/Text/NSString-RVFExtensions.h"

namespace rvf {
namespace {

/// A key or value as text; any other object does not answer the escaping, and raises so.
const NSString& textOf(const id& object) {
  const auto* text = dynamic_cast<const NSString*>(object.get());
  if (!text) object->doesNotRecognizeSelector(SEL("RVF_stringByEscapingForURLArgument"));
  return *text;
}

std::string escaped(const NSString& text) {
  auto result = RVF_stringByEscapingForURLArgument(text.string());
  if (!result)
    NSException::raise(NSInvalidArgumentException, "text that is no valid UTF-8 in a query");
  return *std::move(result);
}

using TextEntry = std::pair<const NSString*, const NSString*>;

std::vector<TextEntry> sortedEntries(const NSDictionary& dictionary) {
  std::vector<TextEntry> entries;
  entries.reserve(dictionary.count());
  for (const auto& [key, value] : dictionary.entries())
    entries.emplace_back(&textOf(key), &textOf(value));
  std::ranges::sort(entries, [](const TextEntry& a, const TextEntry& b) {
    return a.first->compare(*b.first) < 0;
  });
  return entries;
}

}  // namespace

Ref<NSDictionary> NSDictionary_RVFExtensions::RVF_dictionaryFromURLQuery(std::string_view query) {
  const auto dictionary = NSMutableDictionary::dictionary();
  for (const std::string_view piece : splitText(query, "&")) {
    const std::vector<std::string_view> parts = splitText(piece, "=");
    if (parts.size() < 2) NSException::raise(NSRangeException, "index 1 beyond bounds [0 .. 0]");
    const Ref<NSString> key = box(RVF_stringByDecodingURLArguments(parts[0]));
    dictionary->setObject(box(RVF_stringByDecodingURLArguments(parts[1])), key);
  }
  return dictionary->copy();
}

std::optional<std::string> RVF_encodedDictionary(const Ref<NSDictionary>& dictionary, bool form) {
  if (!dictionary) return std::nullopt;
  std::string text;
  for (const auto& [key, value] : sortedEntries(*dictionary)) {
    if (!text.empty()) text += '&';
    ((text += escaped(*key)) += '=') += escaped(*value);
  }
  return form ? joinText(splitText(text, "%20"), "+") : text;
}

std::optional<std::string> RVF_URLEncodedDictionary(const Ref<NSDictionary>& dictionary) {
  return RVF_encodedDictionary(dictionary, false);
}

std::optional<std::string> RVF_wwwFormEncodedDictionary(const Ref<NSDictionary>& dictionary) {
  return RVF_encodedDictionary(dictionary, true);
}

}  // namespace rvf
