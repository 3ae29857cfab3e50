// SPDX-License-Identifier: Apache-2.0
#include "RVFoundation/RuntimeServices/DynamicPropertyAccessors.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <utility>

#include "Platform/Observation/KeyValueObserving.h"
#include "Platform/Runtime/ClassChanges.h"
#include "Platform/Runtime/Messaging.h"
#include "Platform/Runtime/NSAssertionHandler.h"
#include "Platform/Runtime/NSAutoreleasePool.h"
#include "Platform/Runtime/NSCopying.h"
#include "Platform/Values/NSNumber.h"
#include "RVFoundation/RuntimeServices/PropertyAttributes.h"

namespace rvf {
namespace {

SEL provideSelector() {
  static const SEL kSelector("objectForDynamicProperty:isWeak:");
  return kSelector;
}

SEL storeSelector() {
  static const SEL kSelector("setObject:forDynamicProperty:isWeak:");
  return kSelector;
}

/// What an accessor has to know of the property that it serves, and of the provider. Class, name
/// and functions live as long as the process.
struct ServedProperty {
  Class aClass = nullptr;
  SEL accessor;
  std::uint64_t classChanges = 0;
  std::string_view name;
  IMP provide;  // null where the provider forwards it, as is
  IMP store;
  bool isCopied = false;
  bool isNonOwning = false;

