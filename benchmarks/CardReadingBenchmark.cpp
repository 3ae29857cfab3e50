// SPDX-License-Identifier: Apache-2.0
//
// 100,000 card swipes through RVFMagneticCardParser, beside a split written by hand that keeps the
// same fields as std::string, and beside Boost.Xpressive and RE2 with one pattern a track that
// fill the same record. "allocations" counts those of one swipe.

#include <benchmark/benchmark.h>
#include <re2/re2.h>

#include <algorithm>
#include <array>
#include <boost/xpressive/xpressive_static.hpp>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "RVFoundation/CardReading/RVFMagneticCardParser.h"
#include "benchmarks/AllocationCount.h"
#include "benchmarks/Measure.h"

namespace rvf {
namespace {

namespace xpressive = boost::xpressive;

constexpr std::size_t kSwipes = 100'000;
constexpr std::string_view kWhiteSpace = " \t\r\n";

template <class Text>
struct EncryptedBlock {
  Text status, trackData, dataBlock, keySerial;
  bool operator==(const EncryptedBlock&) const = default;
};

/// What a swipe says; `Text` owns its bytes or not.
template <class Text>
struct Card {
  Text swipe = {};
  std::optional<Text> account = {};
  std::optional<Text> name = {};
  int year = 0;
  int month = 0;
  std::uint64_t tracks = 0;
  std::optional<EncryptedBlock<Text>> block = {};
  bool operator==(const Card&) const = default;
};

using OwnedCard = Card<std::string>;

bool isDigit(char c) {
  return c >= '0' && c <= '9';
}

int twoDigits(std::string_view text) {
  return (text[0] - '0') * 10 + (text[1] - '0');
}

template <class Text>
void setExpiry(Card<Text>& card, std::string_view expiry) {
  if (expiry.size() < 4 || !std::all_of(expiry.begin(), expiry.begin() + 4, &isDigit)) return;
  card.year = 2000 + twoDigits(expiry);
  card.month = twoDigits(expiry.substr(2));
}

// By hand

std::string_view cutAt(std::string_view& rest, char separator) {
  const std::size_t end = rest.find(separator);
  const std::string_view piece = rest.substr(0, end);
  rest.remove_prefix(end == std::string_view::npos ? rest.size() : end + 1);
  return piece;
}

std::string_view trimmed(std::string_view text) {
  const std::size_t start = text.find_first_not_of(kWhiteSpace);
  if (start == std::string_view::npos) return {};
  return text.substr(start, text.find_last_not_of(kWhiteSpace) - start + 1);
}

template <class Text>
bool splitTrack1(Card<Text>& card, std::string_view body) {
  const std::string_view account = cutAt(body, '^');
  const std::string_view name = cutAt(body, '^');
  if (account.empty() || account.size() > 20 || account[0] != 'B') return false;
  if (name.size() < 2 || name.size() > 26) return false;
  card.account.emplace(account.substr(1));
  card.name.emplace(name);
  setExpiry(card, cutAt(body, '^'));
  card.tracks |= 1;
  return true;
}

template <class Text>
bool splitTrack2(Card<Text>& card, std::string_view body) {
  const std::string_view account = cutAt(body, '=');
  if (account.empty() || account.size() > 20) return false;
  card.account.emplace(account);
  card.tracks |= 2;
  return true;
}

template <class Text>
bool splitBlock(Card<Text>& card, std::string_view body) {
  if (std::ranges::count(body, '|') != 11) return false;
  std::array<std::string_view, 12> fields;
  for (std::string_view& field : fields)
    field = cutAt(body, '|');
  card.block.emplace(
      EncryptedBlock<Text>{Text(fields[0]), Text(fields[2]), Text(fields[5]), Text(fields[8])});
  card.tracks |= 4;
  return true;
}

template <class Text>
Card<Text> splitByHand(const std::string& swipe) {
  Card<Text> card{Text(swipe)};
  std::string_view rest = card.swipe;
  while (!rest.empty()) {
    const std::string_view segment = trimmed(cutAt(rest, '?'));
    if (segment.empty()) break;
    const std::string_view body = segment.substr(1);
    const bool isRead = segment[0] == '%'   ? splitTrack1(card, body)
                        : segment[0] == ';' ? splitTrack2(card, body)
                        : segment[0] == '|' ? splitBlock(card, body)
                                            : false;
    if (!isRead) break;
  }
  return card;
}

// RE2. More than four captures a pattern would leave its fast paths.

struct RE2Patterns {
  RE2 track1{R"(\s*%B([^?^]{0,19})\^([^?^]{2,26})\^(\d{4})?[^?]*\?)"};
  RE2 track2{R"(\s*;([^?=]{1,20})(?:=[^?]*)?\?)"};
  RE2 block{R"(\s*\|([^?|]*)\|[^?|]*\|([^?|]*)\|[^?|]*\|[^?|]*\|([^?|]*)\|[^?|]*\|[^?|]*\|([^?|]*))"
            R"(\|[^?|]*\|[^?|]*\|[^?|]*\?)"};
};

std::string_view viewOf(const re2::StringPiece& piece) {
  return {piece.data(), piece.size()};
}

bool consumeWithRE2(re2::StringPiece& rest, OwnedCard& card) {
  static const RE2Patterns kPatterns;
  re2::StringPiece a, b, c, d;
  if (RE2::Consume(&rest, kPatterns.track1, &a, &b, &c)) {
    card.account.emplace(viewOf(a));
    card.name.emplace(viewOf(b));
    setExpiry(card, viewOf(c));
    card.tracks |= 1;
  } else if (RE2::Consume(&rest, kPatterns.track2, &a)) {
    card.account.emplace(viewOf(a));
    card.tracks |= 2;
  } else if (RE2::Consume(&rest, kPatterns.block, &a, &b, &c, &d)) {
    card.block.emplace(EncryptedBlock<std::string>{std::string(viewOf(a)), std::string(viewOf(b)),
                                                   std::string(viewOf(c)), std::string(viewOf(d))});
    card.tracks |= 4;
  } else {
    return false;
  }
  return true;
}

OwnedCard matchWithRE2(const std::string& swipe) {
  OwnedCard card{swipe};
  re2::StringPiece rest(card.swipe);
  while (consumeWithRE2(rest, card)) {
  }
  return card;
}

// Xpressive, with patterns that the compiler sees.

/// Any byte but the end of a segment and the separator.
auto but(char separator) {
  return boost::proto::deep_copy(~(xpressive::set = '?', separator));
}

struct XpressivePatterns {
  const xpressive::cregex track1 = *xpressive::_s >> "%B" >>
                                   (xpressive::s1 = xpressive::repeat<0, 19>(but('^'))) >> '^' >>
                                   (xpressive::s2 = xpressive::repeat<2, 26>(but('^'))) >> '^' >>
                                   (xpressive::s3 = !xpressive::repeat<4>(xpressive::_d)) >>
                                   *but('?') >> '?';
  const xpressive::cregex track2 = *xpressive::_s >> ';' >>
                                   (xpressive::s1 = xpressive::repeat<1, 20>(but('='))) >>
                                   !('=' >> *but('?')) >> '?';
  const xpressive::cregex block = *xpressive::_s >> '|' >> (xpressive::s1 = *but('|')) >> '|' >>
                                  *but('|') >> '|' >> (xpressive::s2 = *but('|')) >> '|' >>
                                  *but('|') >> '|' >> *but('|') >> '|' >>
                                  (xpressive::s3 = *but('|')) >> '|' >> *but('|') >> '|' >>
                                  *but('|') >> '|' >> (xpressive::s4 = *but('|')) >> '|' >>
                                  *but('|') >> '|' >> *but('|') >> '|' >> *but('|') >> '?';
};

std::string_view viewOf(const xpressive::csub_match& match) {
  return {match.first, static_cast<std::size_t>(match.length())};
}

bool consumeWithXpressive(const char*& rest, const char* end, xpressive::cmatch& match,
                          OwnedCard& card) {
  static const XpressivePatterns kPatterns;
  constexpr auto kHere = xpressive::regex_constants::match_continuous;
  if (xpressive::regex_search(rest, end, match, kPatterns.track1, kHere)) {
    card.account.emplace(viewOf(match[1]));
    card.name.emplace(viewOf(match[2]));
    setExpiry(card, viewOf(match[3]));
    card.tracks |= 1;
  } else if (xpressive::regex_search(rest, end, match, kPatterns.track2, kHere)) {
    card.account.emplace(viewOf(match[1]));
    card.tracks |= 2;
  } else if (xpressive::regex_search(rest, end, match, kPatterns.block, kHere)) {
    card.block.emplace(
        EncryptedBlock<std::string>{std::string(viewOf(match[1])), std::string(viewOf(match[2])),
                                    std::string(viewOf(match[3])), std::string(viewOf(match[4]))});
    card.tracks |= 4;
  } else {
    return false;
  }
  rest = match[0].second;
  return true;
}

OwnedCard matchWithXpressive(const std::string& swipe) {
  OwnedCard card{swipe};
  static xpressive::cmatch match;  // keeps its room from swipe to swipe
  const char* rest = card.swipe.data();
  const char* const end = rest + card.swipe.size();
  while (consumeWithXpressive(rest, end, match, card)) {
  }
  return card;
}

// Ours

Ref<RVFMagneticCardParser> parseWithOurs(const std::string& swipe) {
  return RVFMagneticCardParser::cardParserForTrackData(swipe, true);
}

std::optional<std::string> owned(std::optional<std::string_view> text) {
  return text ? std::optional<std::string>(*text) : std::nullopt;
}

OwnedCard cardOf(const RVFMagneticCardParser& parser) {
  OwnedCard card{*owned(parser.swipeData()), owned(parser.accountNumber()),
                 owned(parser.cardholderName())};
  card.year = parser.expirationYear();
  card.month = parser.expirationMonth();
  card.tracks = parser.trackInfo();
  if (const auto& record = parser.encryptedTrackData()) {
    card.block.emplace(
        EncryptedBlock<std::string>{*owned(record->statusBlock()), *owned(record->trackData()),
                                    *owned(record->dataBlock()), *owned(record->keySerial())});
  }
  return card;
}

// Swipes

class Random final {
 public:
  std::size_t below(std::size_t limit) {
    state_ = state_ * 6364136223846793005U + 1442695040888963407U;
    return static_cast<std::size_t>(state_ >> 33) % limit;
  }
  std::string digits(std::size_t count) { return some("0123456789", count); }
  std::string some(std::string_view characters, std::size_t count) {
    std::string text;
    for (std::size_t i = 0; i < count; ++i)
      text += characters[below(characters.size())];
    return text;
  }

