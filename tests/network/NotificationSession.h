// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <functional>
#include <map>
#include <nlohmann/json.hpp>
#include <string>

#include "Platform/Runtime/Ref.h"

namespace rvf::network {

class NotificationListener;

/// What a probe posts and observes, through the process's notification center.
class NotificationSession final {
 public:
  using Json = nlohmann::json;
  using Writer = std::function<void(Json)>;

  explicit NotificationSession(Writer write);
  ~NotificationSession();

  /// Writes "delivered" with the name for each notification.
  void observe(const std::string& name);
  void endObserving(const std::string& name);
  /// Posts so often in a row, and writes "posted". `again` posts once more in the very turn in
  /// which the first publication has ended.
  void post(const std::string& name, int count, bool again);
  /// Writes "descriptors" with the count of those that are open.
  void countDescriptors();

 private:
  Writer write_;
  std::map<std::string, Ref<NotificationListener>> listeners_;
};

}  // namespace rvf::network
