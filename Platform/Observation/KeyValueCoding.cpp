// SPDX-License-Identifier: Apache-2.0
#include "Platform/Observation/KeyValueCoding.h"

#include <string>
#include <vector>

#include "Platform/Observation/CodingAnnouncement.h"
#include "Platform/Observation/KeyValueAccessor.h"
#include "Platform/Observation/KeyValueMessages.h"
#include "Platform/Observation/KeyValueObserving.h"
#include "Platform/Observation/ObjectText.h"
#include "Platform/Observation/ValueBoxing.h"
#include "Platform/Runtime/Messaging.h"
#include "Platform/Runtime/NSException.h"
#include "Platform/Values/NSArray.h"
#include "Platform/Values/NSMutableDictionary.h"
#include "Platform/Values/NSNull.h"
#include "Platform/Values/NSSet.h"

namespace rvf {
namespace {

struct CodingSelectors {
  SEL valueForKey{"valueForKey:"};
  SEL setValueForKey{"setValue:forKey:"};
  SEL valueForKeyPath{"valueForKeyPath:"};
  SEL setValueForKeyPath{"setValue:forKeyPath:"};
  SEL valueForUndefinedKey{"valueForUndefinedKey:"};
  SEL setValueForUndefinedKey{"setValue:forUndefinedKey:"};
  SEL setNilValueForKey{"setNilValueForKey:"};
};

const CodingSelectors& selectors() {
  static const CodingSelectors kSelectors;
  return kSelectors;
}

[[noreturn]] void raiseUndefined(const NSObject& self, SEL selector, std::string_view key) {
  NSException::raise(NSUndefinedKeyException,
                     "[" + objectText(&self) + " " + NSStringFromSelector(selector) +
                         "]: this class is not key value coding-compliant for the key " +
                         std::string(key) + ".");
}

/// Makes a change that is announced exactly once, whatever the setter announces of it.
template <class Change>
void announceOnce(NSObject& self, std::string_view key, Change change) {
  announceChange(self, key, [&] {
    const CodingAnnouncement announcement(self, key);
    change();
  });
}

// Collections

enum class Shape { kPlain, kDictionary, kArray, kSet, kNull };

Shape shapeOf(const NSObject& object) {
  static const Class kDictionaryClass = NSDictionary::classObject();
  static const Class kArrayClass = NSArray::classObject();
  static const Class kSetClass = NSSet::classObject();
  static const Class kNullClass = NSNull::classObject();
  for (Class aClass = object.isa(); aClass; aClass = class_getSuperclass(aClass)) {
    if (aClass == kDictionaryClass) return Shape::kDictionary;
    if (aClass == kArrayClass) return Shape::kArray;
    if (aClass == kSetClass) return Shape::kSet;
    if (aClass == kNullClass) return Shape::kNull;
  }
  return Shape::kPlain;
}

/// The elements of this moment: what their accessors do may change the collection.
std::vector<id> elementsOf(const NSObject& collection) {
  if (const auto* set = dynamic_cast<const NSSet*>(&collection)) return {set->begin(), set->end()};
  return static_cast<const NSArray&>(collection).objects();
}

std::vector<id> valuesOfElements(const NSObject& collection, std::string_view key,
                                 const id& forAbsent) {
  std::vector<id> values;
  for (const id& element : elementsOf(collection)) {
    id value = valueForKey(*element, key);
    if (!value) value = forAbsent;
    if (value) values.push_back(std::move(value));
  }
  return values;
}

void setEntry(NSMutableDictionary& dictionary, const id& value, std::string_view key) {
  if (value) {
    dictionary.setObject(value, key);
  } else {
    dictionary.removeObjectForKey(key);
  }
}

// The methods of the root class

id read(NSObject& self, const KeyValueAccessor& getter) {
  if (getter.variable) return objectOfValue(getter.variable->read(self), getter.typeCode);
  return objectOfValue(getter.implementation.callWithArguments(self, getter.selector, {}),
                       getter.typeCode);
}

id valueForKeyMethod(NSObject& self, SEL, std::string_view key) {
  // Only plain objects have accessors that are remembered. A copy: the accessor may search others.
  if (const KeyValueAccessor* known = rememberedGetter(self.isa(), key)) {
    return read(self, KeyValueAccessor(*known));
  }
  switch (shapeOf(self)) {
    case Shape::kDictionary:
      return static_cast<NSDictionary&>(self).objectForKey(key);
    case Shape::kArray:
      return NSArray::arrayWithObjects(valuesOfElements(self, key, NSNull::null()));
    case Shape::kSet:
      return NSSet::setWithObjects(valuesOfElements(self, key, nullptr));
    case Shape::kNull:
      return NSNull::null();
    case Shape::kPlain:
      break;
  }
  const std::optional<KeyValueAccessor> getter = findGetter(self.isa(), key);
  return getter ? read(self, *getter) : send<id>(self, selectors().valueForUndefinedKey, key);
}

void write(NSObject& self, const KeyValueAccessor& setter, const id& value, std::string_view key) {
  if (!value && isScalarEncoding({&setter.typeCode, 1})) {
    send(self, selectors().setNilValueForKey, key);
    return;
  }
  const std::any argument = value ? valueOfObject(value, setter.typeCode) : std::any();
  announceOnce(self, key, [&] {
    if (setter.variable) {
      setter.variable->write(self, argument);
    } else {
      setter.implementation.callWithArguments(self, setter.selector, {&argument, 1});
    }
  });
}

void writePlainValue(NSObject& self, const id& value, std::string_view key) {
  if (const std::optional<KeyValueAccessor> setter = findSetter(self.isa(), key)) {
    write(self, *setter, value, key);
  } else {
    send(self, selectors().setValueForUndefinedKey, value, key);
  }
}

void setValueForKeyMethod(NSObject& self, SEL, id value, std::string_view key) {
  if (const KeyValueAccessor* known = rememberedSetter(self.isa(), key)) {
    return write(self, KeyValueAccessor(*known), value, key);
  }
  const Shape shape = shapeOf(self);
  if (shape == Shape::kArray || shape == Shape::kSet) {
    for (const id& element : elementsOf(self))
      setValueForKey(*element, value, key);
  } else if (auto* dictionary = dynamic_cast<NSMutableDictionary*>(&self)) {
    announceOnce(self, key, [&] { setEntry(*dictionary, value, key); });
  } else {
    writePlainValue(self, value, key);
  }
}

id valueForKeyPathMethod(NSObject& self, SEL, std::string_view keyPath) {
  std::size_t point = keyPath.find('.');
  id value = valueForKey(self, keyPath.substr(0, point));
  while (value && point != std::string_view::npos) {
    keyPath.remove_prefix(point + 1);
    point = keyPath.find('.');
    value = valueForKey(*value, keyPath.substr(0, point));
  }
  return value;
}

void setValueForKeyPathMethod(NSObject& self, SEL, id value, std::string_view keyPath) {
  const std::size_t point = keyPath.rfind('.');
  if (point == std::string_view::npos) {
    setValueForKey(self, value, keyPath);
  } else if (const id last = valueForKeyPath(self, keyPath.substr(0, point))) {
    setValueForKey(*last, value, keyPath.substr(point + 1));
  }
}

id selfMethod(NSObject& self, SEL) {
  return self.weak_from_this().lock();
}

id valueForUndefinedKeyMethod(NSObject& self, SEL selector, std::string_view key) {
  raiseUndefined(self, selector, key);
}

void setValueForUndefinedKeyMethod(NSObject& self, SEL selector, id, std::string_view key) {
  raiseUndefined(self, selector, key);
}

void setNilValueForKeyMethod(NSObject& self, SEL selector, std::string_view key) {
  NSException::raise(NSInvalidArgumentException,
                     "[" + objectText(&self) + " " + NSStringFromSelector(selector) +
                         "]: could not set nil as the value for the key " + std::string(key) + ".");
}

}  // namespace

std::vector<Method> keyValueCodingMethods() {
  const CodingSelectors& s = selectors();
  return {{SEL("self"), &selfMethod},
          {s.valueForKey, &valueForKeyMethod},
          {s.setValueForKey, &setValueForKeyMethod},
          {s.valueForKeyPath, &valueForKeyPathMethod},
          {s.setValueForKeyPath, &setValueForKeyPathMethod},
          {s.valueForUndefinedKey, &valueForUndefinedKeyMethod},
          {s.setValueForUndefinedKey, &setValueForUndefinedKeyMethod},
          {s.setNilValueForKey, &setNilValueForKeyMethod}};
}

id valueForKey(NSObject& receiver, std::string_view key) {
  return send<id>(receiver, selectors().valueForKey, key);
}

id valueForKey(const id& receiver, std::string_view key) {
  return send<id>(receiver, selectors().valueForKey, key);
}

void setValueForKey(NSObject& receiver, const id& value, std::string_view key) {
  send(receiver, selectors().setValueForKey, value, key);
}

void setValueForKey(const id& receiver, const id& value, std::string_view key) {
  send(receiver, selectors().setValueForKey, value, key);
}

id valueForKeyPath(NSObject& receiver, std::string_view keyPath) {
  return send<id>(receiver, selectors().valueForKeyPath, keyPath);
}

id valueForKeyPath(const id& receiver, std::string_view keyPath) {
  return send<id>(receiver, selectors().valueForKeyPath, keyPath);
}

void setValueForKeyPath(NSObject& receiver, const id& value, std::string_view keyPath) {
  send(receiver, selectors().setValueForKeyPath, value, keyPath);
}

void setValueForKeyPath(const id& receiver, const id& value, std::string_view keyPath) {
  send(receiver, selectors().setValueForKeyPath, value, keyPath);
}

}  // namespace rvf
