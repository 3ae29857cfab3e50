// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <mutex>
#include <utility>
#include <vector>

#include "Platform/RunLoop/ItemModes.h"

namespace rvf {

/// The blocks posted to one loop. Any thread adds; the loop's thread takes over what was added in
/// one swap and hands the blocks out in order, skipping those of other modes, which keep their
/// place.
///
/// Blocks leave one at a time, immediately before they are called. So whatever a block does
/// (throw, run the loop again) leaves the others where a later or inner run finds them.
class PostQueue final {
 public:
  using Block = std::function<void()>;

  // Any thread

  /// Adds a block and calls `wake`, still under the lock, if the loop may be waiting. A closed
  /// queue drops the block.
  template <class Wake>
  void add(Block&& block, ItemModes&& modes, const Wake& wake) {
    const std::lock_guard lock(mutex_);
    if (closed_) return;
    incoming_.emplace_back(std::move(block), std::move(modes));
    wakeIfWaiting(wake);
  }

  /// Calls `wake` under the lock unless the queue is closed.
  template <class Wake>
  void wakeUnlessClosed(const Wake& wake) {
    const std::lock_guard lock(mutex_);
    if (!closed_) wake();
  }

  // The loop's thread

  /// Takes over what was added. Additions from now on do not wake the loop.
  void takeIncoming();
  /// From now on additions wake the loop. False if there were some already.
  bool prepareToWait();
  bool hasBlock(const RunningMode& mode) const;
  /// The position after the last block taken over: where a batch that starts now ends.
  std::uint64_t end() const { return firstFresh_ + fresh_.size(); }
  /// Takes out and calls the first block of this mode in [from, end), and moves `from` behind it.
  /// False if there is none.
  bool callNext(const RunningMode& mode, std::uint64_t& from, std::uint64_t end) {
    if (!skipped_.empty() && callSkipped(mode, from, end)) return true;
    while (nextFresh_ < fresh_.size() && firstFresh_ + nextFresh_ < end) {
      Item& item = fresh_[nextFresh_++];
      from = firstFresh_ + nextFresh_;
      if (item.modes.match(mode)) {
        const Block block = std::move(item.block);  // the list may change while it runs
        block();
        return true;
      }
      skip(from - 1, std::move(item));
    }
    return false;
  }
  /// Refuses additions from now on and drops every block.
  void close();

 private:
  struct Item {
    Item(Block&& itsBlock, ItemModes&& itsModes) noexcept
        : block(std::move(itsBlock)), modes(std::move(itsModes)) {}
    Block block;
    ItemModes modes;
  };

  template <class Wake>
  void wakeIfWaiting(const Wake& wake) {
    if (!waiting_) return;
    waiting_ = false;
    wake();
  }
  bool callSkipped(const RunningMode& mode, std::uint64_t& from, std::uint64_t end);
  void skip(std::uint64_t position, Item&& item);

  std::mutex mutex_;
  std::vector<Item> incoming_;  // guarded by mutex_
  bool waiting_ = true;         // guarded by mutex_; also true while nobody runs the loop
  bool closed_ = false;         // guarded by mutex_

  std::map<std::uint64_t, Item> skipped_;  // by position; all before fresh_
  std::vector<Item> fresh_;                // from nextFresh_ on
  std::size_t nextFresh_ = 0;
  std::uint64_t firstFresh_ = 0;  // position of fresh_[0]
};

}  // namespace rvf
