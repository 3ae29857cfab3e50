// SPDX-License-Identifier: Apache-2.0
#include "Platform/Values/NSError.h"

#include <gtest/gtest.h>

#include "Platform/Values/NSMutableDictionary.h"
#include "Platform/Values/NSString.h"

namespace rvf {
namespace {

TEST(NSError, WithoutADescriptionNamesDomainAndCode) {
  const auto error = NSError::errorWithDomain("RVFErrorDomain", 306);
  EXPECT_EQ(error->localizedDescription(),
            "The operation couldn’t be completed. (RVFErrorDomain error 306.)");
  EXPECT_EQ(error->userInfo(), nullptr);
  EXPECT_EQ(error->localizedRecoverySuggestion(), std::nullopt);
  EXPECT_EQ(error->underlyingError(), nullptr);
}

TEST(NSError, CarriesTextsAndItsCause) {
  const auto cause = NSError::errorWithDomain(NSPOSIXErrorDomain, 2);
  const auto error = NSError::errorWithDomain(
      "D", -1,
      NSDictionary::dictionaryWithEntries({{NSLocalizedDescriptionKey, box("What")},
                                           {NSLocalizedRecoverySuggestionErrorKey, box("Do")},
                                           {NSUnderlyingErrorKey, cause}}));
  EXPECT_EQ(error->localizedDescription(), "What");
  EXPECT_EQ(error->localizedRecoverySuggestion(), "Do");
  EXPECT_EQ(error->underlyingError(), cause);
  EXPECT_EQ(error->description(), "Error Domain=D Code=-1 \"What\"");
}

TEST(NSError, KeepsItsUserInfoAsItWas) {
  const auto info = NSMutableDictionary::dictionary();
  info->setObject(box("before"), NSLocalizedDescriptionKey);
  const auto error = NSError::errorWithDomain("D", 1, info);
  info->setObject(box("after"), NSLocalizedDescriptionKey);
  EXPECT_EQ(error->localizedDescription(), "before");
}

TEST(NSError, IsEqualByDomainCodeAndUserInfo) {
  const auto info = NSDictionary::dictionaryWithEntries({{"a", box("b")}});
  const auto error = NSError::errorWithDomain("D", 1, info);
  EXPECT_TRUE(error->isEqual(NSError::errorWithDomain("D", 1, info).get()));
  EXPECT_EQ(error->hash(), NSError::errorWithDomain("D", 1, info)->hash());
  EXPECT_FALSE(error->isEqual(NSError::errorWithDomain("D", 1).get()));
  EXPECT_FALSE(error->isEqual(NSError::errorWithDomain("D", 2, info).get()));
  EXPECT_FALSE(error->isEqual(NSError::errorWithDomain("E", 1, info).get()));
}

TEST(NSError, IsMadeOnlyForCallersThatAskForIt) {
  int made = 0;
  const auto make = [&made] {
    ++made;
    return NSError::errorWithDomain("D", 1);
  };
  reportError(nullptr, make);
  EXPECT_EQ(made, 0);
  Ref<NSError> error;
  reportError(&error, make);
  EXPECT_EQ(error->code(), 1);
}

TEST(NSError, KeysAndDomainsHaveThePlatformsTexts) {
  const std::pair<std::string_view, std::string_view> rows[] = {
      {NSLocalizedDescriptionKey, "NSLocalizedDescription"},
      {NSLocalizedRecoverySuggestionErrorKey, "NSLocalizedRecoverySuggestion"},
      {NSUnderlyingErrorKey, "NSUnderlyingError"},
      {NSRecoveryAttempterErrorKey, "NSRecoveryAttempter"},
      {NSFilePathErrorKey, "NSFilePath"},
      {NSPOSIXErrorDomain, "NSPOSIXErrorDomain"},
      {NSCocoaErrorDomain, "NSCocoaErrorDomain"},
  };
  for (const auto& [constant, text] : rows)
    EXPECT_EQ(constant, text);
}

}  // namespace
}  // namespace rvf
