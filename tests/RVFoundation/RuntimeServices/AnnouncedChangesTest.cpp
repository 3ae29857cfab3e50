// SPDX-License-Identifier: Apache-2.0
//
// That the library's classes tell observers of every change of their declared properties.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

#include "Platform/Observation/KeyValueCoding.h"
#include "Platform/Observation/KeyValueObserving.h"
#include "Platform/RunLoop/NSOperation.h"
#include "Platform/Runtime/ClassBuilder.h"
#include "Platform/Runtime/Messaging.h"
#include "Platform/Values/NSMutableDictionary.h"
#include "Platform/Values/NSNumber.h"
#include "Platform/Values/NSString.h"
#include "RVFoundation/BackgroundExecution/RVFBlockQueue.h"
#include "RVFoundation/BackgroundExecution/RVFRetryingBlockExecutor.h"
#include "RVFoundation/BackgroundExecution/RVFRunLoopOperation.h"
#include "RVFoundation/CardReading/RVFCreditCardParser.h"
#include "RVFoundation/CardReading/RVFEncryptedTrackData.h"
#include "RVFoundation/CoreServices/RVFLogger.h"
#include "RVFoundation/CoreServices/RVFRecoveryAttempterBlock.h"
#include "RVFoundation/Formatters/RVFByteSizeFormatter.h"
#include "RVFoundation/Formatters/RVFCurrencyFormatter.h"
#include "RVFoundation/Formatters/RVFQuantityFormatter.h"
#include "RVFoundation/Formatters/RVFSecondsToHoursFormatter.h"
#include "RVFoundation/Formatters/RVFTimeFormatter.h"
#include "RVFoundation/PlatformUtilities/RVFColumnWidthRegistry.h"
#include "RVFoundation/RuntimeServices/RVFClassIvarDescriptor.h"
#include "RVFoundation/RuntimeServices/RVFDynamicPropertySynthesizer.h"
#include "RVFoundation/RuntimeServices/RVFPropertyHelpers.h"
#include "RVFoundation/RuntimeServices/RVFTestingUserDefaults.h"
#include "RVFoundation/RuntimeServices/RWFBindingHelperKVOInfo.h"
#include "RVFoundation/RuntimeServices/RWFBindingHelperNotificationInfo.h"
#include "RVFoundation/ServerDiscovery/RVFQMServerServiceBrowser.h"
#include "RVFoundation/ServerDiscovery/RVFStaticServer.h"
#include "RVFoundation/Streaming/RVFStreamedSAXParser.h"

namespace rvf {
namespace {

/// Writes down what it is told, "key old>new" where asked for values.
class Recorder final : public NSObject {
 public:
  Class isa() const override {
    static const Class kClass =
        ClassBuilder<Recorder>("AnnouncedChangesTestRecorder", NSObject::classObject())
            .method<&Recorder::observe>("observeValueForKeyPath:ofObject:change:context:")
            .registered();
    return kClass;
  }

  std::vector<std::string> told_;
  std::function<void()> action_;

