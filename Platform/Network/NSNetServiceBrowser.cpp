// SPDX-License-Identifier: Apache-2.0
#include "Platform/Network/NSNetServiceBrowser.h"

#include <functional>
#include <string>
#include <utility>

#include "Platform/Network/DeliveryQueue.h"
#include "Platform/Network/NSNetServicesError.h"
#include "Platform/Network/ServiceDiscovery.h"
#include "Platform/Network/ServiceNames.h"
#include "Platform/Network/ServiceSightings.h"
#include "Platform/Runtime/ClassBuilder.h"
#include "Platform/Runtime/ClassRegistration.h"

namespace rvf {
namespace {

const ClassRegistration kRegistration(&NSNetServiceBrowser::classObject);

}  // namespace

NSNetServiceBrowserDelegate::~NSNetServiceBrowserDelegate() = default;
void NSNetServiceBrowserDelegate::netServiceBrowserWillSearch(const Ref<NSNetServiceBrowser>&) {}
void NSNetServiceBrowserDelegate::netServiceBrowserDidNotSearch(const Ref<NSNetServiceBrowser>&,
                                                                const Ref<NSDictionary>&) {}
void NSNetServiceBrowserDelegate::netServiceBrowserDidStopSearch(const Ref<NSNetServiceBrowser>&) {}
void NSNetServiceBrowserDelegate::netServiceBrowserDidFindService(const Ref<NSNetServiceBrowser>&,
                                                                  const Ref<NSNetService>&, bool) {}
void NSNetServiceBrowserDelegate::netServiceBrowserDidRemoveService(const Ref<NSNetServiceBrowser>&,
                                                                    const Ref<NSNetService>&,
                                                                    bool) {}

/// The search under way. The back end's events only take notes here; everything that reaches the
/// delegate goes through the queue.
class NSNetServiceBrowser::Core final {
 public:
  explicit Core(NSNetServiceBrowser& owner) : owner_(owner) {}

  std::weak_ptr<NSNetServiceBrowserDelegate> delegate;

  void search(std::string_view type, std::string_view domain);
  void stop();

 private:
  enum Topic { kSearchTopic, kServiceTopic };
  using Report = std::function<void(NSNetServiceBrowserDelegate&, const Ref<NSNetServiceBrowser>&,
                                    bool moreComing)>;

  /// Queues a report; `prepare` is run at its turn, with or without a delegate.
  void deliver(Topic topic, Report report, std::function<void(Core&)> prepare = nullptr);
  void refuse(NSNetServicesError error, std::function<void(Core&)> prepare = nullptr);
  void appeared(const Ref<NSNetService>& service);
  void vanished(const Ref<NSNetService>& service);
  void failed(NSNetServicesError error);
  BrowseEvents events();

