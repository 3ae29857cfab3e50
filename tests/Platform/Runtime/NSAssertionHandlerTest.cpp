// SPDX-License-Identifier: Apache-2.0
#include "Platform/Runtime/NSAssertionHandler.h"

#include <gtest/gtest.h>

#include <csignal>
#include <functional>
#include <string>
#include <thread>

#include "Platform/Runtime/ClassReceiver.h"
#include "Platform/Runtime/NSException.h"

namespace rvf {
namespace {

using ::testing::internal::CaptureStderr;
using ::testing::internal::GetCapturedStderr;

class CountingHandler final : public NSAssertionHandler {
 public:
  void handleFailureInMethod(SEL, const NSObject*, std::string_view file, int line,
                             std::string_view description) override {
    last_ = std::string(file) + ":" + std::to_string(line) + " " + std::string(description);
  }
  std::string last_;
};

class AssertionHandler : public ::testing::Test {
 protected:
  ~AssertionHandler() override { NSAssertionHandler::setCurrentHandler(nullptr); }
  const Ref<NSObject> object_ = std::make_shared<NSObject>();
};

std::string reasonOf(const std::function<void()>& operation) {
  try {
    operation();
  } catch (const NSException& exception) {
    EXPECT_EQ(exception.name(), NSInternalInconsistencyException);
    return exception.reason();
  }
  return "nothing was raised";
}

TEST_F(AssertionHandler, ByDefaultRaisesWithTheDescriptionAsReason) {
  EXPECT_EQ(reasonOf([this] {
              NSAssertionHandler::currentHandler()->handleFailureInMethod(
                  SEL("start"), object_.get(), "RVFoundation/Thing", 12, "must not run");
            }),
            "must not run");
}

TEST_F(AssertionHandler, ByDefaultRaisesAnEmptyDescriptionToo) {
  EXPECT_EQ(reasonOf([] {
              NSAssertionHandler::currentHandler()->handleFailureInFunction("f", "g", 1, "");
            }),
            "");
}

TEST_F(AssertionHandler, ByDefaultLogsOneLineForAMethod) {
  CaptureStderr();
  EXPECT_THROW(NSAssertionHandler::currentHandler()->handleFailureInMethod(
                   SEL("start"), object_.get(), "RVFoundation/Thing", 12, "must not run"),
               NSException);
  EXPECT_EQ(GetCapturedStderr(),
            "*** Assertion failure in -[NSObject start], RVFoundation/Thing:12: must not run\n");
}

TEST_F(AssertionHandler, ByDefaultLogsAnOperationOfAClassWithPlus) {
  const ClassReceiver receiver(NSObject::classObject());
  CaptureStderr();
  EXPECT_THROW(NSAssertionHandler::currentHandler()->handleFailureInMethod(
                   SEL("start"), &receiver, "RVFoundation/Thing", 12, "must not run"),
               NSException);
  EXPECT_EQ(GetCapturedStderr(),
            "*** Assertion failure in +[NSObject start], RVFoundation/Thing:12: must not run\n");
}

TEST_F(AssertionHandler, ByDefaultLogsOneLineForAFunction) {
  CaptureStderr();
  EXPECT_THROW(NSAssertionHandler::currentHandler()->handleFailureInFunction(
                   "RVFParse", "<Unknown File>", 66, "unsupported"),
               NSException);
  EXPECT_EQ(GetCapturedStderr(),
            "*** Assertion failure in RVFParse, <Unknown File>:66: unsupported\n");
}

TEST_F(AssertionHandler, IsOneObjectAThread) {
  const auto mine = NSAssertionHandler::currentHandler();
  EXPECT_EQ(NSAssertionHandler::currentHandler(), mine);
  Ref<NSAssertionHandler> others;
  std::jthread([&others] { others = NSAssertionHandler::currentHandler(); }).join();
  EXPECT_NE(others, mine);
}

/// Destroyed after the handler of its thread if it was there before.
struct LastWords {
  Ref<NSAssertionHandler>* found;
  LastWords() = default;
  LastWords(const LastWords&) = delete;
  LastWords& operator=(const LastWords&) = delete;
  ~LastWords() {
    NSAssertionHandler::setCurrentHandler(std::make_shared<CountingHandler>());
    *found = NSAssertionHandler::currentHandler();
  }
};

TEST_F(AssertionHandler, IsADefaultOneForWhatOutlivesTheHandlerOfItsThread) {
  Ref<NSAssertionHandler> found;
  std::jthread([&found] {
    thread_local LastWords lastWords;
    lastWords.found = &found;
    NSAssertionHandler::setCurrentHandler(std::make_shared<CountingHandler>());
  }).join();
  ASSERT_NE(found, nullptr);
  EXPECT_EQ(dynamic_cast<CountingHandler*>(found.get()), nullptr);
}

TEST_F(AssertionHandler, MayBeReplacedByOneThatReturns) {
  const auto handler = std::make_shared<CountingHandler>();
  NSAssertionHandler::setCurrentHandler(handler);
  NSAssertionHandler::currentHandler()->handleFailureInMethod(SEL("start"), object_.get(), "file",
                                                              30, "text");
  EXPECT_EQ(handler->last_, "file:30 text");
}

TEST_F(AssertionHandler, ReplacedByNoneIsTheDefaultAgain) {
  NSAssertionHandler::setCurrentHandler(std::make_shared<CountingHandler>());
  NSAssertionHandler::setCurrentHandler(nullptr);
  EXPECT_TRUE(
      NSAssertionHandler::currentHandler()->isMemberOfClass(NSAssertionHandler::classObject()));
  EXPECT_EQ(dynamic_cast<CountingHandler*>(NSAssertionHandler::currentHandler().get()), nullptr);
}

TEST(FailAssertionDeathTest, PrintsFunctionPathLineAndConditionAndAborts) {
  EXPECT_EXIT(
      failAssertion("RVFPropertyInfoForSelector", "RVFoundation/RVFPropertyHelpers", 73, "outInfo"),
      ::testing::KilledBySignal(SIGABRT),
      "Assertion failed: \\(outInfo\\), function RVFPropertyInfoForSelector, file "
      "RVFoundation/RVFPropertyHelpers, line 73\\.");
}

}  // namespace
}  // namespace rvf
