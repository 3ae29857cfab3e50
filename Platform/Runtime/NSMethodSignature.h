// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "Platform/Export.h"
#include "Platform/Runtime/NSObject.h"

namespace rvf {

/// The result and argument types of a method. Argument 0 is the receiver, 1 the selector, 2 the
/// first argument of the message's own.
///
/// Thread: any; immutable. Lifetime: owns its texts.
class RVF_EXPORT NSMethodSignature final : public NSObject {
 public:
  /// From a type encoding such as "v@:i" (see `typeEncoding`; `@"Class"` and `B` are read as well):
  /// result, receiver, selector, then the message's own arguments. Absent if the text is not one.
  static Ref<NSMethodSignature> signatureWithTypes(std::string_view types);

  static Class classObject();
  Class isa() const override;

  /// Receiver and selector included.
  std::size_t numberOfArguments() const noexcept { return argumentTypes_.size(); }
  /// Raises `NSInvalidArgumentException` past the last argument.
  const std::string& getArgumentTypeAtIndex(std::size_t index) const;
  const std::string& methodReturnType() const noexcept { return returnType_; }

  bool isEqual(const NSObject* other) const override;
  std::size_t hash() const override;

 private:
  std::string returnType_;
  std::vector<std::string> argumentTypes_;
};

}  // namespace rvf
