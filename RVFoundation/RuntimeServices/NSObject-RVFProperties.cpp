// SPDX-License-Identifier: Apache-2.0
#include "RVFoundation/RuntimeServices/NSObject-RVFProperties.h"

#include <vector>

#include "Platform/Predicates/NSPredicate.h"
#include "Platform/Runtime/Runtime.h"
#include "Platform/Values/NSString.h"
#include "RVFoundation/RuntimeServices/RVFClassIvarDescriptor.h"
#include "RVFoundation/RuntimeServices/RVFClassPropertyDescriptor.h"

namespace rvf {
namespace {

/// Leaves out what every object has.
const NSPredicate& isOwnProperty() {
  static const Ref<NSPredicate> kPredicate = NSPredicate::predicateWithFormat(
      "name != %@ AND name != %@ AND name != %@ AND name != %@", box("hash"), box("superclass"),
      box("description"), box("debugDescription"));
  return *kPredicate;
}

/// A class that descends from no root object class is walked to its own root.
Ref<NSArray> listAlongChain(Class aClass, Ref<NSArray> (*listOf)(Class)) {
  std::vector<id> all;
  for (; aClass && aClass != NSObject::classObject(); aClass = class_getSuperclass(aClass)) {
    const Ref<NSArray> own = listOf(aClass);
    all.insert(all.end(), own->objects().begin(), own->objects().end());
  }
  return NSArray::arrayWithObjects(std::move(all));
}

}  // namespace

Ref<NSArray> RVF_ivars(Class aClass) {
  std::vector<id> descriptors;
  for (const Ivar& ivar : class_copyIvarList(aClass))
    descriptors.push_back(RVFClassIvarDescriptor::classIvarDescriptorForIvar(ivar));
  return NSArray::arrayWithObjects(std::move(descriptors));
}

Ref<NSArray> RVF_allIvars(Class aClass) {
  return listAlongChain(aClass, &RVF_ivars);
}

Ref<NSArray> RVF_properties(Class aClass) {
  std::vector<id> descriptors;
  for (const Property& property : class_copyPropertyList(aClass)) {
    descriptors.push_back(RVFClassPropertyDescriptor::classPropertyDescriptorForProperty(property));
  }
  return filteredArrayUsingPredicate(NSArray::arrayWithObjects(std::move(descriptors)),
                                     isOwnProperty());
}

Ref<NSArray> RVF_allProperties(Class aClass) {
  return listAlongChain(aClass, &RVF_properties);
}

}  // namespace rvf
