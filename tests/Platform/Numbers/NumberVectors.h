// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace rvf::tests {

/// One row of a file of test vectors: what is set, and what must come out, by field name.
struct NumberVector {
  std::string test;
  int line = 0;
  std::map<std::string, std::string, std::less<>> fields;

  bool has(std::string_view field) const { return fields.find(field) != fields.end(); }
  std::string value(std::string_view field, std::string_view otherwise = {}) const;
};

/// The rows of `numberformattestspecification.txt`: settings of a test hold for all of its rows.
/// Escapes ("\u202f") are resolved. Throws `std::runtime_error` if the file cannot be read.
std::vector<NumberVector> readTestSpecification(const std::string& path);

/// The "format" rows of `dcfmtest.txt`, with the same field names.
std::vector<NumberVector> readDecimalFormatTests(const std::string& path);

}  // namespace rvf::tests
