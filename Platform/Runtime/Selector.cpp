// SPDX-License-Identifier: Apache-2.0
#include "Platform/Runtime/Selector.h"

#include <algorithm>
#include <mutex>
#include <unordered_set>

#include "Platform/Runtime/RuntimeName.h"

namespace rvf {
namespace {

struct NameHash {
  using is_transparent = void;
  std::size_t operator()(std::string_view name) const noexcept {
    return std::hash<std::string_view>()(name);
  }
};

struct SelectorTable {
  std::mutex mutex;
  std::unordered_set<std::string, NameHash, std::equal_to<>> names;  // node-based: addresses stay
};

SelectorTable& selectorTable() {
  // Never destroyed: selectors are compared until the last static destructor has run.
  static SelectorTable& table = *new SelectorTable;
  return table;
}

const std::string* internedName(std::string_view name) {
  SelectorTable& table = selectorTable();
  const std::lock_guard lock(table.mutex);
  const auto found = table.names.find(name);
  return found == table.names.end() ? &*table.names.emplace(name).first : &*found;
}

}  // namespace

SEL::SEL(std::string_view name) : name_(internedName(runtimeName(name))) {}

SEL SEL::known(std::string_view name) {
  SelectorTable& table = selectorTable();
  const std::lock_guard lock(table.mutex);
  const auto found = table.names.find(runtimeName(name));
  SEL selector;
  if (found != table.names.end()) selector.name_ = &*found;
  return selector;
}

std::size_t SEL::argumentCount() const noexcept {
  return static_cast<std::size_t>(std::ranges::count(name(), ':'));
}

SEL sel_registerName(std::string_view name) {
  return SEL(name);
}

std::string_view sel_getName(SEL selector) noexcept {
  return selector.name();
}

SEL NSSelectorFromString(const std::optional<std::string>& name) {
  return name ? SEL(*name) : SEL();
}

std::string NSStringFromSelector(SEL selector) {
  return std::string(selector.name());
}

}  // namespace rvf
