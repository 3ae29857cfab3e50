// SPDX-License-Identifier: Apache-2.0
#include "Platform/Runtime/NSCopying.h"

#include "Platform/Runtime/Messaging.h"

namespace rvf {
namespace {

id copyImmutable(NSObject& self, SEL) {
  return self.shared_from_this();
}

}  // namespace

id copyOfObject(const id& object) {
  static const SEL kCopy("copy");
  return send<id>(object, kCopy);
}

IMP immutableCopyImplementation() noexcept {
  return &copyImmutable;
}

}  // namespace rvf
