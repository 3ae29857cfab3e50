// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <unicode/decimfmt.h>

#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "Platform/Numbers/NSDecimal.h"
#include "Platform/Numbers/NSNumberFormatter.h"

namespace rvf {

/// What a number formatter's texts depend on.
struct NumberFormatSettings {
  std::string localeIdentifier;
  NSNumberFormatterStyle style = NSNumberFormatterNoStyle;
  std::optional<std::string> positivePattern;
  std::optional<std::string> negativePattern;
  NSNumberFormatterRoundingMode rounding = NSNumberFormatterRoundHalfEven;
  bool isLenient = false;
};

/// The number library's formatters for one state of the settings. Making one is slow, so it is kept
/// until a setting changes.
class NumberFormatEngine final {
 public:
  /// Raises `NSInvalidArgumentException` if a pattern is malformed.
  explicit NumberFormatEngine(const NumberFormatSettings& settings);

  /// The text of a number that is given as decimal text, with or without an exponent.
  std::string text(std::string_view decimal) const;
  std::string text(double infinity) const;
  /// The number that the whole text is; absent if it is none or too large.
  std::optional<NSDecimal> number(std::string_view text) const;

  const std::string& positivePattern() const noexcept { return positivePattern_; }
  const std::string& negativePattern() const noexcept { return negativePattern_; }

 private:
  void findPatterns(const NumberFormatSettings& settings);
  void apply(icu::DecimalFormat& format, const std::string& prefix) const;
  void makeCurrencyReader();
  static std::optional<NSDecimal> read(const icu::DecimalFormat& reader,
                                       const icu::UnicodeString& text);

  std::unique_ptr<icu::DecimalFormat> format_;
  std::unique_ptr<icu::DecimalFormat> reader_;
  /// For amounts with a currency where the pattern shows none.
  std::unique_ptr<icu::DecimalFormat> currencyReader_;
  std::string positivePattern_;
  std::string negativePattern_;
};

}  // namespace rvf
