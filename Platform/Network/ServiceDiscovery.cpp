// SPDX-License-Identifier: Apache-2.0
#include "Platform/Network/ServiceDiscovery.h"

#include <mutex>
#include <utility>

#include "Platform/Network/AutomaticBackend.h"
#include "Platform/Network/AvahiDaemonBackend.h"
#include "Platform/Network/AvahiEmbeddedBackend.h"

namespace rvf {
namespace {

struct Settings {
  std::mutex mutex;
  ServiceDiscoveryChoice choice = ServiceDiscoveryChoice::automatic;
  ServiceDiscovery::Factory factory;
};

Settings& settings() {
  static auto* const kSettings = new Settings;  // may be asked for while statics are destroyed
  return *kSettings;
}

std::unique_ptr<ServiceDiscoveryBackend> makeChosenBackend() {
  auto& all = settings();
  std::unique_lock lock(all.mutex);
  const auto factory = all.factory;
  const auto choice = all.choice;
  lock.unlock();
  return factory ? factory() : ServiceDiscovery::makeBackend(choice);
}

}  // namespace

ServiceDiscoveryChoice ServiceDiscovery::choice() {
  auto& all = settings();
  const std::lock_guard lock(all.mutex);
  return all.choice;
}

void ServiceDiscovery::setChoice(ServiceDiscoveryChoice choice) {
  auto& all = settings();
  const std::lock_guard lock(all.mutex);
  all.choice = choice;
}

void ServiceDiscovery::setFactory(Factory factory) {
  auto& all = settings();
  const std::lock_guard lock(all.mutex);
  all.factory.swap(factory);
}

std::shared_ptr<ServiceDiscoveryBackend> ServiceDiscovery::backendOfThisThread() {
  static thread_local std::weak_ptr<ServiceDiscoveryBackend> current;
  auto backend = current.lock();
  if (!backend) {
    backend = makeChosenBackend();
    current = backend;
  }
  return backend;
}

std::unique_ptr<ServiceDiscoveryBackend> ServiceDiscovery::makeBackend(
    ServiceDiscoveryChoice choice) {
  switch (choice) {
    case ServiceDiscoveryChoice::automatic:
      return std::make_unique<AutomaticBackend>(
          [] { return makeBackend(ServiceDiscoveryChoice::daemon); },
          [] { return makeBackend(ServiceDiscoveryChoice::embedded); });
    case ServiceDiscoveryChoice::daemon:
      return std::make_unique<AvahiDaemonBackend>();
    case ServiceDiscoveryChoice::embedded:
      break;
  }
  return std::make_unique<AvahiEmbeddedBackend>();
}

}  // namespace rvf
