// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "Platform/Export.h"
#include "Platform/Numbers/NSFormatter.h"

namespace rvf {

/// North American phone numbers: "(604) 555-1234" for "6045551234". Reads nothing back.
///
/// Thread: any; without state. Lifetime: keeps nothing.
class RVF_EXPORT RVFPhoneNumberFormatter : public NSFormatter {
 public:
  static Class classObject();
  Class isa() const override;

  /// Groups a text of 7, 10 or 11 UTF-16 code units, whatever they are; any other text stays as it
  /// is. A character that a group would halve is left out. Empty for absent text.
  static std::string stringFromPhoneNumber(std::optional<std::string_view> text);

  /// Empty for what is no text.
  std::optional<std::string> stringForObjectValue(const id& value) override;
};

}  // namespace rvf
