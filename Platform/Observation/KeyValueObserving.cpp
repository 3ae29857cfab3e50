// SPDX-License-Identifier: Apache-2.0
#include "Platform/Observation/KeyValueObserving.h"

#include <memory>
#include <vector>

#include "Platform/Observation/CodingAnnouncement.h"
#include "Platform/Observation/KeyPathObservation.h"
#include "Platform/Observation/KeyValueCoding.h"
#include "Platform/Observation/KeyValueMessages.h"
#include "Platform/Observation/ObjectText.h"
#include "Platform/Observation/ObservedObject.h"
#include "Platform/Runtime/Messaging.h"
#include "Platform/Runtime/NSException.h"
#include "Platform/Runtime/Pointers.h"
#include "Platform/Values/NSDictionary.h"
#include "Platform/Values/NSNull.h"
#include "Platform/Values/NSNumber.h"
#include "Platform/Values/NSString.h"

namespace rvf {
namespace {

struct ObservingSelectors {
  SEL add{"addObserver:forKeyPath:options:context:"};
  SEL remove{"removeObserver:forKeyPath:"};
  SEL removeWithContext{"removeObserver:forKeyPath:context:"};
  SEL willChange{"willChangeValueForKey:"};
  SEL didChange{"didChangeValueForKey:"};
  SEL receiverBehind{"_receiverBehind"};
  SEL observe{"observeValueForKeyPath:ofObject:change:context:"};
};

const ObservingSelectors& selectors() {
  static const ObservingSelectors kSelectors;
  return kSelectors;
}

// Changes as dictionaries

struct ChangeTexts {
  id kindKey = box(NSKeyValueChangeKindKey);
  id newKey = box(NSKeyValueChangeNewKey);
  id oldKey = box(NSKeyValueChangeOldKey);
  id priorKey = box(NSKeyValueChangeNotificationIsPriorKey);
  id setting = box(NSKeyValueChangeSetting);
  id yes = box(true);
};

const ChangeTexts& texts() {
  static const ChangeTexts kTexts;
  return kTexts;
}

enum class Delivery { kInitial, kPrior, kChange };

/// The change as a registration with these options asks for it.
Ref<NSDictionary> changeDictionary(Delivery delivery, NSKeyValueObservingOptions options,
                                   const id& oldValue, const id& newValue) {
  NSDictionary::Entries entries{{texts().kindKey, texts().setting}};
  const auto orNull = [](const id& value) { return value ? value : id(NSNull::null()); };
  if ((options & NSKeyValueObservingOptionOld) && delivery != Delivery::kInitial) {
    entries.emplace(texts().oldKey, orNull(oldValue));
  }
  if ((options & NSKeyValueObservingOptionNew) && delivery != Delivery::kPrior) {
    entries.emplace(texts().newKey, orNull(newValue));
  }
  if (delivery == Delivery::kPrior) entries.emplace(texts().priorKey, texts().yes);
  return std::make_shared<NSDictionary>(std::move(entries));
}

/// The value at a path. One that its class declares but coding cannot read has no object form: the
/// change is told all the same.
id observedValue(NSObject& target, const std::string& keyPath) {
  const id alive = target.weak_from_this().lock();
  try {
    return valueForKeyPath(target, keyPath);
  } catch (const NSException& exception) {
    const bool isDeclared = class_getProperty(target.isa(), keyPath) != nullptr;
    if (exception.name() != NSUndefinedKeyException || !isDeclared) throw;
    return nullptr;
  }
}

/// Reads the values of observed paths; that of neighbours with the same path once. Reading calls
/// accessors, which may end any registration: only for those that have not ended.
class ValueReader final {
 public:
  const id& valueFor(const KeyPathObservation& observation) {
    if (last_ && &last_->target() == &observation.target() &&
        last_->keyPath() == observation.keyPath()) {
      return value_;
    }
    value_ = observedValue(observation.target(), observation.keyPath());
    last_ = &observation;
    return value_;
  }

 private:
  const KeyPathObservation* last_ = nullptr;
  id value_;
};

/// Makes the dictionaries of a delivery; neighbours with the same one share it.
class ChangeMaker final {
 public:
  explicit ChangeMaker(Delivery delivery) : delivery_(delivery) {}

