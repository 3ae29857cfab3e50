// SPDX-License-Identifier: Apache-2.0
#include "Platform/Storage/NSUserDefaults.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <limits>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "Platform/Network/NSURL.h"
#include "Platform/Runtime/Messaging.h"
#include "Platform/Runtime/NSException.h"
#include "Platform/Storage/NSPropertyListSerialization.h"
#include "Platform/Values/NSDate.h"
#include "Platform/Values/NSMutableArray.h"
#include "Platform/Values/NSMutableDictionary.h"
#include "Platform/Values/NSNull.h"
#include "Platform/Values/NSNumber.h"
#include "Platform/Values/NSString.h"
#include "tests/Platform/Storage/TemporaryFolder.h"

namespace rvf {
namespace {

using testing::HasSubstr;

class NSUserDefaultsTest : public testing::Test {
 protected:
  Ref<NSUserDefaults> open() const { return NSUserDefaults::userDefaultsWithFile(path_); }
  id stored(std::string_view key) const { return open()->objectForKey(key); }

  TemporaryFolder folder_;
  const std::string path_ = folder_.file("till/defaults.plist");
  const Ref<NSUserDefaults> defaults_ = open();
};

std::string nameOfException(const std::function<void()>& action) {
  try {
    action();
  } catch (const NSException& exception) {
    return exception.name();
  }
  return "none";
}

TEST_F(NSUserDefaultsTest, KeepsEveryKindOfValueInItsFile) {
  const std::vector<std::pair<std::string, id>> values = {
      {"text", box("é 😀")},
      {"empty", box("")},
      {"", box("under the empty key")},
      {std::string("a\0b", 3), box(std::string("c\0d", 3))},
      {"number", box(-5)},
      {"fraction", box(0.1)},
      {"flag", box(true)},
      {"data", NSData::dataWithBytes("\xFF")},
      {"date", std::make_shared<NSDate>(0.125)},
      {"list", NSArray::arrayWithObjects({box(1), NSArray::array()})},
      {"map", NSDictionary::dictionaryWithEntries({{"a", box("b")}})},
  };
  for (const auto& [key, value] : values)
    defaults_->setObject(value, key);
  EXPECT_TRUE(defaults_->synchronize());
  for (const auto& [key, value] : values) {
    EXPECT_TRUE(objectsAreEqual(defaults_->objectForKey(key), value)) << key;
    EXPECT_TRUE(objectsAreEqual(stored(key), value)) << key;
  }
}

TEST_F(NSUserDefaultsTest, WritesABinaryListForItsOwnerOnly) {
  defaults_->setInteger(1, "a");
  EXPECT_TRUE(defaults_->synchronize());
  EXPECT_THAT(bytesOf(path_), testing::StartsWith("bplist00"));
  struct stat status = {};
  for (const auto& [path, mode] : {std::pair(path_, 0600), std::pair(path_ + ".lock", 0600),
                                   std::pair(folder_.file("till"), 0700)}) {
    EXPECT_EQ(stat(path.c_str(), &status), 0) << path;
    EXPECT_EQ(status.st_mode & 0777, mode) << path;
  }
}

TEST_F(NSUserDefaultsTest, ReadsWithoutMakingAnything) {
  EXPECT_FALSE(defaults_->objectForKey("a"));
  EXPECT_TRUE(defaults_->synchronize());
  EXPECT_FALSE(std::filesystem::exists(folder_.file("till")));
}

TEST_F(NSUserDefaultsTest, WritesOnlyWhenSynchronized) {
  defaults_->setInteger(1, "a");
  EXPECT_FALSE(std::filesystem::exists(path_));
  EXPECT_EQ(defaults_->integerForKey("a"), 1);
}

TEST_F(NSUserDefaultsTest, AbsentRemoves) {
  defaults_->setInteger(1, "a");
  defaults_->setInteger(1, "b");
  defaults_->synchronize();
  defaults_->setObject(nullptr, "a");
  defaults_->removeObjectForKey("b");
  defaults_->removeObjectForKey("never there");
  EXPECT_FALSE(defaults_->objectForKey("a"));
  EXPECT_TRUE(defaults_->synchronize());
  EXPECT_FALSE(stored("a"));
  EXPECT_FALSE(stored("b"));
}

TEST_F(NSUserDefaultsTest, RegisteredValuesShowWhereNoneIsSet) {
  defaults_->setInteger(9, "a");
  defaults_->registerDefaults(
      NSDictionary::dictionaryWithEntries({{"a", box(1)}, {"b", box(2)}, {"c", box(3)}}));
  defaults_->registerDefaults(NSDictionary::dictionaryWithEntries({{"c", box(4)}}));
  defaults_->registerDefaults(nullptr);
  EXPECT_EQ(defaults_->integerForKey("a"), 9);
  EXPECT_EQ(defaults_->integerForKey("b"), 2);
  EXPECT_EQ(defaults_->integerForKey("c"), 4);
  defaults_->removeObjectForKey("a");
  defaults_->removeObjectForKey("b");
  EXPECT_EQ(defaults_->integerForKey("a"), 1);
  EXPECT_EQ(defaults_->integerForKey("b"), 2);
  EXPECT_TRUE(defaults_->synchronize());
  EXPECT_FALSE(stored("b")) << "registered values are not stored";
}

TEST_F(NSUserDefaultsTest, SettingTakesADeepImmutableSnapshot) {
  const auto inner = NSMutableDictionary::dictionary();
  inner->setObject(box("before"), "k");
  const auto list = NSMutableArray::array();
  list->addObject(inner);
  defaults_->setObject(list, "list");
  defaults_->registerDefaults(NSDictionary::dictionaryWithEntries({{"registered", list}}));
  inner->setObject(box("after"), "k");
  list->removeAllObjects();
  for (const char* key : {"list", "registered"}) {
    const id value = defaults_->objectForKey(key);
    EXPECT_EQ(value->description(), "({k = before;})");
    EXPECT_TRUE(value->isMemberOfClass(NSArray::classObject()));
    EXPECT_TRUE(
        static_cast<NSArray&>(*value).firstObject()->isMemberOfClass(NSDictionary::classObject()));
  }
}

TEST_F(NSUserDefaultsTest, WhatIsImmutableIsSharedAndNotCopied) {
  const id row = NSDictionary::dictionaryWithEntries({{"k", box("v")}});
  const auto mutableRow = NSMutableDictionary::dictionary();
  const id shared = NSArray::arrayWithObjects({row, row});
  const id partly = NSArray::arrayWithObjects({row, mutableRow});
  defaults_->setObject(shared, "shared");
  defaults_->setObject(partly, "partly");
  EXPECT_EQ(defaults_->objectForKey("shared"), shared);
  const auto copy = std::static_pointer_cast<NSArray>(defaults_->objectForKey("partly"));
  EXPECT_NE(copy, partly);
  EXPECT_EQ(copy->objectAtIndex(0), row);
  EXPECT_NE(copy->objectAtIndex(1), mutableRow);
}

TEST_F(NSUserDefaultsTest, RefusesWhatNoPropertyListHolds) {
  const auto cyclic = NSMutableArray::array();
  cyclic->addObject(cyclic);
  const std::vector<id> values = {
      NSNull::null(),
      defaults_,
      NSArray::arrayWithObjects({NSNull::null()}),
      NSDictionary::dictionaryWithEntries({{"a", NSNull::null()}}),
      std::make_shared<NSDictionary>(NSDictionary::Entries{{box(1), box(1)}}),
      NSDictionary::dictionaryWithEntries({{"\xFF", box(1)}}),
      box("\xFF"),
      cyclic,
  };
  for (const id& value : values) {
    EXPECT_EQ(nameOfException([&] { defaults_->setObject(value, "k"); }),
              NSInvalidArgumentException);
    EXPECT_EQ(nameOfException([&] {
                defaults_->registerDefaults(NSDictionary::dictionaryWithEntries({{"k", value}}));
              }),
              NSInvalidArgumentException);
  }
  EXPECT_EQ(nameOfException([&] { defaults_->setInteger(1, "\xFF"); }), NSInvalidArgumentException);
  EXPECT_FALSE(defaults_->objectForKey("k"));
  cyclic->removeAllObjects();
}

TEST_F(NSUserDefaultsTest, TypedReadingsAnswerOnlyTheirKind) {
  const id text = box("t");
  const id list = NSArray::arrayWithObjects({text});
  const id mixed = NSArray::arrayWithObjects({text, box(1)});
  const id map = NSDictionary::dictionary();
  const id data = NSData::data();
  const struct {
    id value;
    std::string string;
    bool isArray, isDictionary, isData, isStringArray;
  } rows[] = {
      {text, "t", false, false, false, false},
      {list, "", true, false, false, true},
      {mixed, "", true, false, false, false},
      {map, "", false, true, false, false},
      {data, "", false, false, true, false},
      {box(5), "5", false, false, false, false},
      {box(1.5), "1.5", false, false, false, false},
      {nullptr, "", false, false, false, false},
      {std::make_shared<NSDate>(0), "", false, false, false, false},
  };
  for (const auto& row : rows) {
    defaults_->setObject(row.value, "k");
    const std::string name = row.value ? row.value->description() : "absent";
    EXPECT_EQ(unboxText(defaults_->stringForKey("k")).value_or(""), row.string) << name;
    EXPECT_EQ(defaults_->arrayForKey("k") != nullptr, row.isArray) << name;
    EXPECT_EQ(defaults_->dictionaryForKey("k") != nullptr, row.isDictionary) << name;
    EXPECT_EQ(defaults_->dataForKey("k") != nullptr, row.isData) << name;
    EXPECT_EQ(defaults_->stringArrayForKey("k") != nullptr, row.isStringArray) << name;
  }
}

TEST_F(NSUserDefaultsTest, NumbersAndTextsReadAsNumbers) {
  const struct {
    id value;
    long integer;
    double fraction;
    bool truth;
  } rows[] = {
      {nullptr, 0, 0, false},
      {box(12), 12, 12, true},
      {box(0.5), 0, 0.5, true},
      {box(true), 1, 1, true},
      {box("12abc"), 12, 12, true},
      {box(" +7"), 7, 7, true},
      {box("YES"), 0, 0, true},
      {box("true"), 0, 0, true},
      {box("1"), 1, 1, true},
      {box("no"), 0, 0, false},
      {box("1.9"), 1, 1.9, true},
      {box("99999999999999999999"), std::numeric_limits<long>::max(), 1e20, true},
      {NSArray::array(), 0, 0, false},
      {NSData::dataWithBytes("1"), 0, 0, false},
  };
  for (const auto& row : rows) {
    defaults_->setObject(row.value, "k");
    const std::string name = row.value ? row.value->description() : "absent";
    EXPECT_EQ(defaults_->integerForKey("k"), row.integer) << name;
    EXPECT_EQ(defaults_->doubleForKey("k"), row.fraction) << name;
    EXPECT_EQ(defaults_->floatForKey("k"), static_cast<float>(row.fraction)) << name;
    EXPECT_EQ(defaults_->boolForKey("k"), row.truth) << name;
  }
}

TEST_F(NSUserDefaultsTest, SettersKeepTheTypeCode) {
  defaults_->setInteger(-3, "integer");
  defaults_->setDouble(2.5, "double");
  defaults_->setFloat(0.5F, "float");
  defaults_->setBool(true, "bool");
  const auto codeOf = [](const id& value) { return dynamic_cast<NSNumber&>(*value).objCType(); };
  EXPECT_EQ(codeOf(defaults_->objectForKey("integer")), "q");
  EXPECT_EQ(codeOf(defaults_->objectForKey("double")), "d");
  EXPECT_EQ(codeOf(defaults_->objectForKey("float")), "f");
  EXPECT_EQ(codeOf(defaults_->objectForKey("bool")), "c");
  defaults_->synchronize();
  EXPECT_EQ(codeOf(stored("bool")), "c");
  EXPECT_EQ(codeOf(stored("integer")), "q");
}

TEST_F(NSUserDefaultsTest, KeepsURLsAsTheirAbsoluteText) {
  const auto base = NSURL::URLWithString("http://h/a/b");
  defaults_->setURL(NSURL::URLWithString("c?d", base), "url");
  EXPECT_EQ(unboxText(defaults_->objectForKey("url")), "http://h/a/c?d");
  EXPECT_TRUE(objectsAreEqual(defaults_->URLForKey("url"), NSURL::URLWithString("http://h/a/c?d")));
  defaults_->setURL(nullptr, "url");
  EXPECT_FALSE(defaults_->objectForKey("url"));
  defaults_->setObject(box("no url"), "url");
  EXPECT_FALSE(defaults_->URLForKey("url"));
  defaults_->setInteger(1, "url");
  EXPECT_FALSE(defaults_->URLForKey("url"));
}

TEST_F(NSUserDefaultsTest, TwoThatShareAFileLoseNothingOfEachOther) {
  const auto other = open();
  defaults_->setInteger(1, "mine");
  other->setInteger(2, "theirs");
  EXPECT_TRUE(defaults_->synchronize());
  EXPECT_TRUE(other->synchronize());
  EXPECT_FALSE(defaults_->objectForKey("theirs")) << "read again only when synchronized";
  EXPECT_TRUE(defaults_->synchronize());
  EXPECT_EQ(defaults_->integerForKey("theirs"), 2);
  EXPECT_EQ(other->integerForKey("mine"), 1);
}

TEST_F(NSUserDefaultsTest, OnlyKeysChangedHereReplaceTheFiles) {
  defaults_->setInteger(1, "a");
  defaults_->setInteger(1, "b");
  defaults_->setInteger(1, "c");
  defaults_->synchronize();
  const auto other = open();
  other->setInteger(2, "a");
  other->setInteger(2, "b");
  other->removeObjectForKey("c");
  other->synchronize();
  defaults_->setInteger(3, "b");
  EXPECT_TRUE(defaults_->synchronize());
  EXPECT_EQ(defaults_->integerForKey("a"), 2);
  EXPECT_EQ(defaults_->integerForKey("b"), 3);
  EXPECT_FALSE(defaults_->objectForKey("c"));
}

TEST_F(NSUserDefaultsTest, ExclusiveWorkSeesWhatOthersWrote) {
  const auto other = open();
  EXPECT_EQ(other->integerForKey("n"), 0);
  for (int i = 0; i < 3; ++i) {
    for (const auto& defaults : {defaults_, other}) {
      EXPECT_TRUE(defaults->performExclusively(
          [&] { defaults->setInteger(defaults->integerForKey("n") + 1, "n"); }));
    }
  }
  EXPECT_EQ(other->integerForKey("n"), 6);
}

TEST_F(NSUserDefaultsTest, ExclusiveWorkNestsAndItsExceptionsPass) {
  EXPECT_TRUE(defaults_->performExclusively([&] {
    EXPECT_TRUE(defaults_->performExclusively([&] { defaults_->setInteger(1, "a"); }));
    EXPECT_EQ(bytesOf(path_).substr(0, 6), "bplist");
  }));
  EXPECT_THROW(defaults_->performExclusively([&] {
    defaults_->setInteger(2, "a");
    throw std::runtime_error("no");
  }),
               std::runtime_error);
  EXPECT_EQ(open()->integerForKey("a"), 1);
  EXPECT_TRUE(open()->performExclusively([] {})) << "the lock is free again";
  EXPECT_TRUE(defaults_->synchronize());
  EXPECT_EQ(open()->integerForKey("a"), 2);
}

TEST_F(NSUserDefaultsTest, ADamagedFileIsSetAsideWithOneLine) {
  const struct { std::string_view bytes; } rows[] = {{"{"}, {"bplist00"}, {""}, {"(a)"}, {"word"}};
  std::filesystem::create_directories(folder_.file("till"));
  int number = 0;
  for (const auto& row : rows) {
    writeBytes(path_, row.bytes);
    const auto defaults = open();
    testing::internal::CaptureStderr();
    EXPECT_FALSE(defaults->objectForKey("a"));
    EXPECT_TRUE(defaults->synchronize());
    const std::string line = testing::internal::GetCapturedStderr();
    const std::string aside = path_ + ".damaged-" + std::to_string(++number);
    EXPECT_EQ(line, "User defaults: " + path_ + " is damaged; it was set aside as " + aside + "\n");
    EXPECT_EQ(bytesOf(aside), row.bytes);
    EXPECT_FALSE(std::filesystem::exists(path_));
  }
}

TEST_F(NSUserDefaultsTest, DamageThatCannotBeSetAsideFailsWithTheErrorOfTheLock) {
  std::filesystem::create_directories(path_ + ".lock");  // a folder in its place
  for (const std::string_view bytes : {"(a)", "{"}) {
    writeBytes(path_, bytes);
    const auto defaults = open();
    testing::internal::CaptureStderr();
    EXPECT_FALSE(defaults->synchronize()) << bytes;
    EXPECT_THAT(testing::internal::GetCapturedStderr(), HasSubstr("cannot be set aside"));
    const auto error = defaults->synchronizationError();
    ASSERT_TRUE(error && error->underlyingError()) << bytes;
    EXPECT_EQ(error->code(), 512) << bytes;
    EXPECT_EQ(error->underlyingError()->code(), EISDIR) << bytes;
    EXPECT_EQ(bytesOf(path_), bytes);
  }
}

TEST_F(NSUserDefaultsTest, APipeInPlaceOfTheFileIsNotWaitedFor) {
  std::filesystem::create_directories(folder_.file("till"));
  ASSERT_EQ(mkfifo(path_.c_str(), 0600), 0);
  EXPECT_FALSE(defaults_->synchronize());
  EXPECT_EQ(defaults_->synchronizationError()->code(), 256);
}

TEST_F(NSUserDefaultsTest, RefusesWhatUnfoldsTooFarAndGoesOnSaving) {
  id tree = NSArray::array();
  for (int i = 0; i < 100; ++i)
    tree = NSArray::arrayWithObjects({tree, tree});
  const id texts = NSArray::arrayWithObjects(std::vector<id>(3'000'000, box(std::string(50, 'x'))));
  for (const id& value : {tree, texts}) {
    EXPECT_EQ(nameOfException([&] { defaults_->setObject(value, "k"); }),
              NSInvalidArgumentException);
  }
  defaults_->setInteger(1, "other");
  EXPECT_TRUE(defaults_->synchronize());
  EXPECT_EQ(open()->integerForKey("other"), 1);
}

TEST_F(NSUserDefaultsTest, SharedCollectionsCountWithTheirDeepestPlace) {
  const auto nested = [](id list, int depth) {
    for (int i = 0; i < depth; ++i)
      list = NSArray::arrayWithObjects({list});
    return list;
  };
  const id inner = nested(NSArray::array(), 99);  // 100 deep; the file's root is one more
  const auto sharing = [&](int depth) {
    return NSArray::arrayWithObjects({inner, nested(inner, depth)});
  };
  EXPECT_EQ(nameOfException([&] { defaults_->setObject(sharing(154), "k"); }), "none");
  EXPECT_TRUE(defaults_->synchronize());
  EXPECT_EQ(nameOfException([&] { defaults_->setObject(sharing(155), "k"); }),
            NSInvalidArgumentException);
}

TEST_F(NSUserDefaultsTest, WhatIsKnownSurvivesDamageToTheFile) {
  defaults_->setInteger(1, "a");
  defaults_->synchronize();
  writeBytes(path_, "not any more");
  testing::internal::CaptureStderr();
  EXPECT_TRUE(defaults_->synchronize());
  EXPECT_THAT(testing::internal::GetCapturedStderr(), HasSubstr("set aside"));
  EXPECT_EQ(open()->integerForKey("a"), 1);
}

TEST_F(NSUserDefaultsTest, AFileInAnotherFormIsReadAndThenWrittenInBinary) {
  std::filesystem::create_directories(folder_.file("till"));
  writeBytes(path_, "{ name = \"Till 3\"; }");
  EXPECT_EQ(unboxText(defaults_->stringForKey("name")), "Till 3");
  defaults_->setInteger(1, "a");
  EXPECT_TRUE(defaults_->synchronize());
  EXPECT_THAT(bytesOf(path_), testing::StartsWith("bplist00"));
  EXPECT_EQ(unboxText(stored("name")), "Till 3");
}

TEST_F(NSUserDefaultsTest, AFolderThatVanishesComesBackWithEverything) {
  defaults_->setInteger(1, "a");
  defaults_->synchronize();
  std::filesystem::remove_all(folder_.file("till"));
  EXPECT_TRUE(defaults_->synchronize());
  EXPECT_EQ(open()->integerForKey("a"), 1);
}

TEST_F(NSUserDefaultsTest, AFileThatCannotBeReadIsLeftAlone) {
  std::filesystem::create_directories(path_);  // a folder in its place
  defaults_->setInteger(1, "a");
  EXPECT_FALSE(defaults_->synchronize());
  ASSERT_TRUE(defaults_->synchronizationError());
  EXPECT_EQ(defaults_->synchronizationError()->code(), 256);
  bool hasRun = false;
  EXPECT_FALSE(defaults_->performExclusively([&] { hasRun = true; }));
  EXPECT_FALSE(hasRun);
  EXPECT_EQ(defaults_->integerForKey("a"), 1);
  std::filesystem::remove(path_);
  EXPECT_TRUE(defaults_->synchronize());
  EXPECT_FALSE(defaults_->synchronizationError());
  EXPECT_EQ(open()->integerForKey("a"), 1);
}

TEST_F(NSUserDefaultsTest, AFolderThatCannotBeMadeFailsTheSynchronizationOnly) {
  writeBytes(folder_.file("till"), "a file in its place");
  defaults_->setInteger(1, "a");
  EXPECT_FALSE(defaults_->synchronize());
  const auto error = defaults_->synchronizationError();
  ASSERT_TRUE(error && error->underlyingError());
  EXPECT_EQ(error->domain(), NSCocoaErrorDomain);
  EXPECT_EQ(error->underlyingError()->domain(), NSPOSIXErrorDomain);
  EXPECT_EQ(defaults_->integerForKey("a"), 1);
  std::filesystem::remove(folder_.file("till"));
  EXPECT_TRUE(defaults_->synchronize());
  EXPECT_EQ(open()->integerForKey("a"), 1);
}

TEST_F(NSUserDefaultsTest, ServesManyThreads) {
  constexpr int kThreads = 4;
  constexpr int kRounds = 20;
  const auto other = open();
  std::vector<std::thread> threads;
  for (int thread = 0; thread < kThreads; ++thread) {
    threads.emplace_back([&, thread] {
      const auto& defaults = thread % 2 == 0 ? defaults_ : other;
      for (int round = 1; round <= kRounds; ++round) {
        defaults->setInteger(round, "own " + std::to_string(thread));
        defaults->registerDefaults(NSDictionary::dictionaryWithEntries({{"r", box(round)}}));
        EXPECT_TRUE(defaults->performExclusively(
            [&] { defaults->setInteger(defaults->integerForKey("n") + 1, "n"); }));
        EXPECT_TRUE(defaults->boolForKey("r"));
      }
    });
  }
  for (std::thread& thread : threads)
    thread.join();
  const auto all = open();
  EXPECT_EQ(all->integerForKey("n"), kThreads * kRounds);
  for (int thread = 0; thread < kThreads; ++thread)
    EXPECT_EQ(all->integerForKey("own " + std::to_string(thread)), kRounds);
}

TEST(NSUserDefaults, LiesWhereTheEnvironmentSays) {
  EXPECT_EQ(NSUserDefaults::filePath("/c", "/h", "till"), "/c/till/defaults.plist");
  EXPECT_EQ(NSUserDefaults::filePath("", "/h", "till"), "/h/.config/till/defaults.plist");
  EXPECT_EQ(NSUserDefaults::filePath("relative", "/h", "till"), "/h/.config/till/defaults.plist");
  EXPECT_THAT(NSUserDefaults::filePath("", "", "till"),
              testing::EndsWith("/.config/till/defaults.plist"));
}

TEST(NSUserDefaults, TheStandardOnesAreSharedAndNamedBeforeTheirUse) {
  const TemporaryFolder folder;
  ASSERT_EQ(setenv("XDG_CONFIG_HOME", folder.path().c_str(), 1), 0);
  for (const char* name : {"", ".", "..", "a/b"}) {
    EXPECT_EQ(nameOfException([&] { NSUserDefaults::setStandardFolderName(name); }),
              NSInvalidArgumentException)
        << name;
  }
  NSUserDefaults::setStandardFolderName("till");
  const auto standard = NSUserDefaults::standardUserDefaults();
  EXPECT_EQ(standard, NSUserDefaults::standardUserDefaults());
  EXPECT_EQ(nameOfException([] { NSUserDefaults::setStandardFolderName("other"); }),
            NSInternalInconsistencyException);
  standard->setInteger(1, "a");
  EXPECT_TRUE(standard->synchronize());
  EXPECT_TRUE(std::filesystem::exists(folder.file("till/defaults.plist")));
  unsetenv("XDG_CONFIG_HOME");
}

TEST_F(NSUserDefaultsTest, AnswersMessages) {
  send(defaults_, SEL("setInteger:forKey:"), 5L, std::string("k"));
  EXPECT_EQ(send<long>(defaults_, SEL("integerForKey:"), std::string("k")), 5);
  EXPECT_TRUE(send<bool>(defaults_, SEL("synchronize")));
}

}  // namespace
}  // namespace rvf
