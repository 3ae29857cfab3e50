// SPDX-License-Identifier: Apache-2.0
#include "Platform/Runtime/Selector.h"

#include <algorithm>
#include <mutex>
#include <unordered_set>

namespace rvf {
namespace {

struct SelectorTable {
  std::mutex mutex;
  std::unordered_set<std::string> names;  // node-based: addresses stay
};

SelectorTable& selectorTable() {
  // Never destroyed: selectors are compared until the last static destructor has run.
  static SelectorTable& table = *new SelectorTable;
  return table;
}

std::string_view untilZeroByte(std::string_view text) {
  return text.substr(0, text.find('\0'));
}

}  // namespace

SEL::SEL(std::string_view name) {
  SelectorTable& table = selectorTable();
  const std::lock_guard lock(table.mutex);
  name_ = &*table.names.emplace(untilZeroByte(name)).first;
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
