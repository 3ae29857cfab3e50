// SPDX-License-Identifier: Apache-2.0
#include "Platform/RunLoop/NSThread.h"

#include <pthread.h>
#include <unistd.h>

#include <array>
#include <system_error>
#include <thread>
#include <utility>

#include "Platform/Observation/KeyValueObserving.h"
#include "Platform/RunLoop/NSRunLoop.h"
#include "Platform/Runtime/ClassBuilder.h"
#include "Platform/Runtime/ClassRegistration.h"
#include "Platform/Runtime/NSException.h"

namespace rvf {
namespace {

const ClassRegistration kRegistration(&NSThread::classObject);

constexpr std::size_t kSystemNameSize = 16;  // with the final zero byte

bool isInitialThread() {
  thread_local const bool kIsInitial = ::gettid() == ::getpid();
  return kIsInitial;
}

/// The longest beginning that the system accepts and that ends with a whole character.
std::string systemName(std::string_view name) {
  constexpr auto isContinuation = [](char c) {
    return (static_cast<unsigned char>(c) & 0xC0) == 0x80;
  };
  std::size_t size = name.size();
  if (size >= kSystemNameSize) {
    size = kSystemNameSize - 1;
    while (size > 0 && isContinuation(name[size]))
      --size;
  }
  return std::string(name.substr(0, size));
}

/// What a thread started here is to find as itself when it first asks.
thread_local const Ref<NSThread>* startedThread = nullptr;
/// This thread, once it has entered and until it leaves. Asked for by every perform, hence laid
/// where no call is needed to find it.
[[gnu::tls_model("initial-exec")]] thread_local const NSThread* enteredThread = nullptr;
thread_local bool threadHasLeft = false;

}  // namespace

/// Lives as long as its thread, which enters by its first question about itself.
struct NSThread::Entry {
  Entry() : thread(threadEntering()) {
    thread->begin();
    enteredThread = thread.get();
  }
  Entry(const Entry&) = delete;
  Entry& operator=(const Entry&) = delete;
  ~Entry() {
    thread->end();
    enteredThread = nullptr;
    threadHasLeft = true;
  }

  static Ref<NSThread> threadEntering() {
    if (startedThread) return *startedThread;
    return isInitialThread() ? mainThread() : make(State::kStarting);
  }

  const Ref<NSThread> thread;
};

NSThread::NSThread(Private, State state) : state_(state) {}

NSThread::~NSThread() = default;

Class NSThread::classObject() {
  static const Class kClass = ClassBuilder<NSThread>("NSThread", NSObject::classObject())
                                  .property("name", "T@\"NSString\",C")
                                  .method<&NSThread::name>("name")
                                  .method<&NSThread::setName>("setName:")
                                  .method<&NSThread::isExecuting>("isExecuting")
                                  .method<&NSThread::isFinished>("isFinished")
                                  .registered();
  return kClass;
}

Class NSThread::isa() const {
  return classObject();
}

Ref<NSThread> NSThread::make(State state) {
  return std::make_shared<NSThread>(Private(), state);
}

Ref<NSThread> NSThread::mainThread() {
  // Never destroyed: other threads may still post to it while the process exits.
  static const Ref<NSThread>& kMain = *new Ref<NSThread>(make(State::kExecuting));
  return kMain;
}

Ref<NSThread> NSThread::currentThread() {
  if (threadHasLeft) return isInitialThread() ? mainThread() : make(State::kFinished);
  thread_local const Entry entry;
  return entry.thread;
}

bool NSThread::isMainThread() {
  return isInitialThread();
}

Ref<NSThread> NSThread::detachNewThread(Block block) {
  auto thread = make(State::kStarting);
  try {
    std::thread([thread, run = std::move(block)]() mutable {
      startedThread = &thread;
      currentThread();
      const Block running = std::exchange(run, nullptr);
      running();
    }).detach();
  } catch (const std::system_error& error) {
    NSException::raise(NSGenericException,
                       std::string("no thread can be started: ") + error.what());
  }
  return thread;
}

void NSThread::begin() {
  const std::lock_guard lock(mutex_);
  state_ = State::kExecuting;
  handle_ = ::pthread_self();
  isEntered_ = true;
  showName();
}

void NSThread::end() {
  {
    const std::lock_guard lock(mutex_);
    state_ = State::kFinished;
    isEntered_ = false;
  }
  if (hasRunLoop_) runLoop_->close();
}

std::string NSThread::name() const {
  const std::lock_guard lock(mutex_);
  if (!name_.empty() || !isEntered_) return name_;
  std::array<char, kSystemNameSize> shown{};
  return ::pthread_getname_np(handle_, shown.data(), shown.size()) == 0 ? shown.data() : name_;
}

void NSThread::setName(std::string_view name) {
  announceChange(*this, "name", [&] {
    const std::lock_guard lock(mutex_);
    name_ = name;
    showName();
  });
}

void NSThread::showName() const {
  if (isEntered_ && !name_.empty()) ::pthread_setname_np(handle_, systemName(name_).c_str());
}

bool NSThread::isExecuting() const {
  return state_ == State::kExecuting;
}

bool NSThread::isCurrentThread() const noexcept {
  return enteredThread ? enteredThread == this : currentThread().get() == this;
}

void NSThread::makeRunLoop() {
  const std::lock_guard lock(mutex_);
  if (hasRunLoop_) return;
  runLoop_ = std::make_shared<NSRunLoop>(NSRunLoop::Private());
  if (state_ == State::kFinished) runLoop_->close();
  hasRunLoop_ = true;
}

}  // namespace rvf
