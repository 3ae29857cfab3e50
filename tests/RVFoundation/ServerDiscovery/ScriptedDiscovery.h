// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "Platform/Network/ServiceDiscovery.h"

namespace rvf {

/// What the scripted back end was asked for, and how to answer it. Shared with the back end, so a
/// test can look at it at any time.
struct DiscoveryScript {
  template <class Events>
  struct Request {
    ServiceIdentity identity;
    Events events;
    bool isActive = true;
  };
  std::vector<std::shared_ptr<Request<BrowseEvents>>> browses;
  std::vector<std::shared_ptr<Request<TXTRecordEvents>>> watches;
  std::vector<std::shared_ptr<Request<ResolveEvents>>> resolutions;

  struct PublishRequest {
    Publication publication;
    PublishEvents events;
    bool isActive = true;
  };
  std::vector<std::shared_ptr<PublishRequest>> publications;
  std::string defaultName = "host";

  /// How often TXT watching was started for a name, and how often it is under way.
  int watchesStarted(const std::string& name) const { return count(name, false); }
  int watchesActive(const std::string& name) const { return count(name, true); }

 private:
  int count(const std::string& name, bool activeOnly) const {
    int result = 0;
    for (const auto& watch : watches) {
      if (watch->identity.name == name && (watch->isActive || !activeOnly)) ++result;
    }
    return result;
  }
};

/// Installs a back end that answers nothing by itself for as long as it lives.
class ScriptedDiscovery final {
 public:
  ScriptedDiscovery() : script_(std::make_shared<DiscoveryScript>()) {
    ServiceDiscovery::setFactory([script = script_] { return std::make_unique<Backend>(script); });
  }
  ~ScriptedDiscovery() { ServiceDiscovery::setFactory(nullptr); }
  ScriptedDiscovery(const ScriptedDiscovery&) = delete;
  ScriptedDiscovery& operator=(const ScriptedDiscovery&) = delete;

  DiscoveryScript* operator->() const { return script_.get(); }

 private:
  template <class Request>
  class Activity final : public DiscoveryActivity {
   public:
    explicit Activity(std::shared_ptr<Request> request) : request_(std::move(request)) {}
    ~Activity() override { request_->isActive = false; }

   private:
    std::shared_ptr<Request> request_;
  };

  class PublicationActivity final : public PublishActivity {
   public:
    explicit PublicationActivity(std::shared_ptr<DiscoveryScript::PublishRequest> request)
        : request_(std::move(request)) {}
    ~PublicationActivity() override { request_->isActive = false; }
    void updateTXTRecord(std::vector<std::byte> record) override {
      request_->publication.txtRecord = std::move(record);
    }

   private:
    std::shared_ptr<DiscoveryScript::PublishRequest> request_;
  };

  class Backend final : public ServiceDiscoveryBackend {
   public:
    explicit Backend(std::shared_ptr<DiscoveryScript> script) : script_(std::move(script)) {}

    std::unique_ptr<DiscoveryActivity> browse(const std::string& type, const std::string& domain,
                                              BrowseEvents events) override {
      return add(script_->browses, {"", type, domain}, std::move(events));
    }
    std::unique_ptr<DiscoveryActivity> watchTXTRecord(const ServiceIdentity& identity,
                                                      TXTRecordEvents events) override {
      return add(script_->watches, identity, std::move(events));
    }
    std::unique_ptr<DiscoveryActivity> resolve(const ServiceIdentity& identity,
                                               ResolveEvents events) override {
      return add(script_->resolutions, identity, std::move(events));
    }
    std::unique_ptr<PublishActivity> publish(const Publication& publication,
                                             PublishEvents events) override {
      script_->publications.push_back(std::make_shared<DiscoveryScript::PublishRequest>(
          DiscoveryScript::PublishRequest{publication, std::move(events)}));
      return std::make_unique<PublicationActivity>(script_->publications.back());
    }
    std::string defaultServiceName() override { return script_->defaultName; }

   private:
    template <class Request, class Events>
    static std::unique_ptr<DiscoveryActivity> add(std::vector<std::shared_ptr<Request>>& list,
                                                  ServiceIdentity identity, Events events) {
      list.push_back(std::make_shared<Request>(Request{std::move(identity), std::move(events)}));
      return std::make_unique<Activity<Request>>(list.back());
    }

    std::shared_ptr<DiscoveryScript> script_;
  };

  std::shared_ptr<DiscoveryScript> script_;
};

}  // namespace rvf
