// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <optional>
#include <string>

#include "Platform/Export.h"
#include "Platform/Numbers/NSFormatter.h"

namespace rvf {

/// Text in upper case, the same in every language: "STRASSE" for "straße". Reads nothing back.
///
/// Thread: any; without state. Lifetime: keeps nothing.
class RVF_EXPORT RVFUppercaseFormatter : public NSFormatter {
 public:
  static Class classObject();
  Class isa() const override;

  /// For every value that answers `uppercaseString`, as texts do; absent for others.
  std::optional<std::string> stringForObjectValue(const id& value) override;
};

}  // namespace rvf
