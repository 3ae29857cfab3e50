// SPDX-License-Identifier: Apache-2.0
#include "Platform/Storage/FileContents.h"

#include <errno.h>
#include <gtest/gtest.h>
#include <sys/fsuid.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdint>
#include <filesystem>
#include <string>

#include "tests/Platform/Storage/TemporaryFolder.h"

namespace rvf {
namespace {

TEST(FileContents, ReadsTheWholeFile) {
  const TemporaryFolder folder;
  for (const std::size_t size : {0U, 1U, 4096U, 100'000U}) {
    writeBytes(folder.file("f"), std::string(size, 'x'));
    const auto data = contentsOfFile(folder.file("f"));
    ASSERT_TRUE(data);
    EXPECT_EQ(data->characters(), std::string(size, 'x'));
  }
}

TEST(FileContents, ReadsFilesThatDoNotKnowTheirSize) {
  const auto data = contentsOfFile("/proc/self/status");
  ASSERT_TRUE(data);
  EXPECT_GT(data->length(), 100U);
}

TEST(FileContents, SaysWhyItCannotRead) {
  const TemporaryFolder folder;
  writeBytes(folder.file("f"), "");
  const struct {
    std::string path;
    long code;
    long cause;
  } rows[] = {
      {folder.file("none"), 260, ENOENT},
      {folder.file("f/none"), 260, ENOTDIR},
      {folder.path(), 256, EISDIR},
  };
  for (const auto& row : rows) {
    Ref<NSError> error;
    EXPECT_FALSE(contentsOfFile(row.path, &error)) << row.path;
    ASSERT_TRUE(error) << row.path;
    EXPECT_EQ(error->domain(), "NSCocoaErrorDomain") << row.path;
    EXPECT_EQ(error->code(), row.code) << row.path;
    EXPECT_EQ(error->userInfo()->textForKey("NSFilePath"), row.path);
    ASSERT_TRUE(error->underlyingError()) << row.path;
    EXPECT_EQ(error->underlyingError()->domain(), "NSPOSIXErrorDomain") << row.path;
    EXPECT_EQ(error->underlyingError()->code(), row.cause) << row.path;
  }
}

TEST(FileContents, RefusesWhatIsTooLongForMemory) {
  const TemporaryFolder folder;
  writeBytes(folder.file("f"), "");
  for (const std::uintmax_t size :
       {std::uintmax_t{kLargestFileContents} + 1, std::uintmax_t{1} << 42U}) {
    std::filesystem::resize_file(folder.file("f"), size);
    Ref<NSError> error;
    EXPECT_FALSE(contentsOfFile(folder.file("f"), &error)) << size;
    ASSERT_TRUE(error) << size;
    EXPECT_EQ(error->code(), 256) << size;
    EXPECT_EQ(error->underlyingError()->code(), EFBIG) << size;
  }
}

TEST(FileContents, DoesNotWaitForPipesAndDevices) {
  const TemporaryFolder folder;
  ASSERT_EQ(mkfifo(folder.file("pipe").c_str(), 0600), 0);
  for (const std::string& path : {folder.file("pipe"), std::string("/dev/zero")}) {
    Ref<NSError> error;
    EXPECT_FALSE(contentsOfFile(path, &error)) << path;
    ASSERT_TRUE(error) << path;
    EXPECT_EQ(error->code(), 256) << path;
    EXPECT_EQ(error->underlyingError()->code(), EOPNOTSUPP) << path;
  }
}

TEST(FileContents, NoPermissionHasACodeOfItsOwn) {
  constexpr uid_t kNobody = 65534;
  const TemporaryFolder folder;
  writeBytes(folder.file("f"), "");
  ASSERT_EQ(chmod(folder.file("f").c_str(), 0), 0);
  // Root may read everything; its file accesses alone can be another user's.
  const auto before = static_cast<uid_t>(setfsuid(kNobody));
  Ref<NSError> error;
  EXPECT_FALSE(contentsOfFile(folder.file("f"), &error));
  setfsuid(before);
  ASSERT_TRUE(error);
  EXPECT_EQ(error->code(), 257);
  EXPECT_EQ(error->underlyingError()->code(), EACCES);
}

TEST(FileContents, EveryProblemHasItsCode) {
  for (const int problem : {EACCES, EPERM})
    EXPECT_EQ(fileReadErrorCode(problem), 257);
  EXPECT_EQ(fileReadErrorCode(EIO), 256);
}

}  // namespace
}  // namespace rvf
