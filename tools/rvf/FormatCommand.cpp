// SPDX-License-Identifier: Apache-2.0
#include "tools/rvf/FormatCommand.h"

#include <charconv>
#include <cstdint>
#include <iostream>
#include <optional>
#include <string>
#include <string_view>

#include "Platform/Values/NSString.h"
#include "RVFoundation/Formatters/NSDecimalNumber-RVFExtensions.h"
#include "RVFoundation/Formatters/NSNumberFormatter-QMExtension.h"
#include "RVFoundation/Formatters/RVFBooleanFormatter.h"
#include "RVFoundation/Formatters/RVFByteSizeFormatter.h"
#include "RVFoundation/Formatters/RVFCurrencyFormatter.h"
#include "RVFoundation/Formatters/RVFPhoneNumberFormatter.h"
#include "RVFoundation/Formatters/RVFQuantityFormatter.h"
#include "RVFoundation/Formatters/RVFSecondsToHoursFormatter.h"
#include "RVFoundation/Formatters/RVFTimeFormatter.h"
#include "tools/rvf/CommandLine.h"
#include "tools/rvf/Finding.h"
#include "tools/rvf/OptionKinds.h"
#include "tools/terminal/ExitCode.h"

namespace rvf::tool {
namespace {

struct FormatOptions {
  std::string kind;
  std::string value;
  std::optional<std::string> locale;  ///< absent: the environment's
  bool isReading = false;             ///< from text to value
};

Ref<NSFormatter> hoursFormatter() {
  auto formatter = std::make_shared<RVFSecondsToHoursFormatter>();
  formatter->setDecimalFormatter(NSNumberFormatter_QMExtension::quantityFormatter());
  return formatter;
}

Ref<NSFormatter> byteSizeFormatter() {
  auto formatter = std::make_shared<RVFByteSizeFormatter>();
  formatter->setIncludeUnits(true);
  return formatter;
}

/// Whether the whole text is a number with "." before its decimals.
bool isNumber(std::string_view text) {
  if (text.starts_with('+')) text.remove_prefix(1);
  double value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  return error != std::errc::invalid_argument && end == text.data() + text.size() &&
         text.find_first_of("0123456789") != std::string_view::npos;
}

id decimalValue(const std::string& text) {
  if (!isNumber(text)) return nullptr;
  const auto number = NSDecimalNumber_RVFExtensions::RVF_decimalNumberWithPOSIXString(text);
  return number->decimalValue().isNaN() ? nullptr : number;
}

id byteCount(const std::string& text) {
  std::uint64_t count = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), count);
  return error == std::errc() && end == text.data() + text.size() ? box(count) : nullptr;
}

id textValue(const std::string& text) {
  return box(text);
}

struct Kind {
  std::string_view name;
  Ref<NSFormatter> (*formatter)();
  /// What the text on the command line stands for; absent if it is wrong.
  id (*value)(const std::string& text);
  bool readsBack;
};

template <class Formatter>
Ref<NSFormatter> newFormatter() {
  return std::make_shared<Formatter>();
}

template <auto Make>
Ref<NSFormatter> asFormatter() {
  return Make();
}

constexpr Kind kKinds[] = {
    {"money", &asFormatter<&RVFCurrencyFormatter::sharedCurrencyFormatter>, &decimalValue, true},
    {"currency", &asFormatter<&NSNumberFormatter_QMExtension::currencyFormatter>, &decimalValue,
     true},
    {"discount", &asFormatter<&NSNumberFormatter_QMExtension::discountFormatter>, &decimalValue,
     true},
    {"quantity", &asFormatter<&RVFQuantityFormatter::sharedQuantityFormatter>, &decimalValue, true},
    {"time", &newFormatter<RVFTimeFormatter>, &decimalValue, false},
    {"hours", &hoursFormatter, &decimalValue, false},
    {"bytes", &byteSizeFormatter, &byteCount, false},
    {"phone", &newFormatter<RVFPhoneNumberFormatter>, &textValue, false},
    {"bool", &newFormatter<RVFBooleanFormatter>, &textValue, false},
};

const Kind& kindNamed(std::string_view name) {
  const Kind* kind = kKinds;
  while (kind->name != name)
    ++kind;
  return *kind;
}

ExitCode printed(const std::string& text) {
  std::cout << text << "\n";
  return std::cout.flush() ? ExitCode::ok : ExitCode::ioError;
}

ExitCode read(const Kind& kind, const std::string& text) {
  if (!kind.readsBack) {
    complain("only money, currency, discount and quantity can be read");
    return ExitCode::usage;
  }
  id value;
  std::string description;
  if (!kind.formatter()->getObjectValue(&value, text, &description)) {
    complain(description);
    return ExitCode::dataError;
  }
  return printed(value->description());
}

ExitCode formatCommand(const FormatOptions& options) {
  if (options.locale) NSLocale::setCurrentLocaleIdentifier(options.locale);
  const Kind& kind = kindNamed(options.kind);
  if (options.isReading) return read(kind, options.value);
  const id value = kind.value(options.value);
  if (!value) {
    complain("\"" + options.value + "\" is no value of the kind " + options.kind);
    return ExitCode::dataError;
  }
  return printed(kind.formatter()->stringForObjectValue(value).value_or(""));
}

}  // namespace

void addFormatCommand(CommandLine& line) {
  const auto options = std::make_shared<FormatOptions>();
  CLI::App& command = line.addCommand("format", "Write a value for people, or read such a text",
                                      [options] { return formatCommand(*options); });
  command.add_option("KIND", options->kind, "What the value is")
      ->required()
      ->check(isOneOf(namesOf(kKinds)))
      ->type_name("WORD");
  command
      .add_option("VALUE", options->value,
                  "A number such as -1234.5 (time and hours: seconds), a phone number, a yes or no")
      ->required();
  addLocaleOption(command, options->locale);
  command.add_flag("--read", options->isReading, "VALUE is a text for people: print the number");
  command.footer("Money, currency, discount and quantity can be read.");
}

}  // namespace rvf::tool
