// SPDX-License-Identifier: Apache-2.0
#include "Platform/Runtime/KeyValueHooks.h"

#include <string>

#include "Platform/Observation/KeyValueMessages.h"
#include "Platform/Observation/ObservedObject.h"
#include "Platform/Text/NSLog.h"

namespace rvf {
namespace {

void warnOfLoss(const KeyPathObservation& observation, std::size_t count) {
  std::string line = observation.targetText() +
                     " was destroyed while it was observed: key path \"" + observation.keyPath() +
                     "\" by " + observation.observerText();
  if (count > 1) line += ", and " + std::to_string(count - 1) + " more";
  logLine(line);
}

}  // namespace

std::vector<Method> KeyValueHooks::methods() {
  std::vector<Method> all;
  for (const auto& some : {keyValueCodingMethods(), affectingKeysMethods(),
                           keyValueObservingMethods(), keyValueBindingMethods()}) {
    all.insert(all.end(), some.begin(), some.end());
  }
  return all;
}

void KeyValueHooks::forgetObservers(const NSObject& object) noexcept {
  const std::shared_ptr<ObservedObject> observed = ObservedObject::take(object);
  if (!observed) return;
  for (const auto& link : observed->links())
    link->forgetObject();
  const auto observations = observed->observations();
  for (const auto& observation : observations)
    observation->cancel();
  if (!observations.empty()) warnOfLoss(*observations.front(), observations.size());
}

}  // namespace rvf
