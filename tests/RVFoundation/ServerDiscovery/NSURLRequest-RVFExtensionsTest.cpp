// SPDX-License-Identifier: Apache-2.0
#include "RVFoundation/ServerDiscovery/NSURLRequest-RVFExtensions.h"

#include <gtest/gtest.h>

namespace rvf {
namespace {

TEST(NSURLRequest_RVFExtensions, ACommandIsAPostWithAnEmptyBodyAndPlatformDefaults) {
  const auto url = NSURL::URLWithString("https://192.168.1.10:9630/command");
  const auto request = NSURLRequest_RVFExtensions::RVF_postCommandWithURL(url);
  EXPECT_EQ(request->URL(), url);
  EXPECT_EQ(request->HTTPMethod(), "POST");
  ASSERT_NE(request->HTTPBody(), nullptr);
  EXPECT_TRUE(request->HTTPBody()->empty());
  EXPECT_EQ(request->timeoutInterval(), 60);
}

TEST(NSURLRequest_RVFExtensions, EveryCommandIsANewRequest) {
  const auto url = NSURL::URLWithString("https://h/");
  EXPECT_NE(NSURLRequest_RVFExtensions::RVF_postCommandWithURL(url),
            NSURLRequest_RVFExtensions::RVF_postCommandWithURL(url));
}

}  // namespace
}  // namespace rvf
