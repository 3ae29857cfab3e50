// SPDX-License-Identifier: Apache-2.0
//
// That the library's classes tell observers of properties that change by themselves: derived
// ones, lists, and what a call or a run changes on its way.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "Platform/Network/NSMutableURLRequest.h"
#include "Platform/Network/NSNetService.h"
#include "Platform/Observation/KeyValueObserving.h"
#include "Platform/Runtime/ClassBuilder.h"
#include "Platform/Runtime/NSException.h"
#include "Platform/Storage/NSUserDefaults.h"
#include "Platform/Values/NSDictionary.h"
#include "RVFoundation/BackgroundExecution/RVFBlockQueue.h"
#include "RVFoundation/CardReading/RVFCreditCardParser.h"
#include "RVFoundation/CoreServices/RVFLogger.h"
#include "RVFoundation/Formatters/RVFQuantityFormatter.h"
#include "RVFoundation/RuntimeServices/RVFClassPropertyDescriptor.h"
#include "RVFoundation/RuntimeServices/RVFTestingUserDefaults.h"
#include "RVFoundation/ServerDiscovery/RVFQMServerService.h"
#include "RVFoundation/ServerDiscovery/RVFStaticServerList.h"
#include "RVFoundation/Streaming/RVFStreamedSAXParser.h"

namespace rvf {
namespace {

using testing::ElementsAre;

/// Counts what it is told and keeps the values, "old>new".
class Watcher final : public NSObject {
 public:
  static Class classObject();
  Class isa() const override { return classObject(); }

  void observe(std::string_view, const id&, const Ref<NSDictionary>& change, void*) {
    ++count;
    const id before = change->objectForKey(NSKeyValueChangeOldKey);
    const id after = change->objectForKey(NSKeyValueChangeNewKey);
    if (before && after) values.push_back(before->description() + ">" + after->description());
  }

  int count = 0;
  std::vector<std::string> values;
};

Class Watcher::classObject() {
  static const Class kClass =
      ClassBuilder<Watcher>("AnnouncementWatcher", NSObject::classObject())
          .method<&Watcher::observe>("observeValueForKeyPath:ofObject:change:context:")
          .registered();
  return kClass;
}

constexpr auto kValues = NSKeyValueObservingOptionOld | NSKeyValueObservingOptionNew;

/// Watches one key for as long as it lives.
class Watch final {
 public:
  Watch(id object, std::string key, NSKeyValueObservingOptions options = kValues)
      : object_(std::move(object)), key_(std::move(key)) {
    addObserverForKeyPath(*object_, watcher_, key_, options);
  }
  ~Watch() { removeObserverForKeyPath(*object_, watcher_, key_); }
  Watch(const Watch&) = delete;
  Watch& operator=(const Watch&) = delete;

  int count() const { return watcher_->count; }
  const std::vector<std::string>& values() const { return watcher_->values; }

