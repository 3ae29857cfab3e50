// SPDX-License-Identifier: Apache-2.0
#include "Platform/Runtime/Messaging.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <stdexcept>

#include "Platform/Runtime/ClassBuilder.h"
#include "Platform/Runtime/NSException.h"
#include "Platform/Runtime/NSInvocation.h"
#include "Platform/Runtime/NSMethodSignature.h"
#include "Platform/Runtime/Pointers.h"
#include "Platform/Values/NSError.h"
#include "Platform/Values/NSString.h"

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
            .method<&Counter::takeMany>("takeFlag:block:class:selector:")
            .method<&Counter::failWithError>("failWithError:")
            .method<&Counter::fail>("fail")
            .method<&Counter::dropAndCount>("dropAndCount")
            .registered();
    return kClass;
  }
  Class isa() const override { return classObject(); }

  int count() const noexcept { return count_; }
  void setCount(int count) { count_ = count; }
  std::string join(std::string_view a, const std::string& b) { return std::string(a) + b; }
  bool takeMany(bool flag, const std::function<int()>& block, Class aClass, SEL selector) {
    return flag && block() == 5 && aClass == NSObject::classObject() && selector == SEL("x");
  }
  bool failWithError(Ref<NSError>* error) {
    reportError(error, [] { return NSError::errorWithDomain("Test", 5); });
    return false;
  }
  void fail() { throw std::runtime_error("stop"); }
  int dropAndCount() {
    dropped_->reset();
    return count_;
  }

  Ref<Counter>* dropped_ = nullptr;

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

TEST(Messaging, AnUnknownSelectorRaisesWithClassSelectorAndAddress) {
  const auto counter = std::make_shared<Counter>();
  try {
    send(counter, SEL("fly:to:"), 1, 2);
    FAIL() << "nothing was raised";
  } catch (const NSException& exception) {
    EXPECT_EQ(exception.name(), NSInvalidArgumentException);
    EXPECT_EQ(exception.reason(),
              "-[MessagingTestCounter fly:to:]: unrecognized selector sent to instance " +
                  pointerText(counter.get()));
  }
}

TEST(Messaging, AnotherNumberOfArgumentsRaises) {
  const auto counter = std::make_shared<Counter>();
  EXPECT_THROW(send(counter, SEL("setCount:")), NSException);
  EXPECT_THROW(send<int>(counter, SEL("count"), 1), NSException);
}

TEST(Messaging, AnAbsentReceiverAnswersAbsentAndFalseToo) {
  EXPECT_EQ(send<id>(id(), SEL("self")), nullptr);
  EXPECT_FALSE(send<bool>(Ref<Counter>(), SEL("isReady")));
  EXPECT_EQ(send<std::string>(id(), SEL("name")), "");
  EXPECT_NO_THROW(send(id(), SEL("stop")));
}

TEST(Messaging, ArgumentsAndResultsConvertBetweenTypesOfOneEncoding) {
  const auto counter = std::make_shared<Counter>();
  EXPECT_EQ(unboxText(send<id>(counter, SEL("join:with:"), box("a"), box("b"))), "ab");
  send(counter, SEL("setCount:"), std::int32_t{9});
  EXPECT_EQ(send<std::int32_t>(counter, SEL("count")), 9);
}

TEST(Messaging, TheReceiverLivesUntilTheMethodHasReturned) {
  auto counter = std::make_shared<Counter>();
  counter->dropped_ = &counter;
  EXPECT_EQ(send<int>(counter, SEL("dropAndCount")), 0);
  EXPECT_EQ(counter, nullptr);
}

/// Forwards everything that it does not answer itself to a counter.
class Forwarder : public NSObject {
 public:
  Ref<NSMethodSignature> methodSignatureForSelector(SEL selector) const override {
    return counter_->methodSignatureForSelector(selector);
  }
  void forwardInvocation(NSInvocation& invocation) override {
    EXPECT_EQ(invocation.target().get(), this);
    invocation.invokeWithTarget(counter_);
  }
  const Ref<Counter> counter_ = std::make_shared<Counter>();
};

TEST(Messaging, ForwardedMessagesReachTheirTargetWithEveryKindOfArgument) {
  const auto forwarder = std::make_shared<Forwarder>();
  send(forwarder, SEL("setCount:"), 7);
  EXPECT_EQ(send<int>(forwarder, SEL("count")), 7);
  EXPECT_EQ(send<std::string>(forwarder, SEL("join:with:"), std::string_view("a"), box("b")), "ab");
  EXPECT_TRUE(send<bool>(forwarder, SEL("takeFlag:block:class:selector:"), true,
                         std::function<int()>([] { return 5; }), NSObject::classObject(),
                         SEL("x")));
}

TEST(Messaging, ForwardedOutPointersAreWrittenThrough) {
  const auto forwarder = std::make_shared<Forwarder>();
  Ref<NSError> error;
  EXPECT_FALSE(send<bool>(forwarder, SEL("failWithError:"), &error));
  ASSERT_NE(error, nullptr);
  EXPECT_EQ(error->code(), 5);
  EXPECT_FALSE(send<bool>(forwarder, SEL("failWithError:"), nullptr));
}

TEST(Messaging, ForwardedExceptionsPassThrough) {
  EXPECT_THROW(send(std::make_shared<Forwarder>(), SEL("fail")), std::runtime_error);
}

TEST(Messaging, AForwardedResultOfAnotherTypeRaisesWithClassAndSelector) {
  try {
    send<std::string>(std::make_shared<Forwarder>(), SEL("count"));
    FAIL() << "nothing was raised";
  } catch (const NSException& exception) {
    EXPECT_EQ(exception.name(), NSInvalidArgumentException);
    EXPECT_EQ(exception.reason(),
              "-[NSObject count] answers a value of type int where text is expected");
  }
}

TEST(Messaging, AForwarderWithoutASignatureRaisesTheUnrecognizedSelector) {
  const auto forwarder = std::make_shared<Forwarder>();
  EXPECT_THROW(send(forwarder, SEL("fly")), NSException);
}

TEST(Messaging, SendsArgumentsThatAreKnownOnlyAtRunTime) {
  const auto counter = std::make_shared<Counter>();
  const std::any arguments[] = {toAny(3)};
  EXPECT_FALSE(sendWithArguments(*counter, SEL("setCount:"), arguments).has_value());
  EXPECT_EQ(anyTo<int>(sendWithArguments(*counter, SEL("count"), {})), 3);
}

TEST(Messaging, ForwardsArgumentsThatAreKnownOnlyAtRunTime) {
  const auto forwarder = std::make_shared<Forwarder>();
  const std::any arguments[] = {toAny(3)};
  sendWithArguments(*forwarder, SEL("setCount:"), arguments);
  EXPECT_EQ(send<int>(forwarder->counter_, SEL("count")), 3);
}

}  // namespace
}  // namespace rvf
