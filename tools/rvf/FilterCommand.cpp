// SPDX-License-Identifier: Apache-2.0
#include "tools/rvf/FilterCommand.h"

#include <algorithm>
#include <iostream>
#include <iterator>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "Platform/Predicates/NSComparisonPredicate.h"
#include "Platform/Predicates/PredicateFormatException.h"
#include "Platform/Runtime/NSException.h"
#include "Platform/Text/Format.h"
#include "Platform/Text/Utf8.h"
#include "Platform/Values/NSMutableDictionary.h"
#include "Platform/Values/NSString.h"
#include "RVFoundation/RuntimeServices/NSPredicate-RVFExtensions.h"
#include "RVFoundation/RuntimeServices/NSPredicate-RVFVisiting.h"
#include "RVFoundation/RuntimeServices/NSString-RVFPredicateExtensions.h"
#include "tools/rvf/CommandLine.h"
#include "tools/rvf/Finding.h"
#include "tools/rvf/OptionKinds.h"
#include "tools/rvf/RecordReader.h"
#include "tools/terminal/ExitCode.h"

namespace rvf::tool {
namespace {

struct FilterOptions {
  std::string predicate;
  std::vector<std::string> settings;  ///< "NAME=TEXT"
};

using Json = nlohmann::ordered_json;

/// A wrong command line, as opposed to wrong records.
class UsageError final : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

Ref<NSPredicate> readPredicate(const std::string& text) {
  try {
    return NSPredicate::predicateWithFormat(text);
  } catch (const PredicateFormatException& exception) {
    throw UsageError("the predicate, at character " + std::to_string(exception.position() + 1) +
                     ": " + exception.problem());
  }
}

Ref<NSDictionary> readSettings(const std::vector<std::string>& settings) {
  const auto values = NSMutableDictionary::dictionary();
  for (const std::string_view setting : settings) {
    const std::size_t end = setting.find('=');
    if (end == std::string_view::npos || end == 0)
      throw UsageError("texts are set as NAME=TEXT, not as \"" + std::string(setting) + "\"");
    values->setObject(box(setting.substr(end + 1)), setting.substr(0, end));
  }
  return values;
}

void collectVariables(const NSExpression& expression, std::set<std::string>& names) {
  if (expression.expressionType() == NSVariableExpressionType) names.insert(expression.variable());
  if (expression.expressionType() != NSAggregateExpressionType) return;
  for (const id& element : expression.collection()->objects())
    collectVariables(static_cast<const NSExpression&>(*element), names);
}

/// What a predicate read from a text is made of, as far as filling it depends on that.
struct Parts {
  std::set<std::string> variables;
  bool hasConstants = false;  ///< TRUEPREDICATE or FALSEPREDICATE
};

Parts partsOf(const Ref<NSPredicate>& predicate) {
  Parts parts;
  visitSubpredicatesWithPreOrderPredicateHandler(
      predicate,
      [&parts](const Ref<NSPredicate>& part, bool isCompound) {
        const auto* comparison = dynamic_cast<const NSComparisonPredicate*>(part.get());
        if (!comparison) {
          parts.hasConstants = parts.hasConstants || !isCompound;
          return;
        }
        collectVariables(*comparison->leftExpression(), parts.variables);
        collectVariables(*comparison->rightExpression(), parts.variables);
      },
      nullptr);
  return parts;
}

bool hasSeveralWords(const NSDictionary& values) {
  return std::ranges::any_of(values.entries(), [](const auto& entry) {
    return RVF_wordComponents(unboxText(entry.second).value_or("")).size() > 1;
  });
}

void requireFillable(const Parts& parts, const NSDictionary& values) {
  for (const std::string& name : parts.variables)
    if (!values.objectForKey(name))
      throw UsageError(
          stringWithFormat("$%@ has no text: give it one with --set %@=TEXT", name, name));
  if (parts.hasConstants && hasSeveralWords(values))
    throw UsageError(
        "TRUEPREDICATE and FALSEPREDICATE cannot be joined with texts of several words");
}

/// The predicate with its variables filled in, word by word where they are a side of a comparison.
Ref<NSPredicate> filledPredicate(const FilterOptions& options) {
  const Ref<NSPredicate> predicate = readPredicate(options.predicate);
  const Ref<NSDictionary> values = readSettings(options.settings);
  const Parts parts = partsOf(predicate);
  if (parts.variables.empty()) return predicate;
  requireFillable(parts, *values);
  try {
    return RVF_predicateWithMultiWordSubstitutionVariables(predicate, values)
        ->predicateWithSubstitutionVariables(values);
  } catch (const NSException& exception) {
    throw UsageError("the predicate cannot be filled: " + exception.reason());
  }
}

bool holds(const NSPredicate& predicate, const Json& json, std::size_t number) {
  try {
    return predicate.evaluateWithObject(recordOf(json));
  } catch (const RecordError& error) {
    throw RecordError("record " + std::to_string(number) + " " + error.what());
  } catch (const NSException& exception) {
    throw RecordError("record " + std::to_string(number) + ": " + exception.reason());
  }
}

Json parsed(std::string_view text, const std::string& place) {
  try {
    return Json::parse(text);
  } catch (const Json::parse_error& error) {
    throw RecordError(place + " is no JSON: " + error.what());
  }
}

/// The blanks before the first record, which tell where it stands.
std::string takeBlanks(std::istream& input) {
  constexpr std::string_view kJsonBlanks = " \t\r\n";
  std::string blanks;
  while (input && kJsonBlanks.find(static_cast<char>(input.peek())) != std::string_view::npos)
    blanks += static_cast<char>(input.get());
  return blanks;
}

void filterArray(std::istream& input, std::string text, const NSPredicate& predicate) {
  text.append(std::istreambuf_iterator<char>(input), {});
  const Json records = parsed(text, "standard input");
  Json found = Json::array();
  std::size_t number = 0;
  for (const Json& json : records)
    if (holds(predicate, json, ++number)) found.push_back(json);
  std::cout << found.dump() << "\n";
}

void filterLines(std::istream& input, std::string_view blanks, const NSPredicate& predicate) {
  std::size_t number = 0;
  auto lineNumber = static_cast<std::size_t>(std::ranges::count(blanks, '\n'));
  std::string start(blanks.substr(blanks.rfind('\n') + 1));
  for (std::string line; std::cout && std::getline(input, line); start.clear()) {
    ++lineNumber;
    line.insert(0, start);
    if (withoutPrefix(line, &isWhiteSpaceOrNewline).empty()) continue;
    const Json json = parsed(line, "line " + std::to_string(lineNumber));
    if (holds(predicate, json, ++number)) std::cout << line << "\n";
  }
}

ExitCode filterCommand(const FilterOptions& options) {
  try {
    const Ref<NSPredicate> predicate = filledPredicate(options);
    const std::string blanks = takeBlanks(std::cin);
    std::cin.peek() == '[' ? filterArray(std::cin, blanks, *predicate)
                           : filterLines(std::cin, blanks, *predicate);
  } catch (const UsageError& error) {
    complain(error.what());
    return ExitCode::usage;
  } catch (const RecordError& error) {
    std::cout.flush();
    complain(error.what());
    return ExitCode::dataError;
  }
  if (std::cin.bad()) {
    complain("standard input cannot be read");
    return ExitCode::noInput;
  }
  return std::cout.flush() ? ExitCode::ok : ExitCode::ioError;
}

}  // namespace

void addFilterCommand(CommandLine& line) {
  const auto options = std::make_shared<FilterOptions>();
  CLI::App& command = line.addCommand(
      "filter",
      "Read JSON objects from standard input, each in a line of its own or all in one array, and "
      "print those that match a predicate",
      [options] { return filterCommand(*options); });
  command
      .add_option("PREDICATE", options->predicate,
                  "For example: name CONTAINS[cd] $S AND price > 10")
      ->required();
  command
      .add_option("--set", options->settings,
                  "The text of a variable; each of its words is compared; may be given repeatedly")
      ->type_name("NAME=TEXT")
      ->expected(1)
      ->allow_extra_args(false)
      ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
  command.footer(
      "Predicates compare keys or key paths with values: =, !=, <, <=, >, >=, BETWEEN, IN,\n"
      "BEGINSWITH, ENDSWITH, CONTAINS, LIKE (with * and ?) and MATCHES (a regular expression), "
      "with\n"
      "[c] for any case and [d] for any diacritics. ANY, ALL and NONE stand before a key of "
      "several\n"
      "values; AND, OR, NOT and parentheses join. $NAME stands for the text that --set gives.");
}

}  // namespace rvf::tool
