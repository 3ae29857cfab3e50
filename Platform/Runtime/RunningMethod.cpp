// SPDX-License-Identifier: Apache-2.0
#include "Platform/Runtime/RunningMethod.h"

namespace rvf {

const RunningMethod*& RunningMethod::threadsInnermost() noexcept {
  // Read at every message: the initial-exec model makes that one load instead of a call.
  [[gnu::tls_model("initial-exec")]] constinit thread_local const RunningMethod* innermost =
      nullptr;
  return innermost;
}

}  // namespace rvf
