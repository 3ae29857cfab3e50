// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <functional>
#include <memory>

#include "Platform/Network/AvahiDaemon/SystemBus.h"
#include "Platform/RunLoop/NSRunLoop.h"

namespace rvf {

/// Asks the system bus once whether an Avahi daemon is there, without starting one. Destroying it
/// gives the question up.
class DaemonProbe final {
 public:
  /// How long a bus may take; longer is no.
  static constexpr double kLimitSeconds = 0.25;

  /// `done` is called once, on a later turn of the run loop; it may destroy the probe.
  explicit DaemonProbe(std::function<void(bool isThere)> done);
  DaemonProbe(const DaemonProbe&) = delete;
  DaemonProbe& operator=(const DaemonProbe&) = delete;
  ~DaemonProbe();

 private:
  void ask();
  void answer(bool isThere);

  std::function<void(bool)> done_;
  std::shared_ptr<SystemBus> bus_;
  std::unique_ptr<RunLoopSource> timer_;
};

}  // namespace rvf
