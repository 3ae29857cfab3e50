// SPDX-License-Identifier: Apache-2.0
#include "tests/network/NotificationSession.h"

#include <filesystem>
#include <iterator>
#include <utility>

#include "Platform/RunLoop/NSRunLoop.h"
#include "Platform/Runtime/ClassBuilder.h"
#include "Platform/Runtime/NSObject.h"
#include "RVFoundation/ServerDiscovery/RVFRemoteNotificationCenter.h"

namespace rvf::network {
namespace {

constexpr double kPublicationSeconds = 10;

const Ref<RVFRemoteNotificationCenter>& center() {
  return RVFRemoteNotificationCenter::defaultCenter();
}

}  // namespace

/// Writes what it is sent.
class NotificationListener final : public NSObject {
 public:
  explicit NotificationListener(std::function<void()> write) : write_(std::move(write)) {}

  static Class classObject() {
    static const Class kClass =
        ClassBuilder<NotificationListener>("NotificationListener", NSObject::classObject())
            .method<&NotificationListener::hear>("hear")
            .registered();
    return kClass;
  }
  Class isa() const override { return classObject(); }

  void hear() { write_(); }

 private:
  std::function<void()> write_;
};

NotificationSession::NotificationSession(Writer write) : write_(std::move(write)) {}
NotificationSession::~NotificationSession() = default;

void NotificationSession::observe(const std::string& name) {
  auto& listener = listeners_[name];
  listener = std::make_shared<NotificationListener>([this, name] {
    write_({{"event", "delivered"}, {"name", name}});
  });
  center()->addObserver(listener, SEL("hear"), name);
}

void NotificationSession::endObserving(const std::string& name) {
  center()->removeObserver(listeners_[name]);
}

void NotificationSession::post(const std::string& name, int count, bool again) {
  write_({{"event", "posting"}, {"name", name}});
  for (int i = 0; i < count; ++i)
    center()->postNotificationName(name);
  write_({{"event", "posted"}, {"name", name}});
  if (!again) return;
  NSRunLoop::currentRunLoop()->performAfterDelay(
      kPublicationSeconds, {std::string(NSDefaultRunLoopMode)}, [this, name] {
        center()->postNotificationName(name);
        write_({{"event", "postedAgain"}, {"name", name}});
      });
}

void NotificationSession::countDescriptors() {
  const std::filesystem::directory_iterator all("/proc/self/fd");
  write_({{"event", "descriptors"}, {"count", std::distance(begin(all), end(all))}});
}

}  // namespace rvf::network
