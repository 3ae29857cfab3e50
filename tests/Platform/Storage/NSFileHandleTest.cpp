// SPDX-License-Identifier: Apache-2.0
#include "Platform/Storage/NSFileHandle.h"

#include <errno.h>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <pthread.h>
#include <signal.h>
#include <unistd.h>

#include <array>
#include <future>
#include <string>
#include <string_view>

#include "Platform/Runtime/Messaging.h"
#include "Platform/Runtime/NSException.h"
#include "tests/Platform/Storage/TemporaryFolder.h"

namespace rvf {
namespace {

class Pipe final {
 public:
  Pipe() { EXPECT_EQ(pipe2(ends_.data(), O_CLOEXEC), 0); }
  ~Pipe() {
    close(ends_[0]);
    closeWriting();
  }
  Pipe(const Pipe&) = delete;
  Pipe& operator=(const Pipe&) = delete;

  int reading() const noexcept { return ends_[0]; }
  void write(std::string_view bytes) {
    ASSERT_EQ(::write(ends_[1], bytes.data(), bytes.size()), static_cast<ssize_t>(bytes.size()));
  }
  void closeWriting() {
    if (ends_[1] >= 0) close(ends_[1]);
    ends_[1] = -1;
  }

 private:
  std::array<int, 2> ends_{};
};

std::string nameOfException(NSFileHandle& handle) {
  try {
    handle.readDataOfLength(4);
    return "";
  } catch (const NSException& exception) {
    return exception.name();
  }
}

TEST(NSFileHandle, ReadsUntilTheLength) {
  Pipe pipe;
  pipe.write("0123456789");
  const auto handle = NSFileHandle::initWithFileDescriptor(pipe.reading());
  EXPECT_EQ(handle->fileDescriptor(), pipe.reading());
  EXPECT_EQ(handle->readDataOfLength(4)->characters(), "0123");
  EXPECT_EQ(handle->readDataOfLength(0)->length(), 0U);
  EXPECT_EQ(handle->readDataOfLength(6)->characters(), "456789");
}

TEST(NSFileHandle, ReadsUntilTheEnd) {
  Pipe pipe;
  pipe.write("abc");
  pipe.closeWriting();
  const auto handle = NSFileHandle::initWithFileDescriptor(pipe.reading());
  EXPECT_EQ(handle->readDataOfLength(~std::size_t{0})->characters(), "abc");
  EXPECT_EQ(handle->readDataOfLength(1)->length(), 0U);
}

TEST(NSFileHandle, WaitsForBytesThatComeLater) {
  Pipe pipe;
  const auto handle = NSFileHandle::initWithFileDescriptor(pipe.reading());
  auto data = std::async(std::launch::async, [&] { return handle->readDataOfLength(6); });
  for (const char* part : {"ab", "cd", "ef"})
    pipe.write(part);
  EXPECT_EQ(data.get()->characters(), "abcdef");
}

TEST(NSFileHandle, ReadsMoreThanItHasMemoryForAtFirst) {
  const TemporaryFolder folder;
  std::string bytes(5'000'000, 'x');
  bytes.back() = 'y';
  writeBytes(folder.file("long"), bytes);
  const int descriptor = open(folder.file("long").c_str(), O_RDONLY | O_CLOEXEC);
  const auto handle = NSFileHandle::initWithFileDescriptor(descriptor, true);
  EXPECT_EQ(handle->readDataOfLength(bytes.size() + 1)->characters(), bytes);
}

TEST(NSFileHandle, ASignalDoesNotEndReading) {
  struct sigaction action = {};
  struct sigaction before = {};
  action.sa_handler = [](int) {};
  sigaction(SIGUSR1, &action, &before);  // without SA_RESTART
  Pipe pipe;
  const auto handle = NSFileHandle::initWithFileDescriptor(pipe.reading());
  std::promise<pthread_t> thread;
  auto data = std::async(std::launch::async, [&] {
    thread.set_value(pthread_self());
    return handle->readDataOfLength(2);
  });
  const pthread_t reader = thread.get_future().get();
  for (int i = 0; i < 100; ++i)
    pthread_kill(reader, SIGUSR1);
  pipe.write("ok");
  EXPECT_EQ(data.get()->characters(), "ok");
  sigaction(SIGUSR1, &before, nullptr);
}

TEST(NSFileHandle, RaisesIfReadingFails) {
  const auto closed = NSFileHandle::initWithFileDescriptor(-1);
  EXPECT_EQ(nameOfException(*closed), NSFileHandleOperationException);
  const TemporaryFolder folder;
  const int descriptor = open(folder.path().c_str(), O_RDONLY | O_CLOEXEC | O_DIRECTORY);
  const auto directory = NSFileHandle::initWithFileDescriptor(descriptor, true);
  EXPECT_EQ(nameOfException(*directory), NSFileHandleOperationException);
}

TEST(NSFileHandle, RaisesIfADescriptorThatDoesNotWaitHasTooLittle) {
  Pipe pipe;
  pipe.write("abc");
  ASSERT_EQ(fcntl(pipe.reading(), F_SETFL, O_NONBLOCK), 0);
  const auto handle = NSFileHandle::initWithFileDescriptor(pipe.reading());
  EXPECT_EQ(nameOfException(*handle), NSFileHandleOperationException);
}

TEST(NSFileHandle, ClosesItsDescriptorOnlyIfItOwnsIt) {
  const int descriptor = open("/dev/null", O_RDONLY | O_CLOEXEC);
  NSFileHandle::initWithFileDescriptor(descriptor).reset();
  EXPECT_NE(fcntl(descriptor, F_GETFD), -1);
  NSFileHandle::initWithFileDescriptor(descriptor, false).reset();
  EXPECT_NE(fcntl(descriptor, F_GETFD), -1);
  NSFileHandle::initWithFileDescriptor(descriptor, true).reset();
  EXPECT_EQ(fcntl(descriptor, F_GETFD), -1);
  EXPECT_EQ(errno, EBADF);
}

TEST(NSFileHandle, AnswersMessages) {
  Pipe pipe;
  pipe.write("abc");
  const auto handle = NSFileHandle::initWithFileDescriptor(pipe.reading());
  EXPECT_EQ(send<int>(handle, SEL("fileDescriptor")), pipe.reading());
  const auto data = send<Ref<NSData>>(handle, SEL("readDataOfLength:"), std::size_t{3});
  EXPECT_EQ(data->characters(), "abc");
}

}  // namespace
}  // namespace rvf
