// SPDX-License-Identifier: Apache-2.0
//
// Money and quantities as an American till shows them, beside digits written and read by hand for
// this one purpose, and beside ICU's DecimalFormat from decimal text to UTF-8, or from a double,
// which loses digits that we keep.

#include <benchmark/benchmark.h>
#include <unicode/decimfmt.h>
#include <unicode/fmtable.h>
#include <unicode/parsepos.h>

#include <cstdint>
#include <iterator>
#include <memory>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include "Platform/Numbers/NSDecimalNumber.h"
#include "RVFoundation/Formatters/RVFCurrencyFormatter.h"
#include "RVFoundation/Formatters/RVFQuantityFormatter.h"
#include "benchmarks/Measure.h"

namespace rvf {
namespace {

constexpr int kAmounts = 500;

struct Amount {
  std::int64_t cents;
  Ref<NSDecimalNumber> number;
  std::string text;
  double value;
};

/// Prices as tills show them, up to a million, some negative.
const std::vector<Amount>& amounts() {
  static const std::vector<Amount> kList = [] {
    std::mt19937_64 random(3);
    std::vector<Amount> list;
    for (int i = 0; i < kAmounts; ++i) {
      const std::uint64_t cents = random() % 100'000'000 >> (random() % 20);
      const bool isNegative = random() % 8 == 0;
      const auto number = NSDecimalNumber::decimalNumberWithMantissa(cents, -2, isNegative);
      const auto signedCents = static_cast<std::int64_t>(cents) * (isNegative ? -1 : 1);
      list.push_back({signedCents, number, number->stringValue(), number->doubleValue()});
    }
    return list;
  }();
  return kList;
}

// By hand

std::string moneyByHand(std::int64_t cents) {
  char digits[32];
  char* start = std::end(digits);
  const bool isNegative = cents < 0;
  std::uint64_t rest = static_cast<std::uint64_t>(isNegative ? -cents : cents);
  for (int i = 0; i < 3 || rest > 0; ++i, rest /= 10) {
    if (i == 2) *--start = '.';
    if (i > 2 && (i - 2) % 3 == 0) *--start = ',';
    *--start = static_cast<char>('0' + rest % 10);
  }
  if (isNegative) *--start = '-';
  return {start, std::end(digits)};
}

std::string quantityByHand(std::int64_t cents) {
  std::string text = moneyByHand(cents);
  std::erase(text, ',');
  while (text.back() == '0')
    text.pop_back();
  if (text.back() == '.') text.pop_back();
  return text;
}

std::int64_t centsByHand(std::string_view text) {
  std::int64_t cents = 0;
  for (const char c : text)
    if (c >= '0' && c <= '9') cents = cents * 10 + (c - '0');
  return text.front() == '-' ? -cents : cents;
}

// By ICU

std::unique_ptr<icu::DecimalFormat> icuFormat(UNumberFormatStyle style, const char* pattern,
                                              icu::DecimalFormat::ERoundingMode mode) {
  UErrorCode status = U_ZERO_ERROR;
  std::unique_ptr<icu::NumberFormat> made(
      icu::NumberFormat::createInstance(icu::Locale("en_US"), style, status));
  std::unique_ptr<icu::DecimalFormat> format(dynamic_cast<icu::DecimalFormat*>(made.release()));
  format->applyPattern(pattern, status);
  format->setRoundingMode(mode);
  format->setLenient(true);
  return format;
}

std::string utf8Of(const icu::UnicodeString& text) {
  std::string result;
  text.toUTF8String(result);
  return result;
}

std::string icuText(const icu::DecimalFormat& format, const std::string& decimal) {
  icu::UnicodeString text;
  UErrorCode status = U_ZERO_ERROR;
  constexpr icu::FieldPositionIterator* kNoFields = nullptr;
  return utf8Of(format.format(icu::StringPiece(decimal), text, kNoFields, status));
}

std::string icuText(const icu::DecimalFormat& format, double value) {
  icu::UnicodeString text;
  return utf8Of(format.format(value, text));
}

Ref<NSLocale> unitedStates() {
  return NSLocale::localeWithLocaleIdentifier("en_US");
}

template <class Formatter>
Ref<Formatter> americanFormatter() {
  const auto formatter = std::make_shared<Formatter>();
  formatter->setLocale(unitedStates());
  return formatter;
}

std::unique_ptr<icu::DecimalFormat> icuMoney() {
  return icuFormat(UNUM_CURRENCY, "#,##0.00;-#,##0.00", icu::DecimalFormat::kRoundHalfEven);
}

std::unique_ptr<icu::DecimalFormat> icuQuantity() {
  return icuFormat(UNUM_DECIMAL, "#0.##;-#0.##", icu::DecimalFormat::kRoundDown);
}

// Measurement

template <class Write>
void measureWriting(benchmark::State& state, Write write) {
  const auto writeAll = [&] {
    for (const Amount& amount : amounts())
      benchmark::DoNotOptimize(write(amount));
  };
  measure(state, writeAll, kAmounts);
}

template <class Formatter, auto byHand, auto icu>
void writeByOurs(benchmark::State& state) {
  const auto formatter = americanFormatter<Formatter>();
  const auto format = icu();
  for (const Amount& amount : amounts()) {
    const auto text = formatter->stringForObjectValue(amount.number);
    if (text != icuText(*format, amount.text) || text != icuText(*format, amount.value) ||
        text != byHand(amount.cents))
      state.SkipWithError("the texts differ");
  }
  measureWriting(
      state, [&](const Amount& amount) { return formatter->stringForObjectValue(amount.number); });
}

template <auto byHand>
void writeByHand(benchmark::State& state) {
  measureWriting(state, [](const Amount& amount) { return byHand(amount.cents); });
}

template <auto icu>
void writeByICU(benchmark::State& state) {
  const auto format = icu();
  measureWriting(state, [&](const Amount& amount) { return icuText(*format, amount.text); });
}

template <auto icu>
void writeDoublesByICU(benchmark::State& state) {
  const auto format = icu();
  measureWriting(state, [&](const Amount& amount) { return icuText(*format, amount.value); });
}

BENCHMARK(writeByOurs<RVFCurrencyFormatter, &moneyByHand, &icuMoney>)->Name("write money/ours");
BENCHMARK(writeByHand<&moneyByHand>)->Name("write money/limit: digits by hand");
BENCHMARK(writeByICU<&icuMoney>)->Name("write money/peer: ICU");
BENCHMARK(writeDoublesByICU<&icuMoney>)->Name("write money/peer: ICU, from a double");

BENCHMARK(writeByOurs<RVFQuantityFormatter, &quantityByHand, &icuQuantity>)
    ->Name("write a quantity/ours");
BENCHMARK(writeByHand<&quantityByHand>)->Name("write a quantity/limit: digits by hand");
BENCHMARK(writeByICU<&icuQuantity>)->Name("write a quantity/peer: ICU");
BENCHMARK(writeDoublesByICU<&icuQuantity>)->Name("write a quantity/peer: ICU, from a double");

std::vector<std::string> moneyTexts() {
  std::vector<std::string> texts;
  for (const Amount& amount : amounts())
    texts.push_back(moneyByHand(amount.cents));
  return texts;
}

template <class Read>
void measureReading(benchmark::State& state, Read read) {
  const auto texts = moneyTexts();
  for (std::size_t i = 0; i < texts.size(); ++i)
    if (read(texts[i]) != amounts()[i]) state.SkipWithError("the amounts differ");
  const auto readAll = [&] {
    for (const std::string& text : texts)
      benchmark::DoNotOptimize(read(text));
  };
  measure(state, readAll, kAmounts);
}

bool operator!=(std::int64_t cents, const Amount& amount) {
  return cents != amount.cents;
}
bool operator!=(const id& number, const Amount& amount) {
  return !objectsAreEqual(number, amount.number);
}
/// ICU has an exponent in large ones.
bool operator!=(const std::string& decimal, const Amount& amount) {
  return NSDecimalNumber::decimalNumberWithString(decimal) != amount;
}

void readMoney(benchmark::State& state) {
  const auto formatter = americanFormatter<RVFCurrencyFormatter>();
  measureReading(state, [&](const std::string& text) {
    id value;
    formatter->getObjectValue(&value, text);
    return value;
  });
}
BENCHMARK(readMoney)->Name("read money/ours");

void readMoneyByHand(benchmark::State& state) {
  measureReading(state, [](const std::string& text) { return centsByHand(text); });
}
BENCHMARK(readMoneyByHand)->Name("read money/limit: digits by hand");

void readMoneyByICU(benchmark::State& state) {
  const auto format = icuMoney();
  measureReading(state, [&](const std::string& text) {
    icu::Formattable value;
    icu::ParsePosition position(0);
    format->parse(icu::UnicodeString::fromUTF8(text), value, position);
    UErrorCode status = U_ZERO_ERROR;
    const icu::StringPiece decimal = value.getDecimalNumber(status);
    return std::string(decimal.data(), static_cast<std::size_t>(decimal.size()));
  });
}
BENCHMARK(readMoneyByICU)->Name("read money/peer: ICU");

void addAndRound(benchmark::State& state) {
  const NSDecimalNumberHandler cents(NSRoundPlain, 2, false, true, true, true);
  const auto addAll = [&] {
    auto total = NSDecimalNumber::zero();
    for (const Amount& amount : amounts())
      total = total->decimalNumberByAdding(*amount.number, cents);
    benchmark::DoNotOptimize(total);
  };
  measure(state, addAll, kAmounts);
}
BENCHMARK(addAndRound)->Name("add a price up/ours");

}  // namespace
}  // namespace rvf
