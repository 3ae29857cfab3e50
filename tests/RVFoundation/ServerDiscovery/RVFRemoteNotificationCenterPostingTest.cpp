// SPDX-License-Identifier: Apache-2.0
#include <fcntl.h>
#include <gmock/gmock.h>
#include <netinet/in.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include "Platform/Network/SocketAddress.h"
#include "Platform/RunLoop/ManualRunLoopClock.h"
#include "Platform/RunLoop/NSRunLoop.h"
#include "Platform/Runtime/Messaging.h"
#include "Platform/Runtime/Runtime.h"
#include "Platform/Values/NSString.h"
#include "RVFoundation/ServerDiscovery/RVFRemoteNotificationCenter.h"
#include "tests/Platform/Network/FailingCall.h"
#include "tests/Platform/RunLoop/OpenDescriptors.h"
#include "tests/RVFoundation/ServerDiscovery/NotificationObserver.h"
#include "tests/RVFoundation/ServerDiscovery/ScriptedDiscovery.h"

namespace rvf {
namespace {

using namespace std::chrono_literals;
using ::testing::MatchesRegex;
using ::testing::UnorderedElementsAre;

constexpr const char* kMenu = "_menu._tcp";

/// A TCP connection to a port of this machine; -1 if it is refused.
int connectTo(const SocketAddress& address) {
  sockaddr_storage storage{};
  const auto length = static_cast<socklen_t>(address.toSockaddr(storage));
  const int client = ::socket(address.family(), SOCK_STREAM | SOCK_CLOEXEC, 0);
  if (::connect(client, reinterpret_cast<const sockaddr*>(&storage), length) == 0) return client;
  ::close(client);
  return -1;
}

int connectTo(std::uint16_t port) {
  return connectTo(SocketAddress::withIPv4({127, 0, 0, 1}, port));
}

/// Whether nothing has arrived on the connection, not even its end.
bool isOpenAndSilent(int connection) {
  char byte = 0;
  return ::recv(connection, &byte, 1, MSG_DONTWAIT) < 0 && errno == EAGAIN;
}

/// The value of an option of the socket of ours that is bound to this port; -1 if there is none.
int optionOfSocketOn(std::uint16_t port, int option) {
  for (int descriptor = 0; descriptor < 1024; ++descriptor) {
    sockaddr_storage storage{};
    socklen_t length = sizeof storage;
    auto* const address = reinterpret_cast<sockaddr*>(&storage);
    if (::getsockname(descriptor, address, &length) != 0) continue;
    const auto bound = SocketAddress::fromSockaddr(address, length);
    if (bound != SocketAddress::withIPv4({0, 0, 0, 0}, port)) continue;
    int value = -1;
    length = sizeof value;
    ::getsockopt(descriptor, SOL_SOCKET, option, &value, &length);
    return value;
  }
  return -1;
}

class PostingTest : public ::testing::Test {
 protected:
  PostingTest() { loop_->setClock(clock_); }
  ~PostingTest() override {
    pass(10s);
    loop_->setClock(nullptr);
  }

  void pass(std::chrono::milliseconds time) {
    clock_->runLoopFor(*loop_, time);
    while (loop_->turn()) {
    }
  }
  const Publication& published(std::size_t index) const {
    return discovery_->publications.at(index)->publication;
  }
  bool isPublished(std::size_t index) const { return discovery_->publications.at(index)->isActive; }
  std::size_t publishedNow() const {
    return static_cast<std::size_t>(
        std::count_if(discovery_->publications.begin(), discovery_->publications.end(),
                      [](const auto& publication) { return publication->isActive; }));
  }

