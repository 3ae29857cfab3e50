// SPDX-License-Identifier: Apache-2.0
#include "Platform/RunLoop/PostQueue.h"

#include <algorithm>
#include <iterator>

namespace rvf {

void PostQueue::takeIncoming() {
  if (nextFresh_ == fresh_.size()) {
    firstFresh_ += fresh_.size();
    fresh_.clear();
    nextFresh_ = 0;
  }
  const std::lock_guard lock(mutex_);
  waiting_ = false;
  if (fresh_.empty()) {
    fresh_.swap(incoming_);
  } else {
    std::move(incoming_.begin(), incoming_.end(), std::back_inserter(fresh_));
    incoming_.clear();
  }
}

bool PostQueue::prepareToWait() {
  const std::lock_guard lock(mutex_);
  waiting_ = incoming_.empty();
  return waiting_;
}

bool PostQueue::hasBlock(const RunningMode& mode) const {
  const auto matches = [&](const Item& item) { return item.modes.match(mode); };
  const auto next = fresh_.begin() + static_cast<std::ptrdiff_t>(nextFresh_);
  return std::any_of(skipped_.begin(), skipped_.end(),
                     [&](const auto& entry) { return matches(entry.second); }) ||
         std::any_of(next, fresh_.end(), matches);
}

bool PostQueue::callSkipped(const RunningMode& mode, std::uint64_t& from, std::uint64_t end) {
  for (auto entry = skipped_.lower_bound(from); entry != skipped_.end() && entry->first < end;
       ++entry) {
    if (!entry->second.modes.match(mode)) continue;
    from = entry->first + 1;
    const Block block = std::move(entry->second.block);
    skipped_.erase(entry);
    block();
    return true;
  }
  return false;
}

void PostQueue::skip(std::uint64_t position, Item&& item) {
  skipped_.emplace(position, std::move(item));
}

void PostQueue::close() {
  std::vector<Item> incoming;
  {
    const std::lock_guard lock(mutex_);
    closed_ = true;
    incoming.swap(incoming_);
  }
  // A dropped block's destructor may reach this queue again, so nothing is destroyed in place.
  const auto skipped = std::exchange(skipped_, {});
  const auto fresh = std::exchange(fresh_, {});
  nextFresh_ = 0;
}

}  // namespace rvf
