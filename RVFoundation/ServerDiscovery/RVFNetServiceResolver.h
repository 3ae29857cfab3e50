// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Platform/Network/NSNetService.h"
#include "Platform/Runtime/NSObject.h"
#include "RVFoundation/ServerDiscovery/NSNetService-RVFExtensions.h"

namespace rvf {

/// The delegate of one resolution. The completion that it holds owns it in turn, which keeps it
/// alive exactly until the completion has run: the registration does not own its delegate.
class RVFNetServiceResolver final : public NSObject, public NSNetServiceDelegate {
 public:
  ~RVFNetServiceResolver() override;

  static Class classObject();
  Class isa() const override;

  const RVFNetServiceResolution& privateCompletion() const noexcept { return privateCompletion_; }
  void setPrivateCompletion(RVFNetServiceResolution completion);
  /// Set only while the completion runs.
  const Ref<NSNetService>& privateService() const noexcept { return privateService_; }
  void setPrivateService(Ref<NSNetService> service);

  void netServiceDidResolveAddress(const Ref<NSNetService>& service) override;
  void netServiceDidNotResolve(const Ref<NSNetService>& service,
                               const Ref<NSDictionary>& errorDict) override;
  void netServiceDidStop(const Ref<NSNetService>& service) override;

 private:
  void complete(const Ref<NSNetService>& service, const Ref<NSError>& error, bool wasStopped);

  RVFNetServiceResolution privateCompletion_;
  Ref<NSNetService> privateService_;
};

}  // namespace rvf
