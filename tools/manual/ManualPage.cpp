// SPDX-License-Identifier: Apache-2.0
#include "tools/manual/ManualPage.h"

#include "tools/manual/Roff.h"
#include "tools/terminal/ExitCode.h"

namespace rvf::tool {
namespace {

/// What a table of the page lists, and what it says of it.
struct Entry {
  const char* term;
  const char* text;
};

constexpr const char* kDescription =
    "rvf does on the command line what the RVFoundation library does inside a point-of-sale "
    "client: it finds the store's server and reads its answers, sends and observes notifications, "
    "reads card swipes and typed dates, and writes and reads values for people. Results go to "
    "standard output, problems to standard error, and the exit status says what kind they are of.";

constexpr const char* kJson =
    "With --json a command prints one JSON object, or one a line where it says so. Why something "
    "cannot be done is an object, too, with the members domain, code and message; the exit status "
    "is the same as without --json. A wrong command line is told on standard error alone. All of "
    "it is described by the JSON Schemas (draft 2020-12) in share/rvfoundation/schemas of the "
    "installation, one file a command.";

constexpr Entry kEnvironment[] = {
    {"LC_ALL, LC_MESSAGES, LANG",
     "The first that is set names the locale of messages and formats."},
    {"TZ", "The time zone of dates, if it is not the machine's."},
    {"XDG_CONFIG_HOME, HOME", "Where the list of servers is kept, see FILES."},
    {"NO_COLOR", "Any text but an empty one switches colour off."},
    {"TERM", "Empty or \"dumb\": no colour, and no line of progress."},
    {"DBUS_SYSTEM_BUS_ADDRESS", "The bus on which the Avahi daemon is looked for."},
};

constexpr Entry kFiles[] = {
    {"$XDG_CONFIG_HOME/rvf/defaults.plist, ~/.config/rvf/defaults.plist",
     "The list of hand-entered servers, a property list for its owner only."},
};

constexpr Entry kExamples[] = {
    {"rvf browse --for 5", "Lists the servers that tell of themselves within five seconds."},
    {"rvf connect --static 192.168.1.10",
     "Asks the server at an address for its catalogue, and tells how much came."},
    {"rvf connect \"Till 3\" --ca-file store.pem --json",
     "The same with a server that is found by its name, and verified against an authority of the "
     "store's own."},
    {"rvf observe _menu-changed._tcp", "Waits for a notification."},
    {"rvf expiry 12/31", "Reads a typed expiry date."},
    {"rvf filter 'name CONTAINS[cd] $S AND price > 10' --set S='red shoe' < products.json",
     "Prints the products whose name has both words in it."},
    {"rvf format currency 1234.5 --locale de_DE", "Writes an amount as Germans read it."},
    {"rvf period last-day-of-previous-month --date 2024-03-12", "Prints a day in February 2024."},
    {"rvf servers add 192.168.1.10 --description 'Till 3'", "Keeps a server's address."},
};

std::string section(const std::string& title) {
  return ".SH " + title + "\n";
}

/// A description as a sentence.
std::string sentence(const std::string& text) {
  return roff(text) + (text.ends_with('.') ? "" : ".");
}

std::string capitalized(std::string text) {
  if (text[0] >= 'a' && text[0] <= 'z') text[0] = static_cast<char>(text[0] - 'a' + 'A');
  return text;
}

std::string choicesText(const ValueRow& value) {
  if (value.choices.empty()) return "";
  std::string text = "\nOne of";
  for (const std::string& choice : value.choices)
    text += (&choice == &value.choices.front() ? " " : ", ") + bold(choice);
  return text + ".";
}

std::string optionTerm(const OptionRow& option) {
  std::string term;
  for (const std::string& name : option.names)
    term += (term.empty() ? "" : ", ") + bold(name);
  return option.hasValue ? term + " " + italic(option.value.name) : term;
}

std::string optionText(const OptionRow& option) {
  const std::string start = sentence(option.description) + choicesText(option.value);
  if (option.defaultText.empty()) return start;
  return start + "\nDefault: " + bold(option.defaultText) + ".";
}

std::string optionParagraphs(const CommandRow& command, bool withHelp) {
  std::string text;
  for (const OptionRow& option : command.options) {
    if (withHelp || option.names.back() != "--help")
      text += taggedParagraph(optionTerm(option), optionText(option));
  }
  return text;
}

std::string argumentParagraphs(const CommandRow& command) {
  std::string text;
  for (const ArgumentRow& argument : command.arguments)
    text += taggedParagraph(italic(argument.value.name),
                            sentence(argument.description) + choicesText(argument.value));
  return text;
}

std::string optionUsage(const OptionRow& option) {
  const std::string value = option.hasValue ? "\\ " + italic(option.value.name) : "";
  return " [" + bold(option.names.back()) + value + "]" + (option.isRepeatable ? "..." : "");
}

std::string argumentUsage(const ArgumentRow& argument) {
  const std::string name = italic(argument.value.name) + (argument.isRepeatable ? "..." : "");
  return argument.isRequired ? " " + name : " [" + name + "]";
}

std::string usage(const CommandRow& command) {
  std::string text = bold(command.path);
  for (const OptionRow& option : command.options) {
    if (option.names.back() != "--help") text += optionUsage(option);
  }
  for (const ArgumentRow& argument : command.arguments)
    text += argumentUsage(argument);
  return text + (command.subcommands.empty() ? "" : " " + italic("COMMAND")) + "\n";
}

std::string commandSections(const CommandRow& command) {
  std::string text = ".SS " + roff(command.path) + "\n" + usage(command) + ".PP\n" +
                     sentence(command.description) + "\n";
  if (!command.prose.empty()) text += ".PP\n" + roff(command.prose) + "\n";
  text += argumentParagraphs(command) + optionParagraphs(command, false);
  for (const CommandRow& subcommand : command.subcommands)
    text += commandSections(subcommand);
  return text;
}

std::string exitStatusSection() {
  std::string text = section("EXIT STATUS") + "The codes are those of\n.IR sysexits.h (3head).\n";
  for (const ExitCodeMeaning& row : kExitCodes) {
    const std::string number = std::to_string(static_cast<int>(row.code));
    text += taggedParagraph(bold(number) + " (" + roff(row.name) + ")",
                            sentence(capitalized(row.meaning)));
  }
  return text;
}

template <class Entries>
std::string entrySection(const std::string& title, const Entries& entries) {
  std::string text = section(title);
  for (const Entry& entry : entries)
    text += taggedParagraph(bold(entry.term), roff(entry.text));
  return text;
}

}  // namespace

std::string manualPage(const CommandRow& tool, const Edition& edition) {
  std::string text = ".\\\" Made from the options that the tool reads.\n.TH RVF 1 " + edition.date +
                     " \"rvf " + edition.version + "\" \"User Commands\"\n.nh\n.ad l\n";
  text += section("NAME") + "rvf \\- tools of a point\\-of\\-sale client and its servers\n";
  text += section("SYNOPSIS") + bold("rvf") + " [" + italic("OPTION") + "...] " +
          italic("COMMAND") + " [" + italic("ARGUMENT") + "...]\n";
  text += section("DESCRIPTION") + roff(kDescription) + "\n";
  text += section("OPTIONS") +
          "They may also stand behind a command; \\fB\\-\\-help\\fR is about it then.\n" +
          optionParagraphs(tool, true);
  text += section("COMMANDS");
  for (const CommandRow& command : tool.subcommands)
    text += commandSections(command);
  text += section("JSON OUTPUT") + roff(kJson) + "\n" + exitStatusSection();
  text += entrySection("ENVIRONMENT", kEnvironment) + entrySection("FILES", kFiles) +
          entrySection("EXAMPLES", kExamples);
  return text + section("SEE ALSO") + ".BR avahi\\-browse (1),\n.BR logger (1),\n.BR locale (7)\n";
}

}  // namespace rvf::tool
