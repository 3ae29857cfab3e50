// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <string_view>

#include "Platform/Export.h"

namespace rvf {

/// The path with one more component, "/" between them. Separators that stand together become one,
/// and one at the end goes, except that "/" stays; so this is not for URLs.
///
///     appendPathComponent("/tmp/", "x")   // "/tmp/x"
RVF_EXPORT std::string appendPathComponent(std::string_view path, std::string_view component);

}  // namespace rvf
