// SPDX-License-Identifier: Apache-2.0
#include "Platform/Runtime/ClassRecord.h"

#include <algorithm>

#include "Platform/Runtime/ClassChanges.h"

namespace rvf {
namespace {

constinit std::atomic<std::uint64_t> classChanges = 0;

void countClassChange() noexcept {
  classChanges.fetch_add(1, std::memory_order_release);
}

}  // namespace

std::uint64_t classChangeCount() noexcept {
  return classChanges.load(std::memory_order_acquire);
}

bool ProtocolRecord::conformsTo(Protocol other) const {
  return this == other || std::ranges::any_of(extended_, [other](Protocol protocol) {
           return protocol->conformsTo(other);
         });
}

ClassRecord::ClassRecord(Description description)
    : description_(std::move(description)),
      methods_(description_.methods),
      properties_(description_.properties) {}

const Method* ClassRecord::method(SEL selector) const noexcept {
  for (const ClassRecord* record = this; record; record = record->description_.superclass) {
    if (const Method* found = record->ownMethod(selector)) return found;
  }
  return nullptr;
}

bool ClassRecord::addMethod(const Method& method) {
  const std::lock_guard lock(mutex_);
  if (ownMethod(method.selector)) return false;
  methods_.prepend({method});
  countClassChange();
  return true;
}

bool ClassRecord::addProperty(const Property& property) {
  const std::lock_guard lock(mutex_);
  std::vector<Property> all = properties();
  if (std::ranges::find(all, property.name, &Property::name) != all.end()) return false;
  all.push_back(property);
  properties_.publish(std::move(all));
  countClassChange();
  return true;
}

void ClassRecord::prependMethods(const std::vector<Method>& methods) {
  const std::lock_guard lock(mutex_);
  methods_.prepend(methods);
  countClassChange();
}

std::vector<Method> ClassRecord::methods() const {
  const std::lock_guard lock(mutex_);
  return methods_.list();
}

}  // namespace rvf
