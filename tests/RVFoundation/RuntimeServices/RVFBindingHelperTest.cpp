// SPDX-License-Identifier: Apache-2.0
#include "RVFoundation/RuntimeServices/RVFBindingHelper.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include "Platform/Observation/KeyValueBinding.h"
#include "Platform/Observation/KeyValueCoding.h"
#include "Platform/Observation/NSNotificationCenter.h"
#include "Platform/Runtime/ClassBuilder.h"
#include "Platform/Runtime/Messaging.h"
#include "Platform/Runtime/NSAssertionHandler.h"
#include "Platform/Runtime/NSException.h"
#include "Platform/Values/NSNumber.h"
#include "Platform/Values/NSString.h"
#include "RVFoundation/RuntimeServices/RWFBindingHelperKVOInfo.h"
#include "RVFoundation/RuntimeServices/RWFBindingHelperNotificationInfo.h"

namespace rvf {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

/// Observed, bound and counted: writes down every registration that reaches it.
class Label : public NSObject {
 public:
  static Class classObject() {
    static const Class kClass =
        ClassBuilder<Label>("BindingHelperTestLabel", NSObject::classObject())
            .property("text", "T@\"NSString\",C,N,V_text")
            .method<&Label::text>("text")
            .method<&Label::setText>("setText:")
            .registered();
    return kClass;
  }
  Class isa() const override { return classObject(); }
  bool isEqual(const NSObject* other) const override {
    return dynamic_cast<const Label*>(other) != nullptr;
  }
  std::size_t hash() const override { return 1; }

  const std::string& text() const { return text_; }
  void setText(std::string_view text) {
    announceChange(*this, "text", [&] { text_ = text; });
  }

 private:
  std::string text_;
};

class Listener final : public NSObject {
 public:
  static Class classObject() {
    static const Class kClass =
        ClassBuilder<Listener>("BindingHelperTestListener", NSObject::classObject())
            .method<&Listener::observe>("observeValueForKeyPath:ofObject:change:context:")
            .method<&Listener::hear>("hear:")
            .registered();
    return kClass;
  }
  Class isa() const override { return classObject(); }

  std::vector<std::string> told_;

 private:
  void observe(std::string_view keyPath, const id&, const Ref<NSDictionary>&, void*) {
    told_.emplace_back(keyPath);
  }
  void hear(const Ref<NSNotification>& notification) { told_.push_back(notification->name()); }
};

/// Answers registrations and removals of every kind by writing them down.
class Ledger final : public NSObject {
 public:
  Class isa() const override {
    static const Class kClass =
        ClassBuilder<Ledger>("BindingHelperTestLedger", NSObject::classObject())
            .method<&Ledger::addForKeyPath>("addObserver:forKeyPath:options:context:")
            .method<&Ledger::removeForKeyPath>("removeObserver:forKeyPath:")
            .method<&Ledger::addForName>("addObserver:selector:name:object:")
            .method<&Ledger::removeForName>("removeObserver:name:object:")
            .method<&Ledger::bind>("bind:toObject:withKeyPath:options:")
            .method<&Ledger::unbind>("unbind:")
            .registered();
    return kClass;
  }

  std::vector<std::string> calls_;

 private:
  void addForKeyPath(const id&, const std::string& path, NSKeyValueObservingOptions options,
                     void*) {
    calls_.push_back("observe " + path + " " + std::to_string(options));
  }
  void removeForKeyPath(const id&, const std::string& path) { calls_.push_back("remove " + path); }
  void addForName(const id&, SEL selector, const std::string& name, const id&) {
    calls_.push_back("hear " + NSStringFromSelector(selector) + name);
  }
  void removeForName(const id&, const std::string& name, const id&) {
    calls_.push_back("silence " + name);
  }
  void bind(const std::string& name, const id&, const std::string& path, const Ref<NSDictionary>&) {
    calls_.push_back("bind " + name + " " + path);
  }
  void unbind(const std::string& name) { calls_.push_back("unbind " + name); }
};

class BindingHelper : public ::testing::Test {
 protected:
  ~BindingHelper() override { helper_->reset(); }

