// SPDX-License-Identifier: Apache-2.0
#include "Platform/Network/HostName.h"

#include <unistd.h>

#include <array>
#include <fstream>
#include <iterator>

#include "Platform/Text/Text.h"

namespace rvf {
namespace {

constexpr const char* kMachineInfoPath = "/etc/machine-info";
constexpr std::string_view kPrettyHostNameKey = "PRETTY_HOSTNAME=";
constexpr std::string_view kFallbackName = "localhost";

/// The value of an assignment as a shell would read it: quotes go, backslashes protect.
std::string unquoted(std::string_view text) {
  std::string value;
  char quote = '\0';
  for (std::size_t i = 0; i < text.size(); ++i) {
    const char character = text[i];
    if (character == '\\' && quote != '\'' && i + 1 < text.size()) {
      value += text[++i];
    } else if (character == quote) {
      quote = '\0';
    } else if (!quote && (character == '"' || character == '\'')) {
      quote = character;
    } else {
      value += character;
    }
  }
  return value;
}

std::string firstLabelOfHostName() {
  std::array<char, 256> name{};
  if (gethostname(name.data(), name.size() - 1) != 0) return {};
  const std::string_view text(name.data());
  return std::string(text.substr(0, text.find('.')));
}

bool mayStandInDNSLabel(char character) {
  return (character >= 'a' && character <= 'z') || (character >= 'A' && character <= 'Z') ||
         (character >= '0' && character <= '9') || character == '-';
}

}  // namespace

std::optional<std::string> prettyHostName(std::string_view machineInfo) {
  std::optional<std::string> name;
  for (const std::string_view line : splitText(machineInfo, "\n")) {
    if (line.substr(0, kPrettyHostNameKey.size()) == kPrettyHostNameKey) {
      name = unquoted(line.substr(kPrettyHostNameKey.size()));
    }
  }
  return name && !name->empty() ? name : std::nullopt;
}

std::string computerName() {
  std::ifstream file(kMachineInfoPath);
  const std::string text((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
  if (auto pretty = prettyHostName(text); pretty && isValidUtf8(*pretty)) return *pretty;
  const std::string label = firstLabelOfHostName();
  return label.empty() || !isValidUtf8(label) ? std::string(kFallbackName) : label;
}

std::string hostLabel() {
  std::string label = firstLabelOfHostName();
  std::erase_if(label, [](char character) { return !mayStandInDNSLabel(character); });
  return label.empty() ? std::string(kFallbackName) : label;
}

}  // namespace rvf
