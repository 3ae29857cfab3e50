// SPDX-License-Identifier: Apache-2.0

// In which order the file of user defaults and its folders reach the disk. The system calls below
// take the place of the C library's in this program.

#include <errno.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <filesystem>
#include <new>
#include <string>
#include <vector>

#include "Platform/Export.h"
#include "Platform/Storage/NSUserDefaults.h"
#include "tests/Platform/Storage/TemporaryFolder.h"

namespace rvf {
namespace {

/// The calls of one thread while it lives, by their names and the last part of their paths.
struct Recorder {
  Recorder() { current = this; }
  ~Recorder() { current = nullptr; }
  Recorder(const Recorder&) = delete;
  Recorder& operator=(const Recorder&) = delete;

  static void record(const char* call, const std::filesystem::path& path) {
    if (current) current->calls.push_back(std::string(call) + " " + path.filename().string());
  }

  static thread_local Recorder* current;
  std::vector<std::string> calls;
  std::string failing;         // the call that fails, as it is recorded
  int problem = EIO;           // why it fails
  bool isOutOfMemory = false;  // fsync throws
  bool refusesNoReplace = false;
};
thread_local Recorder* Recorder::current = nullptr;

}  // namespace
}  // namespace rvf

using rvf::Recorder;

extern "C" RVF_EXPORT int fsync(int descriptor) {
  if (Recorder* recorder = Recorder::current) {
    if (recorder->isOutOfMemory) throw std::bad_alloc();
    Recorder::record("fsync",
                     std::filesystem::read_symlink("/proc/self/fd/" + std::to_string(descriptor)));
    if (recorder->calls.back() == recorder->failing) {
      errno = recorder->problem;
      return -1;
    }
  }
  return static_cast<int>(syscall(SYS_fsync, descriptor));
}

extern "C" RVF_EXPORT int mkdir(const char* path, mode_t mode) noexcept {
  const auto result = static_cast<int>(syscall(SYS_mkdirat, -100, path, mode));
  if (result == 0) Recorder::record("mkdir", path);
  return result;
}

extern "C" RVF_EXPORT int rename(const char* from, const char* to) noexcept {
  Recorder::record("rename", to);
  return static_cast<int>(syscall(SYS_renameat2, -100, from, -100, to, 0));
}

extern "C" RVF_EXPORT int renameat2(int fromFolder, const char* from, int toFolder, const char* to,
                                    unsigned flags) noexcept {
  if (Recorder::current && Recorder::current->refusesNoReplace) {
    errno = EINVAL;
    return -1;
  }
  return static_cast<int>(syscall(SYS_renameat2, fromFolder, from, toFolder, to, flags));
}

namespace rvf {
namespace {

using testing::ElementsAre;

class DefaultsFileDurabilityTest : public testing::Test {
 protected:
  TemporaryFolder folder_;
  const std::string path_ = folder_.file("config/till/defaults.plist");
  const std::string top_ = folder_.path().filename();
  const Ref<NSUserDefaults> defaults_ = NSUserDefaults::userDefaultsWithFile(path_);
};

TEST_F(DefaultsFileDurabilityTest, EveryNewNameReachesTheDiskInOrder) {
  defaults_->setInteger(1, "a");
  Recorder recorder;
  EXPECT_TRUE(defaults_->synchronize());
  EXPECT_THAT(recorder.calls,
              ElementsAre("mkdir config", "fsync " + top_, "mkdir till", "fsync config",
                          "fsync defaults.plist.new", "rename defaults.plist", "fsync till"));
}

TEST_F(DefaultsFileDurabilityTest, AFolderThatIsNotDurableFailsTheSynchronization) {
  defaults_->setInteger(1, "a");
  Recorder recorder;
  for (const std::string& above : {top_, std::string("config")}) {
    recorder.failing = "fsync " + above;
    EXPECT_FALSE(defaults_->synchronize()) << above;
    const auto error = defaults_->synchronizationError();
    ASSERT_TRUE(error && error->underlyingError()) << above;
    EXPECT_EQ(error->underlyingError()->code(), EIO) << above;
    EXPECT_FALSE(std::filesystem::exists(folder_.file("config/till"))) << above;
  }
  recorder.failing.clear();
  EXPECT_TRUE(defaults_->synchronize());
}

TEST_F(DefaultsFileDurabilityTest, AFolderThatTheDiskCannotSynchronizeIsDoneWithout) {
  for (const std::string& folder : {top_, std::string("config"), std::string("till")}) {
    std::filesystem::remove_all(folder_.file("config"));
    defaults_->setInteger(1, folder);
    Recorder recorder;
    recorder.failing = "fsync " + folder;
    recorder.problem = EINVAL;
    EXPECT_TRUE(defaults_->synchronize()) << folder;
    EXPECT_EQ(NSUserDefaults::userDefaultsWithFile(path_)->integerForKey(folder), 1);
  }
}

TEST_F(DefaultsFileDurabilityTest, AFileThatIsNotDurableReplacesNothing) {
  defaults_->setInteger(1, "a");
  EXPECT_TRUE(defaults_->synchronize());
  const std::string before = bytesOf(path_);
  defaults_->setInteger(2, "a");
  for (const int problem : {EIO, EINVAL}) {
    Recorder recorder;
    recorder.failing = "fsync defaults.plist.new";
    recorder.problem = problem;
    EXPECT_FALSE(defaults_->synchronize());
    EXPECT_EQ(bytesOf(path_), before);
    EXPECT_FALSE(std::filesystem::exists(path_ + ".new"));
  }
  EXPECT_TRUE(defaults_->synchronize());
  EXPECT_EQ(NSUserDefaults::userDefaultsWithFile(path_)->integerForKey("a"), 2);
}

TEST_F(DefaultsFileDurabilityTest, AnExceptionLosesNoChange) {
  std::filesystem::create_directories(folder_.file("config/till"));
  defaults_->setInteger(1, "a");
  {
    Recorder recorder;
    recorder.isOutOfMemory = true;
    EXPECT_THROW(defaults_->synchronize(), std::bad_alloc);
  }
  EXPECT_TRUE(defaults_->synchronize());
  EXPECT_EQ(NSUserDefaults::userDefaultsWithFile(path_)->integerForKey("a"), 1);
}

TEST_F(DefaultsFileDurabilityTest, ADamagedFileIsSetAsideWhereRenamingKnowsNoFlags) {
  std::filesystem::create_directories(folder_.file("config/till"));
  writeBytes(path_, "{");
  writeBytes(path_ + ".damaged-1", "older");
  Recorder recorder;
  recorder.refusesNoReplace = true;
  testing::internal::CaptureStderr();
  EXPECT_TRUE(defaults_->synchronize());
  testing::internal::GetCapturedStderr();
  EXPECT_EQ(bytesOf(path_ + ".damaged-1"), "older");
  EXPECT_EQ(bytesOf(path_ + ".damaged-2"), "{");
  EXPECT_FALSE(std::filesystem::exists(path_));
}

}  // namespace
}  // namespace rvf
