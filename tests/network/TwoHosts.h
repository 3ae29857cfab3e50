// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <gtest/gtest.h>

#include <string>

#include "tests/network/NetworkHost.h"
#include "tests/network/Probe.h"

namespace rvf::network {

/// Two hosts on one link, "v0", each with its kind of back end.
struct TwoHosts {
  TwoHosts() { here.connect(there, 0); }
  /// Starts the daemons that these back ends need, side by side.
  TwoHosts(Backend ofHere, Backend ofThere);

  NetworkHost here{"a"};
  NetworkHost there{"b"};
};

/// The back ends of the publishing and of the looking side.
struct BackendPair {
  Backend publisher;
  Backend seeker;
};

inline void PrintTo(const BackendPair& pair, std::ostream* stream) {
  *stream << pair.publisher << " and " << pair.seeker;
}

/// A test on two hosts: a probe that publishes on one, a probe that looks on the other.
class PairTest : public testing::TestWithParam<BackendPair> {
 protected:
  static constexpr const char* kType = "_rvf-test._tcp";

  /// Returns when everything that this publisher announced before has arrived on every link: when
  /// the seeker, which browses, has found another publication of this name. Announcements are
  /// put off by up to an eighth of a second, probing takes three quarters.
  void awaitArrival(Probe& publisher, const std::string& name);

  TwoHosts hosts_{GetParam().publisher, GetParam().seeker};
  Probe publisher_{hosts_.here, GetParam().publisher};
  Probe seeker_{hosts_.there, GetParam().seeker};
};

/// "embeddedToDaemon"-like names for the instances.
std::string nameOfPair(const testing::TestParamInfo<BackendPair>& info);
std::string nameOfBackend(const testing::TestParamInfo<Backend>& info);

/// Every pair of back ends that must work together.
testing::internal::ParamGenerator<BackendPair> everyPair();
testing::internal::ParamGenerator<Backend> everyBackend();

}  // namespace rvf::network
