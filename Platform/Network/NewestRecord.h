// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <algorithm>
#include <utility>
#include <vector>

#include "Platform/Network/ServiceDiscoveryBackend.h"

namespace rvf {

/// Which of the records that a name shows at a time is the latest, where it should have one only:
/// for a second after a record was replaced, caches hold the old one beside the new one (RFC 6762,
/// 10.2), and links may tell them in any order.
///
/// Avahi tells what its cache knows newest first. What it tells after that is newer still.
template <class Value>
class NewestRecord final {
 public:
  void add(Value value, ServiceLink link) {
    const auto place = isCacheExhausted_ ? sightings_.begin() : sightings_.end();
    sightings_.insert(place, {std::move(value), link});
  }

  void remove(const Value& value, ServiceLink link) {
    const auto gone = std::ranges::find(sightings_, std::pair(value, link));
    if (gone != sightings_.end()) sightings_.erase(gone);
  }

  /// The cache has told all it knew when the question was put.
  void cacheExhausted() noexcept { isCacheExhausted_ = true; }

  /// Null if there is none. Lives until the next change.
  const Value* newest() const noexcept {
    return sightings_.empty() ? nullptr : &sightings_.front().first;
  }

 private:
  std::vector<std::pair<Value, ServiceLink>> sightings_;  ///< the newest first
  bool isCacheExhausted_ = false;
};

}  // namespace rvf
