// SPDX-License-Identifier: Apache-2.0
#include "tests/network/Probe.h"

#include <algorithm>
#include <stdexcept>

namespace rvf::network {
namespace {

Arguments programFor(NetworkHost& host, Backend backend) {
  if (backend == Backend::daemon && !host.hasDaemon()) host.startDaemon();
  return host.inside({RVF_DISCOVERY_PROBE, "--backend", nameOf(backend)});
}

bool hasFields(const Json& event, const Json& fields) {
  return std::all_of(fields.items().begin(), fields.items().end(), [&](const auto& field) {
    return event.contains(field.key()) && event.at(field.key()) == field.value();
  });
}

}  // namespace

std::string nameOf(Backend backend) {
  switch (backend) {
    case Backend::embedded:
      return "embedded";
    case Backend::daemon:
      return "daemon";
    case Backend::automatic:
      return "automatic";
  }
  throw std::invalid_argument("no such back end");
}

std::ostream& operator<<(std::ostream& stream, Backend backend) {
  return stream << nameOf(backend);
}

Probe::Probe(NetworkHost& host, Backend backend)
    : process_(programFor(host, backend), host.environment()) {}

void Probe::browse(const std::string& type, const std::string& domain) {
  send({{"do", "browse"}, {"type", type}, {"domain", domain}});
}

void Probe::stopBrowsing() {
  send({{"do", "stopBrowsing"}});
}

void Probe::publish(const std::string& service, const std::string& name, const std::string& type,
                    int port, const Json& more) {
  Json command{
      {"do", "publish"}, {"service", service}, {"name", name}, {"type", type}, {"port", port}};
  command.update(more);
  send(command);
}

void Probe::setTXT(const std::string& service, const Json& entries) {
  send({{"do", "setTXT"}, {"service", service}, {"txt", entries}});
}

void Probe::resolve(const std::string& service, const std::string& name, const std::string& type,
                    double timeoutSeconds) {
  send({{"do", "resolve"},
        {"service", service},
        {"name", name},
        {"type", type},
        {"timeout", timeoutSeconds}});
}

void Probe::monitor(const std::string& service, const std::string& name, const std::string& type) {
  send({{"do", "monitor"}, {"service", service}, {"name", name}, {"type", type}});
}

void Probe::stop(const std::string& service) {
  send({{"do", "stop"}, {"service", service}});
}

void Probe::observe(const std::string& notification) {
  send({{"do", "observe"}, {"name", notification}});
}

void Probe::endObserving(const std::string& notification) {
  send({{"do", "endObserving"}, {"name", notification}});
}

void Probe::post(const std::string& notification, int count, bool again) {
  send({{"do", "post"}, {"name", notification}, {"count", count}, {"again", again}});
}

int Probe::countDescriptors() {
  send({{"do", "countDescriptors"}});
  return waitFor({{"event", "descriptors"}})["count"];
}

void Probe::holdPort(int port) {
  send({{"do", "holdPort"}, {"port", port}});
}

void Probe::stepClock(int seconds) {
  send({{"do", "stepClock"}, {"seconds", seconds}});
}

Json Probe::waitFor(const Json& fields, std::chrono::milliseconds patience) {
  const auto deadline = std::chrono::steady_clock::now() + patience;
  std::size_t next = 0;
  for (;;) {
    for (; next < untaken_.size(); ++next) {
      if (!hasFields(untaken_[next], fields)) continue;
      const Json event = untaken_[next];
      untaken_.erase(untaken_.begin() + static_cast<std::ptrdiff_t>(next));
      return event;
    }
    const auto line = process_.readLine(deadline);
    if (!line) break;
    untaken_.push_back(Json::parse(*line));
  }
  throw std::runtime_error("no event " + fields.dump() + "; instead " + Json(untaken_).dump() +
                           (process_.isExhausted() ? "; the program has ended" : ""));
}

std::vector<Json> Probe::untaken() {
  const int number = ++syncs_;
  send({{"do", "sync"}, {"number", number}});
  waitFor({{"event", "synced"}, {"number", number}});
  return untaken_;
}

}  // namespace rvf::network
