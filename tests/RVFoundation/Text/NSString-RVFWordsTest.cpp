// SPDX-License-Identifier: Apache-2.0
#include "RVFoundation/Text/NSString-RVFWords.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <rapidcheck.h>
#include <sys/mman.h>

#include <new>

#include "Platform/Locale/NSLocale.h"
#include "Platform/Runtime/NSAssertionHandler.h"
#include "Platform/Runtime/NSException.h"
#include "Platform/Text/Text.h"
#include "tests/Platform/Text/TextGenerators.h"

namespace rvf {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class NSString_RVFWordsTest : public testing::Test {
 protected:
  NSString_RVFWordsTest() { NSLocale::setCurrentLocaleIdentifier("en_US"); }
  ~NSString_RVFWordsTest() override { NSLocale::setCurrentLocaleIdentifier(std::nullopt); }
};

TEST_F(NSString_RVFWordsTest, AnswersTheWordsInOrder) {
  EXPECT_THAT(wordComponents("Hello, world! don't stop"),
              ElementsAre("Hello", "world", "don't", "stop"));
  EXPECT_THAT(wordComponents("3.14 1,234 foo_bar x-y"),
              ElementsAre("3.14", "1,234", "foo_bar", "x", "y"));
  EXPECT_THAT(wordComponents("日本語テキスト"), ElementsAre("日本語", "テキスト"));
  EXPECT_THAT(wordComponents("😀 ok"), ElementsAre("ok"));
}

TEST_F(NSString_RVFWordsTest, ATextWithoutWordsHasNone) {
  for (const char* text : {"", " \n\t", "... --- !?", "\xFF\xFE"})
    EXPECT_THAT(wordComponents(text), IsEmpty()) << text;
}

TEST_F(NSString_RVFWordsTest, StrayBytesStandBetweenWords) {
  EXPECT_THAT(wordComponents("ab\xFF\xC3 éd\xE2\x82 z"), ElementsAre("ab", "éd", "z"));
}

TEST_F(NSString_RVFWordsTest, WordsAreInTheTextInOrder) {
  EXPECT_TRUE(rc::check([] {
    const std::string text = *anyText() + *anyBytes();
    std::size_t start = 0;
    for (const std::string& word : wordComponents(text)) {
      const std::size_t found = text.find(word, start);
      RC_ASSERT(found != std::string::npos);
      RC_ASSERT(!word.empty());
      start = found + word.size();
    }
  }));
}

TEST_F(NSString_RVFWordsTest, TakesATextOfTenMegabytes) {
  std::string text;
  while (text.size() < 10'000'000)
    text += "Äpfel, ";
  EXPECT_EQ(wordComponents(text).size(), text.size() / 8);
}

TEST_F(NSString_RVFWordsTest, BreaksByTheRulesOfTheUsersLocale) {
  EXPECT_THAT(wordComponents("EU:n"), ElementsAre("EU", "n"));
  NSLocale::setCurrentLocaleIdentifier("fi_FI");
  EXPECT_THAT(wordComponents("EU:n"), ElementsAre("EU:n"));
}

/// Zero bytes, one more than the tokenizer can count; they take no memory.
class TextTooLong final {
 public:
  TextTooLong()
      : memory_(
            mmap(nullptr, kSize, PROT_READ, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0)) {
    if (memory_ == MAP_FAILED) throw std::bad_alloc();
  }
  TextTooLong(const TextTooLong&) = delete;
  TextTooLong& operator=(const TextTooLong&) = delete;
  ~TextTooLong() { munmap(memory_, kSize); }

  std::string_view view() const { return {static_cast<const char*>(memory_), kSize}; }

 private:
  static constexpr std::size_t kSize = std::size_t{1} << 31;
  void* memory_;
};

TEST_F(NSString_RVFWordsTest, ATextTooLongIsAReportedAssertion) {
  const TextTooLong text;
  try {
    wordComponents(text.view());
    ADD_FAILURE() << "nothing was raised";
  } catch (const NSException& exception) {
    EXPECT_EQ(exception.name(), NSInternalInconsistencyException);
    EXPECT_EQ(exception.reason(), "Could not create tokenizer");
  }
}

class ForgivingHandler final : public NSAssertionHandler {
 public:
  void handleFailureInMethod(SEL selector, const NSObject*, std::string_view file, int,
                             std::string_view description) override {
    reports_.push_back(NSStringFromSelector(selector) + ", " + std::string(file) + ": " +
                       std::string(description));
  }
  std::vector<std::string> reports_;
};

TEST_F(NSString_RVFWordsTest, AHandlerThatReturnsMakesATextTooLongHaveNoWords) {
  const auto handler = std::make_shared<ForgivingHandler>();
  NSAssertionHandler::setCurrentHandler(handler);
  const TextTooLong text;
  EXPECT_THAT(wordComponents(text.view()), IsEmpty());
  NSAssertionHandler::setCurrentHandler(nullptr);
  EXPECT_THAT(handler->reports_, ElementsAre("wordComponents, RVFoundation/NSString-RVFExtensions: "
                                             "Could not create tokenizer"));
}

TEST(NSString_RVFWords, CountsOccurrencesWithoutOverlap) {
  struct Row {
    const char* text;
    const char* substring;
    std::size_t count;
  };
  const Row rows[] = {
      {"banana", "a", 3},
      {"banana", "x", 0},
      {"aaaa", "aa", 2},
      {"aaa", "aa", 1},
      {"", "a", 0},
      {"banana", "", 0},
      {"", "", 0},
      {"banana", "banana", 1},
      {"banana", "bananas", 0},
      {"äöä", "ä", 2},
      {"\xFF"
       "a\xFF",
       "\xFF", 2},
  };
  for (const Row& row : rows)
    EXPECT_EQ(RVF_occurrenceCountOfSubstring(row.text, row.substring), row.count)
        << row.text << ' ' << row.substring;
}

TEST(NSString_RVFWords, AnOccurrenceIsWhatSplitsTheText) {
  EXPECT_TRUE(rc::check([] {
    const auto text = *rc::gen::container<std::string>(rc::gen::element('a', 'b'));
    const auto substring = *rc::gen::container<std::string>(rc::gen::element('a', 'b'));
    RC_ASSERT(RVF_occurrenceCountOfSubstring(text, substring) ==
              splitText(text, substring).size() - 1);
  }));
}

TEST(NSString_RVFWords, CountsInTenMegabytesEvenWhereEveryPlaceAlmostMatches) {
  const std::string text(10'000'000, 'a');
  EXPECT_EQ(RVF_occurrenceCountOfSubstring(text, "a"), text.size());
  EXPECT_EQ(RVF_occurrenceCountOfSubstring(text, std::string(100'000, 'a') + 'b'), 0U);
}

}  // namespace
}  // namespace rvf
