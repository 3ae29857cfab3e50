// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "Platform/Runtime/IMP.h"
#include "Platform/Runtime/NSObject.h"
#include "Platform/Runtime/Runtime.h"

namespace rvf {

/// What reads or writes one key of the objects of one class: a method, or else a variable. A small
/// value; methods and variables that it refers to live as long as the process.
struct KeyValueAccessor {
  SEL selector;
  IMP implementation;
  const Ivar* variable = nullptr;
  char typeCode = '@';  ///< what the encoding of the value begins with
};

/// The first of the methods `get<Key>`, `<key>`, `is<Key>`, `_<key>` that takes no argument and
/// answers a value with an object form; else the first of the readable variables `_<key>`,
/// `_is<Key>`, `<key>`, `is<Key>` of such a type; else the getter that the property of this name
/// declares (`G`). What was found is remembered for each thread until any class changes.
std::optional<KeyValueAccessor> findGetter(Class aClass, std::string_view key);

/// The first of the methods `set<Key>:`, `_set<Key>:`; else the first of the variables as above
/// that can be written; else the declared setter (`S`).
std::optional<KeyValueAccessor> findSetter(Class aClass, std::string_view key);

/// What these have found before on this thread; null for nothing. Valid until the next search.
const KeyValueAccessor* rememberedGetter(Class aClass, std::string_view key);
const KeyValueAccessor* rememberedSetter(Class aClass, std::string_view key);

/// The key as it stands inside the name of an accessor: its first letter, if it is an ASCII one, in
/// upper case.
std::string capitalizedKey(std::string_view key);

}  // namespace rvf
