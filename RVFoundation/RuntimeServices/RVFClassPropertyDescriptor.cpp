// SPDX-License-Identifier: Apache-2.0
#include "RVFoundation/RuntimeServices/RVFClassPropertyDescriptor.h"

#include <memory>

#include "Platform/Runtime/ClassBuilder.h"
#include "Platform/Runtime/ClassRegistration.h"
#include "Platform/Runtime/NSAutoreleasePool.h"
#include "Platform/Runtime/NSException.h"
#include "Platform/Runtime/Pointers.h"
#include "Platform/Text/Text.h"
#include "Platform/Values/NSString.h"

namespace rvf {
namespace {

using Descriptor = RVFClassPropertyDescriptor;

const ClassRegistration kRegistration(&Descriptor::classObject);

}  // namespace

Ref<Descriptor> Descriptor::classPropertyDescriptorForProperty(const Property& property) {
  return autorelease(initWithProperty(property));
}

Ref<Descriptor> Descriptor::initWithProperty(const Property& property) {
  return std::make_shared<Descriptor>(property);
}

Descriptor::RVFClassPropertyDescriptor(const Property& property) : name_(property.name) {
  readPropertyAttributesFromString(property.attributes);
}

Class Descriptor::classObject() {
  static const Class kClass =
      ClassBuilder<Descriptor>("RVFClassPropertyDescriptor", NSObject::classObject())
          .property("attributes", "T@\"NSMutableDictionary\",R,&,N,V_attributes")
          .property("name", "T@\"NSString\",R,&,N,V_name")
          .property("isCopy", "Tc,R,N")
          .property("isNonAtomic", "Tc,R,N")
          .property("isRetained", "Tc,R,N")
          .property("isAssigned", "Tc,R,N")
          .property("isDynamic", "Tc,R,N")
          .property("isReadonly", "Tc,R,N")
          .property("encodedType", "T@\"NSString\",R,N")
          .property("isObjCType", "Tc,R,N")
          .property("customGetter", "T:,R,N")
          .property("customSetter", "T:,R,N")
          .property("ivarName", "T@\"NSString\",R,N")
          .ivar("_attributes", "@")  // never absent, so not to be written by name
          .ivar<&Descriptor::name_>("_name")
          .method<&Descriptor::attributes>("attributes")
          .method<&Descriptor::name>("name")
          .method<&Descriptor::readPropertyAttributesFromString>(
              "readPropertyAttributesFromString:")
          .method<&Descriptor::isCopy>("isCopy")
          .method<&Descriptor::isNonAtomic>("isNonAtomic")
          .method<&Descriptor::isRetained>("isRetained")
          .method<&Descriptor::isAssigned>("isAssigned")
          .method<&Descriptor::isDynamic>("isDynamic")
          .method<&Descriptor::isReadonly>("isReadonly")
          .method<&Descriptor::encodedType>("encodedType")
          .method<&Descriptor::isObjCType>("isObjCType")
          .method<&Descriptor::customGetter>("customGetter")
          .method<&Descriptor::customSetter>("customSetter")
          .method<&Descriptor::ivarName>("ivarName")
          .registered();
  return kClass;
}

Class Descriptor::isa() const {
  return classObject();
}

void Descriptor::readPropertyAttributesFromString(std::string_view attributes) {
  attributes_ = NSMutableDictionary::dictionary();
  for (const std::string_view attribute : splitText(attributes, ",")) {
    if (attribute.empty()) {
      NSException::raise(NSRangeException, "a property attribute without a letter in \"" +
                                               std::string(attributes) + "\"");
    }
    attributes_->setObject(box(substringUtf16(attribute, 1)), substringUtf16(attribute, 0, 1));
  }
}

std::optional<std::string> Descriptor::value(std::string_view letter) const {
  return attributes_->textForKey(letter);
}

bool Descriptor::isObjCType() const {
  return encodedType().value_or("").starts_with('@');
}

SEL Descriptor::customGetter() const {
  return NSSelectorFromString(value("G"));
}

SEL Descriptor::customSetter() const {
  return NSSelectorFromString(value("S"));
}

std::string Descriptor::description() const {
  return "<" + std::string(class_getName(isa())) + " " + pointerText(this) + ": " + name_ + ">";
}

}  // namespace rvf
