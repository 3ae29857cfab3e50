// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <vector>

#include "Platform/Runtime/NSObject.h"
#include "Platform/Runtime/Runtime.h"

namespace rvf {

/// The methods behind the messages of each part of this room, as the root object answers them.
std::vector<Method> keyValueCodingMethods();
std::vector<Method> affectingKeysMethods();
std::vector<Method> keyValueObservingMethods();
std::vector<Method> keyValueBindingMethods();

/// The object that takes the messages to this one: behind proxies the last target, else the object
/// itself. Absent if it is not held by a reference. Raises if a proxy has lost its target.
id receiverBehind(NSObject& object);

}  // namespace rvf
