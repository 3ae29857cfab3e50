// SPDX-License-Identifier: Apache-2.0
#include "Platform/Runtime/AssociatedObjects.h"

#include <map>
#include <mutex>
#include <unordered_map>
#include <utility>

#include "Platform/Runtime/AssociationTable.h"
#include "Platform/Runtime/NSCopying.h"

namespace rvf {
namespace {

using Associations = std::map<const void*, id>;

struct Table {
  std::mutex mutex;
  std::unordered_map<const NSObject*, Associations> objects;
};

/// Never destroyed: objects with associations may outlive every static.
Table& table() {
  static Table& instance = *new Table;
  return instance;
}

}  // namespace

void objc_setAssociatedObject(const Ref<NSObject>& object, const void* key, const id& value,
                              AssociationPolicy policy) {
  if (!object) return;
  id kept = policy == OBJC_ASSOCIATION_COPY ? copyOfObject(value) : value;
  AssociationTable::markAsUsed(*object);
  Table& all = table();
  // The value that is replaced goes when the lock is open again: its destructor may come back here.
  const std::lock_guard lock(all.mutex);
  all.objects[object.get()][key].swap(kept);
}

id objc_getAssociatedObject(const Ref<NSObject>& object, const void* key) {
  if (!object || !AssociationTable::isUsedBy(*object)) return nullptr;
  Table& all = table();
  const std::lock_guard lock(all.mutex);
  const auto associations = all.objects.find(object.get());
  if (associations == all.objects.end()) return nullptr;
  const auto found = associations->second.find(key);
  return found == associations->second.end() ? nullptr : found->second;
}

void AssociationTable::removeAll(const NSObject& object) {
  Associations gone;
  Table& all = table();
  const std::lock_guard lock(all.mutex);
  const auto found = all.objects.find(&object);
  if (found == all.objects.end()) return;
  gone = std::move(found->second);
  all.objects.erase(found);
}

}  // namespace rvf
