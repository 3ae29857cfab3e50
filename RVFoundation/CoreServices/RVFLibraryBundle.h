// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Platform/Export.h"
#include "Platform/Locale/NSBundle.h"

namespace rvf {

/// This library's own bundle: its version, and the tables of its user-visible texts, "RVFoundation"
/// (the default one) and "RVFStaticServer". Also the bundle of every class named RVF…
///
///     RVFLibraryBundle()->localizedStringForKey("An error occurred while receiving data.")
RVF_EXPORT Ref<NSBundle> RVFLibraryBundle();

}  // namespace rvf
