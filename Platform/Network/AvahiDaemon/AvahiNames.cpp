// SPDX-License-Identifier: Apache-2.0
#include "Platform/Network/AvahiDaemon/AvahiNames.h"

#include <avahi-common/address.h>
#include <avahi-common/domain.h>
#include <avahi-common/error.h>

#include <array>

#include "Platform/Network/ServiceNames.h"
#include "Platform/Text/Text.h"

namespace rvf {

std::string withoutFinalDot(std::string_view name) {
  if (name.ends_with('.')) name.remove_suffix(1);
  return std::string(name);
}

bool isSendable(std::string_view text) noexcept {
  return isValidUtf8(text) && text.find('\0') == std::string_view::npos;
}

bool isInstanceName(std::string_view name) noexcept {
  return !name.empty() && name.size() <= kLongestServiceName && isSendable(name);
}

bool isDomain(std::string_view domain) noexcept {
  return domain.empty() ||
         (isSendable(domain) && avahi_is_valid_domain_name(std::string(domain).c_str()) != 0);
}

bool isAskable(const ServiceIdentity& identity) {
  return isInstanceName(identity.name) && isSendable(identity.type) &&
         isServiceType(identity.type) && isDomain(identity.domain) &&
         !fullServiceName(identity).empty();
}

std::string fullServiceName(const ServiceIdentity& identity) {
  std::array<char, AVAHI_DOMAIN_NAME_MAX> name{};
  const char* const domain = identity.domain.empty() ? "local" : identity.domain.c_str();
  const int result = avahi_service_name_join(name.data(), name.size(), identity.name.c_str(),
                                             identity.type.c_str(), domain);
  return result == AVAHI_OK ? name.data() : "";
}

}  // namespace rvf
