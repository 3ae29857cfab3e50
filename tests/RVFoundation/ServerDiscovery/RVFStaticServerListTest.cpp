// SPDX-License-Identifier: Apache-2.0
#include "RVFoundation/ServerDiscovery/RVFStaticServerList.h"

#include <gtest/gtest.h>
#include <rapidcheck.h>
#include <stdlib.h>

#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "Platform/Locale/NSLocale.h"
#include "Platform/Runtime/NSException.h"
#include "Platform/Runtime/Runtime.h"
#include "Platform/Text/Text.h"
#include "Platform/Values/NSNumber.h"
#include "Platform/Values/NSString.h"
#include "RVFoundation/CoreServices/RVFLibraryBundle.h"
#include "RVFoundation/RuntimeServices/RVFTestingUserDefaults.h"
#include "tests/Platform/Storage/TemporaryFolder.h"
#include "tests/Platform/Text/TextGenerators.h"

namespace rvf {
namespace {

enum class StoreKind { testing, file };

/// Every behaviour on defaults in memory and on those in a file.
class RVFStaticServerListTest : public testing::TestWithParam<StoreKind> {
 protected:
  Ref<NSUserDefaults> makeDefaults() const {
    if (GetParam() == StoreKind::testing) return RVFTestingUserDefaults::testingDefaults();
    return NSUserDefaults::userDefaultsWithFile(folder_.file("defaults.plist"));
  }
  static Ref<RVFStaticServer> server(const char* address, const char* description = nullptr) {
    auto made = RVFStaticServer::staticServerWithAddress(address);
    if (description) made->setServerDescription(description);
    return made;
  }
  std::string stored() const {
    const id value = defaults_->objectForKey(kStaticServersKey);
    return value ? value->description() : "missing";
  }
  std::vector<std::string> addresses(const RVFStaticServerList& list) const {
    std::vector<std::string> result;
    for (std::size_t i = 0; i < list.serverCount(); ++i)
      result.push_back(list.serverAtIndex(i)->serverAddress().value_or("absent"));
    return result;
  }
  Ref<RVFStaticServerList> another() const {
    return std::make_shared<RVFStaticServerList>(defaults_);
  }

  const TemporaryFolder folder_;
  const Ref<NSUserDefaults> defaults_ = makeDefaults();
  const Ref<RVFStaticServerList> list_ = std::make_shared<RVFStaticServerList>(defaults_);
};

using Addresses = std::vector<std::string>;

INSTANTIATE_TEST_SUITE_P(Stores, RVFStaticServerListTest,
                         testing::Values(StoreKind::testing, StoreKind::file),
                         [](const auto& store) {
                           return store.param == StoreKind::testing ? "InMemory" : "InAFile";
                         });

TEST_P(RVFStaticServerListTest, IsEmptyWithoutAStoredList) {
  EXPECT_EQ(list_->serverCount(), 0U);
  EXPECT_EQ(stored(), "missing");
}

TEST_P(RVFStaticServerListTest, KeepsItsOrderThroughEveryChange) {
  list_->addServer(server("b"));
  list_->addServer(server("d"));
  list_->insertServer(server("a"), 0);
  list_->insertServer(server("c"), 2);
  list_->insertServer(server("e"), 4);
  EXPECT_EQ(addresses(*list_), (Addresses{"a", "b", "c", "d", "e"}));
  EXPECT_EQ(addresses(*another()), addresses(*list_));
  list_->removeServerAtIndex(1);
  EXPECT_EQ(addresses(*another()), (Addresses{"a", "c", "d", "e"}));
}

/// In memory, and after a while without room for anything.
class FillingDefaults final : public NSUserDefaults {
 public:
  FillingDefaults() : NSUserDefaults(std::nullopt) {}

