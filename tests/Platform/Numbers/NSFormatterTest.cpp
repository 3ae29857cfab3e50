// SPDX-License-Identifier: Apache-2.0
#include "Platform/Numbers/NSFormatter.h"

#include <gtest/gtest.h>

#include <functional>

#include "Platform/Runtime/Messaging.h"
#include "Platform/Runtime/NSException.h"
#include "Platform/Values/NSString.h"

namespace rvf {
namespace {

class Echo final : public NSFormatter {
 public:
  std::optional<std::string> stringForObjectValue(const id& value) override {
    return unboxText(value);
  }
};

TEST(NSFormatter, AnAbstractFormatterNeitherFormatsNorReads) {
  NSFormatter formatter;
  id object;
  for (const auto& operation : std::initializer_list<std::function<void()>>{
           [&] { formatter.stringForObjectValue(box("a")); },
           [&] { formatter.editingStringForObjectValue(box("a")); },
           [&] { formatter.getObjectValue(&object, "a"); }}) {
    try {
      operation();
      ADD_FAILURE() << "nothing was raised";
    } catch (const NSException& exception) {
      EXPECT_EQ(exception.name(), NSInvalidArgumentException);
    }
  }
}

TEST(NSFormatter, TheEditingTextIsTheTextUnlessTheFormatterSaysOtherwise) {
  EXPECT_EQ(Echo().editingStringForObjectValue(box("a")), "a");
  EXPECT_EQ(Echo().editingStringForObjectValue(nullptr), std::nullopt);
}

TEST(NSFormatter, HasNoAttributedTextUnlessTheFormatterSaysOtherwise) {
  EXPECT_EQ(Echo().attributedStringForObjectValue(box("a"), nullptr), nullptr);
}

TEST(NSFormatter, AnswersItsSelectors) {
  const auto echo = std::make_shared<Echo>();
  EXPECT_EQ(send<std::optional<std::string>>(echo, SEL("stringForObjectValue:"), id(box("a"))),
            "a");
  EXPECT_TRUE(echo->respondsToSelector(SEL("getObjectValue:forString:errorDescription:")));
}

}  // namespace
}  // namespace rvf
