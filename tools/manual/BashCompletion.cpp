// SPDX-License-Identifier: Apache-2.0
#include "tools/manual/BashCompletion.h"

namespace rvf::tool {
namespace {

constexpr const char* kStart =
    R"bash(# bash completion of rvf(1), made from the options that the tool reads

# The subcommands of a command.
_rvf_subcommands() {
  case $1 in
)bash";

constexpr const char* kOptions = R"bash(  esac
}

# The options of a command.
_rvf_options() {
  case $1 in
)bash";

constexpr const char* kValues = R"bash(  esac
}

# How an option's value, or the argument at a place, is completed: with words, or as FILE or FOLDER.
# Fails for what takes no value.
_rvf_value() {
  case $1 in
)bash";

constexpr const char* kEnd = R"bash(    *) return 1 ;;
  esac
}

# Completes a word with words, or as FILE or FOLDER.
_rvf_reply() {
  case $1 in
    FILE) compopt -o filenames 2>/dev/null
      mapfile -t COMPREPLY < <(compgen -f -- "$2") ;;
    FOLDER) compopt -o filenames 2>/dev/null
      mapfile -t COMPREPLY < <(compgen -d -- "$2") ;;
    *) mapfile -t COMPREPLY < <(compgen -W "$1" -- "$2") ;;
  esac
}

_rvf() {
  local current=${COMP_WORDS[COMP_CWORD]} command=rvf option='' isPlain='' place=1 index word
  COMPREPLY=()
  for ((index = 1; index < COMP_CWORD; ++index)); do
    word=${COMP_WORDS[index]}
    if [[ -n $option ]]; then
      [[ $word == '=' ]] || option=
    elif [[ -z $isPlain && $word == -- ]]; then
      isPlain=yes
    elif [[ -z $isPlain && $word == -* ]]; then
      if _rvf_value "$command $word" >/dev/null; then option=$word; fi
    elif [[ " $(_rvf_subcommands "$command") " == *" $word "* ]]; then
      command+=" $word"
    else
      ((++place))
    fi
  done
  if [[ -n $option ]]; then
    [[ $current != '=' ]] || current=
    _rvf_reply "$(_rvf_value "$command $option")" "$current"
  elif [[ -z $isPlain && $current == -* ]]; then
    _rvf_reply "$(_rvf_options "$command")" "$current"
  else
    _rvf_reply "$(_rvf_subcommands "$command")$(_rvf_value "$command $place")" "$current"
  fi
}

complete -F _rvf rvf
)bash";

std::string joined(const std::vector<std::string>& words) {
  return CLI::detail::join(words, " ");
}

/// A row of a "case": what is told where `pattern` holds.
std::string row(const std::string& pattern, const std::string& text) {
  return "    " + pattern + ") " + (text.empty() ? "" : "echo '" + text + "' ") + ";;\n";
}

std::string subcommandRows(const CommandRow& command) {
  if (command.subcommands.empty()) return "";
  std::vector<std::string> names;
  std::string rows;
  for (const CommandRow& subcommand : command.subcommands) {
    names.push_back(subcommand.name);
    rows += subcommandRows(subcommand);
  }
  return row("'" + command.path + "'", joined(names)) + rows;
}

/// Options of a command may also stand behind its subcommands.
std::string optionRows(const CommandRow& command, const std::vector<std::string>& inherited) {
  std::vector<std::string> names;
  for (const OptionRow& option : command.options)
    names.insert(names.end(), option.names.begin(), option.names.end());
  std::vector<std::string> all = names;
  for (const std::string& name : inherited) {
    if (name != "-h" && name != "--help") all.push_back(name);
  }
  std::string rows = row("'" + command.path + "'", joined(all));
  for (const CommandRow& subcommand : command.subcommands)
    rows += optionRows(subcommand, all);
  return rows;
}

std::string completionOf(const ValueRow& value) {
  return value.isFile() || value.isFolder() ? value.name : joined(value.choices);
}

std::string valueRows(const CommandRow& command) {
  std::string rows;
  for (const OptionRow& option : command.options) {
    for (const std::string& name : option.names) {
      if (option.hasValue)
        rows += row("'" + command.path + "'*' " + name + "'", completionOf(option.value));
    }
  }
  int place = 0;
  for (const ArgumentRow& argument : command.arguments) {
    const std::string number = std::to_string(++place);
    const std::string completion = completionOf(argument.value);
    if (!completion.empty()) rows += row("'" + command.path + " " + number + "'", completion);
  }
  for (const CommandRow& subcommand : command.subcommands)
    rows += valueRows(subcommand);
  return rows;
}

}  // namespace

std::string bashCompletion(const CommandRow& tool) {
  return kStart + subcommandRows(tool) + kOptions + optionRows(tool, {}) + kValues +
         valueRows(tool) + kEnd;
}

}  // namespace rvf::tool
