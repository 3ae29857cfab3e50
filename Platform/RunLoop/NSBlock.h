// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <functional>
#include <utility>

#include "Platform/Export.h"
#include "Platform/Runtime/NSObject.h"

namespace rvf {

/// A callback without arguments as an object, so that it can travel as the argument of a message.
///
/// Thread: any, as far as the block is; immutable. Lifetime: owns the block.
class RVF_EXPORT NSBlock final : public NSObject {
 public:
  using Block = std::function<void()>;

  explicit NSBlock(Block block) : block_(std::move(block)) {}

  static Class classObject();
  Class isa() const override;

  /// May be called any number of times, by itself or by `invoke`; what it throws comes out.
  const Block& block() const noexcept { return block_; }
  void invoke() const { block_(); }

 private:
  const Block block_;
};

}  // namespace rvf
