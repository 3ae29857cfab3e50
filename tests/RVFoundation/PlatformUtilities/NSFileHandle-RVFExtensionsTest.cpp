// SPDX-License-Identifier: Apache-2.0
#include "RVFoundation/PlatformUtilities/NSFileHandle-RVFExtensions.h"

#include <errno.h>
#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <poll.h>
#include <sched.h>
#include <stdlib.h>
#include <sys/mount.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <termios.h>
#include <unistd.h>

#include <array>
#include <filesystem>
#include <fstream>
#include <limits>
#include <optional>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include "Platform/Runtime/NSException.h"
#include "tests/Platform/RunLoop/OpenDescriptors.h"
#include "tests/Platform/Storage/TemporaryFolder.h"

namespace rvf {
namespace {

using testing::MatchesRegex;

Ref<NSFileHandle> owning(int descriptor) {
  EXPECT_GE(descriptor, 0) << errno;
  return NSFileHandle::initWithFileDescriptor(descriptor, true);
}

void writeTo(const Ref<NSFileHandle>& handle, std::string_view bytes) {
  ASSERT_EQ(write(handle->fileDescriptor(), bytes.data(), bytes.size()),
            static_cast<ssize_t>(bytes.size()));
}

/// Waits, five seconds at most, until a terminal has passed on what was typed.
void awaitInput(const Ref<NSFileHandle>& handle) {
  struct pollfd readable = {handle->fileDescriptor(), POLLIN, 0};
  ASSERT_EQ(poll(&readable, 1, 5000), 1);
}

/// On a port of the loopback interface that the system chooses, which is stored.
Ref<NSFileHandle> boundSocket(int type, sockaddr_in& address) {
  const auto handle = owning(socket(AF_INET, type | SOCK_CLOEXEC, 0));
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  socklen_t length = sizeof address;
  auto* const any = reinterpret_cast<sockaddr*>(&address);
  EXPECT_EQ(bind(handle->fileDescriptor(), any, length), 0);
  EXPECT_EQ(getsockname(handle->fileDescriptor(), any, &length), 0);
  return handle;
}

Ref<NSFileHandle> connectedSocket(int type, const sockaddr_in& address) {
  const auto handle = owning(socket(AF_INET, type | SOCK_CLOEXEC, 0));
  const auto* const any = reinterpret_cast<const sockaddr*>(&address);
  EXPECT_EQ(connect(handle->fileDescriptor(), any, sizeof address), 0);
  return handle;
}

/// Two connected ends.
struct Ends {
  Ref<NSFileHandle> reading;
  Ref<NSFileHandle> writing;

