// SPDX-License-Identifier: Apache-2.0
#include "Platform/Network/NSURLRequest.h"

#include <gtest/gtest.h>

#include "Platform/Network/NSMutableURLRequest.h"
#include "Platform/Runtime/Runtime.h"

namespace rvf {
namespace {

const Ref<NSURL> kURL = NSURL::URLWithString("https://h/");

TEST(NSURLRequest, GetsWithoutBodyWithinAMinute) {
  const auto request = NSMutableURLRequest::requestWithURL(kURL);
  EXPECT_EQ(request->URL(), kURL);
  EXPECT_EQ(request->HTTPMethod(), "GET");
  EXPECT_EQ(request->HTTPBody(), nullptr);
  EXPECT_EQ(request->timeoutInterval(), 60);
  EXPECT_TRUE(objectsAreEqual(request, NSURLRequest::requestWithURL(kURL)));
}

TEST(NSURLRequest, AMutableOneHoldsWhatIsSet) {
  const auto request = NSMutableURLRequest::requestWithURL(nullptr);
  const auto body = NSData::dataWithBytes("x");
  request->setURL(kURL);
  request->setHTTPMethod("PUT");
  request->setHTTPBody(body);
  request->setTimeoutInterval(2.5);
  EXPECT_EQ(request->URL(), kURL);
  EXPECT_EQ(request->HTTPMethod(), "PUT");
  EXPECT_EQ(request->HTTPBody(), body);
  EXPECT_EQ(request->timeoutInterval(), 2.5);
}

TEST(NSURLRequest, DiffersByEachOfItsParts) {
  const auto plain = NSMutableURLRequest::requestWithURL(kURL);
  const auto changed = NSMutableURLRequest::requestWithURL(kURL);
  EXPECT_EQ(plain->hash(), changed->hash());
  changed->setHTTPBody(NSData::data());
  EXPECT_FALSE(objectsAreEqual(plain, changed));
  changed->setHTTPBody(nullptr);
  changed->setHTTPMethod("POST");
  EXPECT_FALSE(objectsAreEqual(plain, changed));
  changed->setHTTPMethod("GET");
  changed->setTimeoutInterval(1);
  EXPECT_FALSE(objectsAreEqual(plain, changed));
  EXPECT_FALSE(objectsAreEqual(plain, NSURLRequest::requestWithURL(nullptr)));
}

TEST(NSURLRequest, AMutableRequestIsARequest) {
  EXPECT_TRUE(
      NSMutableURLRequest::requestWithURL(kURL)->isKindOfClass(objc_getClass("NSURLRequest")));
}

}  // namespace
}  // namespace rvf