 private:
  const id object_;
  const std::string key_;
  const Ref<Watcher> watcher_ = std::make_shared<Watcher>();
};

TEST(ChangesByThemselves, ACompletionMayBeObservedWithItsValues) {
  const auto queue = RVFBlockQueue::queue();
  const Watch watch(queue, "completion");
  queue->setCompletion([](const Ref<NSError>&) {});
  EXPECT_EQ(watch.count(), 1);
}

TEST(ChangesByThemselves, TheEndOfARunAnnouncesThatTheCompletionIsCleared) {
  const auto queue = RVFBlockQueue::queue();
  const Watch watch(queue, "completion", NSKeyValueObservingOptionNone);
  queue->executeQueueUsingCompletion([&](const Ref<NSError>&) { EXPECT_EQ(watch.count(), 1); });
  EXPECT_EQ(watch.count(), 2);
}

TEST(ChangesByThemselves, TheDisplayNameDependsOnDescriptionAndAddress) {
  const auto server = RVFStaticServer::staticServerWithAddress("till.example");
  const Watch watch(server, "displayName");
  server->setServerDescription("Till");
  server->setServerAddress("other.example");
  server->setServerId("id");
  EXPECT_THAT(watch.values(), ElementsAre("till.example>Till", "Till>Till"));
}

TEST(ChangesByThemselves, TheServerCountIsAnnounced) {
  const auto list =
      std::make_shared<RVFStaticServerList>(RVFTestingUserDefaults::testingDefaults());
  const Watch watch(list, "serverCount");
  list->addServer(RVFStaticServer::staticServerWithAddress("a"));
  list->insertServer(RVFStaticServer::staticServerWithAddress("b"), 0);
  list->removeServerAtIndex(0);
  list->load();
  EXPECT_THAT(watch.values(), ElementsAre("0>1", "1>2", "2>1", "1>1"));
}

/// A "did" would deliver what an open announcement left.
TEST(ChangesByThemselves, AChangeOfAStaticServerListThatRaisesLeavesNoAnnouncementOpen) {
  const auto list =
      std::make_shared<RVFStaticServerList>(RVFTestingUserDefaults::testingDefaults());
  list->addServer(RVFStaticServer::staticServerWithAddress("a"));
  const Watch watch(list, "serverCount",
                    NSKeyValueObservingOptionOld | NSKeyValueObservingOptionPrior);
  EXPECT_THROW(list->removeServerAtIndex(1), NSException);
  EXPECT_THROW(list->insertServer(RVFStaticServer::staticServerWithAddress("b"), 2), NSException);
  EXPECT_THROW(list->addServer(nullptr), NSException);
  EXPECT_EQ(watch.count(), 0);
  didChangeValueForKey(*list, "serverCount");
  EXPECT_EQ(watch.count(), 0);
  EXPECT_EQ(list->serverCount(), 1U);
}

/// In memory, and without room for anything.
class FullDefaults final : public NSUserDefaults {
 public:
  FullDefaults() : NSUserDefaults(std::nullopt) {}

