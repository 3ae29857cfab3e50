// SPDX-License-Identifier: Apache-2.0
#include "Platform/Network/AutomaticBackend.h"

#include <gtest/gtest.h>

#include <chrono>
#include <string>
#include <vector>

#include "Platform/RunLoop/NSRunLoop.h"
#include "tests/Platform/Network/LocalBus.h"

namespace rvf {
namespace {

using namespace std::chrono_literals;

class EndedFlag final : public PublishActivity {
 public:
  explicit EndedFlag(std::vector<std::string>& log) : log_(log) {}
  ~EndedFlag() override { log_.emplace_back("end"); }
  void updateTXTRecord(std::vector<std::byte> record) override {
    log_.push_back("update " + std::to_string(record.size()));
  }

 private:
  std::vector<std::string>& log_;
};

/// Writes down what it is asked for.
class LoggingBackend final : public ServiceDiscoveryBackend {
 public:
  LoggingBackend(std::string name, std::vector<std::string>& log)
      : name_(std::move(name)), log_(log) {}

  std::unique_ptr<DiscoveryActivity> browse(const std::string& type, const std::string& domain,
                                            BrowseEvents) override {
    return logged("browse " + type + " " + domain);
  }
  std::unique_ptr<DiscoveryActivity> watchTXTRecord(const ServiceIdentity& identity,
                                                    TXTRecordEvents) override {
    return logged("watch " + identity.name);
  }
  std::unique_ptr<DiscoveryActivity> resolve(const ServiceIdentity& identity,
                                             ResolveEvents) override {
    return logged("resolve " + identity.name);
  }
  std::unique_ptr<PublishActivity> publish(const Publication& publication, PublishEvents) override {
    return logged("publish " + publication.identity.name + " " +
                  std::to_string(publication.txtRecord.size()));
  }
  std::string defaultServiceName() override { return name_; }

 private:
  std::unique_ptr<PublishActivity> logged(const std::string& what) {
    log_.push_back(name_ + " " + what);
    return std::make_unique<EndedFlag>(log_);
  }

  std::string name_;
  std::vector<std::string>& log_;
};

class AutomaticBackendTest : public testing::Test {
 protected:
  void turnUntil(std::size_t entries) {
    const auto limit = NSRunLoop::Clock::now() + 10s;
    while (log.size() < entries && NSRunLoop::Clock::now() < limit) {
      NSRunLoop::currentRunLoop()->runMode(NSDefaultRunLoopMode, limit);
    }
  }

  std::vector<std::string> log;
  AutomaticBackend backend{[this] { return std::make_unique<LoggingBackend>("daemon", log); },
                           [this] { return std::make_unique<LoggingBackend>("embedded", log); }};
};

TEST_F(AutomaticBackendTest, TakesTheStackWhereThereIsNoBus) {
  const BusAddress address("unix:path=/nonexistent/bus");
  const auto search = backend.browse("_x._tcp.", "local.", {});
  EXPECT_TRUE(log.empty());
  turnUntil(1);
  EXPECT_EQ(log, std::vector<std::string>{"embedded browse _x._tcp. local."});
}

TEST_F(AutomaticBackendTest, TakesTheStackWhereTheBusIsSilent) {
  const SilentBus bus;
  const BusAddress address(bus.address());
  const auto start = NSRunLoop::Clock::now();
  const auto search = backend.resolve({"Till", "_x._tcp.", "local."}, {});
  turnUntil(1);
  EXPECT_EQ(log, std::vector<std::string>{"embedded resolve Till"});
  EXPECT_GE(NSRunLoop::Clock::now() - start, 250ms);
}

TEST_F(AutomaticBackendTest, TakesTheStackWhereTheAddressIsNone) {
  const BusAddress address("nonsense");
  const auto watch = backend.watchTXTRecord({"Till", "_x._tcp.", "local."}, {});
  turnUntil(1);
  EXPECT_EQ(log, std::vector<std::string>{"embedded watch Till"});
}

TEST_F(AutomaticBackendTest, StartsWhatWaitedInOrder) {
  const BusAddress address("unix:path=/nonexistent/bus");
  const auto first = backend.browse("_x._tcp.", "", {});
  const auto second = backend.resolve({"Till", "_x._tcp.", "local."}, {});
  turnUntil(2);
  EXPECT_EQ(log, (std::vector<std::string>{"embedded browse _x._tcp. ", "embedded resolve Till"}));
}

TEST_F(AutomaticBackendTest, NeverStartsWhatEndedWhileWaiting) {
  const BusAddress address("unix:path=/nonexistent/bus");
  auto ended = backend.browse("_x._tcp.", "", {});
  const auto kept = backend.browse("_y._tcp.", "", {});
  ended.reset();
  turnUntil(1);
  EXPECT_EQ(log, std::vector<std::string>{"embedded browse _y._tcp. "});
}

TEST_F(AutomaticBackendTest, PublishesTheLatestTXTRecord) {
  const BusAddress address("unix:path=/nonexistent/bus");
  Publication publication;
  publication.identity.name = "Till";
  const auto activity = backend.publish(publication, {});
  activity->updateTXTRecord(std::vector<std::byte>(5));
  turnUntil(1);
  activity->updateTXTRecord(std::vector<std::byte>(7));
  EXPECT_EQ(log, (std::vector<std::string>{"embedded publish Till 5", "update 7"}));
}

TEST_F(AutomaticBackendTest, EndsWhatItStarted) {
  const BusAddress address("unix:path=/nonexistent/bus");
  auto search = backend.browse("_x._tcp.", "", {});
  turnUntil(1);
  search.reset();
  EXPECT_EQ(log.back(), "end");
}

}  // namespace
}  // namespace rvf
