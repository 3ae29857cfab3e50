// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>

#include "Platform/Export.h"
#include "Platform/Runtime/NSObject.h"

namespace rvf {

/// Stands in an archive for the object of this number. Property lists that are no archives have
/// none. Immutable.
class RVF_EXPORT ArchiveReference final : public NSObject {
 public:
  explicit ArchiveReference(std::uint64_t number) noexcept : number_(number) {}

  std::uint64_t number() const noexcept { return number_; }

 private:
  std::uint64_t number_;
};

}  // namespace rvf
