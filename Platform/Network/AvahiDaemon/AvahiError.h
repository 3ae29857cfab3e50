// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string_view>

#include "Platform/Export.h"
#include "Platform/Network/NSNetServicesError.h"

namespace rvf {

/// What an error of the Avahi daemon means to the caller. The name is that of the D-Bus error,
/// "org.freedesktop.Avahi.CollisionError"; one that we do not know is `unknown`.
RVF_EXPORT NSNetServicesError errorForAvahiName(std::string_view name) noexcept;

/// Whether a D-Bus error says that the call did not get through, instead of being the callee's
/// answer: its owner went, or the bus gave up.
RVF_EXPORT bool isTransportError(std::string_view name) noexcept;

}  // namespace rvf
