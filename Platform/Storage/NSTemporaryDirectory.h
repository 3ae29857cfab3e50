// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

#include "Platform/Export.h"

namespace rvf {

/// Where files may be put that nobody misses: $TMPDIR, or "/tmp" where that is unset or empty. Read
/// anew each time; it need not exist. Not to be called while another thread changes the
/// environment.
RVF_EXPORT std::string NSTemporaryDirectory();

}  // namespace rvf
