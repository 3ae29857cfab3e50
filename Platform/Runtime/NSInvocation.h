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
/// Arguments are counted as in the signature: the first of the message's own has index 2. Unset
/// arguments read as zero. An index past the signature raises `NSInvalidArgumentException`. Object
/// arguments and the receiver are kept alive by the invocation.
class RVF_EXPORT NSInvocation final : public NSObject {
 public:
  /// Raises `NSInvalidArgumentException` if the signature is absent.
  static Ref<NSInvocation> invocationWithMethodSignature(Ref<NSMethodSignature> signature);

  explicit NSInvocation(Ref<NSMethodSignature> signature);

  static Class classObject();
  Class isa() const override;

  const Ref<NSMethodSignature>& methodSignature() const noexcept { return signature_; }
  const id& target() const noexcept { return target_; }
  void setTarget(id target) { target_ = std::move(target); }
  SEL selector() const noexcept { return selector_; }
  void setSelector(SEL selector) noexcept { selector_ = selector; }

  template <class T>
  void setArgument(T&& value, std::size_t index) {
    checkIndex(index);
    arguments_[index - kFirstArgument] = toAny(std::forward<T>(value));
  }
  /// Raises `NSInvalidArgumentException` if the argument is of another type.
  template <class T>
  T argument(std::size_t index) const {
    checkIndex(index);
    return anyTo<T>(arguments_[index - kFirstArgument]);
  }
  template <class T>
  T returnValue() const {
    return anyTo<T>(result_);
  }
  template <class T>
  void setReturnValue(T&& value) {
    result_ = toAny(std::forward<T>(value));
  }

  /// Sends the message to the target; an absent target answers nothing.
  void invoke();
  void invokeWithTarget(id target);

  /// The form in which `send` passes arguments on. `arguments` has one entry an argument.
  void setArguments(std::vector<std::any> arguments);
  const std::any& result() const noexcept { return result_; }

 private:
  static constexpr std::size_t kFirstArgument = 2;
  void checkIndex(std::size_t index) const;

  Ref<NSMethodSignature> signature_;
  id target_;
  SEL selector_;
  std::vector<std::any> arguments_;
  std::any result_;
};

}  // namespace rvf
