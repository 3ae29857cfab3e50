// SPDX-License-Identifier: Apache-2.0
#include "Platform/Observation/KeyValueBinding.h"

#include <memory>
#include <string>
#include <utility>

#include "Platform/Observation/KeyValueCoding.h"
#include "Platform/Observation/KeyValueMessages.h"
#include "Platform/Observation/KeyValueObserving.h"
#include "Platform/Observation/ObservedObject.h"
#include "Platform/Runtime/AssociatedObjects.h"
#include "Platform/Runtime/ClassBuilder.h"
#include "Platform/Runtime/Messaging.h"
#include "Platform/Runtime/NSException.h"
#include "Platform/Runtime/ScopeExit.h"
#include "Platform/Values/NSMutableDictionary.h"
#include "Platform/Values/NSNull.h"

namespace rvf {
namespace {

/// One binding of a receiver, which owns it: the observer at the other end. It observes what is
/// behind a proxy itself, so that it can leave it when the proxy or the proxy's target is gone.
class KeyValueBinding final : public NSObject {
 public:
  KeyValueBinding(const id& receiver, std::string_view name, const id& object,
                  std::string_view keyPath)
      : receiver_(receiver),
        name_(name),
        object_(object),
        objectAddress_(object.get()),
        keyPath_(keyPath) {}
  ~KeyValueBinding() override { stop(); }

  static Class classObject() {
    static const Class kClass =
        ClassBuilder<KeyValueBinding>("KeyValueBinding", NSObject::classObject())
            .method<&KeyValueBinding::observeValueForKeyPath>(
                "observeValueForKeyPath:ofObject:change:context:")
            .registered();
    return kClass;
  }
  Class isa() const override { return classObject(); }

  const std::string& name() const noexcept { return name_; }

  /// What accessors and observers do meanwhile may stop it.
  void start() {
    const id object = object_.lock();
    addObserverForKeyPath(*object, shared_from_this(), keyPath_, NSKeyValueObservingOptionNew);
    if (isStopped_) return leave();
    const id value = valueForKeyPath(*object, keyPath_);
    if (!isStopped_) set(value);
  }

  void stop() noexcept {
    if (!std::exchange(isStopped_, true)) leave();
  }

  void observeValueForKeyPath(std::string_view, const id&, const Ref<NSDictionary>& change, void*) {
    id value = change->objectForKey(NSKeyValueChangeNewKey);
    if (value == NSNull::null()) value = nullptr;
    // Two keys that are bound to each other come to rest.
    if (isSetting_ && objectsAreEqual(value, setting_)) return;
    set(value);
  }

 private:
  /// By address: who is bound to itself leaves itself when no reference to it can be had. Another
  /// object at this address does not know of this binding.
  void leave() noexcept {
    const auto observed = ObservedObject::at(objectAddress_);
    if (!observed) return;
    const auto left = observed->removeObservation(this, weak_from_this(), keyPath_, nullptr);
    if (left) left->cancel();
  }

  void set(const id& value) {
    const id receiver = receiver_.lock();
    if (!receiver) return;
    const auto outerSetting = std::exchange(setting_, value);
    const bool wasSetting = std::exchange(isSetting_, true);
    const ScopeExit restored([&] {
      setting_ = outerSetting;
      isSetting_ = wasSetting;
    });
    setValueForKey(*receiver, value, name_);
  }

  const std::weak_ptr<NSObject> receiver_;
  const std::string name_;
  const std::weak_ptr<NSObject> object_;
  const NSObject* const objectAddress_;
  const std::string keyPath_;
  bool isStopped_ = false;
  bool isSetting_ = false;
  id setting_;
};

/// The bindings of an object, by name, hang on it under the address of this.
constexpr char kBindingsKey = 0;

/// Absent if there are none.
Ref<NSMutableDictionary> bindingsOf(const id& receiver) {
  return std::static_pointer_cast<NSMutableDictionary>(
      objc_getAssociatedObject(receiver, &kBindingsKey));
}

Ref<NSMutableDictionary> bindingsMadeFor(const id& receiver) {
  Ref<NSMutableDictionary> bindings = bindingsOf(receiver);
  if (bindings) return bindings;
  bindings = NSMutableDictionary::dictionary();
  objc_setAssociatedObject(receiver, &kBindingsKey, bindings, OBJC_ASSOCIATION_RETAIN);
  return bindings;
}

Ref<KeyValueBinding> bindingNamed(const NSMutableDictionary& bindings, std::string_view name) {
  return std::static_pointer_cast<KeyValueBinding>(bindings.objectForKey(name));
}

void stopBinding(NSMutableDictionary& bindings, std::string_view name) {
  const auto binding = bindingNamed(bindings, name);
  if (!binding) return;
  bindings.removeObjectForKey(name);
  binding->stop();
}

/// A binding that cannot start gives its place back, unless the place was taken from it.
void takeBack(NSMutableDictionary& bindings, KeyValueBinding& binding,
              const Ref<KeyValueBinding>& former) {
  binding.stop();
  if (bindingNamed(bindings, binding.name()).get() != &binding) {
    if (former) former->stop();
  } else if (former) {
    bindings.setObject(former, binding.name());
  } else {
    bindings.removeObjectForKey(binding.name());
  }
}

void bindMethod(NSObject& self, SEL, std::string_view name, id object, std::string_view keyPath,
                Ref<NSDictionary>) {
  if (!object) NSException::raise(NSInvalidArgumentException, "binding to an absent object");
  const id receiver = self.shared_from_this();
  if (id behind = receiverBehind(*object)) object = std::move(behind);
  const auto binding = std::make_shared<KeyValueBinding>(receiver, name, object, keyPath);
  const auto bindings = bindingsMadeFor(receiver);
  const auto former = bindingNamed(*bindings, name);
  bindings->setObject(binding, name);  // so that it can be unbound while it starts
  try {
    binding->start();
  } catch (...) {
    takeBack(*bindings, *binding, former);
    throw;
  }
  if (former) former->stop();
}

void unbindMethod(NSObject& self, SEL, std::string_view name) {
  const auto bindings = bindingsOf(self.weak_from_this().lock());
  if (bindings) stopBinding(*bindings, name);
}

SEL bindSelector() {
  static const SEL kSelector("bind:toObject:withKeyPath:options:");
  return kSelector;
}

SEL unbindSelector() {
  static const SEL kSelector("unbind:");
  return kSelector;
}

}  // namespace

std::vector<Method> keyValueBindingMethods() {
  return {{bindSelector(), &bindMethod}, {unbindSelector(), &unbindMethod}};
}

void bindToObject(NSObject& receiver, std::string_view name, const id& object,
                  std::string_view keyPath, const Ref<NSDictionary>& options) {
  send(receiver, bindSelector(), name, object, keyPath, options);
}

void unbind(NSObject& receiver, std::string_view name) {
  send(receiver, unbindSelector(), name);
}

}  // namespace rvf
