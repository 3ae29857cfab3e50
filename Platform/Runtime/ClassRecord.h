// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <atomic>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

#include "Platform/Runtime/MethodTable.h"
#include "Platform/Runtime/Runtime.h"

namespace rvf {

class RVF_EXPORT ProtocolRecord final {
 public:
  ProtocolRecord(std::string_view name, std::vector<Protocol> extended);

  const std::string& name() const { return name_; }
  bool conformsTo(Protocol other) const;

 private:
  std::string name_;
  std::vector<Protocol> extended_;
};

/// What the runtime keeps of one class. Everything but the methods is fixed once the class is
/// registered. Methods are read without a lock: a change publishes a new table, and the tables
/// before it stay until the process ends, because a sender may be reading them.
class RVF_EXPORT ClassRecord final {
 public:
  struct Description {
    std::string name;
    Class superclass = nullptr;
    std::vector<Property> properties;
    std::vector<Ivar> ivars;
    std::vector<Method> methods;
    std::vector<Protocol> protocols;
  };

  explicit ClassRecord(Description description);

  const Description& described() const { return description_; }

  /// The method of this very class, or null.
  const Method* ownMethod(SEL selector) const {
    return methods_.load(std::memory_order_acquire)->find(selector);
  }
  /// The method that an instance runs, from this class or the nearest ancestor, or null.
  const Method* method(SEL selector) const;
  std::vector<Method> methodList() const;

  bool addMethod(const Method& method);
  void prependMethods(const std::vector<Method>& methods);

 private:
  void publish(std::vector<Method> methods);

  const Description description_;
  mutable std::mutex mutex_;  // of changes
  std::vector<std::unique_ptr<const MethodTable>> tables_;
  std::atomic<const MethodTable*> methods_{nullptr};
};

/// Makes a class known under its name. Raises `NSInvalidArgumentException` if the name is taken.
RVF_EXPORT Class registerClass(ClassRecord::Description description);

}  // namespace rvf
