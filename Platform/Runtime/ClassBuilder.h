// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <any>
#include <functional>
#include <string_view>
#include <type_traits>
#include <utility>

#include "Platform/Runtime/AnyArgument.h"
#include "Platform/Runtime/ClassRecord.h"
#include "Platform/Runtime/IMP.h"
#include "Platform/Runtime/Runtime.h"

namespace rvf {

namespace detail {

/// What an argument is stored as while a message travels: values, and text owned.
template <class T>
using MessageArgument = std::remove_cvref_t<T>;

template <auto Member>
struct MemberTrampoline;

template <class C, class R, class... Args, R (C::*Member)(Args...)>
struct MemberTrampoline<Member> {
  static R call(NSObject& self, SEL, MessageArgument<Args>... arguments) {
    return std::invoke(Member, static_cast<C&>(self), std::move(arguments)...);
  }
};

template <class C, class R, class... Args, R (C::*Member)(Args...) const>
struct MemberTrampoline<Member> {
  static R call(NSObject& self, SEL, MessageArgument<Args>... arguments) {
    return std::invoke(Member, static_cast<const C&>(self), std::move(arguments)...);
  }
};

template <auto Member>
struct MemberVariable;

template <class C, class T, T C::*Member>
struct MemberVariable<Member> {
  using Type = T;
  static std::any read(const NSObject& object) {
    return toAny(static_cast<const C&>(object).*Member);
  }
  static void write(NSObject& object, const std::any& value) {
    static_cast<C&>(object).*Member = anyTo<T>(value);
  }
};

}  // namespace detail

/// The implementation that calls a member function of the receiver.
template <auto Member>
IMP memberImplementation() {
  return IMP(&detail::MemberTrampoline<Member>::call);
}

/// Describes a class to the runtime, once, beside its code:
///
///     Class Person::classObject() {
///       static const Class kClass = ClassBuilder<Person>("Person", NSObject::classObject())
///                                       .property("count", "Ti,N,V_count")
///                                       .ivar<&Person::count_>("_count")
///                                       .method<&Person::count>("count")
///                                       .method<&Person::setCount>("setCount:")
///                                       .conformsTo("NSCopying")
///                                       .registered();
///       return kClass;
///     }
///
/// `T` derives from `NSObject` once (never virtually), because methods cast their receiver to it.
template <class T>
class ClassBuilder final {
 public:
  ClassBuilder(std::string_view name, Class superclass) {
    description_.name = name.substr(0, name.find('\0'));
    description_.superclass = superclass;
  }

  /// A declared property with its attribute string (`T<encoding>` first, `V<ivar>` last).
  ClassBuilder& property(std::string_view name, std::string_view attributes) {
    description_.properties.push_back({std::string(name), std::string(attributes)});
    return *this;
  }

  /// An instance variable that is listed but cannot be reached by name.
  ClassBuilder& ivar(std::string_view name, std::string_view encoding) {
    description_.ivars.push_back({std::string(name), std::string(encoding), nullptr, nullptr});
    return *this;
  }

  /// An instance variable backed by a member, encoded by the member's type.
  template <auto Member>
  ClassBuilder& ivar(std::string_view name) {
    using Variable = detail::MemberVariable<Member>;
    description_.ivars.push_back({std::string(name), typeEncoding<typename Variable::Type>(),
                                  &Variable::read, &Variable::write});
    return *this;
  }

  /// A method answered by a member function.
  template <auto Member>
  ClassBuilder& method(std::string_view selector) {
    return method(selector, memberImplementation<Member>());
  }

  /// A method answered by a function `R (*)(NSObject& self, SEL cmd, Args...)`.
  ClassBuilder& method(std::string_view selector, IMP implementation) {
    description_.methods.push_back({SEL(selector), implementation, implementation.typeEncoding()});
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
  ClassRecord::Description description_;
};

}  // namespace rvf