  Ref<RWFBindingHelperProxy> proxy() { return helper_->proxyForObject(label_); }
  void observe(const Ref<RVFBindingHelper>& helper) {
    addObserverForKeyPath(*helper->proxyForObject(label_), listener_, "text");
  }
  /// How many registrations of the listener for "text" the label has.
  std::size_t deliveries() {
    listener_->told_.clear();
    label_->setText("x");
    return listener_->told_.size();
  }

  const Ref<Label> label_ = std::make_shared<Label>();
  const Ref<Listener> listener_ = std::make_shared<Listener>();
  const Ref<RVFBindingHelper> helper_ = RVFBindingHelper::init();
};

TEST_F(BindingHelper, GivesTheSameProxyForTheSameObject) {
  EXPECT_EQ(proxy(), proxy());
}

TEST_F(BindingHelper, GivesDifferentProxiesForEqualObjects) {
  const auto equal = std::make_shared<Label>();
  ASSERT_TRUE(equal->isEqual(label_.get()));
  EXPECT_NE(proxy(), helper_->proxyForObject(equal));
}

TEST_F(BindingHelper, GivesANewProxyAfterAReset) {
  const auto before = proxy();
  helper_->reset();
  EXPECT_NE(proxy(), before);
}

TEST_F(BindingHelper, KeepsNoTargetAlive) {
  auto target = std::make_shared<Label>();
  const std::weak_ptr<Label> gone = target;
  const auto kept = helper_->proxyForObject(target);
  target.reset();
  EXPECT_TRUE(gone.expired());
}

TEST_F(BindingHelper, PassesObservationsOn) {
  observe(helper_);
  EXPECT_EQ(deliveries(), 1U);
}

TEST_F(BindingHelper, RemovesObservationsOnReset) {
  observe(helper_);
  helper_->reset();
  EXPECT_EQ(deliveries(), 0U);
}

TEST_F(BindingHelper, RecordsTheSameObservationTwiceAndRemovesItTwice) {
  observe(helper_);
  observe(helper_);
  EXPECT_EQ(proxy()->kvoInfo()->count(), 2U);
  EXPECT_EQ(deliveries(), 2U);
  helper_->reset();
  EXPECT_EQ(deliveries(), 0U);
}

TEST_F(BindingHelper, LeavesObservationsMadeWithoutItAlone) {
  observe(helper_);
  addObserverForKeyPath(*label_, listener_, "text");
  helper_->reset();
  EXPECT_EQ(deliveries(), 1U);
  removeObserverForKeyPath(*label_, listener_, "text");
}

TEST_F(BindingHelper, RecordsObserverAndKeyPathInOrder) {
  observe(helper_);
  proxy()->addObserver(listener_, "text.self", NSKeyValueObservingOptionNone, nullptr);
  std::vector<std::string> paths;
  const Ref<NSArray> records = proxy()->kvoInfo();
  for (const id& record : *records) {
    const auto& info = dynamic_cast<const RWFBindingHelperKVOInfo&>(*record);
    EXPECT_EQ(info.observer(), listener_);
    paths.push_back(info.keyPath());
  }
  EXPECT_THAT(paths, ElementsAre("text", "text.self"));
}

TEST_F(BindingHelper, RecordsMessagesOfAnyKind) {
  send(proxy(), SEL("addObserver:forKeyPath:options:context:"), id(listener_), box("text"), 0UL,
       nullptr);
  EXPECT_EQ(proxy()->kvoInfo()->count(), 1U);
  EXPECT_EQ(deliveries(), 1U);
}

TEST_F(BindingHelper, PassesOptionsAndContextOn) {
  proxy()->addObserver(listener_, "text", NSKeyValueObservingOptionInitial, nullptr);
  EXPECT_THAT(listener_->told_, ElementsAre("text"));
}

TEST_F(BindingHelper, TwoOnOneTargetRemoveEachItsOwn) {
  const auto other = RVFBindingHelper::init();
  observe(helper_);
  observe(other);
  EXPECT_EQ(deliveries(), 2U);
  helper_->reset();
  EXPECT_EQ(deliveries(), 1U);
  other->reset();
  EXPECT_EQ(deliveries(), 0U);
}

TEST_F(BindingHelper, RemovesAnObservationThatWasRemovedThroughTheProxyASecondTime) {
  observe(helper_);
  removeObserverForKeyPath(*proxy(), listener_, "text");
  EXPECT_EQ(deliveries(), 0U);
  EXPECT_EQ(proxy()->kvoInfo()->count(), 1U);
  try {
    helper_->reset();
    ADD_FAILURE() << "nothing was raised";
  } catch (const NSException& exception) {
    EXPECT_EQ(exception.name(), NSRangeException);
  }
  EXPECT_EQ(proxy()->kvoInfo()->count(), 1U);
  addObserverForKeyPath(*label_, listener_, "text");  // so that the removal finds one
}

TEST_F(BindingHelper, BindsAndUnbindsOnReset) {
  const auto source = std::make_shared<Label>();
  source->setText("one");
  bindToObject(*proxy(), "text", source, "text");
  EXPECT_EQ(label_->text(), "one");
  helper_->reset();
  source->setText("two");
  EXPECT_EQ(label_->text(), "one");
}

TEST_F(BindingHelper, ForgetsABindingThatIsUnboundThroughTheProxy) {
  const auto source = std::make_shared<Label>();
  proxy()->bind("text", source, "text", nullptr);
  EXPECT_EQ(proxy()->bindingNames()->description(), "(text)");
  unbind(*proxy(), "text");
  EXPECT_EQ(proxy()->bindingNames()->count(), 0U);
  bindToObject(*label_, "text", source, "text");  // by hand: no reset may undo it
  helper_->reset();
  source->setText("two");
  EXPECT_EQ(label_->text(), "two");
  unbind(*label_, "text");
}

TEST_F(BindingHelper, StrikesOutEveryRecordOfAnUnboundName) {
  const auto source = std::make_shared<Label>();
  proxy()->bind("text", source, "text", nullptr);
  proxy()->bind("text", source, "text", nullptr);
  EXPECT_EQ(proxy()->bindingNames()->count(), 2U);
  proxy()->unbind("text");
  EXPECT_EQ(proxy()->bindingNames()->count(), 0U);
}

TEST_F(BindingHelper, RemovesNotificationsOnReset) {
  const auto center = NSNotificationCenter::defaultCenter();
  helper_->defaultCenter()->addObserver(listener_, SEL("hear:"), "BindingHelperTest", nullptr);
  center->postNotificationName("BindingHelperTest", nullptr);
  EXPECT_THAT(listener_->told_, ElementsAre("BindingHelperTest"));
  helper_->reset();
  center->postNotificationName("BindingHelperTest", nullptr);
  EXPECT_EQ(listener_->told_.size(), 1U);
}

TEST_F(BindingHelper, RecordsObserverNameAndObjectOfNotifications) {
  const auto center = helper_->defaultCenter();
  center->addObserver(listener_, SEL("hear:"), std::nullopt, label_);
  const Ref<NSArray> records = center->notificationInfo();
  const auto& info = dynamic_cast<const RWFBindingHelperNotificationInfo&>(*records->firstObject());
  EXPECT_EQ(info.observer(), listener_);
  EXPECT_EQ(info.name(), std::nullopt);
  EXPECT_EQ(info.object(), label_);
}

TEST_F(BindingHelper, RemovesNotificationsOfTheRecordedObjectOnly) {
  const auto center = NSNotificationCenter::defaultCenter();
  const auto other = std::make_shared<Label>();
  center->addObserver(listener_, SEL("hear:"), "BindingHelperTest", other);
  helper_->defaultCenter()->addObserver(listener_, SEL("hear:"), "BindingHelperTest", label_);
  helper_->reset();
  center->postNotificationName("BindingHelperTest", label_);
  center->postNotificationName("BindingHelperTest", other);
  EXPECT_EQ(listener_->told_.size(), 1U);
  center->removeObserver(listener_);
}

TEST_F(BindingHelper, LeavesOtherObjectsAloneWhenTheRecordedOneIsGone) {
  const auto center = NSNotificationCenter::defaultCenter();
  auto gone = std::make_shared<Label>();
  helper_->defaultCenter()->addObserver(listener_, SEL("hear:"), "BindingHelperTest", gone);
  center->addObserver(listener_, SEL("hear:"), "BindingHelperTest", label_);
  gone.reset();
  helper_->reset();
  center->postNotificationName("BindingHelperTest", label_);
  EXPECT_EQ(listener_->told_.size(), 1U);
  center->removeObserver(listener_);
}

TEST_F(BindingHelper, PassesEveryOtherMessageToTheTarget) {
  label_->setText("Till");
  EXPECT_EQ(send<std::string>(proxy(), SEL("text")), "Till");
  setValueForKey(*proxy(), box("Bar"), "text");
  EXPECT_EQ(label_->text(), "Bar");
  EXPECT_EQ(unboxText(valueForKey(*proxy(), "text")), "Bar");
  EXPECT_TRUE(proxy()->isKindOfClass(Label::classObject()));
}

TEST_F(BindingHelper, OfAProxyRecordsAtEachProxy) {
  const auto outer = RVFBindingHelper::init();
  const auto inner = proxy();
  addObserverForKeyPath(*outer->proxyForObject(inner), listener_, "text");
  EXPECT_EQ(deliveries(), 1U);
  EXPECT_EQ(inner->kvoInfo()->count(), 1U);
  EXPECT_EQ(send<std::string>(outer->proxyForObject(inner), SEL("text")), "x");
  outer->reset();
  EXPECT_EQ(deliveries(), 0U);
  EXPECT_EQ(inner->kvoInfo()->count(), 1U) << "removals leave records in place";
  addObserverForKeyPath(*label_, listener_, "text");  // so that the inner one's removal finds one
  helper_->reset();
  EXPECT_EQ(deliveries(), 0U);
}

TEST_F(BindingHelper, SkipsATargetThatIsGone) {
  auto target = std::make_shared<Label>();
  const auto kept = helper_->proxyForObject(target);
  addObserverForKeyPath(*kept, listener_, "text");
  kept->bind("text", label_, "text", nullptr);
  unbind(*target, "text");
  removeObserverForKeyPath(*target, listener_, "text");
  target.reset();
  EXPECT_NO_THROW(helper_->reset());
}

TEST_F(BindingHelper, SkipsATargetThatDiesWithLiveRegistrations) {
  auto target = std::make_shared<Label>();
  const auto kept = helper_->proxyForObject(target);
  addObserverForKeyPath(*kept, listener_, "text");
  kept->bind("text", label_, "text", nullptr);
  testing::internal::CaptureStderr();
  target.reset();
  EXPECT_THAT(testing::internal::GetCapturedStderr(),
              ::testing::HasSubstr("was destroyed while it was observed"));
  EXPECT_FALSE(KeyValueHooks::isObserved(*label_)) << "the binding went with its receiver";
  EXPECT_NO_THROW(helper_->reset());
}

TEST_F(BindingHelper, GivesANewObjectAtADeadOnesAddressAProxyOfItsOwn) {
  alignas(Label) static std::byte memory[sizeof(Label)];
  const auto placed = [] {
    return Ref<Label>(new (memory) Label, [](Label* gone) { gone->~Label(); });
  };
  auto target = placed();
  const auto former = helper_->proxyForObject(target);
  target.reset();
  target = placed();
  const auto own = helper_->proxyForObject(target);
  EXPECT_NE(own, former);
  target->setText("new");
  EXPECT_EQ(send<std::string>(own, SEL("text")), "new");
}

TEST_F(BindingHelper, GivesOneProxyForTheAbsentObject) {
  const auto absent = helper_->proxyForObject(nullptr);
  EXPECT_EQ(helper_->proxyForObject(nullptr), absent);
  EXPECT_NO_THROW(addObserverForKeyPath(*absent, listener_, "text"));
  EXPECT_THROW(send<std::string>(absent, SEL("text")), NSException);
  EXPECT_NO_THROW(helper_->reset());
}

/// Resets a helper when a registration is removed from it.
class Resetting final : public NSObject {
 public:
  explicit Resetting(RVFBindingHelper& helper) : helper_(helper) {}
  Class isa() const override {
    static const Class kClass =
        ClassBuilder<Resetting>("BindingHelperTestResetting", NSObject::classObject())
            .method<&Resetting::add>("addObserver:forKeyPath:options:context:")
            .method<&Resetting::remove>("removeObserver:forKeyPath:")
            .registered();
    return kClass;
  }

