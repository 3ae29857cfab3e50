// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <functional>

#include "Platform/Export.h"
#include "Platform/Network/NSNetService.h"
#include "Platform/Values/NSError.h"

namespace rvf {

/// How a resolution ended: without an error when `service->addresses()` has addresses, with the
/// platform's failure otherwise; `wasStopped` if the registration was stopped meanwhile.
using RVFNetServiceResolution = std::function<void(const Ref<NSNetService>& service,
                                                   const Ref<NSError>& error, bool wasStopped)>;

/// Resolves a registration into socket addresses with one completion call, on the run loop of the
/// calling thread. Seconds; 0 is no limit, a time-out is -72007 in "NSNetServicesErrorDomain".
///
/// The registration's delegate is replaced and is none afterwards. Do not overlap resolutions of
/// one registration: the first would never complete. Registration and completion stay alive until
/// the completion has run.
RVF_EXPORT void RVF_resolveWithTimeout(const Ref<NSNetService>& service, double timeoutSeconds,
                                       RVFNetServiceResolution usingCompletion);

}  // namespace rvf
