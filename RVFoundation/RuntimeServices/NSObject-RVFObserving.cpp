// SPDX-License-Identifier: Apache-2.0
#include "RVFoundation/RuntimeServices/NSObject-RVFObserving.h"

#include "Platform/Observation/KeyValueObserving.h"
#include "Platform/Runtime/NSAssertionHandler.h"

namespace rvf {
namespace {

constexpr std::string_view kSource = "RVFoundation/NSObject-RVFExtensions";
constexpr int kChangeIsGivenLine = 58;

}  // namespace

void RVF_changeValueForKey(const id& receiver, std::string_view key,
                           const std::function<void()>& withChange) {
  if (!receiver) return;
  if (!withChange) {
    NSAssertionHandler::currentHandler()->handleFailureInMethod(
        SEL("RVF_changeValueForKey:withChange:"), receiver.get(), kSource, kChangeIsGivenLine, "");
    return;
  }
  const id alive = receiver;
  const std::function<void()> change = withChange;
  willChangeValueForKey(*alive, key);
  change();
  didChangeValueForKey(*alive, key);
}

}  // namespace rvf
