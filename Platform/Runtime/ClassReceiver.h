// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <string>

#include "Platform/Export.h"
#include "Platform/Runtime/NSObject.h"

namespace rvf {

/// A class as the receiver of one of its own operations, where an object is asked for:
///
///     const ClassReceiver receiver(NSURL::classObject());
///     handler->handleFailureInMethod(selector, &receiver, file, line, description);
///
/// Classes are no objects here, so this stands in; it describes itself by the name of the class.
/// Two are equal when they stand for the same class, so that sets of classes are sets of these.
///
/// Thread: any; immutable. Lifetime: refers to the class, which lives as long as the process.
class RVF_EXPORT ClassReceiver final : public NSObject {
 public:
  explicit ClassReceiver(Class receivingClass) : receivingClass_(receivingClass) {}

  /// The class that this stands for.
  Class receivingClass() const noexcept { return receivingClass_; }

  bool isEqual(const NSObject* other) const override;
  std::size_t hash() const override;
  std::string description() const override;

 private:
  Class receivingClass_;
};

}  // namespace rvf
