// SPDX-License-Identifier: Apache-2.0
#include "Platform/Runtime/AnyArgument.h"

#include <gtest/gtest.h>

#include "Platform/Runtime/NSException.h"
#include "Platform/Values/NSNumber.h"
#include "Platform/Values/NSString.h"

namespace rvf {
namespace {

TEST(AnyArgument, IntegersOfOneEncodingConvertIntoEachOther) {
  EXPECT_EQ(anyTo<long long>(toAny(-5L)), -5);
  EXPECT_EQ(anyTo<char>(toAny(static_cast<signed char>(7))), 7);
  EXPECT_TRUE(anyTo<bool>(toAny(static_cast<signed char>(2))));
  EXPECT_EQ(anyTo<signed char>(toAny(true)), 1);
}

TEST(AnyArgument, EnumerationsConvertToTheirInteger) {
  enum class Signal : unsigned short { kRed, kGreen };
  EXPECT_EQ(anyTo<unsigned short>(toAny(Signal::kGreen)), 1);
  EXPECT_EQ(anyTo<Signal>(toAny(static_cast<unsigned short>(1))), Signal::kGreen);
}

TEST(AnyArgument, OtherEncodingsRaise) {
  EXPECT_THROW(anyTo<int>(toAny(1L)), NSException);
  EXPECT_THROW(anyTo<int>(toAny(1U)), NSException);
  EXPECT_THROW(anyTo<double>(toAny(1.0F)), NSException);
  EXPECT_THROW(anyTo<id>(toAny(1)), NSException);
  EXPECT_THROW(anyTo<std::string>(toAny(1)), NSException);
}

TEST(AnyArgument, AnEmptyOneReadsAsZero) {
  EXPECT_EQ(anyTo<int>({}), 0);
  EXPECT_EQ(anyTo<double>({}), 0.0);
  EXPECT_EQ(anyTo<id>({}), nullptr);
  EXPECT_EQ(anyTo<std::string>({}), "");
  EXPECT_EQ(anyTo<std::optional<std::string>>({}), std::nullopt);
  EXPECT_EQ(anyTo<void*>({}), nullptr);
  EXPECT_EQ(anyTo<SEL>({}), SEL());
  EXPECT_FALSE(toAny(nullptr).has_value());
}

TEST(AnyArgument, ViewsOfTextAreKeptAsOwnedText) {
  std::string text = "first";
  const std::any kept = toAny(std::string_view(text));
  text = "other";
  EXPECT_EQ(anyTo<std::string_view>(kept), "first");
}

TEST(AnyArgument, TextAndStringObjectsConvertIntoEachOther) {
  EXPECT_EQ(anyTo<Ref<NSString>>(toAny(std::string("a\0b", 3)))->string(), std::string("a\0b", 3));
  EXPECT_EQ(anyTo<std::string>(toAny(box("text"))), "text");
  EXPECT_EQ(anyTo<std::string_view>(toAny(std::optional<std::string>("text"))), "text");
  EXPECT_EQ(anyTo<std::optional<std::string>>(toAny(box("text"))), "text");
}

TEST(AnyArgument, AbsentTextAndAbsentObjectsConvertIntoEachOther) {
  EXPECT_EQ(anyTo<id>(toAny(std::optional<std::string>())), nullptr);
  EXPECT_EQ(anyTo<std::optional<std::string>>(toAny(id())), std::nullopt);
  EXPECT_EQ(anyTo<std::string>(toAny(id())), "");
}

TEST(AnyArgument, ObjectsConvertToTheirClassAndItsAncestors) {
  const std::any number = toAny(box(5));
  EXPECT_EQ(anyTo<Ref<NSNumber>>(number)->intValue(), 5);
  EXPECT_EQ(anyTo<Ref<NSValue>>(number)->objCType(), "i");
}

TEST(AnyArgument, ObjectsOfAnotherClassRaiseAndSayWhich) {
  try {
    anyTo<Ref<NSString>>(toAny(box(5)));
    FAIL() << "nothing was raised";
  } catch (const NSException& exception) {
    EXPECT_EQ(exception.reason(), "value of class NSNumber where NSString is expected");
  }
  EXPECT_THROW(anyTo<std::string>(toAny(box(5))), NSException);
}

TEST(AnyArgument, WeakReferencesAreReadAsTheyAreAtThatMoment) {
  auto object = std::make_shared<NSObject>();
  const std::weak_ptr<NSObject> weak = object;
  EXPECT_EQ(anyTo<id>(toAny(weak)), object);
  EXPECT_EQ(anyTo<std::weak_ptr<NSObject>>(toAny(object)).lock(), object);
  object.reset();
  EXPECT_EQ(anyTo<id>(toAny(weak)), nullptr);
}

}  // namespace
}  // namespace rvf
