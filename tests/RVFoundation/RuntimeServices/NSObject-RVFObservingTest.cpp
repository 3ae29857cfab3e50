// SPDX-License-Identifier: Apache-2.0
#include "RVFoundation/RuntimeServices/NSObject-RVFObserving.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "Platform/Observation/KeyValueObserving.h"
#include "Platform/Runtime/ClassBuilder.h"
#include "Platform/Runtime/NSAssertionHandler.h"
#include "Platform/Runtime/NSException.h"

namespace rvf {
namespace {

using testing::ElementsAre;

/// Writes down the messages that announce a change.
class Announcing final : public NSObject {
 public:
  static Class classObject();
  Class isa() const override { return classObject(); }

  void willChangeValueForKey(std::string_view key) { steps.push_back("will " + std::string(key)); }
  void didChangeValueForKey(std::string_view key) { steps.push_back("did " + std::string(key)); }

  std::vector<std::string> steps;
};

Class Announcing::classObject() {
  static const Class kClass =
      ClassBuilder<Announcing>("AnnouncingObject", NSObject::classObject())
          .method<&Announcing::willChangeValueForKey>("willChangeValueForKey:")
          .method<&Announcing::didChangeValueForKey>("didChangeValueForKey:")
          .registered();
  return kClass;
}

TEST(ChangeValueForKey, WrapsTheChangeInItsAnnouncements) {
  const auto object = std::make_shared<Announcing>();
  RVF_changeValueForKey(object, "name", [&] { object->steps.push_back("change"); });
  EXPECT_THAT(object->steps, ElementsAre("will name", "change", "did name"));
}

TEST(ChangeValueForKey, AnExceptionLeavesTheAnnouncementOpen) {
  const auto object = std::make_shared<Announcing>();
  EXPECT_THROW(RVF_changeValueForKey(object, "name", [] { throw std::string("no"); }), std::string);
  EXPECT_THAT(object->steps, ElementsAre("will name"));
}

TEST(ChangeValueForKey, AnAbsentReceiverChangesNothing) {
  bool isChanged = false;
  RVF_changeValueForKey(nullptr, "name", [&] { isChanged = true; });
  RVF_changeValueForKey(nullptr, "name", nullptr);
  EXPECT_FALSE(isChanged);
}

TEST(ChangeValueForKey, TheChangeMayDropTheReceiver) {
  Ref<Announcing> object = std::make_shared<Announcing>();
  const std::weak_ptr<Announcing> weak = object;
  RVF_changeValueForKey(object, "name", [&] { object.reset(); });
  EXPECT_TRUE(weak.expired());
}

TEST(ChangeValueForKey, TheChangeMayReplaceItself) {
  const auto object = std::make_shared<Announcing>();
  std::function<void()> change = [&] { change = nullptr; };
  RVF_changeValueForKey(object, "name", change);
  EXPECT_THAT(object->steps, ElementsAre("will name", "did name"));
}

TEST(ChangeValueForKey, ANullChangeRaises) {
  const auto object = std::make_shared<Announcing>();
  testing::internal::CaptureStderr();
  try {
    RVF_changeValueForKey(object, "name", nullptr);
    ADD_FAILURE() << "nothing was raised";
  } catch (const NSException& exception) {
    EXPECT_EQ(exception.name(), NSInternalInconsistencyException);
    EXPECT_EQ(exception.reason(), "");
  }
  const std::string line = testing::internal::GetCapturedStderr();
  EXPECT_THAT(line, testing::HasSubstr("-[AnnouncingObject RVF_changeValueForKey:withChange:]"));
  EXPECT_THAT(line, testing::HasSubstr("RVFoundation/NSObject-RVFExtensions:58"));
}

/// Takes down what is reported and returns.
class Reports final : public NSAssertionHandler {
 public:
  void handleFailureInMethod(SEL selector, const NSObject* object, std::string_view file, int line,
                             std::string_view description) override {
    EXPECT_EQ(selector, SEL("RVF_changeValueForKey:withChange:"));
    EXPECT_EQ(file, "RVFoundation/NSObject-RVFExtensions");
    EXPECT_EQ(description, "");
    receivers.push_back(object);
    lines.push_back(line);
  }

  std::vector<const NSObject*> receivers;
  std::vector<int> lines;
};

TEST(ChangeValueForKey, ANullChangeChangesNothingIfTheHandlerReturns) {
  const auto reports = std::make_shared<Reports>();
  NSAssertionHandler::setCurrentHandler(reports);
  const auto object = std::make_shared<Announcing>();
  RVF_changeValueForKey(object, "name", nullptr);
  NSAssertionHandler::setCurrentHandler(nullptr);
  EXPECT_THAT(reports->lines, ElementsAre(58));
  EXPECT_THAT(reports->receivers, ElementsAre(object.get()));
  EXPECT_TRUE(object->steps.empty());
}

}  // namespace
}  // namespace rvf
