// SPDX-License-Identifier: Apache-2.0
#include "Platform/Network/HostName.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <string_view>

namespace rvf {
namespace {

struct MachineInfoCase {
  std::string_view text;
  std::optional<std::string> name;
};

TEST(HostName, ReadsThePrettyNameAsAShellWould) {
  const MachineInfoCase cases[] = {
      {"PRETTY_HOSTNAME=Till\n", "Till"},
      {"PRETTY_HOSTNAME=\"Front desk till\"\n", "Front desk till"},
      {"PRETTY_HOSTNAME='Bob\"s till'", "Bob\"s till"},
      {"PRETTY_HOSTNAME=\"Bob\\\"s\"", "Bob\"s"},
      {"# note\nCHASSIS=desktop\nPRETTY_HOSTNAME=\"Kasse Süd\"\n", "Kasse Süd"},
      {"PRETTY_HOSTNAME=One\nPRETTY_HOSTNAME=Two\n", "Two"},
      {"PRETTY_HOSTNAME=\"\"\n", std::nullopt},
      {"#PRETTY_HOSTNAME=No\n", std::nullopt},
      {"", std::nullopt},
  };
  for (const auto& [text, name] : cases)
    EXPECT_EQ(prettyHostName(text), name) << text;
}

TEST(HostName, IsNeverEmpty) {
  EXPECT_FALSE(computerName().empty());
  EXPECT_FALSE(hostLabel().empty());
  EXPECT_EQ(hostLabel().find('.'), std::string::npos);
}

}  // namespace
}  // namespace rvf
