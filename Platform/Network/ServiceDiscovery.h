// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <functional>
#include <memory>

#include "Platform/Export.h"
#include "Platform/Network/ServiceDiscoveryBackend.h"

namespace rvf {

/// Ways to speak DNS-SD.
enum class ServiceDiscoveryChoice {
  automatic,  ///< the Avahi daemon where one answers on the system bus, else the embedded stack
  daemon,     ///< the Avahi daemon only
  embedded,   ///< a multicast DNS stack inside this process only
};

/// Chooses the back end that `NSNetService` and `NSNetServiceBrowser` use, for the whole process.
///
/// Each thread has a back end of its own while it has discovery operations under way; a choice
/// holds for the back ends made after it, so make it before the first operation.
///
/// Thread: any; back ends belong to the thread that asks. Lifetime: keeps a factory until it is
/// replaced.
class RVF_EXPORT ServiceDiscovery final {
 public:
  ServiceDiscovery() = delete;

  /// `automatic` unless set.
  static ServiceDiscoveryChoice choice();
  static void setChoice(ServiceDiscoveryChoice choice);

  /// Makes back ends in place of the built-in ones. Called on the thread that needs one.
  using Factory = std::function<std::unique_ptr<ServiceDiscoveryBackend>()>;
  /// An empty factory brings the built-in back ends back.
  static void setFactory(Factory factory);

  /// This thread's back end, made if there is none. It ends with its last holder; hold it as long
  /// as an activity of it is under way, and let go of it on this thread.
  static std::shared_ptr<ServiceDiscoveryBackend> backendOfThisThread();

  /// A new built-in back end for this thread, whatever factory is set.
  static std::unique_ptr<ServiceDiscoveryBackend> makeBackend(ServiceDiscoveryChoice choice);
};

}  // namespace rvf
