// SPDX-License-Identifier: Apache-2.0
#include "Platform/Locale/WordTokenizer.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace rvf {
namespace {

using testing::ElementsAre;

std::vector<std::string> words(std::string_view text, const char* locale) {
  auto tokenizer = WordTokenizer::create(text, NSLocale::localeWithLocaleIdentifier(locale));
  std::vector<std::string> result;
  while (const auto word = tokenizer->nextWord())
    result.emplace_back(*word);
  return result;
}

TEST(WordTokenizer, FollowsTheRulesOfTheLocale) {
  EXPECT_THAT(words("EU:n jäsen", "fi_FI"), ElementsAre("EU:n", "jäsen"));
  EXPECT_THAT(words("EU:n jäsen", "en_US"), ElementsAre("EU", "n", "jäsen"));
}

TEST(WordTokenizer, AnUnknownLocaleHasTheRootRules) {
  for (const char* locale : {"", "xx_YY", "../x", "\xFF"})
    EXPECT_THAT(words("Hello, world", locale), ElementsAre("Hello", "world")) << locale;
}

TEST(WordTokenizer, WordsArePartsOfTheText) {
  const std::string text = "😀 an ß";
  auto tokenizer = WordTokenizer::create(text, NSLocale::localeWithLocaleIdentifier("en_US"));
  EXPECT_EQ(tokenizer->nextWord()->data(), text.data() + 5);
  EXPECT_EQ(tokenizer->nextWord()->data(), text.data() + 8);
  EXPECT_EQ(tokenizer->nextWord(), std::nullopt);
  EXPECT_EQ(tokenizer->nextWord(), std::nullopt);
}

TEST(WordTokenizer, SeveralAtATimeDoNotDisturbEachOther) {
  const auto locale = NSLocale::localeWithLocaleIdentifier("en_US");
  auto first = WordTokenizer::create("a b", locale);
  auto second = WordTokenizer::create("c d", locale);
  EXPECT_EQ(first->nextWord(), "a");
  EXPECT_EQ(second->nextWord(), "c");
  WordTokenizer moved = std::move(*first);
  EXPECT_EQ(moved.nextWord(), "b");
  EXPECT_EQ(second->nextWord(), "d");
}

TEST(WordTokenizer, ConcurrentThreadsHaveRulesOfTheirOwn) {
  std::vector<std::thread> threads;
  for (int i = 0; i < 4; ++i) {
    threads.emplace_back([] {
      for (int turn = 0; turn < 50; ++turn)
        EXPECT_THAT(words("EU:n jäsen", turn % 2 == 0 ? "fi_FI" : "sv_SE"),
                    testing::Contains("jäsen"));
    });
  }
  for (std::thread& thread : threads)
    thread.join();
}

TEST(WordTokenizer, MayEndOnAnotherThreadThanItBegan) {
  const auto locale = NSLocale::localeWithLocaleIdentifier("en_US");
  auto tokenizer = WordTokenizer::create("a b", locale);
  std::thread([moved = std::move(*tokenizer)]() mutable {
    EXPECT_EQ(moved.nextWord(), "a");
  }).join();
  EXPECT_THAT(words("c", "en_US"), ElementsAre("c"));
}

TEST(WordTokenizer, AnAbsentLocaleHasNone) {
  EXPECT_FALSE(WordTokenizer::create("a", nullptr).has_value());
}

}  // namespace
}  // namespace rvf
