// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>

#include "Platform/Export.h"
#include "Platform/Runtime/NSException.h"

namespace rvf {

/// A text that is no predicate: an `NSInvalidArgumentException` with the reason "Unable to parse
/// the format string "…"", which also knows what is wrong and where.
///
/// Thread: any; immutable. Lifetime: copies share the texts, which go with the last.
class RVF_EXPORT PredicateFormatException final : public NSException {
 public:
  PredicateFormatException(std::string_view format, std::size_t byteOffset,
                           std::string_view problem);
  ~PredicateFormatException() override;
  PredicateFormatException(const PredicateFormatException&) noexcept = default;
  PredicateFormatException& operator=(const PredicateFormatException&) noexcept = default;

  /// Where reading stopped, in UTF-16 code units from the start of the format.
  std::size_t position() const noexcept { return position_; }
  /// For people, in a few English words: "a value is missing".
  const std::string& problem() const noexcept { return *problem_; }

 private:
  std::size_t position_;
  std::shared_ptr<const std::string> problem_;
};

}  // namespace rvf
