// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Platform/Export.h"
#include "Platform/RunLoop/NSRunLoop.h"
#include "Platform/RunLoop/NSThread.h"
#include "Platform/Runtime/NSObject.h"
#include "Platform/Runtime/Selector.h"

/// Sending a message on another thread, or later. The message has one object argument, which may
/// be absent, or none if the selector asks for none; its result is dropped. Target and argument
/// are kept alive until the message was sent. Nothing is sent to an absent target, nor in an empty
/// list of modes.
///
/// Messages run on the target thread's run loop, so only while that thread runs it in one of the
/// modes; those that one thread sends to another arrive in the order sent.
///
/// With `waitUntilDone` the call returns when the message has been sent: at once, within the call,
/// if the target thread is the caller; for ever blocked if the target thread never runs its loop.
/// An exception of the message is then raised in the caller, and does not disturb the target
/// thread. Without it the message is always queued, also on the caller's own thread, and an
/// exception leaves the run call of the target thread.
///
/// A thread that has finished, or finishes before the message was sent, raises
/// `NSDestinationInvalidException` in a caller that waits; without one the message is dropped.
namespace rvf {

/// In the common modes.
RVF_EXPORT void performSelectorOnMainThread(const id& target, SEL selector, const id& argument,
                                            bool waitUntilDone);
RVF_EXPORT void performSelectorOnMainThread(const id& target, SEL selector, const id& argument,
                                            bool waitUntilDone, const RunLoopModes& modes);

/// In the common modes.
RVF_EXPORT void performSelectorOnThread(const id& target, SEL selector, const Ref<NSThread>& thread,
                                        const id& argument, bool waitUntilDone);
RVF_EXPORT void performSelectorOnThread(const id& target, SEL selector, const Ref<NSThread>& thread,
                                        const id& argument, bool waitUntilDone,
                                        const RunLoopModes& modes);

/// Calls a block instead, by the same rules.
RVF_EXPORT void performBlockOnThread(const Ref<NSThread>& thread, NSThread::Block&& block,
                                     bool waitUntilDone);
RVF_EXPORT void performBlockOnThread(const Ref<NSThread>& thread, NSThread::Block&& block,
                                     bool waitUntilDone, const RunLoopModes& modes);

/// On the calling thread's own loop, after `delaySeconds`; 0 or less: on a later turn, never
/// within the call.
RVF_EXPORT void performSelectorAfterDelay(const id& target, SEL selector, const id& argument,
                                          double delaySeconds, const RunLoopModes& modes);

/// On a new detached thread, inside a release scope of its own. An exception of the message ends
/// the process.
RVF_EXPORT void performSelectorInBackground(const id& target, SEL selector, const id& argument);

}  // namespace rvf
