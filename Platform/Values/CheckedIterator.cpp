// SPDX-License-Identifier: Apache-2.0
#include "Platform/Values/CheckedIterator.h"

#include <string>

#include "Platform/Runtime/NSException.h"
#include "Platform/Runtime/Pointers.h"
#include "Platform/Runtime/Runtime.h"

namespace rvf {

void raiseMutationWhileEnumerating(const NSObject& collection) {
  NSException::raise(NSGenericException,
                     "Collection <" + std::string(class_getName(collection.isa())) + ": " +
                         pointerText(&collection) + "> was mutated while being enumerated.");
}

}  // namespace rvf
