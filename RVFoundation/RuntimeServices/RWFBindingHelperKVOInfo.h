// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "Platform/Export.h"
#include "Platform/Runtime/NSObject.h"

namespace rvf {

/// An observation of a key path that a `RWFBindingHelperProxy` made.
///
/// Thread: that of the helper's owner. Lifetime: the observer is not kept, and may go.
class RVF_EXPORT RWFBindingHelperKVOInfo final : public NSObject {
 public:
  static Class classObject();
  Class isa() const override;

  /// Not owned; absent once it is gone.
  id observer() const { return observer_.lock(); }
  void setObserver(const id& observer);
  const std::string& keyPath() const noexcept { return keyPath_; }
  void setKeyPath(std::string_view keyPath);

 private:
  std::weak_ptr<NSObject> observer_;
  std::string keyPath_;
};

}  // namespace rvf
