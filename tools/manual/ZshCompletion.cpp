// SPDX-License-Identifier: Apache-2.0
#include "tools/manual/ZshCompletion.h"

#include <string_view>

namespace rvf::tool {
namespace {

constexpr const char* kStart = R"(#compdef rvf
# zsh completion of rvf(1), made from the options that the tool reads
)";

constexpr const char* kEnd = R"(
if [[ $funcstack[1] == _rvf ]]; then
  _rvf "$@"
else
  compdef _rvf rvf
fi
)";

/// The text with a backslash before these characters.
std::string escaped(std::string_view text, std::string_view characters) {
  std::string result;
  for (const char c : text) {
    if (characters.find(c) != std::string_view::npos) result += '\\';
    result += c;
  }
  return result;
}

std::string singleQuoted(std::string_view text) {
  std::string result = "'";
  for (const char c : text)
    result += c == '\'' ? "'\\''" : std::string(1, c);
  return result + "'";
}

std::string functionName(const CommandRow& command) {
  std::string name = "_" + command.path;
  for (char& c : name) {
    if (c == ' ') c = '_';
  }
  return name;
}

/// ":NAME:ACTION".
std::string valueText(const ValueRow& value) {
  const std::string start = ":" + escaped(value.name, "\\:") + ":";
  if (value.isFile()) return start + "_files";
  if (value.isFolder()) return start + "_files -/";
  if (value.choices.empty()) return start;
  return start + "(" + CLI::detail::join(value.choices, " ") + ")";
}

/// A line of a call of `_arguments`.
std::string line(const std::string& text) {
  return "    " + text + " \\\n";
}

std::string optionLine(const OptionRow& option) {
  const std::string names = CLI::detail::join(option.names, " ");
  const std::string rest = "[" + escaped(option.description, "\\[]") + "]" +
                           (option.hasValue ? valueText(option.value) : "");
  if (option.isRepeatable) return line(singleQuoted("*" + names + rest));
  const bool endsAll = names.find("--help") != std::string::npos || names == "--version";
  const std::string excluded = "(" + (endsAll ? "- *" : names) + ")";
  if (option.names.size() == 1) return line(singleQuoted(excluded + names + rest));
  return line(singleQuoted(excluded) + "{" + CLI::detail::join(option.names, ",") + "}" +
              singleQuoted(rest));
}

std::string argumentLine(const ArgumentRow& argument, int place) {
  const std::string start = argument.isRepeatable ? "*" : std::to_string(place);
  const bool isOptional = !argument.isRequired && !argument.isRepeatable;
  return line(singleQuoted(start + (isOptional ? ":" : "") + valueText(argument.value)));
}

std::string describedSubcommands(const CommandRow& command) {
  std::string lines;
  for (const CommandRow& subcommand : command.subcommands)
    lines += "        " +
             singleQuoted(subcommand.name + ":" + escaped(subcommand.description, "\\")) + "\n";
  return lines;
}

std::string cases(const CommandRow& command) {
  std::string lines;
  for (const CommandRow& subcommand : command.subcommands)
    lines += "        " + subcommand.name + ") " + functionName(subcommand) + " && result=0 ;;\n";
  return lines;
}

std::string dispatch(const CommandRow& command) {
  return line("'1:command:->command'") + "    '*::argument:->argument' && result=0\n" +
         "  case $state in\n    command)\n      commands=(\n" + describedSubcommands(command) +
         "      )\n      _describe -t commands command commands && result=0\n      ;;\n"
         "    argument)\n      case $words[1] in\n" +
         cases(command) + "      esac\n      ;;\n  esac\n  return result\n";
}

std::string function(const CommandRow& command, const std::vector<OptionRow>& options) {
  const bool isLeaf = command.subcommands.empty();
  std::string text = "\n" + functionName(command) + "() {\n";
  if (!isLeaf) text += "  local state result=1\n  local -a line commands\n  typeset -A opt_args\n";
  text += isLeaf ? "  _arguments -s -S \\\n" : "  _arguments -C -s -S \\\n";
  for (const OptionRow& option : options)
    text += optionLine(option);
  int place = 0;
  for (const ArgumentRow& argument : command.arguments)
    text += argumentLine(argument, ++place);
  if (!isLeaf) return text + dispatch(command) + "}\n";
  return text.substr(0, text.size() - 3) + "\n}\n";  // without the last " \"
}

/// A command's options with those of its parents, which may also stand behind it.
std::vector<OptionRow> allOptions(const CommandRow& command,
                                  const std::vector<OptionRow>& inherited) {
  std::vector<OptionRow> options = command.options;
  for (const OptionRow& option : inherited) {
    if (option.names.back() != "--help") options.push_back(option);
  }
  return options;
}

std::string functions(const CommandRow& command, const std::vector<OptionRow>& inherited) {
  const std::vector<OptionRow> options = allOptions(command, inherited);
  std::string text;
  for (const CommandRow& subcommand : command.subcommands)
    text += functions(subcommand, options);
  return text + function(command, options);
}

}  // namespace

std::string zshCompletion(const CommandRow& tool) {
  return kStart + functions(tool, {}) + kEnd;
}

}  // namespace rvf::tool
