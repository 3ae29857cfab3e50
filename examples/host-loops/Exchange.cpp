// SPDX-License-Identifier: Apache-2.0
#include "examples/host-loops/Exchange.h"

#include <iostream>
#include <utility>

using namespace rvf;

namespace {

constexpr const char* kType = "_rvfhostloop._tcp.";
constexpr const char* kName = "Till";
constexpr std::uint16_t kPort = 9630;
constexpr double kDelay = 0.05;

}  // namespace

std::shared_ptr<Exchange> Exchange::start(std::function<void()> done) {
  auto exchange = std::make_shared<Exchange>();
  exchange->done_ = std::move(done);

  const auto loop = NSRunLoop::currentRunLoop();
  const std::weak_ptr<Exchange> weak = exchange;
  const auto reportLater = [weak](const char* event) {
    if (const auto target = weak.lock()) target->report(event);
  };
  exchange->timer_ = loop->scheduleTimer(kDelay, {std::string(NSRunLoopCommonModes)},
                                         [reportLater] { reportLater("timer"); });
  exchange->poster_ = std::thread(
      [loop, reportLater] { loop->performBlock([reportLater] { reportLater("post"); }); });

  exchange->published_ = NSNetService::initWithDomain("", kType, kName, kPort);
  exchange->published_->publish();
  exchange->browser_ = NSNetServiceBrowser::browser();
  exchange->browser_->setDelegate(exchange);
  exchange->browser_->searchForServicesOfType(kType, "");
  return exchange;
}

Exchange::~Exchange() {
  browser_->stop();
  published_->stop();
  poster_.join();
}

void Exchange::netServiceBrowserDidFindService(const Ref<NSNetServiceBrowser>& /*browser*/,
                                               const Ref<NSNetService>& service,
                                               bool /*moreComing*/) {
  if (service->name() == kName) report("found");
}

void Exchange::report(const std::string& event) {
  if (awaited_.erase(event) == 0) return;
  std::cout << event << std::endl;
  if (awaited_.empty()) done_();
}
