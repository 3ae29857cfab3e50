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

std::optional<PostQueue::Block> PostQueue::takeSkipped(const RunningMode& mode, std::uint64_t& from,
                                                       std::uint64_t end) {
  for (auto entry = skipped_.lower_bound(from); entry != skipped_.end() && entry->first < end;
       ++entry) {
    if (!entry->second.modes.match(mode)) continue;
    from = entry->first + 1;
    Block block = std::move(entry->second.block);
    skipped_.erase(entry);
    return block;
  }
  return std::nullopt;
}

std::optional<PostQueue::Block> PostQueue::take(const RunningMode& mode, std::uint64_t& from,
                                                std::uint64_t end) {
  if (!skipped_.empty()) {
    if (auto block = takeSkipped(mode, from, end)) return block;
  }
  while (nextFresh_ < fresh_.size() && firstFresh_ + nextFresh_ < end) {
    const std::uint64_t position = firstFresh_ + nextFresh_;
    Item& item = fresh_[nextFresh_++];
    from = position + 1;
    if (item.modes.match(mode)) return std::move(item.block);
    skipped_.emplace(position, std::move(item));
  }
  return std::nullopt;
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