  const Ref<NSDictionary>& changeFor(const ObservedChange& change, const id& newValue) {
    const NSKeyValueObservingOptions options = change.observation->options();
    if (change_ && options == options_ && oldValue_ == change.oldValue && newValue_ == newValue) {
      return change_;
    }
    options_ = options;
    oldValue_ = change.oldValue;
    newValue_ = newValue;
    change_ = changeDictionary(delivery_, options, oldValue_, newValue_);
    return change_;
  }

 private:
  const Delivery delivery_;
  NSKeyValueObservingOptions options_ = NSKeyValueObservingOptionNone;
  id oldValue_;
  id newValue_;
  Ref<NSDictionary> change_;
};

// Announcements

/// A registration may be reached through several links; it is told once.
bool isFirstOfItsRegistration(const std::vector<ObservedChange>& changes, std::size_t index) {
  return index == 0 || changes[index - 1].observation != changes[index].observation;
}

void readOldValues(std::vector<ObservedChange>& changes) {
  ValueReader reader;
  for (ObservedChange& change : changes) {
    if (change.observation->isCancelled()) continue;
    if (!change.observation->has(NSKeyValueObservingOptionOld)) continue;
    change.oldValue = reader.valueFor(*change.observation);
  }
}

void tellPriorly(const std::vector<ObservedChange>& changes) {
  ChangeMaker maker(Delivery::kPrior);
  for (std::size_t i = 0; i < changes.size(); ++i) {
    const ObservedChange& change = changes[i];
    if (!change.observation->has(NSKeyValueObservingOptionPrior)) continue;
    if (!isFirstOfItsRegistration(changes, i)) continue;
    change.observation->tell(maker.changeFor(change, nullptr));
  }
}

/// The dictionaries of all registrations that are still there, made before the first is told: what
/// one observer does must not change what the others hear of this change.
std::vector<Ref<NSDictionary>> makeChanges(const std::vector<ObservedChange>& changes) {
  ValueReader reader;
  ChangeMaker maker(Delivery::kChange);
  std::vector<Ref<NSDictionary>> made(changes.size());
  for (std::size_t i = 0; i < changes.size(); ++i) {
    const KeyPathObservation& observation = *changes[i].observation;
    if (observation.isCancelled() || !isFirstOfItsRegistration(changes, i)) continue;
    const bool wantsNew = observation.has(NSKeyValueObservingOptionNew);
    made[i] = maker.changeFor(changes[i], wantsNew ? reader.valueFor(observation) : nullptr);
  }
  return made;
}

void willChangeMethod(NSObject& self, SEL, std::string_view key) {
  if (!KeyValueHooks::isObserved(self) || CodingAnnouncement::covers(self, key)) return;
  const auto observed = ObservedObject::of(self);
  if (!observed) return;
  std::vector<ObservedChange> changes = observed->changesOfKey(key);
  if (changes.empty()) return;
  const id alive = self.weak_from_this().lock();
  readOldValues(changes);
  observed->beginChange(key, changes);
  tellPriorly(changes);
}

void didChangeMethod(NSObject& self, SEL, std::string_view key) {
  if (!KeyValueHooks::isObserved(self) || CodingAnnouncement::covers(self, key)) return;
  const auto observed = ObservedObject::of(self);
  if (!observed) return;
  const id alive = self.weak_from_this().lock();
  const std::vector<ObservedChange> changes = observed->endChange(key);
  for (const ObservedChange& change : changes) {
    if (!change.observation->isCancelled()) change.link->follow();
  }
  const std::vector<Ref<NSDictionary>> made = makeChanges(changes);
  for (std::size_t i = 0; i < changes.size(); ++i) {
    if (made[i]) changes[i].observation->tell(made[i]);
  }
}

// Registrations

void addObserverMethod(NSObject& self, SEL, id observer, std::string_view keyPath,
                       NSKeyValueObservingOptions options, void* context) {
  if (!observer) NSException::raise(NSInvalidArgumentException, "absent observer");
  const auto observation =
      std::make_shared<KeyPathObservation>(self, observer, keyPath, options, context);
  Ref<NSDictionary> initial;
  try {
    observation->begin();
    if (observation->has(NSKeyValueObservingOptionInitial)) {
      const bool wantsNew = observation->has(NSKeyValueObservingOptionNew);
      initial = changeDictionary(Delivery::kInitial, options, nullptr,
                                 wantsNew ? observedValue(self, observation->keyPath()) : nullptr);
    }
  } catch (...) {
    observation->cancel();
    throw;
  }
  ObservedObject::addObservation(observation);
  if (initial) observation->tell(initial);
}

[[noreturn]] void raiseNotRegistered(const NSObject& target, const NSObject* observer,
                                     std::string_view keyPath) {
  NSException::raise(NSRangeException, "Cannot remove an observer " + objectText(observer) +
                                           " for the key path \"" + std::string(keyPath) +
                                           "\" from " + objectText(&target) +
                                           " because it is not registered as an observer.");
}

void removeObserver(NSObject& target, const NSObject* observer, std::string_view keyPath,
                    void* const* context) {
  const auto observed = ObservedObject::of(target);
  std::shared_ptr<KeyPathObservation> removed;
  if (observed && observer) {
    removed = observed->removeObservation(observer, observer->weak_from_this(), keyPath, context);
  } else if (observed) {
    removed = observed->removeObservationOfTheDead(keyPath, context);
  }
  if (!removed) raiseNotRegistered(target, observer, keyPath);
  removed->cancel();
}

void removeObserverMethod(NSObject& self, SEL, id observer, std::string_view keyPath) {
  removeObserver(self, observer.get(), keyPath, nullptr);
}

void removeObserverWithContextMethod(NSObject& self, SEL, id observer, std::string_view keyPath,
                                     void* context) {
  removeObserver(self, observer.get(), keyPath, &context);
}

/// Proxies pass it on like any other message.
id receiverBehindMethod(NSObject& self, SEL) {
  return self.weak_from_this().lock();
}

/// Reached if who observes does not answer the message.
void observeValueMethod(NSObject& self, SEL selector, std::string_view keyPath, id object,
                        Ref<NSDictionary> change, void* context) {
  NSException::raise(NSInternalInconsistencyException,
                     objectText(&self) + ": An -" + NSStringFromSelector(selector) +
                         " message was received but not handled.\nKey path: " +
                         std::string(keyPath) + "\nObserved object: " + objectText(object.get()) +
                         "\nChange: " + (change ? change->description() : "(null)") +
                         "\nContext: " + pointerText(context));
}

}  // namespace

std::vector<Method> keyValueObservingMethods() {
  const ObservingSelectors& s = selectors();
  return {{s.add, &addObserverMethod},
          {s.remove, &removeObserverMethod},
          {s.removeWithContext, &removeObserverWithContextMethod},
          {s.willChange, &willChangeMethod},
          {s.didChange, &didChangeMethod},
          {s.receiverBehind, &receiverBehindMethod},
          {s.observe, &observeValueMethod}};
}

id receiverBehind(NSObject& object) {
  return send<id>(object, selectors().receiverBehind);
}

void addObserverForKeyPath(NSObject& target, const id& observer, std::string_view keyPath,
                           NSKeyValueObservingOptions options, void* context) {
  send(target, selectors().add, observer, keyPath, options, context);
}

void removeObserverForKeyPath(NSObject& target, const id& observer, std::string_view keyPath) {
  send(target, selectors().remove, observer, keyPath);
}

void removeObserverForKeyPath(NSObject& target, const id& observer, std::string_view keyPath,
                              void* context) {
  send(target, selectors().removeWithContext, observer, keyPath, context);
}

void removeObserverForKeyPath(NSObject& target, const NSObject& observer,
                              std::string_view keyPath) {
  const id receiver = receiverBehind(target);
  removeObserver(receiver ? *receiver : target, &observer, keyPath, nullptr);
}

void willChangeValueForKey(NSObject& object, std::string_view key) {
  send(object, selectors().willChange, key);
}

void didChangeValueForKey(NSObject& object, std::string_view key) {
  send(object, selectors().didChange, key);
}

}  // namespace rvf
