// SPDX-License-Identifier: Apache-2.0
#include "Platform/Time/HostTimeZone.h"

#include <gtest/gtest.h>

#include <atomic>
#include <filesystem>
#include <string>
#include <thread>
#include <vector>

#include "Platform/Time/NSTimeZone.h"
#include "tests/Platform/Storage/TemporaryFolder.h"

namespace rvf {
namespace {

constexpr std::int32_t kDistanceOfNow = -14400;
constexpr const char* kNameByDistance = "GMT-04:00";

/// A device with some zones, whose files are told apart by their bytes alone.
class HostTimeZoneTest : public testing::Test {
 protected:
  HostTimeZoneTest() {
    sources_.localTime = folder_.file("localtime");
    sources_.nameFile = folder_.file("timezone");
    sources_.zones = folder_.file("zoneinfo");
    sources_.distanceOfNow = [] { return kDistanceOfNow; };
    addZone("Europe/Berlin", "TZif berlin");
    addZone("Europe/Oslo", "TZif berlin");
    addZone("Arctic/Longyearbyen", "TZif berlin");
    addZone("Asia/Tokyo", "TZif tokyo");
    addZone("posix/Asia/Tokyo", "TZif tokyo");
    addZone("Zone/Of-Nobody", "TZif nobody");
  }

  std::string zone(const std::string& name) const { return sources_.zones + "/" + name; }
  void addZone(const std::string& name, const std::string& bytes) const {
    std::filesystem::create_directories(std::filesystem::path(zone(name)).parent_path());
    writeBytes(zone(name), bytes);
  }
  void setLocalTimeLink(const std::string& target) const {
    std::filesystem::remove(sources_.localTime);
    std::filesystem::create_symlink(target, sources_.localTime);
  }
  std::string name() const { return hostTimeZoneName(sources_); }
  std::string nameFor(const std::string& variable) {
    sources_.variable = variable;
    return name();
  }

