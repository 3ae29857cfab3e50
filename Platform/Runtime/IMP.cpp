// SPDX-License-Identifier: Apache-2.0
#include "Platform/Runtime/IMP.h"

#include "Platform/Runtime/NSException.h"

namespace rvf {

std::string IMP::typeEncoding() const {
  return type_ ? type_->encoding() : std::string();
}

std::any IMP::callWithArguments(NSObject& self, SEL selector,
                                std::span<const std::any> arguments) const {
  if (!type_) {
    NSException::raise(NSInvalidArgumentException,
                       "call of a null implementation for " + NSStringFromSelector(selector));
  }
  if (arguments.size() != type_->argumentCount) {
    raiseArgumentCountMismatch(&self, selector, arguments.size(), type_->argumentCount);
  }
  const IMP running = *this;  // what holds this may change while it runs
  const RunningMethod mark(running, self, selector);
  return running.type_->caller(running.function_, self, selector, arguments);
}

}  // namespace rvf
