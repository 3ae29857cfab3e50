// SPDX-License-Identifier: Apache-2.0
#include "tools/manual/Roff.h"

namespace rvf::tool {
namespace {

std::string escaped(char c) {
  switch (c) {
    case '\\':
      return "\\e";
    case '-':
      return "\\-";
    case '\'':
      return "\\(aq";
    case '`':
      return "\\(ga";
    case '^':
      return "\\(ha";
    case '~':
      return "\\(ti";
    case '"':
      return "\\(dq";
    default:
      return std::string(1, c);
  }
}

}  // namespace

std::string roff(std::string_view text) {
  std::string result;
  bool isLineStart = true;
  for (const char c : text) {
    if (isLineStart && c == '.') result += "\\&";
    result += escaped(c);
    isLineStart = c == '\n';
  }
  return result;
}

std::string bold(std::string_view text) {
  return "\\fB" + roff(text) + "\\fR";
}

std::string italic(std::string_view text) {
  return "\\fI" + roff(text) + "\\fR";
}

std::string taggedParagraph(const std::string& roffTerm, const std::string& roffText) {
  return ".TP\n" + roffTerm + "\n" + roffText + "\n";
}

}  // namespace rvf::tool
