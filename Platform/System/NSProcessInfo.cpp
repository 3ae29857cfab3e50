// SPDX-License-Identifier: Apache-2.0
#include "Platform/System/NSProcessInfo.h"

#include <unistd.h>

#include "Platform/Runtime/ClassBuilder.h"
#include "Platform/Runtime/ClassRegistration.h"

namespace rvf {
namespace {

const ClassRegistration kRegistration(&NSProcessInfo::classObject);

/// 0 for what the system does not tell.
unsigned long long systemValue(int name) {
  const long value = sysconf(name);
  return value < 0 ? 0 : static_cast<unsigned long long>(value);
}

}  // namespace

Ref<NSProcessInfo> NSProcessInfo::processInfo() {
  static const auto kInfo = std::make_shared<NSProcessInfo>();
  return kInfo;
}

Class NSProcessInfo::classObject() {
  static const Class kClass = ClassBuilder<NSProcessInfo>("NSProcessInfo", NSObject::classObject())
                                  .property("physicalMemory", "TQ,R,N")
                                  .method<&NSProcessInfo::physicalMemory>("physicalMemory")
                                  .registered();
  return kClass;
}

Class NSProcessInfo::isa() const {
  return classObject();
}

unsigned long long NSProcessInfo::physicalMemory() const {
  return systemValue(_SC_PHYS_PAGES) * systemValue(_SC_PAGESIZE);
}

}  // namespace rvf
