// SPDX-License-Identifier: Apache-2.0
#include "tests/network/TwoHosts.h"

namespace rvf::network {

TwoHosts::TwoHosts(Backend ofHere, Backend ofThere) : TwoHosts() {
  if (ofHere == Backend::daemon) here.launchDaemon();
  if (ofThere == Backend::daemon) there.launchDaemon();
  if (ofHere == Backend::daemon) here.awaitDaemon();
  if (ofThere == Backend::daemon) there.awaitDaemon();
}

void PairTest::awaitArrival(Probe& publisher, const std::string& name) {
  publisher.publish(name, name, kType, 4799);
  seeker_.waitFor({{"event", "found"}, {"name", name}});
}

std::string nameOfPair(const testing::TestParamInfo<BackendPair>& info) {
  return nameOf(info.param.publisher) + "To" + nameOf(info.param.seeker);
}

std::string nameOfBackend(const testing::TestParamInfo<Backend>& info) {
  return nameOf(info.param);
}

testing::internal::ParamGenerator<BackendPair> everyPair() {
  return testing::Values(BackendPair{Backend::embedded, Backend::embedded},
                         BackendPair{Backend::embedded, Backend::daemon},
                         BackendPair{Backend::daemon, Backend::embedded},
                         BackendPair{Backend::daemon, Backend::daemon});
}

testing::internal::ParamGenerator<Backend> everyBackend() {
  return testing::Values(Backend::embedded, Backend::daemon);
}

}  // namespace rvf::network
