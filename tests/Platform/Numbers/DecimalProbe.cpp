// SPDX-License-Identifier: Apache-2.0
//
// Calculates with decimal numbers for a test that knows the right results: one calculation a line
// on standard input, its result and error number on standard output.
//
//   add|subtract|multiply|divide A B MODE SCALE    round A SCALE MODE    compare A B
//   read TEXT...

#include <iostream>
#include <sstream>
#include <string>

#include "Platform/Numbers/NSDecimal.h"

namespace {

using rvf::NSDecimal;

NSDecimal number(std::istream& line) {
  std::string text;
  line >> text;
  return NSDecimal::fromText(text);
}

rvf::NSRoundingMode mode(std::istream& line) {
  int number = 0;
  line >> number;
  return static_cast<rvf::NSRoundingMode>(number);
}

int integer(std::istream& line) {
  int number = 0;
  line >> number;
  return number;
}

using Operation = rvf::NSDecimalResult (*)(const NSDecimal&, const NSDecimal&, rvf::NSRoundingMode,
                                           int) noexcept;

Operation operationNamed(const std::string& name) {
  if (name == "add") return &rvf::NSDecimalAdd;
  if (name == "subtract") return &rvf::NSDecimalSubtract;
  if (name == "multiply") return &rvf::NSDecimalMultiply;
  return name == "divide" ? &rvf::NSDecimalDivide : nullptr;
}

rvf::NSDecimalResult calculate(const std::string& name, std::istream& line) {
  if (name == "read") {
    std::string text;
    std::getline(line.ignore(), text);
    return {NSDecimal::fromText(text)};
  }
  const NSDecimal a = number(line);
  if (name == "round") {
    const int scale = integer(line);
    return rvf::NSDecimalRound(a, scale, mode(line));
  }
  const NSDecimal b = number(line);
  if (name == "compare") return {NSDecimal::fromInteger(std::int64_t{rvf::NSDecimalCompare(a, b)})};
  const Operation operation = operationNamed(name);
  if (!operation) return {NSDecimal::notANumber(), rvf::NSCalculationDivideByZero};
  const rvf::NSRoundingMode rounding = mode(line);
  return operation(a, b, rounding, integer(line));
}

}  // namespace

int main() {
  std::ios::sync_with_stdio(false);
  for (std::string line; std::getline(std::cin, line);) {
    std::istringstream words(line);
    std::string name;
    words >> name;
    const rvf::NSDecimalResult result = calculate(name, words);
    std::cout << result.value.text() << ' ' << int{result.error} << '\n';
  }
  return std::cout.flush() ? 0 : 1;
}
