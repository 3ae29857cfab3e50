// SPDX-License-Identifier: Apache-2.0
#include "Platform/Observation/ObjectText.h"

#include "Platform/Runtime/Pointers.h"
#include "Platform/Runtime/Runtime.h"

namespace rvf {

std::string objectText(Class aClass, const NSObject* address) {
  return "<" + std::string(class_getName(aClass)) + " " + pointerText(address) + ">";
}

std::string objectText(const NSObject* object) {
  return object ? objectText(object->isa(), object) : "(null)";
}

}  // namespace rvf
