// SPDX-License-Identifier: Apache-2.0
#include "RVFoundation/RuntimeServices/RVFSupersequentImplementation.h"

#include "Platform/Runtime/RunningMethod.h"
#include "Platform/Runtime/Runtime.h"

namespace rvf {

IMP RVF_ImpOfCallingMethod(const NSObject* receiver, SEL selector) {
  if (!object_getClass(receiver)) return {};
  // Blocks and other methods may run between the method and this call.
  for (auto running = RunningMethod::innermost(); running; running = running->enclosing()) {
    if (&running->receiver() == receiver && running->selector() == selector) {
      return running->implementation();
    }
  }
  return {};
}

IMP RVF_getImplementationOf(const NSObject* receiver, SEL selector, IMP after) {
  bool isSeen = false;
  for (Class aClass = object_getClass(receiver); aClass; aClass = class_getSuperclass(aClass)) {
    for (const Method& method : class_copyMethodList(aClass)) {
      if (method.selector != selector) continue;
      if (method.implementation == after) {
        isSeen = true;
      } else if (isSeen) {
        return method.implementation;
      }
    }
  }
  return {};
}

}  // namespace rvf
