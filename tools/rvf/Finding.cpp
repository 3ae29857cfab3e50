// SPDX-License-Identifier: Apache-2.0
#include "tools/rvf/Finding.h"

#include <iostream>

#include "Platform/Network/NSURL.h"
#include "Platform/Text/Utf8.h"
#include "RVFoundation/ServerDiscovery/NSURL-RVFExtensions.h"

namespace rvf::tool {
namespace {

/// C0 and C1 controls, and the marks that turn the direction of text (UAX #9).
bool isControl(char32_t c) {
  return c < 0x20 || (c >= 0x7F && c < 0xA0) || c == 0x200E || c == 0x200F ||
         (c >= 0x2028 && c <= 0x202E) || (c >= 0x2066 && c <= 0x2069);
}

}  // namespace

std::string addressText(const SocketAddress& address) {
  const std::string port = ":" + std::to_string(address.port());
  if (!address.isIPv6()) return address.addressText() + port;
  const std::string zone = address.scope() ? "%" + std::to_string(address.scope()) : "";
  return "[" + address.addressText() + zone + "]" + port;
}

std::string baseUrlText(const Ref<NSData>& address) {
  const auto url = NSURL_RVFExtensions::RVF_CURLURLWithAddressData(address);
  return url ? url->absoluteString() : std::string();
}

std::vector<std::string> addressTexts(const std::vector<Ref<NSData>>& addresses) {
  std::vector<std::string> texts;
  for (const Ref<NSData>& block : addresses) {
    if (const auto address = SocketAddress::fromDataBlock(block)) {
      texts.push_back(addressText(*address));
    }
  }
  return texts;
}

nlohmann::json jsonOf(const Finding& finding) {
  nlohmann::json value = {{"name", finding.name}, {"addresses", addressTexts(finding.addresses)}};
  value["demo"] = finding.isDemo ? nlohmann::json(*finding.isDemo) : nlohmann::json();
  value["url"] = finding.addresses.empty() ? nlohmann::json()
                                           : nlohmann::json(baseUrlText(finding.addresses[0]));
  return value;
}

void printText(const Finding& finding) {
  std::cout << "server       " << printable(finding.name) << "\n";
  std::cout << "demo         "
            << (!finding.isDemo   ? "unknown"
                : *finding.isDemo ? "yes"
                                  : "no")
            << "\n";
  std::cout << "addresses   ";
  for (const std::string& text : addressTexts(finding.addresses))
    std::cout << " " << text;
  std::cout << "\n";
}

std::string jsonText(const nlohmann::json& value) {
  return value.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace);
}

std::string printable(std::string_view text) {
  std::string result;
  while (!text.empty()) {
    const Utf8Unit unit = firstUtf8Unit(text);
    const bool isShown = unit.wellFormed && !isControl(unit.codePoint);
    result += isShown ? text.substr(0, unit.length) : "?";
    text.remove_prefix(unit.length);
  }
  return result;
}

void complain(std::string_view message) {
  constexpr std::size_t kMost = 1000;
  while (message.ends_with('\n'))
    message.remove_suffix(1);
  std::cerr << "rvf: " << printable(message.substr(0, kMost)) << "\n";
}

}  // namespace rvf::tool
