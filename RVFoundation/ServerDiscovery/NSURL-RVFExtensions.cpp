// SPDX-License-Identifier: Apache-2.0
#include "RVFoundation/ServerDiscovery/NSURL-RVFExtensions.h"

#include <algorithm>
#include <cstdint>
#include <vector>

#include "Platform/Network/SocketAddress.h"
#include "Platform/Runtime/ClassReceiver.h"
#include "Platform/Runtime/NSAssertionHandler.h"
#include "Platform/Text/NSLog.h"
#include "Platform/Text/Text.h"

namespace rvf {
namespace {

/// Assertions of the URL extensions name their source so, without a line.
constexpr std::string_view kSource = "RVFoundation/NSURL-RVFExtensions";
constexpr int kNoLine = 0;

constexpr std::string_view kEscapedPercent = "%25";

std::string serverURLText(const SocketAddress& address) {
  const auto port = static_cast<std::int16_t>(address.port());
  const auto scope = static_cast<std::int32_t>(address.scope());
  const std::string text = address.addressText();
  if (!address.isIPv6()) return stringWithFormat("https://%s:%i/", text, port);
  if (scope == 0) return stringWithFormat("https://[%s]:%i/", text, port);
  return stringWithFormat("https://[%s%@%i]:%i/", text, kEscapedPercent, scope, port);
}

/// "=" before every other character, so that the pieces of a key stand before those of a longer
/// key. URL texts are ASCII, where code units are bytes.
constexpr int sortingRank(char c) noexcept {
  return c == '=' ? -1 : static_cast<unsigned char>(c);
}

bool comesBefore(std::string_view a, std::string_view b) {
  return std::ranges::lexicographical_compare(a, b, {}, sortingRank, sortingRank);
}

std::string sortedQuery(std::string_view query) {
  std::vector<std::string_view> pieces = splitText(query, "&");
  std::ranges::sort(pieces, comesBefore);
  return joinText(pieces, "&");
}

}  // namespace

Ref<NSURL> NSURL_RVFExtensions::RVF_CURLURLWithAddressData(const Ref<NSData>& addressData) {
  const auto address = SocketAddress::fromDataBlock(addressData);
  if (address) return NSURL::URLWithString(serverURLText(*address));
  const ClassReceiver receiver(NSURL::classObject());
  NSAssertionHandler::currentHandler()->handleFailureInMethod(SEL("RVF_CURLURLWithAddressData:"),
                                                              &receiver, kSource, kNoLine,
                                                              "Unsupported Address Family");
  return nullptr;
}

std::optional<std::string> RVF_pathWithTrailingSlash(const Ref<NSURL>& url) {
  std::optional<std::string> path = url ? url->path() : std::nullopt;
  if (!path || path->ends_with('/')) return path;
  const std::string& text = url->absoluteString();
  const bool hasSlash = text.ends_with('/') || text.find("/?") != std::string::npos ||
                        text.find("/;") != std::string::npos ||
                        text.find("/#") != std::string::npos;
  if (hasSlash) *path += '/';
  return path;
}

std::optional<std::string> RVF_absoluteStringWithSortedQuery(const Ref<NSURL>& url) {
  if (!url) return std::nullopt;
  const std::string& text = url->absoluteString();
  const std::vector<std::string_view> pieces = splitText(text, "?");
  if (pieces.size() != 2 || pieces[1].starts_with('#')) return text;
  const std::vector<std::string_view> rest = splitText(pieces[1], "#");
  std::optional<std::string> query;
  if (rest.size() > 2) {
    NSLog("Unexpected URL format: %@", text);
  } else {
    query = sortedQuery(rest[0]);
  }
  const std::string sorted = stringWithFormat("%@?%@", pieces[0], query);
  return rest.size() == 2 ? stringWithFormat("%@#%@", sorted, rest[1]) : sorted;
}

Ref<NSURL> RVF_absoluteURLWithSortedQuery(const Ref<NSURL>& url) {
  const auto text = RVF_absoluteStringWithSortedQuery(url);
  return text ? NSURL::URLWithString(*text) : nullptr;
}

}  // namespace rvf