  const TemporaryFolder folder_;
  HostTimeZoneSources sources_;
};

TEST_F(HostTimeZoneTest, TheVariableNamesAZone) {
  for (const char* prefix : {"", ":", "posix/", ":right/"}) {
    for (const char* name : {"Europe/Berlin", "EST5EDT", "UTC", "Etc/GMT+5"})
      EXPECT_EQ(nameFor(std::string(prefix) + name), name) << prefix;
  }
}

TEST_F(HostTimeZoneTest, TheVariableIsThePathOfAZone) {
  setLocalTimeLink(zone("Asia/Tokyo"));
  for (const char* prefix : {"", ":"}) {
    EXPECT_EQ(nameFor(prefix + zone("Europe/Berlin")), "Europe/Berlin");
    EXPECT_EQ(nameFor(prefix + sources_.localTime), "Asia/Tokyo");
    EXPECT_EQ(nameFor(prefix + std::string("/usr/share/zoneinfo/Asia/Kathmandu")),
              "Asia/Kathmandu");
  }
}

TEST_F(HostTimeZoneTest, AnEmptyVariableIsGMT) {
  setLocalTimeLink(zone("Asia/Tokyo"));
  EXPECT_EQ(nameFor(""), "GMT");
  EXPECT_EQ(nameFor(":"), "GMT");
}

TEST_F(HostTimeZoneTest, ARuleIsTheDistanceOfNow) {
  setLocalTimeLink(zone("Asia/Tokyo"));
  for (const char* rule : {"EST5EDT,M3.2.0,M11.1.0", "<-04>4", "GMT+4", "Nowhere/Town", "/nowhere"})
    EXPECT_EQ(nameFor(rule), kNameByDistance) << rule;
}

TEST_F(HostTimeZoneTest, WithoutTheVariableALinkNamesTheZone) {
  setLocalTimeLink(zone("Asia/Tokyo"));
  EXPECT_EQ(name(), "Asia/Tokyo");
  setLocalTimeLink("zoneinfo/Europe/Oslo");
  EXPECT_EQ(name(), "Europe/Oslo");
}

TEST_F(HostTimeZoneTest, ALinkToALinkNamesTheZone) {
  std::filesystem::create_symlink(zone("Europe/Oslo"), folder_.file("chosen"));
  setLocalTimeLink(folder_.file("chosen"));
  EXPECT_EQ(name(), "Europe/Oslo");
}

TEST_F(HostTimeZoneTest, ACopiedFileIsFoundByItsBytes) {
  writeBytes(sources_.localTime, "TZif tokyo");
  EXPECT_EQ(name(), "Asia/Tokyo");
  EXPECT_EQ(nameFor(sources_.localTime), "Asia/Tokyo");
}

TEST_F(HostTimeZoneTest, TheNameFileChoosesAmongZonesOfTheSameBytes) {
  writeBytes(sources_.localTime, "TZif berlin");
  writeBytes(sources_.nameFile, "Europe/Berlin\n");
  EXPECT_EQ(name(), "Europe/Berlin");
}

TEST_F(HostTimeZoneTest, TheListedZoneCountsAmongZonesOfTheSameBytes) {
  writeBytes(sources_.localTime, "TZif berlin");
  writeBytes(zone("zone1970.tab"),
             "# a comment\tof\tEurope/Oslo\n"
             "DE,DK,NO,SE,SJ\t+5230+01322\tEurope/Berlin\tmost of Germany\n"
             "JP\t+353916+1394441\tAsia/Tokyo\n\nbroken\n");
  EXPECT_EQ(name(), "Europe/Berlin");
  writeBytes(sources_.nameFile, "Europe/Oslo\n");
  EXPECT_EQ(name(), "Europe/Oslo") << "what was chosen counts more";
}

TEST_F(HostTimeZoneTest, TheListedZoneCountsMoreThanUnicodesOlderName) {
  addZone("Asia/Calcutta", "TZif india");
  addZone("Asia/Kolkata", "TZif india");
  writeBytes(zone("zone1970.tab"), "IN\t+2232+08822\tAsia/Kolkata\n");
  writeBytes(sources_.localTime, "TZif india");
  EXPECT_EQ(name(), "Asia/Kolkata");
}

TEST_F(HostTimeZoneTest, WithoutAListTheCanonicalZoneCounts) {
  for (const char* other : {"Europe/Belfast", "Europe/London", "GB", "GB-Eire"})
    addZone(other, "TZif london");
  for (const char* other : {"Etc/UCT", "Etc/UTC", "Etc/Zulu", "UCT", "UTC", "Zulu"})
    addZone(other, "TZif nowhere");
  writeBytes(sources_.localTime, "TZif london");
  EXPECT_EQ(name(), "Europe/London");
  writeBytes(sources_.localTime, "TZif nowhere");
  EXPECT_EQ(name(), "Etc/UTC");
}

TEST_F(HostTimeZoneTest, FoldersThatRepeatTheZonesCountLast) {
  addZone("posix/Europe/Berlin", "TZif repeated");
  addZone("Europe/Oslo", "TZif repeated");
  addZone("right/Asia/Tokyo", "TZif leap seconds");
  writeBytes(sources_.localTime, "TZif repeated");
  EXPECT_EQ(name(), "Europe/Oslo");
  writeBytes(sources_.localTime, "TZif leap seconds");
  EXPECT_EQ(name(), "Asia/Tokyo");
}

TEST_F(HostTimeZoneTest, ANameFileThatIsWrongDoesNotCount) {
  writeBytes(sources_.localTime, "TZif berlin");
  for (const char* wrong : {"Asia/Tokyo\n", "", "Nowhere/Town\n"}) {
    writeBytes(sources_.nameFile, wrong);
    EXPECT_EQ(name(), "Arctic/Longyearbyen") << wrong;
  }
}

TEST_F(HostTimeZoneTest, AFileThatChangedIsLookedForAgain) {
  writeBytes(sources_.localTime, "TZif tokyo");
  EXPECT_EQ(name(), "Asia/Tokyo");
  writeBytes(sources_.localTime, "TZif berlin");
  EXPECT_EQ(name(), "Arctic/Longyearbyen");
}

TEST_F(HostTimeZoneTest, AFileIsLookedForOnlyOnce) {
  writeBytes(sources_.localTime, "TZif tokyo");
  EXPECT_EQ(name(), "Asia/Tokyo");
  std::filesystem::remove_all(sources_.zones);
  EXPECT_EQ(name(), "Asia/Tokyo");
}

TEST_F(HostTimeZoneTest, WhatHasNoNameIsTheDistanceOfNow) {
  EXPECT_EQ(name(), kNameByDistance) << "nothing there";
  for (const char* bytes : {"", "TZif other", "TZif nobody"}) {
    writeBytes(sources_.localTime, bytes);
    EXPECT_EQ(name(), kNameByDistance) << bytes;
  }
}

TEST_F(HostTimeZoneTest, ThreadsMayAskAtTheSameTime) {
  constexpr int kThreads = 4;
  writeBytes(sources_.localTime, "TZif tokyo");
  const std::string ofDevice = NSTimeZone::systemTimeZone()->name();
  std::atomic<int> wrong{0};
  std::vector<std::thread> threads;
  for (int i = 0; i < kThreads; ++i) {
    threads.emplace_back([&] {
      for (int n = 0; n < 100; ++n) {
        if (NSTimeZone::systemTimeZone()->name() != ofDevice || name() != "Asia/Tokyo") ++wrong;
      }
    });
  }
  for (std::thread& thread : threads)
    thread.join();
  EXPECT_EQ(wrong, 0);
}

}  // namespace
}  // namespace rvf
