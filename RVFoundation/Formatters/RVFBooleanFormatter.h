// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <optional>
#include <string>

#include "Platform/Export.h"
#include "Platform/Numbers/NSFormatter.h"

namespace rvf {

/// Truth values as "true" or "false" in the user's language. Reads nothing back.
///
/// Thread: any; without state. Lifetime: keeps nothing.
class RVF_EXPORT RVFBooleanFormatter : public NSFormatter {
 public:
  static Class classObject();
  Class isa() const override;

  /// For every value that answers `boolValue`, as numbers and texts do; absent for others.
  std::optional<std::string> stringForObjectValue(const id& value) override;
};

/// "true" or "false", in no language: for files and protocols.
RVF_EXPORT std::string RVFStringFromBool(bool value);

}  // namespace rvf
