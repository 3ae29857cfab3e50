// SPDX-License-Identifier: Apache-2.0
//
// Text operations beside the raw library that does the same work: GLib's escaping, libmd, ICU's
// word breaking. Operations on large texts stand beside themselves on a tenth of the text, ten
// times: those whose time grows in proportion take as long.

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
#include "benchmarks/Measure.h"

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

template <class Ours, class Theirs>
void requireEqual(benchmark::State& state, const Ours& ours, const Theirs& theirs) {
  if (ours != theirs) state.SkipWithError("the results differ");
}

constexpr std::string_view kPlain = "plain words without anything to escape ";

void forSizes(benchmark::internal::Benchmark* each) {
  each->ArgName("bytes")->Arg(0)->Arg(10'000);
}

GLibText escapedByGLib(const std::string& text) {
  return GLibText(g_markup_escape_text(text.data(), static_cast<gssize>(text.size())));
}

template <const std::string_view& piece>
void escapeXML(benchmark::State& state) {
  const std::string text = textOfSize(state, piece);
  requireEqual(state, stringByEscapingXMLEntities(text), escapedByGLib(text));
  measureResult(state, [&] { return stringByEscapingXMLEntities(text); });
}

template <const std::string_view& piece>
void escapeXMLByGLib(benchmark::State& state) {
  const std::string text = textOfSize(state, piece);
  measureResult(state, [&] { return escapedByGLib(text); });
}

BENCHMARK(escapeXML<kProduct>)->Name("escape XML/ours")->Apply(&forSizes);
BENCHMARK(escapeXMLByGLib<kProduct>)->Name("escape XML/peer: GLib")->Apply(&forSizes);
BENCHMARK(escapeXML<kPlain>)->Name("escape plain XML/ours")->Apply(&forSizes);
BENCHMARK(escapeXMLByGLib<kPlain>)->Name("escape plain XML/peer: GLib")->Apply(&forSizes);

GLibText escapedURLByGLib(const std::string& text) {
  return GLibText(g_uri_escape_string(text.c_str(), nullptr, FALSE));
}

void escapeURL(benchmark::State& state) {
  const std::string text = textOfSize(state, kProduct);
  requireEqual(state, *RVF_stringByEscapingForURLArgument(text), escapedURLByGLib(text));
  measureResult(state, [&] { return RVF_stringByEscapingForURLArgument(text); });
}
BENCHMARK(escapeURL)->Name("escape a URL argument/ours")->Apply(&forSizes);

void escapeURLByGLib(benchmark::State& state) {
  const std::string text = textOfSize(state, kProduct);
  measureResult(state, [&] { return escapedURLByGLib(text); });
}
BENCHMARK(escapeURLByGLib)->Name("escape a URL argument/peer: GLib")->Apply(&forSizes);

GLibText decodedByGLib(const std::string& text) {
  return GLibText(g_uri_unescape_string(text.c_str(), nullptr));
}

void decodeURL(benchmark::State& state) {
  const std::string text = *RVF_stringByEscapingForURLArgument(textOfSize(state, kProduct));
  requireEqual(state, *RVF_stringByDecodingURLArguments(text), decodedByGLib(text));
  measureResult(state, [&] { return RVF_stringByDecodingURLArguments(text); });
}
BENCHMARK(decodeURL)->Name("decode a URL argument/ours")->Apply(&forSizes);

void decodeURLByGLib(benchmark::State& state) {
  const std::string text = *RVF_stringByEscapingForURLArgument(textOfSize(state, kProduct));
  measureResult(state, [&] { return decodedByGLib(text); });
}
BENCHMARK(decodeURLByGLib)->Name("decode a URL argument/peer: GLib")->Apply(&forSizes);

std::string md5ByLibmd(const std::string& text) {
  std::string hexadecimal(MD5_DIGEST_STRING_LENGTH - 1, '\0');
  MD5Data(reinterpret_cast<const std::uint8_t*>(text.data()), text.size(), hexadecimal.data());
  return hexadecimal;
}

void md5(benchmark::State& state) {
  const std::string text(64, 'x');
  requireEqual(state, RVF_md5(text), md5ByLibmd(text));
  measureResult(state, [&] { return RVF_md5(text); });
}
BENCHMARK(md5)->Name("MD5 of 64 bytes/ours");

void md5Rawly(benchmark::State& state) {
  const std::string text(64, 'x');
  measureResult(state, [&] { return md5ByLibmd(text); });
}
BENCHMARK(md5Rawly)->Name("MD5 of 64 bytes/limit: libmd");

void md5ByGLib(benchmark::State& state) {
  const std::string text(64, 'x');
  measureResult(state, [&] {
    return GLibText(g_compute_checksum_for_string(G_CHECKSUM_MD5, text.data(),
                                                  static_cast<gssize>(text.size())));
  });
}
BENCHMARK(md5ByGLib)->Name("MD5 of 64 bytes/peer: GLib");

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

std::unique_ptr<icu::BreakIterator> wordRules() {
  UErrorCode status = U_ZERO_ERROR;
  return std::unique_ptr<icu::BreakIterator>(
      icu::BreakIterator::createWordInstance(icu::Locale("en_US"), status));
}

void forTextSizes(benchmark::internal::Benchmark* each) {
  each->ArgName("bytes")->Arg(0)->Arg(10'000)->Arg(10'000'000);
}

void splitWords(benchmark::State& state) {
  NSLocale::setCurrentLocaleIdentifier("en_US");
  const std::string text = textOfSize(state, kSentence);
  const std::string some = text.substr(0, 100'000);
  requireEqual(state, wordComponents(some), icuWords(*wordRules(), some));
  measureResult(state, [&] { return wordComponents(text); });
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(text.size()));
}
BENCHMARK(splitWords)->Name("split into words/ours")->Apply(&forTextSizes);

void splitWordsByICU(benchmark::State& state) {
  const std::string text = textOfSize(state, kSentence);
  const auto rules = wordRules();
  measureResult(state, [&] { return icuWords(*rules, text); });
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(text.size()));
}
BENCHMARK(splitWordsByICU)->Name("split into words/limit: ICU")->Apply(&forTextSizes);

// Operations that must grow in proportion.

template <const std::string_view& piece, auto operation>
void onLargeText(benchmark::State& state) {
  const std::string large = repeated(piece, 10'000'000);
  measureResult(state, [&] { return operation(large); });
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(large.size()));
}

