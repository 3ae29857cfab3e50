// SPDX-License-Identifier: Apache-2.0
#include "Platform/Network/AvahiEmbedded/EmbeddedStack.h"

#include <avahi-common/malloc.h>
#include <avahi-core/log.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <mutex>
#include <random>

#include "Platform/Network/HostName.h"
#include "Platform/Network/ServiceNames.h"

namespace rvf {
namespace {

constexpr double kFirstRetrySeconds = 1;
constexpr double kLastRetrySeconds = 30;
constexpr std::size_t kLongestHostPart = 40;

/// The process-wide log function of the library: it would write to standard error.
void silenceLog() {
  static std::once_flag once;
  std::call_once(once, [] { avahi_set_log_function([](AvahiLogLevel, const char*) {}); });
}

/// "till7-3f09a1c2d45e": who it is, and 48 random bits.
std::string uniqueHostLabel() {
  std::random_device random;
  std::array<char, 16> digits{};
  std::snprintf(digits.data(), digits.size(), "%04x%08x", random() & 0xFFFFU, random());
  return std::string(cutToBytes(hostLabel(), kLongestHostPart)) + "-" + digits.data();
}

AvahiHandle<AvahiServer> makeServer(const AvahiPoll* poll, const std::string& hostLabel,
                                    AvahiServerCallback callback, void* userdata) {
  AvahiServerConfig config;
  avahi_server_config_init(&config);
  config.host_name = avahi_strdup(hostLabel.c_str());
  config.publish_addresses = 0;  // its reverse records would conflict with a daemon's
  config.publish_hinfo = 0;
  config.publish_workstation = 0;
  config.publish_domain = 0;
  config.enable_wide_area = 0;
  config.use_iff_running = 1;  // a link without carrier is no link
  int error = 0;
  AvahiHandle<AvahiServer> server(avahi_server_new(poll, &config, callback, userdata, &error));
  avahi_server_config_free(&config);
  return server;
}

}  // namespace

EmbeddedStack::EmbeddedStack()
    : hostLabel_(uniqueHostLabel()),
      hostName_(hostLabel_ + ".local"),
      poll_(NSRunLoop::currentRunLoop()),
      retrySeconds_(kFirstRetrySeconds),
      clockWatch_(poll_.loop(), [this] { restart(); }),
      addressWatch_(poll_.loop(), [this] {
        if (hostRecords_) hostRecords_->update();
      }) {
  silenceLog();
  start();
}

EmbeddedStack::~EmbeddedStack() {
  end();
}

void EmbeddedStack::add(Client& client) {
  clients_.push_back(&client);
  if (server_) client.attach(*server_);
}

void EmbeddedStack::remove(Client& client) {
  std::erase(clients_, &client);
}

void EmbeddedStack::start() {
  retryTimer_.reset();
  server_ = makeServer(poll_.api(), hostLabel_, &serverStateChanged, this);
  if (!server_) return startLater();
  hostRecords_ = std::make_unique<HostRecords>(*server_, hostName_);
  hostRecords_->update();
  for (Client* const client : clients_)
    client->attach(*server_);
}

void EmbeddedStack::end() {
  if (!server_) return;
  for (Client* const client : clients_)
    client->detach();
  hostRecords_.reset();
  server_.reset();
}

void EmbeddedStack::restart() {
  end();
  start();
}

/// Another program may hold the port, or there may be no network stack yet.
void EmbeddedStack::startLater() {
  retryTimer_ = poll_.loop().scheduleTimer(retrySeconds_, {std::string(NSRunLoopCommonModes)},
                                           [this] { restart(); });
  retrySeconds_ = std::min(2 * retrySeconds_, kLastRetrySeconds);
}

/// Called inside the server, also before `avahi_server_new` returns, so it must not free it here.
void EmbeddedStack::serverStateChanged(AvahiServer*, AvahiServerState state, void* stack) noexcept {
  auto& self = *static_cast<EmbeddedStack*>(stack);
  if (state == AVAHI_SERVER_RUNNING) self.retrySeconds_ = kFirstRetrySeconds;
  if (state == AVAHI_SERVER_FAILURE || state == AVAHI_SERVER_COLLISION) self.startLater();
}

}  // namespace rvf
