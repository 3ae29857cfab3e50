// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <utility>

namespace rvf {

/// Does what is due when a scope is left, however it is left:
///
///     const ScopeExit cleared([this] { completion_ = nullptr; });
///     completion(error);  // may throw
///
/// The action must not throw.
///
/// Thread: the one that made it, on its stack. Lifetime: the scope; owns the action.
template <class Action>
class ScopeExit final {
 public:
  explicit ScopeExit(Action action) : action_(std::move(action)) {}
  ~ScopeExit() { action_(); }
  ScopeExit(const ScopeExit&) = delete;
  ScopeExit& operator=(const ScopeExit&) = delete;

 private:
  Action action_;
};

}  // namespace rvf
