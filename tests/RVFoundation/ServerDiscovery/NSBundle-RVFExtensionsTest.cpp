// SPDX-License-Identifier: Apache-2.0
#include "RVFoundation/ServerDiscovery/NSBundle-RVFExtensions.h"

#include <gtest/gtest.h>

#include "Platform/Values/NSNumber.h"
#include "Platform/Values/NSString.h"

namespace rvf {
namespace {

TEST(NSBundle_RVFExtensions, TheVersionIsWhatStandsInTheInformationDictionary) {
  const auto bundle = std::make_shared<NSBundle>(
      "Texts", NSDictionary::dictionaryWithEntries({{"CFBundleVersion", box("4.2")}}));
  EXPECT_EQ(unboxText(RVF_bundleVersion(bundle)), "4.2");
}

TEST(NSBundle_RVFExtensions, TheVersionMayBeOfAnyClass) {
  const id number = box(42);
  const auto bundle = std::make_shared<NSBundle>(
      "Texts", NSDictionary::dictionaryWithEntries({{"CFBundleVersion", number}}));
  EXPECT_EQ(RVF_bundleVersion(bundle), number);
}

TEST(NSBundle_RVFExtensions, TheVersionIsAbsentWithoutEntryOrBundle) {
  EXPECT_EQ(RVF_bundleVersion(std::make_shared<NSBundle>("Texts", nullptr)), nullptr);
  EXPECT_EQ(RVF_bundleVersion(nullptr), nullptr);
}

}  // namespace
}  // namespace rvf
