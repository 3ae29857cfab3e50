// SPDX-License-Identifier: Apache-2.0
#include "Platform/Storage/NSKeyedArchiver.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "Platform/Runtime/ClassBuilder.h"
#include "Platform/Runtime/NSException.h"
#include "Platform/Storage/NSKeyedUnarchiver.h"
#include "Platform/Values/NSArray.h"
#include "Platform/Values/NSDictionary.h"
#include "Platform/Values/NSMutableArray.h"
#include "Platform/Values/NSNumber.h"
#include "Platform/Values/NSSet.h"
#include "Platform/Values/NSString.h"
#include "tests/Platform/Storage/ArchivedNode.h"

namespace rvf {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::UnorderedElementsAre;

id archivedAndRead(const Ref<NSKeyedArchiver>& archiver, const id& root) {
  archiver->encodeObject(root, "root");
  Ref<NSError> error;
  id object = NSKeyedUnarchiver::unarchiveTopLevelObjectWithData(archiver->encodedData(), &error);
  EXPECT_FALSE(error) << error->description();
  return object;
}

id archivedAndRead(const id& root) {
  return archivedAndRead(std::make_shared<NSKeyedArchiver>(), root);
}

std::string reasonOf(const std::function<void()>& action) {
  try {
    action();
  } catch (const NSException& exception) {
    return exception.what();
  }
  return "nothing was raised";
}

/// Answers through a function, and remembers what it was asked.
class Delegate final : public NSKeyedArchiverDelegate {
 public:
  using Answer = std::function<id(const id& object)>;
  explicit Delegate(Answer answer = [](const id& object) { return object; })
      : answer_(std::move(answer)) {}

  id archiverWillEncodeObject(const Ref<NSKeyedArchiver>&, const id& object) override {
    asked.push_back(object);
    return answer_(object);
  }

  std::vector<id> asked;

 private:
  Answer answer_;
};

/// Names another object, or none, in its place.
class Substituted final : public NSObject {
 public:
  explicit Substituted(id replacement) : replacement_(std::move(replacement)) {}

  static Class classObject() {
    static const Class kClass =
        ClassBuilder<Substituted>("SubstitutedForArchiving", NSObject::classObject())
            .method<&Substituted::replacement>("replacementObjectForCoder:")
            .registered();
    return kClass;
  }
  Class isa() const override { return classObject(); }

 private:
  id replacement(const Ref<NSCoder>&) const { return replacement_; }

