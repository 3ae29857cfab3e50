// SPDX-License-Identifier: Apache-2.0
#include "Platform/Network/AvahiDaemonBackend.h"

#include <gtest/gtest.h>
#include <sys/resource.h>

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>

#include "Platform/RunLoop/NSRunLoop.h"
#include "tests/Platform/Network/LocalBus.h"

// What needs no daemon. Everything else is tested with a real one, across two hosts.
namespace rvf {
namespace {

using namespace std::chrono_literals;

constexpr auto kPatience = 10s;
const BusAddress& nowhere() {
  static const BusAddress address("unix:path=/nonexistent/bus");
  return address;
}

template <class Condition>
void turnUntil(Condition isMet) {
  const auto limit = NSRunLoop::Clock::now() + kPatience;
  while (!isMet() && NSRunLoop::Clock::now() < limit) {
    NSRunLoop::currentRunLoop()->runMode(NSDefaultRunLoopMode, limit);
  }
}

std::chrono::microseconds processorTime() {
  rusage usage{};
  getrusage(RUSAGE_THREAD, &usage);
  const auto of = [](const timeval& time) {
    return std::chrono::seconds(time.tv_sec) + std::chrono::microseconds(time.tv_usec);
  };
  return of(usage.ru_utime) + of(usage.ru_stime);
}

class AvahiDaemonBackendTest : public testing::Test {
 protected:
  std::function<void(NSNetServicesError)> noteError() {
    return [this](NSNetServicesError error) { failure = error; };
  }

  AvahiDaemonBackend backend;
  std::optional<NSNetServicesError> failure;
};

TEST_F(AvahiDaemonBackendTest, RefusesWhatCannotBeAskedForOnALaterTurn) {
  nowhere();
  const struct {
    const char* type;
    const char* domain;
  } rows[] = {{"till", "local."}, {"", "local."}, {"_till\xFF._tcp.", ""}, {"_till._tcp.", "a..b"}};
  for (const auto& row : rows) {
    failure.reset();
    BrowseEvents events;
    events.failed = noteError();
    const auto search = backend.browse(row.type, row.domain, events);
    EXPECT_FALSE(failure) << row.type;
    turnUntil([this] { return failure.has_value(); });
    EXPECT_EQ(failure, NSNetServicesError::badArgument) << row.type << ' ' << row.domain;
  }
}

TEST_F(AvahiDaemonBackendTest, RefusesNamesThatAreNoUtf8) {
  nowhere();
  ResolveEvents events;
  events.failed = noteError();
  const auto resolution = backend.resolve({"Till \xFF", "_till._tcp.", "local."}, events);
  turnUntil([this] { return failure.has_value(); });
  EXPECT_EQ(failure, NSNetServicesError::badArgument);
}

TEST_F(AvahiDaemonBackendTest, RefusesATruncatedTXTRecord) {
  nowhere();
  Publication publication;
  publication.identity = {"Till", "_till._tcp.", "local."};
  publication.txtRecord = {std::byte{5}, std::byte{'a'}};
  PublishEvents events;
  events.failed = noteError();
  const auto activity = backend.publish(publication, events);
  turnUntil([this] { return failure.has_value(); });
  EXPECT_EQ(failure, NSNetServicesError::badArgument);
}

TEST_F(AvahiDaemonBackendTest, SaysNothingAfterItsEnd) {
  nowhere();
  BrowseEvents events;
  events.failed = noteError();
  backend.browse("till", "local.", events).reset();
  bool wasTurned = false;
  NSRunLoop::currentRunLoop()->performBlock([&] { wasTurned = true; });
  turnUntil([&] { return wasTurned; });
  EXPECT_FALSE(failure);
}

TEST_F(AvahiDaemonBackendTest, AnActivityMayEndItselfInItsEvent) {
  nowhere();
  std::unique_ptr<DiscoveryActivity> search;
  BrowseEvents events;
  events.failed = [&](NSNetServicesError error) {
    search.reset();
    failure = error;
  };
  search = backend.browse("till", "local.", events);
  turnUntil([this] { return failure.has_value(); });
  EXPECT_FALSE(search);
}

TEST_F(AvahiDaemonBackendTest, AnExceptionOfAnEventLeavesTheRunLoop) {
  nowhere();
  BrowseEvents events;
  events.failed = [](NSNetServicesError) { throw std::runtime_error("from the event"); };
  const auto search = backend.browse("till", "local.", events);
  EXPECT_THROW(turnUntil([] { return false; }), std::runtime_error);
}

TEST_F(AvahiDaemonBackendTest, WaitsForASilentBusAtRest) {
  const SilentBus bus;
  const BusAddress address(bus.address());
  const auto search = backend.browse("_till._tcp.", "local.", {});
  const auto before = processorTime();
  NSRunLoop::currentRunLoop()->runUntilDate(NSRunLoop::Clock::now() + 300ms);
  EXPECT_LT(processorTime() - before, 150ms);
}

TEST_F(AvahiDaemonBackendTest, TriesABusThatHangsUpWithGrowingPauses) {
  const SilentBus bus;
  const BusAddress address(bus.address());
  int attempts = 0;
  DescriptorEvents wanted;
  wanted.readable = true;
  const auto listener = NSRunLoop::currentRunLoop()->watchDescriptor(
      bus.descriptor(), wanted, {std::string(NSRunLoopCommonModes)}, [&](DescriptorEvents) {
        close(accept(bus.descriptor(), nullptr, nullptr));
        ++attempts;
      });
  const auto start = NSRunLoop::Clock::now();
  const auto search = backend.browse("_till._tcp.", "local.", {});
  turnUntil([&] { return attempts == 3; });
  EXPECT_EQ(attempts, 3);
  EXPECT_GE(NSRunLoop::Clock::now() - start, 750ms);
}

}  // namespace
}  // namespace rvf
