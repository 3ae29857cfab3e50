// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "Platform/RunLoop/NSRunLoop.h"
#include "Platform/Runtime/NSException.h"
#include "tests/Platform/RunLoop/RunLoopFixture.h"

namespace rvf {
namespace {

using std::chrono::seconds;
using testing::ElementsAre;
using testing::IsEmpty;

/// Two connected descriptors: a pipe, or a stream socket pair.
class Ends final {
 public:
  static Ends pipe() {
    Ends ends;
    EXPECT_EQ(::pipe(ends.ends_.data()), 0);
    return ends;
  }
  static Ends sockets() {
    Ends ends;
    EXPECT_EQ(::socketpair(AF_UNIX, SOCK_STREAM, 0, ends.ends_.data()), 0);
    return ends;
  }
  Ends(Ends&& other) noexcept : ends_(std::exchange(other.ends_, {-1, -1})) {}
  ~Ends() {
    close(0);
    close(1);
  }
  int reading() const { return ends_[0]; }
  int writing() const { return ends_[1]; }
  void write() const { EXPECT_EQ(::write(ends_[1], "x", 1), 1); }
  void read() const {
    char byte;
    EXPECT_EQ(::read(ends_[0], &byte, 1), 1);
  }
  void close(std::size_t index) {
    if (ends_[index] >= 0) ::close(std::exchange(ends_[index], -1));
  }
  /// Fills the way towards `reading()` until it takes no more.
  void fill() const {
    const std::array<char, 4096> bytes{};
    while (::send(ends_[1], bytes.data(), bytes.size(), MSG_DONTWAIT) > 0) {
    }
  }

