// SPDX-License-Identifier: Apache-2.0
#include "RVFoundation/CoreServices/RVFLogger.h"

#include <gmock/gmock.h>

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "Platform/Observation/KeyValueObserving.h"
#include "Platform/Runtime/ClassBuilder.h"
#include "Platform/Runtime/Messaging.h"
#include "Platform/Runtime/NSException.h"
#include "Platform/Runtime/Runtime.h"
#include "Platform/Values/NSDictionary.h"
#include "tests/Platform/System/LogListener.h"
#include "tests/RVFoundation/BackgroundExecution/AnnouncedKeys.h"

namespace rvf {
namespace {

using testing::Optional;

/// Counts how often it is asked for its text.
class Described final : public NSObject {
 public:
  std::string description() const override {
    ++asked;
    return "50% off %d %@";
  }
  mutable int asked = 0;
};

class RVFLoggerTest : public testing::Test {
 protected:
  void start(std::uint32_t options = 0) {
    logger->startLoggingUsingName("till", "local0", options, sockets);
  }
  /// What the log shows as the text of the next message.
  std::string shown() const {
    const std::string entry = journal->receive().value_or("MESSAGE=nothing\n");
    const std::size_t start = entry.find('=') + 1;
    return entry.substr(start, entry.find('\n') - start);
  }
  /// The levels that pass, as digits.
  std::string admitted() {
    std::string levels;
    for (int level = 0; level <= 7; ++level) {
      EXPECT_TRUE(logger->logOfLevel(level, "x"));
      if (journal->receive()) levels += std::to_string(level);
    }
    return levels;
  }

