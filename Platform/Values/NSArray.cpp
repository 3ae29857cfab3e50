// SPDX-License-Identifier: Apache-2.0
#include "Platform/Values/NSArray.h"

#include <algorithm>
#include <string>
#include <utility>

#include "Platform/Runtime/ClassBuilder.h"
#include "Platform/Runtime/ClassRegistration.h"
#include "Platform/Runtime/NSCopying.h"
#include "Platform/Runtime/NSException.h"
#include "Platform/Values/HashMixing.h"

namespace rvf {
namespace {

const ClassRegistration kRegistration(&NSArray::classObject);

}  // namespace

NSArray::NSArray(std::vector<id> objects) : objects_(std::move(objects)) {
  if (std::ranges::find(objects_, nullptr) != objects_.end()) {
    NSException::raise(NSInvalidArgumentException, "absent object put into an array");
  }
}

Ref<NSArray> NSArray::array() {
  return std::make_shared<NSArray>();
}

Ref<NSArray> NSArray::arrayWithObjects(std::vector<id> objects) {
  return std::make_shared<NSArray>(std::move(objects));
}

Class NSArray::classObject() {
  static const Class kClass = ClassBuilder<NSArray>("NSArray", NSObject::classObject())
                                  .method<&NSArray::count>("count")
                                  .method("copy", immutableCopyImplementation())
                                  .conformsTo("NSCopying")
                                  .registered();
  return kClass;
}

Class NSArray::isa() const {
  return classObject();
}

const id& NSArray::objectAtIndex(std::size_t index) const {
  if (index < objects_.size()) return objects_[index];
  const std::string bounds =
      objects_.empty() ? " beyond bounds for empty array"
                       : " beyond bounds [0 .. " + std::to_string(objects_.size() - 1) + "]";
  NSException::raise(NSRangeException, "index " + std::to_string(index) + bounds);
}

std::size_t NSArray::indexOfObject(const id& object) const {
  const auto found = std::ranges::find_if(
      objects_, [&object](const id& candidate) { return objectsAreEqual(candidate, object); });
  return found == objects_.end() ? NSNotFound : static_cast<std::size_t>(found - objects_.begin());
}

bool NSArray::containsObject(const id& object) const {
  return indexOfObject(object) != NSNotFound;
}

bool NSArray::isEqual(const NSObject* other) const {
  const auto* array = dynamic_cast<const NSArray*>(other);
  return array && std::ranges::equal(objects_, array->objects_, objectsAreEqual);
}

std::size_t NSArray::hash() const {
  std::size_t hash = objects_.size();
  for (const id& object : objects_)
    hash = mixedHash(hash) + object->hash();
  return mixedHash(hash);
}

std::string NSArray::description() const {
  std::string text = "(";
  for (const id& object : objects_) {
    if (text.size() > 1) text += ", ";
    text += object->description();
  }
  return text + ")";
}

}  // namespace rvf
