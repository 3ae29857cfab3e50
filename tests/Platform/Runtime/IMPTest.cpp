// SPDX-License-Identifier: Apache-2.0
#include "Platform/Runtime/IMP.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

#include "Platform/Runtime/NSException.h"
#include "Platform/Values/NSString.h"

namespace rvf {
namespace {

int twice(NSObject&, SEL, int value) {
  return 2 * value;
}
int thrice(NSObject&, SEL, int value) {
  return 3 * value;
}
std::string nameOf(NSObject&, SEL selector) {
  return NSStringFromSelector(selector);
}
std::string joined(NSObject&, SEL, std::string_view a, std::string b) {
  return std::string(a) + b;
}

class IMPCall : public ::testing::Test {
 protected:
  const Ref<NSObject> object_ = std::make_shared<NSObject>();
  NSObject& self_ = *object_;
  const SEL selector_{"selector"};
};

TEST(IMP, IsTheIdentityOfAFunction) {
  EXPECT_EQ(IMP(&twice), IMP(&twice));
  EXPECT_NE(IMP(&twice), IMP(&thrice));
  EXPECT_EQ(IMP(&twice).address(), reinterpret_cast<const void*>(&twice));
}

TEST(IMP, OrdersByAddress) {
  std::vector<IMP> sorted = {&twice, &thrice, &nameOf, IMP()};
  std::ranges::sort(sorted);
  EXPECT_TRUE(std::ranges::is_sorted(sorted, {}, &IMP::address));
  EXPECT_EQ(sorted.front(), IMP());
}

TEST(IMP, KnowsItsTypeEncoding) {
  EXPECT_EQ(IMP(&twice).typeEncoding(), "i@:i");
  EXPECT_EQ(IMP(&joined).typeEncoding(), "@@:@@");
  EXPECT_EQ(IMP().typeEncoding(), "");
}

TEST_F(IMPCall, PassesReceiverSelectorAndArguments) {
  EXPECT_EQ(IMP(&twice).call<int>(self_, selector_, 21), 42);
  EXPECT_EQ(IMP(&nameOf).call<std::string>(self_, selector_), "selector");
}

TEST_F(IMPCall, OfTheNullImplementationRaises) {
  EXPECT_FALSE(IMP());
  EXPECT_THROW(IMP().call<int>(self_, selector_), NSException);
}

TEST_F(IMPCall, ConvertsBetweenTypesOfOneEncoding) {
  enum class Choice { kNone, kFour = 4 };
  EXPECT_EQ(IMP(&twice).call<int>(self_, selector_, Choice::kFour), 8);
  EXPECT_EQ(IMP(&joined).call<std::string>(self_, selector_, box("a"), box("b")), "ab");
  EXPECT_EQ(IMP(&joined).call<Ref<NSString>>(self_, selector_, box("a"), nullptr)->string(), "a");
}

TEST_F(IMPCall, WithOtherTypesRaises) {
  EXPECT_THROW(IMP(&twice).call<int>(self_, selector_, 2.0), NSException);
  EXPECT_THROW(IMP(&twice).call<int>(self_, selector_, 2L), NSException);
  EXPECT_THROW(IMP(&twice).call<int>(self_, selector_, 2U), NSException);
  EXPECT_THROW(IMP(&twice).call<double>(self_, selector_, 2), NSException);
  EXPECT_THROW(IMP(&twice).call<int>(self_, selector_, id()), NSException);
}

TEST_F(IMPCall, WithAnotherNumberOfArgumentsRaises) {
  EXPECT_THROW(IMP(&twice).call<int>(self_, selector_), NSException);
  EXPECT_THROW(IMP(&twice).call<int>(self_, selector_, 1, 2), NSException);
}

TEST_F(IMPCall, MayIgnoreTheResult) {
  EXPECT_NO_THROW(IMP(&twice).call<void>(self_, selector_, 2L - 1 == 1 ? 1 : 2));
}

TEST_F(IMPCall, WithRunTimeArgumentsReadsEmptyOnesAsZero) {
  const std::any arguments[] = {std::any()};
  EXPECT_EQ(anyTo<int>(IMP(&twice).callWithArguments(self_, selector_, arguments)), 0);
}

TEST_F(IMPCall, SaysWhichTypesDoNotMatch) {
  try {
    IMP(&twice).call<int>(self_, selector_, 2.5);
    FAIL() << "nothing was raised";
  } catch (const NSException& exception) {
    EXPECT_EQ(exception.name(), NSInvalidArgumentException);
    EXPECT_EQ(exception.reason(),
              "-[NSObject selector] got a value of type double where i is expected");
  }
}

TEST_F(IMPCall, SaysWhatAResultIsThatCannotBeRead) {
  try {
    IMP(&twice).call<std::string>(self_, selector_, 2);
    FAIL() << "nothing was raised";
  } catch (const NSException& exception) {
    EXPECT_EQ(exception.reason(),
              "-[NSObject selector] answers a value of type int where text is expected");
  }
}

TEST_F(IMPCall, SaysHowManyArgumentsTheMethodTakes) {
  try {
    IMP(&twice).call<int>(self_, selector_, 1, 2);
    FAIL() << "nothing was raised";
  } catch (const NSException& exception) {
    EXPECT_EQ(exception.reason(), "-[NSObject selector] takes 1 argument, not 2");
  }
}

}  // namespace
}  // namespace rvf
