// SPDX-License-Identifier: Apache-2.0
#include "RVFoundation/PlatformUtilities/NSLocale-RVFExtensions.h"

#include "Platform/Storage/NSUserDefaults.h"
#include "Platform/Values/NSString.h"

namespace rvf {
namespace {

/// Absent removes the user's choice. Observers may raise; the choice is stored before.
void chooseLocale(const id& identifier) {
  const auto defaults = NSUserDefaults::standardUserDefaults();
  defaults->setObject(identifier, kAppleLocaleKey);
  defaults->synchronize();
  NSLocale::announceChangeOfCurrentLocale();
}

/// What observers raise is not what the caller is told, if the work failed already.
void restoreLocaleAfterFailure(const id& kept) noexcept {
  try {
    chooseLocale(kept);
  } catch (...) {
    return;
  }
}

}  // namespace

void NSLocale_RVFExtensions::RVF_changeLocaleTo(std::string_view identifier,
                                                const std::function<void()>& duringBlock) {
  const id kept = NSUserDefaults::standardUserDefaults()->objectForKey(kAppleLocaleKey);
  const id chosen = box(identifier);
  try {
    chooseLocale(chosen);
    if (duringBlock) duringBlock();
  } catch (...) {
    restoreLocaleAfterFailure(kept);
    throw;
  }
  chooseLocale(kept);
}

Ref<NSLocale> NSLocale_RVFExtensions::RVF_POSIXLocale() {
  return NSLocale::localeWithLocaleIdentifier("en_US_POSIX");
}

}  // namespace rvf
