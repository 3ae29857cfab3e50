// SPDX-License-Identifier: Apache-2.0
#include "RVFoundation/RuntimeServices/RVFDynamicPropertySynthesizer.h"

#include <string>

#include "Platform/Runtime/ClassBuilder.h"
#include "Platform/Runtime/ClassReceiver.h"
#include "Platform/Runtime/ClassRegistration.h"
#include "Platform/Runtime/NSAssertionHandler.h"
#include "RVFoundation/RuntimeServices/DynamicPropertyAccessors.h"

namespace rvf {
namespace {

constexpr std::string_view kSource = "RVFoundation/RVFDynamicPropertySynthesizer";
constexpr std::string_view kProtocol = "RVFDynamicPropertyProvider";

const ClassRegistration kRegistration(&RVFDynamicPropertySynthesizer::classObject);

Protocol providerProtocol() {
  return objc_registerProtocol(kProtocol, {objc_registerProtocol("NSObject")});
}

void report(std::string_view selector, int line, std::string_view description) {
  const ClassReceiver receiver(RVFDynamicPropertySynthesizer::classObject());
  NSAssertionHandler::currentHandler()->handleFailureInMethod(SEL(selector), &receiver, kSource,
                                                              line, description);
}

void reportUnsupportedType(std::string_view selector, int line, std::string_view type) {
  report(selector, line, "unsupported property type: " + std::string(type.substr(0, 1)));
}

void addAccessor(Class aClass, std::string_view selector, IMP accessor, int line,
                 std::string_view condition) {
  if (class_addMethod(aClass, sel_registerName(selector), accessor)) return;
  // uncovered: ends the process
  failAssertion("+[RVFDynamicPropertySynthesizer synthesizeProperty:forClass:]", kSource, line,
                condition);
}

}  // namespace

RVFDynamicPropertyProvider::~RVFDynamicPropertyProvider() = default;

Class RVFDynamicPropertySynthesizer::classObject() {
  static const Class kClass = [] {
    providerProtocol();
    return ClassBuilder<RVFDynamicPropertySynthesizer>("RVFDynamicPropertySynthesizer",
                                                       NSObject::classObject())
        .registered();
  }();
  return kClass;
}

Class RVFDynamicPropertySynthesizer::isa() const {
  return classObject();
}

void RVFDynamicPropertySynthesizer::synthesizeDynamicPropertiesForClass(Class aClass) {
  if (!class_conformsToProtocol(aClass, providerProtocol())) {
    report("synthesizeDynamicPropertiesForClass:", 117,
           "class must conform to RVFDynamicPropertyProvider");
  }
  for (const Property& property : class_copyPropertyList(aClass)) {
    const RVFPropertyInfo info = RVFParsePropertyAttributes(property);
    if (info.dynamic) synthesizeProperty(info, aClass);
  }
}

void RVFDynamicPropertySynthesizer::synthesizeProperty(const RVFPropertyInfo& property,
                                                       Class forClass) {
  addAccessor(forClass, property.getter, getterForType(property.type), 107,
              "class_addMethod(aClass, sel_registerName(property->getter), [self "
              "getterForType:property->type], types)");
  if (property.readonly) return;
  addAccessor(forClass, property.setter, setterForType(property.type), 112,
              "class_addMethod(aClass, sel_registerName(property->setter), [self "
              "setterForType:property->type], types)");
}

IMP RVFDynamicPropertySynthesizer::getterForType(std::string_view type) {
  const IMP getter = dynamicPropertyAccessors(type).getter;
  if (!getter) reportUnsupportedType("getterForType:", 66, type);
  return getter;
}

IMP RVFDynamicPropertySynthesizer::setterForType(std::string_view type) {
  const IMP setter = dynamicPropertyAccessors(type).setter;
  if (!setter) reportUnsupportedType("setterForType:", 97, type);
  return setter;
}

}  // namespace rvf
