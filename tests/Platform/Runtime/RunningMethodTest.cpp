// SPDX-License-Identifier: Apache-2.0
#include "Platform/Runtime/RunningMethod.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <vector>

#include "Platform/Runtime/ClassBuilder.h"
#include "Platform/Runtime/Messaging.h"

namespace rvf {
namespace {

std::vector<std::string> runningSelectors() {
  std::vector<std::string> names;
  for (const auto* mark = RunningMethod::innermost(); mark; mark = mark->enclosing())
    names.push_back(NSStringFromSelector(mark->selector()));
  return names;
}

class Runner : public NSObject {
 public:
  static Class classObject() {
    static const Class kClass =
        ClassBuilder<Runner>("RunningMethodTestRunner", NSObject::classObject())
            .method<&Runner::inner>("inner")
            .method<&Runner::outer>("outer")
            .method<&Runner::fail>("fail")
            .registered();
    return kClass;
  }
  Class isa() const override { return classObject(); }

  void inner() {
    selectors_ = runningSelectors();
    running_ = RunningMethod::innermost()->implementation();
    receiver_ = &RunningMethod::innermost()->receiver();
  }
  void outer() { send(*this, SEL("inner")); }
  void fail() { throw std::runtime_error("stop"); }

  std::vector<std::string> selectors_;
  IMP running_;
  const NSObject* receiver_ = nullptr;
};

TEST(RunningMethod, IsNoneOutsideEveryMessage) {
  EXPECT_EQ(RunningMethod::innermost(), nullptr);
}

TEST(RunningMethod, NamesImplementationReceiverAndSelector) {
  Runner runner;
  send(runner, SEL("inner"));
  EXPECT_EQ(runner.running_, class_getMethodImplementation(runner.isa(), SEL("inner")));
  EXPECT_EQ(runner.receiver_, &runner);
  EXPECT_EQ(runner.selectors_, std::vector<std::string>({"inner"}));
}

TEST(RunningMethod, NestsInnermostFirst) {
  Runner runner;
  send(runner, SEL("outer"));
  EXPECT_EQ(runner.selectors_, std::vector<std::string>({"inner", "outer"}));
}

TEST(RunningMethod, IsMarkedByADirectCallOfAnImplementationToo) {
  Runner runner;
  const IMP implementation = class_getMethodImplementation(runner.isa(), SEL("inner"));
  implementation.call<void>(runner, SEL("calledDirectly"));
  EXPECT_EQ(runner.running_, implementation);
  EXPECT_EQ(runner.selectors_, std::vector<std::string>({"calledDirectly"}));
}

TEST(RunningMethod, EndsWithAnException) {
  Runner runner;
  EXPECT_THROW(send(runner, SEL("fail")), std::runtime_error);
  EXPECT_EQ(RunningMethod::innermost(), nullptr);
}

}  // namespace
}  // namespace rvf