  NSNetServiceBrowser& owner_;
  DeliveryQueue queue_;
  bool isSearching_ = false;
  ServiceSightings sightings_;
  std::shared_ptr<ServiceDiscoveryBackend> backend_;
  std::unique_ptr<DiscoveryActivity> activity_;
};

void NSNetServiceBrowser::Core::deliver(Topic topic, Report report,
                                        std::function<void(Core&)> prepare) {
  const std::weak_ptr<NSObject> weakOwner = owner_.weak_from_this();
  queue_.add(topic, [weakOwner, report = std::move(report),
                     prepare = std::move(prepare)](bool moreComing) {
    const auto browser = std::static_pointer_cast<NSNetServiceBrowser>(weakOwner.lock());
    if (!browser) return;
    if (prepare) prepare(*browser->core_);
    if (const auto target = browser->delegate()) report(*target, browser, moreComing);
  });
}

void NSNetServiceBrowser::Core::refuse(NSNetServicesError error,
                                       std::function<void(Core&)> prepare) {
  deliver(
      kSearchTopic,
      [error](auto& target, const auto& browser, bool) {
        target.netServiceBrowserDidNotSearch(browser, failureDictionary(error));
      },
      std::move(prepare));
}

void NSNetServiceBrowser::Core::search(std::string_view type, std::string_view domain) {
  if (isSearching_) return refuse(NSNetServicesError::activityInProgress);
  if (!isServiceType(type)) return refuse(NSNetServicesError::badArgument);
  auto backend = ServiceDiscovery::backendOfThisThread();
  activity_ = backend->browse(withFinalDot(type), withFinalDot(domain), events());
  backend_ = std::move(backend);  // only now, because starting may throw
  isSearching_ = true;
  deliver(kSearchTopic, [](auto& target, const auto& browser, bool) {
    target.netServiceBrowserWillSearch(browser);
  });
}

BrowseEvents NSNetServiceBrowser::Core::events() {
  return {[this](const ServiceIdentity& identity, ServiceLink link) {
            if (const auto service = sightings_.found(identity, link)) appeared(service);
          },
          [this](const ServiceIdentity& identity, ServiceLink link) {
            if (const auto service = sightings_.removed(identity, link)) vanished(service);
          },
          [this] {
            for (const auto& service : sightings_.settled())
              vanished(service);
          },
          [this] { sightings_.interrupted(); },
          [this](NSNetServicesError error) { failed(error); }};
}

void NSNetServiceBrowser::Core::appeared(const Ref<NSNetService>& service) {
  deliver(kServiceTopic, [service](auto& target, const auto& browser, bool moreComing) {
    target.netServiceBrowserDidFindService(browser, service, moreComing);
  });
}

void NSNetServiceBrowser::Core::vanished(const Ref<NSNetService>& service) {
  deliver(kServiceTopic, [service](auto& target, const auto& browser, bool moreComing) {
    target.netServiceBrowserDidRemoveService(browser, service, moreComing);
  });
}

/// The search stays stoppable until its failure was reported.
void NSNetServiceBrowser::Core::failed(NSNetServicesError error) {
  activity_.reset();
  refuse(error, [](Core& core) {
    core.isSearching_ = false;
    core.sightings_ = {};
    core.backend_.reset();
  });
}

void NSNetServiceBrowser::Core::stop() {
  if (!std::exchange(isSearching_, false)) return;
  queue_.dropAll();
  activity_.reset();
  backend_.reset();
  sightings_ = {};
  const auto browser = refTo(&owner_);
  if (const auto target = browser->delegate()) target->netServiceBrowserDidStopSearch(browser);
}

NSNetServiceBrowser::NSNetServiceBrowser(Private) : core_(std::make_shared<Core>(*this)) {}
NSNetServiceBrowser::~NSNetServiceBrowser() = default;

Ref<NSNetServiceBrowser> NSNetServiceBrowser::browser() {
  return std::make_shared<NSNetServiceBrowser>(Private());
}

Class NSNetServiceBrowser::classObject() {
  static const Class kClass =
      ClassBuilder<NSNetServiceBrowser>("NSNetServiceBrowser", NSObject::classObject())
          .method<&NSNetServiceBrowser::searchForServicesOfType>(
              "searchForServicesOfType:inDomain:")
          .method<&NSNetServiceBrowser::stop>("stop")
          .registered();
  return kClass;
}

Class NSNetServiceBrowser::isa() const {
  return classObject();
}

std::shared_ptr<NSNetServiceBrowserDelegate> NSNetServiceBrowser::delegate() const {
  return core_->delegate.lock();
}

void NSNetServiceBrowser::setDelegate(std::weak_ptr<NSNetServiceBrowserDelegate> delegate) {
  core_->delegate = std::move(delegate);
}

void NSNetServiceBrowser::searchForServicesOfType(std::string_view type,
                                                  std::string_view inDomain) {
  core_->search(type, inDomain);
}

void NSNetServiceBrowser::stop() {
  core_->stop();
}

}  // namespace rvf
