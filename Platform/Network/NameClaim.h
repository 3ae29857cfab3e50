// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <chrono>
#include <memory>
#include <string>

#include "Platform/Export.h"
#include "Platform/Network/ServiceDiscoveryBackend.h"

namespace rvf {

/// The right of one publication to a name within this process, over all threads; given back on
/// destruction.
///
/// A responder accepts a second registration that is identical to the first, and both would then
/// go when one is withdrawn. So this process keeps its own list, in which any second one of the
/// same name, type and domain conflicts. Names compare without regard to ASCII case, as in DNS;
/// an empty domain is "local.". Thread-safe.
class RVF_EXPORT NameClaim final {
 public:
  using Clock = std::chrono::steady_clock;
  /// How long a withdrawn name rests: other hosts hear of the withdrawal a second late, and do
  /// not notice a name that comes back sooner.
  static constexpr std::chrono::milliseconds kRest{2500};

  enum class Names {
    given,   ///< asked for by name: only one that is published now is refused
    chosen,  ///< chosen for the caller: one withdrawn less than `kRest` ago is refused, too
  };

  /// Absent if the name is taken.
  [[nodiscard]] static std::unique_ptr<NameClaim> take(const ServiceIdentity& identity, Names names,
                                                       Clock::time_point now = Clock::now());
  ~NameClaim();
  NameClaim(const NameClaim&) = delete;
  NameClaim& operator=(const NameClaim&) = delete;

 private:
  explicit NameClaim(std::string key);
  std::string key_;
};

}  // namespace rvf
