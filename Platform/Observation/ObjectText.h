// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

#include "Platform/Runtime/NSObject.h"

namespace rvf {

/// An object as the texts of this room's exceptions show it, "<Class 0x…>".
std::string objectText(Class aClass, const NSObject* address);
/// "(null)" for an absent one.
std::string objectText(const NSObject* object);

}  // namespace rvf
