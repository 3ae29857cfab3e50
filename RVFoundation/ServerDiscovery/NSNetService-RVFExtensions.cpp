// SPDX-License-Identifier: Apache-2.0
#include "RVFoundation/ServerDiscovery/NSNetService-RVFExtensions.h"

#include <memory>
#include <utility>

#include "Platform/Runtime/NSAutoreleasePool.h"
#include "Platform/Runtime/ScopeExit.h"
#include "RVFoundation/ServerDiscovery/RVFNetServiceResolver.h"

namespace rvf {

void RVF_resolveWithTimeout(const Ref<NSNetService>& service, double timeoutSeconds,
                            RVFNetServiceResolution usingCompletion) {
  if (!service) return;
  const auto resolver = std::make_shared<RVFNetServiceResolver>();
  service->setDelegate(resolver);
  resolver->setPrivateCompletion(
      [resolver, service, completion = std::move(usingCompletion),
       hasRun = std::make_shared<bool>(false)](const Ref<NSNetService>& resolved,
                                               const Ref<NSError>& error, bool wasStopped) {
        // The completion may itself stop the registration, which is told here as well.
        if (std::exchange(*hasRun, true)) return;
        resolver->setPrivateService(resolved);
        const ScopeExit done([&resolver, &resolved] {
          resolved->setDelegate({});
          autorelease(resolver);  // survives its own delegate callback
          resolver->setPrivateCompletion(nullptr);
          resolver->setPrivateService(nullptr);
        });
        completion(resolved, error, wasStopped);
      });
  service->resolveWithTimeout(timeoutSeconds);
}

}  // namespace rvf
