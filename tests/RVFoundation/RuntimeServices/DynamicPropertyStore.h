// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "Platform/Runtime/ClassBuilder.h"
#include "Platform/Runtime/NSAssertionHandler.h"
#include "Platform/Runtime/NSException.h"
#include "Platform/Values/NSMutableDictionary.h"
#include "RVFoundation/RuntimeServices/RVFDynamicPropertySynthesizer.h"

namespace rvf {

using Synthesizer = RVFDynamicPropertySynthesizer;

/// Keeps values in a dictionary and writes down what it was asked.
class Store final : public NSObject, public RVFDynamicPropertyProvider {
 public:
  explicit Store(Class aClass) : class_(aClass) {}
  Class isa() const override { return class_; }

  id objectForDynamicProperty(std::string_view name, bool isWeak) override {
    calls_.push_back("get " + std::string(name) + (isWeak ? " weak" : ""));
    return values_->objectForKey(name);
  }
  void setObject(const id& object, std::string_view forDynamicProperty, bool isWeak) override {
    calls_.push_back("set " + std::string(forDynamicProperty) + (isWeak ? " weak" : "") +
                     (object ? "" : " absent"));
    if (object) {
      values_->setObject(object, forDynamicProperty);
    } else {
      values_->removeObjectForKey(forDynamicProperty);
    }
  }

  const Class class_;
  std::vector<std::string> calls_;
  Ref<NSMutableDictionary> values_ = NSMutableDictionary::dictionary();
};

inline ClassBuilder<Store> storeBuilder(const std::string& name,
                                        Class superclass = NSObject::classObject()) {
  ClassBuilder<Store> builder("SynthesizerTest" + name, superclass);
  builder.conformsTo("RVFDynamicPropertyProvider")
      .method<&Store::objectForDynamicProperty>("objectForDynamicProperty:isWeak:")
      .method<&Store::setObject>("setObject:forDynamicProperty:isWeak:");
  return builder;
}

/// A synthesized class, made once a process.
inline Class storeClass(const std::string& name, const std::vector<Property>& properties) {
  if (const Class known = objc_getClass("SynthesizerTest" + name)) return known;
  auto builder = storeBuilder(name);
  for (const Property& property : properties)
    builder.property(property.name, property.attributes);
  const Class aClass = builder.registered();
  Synthesizer::synthesizeDynamicPropertiesForClass(aClass);
  return aClass;
}

inline Ref<Store> sampleStore() {
  return std::make_shared<Store>(
      storeClass("Sample", {{"title", "T@\"NSString\",C,D,N"},
                            {"count", "Tq,D,N"},
                            {"total", "Td,R,D"},
                            {"plain", "Ti,N"},
                            {"enabled", "Tc,D,GisEnabled,SmakeEnabled:"}}));
}

inline bool hasOwn(Class aClass, std::string_view selector) {
  for (const Method& method : class_copyMethodList(aClass)) {
    if (method.selector == SEL(selector)) return true;
  }
  return false;
}

/// Writes the reports of this thread down instead of raising.
class Reports final : public NSAssertionHandler {
 public:
  void handleFailureInMethod(SEL selector, const NSObject* object, std::string_view file, int line,
                             std::string_view description) override {
    texts_.push_back("+[" + object->description() + " " + NSStringFromSelector(selector) + "] " +
                     std::string(file) + ":" + std::to_string(line) + " " +
                     std::string(description));
  }
  std::vector<std::string> texts_;
};

inline std::vector<std::string> reportsOf(const std::function<void()>& operation) {
  const auto reports = std::make_shared<Reports>();
  NSAssertionHandler::setCurrentHandler(reports);
  operation();
  NSAssertionHandler::setCurrentHandler(nullptr);
  return reports->texts_;
}

inline std::string reasonOf(const std::function<void()>& operation) {
  try {
    operation();
  } catch (const NSException& exception) {
    return exception.name() + ": " + exception.reason();
  }
  return "nothing was raised";
}

}  // namespace rvf
