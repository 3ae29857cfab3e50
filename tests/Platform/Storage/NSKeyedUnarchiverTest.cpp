// SPDX-License-Identifier: Apache-2.0
#include "Platform/Storage/NSKeyedUnarchiver.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <rapidcheck.h>

#include <functional>
#include <string>

#include "Platform/Runtime/ClassBuilder.h"
#include "Platform/Runtime/ClassRegistration.h"
#include "Platform/Runtime/Messaging.h"
#include "Platform/Runtime/NSException.h"
#include "Platform/Storage/ArchiveReference.h"
#include "Platform/Storage/BinaryPropertyListWriter.h"
#include "Platform/Storage/NSKeyedArchiver.h"
#include "Platform/Values/NSDate.h"
#include "Platform/Values/NSMutableArray.h"
#include "Platform/Values/NSMutableDictionary.h"
#include "Platform/Values/NSNull.h"
#include "Platform/Values/NSNumber.h"
#include "Platform/Values/NSSet.h"
#include "Platform/Values/NSString.h"
#include "tests/Platform/Storage/ArchivedNode.h"

namespace rvf {
namespace {

using testing::HasSubstr;

id to(std::uint64_t number) {
  return std::make_shared<ArchiveReference>(number);
}

id list(std::vector<id> objects) {
  return NSArray::arrayWithObjects(std::move(objects));
}

/// The archived form of a class of this name.
id named(const char* name) {
  return NSDictionary::dictionaryWithEntries({{"$classname", box(name)}, {"$classes", list({})}});
}

using Entries = NSDictionary::TextEntries;

id map(Entries entries) {
  return NSDictionary::dictionaryWithEntries(entries);
}

Ref<NSData> bytesOf(const id& root) {
  std::string problem;
  return NSData::dataWithBytes(
      writtenBinaryPropertyList(root, ArchiveReferences::allowed, problem));
}

/// An archive of these objects behind "$null", the first of them the root.
Ref<NSData> archiveOf(std::vector<id> objects) {
  objects.insert(objects.begin(), box("$null"));
  return bytesOf(map({{"$version", box(100'000)},
                      {"$archiver", box("NSKeyedArchiver")},
                      {"$top", map({{"root", to(1)}})},
                      {"$objects", list(std::move(objects))}}));
}

/// What is said to be wrong with the archive.
std::string problemOf(const Ref<NSData>& data) {
  Ref<NSError> error;
  const id root = NSKeyedUnarchiver::unarchiveTopLevelObjectWithData(data, &error);
  if (root || !error) return "nothing is wrong";
  EXPECT_EQ(error->domain(), NSCocoaErrorDomain);
  EXPECT_EQ(error->code(), 4864);
  return error->userInfo()->textForKey("NSDebugDescription").value_or("");
}

id read(const Ref<NSData>& data) {
  Ref<NSError> error;
  id root = NSKeyedUnarchiver::unarchiveTopLevelObjectWithData(data, &error);
  EXPECT_FALSE(error) << error->description();
  return root;
}

TEST(NSKeyedUnarchiver, ReadsEveryKindOfObjectThatIsWritten) {
  const auto mutableList = NSMutableArray::array();
  mutableList->addObject(NSNull::null());
  const auto mutableMap = NSMutableDictionary::dictionary();
  mutableMap->setObject(box(1), "a");
  const id rows[] = {
      box("é 😀"),
      box(""),
      box("$null"),
      box(-5),
      box(~0UL),
      box(0.1),
      box(true),
      NSData::dataWithBytes("\xFF"),
      std::make_shared<NSDate>(-0.125),
      NSNull::null(),
      NSArray::array(),
      list({box(1), list({box("a")})}),
      NSDictionary::dictionary(),
      std::make_shared<NSDictionary>(
          NSDictionary::Entries{{box(1), box("a")}, {box("b"), list({})}}),
      NSSet::setWithObjects({box(1), box("a")}),
      mutableList,
      mutableMap,
  };
  for (const id& object : rows) {
    const id again = read(NSKeyedArchiver::archivedDataWithRootObject(object));
    EXPECT_TRUE(objectsAreEqual(again, object)) << object->description();
    EXPECT_TRUE(again && again->isMemberOfClass(object->isa())) << object->description();
  }
}

TEST(NSKeyedUnarchiver, NumbersKeepTheirKind) {
  const id numbers = list({box(true), box(1), box(~0UL), box(1.0)});
  const auto again =
      std::static_pointer_cast<NSArray>(read(NSKeyedArchiver::archivedDataWithRootObject(numbers)));
  std::string codes;
  for (const id& number : *again)
    codes += static_cast<const NSNumber&>(*number).objCType();
  EXPECT_EQ(codes, "cqQd");
}

TEST(NSKeyedUnarchiver, ReadsTheTopByKey) {
  const auto archiver = std::make_shared<NSKeyedArchiver>();
  archiver->encodeObject(box("text"), "object");
  archiver->encodeObject(nullptr, "absent");
  archiver->encodeBool(true, "flag");
  archiver->encodeInteger(-7, "integer");
  archiver->encodeDouble(2.5, "double");
  const auto reader = NSKeyedUnarchiver::initForReadingFromData(archiver->encodedData());
  EXPECT_EQ(unboxText(reader->decodeObjectForKey("object")), "text");
  EXPECT_TRUE(reader->containsValueForKey("absent"));
  EXPECT_FALSE(reader->decodeObjectForKey("absent"));
  EXPECT_TRUE(reader->decodeBoolForKey("flag"));
  EXPECT_EQ(reader->decodeIntegerForKey("integer"), -7);
  EXPECT_EQ(reader->decodeDoubleForKey("double"), 2.5);
  EXPECT_EQ(reader->decodeDoubleForKey("integer"), -7);
  EXPECT_EQ(reader->decodeIntegerForKey("double"), 2);
  EXPECT_FALSE(reader->error());
}

TEST(NSKeyedUnarchiver, WhatIsMissingReadsAsAbsentOrZero) {
  const auto archiver = std::make_shared<NSKeyedArchiver>();
  const auto reader = NSKeyedUnarchiver::initForReadingFromData(archiver->encodedData());
  EXPECT_FALSE(reader->containsValueForKey("a"));
  EXPECT_FALSE(reader->decodeObjectForKey("a"));
  EXPECT_FALSE(reader->decodeBoolForKey("a"));
  EXPECT_EQ(reader->decodeIntegerForKey("a"), 0);
  EXPECT_EQ(reader->decodeDoubleForKey("a"), 0);
  EXPECT_FALSE(reader->error());
}

TEST(NSKeyedUnarchiver, RefusesWhatIsNoArchive) {
  const id top = map({});
  const id objects = list({box("$null")});
  const id name = box("NSKeyedArchiver");
  const struct {
    Ref<NSData> data;
    const char* problem;
  } rows[] = {
      {nullptr, "no trailer"},
      {NSData::dataWithBytes("{}"), "no trailer"},
      {bytesOf(list({})), "no keyed archive"},
      {bytesOf(map({})), "no keyed archive"},
      {bytesOf(map({{"$archiver", box(1)}})), "no keyed archive"},
      {bytesOf(map({{"$archiver", box("another")}})), "no keyed archive"},
      {bytesOf(map({{"$archiver", name}})), "another version"},
      {bytesOf(
           map({{"$archiver", name}, {"$version", box(1)}, {"$top", top}, {"$objects", objects}})),
       "another version"},
      {bytesOf(map({{"$archiver", name},
                    {"$version", box(100'000)},
                    {"$top", objects},
                    {"$objects", objects}})),
       "without objects"},
      {bytesOf(map(
           {{"$archiver", name}, {"$version", box(100'000)}, {"$top", top}, {"$objects", top}})),
       "without objects"},
  };
  for (const auto& row : rows)
    EXPECT_THAT(problemOf(row.data), HasSubstr(row.problem));
}

TEST(NSKeyedUnarchiver, RefusesDamagedObjects) {
  const id arrayClass = named("NSArray");
  const struct {
    std::vector<id> objects;
    const char* problem;
  } rows[] = {
      {{}, "a reference to no object"},
      {{to(1)}, "no object of an archive"},
      {{list({})}, "no object of an archive"},
      {{std::make_shared<NSDate>(0)}, "no object of an archive"},
      {{map({})}, "an object of no class"},
      {{map({{"$class", box("NSArray")}})}, "an object of no class"},
      {{map({{"$class", to(9)}})}, "a reference to no class"},
      {{map({{"$class", to(2)}}), box("NSArray")}, "a class without a name"},
      {{map({{"$class", to(1)}})}, "a class without a name"},
      {{map({{"$class", to(2)}}), map({{"$classname", box(1)}})}, "a class without a name"},
      {{map({{"$class", to(2)}}), named("NoSuchClass")}, "no class is called \"NoSuchClass\""},
      {{map({{"$class", to(2)}}), named("NSObject")}, "NSObject cannot be unarchived"},
      {{map({{"$class", to(2)}}), named("NSUserDefaults")}, "NSUserDefaults cannot be unarchived"},
      {{map({{"$class", to(2)}}), arrayClass}, "no list under \"NS.objects\""},
      {{map({{"$class", to(2)}, {"NS.objects", to(0)}}), arrayClass}, "no list"},
      {{map({{"$class", to(2)}, {"NS.objects", list({box(1)})}}), arrayClass}, "no reference"},
      {{map({{"$class", to(2)}, {"NS.objects", list({to(0)})}}), arrayClass}, "an absent element"},
      {{map({{"$class", to(2)}, {"NS.objects", list({to(7)})}}), arrayClass}, "to no object"},
      {{map({{"$class", to(2)}, {"NS.objects", list({to(~0UL)})}}), arrayClass}, "to no object"},
      {{map({{"$class", to(2)}, {"NS.objects", list({to(1)})}}), arrayClass}, "contain itself"},
      {{map({{"$class", to(2)}, {"NS.objects", list({to(1)})}}), named("NSSet")}, "contain itself"},
      {{map({{"$class", to(2)}, {"NS.objects", list({})}}), named("NSDictionary")}, "\"NS.keys\""},
      {{map({{"$class", to(2)}, {"NS.keys", list({to(3)})}, {"NS.objects", list({})}}),
        named("NSDictionary"), box("k")},
       "not as many keys"},
      {{map({{"$class", to(2)}, {"NS.keys", list({to(1)})}, {"NS.objects", list({to(3)})}}),
        named("NSDictionary"), box("k")},
       "contain itself"},
      {{map({{"$class", to(2)}}), named("NSDate")}, "a date without time"},
      {{map({{"$class", to(2)}, {"NS.time", box("now")}}), named("NSDate")}, "no number"},
      {{map({{"$class", to(2)}, {"name", box("direct")}}), named("ArchivedNode")}, "no reference"},
      {{map({{"$class", to(2)}, {"count", to(2)}}), named("ArchivedNode")}, "no number"},
  };
  for (const auto& row : rows)
    EXPECT_THAT(problemOf(archiveOf(row.objects)), HasSubstr(row.problem));
}

TEST(NSKeyedUnarchiver, MutableCollectionsMayContainThemselves) {
  const auto array = std::dynamic_pointer_cast<NSMutableArray>(read(archiveOf(
      {map({{"$class", to(2)}, {"NS.objects", list({to(1), to(1)})}}), named("NSMutableArray")})));
  ASSERT_TRUE(array && array->count() == 2);
  EXPECT_EQ(array->objectAtIndex(1), array);
  array->removeAllObjects();
  const auto dictionary = std::dynamic_pointer_cast<NSMutableDictionary>(read(archiveOf(
      {map({{"$class", to(2)}, {"NS.keys", list({to(3)})}, {"NS.objects", list({to(1)})}}),
       named("NSMutableDictionary"), box("self")})));
  ASSERT_TRUE(dictionary);
  EXPECT_EQ(dictionary->objectForKey("self"), dictionary);
  dictionary->removeAllObjects();
}

TEST(NSKeyedUnarchiver, RefusesKeysAndElementsOfSetsThatLeadBackToThemselves) {
  const id toSelf = list({to(3)});
  const id mutableArray = named("NSMutableArray");
  const id loop = map({{"$class", to(4)}, {"NS.objects", toSelf}});
  EXPECT_THAT(problemOf(archiveOf({map({{"$class", to(2)}, {"NS.objects", list({to(3)})}}),
                                   named("NSSet"), loop, mutableArray})),
              HasSubstr("too long to compare"));
  EXPECT_THAT(problemOf(archiveOf(
                  {map({{"$class", to(2)}, {"NS.keys", toSelf}, {"NS.objects", list({to(5)})}}),
                   named("NSDictionary"), loop, mutableArray, box("value")})),
              HasSubstr("too long to compare"));
}

TEST(NSKeyedUnarchiver, RefusesElementsOfSetsThatUnfoldWithoutEnd) {
  std::vector<id> objects = {map({{"$class", to(2)}, {"NS.objects", list({to(4)})}}),
                             named("NSSet"), named("NSArray")};
  for (std::uint64_t i = 4; i < 64; ++i)
    objects.push_back(map({{"$class", to(3)}, {"NS.objects", list({to(i + 1), to(i + 1)})}}));
  objects.push_back(box("end"));
  EXPECT_THAT(problemOf(archiveOf(std::move(objects))), HasSubstr("too long to compare"));
}

TEST(NSKeyedUnarchiver, ElementsOfSetsMayLeadBackToObjectsThatGoByIdentity) {
  const auto parent = ArchivedNode::nodeWithName("parent");
  const auto child = ArchivedNode::nodeWithName("child");
  child->next = parent;
  parent->next = NSSet::setWithObjects({parent, child, list({box("key")})});
  const auto again = std::static_pointer_cast<ArchivedNode>(
      read(NSKeyedArchiver::archivedDataWithRootObject(parent)));
  const auto children = std::static_pointer_cast<NSSet>(again->next);
  EXPECT_EQ(children->count(), 3U);
  EXPECT_TRUE(children->containsObject(again));
  EXPECT_TRUE(children->containsObject(list({box("key")})));
  parent->next = nullptr;
  again->next = nullptr;
}

TEST(NSKeyedUnarchiver, RefusesMoreThanAThousandObjectsInARow) {
  std::vector<id> objects;
  for (std::uint64_t i = 0; i < 5'000; ++i)
    objects.push_back(map({{"$class", to(5'001)}, {"NS.objects", list({to(i + 2)})}}));
  objects.push_back(named("NSArray"));
  EXPECT_THAT(problemOf(archiveOf(std::move(objects))), HasSubstr("more than 1,000 objects"));
}

TEST(NSKeyedUnarchiver, EverythingIsAbsentAfterAFailure) {
  const auto data = bytesOf(map({{"$version", box(100'000)},
                                 {"$archiver", box("NSKeyedArchiver")},
                                 {"$top", map({{"a", to(9)}, {"b", to(1)}, {"n", box(5)}})},
                                 {"$objects", list({box("$null"), box("text")})}}));
  const auto reader = NSKeyedUnarchiver::initForReadingFromData(data);
  EXPECT_EQ(unboxText(reader->decodeObjectForKey("b")), "text");
  EXPECT_EQ(reader->decodeIntegerForKey("n"), 5);
  EXPECT_FALSE(reader->decodeObjectForKey("a"));
  const auto first = reader->error();
  ASSERT_TRUE(first);
  EXPECT_FALSE(reader->decodeObjectForKey("b"));
  EXPECT_EQ(reader->decodeIntegerForKey("n"), 0);
  EXPECT_FALSE(reader->containsValueForKey("n"));
  EXPECT_EQ(reader->error(), first);
}

TEST(NSKeyedUnarchiver, AFailureLeavesAloneWhatEarlierCallsAnswered) {
  const auto elements = NSMutableArray::array();
  elements->addObject(box(1));
  const auto entries = NSMutableDictionary::dictionary();
  entries->setObject(elements, "list");
  const auto archiver = std::make_shared<NSKeyedArchiver>();
  archiver->encodeObject(entries, "map");
  archiver->encodeObject(box("text"), "text");
  auto reader = NSKeyedUnarchiver::initForReadingFromData(archiver->encodedData());
  const id again = reader->decodeObjectForKey("map");
  EXPECT_EQ(reader->decodeIntegerForKey("text"), 0);
  EXPECT_TRUE(reader->error());
  EXPECT_FALSE(reader->decodeObjectForKey("map"));
  reader = nullptr;
  EXPECT_TRUE(objectsAreEqual(again, entries)) << again->description();
}

TEST(NSKeyedUnarchiver, AnObjectThatFailsLeavesAloneTheCollectionsThatItShares) {
  const auto data = bytesOf(
      map({{"$version", box(100'000)},
           {"$archiver", box("NSKeyedArchiver")},
           {"$top", map({{"good", to(1)}, {"bad", to(2)}})},
           {"$objects", list({box("$null"), map({{"$class", to(3)}, {"NS.objects", list({to(4)})}}),
                              map({{"$class", to(3)}, {"NS.objects", list({to(1), to(2), to(9)})}}),
                              named("NSMutableArray"), box("element")})}}));
  const auto reader = NSKeyedUnarchiver::initForReadingFromData(data);
  const id good = reader->decodeObjectForKey("good");
  EXPECT_FALSE(reader->decodeObjectForKey("bad"));
  EXPECT_EQ(good->description(), "(element)");
}

/// Answers another object, none, or an exception from `initWithCoder:`, as its archive says.
class Fickle final : public NSObject {
 public:
  static Class classObject() {
    static const Class kClass =
        ClassBuilder<Fickle>("FickleWhenUnarchived", NSObject::classObject())
            .method<&Fickle::initWithCoder>("initWithCoder:")
            .method("alloc", allocImplementation<Fickle>())
            .registered();
    return kClass;
  }
  Class isa() const override { return classObject(); }

 private:
  id initWithCoder(const Ref<NSCoder>& coder) {
    if (coder->decodeBoolForKey("raises")) NSException::raise(NSGenericException, "no");
    return coder->decodeObjectForKey("other");
  }
};

TEST(NSKeyedUnarchiver, AnObjectMayAnswerAnotherOneOrNone) {
  Fickle::classObject();
  const id aClass = named("FickleWhenUnarchived");
  EXPECT_EQ(unboxText(read(
                archiveOf({map({{"$class", to(2)}, {"other", to(3)}}), aClass, box("other")}))),
            "other");
  EXPECT_FALSE(read(archiveOf({map({{"$class", to(2)}}), aClass})));
}

TEST(NSKeyedUnarchiver, AnExceptionWhileReadingIsAnErrorOfTheArchive) {
  Fickle::classObject();
  const auto data =
      archiveOf({map({{"$class", to(2)}, {"raises", box(true)}}), named("FickleWhenUnarchived")});
  EXPECT_EQ(problemOf(data), "NSGenericException: no");
  const auto reader = NSKeyedUnarchiver::initForReadingFromData(data);
  EXPECT_THROW(reader->decodeObjectForKey("root"), NSException);
}

/// A subclass that says nothing of how its instances are made.
class UnmadeNode : public NSObject {
 public:
  static Class classObject() {
    static const Class kClass =
        ClassBuilder<UnmadeNode>("UnmadeNode", ArchivedNode::classObject()).registered();
    return kClass;
  }
};

TEST(NSKeyedUnarchiver, SubclassesAreNotMadeAsTheirSuperclass) {
  UnmadeNode::classObject();
  EXPECT_THAT(problemOf(archiveOf({map({{"$class", to(2)}}), named("UnmadeNode")})),
              HasSubstr("UnmadeNode cannot be unarchived"));
}

TEST(NSKeyedUnarchiver, OnlyReads) {
  const auto reader = NSKeyedUnarchiver::initForReadingFromData(archiveOf({}));
  const std::function<void()> actions[] = {
      [&] { reader->encodeObject(nullptr, "a"); },
      [&] { reader->encodeBool(true, "a"); },
      [&] { reader->encodeInteger(1, "a"); },
      [&] { reader->encodeDouble(1, "a"); },
      [&] { reader->encodeConditionalObject(nullptr, "a"); },
  };
  for (const auto& action : actions)
    EXPECT_THROW(action(), NSException);
}

TEST(NSKeyedUnarchiver, AnswersMessages) {
  const Ref<NSCoder> reader = NSKeyedUnarchiver::initForReadingFromData(archiveOf({box("text")}));
  const id root = send<id>(reader, SEL("decodeObjectForKey:"), std::string("root"));
  EXPECT_EQ(unboxText(root), "text");
}

TEST(NSKeyedUnarchiver, ADamagedByteIsReadOrRefused) {
  const auto node = ArchivedNode::nodeWithName("node");
  node->next = list({box(1), map({{"a", box(2.5)}}), NSSet::setWithObjects({box("b")})});
  const std::string good(NSKeyedArchiver::archivedDataWithRootObject(node)->characters());
  EXPECT_TRUE(rc::check([&good](unsigned char value) {
    std::string bytes = good;
    bytes[*rc::gen::inRange<std::size_t>(0, bytes.size())] = static_cast<char>(value);
    Ref<NSError> error;
    NSKeyedUnarchiver::unarchiveTopLevelObjectWithData(NSData::dataWithBytes(bytes), &error);
    ArchivedNode::breakCircles();
    RC_ASSERT((!error || error->code() == NSCoderReadCorruptError));
  }));
}

}  // namespace
}  // namespace rvf