  id replacement_;
};

TEST(NSKeyedArchiver, SharedObjectsStayShared) {
  const id shared = ArchivedNode::nodeWithName("shared");
  const id list = NSArray::arrayWithObjects({shared, shared});
  const auto again = std::static_pointer_cast<NSArray>(
      archivedAndRead(NSArray::arrayWithObjects({list, list, shared})));
  ASSERT_EQ(again->count(), 3U);
  EXPECT_EQ(again->objectAtIndex(0), again->objectAtIndex(1));
  const auto& inner = static_cast<const NSArray&>(*again->objectAtIndex(0));
  EXPECT_EQ(inner.objectAtIndex(0), inner.objectAtIndex(1));
  EXPECT_EQ(inner.objectAtIndex(0), again->objectAtIndex(2));
  EXPECT_EQ(static_cast<const ArchivedNode&>(*again->objectAtIndex(2)).name, "shared");
}

TEST(NSKeyedArchiver, ObjectsWriteWhatTheyAre) {
  const auto node = ArchivedNode::nodeWithName("é");
  node->count = -5;
  node->weight = 0.1;
  node->isMarked = true;
  const auto again = std::dynamic_pointer_cast<ArchivedNode>(archivedAndRead(node));
  ASSERT_TRUE(again);
  EXPECT_EQ(again->name, "é");
  EXPECT_EQ(again->count, -5);
  EXPECT_EQ(again->weight, 0.1);
  EXPECT_TRUE(again->isMarked);
  EXPECT_FALSE(again->next);
}

TEST(NSKeyedArchiver, GraphsMayLeadInCircles) {
  const auto a = ArchivedNode::nodeWithName("a");
  const auto b = ArchivedNode::nodeWithName("b");
  a->next = b;
  b->next = a;
  const auto again = std::static_pointer_cast<ArchivedNode>(archivedAndRead(a));
  const auto next = std::static_pointer_cast<ArchivedNode>(again->next);
  EXPECT_EQ(next->name, "b");
  EXPECT_EQ(next->next, again);
  next->next = nullptr;
  b->next = nullptr;
}

TEST(NSKeyedArchiver, ConditionalReferencesHoldOnlyWhereTheObjectIsEncodedElsewhere) {
  const auto parent = ArchivedNode::nodeWithName("parent");
  const auto child = ArchivedNode::nodeWithName("child");
  parent->next = child;
  child->parent = parent;
  const auto lonely = std::static_pointer_cast<ArchivedNode>(archivedAndRead(child));
  EXPECT_FALSE(lonely->parent.lock());
  const auto before = std::static_pointer_cast<NSArray>(
      archivedAndRead(NSArray::arrayWithObjects({child, parent})));
  const auto& first = static_cast<const ArchivedNode&>(*before->objectAtIndex(0));
  EXPECT_EQ(first.parent.lock(), before->objectAtIndex(1));
  const auto after = std::static_pointer_cast<ArchivedNode>(archivedAndRead(parent));
  EXPECT_EQ(static_cast<const ArchivedNode&>(*after->next).parent.lock(), after);
}

TEST(NSKeyedArchiver, AsksItsDelegateOnceForEveryObject) {
  const id key = box("key");
  const id value = box(5);
  const id list = NSArray::arrayWithObjects({value, value});
  const id root = std::make_shared<NSDictionary>(NSDictionary::Entries{{key, list}});
  const auto archiver = std::make_shared<NSKeyedArchiver>();
  const auto delegate = std::make_shared<Delegate>();
  archiver->setDelegate(delegate);
  archiver->encodeObject(root, "root");
  archiver->encodeObject(root, "again");
  archiver->encodeObject(nullptr, "absent");
  EXPECT_THAT(delegate->asked, UnorderedElementsAre(root, key, list, value));
  EXPECT_EQ(delegate->asked.front(), root);
}

TEST(NSKeyedArchiver, AsksForConditionalObjectsToo) {
  const auto archiver = std::make_shared<NSKeyedArchiver>();
  const auto delegate = std::make_shared<Delegate>();
  archiver->setDelegate(delegate);
  const id object = box("conditional");
  archiver->encodeConditionalObject(object, "a");
  archiver->encodeConditionalObject(nullptr, "b");
  archiver->encodeObject(object, "c");
  EXPECT_THAT(delegate->asked, ElementsAre(object));
}

TEST(NSKeyedArchiver, WhatTheDelegateAnswersIsEncodedEverywhere) {
  const id secret = ArchivedNode::nodeWithName("secret");
  const auto archiver = std::make_shared<NSKeyedArchiver>();
  const auto delegate = std::make_shared<Delegate>(
      [&](const id& object) { return object == secret ? box("replaced") : object; });
  archiver->setDelegate(delegate);
  const auto again = archivedAndRead(archiver, NSArray::arrayWithObjects({secret, secret}));
  EXPECT_EQ(again->description(), "(replaced, replaced)");
  EXPECT_EQ(delegate->asked.size(), 2U) << "neither again nor for the answer";
}

TEST(NSKeyedArchiver, AnAbsentAnswerIsEncodedAsNull) {
  const auto archiver = std::make_shared<NSKeyedArchiver>();
  const auto delegate = std::make_shared<Delegate>([](const id& object) {
    return dynamic_cast<ArchivedNode*>(object.get()) ? object : nullptr;
  });
  archiver->setDelegate(delegate);
  const auto node = ArchivedNode::nodeWithName("never written");
  const auto again = std::static_pointer_cast<ArchivedNode>(archivedAndRead(archiver, node));
  EXPECT_EQ(again->name, "");
  EXPECT_FALSE(archivedAndRead(nullptr));
}

TEST(NSKeyedArchiver, AsksAfterTheObjectNamedItsReplacement) {
  const id replacement = box("named");
  const id object = std::make_shared<Substituted>(replacement);
  const id another = std::make_shared<Substituted>(replacement);
  const id none = std::make_shared<Substituted>(nullptr);
  const auto archiver = std::make_shared<NSKeyedArchiver>();
  const auto delegate = std::make_shared<Delegate>();
  archiver->setDelegate(delegate);
  for (const auto& [each, key] : {std::pair(object, "a"), {another, "b"}, {replacement, "c"}})
    archiver->encodeObject(each, key);
  archiver->encodeObject(none, "d");
  EXPECT_THAT(delegate->asked, ElementsAre(replacement));
  const auto reader = NSKeyedUnarchiver::initForReadingFromData(archiver->encodedData());
  EXPECT_EQ(unboxText(reader->decodeObjectForKey("a")), "named");
  EXPECT_EQ(reader->decodeObjectForKey("a"), reader->decodeObjectForKey("b"));
  EXPECT_FALSE(reader->decodeObjectForKey("d"));
}

TEST(NSKeyedArchiver, ADelegateMayChangeTheCollectionThatIsEncoded) {
  const auto list = NSMutableArray::array();
  for (int i = 0; i < 3; ++i)
    list->addObject(box(i));
  const auto archiver = std::make_shared<NSKeyedArchiver>();
  const auto delegate = std::make_shared<Delegate>([&](const id& object) {
    if (object != list) list->removeAllObjects();
    return object;
  });
  archiver->setDelegate(delegate);
  EXPECT_EQ(archivedAndRead(archiver, list)->description(), "(0, 1, 2)");
}

TEST(NSKeyedArchiver, ADelegateMayEncodeOnTheSameArchiver) {
  const auto archiver = std::make_shared<NSKeyedArchiver>();
  const id root = NSArray::arrayWithObjects({box("a")});
  const auto delegate = std::make_shared<Delegate>([&](const id& object) {
    if (object == root) archiver->encodeObject(box("more"), "extra");
    return object;
  });
  archiver->setDelegate(delegate);
  archiver->encodeObject(root, "root");
  const auto reader = NSKeyedUnarchiver::initForReadingFromData(archiver->encodedData());
  EXPECT_TRUE(objectsAreEqual(reader->decodeObjectForKey("root"), root));
  EXPECT_EQ(unboxText(reader->decodeObjectForKey("extra")), "more");
}

TEST(NSKeyedArchiver, ADelegateIsNotAskedAgainForTheObjectThatItEncodesMeanwhile) {
  const auto archiver = std::make_shared<NSKeyedArchiver>();
  const id root = box("root");
  const auto delegate = std::make_shared<Delegate>([&](const id& object) {
    archiver->encodeObject(object, "early");
    return box("later");
  });
  archiver->setDelegate(delegate);
  archiver->encodeObject(root, "root");
  archiver->encodeObject(root, "again");
  EXPECT_THAT(delegate->asked, ElementsAre(root));
  const auto reader = NSKeyedUnarchiver::initForReadingFromData(archiver->encodedData());
  EXPECT_EQ(unboxText(reader->decodeObjectForKey("early")), "root");
  EXPECT_EQ(unboxText(reader->decodeObjectForKey("root")), "later");
  EXPECT_EQ(unboxText(reader->decodeObjectForKey("again")), "later");
}

/// Ends the archive that it is written into.
class Ending final : public NSObject {
 public:
  static Class classObject() {
    static const Class kClass = ClassBuilder<Ending>("EndingItsArchive", NSObject::classObject())
                                    .method<&Ending::encodeWithCoder>("encodeWithCoder:")
                                    .registered();
    return kClass;
  }
  Class isa() const override { return classObject(); }

