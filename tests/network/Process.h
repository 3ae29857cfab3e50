// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <sys/types.h>

#include <chrono>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace rvf::network {

using Arguments = std::vector<std::string>;
using Environment = std::map<std::string, std::string>;
using Deadline = std::chrono::steady_clock::time_point;

/// A running program with its input and output in our hands. It is ended, by its process id, with
/// its owner, and by the kernel should the test die first.
class Process {
 public:
  /// The environment is added to ours. Throws if the program cannot be started.
  explicit Process(const Arguments& arguments, const Environment& environment = {});
  ~Process();
  Process(const Process&) = delete;
  Process& operator=(const Process&) = delete;

  void writeLine(std::string_view line);
  /// The next line of output; absent when the time is up or the output has ended.
  std::optional<std::string> readLine(Deadline deadline);
  /// The next line that holds every piece; throws, with what was read instead, when the time is up
  /// or the output has ended.
  std::string lineWith(const std::vector<std::string>& pieces, Deadline deadline);
  /// Whether the output has ended and was read to the end.
  bool isExhausted() const { return isExhausted_ && buffer_.empty(); }

  void kill(int signal);
  /// Waits for the end. The exit status, or 128 plus the signal.
  int wait();

 private:
  std::optional<std::string> takeLine();
  void terminate();

  pid_t pid_ = -1;
  int input_ = -1;
  int output_ = -1;
  std::string buffer_;
  bool isExhausted_ = false;
};

/// Runs a program to its end and answers what it wrote; throws if it fails.
std::string run(const Arguments& arguments, const Environment& environment = {});

}  // namespace rvf::network
