// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <functional>

#include "Platform/Export.h"
#include "Platform/Runtime/NSObject.h"
#include "Platform/Values/NSError.h"

namespace rvf {

/// Lets a caller attach a recovery action to an error as a block: put one into the error's user
/// info under `NSRecoveryAttempterErrorKey`, beside the titles of the options. Whoever presents the
/// error calls one of the two attempt operations with the index of the option that the user chose.
///
/// The handler must be set before either operation is called; neither checks.
///
/// Thread: that of whoever presents the error. Lifetime: owns the handler; errors keep it through
/// their user info.
class RVF_EXPORT RVFRecoveryAttempterBlock final : public NSObject {
 public:
  /// Tries to recover from `error` with the chosen option; may store why it could not, if
  /// `recoveryError` is given. Answers whether it succeeded.
  using Handler = std::function<bool(const Ref<NSError>& error, std::size_t optionIndex,
                                     Ref<NSError>* recoveryError)>;

  /// A new attempter, kept alive at least until the current release scope ends.
  static Ref<RVFRecoveryAttempterBlock> recoveryAttempterWithHandler(Handler handler);

  static Class classObject();
  Class isa() const override;

  /// May be replaced at any time; an attempt calls the one of its moment.
  const Handler& handler() const noexcept { return handler_; }
  void setHandler(Handler handler);

  /// The application-modal form: calls the handler without room for a recovery error.
  bool attemptRecoveryFromError(const Ref<NSError>& error, std::size_t optionIndex);

  /// The sheet form: calls the handler, then sends `didRecoverSelector` to `delegate` with the
  /// handler's answer and, only if the handler stored one, its recovery error. `contextInfo` is
  /// never passed on. Raises `NSInvalidArgumentException` if the delegate does not answer the
  /// selector, or has no argument for a recovery error that the handler stored.
  void attemptRecoveryFromError(const Ref<NSError>& error, std::size_t optionIndex,
                                const id& delegate, SEL didRecoverSelector,
                                const void* contextInfo);

 private:
  Handler handler_;
};

}  // namespace rvf
