// SPDX-License-Identifier: Apache-2.0
#include "tools/manual/CommandTable.h"

#include "tools/rvf/OptionKinds.h"

namespace rvf::tool {
namespace {

/// The words of "{a,b}".
std::vector<std::string> wordsOf(const std::string& choice) {
  return CLI::detail::split(choice.substr(1, choice.size() - 2), ',');
}

std::vector<std::string> choicesOf(CLI::Option& option) {
  try {
    return wordsOf(option.get_validator(kChoiceValidator)->get_description());
  } catch (const CLI::OptionNotFound&) {
    return {};
  }
}

/// The type's own name, which the descriptions of validators follow.
std::string typeName(const CLI::Option& option) {
  const std::string name = option.get_type_name();
  return name.substr(0, name.find(':'));
}

bool isRepeatable(const CLI::Option& option) {
  return option.get_expected_max() >= CLI::detail::expected_max_vector_size ||
         option.get_multi_option_policy() == CLI::MultiOptionPolicy::TakeAll;
}

ArgumentRow argumentRow(CLI::Option& option) {
  ArgumentRow row;
  row.description = option.get_description();
  row.isRequired = option.get_required();
  row.isRepeatable = isRepeatable(option);
  row.value = {option.get_name(true), choicesOf(option)};
  return row;
}

OptionRow optionRow(CLI::Option& option) {
  OptionRow row;
  for (const std::string& name : option.get_snames())
    row.names.push_back("-" + name);
  for (const std::string& name : option.get_lnames())
    row.names.push_back("--" + name);
  row.description = option.get_description();
  row.defaultText = option.get_default_str();
  row.hasValue = option.get_items_expected_max() > 0;
  row.isRepeatable = row.hasValue && isRepeatable(option);
  if (row.hasValue) row.value = {typeName(option), choicesOf(option)};
  return row;
}

}  // namespace

CommandRow commandTable(CLI::App& app, const std::string& path) {
  CommandRow row;
  row.path = path;
  row.name = app.get_name();
  row.description = app.get_description();
  row.prose = app.get_footer();
  for (CLI::Option* option : app.get_options()) {
    if (option->get_positional()) {
      row.arguments.push_back(argumentRow(*option));
    } else {
      row.options.push_back(optionRow(*option));
    }
  }
  for (CLI::App* command : app.get_subcommands(nullptr))
    row.subcommands.push_back(commandTable(*command, path + " " + command->get_name()));
  return row;
}

}  // namespace rvf::tool
