// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <concepts>
#include <string_view>
#include <type_traits>

#include "Platform/Export.h"
#include "Platform/Runtime/ClassBuilder.h"
#include "Platform/Runtime/IMP.h"
#include "Platform/Runtime/NSObject.h"
#include "RVFoundation/RuntimeServices/RVFDynamicPropertyProvider.h"
#include "RVFoundation/RuntimeServices/RVFPropertyHelpers.h"

namespace rvf {

/// Gives a class the accessors of its dynamic properties (attribute `D`). They hold no value: each
/// call finds the property of the selector that it was called under, and asks the receiver's
/// `RVFDynamicPropertyProvider`. Scalars are boxed on the way in and unboxed on the way out.
///
///     static const Class kClass = RVFDynamicPropertySynthesizer::registered(
///         ClassBuilder<Note>("Note", NSObject::classObject())
///             .property("title", "T@\"NSString\",C,D,N")
///             .property("count", "Tq,D,N"));
///
///     send(note, SEL("setCount:"), 5L);
///     const long count = send<long>(note, SEL("count"));
///
/// Types are the C++ types of their codes: `bool` for `c`, `short` `s`, `unsigned short` `S`, `int`
/// `i`, `unsigned` `I`, `long` `q`, `unsigned long` `Q`, `float` `f`, `double` `d`, and `id` for
/// every object. A generated setter announces the change of its property to observers.
///
/// All operations belong to the class; there are no instances in use. A class is synthesized once,
/// before its first instance is used; the accessors run on the thread that calls them.
///
/// Thread: any, a class at a time; accessors run on the thread that calls them. Lifetime: accessors
/// stay as long as the process.
class RVF_EXPORT RVFDynamicPropertySynthesizer final : public NSObject {
 public:
  static Class classObject();
  Class isa() const override;

  /// Makes a class known that derives from the provider type, with the protocol and its methods,
  /// and synthesizes its dynamic properties.
  template <std::derived_from<RVFDynamicPropertyProvider> T>
  static Class registered(ClassBuilder<T>& builder) {
    const Class aClass =
        builder.conformsTo("RVFDynamicPropertyProvider")
            .method("objectForDynamicProperty:isWeak:", IMP(&ProviderMethods<T>::object))
            .method("setObject:forDynamicProperty:isWeak:", IMP(&ProviderMethods<T>::setObject))
            .registered();
    synthesizeDynamicPropertiesForClass(aClass);
    return aClass;
  }

  /// Synthesizes the dynamic properties that this very class declares; those of a superclass or a
  /// subclass take a call of their own. Reports an assertion if the class does not conform to
  /// "RVFDynamicPropertyProvider".
  static void synthesizeDynamicPropertiesForClass(Class aClass);

  /// Adds the getter and, unless the property is read-only, the setter. A class that has one of
  /// them already is a fatal assertion.
  static void synthesizeProperty(const RVFPropertyInfo& property, Class forClass);

  /// The accessor for a type encoding, of which the first character counts. Any other code reports
  /// an assertion, "unsupported property type: B", and gives the null implementation.
  static IMP getterForType(std::string_view type);
  static IMP setterForType(std::string_view type);

 private:
  /// Calls the operations of the class itself where they are public, which need not be virtual
  /// calls then, else those of the provider type.
  template <class T>
  struct ProviderMethods {
    static constexpr bool kIsPublic = requires(T & provider, const id& object) {
      provider.objectForDynamicProperty(std::string_view(), false);
      provider.setObject(object, std::string_view(), false);
    };
    using Provider = std::conditional_t<kIsPublic, T, RVFDynamicPropertyProvider>;

    static id object(NSObject& self, SEL, std::string_view name, bool isWeak) {
      Provider& provider = static_cast<T&>(self);
      return provider.objectForDynamicProperty(name, isWeak);
    }
    static void setObject(NSObject& self, SEL, id object, std::string_view name, bool isWeak) {
      Provider& provider = static_cast<T&>(self);
      provider.setObject(object, name, isWeak);
    }
  };
};

}  // namespace rvf
