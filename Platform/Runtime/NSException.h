// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <exception>
#include <memory>
#include <string>
#include <string_view>

#include "Platform/Export.h"

namespace rvf {

/// A programming error: a message to the wrong object, an index outside its range, a broken
/// contract. Failures that can happen at run time in a correct program are `NSError`s instead.
///
/// Thrown by value and caught by reference; copying one never fails. `what()` is "NAME: REASON".
///
/// Thread: any; immutable. Lifetime: copies share the texts, which go with the last.
class RVF_EXPORT NSException : public std::exception {
 public:
  NSException(std::string_view name, std::string_view reason);
  ~NSException() override;
  NSException(const NSException&) noexcept = default;
  NSException& operator=(const NSException&) noexcept = default;

  /// Which kind of error it is, to be compared with, and what happened, for people.
  const std::string& name() const noexcept { return texts_->name; }
  const std::string& reason() const noexcept { return texts_->reason; }
  const char* what() const noexcept override { return texts_->what.c_str(); }

  /// Throws an exception with this name and reason.
  [[noreturn]] static void raise(std::string_view name, std::string_view reason);

 private:
  struct Texts {
    std::string name;
    std::string reason;
    std::string what;
  };
  std::shared_ptr<const Texts> texts_;
};

inline constexpr std::string_view NSRangeException = "NSRangeException";
inline constexpr std::string_view NSInvalidArgumentException = "NSInvalidArgumentException";
inline constexpr std::string_view NSGenericException = "NSGenericException";
inline constexpr std::string_view NSInternalInconsistencyException =
    "NSInternalInconsistencyException";
inline constexpr std::string_view NSDestinationInvalidException = "NSDestinationInvalidException";

}  // namespace rvf
