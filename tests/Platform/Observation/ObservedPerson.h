// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <functional>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "Platform/Observation/KeyValueObserving.h"
#include "Platform/Runtime/NSProxy.h"
#include "Platform/Values/NSDictionary.h"

namespace rvf {

/// What the tests observe: setters that announce, a key that depends on others, one that depends
/// on a path.
class ObservedPerson final : public NSObject {
 public:
  static Class classObject();
  Class isa() const override { return classObject(); }

  const std::optional<std::string>& name() const { return name_; }
  void setName(std::optional<std::string> name) {
    announceChange(*this, "name", [&] { name_ = std::move(name); });
  }
  int visits() const { return visits_; }
  void setVisits(int visits) {
    announceChange(*this, "visits", [&] { visits_ = visits; });
  }
  /// Its setter announces nothing.
  int quiet() const { return quiet_; }
  void setQuiet(int quiet) { quiet_ = quiet; }

  /// Runs an action first, so that reading may do what accessors can do.
  const Ref<ObservedPerson>& partner() const {
    if (const auto now = onReadingThePartner) now();
    return partner_;
  }
  void setPartner(Ref<ObservedPerson> partner) {
    announceChange(*this, "partner", [&] { partner_ = std::move(partner); });
  }
  /// Depends on "name" and "visits".
  std::string label() const { return name_.value_or("") + " " + std::to_string(visits_); }
  /// Depends on "label", and so on what that depends on.
  std::string badge() const { return "<" + label() + ">"; }
  /// Depends on "partner.name".
  std::string pair() const {
    return name_.value_or("") + "+" + (partner_ ? partner_->name_.value_or("") : "");
  }
  /// Depends on "partner.oracle", and so on without end if persons are partners of each other.
  std::string oracle() const { return partner_ ? partner_->name_.value_or("") : ""; }
  /// The partner under another name, which depends on "partner".
  const Ref<ObservedPerson>& companion() const { return partner_; }

  std::function<void()> onReadingThePartner;

  static std::set<std::string> keyPathsForValuesAffectingLabel() { return {"name", "visits"}; }
  static std::set<std::string> keyPathsForValuesAffectingBadge() { return {"label"}; }
  static std::set<std::string> keyPathsForValuesAffectingPair() { return {"name", "partner.name"}; }
  static std::set<std::string> keyPathsForValuesAffectingOracle() { return {"partner.oracle"}; }
  static std::set<std::string> keyPathsForValuesAffectingCompanion() { return {"partner"}; }

 private:
  std::optional<std::string> name_;
  int visits_ = 0;
  int quiet_ = 0;
  Ref<ObservedPerson> partner_;
};

Ref<ObservedPerson> personNamed(std::string_view name);

/// Passes every message on to a target that it does not keep alive.
class PassingProxy final : public NSProxy {
 public:
  explicit PassingProxy(const id& target) : target_(target) {}

  Ref<NSMethodSignature> methodSignatureForSelector(SEL selector) const override;
  void forwardInvocation(NSInvocation& invocation) override;

 private:
  const std::weak_ptr<NSObject> target_;
};

/// Lets a person go without the warning that it is still observed.
void dropQuietly(Ref<ObservedPerson>& person);

/// Keeps what it is told, as "path kind old>new", and runs an action at each.
class ChangeRecorder final : public NSObject {
 public:
  static Class classObject();
  Class isa() const override { return classObject(); }

  void observeValueForKeyPath(std::string_view keyPath, const id& object,
                              const Ref<NSDictionary>& change, void* context);

  std::vector<std::string> told;
  std::vector<const NSObject*> objects;
  std::vector<void*> contexts;
  Ref<NSDictionary> lastChange;
  std::function<void()> action;
};

}  // namespace rvf
