// SPDX-License-Identifier: Apache-2.0
#include "RVFoundation/CoreServices/RVFRecoveryAttempterBlock.h"

#include <gtest/gtest.h>

#include <optional>

#include "Platform/Runtime/ClassBuilder.h"
#include "Platform/Runtime/Messaging.h"
#include "Platform/Runtime/NSException.h"

namespace rvf {
namespace {

class SheetDelegate : public NSObject {
 public:
  static Class classObject() {
    static const Class kClass =
        ClassBuilder<SheetDelegate>("RecoveryTestSheetDelegate", NSObject::classObject())
            .method<&SheetDelegate::didRecover>("didRecover:error:")
            .method<&SheetDelegate::didRecoverOnly>("didRecover:")
            .registered();
    return kClass;
  }
  Class isa() const override { return classObject(); }

  void didRecover(bool recovered, const Ref<NSError>& error) {
    recovered_ = recovered;
    error_ = error;
  }
  void didRecoverOnly(bool recovered) { recovered_ = recovered; }

  std::optional<bool> recovered_;
  Ref<NSError> error_;
};

const Ref<NSError> kProblem = NSError::errorWithDomain("RVFErrorDomain", 304);

TEST(RVFRecoveryAttempterBlock, ModalFormPassesErrorAndOptionAndNoRoomForAnError) {
  const auto attempter = RVFRecoveryAttempterBlock::recoveryAttempterWithHandler(
      [](const Ref<NSError>& error, std::size_t option, Ref<NSError>* recoveryError) {
        EXPECT_EQ(error, kProblem);
        EXPECT_EQ(recoveryError, nullptr);
        return option == 2;
      });
  EXPECT_TRUE(attempter->attemptRecoveryFromError(kProblem, 2));
  EXPECT_FALSE(attempter->attemptRecoveryFromError(kProblem, 1));
}

TEST(RVFRecoveryAttempterBlock, SheetFormReportsFailureWithoutError) {
  const auto delegate = std::make_shared<SheetDelegate>();
  const auto attempter = RVFRecoveryAttempterBlock::recoveryAttempterWithHandler(
      [](const Ref<NSError>&, std::size_t, Ref<NSError>*) { return false; });
  attempter->attemptRecoveryFromError(kProblem, 0, delegate, SEL("didRecover:error:"), nullptr);
  EXPECT_EQ(delegate->recovered_, false);
  EXPECT_EQ(delegate->error_, nullptr);
}

TEST(RVFRecoveryAttempterBlock, SheetFormPassesTheHandlersErrorInsteadOfTheContext) {
  const auto delegate = std::make_shared<SheetDelegate>();
  const Ref<NSError> failure = NSError::errorWithDomain("Other", 1);
  const auto attempter = RVFRecoveryAttempterBlock::recoveryAttempterWithHandler(
      [failure](const Ref<NSError>&, std::size_t, Ref<NSError>* recoveryError) {
        *recoveryError = failure;
        return true;
      });
  int context = 0;
  attempter->attemptRecoveryFromError(kProblem, 0, delegate, SEL("didRecover:error:"), &context);
  EXPECT_EQ(delegate->recovered_, true);
  EXPECT_EQ(delegate->error_, failure);
}

TEST(RVFRecoveryAttempterBlock, SheetFormRaisesForADelegateWithoutRoomForTheError) {
  const auto delegate = std::make_shared<SheetDelegate>();
  const auto attempter = RVFRecoveryAttempterBlock::recoveryAttempterWithHandler(
      [](const Ref<NSError>& error, std::size_t, Ref<NSError>* recoveryError) {
        *recoveryError = error;
        return true;
      });
  EXPECT_THROW(
      attempter->attemptRecoveryFromError(kProblem, 0, delegate, SEL("didRecover:"), nullptr),
      NSException);
  EXPECT_EQ(delegate->recovered_, std::nullopt);
}

TEST(RVFRecoveryAttempterBlock, SheetFormRaisesForADelegateWithoutTheSelector) {
  const auto attempter = RVFRecoveryAttempterBlock::recoveryAttempterWithHandler(
      [](const Ref<NSError>&, std::size_t, Ref<NSError>*) { return true; });
  EXPECT_THROW(attempter->attemptRecoveryFromError(kProblem, 0, std::make_shared<NSObject>(),
                                                   SEL("didRecover:"), nullptr),
               NSException);
  EXPECT_THROW(
      attempter->attemptRecoveryFromError(kProblem, 0, nullptr, SEL("didRecover:"), nullptr),
      NSException);
}

TEST(RVFRecoveryAttempterBlock, IsReachedThroughTheUserInfoOfAnError) {
  const auto error = NSError::errorWithDomain(
      "Other", 1,
      NSDictionary::dictionaryWithEntries(
          {{NSRecoveryAttempterErrorKey, RVFRecoveryAttempterBlock::recoveryAttempterWithHandler(
                                             [](const Ref<NSError>&, std::size_t option,
                                                Ref<NSError>*) { return option == 1; })}}));
  const id attempter = error->userInfo()->objectForKey("NSRecoveryAttempter");
  EXPECT_TRUE(
      send<bool>(attempter, SEL("attemptRecoveryFromError:optionIndex:"), error, std::size_t{1}));
  const auto delegate = std::make_shared<SheetDelegate>();
  send(attempter,
       SEL("attemptRecoveryFromError:optionIndex:delegate:didRecoverSelector:contextInfo:"), error,
       std::size_t{0}, id(delegate), SEL("didRecover:"), static_cast<const void*>(nullptr));
  EXPECT_EQ(delegate->recovered_, false);
}

TEST(RVFRecoveryAttempterBlock, HandlerMayReplaceItselfWhileItRuns) {
  const auto attempter = std::make_shared<RVFRecoveryAttempterBlock>();
  auto token = std::make_shared<int>(5);
  attempter->setHandler([token, &attempter](const Ref<NSError>&, std::size_t, Ref<NSError>*) {
    attempter->setHandler(nullptr);
    return *token == 5;
  });
  token.reset();
  EXPECT_TRUE(attempter->attemptRecoveryFromError(kProblem, 0));
  EXPECT_FALSE(attempter->handler());
}

TEST(RVFRecoveryAttempterBlock, DeclaresItsHandlerToTheRuntime) {
  const auto properties = class_copyPropertyList(objc_getClass("RVFRecoveryAttempterBlock"));
  ASSERT_EQ(properties.size(), 1U);
  EXPECT_EQ(properties[0].name, "handler");
  EXPECT_EQ(properties[0].attributes, "T@?,C,N,V_handler");
}

}  // namespace
}  // namespace rvf
