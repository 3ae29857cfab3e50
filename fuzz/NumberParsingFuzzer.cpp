// SPDX-License-Identifier: Apache-2.0
//
// Reads any bytes as amounts and quantities in several locales. What is read can be written, and is
// read again as the same number.

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "Platform/Numbers/NSDecimalNumber.h"
#include "RVFoundation/Formatters/NSNumberFormatter-QMExtension.h"
#include "RVFoundation/Formatters/RVFCurrencyFormatter.h"
#include "RVFoundation/Formatters/RVFQuantityFormatter.h"

namespace {

using rvf::NSFormatter;
using rvf::Ref;

void require(bool isTrue) {
  if (!isTrue) std::abort();
}

Ref<rvf::NSLocale> localeOf(const char* identifier) {
  return rvf::NSLocale::localeWithLocaleIdentifier(identifier);
}

Ref<NSFormatter> money(const char* locale) {
  auto formatter = std::make_shared<rvf::RVFCurrencyFormatter>();
  formatter->setLocale(localeOf(locale));
  return formatter;
}

Ref<NSFormatter> quantity(const char* locale) {
  auto formatter = std::make_shared<rvf::RVFQuantityFormatter>();
  formatter->setLocale(localeOf(locale));
  return formatter;
}

Ref<NSFormatter> currency(const char* locale) {
  auto formatter = rvf::NSNumberFormatter_QMExtension::currencyFormatter();
  formatter->setLocale(localeOf(locale));
  return formatter;
}

void readAndWrite(NSFormatter& formatter, std::string_view text) {
  rvf::id value;
  if (!formatter.getObjectValue(&value, text)) {
    require(value == nullptr);
    return;
  }
  const auto number = std::dynamic_pointer_cast<rvf::NSDecimalNumber>(value);
  require(number && !number->decimalValue().isNaN());
  const auto written = formatter.stringForObjectValue(number);
  require(written.has_value());
  rvf::id again;
  require(formatter.getObjectValue(&again, *written));
  const auto rewritten = formatter.stringForObjectValue(again);
  // A negative amount that is shown as zero is read as plain zero.
  const auto zero = rvf::NSDecimalNumber::zero();
  require(rewritten == written || zero->isEqual(again.get()));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const std::array<Ref<NSFormatter>, 8> kFormatters = {
      money("en_US"),    money("de_DE"),    money("ar_EG"),    money("hi_IN"),
      quantity("en_US"), quantity("fa_IR"), currency("en_US"), currency("sv_SE")};
  if (size == 0) return 0;
  const std::string_view text(reinterpret_cast<const char*>(data) + 1, size - 1);
  readAndWrite(*kFormatters[*data % kFormatters.size()], text);
  return 0;
}