  int removals_ = 0;

 private:
  void add(const id&, const std::string&, NSKeyValueObservingOptions, void*) {}
  void remove(const id&, const std::string&) {
    if (++removals_ == 1) helper_.reset();
  }

  RVFBindingHelper& helper_;
};

TEST_F(BindingHelper, MayBeResetByATargetThatARegistrationIsRemovedFrom) {
  const auto target = std::make_shared<Resetting>(*helper_);
  addObserverForKeyPath(*helper_->proxyForObject(target), listener_, "text");
  helper_->reset();
  EXPECT_EQ(target->removals_, 2);
  helper_->reset();
  EXPECT_EQ(target->removals_, 2);
}

TEST_F(BindingHelper, LeavesABindingToItsProxyToWhoBound) {
  const auto bound = std::make_shared<Label>();
  bindToObject(*bound, "text", proxy(), "text");
  helper_->reset();
  label_->setText("heard");
  EXPECT_EQ(bound->text(), "heard");
  unbind(*bound, "text");
  EXPECT_FALSE(KeyValueHooks::isObserved(*label_));
}

TEST_F(BindingHelper, RaisesForAMessageToATargetThatIsGone) {
  auto target = std::make_shared<Label>();
  const auto kept = helper_->proxyForObject(target);
  target.reset();
  EXPECT_THROW(send<std::string>(kept, SEL("text")), NSException);
  EXPECT_NO_THROW(kept->unbind("text"));
}

TEST_F(BindingHelper, RemovesTheObservationOfAnObserverThatIsGone) {
  {
    const auto brief = std::make_shared<Listener>();
    addObserverForKeyPath(*proxy(), brief, "text");
  }
  EXPECT_NO_THROW(helper_->reset());
  EXPECT_FALSE(KeyValueHooks::isObserved(*label_));
}

TEST_F(BindingHelper, UndoesObservationsThenNotificationsThenBindingsOldestFirst) {
  const auto ledger = std::make_shared<Ledger>();
  const auto recorded = helper_->proxyForObject(ledger);
  recorded->bind("b1", label_, "p", nullptr);
  recorded->addObserver(listener_, SEL("hear:"), "n1", label_);
  recorded->addObserver(listener_, "k1", NSKeyValueObservingOptionOld, nullptr);
  recorded->bind("b2", label_, "q", nullptr);
  recorded->addObserver(listener_, SEL("hear:"), "n2", label_);
  recorded->addObserver(listener_, "k2", NSKeyValueObservingOptionNew, nullptr);
  EXPECT_THAT(ledger->calls_, ElementsAre("bind b1 p", "hear hear:n1", "observe k1 2", "bind b2 q",
                                          "hear hear:n2", "observe k2 1"));
  ledger->calls_.clear();
  helper_->reset();
  EXPECT_THAT(ledger->calls_, ElementsAre("remove k1", "remove k2", "silence n1", "silence n2",
                                          "unbind b1", "unbind b2"));
}

TEST_F(BindingHelper, SendsNoUnbindForANameThatWasUnboundThroughTheProxy) {
  const auto ledger = std::make_shared<Ledger>();
  const auto recorded = helper_->proxyForObject(ledger);
  recorded->bind("b", label_, "p", nullptr);
  recorded->unbind("b");
  helper_->reset();
  EXPECT_THAT(ledger->calls_, ElementsAre("bind b p", "unbind b"));
}

TEST_F(BindingHelper, SendsTwoRemovalsForTheSameRegistrationMadeTwice) {
  const auto ledger = std::make_shared<Ledger>();
  const auto recorded = helper_->proxyForObject(ledger);
  addObserverForKeyPath(*recorded, listener_, "k");
  addObserverForKeyPath(*recorded, listener_, "k");
  ledger->calls_.clear();
  helper_->reset();
  EXPECT_THAT(ledger->calls_, ElementsAre("remove k", "remove k"));
}

TEST_F(BindingHelper, AnswersThePerProxyUndoAsAMessage) {
  observe(helper_);
  send(proxy(), SEL("_RWFBindingHelperReset"));
  EXPECT_EQ(deliveries(), 0U);
}

TEST_F(BindingHelper, WithoutProxiesResetsToNoEffectAndTwiceInARowToo) {
  EXPECT_NO_THROW(helper_->reset());
  observe(helper_);
  helper_->reset();
  EXPECT_NO_THROW(helper_->reset());
  EXPECT_EQ(deliveries(), 0U);
}

TEST_F(BindingHelper, EmptiesTheRecordsOfAProxyOnReset) {
  const auto kept = proxy();
  observe(helper_);
  kept->bind("text", std::make_shared<Label>(), "text", nullptr);
  helper_->reset();
  EXPECT_EQ(kept->kvoInfo()->count(), 0U);
  EXPECT_EQ(kept->bindingNames()->count(), 0U);
  EXPECT_EQ(kept->notificationInfo()->count(), 0U);
}

/// Writes reports down and returns.
class Reports final : public NSAssertionHandler {
 public:
  void handleFailureInMethod(SEL selector, const NSObject*, std::string_view file, int line,
                             std::string_view description) override {
    texts_.push_back(NSStringFromSelector(selector) + " " + std::string(file) + ":" +
                     std::to_string(line) + " " + std::string(description));
  }
  std::vector<std::string> texts_;
};

class BindingHelperAssertion : public BindingHelper {
 protected:
  BindingHelperAssertion() { NSAssertionHandler::setCurrentHandler(reports_); }
  ~BindingHelperAssertion() override { NSAssertionHandler::setCurrentHandler(nullptr); }
  const Ref<Reports> reports_ = std::make_shared<Reports>();
};

TEST_F(BindingHelperAssertion, IsReportedOnDestructionWithBindingsLeft) {
  observe(RVFBindingHelper::init());
  EXPECT_THAT(reports_->texts_,
              ElementsAre("dealloc RVFoundation/RVFBindingHelper:126 Deallocated with bindings "
                          "left."));
  EXPECT_EQ(deliveries(), 1U) << "the registration is never undone";
  removeObserverForKeyPath(*label_, listener_, "text");
}

TEST_F(BindingHelperAssertion, IsReportedForAProxyWithoutRegistrationsToo) {
  RVFBindingHelper::init()->proxyForObject(label_);
  EXPECT_EQ(reports_->texts_.size(), 1U);
}

TEST_F(BindingHelperAssertion, IsNotReportedAfterAReset) {
  const auto helper = RVFBindingHelper::init();
  observe(helper);
  helper->reset();
  helper->finalize();
  EXPECT_THAT(reports_->texts_, IsEmpty());
}

TEST_F(BindingHelperAssertion, IsReportedByCollectionWhichReleasesNothing) {
  observe(helper_);
  helper_->finalize();
  EXPECT_THAT(reports_->texts_,
              ElementsAre("finalize RVFoundation/RVFBindingHelper:132 Deallocated with bindings "
                          "left."));
  EXPECT_EQ(deliveries(), 1U);
}

TEST_F(BindingHelper, RaisesOnCollectionByDefault) {
  observe(helper_);
  try {
    helper_->finalize();
    FAIL() << "nothing was raised";
  } catch (const NSException& exception) {
    EXPECT_EQ(exception.name(), NSInternalInconsistencyException);
    EXPECT_EQ(exception.reason(), "Deallocated with bindings left.");
  }
}

TEST(BindingHelperDeath, DestructionWithBindingsLeftEndsTheProcessByDefault) {
  const auto label = std::make_shared<Label>();
  EXPECT_DEATH(RVFBindingHelper::init()->proxyForObject(label),
               "Assertion failure in -\\[RVFBindingHelper dealloc\\], "
               "RVFoundation/RVFBindingHelper:126: Deallocated with bindings left\\.");
}

TEST(BindingHelperRecord, CopiesItsTextAndOwnsNoObject) {
  const auto record = std::make_shared<RWFBindingHelperNotificationInfo>();
  auto observer = std::make_shared<Label>();
  record->setObserver(observer);
  record->setObject(observer);
  record->setName("name");
  observer.reset();
  EXPECT_EQ(record->observer(), nullptr);
  EXPECT_EQ(record->object(), nullptr);
  EXPECT_TRUE(record->hasLostObject());
  EXPECT_EQ(record->name(), "name");
}

}  // namespace
}  // namespace rvf
