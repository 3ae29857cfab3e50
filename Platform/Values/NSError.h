// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "Platform/Export.h"
#include "Platform/Runtime/NSObject.h"
#include "Platform/Values/NSDictionary.h"

namespace rvf {

inline constexpr std::string_view NSLocalizedDescriptionKey = "NSLocalizedDescription";
inline constexpr std::string_view NSLocalizedRecoverySuggestionErrorKey =
    "NSLocalizedRecoverySuggestion";
inline constexpr std::string_view NSUnderlyingErrorKey = "NSUnderlyingError";
inline constexpr std::string_view NSRecoveryAttempterErrorKey = "NSRecoveryAttempter";
inline constexpr std::string_view NSFilePathErrorKey = "NSFilePath";

inline constexpr std::string_view NSPOSIXErrorDomain = "NSPOSIXErrorDomain";
inline constexpr std::string_view NSCocoaErrorDomain = "NSCocoaErrorDomain";

/// A failure that a correct program can meet at run time: the domain says which family of codes
/// the code belongs to, the user info carries texts and details. Immutable, so safe to share
/// between threads: a mutable user info is copied.
///
/// Operations that can fail take `Ref<NSError>* error = nullptr` as their last argument and write
/// it only on failure and only when it was given.
///
/// Thread: any; immutable. Lifetime: keeps its user info, and so the error beneath.
class RVF_EXPORT NSError final : public NSObject {
 public:
  NSError(std::string_view domain, long code, const Ref<NSDictionary>& userInfo = nullptr);

  /// An absent user info stands for no texts: `localizedDescription` then makes one of domain and
  /// code.
  static Ref<NSError> errorWithDomain(std::string_view domain, long code,
                                      const Ref<NSDictionary>& userInfo = nullptr);

  static Class classObject();
  Class isa() const override;

  /// A code means something only together with its domain: compare both.
  const std::string& domain() const noexcept { return domain_; }
  long code() const noexcept { return code_; }
  /// Absent when the failure carries no text.
  const Ref<NSDictionary>& userInfo() const noexcept { return userInfo_; }

  /// What went wrong, for the user: the user info's text, or
  /// "The operation couldn’t be completed. (Domain error N.)".
  std::string localizedDescription() const;
  /// What the user should do, where the failure knows.
  std::optional<std::string> localizedRecoverySuggestion() const;
  /// The error that caused this one, if any.
  Ref<NSError> underlyingError() const;

  bool isEqual(const NSObject* other) const override;
  std::size_t hash() const override;
  /// "Error Domain=… Code=… "description"", for people who debug.
  std::string description() const override;

 private:
  std::string domain_;
  long code_;
  Ref<NSDictionary> userInfo_;
};

/// Writes `*error = made()` if the caller asked for the error; makes nothing otherwise.
template <class Maker>
void reportError(Ref<NSError>* error, Maker&& made) {
  if (error) *error = made();
}

}  // namespace rvf
