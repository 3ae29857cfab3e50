// SPDX-License-Identifier: Apache-2.0
#include "Platform/Values/NSMutableArray.h"

#include <string>
#include <utility>
#include <vector>

#include "Platform/Runtime/ClassBuilder.h"
#include "Platform/Runtime/ClassRegistration.h"
#include "Platform/Runtime/NSException.h"

namespace rvf {
namespace {

const ClassRegistration kRegistration(&NSMutableArray::classObject);

void requirePresent(const id& object) {
  if (!object) NSException::raise(NSInvalidArgumentException, "absent object put into an array");
}

}  // namespace

Ref<NSMutableArray> NSMutableArray::array() {
  return std::make_shared<NSMutableArray>();
}

Class NSMutableArray::classObject() {
  static const Class kClass = ClassBuilder<NSMutableArray>("NSMutableArray", NSArray::classObject())
                                  .method<&NSMutableArray::copy>("copy")
                                  .registered();
  return kClass;
}

Class NSMutableArray::isa() const {
  return classObject();
}

void NSMutableArray::addObject(id object) {
  requirePresent(object);
  mutableObjects().push_back(std::move(object));
}

void NSMutableArray::insertObject(id object, std::size_t index) {
  requirePresent(object);
  if (index > count()) {
    NSException::raise(
        NSRangeException,
        "index " + std::to_string(index) + " beyond bounds [0 .. " + std::to_string(count()) + "]");
  }
  mutableObjects().insert(mutableObjects().begin() + static_cast<std::ptrdiff_t>(index),
                          std::move(object));
}

void NSMutableArray::replaceObjectAtIndex(std::size_t index, id object) {
  requirePresent(object);
  objectAtIndex(index);
  mutableObjects()[index].swap(object);
}

void NSMutableArray::removeObjectAtIndex(std::size_t index) {
  const id removed = objectAtIndex(index);
  mutableObjects().erase(objects().begin() + static_cast<std::ptrdiff_t>(index));
}

void NSMutableArray::removeObject(const id& object) {
  std::vector<id> kept;
  for (const id& candidate : *this)
    if (!objectsAreEqual(candidate, object)) kept.push_back(candidate);
  if (kept.size() != count()) mutableObjects().swap(kept);
}

void NSMutableArray::removeAllObjects() {
  std::vector<id> removed;
  mutableObjects().swap(removed);
}

}  // namespace rvf
