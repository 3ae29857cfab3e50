// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string_view>

#include "Platform/Runtime/IMP.h"

namespace rvf {

/// The accessors of one type code; null where the code has none.
struct DynamicPropertyAccessors {
  IMP getter;
  IMP setter;
};

/// By the first character of a type encoding.
DynamicPropertyAccessors dynamicPropertyAccessors(std::string_view type) noexcept;

}  // namespace rvf
