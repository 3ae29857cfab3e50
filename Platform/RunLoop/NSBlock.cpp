// SPDX-License-Identifier: Apache-2.0
#include "Platform/RunLoop/NSBlock.h"

#include "Platform/Runtime/ClassBuilder.h"
#include "Platform/Runtime/ClassRegistration.h"

namespace rvf {
namespace {

const ClassRegistration kRegistration(&NSBlock::classObject);

}  // namespace

Class NSBlock::classObject() {
  static const Class kClass = ClassBuilder<NSBlock>("NSBlock", NSObject::classObject())
                                  .method<&NSBlock::invoke>("invoke")
                                  .registered();
  return kClass;
}

Class NSBlock::isa() const {
  return classObject();
}

}  // namespace rvf
