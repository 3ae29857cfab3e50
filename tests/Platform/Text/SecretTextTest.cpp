// SPDX-License-Identifier: Apache-2.0
#include "Platform/Text/SecretText.h"

#include <gtest/gtest.h>

#include <array>
#include <string>
#include <type_traits>
#include <utility>

namespace rvf {
namespace {

static_assert(!std::is_copy_constructible_v<SecretText> && !std::is_copy_assignable_v<SecretText>);

TEST(SecretText, TellsNoTextFromTheEmptyOne) {
  EXPECT_EQ(SecretText().view(), std::nullopt);
  EXPECT_EQ(SecretText(std::nullopt).view(), std::nullopt);
  EXPECT_EQ(SecretText("").view(), "");
  EXPECT_EQ(SecretText("4111").view(), "4111");
}

TEST(SecretText, KeepsZeroBytes) {
  EXPECT_EQ(SecretText(std::string_view("a\0b", 3)).view(), std::string_view("a\0b", 3));
}

TEST(SecretText, MovingHandsTheBytesOver) {
  SecretText from("4111");
  const char* const bytes = from.view()->data();
  const SecretText to = std::move(from);
  EXPECT_EQ(to.view(), "4111");
  EXPECT_EQ(to.view()->data(), bytes);
  EXPECT_EQ(from.view(), std::nullopt);  // NOLINT(bugprone-use-after-move): that is the question
}

TEST(SecretText, TakesAPartOfItsFormerSelf) {
  SecretText text("B4111");
  text = SecretText(text.view()->substr(1));
  EXPECT_EQ(text.view(), "4111");
}

TEST(SecretText, WipesMemory) {
  std::array<char, 8> bytes;
  bytes.fill('x');
  wipeMemory(bytes.data() + 1, 6);
  EXPECT_EQ(std::string_view(bytes.data(), bytes.size()), std::string_view("x\0\0\0\0\0\0x", 8));
  wipeMemory(nullptr, 0);
}

TEST(SecretText, WipesAllTheRoomOfAString) {
  for (const std::size_t length : {4U, 15U, 400U}) {
    std::string text(length, 'x');
    text.resize(text.capacity(), 'x');
    text.resize(2);
    const std::string_view room(text.data(), text.capacity());
    wipeText(text);
    EXPECT_TRUE(text.empty());
    EXPECT_EQ(room, std::string(room.size(), '\0'));
  }
}

}  // namespace
}  // namespace rvf
