// SPDX-License-Identifier: Apache-2.0
#include "Platform/Network/AvahiDaemon/AvahiError.h"

#include <gtest/gtest.h>

namespace rvf {
namespace {

TEST(AvahiError, SaysWhatTheCallerShouldThink) {
  using enum NSNetServicesError;
  const struct {
    const char* name;
    NSNetServicesError error;
  } rows[] = {
      {"org.freedesktop.Avahi.CollisionError", collision},
      {"org.freedesktop.Avahi.InvalidServiceTypeError", badArgument},
      {"org.freedesktop.Avahi.InvalidDomainNameError", badArgument},
      {"org.freedesktop.Avahi.InvalidRDataError", badArgument},
      {"org.freedesktop.Avahi.BadStateError", invalid},
      {"org.freedesktop.Avahi.NotSupportedError", invalid},
      {"org.freedesktop.Avahi.NotFoundError", notFound},
      {"org.freedesktop.Avahi.TimeoutError", timeout},
      {"org.freedesktop.Avahi.TooManyObjectsError", unknown},
      {"org.freedesktop.Avahi.NoNetworkError", unknown},
      {"org.freedesktop.Avahi.SomethingNewError", unknown},
      {"org.freedesktop.DBus.Error.AccessDenied", unknown},
      {"org.freedesktop.Avahi.Collision", unknown},
      {"CollisionError", unknown},
      {"", unknown},
  };
  for (const auto& row : rows)
    EXPECT_EQ(errorForAvahiName(row.name), row.error) << row.name;
}

TEST(AvahiError, TellsALostCallFromARefusedOne) {
  EXPECT_TRUE(isTransportError("org.freedesktop.DBus.Error.NoReply"));
  EXPECT_TRUE(isTransportError("org.freedesktop.DBus.Error.ServiceUnknown"));
  EXPECT_FALSE(isTransportError("org.freedesktop.DBus.Error.AccessDenied"));
  EXPECT_FALSE(isTransportError("org.freedesktop.Avahi.TimeoutError"));
}

}  // namespace
}  // namespace rvf
