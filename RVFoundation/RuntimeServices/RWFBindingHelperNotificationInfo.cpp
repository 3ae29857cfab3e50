// SPDX-License-Identifier: Apache-2.0
#include "RVFoundation/RuntimeServices/RWFBindingHelperNotificationInfo.h"

#include <utility>

#include "Platform/Observation/KeyValueObserving.h"
#include "Platform/Runtime/ClassBuilder.h"
#include "Platform/Runtime/ClassRegistration.h"

namespace rvf {
namespace {

using Info = RWFBindingHelperNotificationInfo;

const ClassRegistration kRegistration(&Info::classObject);

}  // namespace

Class Info::classObject() {
  static const Class kClass =
      ClassBuilder<Info>("RWFBindingHelperNotificationInfo", NSObject::classObject())
          .property("observer", "T@,V_observer")
          .property("name", "T@\"NSString\",C,V_name")
          .property("object", "T@,V_object")
          .ivar<&Info::observer_>("_observer")
          .ivar<&Info::name_>("_name")
          .ivar<&Info::object_>("_object")
          .method<&Info::observer>("observer")
          .method<&Info::setObserver>("setObserver:")
          .method<&Info::name>("name")
          .method<&Info::setName>("setName:")
          .method<&Info::object>("object")
          .method<&Info::setObject>("setObject:")
          .registered();
  return kClass;
}

Class Info::isa() const {
  return classObject();
}

void Info::setObserver(const id& observer) {
  announceChange(*this, "observer", [&] { observer_ = observer; });
}

void Info::setName(std::optional<std::string> name) {
  announceChange(*this, "name", [&] { name_ = std::move(name); });
}

void Info::setObject(const id& object) {
  announceChange(*this, "object", [&] { object_ = object; });
}

bool Info::hasLostObject() const noexcept {
  const std::weak_ptr<NSObject> none;
  const bool wasGiven = object_.owner_before(none) || none.owner_before(object_);
  return wasGiven && object_.expired();
}

}  // namespace rvf
