// SPDX-License-Identifier: Apache-2.0
#include "Platform/Network/ServiceDiscovery.h"

#include <gtest/gtest.h>

#include <thread>

#include "tests/Platform/Network/ScriptedBackend.h"

namespace rvf {
namespace {

TEST(ServiceDiscovery, ChoosesByItselfUnlessTold) {
  EXPECT_EQ(ServiceDiscovery::choice(), ServiceDiscoveryChoice::automatic);
  ServiceDiscovery::setChoice(ServiceDiscoveryChoice::embedded);
  EXPECT_EQ(ServiceDiscovery::choice(), ServiceDiscoveryChoice::embedded);
  ServiceDiscovery::setChoice(ServiceDiscoveryChoice::automatic);
}

TEST(ServiceDiscovery, ABackEndIsSharedWithinItsThread) {
  Script script;
  const auto backend = ServiceDiscovery::backendOfThisThread();
  EXPECT_EQ(ServiceDiscovery::backendOfThisThread(), backend);
  std::thread([&] { EXPECT_NE(ServiceDiscovery::backendOfThisThread(), backend); }).join();
}

TEST(ServiceDiscovery, ABackEndEndsWithItsLastHolder) {
  Script script;
  auto backend = ServiceDiscovery::backendOfThisThread();
  EXPECT_EQ(script.backendsAlive, 1);
  backend.reset();
  EXPECT_EQ(script.backendsAlive, 0);
  backend = ServiceDiscovery::backendOfThisThread();
  EXPECT_EQ(script.backendsAlive, 1);
}

}  // namespace
}  // namespace rvf
