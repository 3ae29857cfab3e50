// SPDX-License-Identifier: Apache-2.0
#include "Platform/RunLoop/DescriptorTable.h"

#include <poll.h>

#include <algorithm>
#include <iterator>

#include "Platform/Runtime/NSException.h"

namespace rvf {
namespace {

bool any(const DescriptorEvents& events) {
  return events.readable || events.writable || events.hangUp || events.error;
}

/// What to ask for. A peer that only stopped sending is a hang-up to those who read, and would
/// keep those who only write busy for nothing.
int pollEvents(const DescriptorEvents& wanted) {
  const int readable = wanted.readable ? UV_READABLE : 0;
  const int writable = wanted.writable ? UV_WRITABLE : 0;
  return readable | writable | (wanted.readable || !wanted.writable ? UV_DISCONNECT : 0);
}

/// The handle's own report folds errors and hang-ups into other events; the system's does not.
short systemEvents(int descriptor, int asked) {
  pollfd request{descriptor, 0, 0};
  if (asked & UV_READABLE) request.events |= POLLIN;
  if (asked & UV_WRITABLE) request.events |= POLLOUT;
  if (asked & UV_DISCONNECT) request.events |= POLLRDHUP;
  return ::poll(&request, 1, 0) > 0 ? request.revents : short{0};
}

DescriptorEvents eventsForWatch(const DescriptorEvents& wanted, short found) {
  const int asked = pollEvents(wanted);
  DescriptorEvents events;
  events.readable = wanted.readable && (found & POLLIN);
  events.writable = wanted.writable && (found & POLLOUT);
  events.hangUp = (found & POLLHUP) || ((asked & UV_DISCONNECT) && (found & POLLRDHUP));
  events.error = found & (POLLERR | POLLNVAL);
  return events;
}

}  // namespace

struct DescriptorTable::Entry {
  uv_poll_t handle{};
  DescriptorTable* table = nullptr;
  int descriptor = -1;
  int asked = 0;  // events that the handle polls for now
  std::vector<std::shared_ptr<Watch>> watches;
  std::vector<std::weak_ptr<Watch>> enabled;
};

DescriptorTable::~DescriptorTable() = default;

DescriptorTable::Entry& DescriptorTable::entryFor(int descriptor) {
  const auto found = entries_.find(descriptor);
  if (found != entries_.end()) return *found->second;
  auto entry = std::make_unique<Entry>();
  const int status = descriptor < 0 ? UV_EBADF : uv_poll_init(&loop_, &entry->handle, descriptor);
  if (status != 0) {
    NSException::raise(
        NSInvalidArgumentException,
        "descriptor " + std::to_string(descriptor) + " cannot be watched: " + uv_strerror(status));
  }
  entry->handle.data = entry.get();
  entry->table = this;
  entry->descriptor = descriptor;
  return *entries_.emplace(descriptor, entry.release()).first->second;
}

std::shared_ptr<DescriptorTable::Watch> DescriptorTable::add(int descriptor,
                                                             DescriptorEvents wanted,
                                                             const RunLoopModes& modes,
                                                             Block block) {
  auto watch =
      std::make_shared<Watch>(Watch{descriptor, wanted, ItemModes(modes), std::move(block), {}});
  entryFor(descriptor).watches.push_back(watch);
  stale_ = true;
  return watch;
}

void DescriptorTable::remove(const std::shared_ptr<Watch>& watch) {
  const auto found = entries_.find(watch->descriptor);
  if (found == entries_.end()) return;
  Entry& entry = *found->second;
  std::erase(entry.watches, watch);
  watch->found = {};
  stale_ = true;
  if (entry.watches.empty()) closeEntry(watch->descriptor);
}

void DescriptorTable::closeEntry(int descriptor) {
  Entry* const entry = entries_.extract(descriptor).mapped();
  uv_poll_stop(&entry->handle);
  uv_close(reinterpret_cast<uv_handle_t*>(&entry->handle),
           [](uv_handle_t* handle) { delete static_cast<Entry*>(handle->data); });
}

bool DescriptorTable::hasWatch(const RunningMode& mode) const {
  return std::any_of(entries_.begin(), entries_.end(), [&](const auto& entry) {
    const auto& watches = entry.second->watches;
    return std::any_of(watches.begin(), watches.end(),
                       [&](const auto& watch) { return watch->modes.match(mode); });
  });
}

void DescriptorTable::enable(const RunningMode& mode) {
  for (const auto& ready : std::exchange(ready_, {})) {
    if (const auto watch = ready.lock()) watch->found = {};
  }
  if (!needsEnabling(mode)) return;
  for (const auto& [descriptor, entry] : entries_)
    enableEntry(*entry, mode);
  enabledMode_ = mode.name;
  stale_ = false;
}

void DescriptorTable::enableEntry(Entry& entry, const RunningMode& mode) {
  int asked = 0;
  entry.enabled.clear();
  for (const auto& watch : entry.watches) {
    if (!watch->modes.match(mode)) continue;
    asked |= pollEvents(watch->wanted);
    entry.enabled.push_back(watch);
  }
  if (asked == entry.asked) return;
  entry.asked = asked;
  if (asked == 0) {
    uv_poll_stop(&entry.handle);
  } else {
    uv_poll_start(&entry.handle, asked, &onPoll);
  }
}

void DescriptorTable::onPoll(uv_poll_t* handle, int status, int events) noexcept {
  Entry& entry = *static_cast<Entry*>(handle->data);
  const int asked = entry.asked;
  if (status != 0) {  // the handle has stopped itself; the watches go on
    entry.asked = 0;
    entry.table->stale_ = true;
  }
  const bool isPlain = status == 0 && events == UV_READABLE;
  const short found = isPlain ? short{POLLIN} : systemEvents(entry.descriptor, asked);
  for (const auto& enabled : entry.enabled) {
    const auto watch = enabled.lock();
    if (!watch) continue;
    watch->found = eventsForWatch(watch->wanted, found);
    if (any(watch->found)) entry.table->ready_.push_back(watch);
  }
}

std::pair<std::shared_ptr<DescriptorTable::Watch>, DescriptorEvents> DescriptorTable::takeReady(
    const RunningMode& mode) {
  while (!ready_.empty()) {
    auto watch = ready_.front().lock();
    ready_.pop_front();
    if (!watch || !any(watch->found) || !watch->modes.match(mode)) continue;
    return {watch, std::exchange(watch->found, {})};
  }
  return {};
}

void DescriptorTable::close() {
  ready_.clear();
  std::vector<std::shared_ptr<Watch>> dropped;
  while (!entries_.empty()) {
    Entry& entry = *entries_.begin()->second;
    std::move(entry.watches.begin(), entry.watches.end(), std::back_inserter(dropped));
    closeEntry(entry.descriptor);
  }
}

}  // namespace rvf