 private:
  std::uint64_t state_ = 1;
};

std::string randomName(Random& random) {
  constexpr std::string_view kLetters = "ABCDEFGHIJKLMNOPQRSTUVWXYZ ";
  const std::string last = "M" + random.some(kLetters, 2 + random.below(9));
  const std::string blanks(random.below(4), ' ');
  return last + "/" + random.some(kLetters, 1 + random.below(8)) + blanks;
}

/// Two tracks mostly, one of them sometimes, and every tenth time a block of an encrypting reader.
std::string randomSwipe(Random& random) {
  const std::string account = random.digits(random.below(4) == 0 ? 13 + random.below(4) : 16);
  const std::string expiry = random.digits(4);
  const std::string track1 = "%B" + account + "^" + randomName(random) + "^" + expiry + "101" +
                             random.digits(random.below(20)) + "?";
  const std::string track2 = ";" + account + "=" + expiry + "101" + random.digits(9) + "?";
  const std::string block = "|" + random.digits(4) + "|" + "1600|" +
                            random.some("0123456789ABCDEF", 80) + "|" + random.digits(8) + "||" +
                            random.digits(40) + "|61403000|" + random.digits(16) + "|" +
                            random.digits(20) + "|62994|00|" + random.digits(4) + "?";
  switch (random.below(20)) {
    case 0:
      return track1;
    case 1:
      return track2;
    case 2:
      return track2 + track1;
    case 3:
    case 4:
      return track1 + block;
    default:
      return track1 + (random.below(2) == 0 ? "" : "\r\n") + track2;
  }
}

const std::vector<std::string>& swipes() {
  static const std::vector<std::string> kList = [] {
    Random random;
    std::vector<std::string> list;
    for (std::size_t i = 0; i < kSwipes; ++i)
      list.push_back(randomSwipe(random));
    return list;
  }();
  return kList;
}

// Measurement

bool allAgree() {
  return std::ranges::all_of(swipes(), [](const std::string& swipe) {
    const OwnedCard card = splitByHand<std::string>(swipe);
    const auto parser = parseWithOurs(swipe);
    return parser && card.tracks != 0 && cardOf(*parser) == card && matchWithRE2(swipe) == card &&
           matchWithXpressive(swipe) == card;
  });
}

/// A parser, the record of a block, and a block of memory for every text that they keep.
std::uint64_t neededAllocations() {
  std::uint64_t count = 0;
  for (const std::string& swipe : swipes()) {
    const OwnedCard card = splitByHand<std::string>(swipe);
    count += 2U + card.account.has_value() + card.name.has_value() + (card.block ? 5U : 0U);
  }
  return count;
}

template <auto read>
void readSwipes(benchmark::State& state) {
  static const bool kAllAgree = allAgree();
  if (!kAllAgree) state.SkipWithError("the readers disagree about a swipe");
  const std::uint64_t allocationsBefore = allocationCount();
  const auto readAll = [] {
    for (const std::string& swipe : swipes())
      benchmark::DoNotOptimize(read(swipe));
  };
  measure(state, readAll, kSwipes);
  state.counters["allocations"] =
      benchmark::Counter(static_cast<double>(allocationCount() - allocationsBefore) / kSwipes,
                         benchmark::Counter::kAvgIterations);
}

/// Ours keep what they say that they keep.
void readSwipesByOurs(benchmark::State& state) {
  static const std::uint64_t kNeeded = neededAllocations();
  const std::uint64_t allocationsBefore = allocationCount();
  for (const std::string& swipe : swipes())
    benchmark::DoNotOptimize(parseWithOurs(swipe));
  // A track that comes twice stores its fields twice.
  if (allocationCount() - allocationsBefore < kNeeded)
    state.SkipWithError("something is not stored");
  readSwipes<&parseWithOurs>(state);
}
BENCHMARK(readSwipesByOurs)->Name("read a swipe/ours");
BENCHMARK(readSwipes<&splitByHand<std::string>>)->Name("read a swipe/limit: split by hand");
BENCHMARK(readSwipes<&matchWithXpressive>)->Name("read a swipe/peer: Boost.Xpressive");
BENCHMARK(readSwipes<&matchWithRE2>)->Name("read a swipe/peer: RE2");

}  // namespace
}  // namespace rvf
