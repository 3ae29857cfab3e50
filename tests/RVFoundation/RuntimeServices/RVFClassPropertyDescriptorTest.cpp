// SPDX-License-Identifier: Apache-2.0
#include "RVFoundation/RuntimeServices/RVFClassPropertyDescriptor.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <map>
#include <ostream>
#include <string>

#include "Platform/Runtime/Messaging.h"
#include "Platform/Runtime/NSAutoreleasePool.h"
#include "Platform/Runtime/NSException.h"
#include "Platform/Runtime/Pointers.h"
#include "Platform/Values/NSString.h"

namespace rvf {
namespace {

using Descriptor = RVFClassPropertyDescriptor;
using ::testing::ElementsAre;
using ::testing::Pair;

std::map<std::string, std::string> entriesOf(const Descriptor& descriptor) {
  std::map<std::string, std::string> entries;
  for (const auto& [key, value] : *descriptor.attributes())
    entries.emplace(key->description(), value->description());
  return entries;
}

Ref<Descriptor> descriptorOf(std::string_view attributes) {
  return Descriptor::initWithProperty({"title", std::string(attributes)});
}

TEST(RVFClassPropertyDescriptor, HasTheNameAndAttributesOfItsProperty) {
  const auto descriptor = descriptorOf("T@\"NSString\",C,N,V_title");
  EXPECT_EQ(descriptor->name(), "title");
  EXPECT_THAT(entriesOf(*descriptor), ElementsAre(Pair("C", ""), Pair("N", ""),
                                                  Pair("T", "@\"NSString\""), Pair("V", "_title")));
  EXPECT_EQ(descriptor->ivarName(), "_title");
  EXPECT_EQ(descriptor->encodedType(), "@\"NSString\"");
}

struct DerivedRow {
  std::string_view attributes;
  std::string_view facts;  // the letters of those that hold: C N & a D R o
};

std::ostream& operator<<(std::ostream& stream, const DerivedRow& row) {
  return stream << row.attributes;
}

class DerivedFacts : public ::testing::TestWithParam<DerivedRow> {};

TEST_P(DerivedFacts, AreReadFromTheAttributes) {
  const auto descriptor = descriptorOf(GetParam().attributes);
  std::string facts;
  if (descriptor->isCopy()) facts += 'C';
  if (descriptor->isNonAtomic()) facts += 'N';
  if (descriptor->isRetained()) facts += '&';
  if (descriptor->isAssigned()) facts += 'a';
  if (descriptor->isDynamic()) facts += 'D';
  if (descriptor->isReadonly()) facts += 'R';
  if (descriptor->isObjCType()) facts += 'o';
  EXPECT_EQ(facts, GetParam().facts);
}

INSTANTIATE_TEST_SUITE_P(Rows, DerivedFacts,
                         ::testing::Values(DerivedRow{"T@\"NSString\",C,N,V_title", "CNo"},
                                           DerivedRow{"Tq,R,N", "NaR"}, DerivedRow{"T@,W", "ao"},
                                           DerivedRow{"T@,&", "&o"}, DerivedRow{"T@?,C", "Co"},
                                           DerivedRow{"Ti,D", "aD"}, DerivedRow{"T@,&,W", "&o"},
                                           DerivedRow{"N", "Na"}, DerivedRow{"T", "a"},
                                           DerivedRow{"T#", "a"}, DerivedRow{"T^@", "a"},
                                           DerivedRow{"T{?=ii},R", "aR"}));

TEST(RVFClassPropertyDescriptor, HasNullSelectorsForUsualAccessors) {
  const auto descriptor = descriptorOf("Tc,N");
  EXPECT_FALSE(descriptor->customGetter());
  EXPECT_FALSE(descriptor->customSetter());
}

TEST(RVFClassPropertyDescriptor, HasTheSelectorsOfCustomAccessors) {
  const auto descriptor = descriptorOf("Tc,GisOpen,Sopen:");
  EXPECT_EQ(descriptor->customGetter(), SEL("isOpen"));
  EXPECT_EQ(descriptor->customSetter(), SEL("open:"));
}

TEST(RVFClassPropertyDescriptor, HasNoTypeOrVariableThatIsNotStated) {
  const auto descriptor = descriptorOf("N");
  EXPECT_EQ(descriptor->encodedType(), std::nullopt);
  EXPECT_EQ(descriptor->ivarName(), std::nullopt);
}

TEST(RVFClassPropertyDescriptor, KeepsLettersThatNobodyKnows) {
  EXPECT_THAT(entriesOf(*descriptorOf("Ti,?some,\xC3\xA9x")),
              ElementsAre(Pair("?", "some"), Pair("T", "i"), Pair("\xC3\xA9", "x")));
}

TEST(RVFClassPropertyDescriptor, TakesTheLaterOfTwoAttributesWithOneLetter) {
  EXPECT_EQ(descriptorOf("Ti,N,Tq")->encodedType(), "q");
}

TEST(RVFClassPropertyDescriptor, SplitsAtCommasWithinQuotesToo) {
  EXPECT_THAT(entriesOf(*descriptorOf("T@\"A,B\"")),
              ElementsAre(Pair("B", "\""), Pair("T", "@\"A")));
}

TEST(RVFClassPropertyDescriptor, ReplacesItsAttributesWhenItReadsOthers) {
  const auto descriptor = descriptorOf("T@,C,N");
  descriptor->readPropertyAttributesFromString("Ti,R");
  EXPECT_THAT(entriesOf(*descriptor), ElementsAre(Pair("R", ""), Pair("T", "i")));
  EXPECT_EQ(descriptor->name(), "title");
}

TEST(RVFClassPropertyDescriptor, FollowsChangesOfItsAttributes) {
  const auto descriptor = descriptorOf("T@");
  descriptor->attributes()->setObject(box(""), "C");
  EXPECT_TRUE(descriptor->isCopy());
  EXPECT_FALSE(descriptor->isAssigned());
}

TEST(RVFClassPropertyDescriptor, RaisesForAnAttributeWithoutALetter) {
  for (const std::string_view attributes : {"", ",", "Ti,", ",Ti", "Ti,,N"}) {
    try {
      descriptorOf(attributes);
      ADD_FAILURE() << "nothing was raised for " << attributes;
    } catch (const NSException& exception) {
      EXPECT_EQ(exception.name(), NSRangeException) << attributes;
    }
  }
}

TEST(RVFClassPropertyDescriptor, HasTheAttributesBeforeTheOneThatRaised) {
  const auto descriptor = descriptorOf("T@,C");
  EXPECT_THROW(descriptor->readPropertyAttributesFromString("Ti,,N"), NSException);
  EXPECT_THAT(entriesOf(*descriptor), ElementsAre(Pair("T", "i")));
}

TEST(RVFClassPropertyDescriptor, DescribesItselfByClassAddressAndName) {
  const auto descriptor = descriptorOf("Ti");
  EXPECT_EQ(descriptor->description(),
            "<RVFClassPropertyDescriptor " + pointerText(descriptor.get()) + ": title>");
}

TEST(RVFClassPropertyDescriptor, FromTheClassLivesUntilTheScopeEnds) {
  std::weak_ptr<Descriptor> descriptor;
  {
    const NSAutoreleasePool pool;
    descriptor = Descriptor::classPropertyDescriptorForProperty({"title", "Ti"});
    EXPECT_FALSE(descriptor.expired());
  }
  EXPECT_TRUE(descriptor.expired());
}

TEST(RVFClassPropertyDescriptor, AnswersItsPropertiesAsMessages) {
  const auto descriptor = descriptorOf("T@\"NSString\",C,GtheTitle");
  EXPECT_TRUE(send<bool>(descriptor, SEL("isCopy")));
  EXPECT_EQ(send<std::string>(descriptor, SEL("encodedType")), "@\"NSString\"");
  EXPECT_EQ(send<SEL>(descriptor, SEL("customGetter")), SEL("theTitle"));
  EXPECT_EQ(send<id>(descriptor, SEL("ivarName")), nullptr);
}

}  // namespace
}  // namespace rvf
