// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Platform/Export.h"
#include "Platform/Runtime/NSObject.h"

namespace rvf {

/// What the table keeps of an associated object.
enum AssociationPolicy : unsigned char {
  OBJC_ASSOCIATION_RETAIN,  ///< the object itself
  OBJC_ASSOCIATION_COPY     ///< a copy, as `copyOfObject` makes it
};

/// Hangs a value on an object, beside what its class knows of. A key is an address that nobody else
/// uses, such as that of a static variable. The value hangs on the identity of the object, never on
/// an equal one, and goes with it. An absent value takes the association away; an absent object is
/// ignored. Thread-safe.
RVF_EXPORT void objc_setAssociatedObject(const Ref<NSObject>& object, const void* key,
                                         const id& value, AssociationPolicy policy);

/// The value; absent if there is none.
RVF_EXPORT id objc_getAssociatedObject(const Ref<NSObject>& object, const void* key);

}  // namespace rvf
