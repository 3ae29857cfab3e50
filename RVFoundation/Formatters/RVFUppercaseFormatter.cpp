// SPDX-License-Identifier: Apache-2.0
#include "RVFoundation/Formatters/RVFUppercaseFormatter.h"

#include "Platform/Runtime/ClassBuilder.h"
#include "Platform/Runtime/ClassRegistration.h"
#include "Platform/Runtime/Messaging.h"

namespace rvf {
namespace {

const ClassRegistration kRegistration(&RVFUppercaseFormatter::classObject);

}  // namespace

Class RVFUppercaseFormatter::classObject() {
  static const Class kClass =
      ClassBuilder<RVFUppercaseFormatter>("RVFUppercaseFormatter", NSFormatter::classObject())
          .registered();
  return kClass;
}

Class RVFUppercaseFormatter::isa() const {
  return classObject();
}

std::optional<std::string> RVFUppercaseFormatter::stringForObjectValue(const id& value) {
  static const SEL kUppercaseString("uppercaseString");
  if (!value || !value->respondsToSelector(kUppercaseString)) return std::nullopt;
  return send<std::optional<std::string>>(value, kUppercaseString);
}

}  // namespace rvf
