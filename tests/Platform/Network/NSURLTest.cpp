// SPDX-License-Identifier: Apache-2.0
#include "Platform/Network/NSURL.h"

#include <gtest/gtest.h>
#include <rapidcheck.h>

#include <filesystem>
#include <utility>

#include "tests/Platform/Text/TextGenerators.h"

namespace rvf {
namespace {

using namespace std::string_literals;

constexpr std::size_t kMegabyte = 1 << 20;

std::string resolved(std::string_view base, std::string_view reference) {
  const auto url = NSURL::URLWithString(reference, NSURL::URLWithString(base));
  return url ? url->absoluteString() : "(no URL)";
}

/// Characters of which URLs are made.
rc::Gen<std::string> anyURLText() {
  return rc::gen::container<std::string>(rc::gen::element('a', 'b', '1', '.', '.', '/', '/', '/',
                                                          ':', '?', '#', ';', '=', '&', '@', '[',
                                                          ']', '-', '+', '<', '\\', '|'));
}

TEST(NSURL, KeepsItsTextVerbatim) {
  for (const char* text :
       {"https://[fe80::1%254]:9630/", "https://10.0.0.5:-25536/", "http://h/p?a=1#x#y",
        "http://h/p?a=1?b", "HTTP://User:Pw@HOST:080/./a/../b/?#", "mailto:a@b", "x/y", "",
        "http://h/%7euser", "a<>\"{}|\\^`b", "//g", "::", "http://[", "?", "#"}) {
    const auto url = NSURL::URLWithString(text);
    ASSERT_TRUE(url) << text;
    EXPECT_EQ(url->absoluteString(), text);
    EXPECT_EQ(url->relativeString(), text);
    EXPECT_EQ(url->baseURL(), nullptr);
  }
}

TEST(NSURL, BlanksControlCharactersForeignCharactersAndCutEscapesMakeNoURL) {
  for (const std::string& text :
       {"http://h/a b"s, " http://h/"s, "http://h/\n"s, "http://h/\t"s, "http://h/\0"s,
        "http://h/\x7F"s, "http://h/\x1F"s, "http://h/ü"s, "http://h/\xFF"s, "http://h/%"s,
        "http://h/%4"s, "http://h/%zz"s, "%"s, "http://h/\u00A0"s})
    EXPECT_FALSE(NSURL::URLWithString(text)) << testing::PrintToString(text);
}

TEST(NSURL, ReadsItsParts) {
  struct Row {
    const char* text;
    std::optional<std::string> scheme, host;
    std::optional<int> port;
    std::optional<std::string> path, query, fragment;
  };
  const auto none = std::nullopt;
  const Row rows[] = {
      {"https://10.0.0.5:9630/", "https", "10.0.0.5", 9630, "/", none, none},
      {"https://[fe80::1%254]:9630/", "https", "fe80::1%4", 9630, "/", none, none},
      {"https://[::1]/x", "https", "::1", none, "/x", none, none},
      {"https://10.0.0.5:-25536/", "https", "10.0.0.5", none, "/", none, none},
      {"http://h:/", "http", "h", none, "/", none, none},
      {"http://h:080/", "http", "h", 80, "/", none, none},
      {"http://h:99999/", "http", "h", 99999, "/", none, none},
      {"http://h:99999999999/", "http", "h", none, "/", none, none},
      {"http://h:+80/", "http", "h", none, "/", none, none},
      {"http://h:80x/", "http", "h", none, "/", none, none},
      {"http://user:pw@h:80/", "http", "h", 80, "/", none, none},
      {"http://a%41%C3%BC/", "http", "aAü", none, "/", none, none},
      {"http://[::1", "http", "[", none, "", none, none},
      {"http://h/p?a=1?b#x#y", "http", "h", none, "/p", "a=1?b", "x#y"},
      {"http://h/p?#", "http", "h", none, "/p", "", ""},
      {"http://h?q", "http", "h", none, "", "q", none},
      {"http://h#f?q", "http", "h", none, "", none, "f?q"},
      {"file:///etc/hosts", "file", none, none, "/etc/hosts", none, none},
      {"file:/etc", "file", none, none, "/etc", none, none},
      {"mailto:a@b", "mailto", none, none, none, none, none},
      {"a+b-c.1:/x", "a+b-c.1", none, none, "/x", none, none},
      {"1a:/x", none, none, none, "1a:/x", none, none},
      {":/x", none, none, none, ":/x", none, none},
      {"//h/x", none, "h", none, "/x", none, none},
      {"x/y?z", none, none, none, "x/y", "z", none},
      {"", none, none, none, "", none, none},
  };
  for (const Row& row : rows) {
    const auto url = NSURL::URLWithString(row.text);
    ASSERT_TRUE(url) << row.text;
    EXPECT_EQ(url->scheme(), row.scheme) << row.text;
    EXPECT_EQ(url->host(), row.host) << row.text;
    EXPECT_EQ(url->port(), row.port) << row.text;
    EXPECT_EQ(url->path(), row.path) << row.text;
    EXPECT_EQ(url->query(), row.query) << row.text;
    EXPECT_EQ(url->fragment(), row.fragment) << row.text;
  }
}

TEST(NSURL, PathIsDecodedAndLosesParametersAndItsLastSlash) {
  struct Row {
    const char* text;
    std::optional<std::string> path;
  };
  const Row rows[] = {
      {"http://h/dir/", "/dir"},
      {"http://h/dir/?q=1", "/dir"},
      {"http://h/dir/;x=1", "/dir"},
      {"http://h/", "/"},
      {"http://h", ""},
      {"http://h/a%20b/", "/a b"},
      {"mailto:a@b", std::nullopt},
      {"http://h/dir//", "/dir/"},
      {"http://h//", "/"},
      {"http://h/a;x/b", "/a"},
      {"http://h/;x", "/"},
      {"http://h/a%2F", "/a/"},
      {"http://h/a%3Bb", "/a;b"},
      {"http://h/%FF", std::nullopt},
      {"http://h/%C3%BC", "/ü"},
      {"http://h/a/../b/./", "/a/../b/."},
  };
  for (const Row& row : rows)
    EXPECT_EQ(NSURL::URLWithString(row.text)->path(), row.path) << row.text;
}

TEST(NSURL, ResolvesTheNormalExamplesOfTheStandard) {
  // RFC 3986, 5.4.1
  constexpr std::pair<const char*, const char*> kRows[] = {
      {"g:h", "g:h"},
      {"g", "http://a/b/c/g"},
      {"./g", "http://a/b/c/g"},
      {"g/", "http://a/b/c/g/"},
      {"/g", "http://a/g"},
      {"//g", "http://g"},
      {"?y", "http://a/b/c/d;p?y"},
      {"g?y", "http://a/b/c/g?y"},
      {"#s", "http://a/b/c/d;p?q#s"},
      {"g#s", "http://a/b/c/g#s"},
      {"g?y#s", "http://a/b/c/g?y#s"},
      {";x", "http://a/b/c/;x"},
      {"g;x", "http://a/b/c/g;x"},
      {"g;x?y#s", "http://a/b/c/g;x?y#s"},
      {"", "http://a/b/c/d;p?q"},
      {".", "http://a/b/c/"},
      {"./", "http://a/b/c/"},
      {"..", "http://a/b/"},
      {"../", "http://a/b/"},
      {"../g", "http://a/b/g"},
      {"../..", "http://a/"},
      {"../../", "http://a/"},
      {"../../g", "http://a/g"},
  };
  for (const auto& [reference, result] : kRows)
    EXPECT_EQ(resolved("http://a/b/c/d;p?q", reference), result) << reference;
}

TEST(NSURL, ResolvesTheAbnormalExamplesOfTheStandard) {
  // RFC 3986, 5.4.2, strict
  constexpr std::pair<const char*, const char*> kRows[] = {
      {"../../../g", "http://a/g"},
      {"../../../../g", "http://a/g"},
      {"/./g", "http://a/g"},
      {"/../g", "http://a/g"},
      {"g.", "http://a/b/c/g."},
      {".g", "http://a/b/c/.g"},
      {"g..", "http://a/b/c/g.."},
      {"..g", "http://a/b/c/..g"},
      {"./../g", "http://a/b/g"},
      {"./g/.", "http://a/b/c/g/"},
      {"g/./h", "http://a/b/c/g/h"},
      {"g/../h", "http://a/b/c/h"},
      {"g;x=1/./y", "http://a/b/c/g;x=1/y"},
      {"g;x=1/../y", "http://a/b/c/y"},
      {"g?y/./x", "http://a/b/c/g?y/./x"},
      {"g?y/../x", "http://a/b/c/g?y/../x"},
      {"g#s/./x", "http://a/b/c/g#s/./x"},
      {"g#s/../x", "http://a/b/c/g#s/../x"},
      {"http:g", "http:g"},
  };
  for (const auto& [reference, result] : kRows)
    EXPECT_EQ(resolved("http://a/b/c/d;p?q", reference), result) << reference;
}

TEST(NSURL, ResolvesAgainstServerURLs) {
  struct Row {
    const char* base;
    const char* reference;
    const char* result;
  };
  const Row rows[] = {
      {"https://h/dir/", "x", "https://h/dir/x"},
      {"https://h/dir", "x", "https://h/x"},
      {"https://h", "x", "https://h/x"},
      {"https://h?q", "x", "https://h/x"},
      {"https://[fe80::1%254]:-25536/", "a?b=%20", "https://[fe80::1%254]:-25536/a?b=%20"},
      {"https://USER@H:080/a", "/b", "https://USER@H:080/b"},
      {"https://h/dir/f?a=1", "?q", "https://h/dir/f?q"},
      {"https://h/dir/f?a=1", "?", "https://h/dir/f?"},
      {"https://h/dir/f?a=1#x", "", "https://h/dir/f?a=1#x"},
      {"https://h/a/../b", "", "https://h/a/../b"},
      {"https://h/dir/", "http://other/./x/../y", "http://other/y"},
      {"https://h/dir/", "//g/x", "https://g/x"},
      {"mailto:a@b", "x", "mailto:x"},
      {"file:/a/b", "/.//c", "file:/.//c"},
      {"x/y", "z", "x/z"},
  };
  for (const Row& row : rows)
    EXPECT_EQ(resolved(row.base, row.reference), row.result) << row.base << " + " << row.reference;
}

TEST(NSURL, ARelativeURLKeepsItsTextAndBase) {
  const auto base = NSURL::URLWithString("https://h:9630/dir/f");
  const auto url = NSURL::URLWithString("../x?y", base);
  EXPECT_EQ(url->relativeString(), "../x?y");
  EXPECT_EQ(url->baseURL(), base);
  EXPECT_EQ(url->host(), "h");
  EXPECT_EQ(url->port(), 9630);
  EXPECT_EQ(url->path(), "/x");
  EXPECT_EQ(url->description(), "../x?y -- https://h:9630/dir/f");
}

TEST(NSURL, TheAbsoluteURLHasNoBase) {
  const auto url = NSURL::URLWithString("x", NSURL::URLWithString("https://h/dir/"));
  EXPECT_EQ(url->absoluteURL()->relativeString(), "https://h/dir/x");
  EXPECT_EQ(url->absoluteURL()->baseURL(), nullptr);
}

TEST(NSURL, ABaseMayBeRelativeItself) {
  const auto folder = NSURL::URLWithString("dir/", NSURL::URLWithString("https://h/"));
  EXPECT_EQ(NSURL::URLWithString("x", folder)->absoluteString(), "https://h/dir/x");
}

TEST(NSURL, TextThatIsNoURLIsAbsentWithABaseToo) {
  EXPECT_EQ(resolved("https://h/", "a b"), "(no URL)");
}

TEST(NSURL, URLsOfTheSameTextAndBaseAreEqual) {
  const auto base = NSURL::URLWithString("https://h/");
  const auto url = NSURL::URLWithString("x", base);
  EXPECT_TRUE(objectsAreEqual(url, NSURL::URLWithString("x", NSURL::URLWithString("https://h/"))));
  EXPECT_EQ(url->hash(), NSURL::URLWithString("x", base)->hash());
  EXPECT_FALSE(objectsAreEqual(url, NSURL::URLWithString("y", base)));
  EXPECT_FALSE(objectsAreEqual(url, NSURL::URLWithString("x")));
  EXPECT_FALSE(objectsAreEqual(url, url->absoluteURL()));
  EXPECT_FALSE(objectsAreEqual(NSURL::URLWithString("http://h"), NSURL::URLWithString("http://H")));
  EXPECT_FALSE(objectsAreEqual(url, nullptr));
}

TEST(NSURL, ParsingKeepsAnyTextVerbatim) {
  EXPECT_TRUE(rc::check([] {
    const std::string text = *anyURLText();
    RC_ASSERT(NSURL::URLWithString(text)->absoluteString() == text);
  }));
}

TEST(NSURL, ThePartsMakeUpTheText) {
  EXPECT_TRUE(rc::check([] {
    const std::string text = "s://h/" + *anyURLText();
    const auto url = NSURL::URLWithString(text);
    RC_ASSERT(url->scheme() == "s");
    RC_ASSERT(url->host() == "h");
    const std::string query = url->query() ? "?" + *url->query() : "";
    const std::string fragment = url->fragment() ? "#" + *url->fragment() : "";
    RC_ASSERT(text.ends_with(query + fragment));
    RC_ASSERT(text.substr(0, text.size() - query.size() - fragment.size()).find_first_of("?#") ==
              std::string::npos);
  }));
}

TEST(NSURL, AResolvedPathHasNoDotSegments) {
  EXPECT_TRUE(rc::check([] {
    const std::string path = *rc::gen::container<std::string>(rc::gen::element('.', '/', 'a'));
    const std::string result = resolved("http://h/x/y", "./" + path) + "/";
    RC_ASSERT(result.starts_with("http://h/"));
    RC_ASSERT(result.find("/./") == std::string::npos);
    RC_ASSERT(result.find("/../") == std::string::npos);
  }));
}

TEST(NSURL, ResolvingWhatWasResolvedChangesNothing) {
  EXPECT_TRUE(rc::check([] {
    const auto base = "http://h/" + *anyURLText();
    const std::string once = resolved(base, "x" + *anyURLText());
    RC_ASSERT(resolved(base, once) == once);
  }));
}

TEST(NSURL, AnyBytesAreAURLOrAbsent) {
  EXPECT_TRUE(rc::check([] {
    const std::string text = *anyBytes();
    const auto url = NSURL::URLWithString(text, NSURL::URLWithString("http://h/a/b"));
    if (url) {
      RC_ASSERT(url->relativeString() == text);
      url->path();
      url->host();
      url->port();
    }
  }));
}

TEST(NSURL, HandlesAMegabyte) {
  std::string dots;
  while (dots.size() < kMegabyte)
    dots += "a/../";
  EXPECT_EQ(resolved("http://h/", dots), "http://h/");
  std::string folders;
  while (folders.size() < kMegabyte)
    folders += "a/";
  EXPECT_EQ(resolved("http://h/", folders + dots), "http://h/" + folders);
  EXPECT_EQ(NSURL::URLWithString("http://h/" + folders)->path()->size(), folders.size());
  EXPECT_EQ(NSURL::URLWithString(std::string(kMegabyte, ':'))->path(), std::string(kMegabyte, ':'));
}

TEST(NSURL, NamesAFileByItsPath) {
  const std::pair<const char*, const char*> rows[] = {
      {"/etc/hosts", "file:///etc/hosts"},
      {"/", "file:///"},
      {"/a b/ü;x?#%/", "file:///a%20b/%C3%BC%3Bx%3F%23%25/"}};
  for (const auto& [path, text] : rows) {
    const auto url = NSURL::fileURLWithPath(path);
    ASSERT_NE(url, nullptr) << path;
    EXPECT_EQ(url->absoluteString(), text);
    EXPECT_TRUE(url->isFileURL());
  }
  EXPECT_EQ(NSURL::fileURLWithPath("/a b/ü;x?#%")->path(), "/a b/ü;x?#%");
  EXPECT_EQ(NSURL::fileURLWithPath("/\xFF"), nullptr);
  EXPECT_FALSE(NSURL::URLWithString("http://h/etc/hosts")->isFileURL());
}

TEST(NSURL, NamesAFileRelativeToTheCurrentFolder) {
  const auto path = std::filesystem::current_path() / "x";
  EXPECT_EQ(NSURL::fileURLWithPath("x")->path(), path.string());
}

}  // namespace
}  // namespace rvf
