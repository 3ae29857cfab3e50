// SPDX-License-Identifier: Apache-2.0
#include "RVFoundation/RuntimeServices/NSPredicate-RVFVisiting.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "Platform/Predicates/NSCompoundPredicate.h"

namespace rvf {
namespace {

using testing::ElementsAre;

Ref<NSPredicate> predicate(std::string_view format) {
  return NSPredicate::predicateWithFormat(format);
}

/// Notes what it is called with: the predicate's text, "*" before a compound one.
RVFPredicateHandler noteInto(std::vector<std::string>& notes) {
  return [&notes](const Ref<NSPredicate>& visited, bool isCompound) {
    notes.push_back((isCompound ? "*" : "") + visited->predicateFormat());
  };
}

TEST(NSPredicateRVFVisiting, CallsTheFirstHandlerBeforeThePartsAndTheSecondAfterThem) {
  std::vector<std::string> before;
  std::vector<std::string> after;
  visitSubpredicatesWithPreOrderPredicateHandler(predicate("a == 1 AND (b == 1 OR c == 1)"),
                                                 noteInto(before), noteInto(after));
  EXPECT_THAT(before, ElementsAre("*a == 1 AND (b == 1 OR c == 1)", "a == 1", "*b == 1 OR c == 1",
                                  "b == 1", "c == 1"));
  EXPECT_THAT(after, ElementsAre("a == 1", "b == 1", "c == 1", "*b == 1 OR c == 1",
                                 "*a == 1 AND (b == 1 OR c == 1)"));
}

TEST(NSPredicateRVFVisiting, InterleavesBothHandlers) {
  std::vector<std::string> notes;
  visitSubpredicatesWithPreOrderPredicateHandler(
      predicate("NOT a == 1"),
      [&](const auto&, bool isCompound) { notes.push_back(isCompound ? "NOT" : "a"); },
      [&](const auto&, bool isCompound) { notes.push_back(isCompound ? "/NOT" : "/a"); });
  EXPECT_THAT(notes, ElementsAre("NOT", "a", "/a", "/NOT"));
}

TEST(NSPredicateRVFVisiting, EitherHandlerMayBeEmpty) {
  std::vector<std::string> notes;
  visitSubpredicatesWithPreOrderPredicateHandler(predicate("NOT a == 1"), noteInto(notes), nullptr);
  EXPECT_THAT(notes, ElementsAre("*NOT a == 1", "a == 1"));
  notes.clear();
  visitSubpredicatesWithPreOrderPredicateHandler(predicate("NOT a == 1"), nullptr, noteInto(notes));
  EXPECT_THAT(notes, ElementsAre("a == 1", "*NOT a == 1"));
  visitSubpredicatesWithPreOrderPredicateHandler(predicate("NOT a == 1"), nullptr, nullptr);
}

TEST(NSPredicateRVFVisiting, GetsThePredicatesThemselves) {
  const auto root = predicate("a == 1 OR b == 1");
  std::vector<id> visited;
  visitSubpredicatesWithPreOrderPredicateHandler(
      root, [&](const auto& each, bool) { visited.push_back(each); }, nullptr);
  const auto& parts = std::dynamic_pointer_cast<NSCompoundPredicate>(root)->subpredicates();
  EXPECT_THAT(visited, ElementsAre(root, parts->objectAtIndex(0), parts->objectAtIndex(1)));
}

TEST(NSPredicateRVFVisiting, OtherKindsAreNotCompound) {
  const auto block = NSPredicate::predicateWithBlock([](const id&, const auto&) { return true; });
  for (const auto& simple : {predicate("TRUEPREDICATE"), block, predicate("a == 1")}) {
    int calls = 0;
    visitSubpredicatesWithPreOrderPredicateHandler(
        simple, [&](const auto&, bool isCompound) { calls += isCompound ? 100 : 1; }, nullptr);
    EXPECT_EQ(calls, 1) << simple->predicateFormat();
  }
}

/// A compound of a class of a client's own.
class OwnCompound final : public NSCompoundPredicate {
 public:
  explicit OwnCompound(const Ref<NSArray>& parts)
      : NSCompoundPredicate(NSAndPredicateType, parts) {}
};

TEST(NSPredicateRVFVisiting, SubclassesOfTheCompoundCountAsOne) {
  const auto own = std::make_shared<OwnCompound>(
      NSArray::arrayWithObjects({id(predicate("a == 1")), id(predicate("b == 1"))}));
  std::vector<std::string> notes;
  visitSubpredicatesWithPreOrderPredicateHandler(own, noteInto(notes), nullptr);
  EXPECT_THAT(notes, ElementsAre("*a == 1 AND b == 1", "a == 1", "b == 1"));
}

TEST(NSPredicateRVFVisiting, AnEmptyCompoundIsVisitedAlone) {
  std::vector<std::string> notes;
  visitSubpredicatesWithPreOrderPredicateHandler(
      NSCompoundPredicate::andPredicateWithSubpredicates(NSArray::array()), noteInto(notes),
      noteInto(notes));
  EXPECT_THAT(notes, ElementsAre("*TRUEPREDICATE", "*TRUEPREDICATE"));
}

TEST(NSPredicateRVFVisiting, HandlersMayDropWhatTheyAreStoredInAndTheTree) {
  auto root = predicate("a == 1 AND b == 1");
  int calls = 0;
  RVFPredicateHandler stored;
  stored = [&](const auto&, bool) {
    stored = nullptr;
    root = nullptr;
    ++calls;
  };
  visitSubpredicatesWithPreOrderPredicateHandler(root, stored, nullptr);
  EXPECT_EQ(calls, 3);
}

TEST(NSPredicateRVFVisiting, AnAbsentPredicateIsNotVisited) {
  visitSubpredicatesWithPreOrderPredicateHandler(
      nullptr, [](const auto&, bool) { FAIL(); }, nullptr);
}

}  // namespace
}  // namespace rvf
