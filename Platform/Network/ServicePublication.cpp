// SPDX-License-Identifier: Apache-2.0
#include "Platform/Network/ServicePublication.h"

#include <utility>

#include "Platform/Network/ServiceNames.h"

namespace rvf {

ServicePublication::ServicePublication(std::shared_ptr<ServiceDiscoveryBackend> backend,
                                       Publication publication, Events events)
    : backend_(std::move(backend)),
      publication_(std::move(publication)),
      events_(std::move(events)),
      names_(publication_.identity.name.empty() ? NameClaim::Names::chosen
                                                : NameClaim::Names::given) {
  std::string& name = publication_.identity.name;
  if (name.empty()) name = chosenName();
  name = std::string(cutToBytes(name, kLongestServiceName));
  announce();
}

ServicePublication::~ServicePublication() = default;

std::string ServicePublication::chosenName() const {
  const std::string usual = backend_->defaultServiceName();
  return publication_.isUnique ? uniqueServiceName(usual) : usual;
}

void ServicePublication::announce() {
  retryTimer_.reset();
  claim_ = NameClaim::take(publication_.identity, names_);
  while (!claim_) {
    rename();
    claim_ = NameClaim::take(publication_.identity, names_);
  }
  activity_ =
      backend_->publish(publication_, {[this] { established(); }, [this] { collided(); },
                                       [this](NSNetServicesError error) { failed(error); }});
}

void ServicePublication::rename() {
  publication_.identity.name = nextServiceName(publication_.identity.name);
}

void ServicePublication::collided() {
  activity_.reset();
  claim_.reset();
  rename();
  publication_.isUnique = false;  // whoever said so did not know this network
  const auto delay = pacer_.delayAfterCollision(std::chrono::steady_clock::now());
  if (!delay) return failed(NSNetServicesError::collision);
  if (*delay <= 0) return announce();
  retryTimer_ = NSRunLoop::currentRunLoop()->scheduleTimer(
      *delay, {std::string(NSRunLoopCommonModes)}, [this] { announce(); });
}

void ServicePublication::established() {
  if (reportedName_ == publication_.identity.name) return;
  reportedName_ = publication_.identity.name;
  const auto report = events_.established;
  report(reportedName_);
}

void ServicePublication::failed(NSNetServicesError error) {
  activity_.reset();
  claim_.reset();
  const auto report = events_.failed;
  report(error);
}

void ServicePublication::updateTXTRecord(std::vector<std::byte> txtRecord) {
  publication_.txtRecord = txtRecord;
  if (activity_) activity_->updateTXTRecord(std::move(txtRecord));
}

}  // namespace rvf