  const LogFolder folder;
  const SystemLogSockets sockets = folder.sockets();
  std::unique_ptr<LogListener> journal = std::make_unique<LogListener>(sockets.journal);
  Ref<RVFLogger> logger = std::make_shared<RVFLogger>();
};

TEST_F(RVFLoggerTest, ANewLoggerHasNoConnection) {
  EXPECT_EQ(logger->client(), nullptr);
  logger->setTresholdLevel(7);
  EXPECT_FALSE(logger->logOfLevel(0, "x"));
}

TEST_F(RVFLoggerTest, WithoutConnectionNothingIsFormatted) {
  const auto described = std::make_shared<Described>();
  EXPECT_FALSE(logger->logOfLevel(0, "%@", described));
  EXPECT_FALSE(logger->logOfLevel(0, "%@ and one too few"));
  EXPECT_EQ(described->asked, 0);
}

TEST_F(RVFLoggerTest, WritesUnderItsNameAndFacility) {
  start();
  EXPECT_TRUE(logger->logOfLevel(2, "%d drawers", 3));
  EXPECT_EQ(journal->receive(),
            "MESSAGE=3 drawers\nPRIORITY=2\nSYSLOG_IDENTIFIER=till\nSYSLOG_FACILITY=16\n");
}

TEST_F(RVFLoggerTest, PerCentSignsArriveAsFormatted) {
  start();
  const auto described = std::make_shared<Described>();
  logger->logOfLevel(5, "%@", described);
  EXPECT_EQ(shown(), "50% off %d %@");
  logger->logOfLevel(5, "%d%% of %s", 5, "100%% %n %");
  EXPECT_EQ(shown(), "5% of 100%% %n %");
  logger->logOfLevel(5, "%%%%");
  EXPECT_EQ(shown(), "%%");
}

TEST_F(RVFLoggerTest, NULsAndIllFormedBytesArriveBesidePerCentSigns) {
  start();
  for (const std::string& text :
       {std::string("5%\0% off", 8), std::string("%\xff%"), std::string("\xc3%\xa4 %\xe2\x82")}) {
    EXPECT_TRUE(logger->logOfLevel(5, "%s", text));
    EXPECT_EQ(shown(), text);
  }
  EXPECT_TRUE(logger->logOfLevel(5, std::string_view("a\0%%b", 5)));
  EXPECT_EQ(shown(), std::string("a\0%b", 4));
}

TEST_F(RVFLoggerTest, AMessageThatIsHeldBackIsFormattedAllTheSame) {
  start();
  const auto described = std::make_shared<Described>();
  EXPECT_TRUE(logger->logOfLevel(7, "%@", described));
  EXPECT_EQ(described->asked, 1);
  EXPECT_EQ(journal->receive(), std::nullopt);
}

TEST_F(RVFLoggerTest, AFormatWithoutItsArgumentsRaises) {
  start();
  EXPECT_THROW(logger->logOfLevel(5, "%@"), NSException);
}

TEST_F(RVFLoggerTest, TheThresholdAdmitsItsLevelAndMoreSevereOnes) {
  const struct {
    std::int32_t level;
    int mask;
  } rows[] = {
      {0, 0b1},  {3, 0b1111},  {7, 255}, {8, 511},         {30, 0x7fffffff}, {31, 0},
      {32, 0b1}, {35, 0b1111}, {-1, 0},  {-2, 0x7fffffff}, {INT32_MAX, 0},   {INT32_MIN, 0b1},
  };
  start();
  for (const auto& row : rows) {
    logger->setTresholdLevel(row.level);
    EXPECT_EQ(asl_set_filter(logger->client(), 0), row.mask) << row.level;
  }
}

TEST_F(RVFLoggerTest, ThresholdsHoldMessagesBack) {
  start();
  EXPECT_EQ(admitted(), "012345");
  logger->setTresholdLevel(3);
  EXPECT_EQ(admitted(), "0123");
  logger->setTresholdLevel(7);
  EXPECT_EQ(admitted(), "01234567");
  logger->setTresholdLevel(31);
  EXPECT_EQ(admitted(), "");
  logger->setTresholdLevel(0);
  EXPECT_EQ(admitted(), "0");
  logger->setTresholdLevel(-1);
  EXPECT_EQ(admitted(), "");
}

TEST_F(RVFLoggerTest, StartingAnewForgetsTheThreshold) {
  start();
  logger->setTresholdLevel(7);
  start();
  EXPECT_EQ(admitted(), "012345");
}

TEST_F(RVFLoggerTest, ALogThatCannotBeReachedLeavesNoConnection) {
  start();
  journal.reset();
  start();
  EXPECT_EQ(logger->client(), nullptr);
  EXPECT_FALSE(logger->logOfLevel(0, "x"));
}

TEST_F(RVFLoggerTest, AMessageThatTheLogDoesNotTakeIsTold) {
  start();
  journal.reset();
  EXPECT_FALSE(logger->logOfLevel(0, "x"));
  journal = std::make_unique<LogListener>(sockets.journal);
  EXPECT_TRUE(logger->logOfLevel(0, "y"));
  EXPECT_EQ(shown(), "y");
}

/// How many sockets this process has open.
std::size_t openSockets() {
  std::size_t count = 0;
  for (const auto& entry : std::filesystem::directory_iterator("/proc/self/fd")) {
    std::error_code error;
    const auto target = std::filesystem::read_symlink(entry.path(), error).string();
    if (target.starts_with("socket:")) ++count;
  }
  return count;
}

TEST_F(RVFLoggerTest, ItsConnectionIsClosedWhenAnotherIsOpenedAndWhenItGoes) {
  const std::size_t before = openSockets();
  start();
  start();
  EXPECT_EQ(openSockets(), before + 1);
  logger.reset();
  EXPECT_EQ(openSockets(), before);
}

TEST_F(RVFLoggerTest, TheConnectionCanBeSetAndIsThenTheLoggers) {
  const std::size_t before = openSockets();
  const aslclient client = asl_open("other", "user", 0, sockets);
  logger->setClient(client);
  EXPECT_EQ(logger->client(), client);
  logger->logOfLevel(5, "x");
  EXPECT_THAT(journal->receive(), Optional(testing::HasSubstr("\nSYSLOG_IDENTIFIER=other\n")));
  logger.reset();
  EXPECT_EQ(openSockets(), before);
}

TEST_F(RVFLoggerTest, OptionsReachTheConnection) {
  start(ASL_OPT_STDERR);
  testing::internal::CaptureStderr();
  logger->logOfLevel(7, "5 %s", "%%");
  EXPECT_EQ(testing::internal::GetCapturedStderr(),
            "till[" + std::to_string(::getpid()) + "]: 5 %%\n");
}

TEST_F(RVFLoggerTest, ACopyOnStandardErrorDoesNotMakeUpForAServerThatRefuses) {
  journal = nullptr;
  const LogListener syslog(sockets.syslog);
  start(ASL_OPT_STDERR);
  testing::internal::CaptureStderr();
  EXPECT_FALSE(logger->logOfLevel(5, "%s", std::string(3'000'000, 'x')));
  EXPECT_GT(testing::internal::GetCapturedStderr().size(), 3'000'000U);
}

TEST_F(RVFLoggerTest, ThreadsMayHaveLoggersOfTheirOwn) {
  const auto logThree = [this](std::string_view name) {
    const auto own = std::make_shared<RVFLogger>();
    own->startLoggingUsingName(name, "local0", 0, sockets);
    own->setTresholdLevel(6);
    for (int i = 0; i < 3; ++i)
      EXPECT_TRUE(own->logOfLevel(6, "%d%%", i));
  };
  std::thread other([&] { logThree("other"); });
  logThree("this");
  other.join();
  std::map<std::string, std::string> texts;  // by sender
  for (auto entry = journal->receive(); entry; entry = journal->receive()) {
    const bool isOther = entry->find("\nSYSLOG_IDENTIFIER=other\n") != std::string::npos;
    texts[isOther ? "other" : "this"] += entry->substr(8, 2);
  }
  EXPECT_THAT(texts, testing::ElementsAre(testing::Pair("other", "0%1%2%"),
                                          testing::Pair("this", "0%1%2%")));
}

/// Starts its logger anew while it is formatted.
class Restarting final : public NSObject {
 public:
  explicit Restarting(std::function<void()> restart) : restart_(std::move(restart)) {}
  std::string description() const override {
    restart_();
    return "restarted";
  }

