// SPDX-License-Identifier: Apache-2.0
//
// Documents that are made to harm the parser.

#include <fcntl.h>
#include <gtest/gtest.h>
#include <libxml/xmlerror.h>
#include <stdlib.h>
#include <sys/inotify.h>
#include <unistd.h>

#include <string>
#include <string_view>

#include "RVFoundation/CoreServices/RVFErrors.h"
#include "RVFoundation/Streaming/RVFStreamedSAXParser.h"

namespace rvf {
namespace {

/// A file that notices when anybody opens it.
class WatchedFile final {
 public:
  WatchedFile() {
    const int file = mkstemp(path_.data());
    EXPECT_EQ(write(file, "secret", 6), 6);
    close(file);
    inotify_add_watch(watch_, path_.c_str(), IN_OPEN);
  }
  ~WatchedFile() {
    close(watch_);
    unlink(path_.c_str());
  }
  WatchedFile(const WatchedFile&) = delete;
  WatchedFile& operator=(const WatchedFile&) = delete;

  const std::string& path() const { return path_; }
  bool wasOpened() const {
    char event[512];
    return read(watch_, event, sizeof event) > 0;
  }

 private:
  std::string path_ = "/tmp/streaming-test-XXXXXX";
  int watch_ = inotify_init1(IN_NONBLOCK | IN_CLOEXEC);
};

/// A parser that joins all characters and attribute values.
class HostileDocumentTest : public ::testing::Test {
 protected:
  Ref<RVFStreamedSAXParser> parserNotingAll() {
    const auto parser = RVFStreamedSAXParser::init();
    parser->setStartElementHandler([this](XMLText, XMLText, XMLText, std::int32_t, const XMLText*,
                                          std::int32_t attributeCount, std::int32_t,
                                          const XMLText* attributes) {
      ++elements_;
      for (const auto attribute : XMLAttributes(attributes, attributeCount)) {
        text_ += attribute.value();
      }
      return true;
    });
    parser->setFoundCharactersHandler([this](XMLText characters, std::int32_t count) {
      text_.append(reinterpret_cast<const char*>(characters), static_cast<std::size_t>(count));
    });
    return parser;
  }

  bool parse(std::string_view document) {
    constexpr std::size_t kChunk = 16384;
    bool parsed = true;
    for (std::size_t at = 0; at < document.size(); at += kChunk) {
      parsed = parser_->parseChunk(NSData::dataWithBytes(document.substr(at, kChunk)), &error_);
    }
    return parsed;
  }

  Ref<RVFStreamedSAXParser> parser_ = parserNotingAll();
  std::size_t elements_ = 0;
  std::string text_;
  Ref<NSError> error_;
};

TEST_F(HostileDocumentTest, ExternalEntitiesAndDocumentTypesAreNeverOpened) {
  const WatchedFile file;
  for (const std::string& doctype : {
           "<!DOCTYPE a [<!ENTITY e SYSTEM 'file://" + file.path() + "'>]>",
           "<!DOCTYPE a [<!ENTITY e SYSTEM '" + file.path() + "'>]>",
           "<!DOCTYPE a SYSTEM 'file://" + file.path() + "'>",
           "<!DOCTYPE a PUBLIC 'x' '" + file.path() + "'>",
           "<!DOCTYPE a [<!ENTITY % p SYSTEM 'file://" + file.path() + "'> %p;]>",
       }) {
    parser_ = RVFStreamedSAXParser::init();
    parse(doctype + "<a b='1'>x&e;y</a>");
    parser_->completeParsingUsingError();
    EXPECT_FALSE(file.wasOpened()) << doctype;
    EXPECT_EQ(text_.find("secret"), text_.npos) << doctype;
  }
  close(open(file.path().c_str(), O_RDONLY));
  EXPECT_TRUE(file.wasOpened()) << "the watch notices nothing";
}

TEST_F(HostileDocumentTest, EntitiesOfTheDocumentAreNotExpanded) {
  std::string document = "<!DOCTYPE a [<!ENTITY e0 'bomb'>";
  for (int i = 1; i < 30; ++i) {
    const std::string inner = "&e" + std::to_string(i - 1) + ";";
    document += "<!ENTITY e" + std::to_string(i) + " '" + inner + inner + "'>";
  }
  EXPECT_FALSE(parse(document + "]><a b='x&e29;'>y&e29;</a>"));
  ASSERT_TRUE(error_);
  EXPECT_EQ(error_->code(), RVFLIBXMLParserError);
  EXPECT_EQ(error_->underlyingError()->code(), XML_ERR_UNDECLARED_ENTITY);
  EXPECT_EQ(text_, "xy");
}

std::string repeated(std::string_view text, std::size_t times) {
  std::string all;
  for (std::size_t i = 0; i < times; ++i)
    all += text;
  return all;
}

TEST_F(HostileDocumentTest, ElementsMayBeNestedAsDeepAsLibxml2Allows) {
  EXPECT_TRUE(parse(repeated("<a>", 255) + "<b/><b>x</b>" + repeated("</a>", 255)));
  EXPECT_TRUE(parser_->completeParsingUsingError());
  EXPECT_EQ(elements_, 257U);
}

TEST_F(HostileDocumentTest, DeeperNestingIsRefusedAfterAllBeforeItWasReported) {
  // Looking up the absent default namespace would walk all of the others.
  for (const std::string_view start : {"<a>x", "<a xmlns:p='u'>x", "<a xmlns:p='u' p:b=''>x"}) {
    parser_ = parserNotingAll();
    elements_ = 0;
    text_.clear();
    error_ = nullptr;
    EXPECT_FALSE(parse(repeated(start, 1'000'000))) << start;
    EXPECT_EQ(elements_, 256U) << start;
    EXPECT_EQ(text_, std::string(256, 'x')) << start;
    EXPECT_FALSE(parser_->interupted()) << start;
    ASSERT_TRUE(error_) << start;
    EXPECT_EQ(error_->code(), RVFLIBXMLParserError) << start;
    EXPECT_EQ(error_->localizedDescription(), "Excessive depth in document: 256\n") << start;
    EXPECT_EQ(error_->underlyingError()->domain(), "LIBXML2InternalDomain-1") << start;
  }
}

TEST_F(HostileDocumentTest, DeeperNestingIsReportedOnCompletionToo) {
  EXPECT_FALSE(parse(repeated("<a>", 257)));
  EXPECT_FALSE(parse("</a>"));
  error_ = nullptr;
  EXPECT_FALSE(parser_->completeParsingUsingError(&error_));
  ASSERT_TRUE(error_);
  EXPECT_EQ(error_->localizedDescription(), "Excessive depth in document: 256\n");
}

TEST_F(HostileDocumentTest, AnEndlessTokenIsRefused) {
  for (const std::string_view start : {"<a b='", "<a><![CDATA[", "<a><!--"}) {
    parser_ = RVFStreamedSAXParser::init();
    EXPECT_FALSE(parse(std::string(start) + std::string(20'000'000, 'x'))) << start;
    ASSERT_TRUE(error_) << start;
    EXPECT_EQ(error_->localizedDescription(), "internal error: Huge input lookup\n") << start;
  }
}

}  // namespace
}  // namespace rvf
