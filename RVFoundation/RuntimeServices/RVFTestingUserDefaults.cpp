// SPDX-License-Identifier: Apache-2.0
#include "RVFoundation/RuntimeServices/RVFTestingUserDefaults.h"

#include <optional>
#include <utility>

#include "Platform/Observation/KeyValueObserving.h"
#include "Platform/Runtime/ClassBuilder.h"
#include "Platform/Runtime/ClassRegistration.h"
#include "Platform/Runtime/Messaging.h"
#include "Platform/Runtime/NSAutoreleasePool.h"

namespace rvf {
namespace {

const ClassRegistration kRegistration(&RVFTestingUserDefaults::classObject);

}  // namespace

RVFTestingUserDefaults::RVFTestingUserDefaults()
    : NSUserDefaults(std::nullopt), data_(NSMutableDictionary::dictionary()) {}

Ref<RVFTestingUserDefaults> RVFTestingUserDefaults::testingDefaults() {
  return autorelease(std::make_shared<RVFTestingUserDefaults>());
}

Class RVFTestingUserDefaults::classObject() {
  static const Class kClass =
      ClassBuilder<RVFTestingUserDefaults>("RVFTestingUserDefaults", NSUserDefaults::classObject())
          .property("data", "T@\"NSMutableDictionary\",&,N,V_data")
          .ivar<&RVFTestingUserDefaults::data_>("_data")
          .method<&RVFTestingUserDefaults::data>("data")
          .method<&RVFTestingUserDefaults::setData>("setData:")
          .registered();
  return kClass;
}

Class RVFTestingUserDefaults::isa() const {
  return classObject();
}

void RVFTestingUserDefaults::setData(Ref<NSMutableDictionary> data) {
  announceChange(*this, "data", [&] { data_.swap(data); });
}

id RVFTestingUserDefaults::objectForKey(std::string_view key) {
  return data_ ? data_->objectForKey(key) : nullptr;
}

void RVFTestingUserDefaults::setObject(const id& object, std::string_view key) {
  if (!object) return removeObjectForKey(key);
  if (data_) data_->setObject(object, key);
}

void RVFTestingUserDefaults::removeObjectForKey(std::string_view key) {
  if (data_) data_->removeObjectForKey(key);
}

id RVFTestingUserDefaults::stringForKey(std::string_view key) {
  return objectForKey(key);
}

id RVFTestingUserDefaults::arrayForKey(std::string_view key) {
  return objectForKey(key);
}

id RVFTestingUserDefaults::dictionaryForKey(std::string_view key) {
  return objectForKey(key);
}

id RVFTestingUserDefaults::dataForKey(std::string_view key) {
  return objectForKey(key);
}

id RVFTestingUserDefaults::stringArrayForKey(std::string_view key) {
  return objectForKey(key);
}

id RVFTestingUserDefaults::URLForKey(std::string_view key) {
  return objectForKey(key);
}

long RVFTestingUserDefaults::integerForKey(std::string_view key) {
  return send<long>(objectForKey(key), SEL("integerValue"));
}

float RVFTestingUserDefaults::floatForKey(std::string_view key) {
  return send<float>(objectForKey(key), SEL("floatValue"));
}

double RVFTestingUserDefaults::doubleForKey(std::string_view key) {
  return send<double>(objectForKey(key), SEL("doubleValue"));
}

bool RVFTestingUserDefaults::boolForKey(std::string_view key) {
  return send<bool>(objectForKey(key), SEL("boolValue"));
}

void RVFTestingUserDefaults::setURL(const id& url, std::string_view key) {
  setObject(url, key);
}

void RVFTestingUserDefaults::registerDefaults(const Ref<NSDictionary>& values) {
  auto merged = values ? std::make_shared<NSMutableDictionary>(values->entries())
                       : NSMutableDictionary::dictionary();
  if (data_) {
    for (const auto& [key, value] : data_->entries())
      merged->setObject(value, key);
  }
  setData(std::move(merged));
}

bool RVFTestingUserDefaults::synchronize() {
  return true;
}

bool RVFTestingUserDefaults::performExclusively(const std::function<void()>& work) {
  work();
  return true;
}

Ref<NSError> RVFTestingUserDefaults::synchronizationError() const {
  return nullptr;
}

}  // namespace rvf
