// SPDX-License-Identifier: Apache-2.0
#include "Platform/System/SystemLog.h"

#include <errno.h>
#include <gmock/gmock.h>
#include <pthread.h>
#include <signal.h>

#include <atomic>
#include <memory>
#include <regex>
#include <thread>
#include <vector>

#include "tests/Platform/System/LogListener.h"

namespace rvf {
namespace {

using testing::EndsWith;
using testing::Optional;
using testing::StartsWith;

constexpr int kAllLevels = 0xff;

struct Closing {
  void operator()(aslclient client) const { asl_close(client); }
};
using Client = std::unique_ptr<SystemLogClient, Closing>;

const std::string kProcess = std::to_string(::getpid());

class SystemLogTest : public testing::Test {
 protected:
  Client open(std::string_view name = "till", std::string_view facility = "local3",
              std::uint32_t options = 0) const {
    return Client(asl_open(name, facility, options, sockets));
  }

  /// A line of the syslog protocol without its time.
  static std::string untimed(const std::optional<std::string>& line) {
    static const std::regex kTime("^(<[0-9]+>)[A-Z][a-z]{2} [ 1-3][0-9] [0-9:]{8} ");
    return line ? std::regex_replace(*line, kTime, "$1") : "nothing";
  }

  const LogFolder folder;
  const SystemLogSockets sockets = folder.sockets();
};

TEST_F(SystemLogTest, WithoutAServerThereIsNoClient) {
  EXPECT_EQ(open(), nullptr);
}

TEST_F(SystemLogTest, ASocketThatItsServerLeftBehindIsNoServer) {
  for (const std::string& path : {sockets.journal, sockets.syslog}) {
    LogListener crashed(path);
    crashed.abandon();
  }
  EXPECT_EQ(open(), nullptr);
}

TEST_F(SystemLogTest, APathThatIsTooLongForASocketIsNoServer) {
  const std::string path(200, 'x');
  EXPECT_EQ(asl_open("till", "user", 0, {path, path}), nullptr);
}

TEST_F(SystemLogTest, TheJournalGetsFieldsOfItsOwnProtocol) {
  const LogListener journal(sockets.journal);
  EXPECT_EQ(asl_log(open().get(), 3, "drawer äußerst offen"), 0);
  EXPECT_EQ(journal.receive(),
            "MESSAGE=drawer äußerst offen\nPRIORITY=3\nSYSLOG_IDENTIFIER=till\n"
            "SYSLOG_FACILITY=19\n");
}

TEST_F(SystemLogTest, AFacilityThatSyslogDoesNotKnowIsAFieldOfTheJournal) {
  const LogListener journal(sockets.journal);
  asl_log(open("till", "com.example.till").get(), 0, "x");
  EXPECT_EQ(journal.receive(),
            "MESSAGE=x\nPRIORITY=0\nSYSLOG_IDENTIFIER=till\nFACILITY=com.example.till\n");
}

TEST_F(SystemLogTest, AJournalFieldOfSeveralLinesIsPrecededByItsLength) {
  const LogListener journal(sockets.journal);
  asl_log(open().get(), 0, "a\nPRIORITY=7\n");
  const std::string length("\x0d\0\0\0\0\0\0\0", 8);
  EXPECT_EQ(journal.receive(), "MESSAGE\n" + length +
                                   "a\nPRIORITY=7\n\nPRIORITY=0\n"
                                   "SYSLOG_IDENTIFIER=till\nSYSLOG_FACILITY=19\n");
}

TEST_F(SystemLogTest, TheJournalGetsALongMessageAsASealedFile) {
  const LogListener journal(sockets.journal);
  const std::string text(3'000'000, 'x');
  EXPECT_EQ(asl_log(open().get(), 5, text), 0);
  EXPECT_EQ(journal.receive(), "MESSAGE=" + text +
                                   "\nPRIORITY=5\nSYSLOG_IDENTIFIER=till\n"
                                   "SYSLOG_FACILITY=19\n");
}

TEST_F(SystemLogTest, TheJournalComesBeforeTheSyslogSocket) {
  const LogListener journal(sockets.journal);
  const LogListener syslog(sockets.syslog);
  asl_log(open().get(), 5, "x");
  EXPECT_THAT(journal.receive(), Optional(StartsWith("MESSAGE=x\n")));
  EXPECT_EQ(syslog.receive(), std::nullopt);
}

TEST_F(SystemLogTest, NamesWithLineBreaksAddNoFieldsToTheJournal) {
  const LogListener journal(sockets.journal);
  asl_log(open("till\nPRIORITY=0", "shop\nPRIORITY=0").get(), 5, "x");
  const std::string length("\x0f\0\0\0\0\0\0\0", 8);
  EXPECT_EQ(journal.receive(), "MESSAGE=x\nPRIORITY=5\nSYSLOG_IDENTIFIER\n" + length +
                                   "till\nPRIORITY=0\nFACILITY\n" + length + "shop\nPRIORITY=0\n");
}

TEST_F(SystemLogTest, TheSyslogSocketGetsALineAsTheCLibraryWritesIt) {
  const LogListener syslog(sockets.syslog);
  EXPECT_EQ(asl_log(open().get(), 4, "drawer äußerst offen"), 0);
  EXPECT_EQ(untimed(syslog.receive()), "<156>till[" + kProcess + "]: drawer äußerst offen");
}

/// As the C library does, with the blank before a day of one digit.
std::string timeNow() {
  const time_t now = ::time(nullptr);
  tm local{};
  ::localtime_r(&now, &local);
  std::array<char, 32> text{};
  std::strftime(text.data(), text.size(), "%b %e %T", &local);
  return text.data();
}

TEST_F(SystemLogTest, ALineOfTheSyslogSocketBearsTheLocalTime) {
  const LogListener syslog(sockets.syslog);
  const Client client = open();
  const std::string earliest = timeNow();
  asl_log(client.get(), 4, "x");
  const std::string latest = timeNow();
  EXPECT_THAT(syslog.receive(), Optional(testing::AnyOf(StartsWith("<156>" + earliest + " till["),
                                                        StartsWith("<156>" + latest + " till["))));
}

TEST_F(SystemLogTest, PrioritiesJoinFacilityAndLevel) {
  const LogListener syslog(sockets.syslog);
  const struct {
    std::string_view facility;
    int level;
    std::string_view start;
  } rows[] = {
      {"", 0, "<8>"},          {"user", 5, "<13>"},
      {"daemon", 3, "<27>"},   {"auth", 1, "<33>"},
      {"security", 1, "<33>"}, {"authpriv", 7, "<87>"},
      {"local0", 6, "<134>"},  {"local7", 7, "<191>"},
      {"kern", 2, "<10>"},     {"com.example", 2, "<10>"},
      {"LOCAL0", 6, "<14>"},
  };
  for (const auto& row : rows) {
    const Client client = open("till", row.facility);
    asl_set_filter(client.get(), kAllLevels);
    asl_log(client.get(), row.level, "x");
    EXPECT_THAT(untimed(syslog.receive()), StartsWith(std::string(row.start) + "till"))
        << row.facility;
  }
}

TEST_F(SystemLogTest, OnTheSyslogSocketANULDoesNotEndTheLine) {
  const LogListener syslog(sockets.syslog);
  asl_log(open().get(), 5, std::string_view("a\0b\nc", 5));
  EXPECT_THAT(syslog.receive(), Optional(EndsWith("]: a#000b\nc")));
}

TEST_F(SystemLogTest, ANameBeginsNoLineOfItsOwnOnAStreamOfLines) {
  LogListener syslog(sockets.syslog, SOCK_STREAM);
  const Client client = open(std::string_view("till\0<8>fake\n", 13), "local3");
  asl_log(client.get(), 4, "x");
  EXPECT_EQ(untimed(syslog.receiveStream()),
            "<156>till#000<8>fake\n[" + kProcess + "]: x" + std::string(1, '\0'));
}

TEST_F(SystemLogTest, AStreamOfLinesEndsEachWithANUL) {
  LogListener syslog(sockets.syslog, SOCK_STREAM);
  const Client client = open("t", "user");
  asl_log(client.get(), 5, "a");
  asl_log(client.get(), 5, "b");
  const std::string lines = syslog.receiveStream().value_or("nothing");
  const std::size_t second = lines.find('\0') + 1;
  ASSERT_LT(second, lines.size());
  const std::string tag = "<13>t[" + kProcess + "]: ";
  EXPECT_EQ(untimed(lines.substr(0, second)), tag + std::string("a\0", 2));
  EXPECT_EQ(untimed(lines.substr(second)), tag + std::string("b\0", 2));
}

TEST_F(SystemLogTest, AStreamThatBreaksOffWithinAMessageGetsTheNextOneWhole) {
  LogListener syslog(sockets.syslog, SOCK_STREAM);
  const Client client = open();
  asl_log(client.get(), 5, "first");
  EXPECT_THAT(syslog.receiveStream(), Optional(testing::HasSubstr("first")));
  const std::string longText(3'000'000, 'x');
  std::thread logging([&] { EXPECT_EQ(asl_log(client.get(), 5, longText), 0); });
  while (!syslog.receiveStream())  // some of it has arrived
    std::this_thread::yield();
  syslog.endConnection();
  std::string again;
  while (again.find('\0') == std::string::npos)
    again += syslog.receiveStream().value_or("");
  logging.join();
  EXPECT_THAT(again, StartsWith("<"));
  EXPECT_THAT(again, EndsWith("]: " + longText + '\0'));
}

std::atomic<int> interruptions{0};
void countInterruption(int) {
  ++interruptions;
}

/// Connects to a server whose queue of connections is full, and has its thread interrupted.
TEST_F(SystemLogTest, AnInterruptionWhileItConnectsIsNotTakenForAnAbsentServer) {
  LogListener syslog(sockets.syslog, SOCK_STREAM);
  std::vector<Client> waiting;
  for (int i = 0; i < 9; ++i)  // as many as wait unaccepted
    waiting.push_back(open());
  struct sigaction action {};
  struct sigaction before {};
  action.sa_handler = &countInterruption;
  ::sigaction(SIGUSR1, &action, &before);
  interruptions = 0;
  Client client;
  std::atomic<bool> isOpen{false};
  std::thread opening([&] {
    client = open();
    isOpen = true;
  });
  while (interruptions < 100 && !isOpen) {
    ::pthread_kill(opening.native_handle(), SIGUSR1);
    std::this_thread::yield();
  }
  syslog.receiveStream();  // makes room
  opening.join();
  ::sigaction(SIGUSR1, &before, nullptr);
  EXPECT_NE(client, nullptr);
}

TEST_F(SystemLogTest, AMessageLongerThanTheSyslogSocketTakesFails) {
  const LogListener syslog(sockets.syslog);
  const Client client = open();
  EXPECT_NE(asl_log(client.get(), 5, std::string(3'000'000, 'x')), 0);
  EXPECT_EQ(asl_log(client.get(), 5, "the next one"), 0);
  EXPECT_THAT(syslog.receive(), Optional(EndsWith("the next one")));
}

TEST_F(SystemLogTest, TheNameIsTheProcessesUnlessOneIsGiven) {
  const LogListener journal(sockets.journal);
  asl_log(open("").get(), 5, "x");
  EXPECT_THAT(journal.receive(),
              Optional(testing::HasSubstr(std::string("\nSYSLOG_IDENTIFIER=") +
                                          ::program_invocation_short_name + "\n")));
}

TEST_F(SystemLogTest, ClientsHaveNamesFacilitiesAndMasksOfTheirOwn) {
  const LogListener syslog(sockets.syslog);
  const Client first = open("first", "local0");
  const Client second = open("second", "local1");
  asl_set_filter(second.get(), 1 << 1);
  asl_log(first.get(), 2, "a");
  asl_log(second.get(), 2, "held back");
  asl_log(second.get(), 1, "b");
  EXPECT_EQ(untimed(syslog.receive()), "<130>first[" + kProcess + "]: a");
  EXPECT_EQ(untimed(syslog.receive()), "<137>second[" + kProcess + "]: b");
}

TEST_F(SystemLogTest, ANewClientAdmitsLevels0To5) {
  const LogListener journal(sockets.journal);
  const Client client = open();
  for (int level = 0; level <= 7; ++level) {
    EXPECT_EQ(asl_log(client.get(), level, "x"), 0) << level;
    EXPECT_EQ(journal.receive().has_value(), level <= 5) << level;
  }
}

TEST_F(SystemLogTest, AMaskAdmitsTheLevelsWhoseBitsAreSetAndAnswersTheOneBefore) {
  const LogListener journal(sockets.journal);
  const Client client = open();
  EXPECT_EQ(asl_set_filter(client.get(), 0b10000100), 0x3f);
  EXPECT_EQ(asl_set_filter(client.get(), 0b10000100), 0b10000100);
  for (int level = 0; level <= 7; ++level) {
    EXPECT_EQ(asl_log(client.get(), level, "x"), 0) << level;
    EXPECT_EQ(journal.receive().has_value(), level == 2 || level == 7) << level;
  }
}

TEST_F(SystemLogTest, LevelsOutsideTheRangeCountAsTheNearest) {
  const LogListener journal(sockets.journal);
  const Client client = open();
  asl_set_filter(client.get(), kAllLevels);
  for (const auto& [level, priority] :
       {std::pair(-1, "0"), {INT32_MIN, "0"}, {8, "7"}, {INT32_MAX, "7"}}) {
    asl_log(client.get(), level, "x");
    EXPECT_THAT(journal.receive(),
                Optional(StartsWith(std::string("MESSAGE=x\nPRIORITY=") + priority + "\n")))
        << level;
  }
}

TEST_F(SystemLogTest, OfAFormatOnlyDoubledPercentSignsChange) {
  const LogListener journal(sockets.journal);
  const Client client = open();
  for (const auto& [format, text] : {std::pair("100%%", "100%"),
                                     {"%", "%"},
                                     {"%%%", "%%"},
                                     {"%%%%", "%%"},
                                     {"%d %@ %n", "%d %@ %n"},
                                     {"%%d", "%d"},
                                     {"", ""}}) {
    asl_log(client.get(), 5, format);
    EXPECT_THAT(journal.receive(), Optional(StartsWith(std::string("MESSAGE=") + text + "\n")))
        << format;
  }
}

TEST_F(SystemLogTest, AServerThatWasRestartedGetsTheNextMessage) {
  for (const std::string& path : {sockets.journal, sockets.syslog}) {
    auto server = std::make_unique<LogListener>(path);
    const Client client = open();
    EXPECT_EQ(asl_log(client.get(), 5, "before"), 0);
    server.reset();
    server = std::make_unique<LogListener>(path);
    EXPECT_EQ(asl_log(client.get(), 5, "after"), 0) << path;
    EXPECT_THAT(server->receive(), Optional(testing::HasSubstr("after"))) << path;
  }
}

TEST_F(SystemLogTest, AStreamThatItsServerHasEndedIsConnectedAgain) {
  LogListener syslog(sockets.syslog, SOCK_STREAM);
  const Client client = open();
  asl_log(client.get(), 5, "before");
  EXPECT_THAT(syslog.receiveStream(), Optional(testing::HasSubstr("before")));
  syslog.endConnection();
  EXPECT_EQ(asl_log(client.get(), 5, "after"), 0);
  EXPECT_THAT(syslog.receiveStream(), Optional(testing::HasSubstr("after")));
}

TEST_F(SystemLogTest, MessagesFailWhileNobodyListensAndArriveAgainAfterwards) {
  auto journal = std::make_unique<LogListener>(sockets.journal);
  const Client client = open();
  journal.reset();
  EXPECT_NE(asl_log(client.get(), 5, "lost"), 0);
  EXPECT_EQ(asl_log(client.get(), 6, "held back by the mask"), 0);
  journal = std::make_unique<LogListener>(sockets.journal);
  EXPECT_EQ(asl_log(client.get(), 5, "back"), 0);
  EXPECT_THAT(journal->receive(), Optional(StartsWith("MESSAGE=back\n")));
}

TEST_F(SystemLogTest, TheSyslogSocketTakesOverFromAJournalThatHasGone) {
  auto journal = std::make_unique<LogListener>(sockets.journal);
  const LogListener syslog(sockets.syslog);
  const Client client = open();
  journal.reset();
  EXPECT_EQ(asl_log(client.get(), 5, "x"), 0);
  EXPECT_THAT(syslog.receive(), Optional(EndsWith("]: x")));
}

TEST_F(SystemLogTest, AServerThatTakesNothingIsGivenUp) {
  const LogListener journal(sockets.journal);
  const Client client = open();
  int result = 0;
  for (int i = 0; result == 0 && i < 100'000; ++i)
    result = asl_log(client.get(), 5, "x");
  EXPECT_NE(result, 0);
  while (journal.receive()) {
  }
  EXPECT_EQ(asl_log(client.get(), 5, "again"), 0);
}

/// Answers what was written to standard error meanwhile.
template <class Work>
std::string standardErrorOf(Work&& work) {
  testing::internal::CaptureStderr();
  work();
  return testing::internal::GetCapturedStderr();
}

TEST_F(SystemLogTest, StandardErrorGetsACopyOfEveryMessageOnRequest) {
  const LogListener journal(sockets.journal);
  const Client client = open("till", "user", ASL_OPT_STDERR);
  const std::string copy = standardErrorOf([&] {
    EXPECT_EQ(asl_log(client.get(), 5, "5%%"), 0);
    EXPECT_EQ(asl_log(client.get(), 7, "outside the mask"), 0);
  });
  const std::string tag = "till[" + kProcess + "]: ";
  EXPECT_EQ(copy, tag + "5%\n" + tag + "outside the mask\n");
  EXPECT_THAT(journal.receive(), Optional(StartsWith("MESSAGE=5%\n")));
  EXPECT_EQ(journal.receive(), std::nullopt);
}

TEST_F(SystemLogTest, StandardErrorIsTheLogIfThereIsNoOther) {
  const Client client = open("till", "user", ASL_OPT_STDERR);
  ASSERT_NE(client, nullptr);
  EXPECT_EQ(standardErrorOf([&] { EXPECT_EQ(asl_log(client.get(), 5, "x"), 0); }),
            "till[" + kProcess + "]: x\n");
}

TEST_F(SystemLogTest, ACopyDoesNotMakeUpForAServerThatRefusesButForOneThatHasGone) {
  auto syslog = std::make_unique<LogListener>(sockets.syslog);
  const Client client = open("till", "user", ASL_OPT_STDERR);
  const std::string tooLong(3'000'000, 'x');
  const std::string copy = standardErrorOf([&] {
    EXPECT_NE(asl_log(client.get(), 5, tooLong), 0);
    EXPECT_EQ(asl_log(client.get(), 7, tooLong), 0);  // held back by the mask
    syslog.reset();
    EXPECT_EQ(asl_log(client.get(), 5, "nobody listens"), 0);
  });
  EXPECT_GT(copy.size(), 2 * tooLong.size());
  EXPECT_THAT(copy, EndsWith("]: nobody listens\n"));
}

TEST_F(SystemLogTest, WithoutRequestNothingGoesToStandardError) {
  const LogListener journal(sockets.journal);
  const Client client = open("till", "user", ~std::uint32_t{ASL_OPT_STDERR});
  EXPECT_EQ(standardErrorOf([&] { asl_log(client.get(), 0, "x"); }), "");
}

TEST_F(SystemLogTest, ThreadsMayHaveClientsOfTheirOwn) {
  const LogListener journal(sockets.journal);
  const auto logThree = [this](std::string_view name) {
    const Client client = open(name);
    for (int i = 0; i < 3; ++i)
      EXPECT_EQ(asl_log(client.get(), 5, "x"), 0);
  };
  std::thread other([&] { logThree("other"); });
  logThree("this");
  other.join();
  for (int i = 0; i < 6; ++i)
    EXPECT_THAT(journal.receive(), Optional(StartsWith("MESSAGE=x\nPRIORITY=5\n")));
}

TEST_F(SystemLogTest, NoClientTakesNoMessage) {
  EXPECT_NE(asl_log(nullptr, 0, "x"), 0);
  EXPECT_EQ(asl_set_filter(nullptr, 1), 0);
  asl_close(nullptr);
}

}  // namespace
}  // namespace rvf
