// SPDX-License-Identifier: Apache-2.0
#include "RVFoundation/RuntimeServices/RVFClassPropertyDescriptor.h"

#include <algorithm>
#include <memory>
#include <utility>
#include <vector>

#include "Platform/Observation/KeyValueObserving.h"
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

/// Everything but the name is computed from the attributes.
id keyPathsAffecting(NSObject&, SEL, std::string_view key) {
  return key == "name" || key == "attributes" ? nullptr : setOfKeyPaths({"attributes"});
}

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
          .method("keyPathsForValuesAffectingValueForKey:", IMP(&keyPathsAffecting))
          .registered();
  return kClass;
}

Class Descriptor::isa() const {
  return classObject();
}

void Descriptor::readPropertyAttributesFromString(std::string_view attributes) {
  const std::vector<std::string_view> all = splitText(attributes, ",");
  const auto end = std::ranges::find(all, std::string_view());
  auto read = NSMutableDictionary::dictionary();
  for (auto attribute = all.begin(); attribute != end; ++attribute)
    read->setObject(box(substringUtf16(*attribute, 1)), substringUtf16(*attribute, 0, 1));
  if (end == all.end()) return replaceAttributes(std::move(read));
  std::string problem =
      "a property attribute without a letter in \"" + std::string(attributes) + "\"";
  replaceAttributes(std::move(read));
  NSException::raise(NSRangeException, problem);
}

void Descriptor::replaceAttributes(Ref<NSMutableDictionary> attributes) {
  announceChange(*this, "attributes", [&] { attributes_.swap(attributes); });
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
