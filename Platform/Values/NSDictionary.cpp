// SPDX-License-Identifier: Apache-2.0
#include "Platform/Values/NSDictionary.h"

#include <algorithm>
#include <map>

#include "Platform/Runtime/ClassBuilder.h"
#include "Platform/Runtime/ClassRegistration.h"
#include "Platform/Runtime/NSCopying.h"
#include "Platform/Runtime/NSException.h"
#include "Platform/Values/HashMixing.h"
#include "Platform/Values/NSString.h"

namespace rvf {
namespace {

const ClassRegistration kRegistration(&NSDictionary::classObject);

}  // namespace

NSDictionary::NSDictionary(Entries entries) : entries_(std::move(entries)) {
  for (const auto& [key, value] : entries_)
    requireEntry(key, value);
}

Ref<NSDictionary> NSDictionary::dictionary() {
  return std::make_shared<NSDictionary>();
}

Ref<NSDictionary> NSDictionary::dictionaryWithEntries(TextEntries entries) {
  Entries map;
  for (const auto& [key, value] : entries)
    map.insert_or_assign(box(key), value);
  return std::make_shared<NSDictionary>(std::move(map));
}

Class NSDictionary::classObject() {
  static const Class kClass = ClassBuilder<NSDictionary>("NSDictionary", NSObject::classObject())
                                  .method<&NSDictionary::count>("count")
                                  .method("copy", immutableCopyImplementation())
                                  .conformsTo("NSCopying")
                                  .registered();
  return kClass;
}

Class NSDictionary::isa() const {
  return classObject();
}

void NSDictionary::requireEntry(const id& key, const id& value) {
  if (key && value) return;
  NSException::raise(NSInvalidArgumentException,
                     key ? "absent object put into a dictionary" : "absent dictionary key");
}

id NSDictionary::objectForKey(const id& key) const {
  const auto found = entries_.find(key);
  return found == entries_.end() ? nullptr : found->second;
}

id NSDictionary::objectForKey(std::string_view key) const {
  const auto found = entries_.find(key);
  return found == entries_.end() ? nullptr : found->second;
}

std::optional<std::string> NSDictionary::textForKey(std::string_view key) const {
  return unboxText(objectForKey(key));
}

Ref<NSArray> NSDictionary::allKeys() const {
  std::vector<id> keys;
  keys.reserve(entries_.size());
  for (const auto& [key, value] : entries_)
    keys.push_back(key);
  return NSArray::arrayWithObjects(std::move(keys));
}

Ref<NSArray> NSDictionary::allValues() const {
  std::vector<id> values;
  values.reserve(entries_.size());
  for (const auto& [key, value] : entries_)
    values.push_back(value);
  return NSArray::arrayWithObjects(std::move(values));
}

bool NSDictionary::isEqual(const NSObject* other) const {
  const auto* dictionary = dynamic_cast<const NSDictionary*>(other);
  return dictionary && count() == dictionary->count() &&
         std::ranges::all_of(entries_, [dictionary](const auto& entry) {
           return objectsAreEqual(dictionary->objectForKey(entry.first), entry.second);
         });
}

std::size_t NSDictionary::hash() const {
  std::size_t hash = 0;  // a sum, because equal dictionaries may differ in their order
  for (const auto& [key, value] : entries_)
    hash += mixedHash(mixedHash(key->hash()) + value->hash());
  return hash;
}

std::string NSDictionary::description() const {
  std::multimap<std::string, std::string> lines;
  for (const auto& [key, value] : entries_) {
    lines.emplace(key->description(), value->description());
  }
  std::string text = "{";
  for (const auto& [key, value] : lines)
    text.append(key).append(" = ").append(value).append("; ");
  if (text.ends_with(' ')) text.pop_back();
  return text + "}";
}

}  // namespace rvf