  void setObject(const id& object, std::string_view key) override {
    if (isFull) NSException::raise(NSInvalidArgumentException, "full");
    NSUserDefaults::setObject(object, key);
  }
  bool isFull = false;
};

TEST(RVFStaticServerList, AChangeThatCannotBeSavedIsTakenBack) {
  const auto defaults = std::make_shared<FillingDefaults>();
  const auto list = std::make_shared<RVFStaticServerList>(defaults);
  const auto server = RVFStaticServer::staticServerWithAddress("a");
  list->addServer(server);
  defaults->isFull = true;
  EXPECT_THROW(list->addServer(RVFStaticServer::staticServerWithAddress("b")), NSException);
  EXPECT_THROW(list->insertServer(RVFStaticServer::staticServerWithAddress("b"), 0), NSException);
  EXPECT_THROW(list->removeServerAtIndex(0), NSException);
  ASSERT_EQ(list->serverCount(), 1U);
  EXPECT_EQ(list->serverAtIndex(0), server);
  defaults->isFull = false;
  list->addServer(RVFStaticServer::staticServerWithAddress("c"));
  EXPECT_EQ(RVFStaticServerList(defaults).serverCount(), 2U);
}

TEST_P(RVFStaticServerListTest, ATextThatIsNoUTF8KeepsNoServerFromBeingSaved) {
  const auto bad = server("\xC3:80", "caf\xE9");
  bad->setServerId("\xFF");
  list_->addServer(server("a"));
  list_->insertServer(bad, 0);
  EXPECT_EQ(addresses(*another()), (Addresses{"\uFFFD:80", "a"}));
  EXPECT_EQ(another()->serverAtIndex(0)->serverDescription(), "caf\uFFFD");
  EXPECT_EQ(another()->serverAtIndex(0)->serverId(), "\uFFFD");
  EXPECT_EQ(list_->serverAtIndex(0), bad);
  EXPECT_EQ(bad->serverAddress(), "\xC3:80") << "until the list is loaded";
}

TEST_P(RVFStaticServerListTest, ABadTextSetLaterLeavesTheListUsable) {
  for (const char* address : {"a", "b", "c"})
    list_->addServer(server(address));
  list_->serverAtIndex(1)->setServerDescription("\xE2\x82");
  list_->addServer(server("d"));
  list_->removeServerAtIndex(0);
  list_->insertServer(server("e"), 1);
  EXPECT_EQ(addresses(*list_), (Addresses{"b", "e", "c", "d"}));
  EXPECT_EQ(addresses(*another()), addresses(*list_));
  EXPECT_EQ(another()->serverAtIndex(0)->serverDescription(), "\uFFFD\uFFFD");
}

/// What a server of any texts is after loading: bytes that are no UTF-8 are U+FFFD.
using Record = std::pair<std::string, std::optional<std::string>>;

Ref<RVFStaticServer> anyServer(std::vector<Record>& records, std::size_t at) {
  const std::string address = *anyBytes();
  const auto made = RVFStaticServer::staticServerWithAddress(address);
  Record record{wellFormedUtf8(address), std::nullopt};
  if (*rc::gen::arbitrary<bool>()) {
    const std::string description = *rc::gen::oneOf(anyText(), anyBytes());
    made->setServerDescription(description);
    record.second = wellFormedUtf8(description);
  }
  records.insert(records.begin() + static_cast<std::ptrdiff_t>(at), record);
  return made;
}

TEST_P(RVFStaticServerListTest, AnyChangesAreThereAfterLoading) {
  EXPECT_TRUE(rc::check([this] {
    defaults_->removeObjectForKey(kStaticServersKey);
    defaults_->synchronize();
    list_->load();
    std::vector<Record> records;
    for (const int change :
         *rc::gen::resize(20, rc::gen::container<std::vector<int>>(rc::gen::inRange(0, 3)))) {
      const auto at = *rc::gen::inRange<std::size_t>(0, records.size() + 1);
      if (change == 0) list_->addServer(anyServer(records, records.size()));
      if (change == 1) list_->insertServer(anyServer(records, at), at);
      if (change == 2 && at < records.size()) {
        list_->removeServerAtIndex(at);
        records.erase(records.begin() + static_cast<std::ptrdiff_t>(at));
      }
    }
    std::vector<Record> loaded;
    const RVFStaticServerList again(GetParam() == StoreKind::file ? makeDefaults() : defaults_);
    for (std::size_t i = 0; i < again.serverCount(); ++i) {
      const auto server = again.serverAtIndex(i);
      loaded.emplace_back(server->serverAddress().value_or("absent"), server->serverDescription());
      RC_ASSERT(server->serverId() == list_->serverAtIndex(i)->serverId());
    }
    RC_ASSERT(loaded == records);
  }));
}

TEST_P(RVFStaticServerListTest, SavesEveryPropertyThatIsThere) {
  const auto first = server("10.0.0.5", "");
  first->setServerId("ID");
  list_->addServer(first);
  EXPECT_EQ(stored(), "({serverAddress = 10.0.0.5; serverDescription = ; serverId = ID;})");
  const auto again = another()->serverAtIndex(0);
  EXPECT_EQ(again->serverId(), "ID");
  EXPECT_EQ(again->serverDescription(), "");
  EXPECT_EQ(again->serverAddress(), "10.0.0.5");
}

TEST_P(RVFStaticServerListTest, AnAbsentDescriptionIsNotWritten) {
  list_->addServer(server("10.0.0.5:80"));
  EXPECT_EQ(stored().find("serverDescription"), std::string::npos);
  EXPECT_EQ(another()->serverAtIndex(0)->displayName(), "10.0.0.5:80");
}

TEST_P(RVFStaticServerListTest, TheLastRemovalLeavesAnEmptyArray) {
  list_->addServer(server("a"));
  list_->removeServerAtIndex(0);
  EXPECT_EQ(stored(), "()");
  EXPECT_EQ(another()->serverCount(), 0U);
}

TEST_P(RVFStaticServerListTest, TheSameServerMayStandThereTwice) {
  const auto twice = server("a");
  list_->addServer(twice);
  list_->addServer(twice);
  EXPECT_EQ(list_->serverCount(), 2U);
  EXPECT_EQ(list_->indexOfServer(twice), 0U);
}

TEST_P(RVFStaticServerListTest, FindsTheFirstServerThatMatches) {
  const auto a = server("a", "Till");
  const auto b = server("b", "till");
  const auto c = server("c", "Till");
  for (const auto& each : {a, b, c})
    list_->addServer(each);
  const auto copyOfB = std::make_shared<RVFStaticServer>();
  copyOfB->setServerId(b->serverId());
  EXPECT_EQ(list_->indexOfServer(copyOfB), 1U);
  EXPECT_EQ(list_->indexOfServer(server("b")), static_cast<std::size_t>(NSNotFound));
  EXPECT_EQ(list_->indexOfServer(nullptr), static_cast<std::size_t>(NSNotFound));
  EXPECT_EQ(list_->serverForServerId(*c->serverId()), c);
  EXPECT_EQ(list_->serverForServerId("none"), nullptr);
  EXPECT_EQ(list_->serverForServerId(""), nullptr);
  EXPECT_EQ(list_->serverWithServerDescription("Till"), a);
  EXPECT_EQ(list_->serverWithServerDescription("till"), b);
  EXPECT_EQ(list_->serverWithServerDescription("TILL"), nullptr);
}

TEST_P(RVFStaticServerListTest, AnAbsentPropertyMatchesNoText) {
  list_->addServer(std::make_shared<RVFStaticServer>());
  EXPECT_EQ(list_->serverForServerId(""), nullptr);
  EXPECT_EQ(list_->serverWithServerDescription(""), nullptr);
}

TEST_P(RVFStaticServerListTest, IndexesOutOfRangeRaiseAndChangeNothing) {
  list_->addServer(server("a"));
  const std::string before = stored();
  const std::function<void()> actions[] = {
      [&] { list_->serverAtIndex(1); },
      [&] { list_->removeServerAtIndex(1); },
      [&] { list_->insertServer(server("b"), 2); },
  };
  for (const auto& action : actions) {
    try {
      action();
      ADD_FAILURE() << "nothing was raised";
    } catch (const NSException& exception) {
      EXPECT_EQ(exception.name(), NSRangeException);
    }
  }
  EXPECT_THROW(list_->addServer(nullptr), NSException);
  EXPECT_EQ(list_->serverCount(), 1U);
  EXPECT_EQ(stored(), before);
}

TEST_P(RVFStaticServerListTest, LoadingDropsWhatIsInMemory) {
  list_->addServer(server("a"));
  another()->addServer(server("b"));
  list_->serverAtIndex(0)->setServerAddress("changed, not saved");
  list_->load();
  EXPECT_EQ(addresses(*list_), (Addresses{"a", "b"}));
  list_->serverAtIndex(0)->setServerAddress("c");
  list_->save();
  EXPECT_EQ(addresses(*another()), (Addresses{"c", "b"}));
}

TEST_P(RVFStaticServerListTest, ElementsAreNotChecked) {
  defaults_->setObject(
      NSArray::arrayWithObjects(
          {NSDictionary::dictionaryWithEntries({{"serverAddress", box("a")}, {"other", box(1)}}),
           box("no record"), NSDictionary::dictionaryWithEntries({{"serverId", box(5)}})}),
      kStaticServersKey);
  list_->load();
  ASSERT_EQ(list_->serverCount(), 3U);
  EXPECT_EQ(list_->serverAtIndex(0)->serverId(), std::nullopt);
  EXPECT_EQ(list_->serverAtIndex(1)->displayName(), "");
  EXPECT_EQ(list_->serverAtIndex(2)->serverId(), "5");
  list_->save();
  EXPECT_EQ(stored(), "({serverAddress = a;}, {}, {serverId = 5;})");
}

TEST_P(RVFStaticServerListTest, AValueThatIsNoArrayReadsAsNone) {
  defaults_->setObject(box("text"), kStaticServersKey);
  list_->load();
  EXPECT_EQ(list_->serverCount(), 0U);
}

TEST_P(RVFStaticServerListTest, ProposesTheFirstUntitledNameThatIsFree) {
  const struct {
    std::vector<const char*> descriptions;
    std::string_view name;
  } rows[] = {
      {{}, "Untitled Server"},
      {{"untitled server"}, "Untitled Server"},
      {{nullptr, "other", "Untitled Server 2"}, "Untitled Server"},
      {{"Untitled Server"}, "Untitled Server 2"},
      {{"Untitled Server", "Untitled Server 3"}, "Untitled Server 2"},
      {{"Untitled Server", "Untitled Server 3", "Untitled Server 2"}, "Untitled Server 4"},
      {{"Untitled Server", "Untitled Server 02"}, "Untitled Server 2"},
  };
  for (const auto& row : rows) {
    defaults_->removeObjectForKey(kStaticServersKey);
    list_->load();
    for (const char* description : row.descriptions)
      list_->addServer(server("a", description));
    EXPECT_EQ(list_->nextUntitledServerName(), row.name) << stored();
  }
}

TEST_P(RVFStaticServerListTest, NumbersManyUntitledServers) {
  for (int i = 0; i < 30; ++i)
    list_->addServer(server("a", list_->nextUntitledServerName().c_str()));
  EXPECT_EQ(list_->nextUntitledServerName(), "Untitled Server 31");
  list_->removeServerAtIndex(16);
  EXPECT_EQ(list_->nextUntitledServerName(), "Untitled Server 17");
}

TEST(RVFStaticServerList, UntitledNamesAreTranslated) {
  const auto defaults = RVFTestingUserDefaults::testingDefaults();
  RVFStaticServerList list(defaults);
  const struct {
    const char* locale;
    std::string first;
    std::string second;
  } rows[] = {{"de_AT", "Unbenannter Server", "Unbenannter Server 2"},
              {"fr", "Serveur sans titre", "Serveur sans titre 2"},
              {"en_US_POSIX", "Untitled Server", "Untitled Server 2"}};
  RVFLibraryBundle()->setCatalogueFolder(RVF_BUILD_CATALOGUE_FOLDER);
  for (const auto& row : rows) {
    NSLocale::setCurrentLocaleIdentifier(row.locale);
    defaults->setObject(nullptr, kStaticServersKey);
    list.load();
    EXPECT_EQ(list.nextUntitledServerName(), row.first);
    const auto server = std::make_shared<RVFStaticServer>();
    server->setServerDescription(row.first);
    list.addServer(server);
    EXPECT_EQ(list.nextUntitledServerName(), row.second);
  }
  NSLocale::setCurrentLocaleIdentifier(std::nullopt);
  RVFLibraryBundle()->setCatalogueFolder(std::nullopt);
}

TEST(RVFStaticServerList, TheSharedOneIsOnTheStandardDefaults) {
  const auto shared = RVFStaticServerList::sharedServerList();
  EXPECT_EQ(shared, RVFStaticServerList::sharedServerList());
  shared->addServer(RVFStaticServer::staticServerWithAddress("a"));
  EXPECT_TRUE(NSUserDefaults::standardUserDefaults()->objectForKey(kStaticServersKey));
  // See ConfigurationFolder.cpp.
  const auto file = NSUserDefaults::userDefaultsWithFile(
      NSUserDefaults::filePath(getenv("XDG_CONFIG_HOME"), "", program_invocation_short_name));
  EXPECT_EQ(RVFStaticServerList(file).serverCount(), 1U);
  shared->removeServerAtIndex(0);
}

TEST(RVFStaticServerList, AListThatCannotBeSavedStaysInMemory) {
  const TemporaryFolder folder;
  writeBytes(folder.file("till"), "a file where the folder should be");
  const auto defaults = NSUserDefaults::userDefaultsWithFile(folder.file("till/defaults.plist"));
  RVFStaticServerList list(defaults);
  list.addServer(RVFStaticServer::staticServerWithAddress("a"));
  EXPECT_FALSE(defaults->synchronize());
  EXPECT_EQ(list.serverCount(), 1U);
  list.load();
  EXPECT_EQ(list.serverCount(), 1U);
}

TEST(RVFStaticServerList, DescribesItselfToTheRuntime) {
  const Class list = RVFStaticServerList::classObject();
  EXPECT_EQ(objc_getClass("RVFStaticServerList"), list);
  const auto properties = class_copyPropertyList(list);
  ASSERT_EQ(properties.size(), 1U);
  EXPECT_EQ(property_getName(properties[0]), "serverCount");
  EXPECT_EQ(property_getAttributes(properties[0]), "TQ,R,N");
}

}  // namespace
}  // namespace rvf