  void setObject(const id&, std::string_view) override {
    NSException::raise(NSInvalidArgumentException, "full");
  }
};

TEST(ChangesByThemselves, AStaticServerListThatCannotBeSavedTellsThatItIsAsBefore) {
  const auto list = std::make_shared<RVFStaticServerList>(std::make_shared<FullDefaults>());
  const Watch watch(list, "serverCount");
  EXPECT_THROW(list->addServer(RVFStaticServer::staticServerWithAddress("a")), NSException);
  EXPECT_THAT(watch.values(), ElementsAre("0>1", "1>0"));
}

TEST(ChangesByThemselves, WhatADescriptorIsGivenToReadChangesWhatIsComputedFromIt) {
  const auto descriptor = RVFClassPropertyDescriptor::initWithProperty({"title", "Ti"});
  const Watch isCopy(descriptor, "isCopy");
  const Watch type(descriptor, "encodedType");
  const Watch name(descriptor, "name");
  descriptor->readPropertyAttributesFromString("T@,C");
  EXPECT_THROW(descriptor->readPropertyAttributesFromString("Td,,C"), NSException);
  didChangeValueForKey(*descriptor, "attributes");
  EXPECT_THAT(isCopy.values(), ElementsAre("0>1", "1>0"));
  EXPECT_THAT(type.values(), ElementsAre("i>@", "@>d"));
  EXPECT_EQ(name.count(), 0);
}

Ref<NSNetService> registration(std::string_view domain, std::string_view name) {
  return NSNetService::initWithDomain(domain, "_quillmarsh._tcp.", name);
}

TEST(ChangesByThemselves, BeingWideAreaDependsOnTheMainRegistration) {
  const auto server = std::make_shared<RVFQMServerService>();
  const Watch watch(server, "isUsingBackToMyMac");
  server->setMainService(
      registration("1." + RVFQMServerService::wideAreaDomainSuffixes().front(), "Till"));
  EXPECT_THAT(watch.values(), ElementsAre("0>1"));
}

TEST(ChangesByThemselves, TheNameOfAServerFollowsItsMainRegistration) {
  const auto server = std::make_shared<RVFQMServerService>();
  const Watch watch(server, "name");
  server->setMainService(registration("local.", "Till"));
  server->setMainService(
      registration("1." + RVFQMServerService::wideAreaDomainSuffixes().front(), "Till"));
  server->setMainService(nullptr);
  EXPECT_THAT(watch.values(), ElementsAre("<null>>Till", "Till>Till (Back to My Mac)",
                                          "Till (Back to My Mac)><null>"));
}

TEST(ChangesByThemselves, APathLeadsThroughAServerToItsRegistration) {
  const auto server = std::make_shared<RVFQMServerService>();
  const Watch watch(server, "mainService.domain");
  server->setMainService(registration("local.", "Till"));
  EXPECT_THAT(watch.values(), ElementsAre("<null>>local."));
}

TEST(ChangesByThemselves, FieldsOfASwipeAreAnnouncedAsTheyAreRead) {
  const auto parser = std::make_shared<RVFCreditCardParser>();
  const Watch name(parser, "displayCardholderName");
  const Watch type(parser, "cardType");
  parser->setSwipeData("%B4111111111111111^DOE/JOHN^2512101?");
  EXPECT_TRUE(parser->parseSwipeRequiringName(true));
  EXPECT_THAT(name.values(), ElementsAre(">JOHN DOE"));
  EXPECT_THAT(type.values(), ElementsAre("-1>0"));
}

TEST(ChangesByThemselves, AnObserverMayDropTheParserThatReads) {
  class Dropping final : public NSObject {
   public:
    static Class classObject() {
      static const Class kClass =
          ClassBuilder<Dropping>("DroppingObserver", NSObject::classObject())
              .method<&Dropping::observe>("observeValueForKeyPath:ofObject:change:context:")
              .registered();
      return kClass;
    }
    Class isa() const override { return classObject(); }
    void observe(std::string_view, const id&, const Ref<NSDictionary>&, void*) { held.reset(); }
    Ref<RVFCreditCardParser> held = std::make_shared<RVFCreditCardParser>();
  };
  const auto observer = std::make_shared<Dropping>();
  observer->held->setSwipeData("%B4111111111111111^DOE/JOHN^2512101?");
  addObserverForKeyPath(*observer->held, observer, "accountNumber");
  testing::internal::CaptureStderr();
  EXPECT_TRUE(observer->held->parseSwipeRequiringName(true));
  EXPECT_THAT(testing::internal::GetCapturedStderr(), testing::HasSubstr("was destroyed"));
  EXPECT_EQ(observer->held, nullptr);
}

TEST(ChangesByThemselves, AStopOfTheXMLParserIsAnnounced) {
  const auto parser = RVFStreamedSAXParser::init();
  parser->setStartElementHandler([](auto&&...) { return false; });
  const Watch watch(parser, "interupted");
  EXPECT_FALSE(parser->parseChunk(NSData::dataWithBytes("<a><b/></a>")));
  EXPECT_THAT(watch.values(), ElementsAre("0>1"));
}

TEST(ChangesByThemselves, TheLocaleOfAQuantityFormatterFollowsItsFormatter) {
  const auto formatter = std::make_shared<RVFQuantityFormatter>();
  const Watch watch(formatter, "locale", NSKeyValueObservingOptionNone);
  formatter->setQuantityFormatter(nullptr);
  EXPECT_EQ(watch.count(), 1);
}

TEST(ChangesByThemselves, RequestsAnnounceToo) {
  const auto request = NSMutableURLRequest::requestWithURL(nullptr);
  const Watch method(request, "HTTPMethod");
  const Watch timeout(request, "timeoutInterval");
  request->setHTTPMethod("POST");
  request->setTimeoutInterval(5);
  EXPECT_THAT(method.values(), ElementsAre("GET>POST"));
  EXPECT_THAT(timeout.values(), ElementsAre("60>5"));
}

}  // namespace
}  // namespace rvf
