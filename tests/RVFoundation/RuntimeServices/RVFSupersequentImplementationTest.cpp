// SPDX-License-Identifier: Apache-2.0
#include "RVFoundation/RuntimeServices/RVFSupersequentImplementation.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <thread>

#include "Platform/Runtime/ClassBuilder.h"
#include "Platform/Runtime/Messaging.h"

namespace rvf {
namespace {

/// An object of whatever class a test makes.
class Thing final : public NSObject {
 public:
  explicit Thing(Class aClass) : class_(aClass) {}
  Class isa() const override { return class_; }

  std::function<void()> during_;  // runs inside the methods below

 private:
  const Class class_;
};

SEL sayIt() {
  static const SEL kSelector("say:");
  return kSelector;
}

/// What the implementation adds, and what the next one answers.
std::string saidByNext(const char* own, NSObject& self, SEL selector, const std::string& text) {
  const IMP next =
      RVF_getImplementationOf(&self, selector, RVF_ImpOfCallingMethod(&self, selector));
  return own + (next ? next.call<std::string>(self, selector, text) : text);
}

std::string sayInBase(NSObject& self, SEL selector, std::string text) {
  return saidByNext("base ", self, selector, text);
}
std::string sayInClass(NSObject& self, SEL selector, std::string text) {
  return saidByNext("class ", self, selector, text);
}
std::string sayInExtension(NSObject& self, SEL selector, std::string text) {
  return saidByNext("extension ", self, selector, text);
}
std::string sayInNewest(NSObject& self, SEL selector, std::string text) {
  return saidByNext("newest ", self, selector, text);
}

Class baseClass() {
  static const Class kClass = ClassBuilder<Thing>("SupersequentTestBase", NSObject::classObject())
                                  .method("say:", &sayInBase)
                                  .registered();
  return kClass;
}

Class extendedClass() {
  static const Class kClass = [] {
    const Class aClass = ClassBuilder<Thing>("SupersequentTestClass", baseClass())
                             .method("say:", &sayInClass)
                             .registered();
    class_addExtension(aClass, {{sayIt(), &sayInExtension}});
    return aClass;
  }();
  return kClass;
}

IMP running(const NSObject& self) {
  return RVF_ImpOfCallingMethod(&self, sayIt());
}

IMP nextAfter(IMP implementation, Class aClass = extendedClass(), SEL selector = sayIt()) {
  return RVF_getImplementationOf(std::make_shared<Thing>(aClass).get(), selector, implementation);
}

TEST(SupersequentImplementation, OfAReplacementIsTheOneThatItReplaced) {
  EXPECT_EQ(nextAfter(&sayInExtension), IMP(&sayInClass));
}

TEST(SupersequentImplementation, OfTheClassesOwnIsThatOfTheSuperclass) {
  EXPECT_EQ(nextAfter(&sayInClass), IMP(&sayInBase));
}

TEST(SupersequentImplementation, OfTheLastIsNull) {
  EXPECT_FALSE(nextAfter(&sayInBase));
}

TEST(SupersequentImplementation, OfOneThatBelongsToNoMethodIsNull) {
  EXPECT_FALSE(nextAfter(&sayInNewest));
  EXPECT_FALSE(nextAfter(IMP()));
  EXPECT_FALSE(nextAfter(&sayInClass, baseClass()));
}

TEST(SupersequentImplementation, OfAnotherSelectorIsNull) {
  EXPECT_FALSE(nextAfter(&sayInExtension, extendedClass(), SEL("sing:")));
  EXPECT_FALSE(nextAfter(&sayInExtension, extendedClass(), SEL()));
}

TEST(SupersequentImplementation, GoesByThePlacesOfTheFunctionInTheChain) {
  const Class aClass = ClassBuilder<Thing>("SupersequentTestRepeated", extendedClass())
                           .method("say:", &sayInClass)
                           .registered();
  EXPECT_EQ(nextAfter(&sayInClass, aClass), IMP(&sayInExtension));
  EXPECT_EQ(nextAfter(&sayInExtension, aClass), IMP(&sayInClass));
}

TEST(SupersequentImplementation, IsFoundBehindSeveralExtensions) {
  const Class aClass = ClassBuilder<Thing>("SupersequentTestTwice", baseClass())
                           .method("say:", &sayInClass)
                           .registered();
  class_addExtension(aClass, {{sayIt(), &sayInExtension}, {SEL("other"), &sayInBase}});
  class_addExtension(aClass, {{sayIt(), &sayInNewest}});
  EXPECT_EQ(send<std::string>(std::make_shared<Thing>(aClass), sayIt(), std::string("hi")),
            "newest extension class base hi");
}

TEST(SupersequentImplementation, LetsEachImplementationCallTheNext) {
  EXPECT_EQ(send<std::string>(std::make_shared<Thing>(extendedClass()), sayIt(), std::string("hi")),
            "extension class base hi");
}

TEST(SupersequentImplementation, OfAnAbsentReceiverOrOneWithoutAClassIsNull) {
  const Thing classless(nullptr);
  EXPECT_FALSE(RVF_getImplementationOf(nullptr, sayIt(), &sayInExtension));
  EXPECT_FALSE(RVF_getImplementationOf(&classless, sayIt(), &sayInExtension));
}

/// Runs the thing's block and answers what was running in it.
void runBlock(NSObject& self, SEL) {
  const auto block = static_cast<Thing&>(self).during_;
  if (block) block();
}
void runBlockInExtension(NSObject& self, SEL selector) {
  runBlock(self, selector);
}

class RunningImplementation : public ::testing::Test {
 protected:
  static Class runner() {
    static const Class kClass = [] {
      const Class aClass = ClassBuilder<Thing>("SupersequentTestRunner", NSObject::classObject())
                               .method("run", &runBlock)
                               .method("walk", &runBlock)
                               .registered();
      class_addExtension(aClass, {{SEL("run"), &runBlockInExtension}});
      return aClass;
    }();
    return kClass;
  }
  IMP of(std::string_view selector) const {
    return RVF_ImpOfCallingMethod(thing_.get(), SEL(selector));
  }

