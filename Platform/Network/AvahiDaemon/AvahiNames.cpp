// SPDX-License-Identifier: Apache-2.0
#include "Platform/Network/AvahiDaemon/AvahiNames.h"

#include <avahi-common/domain.h>

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
         fullServiceName(identity).has_value();
}

}  // namespace rvf
