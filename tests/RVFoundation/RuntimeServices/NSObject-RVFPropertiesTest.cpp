// SPDX-License-Identifier: Apache-2.0
#include "RVFoundation/RuntimeServices/NSObject-RVFProperties.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "Platform/Runtime/ClassBuilder.h"
#include "Platform/Runtime/NSProxy.h"
#include "RVFoundation/RuntimeServices/RVFClassIvarDescriptor.h"
#include "RVFoundation/RuntimeServices/RVFClassPropertyDescriptor.h"

namespace rvf {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

Class base() {
  static const Class kClass =
      ClassBuilder<NSObject>("PropertyListTestBase", NSObject::classObject())
          .property("title", "T@,C")
          .property("description", "T@,C")
          .property("amount", "Tq")
          .ivar("_title", "@")
          .ivar("_amount", "q")
          .registered();
  return kClass;
}

Class derived() {
  static const Class kClass = ClassBuilder<NSObject>("PropertyListTestDerived", base())
                                  .property("hash", "TQ,R")
                                  .property("zone", "Ti")
                                  .property("superclass", "T#,R")
                                  .property("debugDescription", "T@,R")
                                  .property("title", "T@,&")
                                  .ivar("_zone", "i")
                                  .registered();
  return kClass;
}

/// "name encoding" of each descriptor, in order.
std::vector<std::string> properties(const Ref<NSArray>& descriptors) {
  std::vector<std::string> texts;
  for (const id& object : descriptors->objects()) {
    const auto& property = dynamic_cast<const RVFClassPropertyDescriptor&>(*object);
    texts.push_back(property.name() + " " + property.encodedType().value());
  }
  return texts;
}

std::vector<std::string> ivars(const Ref<NSArray>& descriptors) {
  std::vector<std::string> texts;
  for (const id& object : descriptors->objects()) {
    const auto& ivar = dynamic_cast<const RVFClassIvarDescriptor&>(*object);
    texts.push_back(ivar.name() + " " + ivar.encodedType());
  }
  return texts;
}

TEST(ClassLists, HaveTheVariablesOfOneClassInOrder) {
  EXPECT_THAT(ivars(RVF_ivars(base())), ElementsAre("_title @", "_amount q"));
  EXPECT_THAT(ivars(RVF_ivars(derived())), ElementsAre("_zone i"));
}

TEST(ClassLists, HaveTheVariablesOfAClassBeforeThoseOfItsAncestors) {
  EXPECT_THAT(ivars(RVF_allIvars(derived())), ElementsAre("_zone i", "_title @", "_amount q"));
}

TEST(ClassLists, HaveThePropertiesOfOneClassInOrder) {
  EXPECT_THAT(properties(RVF_properties(base())), ElementsAre("title @", "amount q"));
}

TEST(ClassLists, NeverHaveThePropertiesOfTheRootObjectEvenIfAClassDeclaresThemAgain) {
  EXPECT_THAT(properties(RVF_properties(derived())), ElementsAre("zone i", "title @"));
}

TEST(ClassLists, HavePropertiesThatAreDeclaredAgainOnceForEachClass) {
  EXPECT_THAT(properties(RVF_allProperties(derived())),
              ElementsAre("zone i", "title @", "title @", "amount q"));
}

TEST(ClassLists, OfADirectSubclassHaveItsOwnOnly) {
  EXPECT_THAT(properties(RVF_allProperties(base())), ElementsAre("title @", "amount q"));
  EXPECT_THAT(ivars(RVF_allIvars(base())), ElementsAre("_title @", "_amount q"));
}

TEST(ClassLists, OfTheRootObjectClassWithAncestorsAreEmpty) {
  EXPECT_EQ(RVF_allProperties(NSObject::classObject())->count(), 0U);
  EXPECT_EQ(RVF_allIvars(NSObject::classObject())->count(), 0U);
}

TEST(ClassLists, OfNoClassAreEmpty) {
  EXPECT_EQ(RVF_properties(nullptr)->count(), 0U);
  EXPECT_EQ(RVF_allProperties(nullptr)->count(), 0U);
  EXPECT_EQ(RVF_ivars(nullptr)->count(), 0U);
  EXPECT_EQ(RVF_allIvars(nullptr)->count(), 0U);
}

TEST(ClassLists, OfAClassWithAnotherRootEndAtThatRoot) {
  const Class aClass = ClassBuilder<NSObject>("PropertyListTestProxy", NSProxy::classObject())
                           .property("target", "T@")
                           .registered();
  EXPECT_THAT(properties(RVF_allProperties(aClass)), ElementsAre("target @"));
}

TEST(ClassLists, AreImmutable) {
  for (const auto& list :
       {RVF_ivars(base()), RVF_allIvars(base()), RVF_properties(base()), RVF_allProperties(base())})
    EXPECT_EQ(list->isa(), NSArray::classObject());
}

TEST(ClassLists, SeePropertiesThatAreAddedLater) {
  const Class aClass =
      ClassBuilder<NSObject>("PropertyListTestGrowing", NSObject::classObject()).registered();
  EXPECT_THAT(properties(RVF_properties(aClass)), IsEmpty());
  class_addProperty(aClass, "late", "Td");
  EXPECT_THAT(properties(RVF_properties(aClass)), ElementsAre("late d"));
}

}  // namespace
}  // namespace rvf
