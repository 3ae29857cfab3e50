// SPDX-License-Identifier: Apache-2.0
#include "Platform/Runtime/Messaging.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "Platform/Runtime/ClassBuilder.h"
#include "Platform/Runtime/NSException.h"
#include "Platform/Runtime/NSInvocation.h"

namespace rvf {
namespace {

using ::testing::HasSubstr;

class Counter : public NSObject {
 public:
  static Class classObject() {
    static const Class kClass =
        ClassBuilder<Counter>("MessagingTestCounter", NSObject::classObject())
            .method<&Counter::count>("count")
            .method<&Counter::setCount>("setCount:")
            .method<&Counter::join>("join:with:")
            .registered();
    return kClass;
  }
  Class isa() const override { return classObject(); }

  int count() const noexcept { return count_; }
  void setCount(int count) { count_ = count; }
  std::string join(std::string_view a, const std::string& b) { return std::string(a) + b; }

 private:
  int count_ = 0;
};

TEST(Messaging, SendReachesTheMethodAndReturnsItsResult) {
  const auto counter = std::make_shared<Counter>();
  send(counter, SEL("setCount:"), 7);
  EXPECT_EQ(send<int>(counter, SEL("count")), 7);
}

TEST(Messaging, SendToAnAbsentReceiverAnswersZero) {
  EXPECT_EQ(send<int>(id(), SEL("count")), 0);
}

TEST(Messaging, SendOfAnInheritedMethodReachesTheAncestor) {
  const auto counter = std::make_shared<Counter>();
  EXPECT_THAT(send<std::string>(counter, SEL("description")),
              HasSubstr("<MessagingTestCounter: 0x"));
}

TEST(Messaging, TextArgumentsTravelAsTextOrView) {
  const auto counter = std::make_shared<Counter>();
  EXPECT_EQ(send<std::string>(counter, SEL("join:with:"), std::string("a"), std::string("b")),
            "ab");
  EXPECT_EQ(send<std::string>(counter, SEL("join:with:"), std::string_view("a"), std::string("b")),
            "ab");
}

TEST(Messaging, WrongArgumentTypesRaiseInsteadOfCalling) {
  const auto counter = std::make_shared<Counter>();
  EXPECT_THROW(send(counter, SEL("setCount:"), 7.5), NSException);
}

TEST(Messaging, AnUnknownSelectorRaisesWithClassAndSelector) {
  const auto counter = std::make_shared<Counter>();
  try {
    send(counter, SEL("fly:to:"), 1, 2);
    FAIL() << "nothing was raised";
  } catch (const NSException& exception) {
    EXPECT_EQ(exception.name(), NSInvalidArgumentException);
    EXPECT_THAT(exception.reason(),
                HasSubstr("-[MessagingTestCounter fly:to:]: unrecognized selector sent to "
                          "instance 0x"));
  }
}

}  // namespace
}  // namespace rvf