 private:
  const std::function<void()> restart_;
};

TEST_F(RVFLoggerTest, ADescriptionMayUseTheLoggerItself) {
  start();
  logger->logOfLevel(5, "%@", std::make_shared<Restarting>([this] {
                       logger->logOfLevel(5, "inner");
                       start();
                     }));
  EXPECT_EQ(shown(), "inner");
  EXPECT_EQ(shown(), "restarted");
}

TEST_F(RVFLoggerTest, ItsConnectionCanBeObserved) {
  const auto announced = AnnouncedKeys::of(logger, {"client"});
  start();
  EXPECT_THAT(announced->told, testing::ElementsAre("client"));
}

/// Notes, before and after a change of "client", whether the logger has one.
class ClientWatcher final : public NSObject {
 public:
  static Class classObject() {
    static const Class kClass =
        ClassBuilder<ClientWatcher>("ClientWatcher", NSObject::classObject())
            .method<&ClientWatcher::observeValue>("observeValueForKeyPath:ofObject:change:context:")
            .registered();
    return kClass;
  }
  Class isa() const override { return classObject(); }

  void observeValue(std::string_view, const id& object, const Ref<NSDictionary>&, void*) {
    had.push_back(send<aslclient>(object, SEL("client")) != nullptr);
  }

  std::vector<bool> had;
};

TEST_F(RVFLoggerTest, WhoObservesItsConnectionNeverSeesOneThatIsClosed) {
  start();
  const auto watcher = std::make_shared<ClientWatcher>();
  addObserverForKeyPath(*logger, watcher, "client", NSKeyValueObservingOptionPrior);
  start();
  EXPECT_THAT(watcher->had, testing::ElementsAre(false, true));
  removeObserverForKeyPath(*logger, watcher, "client");
}

TEST_F(RVFLoggerTest, IsKnownToTheRuntime) {
  const auto properties = class_copyPropertyList(objc_getClass("RVFLogger"));
  ASSERT_EQ(properties.size(), 1U);
  EXPECT_EQ(properties[0].name, "client");
  EXPECT_EQ(properties[0].attributes, "T^{SystemLogClient=},N,V_client");
  start();
  send(logger, SEL("setTresholdLevel:"), std::int32_t{7});
  EXPECT_TRUE(
      send<bool>(logger, SEL("logOfLevel:andFormat:"), std::int32_t{7}, std::string("5%%")));
  EXPECT_EQ(shown(), "5%");
  EXPECT_EQ(send<aslclient>(logger, SEL("client")), logger->client());
}

TEST_F(RVFLoggerTest, StartsBySelectorAndAnnouncesItsClient) {
  const auto announced = AnnouncedKeys::of(logger, {"client"});
  send<void>(logger, SEL("startLoggingUsingName:facility:options:"), std::string_view("till"),
             std::string_view("local0"), std::uint32_t{0});
  EXPECT_THAT(announced->told, testing::ElementsAre("client"));
}

}  // namespace
}  // namespace rvf
