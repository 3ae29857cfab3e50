// SPDX-License-Identifier: Apache-2.0
#include "RVFoundation/PlatformUtilities/RVFColumnWidthRegistry.h"

#include <string>
#include <utility>

#include "Platform/Observation/KeyValueObserving.h"
#include "Platform/Runtime/ClassBuilder.h"
#include "Platform/Runtime/ClassRegistration.h"
#include "Platform/Storage/FileContents.h"
#include "Platform/Storage/NSPropertyListSerialization.h"
#include "Platform/Text/Text.h"
#include "Platform/Values/NSNumber.h"
#include "Platform/Values/NSString.h"

namespace rvf {
namespace {

const ClassRegistration kRegistration(&RVFColumnWidthRegistry::classObject);

constexpr std::string_view kColumnsKey = "Columns";
constexpr std::string_view kDefaultWidthKey = "Default Column Width";
constexpr std::string_view kMinimumWidthKey = "Minimum Column Width";
constexpr std::string_view kAutoresizeKey = "Auto-Resize Width";
constexpr std::string_view kListOrderKey = "List Order";

/// Absent where a level is missing, or is no dictionary.
Ref<NSDictionary> dictionaryForKey(const Ref<NSDictionary>& dictionary, std::string_view key) {
  if (!dictionary) return nullptr;
  return std::dynamic_pointer_cast<NSDictionary>(dictionary->objectForKey(key));
}

/// What a number or a text reads as.
template <class T>
T reading(const id& value, T (NSNumber::*ofNumber)() const,
          T (*ofText)(std::string_view) noexcept) {
  if (!value) return T();
  if (const auto* number = dynamic_cast<const NSNumber*>(value.get())) return (number->*ofNumber)();
  const std::string* text = textOfObject(*value);
  return text ? ofText(*text) : T();
}

/// "NSDebugDescription" is for people who debug.
Ref<NSError> readError(long code, std::string_view problem) {
  return NSError::errorWithDomain(
      NSCocoaErrorDomain, code,
      NSDictionary::dictionaryWithEntries({{"NSDebugDescription", box(problem)}}));
}

Ref<NSData> contentsOf(const Ref<NSURL>& location, Ref<NSError>* error) {
  const auto path = location && location->isFileURL() ? location->path() : std::nullopt;
  if (path && path->find('\0') == std::string::npos) return contentsOfFile(*path, error);
  reportError(error, [] { return readError(NSFileReadUnknownError, "the URL names no file"); });
  return nullptr;
}

}  // namespace

Class RVFColumnWidthRegistry::classObject() {
  using Registry = RVFColumnWidthRegistry;
  static const Class kClass =
      ClassBuilder<Registry>("RVFColumnWidthRegistry", NSObject::classObject())
          .property("registry", "T@\"NSDictionary\",&,N,V_registry")
          .ivar<&Registry::registry_>("_registry")
          .method<&Registry::registry>("registry")
          .method<&Registry::setRegistry>("setRegistry:")
          .method<&Registry::loadFromFile>("loadFromFile:error:")
          .method<&Registry::columnWidthInfoForKey>("columnWidthInfoForKey:andTableIdentifier:")
          .method<&Registry::objectForKey>("objectForKey:inDictionary:orDictionary:")
          .registered();
  return kClass;
}

Class RVFColumnWidthRegistry::isa() const {
  return classObject();
}

void RVFColumnWidthRegistry::setRegistry(Ref<NSDictionary> registry) {
  announceChange(*this, "registry", [&] { registry_.swap(registry); });
}

bool RVFColumnWidthRegistry::loadFromFile(const Ref<NSURL>& location, Ref<NSError>* error) {
  const Ref<NSData> data = contentsOf(location, error);
  if (!data) return false;
  const id root = NSPropertyListSerialization::propertyListWithData(data, nullptr, error);
  if (!root) return false;
  auto dictionary = std::dynamic_pointer_cast<NSDictionary>(root);
  if (!dictionary) {
    reportError(error, [] {
      return readError(NSPropertyListReadCorruptError, "the root is no dictionary");
    });
    return false;
  }
  setRegistry(std::move(dictionary));
  return true;
}

Ref<RVFColumnWidthInfo> RVFColumnWidthRegistry::columnWidthInfoForKey(
    std::string_view key, std::string_view andTableIdentifier) const {
  const auto table = dictionaryForKey(registry_, andTableIdentifier);
  const auto column = dictionaryForKey(dictionaryForKey(table, kColumnsKey), key);
  const auto value = [&](std::string_view name) { return objectForKey(name, column, table); };
  auto info = std::make_shared<RVFColumnWidthInfo>();
  info->setDefaultWidth(
      reading(value(kDefaultWidthKey), &NSNumber::doubleValue, &doubleValueOfText));
  info->setMinimumWidth(
      reading(value(kMinimumWidthKey), &NSNumber::doubleValue, &doubleValueOfText));
  info->setAutoresize(reading(value(kAutoresizeKey), &NSNumber::boolValue, &boolValueOfText));
  info->setListOrder(reading(value(kListOrderKey), &NSNumber::integerValue, &integerValueOfText));
  return info;
}

id RVFColumnWidthRegistry::objectForKey(std::string_view key, const Ref<NSDictionary>& inDictionary,
                                        const Ref<NSDictionary>& orDictionary) const {
  id value = inDictionary ? inDictionary->objectForKey(key) : nullptr;
  if (!value && orDictionary) value = orDictionary->objectForKey(key);
  return value;
}

}  // namespace rvf
