// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <memory>

namespace rvf {

class NSObject;

/// A shared, counted reference to a platform or library object. A null `Ref` means "absent".
/// What is not owned (delegates, observers, targets) is held as `std::weak_ptr` instead.
template <class T>
using Ref = std::shared_ptr<T>;

/// A reference to any object.
using id = Ref<NSObject>;

}  // namespace rvf
