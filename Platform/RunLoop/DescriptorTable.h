// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <uv.h>

#include <deque>
#include <functional>
#include <memory>
#include <string>
#include <unordered_map>
#include <utility>

#include "Platform/RunLoop/ItemModes.h"

namespace rvf {

/// The descriptor watches of one loop. All watches of a descriptor share one poll handle, which
/// asks for what the watches of the running mode want together. Belongs to the loop's thread.
class DescriptorTable final {
 public:
  using Block = std::function<void(DescriptorEvents)>;

  struct Watch {
    int descriptor;
    DescriptorEvents wanted;
    ItemModes modes;
    Block block;
    DescriptorEvents found;  // by the latest poll, not yet delivered
  };

  explicit DescriptorTable(uv_loop_t& loop) : loop_(loop) {}
  DescriptorTable(const DescriptorTable&) = delete;
  DescriptorTable& operator=(const DescriptorTable&) = delete;
  ~DescriptorTable();

  /// Raises `NSInvalidArgumentException` if the descriptor cannot be polled.
  std::shared_ptr<Watch> add(int descriptor, DescriptorEvents wanted, const RunLoopModes& modes,
                             Block block);
  /// From here on the loop does not touch the descriptor for this watch.
  void remove(const std::shared_ptr<Watch>& watch);

  bool hasWatch(const RunningMode& mode) const;
  /// Whether `enable` has something to change.
  bool needsEnabling(const RunningMode& mode) const { return stale_ || enabledMode_ != mode.name; }
  /// Watches what this mode wants, and nothing else, from the next poll on. What the last poll
  /// found is forgotten: the next one finds it again.
  void enable(const RunningMode& mode);
  /// Makes the next `enable` look again, as when a mode has become a common one.
  void invalidate() { stale_ = true; }

  bool hasReady() const { return !ready_.empty(); }
  /// Takes out the next ready watch of this mode with what it is ready for, or null.
  std::pair<std::shared_ptr<Watch>, DescriptorEvents> takeReady(const RunningMode& mode);

  /// Ends every watch. The handles are gone once the loop has turned.
  void close();

 private:
  struct Entry;

  static void onPoll(uv_poll_t* handle, int status, int events) noexcept;
  Entry& entryFor(int descriptor);
  void closeEntry(int descriptor);
  void enableEntry(Entry& entry, const RunningMode& mode);

  uv_loop_t& loop_;
  std::unordered_map<int, Entry*> entries_;  // owned; freed when the handle has closed
  std::deque<std::weak_ptr<Watch>> ready_;
  std::string enabledMode_;
  bool stale_ = false;
};

}  // namespace rvf
