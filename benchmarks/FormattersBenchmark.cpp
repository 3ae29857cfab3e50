// SPDX-License-Identifier: Apache-2.0
//
// Money and quantities against ICU's DecimalFormat on the same values. "of_icu_speed" is our speed
// as a multiple of ICU's from decimal text to UTF-8; "of_icu_double_speed" the same from a double,
// which loses digits that we keep. All take turns within one measurement.

#include <benchmark/benchmark.h>
#include <unicode/decimfmt.h>
#include <unicode/fmtable.h>
#include <unicode/parsepos.h>

#include <cstdint>
#include <cstdlib>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "Platform/Numbers/NSDecimalNumber.h"
#include "RVFoundation/Formatters/RVFCurrencyFormatter.h"
#include "RVFoundation/Formatters/RVFQuantityFormatter.h"
#include "benchmarks/Turns.h"

namespace rvf {
namespace {

constexpr int kAmounts = 500;

struct Amount {
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
      const auto number = NSDecimalNumber::decimalNumberWithMantissa(cents, -2, random() % 8 == 0);
      list.push_back({number, number->stringValue(), number->doubleValue()});
    }
    return list;
  }();
  return kList;
}

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

void compareWriting(benchmark::State& state, NSFormatter& formatter,
                    const icu::DecimalFormat& format) {
  for (const Amount& amount : amounts()) {
    const auto text = formatter.stringForObjectValue(amount.number);
    if (text != icuText(format, amount.text) || text != icuText(format, amount.value))
      state.SkipWithError("the texts differ");
  }
  const auto all = [](auto write) {
    return [write] {
      for (const Amount& amount : amounts())
        benchmark::DoNotOptimize(write(amount));
    };
  };
  const auto ours =
      all([&](const Amount& amount) { return formatter.stringForObjectValue(amount.number); });
  for (auto _ : state)
    ours();
  state.SetItemsProcessed(state.iterations() * kAmounts);
  state.counters["of_icu_speed"] =
      relativeSpeed(ours, all([&](const Amount& amount) { return icuText(format, amount.text); }));
  state.counters["of_icu_double_speed"] =
      relativeSpeed(ours, all([&](const Amount& amount) { return icuText(format, amount.value); }));
}

Ref<NSLocale> unitedStates() {
  return NSLocale::localeWithLocaleIdentifier("en_US");
}

void writeMoney(benchmark::State& state) {
  RVFCurrencyFormatter formatter;
  formatter.setLocale(unitedStates());
  compareWriting(
      state, formatter,
      *icuFormat(UNUM_CURRENCY, "#,##0.00;-#,##0.00", icu::DecimalFormat::kRoundHalfEven));
}
BENCHMARK(writeMoney);

void writeQuantities(benchmark::State& state) {
  RVFQuantityFormatter formatter;
  formatter.setLocale(unitedStates());
  compareWriting(state, formatter,
                 *icuFormat(UNUM_DECIMAL, "#0.##;-#0.##", icu::DecimalFormat::kRoundDown));
}
BENCHMARK(writeQuantities);

void readMoney(benchmark::State& state) {
  RVFCurrencyFormatter formatter;
  formatter.setLocale(unitedStates());
  const auto format =
      icuFormat(UNUM_CURRENCY, "#,##0.00;-#,##0.00", icu::DecimalFormat::kRoundHalfEven);
  std::vector<std::string> texts;
  for (const Amount& amount : amounts())
    texts.push_back(*formatter.stringForObjectValue(amount.number));
  const auto ours = [&] {
    for (const std::string& text : texts) {
      id value;
      if (!formatter.getObjectValue(&value, text)) std::abort();
    }
  };
  const auto theirs = [&] {
    for (const std::string& text : texts) {
      icu::Formattable value;
      icu::ParsePosition position(0);
      format->parse(icu::UnicodeString::fromUTF8(text), value, position);
      UErrorCode status = U_ZERO_ERROR;
      benchmark::DoNotOptimize(value.getDecimalNumber(status).data());
    }
  };
  for (auto _ : state)
    ours();
  state.SetItemsProcessed(state.iterations() * kAmounts);
  state.counters["of_icu_speed"] = relativeSpeed(ours, theirs);
}
BENCHMARK(readMoney);

void addAndRound(benchmark::State& state) {
  const NSDecimalNumberHandler cents(NSRoundPlain, 2, false, true, true, true);
  for (auto _ : state) {
    auto total = NSDecimalNumber::zero();
    for (const Amount& amount : amounts())
      total = total->decimalNumberByAdding(*amount.number, cents);
    benchmark::DoNotOptimize(total);
  }
  state.SetItemsProcessed(state.iterations() * kAmounts);
}
BENCHMARK(addAndRound);

}  // namespace
}  // namespace rvf
