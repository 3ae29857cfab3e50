// SPDX-License-Identifier: Apache-2.0
#include "Platform/Numbers/NumberFormatEngine.h"

#include <unicode/dcfmtsym.h>
#include <unicode/fmtable.h>
#include <unicode/numfmt.h>
#include <unicode/parsepos.h>
#include <unicode/uchar.h>
#include <unicode/unistr.h>

#include <algorithm>
#include <cstdint>

#include "Platform/Numbers/NumberPattern.h"
#include "Platform/Runtime/NSException.h"
#include "Platform/Text/Text.h"
#include "Platform/Text/Utf8.h"

namespace rvf {
namespace {

using Symbols = icu::DecimalFormatSymbols;

/// The largest number, grouped, has some 400 characters; decimals may follow. The library takes a
/// time to read a text that grows with the square of its digits.
constexpr std::int32_t kLongestNumber = 10'000;

icu::StringPiece piece(std::string_view text) noexcept {
  return {text.data(), static_cast<std::int32_t>(text.size())};
}

/// Almost every text is ASCII but for a separator, and conversion costs as much as a few digits.
std::string utf8Of(const icu::UnicodeString& text) {
  const char16_t* units = text.getBuffer();
  const auto length = static_cast<std::size_t>(text.length());
  std::string result(length, '\0');
  for (std::size_t i = 0; i < length; ++i) {
    if (units[i] > 0x7F) {
      result.clear();
      text.toUTF8String(result);
      return result;
    }
    result[i] = static_cast<char>(units[i]);
  }
  return result;
}

UNumberFormatStyle libraryStyle(NSNumberFormatterStyle style) noexcept {
  return style == NSNumberFormatterCurrencyStyle ? UNUM_CURRENCY : UNUM_DECIMAL;
}

icu::DecimalFormat::ERoundingMode libraryRounding(NSNumberFormatterRoundingMode mode) noexcept {
  switch (mode) {
    case NSNumberFormatterRoundCeiling:
      return icu::DecimalFormat::kRoundCeiling;
    case NSNumberFormatterRoundFloor:
      return icu::DecimalFormat::kRoundFloor;
    case NSNumberFormatterRoundDown:
      return icu::DecimalFormat::kRoundDown;
    case NSNumberFormatterRoundUp:
      return icu::DecimalFormat::kRoundUp;
    case NSNumberFormatterRoundHalfDown:
      return icu::DecimalFormat::kRoundHalfDown;
    case NSNumberFormatterRoundHalfUp:
      return icu::DecimalFormat::kRoundHalfUp;
    case NSNumberFormatterRoundHalfEven:
      break;
  }
  return icu::DecimalFormat::kRoundHalfEven;
}

/// The locale's formatter for the style, or the root locale's. The pattern of a currency is applied
/// to it later, because a formatter that is made from a pattern takes the currency's own decimals.
std::unique_ptr<icu::DecimalFormat> makeFormat(const NumberFormatSettings& settings) {
  for (const std::string& identifier : {settings.localeIdentifier, std::string()}) {
    UErrorCode status = U_ZERO_ERROR;
    const std::unique_ptr<icu::NumberFormat> format(icu::NumberFormat::createInstance(
        icu::Locale(identifier.c_str()), libraryStyle(settings.style), status));
    if (const auto* decimal = dynamic_cast<const icu::DecimalFormat*>(format.get()))
      return std::unique_ptr<icu::DecimalFormat>(decimal->clone());
  }
  NSException::raise(NSInternalInconsistencyException, "no number formats in the locale data");
}

bool isSign(char16_t unit) noexcept {
  constexpr std::u16string_view kSigns =
      u"+-\u2012\u207A\u207B\u208A\u208B\u2212\u2795\u2796\uFB29\uFE62\uFE63\uFF0B\uFF0D";
  return kSigns.find(unit) != std::u16string_view::npos;
}

/// The library passes over further signs before the digits.
bool hasSeveralSigns(const icu::UnicodeString& text) noexcept {
  int count = 0;
  for (std::int32_t i = 0; i < text.length() && !u_isdigit(text.char32At(i)); ++i)
    if (isSign(text.charAt(i))) ++count;
  return count > 1;
}

/// Without the white space at both ends.
icu::UnicodeString trimmed(const icu::UnicodeString& text) {
  std::int32_t start = 0;
  std::int32_t end = text.length();
  while (start < end && isWhiteSpace(text.charAt(start)))
    ++start;
  while (end > start && isWhiteSpace(text.charAt(end - 1)))
    --end;
  return {text, start, end - start};
}

}  // namespace

NumberFormatEngine::NumberFormatEngine(const NumberFormatSettings& settings)
    : format_(makeFormat(settings)) {
  findPatterns(settings);
  if (settings.positivePattern || settings.negativePattern ||
      settings.style == NSNumberFormatterNoStyle)
    apply(*format_, "");
  format_->setRoundingMode(libraryRounding(settings.rounding));
  reader_.reset(format_->clone());
  reader_->setLenient(static_cast<UBool>(settings.isLenient));
  if (settings.isLenient && settings.style == NSNumberFormatterCurrencyStyle &&
      !hasCurrencySign(positivePattern_))
    makeCurrencyReader();
}

void NumberFormatEngine::findPatterns(const NumberFormatSettings& settings) {
  constexpr const char* kWholeNumbers = "#";
  icu::UnicodeString pattern;
  const std::string ofStyle = utf8Of(format_->toPattern(pattern));
  const std::size_t end = std::min(ofStyle.find(';'), ofStyle.size());
  if (settings.positivePattern) {
    positivePattern_ = *settings.positivePattern;
  } else {
    positivePattern_ =
        settings.style == NSNumberFormatterNoStyle ? kWholeNumbers : ofStyle.substr(0, end);
  }
  const bool isOfStyle = !settings.positivePattern && end < ofStyle.size();
  negativePattern_ = settings.negativePattern ? *settings.negativePattern
                     : isOfStyle              ? ofStyle.substr(end + 1)
                                              : "-" + positivePattern_;
}

void NumberFormatEngine::apply(icu::DecimalFormat& format, const std::string& prefix) const {
  const std::string pattern = prefix + quotedNumberPattern(positivePattern_) + ";" + prefix +
                              quotedNumberPattern(negativePattern_);
  // Joined, two open quotations would close each other.
  const bool isOpen = hasOpenQuote(positivePattern_) || hasOpenQuote(negativePattern_);
  UErrorCode status = isOpen ? U_UNMATCHED_BRACES : U_ZERO_ERROR;
  if (!isOpen) format.applyPattern(icu::UnicodeString::fromUTF8(piece(pattern)), status);
  if (U_FAILURE(status)) {
    NSException::raise(NSInvalidArgumentException,
                       "malformed number pattern \"" + pattern + "\": " + u_errorName(status));
  }
}

void NumberFormatEngine::makeCurrencyReader() {
  currencyReader_.reset(reader_->clone());
  apply(*currencyReader_, "\u00A4");
  // With a currency the library would expect the separators that amounts with one have.
  Symbols symbols(*reader_->getDecimalFormatSymbols());
  symbols.setSymbol(Symbols::kMonetarySeparatorSymbol,
                    symbols.getConstSymbol(Symbols::kDecimalSeparatorSymbol));
  symbols.setSymbol(Symbols::kMonetaryGroupingSeparatorSymbol,
                    symbols.getConstSymbol(Symbols::kGroupingSeparatorSymbol));
  currencyReader_->setDecimalFormatSymbols(symbols);
}

std::string NumberFormatEngine::text(std::string_view decimal) const {
  icu::UnicodeString text;
  UErrorCode status = U_ZERO_ERROR;
  constexpr icu::FieldPositionIterator* kNoFields = nullptr;
  return utf8Of(format_->format(piece(decimal), text, kNoFields, status));
}

std::string NumberFormatEngine::text(double infinity) const {
  icu::UnicodeString text;
  return utf8Of(format_->format(infinity, text));
}

std::optional<NSDecimal> NumberFormatEngine::number(std::string_view text) const {
  if (!isValidUtf8(text)) return std::nullopt;
  const icu::UnicodeString units = trimmed(icu::UnicodeString::fromUTF8(piece(text)));
  if (units.isEmpty() || units.length() > kLongestNumber || hasSeveralSigns(units))
    return std::nullopt;
  if (const auto value = read(*reader_, units)) return value;
  return currencyReader_ ? read(*currencyReader_, units) : std::nullopt;
}

std::optional<NSDecimal> NumberFormatEngine::read(const icu::DecimalFormat& reader,
                                                  const icu::UnicodeString& text) {
  icu::Formattable number;
  icu::ParsePosition position(0);
  reader.parse(text, number, position);
  if (position.getIndex() != text.length()) return std::nullopt;
  UErrorCode status = U_ZERO_ERROR;
  const icu::StringPiece decimal = number.getDecimalNumber(status);
  if (U_FAILURE(status)) return std::nullopt;
  const NSDecimal value =
      NSDecimal::fromText({decimal.data(), static_cast<std::size_t>(decimal.length())});
  if (value.isNaN()) return std::nullopt;
  return value;
}

}  // namespace rvf
