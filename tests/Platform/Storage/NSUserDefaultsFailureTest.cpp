// SPDX-License-Identifier: Apache-2.0
//
// Files that are damaged, out of reach or gone.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cerrno>
#include <filesystem>
#include <string>
#include <string_view>

#include "Platform/Values/NSNumber.h"
#include "Platform/Values/NSString.h"
#include "tests/Platform/Storage/DefaultsInAFile.h"

namespace rvf {
namespace {

using testing::HasSubstr;
using NSUserDefaultsFailureTest = DefaultsInAFile;

TEST_F(NSUserDefaultsFailureTest, ADamagedFileIsSetAsideWithOneLine) {
  const struct { std::string_view bytes; } rows[] = {{"{"}, {"bplist00"}, {""}, {"(a)"}, {"word"}};
  std::filesystem::create_directories(folder_.file("till"));
  int number = 0;
  for (const auto& row : rows) {
    writeBytes(path_, row.bytes);
    const auto defaults = open();
    testing::internal::CaptureStderr();
    EXPECT_FALSE(defaults->objectForKey("a"));
    EXPECT_TRUE(defaults->synchronize());
    const std::string line = testing::internal::GetCapturedStderr();
    const std::string aside = path_ + ".damaged-" + std::to_string(++number);
    EXPECT_EQ(line, "User defaults: " + path_ + " is damaged; it was set aside as " + aside + "\n");
    EXPECT_EQ(bytesOf(aside), row.bytes);
    EXPECT_FALSE(std::filesystem::exists(path_));
  }
}

TEST_F(NSUserDefaultsFailureTest, DamageThatCannotBeSetAsideFailsWithTheErrorOfTheLock) {
  std::filesystem::create_directories(path_ + ".lock");  // a folder in its place
  for (const std::string_view bytes : {"(a)", "{"}) {
    writeBytes(path_, bytes);
    const auto defaults = open();
    testing::internal::CaptureStderr();
    EXPECT_FALSE(defaults->synchronize()) << bytes;
    EXPECT_THAT(testing::internal::GetCapturedStderr(), HasSubstr("cannot be set aside"));
    const auto error = defaults->synchronizationError();
    ASSERT_TRUE(error && error->underlyingError()) << bytes;
    EXPECT_EQ(error->code(), 512) << bytes;
    EXPECT_EQ(error->underlyingError()->code(), EISDIR) << bytes;
    EXPECT_EQ(bytesOf(path_), bytes);
  }
}

TEST_F(NSUserDefaultsFailureTest, WhatIsKnownSurvivesDamageToTheFile) {
  defaults_->setInteger(1, "a");
  defaults_->synchronize();
  writeBytes(path_, "not any more");
  testing::internal::CaptureStderr();
  EXPECT_TRUE(defaults_->synchronize());
  EXPECT_THAT(testing::internal::GetCapturedStderr(), HasSubstr("set aside"));
  EXPECT_EQ(open()->integerForKey("a"), 1);
}

TEST_F(NSUserDefaultsFailureTest, APipeInPlaceOfTheFileIsNotWaitedFor) {
  std::filesystem::create_directories(folder_.file("till"));
  ASSERT_EQ(mkfifo(path_.c_str(), 0600), 0);
  EXPECT_FALSE(defaults_->synchronize());
  EXPECT_EQ(defaults_->synchronizationError()->code(), 256);
}

TEST_F(NSUserDefaultsFailureTest, AFileThatCannotBeReadIsLeftAlone) {
  std::filesystem::create_directories(path_);  // a folder in its place
  defaults_->setInteger(1, "a");
  EXPECT_FALSE(defaults_->synchronize());
  ASSERT_TRUE(defaults_->synchronizationError());
  EXPECT_EQ(defaults_->synchronizationError()->code(), 256);
  bool hasRun = false;
  EXPECT_FALSE(defaults_->performExclusively([&] { hasRun = true; }));
  EXPECT_FALSE(hasRun);
  EXPECT_EQ(defaults_->integerForKey("a"), 1);
  std::filesystem::remove(path_);
  EXPECT_TRUE(defaults_->synchronize());
  EXPECT_FALSE(defaults_->synchronizationError());
  EXPECT_EQ(open()->integerForKey("a"), 1);
}

TEST_F(NSUserDefaultsFailureTest, AFolderThatVanishesComesBackWithEverything) {
  defaults_->setInteger(1, "a");
  defaults_->synchronize();
  std::filesystem::remove_all(folder_.file("till"));
  EXPECT_TRUE(defaults_->synchronize());
  EXPECT_EQ(open()->integerForKey("a"), 1);
}

TEST_F(NSUserDefaultsFailureTest, AFolderThatCannotBeMadeFailsTheSynchronizationOnly) {
  writeBytes(folder_.file("till"), "a file in its place");
  defaults_->setInteger(1, "a");
  EXPECT_FALSE(defaults_->synchronize());
  const auto error = defaults_->synchronizationError();
  ASSERT_TRUE(error && error->underlyingError());
  EXPECT_EQ(error->domain(), NSCocoaErrorDomain);
  EXPECT_EQ(error->underlyingError()->domain(), NSPOSIXErrorDomain);
  EXPECT_EQ(defaults_->integerForKey("a"), 1);
  std::filesystem::remove(folder_.file("till"));
  EXPECT_TRUE(defaults_->synchronize());
  EXPECT_EQ(open()->integerForKey("a"), 1);
}

}  // namespace
}  // namespace rvf
