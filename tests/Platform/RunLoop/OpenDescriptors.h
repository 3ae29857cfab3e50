// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <sys/resource.h>
#include <unistd.h>

#include <cstddef>
#include <filesystem>
#include <iterator>

namespace rvf {

inline std::size_t openDescriptors() {
  const std::filesystem::directory_iterator all("/proc/self/fd");
  return static_cast<std::size_t>(std::distance(begin(all), end(all)));
}

/// Lets this process open so many descriptors more, while it lives.
class DescriptorLimit final {
 public:
  explicit DescriptorLimit(rlim_t more) {
    ::getrlimit(RLIMIT_NOFILE, &before_);
    rlimit limit = before_;
    const int lowestFree = ::dup(STDIN_FILENO);
    ::close(lowestFree);
    limit.rlim_cur = static_cast<rlim_t>(lowestFree) + more;
    ::setrlimit(RLIMIT_NOFILE, &limit);
  }
  ~DescriptorLimit() { ::setrlimit(RLIMIT_NOFILE, &before_); }
  DescriptorLimit(const DescriptorLimit&) = delete;
  DescriptorLimit& operator=(const DescriptorLimit&) = delete;

 private:
  rlimit before_{};
};

}  // namespace rvf
