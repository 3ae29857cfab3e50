// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <any>
#include <functional>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>

#include "Platform/Runtime/AnyArgument.h"
#include "Platform/Runtime/ClassRecord.h"
#include "Platform/Runtime/IMP.h"
#include "Platform/Runtime/Runtime.h"
#include "Platform/Runtime/RuntimeName.h"

namespace rvf {

namespace detail {

/// Messages carry values: references are copied on the way, and views of a result become text.
template <class T>
using MessageArgument = std::decay_t<T>;
template <class R>
using MessageResult = std::conditional_t<std::is_same_v<std::decay_t<R>, std::string_view>,
                                         std::string, std::decay_t<R>>;

/// An argument that the member function could change would lose the change with the copy.
template <class T>
inline constexpr bool kIsMessageArgument =
    !std::is_lvalue_reference_v<T> || std::is_const_v<std::remove_reference_t<T>>;

/// An argument that a method can look at where its sender keeps it, without a copy of its own.
template <class T>
inline constexpr bool kCanStayWithSender =
    std::is_lvalue_reference_v<T> || std::is_trivially_copyable_v<T>;
template <class T>
inline constexpr bool kIsCopiedAtACost = !std::is_trivially_copyable_v<std::decay_t<T>>;

template <auto Member, class Receiver, class R, class... Args>
struct Trampoline {
  static_assert((kIsMessageArgument<Args> && ...));
  static constexpr bool kTakesReferences =
      (kCanStayWithSender<Args> && ...) && (kIsCopiedAtACost<Args> || ...);

  static MessageResult<R> call(NSObject& self, SEL, MessageArgument<Args>... arguments) {
    return static_cast<MessageResult<R>>(
        std::invoke(Member, static_cast<Receiver&>(self), std::forward<Args>(arguments)...));
  }
  static MessageResult<R> callByReference(NSObject& self, SEL,
                                          const MessageArgument<Args>&... arguments) {
    return static_cast<MessageResult<R>>(
        std::invoke(Member, static_cast<Receiver&>(self), arguments...));
  }
};

template <auto Member>
struct MemberTrampoline;

template <class C, class R, class... Args, R (C::*Member)(Args...)>
struct MemberTrampoline<Member> : Trampoline<Member, C, R, Args...> {
  using Owner = C;
};

template <class C, class R, class... Args, R (C::*Member)(Args...) const>
struct MemberTrampoline<Member> : Trampoline<Member, const C, R, Args...> {
  using Owner = C;
};

template <auto Member>
struct MemberVariable;

template <class C, class T, T C::*Member>
struct MemberVariable<Member> {
  using Owner = C;
  using Type = T;
  static std::any read(const NSObject& object) {
    return toAny(static_cast<const C&>(object).*Member);
  }
  static void write(NSObject& object, const std::any& value) {
    static_cast<C&>(object).*Member = anyTo<T>(value);
  }
};

}  // namespace detail

/// The implementation that calls a member function of the receiver. It goes into classes whose
/// instances derive from the function's class, and into no others.
template <auto Member>
IMP memberImplementation() {
  using Trampoline = detail::MemberTrampoline<Member>;
  if constexpr (Trampoline::kTakesReferences) {
    return IMP::withReferences<&Trampoline::callByReference>(&Trampoline::call);
  } else {
    return IMP(&Trampoline::call);
  }
}

/// Describes a class to the runtime, once, beside its code:
///
///     Class Person::classObject() {
///       static const Class kClass = ClassBuilder<Person>("Person", NSObject::classObject())
///                                       .property("count", "Ti,N,V_count")
///                                       .ivar<&Person::count_>("_count")
///                                       .method<&Person::count>("count")
///                                       .method<&Person::setCount>("setCount:")
///                                       .conformsTo("Countable")
///                                       .registered();
///       return kClass;
///     }
///
/// `T` derives from `NSObject` once (never virtually), because methods cast their receiver to it.
///
/// Thread: the one that describes the class, on its stack. Lifetime: what is registered lives as
/// long as the process.
template <class T>
class ClassBuilder final {
 public:
  ClassBuilder(std::string_view name, Class superclass) {
    description_.name = runtimeName(name);
    description_.superclass = superclass;
  }

  /// A declared property with its attribute string (`T<encoding>` first, `V<ivar>` last).
  ClassBuilder& property(std::string_view name, std::string_view attributes) {
    description_.properties.push_back(
        {std::string(runtimeName(name)), std::string(runtimeName(attributes))});
    return *this;
  }

  /// An instance variable that is listed but cannot be reached by name.
  ClassBuilder& ivar(std::string_view name, std::string_view encoding) {
    return ivar({std::string(runtimeName(name)), std::string(encoding), nullptr, nullptr});
  }

  /// An instance variable backed by a member, encoded by the member's type.
  template <auto Member>
  ClassBuilder& ivar(std::string_view name) {
    using Variable = detail::MemberVariable<Member>;
    static_assert(std::is_base_of_v<typename Variable::Owner, T>);
    return ivar({std::string(runtimeName(name)), typeEncoding<typename Variable::Type>(),
                 &Variable::read, &Variable::write});
  }

  /// A method answered by a member function.
  template <auto Member>
  ClassBuilder& method(std::string_view selector) {
    static_assert(std::is_base_of_v<typename detail::MemberTrampoline<Member>::Owner, T>);
    return method(selector, memberImplementation<Member>());
  }

  /// A method answered by a function `R (*)(NSObject& self, SEL cmd, Args...)`.
  ClassBuilder& method(std::string_view selector, IMP implementation) {
    description_.methods.push_back({SEL(selector), implementation});
    return *this;
  }

  /// An adopted protocol; it is made known if it is not yet.
  ClassBuilder& conformsTo(std::string_view protocolName) {
    description_.protocols.push_back(objc_registerProtocol(protocolName));
    return *this;
  }

  /// Makes the class known. Raises `NSInvalidArgumentException` if its name is taken.
  [[nodiscard]] Class registered() { return registerClass(std::move(description_)); }

 private:
  static_assert(std::is_base_of_v<NSObject, T>);

  ClassBuilder& ivar(Ivar variable) {
    description_.ivars.push_back(std::move(variable));
    return *this;
  }

  ClassRecord::Description description_;
};

}  // namespace rvf
