// SPDX-License-Identifier: Apache-2.0
//
// Takes any bytes as "TEXT" or "BASE\nTEXT": parsing must keep the text, and reading the parts,
// resolving, sorting the query and reading it into a dictionary must end in a result or an
// `NSException`.

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include "Platform/Network/NSURL.h"
#include "Platform/Runtime/NSException.h"
#include "RVFoundation/ServerDiscovery/NSDictionary-RVFExtensions.h"
#include "RVFoundation/ServerDiscovery/NSURL-RVFExtensions.h"

namespace {

using rvf::NSURL;
using rvf::Ref;

void require(bool condition) {
  if (!condition) std::abort();
}

void readParts(const Ref<NSURL>& url) {
  url->scheme();
  url->host();
  url->port();
  url->path();
  url->fragment();
  rvf::RVF_pathWithTrailingSlash(url);
}

void sortQuery(const Ref<NSURL>& url) {
  const std::string& text = url->absoluteString();
  if (text.find('#') != text.rfind('#')) return;  // may be logged, which would drown the report
  const auto sorted = rvf::RVF_absoluteURLWithSortedQuery(url);
  require(rvf::RVF_absoluteURLWithSortedQuery(sorted)->isEqual(sorted.get()));
}

void readQuery(std::string_view query) {
  try {
    const auto dictionary = rvf::NSDictionary_RVFExtensions::RVF_dictionaryFromURLQuery(query);
    const auto encoded = rvf::RVF_URLEncodedDictionary(dictionary);
    const auto again = rvf::NSDictionary_RVFExtensions::RVF_dictionaryFromURLQuery(*encoded);
    require(again->isEqual(dictionary.get()));
  } catch (const rvf::NSException&) {
    // A piece without "=", or one that does not decode.
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view input(reinterpret_cast<const char*>(data), size);
  const std::size_t newline = input.find('\n');
  const bool hasBase = newline != std::string_view::npos;
  const std::string_view text = hasBase ? input.substr(newline + 1) : input;
  readQuery(text);
  const auto base = hasBase ? NSURL::URLWithString(input.substr(0, newline)) : nullptr;
  const auto url = NSURL::URLWithString(text, base);
  if (!url) return 0;
  require(url->relativeString() == text);
  require(base || url->absoluteString() == text);
  readParts(url);
  sortQuery(url);
  readQuery(url->query().value_or(""));
  return 0;
}
