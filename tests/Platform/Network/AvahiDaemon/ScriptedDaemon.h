// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <systemd/sd-bus.h>

#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "Platform/RunLoop/NSRunLoop.h"
#include "tests/Platform/Network/LocalBus.h"

namespace rvf {

/// A system bus with an Avahi daemon on it, both played by the test on its own run loop. It makes
/// whatever browser it is asked for, and these see what the test signals.
class ScriptedDaemon final {
 public:
  struct Browser {
    std::string path;
    std::string interface;  ///< "org.freedesktop.Avahi.ServiceBrowser"
    std::string domain;     ///< empty for browsers of domains
    bool isStarted = false;
    bool isFreed = false;
  };

  ScriptedDaemon();
  ScriptedDaemon(const ScriptedDaemon&) = delete;
  ScriptedDaemon& operator=(const ScriptedDaemon&) = delete;

  const std::vector<Browser>& browsers() const noexcept { return browsers_; }
  /// The browser of services in this domain, running or not; null if none was asked for.
  const Browser* servicesIn(const std::string& domain) const;
  const Browser* domains() const;

  /// Sends a signal of a browser, arguments as `sd_bus_message_append` takes them.
  template <class... Arguments>
  void signal(const Browser& browser, const char* member, const char* types,
              Arguments... arguments) {
    sd_bus_message* message = nullptr;
    check(sd_bus_message_new_signal(bus_.get(), &message, browser.path.c_str(),
                                    browser.interface.c_str(), member));
    check(sd_bus_message_append(message, types, arguments...));
    send(message);
  }

 private:
  struct Closer {
    void operator()(sd_bus* bus) const noexcept { sd_bus_close_unref(bus); }
  };

  static void check(int result) {
    if (result < 0) throw std::runtime_error("the scripted bus failed: " + std::to_string(-result));
  }
  void accept();
  void serve();
  void answer(sd_bus_message* call);
  void makeBrowser(sd_bus_message* call, const std::string& member);
  /// Sends it as the daemon, and takes it over.
  void send(sd_bus_message* message);
  Browser* browserAt(const std::string& path);

  SilentBus socket_;
  BusAddress address_{socket_.address()};
  std::unique_ptr<sd_bus, Closer> bus_;
  std::vector<Browser> browsers_;
  std::unique_ptr<RunLoopSource> listening_;
  std::unique_ptr<RunLoopSource> serving_;
};

}  // namespace rvf
