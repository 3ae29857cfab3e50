// SPDX-License-Identifier: Apache-2.0
#include "Platform/Observation/AffectingKeys.h"

#include <algorithm>

#include "Platform/Observation/KeyValueAccessor.h"
#include "Platform/Observation/KeyValueMessages.h"
#include "Platform/Observation/KeyValueObserving.h"
#include "Platform/Runtime/Messaging.h"
#include "Platform/Values/NSSet.h"
#include "Platform/Values/NSString.h"

namespace rvf {
namespace {

SEL affectingSelector() {
  static const SEL kSelector("keyPathsForValuesAffectingValueForKey:");
  return kSelector;
}

/// Answers what the class declares for the key under `keyPathsForValuesAffecting<Key>`.
id keyPathsForValuesAffectingMethod(NSObject& self, SEL, std::string_view key) {
  const SEL declaration = SEL::known("keyPathsForValuesAffecting" + capitalizedKey(key));
  const Method* method = declaration ? self.isa()->method(declaration) : nullptr;
  return method ? method->implementation.call<id>(self, declaration) : nullptr;
}

void addOnce(std::vector<std::string>& texts, const std::string& text) {
  if (std::ranges::find(texts, text) == texts.end()) texts.push_back(text);
}

}  // namespace

std::vector<Method> affectingKeysMethods() {
  return {{affectingSelector(), &keyPathsForValuesAffectingMethod}};
}

id setOfKeyPaths(const std::set<std::string>& keyPaths) {
  std::vector<id> objects;
  objects.reserve(keyPaths.size());
  for (const std::string& keyPath : keyPaths)
    objects.push_back(box(keyPath));
  return NSSet::setWithObjects(objects);
}

AffectingKeys affectingKeysOf(NSObject& object, std::string_view key) {
  AffectingKeys affecting{{std::string(key)}, {}};
  for (std::size_t i = 0; i < affecting.keys.size(); ++i) {
    const std::string dependent = affecting.keys[i];
    const auto keyPaths =
        send<Ref<NSSet>>(object, affectingSelector(), std::string_view(dependent));
    if (!keyPaths) continue;
    for (const id& keyPath : *keyPaths) {
      const std::string text = unboxText(keyPath).value_or("");
      addOnce(text.find('.') == std::string::npos ? affecting.keys : affecting.keyPaths, text);
    }
  }
  return affecting;
}

}  // namespace rvf
