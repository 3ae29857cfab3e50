// SPDX-License-Identifier: Apache-2.0
#include "RVFoundation/RuntimeServices/RVFKeyedArchiverFilter.h"

#include <algorithm>
#include <utility>
#include <vector>

#include "Platform/Runtime/ClassBuilder.h"
#include "Platform/Runtime/ClassReceiver.h"
#include "Platform/Runtime/ClassRegistration.h"
#include "Platform/Values/NSString.h"

namespace rvf {
namespace {

const ClassRegistration kRegistration(&RVFKeyedArchiverFilter::classObject);

bool isOfClass(const NSObject& object, const id& aClass) {
  const auto* receiver = dynamic_cast<const ClassReceiver*>(aClass.get());
  return receiver && object.isKindOfClass(receiver->receivingClass());
}

}  // namespace

Ref<RVFKeyedArchiverFilter> RVFKeyedArchiverFilter::initWithClassesToFilter(Ref<NSSet> classes) {
  auto filter = std::make_shared<RVFKeyedArchiverFilter>();
  filter->classesThatCantBeArchived_ = std::move(classes);
  return filter;
}

Ref<NSSet> RVFKeyedArchiverFilter::setOfClasses(std::initializer_list<Class> classes) {
  std::vector<id> receivers;
  receivers.reserve(classes.size());
  for (const Class each : classes)
    receivers.push_back(std::make_shared<ClassReceiver>(each));
  return NSSet::setWithObjects(receivers);
}

Class RVFKeyedArchiverFilter::classObject() {
  using Self = RVFKeyedArchiverFilter;
  static const Class kClass =
      ClassBuilder<Self>("RVFKeyedArchiverFilter", NSObject::classObject())
          .property("classesThatCantBeArchived", "T@\"NSSet\",R,N,V_classesThatCantBeArchived")
          .ivar<&Self::classesThatCantBeArchived_>("_classesThatCantBeArchived")
          .method<&Self::classesThatCantBeArchived>("classesThatCantBeArchived")
          .method<&Self::archiverWillEncodeObject>("archiver:willEncodeObject:")
          .conformsTo("NSKeyedArchiverDelegate")
          .registered();
  return kClass;
}

Class RVFKeyedArchiverFilter::isa() const {
  return classObject();
}

id RVFKeyedArchiverFilter::archiverWillEncodeObject(const Ref<NSKeyedArchiver>&, const id& object) {
  const Ref<NSSet> classes = classesThatCantBeArchived_;
  if (!classes || !object) return object;
  const bool isFiltered =
      std::ranges::any_of(*classes, [&](const id& aClass) { return isOfClass(*object, aClass); });
  return isFiltered ? box(object->description()) : object;
}

}  // namespace rvf
