// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "Platform/Runtime/NSObject.h"

namespace rvf {

/// What a key of an object depends on.
struct AffectingKeys {
  std::vector<std::string> keys;      ///< the key itself first
  std::vector<std::string> keyPaths;  ///< of several keys each
};

/// Asks the object what its key depends on, what that depends on, and so on.
AffectingKeys affectingKeysOf(NSObject& object, std::string_view key);

}  // namespace rvf
