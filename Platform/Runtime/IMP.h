// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <any>
#include <compare>
#include <memory>
#include <span>
#include <string>
#include <type_traits>
#include <typeinfo>
#include <utility>

#include "Platform/Export.h"
#include "Platform/Runtime/AnyArgument.h"
#include "Platform/Runtime/Selector.h"
#include "Platform/Runtime/TypeEncoding.h"

namespace rvf {

/// The implementation of a method: the address of a function
/// `R (*)(NSObject& self, SEL cmd, Args...)`, together with its type.
///
/// A small value. It never calls a function through a signature that is not the function's own:
/// calling it with other types converts where the encodings agree (a `Ref` to a base class, a
/// `long` for a `long long`) and raises `NSInvalidArgumentException` where they do not.
/// Two implementations are equal when they are the same function.
class RVF_EXPORT IMP final {
 public:
  IMP() noexcept = default;

  template <class R, class... Args>
  IMP(R (*function)(NSObject&, SEL, Args...))
  noexcept  // NOLINT: made from a function on purpose
      : function_(reinterpret_cast<Function>(function)), type_(&Typed<R, Args...>::kType) {}

  explicit operator bool() const noexcept { return function_ != nullptr; }
  friend bool operator==(const IMP& a, const IMP& b) noexcept { return a.function_ == b.function_; }
  friend std::strong_ordering operator<=>(const IMP& a, const IMP& b) noexcept {
    return a.address() <=> b.address();
  }

  /// The function's address, an identity only.
  const void* address() const noexcept { return reinterpret_cast<const void*>(function_); }
  /// The method's type encoding, for example "v@:i"; empty for the null implementation.
  std::string typeEncoding() const;

  /// Calls the function. Exact types cost one comparison more than the call itself.
  template <class R, class... Args>
  R call(NSObject& self, SEL selector, Args... arguments) const {
    if (type_ &&
        (type_->signature == &typeid(R(Args...)) || *type_->signature == typeid(R(Args...)))) {
      return reinterpret_cast<R (*)(NSObject&, SEL, Args...)>(function_)(
          self, selector, std::forward<Args>(arguments)...);
    }
    const std::any boxed[sizeof...(Args) + 1] = {toAny(std::forward<Args>(arguments))..., {}};
    return anyTo<R>(callWithArguments(self, selector, {boxed, sizeof...(Args)}));
  }

  /// Calls the function with arguments that are known only at run time. A missing or empty
  /// argument reads as zero. The result is empty for a function without one.
  std::any callWithArguments(NSObject& self, SEL selector,
                             std::span<const std::any> arguments) const;

 private:
  using Function = void (*)();
  struct Type {
    const std::type_info* signature;
    std::string (*encoding)();
    std::any (*caller)(Function, NSObject&, SEL, std::span<const std::any>);
  };

  static const std::any& argumentAt(std::span<const std::any> arguments, std::size_t index);

  template <class R, class... Args>
  struct Typed {
    static std::string encoding() {
      return rvf::typeEncoding<R>() + "@:" + (std::string() + ... + rvf::typeEncoding<Args>());
    }
    static std::any caller(Function function, NSObject& self, SEL selector,
                           std::span<const std::any> arguments) {
      return callIndexed(function, self, selector, arguments, std::index_sequence_for<Args...>());
    }
    template <std::size_t... I>
    static std::any callIndexed(Function function, NSObject& self, SEL selector,
                                [[maybe_unused]] std::span<const std::any> arguments,
                                std::index_sequence<I...>) {
      const auto typed = reinterpret_cast<R (*)(NSObject&, SEL, Args...)>(function);
      if constexpr (std::is_void_v<R>) {
        typed(self, selector, anyTo<Args>(argumentAt(arguments, I))...);
        return {};
      } else {
        return toAny(typed(self, selector, anyTo<Args>(argumentAt(arguments, I))...));
      }
    }
    static constexpr Type kType{&typeid(R(Args...)), &encoding, &caller};
  };

  Function function_ = nullptr;
  const Type* type_ = nullptr;
};

}  // namespace rvf
