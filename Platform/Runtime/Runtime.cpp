// SPDX-License-Identifier: Apache-2.0
#include "Platform/Runtime/Runtime.h"

#include <algorithm>
#include <deque>
#include <functional>
#include <map>
#include <mutex>

#include "Platform/Runtime/ClassRecord.h"
#include "Platform/Runtime/ClassRegistration.h"
#include "Platform/Runtime/NSException.h"

namespace rvf {
namespace {

struct NameTable {
  std::mutex mutex;
  std::map<std::string, Class, std::less<>> classes;
  std::map<std::string, ProtocolRecord, std::less<>> protocols;
};

NameTable& nameTable() {
  // Never destroyed: classes are used until the last static destructor has run.
  static NameTable& table = *new NameTable;
  return table;
}

template <class List>
auto findByName(const List& list, std::string_view name) {
  const auto found =
      std::ranges::find(list, name, [](const auto& item) { return std::string_view(item.name); });
  return found == list.end() ? nullptr : &*found;
}

}  // namespace

Class registerClass(ClassRecord::Description description) {
  NameTable& table = nameTable();
  const std::lock_guard lock(table.mutex);
  const auto [position, isNew] = table.classes.try_emplace(description.name, nullptr);
  if (!isNew) {
    NSException::raise(NSInvalidArgumentException,
                       "a class named " + description.name + " is registered already");
  }
  position->second = new ClassRecord(std::move(description));  // lives as long as the process
  return position->second;
}

Class objc_getClass(std::string_view name) {
  ClassRegistration::describeAll();
  NameTable& table = nameTable();
  const std::lock_guard lock(table.mutex);
  const auto found = table.classes.find(name);
  return found == table.classes.end() ? nullptr : found->second;
}

std::vector<Class> objc_copyClassList() {
  ClassRegistration::describeAll();
  NameTable& table = nameTable();
  const std::lock_guard lock(table.mutex);
  std::vector<Class> classes;
  for (const auto& [name, record] : table.classes)
    classes.push_back(record);
  return classes;
}

Class object_getClass(const NSObject* object) {
  return object ? object->isa() : nullptr;
}

std::string_view class_getName(Class aClass) {
  return aClass ? std::string_view(aClass->described().name) : "nil";
}

Class class_getSuperclass(Class aClass) {
  return aClass ? aClass->described().superclass : nullptr;
}

bool class_isSubclassOf(Class aClass, Class ancestor) {
  while (aClass && aClass != ancestor)
    aClass = class_getSuperclass(aClass);
  return aClass != nullptr;
}

std::vector<Property> class_copyPropertyList(Class aClass) {
  return aClass ? aClass->described().properties : std::vector<Property>();
}

std::vector<Ivar> class_copyIvarList(Class aClass) {
  return aClass ? aClass->described().ivars : std::vector<Ivar>();
}

const Property* class_getProperty(Class aClass, std::string_view name) {
  for (; aClass; aClass = class_getSuperclass(aClass)) {
    if (const Property* found = findByName(aClass->described().properties, name)) return found;
  }
  return nullptr;
}

const Ivar* class_getInstanceVariable(Class aClass, std::string_view name) {
  for (; aClass; aClass = class_getSuperclass(aClass)) {
    if (const Ivar* found = findByName(aClass->described().ivars, name)) return found;
  }
  return nullptr;
}

std::string_view property_getName(const Property& property) {
  return property.name;
}
std::string_view property_getAttributes(const Property& property) {
  return property.attributes;
}
std::string_view ivar_getName(const Ivar& ivar) {
  return ivar.name;
}
std::string_view ivar_getTypeEncoding(const Ivar& ivar) {
  return ivar.typeEncoding;
}

std::vector<Method> class_copyMethodList(Class aClass) {
  return aClass ? aClass->methodList() : std::vector<Method>();
}

IMP class_getMethodImplementation(Class aClass, SEL selector) {
  const Method* method = aClass ? aClass->method(selector) : nullptr;
  return method ? method->implementation : IMP();
}

bool class_respondsToSelector(Class aClass, SEL selector) {
  return aClass && aClass->method(selector);
}

bool class_addMethod(Class aClass, SEL selector, IMP implementation) {
  return aClass && selector && implementation &&
         aClass->addMethod({selector, implementation, implementation.typeEncoding()});
}

void class_addExtension(Class aClass, const std::vector<Method>& methods) {
  if (aClass) aClass->prependMethods(methods);
}

Protocol objc_registerProtocol(std::string_view name, const std::vector<Protocol>& extended) {
  NameTable& table = nameTable();
  const std::lock_guard lock(table.mutex);
  return &table.protocols.try_emplace(std::string(name), name, extended).first->second;
}

Protocol objc_getProtocol(std::string_view name) {
  NameTable& table = nameTable();
  const std::lock_guard lock(table.mutex);
  const auto found = table.protocols.find(name);
  return found == table.protocols.end() ? nullptr : &found->second;
}

std::string_view protocol_getName(Protocol protocol) {
  return protocol ? std::string_view(protocol->name()) : std::string_view();
}

bool protocol_conformsToProtocol(Protocol protocol, Protocol other) {
  return protocol && other && protocol->conformsTo(other);
}

bool class_conformsToProtocol(Class aClass, Protocol protocol) {
  for (; aClass && protocol; aClass = class_getSuperclass(aClass)) {
    const auto& adopted = aClass->described().protocols;
    if (std::ranges::any_of(adopted, [protocol](Protocol p) { return p->conformsTo(protocol); })) {
      return true;
    }
  }
  return false;
}

std::vector<Protocol> class_copyProtocolList(Class aClass) {
  return aClass ? aClass->described().protocols : std::vector<Protocol>();
}

}  // namespace rvf
