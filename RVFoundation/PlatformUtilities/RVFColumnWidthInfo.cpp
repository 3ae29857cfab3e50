// SPDX-License-Identifier: Apache-2.0
#include "RVFoundation/PlatformUtilities/RVFColumnWidthInfo.h"

#include "Platform/Observation/KeyValueObserving.h"
#include "Platform/Runtime/ClassBuilder.h"
#include "Platform/Runtime/ClassRegistration.h"

namespace rvf {
namespace {

const ClassRegistration kRegistration(&RVFColumnWidthInfo::classObject);

}  // namespace

Class RVFColumnWidthInfo::classObject() {
  using Info = RVFColumnWidthInfo;
  static const Class kClass = ClassBuilder<Info>("RVFColumnWidthInfo", NSObject::classObject())
                                  .property("defaultWidth", "Td,N,V_defaultWidth")
                                  .property("minimumWidth", "Td,N,V_minimumWidth")
                                  .property("autoresize", "Tc,N,V_autoresize")
                                  .property("listOrder", "Tq,N,V_listOrder")
                                  .ivar<&Info::defaultWidth_>("_defaultWidth")
                                  .ivar<&Info::minimumWidth_>("_minimumWidth")
                                  .ivar<&Info::autoresize_>("_autoresize")
                                  .ivar<&Info::listOrder_>("_listOrder")
                                  .method<&Info::defaultWidth>("defaultWidth")
                                  .method<&Info::setDefaultWidth>("setDefaultWidth:")
                                  .method<&Info::minimumWidth>("minimumWidth")
                                  .method<&Info::setMinimumWidth>("setMinimumWidth:")
                                  .method<&Info::autoresize>("autoresize")
                                  .method<&Info::setAutoresize>("setAutoresize:")
                                  .method<&Info::listOrder>("listOrder")
                                  .method<&Info::setListOrder>("setListOrder:")
                                  .registered();
  return kClass;
}

Class RVFColumnWidthInfo::isa() const {
  return classObject();
}

void RVFColumnWidthInfo::setDefaultWidth(double points) {
  announceChange(*this, "defaultWidth", [&] { defaultWidth_ = points; });
}

void RVFColumnWidthInfo::setMinimumWidth(double points) {
  announceChange(*this, "minimumWidth", [&] { minimumWidth_ = points; });
}

void RVFColumnWidthInfo::setAutoresize(bool autoresize) {
  announceChange(*this, "autoresize", [&] { autoresize_ = autoresize; });
}

void RVFColumnWidthInfo::setListOrder(long listOrder) {
  announceChange(*this, "listOrder", [&] { listOrder_ = listOrder; });
}

}  // namespace rvf