  ScriptedDiscovery discovery_;
  const Ref<NSRunLoop> loop_ = NSRunLoop::currentRunLoop();
  const std::shared_ptr<ManualRunLoopClock> clock_ = std::make_shared<ManualRunLoopClock>();
  Ref<RVFRemoteNotificationCenter> center_ = std::make_shared<RVFRemoteNotificationCenter>();
};

TEST_F(PostingTest, PublishesTheNameAsAServiceTypeWithoutRecordInTheDefaultDomain) {
  center_->postNotificationName(kMenu);
  ASSERT_EQ(discovery_->publications.size(), 1U);
  EXPECT_EQ(published(0).identity.type, "_menu._tcp.");
  EXPECT_EQ(published(0).identity.domain, "");
  EXPECT_TRUE(published(0).txtRecord.empty());
}

TEST_F(PostingTest, TheServiceIsNamedAfterTheComputerAndUnique) {
  discovery_->defaultName = "Front desk";
  center_->postNotificationName(kMenu);
  EXPECT_THAT(published(0).identity.name, MatchesRegex("Front desk-[0-9a-z]{16}"));
  EXPECT_TRUE(published(0).isUnique);
}

TEST_F(PostingTest, WhatAKilledPosterLeavesBehindIsForgottenInTenSeconds) {
  center_->postNotificationName(kMenu);
  EXPECT_EQ(published(0).lifetimeSeconds, 10U);
}

TEST_F(PostingTest, ThePublishedPortListensOnIPv4Only) {
  center_->postNotificationName(kMenu);
  const std::uint16_t port = published(0).port;
  EXPECT_NE(port, 0);
  EXPECT_EQ(optionOfSocketOn(port, SO_ACCEPTCONN), 1);
  EXPECT_EQ(optionOfSocketOn(port, SO_REUSEADDR), 1);
  EXPECT_EQ(optionOfSocketOn(port, SO_DOMAIN), AF_INET);
  EXPECT_EQ(optionOfSocketOn(port, SO_PROTOCOL), IPPROTO_TCP);
  const int client = connectTo(port);
  EXPECT_GE(client, 0);
  EXPECT_EQ(connectTo(*SocketAddress::fromText("::1", port)), -1);
  ::close(client);
}

TEST_F(PostingTest, IsWithdrawnAfterTenSecondsAndNotBefore) {
  center_->postNotificationName(kMenu);
  const std::uint16_t port = published(0).port;
  pass(9999ms);
  EXPECT_TRUE(isPublished(0));
  EXPECT_EQ(optionOfSocketOn(port, SO_ACCEPTCONN), 1);
  pass(1ms);
  EXPECT_FALSE(isPublished(0));
  EXPECT_EQ(connectTo(port), -1);
}

TEST_F(PostingTest, IsWithdrawnInTheDefaultModeOnly) {
  center_->postNotificationName(kMenu);
  clock_->runLoopFor(*loop_, 11s, "panel");
  EXPECT_TRUE(isPublished(0));
  pass(0s);
  EXPECT_FALSE(isPublished(0));
}

TEST_F(PostingTest, ConnectionsAreAcceptedInEveryCommonMode) {
  constexpr std::string_view kPanel = "a common mode of this test";
  loop_->addCommonMode(kPanel);
  center_->postNotificationName(kMenu);
  const int client = connectTo(published(0).port);
  const std::size_t before = openDescriptors();
  clock_->runLoopFor(*loop_, 0s, kPanel);
  EXPECT_EQ(openDescriptors(), before + 1);
  ::close(client);
}

TEST_F(PostingTest, StartingAServiceIsPosting) {
  center_->startServiceForName(kMenu);
  EXPECT_TRUE(isPublished(0));
  pass(10s);
  EXPECT_FALSE(isPublished(0));
}

TEST_F(PostingTest, IsReachableByItsSelectors) {
  send(center_, SEL("postNotificationName:"), std::string_view(kMenu));
  send(center_, SEL("startServiceForName:"), std::string_view(kMenu));
  EXPECT_EQ(publishedNow(), 2U);
}

TEST_F(PostingTest, PostsOfOneNameAreIndependent) {
  center_->postNotificationName(kMenu);
  pass(4s);
  center_->postNotificationName(kMenu);
  EXPECT_EQ(publishedNow(), 2U);
  EXPECT_NE(published(0).identity.name, published(1).identity.name);
  EXPECT_NE(published(0).port, published(1).port);
  pass(6s);
  EXPECT_FALSE(isPublished(0));
  EXPECT_TRUE(isPublished(1));
  pass(4s);
  EXPECT_FALSE(isPublished(1));
}

TEST_F(PostingTest, ANameThatWasJustWithdrawnIsNotUsedAgain) {
  center_->postNotificationName(kMenu);
  pass(10s);
  center_->postNotificationName(kMenu);
  EXPECT_NE(published(0).identity.name, published(1).identity.name);
}

TEST_F(PostingTest, TheCenterLivesUntilItsPublicationsHaveEnded) {
  const std::weak_ptr<RVFRemoteNotificationCenter> weak = center_;
  center_->postNotificationName(kMenu);
  center_ = nullptr;
  pass(9s);
  EXPECT_FALSE(weak.expired());
  pass(1s);
  EXPECT_FALSE(isPublished(0));
  EXPECT_TRUE(weak.expired());
}

TEST_F(PostingTest, AMalformedNamePublishesNothingAndStillEnds) {
  const std::size_t before = openDescriptors();
  center_->postNotificationName("no service type");
  EXPECT_TRUE(discovery_->publications.empty());
  pass(10s);
  EXPECT_EQ(openDescriptors(), before);
}

/// What publications ended with.
std::vector<Ref<NSDictionary>>& recordsOfEnds() {
  static std::vector<Ref<NSDictionary>> records;
  return records;
}

void noteEnd(NSObject& self, SEL, Ref<NSDictionary> info) {
  recordsOfEnds().push_back(info);
  static_cast<RVFRemoteNotificationCenter&>(self).stopServiceWithInfo(info);
}

TEST_F(PostingTest, ARecordOfTwoEntriesIsSentToTheEndThatAnExtensionMayWatch) {
  class_addExtension(RVFRemoteNotificationCenter::classObject(),
                     {{SEL("stopServiceWithInfo:"), IMP(&noteEnd)}});
  center_->postNotificationName(kMenu);
  pass(10s);
  ASSERT_EQ(recordsOfEnds().size(), 1U);
  const auto record = recordsOfEnds().back();
  std::vector<std::string> keys;
  for (const auto& [key, value] : record->entries())
    keys.push_back(*unboxText(key));
  EXPECT_THAT(keys, UnorderedElementsAre("socket", "netService"));
  const auto socket = std::dynamic_pointer_cast<CFSocket>(record->objectForKey("socket"));
  ASSERT_NE(socket, nullptr);
  EXPECT_FALSE(CFSocketIsValid(socket));
  EXPECT_NE(std::dynamic_pointer_cast<NSNetService>(record->objectForKey("netService")), nullptr);
  EXPECT_FALSE(isPublished(0));
  center_->stopServiceWithInfo(record);  // again: nothing
}

TEST_F(PostingTest, ThePublicationRecordIsReleasedAtItsEnd) {
  center_->postNotificationName(kMenu);
  EXPECT_EQ(discovery_->publications[0].use_count(), 2) << "the script's and the activity's";
  pass(10s);
  EXPECT_EQ(discovery_->publications[0].use_count(), 1);
}

TEST_F(PostingTest, AnActionMayPost) {
  const auto observer =
      NotificationObserver::observer([this] { center_->postNotificationName("_prices._tcp"); });
  center_->addObserver(observer, NotificationObserver::kAction, kMenu);
  discovery_->browses.at(0)->events.found({"Till", "_menu._tcp.", "local."}, {2, AF_INET});
  pass(0s);
  ASSERT_EQ(discovery_->publications.size(), 1U);
  EXPECT_TRUE(isPublished(0));
}

// Without sockets

TEST_F(PostingTest, WithoutADescriptorThePostIsDroppedSilently) {
  center_->postNotificationName(kMenu);
  ::testing::internal::CaptureStderr();
  {
    const DescriptorLimit limit(0);
    center_->postNotificationName(kMenu);
  }
  EXPECT_EQ(::testing::internal::GetCapturedStderr(), "");
  EXPECT_EQ(discovery_->publications.size(), 1U);
  pass(10s);
  center_->postNotificationName(kMenu);
  EXPECT_EQ(publishedNow(), 1U);
}

/// Each call that a post needs fails on a thread of its own.
TEST_F(PostingTest, WhereAnySystemCallOfItFailsThePostIsDroppedSilently) {
  for (const long call : {SYS_socket, SYS_bind, SYS_listen, SYS_getsockname}) {
    const std::size_t before = openDescriptors();
    ::testing::internal::CaptureStderr();
    std::thread([&] {
      const auto center = std::make_shared<RVFRemoteNotificationCenter>();
      failCallOfThisThread(call, ENOBUFS);
      EXPECT_NO_THROW(center->postNotificationName(kMenu)) << call;
    }).join();
    EXPECT_EQ(::testing::internal::GetCapturedStderr(), "") << call;
    EXPECT_TRUE(discovery_->publications.empty()) << call;
    EXPECT_EQ(openDescriptors(), before) << call;
  }
}

// Connections

TEST_F(PostingTest, AConnectionIsAcceptedAndLeftAlone) {
  center_->postNotificationName(kMenu);
  const std::size_t before = openDescriptors();
  const int client = connectTo(published(0).port);
  ASSERT_GE(client, 0);
  EXPECT_EQ(::send(client, "hello", 5, MSG_NOSIGNAL), 5);
  pass(0s);
  EXPECT_EQ(openDescriptors(), before + 2) << "the client and its accepted end";
  EXPECT_TRUE(isOpenAndSilent(client));
  ::close(client);
}

TEST_F(PostingTest, AnAcceptedConnectionOutlivesThePublication) {
  const std::size_t before = openDescriptors();
  center_->postNotificationName(kMenu);
  const int client = connectTo(published(0).port);
  pass(10s);
  EXPECT_TRUE(isOpenAndSilent(client));
  ::close(client);
  EXPECT_EQ(openDescriptors(), before + 1) << "the accepted end, which nobody closes";
}

/// An address whose lower half is this number.
const void* addressCutTo(int number) {
  return reinterpret_cast<const void*>(std::uintptr_t{0x7FFD} << 32 |
                                       static_cast<std::uint32_t>(number));
}

TEST(AcceptCallBack, ClosesTheDataArgumentCutTo32Bits) {
  const int descriptor = ::dup(STDIN_FILENO);
  ASSERT_GE(descriptor, 0);
  RVFRemoteNotificationCenter::acceptCallBack(nullptr, kCFSocketAcceptCallBack, nullptr,
                                              addressCutTo(descriptor), nullptr);
  EXPECT_EQ(::fcntl(descriptor, F_GETFD), -1);
  EXPECT_EQ(errno, EBADF);
}

TEST(AcceptCallBack, FailsToCloseANumberThatNoDescriptorHas) {
  const std::size_t before = openDescriptors();
  for (const int number : {-1, -4, 0x12345678}) {
    errno = 0;
    RVFRemoteNotificationCenter::acceptCallBack(nullptr, kCFSocketAcceptCallBack, nullptr,
                                                addressCutTo(number), nullptr);
    EXPECT_EQ(errno, EBADF) << number;
  }
  EXPECT_EQ(openDescriptors(), before);
}

TEST(AcceptCallBack, DoesNothingForOtherEvents) {
  const int descriptor = ::dup(STDIN_FILENO);
  for (const auto type : {kCFSocketNoCallBack, kCFSocketReadCallBack}) {
    RVFRemoteNotificationCenter::acceptCallBack(nullptr, type, nullptr, addressCutTo(descriptor),
                                                nullptr);
  }
  EXPECT_GE(::fcntl(descriptor, F_GETFD), 0);
  ::close(descriptor);
}

// Many

/// As many descriptors as the system allows.
class MostDescriptors final {
 public:
  MostDescriptors() {
    ::getrlimit(RLIMIT_NOFILE, &before_);
    rlimit most = before_;
    most.rlim_cur = most.rlim_max;
    ::setrlimit(RLIMIT_NOFILE, &most);
  }
  ~MostDescriptors() { ::setrlimit(RLIMIT_NOFILE, &before_); }
  MostDescriptors(const MostDescriptors&) = delete;
  MostDescriptors& operator=(const MostDescriptors&) = delete;

 private:
  rlimit before_{};
};

TEST_F(PostingTest, AThousandPostsInARowAreAllGoneAfterTenSeconds) {
  constexpr std::size_t kPosts = 1000;
  const MostDescriptors most;
  const std::size_t before = openDescriptors();
  for (std::size_t i = 0; i < kPosts; ++i)
    center_->postNotificationName(kMenu);
  EXPECT_EQ(publishedNow(), kPosts);
  EXPECT_EQ(openDescriptors(), before + kPosts);
  std::set<std::string> names;
  std::set<std::uint16_t> ports;
  for (std::size_t i = 0; i < kPosts; ++i) {
    names.insert(published(i).identity.name);
    ports.insert(published(i).port);
  }
  EXPECT_EQ(names.size(), kPosts);
  EXPECT_EQ(ports.size(), kPosts);
  pass(10s);
  EXPECT_EQ(publishedNow(), 0U);
  EXPECT_EQ(openDescriptors(), before);
}

}  // namespace
}  // namespace rvf