  const Ref<Thing> thing_ = std::make_shared<Thing>(runner());
};

TEST_F(RunningImplementation, InsideAReplacementIsTheReplacement) {
  IMP seen;
  thing_->during_ = [&] { seen = of("run"); };
  send(thing_, SEL("run"));
  EXPECT_EQ(seen, IMP(&runBlockInExtension));
}

TEST_F(RunningImplementation, InsideTheReplacedOneIsThat) {
  IMP seen;
  thing_->during_ = [&] { seen = of("run"); };
  IMP(&runBlock).call<void>(*thing_, SEL("run"));
  EXPECT_EQ(seen, IMP(&runBlock));
}

TEST_F(RunningImplementation, IsSeenFromWhatTheMethodCalls) {
  IMP seen;
  thing_->during_ = [&] {
    thing_->during_ = [&] { seen = of("run"); };
    send(thing_, SEL("walk"));
  };
  send(thing_, SEL("run"));
  EXPECT_EQ(seen, IMP(&runBlockInExtension));
}

TEST_F(RunningImplementation, OutsideEveryMethodIsNull) {
  EXPECT_FALSE(of("run"));
  send(thing_, SEL("run"));
  EXPECT_FALSE(of("run"));
}

TEST_F(RunningImplementation, OfAnotherSelectorIsNull) {
  IMP seen = &runBlock;
  thing_->during_ = [&] { seen = of("walk"); };
  send(thing_, SEL("run"));
  EXPECT_FALSE(seen);
}

TEST_F(RunningImplementation, OfAnotherReceiverIsNull) {
  const auto other = std::make_shared<Thing>(runner());
  IMP seen = &runBlock;
  other->during_ = [&] { seen = of("run"); };
  send(other, SEL("run"));
  EXPECT_FALSE(seen);
}

TEST_F(RunningImplementation, OfAnotherThreadIsNull) {
  IMP seen = &runBlock;
  thing_->during_ = [&] { std::thread([&] { seen = of("run"); }).join(); };
  send(thing_, SEL("run"));
  EXPECT_FALSE(seen);
}

TEST_F(RunningImplementation, OfAnAbsentReceiverOrOneWithoutAClassIsNull) {
  const Thing classless(nullptr);
  EXPECT_FALSE(running(classless));
  EXPECT_FALSE(RVF_ImpOfCallingMethod(nullptr, SEL("run")));
}

TEST_F(RunningImplementation, IsForgottenWhenTheMethodThrows) {
  thing_->during_ = [] { throw std::string("stop"); };
  EXPECT_THROW(send(thing_, SEL("run")), std::string);
  EXPECT_FALSE(of("run"));
}

}  // namespace
}  // namespace rvf
