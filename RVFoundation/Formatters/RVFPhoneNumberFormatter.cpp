// SPDX-License-Identifier: Apache-2.0
#include "RVFoundation/Formatters/RVFPhoneNumberFormatter.h"

#include "Platform/Runtime/ClassBuilder.h"
#include "Platform/Runtime/ClassRegistration.h"
#include "Platform/Text/Format.h"
#include "Platform/Text/Text.h"
#include "Platform/Values/NSString.h"

namespace rvf {
namespace {

const ClassRegistration kRegistration(&RVFPhoneNumberFormatter::classObject);

}  // namespace

Class RVFPhoneNumberFormatter::classObject() {
  static const Class kClass =
      ClassBuilder<RVFPhoneNumberFormatter>("RVFPhoneNumberFormatter", NSFormatter::classObject())
          .registered();
  return kClass;
}

Class RVFPhoneNumberFormatter::isa() const {
  return classObject();
}

std::string RVFPhoneNumberFormatter::stringFromPhoneNumber(std::optional<std::string_view> text) {
  if (!text) return "";
  const auto part = [&text](std::size_t start, std::size_t length) {
    return substringUtf16(*text, start, length);
  };
  switch (utf16Length(*text)) {
    case 7:
      return stringWithFormat("%@-%@", part(0, 3), part(3, 4));
    case 10:
      return stringWithFormat("(%@) %@-%@", part(0, 3), part(3, 3), part(6, 4));
    case 11:
      return stringWithFormat("%@ (%@) %@-%@", part(0, 1), part(1, 3), part(4, 3), part(7, 4));
    default:
      return std::string(*text);
  }
}

std::optional<std::string> RVFPhoneNumberFormatter::stringForObjectValue(const id& value) {
  return stringFromPhoneNumber(unboxText(value));
}

}  // namespace rvf
