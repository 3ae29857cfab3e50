// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <any>
#include <cstddef>
#include <utility>
#include <vector>

#include "Platform/Export.h"
#include "Platform/Runtime/AnyArgument.h"
#include "Platform/Runtime/NSMethodSignature.h"
#include "Platform/Runtime/NSObject.h"
#include "Platform/Runtime/Selector.h"

namespace rvf {

/// A message as a value: receiver, selector, arguments and, once it was invoked, the result.
///
/// Arguments are counted as in the signature: 0 is the receiver, 1 the selector, 2 the first of the
/// message's own. Unset arguments read as zero. An index past the signature raises
/// `NSInvalidArgumentException`. Objects and text are kept alive by the invocation; what a pointer
/// points to is not.
///
/// Thread: one at a time. Lifetime: keeps receiver, arguments and result alive.
class RVF_EXPORT NSInvocation final : public NSObject {
 public:
  /// Raises `NSInvalidArgumentException` if the signature is absent.
  static Ref<NSInvocation> invocationWithMethodSignature(Ref<NSMethodSignature> signature);

  explicit NSInvocation(Ref<NSMethodSignature> signature);

  static Class classObject();
  Class isa() const override;

  /// Fixed, whereas target and selector, arguments 0 and 1, may change until the message is sent.
  const Ref<NSMethodSignature>& methodSignature() const noexcept { return signature_; }
  id target() const { return argument<id>(0); }
  void setTarget(id target) { setArgument(std::move(target), 0); }
  SEL selector() const { return argument<SEL>(1); }
  void setSelector(SEL selector) { setArgument(selector, 1); }

  /// Raises `NSInvalidArgumentException` past the signature.
  template <class T>
  void setArgument(T&& value, std::size_t index) {
    setValue(toAny(std::forward<T>(value)), index);
  }
  /// Raises `NSInvalidArgumentException` if the argument is of another encoding. A view of text
  /// lives until the argument is set again.
  template <class T>
  T argument(std::size_t index) const {
    return anyTo<T>(value(index));
  }
  /// Zero before the message was sent or a result was set.
  template <class T>
  T returnValue() const {
    return anyTo<T>(result_);
  }
  template <class T>
  void setReturnValue(T&& value) {
    result_ = toAny(std::forward<T>(value));
  }

  /// Sends the message to the target and keeps the result; an absent target answers nothing. The
  /// method may change or drop this invocation while it runs.
  void invoke();
  void invokeWithTarget(id target);

  /// The form in which `send` passes arguments on, one entry for each of the message's own; raises
  /// `NSInvalidArgumentException` for another number of them.
  void setArguments(std::vector<std::any> arguments);
  const std::any& result() const noexcept { return result_; }

 private:
  const std::any& value(std::size_t index) const;
  void setValue(std::any value, std::size_t index);
  void checkIndex(std::size_t index) const;

  Ref<NSMethodSignature> signature_;
  std::vector<std::any> values_;  // of receiver, selector and arguments, empty where unset
  std::any result_;
};

}  // namespace rvf
