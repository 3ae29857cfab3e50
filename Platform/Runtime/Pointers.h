// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

#include "Platform/Export.h"

namespace rvf {

/// An address as descriptions show it: lower-case hexadecimal with "0x".
RVF_EXPORT std::string pointerText(const void* address);

}  // namespace rvf
