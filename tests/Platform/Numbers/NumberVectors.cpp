// SPDX-License-Identifier: Apache-2.0
#include "tests/Platform/Numbers/NumberVectors.h"

#include <fstream>
#include <sstream>
#include <stdexcept>

namespace rvf::tests {
namespace {

using Fields = decltype(NumberVector::fields);

std::vector<std::string> linesOf(const std::string& path) {
  std::ifstream file(path);
  if (!file) throw std::runtime_error("cannot read " + path);
  std::vector<std::string> lines;
  for (std::string line; std::getline(file, line);)
    lines.push_back(line);
  return lines;
}

std::vector<std::string> columnsOf(std::string_view line) {
  std::vector<std::string> columns(1);
  for (const char character : line) {
    if (character == '\t')
      columns.emplace_back();
    else
      columns.back() += character;
  }
  return columns;
}

/// Appends a character below U+10000.
void appendUtf8(std::string& text, unsigned long codePoint) {
  const auto append = [&text](unsigned long byte) { text += static_cast<char>(byte); };
  if (codePoint < 0x80) {
    append(codePoint);
    return;
  }
  if (codePoint < 0x800) {
    append(0xC0 | codePoint >> 6);
  } else {
    append(0xE0 | codePoint >> 12);
    append(0x80 | (codePoint >> 6 & 0x3F));
  }
  append(0x80 | (codePoint & 0x3F));
}

/// With every "\uXXXX" as the character that it stands for.
std::string unescaped(std::string_view text) {
  std::string result;
  while (!text.empty()) {
    const bool isEscape = text.starts_with("\\u") && text.size() >= 6;
    if (isEscape) {
      appendUtf8(result, std::stoul(std::string(text.substr(2, 4)), nullptr, 16));
    } else {
      result += text.front();
    }
    text.remove_prefix(isEscape ? 6 : 1);
  }
  return result;
}

void addSetting(Fields& fields, std::string_view line) {
  const std::size_t blank = line.find(' ');
  fields[std::string(line.substr(0, blank))] =
      blank == std::string_view::npos ? "" : unescaped(line.substr(blank + 1));
}

/// Takes one test of the file, line by line.
class TestReader {
 public:
  void read(const std::string& line, int number, std::vector<NumberVector>& rows) {
    if (line.starts_with("//")) return;
    if (line.empty()) {
      *this = TestReader();
    } else if (isInRows_) {
      readRow(line, number, rows);
    } else if (line == "begin") {
      isInRows_ = true;
    } else if (line.starts_with("set ")) {
      addSetting(settings_, std::string_view(line).substr(4));
    } else if (line.starts_with("test ")) {
      name_ = line.substr(5);
    }
  }

 private:
  void readRow(const std::string& line, int number, std::vector<NumberVector>& rows) {
    const std::vector<std::string> columns = columnsOf(line);
    if (names_.empty()) {
      names_ = columns;
      return;
    }
    NumberVector row{name_, number, settings_};
    for (std::size_t i = 0; i < columns.size() && i < names_.size(); ++i)
      row.fields[names_[i]] = unescaped(columns[i]);
    rows.push_back(std::move(row));
  }

  std::string name_;
  Fields settings_;
  std::vector<std::string> names_;
  bool isInRows_ = false;
};

}  // namespace

std::string NumberVector::value(std::string_view field, std::string_view otherwise) const {
  const auto found = fields.find(field);
  return found == fields.end() ? std::string(otherwise) : found->second;
}

std::vector<NumberVector> readTestSpecification(const std::string& path) {
  std::vector<NumberVector> rows;
  TestReader reader;
  int number = 0;
  for (const std::string& line : linesOf(path))
    reader.read(line, ++number, rows);
  return rows;
}

std::vector<NumberVector> readDecimalFormatTests(const std::string& path) {
  std::vector<NumberVector> rows;
  int number = 0;
  for (const std::string& line : linesOf(path)) {
    ++number;
    std::istringstream words(line);
    std::string command, pattern, rounding, decimal, output;
    words >> command >> pattern >> rounding >> decimal >> output;
    if (command != "format") continue;
    const auto inner = [](const std::string& quoted) {
      return quoted.substr(1, quoted.size() - 2);
    };
    rows.push_back({"decimal format",
                    number,
                    {{"pattern", pattern},
                     {"roundingMode", rounding},
                     {"format", inner(decimal)},
                     {"output", inner(output)}}});
  }
  return rows;
}

}  // namespace rvf::tests