  bool isFor(Class ofClass, SEL ofAccessor, std::uint64_t atClassChanges) const noexcept {
    return aClass == ofClass && accessor == ofAccessor && classChanges == atClassChanges;
  }
};

[[gnu::noinline]] ServedProperty findServedProperty(Class aClass, SEL accessor,
                                                    std::string_view function, int line) {
  const std::uint64_t changes = classChangeCount();
  const auto found = findPropertyForSelector(aClass, accessor);
  if (!found) {  // uncovered: ends the process
    failAssertion(function, "RVFoundation/RVFDynamicPropertySynthesizer", line,
                  "RVFPropertyInfoForSelector(object_getClass(self), _cmd, &info)");
  }
  return {aClass,
          accessor,
          changes,
          found->name(),
          class_getMethodImplementation(aClass, provideSelector()),
          class_getMethodImplementation(aClass, storeSelector()),
          found->has('C'),
          found->isNonOwning()};
}

/// What a thread remembers. As it is read at every call, its initial-exec model makes reaching it a
/// load instead of a call.
struct RememberedProperties {
  ServedProperty* places;
  std::size_t mask;  // their number less one
};
[[gnu::tls_model("initial-exec")]] constinit thread_local RememberedProperties remembered{nullptr,
                                                                                          0};

/// Makes the thread's table when it first asks. Destructors of other thread-local objects may still
/// ask when the table is gone; they share one place.
[[gnu::noinline]] void makeTable() {
  constexpr std::size_t kPlaces = 64;
  struct Table {
    std::array<ServedProperty, kPlaces> places;

    Table() { remembered = {places.data(), kPlaces - 1}; }
    Table(const Table&) = delete;
    Table& operator=(const Table&) = delete;
    ~Table() {
      thread_local ServedProperty last;
      remembered = {&last, 0};
    }
  };
  thread_local const Table table;
}

/// Every call of an accessor asks, so each thread remembers what it found last until any class gets
/// another property or method. Pairs with the same place take turns. The result is good until this
/// thread's next call: the provider may use other accessors.
const ServedProperty& servedProperty(const NSObject& self, SEL accessor, std::string_view function,
                                     int line) {
  if (!remembered.places) makeTable();
  const Class aClass = self.isa();
  // Both are addresses of heap nodes, whose lowest bits hardly differ.
  const std::size_t mixed = std::hash<SEL>()(accessor) / 32 + std::hash<Class>()(aClass) / 64;
  ServedProperty& place = remembered.places[mixed & remembered.mask];
  if (!place.isFor(aClass, accessor, classChangeCount())) {
    place = findServedProperty(aClass, accessor, function, line);
  }
  return place;
}

id GetPropValue(NSObject& self, SEL selector) {
  const ServedProperty& property = servedProperty(self, selector, "GetPropValue", 145);
  if (!property.provide) {
    return send<id>(self, provideSelector(), property.name, property.isNonOwning);
  }
  return property.provide.call<id, std::string_view, bool>(self, provideSelector(), property.name,
                                                           property.isNonOwning);
}

void storeValue(NSObject& self, id value, const IMP& store, std::string_view name,
                bool isNonOwning) {
  if (store) {
    store.call<void, id, std::string_view, bool>(self, storeSelector(), std::move(value), name,
                                                 isNonOwning);
  } else {
    send(self, storeSelector(), std::move(value), name, isNonOwning);
  }
}

void SetPropValue(NSObject& self, SEL selector, id value) {
  const ServedProperty& property = servedProperty(self, selector, "SetPropValue", 198);
  const std::string_view name = property.name;
  const IMP store = property.store;
  const bool isNonOwning = property.isNonOwning;
  // A store that owns nothing can rely on the copy until the current scope ends.
  if (property.isCopied) value = autorelease(copyOfObject(value));
  announceChange(self, name, [&] { storeValue(self, std::move(value), store, name, isNonOwning); });
}

/// The number is asked by message, so that a provider may answer with whatever has a reading.
template <class Value>
Value unboxed(NSObject& self, SEL selector, SEL message) {
  const id number = GetPropValue(self, selector);
  return number ? send<Value>(*number, message) : Value();
}

bool GetPropValueBool(NSObject& self, SEL selector) {
  static const SEL kMessage("boolValue");
  return unboxed<bool>(self, selector, kMessage);
}
void SetPropValueBool(NSObject& self, SEL selector, bool value) {
  SetPropValue(self, selector, box(value));
}

short GetPropValueShort(NSObject& self, SEL selector) {
  static const SEL kMessage("shortValue");
  return unboxed<short>(self, selector, kMessage);
}
void SetPropValueShort(NSObject& self, SEL selector, short value) {
  SetPropValue(self, selector, box(value));
}

unsigned short GetPropValueUnsignedShort(NSObject& self, SEL selector) {
  static const SEL kMessage("unsignedShortValue");
  return unboxed<unsigned short>(self, selector, kMessage);
}
void SetPropValueUnsignedShort(NSObject& self, SEL selector, unsigned short value) {
  SetPropValue(self, selector, box(value));
}

int GetPropValueInt(NSObject& self, SEL selector) {
  static const SEL kMessage("intValue");
  return unboxed<int>(self, selector, kMessage);
}
void SetPropValueInt(NSObject& self, SEL selector, int value) {
  SetPropValue(self, selector, box(value));
}

unsigned GetPropValueUnsignedInt(NSObject& self, SEL selector) {
  static const SEL kMessage("unsignedIntValue");
  return unboxed<unsigned>(self, selector, kMessage);
}
void SetPropValueUnsignedInt(NSObject& self, SEL selector, unsigned value) {
  SetPropValue(self, selector, box(value));
}

long GetPropValueLong(NSObject& self, SEL selector) {
  static const SEL kMessage("longValue");
  return unboxed<long>(self, selector, kMessage);
}
void SetPropValueLong(NSObject& self, SEL selector, long value) {
  SetPropValue(self, selector, box(value));
}

unsigned long GetPropValueUnsignedLong(NSObject& self, SEL selector) {
  static const SEL kMessage("unsignedLongValue");
  return unboxed<unsigned long>(self, selector, kMessage);
}
void SetPropValueUnsignedLong(NSObject& self, SEL selector, unsigned long value) {
  SetPropValue(self, selector, box(value));
}

float GetPropValueFloat(NSObject& self, SEL selector) {
  static const SEL kMessage("floatValue");
  return unboxed<float>(self, selector, kMessage);
}
void SetPropValueFloat(NSObject& self, SEL selector, float value) {
  SetPropValue(self, selector, box(value));
}

double GetPropValueDouble(NSObject& self, SEL selector) {
  static const SEL kMessage("doubleValue");
  return unboxed<double>(self, selector, kMessage);
}
void SetPropValueDouble(NSObject& self, SEL selector, double value) {
  SetPropValue(self, selector, box(value));
}

}  // namespace

DynamicPropertyAccessors dynamicPropertyAccessors(std::string_view type) noexcept {
  static_assert(sizeof(long) == 8, "q and Q are the codes of long");
  switch (type.empty() ? '\0' : type.front()) {
    case '@':
      return {&GetPropValue, &SetPropValue};
    case 'c':
      return {&GetPropValueBool, &SetPropValueBool};
    case 's':
      return {&GetPropValueShort, &SetPropValueShort};
    case 'S':
      return {&GetPropValueUnsignedShort, &SetPropValueUnsignedShort};
    case 'i':
      return {&GetPropValueInt, &SetPropValueInt};
    case 'I':
      return {&GetPropValueUnsignedInt, &SetPropValueUnsignedInt};
    case 'q':
      return {&GetPropValueLong, &SetPropValueLong};
    case 'Q':
      return {&GetPropValueUnsignedLong, &SetPropValueUnsignedLong};
    case 'f':
      return {&GetPropValueFloat, &SetPropValueFloat};
    case 'd':
      return {&GetPropValueDouble, &SetPropValueDouble};
    default:
      return {};
  }
}

}  // namespace rvf
