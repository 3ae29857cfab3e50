// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <functional>
#include <string_view>

#include "Platform/Export.h"
#include "Platform/Locale/NSLocale.h"

namespace rvf {

/// Operations of the locale class itself.
///
/// Thread: any, but a changed locale is the whole process's: let calls not overlap. Lifetime:
/// blocks are not kept.
struct RVF_EXPORT NSLocale_RVFExtensions {
  /// Runs work while the user's locale is another one, for the whole process. The locale is set in
  /// the standard user defaults and stored with them, and observers of
  /// `NSCurrentLocaleDidChangeNotification` hear of it on this thread before the work runs. After
  /// the work, also one that raised, all that happens again with what was set before, or nothing;
  /// then what was raised goes on. Calls may stand inside one another, but those of two threads
  /// that overlap restore what they found.
  ///
  /// Raises `NSInvalidArgumentException`, before anything has happened, for an identifier that is
  /// no UTF-8. An empty block is one that does nothing.
  static void RVF_changeLocaleTo(std::string_view identifier,
                                 const std::function<void()>& duringBlock);

  /// A new locale "en_US_POSIX", for texts that machines read.
  static Ref<NSLocale> RVF_POSIXLocale();
};

}  // namespace rvf
