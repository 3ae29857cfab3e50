// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Platform/Export.h"
#include "Platform/Network/NSMutableURLRequest.h"

namespace rvf {

/// Operations of the request class itself.
///
/// Thread: any. Lifetime: the request keeps the URL.
struct RVF_EXPORT NSURLRequest_RVFExtensions {
  /// A command to a server: a "POST" with an empty body, which is not the same as no body.
  static Ref<NSMutableURLRequest> RVF_postCommandWithURL(Ref<NSURL> url);
};

}  // namespace rvf
