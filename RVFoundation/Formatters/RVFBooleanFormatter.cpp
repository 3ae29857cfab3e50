// SPDX-License-Identifier: Apache-2.0
#include "RVFoundation/Formatters/RVFBooleanFormatter.h"

#include "Platform/Locale/NSBundle.h"
#include "Platform/Runtime/ClassBuilder.h"
#include "Platform/Runtime/ClassRegistration.h"
#include "Platform/Runtime/Messaging.h"

namespace rvf {
namespace {

const ClassRegistration kRegistration(&RVFBooleanFormatter::classObject);

}  // namespace

Class RVFBooleanFormatter::classObject() {
  static const Class kClass =
      ClassBuilder<RVFBooleanFormatter>("RVFBooleanFormatter", NSFormatter::classObject())
          .registered();
  return kClass;
}

Class RVFBooleanFormatter::isa() const {
  return classObject();
}

std::optional<std::string> RVFBooleanFormatter::stringForObjectValue(const id& value) {
  static const SEL kBoolValue("boolValue");
  if (!value || !value->respondsToSelector(kBoolValue)) return std::nullopt;
  return NSBundle::bundleForClass(isa())->localizedStringForKey(
      RVFStringFromBool(send<bool>(value, kBoolValue)));
}

std::string RVFStringFromBool(bool value) {
  return value ? "true" : "false";
}

}  // namespace rvf
