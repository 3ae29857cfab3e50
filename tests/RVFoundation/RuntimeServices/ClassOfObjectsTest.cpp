// SPDX-License-Identifier: Apache-2.0
//
// What objects say of their class, where nothing else asks them.

#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "Platform/Runtime/Runtime.h"
#include "RVFoundation/Formatters/RVFPhoneNumberFormatter.h"
#include "RVFoundation/Formatters/RVFUppercaseFormatter.h"
#include "RVFoundation/RuntimeServices/RVFDynamicPropertySynthesizer.h"
#include "RVFoundation/Streaming/RVFStreamedDecompressor.h"

namespace rvf {
namespace {

std::string className(const id& object) {
  return std::string(class_getName(object->isa()));
}

TEST(ClassOfObjects, IsTheirOwn) {
  EXPECT_EQ(className(std::make_shared<RVFPhoneNumberFormatter>()), "RVFPhoneNumberFormatter");
  EXPECT_EQ(className(std::make_shared<RVFUppercaseFormatter>()), "RVFUppercaseFormatter");
  EXPECT_EQ(className(std::make_shared<RVFDynamicPropertySynthesizer>()),
            "RVFDynamicPropertySynthesizer");
  EXPECT_EQ(className(RVFStreamedDecompressor::init()), "RVFStreamedDecompressor");
}

}  // namespace
}  // namespace rvf
