// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "Platform/Network/ServiceDiscoveryBackend.h"

namespace rvf {

/// An activity whose events a test fires.
template <class Events, class Wanted, class Base>
class ScriptedActivity final : public Base {
 public:
  using List = std::vector<ScriptedActivity*>;

  ScriptedActivity(Wanted wanted, Events events, List& running)
      : wanted_(std::move(wanted)), events_(std::move(events)), running_(running) {
    running_.push_back(this);
  }
  ~ScriptedActivity() override { std::erase(running_, this); }

  const Wanted& wanted() const { return wanted_; }

  /// Reports an event, which may destroy the activity.
  template <class... Parameters, class... Arguments>
  void fire(std::function<void(Parameters...)> Events::*event, Arguments&&... arguments) {
    const auto report = events_.*event;
    report(std::forward<Arguments>(arguments)...);
  }

 protected:
  Wanted wanted_;
  Events events_;

 private:
  List& running_;
};

struct BrowseWanted {
  std::string type;
  std::string domain;
};

/// A publication that writes its TXT record down.
class ScriptedPublishBase : public PublishActivity {
 public:
  void updateTXTRecord(std::vector<std::byte> record) override { updated = std::move(record); }
  std::vector<std::byte> updated;
};

using ScriptedBrowse = ScriptedActivity<BrowseEvents, BrowseWanted, DiscoveryActivity>;
using ScriptedTXTWatch = ScriptedActivity<TXTRecordEvents, ServiceIdentity, DiscoveryActivity>;
using ScriptedResolve = ScriptedActivity<ResolveEvents, ServiceIdentity, DiscoveryActivity>;
using ScriptedPublication = ScriptedActivity<PublishEvents, Publication, ScriptedPublishBase>;

/// Installs a back end of which nothing happens but what the test fires, for as long as it lives.
class Script {
 public:
  Script();
  ~Script();
  Script(const Script&) = delete;
  Script& operator=(const Script&) = delete;

  // Under way, in the order started
  std::vector<ScriptedBrowse*> browses;
  std::vector<ScriptedTXTWatch*> txtWatches;
  std::vector<ScriptedResolve*> resolutions;
  std::vector<ScriptedPublication*> publications;
  std::string defaultName = "Front desk";
  int backendsAlive = 0;
};

/// Turns this thread's run loop until nothing is left to do.
void settleRunLoop();

}  // namespace rvf
