// SPDX-License-Identifier: Apache-2.0
#include "RVFoundation/ServerDiscovery/RVFStaticServer.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <netdb.h>
#include <rapidcheck.h>
#include <sys/socket.h>

#include <condition_variable>
#include <map>
#include <mutex>
#include <regex>
#include <stdexcept>
#include <string>
#include <type_traits>

#include "Platform/Network/SocketAddress.h"
#include "Platform/RunLoop/NSRunLoop.h"
#include "Platform/RunLoop/NSThread.h"
#include "Platform/Values/NSNumber.h"
#include "Platform/Values/NSString.h"

namespace rvf {
namespace {

using std::chrono_literals::operator""s;
using ::testing::AllOf;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

/// What a completion was called with.
struct Outcome {
  std::optional<RVFStaticServer::Addresses> addresses;
  Ref<NSError> error;
  bool wasReplaced = false;
};

RVFStaticServer::Completion recordInto(std::vector<Outcome>& outcomes) {
  return [&outcomes](const auto&, const auto& addresses, const auto& error, bool wasReplaced) {
    outcomes.push_back({addresses, error, wasReplaced});
  };
}

/// Runs the main run loop until the condition holds, at most ten seconds.
template <class Condition>
bool runUntil(Condition condition) {
  const auto limit = NSRunLoop::Clock::now() + 10s;
  while (!condition() && NSRunLoop::Clock::now() < limit) {
    NSRunLoop::mainRunLoop()->runUntilDate(NSRunLoop::Clock::now() + std::chrono::milliseconds(5));
  }
  return condition();
}

/// A name look-up whose answers are let through one by one, by host.
class GatedLookup {
 public:
  NameLookup lookup() {
    return [this](const std::string& host, const std::string&) {
      std::unique_lock lock(mutex_);
      changed_.wait(lock, [&] { return open_[host]; });
      return NameLookupResult{0, {{AF_INET, NSData::dataWithBytes(host)}}};
    };
  }
  void open(const std::string& host) {
    const std::lock_guard lock(mutex_);
    open_[host] = true;
    changed_.notify_all();
  }

