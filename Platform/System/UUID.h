// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

#include "Platform/Export.h"

namespace rvf {

/// A fresh random identifier (RFC 9562) in its canonical text: 36 characters, upper-case
/// hexadecimal with hyphens. Thread-safe.
RVF_EXPORT std::string newUUIDText();

}  // namespace rvf
