// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string_view>

#include "Platform/Export.h"
#include "Platform/Runtime/NSObject.h"

namespace rvf {

/// The protocol "RVFDynamicPropertyProvider": where the values of a class's dynamic properties
/// live.
///
/// Derive a class from it, beside `NSObject`, and let `RVFDynamicPropertySynthesizer::registered`
/// make it known. The generated accessors reach both operations as messages
/// (`objectForDynamicProperty:isWeak:`, `setObject:forDynamicProperty:isWeak:`), so any other class
/// that states the protocol and registers the two can be a provider as well; with these types they
/// are called without any conversion.
///
/// Thread: that of the accessor's caller. Lifetime: what `objectForDynamicProperty` answers is kept
/// by the caller; whether `setObject` keeps is the provider's choice.
class RVF_EXPORT RVFDynamicPropertyProvider {
 public:
  virtual ~RVFDynamicPropertyProvider();

  /// The stored object; absent if there is none, which a scalar property reads as 0. `isWeak` says
  /// that the property does not own its object.
  virtual id objectForDynamicProperty(std::string_view name, bool isWeak) = 0;
  /// Stores an object, which may be absent. Scalars come as `NSNumber`. Keeps an owning reference,
  /// or none if `isWeak`.
  virtual void setObject(const id& object, std::string_view forDynamicProperty, bool isWeak) = 0;
};

}  // namespace rvf
