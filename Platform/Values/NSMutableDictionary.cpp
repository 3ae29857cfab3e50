// SPDX-License-Identifier: Apache-2.0
#include "Platform/Values/NSMutableDictionary.h"

#include <utility>

#include "Platform/Runtime/ClassBuilder.h"
#include "Platform/Runtime/ClassRegistration.h"
#include "Platform/Runtime/NSException.h"
#include "Platform/Values/NSString.h"

namespace rvf {
namespace {

const ClassRegistration kRegistration(&NSMutableDictionary::classObject);

}  // namespace

Ref<NSMutableDictionary> NSMutableDictionary::dictionary() {
  return std::make_shared<NSMutableDictionary>();
}

Class NSMutableDictionary::classObject() {
  static const Class kClass =
      ClassBuilder<NSMutableDictionary>("NSMutableDictionary", NSDictionary::classObject())
          .method<&NSMutableDictionary::copy>("copy")
          .registered();
  return kClass;
}

Class NSMutableDictionary::isa() const {
  return classObject();
}

void NSMutableDictionary::setObject(id object, const id& key) {
  if (!key || !object) {
    NSException::raise(NSInvalidArgumentException,
                       key ? "absent object put into a dictionary" : "absent dictionary key");
  }
  mutableEntries().insert_or_assign(key, std::move(object));
}

void NSMutableDictionary::setObject(id object, std::string_view key) {
  setObject(std::move(object), box(key));
}

void NSMutableDictionary::removeObjectForKey(const id& key) {
  if (key) mutableEntries().erase(key);
}

void NSMutableDictionary::removeObjectForKey(std::string_view key) {
  removeObjectForKey(box(key));
}

}  // namespace rvf
