// SPDX-License-Identifier: Apache-2.0
#include "Platform/Network/AvahiDaemon/DaemonBrowse.h"

#include <gmock/gmock.h>

#include <chrono>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "Platform/Network/AvahiDaemonBackend.h"
#include "tests/Platform/Network/AvahiDaemon/ScriptedDaemon.h"

namespace rvf {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;

constexpr unsigned kNoFlags = 0;

/// A search in all browsing domains, and what it reported: "+" and "-" are finds and removals.
class DaemonBrowseTest : public testing::Test {
 protected:
  DaemonBrowseTest() {
    BrowseEvents events;
    events.found = [this](const ServiceIdentity& identity, ServiceLink link) {
      note("+", identity, link);
    };
    events.removed = [this](const ServiceIdentity& identity, ServiceLink link) {
      note("-", identity, link);
      onRemoved_();
    };
    search_ = backend_.browse("_till._tcp", "", std::move(events));
    turnUntil([this] { return daemon_.domains() && daemon_.domains()->isStarted; });
  }

  template <class Condition>
  static bool turnUntil(Condition isMet) {
    const auto limit = NSRunLoop::Clock::now() + 10s;
    while (!isMet() && NSRunLoop::Clock::now() < limit)
      NSRunLoop::currentRunLoop()->runMode(NSDefaultRunLoopMode, limit);
    return isMet();
  }
  void addDomain(const std::string& name, int interfaceIndex = 2) {
    daemon_.signal(*daemon_.domains(), "ItemNew", "iisu", interfaceIndex, 0, name.c_str(),
                   kNoFlags);
  }
  void removeDomain(const std::string& name, int interfaceIndex = 2) {
    daemon_.signal(*daemon_.domains(), "ItemRemove", "iisu", interfaceIndex, 0, name.c_str(),
                   kNoFlags);
  }
  /// Adds it and waits until its browser runs.
  void enterDomain(const std::string& name) {
    addDomain(name);
    ASSERT_TRUE(turnUntil([&] {
      const auto* const services = daemon_.servicesIn(name);
      return services && services->isStarted;
    })) << name;
  }
  void report(const char* member, const std::string& domain, const char* name) {
    daemon_.signal(*daemon_.servicesIn(domain), member, "iisssu", 2, 0, name, "_till._tcp",
                   domain.c_str(), kNoFlags);
  }
  /// Signals arrive in the order sent: once the one of this has, all before it have.
  void settle() {
    daemon_.signal(*daemon_.servicesIn("local"), "ItemNew", "iisssu", 9, 0, "settled", "_till._tcp",
                   "local", kNoFlags);
    turnUntil([this] { return !log_.empty() && log_.back() == "+settled.local. 9"; });
    log_.pop_back();
  }
  std::size_t browserCount() const { return daemon_.browsers().size(); }

  std::vector<std::string> log_;
  std::function<void()> onRemoved_ = [] {};
  ScriptedDaemon daemon_;
  AvahiDaemonBackend backend_;
  std::unique_ptr<DiscoveryActivity> search_;

 private:
  void note(const char* sign, const ServiceIdentity& identity, ServiceLink link) {
    log_.push_back(sign + identity.name + "." + identity.domain + " " +
                   std::to_string(link.interfaceIndex));
  }
};

TEST_F(DaemonBrowseTest, SearchesTheLocalDomainAndThoseThatTheDaemonNames) {
  enterDomain("shop.example");
  report("ItemNew", "local", "Till 1");
  report("ItemNew", "shop.example", "Till 2");
  settle();
  EXPECT_THAT(log_, ElementsAre("+Till 1.local. 2", "+Till 2.shop.example. 2"));
}

TEST_F(DaemonBrowseTest, ADomainThatGoesTakesItsServicesAlong) {
  enterDomain("shop.example");
  report("ItemNew", "shop.example", "Till 1");
  report("ItemNew", "shop.example", "Till 2");
  report("ItemRemove", "shop.example", "Till 1");
  settle();
  log_.clear();
  removeDomain("shop.example");
  settle();
  EXPECT_THAT(log_, ElementsAre("-Till 2.shop.example. 2"));
  EXPECT_TRUE(turnUntil([this] { return daemon_.servicesIn("shop.example")->isFreed; }));
}

TEST_F(DaemonBrowseTest, ADomainStaysAsLongAsOneInterfaceNamesIt) {
  enterDomain("shop.example");
  addDomain("shop.example", 3);
  removeDomain("shop.example", 2);
  report("ItemNew", "shop.example", "Till 1");
  settle();
  EXPECT_THAT(log_, ElementsAre("+Till 1.shop.example. 2"));
  removeDomain("shop.example", 3);
  settle();
  EXPECT_THAT(log_, ElementsAre("+Till 1.shop.example. 2", "-Till 1.shop.example. 2"));
}

TEST_F(DaemonBrowseTest, TheLocalDomainIsNeverLeft) {
  addDomain("local");
  report("ItemNew", "local", "Till 1");
  removeDomain("local");
  removeDomain("never.named");
  settle();
  EXPECT_THAT(log_, ElementsAre("+Till 1.local. 2"));
  EXPECT_FALSE(daemon_.servicesIn("local")->isFreed);
}

TEST_F(DaemonBrowseTest, SearchesSixteenDomainsAtMost) {
  const std::size_t before = browserCount();
  for (int i = 1; i <= 15; ++i)
    enterDomain("shop" + std::to_string(i) + ".example");
  addDomain("shop16.example");
  settle();
  EXPECT_EQ(browserCount(), before + 15);  // and the local one
  removeDomain("shop3.example");
  enterDomain("shop17.example");
}

TEST_F(DaemonBrowseTest, MayBeEndedWhileADomainGoes) {
  enterDomain("shop.example");
  report("ItemNew", "shop.example", "Till 1");
  report("ItemNew", "shop.example", "Till 2");
  settle();
  log_.clear();
  onRemoved_ = [this] { search_.reset(); };
  removeDomain("shop.example");
  EXPECT_TRUE(turnUntil([this] { return !log_.empty(); }));
  EXPECT_THAT(log_, ElementsAre("-Till 1.shop.example. 2"));
}

}  // namespace
}  // namespace rvf
