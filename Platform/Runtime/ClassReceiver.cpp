// SPDX-License-Identifier: Apache-2.0
#include "Platform/Runtime/ClassReceiver.h"

#include "Platform/Runtime/Runtime.h"

namespace rvf {

std::string ClassReceiver::description() const {
  return std::string(class_getName(receivingClass_));
}

}  // namespace rvf
