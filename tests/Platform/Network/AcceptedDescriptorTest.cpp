// SPDX-License-Identifier: Apache-2.0
#include "Platform/Network/AcceptedDescriptor.h"

#include <gtest/gtest.h>

namespace rvf {
namespace {

std::uintptr_t addressOf(const AcceptedDescriptor& accepted) {
  return reinterpret_cast<std::uintptr_t>(accepted.pointer());
}

TEST(AcceptedDescriptor, IsWhatThePointerPointsTo) {
  const AcceptedDescriptor accepted(7);
  EXPECT_EQ(*accepted.pointer(), 7);
}

TEST(AcceptedDescriptor, StandsWhereNoDescriptorIsNumbered) {
  for (int descriptor = 0; descriptor < 1000; ++descriptor) {
    const AcceptedDescriptor accepted(descriptor);
    EXPECT_FALSE(AcceptedDescriptor::canBeDescriptor(addressOf(accepted))) << accepted.pointer();
  }
}

TEST(AcceptedDescriptor, OnlyTheLowHalfOfAnAddressDecides) {
  const struct {
    std::uintptr_t address;
    bool canBe;
  } rows[] = {
      {0x0, true},
      {0x7, true},
      {0xFFFFC, true},
      {0x100000, false},
      {0x7FFFFFFC, false},
      {0x80000000, false},
      {0xFFFFFFFC, false},
      {0x7FFD00000010, true},
      {0x7FFD12345678, false},
      {0x7FFDFFFFFFFC, false},
  };
  for (const auto& [address, canBe] : rows) {
    EXPECT_EQ(AcceptedDescriptor::canBeDescriptor(address), canBe) << std::hex << address;
  }
}

TEST(AcceptedDescriptor, FindsASafePlaceWhereverItsMemoryLies) {
  for (const std::uintptr_t start :
       {0x7FFD00000000UL, 0x7FFD00000010UL, 0x7FFD000FFFF0UL, 0x7FFD00100000UL, 0x7FFDFFFFFFF0UL}) {
    const std::size_t offset = AcceptedDescriptor::offsetOfSafePlace(start);
    EXPECT_LE(offset, AcceptedDescriptor::kDescriptorsEver) << std::hex << start;
    EXPECT_FALSE(AcceptedDescriptor::canBeDescriptor(start + offset)) << std::hex << start;
  }
}

}  // namespace
}  // namespace rvf
