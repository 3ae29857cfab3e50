// SPDX-License-Identifier: Apache-2.0
#include "tests/Platform/Network/ScriptedBackend.h"

#include "Platform/Network/ServiceDiscovery.h"
#include "Platform/RunLoop/NSRunLoop.h"

namespace rvf {
namespace {

class ScriptedBackend final : public ServiceDiscoveryBackend {
 public:
  explicit ScriptedBackend(Script& script) : script_(script) { ++script_.backendsAlive; }
  ~ScriptedBackend() override { --script_.backendsAlive; }

  std::unique_ptr<DiscoveryActivity> browse(const std::string& type, const std::string& domain,
                                            BrowseEvents events) override {
    return std::make_unique<ScriptedBrowse>(BrowseWanted{type, domain}, std::move(events),
                                            script_.browses);
  }
  std::unique_ptr<DiscoveryActivity> watchTXTRecord(const ServiceIdentity& identity,
                                                    TXTRecordEvents events) override {
    return std::make_unique<ScriptedTXTWatch>(identity, std::move(events), script_.txtWatches);
  }
  std::unique_ptr<DiscoveryActivity> resolve(const ServiceIdentity& identity,
                                             ResolveEvents events) override {
    return std::make_unique<ScriptedResolve>(identity, std::move(events), script_.resolutions);
  }
  std::unique_ptr<PublishActivity> publish(const Publication& publication,
                                           PublishEvents events) override {
    return std::make_unique<ScriptedPublication>(publication, std::move(events),
                                                 script_.publications);
  }
  std::string defaultServiceName() override { return script_.defaultName; }

 private:
  Script& script_;
};

}  // namespace

Script::Script() {
  ServiceDiscovery::setFactory([this] { return std::make_unique<ScriptedBackend>(*this); });
}

Script::~Script() {
  ServiceDiscovery::setFactory(nullptr);
}

void settleRunLoop() {
  while (NSRunLoop::currentRunLoop()->turn()) {
  }
}

}  // namespace rvf
