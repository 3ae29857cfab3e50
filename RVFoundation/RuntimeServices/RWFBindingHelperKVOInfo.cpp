// SPDX-License-Identifier: Apache-2.0
#include "RVFoundation/RuntimeServices/RWFBindingHelperKVOInfo.h"

#include "Platform/Observation/KeyValueObserving.h"
#include "Platform/Runtime/ClassBuilder.h"
#include "Platform/Runtime/ClassRegistration.h"

namespace rvf {
namespace {

const ClassRegistration kRegistration(&RWFBindingHelperKVOInfo::classObject);

}  // namespace

Class RWFBindingHelperKVOInfo::classObject() {
  static const Class kClass =
      ClassBuilder<RWFBindingHelperKVOInfo>("RWFBindingHelperKVOInfo", NSObject::classObject())
          .property("observer", "T@,V_observer")
          .property("keyPath", "T@\"NSString\",C,V_keyPath")
          .ivar<&RWFBindingHelperKVOInfo::observer_>("_observer")
          .ivar<&RWFBindingHelperKVOInfo::keyPath_>("_keyPath")
          .method<&RWFBindingHelperKVOInfo::observer>("observer")
          .method<&RWFBindingHelperKVOInfo::setObserver>("setObserver:")
          .method<&RWFBindingHelperKVOInfo::keyPath>("keyPath")
          .method<&RWFBindingHelperKVOInfo::setKeyPath>("setKeyPath:")
          .registered();
  return kClass;
}

Class RWFBindingHelperKVOInfo::isa() const {
  return classObject();
}

void RWFBindingHelperKVOInfo::setObserver(const id& observer) {
  announceChange(*this, "observer", [&] { observer_ = observer; });
}

void RWFBindingHelperKVOInfo::setKeyPath(std::string_view keyPath) {
  announceChange(*this, "keyPath", [&] { keyPath_ = keyPath; });
}

}  // namespace rvf
