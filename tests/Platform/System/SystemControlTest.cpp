// SPDX-License-Identifier: Apache-2.0
#include "Platform/System/SystemControl.h"

#include <errno.h>
#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <cstring>
#include <string>

#include "tests/Platform/Storage/TemporaryFolder.h"

namespace rvf {
namespace {

class SystemControlTest : public testing::Test {
 protected:
  SystemControlTest() {
    setSystemControlSources(
        {folder_.file("product_name"), folder_.file("model"), folder_.file("wmem_max")});
  }
  ~SystemControlTest() override { setSystemControlSources({}); }

  void setProductName(std::string_view bytes) { writeBytes(folder_.file("product_name"), bytes); }
  void setDeviceTreeModel(std::string_view bytes) { writeBytes(folder_.file("model"), bytes); }
  void setGreatestSendBuffer(std::string_view bytes) {
    writeBytes(folder_.file("wmem_max"), bytes);
  }

  /// The text, or the error number.
  static std::string model() {
    std::array<char, 128> buffer{};
    std::size_t length = buffer.size();
    if (sysctlbyname("hw.model", buffer.data(), &length) != 0) return std::to_string(errno);
    EXPECT_EQ(length, std::strlen(buffer.data()) + 1);
    return buffer.data();
  }

  static long greatestSendBuffer() {
    std::uint32_t value = 0;
    std::size_t length = sizeof value;
    const std::array path = {1, 32, 1};
    if (sysctl(path, &value, &length) != 0) return -errno;
    EXPECT_EQ(length, sizeof value);
    return value;
  }

 private:
  TemporaryFolder folder_;
};

TEST_F(SystemControlTest, TheModelIsTheFirmwaresProductName) {
  setProductName("Till 3000 (rev. B)\n");
  setDeviceTreeModel(std::string_view("Board\0", 6));
  EXPECT_EQ(model(), "Till 3000 (rev. B)");
}

TEST_F(SystemControlTest, OrThatOfTheDeviceTree) {
  setDeviceTreeModel(std::string_view("Board 4 Rev 1.2\0", 16));
  EXPECT_EQ(model(), "Board 4 Rev 1.2");
  setProductName("\n");
  EXPECT_EQ(model(), "Board 4 Rev 1.2");
}

TEST_F(SystemControlTest, OrThereIsNone) {
  EXPECT_EQ(model(), std::to_string(ENOENT));
  setProductName("");
  setDeviceTreeModel(std::string_view("\0", 1));
  EXPECT_EQ(model(), std::to_string(ENOENT));
}

TEST_F(SystemControlTest, AModelThatIsTooLongForTheBufferIsNotCut) {
  setProductName(std::string(127, 'm') + "\n");
  EXPECT_EQ(model(), std::string(127, 'm'));
  setProductName(std::string(128, 'm') + "\n");
  EXPECT_EQ(model(), std::to_string(ENOMEM));
  setProductName(std::string(100'000, 'm'));
  EXPECT_EQ(model(), std::to_string(ENOMEM));
}

TEST_F(SystemControlTest, TellsTheLengthWithoutABuffer) {
  setProductName("Till\n");
  std::size_t length = 0;
  EXPECT_EQ(sysctlbyname("hw.model", nullptr, &length), 0);
  EXPECT_EQ(length, 5U);
  char buffer = 'x';
  EXPECT_EQ(sysctlbyname("hw.model", &buffer, nullptr), -1);
  EXPECT_EQ(errno, ENOMEM);
  EXPECT_EQ(buffer, 'x');
}

TEST_F(SystemControlTest, ReadsTheGreatestSendBuffer) {
  const std::pair<const char*, long> rows[] = {
      {"212992\n", 212992},    {"4194304", 4194304}, {"0\n", 0},      {"4294967295\n", 4294967295},
      {"4294967296", -EINVAL}, {"", -EINVAL},        {"-1", -EINVAL}, {"212992 x", -EINVAL}};
  for (const auto& [text, value] : rows) {
    setGreatestSendBuffer(text);
    EXPECT_EQ(greatestSendBuffer(), value) << text;
  }
}

TEST_F(SystemControlTest, AMissingSourceIsAnError) {
  EXPECT_EQ(greatestSendBuffer(), -ENOENT);
}

TEST_F(SystemControlTest, NamesAndPathsMeanTheSame) {
  setGreatestSendBuffer("7");
  setProductName("Till");
  std::uint32_t value = 0;
  std::size_t length = sizeof value;
  EXPECT_EQ(sysctlbyname("kern.ipc.maxsockbuf", &value, &length), 0);
  EXPECT_EQ(value, 7U);
  std::array<char, 16> text{};
  length = text.size();
  EXPECT_EQ(sysctl(std::array{6, 2}, text.data(), &length), 0);
  EXPECT_STREQ(text.data(), "Till");
}

TEST_F(SystemControlTest, KnowsNoOtherNamesAndWritesNothing) {
  setProductName("Till");
  EXPECT_EQ(sysctlbyname("hw.ncpu", nullptr, nullptr), -1);
  EXPECT_EQ(errno, ENOENT);
  EXPECT_EQ(sysctl(std::array{1, 32}, nullptr, nullptr), -1);
  EXPECT_EQ(errno, ENOENT);
  EXPECT_EQ(sysctl(std::span<const int>(), nullptr, nullptr), -1);
  EXPECT_EQ(errno, ENOENT);
  EXPECT_EQ(sysctlbyname("hw.model", nullptr, nullptr, "x", 1), -1);
  EXPECT_EQ(errno, EPERM);
  EXPECT_EQ(sysctlbyname(nullptr, nullptr, nullptr), -1);
  EXPECT_EQ(errno, EFAULT);
}

}  // namespace
}  // namespace rvf
