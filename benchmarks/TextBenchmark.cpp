// SPDX-License-Identifier: Apache-2.0
//
// Text operations against the raw library that does the same work: GLib's escaping, libmd, ICU's
// word breaking. "of_peer_speed" is our speed as a multiple of the peer's, both taking turns within
// one measurement. "growth" of the operations on large texts is the time of 10 MB by ten times that
// of 1 MB: 1 is linear.

#include <benchmark/benchmark.h>
#include <glib.h>
#include <md5.h>
#include <unicode/brkiter.h>
#include <unicode/ubrk.h>

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "Platform/Locale/NSLocale.h"
#include "RVFoundation/Text/NSString-RVFDigests.h"
#include "RVFoundation/Text/NSString-RVFEscaping.h"
#include "RVFoundation/Text/NSString-RVFExtensions.h"
#include "RVFoundation/Text/NSString-RVFWords.h"
#include "benchmarks/Turns.h"

namespace rvf {
namespace {

constexpr std::string_view kProduct =
    "Fish & Chips \"Large\" <with> tartar sauce, Müller's recipe, 2 pieces, served hot";
constexpr std::string_view kSentence =
    "The quick brown fox, who didn't care, jumped over 3.14 lazy dogs at the café on 5th Avenue. ";

std::string repeated(std::string_view text, std::size_t size) {
  std::string result;
  while (result.size() < size)
    result += text;
  return result;
}

/// Enough calls for the clock.
template <class Operation>
auto manyTimes(Operation operation) {
  return [operation] {
    constexpr int kCalls = 200;
    for (int i = 0; i < kCalls; ++i)
      benchmark::DoNotOptimize(operation());
  };
}

template <class Ours, class Theirs>
void compare(benchmark::State& state, Ours ours, Theirs theirs) {
  if (ours() != theirs()) state.SkipWithError("the results differ");
  for (auto _ : state)
    benchmark::DoNotOptimize(ours());
  state.counters["of_peer_speed"] = relativeSpeed(manyTimes(ours), manyTimes(theirs), 300);
}

/// Takes over a text of GLib's without copying it.
class GLibText final {
 public:
  explicit GLibText(char* text) : text_(text, &g_free) {}
  friend bool operator!=(const std::string& ours, const GLibText& theirs) {
    return ours != theirs.text_.get();
  }

