// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <any>
#include <string>
#include <string_view>
#include <vector>

#include "Platform/Export.h"
#include "Platform/Runtime/IMP.h"
#include "Platform/Runtime/NSObject.h"
#include "Platform/Runtime/Selector.h"

/// Questions to and changes of the classes at run time, under the platform's names. Where the
/// platform hands out a list that the caller frees, these return a vector.
///
/// All functions are thread-safe; looking up a method, property or variable of a class takes no
/// lock. A null class or protocol is accepted everywhere and answers empty, null or false. Names
/// end at their first zero byte.
namespace rvf {

/// A property as a class declares it: its name and its attribute string ("Ti,N,V_count").
///
/// Thread: any, a plain value. Lifetime: a copy; owns its texts.
struct Property {
  std::string name;
  std::string attributes;
};

/// An instance variable: its name, its type encoding, and how to read and write it (null where
/// the class describes it without access).
///
/// Thread: any, a plain value. Lifetime: a copy; owns its texts. The functions stay as long as the
/// process.
struct Ivar {
  std::string name;
  std::string typeEncoding;
  std::any (*read)(const NSObject& object) = nullptr;
  void (*write)(NSObject& object, const std::any& value) = nullptr;
};

/// A method of a class.
///
/// Thread: any, a plain value. Lifetime: a copy; selector and function stay as long as the process.
struct Method {
  SEL selector;
  IMP implementation;
};

/// A protocol: a name and the protocols that it extends. Protocols live as long as the process.
class ProtocolRecord;
using Protocol = const ProtocolRecord*;

// Classes

/// The class of this name, or null. Classes of the libraries are found whether or not they have
/// been used yet.
RVF_EXPORT Class objc_getClass(std::string_view name);
/// Every class known by now, by name.
RVF_EXPORT std::vector<Class> objc_copyClassList();
RVF_EXPORT Class object_getClass(const NSObject* object);
RVF_EXPORT std::string_view class_getName(Class aClass);
RVF_EXPORT Class class_getSuperclass(Class aClass);
/// Whether `aClass` is `ancestor` or a subclass of it, directly or not.
RVF_EXPORT bool class_isSubclassOf(Class aClass, Class ancestor);

// Properties and instance variables

/// Those of exactly one class, in the order declared.
RVF_EXPORT std::vector<Property> class_copyPropertyList(Class aClass);
RVF_EXPORT std::vector<Ivar> class_copyIvarList(Class aClass);
/// Adds a property that an extension declares, after those that the class has. False, and no
/// change, if this very class declares one of this name already.
RVF_EXPORT bool class_addProperty(Class aClass, std::string_view name, std::string_view attributes);
/// The property or variable of this name in the class or its nearest ancestor that has it.
RVF_EXPORT const Property* class_getProperty(Class aClass, std::string_view name);
RVF_EXPORT const Ivar* class_getInstanceVariable(Class aClass, std::string_view name);
RVF_EXPORT std::string_view property_getName(const Property& property);
RVF_EXPORT std::string_view property_getAttributes(const Property& property);
RVF_EXPORT std::string_view ivar_getName(const Ivar& ivar);
RVF_EXPORT std::string_view ivar_getTypeEncoding(const Ivar& ivar);

// Methods

/// The methods of exactly one class: those of the newest extension first, then of older
/// extensions, then the class's own. Of two with one selector the first is the one that runs.
RVF_EXPORT std::vector<Method> class_copyMethodList(Class aClass);
RVF_EXPORT SEL method_getName(const Method& method);
RVF_EXPORT IMP method_getImplementation(const Method& method);
/// The implementation that a message to an instance reaches, or the null one.
RVF_EXPORT IMP class_getMethodImplementation(Class aClass, SEL selector);
RVF_EXPORT bool class_respondsToSelector(Class aClass, SEL selector);
/// Adds a method. False, and no change, if this very class has the selector already; overriding
/// an inherited method succeeds. Calls that are running keep the method they began with.
RVF_EXPORT bool class_addMethod(Class aClass, SEL selector, IMP implementation);
/// Adds an extension's methods before all that the class has, whether or not it has them. Those
/// without selector or implementation are left out.
RVF_EXPORT void class_addExtension(Class aClass, const std::vector<Method>& methods);

// Protocols

/// Makes a protocol known, or returns the one that already has this name. Protocols that it is not
/// known to extend yet are added; extending each other raises `NSInvalidArgumentException`.
RVF_EXPORT Protocol objc_registerProtocol(std::string_view name,
                                          const std::vector<Protocol>& extended = {});
RVF_EXPORT Protocol objc_getProtocol(std::string_view name);
RVF_EXPORT std::string_view protocol_getName(Protocol protocol);
RVF_EXPORT bool protocol_conformsToProtocol(Protocol protocol, Protocol other);
/// Counts the protocols of superclasses and those that a protocol extends.
RVF_EXPORT bool class_conformsToProtocol(Class aClass, Protocol protocol);
RVF_EXPORT std::vector<Protocol> class_copyProtocolList(Class aClass);

}  // namespace rvf
