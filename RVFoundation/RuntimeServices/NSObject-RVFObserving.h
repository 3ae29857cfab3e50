// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <functional>
#include <string_view>

#include "Platform/Export.h"
#include "Platform/Runtime/NSObject.h"

namespace rvf {

/// Makes a change of a key of any object between its two announcements to the key's observers: the
/// receiver is sent `willChangeValueForKey:`, `withChange` is called, the receiver is sent
/// `didChangeValueForKey:`. What it throws comes out; then the announcement stays open and
/// nobody is told. An absent receiver changes nothing.
///
/// A null one is a reported assertion (line 58, empty description); if the handler returns,
/// nothing else happens.
RVF_EXPORT void RVF_changeValueForKey(const id& receiver, std::string_view key,
                                      const std::function<void()>& withChange);

}  // namespace rvf
