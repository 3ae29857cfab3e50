// SPDX-License-Identifier: Apache-2.0
#include "Platform/Runtime/ClassRecord.h"

#include <algorithm>
#include <utility>

namespace rvf {

ProtocolRecord::ProtocolRecord(std::string_view name, std::vector<Protocol> extended)
    : name_(name), extended_(std::move(extended)) {}

bool ProtocolRecord::conformsTo(Protocol other) const {
  return this == other || std::ranges::any_of(extended_, [other](Protocol protocol) {
           return protocol && protocol->conformsTo(other);
         });
}

ClassRecord::ClassRecord(Description description) : description_(std::move(description)) {
  publish(description_.methods);
}

const Method* ClassRecord::method(SEL selector) const {
  for (const ClassRecord* record = this; record; record = record->description_.superclass) {
    if (const Method* found = record->ownMethod(selector)) return found;
  }
  return nullptr;
}

std::vector<Method> ClassRecord::methodList() const {
  return methods_.load(std::memory_order_acquire)->list();
}

bool ClassRecord::addMethod(const Method& method) {
  const std::lock_guard lock(mutex_);
  if (ownMethod(method.selector)) return false;
  std::vector<Method> methods = methodList();
  methods.insert(methods.begin(), method);
  publish(std::move(methods));
  return true;
}

void ClassRecord::prependMethods(const std::vector<Method>& methods) {
  const std::lock_guard lock(mutex_);
  std::vector<Method> all = methods;
  std::ranges::copy(methodList(), std::back_inserter(all));
  publish(std::move(all));
}

void ClassRecord::publish(std::vector<Method> methods) {
  tables_.push_back(std::make_unique<const MethodTable>(std::move(methods)));
  methods_.store(tables_.back().get(), std::memory_order_release);
}

}  // namespace rvf
