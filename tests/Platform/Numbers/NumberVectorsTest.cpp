// SPDX-License-Identifier: Apache-2.0
//
// The number library's own test vectors, as far as they speak of what the formatter offers: a
// locale, patterns of "#", "0", separators and literal characters, a rounding mode, leniency.
// Significant digits, exponents, rounding steps, padding, percentages, plus signs and currency
// codes are not offered; in a pattern their marks stand for themselves. NaN is written without
// affixes.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "Platform/Numbers/NSDecimalNumber.h"
#include "Platform/Numbers/NSNumberFormatter.h"
#include "Platform/Runtime/NSException.h"
#include "tests/Platform/Numbers/NumberVectors.h"

namespace rvf {
namespace {

using tests::NumberVector;

constexpr const char* kMalformed = "fail";
constexpr std::size_t kMostDigits = 38;

bool hasOnlyFields(const NumberVector& row, const std::set<std::string>& offered) {
  return std::all_of(row.fields.begin(), row.fields.end(),
                     [&](const auto& field) { return offered.contains(field.first); });
}

/// The rows that ICU for C itself fails are marked with "C".
bool isKeptByTheLibrary(const NumberVector& row) {
  return row.value("breaks").find('C') == std::string::npos;
}

constexpr std::string_view kMarksNotWritten = "+%@*E123456789";
/// A plus sign before a number is read as such.
constexpr std::string_view kMarksNotRead = "%@*E123456789";

bool hasMarksThatAreNotOffered(const std::string& pattern, std::string_view marks) {
  bool isQuoted = false;
  for (const char character : pattern) {
    if (character == '\'') isQuoted = !isQuoted;
    if (!isQuoted && marks.find(character) != std::string_view::npos) return true;
  }
  return pattern.find("\u2030") != std::string::npos || pattern.find("\u00A4") != std::string::npos;
}

bool fitsADecimalNumber(const std::string& number) {
  const auto digits =
      std::count_if(number.begin(), number.end(), [](char c) { return c >= '0' && c <= '9'; });
  return static_cast<std::size_t>(digits) <= kMostDigits && number.find("E-2") == std::string::npos;
}

bool isOffered(const NumberVector& row, std::string_view marks) {
  return isKeptByTheLibrary(row) && !hasMarksThatAreNotOffered(row.value("pattern"), marks);
}

std::optional<NSNumberFormatterRoundingMode> roundingMode(const std::string& name) {
  static const std::map<std::string, NSNumberFormatterRoundingMode> modes = {
      {"default", NSNumberFormatterRoundHalfEven},
      {"ceiling", NSNumberFormatterRoundCeiling},
      {"floor", NSNumberFormatterRoundFloor},
      {"down", NSNumberFormatterRoundDown},
      {"up", NSNumberFormatterRoundUp},
      {"halfEven", NSNumberFormatterRoundHalfEven},
      {"halfeven", NSNumberFormatterRoundHalfEven},
      {"halfDown", NSNumberFormatterRoundHalfDown},
      {"halfdown", NSNumberFormatterRoundHalfDown},
      {"halfUp", NSNumberFormatterRoundHalfUp},
      {"halfup", NSNumberFormatterRoundHalfUp}};
  const auto found = modes.find(name);
  return found == modes.end() ? std::nullopt : std::optional(found->second);
}

id numberOf(const std::string& text) {
  constexpr double kInfinity = std::numeric_limits<double>::infinity();
  if (text == "NaN") return box(std::nan(""));
  if (text == "Inf") return box(kInfinity);
  if (text == "-Inf") return box(-kInfinity);
  return NSDecimalNumber::decimalNumberWithString(text);
}

Ref<NSNumberFormatter> formatterFor(const NumberVector& row) {
  auto formatter = std::make_shared<NSNumberFormatter>();
  formatter->setLocale(NSLocale::localeWithLocaleIdentifier(row.value("locale", "en_US")));
  formatter->setGeneratesDecimalNumbers(true);
  formatter->setLenient(row.value("lenient", "1") == "1");
  const std::string pattern = row.value("pattern", "0");
  const std::size_t end = pattern.find(';');
  formatter->setPositiveFormat(pattern.substr(0, end));
  if (end != std::string::npos) formatter->setNegativeFormat(pattern.substr(end + 1));
  formatter->setRoundingMode(*roundingMode(row.value("roundingMode", "default")));
  return formatter;
}

std::string written(const NumberVector& row) {
  try {
    return formatterFor(row)->stringForObjectValue(numberOf(row.value("format"))).value();
  } catch (const NSException& exception) {
    return exception.name() == NSInvalidArgumentException ? kMalformed : exception.what();
  }
}

std::string describe(const NumberVector& row) {
  std::string text = "line " + std::to_string(row.line) + " (" + row.test + "):";
  for (const auto& [field, value] : row.fields)
    text += " " + field + "=\"" + value + "\"";
  return text;
}

std::vector<NumberVector> specification() {
  return tests::readTestSpecification(RVF_NUMBER_VECTORS "/numberformattestspecification.txt");
}

TEST(NumberVectorsTest, NumbersAreWrittenAsTheSpecificationOfFormatsSays) {
  int count = 0;
  for (const NumberVector& row : specification()) {
    if (!hasOnlyFields(row, {"locale", "pattern", "roundingMode", "format", "output", "breaks"}) ||
        !isOffered(row, kMarksNotWritten) || !row.has("format") || row.value("format") == "NaN")
      continue;
    ++count;
    EXPECT_EQ(written(row), row.value("output")) << describe(row);
  }
  EXPECT_GE(count, 60);
}

TEST(NumberVectorsTest, NumbersAreRoundedAsTheDecimalFormatTestsSay) {
  int count = 0;
  for (const NumberVector& row :
       tests::readDecimalFormatTests(RVF_NUMBER_VECTORS "/dcfmtest.txt")) {
    if (!isOffered(row, kMarksNotWritten) || !fitsADecimalNumber(row.value("format")) ||
        !roundingMode(row.value("roundingMode")))
      continue;
    ++count;
    EXPECT_EQ(written(row), row.value("output")) << describe(row);
  }
  EXPECT_GE(count, 1400);
}

/// The library tells how much of a text it read, and these vectors leave the rest aside. Here a
/// text is a number as a whole or not at all, so it reads as the vector says, or is none.
TEST(NumberVectorsTest, TextsReadAsTheSpecificationSaysOrAreNoNumbers) {
  int read = 0;
  int refused = 0;
  for (const NumberVector& row : specification()) {
    if (!hasOnlyFields(row, {"locale", "pattern", "lenient", "parse", "output", "breaks"}) ||
        !isOffered(row, kMarksNotRead) || !row.has("parse"))
      continue;
    const auto number = formatterFor(row)->numberFromString(row.value("parse"));
    number ? ++read : ++refused;
    if (!number) continue;
    EXPECT_NE(row.value("output"), kMalformed) << describe(row);
    EXPECT_TRUE(number->isEqual(numberOf(row.value("output")).get()))
        << describe(row) << " gave " << number->stringValue();
  }
  EXPECT_GE(read, 50);
  EXPECT_GE(refused, 20);
}

}  // namespace
}  // namespace rvf
