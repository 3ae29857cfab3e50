// SPDX-License-Identifier: Apache-2.0
#include "Platform/Runtime/IMP.h"

#include "Platform/Runtime/NSException.h"

namespace rvf {

std::string IMP::typeEncoding() const {
  return type_ ? type_->encoding() : std::string();
}

const std::any& IMP::argumentAt(std::span<const std::any> arguments, std::size_t index) {
  static const std::any kUnset;
  return index < arguments.size() ? arguments[index] : kUnset;
}

std::any IMP::callWithArguments(NSObject& self, SEL selector,
                                std::span<const std::any> arguments) const {
  if (!type_) {
    NSException::raise(NSInvalidArgumentException,
                       "call of a null implementation for " + NSStringFromSelector(selector));
  }
  return type_->caller(function_, self, selector, arguments);
}

}  // namespace rvf
