// SPDX-License-Identifier: Apache-2.0
#include "Platform/Runtime/ClassReceiver.h"

#include <functional>

#include "Platform/Runtime/Runtime.h"

namespace rvf {

bool ClassReceiver::isEqual(const NSObject* other) const {
  const auto* receiver = dynamic_cast<const ClassReceiver*>(other);
  return receiver && receiver->receivingClass_ == receivingClass_;
}

std::size_t ClassReceiver::hash() const {
  return std::hash<Class>()(receivingClass_);
}

std::string ClassReceiver::description() const {
  return std::string(class_getName(receivingClass_));
}

}  // namespace rvf
