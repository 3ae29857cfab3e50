// SPDX-License-Identifier: Apache-2.0
#include "Platform/System/UUID.h"

#include <gtest/gtest.h>

#include <regex>
#include <set>

namespace rvf {
namespace {

TEST(UUID, TextIsCanonicalUpperCase) {
  const std::regex canonical("[0-9A-F]{8}-[0-9A-F]{4}-4[0-9A-F]{3}-[89AB][0-9A-F]{3}-[0-9A-F]{12}");
  const std::string text = newUUIDText();
  EXPECT_TRUE(std::regex_match(text, canonical)) << text;
}

TEST(UUID, TextsAreDistinct) {
  std::set<std::string> texts;
  for (int i = 0; i < 1000; ++i)
    texts.insert(newUUIDText());
  EXPECT_EQ(texts.size(), 1000U);
}

}  // namespace
}  // namespace rvf
