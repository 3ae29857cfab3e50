// SPDX-License-Identifier: Apache-2.0
#include "RVFoundation/ServerDiscovery/NSURL-RVFExtensions.h"

#include <gtest/gtest.h>
#include <rapidcheck.h>
#include <sys/socket.h>

#include <algorithm>

#include "Platform/Network/SocketAddress.h"
#include "Platform/Runtime/NSAssertionHandler.h"
#include "Platform/Runtime/NSException.h"
#include "Platform/Text/Text.h"
#include "Platform/Values/NSNumber.h"
#include "Platform/Values/NSString.h"

namespace rvf {
namespace {

constexpr auto CURLURLWithAddressData = &NSURL_RVFExtensions::RVF_CURLURLWithAddressData;

std::string serverURL(const char* address, std::uint16_t port, std::uint32_t scope = 0) {
  return CURLURLWithAddressData(SocketAddress::fromText(address, port, scope)->dataBlock())
      ->absoluteString();
}

std::optional<std::string> sorted(std::string_view text) {
  return RVF_absoluteStringWithSortedQuery(NSURL::URLWithString(text));
}

Ref<NSData> blockOfFamily(int family) {
  std::vector<std::byte> block(28);
  block[1] = static_cast<std::byte>(family);
  return std::make_shared<NSData>(std::move(block));
}

class RecordingHandler : public NSAssertionHandler {
 public:
  void handleFailureInMethod(SEL selector, const NSObject* object, std::string_view file, int,
                             std::string_view description) override {
    failure_ = object->description() + " " + NSStringFromSelector(selector) + " " +
               std::string(file) + ": " + std::string(description);
  }
  std::string failure_;
};

TEST(NSURL_RVFExtensions, MakesTheServerURLOfAnAddress) {
  EXPECT_EQ(serverURL("192.168.1.10", 9630), "https://192.168.1.10:9630/");
  EXPECT_EQ(serverURL("fe80::1", 9630, 4), "https://[fe80::1%254]:9630/");
  EXPECT_EQ(serverURL("fe80::1", 9630), "https://[fe80::1]:9630/");
  EXPECT_EQ(serverURL("::ffff:10.0.0.5", 80), "https://[::ffff:10.0.0.5]:80/");
}

TEST(NSURL_RVFExtensions, PrintsPortAndScopeSigned) {
  EXPECT_EQ(serverURL("10.0.0.5", 40000), "https://10.0.0.5:-25536/");
  EXPECT_EQ(serverURL("10.0.0.5", 32767), "https://10.0.0.5:32767/");
  EXPECT_EQ(serverURL("10.0.0.5", 32768), "https://10.0.0.5:-32768/");
  EXPECT_EQ(serverURL("10.0.0.5", 65535), "https://10.0.0.5:-1/");
  EXPECT_EQ(serverURL("10.0.0.5", 0), "https://10.0.0.5:0/");
  EXPECT_EQ(serverURL("fe80::1", 65535, 0xFFFFFFFF), "https://[fe80::1%25-1]:-1/");
}

TEST(NSURL_RVFExtensions, TheServerURLsPortReadsBackWhereItIsPositive) {
  const auto block = SocketAddress::fromText("fe80::1", 9630, 4)->dataBlock();
  EXPECT_EQ(CURLURLWithAddressData(block)->port(), 9630);
  EXPECT_EQ(CURLURLWithAddressData(block)->host(), "fe80::1%4");
}

TEST(NSURL_RVFExtensions, AnUnsupportedAddressFamilyRaises) {
  try {
    CURLURLWithAddressData(blockOfFamily(AF_UNIX));
    FAIL();
  } catch (const NSException& exception) {
    EXPECT_EQ(exception.name(), NSInternalInconsistencyException);
    EXPECT_EQ(exception.reason(), "Unsupported Address Family");
  }
}

TEST(NSURL_RVFExtensions, ABlockWithoutWholeAddressRaises) {
  EXPECT_THROW(CURLURLWithAddressData(nullptr), NSException);
  EXPECT_THROW(CURLURLWithAddressData(NSData::data()), NSException);
  EXPECT_THROW(CURLURLWithAddressData(NSData::dataWithBytes("\x10\x02\x25")), NSException);
}

TEST(NSURL_RVFExtensions, WhereTheAssertionHandlerReturnsTheServerURLIsAbsent) {
  const auto handler = std::make_shared<RecordingHandler>();
  NSAssertionHandler::setCurrentHandler(handler);
  EXPECT_EQ(CURLURLWithAddressData(blockOfFamily(0)), nullptr);
  NSAssertionHandler::setCurrentHandler(nullptr);
  EXPECT_EQ(handler->failure_,
            "NSURL RVF_CURLURLWithAddressData: RVFoundation/NSURL-RVFExtensions: Unsupported "
            "Address Family");
}

TEST(NSURL_RVFExtensions, MakesRelativeURLsOfFormats) {
  const auto base = NSURL::URLWithString("https://h:9630/dir/");
  const auto url = relativeURLWithFormat(base, "%@/%d?q=%@", box("items"), 7, box(1.5));
  EXPECT_EQ(url->absoluteString(), "https://h:9630/dir/items/7?q=1.5");
  EXPECT_EQ(url->relativeString(), "items/7?q=1.5");
  EXPECT_EQ(url->baseURL(), base);
}

TEST(NSURL_RVFExtensions, ARelativeURLOfAbsentBaseOrTextThatMakesNoURLIsAbsent) {
  EXPECT_EQ(relativeURLWithFormat(nullptr, "%@", "x"), nullptr);
  EXPECT_EQ(relativeURLWithFormat(NSURL::URLWithString("https://h/"), "%@", "a b"), nullptr);
}

TEST(NSURL_RVFExtensions, ARelativeURLOfTooFewArgumentsRaises) {
  EXPECT_THROW(relativeURLWithFormat(NSURL::URLWithString("https://h/"), "%@"), NSException);
}

TEST(NSURL_RVFExtensions, PutsTheTrailingSlashOfThePathBack) {
  struct Row {
    const char* text;
    std::optional<std::string> path;
  };
  const Row rows[] = {
      {"http://h/dir/", "/dir/"},
      {"http://h/dir/?q=1", "/dir/"},
      {"http://h/dir/;x=1", "/dir/"},
      {"http://h/dir/#f", "/dir/"},
      {"http://h/file", "/file"},
      {"http://h/file?q=1", "/file"},
      {"http://h/", "/"},
      {"http://h", ""},
      {"http://h/a%2F", "/a/"},
      {"http://h/f?next=/a/", "/f/"},  // the rule looks at all of the text
      {"http://h/f?next=/a", "/f"},
      {"http://h?x=/?", "/"},
      {"http://h/a%20b/", "/a b/"},
      {"mailto:a@b/", std::nullopt},
      {"http://h/%FF/", std::nullopt},
  };
  for (const Row& row : rows)
    EXPECT_EQ(RVF_pathWithTrailingSlash(NSURL::URLWithString(row.text)), row.path) << row.text;
  EXPECT_EQ(RVF_pathWithTrailingSlash(nullptr), std::nullopt);
}

TEST(NSURL_RVFExtensions, ThePathOfARelativeURLLooksAtItsAbsoluteText) {
  const auto base = NSURL::URLWithString("http://h/dir/f");
  EXPECT_EQ(RVF_pathWithTrailingSlash(NSURL::URLWithString("sub/", base)), "/dir/sub/");
  EXPECT_EQ(RVF_pathWithTrailingSlash(NSURL::URLWithString(".", base)), "/dir/");
}

TEST(NSURL_RVFExtensions, SortsTheQuery) {
  constexpr std::pair<const char*, const char*> kRows[] = {
      {"http://h/p?b=2&a=1#top", "http://h/p?a=1&b=2#top"},
      {"http://h/p?a1=1&a=2", "http://h/p?a=2&a1=1"},
      {"http://h/p?a-b=1&a!=1&a=1", "http://h/p?a=1&a!=1&a-b=1"},
      {"http://h/p?b&a&", "http://h/p?&a&b"},
      {"http://h/p?b=1&B=1&_=1&1=1", "http://h/p?1=1&B=1&_=1&b=1"},
      {"http://h/p?%62=1&a=1&A=1", "http://h/p?%62=1&A=1&a=1"},
      {"http://h/p?a=2&a=10&a==&a", "http://h/p?a&a==&a=10&a=2"},
      {"http://h/p?b=2&a=1#", "http://h/p?a=1&b=2#"},
      {"http://h/p?", "http://h/p?"},
      {"http://h/p?b&a#x&c", "http://h/p?a&b#x&c"},
      {"http://h/p#x?b&a", "http://h/p#x?a&b"},
      {"?b&a", "?a&b"},
  };
  for (const auto& [text, result] : kRows)
    EXPECT_EQ(sorted(text), result) << text;
}

TEST(NSURL_RVFExtensions, LeavesOtherTextsAsTheyAre) {
  for (const char* text : {"http://h/p?a=1?b", "http://h/p?#x", "http://h/p?#x#y", "http://h/p",
                           "http://h/p#b&a", "", "http://h/p?b&a??", "http://h/p?b&a#x?y"})
    EXPECT_EQ(sorted(text), text);
  EXPECT_EQ(RVF_absoluteStringWithSortedQuery(nullptr), std::nullopt);
}

TEST(NSURL_RVFExtensions, TwoFragmentsLoseTheQueryAndAreLogged) {
  testing::internal::CaptureStderr();
  EXPECT_EQ(sorted("http://h/p?a=1#x#y"), "http://h/p?(null)");
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "Unexpected URL format: http://h/p?a=1#x#y\n");
}

TEST(NSURL_RVFExtensions, MakesAURLOfTheSortedText) {
  const auto url = NSURL::URLWithString("f?b=2&a=1", NSURL::URLWithString("http://h/d/"));
  EXPECT_EQ(RVF_absoluteURLWithSortedQuery(url)->relativeString(), "http://h/d/f?a=1&b=2");
  EXPECT_EQ(RVF_absoluteURLWithSortedQuery(url)->baseURL(), nullptr);
  EXPECT_EQ(RVF_absoluteURLWithSortedQuery(nullptr), nullptr);
}

TEST(NSURL_RVFExtensions, SortingTwiceChangesNothingMore) {
  EXPECT_TRUE(rc::check([] {
    const auto query =
        *rc::gen::container<std::string>(rc::gen::element('a', 'b', '=', '&', '1', '%'));
    if (!NSURL::URLWithString("h?" + query)) RC_DISCARD("no URL");
    const auto once = sorted("h?" + query);
    RC_ASSERT(sorted(*once) == once);
    RC_ASSERT(std::ranges::is_permutation(*once, "h?" + query));
  }));
}

TEST(NSURL_RVFExtensions, SortsAMegabyte) {
  std::string query = "http://h/p?";
  for (int i = 0; i < 150000; ++i)
    query += "k" + std::to_string(i % 977) + "=&";
  const auto result = sorted(query);
  ASSERT_EQ(result->size(), query.size());
  EXPECT_TRUE(result->starts_with("http://h/p?&k0=&k0="));
}

}  // namespace
}  // namespace rvf
