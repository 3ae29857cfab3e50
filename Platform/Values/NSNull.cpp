// SPDX-License-Identifier: Apache-2.0
#include "Platform/Values/NSNull.h"

#include "Platform/Runtime/ClassBuilder.h"
#include "Platform/Runtime/ClassRegistration.h"
#include "Platform/Runtime/NSCopying.h"

namespace rvf {
namespace {

const ClassRegistration kRegistration(&NSNull::classObject);

}  // namespace

Ref<NSNull> NSNull::null() {
  // Never destroyed: compared until the last static destructor has run.
  static const Ref<NSNull>& null = *new Ref<NSNull>(std::make_shared<NSNull>(Key()));
  return null;
}

Class NSNull::classObject() {
  static const Class kClass = ClassBuilder<NSNull>("NSNull", NSObject::classObject())
                                  .method("copy", immutableCopyImplementation())
                                  .conformsTo("NSCopying")
                                  .registered();
  return kClass;
}

Class NSNull::isa() const {
  return classObject();
}

}  // namespace rvf
