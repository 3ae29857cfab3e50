// SPDX-License-Identifier: Apache-2.0
#include "tests/network/NetworkHost.h"

#include <unistd.h>

#include <chrono>
#include <csignal>
#include <cstdlib>
#include <fstream>
#include <functional>
#include <sstream>
#include <stdexcept>
#include <thread>

namespace rvf::network {
namespace {

using std::chrono::steady_clock;

constexpr std::chrono::seconds kPatience{20};
constexpr std::chrono::milliseconds kPollInterval{10};

constexpr const char* kBusConfiguration = R"(<busconfig>
  <listen>unix:path=%SOCKET%</listen>
  <auth>EXTERNAL</auth>
  <policy context="default">
    <allow user="*"/><allow own="*"/>
    <allow send_destination="*" eavesdrop="true"/><allow eavesdrop="true"/>
  </policy>
</busconfig>
)";

void waitUntil(const std::string& what, const std::function<bool()>& condition) {
  for (const auto deadline = steady_clock::now() + kPatience; !condition();) {
    if (steady_clock::now() > deadline) throw std::runtime_error("in vain waited for " + what);
    std::this_thread::sleep_for(kPollInterval);
  }
}

std::string contents(const std::filesystem::path& path) {
  std::ifstream file(path);
  std::ostringstream text;
  text << file.rdbuf();
  return text.str();
}

void requirePrivilege() {
  if (::geteuid() == 0) return;
  throw std::runtime_error("the network tests make network namespaces, which takes root");
}

std::filesystem::path makeFolder() {
  std::string pattern = std::filesystem::temp_directory_path() / "rvf-network-XXXXXX";
  if (!::mkdtemp(pattern.data())) throw std::runtime_error("no temporary folder can be made");
  std::filesystem::permissions(pattern, std::filesystem::perms(0755));  // the daemon is no root
  return pattern;
}

}  // namespace

NetworkHost::NetworkHost(const std::string& label) {
  requirePrivilege();
  folder_ = makeFolder();
  name_ = folder_.filename().string() + "-" + label;  // unlike every other's on this machine
  run({"ip", "netns", "add", name_});
  // Addresses are usable at once: nobody else is on these links.
  run(inside({"sh", "-c", "echo 0 >/proc/sys/net/ipv6/conf/default/accept_dad"}));
  run({"ip", "-n", name_, "link", "set", "lo", "up"});
}

NetworkHost::~NetworkHost() {
  daemon_.reset();
  bus_.reset();
  try {
    run({"ip", "netns", "del", name_});
    std::filesystem::remove_all(folder_);
  } catch (const std::exception& error) {
    std::fprintf(stderr, "%s\n", error.what());
  }
}

Arguments NetworkHost::inside(const Arguments& program) const {
  Arguments arguments{"ip", "netns", "exec", name_};
  arguments.insert(arguments.end(), program.begin(), program.end());
  return arguments;
}

/// Never the bus of the machine that the test runs on.
Environment NetworkHost::environment() const {
  return {{"DBUS_SYSTEM_BUS_ADDRESS", "unix:path=" + file("bus.socket").string()}};
}

void NetworkHost::connect(NetworkHost& other, int subnet) {
  const std::string link = linkName(subnet);
  run({"ip", "link", "add", link, "netns", name_, "type", "veth", "peer", "name", link, "netns",
       other.name_});
  configureLink(subnet, 1);
  other.configureLink(subnet, 2);
}

void NetworkHost::addAddress(const std::string& link, const std::string& address) {
  run({"ip", "-n", name_, "addr", "add", address, "dev", link});
}

void NetworkHost::removeAddress(const std::string& link, const std::string& address) {
  run({"ip", "-n", name_, "addr", "del", address, "dev", link});
}

void NetworkHost::configureLink(int subnet, int side) {
  const std::string address =
      "10.99." + std::to_string(subnet) + "." + std::to_string(side) + "/24";
  addAddress(linkName(subnet), address);
  setLink(linkName(subnet), true);
}

void NetworkHost::setLink(const std::string& name, bool isUp) {
  run({"ip", "-n", name_, "link", "set", name, isUp ? "up" : "down"});
}

int NetworkHost::interfaceIndex(const std::string& link) const {
  return std::stoi(run(inside({"cat", "/sys/class/net/" + link + "/ifindex"})));
}

void NetworkHost::startBus() {
  const std::string socket = file("bus.socket").string();
  std::string configuration = kBusConfiguration;
  configuration.replace(configuration.find("%SOCKET%"), 8, socket);
  std::ofstream(file("bus.conf")) << configuration;
  std::filesystem::remove(socket);
  bus_ = std::make_unique<Process>(inside(
      {"dbus-daemon", "--config-file=" + file("bus.conf").string(), "--nofork", "--nopidfile"}));
  waitUntil("the bus of " + name_, [&] { return std::filesystem::exists(socket); });
}

void NetworkHost::startDaemon() {
  launchDaemon();
  awaitDaemon();
}

void NetworkHost::launchDaemon() {
  if (!bus_) startBus();
  std::ofstream(file("avahi.conf")) << "[server]\nhost-name=" << name_
                                    << "\nuse-iff-running=yes\nbrowse-domains=" << browseDomain_
                                    << "\n[wide-area]\nenable-wide-area=no\n";
  const std::string log = file("avahi.log").string();
  std::ofstream(log).flush();
  // A private /run keeps the process files of two daemons apart.
  const std::string script =
      "mount -t tmpfs tmpfs /run && install -d -o avahi -g avahi /run/avahi-daemon && "
      "exec avahi-daemon --no-chroot -f " +
      file("avahi.conf").string() + " 2>>" + log;
  daemon_ = std::make_unique<Process>(inside({"sh", "-c", script}), environment());
}

void NetworkHost::awaitDaemon() {
  waitUntil("the Avahi daemon of " + name_,
            [&] { return daemonLog().find("startup complete") != std::string::npos; });
}

void NetworkHost::endDaemon(int signal) {
  daemon_->kill(signal);
  daemon_->wait();
  daemon_.reset();
}

void NetworkHost::endBus(int signal) {
  bus_->kill(signal);
  bus_->wait();
  bus_.reset();
  if (daemon_) endDaemon(SIGKILL);  // it would end by itself, but not always at once
}

std::string NetworkHost::daemonLog() const {
  return contents(file("avahi.log"));
}

}  // namespace rvf::network
