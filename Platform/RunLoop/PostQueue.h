// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <span>
#include <utility>
#include <vector>

#include "Platform/RunLoop/ItemModes.h"
#include "Platform/RunLoop/SpinLock.h"

namespace rvf {

/// The blocks posted to one loop. Any thread adds; the loop's thread takes over what was added in
/// one swap and calls the blocks in order, skipping those of other modes, which keep their place.
///
/// A block is called where it lies, which saves moving it. It may throw, or run the loop again:
/// the others stay where a later or inner run finds them.
class PostQueue final {
 public:
  using Block = std::function<void()>;

  // Any thread

  /// Adds a block in the common modes. Answers whether the loop may be waiting, so that the caller
  /// wakes it. A closed queue drops the block.
  [[nodiscard]] bool add(Block&& block) {
    const std::lock_guard lock(lock_);
    if (closed_) return false;
    incoming_.blocks.push_back(std::move(block));
    return std::exchange(waiting_, false);
  }

  /// The same for other modes.
  [[nodiscard]] bool add(Block&& block, ItemModes&& modes) {
    const std::lock_guard lock(lock_);
    if (closed_) return false;
    incoming_.modes.emplace_back(incoming_.blocks.size(), std::move(modes));
    incoming_.blocks.push_back(std::move(block));
    return std::exchange(waiting_, false);
  }

  // The loop's thread

  /// Takes over what was added. Additions from now on do not wake the loop.
  void takeIncoming();
  /// From now on additions wake the loop. False if there were some already.
  bool prepareToWait();
  bool hasBlock(const RunningMode& mode) const;

  /// Calls the blocks of this mode that were taken over before this call, until `isStopped()`;
  /// after each, `afterEach()`. Answers whether there was one.
  template <class IsStopped, class AfterEach>
  bool callAll(const RunningMode& mode, const IsStopped& isStopped, const AfterEach& afterEach) {
    const std::uint64_t end = end_;
    bool called = callSkipped(mode, isStopped, afterEach);
    while (!taken_.empty() && taken_.front()->first < end && !isStopped()) {
      const std::shared_ptr<Batch> batch = taken_.front();  // inner runs may be done with it first
      called |= callBatch(*batch, mode, isStopped, afterEach);
      recycle(batch);
    }
    return called;
  }

  /// Refuses additions from now on and drops every block.
  void close();

 private:
  struct Batch {
    std::vector<Block> blocks;
    std::vector<std::pair<std::size_t, ItemModes>> modes;  // by index, where not the common ones
    std::size_t next = 0;                                  // block to call
    std::size_t nextModes = 0;                             // of that block or a later one
    std::uint64_t first = 0;                               // position of the first block
  };

  struct Skipped {
    Block block;
    ItemModes modes;
  };

  /// Drops a block when its call ends, also by an exception.
  struct Running {
    ~Running() { block = nullptr; }
    Block& block;
  };

  template <class IsStopped, class AfterEach>
  bool callSkipped(const RunningMode& mode, const IsStopped& isStopped,
                   const AfterEach& afterEach) {
    if (skipped_.empty()) return false;
    bool called = false;
    const std::uint64_t end = taken_.empty() ? end_ : taken_.front()->first;
    std::uint64_t from = 0;
    while (!isStopped()) {
      const std::optional<Block> block = takeSkipped(mode, from, end);
      if (!block) break;
      called = true;
      (*block)();
      afterEach();
    }
    return called;
  }

  template <class IsStopped, class AfterEach>
  bool callBatch(Batch& batch, const RunningMode& mode, const IsStopped& isStopped,
                 const AfterEach& afterEach) {
    bool called = false;
    const std::span<Block> blocks = batch.blocks;
    const bool mayNotMatch = !mode.isCommon || !batch.modes.empty();
    while (batch.next < blocks.size() && !isStopped()) {
      const std::size_t index = batch.next++;
      if (mayNotMatch && skip(batch, index, mode)) continue;
      const Running running{blocks[index]};
      called = true;
      running.block();
      afterEach();
    }
    return called;
  }

  std::optional<Block> takeSkipped(const RunningMode& mode, std::uint64_t& from, std::uint64_t end);
  bool skip(Batch& batch, std::size_t index, const RunningMode& mode);
  void recycle(const std::shared_ptr<Batch>& batch);

  SpinLock lock_;
  Batch incoming_;       // guarded by lock_
  bool waiting_ = true;  // guarded by lock_; also true while nobody runs the loop
  bool closed_ = false;  // guarded by lock_

  std::map<std::uint64_t, Skipped> skipped_;  // by position; all before those of taken_
  std::deque<std::shared_ptr<Batch>> taken_;  // oldest first; a block that runs stays in place
  std::shared_ptr<Batch> spare_;              // keeps the memory of a batch that is done
  std::uint64_t end_ = 0;                     // position after the last block taken over
};

}  // namespace rvf
