// SPDX-License-Identifier: Apache-2.0
#include "Platform/Values/NSMutableDictionary.h"

#include <utility>

#include "Platform/Runtime/ClassBuilder.h"
#include "Platform/Runtime/ClassRegistration.h"
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
  requireEntry(key, object);
  const auto [entry, isNew] = mutableEntries().try_emplace(key, object);
  if (!isNew) entry->second.swap(object);
}

void NSMutableDictionary::setObject(id object, std::string_view key) {
  setObject(std::move(object), box(key));
}

void NSMutableDictionary::removeObjectForKey(const id& key) {
  const auto found = entries().find(key);
  if (found != entries().end()) mutableEntries().extract(found);
}

void NSMutableDictionary::removeObjectForKey(std::string_view key) {
  const auto found = entries().find(key);
  if (found != entries().end()) mutableEntries().extract(found);
}

void NSMutableDictionary::removeAllObjects() {
  Entries removed;
  mutableEntries().swap(removed);
}

}  // namespace rvf