 private:
  std::mutex mutex_;
  std::condition_variable changed_;
  std::map<std::string, bool> open_;
};

Outcome resolve(const Ref<RVFStaticServer>& server) {
  std::vector<Outcome> outcomes;
  server->resolveUsingCompletion(recordInto(outcomes));
  EXPECT_TRUE(runUntil([&] { return !outcomes.empty(); }));
  return outcomes.empty() ? Outcome{} : outcomes.front();
}

struct SplitRow {
  std::string_view address;
  std::string_view host;
  std::string_view port;
};

class AddressSplitting : public ::testing::TestWithParam<SplitRow> {};

TEST_P(AddressSplitting, FindsHostAndPort) {
  const SplitRow& row = GetParam();
  const auto parts = RVFSplitServerAddress(row.address);
  EXPECT_EQ(parts.host, row.host) << row.address;
  EXPECT_EQ(parts.port, row.port) << row.address;
}

INSTANTIATE_TEST_SUITE_P(Table, AddressSplitting,
                         ::testing::Values(SplitRow{"10.0.0.5", "10.0.0.5", "9630"},
                                           SplitRow{"10.0.0.5:80", "10.0.0.5", "80"},
                                           SplitRow{"till.example:https", "till.example", "https"},
                                           SplitRow{"[fe80::1]", "[fe80::1]", "9630"},
                                           SplitRow{"[fe80::1]:8080", "[fe80::1]", "8080"},
                                           SplitRow{"[::1]", "[::1]", "9630"},
                                           SplitRow{"fe80::1", "fe80:", "1"},
                                           SplitRow{"till:", "till", ""}, SplitRow{":80", "", "80"},
                                           SplitRow{"", "", "9630"}, SplitRow{":", "", ""},
                                           SplitRow{"a:b]c", "a:b]c", "9630"},
                                           SplitRow{"]:1]:2", "]:1]", "2"}));

TEST(RVFSplitServerAddress, KeepsEveryCharacterOfTheAddress) {
  EXPECT_TRUE(rc::check([](const std::string& address) {
    const auto parts = RVFSplitServerAddress(address);
    RC_ASSERT(address == std::string(parts.host) ||
              address == std::string(parts.host) + ":" + std::string(parts.port));
  }));
}

TEST(RVFStaticServer, HandsHostWithoutBracketsAndPortToTheLookup) {
  for (const std::string expectedPort : {"8080", "9630"}) {
    const bool isDefault = expectedPort == "9630";
    const auto server = RVFStaticServer::staticServerWithAddress(
        isDefault ? "[fe80::1]" : "[fe80::1]:" + expectedPort);
    std::string host;
    std::string port;
    server->setNameLookup([&](const std::string& h, const std::string& p) {
      host = h;
      port = p;
      return NameLookupResult{EAI_FAIL, {}};
    });
    resolve(server);
    EXPECT_EQ(host, "fe80::1");
    EXPECT_EQ(port, expectedPort);
  }
}

TEST(RVFStaticServer, ALookupThatThrowsIsAFailure) {
  const auto server = RVFStaticServer::staticServerWithAddress("odd");
  server->setNameLookup([](const auto&, const auto&) -> NameLookupResult {
    throw std::runtime_error("out of order");
  });
  const Outcome outcome = resolve(server);
  ASSERT_NE(outcome.error, nullptr);
  EXPECT_EQ(outcome.error->code(), EAI_FAIL);
}

TEST(RVFStaticServer, ResolvesAnIPv4AddressOnTheDefaultPort) {
  const Outcome outcome = resolve(RVFStaticServer::staticServerWithAddress("127.0.0.1"));
  ASSERT_TRUE(outcome.addresses);
  ASSERT_EQ(outcome.addresses->size(), 1U);
  const auto address = SocketAddress::fromDataBlock((*outcome.addresses)[0]);
  ASSERT_TRUE(address);
  EXPECT_EQ(address->addressText(), "127.0.0.1");
  EXPECT_EQ(address->port(), 9630);
  EXPECT_EQ(outcome.error, nullptr);
  EXPECT_FALSE(outcome.wasReplaced);
}

TEST(RVFStaticServer, ResolvesABracketedIPv6AddressWithAPort) {
  const Outcome outcome = resolve(RVFStaticServer::staticServerWithAddress("[::1]:8080"));
  ASSERT_TRUE(outcome.addresses);
  ASSERT_EQ(outcome.addresses->size(), 1U);
  const auto address = SocketAddress::fromDataBlock((*outcome.addresses)[0]);
  ASSERT_TRUE(address);
  EXPECT_EQ(address->addressText(), "::1");
  EXPECT_EQ(address->port(), 8080);
}

struct PortRow {
  const char* address;
  std::int32_t code;
  int port;
};

class ResolverPorts : public ::testing::TestWithParam<PortRow> {};

TEST_P(ResolverPorts, AreJudgedByTheResolver) {
  const Outcome outcome = resolve(RVFStaticServer::staticServerWithAddress(GetParam().address));
  if (GetParam().code != 0) {
    ASSERT_NE(outcome.error, nullptr) << GetParam().address;
    EXPECT_EQ(outcome.error->code(), GetParam().code) << GetParam().address;
    return;
  }
  ASSERT_TRUE(outcome.addresses && !outcome.addresses->empty()) << GetParam().address;
  EXPECT_EQ(SocketAddress::fromDataBlock(outcome.addresses->front())->port(), GetParam().port)
      << GetParam().address;
}

INSTANTIATE_TEST_SUITE_P(Table, ResolverPorts,
                         ::testing::Values(PortRow{"127.0.0.1:", 0, 0},
                                           PortRow{"127.0.0.1:99999", 0, 34463},
                                           PortRow{"127.0.0.1:-1", EAI_SERVICE, 0},
                                           PortRow{"127.0.0.1:no-such-service", EAI_SERVICE, 0},
                                           PortRow{"fe80::1", EAI_NONAME, 0},
                                           PortRow{"", EAI_NONAME, 0}));

TEST(RVFStaticServer, ReportsAnUnknownHostWithItsOwnTexts) {
  const auto server = RVFStaticServer::staticServerWithAddress("nowhere.invalid");
  server->setNameLookup([](const auto&, const auto&) { return NameLookupResult{EAI_NONAME, {}}; });
  const Outcome outcome = resolve(server);
  ASSERT_NE(outcome.error, nullptr);
  EXPECT_EQ(outcome.error->domain(), "kCFStreamErrorDomainNetDB");
  EXPECT_EQ(outcome.error->code(), EAI_NONAME);
  EXPECT_EQ(outcome.error->localizedDescription(),
            "An error occurred while attempting to resolve the selected Quillmarsh Server.");
  EXPECT_EQ(outcome.error->localizedRecoverySuggestion(),
            "Please check your network connection, or select another server.");
  ASSERT_TRUE(outcome.addresses);
  EXPECT_THAT(*outcome.addresses, IsEmpty());
}

TEST(RVFStaticServer, OtherResolverCodesCarryTheResolversMessageAlone) {
  const auto error = RVFStaticServer::netDBErrorForErrorCode(EAI_AGAIN);
  EXPECT_EQ(error->code(), EAI_AGAIN);
  EXPECT_EQ(error->localizedDescription(), gai_strerror(EAI_AGAIN));
  EXPECT_EQ(error->userInfo()->count(), 1U);
}

TEST(RVFStaticServer, AddressesOfOtherFamiliesAloneAreAFailure) {
  const auto server = RVFStaticServer::staticServerWithAddress("odd");
  server->setNameLookup([](const auto&, const auto&) {
    return NameLookupResult{0, {{AF_UNIX, NSData::dataWithBytes("x")}}};
  });
  const Outcome outcome = resolve(server);
  ASSERT_NE(outcome.error, nullptr);
  EXPECT_EQ(outcome.error->code(), EAI_FAIL);
}

TEST(RVFStaticServer, SkipsOtherFamiliesAndKeepsTheResolversOrder) {
  const auto server = RVFStaticServer::staticServerWithAddress("mixed");
  const auto six = SocketAddress::fromText("::1", 1)->dataBlock();
  const auto four = SocketAddress::fromText("127.0.0.1", 1)->dataBlock();
  server->setNameLookup([&](const auto&, const auto&) {
    return NameLookupResult{
        0, {{AF_INET6, six}, {AF_UNIX, NSData::dataWithBytes("x")}, {AF_INET, four}}};
  });
  const Outcome outcome = resolve(server);
  ASSERT_TRUE(outcome.addresses);
  EXPECT_THAT(*outcome.addresses, ElementsAre(six, four));
  EXPECT_EQ(outcome.error, nullptr);
}

TEST(RVFStaticServer, CompletionRunsLaterOnTheMainThreadAndIsCleared) {
  const auto server = RVFStaticServer::staticServerWithAddress("127.0.0.1");
  bool ran = false;
  bool onMainThread = false;
  server->resolveUsingCompletion([&](const auto&, const auto&, const auto&, bool) {
    ran = true;
    onMainThread = NSThread::isMainThread();
  });
  EXPECT_FALSE(ran);
  EXPECT_TRUE(runUntil([&] { return ran; }));
  EXPECT_TRUE(onMainThread);
  EXPECT_FALSE(server->completion());
}

TEST(RVFStaticServer, ANewResolutionReplacesThePendingOneDirectly) {
  const auto server = RVFStaticServer::staticServerWithAddress("one");
  GatedLookup gate;
  server->setNameLookup(gate.lookup());
  std::vector<Outcome> first;
  std::vector<Outcome> second;
  server->resolveUsingCompletion(recordInto(first));
  server->resolveUsingCompletion(recordInto(second));
  ASSERT_EQ(first.size(), 1U);
  EXPECT_TRUE(first[0].wasReplaced);
  EXPECT_EQ(first[0].addresses, std::nullopt);
  EXPECT_EQ(first[0].error, nullptr);
  gate.open("one");
  ASSERT_TRUE(runUntil([&] { return !second.empty(); }));
  EXPECT_FALSE(second[0].wasReplaced);
  EXPECT_TRUE(runUntil([&] { return server.use_count() == 1; })) << "both look-ups have ended";
}

TEST(RVFStaticServer, TheFirstFinishedLookupReachesWhicheverCompletionIsPending) {
  const auto server = RVFStaticServer::staticServerWithAddress("old");
  GatedLookup gate;
  server->setNameLookup(gate.lookup());
  std::vector<Outcome> outcomes;
  server->resolveUsingCompletion(recordInto(outcomes));
  server->stopResolving();
  outcomes.clear();
  server->setServerAddress("new");
  server->resolveUsingCompletion(recordInto(outcomes));
  gate.open("old");
  ASSERT_TRUE(runUntil([&] { return !outcomes.empty(); }));
  ASSERT_TRUE(outcomes[0].addresses);
  EXPECT_EQ((*outcomes[0].addresses)[0]->characters(), "old");
  gate.open("new");
  const std::weak_ptr<RVFStaticServer> weak = server;
  EXPECT_TRUE(runUntil([&] { return weak.use_count() == 1; })) << "the newer look-up has ended";
  EXPECT_EQ(outcomes.size(), 1U);
}

TEST(RVFStaticServer, StopCallsTheCompletionDirectlyWithNothing) {
  const auto server = RVFStaticServer::staticServerWithAddress("one");
  GatedLookup gate;
  server->setNameLookup(gate.lookup());
  std::vector<Outcome> outcomes;
  server->resolveUsingCompletion(recordInto(outcomes));
  server->stopResolving();
  ASSERT_EQ(outcomes.size(), 1U);
  EXPECT_EQ(outcomes[0].addresses, std::nullopt);
  EXPECT_EQ(outcomes[0].error, nullptr);
  EXPECT_FALSE(outcomes[0].wasReplaced);
  EXPECT_FALSE(server->completion());
  gate.open("one");
  EXPECT_TRUE(runUntil([&] { return server.use_count() == 1; })) << "the look-up has ended";
  EXPECT_EQ(outcomes.size(), 1U);
}

TEST(RVFStaticServer, StopWhileIdleDoesNothing) {
  const auto server = RVFStaticServer::staticServerWithAddress("one");
  server->stopResolving();
  EXPECT_FALSE(server->completion());
}

TEST(RVFStaticServer, StaysAliveUntilItsLookupWasDelivered) {
  auto server = RVFStaticServer::staticServerWithAddress("127.0.0.1");
  const std::weak_ptr<RVFStaticServer> weak = server;
  std::vector<Outcome> outcomes;
  server->resolveUsingCompletion(recordInto(outcomes));
  server.reset();
  EXPECT_TRUE(runUntil([&] { return weak.expired(); }));
  EXPECT_EQ(outcomes.size(), 1U);
}

TEST(RVFStaticServer, ARestartFromInsideTheCompletionLosesTheNewOne) {
  const auto server = RVFStaticServer::staticServerWithAddress("127.0.0.1");
  std::vector<Outcome> inner;
  std::vector<bool> outer;
  server->resolveUsingCompletion([&](const auto& self, const auto&, const auto&, bool replaced) {
    outer.push_back(replaced);
    if (!replaced) self->resolveUsingCompletion(recordInto(inner));
  });
  EXPECT_TRUE(runUntil([&] { return outer.size() == 2; }));
  EXPECT_THAT(outer, ElementsAre(false, true));
  EXPECT_FALSE(server->completion());
  EXPECT_TRUE(runUntil([&] { return server.use_count() == 1; }));
  EXPECT_THAT(inner, IsEmpty());
}

TEST(RVFStaticServer, ACompletionThatThrowsWhenDeliveredIsClearedAllTheSame) {
  const auto server = RVFStaticServer::staticServerWithAddress("10.0.0.5");
  server->resolveUsingCompletion(
      [](const auto&, const auto&, const auto&, bool) { throw std::runtime_error("refused"); });
  EXPECT_THROW(runUntil([&] { return !server->completion(); }), std::runtime_error);
  EXPECT_FALSE(server->completion());
}

TEST(RVFStaticServer, ACompletionThatThrowsWhenStoppedOrReplacedIsClearedAllTheSame) {
  const auto server = RVFStaticServer::staticServerWithAddress("10.0.0.5");
  const auto refuse = [](const auto&, const auto&, const auto&, bool) {
    throw std::runtime_error("refused");
  };
  server->setCompletion(refuse);
  EXPECT_THROW(server->stopResolving(), std::runtime_error);
  EXPECT_FALSE(server->completion());
  server->setCompletion(refuse);
  EXPECT_THROW(server->resolveUsingCompletion(refuse), std::runtime_error);
  EXPECT_FALSE(server->completion());
}

TEST(RVFStaticServer, NewServerHasAFreshCanonicalIdAndNoDescription) {
  const auto a = RVFStaticServer::staticServerWithAddress("a");
  const auto b = RVFStaticServer::staticServerWithAddress("a");
  const std::regex canonical("[0-9A-F]{8}(-[0-9A-F]{4}){3}-[0-9A-F]{12}");
  EXPECT_TRUE(std::regex_match(a->serverId().value(), canonical)) << *a->serverId();
  EXPECT_NE(a->serverId(), b->serverId());
  EXPECT_EQ(a->serverDescription(), std::nullopt);
}

TEST(RVFStaticServer, DisplayNameIsDescriptionElseAddressElseEmpty) {
  const auto server = std::make_shared<RVFStaticServer>();
  EXPECT_EQ(server->displayName(), "");
  server->setServerAddress("a");
  EXPECT_EQ(server->displayName(), "a");
  server->setServerDescription("");
  EXPECT_EQ(server->displayName(), "a");
  server->setServerDescription("Till");
  EXPECT_EQ(server->displayName(), "Till");
}

TEST(RVFStaticServer, RecordKeepsAbsenceAndEmptiness) {
  const auto record =
      NSDictionary::dictionaryWithEntries({{"serverAddress", box("")}, {"serverId", box("X")}});
  const auto server = RVFStaticServer::initWithDataDictionary(record);
  EXPECT_EQ(server->serverAddress(), "");
  EXPECT_EQ(server->serverDescription(), std::nullopt);
  EXPECT_TRUE(server->dataDictionary()->isEqual(record.get()));
}

TEST(RVFStaticServer, RecordEntriesThatAreNoTextsAreReadByTheirDescription) {
  const auto server = RVFStaticServer::initWithDataDictionary(
      NSDictionary::dictionaryWithEntries({{"serverDescription", box(5)}}));
  EXPECT_EQ(server->serverDescription(), "5");
}

TEST(RVFStaticServer, EqualityAndHashAreByIdAlone) {
  const auto a = RVFStaticServer::staticServerWithAddress("a");
  const auto b = RVFStaticServer::staticServerWithAddress("b");
  EXPECT_FALSE(objectsAreEqual(a, b));
  b->setServerId(a->serverId());
  EXPECT_TRUE(objectsAreEqual(a, b));
  EXPECT_EQ(a->hash(), b->hash());
  EXPECT_FALSE(a->isEqual(nullptr));
  EXPECT_FALSE(a->isEqual(box("a").get()));
}

TEST(RVFStaticServer, OfASubclassAreMadeByNameAndEqualById) {
  class BranchServer final : public RVFStaticServer {};
  const auto branch = RVFStaticServer::staticServerWithAddress<BranchServer>("a");
  const auto again =
      RVFStaticServer::initWithDataDictionary<BranchServer>(branch->dataDictionary());
  static_assert(std::is_same_v<decltype(again), const Ref<BranchServer>>);
  const auto plain = RVFStaticServer::initWithDataDictionary(branch->dataDictionary());
  EXPECT_TRUE(objectsAreEqual(branch, plain));
  EXPECT_TRUE(objectsAreEqual(plain, branch));
  EXPECT_EQ(again->serverAddress(), "a");
}

TEST(RVFStaticServer, WithoutAnIdOnlyTheSameObjectIsEqual) {
  const auto a = std::make_shared<RVFStaticServer>();
  const auto b = std::make_shared<RVFStaticServer>();
  EXPECT_TRUE(a->isEqual(a.get()));
  EXPECT_FALSE(objectsAreEqual(a, b));
  EXPECT_EQ(a->hash(), 0U);
}

TEST(RVFStaticServer, AMegabyteOfAddressIsAClearError) {
  const Outcome outcome =
      resolve(RVFStaticServer::staticServerWithAddress(std::string(1 << 20, 'a')));
  ASSERT_NE(outcome.error, nullptr);
  EXPECT_EQ(outcome.error->domain(), "kCFStreamErrorDomainNetDB");
}

TEST(RVFStaticServer, InvalidUtf8IsAClearError) {
  const Outcome outcome = resolve(RVFStaticServer::staticServerWithAddress("\xFF\xC3:\xE2\x82"));
  ASSERT_NE(outcome.error, nullptr);
  EXPECT_EQ(outcome.error->domain(), "kCFStreamErrorDomainNetDB");
}

}  // namespace
}  // namespace rvf
