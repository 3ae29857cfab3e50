// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <concepts>
#include <cstdint>
#include <optional>
#include <string>

#include "Platform/Export.h"
#include "Platform/Numbers/NSFormatter.h"

namespace rvf {

/// Numbers of bytes in units of 1024, up to GB: "1.5 KB" for 1536. The decimal point is "." in
/// every language. Reads nothing back.
///
/// Thread: any, while no setting changes. Lifetime: keeps nothing.
class RVF_EXPORT RVFByteSizeFormatter : public NSFormatter {
 public:
  static Class classObject();
  Class isa() const override;

  /// With the texts of the receiving class's bundle, a subclass's if one is named.
  template <std::derived_from<RVFByteSizeFormatter> Receiver = RVFByteSizeFormatter>
  static std::string stringFromByteCount(std::uint64_t count, bool includeUnits) {
    return stringFromByteCountForClass(Receiver::classObject(), count, includeUnits);
  }

  /// Whether the unit is written behind the number; not so by default.
  bool includeUnits() const noexcept { return includeUnits_; }
  void setIncludeUnits(bool includeUnits);

  /// A number counts by its unsigned 64-bit reading; absent for anything else.
  std::optional<std::string> stringForObjectValue(const id& value) override;
  /// Raises `NSInvalidArgumentException` for a value without text.
  Ref<NSAttributedString> attributedStringForObjectValue(
      const id& value, const Ref<NSDictionary>& withDefaultAttributes) override;

 private:
  static std::string stringFromByteCountForClass(Class receiver, std::uint64_t count,
                                                 bool includeUnits);

  bool includeUnits_ = false;
};

}  // namespace rvf
