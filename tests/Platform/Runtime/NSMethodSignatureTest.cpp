// SPDX-License-Identifier: Apache-2.0
#include "Platform/Runtime/NSMethodSignature.h"

#include <gtest/gtest.h>

#include "Platform/Runtime/NSException.h"

namespace rvf {
namespace {

std::string partsOf(std::string_view types) {
  const auto signature = NSMethodSignature::signatureWithTypes(types);
  if (!signature) return "absent";
  std::string text = signature->methodReturnType();
  for (std::size_t i = 0; i < signature->numberOfArguments(); ++i)
    text += " " + signature->getArgumentTypeAtIndex(i);
  return text;
}

TEST(NSMethodSignature, ReadsTypeEncodings) {
  const std::pair<std::string_view, std::string_view> rows[] = {
      {"v@:", "v @ :"},
      {"c@:i", "c @ : i"},
      {"@@:@q", "@ @ : @ q"},
      {"v@:csiqCSIQfdB", "v @ : c s i q C S I Q f d B"},
      {"v@:@?@", "v @ : @? @"},
      {"v@:^@", "v @ : ^@"},
      {"v@:^^v*", "v @ : ^^v *"},
      {"v@:^?i", "v @ : ^? i"},
      {"#@::#", "# @ : : #"},
      {"{Rect={Point=qq}{Size=qq}}@:{?=}", "{Rect={Point=qq}{Size=qq}} @ : {?=}"},
      {"(Value=id)@:(?={Point=qq}(Other=i*))q", "(Value=id) @ : (?={Point=qq}(Other=i*)) q"},
      {"v@:^(Value=id){Box=(Value=id)}", "v @ : ^(Value=id) {Box=(Value=id)}"},
      {"v@:^{Point=qq}i", "v @ : ^{Point=qq} i"},
      {"@\"NSString\"@:@\"NSArray<NSCopying>\"i", "@\"NSString\" @ : @\"NSArray<NSCopying>\" i"},
  };
  for (const auto& [types, parts] : rows)
    EXPECT_EQ(partsOf(types), parts) << types;
}

TEST(NSMethodSignature, RefusesWhatIsNoneAsAbsent) {
  for (const std::string_view types :
       {"", "v", "v@", "@:", "vi:", "v@@", "v@:x", "v@:{Point=qq", "v@:}", "v@:(Value=id", "v@:)",
        "v@:^", "v@:@\"NSString", "v@:v", "v@:iv", "v @:", "v@:1"})
    EXPECT_EQ(partsOf(types), "absent") << types;
}

TEST(NSMethodSignature, RaisesPastTheLastArgument) {
  const auto signature = NSMethodSignature::signatureWithTypes("v@:i");
  EXPECT_EQ(signature->getArgumentTypeAtIndex(2), "i");
  EXPECT_THROW(signature->getArgumentTypeAtIndex(3), NSException);
}

TEST(NSMethodSignature, IsEqualToOneOfTheSameTypes) {
  const auto signature = NSMethodSignature::signatureWithTypes("v@:i");
  const auto same = NSMethodSignature::signatureWithTypes("v@:i");
  EXPECT_TRUE(signature->isEqual(same.get()));
  EXPECT_EQ(signature->hash(), same->hash());
  EXPECT_FALSE(signature->isEqual(NSMethodSignature::signatureWithTypes("v@:q").get()));
}

}  // namespace
}  // namespace rvf
