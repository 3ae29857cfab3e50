// SPDX-License-Identifier: Apache-2.0
#include "RVFoundation/PlatformUtilities/RVFHardwareInfo.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>

#include "Platform/Runtime/Messaging.h"
#include "Platform/System/NSProcessInfo.h"
#include "Platform/System/SystemControl.h"
#include "tests/Platform/Storage/TemporaryFolder.h"

namespace rvf {
namespace {

class RVFHardwareInfoTest : public testing::Test {
 protected:
  RVFHardwareInfoTest() {
    setSystemControlSources(
        {folder_.file("product_name"), folder_.file("model"), folder_.file("wmem_max")});
  }
  ~RVFHardwareInfoTest() override { setSystemControlSources({}); }

  std::string modelFor(std::string_view productName) const {
    writeBytes(folder_.file("product_name"), productName);
    return info_->hardwareModel();
  }

  int sendSpaceFor(std::string_view limit) const {
    writeBytes(folder_.file("wmem_max"), limit);
    return info_->tcpSendSpace()->intValue();
  }

  const Ref<RVFHardwareInfo> info_ = std::make_shared<RVFHardwareInfo>();

 private:
  const TemporaryFolder folder_;
};

TEST_F(RVFHardwareInfoTest, TheModelIsTheMachines) {
  EXPECT_EQ(modelFor("Till 3000\n"), "Till 3000");
  EXPECT_EQ(modelFor("Kasse über\n"), "Kasse über");
  EXPECT_EQ(modelFor(std::string(127, 'm')), std::string(127, 'm'));
}

TEST_F(RVFHardwareInfoTest, AModelThatCannotBeToldIsUnknown) {
  EXPECT_EQ(info_->hardwareModel(), "Unknown");
  EXPECT_EQ(modelFor(""), "Unknown");
  EXPECT_EQ(modelFor("\n"), "Unknown");
  EXPECT_EQ(modelFor(std::string(128, 'm')), "Unknown");
  EXPECT_EQ(modelFor("Till \xFF"), "Unknown");
}

TEST_F(RVFHardwareInfoTest, TheModelOfThisMachineIsNeverEmpty) {
  setSystemControlSources({});
  EXPECT_FALSE(info_->hardwareModel().empty());
}

TEST_F(RVFHardwareInfoTest, TheSendSpaceIsAnEighthOfTheKernelsLimit) {
  const std::pair<const char*, int> rows[] = {{"8388608\n", 1048576},
                                              {"4194304\n", 524288},
                                              {"212992\n", 26624},
                                              {"15\n", 1},
                                              {"0\n", 0},
                                              {"4294967295\n", 536870911}};
  for (const auto& [limit, space] : rows)
    EXPECT_EQ(sendSpaceFor(limit), space) << limit;
}

TEST_F(RVFHardwareInfoTest, TheSendSpaceWithoutALimitIsAssumed) {
  EXPECT_EQ(info_->tcpSendSpace()->intValue(), 786432);
  EXPECT_EQ(sendSpaceFor("much"), 786432);
}

TEST_F(RVFHardwareInfoTest, TheMemoryIsInWholeMegabytes) {
  const unsigned long long bytes = NSProcessInfo::processInfo()->physicalMemory();
  EXPECT_EQ(info_->ramInMegabytes()->unsignedLongLongValue(), bytes / (1024 * 1024));
  EXPECT_GT(info_->ramInMegabytes()->intValue(), 0);
}

TEST_F(RVFHardwareInfoTest, NumbersHaveTheirWidths) {
  EXPECT_EQ(info_->ramInMegabytes()->objCType(), "Q");
  EXPECT_EQ(info_->tcpSendSpace()->objCType(), "I");
}

TEST_F(RVFHardwareInfoTest, AnswersMessages) {
  EXPECT_EQ(send<std::string>(info_, SEL("hardwareModel")), "Unknown");
  EXPECT_EQ(send<Ref<NSNumber>>(info_, SEL("tcpSendSpace"))->intValue(), 786432);
  EXPECT_NE(send<Ref<NSNumber>>(info_, SEL("ramInMegabytes")), nullptr);
}

}  // namespace
}  // namespace rvf
