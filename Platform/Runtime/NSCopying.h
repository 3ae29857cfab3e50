// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Platform/Export.h"
#include "Platform/Runtime/IMP.h"
#include "Platform/Runtime/NSObject.h"

namespace rvf {

/// A copy of an object, as its class's method `copy` makes it; absent stays absent. Immutable
/// objects answer themselves, mutable collections an immutable copy. Raises the
/// unrecognized-selector exception if the class has no such method.
RVF_EXPORT id copyOfObject(const id& object);

/// The method `copy` of an immutable class: it answers the receiver.
RVF_EXPORT IMP immutableCopyImplementation() noexcept;

}  // namespace rvf
