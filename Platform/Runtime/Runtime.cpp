// SPDX-License-Identifier: Apache-2.0
#include "Platform/Runtime/Runtime.h"

#include <algorithm>
#include <functional>
#include <iterator>
#include <map>
#include <memory>
#include <mutex>

#include "Platform/Runtime/ClassRecord.h"
#include "Platform/Runtime/ClassRegistration.h"
#include "Platform/Runtime/NSException.h"
#include "Platform/Runtime/RuntimeName.h"

namespace rvf {
namespace {

struct NameTable {
  std::mutex mutex;
  std::map<std::string, Class, std::less<>> classes;
  std::map<std::string, ProtocolRecord, std::less<>> protocols;  // guarded as a whole
};

NameTable& nameTable() {
  // Never destroyed: classes are used until the last static destructor has run.
  static NameTable& table = *new NameTable;
  return table;
}

template <class List>
auto findByName(const List& list, std::string_view name) {
  const auto found = std::ranges::find(
      list, runtimeName(name), [](const auto& item) { return std::string_view(item.name); });
  return found == list.end() ? nullptr : &*found;
}

}  // namespace

Class registerClass(ClassRecord::Description description) {
  auto record = std::make_unique<ClassRecord>(std::move(description));
  NameTable& table = nameTable();
  const std::lock_guard lock(table.mutex);
  const std::string name(class_getName(record.get()));
  if (!table.classes.emplace(name, record.get()).second) {
    NSException::raise(NSInvalidArgumentException,
                       "a class named " + name + " is registered already");
  }
  return record.release();  // lives as long as the process
}

Class objc_getClass(std::string_view name) {
  ClassRegistration::describeAll();
  NameTable& table = nameTable();
  const std::lock_guard lock(table.mutex);
  const auto found = table.classes.find(runtimeName(name));
  return found == table.classes.end() ? nullptr : found->second;
}

std::vector<Class> objc_copyClassList() {
  ClassRegistration::describeAll();
  NameTable& table = nameTable();
  const std::lock_guard lock(table.mutex);
  std::vector<Class> classes;
  classes.reserve(table.classes.size());
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
  return aClass ? aClass->properties() : std::vector<Property>();
}

std::vector<Ivar> class_copyIvarList(Class aClass) {
  return aClass ? aClass->described().ivars : std::vector<Ivar>();
}

const Property* class_getProperty(Class aClass, std::string_view name) {
  for (; aClass; aClass = class_getSuperclass(aClass)) {
    if (const Property* found = findByName(aClass->properties(), name)) return found;
  }
  return nullptr;
}

const Ivar* class_getInstanceVariable(Class aClass, std::string_view name) {
  for (; aClass; aClass = class_getSuperclass(aClass)) {
    if (const Ivar* found = findByName(aClass->described().ivars, name)) return found;
  }
  return nullptr;
}

bool class_addProperty(Class aClass, std::string_view name, std::string_view attributes) {
  return aClass && aClass->addProperty(
                       {std::string(runtimeName(name)), std::string(runtimeName(attributes))});
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
  return aClass ? aClass->methods() : std::vector<Method>();
}

SEL method_getName(const Method& method) {
  return method.selector;
}
IMP method_getImplementation(const Method& method) {
  return method.implementation;
}

IMP class_getMethodImplementation(Class aClass, SEL selector) {
  const Method* method = aClass ? aClass->method(selector) : nullptr;
  return method ? method->implementation : IMP();
}

bool class_respondsToSelector(Class aClass, SEL selector) {
  return aClass && aClass->method(selector);
}

bool class_addMethod(Class aClass, SEL selector, IMP implementation) {
  return aClass && selector && implementation && aClass->addMethod({selector, implementation});
}

void class_addExtension(Class aClass, const std::vector<Method>& methods) {
  if (!aClass) return;
  std::vector<Method> whole;
  std::ranges::copy_if(methods, std::back_inserter(whole), [](const Method& method) {
    return method.selector && method.implementation;
  });
  aClass->prependMethods(whole);
}

Protocol objc_registerProtocol(std::string_view name, const std::vector<Protocol>& extended) {
  NameTable& table = nameTable();
  const std::lock_guard lock(table.mutex);
  const std::string key(runtimeName(name));
  ProtocolRecord& record = table.protocols.try_emplace(key, key).first->second;
  for (Protocol other : extended) {
    if (!other || record.conformsTo(other)) continue;
    if (other->conformsTo(&record)) {
      NSException::raise(NSInvalidArgumentException, "protocol " + key + " would extend itself");
    }
    record.extend(other);
  }
  return &record;
}

Protocol objc_getProtocol(std::string_view name) {
  ClassRegistration::describeAll();
  NameTable& table = nameTable();
  const std::lock_guard lock(table.mutex);
  const auto found = table.protocols.find(runtimeName(name));
  return found == table.protocols.end() ? nullptr : &found->second;
}

std::string_view protocol_getName(Protocol protocol) {
  return protocol ? std::string_view(protocol->name()) : std::string_view();
}

bool protocol_conformsToProtocol(Protocol protocol, Protocol other) {
  const std::lock_guard lock(nameTable().mutex);
  return protocol && other && protocol->conformsTo(other);
}

bool class_conformsToProtocol(Class aClass, Protocol protocol) {
  if (!protocol) return false;
  const std::lock_guard lock(nameTable().mutex);
  for (; aClass; aClass = class_getSuperclass(aClass)) {
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
