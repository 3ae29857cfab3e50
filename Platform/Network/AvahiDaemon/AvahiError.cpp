// SPDX-License-Identifier: Apache-2.0
#include "Platform/Network/AvahiDaemon/AvahiError.h"

#include <algorithm>
#include <iterator>

namespace rvf {
namespace {

using enum NSNetServicesError;

struct Row {
  std::string_view name;
  NSNetServicesError error;
};

/// Without "org.freedesktop.Avahi." and "Error". What is about the machine's condition instead of
/// the request (no network, no memory, too many objects) has no code of its own: unknown.
constexpr Row kRows[] = {
    {"Collision", collision},
    {"InvalidHostName", badArgument},
    {"InvalidDomainName", badArgument},
    {"InvalidTTL", badArgument},
    {"IsPattern", badArgument},
    {"InvalidRecord", badArgument},
    {"InvalidServiceName", badArgument},
    {"InvalidServiceType", badArgument},
    {"InvalidServiceSubtype", badArgument},
    {"InvalidPort", badArgument},
    {"InvalidKey", badArgument},
    {"InvalidAddress", badArgument},
    {"InvalidArgument", badArgument},
    {"InvalidInterface", badArgument},
    {"InvalidInterfaceProtocol", badArgument},
    {"InvalidFlags", badArgument},
    {"InvalidRData", badArgument},
    {"InvalidDNSClass", badArgument},
    {"InvalidDNSType", badArgument},
    {"IsEmpty", badArgument},
    {"BadState", invalid},
    {"InvalidOperation", invalid},
    {"InvalidObject", invalid},
    {"InvalidConfiguration", invalid},
    {"NotSupported", invalid},
    {"NotPermitted", invalid},
    {"AccessDenied", invalid},
    {"NoChange", invalid},
    {"NotFound", notFound},
    {"DNSNXDOMAIN", notFound},
    {"Timeout", timeout},
};

constexpr std::string_view kTransportErrors[] = {
    "org.freedesktop.DBus.Error.Disconnected",   "org.freedesktop.DBus.Error.NameHasNoOwner",
    "org.freedesktop.DBus.Error.NoReply",        "org.freedesktop.DBus.Error.NoServer",
    "org.freedesktop.DBus.Error.ServiceUnknown", "org.freedesktop.DBus.Error.TimedOut",
    "org.freedesktop.DBus.Error.Timeout",
};

}  // namespace

NSNetServicesError errorForAvahiName(std::string_view name) noexcept {
  constexpr std::string_view kPrefix = "org.freedesktop.Avahi.";
  constexpr std::string_view kSuffix = "Error";
  if (!name.starts_with(kPrefix) || !name.ends_with(kSuffix)) return unknown;
  name.remove_prefix(kPrefix.size());
  name.remove_suffix(kSuffix.size());
  const auto* const row = std::ranges::find(kRows, name, &Row::name);
  return row == std::end(kRows) ? unknown : row->error;
}

bool isTransportError(std::string_view name) noexcept {
  return std::ranges::find(kTransportErrors, name) != std::end(kTransportErrors);
}

}  // namespace rvf
