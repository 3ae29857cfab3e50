// SPDX-License-Identifier: Apache-2.0
//
// Any name and attribute string of a property, separated by a zero byte. What is no well-formed
// attribute string stops the process by design, so the parser gets those only that it promises to
// read; the descriptor and the reading of classes get everything.

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include "Platform/Runtime/NSAutoreleasePool.h"
#include "Platform/Runtime/NSException.h"
#include "Platform/Text/Text.h"
#include "RVFoundation/RuntimeServices/RVFClassPropertyDescriptor.h"
#include "RVFoundation/RuntimeServices/RVFPropertyHelpers.h"

namespace {

using namespace rvf;

constexpr std::size_t kLimit = RVFPropertyInfo::Text::kCapacity;

void require(bool condition) {
  if (!condition) std::abort();
}

bool isWellFormed(std::string_view attributes) {
  if (attributes.empty()) return true;
  for (const std::string_view attribute : splitText(attributes, ",")) {
    if (attribute.empty()) return false;
    if (std::string_view("TGSV").find(attribute.front()) != std::string_view::npos) {
      if (attribute.size() - 1 > kLimit) return false;
    } else if (std::string_view("RC&NDWP").find(attribute.front()) == std::string_view::npos) {
      return false;
    }
  }
  return true;
}

void parse(const Property& property) {
  const RVFPropertyInfo info = RVFParsePropertyAttributes(property);
  require(info.name == nullptr);
  require(info.getter.view().size() <= kLimit);
  require(info.assign == !(info.retain || info.copy));
  require(!info.getter.empty() || property.name.empty());
  if (info.setter.empty()) require(info.readonly);
  RVFGetPropertyClassFromPropertyInfoType(info.type);
}

/// What the record and the descriptor both know must agree.
void compare(const Property& property, const RVFClassPropertyDescriptor& descriptor) {
  const RVFPropertyInfo info = RVFParsePropertyAttributes(property);
  require(info.copy == descriptor.isCopy());
  require(info.retain == descriptor.isRetained());
  require(info.nonatomic == descriptor.isNonAtomic());
  require(info.dynamic == descriptor.isDynamic());
  require(info.readonly == descriptor.isReadonly());
  require(info.assign == descriptor.isAssigned());
  require(info.type.view() == descriptor.encodedType().value_or(""));
  require(info.ivar.view() == descriptor.ivarName().value_or(""));
}

void describe(const Property& property, bool isParsed) {
  const NSAutoreleasePool pool;
  try {
    const auto descriptor =
        RVFClassPropertyDescriptor::classPropertyDescriptorForProperty(property);
    require(descriptor->name() == property.name);
    descriptor->customGetter();
    descriptor->customSetter();
    require(!descriptor->description().empty());
    if (isParsed) compare(property, *descriptor);
  } catch (const NSException& exception) {
    require(exception.name() == NSRangeException);
    require(!isParsed || property.attributes.empty());
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view bytes(reinterpret_cast<const char*>(data), size);
  const std::size_t end = bytes.find('\0');
  const std::string_view attributes =
      end == std::string_view::npos ? std::string_view() : bytes.substr(end + 1);
  // Names of the runtime end at their first zero byte, as they do where classes are described.
  const Property property{std::string(bytes.substr(0, end)),
                          std::string(attributes.substr(0, attributes.find('\0')))};
  const bool isParsed = isWellFormed(property.attributes);
  if (isParsed) parse(property);
  describe(property, isParsed);
  RVFGetPropertyClassFromPropertyInfoType(bytes);
  return 0;
}
