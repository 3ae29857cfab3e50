// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <any>
#include <compare>
#include <concepts>
#include <cstddef>
#include <span>
#include <string>
#include <tuple>
#include <type_traits>
#include <typeinfo>
#include <utility>

#include "Platform/Export.h"
#include "Platform/Runtime/AnyArgument.h"
#include "Platform/Runtime/NSException.h"
#include "Platform/Runtime/RunningMethod.h"
#include "Platform/Runtime/Selector.h"
#include "Platform/Runtime/TypeEncoding.h"

namespace rvf {

/// Converts a value on its way through a message; what cannot be converted raises with the class of
/// the receiver and the selector in its text.
template <class Conversion>
auto convertedInMessage(const NSObject& receiver, SEL selector, MessagePart part,
                        Conversion conversion) {
  try {
    return conversion();
  } catch (const NSException& mismatch) {
    raiseMismatchInMessage(receiver, selector, part, mismatch);
  }
}

/// The implementation of a method: the address of a function
/// `R (*)(NSObject& self, SEL cmd, Args...)`, together with its type.
///
/// A small value. It never calls a function through a signature that is not the function's own:
/// calling it with other types converts where the encodings agree (see `anyTo`) and raises
/// `NSInvalidArgumentException` where they do not, or where the number of arguments differs; the
/// reason names the receiver's class and the selector.
/// Two implementations are equal when they are the same function.
///
/// Thread: any, a plain value. Lifetime: the function's, that is as long as the process.
class RVF_EXPORT IMP final {
 public:
  IMP() noexcept = default;

  /// Arguments and result are values, because a message may have to keep them.
  template <class R, class... Args>
  IMP(R (*function)(NSObject&, SEL, Args...))
  noexcept  // NOLINT: converts on purpose
      : function_(reinterpret_cast<Function>(function)), type_(&Typed<R, Args...>::kType) {
    static_assert((std::same_as<Args, std::decay_t<Args>> && ...));
    static_assert(std::same_as<R, std::decay_t<R>> && !std::same_as<R, std::string_view>);
  }

  /// The same for a method that exists as `R (*)(NSObject& self, SEL cmd, const Args&...)` as well.
  template <auto ByReference, class R, class... Args>
  static IMP withReferences(R (*function)(NSObject&, SEL, Args...)) noexcept {
    using Signature = Typed<R, Args...>;
    static constexpr ByReferenceType<R, Args...> kType{
        {&typeid(R(Args...)), sizeof...(Args), &Signature::encoding, &Signature::caller, true},
        ByReference};
    IMP implementation(function);
    implementation.type_ = &kType;
    return implementation;
  }

  explicit operator bool() const noexcept { return function_ != nullptr; }
  friend bool operator==(const IMP& a, const IMP& b) noexcept { return a.function_ == b.function_; }
  friend std::strong_ordering operator<=>(const IMP& a, const IMP& b) noexcept {
    return std::compare_three_way()(a.address(), b.address());
  }

  /// The function's address, an identity only.
  const void* address() const noexcept { return reinterpret_cast<const void*>(function_); }
  /// The method's type encoding, for example "v@:i"; empty for the null implementation.
  std::string typeEncoding() const;

  /// Calls the function, marked as running. Exact types cost little more than the call itself.
  template <class R, class... Args>
  R call(NSObject& self, SEL selector, Args... arguments) const {
    static_assert(!std::same_as<R, std::string_view>, "a view of a result has nothing to view");
    if (!isOfType(typeid(R(Args...)))) {
      const std::any boxed[sizeof...(Args) + 1] = {toAny(std::move(arguments))..., {}};
      const std::any result = callWithArguments(self, selector, {boxed, sizeof...(Args)});
      return convertedInMessage(self, selector, MessagePart::result,
                                [&] { return anyTo<R>(result); });
    }
    const IMP running = *this;  // what holds this may change while it runs
    const RunningMethod mark(running, self, selector);
    return reinterpret_cast<R (*)(NSObject&, SEL, Args...)>(function_)(self, selector,
                                                                       std::move(arguments)...);
  }

  /// The same without copies of the arguments where the method takes none: nothing else may change
  /// them until it has returned. Counting a reference up and down costs more than the call.
  template <class R, class... Args>
  R callByReference(NSObject& self, SEL selector, const Args&... arguments) const {
    if (!type_ || !type_->takesReferences || !isOfType(typeid(R(Args...)))) {
      return call<R, Args...>(self, selector, arguments...);
    }
    const IMP running = *this;  // what holds this may change while it runs
    const RunningMethod mark(running, self, selector);
    return static_cast<const ByReferenceType<R, Args...>*>(running.type_)
        ->function(self, selector, arguments...);
  }

  /// Calls the function, marked as running, with arguments that are known only at run time. An
  /// empty argument reads as zero. The result is empty for a function without one. The arguments
  /// must stay as they are until the function has returned.
  std::any callWithArguments(NSObject& self, SEL selector,
                             std::span<const std::any> arguments) const;

 private:
  using Function = void (*)();
  struct Type {
    const std::type_info* signature;
    std::size_t argumentCount;
    std::string (*encoding)();
    std::any (*caller)(Function, NSObject&, SEL, std::span<const std::any>);
    bool takesReferences;
  };
  template <class R, class... Args>
  struct ByReferenceType : Type {
    R (*function)(NSObject&, SEL, const Args&...);
  };

  // Comparing addresses first: comparing type_infos compares names once there are two libraries.
  bool isOfType(const std::type_info& signature) const noexcept {
    return type_ && (type_->signature == &signature || *type_->signature == signature);
  }

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
      [[maybe_unused]] auto values = convertedInMessage(self, selector, MessagePart::argument, [&] {
        return std::tuple<Args...>(anyTo<Args>(arguments[I])...);
      });
      if constexpr (std::is_void_v<R>) {
        typed(self, selector, std::forward<Args>(std::get<I>(values))...);
        return {};
      } else {
        return toAny(typed(self, selector, std::forward<Args>(std::get<I>(values))...));
      }
    }
    static constexpr Type kType{&typeid(R(Args...)), sizeof...(Args), &encoding, &caller, false};
  };

  Function function_ = nullptr;
  const Type* type_ = nullptr;
};

}  // namespace rvf
