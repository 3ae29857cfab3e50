// SPDX-License-Identifier: Apache-2.0
#include "Platform/Network/CFSocket.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstring>
#include <functional>
#include <thread>
#include <vector>

#include "Platform/Network/SocketAddress.h"
#include "Platform/RunLoop/ManualRunLoopClock.h"
#include "Platform/Runtime/NSException.h"
#include "tests/Platform/Network/FailingCall.h"
#include "tests/Platform/RunLoop/OpenDescriptors.h"

namespace rvf {
namespace {

using namespace std::chrono_literals;

/// What the callout was told, and what it does.
struct Listener {
  struct Event {
    Ref<CFSocket> socket;
    CFSocketCallBackType type;
    Ref<NSData> address;
    int connection;
  };
  std::vector<Event> events;
  std::function<void()> act = [] {};

  ~Listener() {
    for (const Event& event : events)
      ::close(event.connection);
  }
};

void accepted(const Ref<CFSocket>& socket, CFSocketCallBackType type, const Ref<NSData>& address,
              const void* data, void* info) {
  auto& listener = *static_cast<Listener*>(info);
  listener.events.push_back({socket, type, address, *static_cast<const int*>(data)});
  listener.act();
}

/// A connection to a port of this machine, or -1. The system accepts it before the program does.
int connectTo(std::uint16_t port) {
  sockaddr_storage storage{};
  const auto address = SocketAddress::withIPv4({127, 0, 0, 1}, port);
  const auto length = static_cast<socklen_t>(address.toSockaddr(storage));
  const int client = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
  if (::connect(client, reinterpret_cast<const sockaddr*>(&storage), length) == 0) return client;
  ::close(client);
  return -1;
}

class CFSocketTest : public testing::Test {
 protected:
  Ref<CFSocket> makeSocket(unsigned callBackTypes = kCFSocketAcceptCallBack) {
    CFSocketContext context;
    context.info = &listener_;
    return CFSocketCreate(PF_INET, SOCK_STREAM, IPPROTO_TCP, callBackTypes, &accepted, context);
  }
  Ref<CFSocket> listeningSocket(std::string_view mode = NSRunLoopCommonModes) {
    auto socket = makeSocket();
    EXPECT_EQ(CFSocketSetAddress(socket, loopback()), kCFSocketSuccess);
    CFRunLoopAddSource(loop_, CFSocketCreateRunLoopSource(socket, 0), mode);
    return socket;
  }
  static Ref<NSData> loopback(std::uint16_t port = 0) {
    return SocketAddress::withIPv4({127, 0, 0, 1}, port).dataBlock();
  }
  static std::uint16_t portOf(const Ref<CFSocket>& socket) {
    return SocketAddress::fromDataBlock(CFSocketCopyAddress(socket))->port();
  }
  void settle() {
    while (loop_->turn()) {
    }
  }

