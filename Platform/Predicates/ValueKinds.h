// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <typeinfo>

#include "Platform/Runtime/NSObject.h"
#include "Platform/Values/NSArray.h"
#include "Platform/Values/NSDictionary.h"
#include "Platform/Values/NSNull.h"
#include "Platform/Values/NSSet.h"
#include "Platform/Values/NSString.h"

/// What a value is to a comparison.
namespace rvf {

/// The value as a text, or null. Texts have no subclasses, so this needs no search along bases.
inline const NSString* asText(const NSObject* value) {
  return value && typeid(*value) == typeid(NSString) ? static_cast<const NSString*>(value)
                                                     : nullptr;
}

/// The value, or null where it stands for "absent".
inline const NSObject* presentValue(const NSObject* value) {
  return value && typeid(*value) == typeid(NSNull) ? nullptr : value;
}

inline bool isCollection(const NSObject* value) {
  return dynamic_cast<const NSArray*>(value) || dynamic_cast<const NSSet*>(value) ||
         dynamic_cast<const NSDictionary*>(value);
}

/// Whether `test` holds for an element of a collection, the values of a dictionary counting as its
/// elements. Stops at the first.
template <class Test>
bool anyElement(const NSObject& collection, const Test& test) {
  if (const auto* array = dynamic_cast<const NSArray*>(&collection)) {
    for (const id& element : *array)
      if (test(element.get())) return true;
  } else if (const auto* set = dynamic_cast<const NSSet*>(&collection)) {
    for (const id& element : *set)
      if (test(element.get())) return true;
  } else if (const auto* dictionary = dynamic_cast<const NSDictionary*>(&collection)) {
    for (const auto& [key, value] : *dictionary)
      if (test(value.get())) return true;
  }
  return false;
}

}  // namespace rvf