 private:
  Ends() = default;
  std::array<int, 2> ends_{-1, -1};
};

std::string text(DescriptorEvents events) {
  std::string text;
  if (events.readable) text += "readable ";
  if (events.writable) text += "writable ";
  if (events.hangUp) text += "hangUp ";
  if (events.error) text += "error ";
  if (!text.empty()) text.pop_back();
  return text;
}

constexpr DescriptorEvents kReadable{.readable = true};
constexpr DescriptorEvents kWritable{.writable = true};

class NSRunLoopDescriptorTest : public RunLoopFixture {
 protected:
  std::unique_ptr<RunLoopSource> watch(int descriptor, DescriptorEvents wanted,
                                       const RunLoopModes& modes = kDefault) {
    return loop->watchDescriptor(descriptor, wanted, modes,
                                 [this](DescriptorEvents events) { ran.push_back(text(events)); });
  }
};

TEST_F(NSRunLoopDescriptorTest, ADescriptorIsReportedOnceATurnWhileItIsReadable) {
  const Ends ends = Ends::pipe();
  const auto watching = watch(ends.reading(), kReadable);
  EXPECT_FALSE(loop->turn());
  ends.write();
  loop->turn();
  loop->turn();
  EXPECT_THAT(ran, ElementsAre("readable", "readable"));
  ends.read();
  EXPECT_FALSE(loop->turn());
}

TEST_F(NSRunLoopDescriptorTest, ADescriptorIsReportedWritableToThoseWhoAsk) {
  const Ends ends = Ends::pipe();
  const auto watching = watch(ends.writing(), kWritable);
  loop->turn();
  EXPECT_THAT(ran, ElementsAre("writable"));
}

TEST_F(NSRunLoopDescriptorTest, SeveralWatchesMayShareADescriptor) {
  const Ends ends = Ends::sockets();
  ends.write();
  const auto reading = watch(ends.reading(), kReadable);
  const auto writing = watch(ends.reading(), kWritable);
  const auto both = watch(ends.reading(), {.readable = true, .writable = true});
  loop->turn();
  EXPECT_THAT(ran, ElementsAre("readable", "writable", "readable writable"));
}

TEST_F(NSRunLoopDescriptorTest, OfWatchesThatShareADescriptorOneMayEndAlone) {
  const Ends ends = Ends::pipe();
  ends.write();
  auto first = watch(ends.reading(), kReadable);
  const auto second = watch(ends.reading(), kReadable);
  first.reset();
  loop->turn();
  EXPECT_THAT(ran, ElementsAre("readable"));
}

TEST_F(NSRunLoopDescriptorTest, AWriterThatHasGoneIsAHangUp) {
  Ends ends = Ends::pipe();
  const auto watching = watch(ends.reading(), kReadable);
  ends.write();
  ends.close(1);
  loop->turn();
  ends.read();
  loop->turn();
  ASSERT_EQ(ran.size(), 2U);
  EXPECT_THAT(ran[0], testing::HasSubstr("readable"));
  EXPECT_EQ(ran[1], "hangUp");
}

TEST_F(NSRunLoopDescriptorTest, APeerThatHasGoneIsAHangUpToEveryWatch) {
  Ends ends = Ends::sockets();
  const auto reading = watch(ends.reading(), kReadable);
  const auto writing = watch(ends.reading(), kWritable);
  const auto neither = watch(ends.reading(), {});
  ends.close(1);
  loop->turn();
  EXPECT_THAT(ran, ElementsAre("readable hangUp", "writable hangUp", "hangUp"));
}

TEST_F(NSRunLoopDescriptorTest, AReaderThatHasGoneIsAnErrorThatIsReportedAgainEveryTurn) {
  Ends ends = Ends::pipe();
  const auto watching = watch(ends.writing(), kWritable);
  ends.close(0);
  loop->turn();
  loop->turn();
  EXPECT_THAT(ran, ElementsAre("writable error", "writable error"));
}

/// A datagram socket whose peer has refused a message, so that an error is pending.
int refusedSocket() {
  sockaddr_in address{};
  socklen_t length = sizeof address;
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  auto* const generic = reinterpret_cast<sockaddr*>(&address);
  const int peer = ::socket(AF_INET, SOCK_DGRAM, 0);
  EXPECT_EQ(::bind(peer, generic, length), 0);
  EXPECT_EQ(::getsockname(peer, generic, &length), 0);
  const int socket = ::socket(AF_INET, SOCK_DGRAM | SOCK_NONBLOCK, 0);
  EXPECT_EQ(::connect(socket, generic, length), 0);
  ::close(peer);
  EXPECT_EQ(::send(socket, "x", 1, 0), 1);
  return socket;
}

TEST_F(NSRunLoopDescriptorTest, APendingErrorIsReportedToAReaderAsAnErrorUntilItIsTaken) {
  const int socket = refusedSocket();
  auto watching = watch(socket, kReadable);
  EXPECT_TRUE(loop->runMode(NSDefaultRunLoopMode, loop->clock()->now() + seconds(10)));
  loop->turn();
  EXPECT_THAT(ran, ElementsAre(testing::HasSubstr("error"), testing::HasSubstr("error")));
  EXPECT_EQ(::send(socket, "x", 1, 0), -1);
  EXPECT_EQ(errno, ECONNREFUSED);
  EXPECT_FALSE(loop->turn());
  watching.reset();
  ::close(socket);
}

TEST_F(NSRunLoopDescriptorTest, APeerThatOnlyStoppedSendingDoesNotBusyAWriter) {
  const Ends ends = Ends::sockets();
  ends.fill();
  EXPECT_EQ(::shutdown(ends.reading(), SHUT_WR), 0);
  const auto writing = watch(ends.writing(), kWritable);
  EXPECT_FALSE(loop->turn());
  const auto reading = watch(ends.writing(), kReadable);
  EXPECT_TRUE(loop->turn());
  EXPECT_THAT(ran, ElementsAre("readable hangUp"));
}

TEST_F(NSRunLoopDescriptorTest, AWatchOfAnotherModeDoesNotKeepTheLoopBusy) {
  Ends ends = Ends::pipe();
  const auto watching = watch(ends.reading(), kReadable, kPanel);
  ends.close(1);
  EXPECT_FALSE(loop->turn());
  EXPECT_EQ(loop->nextTimeout(), std::nullopt);
  loop->turn("panel");
  EXPECT_FALSE(loop->turn());
  EXPECT_THAT(ran, ElementsAre("hangUp"));
}

TEST_F(NSRunLoopDescriptorTest, AWatchInTheCommonModesServesAModeThatIsAddedLater) {
  const Ends ends = Ends::pipe();
  const auto watching = watch(ends.reading(), kReadable, kCommon);
  ends.write();
  const std::string mode = newMode();
  EXPECT_FALSE(loop->turn(mode));
  loop->addCommonMode(mode);
  EXPECT_TRUE(loop->turn(mode));
}

TEST_F(NSRunLoopDescriptorTest, AWatchMayEndItselfWhileItRuns) {
  const Ends ends = Ends::pipe();
  ends.write();
  const auto witness = std::make_shared<int>(7);
  std::unique_ptr<RunLoopSource> watching;
  watching =
      loop->watchDescriptor(ends.reading(), kReadable, kDefault, [&, witness](DescriptorEvents) {
        watching.reset();
        ran.push_back(std::to_string(*witness));
      });
  loop->turn();
  EXPECT_FALSE(loop->turn());
  EXPECT_THAT(ran, ElementsAre("7"));
  EXPECT_EQ(witness.use_count(), 1);
}

TEST_F(NSRunLoopDescriptorTest, AWatchEndedInTheSameBatchIsNotCalled) {
  std::vector<Ends> ends;
  std::vector<std::unique_ptr<RunLoopSource>> watching(3);
  for (std::size_t i = 0; i < watching.size(); ++i) {
    ends.push_back(Ends::pipe());
    ends.back().write();
    watching[i] =
        loop->watchDescriptor(ends[i].reading(), kReadable, kDefault, [&](DescriptorEvents events) {
          ran.push_back(text(events));
          watching.clear();
        });
  }
  loop->turn();
  EXPECT_THAT(ran, ElementsAre("readable"));
}

TEST_F(NSRunLoopDescriptorTest, ADescriptorMayBeClosedAndItsNumberUsedAgainAtOnce) {
  int last = Ends::pipe().reading();
  for (int round = 0; round < 3; ++round) {
    const Ends ends = Ends::pipe();
    EXPECT_EQ(ends.reading(), std::exchange(last, ends.reading())) << "round " << round;
    auto watching = watch(ends.reading(), kReadable);
    EXPECT_FALSE(loop->turn()) << "round " << round;
    ends.write();
    EXPECT_TRUE(loop->turn()) << "round " << round;
    watching.reset();
  }
  EXPECT_THAT(ran, ElementsAre("readable", "readable", "readable"));
}

TEST_F(NSRunLoopDescriptorTest, AWatchWhoseDescriptorWasReadByAnInnerRunIsNotCalledForIt) {
  std::vector<Ends> ends;
  std::vector<std::unique_ptr<RunLoopSource>> watching;
  for (std::size_t i = 0; i < 2; ++i) {
    ends.push_back(Ends::pipe());
    ends.back().write();
  }
  for (const Ends& each : ends) {
    watching.push_back(
        loop->watchDescriptor(each.reading(), kReadable, kDefault, [&](DescriptorEvents) {
          each.read();
          ran.push_back("read");
          loop->turn();
        }));
  }
  loop->turn();
  EXPECT_THAT(ran, ElementsAre("read", "read"));
  EXPECT_FALSE(loop->turn());
}

TEST_F(NSRunLoopDescriptorTest, AnExceptionOfAWatchLosesNeitherItNorTheOthers) {
  const Ends first = Ends::pipe();
  const Ends second = Ends::pipe();
  first.write();
  second.write();
  auto throwing = loop->watchDescriptor(first.reading(), kReadable, kDefault,
                                        [](auto) { throw std::runtime_error("watch"); });
  const auto watching = watch(second.reading(), kReadable);
  EXPECT_THROW(while (true) loop->turn(), std::runtime_error);
  throwing.reset();
  loop->turn();
  EXPECT_THAT(ran, testing::Contains("readable"));
}

TEST_F(NSRunLoopDescriptorTest, WhatCannotBePolledRaises) {
  std::array<char, 32> path{"/tmp/descriptor-test-XXXXXX"};
  const int file = ::mkstemp(path.data());
  ::unlink(path.data());
  const int closed = ::dup(file);
  ::close(closed);
  for (const int descriptor : {-1, file, closed}) {
    try {
      const auto watching = watch(descriptor, kReadable);
      ADD_FAILURE() << "nothing was raised for " << descriptor;
    } catch (const NSException& exception) {
      EXPECT_EQ(exception.name(), NSInvalidArgumentException);
    }
  }
  ::close(file);
}

TEST_F(NSRunLoopDescriptorTest, AWatchMayOutliveItsLoop) {
  const Ends ends = Ends::pipe();
  const auto witness = std::make_shared<int>();
  std::unique_ptr<RunLoopSource> watching;
  std::thread([&, witness] {
    watching = NSRunLoop::currentRunLoop()->watchDescriptor(ends.reading(), kReadable, kDefault,
                                                            [witness](auto) {});
    NSRunLoop::currentRunLoop()->turn();
  }).join();
  watching.reset();
  EXPECT_EQ(witness.use_count(), 1);
}

TEST_F(NSRunLoopDescriptorTest, AWaitingLoopWakesForADescriptor) {
  const Ends ends = Ends::pipe();
  const auto watching = watch(ends.reading(), kReadable);
  std::thread writer([&] { ends.write(); });
  EXPECT_TRUE(loop->runMode(NSDefaultRunLoopMode, kForEver));
  writer.join();
  EXPECT_THAT(ran, ElementsAre("readable"));
}

}  // namespace
}  // namespace rvf