 private:
  void observe(std::string_view keyPath, const id&, const Ref<NSDictionary>& change, void*) {
    std::string line(keyPath);
    if (const id old = change->objectForKey(NSKeyValueChangeOldKey)) {
      line += " " + old->description() + ">" +
              change->objectForKey(NSKeyValueChangeNewKey)->description();
    }
    told_.push_back(line);
    if (const auto now = action_) now();
  }
};

struct ClassRow {
  std::string_view className;
  std::function<Ref<NSObject>()> make;
};

std::ostream& operator<<(std::ostream& stream, const ClassRow& row) {
  return stream << row.className;
}

class AnnouncedChanges : public ::testing::TestWithParam<ClassRow> {};

TEST_P(AnnouncedChanges, OfEveryPropertyAreToldOnceACall) {
  const Ref<NSObject> object = GetParam().make();
  const auto recorder = std::make_shared<Recorder>();
  for (const Property& property : class_copyPropertyList(objc_getClass(GetParam().className))) {
    const RVFPropertyInfo info = RVFParsePropertyAttributes(property);
    if (info.readonly) continue;
    recorder->told_.clear();
    addObserverForKeyPath(*object, recorder, property.name);
    const std::any same[] = {sendWithArguments(*object, SEL(info.getter), {})};
    sendWithArguments(*object, SEL(info.setter), same);
    EXPECT_EQ(recorder->told_, std::vector<std::string>{property.name});
    removeObserverForKeyPath(*object, recorder, property.name);
  }
}

TEST_P(AnnouncedChanges, CarryValuesAndStoreThem) {
  const Ref<NSObject> object = GetParam().make();
  const auto recorder = std::make_shared<Recorder>();
  for (const Property& property : class_copyPropertyList(objc_getClass(GetParam().className))) {
    const RVFPropertyInfo info = RVFParsePropertyAttributes(property);
    if (info.readonly) continue;
    recorder->told_.clear();
    addObserverForKeyPath(*object, recorder, property.name,
                          NSKeyValueObservingOptionOld | NSKeyValueObservingOptionNew);
    const std::any same[] = {sendWithArguments(*object, SEL(info.getter), {})};
    EXPECT_NO_THROW(sendWithArguments(*object, SEL(info.setter), same)) << property.name;
    ASSERT_EQ(recorder->told_.size(), 1U) << property.name;
    EXPECT_THAT(recorder->told_[0], ::testing::StartsWith(property.name + " "));
    removeObserverForKeyPath(*object, recorder, property.name);
  }
}

TEST_P(AnnouncedChanges, ByCodingAreToldOnceToo) {
  const Ref<NSObject> object = GetParam().make();
  const auto recorder = std::make_shared<Recorder>();
  for (const Property& property : class_copyPropertyList(objc_getClass(GetParam().className))) {
    // Pointers have no object form, so coding does not know them.
    const RVFPropertyInfo info = RVFParsePropertyAttributes(property);
    if (info.readonly || info.type.front() == '^') continue;
    recorder->told_.clear();
    addObserverForKeyPath(*object, recorder, property.name);
    setValueForKey(*object, valueForKey(*object, property.name), property.name);
    EXPECT_EQ(recorder->told_, std::vector<std::string>{property.name});
    removeObserverForKeyPath(*object, recorder, property.name);
  }
}

template <class T>
Ref<NSObject> made() {
  return std::make_shared<T>();
}

INSTANTIATE_TEST_SUITE_P(
    Classes, AnnouncedChanges,
    ::testing::Values(ClassRow{"RVFRecoveryAttempterBlock", &made<RVFRecoveryAttempterBlock>},
                      ClassRow{"RVFLogger", &made<RVFLogger>},
                      ClassRow{"RVFMagneticCardParser", &made<RVFCreditCardParser>},
                      ClassRow{"RVFEncryptedTrackData", &made<RVFEncryptedTrackData>},
                      ClassRow{"RVFStaticServer", &made<RVFStaticServer>},
                      ClassRow{"RVFQMServerServiceBrowser",
                               [] { return RVFQMServerServiceBrowser::serviceBrowser(); }},
                      ClassRow{"RVFQMServerService", &made<RVFQMServerService>},
                      ClassRow{"RVFQuantityFormatter", &made<RVFQuantityFormatter>},
                      ClassRow{"RVFCurrencyFormatter", &made<RVFCurrencyFormatter>},
                      ClassRow{"RVFTimeFormatter", &made<RVFTimeFormatter>},
                      ClassRow{"RVFSecondsToHoursFormatter", &made<RVFSecondsToHoursFormatter>},
                      ClassRow{"RVFByteSizeFormatter", &made<RVFByteSizeFormatter>},
                      ClassRow{"RVFStreamedSAXParser", [] { return RVFStreamedSAXParser::init(); }},
                      ClassRow{"RVFBlockQueue", [] { return RVFBlockQueue::queue(); }},
                      ClassRow{"RVFRetryingBlockExecutor", &made<RVFRetryingBlockExecutor>},
                      ClassRow{"RVFClassIvarDescriptor",
                               [] {
                                 return RVFClassIvarDescriptor::initWithIvar({"_title", "@"});
                               }},
                      ClassRow{"RWFBindingHelperKVOInfo", &made<RWFBindingHelperKVOInfo>},
                      ClassRow{"RWFBindingHelperNotificationInfo",
                               &made<RWFBindingHelperNotificationInfo>},
                      ClassRow{"RVFColumnWidthInfo", &made<RVFColumnWidthInfo>},
                      ClassRow{"RVFColumnWidthRegistry", &made<RVFColumnWidthRegistry>},
                      ClassRow{"RVFTestingUserDefaults", &made<RVFTestingUserDefaults>}),
    [](const auto& row) { return std::string(row.param.className); });

TEST(AnnouncedChangesOfValues, CarryTheValuesBeforeAndAfter) {
  const auto server = std::make_shared<RVFStaticServer>();
  const auto recorder = std::make_shared<Recorder>();
  addObserverForKeyPath(*server, recorder, "serverAddress",
                        NSKeyValueObservingOptionOld | NSKeyValueObservingOptionNew);
  server->setServerAddress("till");
  server->setServerAddress("till");
  EXPECT_EQ(recorder->told_.back(), "serverAddress till>till");
  removeObserverForKeyPath(*server, recorder, "serverAddress");
}

TEST(AnnouncedChangesOfValues, OfTheMainServiceTellOfTheNameToo) {
  const auto server = std::make_shared<RVFQMServerService>();
  const auto recorder = std::make_shared<Recorder>();
  addObserverForKeyPath(*server, recorder, "name",
                        NSKeyValueObservingOptionOld | NSKeyValueObservingOptionNew);
  server->setMainService(NSNetService::initWithDomain("local.", "_quillmarsh._tcp.", "Till"));
  EXPECT_EQ(recorder->told_, std::vector<std::string>{"name <null>>Till"});
  server->setIsDemo(true);
  EXPECT_EQ(recorder->told_.size(), 1U);
  removeObserverForKeyPath(*server, recorder, "name");
}

class Note final : public NSObject, public RVFDynamicPropertyProvider {
 public:
  Class isa() const override {
    static const Class kClass = RVFDynamicPropertySynthesizer::registered(
        ClassBuilder<Note>("AnnouncedChangesTestNote", NSObject::classObject())
            .property("count", "Tq,D,N")
            .property("title", "T@\"NSString\",C,D,GtheTitle,SputTitle:"));
    return kClass;
  }
  id objectForDynamicProperty(std::string_view name, bool) override {
    return values_->objectForKey(name);
  }
  void setObject(const id& object, std::string_view name, bool) override {
    values_->setObject(object, name);
  }

