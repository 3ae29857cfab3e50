// SPDX-License-Identifier: Apache-2.0
#include "Platform/Text/PathText.h"

#include <gtest/gtest.h>

namespace rvf {
namespace {

TEST(PathText, PutsOneSeparatorBetweenPathAndComponent) {
  struct Row {
    const char* path;
    const char* component;
    const char* expected;
  };
  const Row rows[] = {
      {"/tmp", "x", "/tmp/x"},
      {"/tmp/", "x", "/tmp/x"},
      {"/", "x", "/x"},
      {"", "x", "x"},
      {"/tmp", "/x", "/tmp/x"},
      {"/tmp//", "x", "/tmp/x"},
      {"/tmp", "x/", "/tmp/x"},
      {"", "", ""},
      {"/", "", "/"},
      {"/tmp/", "", "/tmp"},
      {"", "/", "/"},
      {"//a//b", "c//d//", "/a/b/c/d"},
      {"http://h/a", "b", "http:/h/a/b"},
      {"ä", "ö", "ä/ö"},
  };
  for (const Row& row : rows)
    EXPECT_EQ(appendPathComponent(row.path, row.component), row.expected)
        << row.path << ' ' << row.component;
}

}  // namespace
}  // namespace rvf