 private:
  void encodeWithCoder(const Ref<NSCoder>& coder) const {
    static_cast<NSKeyedArchiver&>(*coder).encodedData();
  }
};

TEST(NSKeyedArchiver, CannotEndWhileAnObjectIsEncoded) {
  const auto archiver = std::make_shared<NSKeyedArchiver>();
  EXPECT_THAT(reasonOf([&] { archiver->encodeObject(std::make_shared<Ending>(), "a"); }),
              HasSubstr("cannot end while an object is encoded"));
  EXPECT_THAT(reasonOf([&] { archiver->encodedData(); }), HasSubstr("given up"));
}

TEST(NSKeyedArchiver, CannotEndWhileItsDelegateIsAsked) {
  const auto archiver = std::make_shared<NSKeyedArchiver>();
  const auto delegate = std::make_shared<Delegate>([&](const id& object) {
    archiver->encodedData();
    return object;
  });
  archiver->setDelegate(delegate);
  EXPECT_THAT(reasonOf([&] { archiver->encodeObject(box("a"), "a"); }),
              HasSubstr("cannot end while an object is encoded"));
}

TEST(NSKeyedArchiver, DoesNotOwnItsDelegate) {
  const auto archiver = std::make_shared<NSKeyedArchiver>();
  auto delegate = std::make_shared<Delegate>([](const id&) { return nullptr; });
  archiver->setDelegate(delegate);
  EXPECT_EQ(archiver->delegate(), delegate);
  delegate = nullptr;
  EXPECT_FALSE(archiver->delegate());
  EXPECT_EQ(unboxText(archivedAndRead(archiver, box("kept"))), "kept");
}

TEST(NSKeyedArchiver, ObjectsThatCannotBeEncodedRaise) {
  const id plain = std::make_shared<NSObject>();
  for (const id& root : {plain, id(NSArray::arrayWithObjects({plain}))}) {
    EXPECT_THAT(reasonOf([&] { NSKeyedArchiver::archivedDataWithRootObject(root); }),
                HasSubstr("-[NSObject encodeWithCoder:]: unrecognized selector"));
  }
}

TEST(NSKeyedArchiver, IsOfNoMoreUseAfterAnException) {
  const auto archiver = std::make_shared<NSKeyedArchiver>();
  EXPECT_THROW(archiver->encodeObject(std::make_shared<NSObject>(), "a"), NSException);
  EXPECT_THAT(reasonOf([&] { archiver->encodeInteger(1, "b"); }), HasSubstr("given up"));
  EXPECT_THAT(reasonOf([&] { archiver->encodedData(); }), HasSubstr("given up"));
}

TEST(NSKeyedArchiver, EndsOnceAndForAll) {
  const auto archiver = std::make_shared<NSKeyedArchiver>();
  archiver->encodeInteger(1, "a");
  EXPECT_EQ(archiver->encodedData(), archiver->encodedData());
  EXPECT_THAT(reasonOf([&] { archiver->encodeBool(true, "b"); }), HasSubstr("has ended"));
}

TEST(NSKeyedArchiver, RefusesAKeyThatIsUsedTwice) {
  const auto archiver = std::make_shared<NSKeyedArchiver>();
  archiver->encodeInteger(1, "a");
  EXPECT_THAT(reasonOf([&] { archiver->encodeInteger(1, "a"); }), HasSubstr("\"a\""));
}

TEST(NSKeyedArchiver, RefusesATextThatIsNotUtf8) {
  EXPECT_THAT(reasonOf([] { NSKeyedArchiver::archivedDataWithRootObject(box("\xFF")); }),
              HasSubstr("UTF-8"));
}

TEST(NSKeyedArchiver, KeysMayBeginWithADollarSign) {
  const auto archiver = std::make_shared<NSKeyedArchiver>();
  archiver->encodeInteger(1, "$class");
  archiver->encodeInteger(2, "$$class");
  const auto reader = NSKeyedUnarchiver::initForReadingFromData(archiver->encodedData());
  EXPECT_EQ(reader->decodeIntegerForKey("$class"), 1);
  EXPECT_EQ(reader->decodeIntegerForKey("$$class"), 2);
}

TEST(NSKeyedArchiver, AThousandObjectsMayLeadToOneAnother) {
  const auto chain = [](int length) {
    Ref<ArchivedNode> first;
    for (int i = 0; i < length; ++i) {
      auto node = ArchivedNode::nodeWithName("node");
      node->next = std::exchange(first, nullptr);
      first = std::move(node);
    }
    return first;
  };
  EXPECT_TRUE(archivedAndRead(chain(1'000)));
  EXPECT_THAT(reasonOf([&] { NSKeyedArchiver::archivedDataWithRootObject(chain(1'001)); }),
              HasSubstr("more than 1,000 objects"));
}

TEST(NSKeyedArchiver, WritesAMillionElements) {
  std::vector<id> elements;
  for (long i = 0; i < 1'000'000; ++i)
    elements.push_back(box(i));
  const id list = NSArray::arrayWithObjects(std::move(elements));
  EXPECT_TRUE(objectsAreEqual(archivedAndRead(list), list));
}

TEST(NSKeyedArchiver, OnlyWrites) {
  const auto archiver = std::make_shared<NSKeyedArchiver>();
  const std::function<void()> actions[] = {
      [&] { archiver->containsValueForKey("a"); }, [&] { archiver->decodeObjectForKey("a"); },
      [&] { archiver->decodeBoolForKey("a"); },    [&] { archiver->decodeIntegerForKey("a"); },
      [&] { archiver->decodeDoubleForKey("a"); },
  };
  for (const auto& action : actions)
    EXPECT_THAT(reasonOf(action), HasSubstr("unrecognized selector"));
}

}  // namespace
}  // namespace rvf
