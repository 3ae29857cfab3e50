// SPDX-License-Identifier: Apache-2.0
#include "Platform/Values/NSSet.h"

#include <algorithm>
#include <set>
#include <string>

#include "Platform/Runtime/ClassBuilder.h"
#include "Platform/Runtime/ClassRegistration.h"
#include "Platform/Runtime/NSCopying.h"
#include "Platform/Runtime/NSException.h"
#include "Platform/Values/HashMixing.h"

namespace rvf {
namespace {

const ClassRegistration kRegistration(&NSSet::classObject);

}  // namespace

NSSet::NSSet(const std::vector<id>& objects) {
  for (const id& object : objects) {
    if (!object) NSException::raise(NSInvalidArgumentException, "absent object put into a set");
    if (objects_.insert(object).second) hash_ += mixedHash(object->hash());
  }
}

Ref<NSSet> NSSet::setWithObjects(const std::vector<id>& objects) {
  return std::make_shared<NSSet>(objects);
}

Class NSSet::classObject() {
  static const Class kClass = ClassBuilder<NSSet>("NSSet", NSObject::classObject())
                                  .method<&NSSet::count>("count")
                                  .method("copy", immutableCopyImplementation())
                                  .conformsTo("NSCopying")
                                  .registered();
  return kClass;
}

Class NSSet::isa() const {
  return classObject();
}

bool NSSet::containsObject(const id& object) const {
  return object && objects_.contains(object);
}

Ref<NSArray> NSSet::allObjects() const {
  return NSArray::arrayWithObjects(std::vector<id>(objects_.begin(), objects_.end()));
}

bool NSSet::isEqual(const NSObject* other) const {
  const auto* set = dynamic_cast<const NSSet*>(other);
  return set && count() == set->count() && std::ranges::all_of(objects_, [set](const id& object) {
           return set->containsObject(object);
         });
}

std::string NSSet::description() const {
  std::multiset<std::string> members;
  for (const id& object : objects_)
    members.insert(object->description());
  std::string text = "{(";
  for (const std::string& member : members) {
    if (text.size() > 2) text += ", ";
    text += member;
  }
  return text + ")}";
}

}  // namespace rvf