 private:
  std::unique_ptr<char, void (*)(void*)> text_;
};

std::string textOfSize(const benchmark::State& state, std::string_view piece) {
  return state.range(0) == 0 ? std::string(piece)
                             : repeated(piece, static_cast<std::size_t>(state.range(0)));
}

void escapeXML(benchmark::State& state) {
  const std::string text = textOfSize(state, kProduct);
  compare(
      state, [&] { return stringByEscapingXMLEntities(text); },
      [&] {
        return GLibText(g_markup_escape_text(text.data(), static_cast<gssize>(text.size())));
      });
}
BENCHMARK(escapeXML)->ArgName("bytes")->Arg(0)->Arg(10'000);

void escapePlainXML(benchmark::State& state) {
  const std::string text = textOfSize(state, "plain words without anything to escape ");
  compare(
      state, [&] { return stringByEscapingXMLEntities(text); },
      [&] {
        return GLibText(g_markup_escape_text(text.data(), static_cast<gssize>(text.size())));
      });
}
BENCHMARK(escapePlainXML)->ArgName("bytes")->Arg(0)->Arg(10'000);

void escapeURL(benchmark::State& state) {
  const std::string text = textOfSize(state, kProduct);
  compare(
      state, [&] { return *RVF_stringByEscapingForURLArgument(text); },
      [&] { return GLibText(g_uri_escape_string(text.c_str(), nullptr, FALSE)); });
}
BENCHMARK(escapeURL)->ArgName("bytes")->Arg(0)->Arg(10'000);

void decodeURL(benchmark::State& state) {
  const std::string text = *RVF_stringByEscapingForURLArgument(textOfSize(state, kProduct));
  compare(
      state, [&] { return *RVF_stringByDecodingURLArguments(text); },
      [&] { return GLibText(g_uri_unescape_string(text.c_str(), nullptr)); });
}
BENCHMARK(decodeURL)->ArgName("bytes")->Arg(0)->Arg(10'000);

void md5Of64Bytes(benchmark::State& state) {
  const std::string text(64, 'x');
  compare(
      state, [&] { return RVF_md5(text); },
      [&] {
        std::string hexadecimal(MD5_DIGEST_STRING_LENGTH - 1, '\0');
        MD5Data(reinterpret_cast<const std::uint8_t*>(text.data()), text.size(),
                hexadecimal.data());
        return hexadecimal;
      });
}
BENCHMARK(md5Of64Bytes);

std::vector<std::string> icuWords(icu::BreakIterator& rules, std::string_view text) {
  const auto units = icu::UnicodeString::fromUTF8(
      icu::StringPiece(text.data(), static_cast<std::int32_t>(text.size())));
  rules.setText(units);
  std::vector<std::string> words;
  std::int32_t start = rules.first();
  for (std::int32_t end = rules.next(); end != icu::BreakIterator::DONE;
       start = end, end = rules.next()) {
    if (rules.getRuleStatus() < UBRK_WORD_NUMBER) continue;
    units.tempSubStringBetween(start, end).toUTF8String(words.emplace_back());
  }
  return words;
}

void splitWords(benchmark::State& state) {
  NSLocale::setCurrentLocaleIdentifier("en_US");
  const std::string text = textOfSize(state, kSentence);
  UErrorCode status = U_ZERO_ERROR;
  const std::unique_ptr<icu::BreakIterator> rules(
      icu::BreakIterator::createWordInstance(icu::Locale("en_US"), status));
  const auto ours = [&] { return wordComponents(text); };
  const auto theirs = [&] { return icuWords(*rules, text); };
  if (ours() != theirs()) state.SkipWithError("the words differ");
  for (auto _ : state)
    benchmark::DoNotOptimize(ours());
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(text.size()));
  const int rounds = text.size() > 1'000'000 ? 5 : 400;
  state.counters["of_peer_speed"] =
      relativeSpeed([&] { benchmark::DoNotOptimize(ours()); },
                    [&] { benchmark::DoNotOptimize(theirs()); }, rounds);
}
BENCHMARK(splitWords)->ArgName("bytes")->Arg(0)->Arg(10'000)->Arg(10'000'000);

/// Measures an operation on 10 MB, and whether ten times 1 MB takes as long.
template <class Operation>
void measureGrowth(benchmark::State& state, std::string_view piece, Operation operation) {
  const std::string large = repeated(piece, 10'000'000);
  const std::string small = large.substr(0, large.size() / 10);
  for (auto _ : state)
    benchmark::DoNotOptimize(operation(large));
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(large.size()));
  const auto tenSmall = [&] {
    for (int i = 0; i < 10; ++i)
      benchmark::DoNotOptimize(operation(small));
  };
  state.counters["growth"] = relativeSpeed(
      tenSmall, [&] { benchmark::DoNotOptimize(operation(large)); }, 10);
}

void countOccurrences(benchmark::State& state) {
  measureGrowth(state, kSentence,
                [](const std::string& text) { return RVF_occurrenceCountOfSubstring(text, "o"); });
}
BENCHMARK(countOccurrences);

void countOccurrencesThatAlmostMatch(benchmark::State& state) {
  measureGrowth(state, "a", [](const std::string& text) {
    return RVF_occurrenceCountOfSubstring(text, std::string(10'000, 'a') + 'b');
  });
}
BENCHMARK(countOccurrencesThatAlmostMatch);

void cleanLines(benchmark::State& state) {
  measureGrowth(state, "a line\tof text\r\nand\u2028another\n\n", [](const std::string& text) {
    return RVF_cleanStringRemovingNewlinesAndTabs(text);
  });
}
BENCHMARK(cleanLines);

}  // namespace
}  // namespace rvf
