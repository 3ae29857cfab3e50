// SPDX-License-Identifier: Apache-2.0
#include "Platform/Runtime/NSObject.h"

#include <functional>

#include "Platform/Runtime/AssociationTable.h"
#include "Platform/Runtime/ClassBuilder.h"
#include "Platform/Runtime/KeyValueHooks.h"
#include "Platform/Runtime/NSException.h"
#include "Platform/Runtime/NSInvocation.h"
#include "Platform/Runtime/NSMethodSignature.h"
#include "Platform/Runtime/Pointers.h"
#include "Platform/Runtime/Runtime.h"

namespace rvf {
namespace {

Class superclassOf(NSObject& self, SEL) {
  return class_getSuperclass(self.isa());
}

bool isEqualToObject(NSObject& self, SEL, id other) {
  return self.isEqual(other.get());
}

}  // namespace

NSObject::~NSObject() {
  // In this order: what hangs on an object may observe it, and leaves it now.
  if (AssociationTable::isUsedBy(*this)) AssociationTable::removeAll(*this);
  if (KeyValueHooks::isObserved(*this)) KeyValueHooks::forgetObservers(*this);
}

Class NSObject::classObject() {
  static const Class kClass = [] {
    ClassBuilder<NSObject> root("NSObject", nullptr);
    root.conformsTo("NSObject")
        .method<&NSObject::isa>("class")
        .method("superclass", IMP(&superclassOf))
        .method<&NSObject::isKindOfClass>("isKindOfClass:")
        .method<&NSObject::isMemberOfClass>("isMemberOfClass:")
        .method<&NSObject::conformsToProtocol>("conformsToProtocol:")
        .method<&NSObject::respondsToSelector>("respondsToSelector:")
        .method<&NSObject::methodSignatureForSelector>("methodSignatureForSelector:")
        .method("isEqual:", IMP(&isEqualToObject))
        .method<&NSObject::hash>("hash")
        .method<&NSObject::description>("description");
    for (const Method& method : KeyValueHooks::methods()) {
      root.method(method.selector.name(), method.implementation);
    }
    return root.registered();
  }();
  return kClass;
}

Class NSObject::isa() const {
  return classObject();
}

bool NSObject::isKindOfClass(Class aClass) const {
  return class_isSubclassOf(isa(), aClass);
}

bool NSObject::isMemberOfClass(Class aClass) const {
  return isa() == aClass;
}

bool NSObject::conformsToProtocol(std::string_view protocolName) const {
  return class_conformsToProtocol(isa(), objc_getProtocol(protocolName));
}

bool NSObject::respondsToSelector(SEL selector) const {
  return class_respondsToSelector(isa(), selector);
}

bool NSObject::isEqual(const NSObject* other) const {
  return this == other;
}

std::size_t NSObject::hash() const {
  return std::hash<const NSObject*>()(this);
}

std::string NSObject::description() const {
  return "<" + std::string(class_getName(isa())) + ": " + pointerText(this) + ">";
}

Ref<NSMethodSignature> NSObject::methodSignatureForSelector(SEL selector) const {
  const IMP implementation = class_getMethodImplementation(isa(), selector);
  if (!implementation) return nullptr;
  return NSMethodSignature::signatureWithTypes(implementation.typeEncoding());
}

void NSObject::forwardInvocation(NSInvocation& invocation) {
  doesNotRecognizeSelector(invocation.selector());
}

void NSObject::doesNotRecognizeSelector(SEL selector) const {
  NSException::raise(NSInvalidArgumentException,
                     "-[" + std::string(class_getName(isa())) + " " + std::string(selector.name()) +
                         "]: unrecognized selector sent to instance " + pointerText(this));
}

bool objectsAreEqual(const id& a, const id& b) {
  return a == b || (a && b && a->isEqual(b.get()));
}

}  // namespace rvf
