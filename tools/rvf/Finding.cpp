// SPDX-License-Identifier: Apache-2.0
#include "tools/rvf/Finding.h"

#include <algorithm>
#include <iostream>

#include "Platform/Network/NSURL.h"
#include "RVFoundation/ServerDiscovery/NSURL-RVFExtensions.h"

namespace rvf::tool {

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
  if (finding.isDemo) std::cout << "demo         " << (*finding.isDemo ? "yes" : "no") << "\n";
  std::cout << "addresses   ";
  for (const std::string& text : addressTexts(finding.addresses))
    std::cout << " " << text;
  std::cout << "\n";
}

std::string jsonText(const nlohmann::json& value) {
  return value.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace);
}

std::string printable(std::string_view text) {
  std::string result(text);
  std::ranges::replace_if(
      result, [](char c) { return static_cast<unsigned char>(c) < 0x20 || c == 0x7F; }, '?');
  return result;
}

}  // namespace rvf::tool
