// SPDX-License-Identifier: Apache-2.0
#include "RVFoundation/RuntimeServices/RVFClassIvarDescriptor.h"

#include <memory>

#include "Platform/Observation/KeyValueObserving.h"
#include "Platform/Runtime/ClassBuilder.h"
#include "Platform/Runtime/ClassRegistration.h"
#include "Platform/Runtime/NSAutoreleasePool.h"

namespace rvf {
namespace {

using Descriptor = RVFClassIvarDescriptor;

const ClassRegistration kRegistration(&Descriptor::classObject);

}  // namespace

Ref<Descriptor> Descriptor::classIvarDescriptorForIvar(const Ivar& ivar) {
  return autorelease(initWithIvar(ivar));
}

Ref<Descriptor> Descriptor::initWithIvar(const Ivar& ivar) {
  return std::make_shared<Descriptor>(ivar);
}

Descriptor::RVFClassIvarDescriptor(const Ivar& ivar)
    : name_(ivar.name), encodedType_(ivar.typeEncoding) {}

Class Descriptor::classObject() {
  static const Class kClass =
      ClassBuilder<Descriptor>("RVFClassIvarDescriptor", NSObject::classObject())
          .property("name", "T@\"NSString\",&,V_name")
          .property("encodedType", "T@\"NSString\",R,&,N,V_encodedType")
          .property("isObjCType", "Tc,R,N")
          .ivar<&Descriptor::name_>("_name")
          .ivar<&Descriptor::encodedType_>("_encodedType")
          .method<&Descriptor::name>("name")
          .method<&Descriptor::setName>("setName:")
          .method<&Descriptor::encodedType>("encodedType")
          .method<&Descriptor::isObjCType>("isObjCType")
          .registered();
  return kClass;
}

Class Descriptor::isa() const {
  return classObject();
}

void Descriptor::setName(std::string_view name) {
  announceChange(*this, "name", [&] { name_ = name; });
}

}  // namespace rvf
