// SPDX-License-Identifier: Apache-2.0
#include "RVFoundation/RuntimeServices/RVFPropertyHelpers.h"

#include "Platform/Runtime/ClassRecord.h"
#include "Platform/Runtime/NSAssertionHandler.h"
#include "Platform/Runtime/RuntimeName.h"
#include "RVFoundation/RuntimeServices/PropertyAttributes.h"

namespace rvf {
namespace {

using Text = RVFPropertyInfo::Text;

Text setterText(const PropertyAttributes& attributes) {
  if (!attributes.hasGeneratedSetter()) return Text(attributes.statedSetter());
  char setter[Text::kCapacity - 1];
  return Text({setter, writeGeneratedSetter(attributes.name(), setter, sizeof setter)});
}

RVFPropertyInfo recordOf(const PropertyAttributes& attributes) {
  RVFPropertyInfo info;
  info.type = Text(attributes.type());
  info.getter = Text(attributes.getter());
  info.setter = setterText(attributes);
  info.ivar = Text(attributes.ivar());
  info.readonly = attributes.has('R');
  info.copy = attributes.has('C');
  info.retain = attributes.has('&');
  info.nonatomic = attributes.has('N');
  info.dynamic = attributes.has('D');
  info.weak = attributes.has('W');
  info.assign = attributes.isAssign();
  info.collectable = attributes.has('P');
  return info;
}

}  // namespace

Text::Text(std::string_view text) noexcept {
  runtimeName(text).copy(characters_.data(), kCapacity);
}

std::string_view Text::view() const noexcept {
  return runtimeName({characters_.data(), kCapacity});
}

RVFPropertyInfo RVFParsePropertyAttributes(const Property& property) {
  return recordOf(PropertyAttributes(property));
}

bool RVFPropertyInfoForSelector(Class aClass, SEL selector, RVFPropertyInfo* outInfo) {
  if (!outInfo) {  // uncovered: ends the process
    failAssertion("RVFPropertyInfoForSelector", "RVFoundation/RVFPropertyHelpers", 73, "outInfo");
  }
  const auto found = findPropertyForSelector(aClass, selector);
  if (!found) return false;
  *outInfo = recordOf(*found);
  outInfo->name = box(found->name());
  return true;
}

bool RVFPropertyInfoForPropertyOfClass(Class aClass, std::string_view name,
                                       RVFPropertyInfo* outInfo) {
  name = runtimeName(name);
  for (; aClass; aClass = class_getSuperclass(aClass)) {
    for (const Property& property : aClass->properties()) {
      const PropertyAttributes attributes(property);
      if (attributes.getter() != name) continue;
      if (outInfo) *outInfo = recordOf(attributes);
      return true;
    }
  }
  return false;
}

Class RVFGetPropertyClassFromPropertyInfoType(std::string_view type) {
  constexpr std::string_view kStart = "@\"";
  type = runtimeName(type);
  if (!type.starts_with(kStart)) return nullptr;
  type.remove_prefix(kStart.size());
  const std::size_t quote = type.find('"');
  if (quote == type.npos) return nullptr;
  const std::string_view quoted = type.substr(0, quote);
  const std::string_view name = quoted.substr(0, quoted.find('<'));
  return name.empty() ? nullptr : objc_getClass(name);
}

}  // namespace rvf
