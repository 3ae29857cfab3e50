// SPDX-License-Identifier: Apache-2.0
#include "Platform/RunLoop/NSRunLoop.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <utility>

#include "Platform/RunLoop/NSRunLoopCore.h"
#include "Platform/RunLoop/NSThread.h"
#include "Platform/Runtime/ClassBuilder.h"
#include "Platform/Runtime/ClassRegistration.h"

namespace rvf {
namespace {

const ClassRegistration kRegistration(&NSRunLoop::classObject);

constexpr double kNanosecondsPerSecond = 1e9;
// A delay of more than a century is for ever, and stays clear of the end of the clock's range.
constexpr double kLongestDelaySeconds = 100.0 * 366 * 24 * 60 * 60;

std::chrono::nanoseconds nanosecondsOf(double seconds) {
  if (!(seconds > 0)) return std::chrono::nanoseconds::zero();
  const double nanoseconds = std::min(seconds, kLongestDelaySeconds) * kNanosecondsPerSecond;
  return std::chrono::nanoseconds(static_cast<std::int64_t>(std::ceil(nanoseconds)));
}

}  // namespace

RunLoopSource::~RunLoopSource() = default;

NSRunLoop::NSRunLoop(Private) : core_(std::make_shared<Core>()) {}

NSRunLoop::~NSRunLoop() = default;

Class NSRunLoop::classObject() {
  static const Class kClass =
      ClassBuilder<NSRunLoop>("NSRunLoop", NSObject::classObject()).registered();
  return kClass;
}

Class NSRunLoop::isa() const {
  return classObject();
}

Ref<NSRunLoop> NSRunLoop::currentRunLoop() {
  return NSThread::currentThread()->runLoop();
}

Ref<NSRunLoop> NSRunLoop::mainRunLoop() {
  return NSThread::mainThread()->runLoop();
}

void NSRunLoop::close() {
  core_->close();
}

void NSRunLoop::performInModes(const RunLoopModes& modes, Block block) {
  if (!modes.empty()) core_->post(ItemModes(modes), std::move(block));
}

void NSRunLoop::performBlock(Block&& block) {
  core_->post(std::move(block));
}

std::unique_ptr<RunLoopSource> NSRunLoop::scheduleTimer(double delaySeconds,
                                                        const RunLoopModes& modes, Block block) {
  return core_->schedule(core_->clock()->now() + nanosecondsOf(delaySeconds), ItemModes(modes),
                         std::move(block));
}

void NSRunLoop::performAfterDelay(double delaySeconds, const RunLoopModes& modes, Block block) {
  performAtTime(core_->clock()->now() + nanosecondsOf(delaySeconds), modes, std::move(block));
}

void NSRunLoop::performAtTime(Clock::time_point time, const RunLoopModes& modes, Block block) {
  if (!modes.empty()) core_->scheduleForGood(time, ItemModes(modes), std::move(block));
}

std::unique_ptr<RunLoopSource> NSRunLoop::watchDescriptor(int descriptor, DescriptorEvents wanted,
                                                          const RunLoopModes& modes,
                                                          DescriptorBlock block) {
  return core_->watch(descriptor, wanted, modes, std::move(block));
}

void NSRunLoop::addCommonMode(std::string_view mode) {
  core_->addCommonMode(mode);
}

std::optional<std::string> NSRunLoop::currentMode() const {
  return core_->currentMode();
}

bool NSRunLoop::runMode(std::string_view mode, Clock::time_point limit) {
  const auto core = core_;
  return core->runMode(mode, limit);
}

void NSRunLoop::runUntilDate(Clock::time_point limit) {
  const auto core = core_;
  core->runUntilDate(limit);
}

void NSRunLoop::run() {
  runUntilDate(Clock::time_point::max());
}

void NSRunLoop::stop() {
  core_->stop();
}

void NSRunLoop::wakeUp() {
  core_->wakeUp();
}

int NSRunLoop::pollableDescriptor() {
  return core_->pollableDescriptor();
}

std::optional<std::chrono::milliseconds> NSRunLoop::nextTimeout(std::string_view mode) {
  return core_->nextTimeout(mode);
}

bool NSRunLoop::turn(std::string_view mode) {
  const auto core = core_;
  return core->turn(mode);
}

std::optional<NSRunLoop::Clock::time_point> NSRunLoop::nextDeadline(std::string_view mode) const {
  return core_->nextDeadline(mode);
}

std::shared_ptr<RunLoopClock> NSRunLoop::clock() const {
  return core_->clock();
}

void NSRunLoop::setClock(std::shared_ptr<RunLoopClock> clock) {
  core_->setClock(std::move(clock));
}

}  // namespace rvf
