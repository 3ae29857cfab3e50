// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <atomic>
#include <memory>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

#include "Platform/Export.h"
#include "Platform/Runtime/MethodTable.h"
#include "Platform/Runtime/Runtime.h"

namespace rvf {

/// What the runtime keeps of one protocol.
///
/// Thread: any, under the lock of the runtime's names. Lifetime: as long as the process.
class ProtocolRecord final {
 public:
  explicit ProtocolRecord(std::string name) : name_(std::move(name)) {}

  /// The name is fixed; what it extends may grow, under the lock.
  const std::string& name() const noexcept { return name_; }
  bool conformsTo(Protocol other) const;
  void extend(Protocol other) { extended_.push_back(other); }

 private:
  std::string name_;
  std::vector<Protocol> extended_;
};

/// A value that many threads read without a lock while one at a time replaces it. Replaced values
/// stay until the process ends, because a reader may be at them: made for what changes a few times.
///
/// Thread: read by any without a lock; replaced by one at a time. Lifetime: replaced values stay
/// until it goes itself.
template <class T>
class Published final {
 public:
  template <class... Parts>
  explicit Published(Parts&&... parts) {
    publish(std::forward<Parts>(parts)...);
  }

  /// The newest version. Stays valid when another one is published.
  const T& get() const noexcept { return *current_.load(std::memory_order_acquire); }
  /// Only one thread at a time.
  template <class... Parts>
  void publish(Parts&&... parts) {
    versions_.push_back(std::make_unique<const T>(std::forward<Parts>(parts)...));
    current_.store(versions_.back().get(), std::memory_order_release);
  }

 private:
  std::vector<std::unique_ptr<const T>> versions_;
  std::atomic<const T*> current_{nullptr};
};

/// What the runtime keeps of one class. Name, superclass, variables and protocols are fixed once
/// the class is registered; methods and properties may be added.
///
/// Thread: any; what changes is guarded or published without a lock. Lifetime: as long as the
/// process.
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

  /// The class as it was registered.
  const Description& described() const noexcept { return description_; }
  /// All properties of this very class.
  const std::vector<Property>& properties() const noexcept { return properties_.get(); }
  /// All methods of this very class, those added last first.
  std::vector<Method> methods() const;

  /// The method of this very class, or null.
  const Method* ownMethod(SEL selector) const noexcept { return methods_.find(selector); }
  /// The method that an instance runs, from this class or the nearest ancestor, or null.
  const Method* method(SEL selector) const noexcept;

  /// False if this very class has it already.
  bool addMethod(const Method& method);
  bool addProperty(const Property& property);
  void prependMethods(const std::vector<Method>& methods);

 private:
  const Description description_;
  mutable std::mutex mutex_;  // of changes
  MethodTable methods_;
  Published<std::vector<Property>> properties_;
};

/// Makes a class known under its name. Raises `NSInvalidArgumentException` if the name is taken.
RVF_EXPORT Class registerClass(ClassRecord::Description description);

}  // namespace rvf
