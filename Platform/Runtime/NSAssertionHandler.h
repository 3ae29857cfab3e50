// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <string_view>

#include "Platform/Export.h"
#include "Platform/Runtime/NSObject.h"

namespace rvf {

/// Receives the reported assertions of one thread: programming errors that a program may want to
/// log, count or survive. The default logs one line to standard error and raises
/// `NSInternalInconsistencyException` with the description as reason.
///
/// A subclass that returns lets the failed operation go on, so every caller of these operations
/// has code for that. File and line are stated constants of the operation that failed.
///
/// A thread's handler goes with the thread: assertions that the last destructors of a thread report
/// after that reach a default one.
///
/// Thread: one a thread, called on the thread that failed; one set for several must be thread-safe.
/// Lifetime: owned by the thread, until it is replaced or the thread ends.
class RVF_EXPORT NSAssertionHandler : public NSObject {
 public:
  /// This thread's handler, made on first use.
  static Ref<NSAssertionHandler> currentHandler();
  /// Replaces this thread's handler; absent brings the default back. Does nothing once the thread's
  /// handler has gone with its thread.
  static void setCurrentHandler(Ref<NSAssertionHandler> handler);

  static Class classObject();
  Class isa() const override;

  /// `object` received the message; for an operation of a class itself, a `ClassReceiver`. The
  /// default shows them as "-[Class selector]" and "+[Class selector]".
  virtual void handleFailureInMethod(SEL selector, const NSObject* object, std::string_view file,
                                     int line, std::string_view description);
  virtual void handleFailureInFunction(std::string_view function, std::string_view file, int line,
                                       std::string_view description);
};

/// Reports a fatal assertion: prints function, source path, line and condition to standard error
/// and aborts the process. Never returns and never throws.
[[noreturn]] RVF_EXPORT void failAssertion(std::string_view function, std::string_view file,
                                           int line, std::string_view condition) noexcept;

}  // namespace rvf
