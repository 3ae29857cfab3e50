// SPDX-License-Identifier: Apache-2.0
#include "Platform/Observation/NSNotification.h"

#include <utility>

#include "Platform/Runtime/ClassBuilder.h"
#include "Platform/Runtime/ClassRegistration.h"

namespace rvf {
namespace {

const ClassRegistration kRegistration(&NSNotification::classObject);

}  // namespace

NSNotification::NSNotification(std::string_view name, id object, Ref<NSDictionary> userInfo)
    : name_(name), object_(std::move(object)), userInfo_(std::move(userInfo)) {}

Ref<NSNotification> NSNotification::notificationWithName(std::string_view name, id object,
                                                         Ref<NSDictionary> userInfo) {
  return std::make_shared<NSNotification>(name, std::move(object), std::move(userInfo));
}

Class NSNotification::classObject() {
  static const Class kClass =
      ClassBuilder<NSNotification>("NSNotification", NSObject::classObject())
          .property("name", "T@\"NSString\",R,C")
          .property("object", "T@,R,&")
          .property("userInfo", "T@\"NSDictionary\",R,C")
          .method<&NSNotification::name>("name")
          .method<&NSNotification::object>("object")
          .method<&NSNotification::userInfo>("userInfo")
          .registered();
  return kClass;
}

Class NSNotification::isa() const {
  return classObject();
}

}  // namespace rvf
