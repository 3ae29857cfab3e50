// SPDX-License-Identifier: Apache-2.0
#include "RVFoundation/RuntimeServices/NSArray-RVFPredicateExtensions.h"

#include <gtest/gtest.h>

#include "Platform/Predicates/NSCompoundPredicate.h"
#include "Platform/Runtime/NSException.h"
#include "Platform/Values/NSString.h"

namespace rvf {
namespace {

Ref<NSPredicate> predicate(std::string_view format) {
  return NSPredicate::predicateWithFormat(format);
}

template <class Call>
std::string raised(const Call& call) {
  try {
    call();
  } catch (const NSException& exception) {
    return exception.name();
  }
  return "none";
}

TEST(JoiningPredicates, NoneIsAbsentAndOneIsItself) {
  const id one = predicate("a == 1");
  EXPECT_EQ(RVF_predicateByANDingPredicates(NSArray::array()), nullptr);
  EXPECT_EQ(RVF_predicateByORingPredicates(NSArray::array()), nullptr);
  EXPECT_EQ(RVF_predicateByANDingPredicates(NSArray::arrayWithObjects({one})), one);
  EXPECT_EQ(RVF_predicateByORingPredicates(NSArray::arrayWithObjects({one})), one);
  EXPECT_EQ(RVF_predicateByANDingPredicates(nullptr), nullptr);
  EXPECT_EQ(RVF_predicateByORingPredicates(nullptr), nullptr);
}

TEST(JoiningPredicates, SeveralBecomeACompoundInTheirOrder) {
  const auto list = NSArray::arrayWithObjects(std::vector<Ref<NSPredicate>>{
      predicate("b == 1"), predicate("a == 1 AND c == 1"), predicate("d == 1")});
  EXPECT_EQ(RVF_predicateByANDingPredicates(list)->predicateFormat(),
            "b == 1 AND (a == 1 AND c == 1) AND d == 1");
  EXPECT_EQ(RVF_predicateByORingPredicates(list)->predicateFormat(),
            "b == 1 OR (a == 1 AND c == 1) OR d == 1");
  const auto joined = RVF_predicateByORingPredicates(list);
  EXPECT_EQ(
      std::dynamic_pointer_cast<NSCompoundPredicate>(joined)->subpredicates()->objectAtIndex(1),
      list->objectAtIndex(1));
}

TEST(JoiningPredicates, TwoBecomeANewCompoundOfThatKind) {
  const auto list = NSArray::arrayWithObjects(
      std::vector<Ref<NSPredicate>>{predicate("a == 1 OR b == 1"), predicate("c == 1 AND d == 1")});
  const auto expectJoined = [&](const Ref<NSPredicate>& joined, NSCompoundPredicateType type) {
    ASSERT_TRUE(joined->isMemberOfClass(NSCompoundPredicate::classObject()));
    const auto& compound = dynamic_cast<const NSCompoundPredicate&>(*joined);
    EXPECT_EQ(compound.compoundPredicateType(), type);
    EXPECT_TRUE(compound.subpredicates()->isEqual(list.get()));
    EXPECT_NE(joined, list->firstObject());
    EXPECT_NE(joined, list->lastObject());
  };
  expectJoined(RVF_predicateByANDingPredicates(list), NSAndPredicateType);
  expectJoined(RVF_predicateByORingPredicates(list), NSOrPredicateType);
}

TEST(JoiningPredicates, RefusesWhatIsNoPredicate) {
  for (const auto& list : {NSArray::arrayWithObjects({box("a == 1")}),
                           NSArray::arrayWithObjects({box("a == 1"), predicate("a == 1")})})
    EXPECT_EQ(raised([&] { RVF_predicateByANDingPredicates(list); }), NSInvalidArgumentException);
}

TEST(SubstitutingOneSearchText, RewritesEachPredicateInOrder) {
  const auto unchanged = predicate("price > 10");
  const auto list = NSArray::arrayWithObjects(std::vector<Ref<NSPredicate>>{
      predicate("name CONTAINS $S"), unchanged, predicate("code == $OTHER OR code == $S")});
  const auto results = RVF_predicatesBySubstitutingVariable(list, "S", "red shoe");
  ASSERT_EQ(results->count(), 3U);
  EXPECT_EQ(results->objectAtIndex(0)->description(),
            "name CONTAINS \"red\" AND name CONTAINS \"shoe\"");
  EXPECT_EQ(results->objectAtIndex(1), unchanged);
  EXPECT_EQ(results->objectAtIndex(2)->description(),
            "code == $OTHER OR (code == \"red\" AND code == \"shoe\")");
}

TEST(SubstitutingOneSearchText, AnswersAbsentOrEmptyForSuchArrays) {
  EXPECT_EQ(RVF_predicatesBySubstitutingVariable(nullptr, "S", "x"), nullptr);
  EXPECT_EQ(RVF_predicatesBySubstitutingVariable(NSArray::array(), "S", "x")->count(), 0U);
}

TEST(SubstitutingOneSearchText, OtherKindsOfPredicatesRaise) {
  const id constant = predicate("TRUEPREDICATE");
  const id block = NSPredicate::predicateWithBlock([](const id&, const auto&) { return true; });
  for (const id& other : {constant, block}) {
    const auto list = NSArray::arrayWithObjects({predicate("a == $S"), other});
    for (const std::string_view text : {"x", "x y", ""})
      EXPECT_EQ(raised([&] { RVF_predicatesBySubstitutingVariable(list, "S", text); }),
                NSInvalidArgumentException)
          << other->description() << " with \"" << text << "\"";
  }
  const auto inside = NSArray::arrayWithObjects({id(predicate("a == $S OR TRUEPREDICATE"))});
  EXPECT_EQ(raised([&] { RVF_predicatesBySubstitutingVariable(inside, "S", "x y"); }),
            NSInvalidArgumentException);
  EXPECT_EQ(raised([&] { RVF_predicatesBySubstitutingVariable(inside, "S", "x"); }), "none");
}

}  // namespace
}  // namespace rvf
