// SPDX-License-Identifier: Apache-2.0
#include "Platform/Storage/NSUserDefaults.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <stdlib.h>
#include <sys/stat.h>

#include <filesystem>
#include <string>
#include <utility>

#include "Platform/Runtime/Messaging.h"
#include "Platform/Values/NSNumber.h"
#include "Platform/Values/NSString.h"
#include "tests/Platform/Storage/DefaultsInAFile.h"

namespace rvf {
namespace {

using NSUserDefaultsTest = DefaultsInAFile;

TEST_F(NSUserDefaultsTest, WritesABinaryListForItsOwnerOnly) {
  defaults_->setInteger(1, "a");
  EXPECT_TRUE(defaults_->synchronize());
  EXPECT_THAT(bytesOf(path_), testing::StartsWith("bplist00"));
  struct stat status = {};
  for (const auto& [path, mode] : {std::pair(path_, 0600), std::pair(path_ + ".lock", 0600),
                                   std::pair(folder_.file("till"), 0700)}) {
    EXPECT_EQ(stat(path.c_str(), &status), 0) << path;
    EXPECT_EQ(status.st_mode & 0777, mode) << path;
  }
}

TEST_F(NSUserDefaultsTest, ReadsWithoutMakingAnything) {
  EXPECT_FALSE(defaults_->objectForKey("a"));
  EXPECT_TRUE(defaults_->synchronize());
  EXPECT_FALSE(std::filesystem::exists(folder_.file("till")));
}

TEST_F(NSUserDefaultsTest, WritesOnlyWhenSynchronized) {
  defaults_->setInteger(1, "a");
  EXPECT_FALSE(std::filesystem::exists(path_));
  EXPECT_EQ(defaults_->integerForKey("a"), 1);
}

TEST_F(NSUserDefaultsTest, AbsentRemoves) {
  defaults_->setInteger(1, "a");
  defaults_->setInteger(1, "b");
  defaults_->synchronize();
  defaults_->setObject(nullptr, "a");
  defaults_->removeObjectForKey("b");
  defaults_->removeObjectForKey("never there");
  EXPECT_FALSE(defaults_->objectForKey("a"));
  EXPECT_TRUE(defaults_->synchronize());
  EXPECT_FALSE(stored("a"));
  EXPECT_FALSE(stored("b"));
}

TEST_F(NSUserDefaultsTest, RegisteredValuesShowWhereNoneIsSet) {
  defaults_->setInteger(9, "a");
  defaults_->registerDefaults(
      NSDictionary::dictionaryWithEntries({{"a", box(1)}, {"b", box(2)}, {"c", box(3)}}));
  defaults_->registerDefaults(NSDictionary::dictionaryWithEntries({{"c", box(4)}}));
  defaults_->registerDefaults(nullptr);
  EXPECT_EQ(defaults_->integerForKey("a"), 9);
  EXPECT_EQ(defaults_->integerForKey("b"), 2);
  EXPECT_EQ(defaults_->integerForKey("c"), 4);
  defaults_->removeObjectForKey("a");
  defaults_->removeObjectForKey("b");
  EXPECT_EQ(defaults_->integerForKey("a"), 1);
  EXPECT_EQ(defaults_->integerForKey("b"), 2);
  EXPECT_TRUE(defaults_->synchronize());
  EXPECT_FALSE(stored("b")) << "registered values are not stored";
}

TEST_F(NSUserDefaultsTest, AFileInAnotherFormIsReadAndThenWrittenInBinary) {
  std::filesystem::create_directories(folder_.file("till"));
  writeBytes(path_, "{ name = \"Till 3\"; }");
  EXPECT_EQ(unboxText(defaults_->stringForKey("name")), "Till 3");
  defaults_->setInteger(1, "a");
  EXPECT_TRUE(defaults_->synchronize());
  EXPECT_THAT(bytesOf(path_), testing::StartsWith("bplist00"));
  EXPECT_EQ(unboxText(stored("name")), "Till 3");
}

TEST_F(NSUserDefaultsTest, AnswersMessages) {
  send(defaults_, SEL("setInteger:forKey:"), 5L, std::string("k"));
  EXPECT_EQ(send<long>(defaults_, SEL("integerForKey:"), std::string("k")), 5);
  EXPECT_TRUE(send<bool>(defaults_, SEL("synchronize")));
}

TEST(NSUserDefaults, LiesWhereTheEnvironmentSays) {
  EXPECT_EQ(NSUserDefaults::filePath("/c", "/h", "till"), "/c/till/defaults.plist");
  EXPECT_EQ(NSUserDefaults::filePath("", "/h", "till"), "/h/.config/till/defaults.plist");
  EXPECT_EQ(NSUserDefaults::filePath("relative", "/h", "till"), "/h/.config/till/defaults.plist");
  EXPECT_THAT(NSUserDefaults::filePath("", "", "till"),
              testing::EndsWith("/.config/till/defaults.plist"));
}

TEST(NSUserDefaults, TheStandardOnesAreSharedAndNamedBeforeTheirUse) {
  const TemporaryFolder folder;
  ASSERT_EQ(setenv("XDG_CONFIG_HOME", folder.path().c_str(), 1), 0);
  for (const char* name : {"", ".", "..", "a/b"}) {
    EXPECT_EQ(nameOfException([&] { NSUserDefaults::setStandardFolderName(name); }),
              NSInvalidArgumentException)
        << name;
  }
  NSUserDefaults::setStandardFolderName("till");
  const auto standard = NSUserDefaults::standardUserDefaults();
  EXPECT_EQ(standard, NSUserDefaults::standardUserDefaults());
  EXPECT_EQ(nameOfException([] { NSUserDefaults::setStandardFolderName("other"); }),
            NSInternalInconsistencyException);
  standard->setInteger(1, "a");
  EXPECT_TRUE(standard->synchronize());
  EXPECT_TRUE(std::filesystem::exists(folder.file("till/defaults.plist")));
  unsetenv("XDG_CONFIG_HOME");
}

}  // namespace
}  // namespace rvf
