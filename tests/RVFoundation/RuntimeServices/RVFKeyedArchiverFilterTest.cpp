// SPDX-License-Identifier: Apache-2.0
#include "RVFoundation/RuntimeServices/RVFKeyedArchiverFilter.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "Platform/Runtime/ClassBuilder.h"
#include "Platform/Runtime/ClassReceiver.h"
#include "Platform/Runtime/Messaging.h"
#include "Platform/Runtime/NSException.h"
#include "Platform/Runtime/Runtime.h"
#include "Platform/Storage/NSKeyedUnarchiver.h"
#include "Platform/Values/NSArray.h"
#include "Platform/Values/NSDictionary.h"
#include "Platform/Values/NSNumber.h"
#include "Platform/Values/NSString.h"

namespace rvf {
namespace {

/// Stands for whatever cannot be archived.
class Handle : public NSObject {
 public:
  static Class classObject() {
    static const Class kClass =
        ClassBuilder<Handle>("HandleOfFilterTest", NSObject::classObject()).registered();
    return kClass;
  }
  Class isa() const override { return classObject(); }
  std::string description() const override { return "a handle"; }
};

class SpecialHandle final : public Handle {
 public:
  static Class classObject() {
    static const Class kClass =
        ClassBuilder<SpecialHandle>("SpecialHandleOfFilterTest", Handle::classObject())
            .registered();
    return kClass;
  }
  Class isa() const override { return classObject(); }
  std::string description() const override { return "a special handle"; }
};

using Filter = RVFKeyedArchiverFilter;

Ref<Filter> filterOfHandles() {
  return Filter::initWithClassesToFilter(Filter::setOfClasses({Handle::classObject()}));
}

id archivedAndRead(const Ref<Filter>& filter, const id& root) {
  const auto archiver = std::make_shared<NSKeyedArchiver>();
  archiver->setDelegate(filter);
  archiver->encodeObject(root, "root");
  return NSKeyedUnarchiver::unarchiveTopLevelObjectWithData(archiver->encodedData());
}

TEST(RVFKeyedArchiverFilter, WritesTheDescriptionInPlaceOfTheObject) {
  const id root = NSDictionary::dictionaryWithEntries(
      {{"handle", std::make_shared<Handle>()}, {"number", box(5)}, {"text", box("kept")}});
  EXPECT_EQ(archivedAndRead(filterOfHandles(), root)->description(),
            "{handle = a handle; number = 5; text = kept;}");
}

TEST(RVFKeyedArchiverFilter, WithoutItSuchAGraphCannotBeArchived) {
  const id root = NSArray::arrayWithObjects({std::make_shared<Handle>()});
  EXPECT_THROW(archivedAndRead(nullptr, root), NSException);
}

TEST(RVFKeyedArchiverFilter, ReplacesTheRootTheKeysAndEveryReference) {
  const id handle = std::make_shared<Handle>();
  EXPECT_EQ(unboxText(archivedAndRead(filterOfHandles(), handle)), "a handle");
  const id keyed = std::make_shared<NSDictionary>(NSDictionary::Entries{{handle, box(1)}});
  EXPECT_EQ(archivedAndRead(filterOfHandles(), keyed)->description(), "{a handle = 1;}");
  const auto twice = std::static_pointer_cast<NSArray>(
      archivedAndRead(filterOfHandles(), NSArray::arrayWithObjects({handle, handle})));
  EXPECT_EQ(twice->description(), "(a handle, a handle)");
  EXPECT_EQ(twice->objectAtIndex(0), twice->objectAtIndex(1));
}

TEST(RVFKeyedArchiverFilter, ReplacesInstancesOfSubclasses) {
  EXPECT_EQ(unboxText(archivedAndRead(filterOfHandles(), std::make_shared<SpecialHandle>())),
            "a special handle");
  const auto special =
      Filter::initWithClassesToFilter(Filter::setOfClasses({SpecialHandle::classObject()}));
  const id handle = std::make_shared<Handle>();
  EXPECT_EQ(special->archiverWillEncodeObject(nullptr, handle), handle);
}

TEST(RVFKeyedArchiverFilter, AnEmptySetOrNoneLeavesEveryObjectAsItIs) {
  for (const auto& classes : {Ref<NSSet>(), Filter::setOfClasses({})}) {
    const auto filter = Filter::initWithClassesToFilter(classes);
    for (const id& object : std::vector<id>{std::make_shared<Handle>(), box("a"), box(1)})
      EXPECT_EQ(filter->archiverWillEncodeObject(nullptr, object), object);
    EXPECT_EQ(filter->classesThatCantBeArchived(), classes);
  }
}

TEST(RVFKeyedArchiverFilter, OneOfSeveralClassesIsEnough) {
  const auto filter = Filter::initWithClassesToFilter(
      Filter::setOfClasses({NSDictionary::classObject(), Handle::classObject()}));
  const id handle = std::make_shared<Handle>();
  EXPECT_EQ(unboxText(filter->archiverWillEncodeObject(nullptr, handle)), "a handle");
  EXPECT_EQ(unboxText(filter->archiverWillEncodeObject(nullptr, NSDictionary::dictionary())), "{}");
  const id number = box(1);
  EXPECT_EQ(filter->archiverWillEncodeObject(nullptr, number), number);
}

TEST(RVFKeyedArchiverFilter, TheTextItselfIsNotFilteredAgain) {
  const auto filter = Filter::initWithClassesToFilter(
      Filter::setOfClasses({Handle::classObject(), NSString::classObject()}));
  EXPECT_EQ(unboxText(archivedAndRead(filter, std::make_shared<Handle>())), "a handle");
}

TEST(RVFKeyedArchiverFilter, KeepsTheVerySet) {
  const auto classes = Filter::setOfClasses({Handle::classObject(), Handle::classObject()});
  EXPECT_EQ(classes->count(), 1U);
  EXPECT_EQ(Filter::initWithClassesToFilter(classes)->classesThatCantBeArchived(), classes);
}

TEST(RVFKeyedArchiverFilter, DescribesItselfToTheRuntime) {
  const Class filter = RVFKeyedArchiverFilter::classObject();
  EXPECT_EQ(objc_getClass("RVFKeyedArchiverFilter"), filter);
  EXPECT_TRUE(filterOfHandles()->conformsToProtocol("NSKeyedArchiverDelegate"));
  const auto properties = class_copyPropertyList(filter);
  ASSERT_EQ(properties.size(), 1U);
  EXPECT_EQ(property_getName(properties[0]), "classesThatCantBeArchived");
  const id replaced = send<id>(filterOfHandles(), SEL("archiver:willEncodeObject:"),
                               Ref<NSKeyedArchiver>(), id(std::make_shared<Handle>()));
  EXPECT_EQ(unboxText(replaced), "a handle");
}

}  // namespace
}  // namespace rvf
