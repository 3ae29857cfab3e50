// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Platform/Export.h"
#include "Platform/Values/NSMutableDictionary.h"

namespace rvf {

/// Stores an entry under the very object that is its key, for keys that cannot or must not be
/// copied. The key must keep its value while it is in the dictionary. If an equal key is in it
/// already, that one stays and gets the new value. An absent key or object raises
/// `NSInvalidArgumentException`; an absent dictionary stores nothing.
RVF_EXPORT void RVF_setObject(const Ref<NSMutableDictionary>& dictionary, const id& object,
                              const id& forRetainedKey);

}  // namespace rvf
