// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <functional>

#include "Platform/Export.h"
#include "Platform/RunLoop/NSOperation.h"

namespace rvf {

/// An operation whose work is a block.
///
/// Thread: as `NSOperation`; the block runs on the thread that starts it. Lifetime: owns the block
/// until it is called.
class RVF_EXPORT NSBlockOperation final : public NSOperation {
 public:
  using Block = std::function<void()>;

  explicit NSBlockOperation(Block block);

  /// A new operation, kept alive at least until the current release scope ends.
  static Ref<NSBlockOperation> blockOperationWithBlock(Block block);

  static Class classObject();
  Class isa() const override;

  /// Calls the block, and lets go of it afterwards.
  void main() override;

 private:
  Block block_;
};

}  // namespace rvf
