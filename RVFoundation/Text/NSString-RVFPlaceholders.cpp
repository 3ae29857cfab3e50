// SPDX-License-Identifier: Apache-2.0
#include "RVFoundation/Text/NSString-RVFPlaceholders.h"

#include "Platform/Runtime/NSException.h"
#include "Platform/Text/Format.h"

namespace rvf {
namespace {

/// The characters before the mark, or all, which are taken off the front of the text.
std::string_view takeUpTo(std::string_view mark, std::string_view& text) noexcept {
  const std::string_view taken = text.substr(0, text.find(mark));
  text.remove_prefix(taken.size());
  return taken;
}

}  // namespace

std::string stringByReplacingPlaceholdersWithDictionaryValues(std::string_view text,
                                                              const Ref<NSDictionary>& dictionary) {
  constexpr std::string_view kOpening = "%@(";
  constexpr std::string_view kClosing = ")";
  std::string result;
  while (true) {
    result += takeUpTo(kOpening, text);
    if (text.empty()) return result;
    text.remove_prefix(kOpening.size());
    const std::string_view key = takeUpTo(kClosing, text);
    const id value = dictionary && !key.empty() ? dictionary->objectForKey(key) : nullptr;
    if (value) result += value->description();
    if (text.empty()) {
      NSException::raise(
          NSInvalidArgumentException,
          stringWithFormat(
              "invalid placeholder format string. Make sure any %%@( is closed with )"));
    }
    text.remove_prefix(kClosing.size());
  }
}

}  // namespace rvf
