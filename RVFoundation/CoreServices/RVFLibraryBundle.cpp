// SPDX-License-Identifier: Apache-2.0
#include "RVFoundation/CoreServices/RVFLibraryBundle.h"

#include "Platform/Values/NSString.h"

namespace rvf {
namespace {

const NSBundleRegistration kRegistration("RVF", &RVFLibraryBundle);

}  // namespace

Ref<NSBundle> RVFLibraryBundle() {
  static const auto kBundle = std::make_shared<NSBundle>(
      "RVFoundation",
      NSDictionary::dictionaryWithEntries({{kCFBundleIdentifierKey, box("RVFoundation")},
                                           {kCFBundleNameKey, box("RVFoundation")},
                                           {kCFBundleVersionKey, box(RVF_VERSION)}}));
  return kBundle;
}

}  // namespace rvf
