// SPDX-License-Identifier: Apache-2.0
#include "Platform/Runtime/NSObject.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "Platform/Runtime/Messaging.h"
#include "Platform/Runtime/NSMethodSignature.h"
#include "Platform/Runtime/Pointers.h"
#include "Platform/Values/NSNumber.h"
#include "Platform/Values/NSString.h"

namespace rvf {
namespace {

class Undescribed final : public NSObject {};

TEST(NSObject, DescribesItselfByClassAndAddress) {
  const NSObject object;
  EXPECT_EQ(object.description(), "<NSObject: " + pointerText(&object) + ">");
}

TEST(NSObject, ShowsAddressesInLowerCaseHexadecimal) {
  EXPECT_EQ(pointerText(reinterpret_cast<const void*>(0xAB12CD)), "0xab12cd");
  EXPECT_EQ(pointerText(nullptr), "0x0");
}

TEST(NSObject, OfAnUndescribedClassAnswersAsItsNearestDescribedAncestor) {
  EXPECT_EQ(Undescribed().isa(), NSObject::classObject());
  EXPECT_THAT(Undescribed().description(), ::testing::StartsWith("<NSObject: 0x"));
}

TEST(NSObject, IsOfTheKindOfItsClassAndItsAncestors) {
  const auto number = box(5);
  EXPECT_TRUE(number->isKindOfClass(NSNumber::classObject()));
  EXPECT_TRUE(number->isKindOfClass(NSObject::classObject()));
  EXPECT_FALSE(number->isKindOfClass(NSString::classObject()));
  EXPECT_FALSE(number->isKindOfClass(nullptr));
  EXPECT_TRUE(number->isMemberOfClass(NSNumber::classObject()));
  EXPECT_FALSE(number->isMemberOfClass(NSObject::classObject()));
}

TEST(NSObject, ComparesAndHashesByIdentity) {
  const NSObject a;
  const NSObject b;
  EXPECT_TRUE(a.isEqual(&a));
  EXPECT_FALSE(a.isEqual(&b));
  EXPECT_FALSE(a.isEqual(nullptr));
  EXPECT_EQ(a.hash(), a.hash());
}

template <class T>
concept ComparesWithReferences = requires(const T& object, const id& other) {
  object.isEqual(other);
};

TEST(NSObject, OfEveryClassComparesWithTheSameArguments) {
  EXPECT_FALSE(ComparesWithReferences<NSObject>);  // an overriding class would hide such a form
  EXPECT_FALSE(ComparesWithReferences<NSString>);
}

TEST(NSObject, AbsentOnesAreEqualToEachOtherOnly) {
  EXPECT_TRUE(objectsAreEqual(nullptr, nullptr));
  EXPECT_FALSE(objectsAreEqual(nullptr, box("a")));
  EXPECT_FALSE(objectsAreEqual(box("a"), nullptr));
  EXPECT_TRUE(objectsAreEqual(box("a"), box("a")));
}

TEST(NSObject, AnswersTheRootMessages) {
  const id text = box("text");
  EXPECT_EQ(send<Class>(text, SEL("class")), NSString::classObject());
  EXPECT_EQ(send<Class>(text, SEL("superclass")), NSObject::classObject());
  EXPECT_TRUE(send<bool>(text, SEL("isEqual:"), box("text")));
  EXPECT_TRUE(send<bool>(text, SEL("isKindOfClass:"), NSObject::classObject()));
  EXPECT_FALSE(send<bool>(text, SEL("isMemberOfClass:"), NSObject::classObject()));
  EXPECT_TRUE(send<bool>(text, SEL("respondsToSelector:"), SEL("length")));
  EXPECT_FALSE(send<bool>(text, SEL("respondsToSelector:"), SEL("fly")));
}

TEST(NSObject, KnowsTheSignaturesOfItsMethods) {
  const NSObject object;
  EXPECT_EQ(object.methodSignatureForSelector(SEL("isEqual:"))->getArgumentTypeAtIndex(2), "@");
  EXPECT_EQ(object.methodSignatureForSelector(SEL("fly")), nullptr);
}

TEST(NSObject, MakesReferencesToItselfOnceItIsHeld) {
  const auto object = std::make_shared<Undescribed>();
  EXPECT_EQ(refTo(object.get()), object);
  Undescribed onTheStack;
  EXPECT_THROW(refTo(&onTheStack), std::bad_weak_ptr);
}

}  // namespace
}  // namespace rvf
