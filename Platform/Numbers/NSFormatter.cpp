// SPDX-License-Identifier: Apache-2.0
#include "Platform/Numbers/NSFormatter.h"

#include "Platform/Runtime/ClassBuilder.h"
#include "Platform/Runtime/ClassRegistration.h"
#include "Platform/Runtime/NSException.h"

namespace rvf {
namespace {

const ClassRegistration kRegistration(&NSFormatter::classObject);

[[noreturn]] void raiseAbstract(const NSFormatter& formatter, std::string_view selector) {
  const std::string name(class_getName(formatter.isa()));
  NSException::raise(NSInvalidArgumentException, "-[" + name + " " + std::string(selector) +
                                                     "]: not defined by this formatter");
}

}  // namespace

Class NSFormatter::classObject() {
  static const Class kClass =
      ClassBuilder<NSFormatter>("NSFormatter", NSObject::classObject())
          .method<&NSFormatter::stringForObjectValue>("stringForObjectValue:")
          .method<&NSFormatter::editingStringForObjectValue>("editingStringForObjectValue:")
          .method<&NSFormatter::attributedStringForObjectValue>(
              "attributedStringForObjectValue:withDefaultAttributes:")
          .method<&NSFormatter::getObjectValue>("getObjectValue:forString:errorDescription:")
          .registered();
  return kClass;
}

Class NSFormatter::isa() const {
  return classObject();
}

std::optional<std::string> NSFormatter::stringForObjectValue(const id& /*value*/) {
  raiseAbstract(*this, "stringForObjectValue:");
}

std::optional<std::string> NSFormatter::editingStringForObjectValue(const id& value) {
  return stringForObjectValue(value);
}

Ref<NSAttributedString> NSFormatter::attributedStringForObjectValue(
    const id& /*value*/, const Ref<NSDictionary>& /*withDefaultAttributes*/) {
  return nullptr;
}

bool NSFormatter::getObjectValue(id* /*object*/, std::string_view /*forString*/,
                                 std::string* /*errorDescription*/) {
  raiseAbstract(*this, "getObjectValue:forString:errorDescription:");
}

}  // namespace rvf
