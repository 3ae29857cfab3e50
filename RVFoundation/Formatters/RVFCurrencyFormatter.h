// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "Platform/Export.h"
#include "Platform/Numbers/NSNumberFormatter.h"

namespace rvf {

/// Amounts of money: two decimals, grouped in thousands, without a currency symbol.
///
///     RVFCurrencyFormatter::sharedCurrencyFormatter()->stringForObjectValue(price);  // "1,234.50"
///
/// Shown are halves rounded to even; read are halves rounded away from zero, with or without the
/// currency's symbol or code.
///
/// Thread: one at a time, the shared one, too. Lifetime: keeps its locale; the shared one lives as
/// long as the process.
class RVF_EXPORT RVFCurrencyFormatter : public NSFormatter {
 public:
  /// Always the same. It may be fetched on any thread, but serves one thread at a time.
  static Ref<RVFCurrencyFormatter> sharedCurrencyFormatter();

  static Class classObject();
  Class isa() const override;

  /// Absent by default, which stands for the user's current locale. Read only when the inner
  /// formatter is made, by the first writing or reading: set later it has no effect.
  const Ref<NSLocale>& locale() const noexcept { return locale_; }
  void setLocale(Ref<NSLocale> locale);
  /// What writes and reads; made on the first call.
  const Ref<NSNumberFormatter>& formatter();

  /// An absent value is written as zero; absent for what is no number.
  std::optional<std::string> stringForObjectValue(const id& value) override;
  /// The inner formatter's; empty for an absent value.
  std::optional<std::string> editingStringForObjectValue(const id& value) override;
  /// A decimal number of at most two decimals; zero for the empty text.
  bool getObjectValue(id* object, std::string_view forString,
                      std::string* errorDescription = nullptr) override;

 private:
  Ref<NSLocale> locale_;
  Ref<NSNumberFormatter> formatter_;
};

}  // namespace rvf
