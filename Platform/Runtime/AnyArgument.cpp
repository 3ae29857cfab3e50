// SPDX-License-Identifier: Apache-2.0
#include "Platform/Runtime/AnyArgument.h"

#include "Platform/Runtime/NSException.h"

namespace rvf {

void raiseArgumentMismatch(const std::type_info& found, const std::string& wanted) {
  NSException::raise(NSInvalidArgumentException, std::string("argument of type ") + found.name() +
                                                     " where " + wanted + " is expected");
}

}  // namespace rvf
