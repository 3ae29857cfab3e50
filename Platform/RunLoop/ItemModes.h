// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "Platform/RunLoop/NSRunLoop.h"

namespace rvf {

/// The mode that a run call runs, and whether it is one of the loop's common modes.
struct RunningMode {
  std::string_view name;
  bool isCommon;
};

/// The modes of one timer, watch or posted block. The common modes, by far the usual case, take
/// no memory of their own.
class ItemModes final {
 public:
  /// The common modes.
  ItemModes() = default;
  explicit ItemModes(const RunLoopModes& names) {
    if (names.size() != 1 || names.front() != NSRunLoopCommonModes) {
      names_ = std::make_unique<const RunLoopModes>(names);
    }
  }

  bool match(const RunningMode& mode) const {
    if (!names_) return mode.isCommon;
    for (const std::string& name : *names_) {
      if (name == NSRunLoopCommonModes ? mode.isCommon : name == mode.name) return true;
    }
    return false;
  }

 private:
  std::unique_ptr<const RunLoopModes> names_;
};

}  // namespace rvf
