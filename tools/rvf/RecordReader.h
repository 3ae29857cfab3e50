// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <nlohmann/json.hpp>
#include <stdexcept>

#include "Platform/Values/NSDictionary.h"

namespace rvf::tool {

/// Why what was read is no record; for people.
class RecordError final : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// A JSON object as a dictionary for predicates: null becomes `NSNull`. Throws a `RecordError` for
/// JSON of another kind, and for one that nests deeper than 100 levels.
Ref<NSDictionary> recordOf(const nlohmann::ordered_json& json);

}  // namespace rvf::tool
