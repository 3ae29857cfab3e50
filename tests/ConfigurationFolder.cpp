// SPDX-License-Identifier: Apache-2.0
//
// The standard user defaults of a test program, which the current locale is read from, lie in a new
// folder, not in the home of whoever runs it.

#include <gtest/gtest.h>
#include <stdlib.h>

#include <filesystem>
#include <string>

namespace {

class ConfigurationFolder final : public testing::Environment {
 public:
  void SetUp() override {
    path_ = std::filesystem::temp_directory_path() / "Configuration.XXXXXX";
    ASSERT_NE(mkdtemp(path_.data()), nullptr);
    ASSERT_EQ(setenv("XDG_CONFIG_HOME", path_.c_str(), 1), 0);
  }
  void TearDown() override { std::filesystem::remove_all(path_); }

 private:
  std::string path_;
};

// GoogleTest owns it.
[[maybe_unused]] const testing::Environment* const kFolder =
    testing::AddGlobalTestEnvironment(new ConfigurationFolder);

}  // namespace
