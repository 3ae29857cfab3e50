// SPDX-License-Identifier: Apache-2.0

// What is particular to publications that the machine's daemon holds.

#include <chrono>
#include <csignal>
#include <string>

#include "tests/network/TwoHosts.h"

namespace rvf::network {
namespace {

using std::chrono::steady_clock;

constexpr const char* kType = "_rvf-test._tcp";

std::string nameOfSeeker(const testing::TestParamInfo<Backend>& info) {
  return nameOf(info.param);
}

class DaemonPublications : public testing::TestWithParam<Backend> {
 protected:
  TwoHosts hosts_;
  Probe publisher_{hosts_.here, Backend::daemon};
  Probe seeker_{hosts_.there, GetParam()};
};

INSTANTIATE_TEST_SUITE_P(Seekers, DaemonPublications,
                         testing::Values(Backend::embedded, Backend::daemon), nameOfSeeker);

/// The daemon says goodbye for it; records live two minutes, so nothing else could explain it.
TEST_P(DaemonPublications, GoWithTheirProcessThoughItIsKilled) {
  seeker_.browse(kType);
  publisher_.publish("till", "Till", kType, 4711);
  seeker_.waitFor({{"event", "found"}});
  publisher_.kill(SIGKILL);
  seeker_.waitFor({{"event", "removed"}, {"name", "Till"}});
}

TEST_P(DaemonPublications, FollowTheHostName) {
  publisher_.publish("till", "Till", kType, 4711);
  publisher_.waitFor({{"event", "published"}});
  run(hosts_.here.inside({"dbus-send", "--system", "--print-reply", "--dest=org.freedesktop.Avahi",
                          "/", "org.freedesktop.Avahi.Server.SetHostName", "string:renamed"}),
      hosts_.here.environment());
  const auto deadline = steady_clock::now() + Probe::kPatience;
  std::string host;
  while (host != "renamed.local." && steady_clock::now() < deadline) {
    seeker_.resolve("till", "Till", kType, 15);
    host = seeker_.waitFor({{"event", "resolved"}})["host"];
    seeker_.stop("till");
  }
  EXPECT_EQ(host, "renamed.local.");
}

/// Each of two programs is told of the other's name by the daemon they share.
TEST_P(DaemonPublications, OfTwoProcessesOnOneHostDoNotShareAName) {
  Probe second(hosts_.here, Backend::daemon);
  publisher_.publish("till", "Till", kType, 4711);
  publisher_.waitFor({{"event", "published"}, {"name", "Till"}});
  second.publish("till", "Till", kType, 4712);
  second.waitFor({{"event", "published"}, {"name", "Till (2)"}});
}

}  // namespace
}  // namespace rvf::network
