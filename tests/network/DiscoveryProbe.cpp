// SPDX-License-Identifier: Apache-2.0

// A peer for the network tests: reads commands from standard input and writes what its delegates
// are told to standard output, one JSON object a line. Ends with its input.

#include <unistd.h>

#include <array>
#include <cstdio>
#include <iostream>
#include <map>
#include <memory>
#include <string>

#include "Platform/Network/ServiceDiscovery.h"
#include "Platform/RunLoop/NSRunLoop.h"
#include "tests/network/ProbeSession.h"

namespace {

using rvf::network::ProbeSession;

/// Hands complete lines of standard input to the session.
class CommandReader {
 public:
  explicit CommandReader(ProbeSession& session) : session_(session) {
    rvf::DescriptorEvents wanted;
    wanted.readable = true;
    source_ = rvf::NSRunLoop::currentRunLoop()->watchDescriptor(
        STDIN_FILENO, wanted, {std::string(rvf::NSRunLoopCommonModes)},
        [this](rvf::DescriptorEvents) { read(); });
  }

 private:
  void read() {
    std::array<char, 65536> chunk;
    const ssize_t length = ::read(STDIN_FILENO, chunk.data(), chunk.size());
    if (length <= 0) return rvf::NSRunLoop::currentRunLoop()->stop();
    pending_.append(chunk.data(), static_cast<std::size_t>(length));
    for (std::size_t end = 0; (end = pending_.find('\n')) != std::string::npos;) {
      const std::string line = pending_.substr(0, end);
      pending_.erase(0, end + 1);
      session_.perform(nlohmann::json::parse(line));
    }
  }

  ProbeSession& session_;
  std::string pending_;
  std::unique_ptr<rvf::RunLoopSource> source_;
};

int usage() {
  std::cerr << "usage: DiscoveryProbe --backend automatic|daemon|embedded\n";
  return 2;
}

}  // namespace

int main(int argumentCount, char** arguments) {
  const std::map<std::string, rvf::ServiceDiscoveryChoice> choices{
      {"automatic", rvf::ServiceDiscoveryChoice::automatic},
      {"daemon", rvf::ServiceDiscoveryChoice::daemon},
      {"embedded", rvf::ServiceDiscoveryChoice::embedded}};
  if (argumentCount != 3 || std::string(arguments[1]) != "--backend") return usage();
  const auto choice = choices.find(arguments[2]);
  if (choice == choices.end()) return usage();
  rvf::ServiceDiscovery::setChoice(choice->second);
  const auto session = std::make_shared<ProbeSession>();
  const CommandReader reader(*session);
  rvf::NSRunLoop::currentRunLoop()->run();
}
