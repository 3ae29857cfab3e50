// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "Platform/Network/SocketAddress.h"
#include "Platform/Runtime/Ref.h"
#include "Platform/Values/NSData.h"

namespace rvf::tool {

/// A server that was found and resolved.
struct Finding {
  std::string name;
  std::optional<bool> isDemo;  ///< absent for a hand-entered address, which does not tell
  std::vector<Ref<NSData>> addresses;
};

/// "192.168.1.10:9630", "[fe80::1%4]:9630".
std::string addressText(const SocketAddress& address);
/// The base URL of the server at an address.
std::string baseUrlText(const Ref<NSData>& address);
/// All addresses as text.
std::vector<std::string> addressTexts(const std::vector<Ref<NSData>>& addresses);
/// {"name", "demo", "addresses", "url"}, the URL of the first address.
nlohmann::json jsonOf(const Finding& finding);
void printText(const Finding& finding);

/// JSON text in which bytes that are no UTF-8 are replaced.
std::string jsonText(const nlohmann::json& value);
/// Text from the network as a terminal may show it: controls and bytes that are no UTF-8 become
/// "?".
std::string printable(std::string_view text);
/// Writes an error to standard error: one line, at most 1,000 bytes of it.
void complain(std::string_view message);

}  // namespace rvf::tool