  const Ref<NSRunLoop> loop_ = NSRunLoop::currentRunLoop();
  Listener listener_;
};

TEST_F(CFSocketTest, AnyFreePortIsBoundAndKnownAfterwards) {
  const auto socket = makeSocket();
  EXPECT_EQ(CFSocketSetAddress(socket, loopback()), kCFSocketSuccess);
  const auto block = CFSocketCopyAddress(socket);
  ASSERT_EQ(block->length(), 16U);
  EXPECT_EQ(block->bytes()[0], std::byte{16});
  EXPECT_NE(portOf(socket), 0);
}

TEST_F(CFSocketTest, APortThatIsTakenIsAnError) {
  const auto first = listeningSocket();
  EXPECT_EQ(CFSocketSetAddress(makeSocket(), loopback(portOf(first))), kCFSocketError);
}

TEST_F(CFSocketTest, BytesThatAreNoAddressAreAnError) {
  EXPECT_EQ(CFSocketSetAddress(makeSocket(), NSData::dataWithBytes("no")), kCFSocketError);
  EXPECT_EQ(CFSocketSetAddress(makeSocket(), nullptr), kCFSocketError);
}

TEST_F(CFSocketTest, ItsDescriptorIsClosedOnExecAndNeverBlocks) {
  const auto socket = makeSocket();
  const int descriptor = CFSocketGetNative(socket);
  EXPECT_NE(::fcntl(descriptor, F_GETFD) & FD_CLOEXEC, 0);
  EXPECT_NE(::fcntl(descriptor, F_GETFL) & O_NONBLOCK, 0);
}

TEST_F(CFSocketTest, EachConnectionIsAcceptedAndHandedOver) {
  const auto socket = listeningSocket();
  const int clients[] = {connectTo(portOf(socket)), connectTo(portOf(socket))};
  EXPECT_TRUE(listener_.events.empty());
  settle();
  ASSERT_EQ(listener_.events.size(), 2U);
  for (const auto& event : listener_.events) {
    EXPECT_EQ(event.socket, socket);
    EXPECT_EQ(event.type, kCFSocketAcceptCallBack);
    EXPECT_EQ(SocketAddress::fromDataBlock(event.address)->addressText(), "127.0.0.1");
    EXPECT_NE(::fcntl(event.connection, F_GETFD) & FD_CLOEXEC, 0);
    EXPECT_EQ(::fcntl(event.connection, F_GETFL) & O_NONBLOCK, 0);
  }
  for (const int client : clients)
    ::close(client);
}

TEST_F(CFSocketTest, AConnectionReachesThePeer) {
  const auto socket = listeningSocket();
  const int client = connectTo(portOf(socket));
  settle();
  char character = 0;
  EXPECT_EQ(::write(listener_.events.at(0).connection, "x", 1), 1);
  EXPECT_EQ(::read(client, &character, 1), 1);
  EXPECT_EQ(character, 'x');
  ::close(client);
}

TEST_F(CFSocketTest, NothingIsAcceptedInAnotherMode) {
  const auto socket = listeningSocket("panel");
  const int client = connectTo(portOf(socket));
  settle();
  EXPECT_TRUE(listener_.events.empty());
  while (loop_->turn("panel")) {
  }
  EXPECT_EQ(listener_.events.size(), 1U);
  ::close(client);
}

TEST_F(CFSocketTest, ASourceMayBeInSeveralModes) {
  const auto socket = listeningSocket("panel");
  CFRunLoopAddSource(loop_, CFSocketCreateRunLoopSource(socket, 0), NSDefaultRunLoopMode);
  const int client = connectTo(portOf(socket));
  settle();
  EXPECT_EQ(listener_.events.size(), 1U);
  ::close(client);
}

TEST_F(CFSocketTest, ASourceThatIsAddedTwiceInAModeIsInItOnce) {
  const auto socket = makeSocket();
  const auto source = CFSocketCreateRunLoopSource(socket, 0);
  EXPECT_EQ(CFSocketSetAddress(socket, loopback()), kCFSocketSuccess);
  for (int i = 0; i < 2; ++i)
    CFRunLoopAddSource(loop_, source, NSRunLoopCommonModes);
  CFRunLoopAddSource(loop_, CFSocketCreateRunLoopSource(socket, 0), NSRunLoopCommonModes);
  const int client = connectTo(portOf(socket));
  settle();
  EXPECT_EQ(listener_.events.size(), 1U);
  CFSocketInvalidate(socket);
  EXPECT_FALSE(loop_->turn());
  ::close(client);
}

TEST_F(CFSocketTest, ASourceThatIsAddedBeforeTheAddressAcceptsFromThenOn) {
  const auto socket = makeSocket();
  CFRunLoopAddSource(loop_, CFSocketCreateRunLoopSource(socket, 0), NSRunLoopCommonModes);
  settle();  // would never return if the socket counted as readable
  EXPECT_TRUE(listener_.events.empty());
  EXPECT_EQ(CFSocketSetAddress(socket, loopback()), kCFSocketSuccess);
  const int client = connectTo(portOf(socket));
  settle();
  EXPECT_EQ(listener_.events.size(), 1U);
  ::close(client);
}

TEST_F(CFSocketTest, AnAddressThatIsTakenLeavesTheSourceWaitingForAnother) {
  const auto other = listeningSocket();
  const auto socket = makeSocket();
  CFRunLoopAddSource(loop_, CFSocketCreateRunLoopSource(socket, 0), NSRunLoopCommonModes);
  EXPECT_EQ(CFSocketSetAddress(socket, loopback(portOf(other))), kCFSocketError);
  settle();
  EXPECT_EQ(CFSocketSetAddress(socket, loopback()), kCFSocketSuccess);
  const int client = connectTo(portOf(socket));
  settle();
  EXPECT_EQ(listener_.events.size(), 1U);
  ::close(client);
}

TEST_F(CFSocketTest, ASocketWithoutConnectionsIsNotWatched) {
  const auto socket = CFSocketCreate(PF_INET, SOCK_DGRAM, IPPROTO_UDP, kCFSocketAcceptCallBack,
                                     &accepted, CFSocketContext());
  EXPECT_EQ(CFSocketSetAddress(socket, loopback()), kCFSocketError) << "it cannot listen";
  CFRunLoopAddSource(loop_, CFSocketCreateRunLoopSource(socket, 0), NSRunLoopCommonModes);
  sockaddr_storage storage{};
  const auto length = static_cast<socklen_t>(
      SocketAddress::fromDataBlock(CFSocketCopyAddress(socket))->toSockaddr(storage));
  EXPECT_EQ(::sendto(CFSocketGetNative(socket), "x", 1, 0,
                     reinterpret_cast<const sockaddr*>(&storage), length),
            1);
  settle();  // would never return: the datagram stays
}

TEST_F(CFSocketTest, ASocketThatWasShutDownIsNoLongerWatched) {
  const auto clock = std::make_shared<ManualRunLoopClock>();
  loop_->setClock(clock);
  const auto socket = listeningSocket();
  ::shutdown(CFSocketGetNative(socket), SHUT_RD);
  settle();  // would never return: the end counts as readable
  clock->runLoopFor(*loop_, 3s);
  EXPECT_FALSE(loop_->turn());
  EXPECT_TRUE(listener_.events.empty());
  EXPECT_TRUE(CFSocketIsValid(socket));
  CFSocketInvalidate(socket);
  loop_->setClock(nullptr);
}

TEST_F(CFSocketTest, ASecondRunLoopIsAProgrammingError) {
  const auto socket = listeningSocket();
  std::thread([&] {
    EXPECT_THROW(CFRunLoopAddSource(NSRunLoop::currentRunLoop(),
                                    CFSocketCreateRunLoopSource(socket, 0), NSRunLoopCommonModes),
                 NSException);
  }).join();
}

TEST_F(CFSocketTest, InvalidatingClosesTheDescriptorAndLeavesTheRunLoop) {
  const std::size_t before = openDescriptors();
  const auto socket = listeningSocket();
  const std::uint16_t port = portOf(socket);
  EXPECT_TRUE(CFSocketIsValid(socket));
  CFSocketInvalidate(socket);
  CFSocketInvalidate(socket);
  EXPECT_FALSE(CFSocketIsValid(socket));
  EXPECT_EQ(connectTo(port), -1);
  EXPECT_EQ(CFSocketGetNative(socket), -1);
  EXPECT_EQ(CFSocketCopyAddress(socket), nullptr);
  EXPECT_EQ(CFSocketSetAddress(socket, loopback()), kCFSocketError);
  EXPECT_EQ(CFSocketCreateRunLoopSource(socket, 0), nullptr);
  EXPECT_EQ(openDescriptors(), before);
  EXPECT_FALSE(loop_->turn());
}

TEST_F(CFSocketTest, ASourceOfASocketThatBecameInvalidIsAddedWithoutEffect) {
  const auto socket = makeSocket();
  const auto source = CFSocketCreateRunLoopSource(socket, 0);
  CFSocketInvalidate(socket);
  CFRunLoopAddSource(loop_, source, NSRunLoopCommonModes);
  EXPECT_FALSE(loop_->turn());
}

TEST_F(CFSocketTest, LettingGoOfTheSocketEndsIt) {
  auto socket = listeningSocket();
  const std::uint16_t port = portOf(socket);
  socket = nullptr;
  EXPECT_EQ(connectTo(port), -1);
}

TEST_F(CFSocketTest, TheCalloutMayInvalidateTheSocket) {
  const auto socket = listeningSocket();
  const int clients[] = {connectTo(portOf(socket)), connectTo(portOf(socket))};
  listener_.act = [&] { CFSocketInvalidate(socket); };
  settle();
  EXPECT_EQ(listener_.events.size(), 1U);
  for (const int client : clients)
    ::close(client);
}

TEST_F(CFSocketTest, TheCalloutMayDropTheSocket) {
  auto socket = listeningSocket();
  const std::weak_ptr<CFSocket> weak = socket;
  const int client = connectTo(portOf(socket));
  listener_.act = [&] {
    socket = nullptr;
    listener_.events.back().socket = nullptr;
  };
  settle();
  EXPECT_TRUE(weak.expired());
  ::close(client);
}

TEST_F(CFSocketTest, AnExceptionOfTheCalloutLeavesTheRunCallAndTheSocketGoesOn) {
  const auto socket = listeningSocket();
  const int clients[] = {connectTo(portOf(socket)), connectTo(portOf(socket))};
  listener_.act = [] { NSException::raise("Test", "thrown by a callout"); };
  EXPECT_THROW(settle(), NSException);
  listener_.act = [] {};
  settle();
  EXPECT_EQ(listener_.events.size(), 2U);
  for (const int client : clients)
    ::close(client);
}

TEST_F(CFSocketTest, ASocketThatCallsOutForNothingAcceptsNothing) {
  const auto socket = makeSocket(kCFSocketNoCallBack);
  EXPECT_EQ(CFSocketSetAddress(socket, loopback()), kCFSocketSuccess);
  CFRunLoopAddSource(loop_, CFSocketCreateRunLoopSource(socket, 0), NSRunLoopCommonModes);
  const int client = connectTo(portOf(socket));
  settle();
  EXPECT_TRUE(listener_.events.empty());
  ::close(client);
}

TEST_F(CFSocketTest, OtherCalloutTypesAreAProgrammingError) {
  EXPECT_THROW(makeSocket(kCFSocketReadCallBack), NSException);
}

TEST_F(CFSocketTest, IsAbsentWhenTheSystemGivesNone) {
  // UndefinedBehaviorSanitizer needs a descriptor for its first look at an object of a class.
  EXPECT_NE(makeSocket(), nullptr);
  const DescriptorLimit limit(0);
  EXPECT_EQ(makeSocket(), nullptr);
}

TEST_F(CFSocketTest, WithoutDescriptorsItWaitsInsteadOfSpinning) {
  const auto clock = std::make_shared<ManualRunLoopClock>();
  loop_->setClock(clock);
  CFSocketInvalidate(listeningSocket());  // shows UndefinedBehaviorSanitizer all classes
  const auto socket = listeningSocket();
  const int first = connectTo(portOf(socket));
  settle();
  const int second = connectTo(portOf(socket));
  {
    const DescriptorLimit limit(0);
    settle();  // would never return
  }
  EXPECT_EQ(listener_.events.size(), 1U);
  clock->runLoopFor(*loop_, 1s);
  settle();
  EXPECT_EQ(listener_.events.size(), 2U);
  ::close(first);
  ::close(second);
  CFSocketInvalidate(socket);
  loop_->setClock(nullptr);
}

/// Whether the run loop comes to rest while accepting fails with this error for good, on a thread
/// of its own, and a connection waits.
bool restsWhileAcceptingFailsWith(int error) {
  bool rests = false;
  std::thread([&] {
    const auto loop = NSRunLoop::currentRunLoop();
    const auto clock = std::make_shared<ManualRunLoopClock>();
    loop->setClock(clock);
    const auto socket = CFSocketCreate(PF_INET, SOCK_STREAM, IPPROTO_TCP, kCFSocketAcceptCallBack,
                                       &accepted, CFSocketContext());
    CFSocketSetAddress(socket, SocketAddress::withIPv4({127, 0, 0, 1}, 0).dataBlock());
    CFRunLoopAddSource(loop, CFSocketCreateRunLoopSource(socket, 0), NSRunLoopCommonModes);
    const int client = connectTo(SocketAddress::fromDataBlock(CFSocketCopyAddress(socket))->port());
    failCallOfThisThread(SYS_accept4, error);
    for (int turn = 0; turn < 10 && !rests; ++turn)
      rests = !loop->turn();
    ::close(client);
    CFSocketInvalidate(socket);
    loop->setClock(nullptr);
  }).join();
  return rests;
}

TEST(AcceptFailure, OneThatLastsIsWaitedFor) {
  for (const int error : {EMFILE, ENFILE, ENOBUFS, ENOMEM, EINVAL, EOPNOTSUPP, EBADF, EPERM})
    EXPECT_TRUE(restsWhileAcceptingFailsWith(error)) << std::strerror(error);
}

TEST(AcceptFailure, OneThatPassesWithItsConnectionIsNot) {
  for (const int error : {EAGAIN, ECONNABORTED, EINTR, EPROTO, ENETDOWN, ENOPROTOOPT, EHOSTDOWN,
                          ENONET, EHOSTUNREACH, ENETUNREACH, ETIMEDOUT})
    EXPECT_FALSE(restsWhileAcceptingFailsWith(error)) << std::strerror(error);
}

TEST(AbsentCFSocket, IsTakenForAnInvalidOne) {
  const auto address = SocketAddress::withIPv4({127, 0, 0, 1}, 0).dataBlock();
  EXPECT_EQ(CFSocketGetNative(nullptr), -1);
  EXPECT_EQ(CFSocketSetAddress(nullptr, address), kCFSocketError);
  EXPECT_EQ(CFSocketCopyAddress(nullptr), nullptr);
  EXPECT_FALSE(CFSocketIsValid(nullptr));
  EXPECT_EQ(CFSocketCreateRunLoopSource(nullptr, 0), nullptr);
  CFSocketInvalidate(nullptr);
}

TEST_F(CFSocketTest, AnAbsentSourceOrRunLoopDoesNothing) {
  const auto socket = makeSocket();
  EXPECT_EQ(CFSocketSetAddress(socket, loopback()), kCFSocketSuccess);
  CFRunLoopAddSource(loop_, nullptr, NSRunLoopCommonModes);
  CFRunLoopAddSource(nullptr, CFSocketCreateRunLoopSource(socket, 0), NSRunLoopCommonModes);
  CFRunLoopAddSource(loop_, std::make_shared<CFRunLoopSource>(nullptr), NSRunLoopCommonModes);
  const int client = connectTo(portOf(socket));
  settle();
  EXPECT_TRUE(listener_.events.empty());
  ::close(client);
}

}  // namespace
}  // namespace rvf
