// SPDX-License-Identifier: Apache-2.0
#include "tests/Platform/Network/AvahiDaemon/ScriptedDaemon.h"

#include <poll.h>
#include <sys/socket.h>

#include <algorithm>

namespace rvf {
namespace {

constexpr const char* kDaemon = ":1.2";
constexpr const char* kClient = ":1.7";
constexpr int kRunning = 2;
constexpr std::string_view kPrepare = "Prepare";

RunLoopModes commonModes() {
  return {std::string(NSRunLoopCommonModes)};
}

DescriptorEvents readable() {
  DescriptorEvents events;
  events.readable = true;
  return events;
}

}  // namespace

ScriptedDaemon::ScriptedDaemon() {
  listening_ = NSRunLoop::currentRunLoop()->watchDescriptor(
      socket_.descriptor(), readable(), commonModes(), [this](DescriptorEvents) { accept(); });
}

void ScriptedDaemon::accept() {
  const int descriptor = ::accept4(socket_.descriptor(), nullptr, nullptr, SOCK_CLOEXEC);
  sd_bus* bus = nullptr;
  check(sd_bus_new(&bus));
  bus_.reset(bus);
  sd_id128_t busId{};
  check(sd_id128_randomize(&busId));
  check(sd_bus_set_fd(bus, descriptor, descriptor));
  check(sd_bus_set_server(bus, 1, busId));
  check(sd_bus_set_anonymous(bus, 1));
  check(sd_bus_start(bus));
  serving_ = NSRunLoop::currentRunLoop()->watchDescriptor(descriptor, readable(), commonModes(),
                                                          [this](DescriptorEvents) { serve(); });
  serve();  // what the client has written already was read at the start
}

void ScriptedDaemon::serve() {
  for (;;) {
    sd_bus_message* message = nullptr;
    const int result = sd_bus_process(bus_.get(), &message);
    if (message && sd_bus_message_is_method_call(message, nullptr, nullptr) > 0) answer(message);
    sd_bus_message_unref(message);
    if (result < 0) return;  // the client has gone
    // While it lets the client in, it has something to write without having got a message.
    if (result == 0 && (sd_bus_get_events(bus_.get()) & POLLOUT) == 0) return;
  }
}

void ScriptedDaemon::answer(sd_bus_message* call) {
  const std::string member = sd_bus_message_get_member(call);
  if (member.ends_with(kPrepare)) return makeBrowser(call, member);
  if (member == "Start") browserAt(sd_bus_message_get_path(call))->isStarted = true;
  if (member == "Free") browserAt(sd_bus_message_get_path(call))->isFreed = true;
  sd_bus_message* reply = nullptr;
  check(sd_bus_message_new_method_return(call, &reply));
  if (member == "Hello") check(sd_bus_message_append(reply, "s", kClient));
  if (member == "GetNameOwner") check(sd_bus_message_append(reply, "s", kDaemon));
  if (member == "GetState") check(sd_bus_message_append(reply, "i", kRunning));
  send(reply);
}

void ScriptedDaemon::makeBrowser(sd_bus_message* call, const std::string& member) {
  Browser browser;
  browser.path = "/browser/" + std::to_string(browsers_.size());
  browser.interface = "org.freedesktop.Avahi." + member.substr(0, member.size() - kPrepare.size());
  int interfaceIndex = 0;
  int protocol = 0;
  const char* first = nullptr;
  const char* second = nullptr;
  if (member == "ServiceBrowserPrepare") {
    check(sd_bus_message_read(call, "iiss", &interfaceIndex, &protocol, &first, &second));
    browser.domain = second;
  }
  browsers_.push_back(browser);
  sd_bus_message* reply = nullptr;
  check(sd_bus_message_new_method_return(call, &reply));
  check(sd_bus_message_append(reply, "o", browser.path.c_str()));
  send(reply);
}

void ScriptedDaemon::send(sd_bus_message* message) {
  check(sd_bus_message_set_sender(message, kDaemon));
  check(sd_bus_send(bus_.get(), message, nullptr));
  check(sd_bus_flush(bus_.get()));
  sd_bus_message_unref(message);
}

ScriptedDaemon::Browser* ScriptedDaemon::browserAt(const std::string& path) {
  const auto found = std::ranges::find(browsers_, path, &Browser::path);
  if (found == browsers_.end()) throw std::runtime_error("no browser at " + path);
  return &*found;
}

const ScriptedDaemon::Browser* ScriptedDaemon::servicesIn(const std::string& domain) const {
  const auto found = std::ranges::find(browsers_, domain, &Browser::domain);
  return found == browsers_.end() ? nullptr : &*found;
}

const ScriptedDaemon::Browser* ScriptedDaemon::domains() const {
  const auto found =
      std::ranges::find(browsers_, "org.freedesktop.Avahi.DomainBrowser", &Browser::interface);
  return found == browsers_.end() ? nullptr : &*found;
}

}  // namespace rvf
