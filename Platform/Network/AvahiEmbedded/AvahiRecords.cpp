// SPDX-License-Identifier: Apache-2.0
#include "Platform/Network/AvahiEmbedded/AvahiRecords.h"

#include <avahi-common/error.h>

#include <new>

namespace rvf {
AvahiHandle<AvahiRecord> makeRecord(const std::string& name, std::uint16_t type,
                                    std::uint32_t lifetimeSeconds) {
  AvahiHandle<AvahiRecord> record(
      avahi_record_new_full(name.c_str(), AVAHI_DNS_CLASS_IN, type, lifetimeSeconds));
  if (!record) throw std::bad_alloc();
  return record;
}

AvahiHandle<AvahiKey> makeKey(const std::string& name, std::uint16_t type) {
  AvahiHandle<AvahiKey> key(avahi_key_new(name.c_str(), AVAHI_DNS_CLASS_IN, type));
  if (!key) throw std::bad_alloc();
  return key;
}

std::vector<std::byte> txtRecordData(const AvahiRecord& record) {
  AvahiStringList* const strings = record.data.txt.string_list;
  std::vector<std::byte> data(avahi_string_list_serialize(strings, nullptr, 0));
  avahi_string_list_serialize(strings, data.data(), data.size());
  return data;
}

NSNetServicesError discoveryError(int avahiError) noexcept {
  switch (avahiError) {
    case AVAHI_ERR_COLLISION:
      return NSNetServicesError::collision;
    case AVAHI_ERR_NOT_FOUND:
      return NSNetServicesError::notFound;
    case AVAHI_ERR_TIMEOUT:
      return NSNetServicesError::timeout;
    case AVAHI_ERR_INVALID_ARGUMENT:
    case AVAHI_ERR_INVALID_DOMAIN_NAME:
    case AVAHI_ERR_INVALID_HOST_NAME:
    case AVAHI_ERR_INVALID_KEY:
    case AVAHI_ERR_INVALID_PORT:
    case AVAHI_ERR_INVALID_RDATA:
    case AVAHI_ERR_INVALID_RECORD:
    case AVAHI_ERR_INVALID_SERVICE_NAME:
    case AVAHI_ERR_INVALID_SERVICE_TYPE:
    case AVAHI_ERR_INVALID_TTL:
      return NSNetServicesError::badArgument;
    default:
      return NSNetServicesError::unknown;
  }
}

}  // namespace rvf
