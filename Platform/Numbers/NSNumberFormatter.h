// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "Platform/Export.h"
#include "Platform/Locale/NSLocale.h"
#include "Platform/Numbers/NSFormatter.h"
#include "Platform/Values/NSError.h"
#include "Platform/Values/NSNumber.h"

namespace rvf {

enum NSNumberFormatterStyle : unsigned long {
  NSNumberFormatterNoStyle = 0,
  NSNumberFormatterDecimalStyle = 1,
  NSNumberFormatterCurrencyStyle = 2
};

/// There is one behaviour; older settings are kept for callers that state it.
enum NSNumberFormatterBehavior : unsigned long {
  NSNumberFormatterBehaviorDefault = 0,
  NSNumberFormatterBehavior10_4 = 1040
};

enum NSNumberFormatterRoundingMode : unsigned long {
  NSNumberFormatterRoundCeiling,  ///< toward plus infinity
  NSNumberFormatterRoundFloor,    ///< toward minus infinity
  NSNumberFormatterRoundDown,     ///< toward zero
  NSNumberFormatterRoundUp,       ///< away from zero
  NSNumberFormatterRoundHalfEven,
  NSNumberFormatterRoundHalfDown,
  NSNumberFormatterRoundHalfUp
};

/// The code of the error, in `NSCocoaErrorDomain`, of a text that is no number.
inline constexpr long NSFormattingError = 2048;

/// Writes numbers in a locale's way, and reads them back, by patterns (Unicode technical standard
/// 35, part 3). Numbers go both ways as decimal text, never through a double.
///
///     const auto formatter = std::make_shared<NSNumberFormatter>();
///     formatter->setNumberStyle(NSNumberFormatterCurrencyStyle);
///     formatter->setPositiveFormat("¤ #,##0.00");
///     formatter->stringForObjectValue(box(1234.5));   // "€ 1.234,50" in Germany
///
/// In a pattern "#" is an optional digit, "0" a required one, and unquoted "," "." "-" and "¤"
/// stand for the locale's own; every other character is itself. The pattern's decimals win over
/// those that the currency usually has.
///
/// Thread: one at a time, reading and writing included: it keeps what it prepared. Lifetime: keeps
/// its locale.
class RVF_EXPORT NSNumberFormatter : public NSFormatter {
 public:
  NSNumberFormatter();
  ~NSNumberFormatter() override;

  static Class classObject();
  Class isa() const override;

  /// Kept and given back; changes nothing else.
  NSNumberFormatterBehavior formatterBehavior() const noexcept;
  void setFormatterBehavior(NSNumberFormatterBehavior behavior);

  /// Whole numbers without grouping, unless set.
  NSNumberFormatterStyle numberStyle() const noexcept;
  /// Takes the locale's patterns for the style, instead of patterns set before.
  void setNumberStyle(NSNumberFormatterStyle style);
  /// The pattern that is set, else the one of the style.
  std::string positiveFormat() const;
  /// A malformed pattern raises `NSInvalidArgumentException` when it is first used.
  void setPositiveFormat(std::string_view pattern);
  /// The pattern that is set, else "-" before the positive one.
  std::string negativeFormat() const;
  /// Its decimals and grouping are those of the positive one.
  void setNegativeFormat(std::string_view pattern);

  /// The one that is set, else the current one, which is followed when it changes.
  Ref<NSLocale> locale() const;
  void setLocale(Ref<NSLocale> locale);
  /// To even halves, unless set.
  NSNumberFormatterRoundingMode roundingMode() const noexcept;
  void setRoundingMode(NSNumberFormatterRoundingMode mode);
  /// The text of an absent value; empty unless set.
  const std::string& nilSymbol() const noexcept;
  void setNilSymbol(std::string_view symbol);

  /// Whether reading gives decimal numbers, else 64-bit integers and doubles.
  bool generatesDecimalNumbers() const noexcept;
  void setGeneratesDecimalNumbers(bool generates);
  /// Whether reading is forgiving about grouping, signs and blanks and, in the currency style,
  /// about the locale's currency symbol or code at either end.
  bool isLenient() const noexcept;
  void setLenient(bool isLenient);

  /// Absent for what is no number, the nil symbol for an absent value, "NaN" for NaN.
  std::optional<std::string> stringForObjectValue(const id& value) override;
  /// The same but for an absent value, which gives the empty text.
  std::optional<std::string> editingStringForObjectValue(const id& value) override;
  /// The whole text must be a number, but for white space at its ends. Decimals are neither limited
  /// nor rounded; but a text of more than 10,000 characters is none.
  bool getObjectValue(id* object, std::string_view forString,
                      std::string* errorDescription = nullptr) override;
  /// The number that the whole text is, read as above; absent if it is none.
  Ref<NSNumber> numberFromString(std::string_view text, Ref<NSError>* error = nullptr);

 private:
  class State;
  std::unique_ptr<State> state_;
};

}  // namespace rvf
