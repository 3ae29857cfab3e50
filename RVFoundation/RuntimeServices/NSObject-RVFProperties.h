// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Platform/Export.h"
#include "Platform/Runtime/NSObject.h"
#include "Platform/Values/NSArray.h"

/// The declared properties and instance variables of any class, as descriptors. Lists are immutable
/// and in the order of declaration; a null class has empty ones.
namespace rvf {

/// `RVFClassIvarDescriptor`s of this very class.
RVF_EXPORT Ref<NSArray> RVF_ivars(Class aClass);

/// Those of the class, then of each ancestor below the root object class, which adds none.
RVF_EXPORT Ref<NSArray> RVF_allIvars(Class aClass);

/// `RVFClassPropertyDescriptor`s of this very class. "hash", "superclass", "description" and
/// "debugDescription", which every object has, are never among them.
RVF_EXPORT Ref<NSArray> RVF_properties(Class aClass);

/// Those of the class, then of each ancestor below the root object class. A property that a
/// subclass declares again appears once for each of the two.
RVF_EXPORT Ref<NSArray> RVF_allProperties(Class aClass);

}  // namespace rvf
