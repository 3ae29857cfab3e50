// SPDX-License-Identifier: Apache-2.0
#include "Platform/Network/AvahiEmbedded/RunLoopPoll.h"

#include <avahi-common/timeval.h>

#include <algorithm>
#include <memory>
#include <string>
#include <utility>

namespace {

const rvf::RunLoopModes& commonModes() {
  static const rvf::RunLoopModes kModes{std::string(rvf::NSRunLoopCommonModes)};
  return kModes;
}

AvahiWatchEvent operator|(AvahiWatchEvent a, AvahiWatchEvent b) {
  return static_cast<AvahiWatchEvent>(static_cast<int>(a) | static_cast<int>(b));
}

AvahiWatchEvent avahiEvents(const rvf::DescriptorEvents& events) {
  auto result = static_cast<AvahiWatchEvent>(0);
  if (events.readable) result = result | AVAHI_WATCH_IN;
  if (events.writable) result = result | AVAHI_WATCH_OUT;
  if (events.hangUp) result = result | AVAHI_WATCH_HUP;
  if (events.error) result = result | AVAHI_WATCH_ERR;
  return result;
}

}  // namespace

// Avahi knows these two by name only; whoever offers the poll interface defines them. Their
// callbacks are the last thing that is done with them, because they may be freed there.

struct AvahiWatch {
  rvf::RunLoopPoll& poll;
  int descriptor;
  AvahiWatchCallback callback;
  void* userdata;
  AvahiWatchEvent happened{};
  std::unique_ptr<rvf::RunLoopSource> source{};

  void start(AvahiWatchEvent wanted) {
    rvf::DescriptorEvents events;
    events.readable = (wanted & AVAHI_WATCH_IN) != 0;
    events.writable = (wanted & AVAHI_WATCH_OUT) != 0;
    // Avahi asserts that what it watches for reading is readable. Reading is also what takes an
    // error off a socket, so errors and hang-ups are passed on as something to read.
    source = poll.loop().watchDescriptor(
        descriptor, events, commonModes(), [this, events](rvf::DescriptorEvents found) {
          found.readable = found.readable || (events.readable && (found.error || found.hangUp));
          happened = avahiEvents(found);
          callback(this, descriptor, happened, userdata);
        });
  }
};

struct AvahiTimeout {
  rvf::RunLoopPoll& poll;
  AvahiTimeoutCallback callback;
  void* userdata;
  std::unique_ptr<rvf::RunLoopSource> source{};

  void start(const timeval* when) {
    source.reset();
    if (!when) return;
    constexpr double kMicrosecondsPerSecond = 1e6;
    const double delay = -static_cast<double>(avahi_age(when)) / kMicrosecondsPerSecond;
    source = poll.loop().scheduleTimer(std::max(delay, 0.0), commonModes(),
                                       [this] { callback(this, userdata); });
  }
};

namespace rvf {
namespace {

RunLoopPoll& pollOf(const AvahiPoll* api) noexcept {
  return *static_cast<RunLoopPoll*>(api->userdata);
}

// Called from C, which cannot be unwound: out of memory, or a system that lets no more descriptors
// be watched, ends the process here.

AvahiWatch* watchNew(const AvahiPoll* api, int descriptor, AvahiWatchEvent wanted,
                     AvahiWatchCallback callback, void* userdata) noexcept {
  auto watch =
      std::make_unique<AvahiWatch>(AvahiWatch{pollOf(api), descriptor, callback, userdata});
  watch->start(wanted);
  return watch.release();
}

void watchUpdate(AvahiWatch* watch, AvahiWatchEvent wanted) noexcept {
  watch->start(wanted);
}

AvahiWatchEvent watchGetEvents(AvahiWatch* watch) noexcept {
  return watch->happened;
}

void watchFree(AvahiWatch* watch) noexcept {
  delete watch;
}

AvahiTimeout* timeoutNew(const AvahiPoll* api, const timeval* when, AvahiTimeoutCallback callback,
                         void* userdata) noexcept {
  auto timeout = std::make_unique<AvahiTimeout>(AvahiTimeout{pollOf(api), callback, userdata});
  timeout->start(when);
  return timeout.release();
}

void timeoutUpdate(AvahiTimeout* timeout, const timeval* when) noexcept {
  timeout->start(when);
}

void timeoutFree(AvahiTimeout* timeout) noexcept {
  delete timeout;
}

}  // namespace

RunLoopPoll::RunLoopPoll(Ref<NSRunLoop> loop)
    : loop_(std::move(loop)), api_{this,      watchNew,   watchUpdate,   watchGetEvents,
                                   watchFree, timeoutNew, timeoutUpdate, timeoutFree} {}

}  // namespace rvf
