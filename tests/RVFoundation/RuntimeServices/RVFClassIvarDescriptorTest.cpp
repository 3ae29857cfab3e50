// SPDX-License-Identifier: Apache-2.0
#include "RVFoundation/RuntimeServices/RVFClassIvarDescriptor.h"

#include <gtest/gtest.h>

#include "Platform/Runtime/Messaging.h"
#include "Platform/Runtime/NSAutoreleasePool.h"

namespace rvf {
namespace {

using Descriptor = RVFClassIvarDescriptor;

Ref<Descriptor> descriptorOf(std::string_view encoding) {
  return Descriptor::initWithIvar({"_title", std::string(encoding)});
}

TEST(RVFClassIvarDescriptor, HasTheNameAndTypeOfItsVariable) {
  const auto descriptor = descriptorOf("@\"NSString\"");
  EXPECT_EQ(descriptor->name(), "_title");
  EXPECT_EQ(descriptor->encodedType(), "@\"NSString\"");
}

TEST(RVFClassIvarDescriptor, KnowsObjectsByTheirEncoding) {
  for (const std::string_view encoding : {"@", "@\"NSString\"", "@?"})
    EXPECT_TRUE(descriptorOf(encoding)->isObjCType()) << encoding;
  for (const std::string_view encoding : {"i", "c", "^@", "#", "{?=@}", ""})
    EXPECT_FALSE(descriptorOf(encoding)->isObjCType()) << encoding;
}

TEST(RVFClassIvarDescriptor, MayBeRenamed) {
  const auto descriptor = descriptorOf("i");
  descriptor->setName("_label");
  EXPECT_EQ(descriptor->name(), "_label");
  send(descriptor, SEL("setName:"), std::string("_text"));
  EXPECT_EQ(send<std::string>(descriptor, SEL("name")), "_text");
}

TEST(RVFClassIvarDescriptor, CannotBeGivenAnotherType) {
  EXPECT_FALSE(descriptorOf("i")->respondsToSelector(SEL("setEncodedType:")));
}

TEST(RVFClassIvarDescriptor, FromTheClassLivesUntilTheScopeEnds) {
  std::weak_ptr<Descriptor> descriptor;
  {
    const NSAutoreleasePool pool;
    descriptor = Descriptor::classIvarDescriptorForIvar({"_title", "@"});
    EXPECT_FALSE(descriptor.expired());
  }
  EXPECT_TRUE(descriptor.expired());
}

}  // namespace
}  // namespace rvf
