// SPDX-License-Identifier: Apache-2.0
#include "tools/rvf/TextCommand.h"

#include <iostream>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "Platform/Locale/NSLocale.h"
#include "Platform/Runtime/NSException.h"
#include "Platform/Values/NSMutableDictionary.h"
#include "Platform/Values/NSString.h"
#include "RVFoundation/Text/NSString-RVFDigests.h"
#include "RVFoundation/Text/NSString-RVFEscaping.h"
#include "RVFoundation/Text/NSString-RVFExtensions.h"
#include "RVFoundation/Text/NSString-RVFPlaceholders.h"
#include "RVFoundation/Text/NSString-RVFWords.h"
#include "tools/rvf/CommandLine.h"
#include "tools/rvf/Finding.h"
#include "tools/rvf/OptionKinds.h"
#include "tools/terminal/ExitCode.h"

namespace rvf::tool {
namespace {

struct TextOptions {
  std::string operation;
  std::string text;
  std::vector<std::string> values;    ///< "key=value", for "fill"
  std::optional<std::string> locale;  ///< absent: the environment's
};

/// Absent if the operation has no result.
using Result = std::optional<std::string>;

Result escapedXML(const TextOptions& options) {
  return stringByEscapingXMLEntities(options.text) + "\n";
}

Result escapedURL(const TextOptions& options) {
  const auto text = RVF_stringByEscapingForURLArgument(options.text);
  return text ? Result(*text + "\n") : std::nullopt;
}

Result decodedURL(const TextOptions& options) {
  const auto text = RVF_stringByDecodingURLArguments(options.text);
  return text ? Result(*text + "\n") : std::nullopt;
}

Result words(const TextOptions& options) {
  std::string lines;
  for (const std::string& word : wordComponents(options.text))
    lines += word + "\n";
  return lines;
}

Result md5(const TextOptions& options) {
  return RVF_md5(options.text) + "\n";
}

Result cleaned(const TextOptions& options) {
  return RVF_cleanStringRemovingNewlinesAndTabs(options.text) + "\n";
}

Result filled(const TextOptions& options) {
  const auto values = NSMutableDictionary::dictionary();
  for (const std::string_view pair : options.values) {
    const std::size_t end = pair.find('=');
    if (end == std::string_view::npos) return std::nullopt;
    values->setObject(box(pair.substr(end + 1)), pair.substr(0, end));
  }
  return stringByReplacingPlaceholdersWithDictionaryValues(options.text, values) + "\n";
}

struct Operation {
  std::string_view name;
  Result (*result)(const TextOptions& options);
  std::string_view complaint;
};

constexpr std::string_view kNoUTF8 = "the text is no well-formed UTF-8";

constexpr Operation kOperations[] = {
    {"escape-xml", &escapedXML, ""},
    {"escape-url", &escapedURL, kNoUTF8},
    {"decode-url", &decodedURL, "the escapes are not whole, or stand for no well-formed UTF-8"},
    {"words", &words, ""},
    {"md5", &md5, ""},
    {"clean", &cleaned, ""},
    {"fill", &filled, "values are given as KEY=VALUE"},
};

const Operation& operationNamed(std::string_view name) {
  const Operation* operation = kOperations;
  while (operation->name != name)
    ++operation;
  return *operation;
}

ExitCode textCommand(const TextOptions& options) {
  if (!options.values.empty() && options.operation != "fill") {
    complain("\"" + options.operation + "\" takes one text: quote it");
    return ExitCode::usage;
  }
  if (options.locale) NSLocale::setCurrentLocaleIdentifier(options.locale);
  const Operation& operation = operationNamed(options.operation);
  Result result;
  std::string complaint(operation.complaint);
  try {
    result = operation.result(options);
  } catch (const NSException& exception) {
    complaint = exception.reason();
  }
  if (!result) {
    complain(complaint);
    return ExitCode::dataError;
  }
  std::cout << *result;
  return std::cout.flush() ? ExitCode::ok : ExitCode::ioError;
}

}  // namespace

void addTextCommand(CommandLine& line) {
  const auto options = std::make_shared<TextOptions>();
  CLI::App& command = line.addCommand("text", "Escape, decode, split, digest, clean or fill a text",
                                      [options] { return textCommand(*options); });
  command.add_option("OPERATION", options->operation, "What to do with the text")
      ->required()
      ->check(isOneOf(namesOf(kOperations)))
      ->type_name("WORD");
  command.add_option("TEXT", options->text, "The text")->required();
  command.add_option("KEY=VALUE", options->values, "fill: what %@(KEY) stands for");
  addLocaleOption(command, options->locale);
}

}  // namespace rvf::tool
