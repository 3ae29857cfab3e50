// SPDX-License-Identifier: Apache-2.0
#include "Platform/Network/ServiceNames.h"

#include <avahi-common/domain.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <charconv>
#include <system_error>
#include <utility>

#include "Platform/Text/Text.h"
#include "Platform/Text/Utf8.h"

namespace rvf {
namespace {

constexpr std::size_t kLongestLabel = 63;

bool isServiceLabel(std::string_view label) noexcept {
  return label.size() >= 2 && label.size() <= kLongestLabel && label.front() == '_';
}

/// The name without a suffix " (N)", and N; 1 if it has none. Only what this file writes counts
/// as a suffix: N from 2 on, without leading zeros.
std::pair<std::string_view, unsigned> splitSuffix(std::string_view name) noexcept {
  const std::pair<std::string_view, unsigned> plain(name, 1U);
  const std::size_t opening = name.rfind(" (");
  if (opening == std::string_view::npos || opening == 0 || name.back() != ')') return plain;
  const char* const first = name.data() + opening + 2;
  const char* const last = name.data() + name.size() - 1;
  unsigned number = 0;
  const auto [end, error] = std::from_chars(first, last, number);
  constexpr unsigned kLargest = 999'999'999;
  if (error != std::errc() || end != last || *first == '0' || number < 2 || number >= kLargest) {
    return plain;
  }
  return {name.substr(0, opening), number};
}

/// 16 letters and digits of 5 random bits each. Comes from the system each time, so processes that
/// were one before a fork do not continue alike, and takes no descriptor.
std::string randomText() {
  constexpr std::string_view kDigits = "0123456789abcdefghjkmnpqrstvwxyz";
  std::array<unsigned char, 16> random{};
  if (::getentropy(random.data(), random.size()) != 0) {
    throw std::system_error(errno, std::generic_category(), "getentropy");
  }
  std::string text;
  for (const unsigned char byte : random)
    text += kDigits[byte % kDigits.size()];
  return text;
}

}  // namespace

std::string withFinalDot(std::string_view text) {
  std::string dotted(text);
  if (!dotted.empty() && dotted.back() != '.') dotted += '.';
  return dotted;
}

bool isServiceType(std::string_view text) noexcept {
  if (!text.empty() && text.back() == '.') text.remove_suffix(1);
  const std::size_t last = text.rfind('.');
  if (last == std::string_view::npos) return false;
  const std::string_view protocol = text.substr(last + 1);
  if (protocol != "_tcp" && protocol != "_udp") return false;
  for (text = text.substr(0, last); !text.empty();) {
    const std::size_t dot = text.find('.');
    if (!isServiceLabel(text.substr(0, dot))) return false;
    if (dot == std::string_view::npos) return true;
    text.remove_prefix(dot + 1);
  }
  return false;
}

std::optional<std::string> fullServiceName(const ServiceIdentity& identity) {
  for (const std::string* part : {&identity.name, &identity.type, &identity.domain}) {
    if (part->find('\0') != std::string::npos) return std::nullopt;  // Avahi would cut there
  }
  std::array<char, AVAHI_DOMAIN_NAME_MAX> full{};
  const char* const domain = identity.domain.empty() ? "local" : identity.domain.c_str();
  const int error = avahi_service_name_join(full.data(), full.size(), identity.name.c_str(),
                                            identity.type.c_str(), domain);
  if (error < 0) return std::nullopt;
  return std::string(full.data());
}

std::string_view cutToBytes(std::string_view text, std::size_t limit) noexcept {
  if (text.size() <= limit) return text;
  while (limit > 0 && isUtf8Continuation(text[limit]))
    --limit;
  return text.substr(0, limit);
}

std::string nextServiceName(std::string_view name) {
  const auto [base, number] = splitSuffix(name);
  const std::string suffix = " (" + std::to_string(number + 1) + ")";
  return std::string(cutToBytes(base, kLongestServiceName - suffix.size())) + suffix;
}

std::string uniqueServiceName(std::string_view name) {
  const std::string suffix = "-" + randomText();
  return std::string(cutToBytes(name, kLongestServiceName - suffix.size())) + suffix;
}

}  // namespace rvf
