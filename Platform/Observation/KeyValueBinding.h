// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string_view>

#include "Platform/Export.h"
#include "Platform/Runtime/NSObject.h"
#include "Platform/Values/NSDictionary.h"

/// Bindings: a key of one object follows a key path of another.
///
///     bindToObject(*label, "text", server, "mainService.name");
///
/// The functions send the messages `bind:toObject:withKeyPath:options:` and `unbind:`, which every
/// object answers, so that a proxy passes them on.
namespace rvf {

/// Sets the receiver's key `name` from the observed value at once and after every change, on the
/// thread of the change; an absent value as absent. A name that is bound already is bound anew.
/// Options are accepted and ignored. What setting or reading raises comes out; at binding, an
/// earlier binding then stays.
///
/// Neither object keeps the other alive. The binding ends with its receiver; an observed object
/// that goes first logs the warning of `KeyValueObserving.h`. The receiver must be held by a `Ref`.
/// An absent object raises `NSInvalidArgumentException`; of a proxy, the target is observed.
RVF_EXPORT void bindToObject(NSObject& receiver, std::string_view name, const id& object,
                             std::string_view keyPath, const Ref<NSDictionary>& options = nullptr);

/// Ends a binding; the key keeps its value. A name that is not bound is fine.
RVF_EXPORT void unbind(NSObject& receiver, std::string_view name);

}  // namespace rvf