  static Ends ofPipe() {
    std::array<int, 2> ends{};
    EXPECT_EQ(pipe2(ends.data(), O_CLOEXEC), 0);
    return {owning(ends[0]), owning(ends[1])};
  }
  static Ends ofSockets(int type) {
    std::array<int, 2> ends{};
    EXPECT_EQ(socketpair(AF_UNIX, type | SOCK_CLOEXEC, 0, ends.data()), 0);
    return {owning(ends[0]), owning(ends[1])};
  }
  static Ends ofUDP() {
    sockaddr_in address = {};
    const auto reading = boundSocket(SOCK_DGRAM, address);
    return {reading, connectedSocket(SOCK_DGRAM, address)};
  }
  static Ends ofTCP() {
    sockaddr_in address = {};
    const auto listening = boundSocket(SOCK_STREAM, address);
    EXPECT_EQ(listen(listening->fileDescriptor(), 1), 0);
    const auto writing = connectedSocket(SOCK_STREAM, address);
    return {owning(accept4(listening->fileDescriptor(), nullptr, nullptr, SOCK_CLOEXEC)), writing};
  }
  /// What is written is typed on a terminal.
  static Ends ofTerminal() {
    const auto keyboard = owning(posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC));
    EXPECT_EQ(grantpt(keyboard->fileDescriptor()), 0);
    EXPECT_EQ(unlockpt(keyboard->fileDescriptor()), 0);
    std::array<char, 128> name{};
    EXPECT_EQ(ptsname_r(keyboard->fileDescriptor(), name.data(), name.size()), 0);
    return {owning(open(name.data(), O_RDWR | O_NOCTTY | O_CLOEXEC)), keyboard};
  }
};

void expectReadsWhatIsThere(const Ends& ends, std::string_view ten) {
  ASSERT_EQ(ten.size(), 10U);
  EXPECT_EQ(RVF_availableByteCountNonBlocking(ends.reading), 0U);
  EXPECT_EQ(readDataOfLengthNonBlocking(ends.reading, 4), nullptr);
  EXPECT_EQ(availableDataNonBlocking(ends.reading), nullptr);
  writeTo(ends.writing, ten);
  awaitInput(ends.reading);
  EXPECT_EQ(RVF_availableByteCountNonBlocking(ends.reading), 10U);
  EXPECT_EQ(readDataOfLengthNonBlocking(ends.reading, 0), nullptr);
  EXPECT_EQ(readDataOfLengthNonBlocking(ends.reading, 4)->characters(), ten.substr(0, 4));
  EXPECT_EQ(RVF_availableByteCountNonBlocking(ends.reading), 6U);
  EXPECT_EQ(readDataOfLengthNonBlocking(ends.reading, 100)->characters(), ten.substr(4));
  EXPECT_EQ(availableDataNonBlocking(ends.reading), nullptr);
  writeTo(ends.writing, "ab\n");
  awaitInput(ends.reading);
  EXPECT_EQ(availableDataNonBlocking(ends.reading)->characters(), "ab\n");
}

std::string reasonOfException(const Ref<NSFileHandle>& handle) {
  for (const auto& read :
       {+[](const Ref<NSFileHandle>& h) { return availableDataNonBlocking(h); },
        +[](const Ref<NSFileHandle>& h) { return readDataOfLengthNonBlocking(h, 1); }})
    EXPECT_THROW(read(handle), NSException);
  try {
    RVF_availableByteCountNonBlocking(handle);
    return "nothing was raised";
  } catch (const NSException& exception) {
    EXPECT_EQ(exception.name(), NSFileHandleOperationException);
    return exception.reason();
  }
}

std::string reasonFor(int errorNumber) {
  return "ioctl() Err # " + std::to_string(errorNumber);
}

TEST(NSFileHandle_RVFExtensions, ReadsWhatIsInAPipe) {
  expectReadsWhatIsThere(Ends::ofPipe(), "0123456789");
}

TEST(NSFileHandle_RVFExtensions, ReadsWhatIsInASocket) {
  expectReadsWhatIsThere(Ends::ofSockets(SOCK_STREAM), "0123456789");
}

TEST(NSFileHandle_RVFExtensions, ReadsWhatCameOverTheNetwork) {
  Ends ends = Ends::ofTCP();
  expectReadsWhatIsThere(ends, "0123456789");
  writeTo(ends.writing, "last");
  ends.writing.reset();
  awaitInput(ends.reading);
  EXPECT_EQ(availableDataNonBlocking(ends.reading)->characters(), "last");
  EXPECT_EQ(availableDataNonBlocking(ends.reading), nullptr) << "the peer is gone";
}

TEST(NSFileHandle_RVFExtensions, ReadsWhatWasTypedOnATerminal) {
  // A line counts when it is complete.
  const Ends ends = Ends::ofTerminal();
  writeTo(ends.writing, "half");
  EXPECT_EQ(availableDataNonBlocking(ends.reading), nullptr);
  writeTo(ends.writing, " line\n");
  awaitInput(ends.reading);
  EXPECT_EQ(availableDataNonBlocking(ends.reading)->characters(), "half line\n");
  struct termios settings = {};
  ASSERT_EQ(tcgetattr(ends.reading->fileDescriptor(), &settings), 0);
  cfmakeraw(&settings);
  ASSERT_EQ(tcsetattr(ends.reading->fileDescriptor(), TCSANOW, &settings), 0);
  expectReadsWhatIsThere(ends, "0123456789");
}

TEST(NSFileHandle_RVFExtensions, ReadsOneDatagramAtATime) {
  const Ends ends = Ends::ofSockets(SOCK_DGRAM);
  writeTo(ends.writing, "first");
  writeTo(ends.writing, "second");
  EXPECT_EQ(availableDataNonBlocking(ends.reading)->characters(), "first");
  EXPECT_EQ(availableDataNonBlocking(ends.reading)->characters(), "second");
}

TEST(NSFileHandle_RVFExtensions, ReadsTheRestOfARegularFile) {
  const TemporaryFolder folder;
  writeBytes(folder.file("ten"), "0123456789");
  const auto handle = owning(open(folder.file("ten").c_str(), O_RDONLY | O_CLOEXEC));
  EXPECT_EQ(RVF_availableByteCountNonBlocking(handle), 10U);
  EXPECT_EQ(readDataOfLengthNonBlocking(handle, 4)->characters(), "0123");
  EXPECT_EQ(RVF_availableByteCountNonBlocking(handle), 6U);
  EXPECT_EQ(availableDataNonBlocking(handle)->characters(), "456789");
  EXPECT_EQ(availableDataNonBlocking(handle), nullptr);
  ASSERT_EQ(lseek(handle->fileDescriptor(), 100, SEEK_SET), 100);
  EXPECT_EQ(RVF_availableByteCountNonBlocking(handle), 0U);
  EXPECT_EQ(readDataOfLengthNonBlocking(handle, 4), nullptr);
}

TEST(NSFileHandle_RVFExtensions, CountsAtMostTheGreatest32BitNumber) {
  const TemporaryFolder folder;
  writeBytes(folder.file("long"), "");
  const auto handle = owning(open(folder.file("long").c_str(), O_RDWR | O_CLOEXEC));
  constexpr off_t k4GiB = off_t{1} << 32;
  for (const off_t length : {k4GiB, k4GiB + 3, 3 * k4GiB}) {
    ASSERT_EQ(ftruncate(handle->fileDescriptor(), length), 0);
    EXPECT_EQ(RVF_availableByteCountNonBlocking(handle), std::numeric_limits<std::uint32_t>::max());
    EXPECT_EQ(readDataOfLengthNonBlocking(handle, 2)->length(), 2U);
    ASSERT_EQ(lseek(handle->fileDescriptor(), 0, SEEK_SET), 0);
  }
  ASSERT_EQ(ftruncate(handle->fileDescriptor(), k4GiB - 1), 0);
  EXPECT_EQ(RVF_availableByteCountNonBlocking(handle), std::numeric_limits<std::uint32_t>::max());
  ASSERT_EQ(ftruncate(handle->fileDescriptor(), 3'000'000'000), 0);
  EXPECT_EQ(RVF_availableByteCountNonBlocking(handle), 3'000'000'000U);
}

TEST(NSFileHandle_RVFExtensions, TheEndHasNothing) {
  Ends ends = Ends::ofPipe();
  writeTo(ends.writing, "abc");
  ends.writing.reset();
  EXPECT_EQ(availableDataNonBlocking(ends.reading)->characters(), "abc");
  EXPECT_EQ(availableDataNonBlocking(ends.reading), nullptr);
}

TEST(NSFileHandle_RVFExtensions, AnAbsentHandleHasNothing) {
  EXPECT_EQ(RVF_availableByteCountNonBlocking(nullptr), 0U);
  EXPECT_EQ(readDataOfLengthNonBlocking(nullptr, 4), nullptr);
  EXPECT_EQ(availableDataNonBlocking(nullptr), nullptr);
}

TEST(NSFileHandle_RVFExtensions, RaisesForAClosedDescriptor) {
  const int descriptor = open("/dev/null", O_RDONLY | O_CLOEXEC);
  const auto handle = NSFileHandle::initWithFileDescriptor(descriptor);
  close(descriptor);
  EXPECT_EQ(reasonOfException(handle), reasonFor(EBADF));
}

TEST(NSFileHandle_RVFExtensions, RaisesForWhatHasNoCount) {
  EXPECT_EQ(reasonOfException(owning(open("/dev/null", O_RDONLY | O_CLOEXEC))), reasonFor(ENOTTY));
  EXPECT_EQ(reasonOfException(owning(open("/", O_RDONLY | O_DIRECTORY | O_CLOEXEC))),
            reasonFor(ENOTTY));
}

TEST(NSFileHandle_RVFExtensions, ASocketThatWasNeverConnectedHasNothing) {
  for (const int type : {SOCK_STREAM, SOCK_DGRAM}) {
    for (const int family : {AF_INET, AF_INET6, AF_UNIX}) {
      const auto alone = owning(socket(family, type | SOCK_CLOEXEC, 0));
      EXPECT_EQ(RVF_availableByteCountNonBlocking(alone), 0U) << family << " " << type;
      EXPECT_EQ(availableDataNonBlocking(alone), nullptr) << family << " " << type;
    }
  }
}

TEST(NSFileHandle_RVFExtensions, ReadsDatagramsOfTheNetworkOneByOne) {
  const Ends ends = Ends::ofUDP();
  writeTo(ends.writing, "first");
  writeTo(ends.writing, "second");
  awaitInput(ends.reading);
  EXPECT_EQ(RVF_availableByteCountNonBlocking(ends.reading), 5U);
  EXPECT_EQ(readDataOfLengthNonBlocking(ends.reading, 2)->characters(), "fi");
  EXPECT_EQ(availableDataNonBlocking(ends.reading)->characters(), "second");
  EXPECT_EQ(availableDataNonBlocking(ends.reading), nullptr);
}

TEST(NSFileHandle_RVFExtensions, AnEmptyDatagramStaysInFront) {
  const Ends ends = Ends::ofUDP();
  writeTo(ends.writing, "");
  writeTo(ends.writing, "next");
  awaitInput(ends.reading);
  EXPECT_EQ(availableDataNonBlocking(ends.reading), nullptr);
  EXPECT_EQ(availableDataNonBlocking(ends.reading), nullptr);
  ASSERT_EQ(recv(ends.reading->fileDescriptor(), nullptr, 0, 0), 0);
  awaitInput(ends.reading);
  EXPECT_EQ(availableDataNonBlocking(ends.reading)->characters(), "next");
}

TEST(NSFileHandle_RVFExtensions, RaisesForASocketThatListens) {
  sockaddr_in address = {};
  const auto listening = boundSocket(SOCK_STREAM, address);
  ASSERT_EQ(listen(listening->fileDescriptor(), 1), 0);
  EXPECT_EQ(reasonOfException(listening), reasonFor(EINVAL));
}

/// Temporary files in a folder of the test's own.
class TemporaryFileTest : public testing::Test {
 protected:
  TemporaryFileTest() {
    if (const char* folder = getenv("TMPDIR")) before_ = folder;
    setFolder(folder_.path());
  }
  ~TemporaryFileTest() override {
    unsetenv("TMPDIR");
    if (before_) setFolder(*before_);
  }

  static void setFolder(const std::string& path) { setenv("TMPDIR", path.c_str(), 1); }
  static Ref<NSFileHandle> make(std::string* path = nullptr, Ref<NSError>* error = nullptr) {
    return NSFileHandle_RVFExtensions::RVF_fileHandleForTemporaryFileUsingFilePath(path, error);
  }
  /// The error's code; the path is left alone.
  static long codeOfFailure() {
    std::string path = "untouched";
    Ref<NSError> error;
    EXPECT_EQ(make(&path, &error), nullptr);
    EXPECT_EQ(make(), nullptr);
    EXPECT_EQ(path, "untouched");
    EXPECT_EQ(error->domain(), NSPOSIXErrorDomain);
    EXPECT_EQ(error->userInfo(), nullptr);
    return error->code();
  }

  const TemporaryFolder folder_;

 private:
  std::optional<std::string> before_;
};

TEST_F(TemporaryFileTest, IsOpenForReadingAndWriting) {
  std::string path;
  Ref<NSError> error;
  const auto handle = make(&path, &error);
  ASSERT_NE(handle, nullptr);
  EXPECT_EQ(error, nullptr);
  writeTo(handle, "abc");
  EXPECT_EQ(bytesOf(path), "abc");
  ASSERT_EQ(lseek(handle->fileDescriptor(), 0, SEEK_SET), 0);
  EXPECT_EQ(availableDataNonBlocking(handle)->characters(), "abc");
}

TEST_F(TemporaryFileTest, IsNamedUniquelyInTheTemporaryDirectory) {
  std::string first;
  std::string second;
  ASSERT_TRUE(make(&first) && make(&second));
  EXPECT_NE(first, second);
  for (const std::string& path : {first, second}) {
    EXPECT_EQ(std::filesystem::path(path).parent_path(), folder_.path());
    EXPECT_THAT(std::filesystem::path(path).filename().string(),
                MatchesRegex("tempfile\\.[A-Za-z0-9][A-Za-z0-9][A-Za-z0-9][A-Za-z0-9][A-Za-z0-9]"
                             "[A-Za-z0-9]"));
  }
}

TEST_F(TemporaryFileTest, LiesInAFolderOfAnyName) {
  for (const char* name :
       {"with blank", "tempfile.XXXXXX", "ü", "\xFF\xFE", "ends with slashes//"}) {
    const std::filesystem::path folder = folder_.path() / name;
    std::filesystem::create_directories(folder);
    setFolder(folder);
    std::string path;
    ASSERT_NE(make(&path), nullptr) << name;
    EXPECT_TRUE(std::filesystem::equivalent(std::filesystem::path(path).parent_path(), folder))
        << name;
    EXPECT_EQ(path.find("//"), std::string::npos) << path;
    EXPECT_TRUE(std::filesystem::exists(path)) << name;
  }
}

TEST_F(TemporaryFileTest, BelongsToItsOwnerAlone) {
  std::string path;
  const auto handle = make(&path);
  struct stat status = {};
  ASSERT_EQ(stat(path.c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 0777, 0600U);
  EXPECT_EQ(fcntl(handle->fileDescriptor(), F_GETFD) & FD_CLOEXEC, FD_CLOEXEC);
}

TEST_F(TemporaryFileTest, IsClosedButNotRemovedWithItsHandle) {
  std::string path;
  auto handle = make(&path);
  const int descriptor = handle->fileDescriptor();
  handle.reset();
  EXPECT_EQ(fcntl(descriptor, F_GETFD), -1);
  EXPECT_TRUE(std::filesystem::exists(path));
}

TEST_F(TemporaryFileTest, NeedsNoPathToBeAskedFor) {
  EXPECT_NE(make(), nullptr);
  EXPECT_FALSE(std::filesystem::is_empty(folder_.path()));
}

TEST_F(TemporaryFileTest, IsAnotherOnEveryThread) {
  constexpr std::size_t kThreads = 8;
  constexpr std::size_t kFiles = 50;
  std::array<std::vector<std::string>, kThreads> paths;
  std::vector<std::thread> threads;
  for (auto& mine : paths) {
    threads.emplace_back([&mine] {
      for (std::size_t i = 0; i < kFiles; ++i)
        make(&mine.emplace_back());
    });
  }
  for (std::thread& thread : threads)
    thread.join();
  std::set<std::string> all;
  for (const auto& mine : paths)
    all.insert(mine.begin(), mine.end());
  EXPECT_EQ(all.size(), kThreads * kFiles);
  EXPECT_FALSE(all.contains(""));
}

TEST_F(TemporaryFileTest, AMissingFolderIsAnError) {
  setFolder(folder_.file("missing"));
  EXPECT_EQ(codeOfFailure(), ENOENT);
  writeBytes(folder_.file("file"), "");
  setFolder(folder_.file("file"));
  EXPECT_EQ(codeOfFailure(), ENOTDIR);
  setFolder(std::string(5000, 'x'));
  EXPECT_EQ(codeOfFailure(), ENAMETOOLONG);
}

/// Whether this process may mount from now on. Without privilege it takes a namespace of users,
/// too, in which it stays who it is.
bool enterMountNamespace() {
  const auto user = std::to_string(geteuid());
  const auto group = std::to_string(getegid());
  if (user == "0") return unshare(CLONE_NEWNS) == 0;
  if (unshare(CLONE_NEWUSER | CLONE_NEWNS) != 0) return false;
  std::ofstream("/proc/self/setgroups") << "deny";
  std::ofstream("/proc/self/uid_map") << user + " " + user + " 1";
  std::ofstream("/proc/self/gid_map") << group + " " + group + " 1";
  return true;
}

/// Ends the process with the code of the error in a folder that has room for one file, or with 1.
/// The folder gets a file system of its own, in a namespace that ends with the process.
[[noreturn]] void exitWithCodeOfFullFolder(const std::string& folder) {
  Ref<NSError> error;
  if (!enterMountNamespace() || mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0 ||
      mount("tmpfs", folder.c_str(), "tmpfs", 0, "nr_inodes=2,mode=0777") != 0 ||
      !NSFileHandle_RVFExtensions::RVF_fileHandleForTemporaryFileUsingFilePath() ||
      NSFileHandle_RVFExtensions::RVF_fileHandleForTemporaryFileUsingFilePath(nullptr, &error))
    _exit(1);
  _exit(error->domain() == NSPOSIXErrorDomain ? static_cast<int>(error->code()) : 1);
}

TEST_F(TemporaryFileTest, AFullFolderIsAnError) {
  EXPECT_EXIT(exitWithCodeOfFullFolder(folder_.path()), testing::ExitedWithCode(ENOSPC), "");
}

TEST_F(TemporaryFileTest, TooManyOpenFilesAreAnError) {
  Ref<NSError> error;
  {
    const DescriptorLimit limit(0);
    EXPECT_EQ(make(nullptr, &error), nullptr);
  }
  ASSERT_NE(error, nullptr);
  EXPECT_EQ(error->code(), EMFILE);
}

}  // namespace
}  // namespace rvf
