// SPDX-License-Identifier: Apache-2.0
#include "RVFoundation/Formatters/RVFByteSizeFormatter.h"

#include <string_view>

#include "Platform/Locale/NSBundle.h"
#include "Platform/Observation/KeyValueObserving.h"
#include "Platform/Runtime/ClassBuilder.h"
#include "Platform/Runtime/ClassRegistration.h"
#include "Platform/Text/Format.h"
#include "Platform/Values/NSNumber.h"

namespace rvf {
namespace {

const ClassRegistration kRegistration(&RVFByteSizeFormatter::classObject);

/// The formats for counts from `least` on. Those with a unit are keys of the string table.
struct Unit {
  std::uint64_t least;
  double size;
  std::string_view formatWithUnit;
  std::string_view format;
};

constexpr Unit kUnits[] = {
    {1ULL << 30, 0x1p30, "%.1f GB", "%.1f"},
    {1ULL << 20, 0x1p20, "%.1f MB", "%.1f"},
    {1ULL << 10, 0x1p10, "%.1f KB", "%.1f"},
    {2, 1, "%.0f bytes", "%0.f"},
    {1, 1, "%0.f byte", "%0.f"},
    {0, 1, "%.0f bytes", "%0.f"},
};

const Unit& unitOf(std::uint64_t count) {
  const Unit* unit = kUnits;
  while (count < unit->least)
    ++unit;
  return *unit;
}

/// The texts come from the bundle of the class that was asked.
std::string textOf(std::uint64_t count, bool includeUnits, Class receiver) {
  const Unit& unit = unitOf(count);
  const double value = static_cast<double>(count) / unit.size;
  if (!includeUnits) return stringWithFormat(unit.format, value);
  const Ref<NSBundle> bundle = NSBundle::bundleForClass(receiver);
  return stringWithFormat(bundle->localizedStringForKey(unit.formatWithUnit), value);
}

}  // namespace

Class RVFByteSizeFormatter::classObject() {
  static const Class kClass =
      ClassBuilder<RVFByteSizeFormatter>("RVFByteSizeFormatter", NSFormatter::classObject())
          .property("includeUnits", "Tc,N,V_includeUnits")
          .ivar<&RVFByteSizeFormatter::includeUnits_>("_includeUnits")
          .method<&RVFByteSizeFormatter::includeUnits>("includeUnits")
          .method<&RVFByteSizeFormatter::setIncludeUnits>("setIncludeUnits:")
          .registered();
  return kClass;
}

Class RVFByteSizeFormatter::isa() const {
  return classObject();
}

void RVFByteSizeFormatter::setIncludeUnits(bool includeUnits) {
  announceChange(*this, "includeUnits", [&] { includeUnits_ = includeUnits; });
}

std::string RVFByteSizeFormatter::stringFromByteCountForClass(Class receiver, std::uint64_t count,
                                                              bool includeUnits) {
  return textOf(count, includeUnits, receiver);
}

std::optional<std::string> RVFByteSizeFormatter::stringForObjectValue(const id& value) {
  const auto* number = dynamic_cast<const NSNumber*>(value.get());
  if (!number) return std::nullopt;
  return textOf(number->unsignedLongLongValue(), includeUnits_, isa());
}

Ref<NSAttributedString> RVFByteSizeFormatter::attributedStringForObjectValue(
    const id& value, const Ref<NSDictionary>& withDefaultAttributes) {
  return NSAttributedString::attributedStringWithString(stringForObjectValue(value),
                                                        withDefaultAttributes);
}

}  // namespace rvf
