// SPDX-License-Identifier: Apache-2.0
#include "Platform/RunLoop/PostQueue.h"

#include <algorithm>

namespace rvf {

void PostQueue::takeIncoming() {
  const std::lock_guard lock(lock_);
  waiting_ = false;
  if (incoming_.blocks.empty()) return;
  if (!spare_) spare_ = std::make_shared<Batch>();
  std::swap(*spare_, incoming_);
  spare_->first = end_;
  end_ += spare_->blocks.size();
  taken_.push_back(std::move(spare_));
}

bool PostQueue::prepareToWait() {
  const std::lock_guard lock(lock_);
  waiting_ = incoming_.blocks.empty();
  return waiting_;
}

bool PostQueue::hasBlock(const RunningMode& mode) const {
  const auto batchHas = [&](const std::shared_ptr<Batch>& batch) {
    const auto own = batch->modes.begin() + static_cast<std::ptrdiff_t>(batch->nextModes);
    const auto ownCount = static_cast<std::size_t>(batch->modes.end() - own);
    const bool hasCommon = batch->blocks.size() - batch->next > ownCount;
    return (mode.isCommon && hasCommon) ||
           std::any_of(own, batch->modes.end(),
                       [&](const auto& entry) { return entry.second.match(mode); });
  };
  return std::any_of(skipped_.begin(), skipped_.end(),
                     [&](const auto& entry) { return entry.second.modes.match(mode); }) ||
         std::any_of(taken_.begin(), taken_.end(), batchHas);
}

std::optional<PostQueue::Block> PostQueue::takeSkipped(const RunningMode& mode, std::uint64_t& from,
                                                       std::uint64_t end) {
  for (auto entry = skipped_.lower_bound(from); entry != skipped_.end() && entry->first < end;
       ++entry) {
    if (!entry->second.modes.match(mode)) continue;
    from = entry->first + 1;
    auto block = std::move(entry->second.block);
    skipped_.erase(entry);
    return block;
  }
  return std::nullopt;
}

/// Sets the block aside if this mode does not run it.
bool PostQueue::skip(Batch& batch, std::size_t index, const RunningMode& mode) {
  const bool hasOwn =
      batch.nextModes < batch.modes.size() && batch.modes[batch.nextModes].first == index;
  ItemModes modes = hasOwn ? std::move(batch.modes[batch.nextModes++].second) : ItemModes();
  if (modes.match(mode)) return false;
  skipped_.emplace(batch.first + index, Skipped{std::move(batch.blocks[index]), std::move(modes)});
  return true;
}

void PostQueue::recycle(const std::shared_ptr<Batch>& batch) {
  if (batch->next < batch->blocks.size()) return;
  if (!taken_.empty() && taken_.front() == batch) taken_.pop_front();
  if (batch.use_count() > 1) return;  // an outer run is inside one of its blocks
  batch->blocks.clear();
  batch->modes.clear();
  batch->next = batch->nextModes = 0;
  spare_ = batch;
}

void PostQueue::close() {
  std::vector<Block> incoming;
  {
    const std::lock_guard lock(lock_);
    closed_ = true;
    incoming.swap(incoming_.blocks);
  }
  // A dropped block's destructor may reach this queue again, so it is emptied first.
  const auto skipped = std::exchange(skipped_, {});
  for (const auto& batch : std::exchange(taken_, {})) {
    while (batch->next < batch->blocks.size())
      batch->blocks[batch->next++] = nullptr;
  }
}

}  // namespace rvf
