// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <initializer_list>

#include "Platform/Export.h"
#include "Platform/Runtime/NSObject.h"
#include "Platform/Storage/NSKeyedArchiver.h"
#include "Platform/Values/NSSet.h"

namespace rvf {

/// Keeps objects that cannot be archived out of an archive: the delegate of an archiver that writes
/// their descriptions in their place, so that the rest of the graph is archived and a readable
/// trace of them stays.
///
///     const auto filter = RVFKeyedArchiverFilter::initWithClassesToFilter(
///         RVFKeyedArchiverFilter::setOfClasses({NSFileHandle::classObject()}));
///     archiver->setDelegate(filter);
///
/// Thread: one at a time. Lifetime: not owned by the archiver; keeps its set of classes.
class RVF_EXPORT RVFKeyedArchiverFilter final : public NSObject, public NSKeyedArchiverDelegate {
 public:
  /// A filter of the instances of these classes and of their subclasses. The set is kept, not
  /// copied; absent or empty, nothing is filtered.
  static Ref<RVFKeyedArchiverFilter> initWithClassesToFilter(Ref<NSSet> classes);

  /// Classes as a set of objects, one `ClassReceiver` each.
  static Ref<NSSet> setOfClasses(std::initializer_list<Class> classes);

  static Class classObject();
  Class isa() const override;

  /// The set that the filter was made with; what is no `ClassReceiver` in it does not count.
  const Ref<NSSet>& classesThatCantBeArchived() const noexcept {
    return classesThatCantBeArchived_;
  }

  /// `archiver:willEncodeObject:`: the object's description as a text if it is of one of the
  /// classes, else the object.
  id archiverWillEncodeObject(const Ref<NSKeyedArchiver>& archiver, const id& object) override;

 private:
  Ref<NSSet> classesThatCantBeArchived_;
};

}  // namespace rvf