template <const std::string_view& piece, auto operation>
void onTenSmallTexts(benchmark::State& state) {
  const std::string small = repeated(piece, 1'000'000);
  measure(state, [&] {
    for (int i = 0; i < 10; ++i)
      benchmark::DoNotOptimize(operation(small));
  });
  state.SetBytesProcessed(state.iterations() * 10 * static_cast<std::int64_t>(small.size()));
}

constexpr std::string_view kLetter = "a";
constexpr std::string_view kLines = "a line\tof text\r\nand\u2028another\n\n";

std::size_t countLetters(const std::string& text) {
  return RVF_occurrenceCountOfSubstring(text, "o");
}

std::size_t countAlmostMatches(const std::string& text) {
  return RVF_occurrenceCountOfSubstring(text, std::string(10'000, 'a') + 'b');
}

std::string cleaned(const std::string& text) {
  return RVF_cleanStringRemovingNewlinesAndTabs(text);
}

BENCHMARK(onLargeText<kSentence, &countLetters>)->Name("count a letter in 10 MB/ours");
BENCHMARK(onTenSmallTexts<kSentence, &countLetters>)
    ->Name("count a letter in 10 MB/limit: ours, 1 MB ten times");
BENCHMARK(onLargeText<kLetter, &countAlmostMatches>)
    ->Name("count what almost matches in 10 MB/ours");
BENCHMARK(onTenSmallTexts<kLetter, &countAlmostMatches>)
    ->Name("count what almost matches in 10 MB/limit: ours, 1 MB ten times");
BENCHMARK(onLargeText<kLines, &cleaned>)->Name("clean lines of 10 MB/ours");
BENCHMARK(onTenSmallTexts<kLines, &cleaned>)
    ->Name("clean lines of 10 MB/limit: ours, 1 MB ten times");

}  // namespace
}  // namespace rvf
