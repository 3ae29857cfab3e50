// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "Platform/Network/NSNetService.h"
#include "Platform/Network/NSNetServicesError.h"

namespace rvf {

/// Writes down what a service tells its delegate.
class NetServiceObserver final : public NSNetServiceDelegate {
 public:
  void netServiceWillResolve(const Ref<NSNetService>&) override { note("will resolve"); }
  void netServiceDidResolveAddress(const Ref<NSNetService>& service) override {
    note("resolved " + std::to_string(service->addresses().size()));
  }
  void netServiceDidNotResolve(const Ref<NSNetService>&, const Ref<NSDictionary>& error) override {
    note("not resolved " + code(error));
  }
  void netServiceDidStop(const Ref<NSNetService>&) override { note("stop"); }
  void netServiceDidUpdateTXTRecordData(const Ref<NSNetService>&,
                                        const Ref<NSData>& data) override {
    note("txt " + std::to_string(data->length()));
  }
  void netServiceWillPublish(const Ref<NSNetService>&) override { note("will publish"); }
  void netServiceDidPublish(const Ref<NSNetService>& service) override {
    note("published " + service->name());
  }
  void netServiceDidNotPublish(const Ref<NSNetService>&, const Ref<NSDictionary>& error) override {
    note("not published " + code(error));
  }

  std::vector<std::string> log;
  /// Called after each entry.
  std::function<void()> onNote = [] {};

 private:
  static std::string code(const Ref<NSDictionary>& error) {
    return error->objectForKey(NSNetServicesErrorCode)->description();
  }
  void note(std::string what) {
    log.push_back(std::move(what));
    const auto act = onNote;
    act();
  }
};

}  // namespace rvf
