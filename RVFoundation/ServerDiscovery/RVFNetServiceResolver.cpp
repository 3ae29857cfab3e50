// SPDX-License-Identifier: Apache-2.0
#include "RVFoundation/ServerDiscovery/RVFNetServiceResolver.h"

#include <utility>

#include "Platform/Network/NSNetServicesError.h"
#include "Platform/Observation/KeyValueObserving.h"
#include "Platform/Runtime/ClassBuilder.h"
#include "Platform/Runtime/ClassRegistration.h"
#include "Platform/Runtime/ScopeExit.h"
#include "Platform/Values/NSNumber.h"

namespace rvf {
namespace {

const ClassRegistration kRegistration(&RVFNetServiceResolver::classObject);

Ref<NSError> errorFromFailure(const Ref<NSDictionary>& failure) {
  const id domain = failure ? failure->objectForKey(NSNetServicesErrorDomain) : nullptr;
  const auto code = std::dynamic_pointer_cast<NSNumber>(
      failure ? failure->objectForKey(NSNetServicesErrorCode) : nullptr);
  return NSError::errorWithDomain(domain ? domain->description() : std::string(),
                                  code ? code->integerValue() : 0, failure);
}

}  // namespace

RVFNetServiceResolver::~RVFNetServiceResolver() {
  if (privateService_) privateService_->setDelegate({});
}

Class RVFNetServiceResolver::classObject() {
  static const Class kClass =
      ClassBuilder<RVFNetServiceResolver>("RVFNetServiceResolver", NSObject::classObject())
          .property("privateCompletion", "T@?,C,N,V_privateCompletion")
          .property("privateService", "T@\"NSNetService\",&,N,V_privateService")
          .ivar<&RVFNetServiceResolver::privateCompletion_>("_privateCompletion")
          .ivar<&RVFNetServiceResolver::privateService_>("_privateService")
          .method<&RVFNetServiceResolver::privateCompletion>("privateCompletion")
          .method<&RVFNetServiceResolver::setPrivateCompletion>("setPrivateCompletion:")
          .method<&RVFNetServiceResolver::privateService>("privateService")
          .method<&RVFNetServiceResolver::setPrivateService>("setPrivateService:")
          .method<&RVFNetServiceResolver::netServiceDidResolveAddress>(
              "netServiceDidResolveAddress:")
          .method<&RVFNetServiceResolver::netServiceDidNotResolve>("netService:didNotResolve:")
          .method<&RVFNetServiceResolver::netServiceDidStop>("netServiceDidStop:")
          .registered();
  return kClass;
}

Class RVFNetServiceResolver::isa() const {
  return classObject();
}

void RVFNetServiceResolver::setPrivateCompletion(RVFNetServiceResolution completion) {
  announceChange(*this, "privateCompletion", [&] { privateCompletion_ = std::move(completion); });
}

void RVFNetServiceResolver::setPrivateService(Ref<NSNetService> service) {
  announceChange(*this, "privateService", [&] { privateService_ = std::move(service); });
}

void RVFNetServiceResolver::netServiceDidResolveAddress(const Ref<NSNetService>& service) {
  if (service->addresses().empty()) return;
  // Not reported back: the completion took the delegate away.
  const ScopeExit stopped([held = service] { held->stop(); });
  complete(service, nullptr, false);
}

void RVFNetServiceResolver::netServiceDidNotResolve(const Ref<NSNetService>& service,
                                                    const Ref<NSDictionary>& errorDict) {
  complete(service, errorFromFailure(errorDict), false);
}

void RVFNetServiceResolver::netServiceDidStop(const Ref<NSNetService>& service) {
  complete(service, nullptr, true);
}

void RVFNetServiceResolver::complete(const Ref<NSNetService>& service, const Ref<NSError>& error,
                                     bool wasStopped) {
  const RVFNetServiceResolution completion = privateCompletion_;
  completion(service, error, wasStopped);
}

}  // namespace rvf
