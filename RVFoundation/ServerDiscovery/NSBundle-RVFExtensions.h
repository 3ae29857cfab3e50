// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Platform/Export.h"
#include "Platform/Locale/NSBundle.h"

namespace rvf {

/// What stands under "CFBundleVersion" in the bundle's information dictionary, of whatever class;
/// absent if there is nothing, or no bundle.
RVF_EXPORT id RVF_bundleVersion(const Ref<NSBundle>& bundle);

}  // namespace rvf