 private:
  Ref<NSMutableDictionary> values_ = NSMutableDictionary::dictionary();
};

TEST(AnnouncedChangesOfValues, OfDynamicPropertiesCarryTheirBoxedValues) {
  const auto note = std::make_shared<Note>();
  const auto recorder = std::make_shared<Recorder>();
  addObserverForKeyPath(*note, recorder, "count",
                        NSKeyValueObservingOptionOld | NSKeyValueObservingOptionNew);
  send(note, SEL("setCount:"), 5L);
  setValueForKey(*note, box(6), "count");
  EXPECT_EQ(recorder->told_, (std::vector<std::string>{"count 0>5", "count 5>6"}));
  EXPECT_EQ(valueForKey(*note, "count")->description(), "6");
  removeObserverForKeyPath(*note, recorder, "count");
}

TEST(AnnouncedChangesOfValues, OfDynamicPropertiesAreToldUnderTheNameOfTheProperty) {
  const auto note = std::make_shared<Note>();
  const auto recorder = std::make_shared<Recorder>();
  addObserverForKeyPath(*note, recorder, "title");
  send(note, SEL("putTitle:"), box("Milk"));
  EXPECT_EQ(recorder->told_, std::vector<std::string>{"title"});
  removeObserverForKeyPath(*note, recorder, "title");
}

TEST(AnnouncedChangesOfValues, OfPropertiesWithAccessorsOfTheirOwnCarryTheirValues) {
  const auto note = std::make_shared<Note>();
  const auto recorder = std::make_shared<Recorder>();
  addObserverForKeyPath(*note, recorder, "title",
                        NSKeyValueObservingOptionOld | NSKeyValueObservingOptionNew);
  send(note, SEL("putTitle:"), box("Milk"));
  setValueForKey(*note, box("Bread"), "title");
  EXPECT_EQ(recorder->told_, (std::vector<std::string>{"title <null>>Milk", "title Milk>Bread"}));
  removeObserverForKeyPath(*note, recorder, "title");
}

TEST(AnnouncedChangesOfOperations, LetAnObserverOfTheEndDropTheOperation) {
  auto operation = std::make_shared<RVFRunLoopOperation>();
  operation->setExecutionBlock([] {});
  operation->start();
  const std::weak_ptr<RVFRunLoopOperation> isAlive = operation;
  const auto recorder = std::make_shared<Recorder>();
  addObserverForKeyPath(*operation, recorder, "isFinished");
  recorder->action_ = [&operation] { operation.reset(); };
  testing::internal::CaptureStderr();
  operation->setState(2);
  testing::internal::GetCapturedStderr();
  EXPECT_TRUE(isAlive.expired());
  EXPECT_EQ(recorder->told_, std::vector<std::string>{"isFinished"});
}

TEST(AnnouncedChangesOfOperations, LetAnObserverOfTheCancellationDropTheOperation) {
  const auto dependency = std::make_shared<NSOperation>();
  auto operation = std::make_shared<NSOperation>();
  operation->addDependency(dependency);
  const std::weak_ptr<NSOperation> isAlive = operation;
  const auto recorder = std::make_shared<Recorder>();
  addObserverForKeyPath(*operation, recorder, "isCancelled");
  recorder->action_ = [&operation] { operation.reset(); };
  testing::internal::CaptureStderr();
  operation->cancel();
  testing::internal::GetCapturedStderr();
  EXPECT_TRUE(isAlive.expired());
}

}  // namespace
}  // namespace rvf
