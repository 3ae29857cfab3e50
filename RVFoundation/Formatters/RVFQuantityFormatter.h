// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <optional>
#include <set>
#include <string>
#include <string_view>

#include "Platform/Export.h"
#include "Platform/Numbers/NSNumberFormatter.h"

namespace rvf {

/// Quantities: at most two decimals, no grouping, in the user's locale unless another is set.
///
///     RVFQuantityFormatter::sharedQuantityFormatter()->stringForObjectValue(quantity);  // "2.5"
///
/// Shown are decimals cut off toward zero (1.239 is "1.23"); read are halves rounded away from
/// zero.
///
/// Thread: one at a time, the shared one, too. Lifetime: keeps its number formatter; the shared one
/// lives as long as the process.
class RVF_EXPORT RVFQuantityFormatter : public NSFormatter {
 public:
  RVFQuantityFormatter();

  /// Always the same. It may be fetched on any thread, but serves one thread at a time.
  static Ref<RVFQuantityFormatter> sharedQuantityFormatter();

  static Class classObject();
  Class isa() const override;

  /// What writes and reads; without one there is no text, and nothing but the empty text is read.
  const Ref<NSNumberFormatter>& quantityFormatter() const noexcept { return quantityFormatter_; }
  void setQuantityFormatter(Ref<NSNumberFormatter> formatter);
  /// The inner formatter's.
  Ref<NSLocale> locale() const;
  void setLocale(Ref<NSLocale> locale);
  static std::set<std::string> keyPathsForValuesAffectingLocale();

  /// An absent value is written as zero; absent for what is no number.
  std::optional<std::string> stringForObjectValue(const id& value) override;
  /// The inner formatter's; empty for an absent value.
  std::optional<std::string> editingStringForObjectValue(const id& value) override;
  /// A decimal number of at most two decimals; zero for the empty text.
  bool getObjectValue(id* object, std::string_view forString,
                      std::string* errorDescription = nullptr) override;

 private:
  Ref<NSNumberFormatter> quantityFormatter_;
};

}  // namespace rvf
