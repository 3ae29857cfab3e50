// SPDX-License-Identifier: Apache-2.0
#include "Platform/Runtime/NSInvocation.h"

#include <gtest/gtest.h>

#include "Platform/Runtime/ClassBuilder.h"
#include "Platform/Runtime/Messaging.h"
#include "Platform/Runtime/NSException.h"
#include "Platform/Values/NSError.h"
#include "Platform/Values/NSString.h"

namespace rvf {
namespace {

class Target : public NSObject {
 public:
  static Class classObject() {
    static const Class kClass =
        ClassBuilder<Target>("InvocationTestTarget", NSObject::classObject())
            .method<&Target::add>("add:to:")
            .method<&Target::keep>("keep:name:")
            .method<&Target::dropAndJoin>("dropAndJoin:")
            .registered();
    return kClass;
  }
  Class isa() const override { return classObject(); }

  int add(int a, int b) { return a + b; }
  void keep(const id& object, std::string_view name) {
    object_ = object;
    name_ = name;
  }
  std::string dropAndJoin(std::string_view text) {
    if (dropped_) {
      (*dropped_)->setArgument(std::string(100, 'x'), 2);
      dropped_->reset();
    }
    return std::string(text) + "!";
  }

  id object_ = std::make_shared<NSObject>();
  std::string name_ = "unset";
  Ref<NSInvocation>* dropped_ = nullptr;
};

Ref<NSInvocation> invocationOf(const Ref<Target>& target, std::string_view selector) {
  auto invocation = NSInvocation::invocationWithMethodSignature(
      target->methodSignatureForSelector(SEL(selector)));
  invocation->setTarget(target);
  invocation->setSelector(SEL(selector));
  return invocation;
}

class Invocation : public ::testing::Test {
 protected:
  const Ref<Target> target_ = std::make_shared<Target>();
};

TEST_F(Invocation, PassesArgumentsAndKeepsTheResult) {
  const auto invocation = invocationOf(target_, "add:to:");
  invocation->setArgument(2, 2);
  invocation->setArgument(3, 3);
  invocation->invoke();
  EXPECT_EQ(invocation->returnValue<int>(), 5);
}

TEST_F(Invocation, CountsReceiverAndSelectorAsTheFirstArguments) {
  const auto invocation = invocationOf(target_, "add:to:");
  EXPECT_EQ(invocation->argument<id>(0), target_);
  EXPECT_EQ(invocation->argument<SEL>(1), SEL("add:to:"));
  invocation->setArgument(id(), 0);
  EXPECT_EQ(invocation->target(), nullptr);
}

TEST_F(Invocation, ReadsUnsetArgumentsAsZero) {
  const auto invocation = invocationOf(target_, "keep:name:");
  EXPECT_EQ(invocation->argument<id>(2), nullptr);
  invocation->invoke();
  EXPECT_EQ(target_->object_, nullptr);
  EXPECT_EQ(target_->name_, "");
}

TEST_F(Invocation, RaisesForAnIndexPastTheSignature) {
  const auto invocation = invocationOf(target_, "add:to:");
  EXPECT_NO_THROW(invocation->setArgument(1, 3));
  EXPECT_THROW(invocation->setArgument(1, 4), NSException);
  EXPECT_THROW(invocation->argument<int>(4), NSException);
}

TEST_F(Invocation, RaisesWithoutASignature) {
  try {
    NSInvocation::invocationWithMethodSignature(nullptr);
    FAIL() << "nothing was raised";
  } catch (const NSException& exception) {
    EXPECT_EQ(exception.name(), NSInvalidArgumentException);
  }
}

TEST_F(Invocation, RaisesForAnArgumentOfAnotherType) {
  const auto invocation = invocationOf(target_, "add:to:");
  invocation->setArgument(2.5, 2);
  EXPECT_THROW(invocation->invoke(), NSException);
  EXPECT_THROW(invocation->argument<int>(2), NSException);
}

TEST_F(Invocation, RaisesForAnotherNumberOfArguments) {
  const auto invocation = invocationOf(target_, "add:to:");
  EXPECT_THROW(invocation->setArguments({toAny(1)}), NSException);
}

TEST_F(Invocation, KeepsTextAndObjectsAlive) {
  const auto invocation = invocationOf(target_, "keep:name:");
  {
    const std::string name = "a name that is too long to be kept in place";
    invocation->setArgument(std::string_view(name), 3);
    invocation->setArgument(box("object"), 2);
  }
  invocation->invoke();
  EXPECT_EQ(target_->name_, "a name that is too long to be kept in place");
  EXPECT_EQ(unboxText(target_->object_), "object");
}

TEST_F(Invocation, OfAnAbsentTargetAnswersZero) {
  const auto invocation = invocationOf(target_, "add:to:");
  invocation->invokeWithTarget(nullptr);
  EXPECT_EQ(invocation->returnValue<int>(), 0);
}

TEST_F(Invocation, ResultsMayBeSet) {
  const auto invocation = invocationOf(target_, "add:to:");
  EXPECT_EQ(invocation->returnValue<int>(), 0);
  invocation->setReturnValue(7);
  EXPECT_EQ(invocation->returnValue<int>(), 7);
}

TEST_F(Invocation, MayBeChangedAndDroppedByWhatItCalls) {
  auto invocation = invocationOf(target_, "dropAndJoin:");
  const std::weak_ptr<NSInvocation> dropped = invocation;
  invocation->setArgument(std::string("a text that is too long to be kept in place"), 2);
  target_->dropped_ = &invocation;
  invocation->invoke();
  EXPECT_TRUE(dropped.expired());
}

TEST_F(Invocation, OfAMessageThatNobodyAnswersRaises) {
  const auto invocation = invocationOf(target_, "add:to:");
  EXPECT_THROW(invocation->invokeWithTarget(std::make_shared<NSObject>()), NSException);
}

}  // namespace
}  // namespace rvf
