// SPDX-License-Identifier: Apache-2.0
#include "RVFoundation/Streaming/RVFStreamedSAXParser.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <libxml/parser.h>

#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "Platform/Runtime/NSAutoreleasePool.h"
#include "Platform/Runtime/NSException.h"
#include "Platform/Runtime/Runtime.h"
#include "RVFoundation/CoreServices/RVFErrors.h"

namespace rvf {
namespace {

using namespace std::string_literals;
using ::testing::ElementsAre;

Ref<NSData> dataOf(std::string_view bytes) {
  return NSData::dataWithBytes(bytes);
}

std::string qualified(XMLText localName, XMLText prefix, XMLText URI) {
  std::string text(xmlView(localName));
  if (prefix) text = std::string(xmlView(prefix)) + ":" + text;
  if (URI) text += "{" + std::string(xmlView(URI)) + "}";
  return text;
}

/// A parser that notes what its handlers are told, one line a call; characters are joined.
class RVFStreamedSAXParserTest : public ::testing::Test {
 protected:
  RVFStreamedSAXParserTest() {
    parser_->setStartElementHandler([this](XMLText localName, XMLText prefix, XMLText URI,
                                           std::int32_t namespaceCount, const XMLText* namespaces,
                                           std::int32_t attributeCount, std::int32_t defaultedCount,
                                           const XMLText* attributes) {
      std::string line = "<" + qualified(localName, prefix, URI);
      for (int i = 0; i < namespaceCount; ++i) {
        line += " xmlns:" + std::string(xmlView(namespaces[2 * i])) + "=" +
                std::string(xmlView(namespaces[2 * i + 1]));
      }
      for (const XMLAttribute attribute : XMLAttributes(attributes, attributeCount)) {
        line += " " + std::string(attribute.localName()) + "=" + std::string(attribute.value());
      }
      if (defaultedCount > 0) line += " defaulted:" + std::to_string(defaultedCount);
      calls_.push_back(line);
      return calls_.size() < stopAfter_;
    });
    parser_->setEndElementHandler([this](XMLText localName, XMLText prefix, XMLText URI) {
      calls_.push_back("/" + qualified(localName, prefix, URI));
      return calls_.size() < stopAfter_;
    });
    parser_->setFoundCharactersHandler([this](XMLText characters, std::int32_t count) {
      const std::string text(reinterpret_cast<const char*>(characters),
                             static_cast<std::size_t>(count));
      const bool continues = !calls_.empty() && calls_.back().starts_with('"');
      if (continues) {
        calls_.back() += text;
      } else {
        calls_.push_back("\"" + text);
      }
    });
  }

  bool parse(std::string_view bytes) { return parser_->parseChunk(dataOf(bytes), &error_); }
  bool complete() { return parser_->completeParsingUsingError(&error_); }

  Ref<RVFStreamedSAXParser> parser_ = RVFStreamedSAXParser::init();
  std::vector<std::string> calls_;
  std::size_t stopAfter_ = static_cast<std::size_t>(-1);
  Ref<NSError> error_;
};

void expectStopped(const Ref<NSError>& error) {
  ASSERT_TRUE(error);
  EXPECT_EQ(error->domain(), "LIBXMLErrorDomain");
  EXPECT_EQ(error->code(), RVFLIBXMLStoppedError);
  EXPECT_EQ(error->userInfo(), nullptr);
}

void expectParserError(const Ref<NSError>& error, std::string_view domain, long code) {
  ASSERT_TRUE(error);
  EXPECT_EQ(error->domain(), "LIBXMLErrorDomain");
  EXPECT_EQ(error->code(), RVFLIBXMLParserError);
  const Ref<NSError> inner = error->underlyingError();
  ASSERT_TRUE(inner);
  EXPECT_EQ(inner->domain(), domain);
  EXPECT_EQ(inner->code(), code);
  EXPECT_EQ(inner->localizedDescription(), error->localizedDescription());
  EXPECT_EQ(error->userInfo()->count(), 2U);
  EXPECT_EQ(inner->userInfo()->count(), 1U);
}

TEST_F(RVFStreamedSAXParserTest, ReportsElementsAndCharactersInOrder) {
  EXPECT_TRUE(parse("<answer><item id='7' name=\"Milk\">1.05</item><empty/></answer>"));
  EXPECT_TRUE(complete());
  EXPECT_THAT(calls_, ElementsAre("<answer", "<item id=7 name=Milk", "\"1.05", "/item", "<empty",
                                  "/empty", "/answer"));
  EXPECT_FALSE(parser_->interupted());
  EXPECT_EQ(error_, nullptr);
}

TEST_F(RVFStreamedSAXParserTest, ReportsNamespaces) {
  EXPECT_TRUE(parse("<a xmlns='urn:d' xmlns:p='urn:p'><p:b p:c='1'/></a>"));
  EXPECT_THAT(calls_, ElementsAre("<a{urn:d} xmlns:=urn:d xmlns:p=urn:p", "<p:b{urn:p} c=1",
                                  "/p:b{urn:p}", "/a{urn:d}"));
}

TEST_F(RVFStreamedSAXParserTest, ReportsAttributesThatTheDocumentTypeSupplies) {
  EXPECT_TRUE(parse("<!DOCTYPE a [<!ATTLIST a unit CDATA 'kg'>]><a n='1'/>"));
  EXPECT_THAT(calls_, ElementsAre("<a n=1 unit=kg defaulted:1", "/a"));
}

TEST_F(RVFStreamedSAXParserTest, LeavesAmpersandsInAttributesAsReferences) {
  EXPECT_TRUE(parse("<a v='Salt &amp; &lt;Pepper&gt; &#38; &quot;&#65;'>Salt &amp; &#38;</a>"));
  EXPECT_THAT(calls_, ElementsAre("<a v=Salt &#38; <Pepper> &#38; \"A", "\"Salt & &", "/a"));
}

TEST_F(RVFStreamedSAXParserTest, ReportsBlanksAndCharacterDataSections) {
  EXPECT_TRUE(parse("<a>\n  <b/><![CDATA[<x>&amp;]]>\r\n</a>"));
  EXPECT_THAT(calls_, ElementsAre("<a", "\"\n  ", "<b", "/b", "\"<x>&amp;\n", "/a"));
}

TEST_F(RVFStreamedSAXParserTest, ReadsOtherEncodings) {
  EXPECT_TRUE(parse("<?xml version='1.0' encoding='ISO-8859-1'?><a>K\xe4se</a>"));
  EXPECT_THAT(calls_, ElementsAre("<a", "\"Käse", "/a"));
}

TEST_F(RVFStreamedSAXParserTest, StopsAtAStartElement) {
  stopAfter_ = 1;
  EXPECT_FALSE(parse("<a><b/>text</a>"));
  expectStopped(error_);
  EXPECT_TRUE(parser_->interupted());
  EXPECT_THAT(calls_, ElementsAre("<a"));
  error_ = nullptr;
  EXPECT_FALSE(parse("<c/>"));
  expectStopped(error_);
  EXPECT_THAT(calls_, ElementsAre("<a"));
}

TEST_F(RVFStreamedSAXParserTest, StopsAtAnEndElement) {
  stopAfter_ = 3;
  EXPECT_FALSE(parse("<a><b/>text</a>"));
  expectStopped(error_);
  EXPECT_THAT(calls_, ElementsAre("<a", "<b", "/b"));
}

TEST_F(RVFStreamedSAXParserTest, StopsBeforeTheEndOfAnEmptyElement) {
  stopAfter_ = 2;
  EXPECT_FALSE(parse("<a><b/></a>"));
  EXPECT_THAT(calls_, ElementsAre("<a", "<b"));
}

TEST_F(RVFStreamedSAXParserTest, CompletionAfterAStopFailsWithoutAnErrorRecord) {
  stopAfter_ = 1;
  EXPECT_FALSE(parse("<a/>"));
  ASSERT_TRUE(error_);
  EXPECT_FALSE(complete());
  EXPECT_EQ(error_, nullptr);
}

TEST_F(RVFStreamedSAXParserTest, ErrorIsOptional) {
  stopAfter_ = 1;
  EXPECT_FALSE(parser_->parseChunk(dataOf("<a/>")));
  EXPECT_FALSE(parser_->completeParsingUsingError());
  EXPECT_FALSE(RVFStreamedSAXParser::init()->parseChunk(dataOf("<a></b>")));
  EXPECT_FALSE(RVFStreamedSAXParser::init()->completeParsingUsingError());
}

TEST(RVFStreamedSAXParser, ParsesAWholeDocumentWithoutHandlers) {
  const auto parser = RVFStreamedSAXParser::init();
  EXPECT_TRUE(parser->parseChunk(dataOf("<a><b c='1'>text</b></a>")));
  EXPECT_TRUE(parser->completeParsingUsingError());
  EXPECT_FALSE(parser->interupted());
}

TEST(RVFStreamedSAXParser, MissingHandlerLeavesInteruptedUntouchedAndHeedsIt) {
  const auto parser = RVFStreamedSAXParser::init();
  EXPECT_TRUE(parser->parseChunk(dataOf("<answer>")));
  parser->setInterupted(true);
  int characters = 0;
  parser->setFoundCharactersHandler([&](XMLText, std::int32_t) { ++characters; });
  EXPECT_FALSE(parser->parseChunk(dataOf("x<b/>y</answer>")));
  EXPECT_TRUE(parser->interupted());
  EXPECT_EQ(characters, 1);
}

TEST_F(RVFStreamedSAXParserTest, CompletionAcceptsThatTheDocumentHasEndedAlready) {
  EXPECT_TRUE(parse("<a/>"));
  EXPECT_TRUE(complete());
  EXPECT_EQ(xmlParseChunk(static_cast<xmlParserCtxtPtr>(parser_->parserContext()), nullptr, 0, 1),
            -1);
  EXPECT_TRUE(complete());
  EXPECT_EQ(error_, nullptr);
}

TEST_F(RVFStreamedSAXParserTest, ChunkAfterCompletionFailsWithoutAnErrorRecord) {
  EXPECT_TRUE(parse("<a/>"));
  EXPECT_TRUE(complete());
  EXPECT_FALSE(parse("<b/>"));
  EXPECT_EQ(error_, nullptr);
}

TEST_F(RVFStreamedSAXParserTest, EmptyAndAbsentChunksAddNothing) {
  EXPECT_TRUE(parser_->parseChunk(NSData::data(), &error_));
  EXPECT_TRUE(parse("<a>"));
  EXPECT_TRUE(parser_->parseChunk(NSData::data(), &error_));
  EXPECT_TRUE(parser_->parseChunk(nullptr, &error_));
  EXPECT_TRUE(parse("</a>"));
  EXPECT_TRUE(complete());
  EXPECT_THAT(calls_, ElementsAre("<a", "/a"));
}

TEST_F(RVFStreamedSAXParserTest, FaultyDocumentsGiveTheParsersOwnError) {
  const struct {
    std::string_view document;
    const char* message;
    const char* domain;
    long code;
  } rows[] = {
      {"<a><b></c></a>", "Opening and ending tag mismatch: b line 1 and c\n",
       "LIBXML2InternalDomain-1", XML_ERR_TAG_NAME_MISMATCH},
      {"hello", "Document is empty\n", "LIBXML2InternalDomain-1", XML_ERR_DOCUMENT_EMPTY},
      {"<a x='1' x='2'/>", "Attribute x redefined\n", "LIBXML2InternalDomain-1",
       XML_ERR_ATTRIBUTE_REDEFINED},
      {"<a>&undefined;</a>", "Entity 'undefined' not defined\n", "LIBXML2InternalDomain-1",
       XML_ERR_UNDECLARED_ENTITY},
      {"<a>\xff\xfe</a>",
       "Input is not proper UTF-8, indicate encoding !\nBytes: 0xFF 0xFE 0x3C 0x2F\n",
       "LIBXML2InternalDomain-1", XML_ERR_INVALID_CHAR},
      {"<a xmlns:p='http://[' q='1' p:q='2' p:q='3'/>", "Attribute p:q redefined\n",
       "LIBXML2InternalDomain-1", XML_ERR_ATTRIBUTE_REDEFINED},
  };
  for (const auto& row : rows) {
    const auto parser = RVFStreamedSAXParser::init();
    Ref<NSError> error;
    EXPECT_FALSE(parser->parseChunk(dataOf(row.document), &error)) << row.document;
    expectParserError(error, row.domain, row.code);
    EXPECT_EQ(error->localizedDescription(), row.message) << row.document;
  }
}

TEST_F(RVFStreamedSAXParserTest, GoesOnAfterAFaultAndReportsItForEveryLaterChunk) {
  EXPECT_FALSE(parse("<a><b></c>"));
  EXPECT_FALSE(parse("<d/>"));
  expectParserError(error_, "LIBXML2InternalDomain-1", XML_ERR_TAG_NAME_MISMATCH);
  EXPECT_THAT(calls_, ElementsAre("<a", "<b", "/b", "<d", "/d"));
}

TEST_F(RVFStreamedSAXParserTest, UndeclaredPrefixIsNoFailure) {
  EXPECT_TRUE(parse("<p:a/>"));
  EXPECT_TRUE(complete());
  EXPECT_THAT(calls_, ElementsAre("<p:a", "/p:a"));
}

TEST_F(RVFStreamedSAXParserTest, UnfinishedDocumentsFailOnCompletion) {
  for (const std::string_view document : {"", "   ", "<a>", "<a><b>te", "<a", "<!-- never"}) {
    const auto parser = RVFStreamedSAXParser::init();
    Ref<NSError> error;
    EXPECT_TRUE(parser->parseChunk(dataOf(document), &error)) << document;
    EXPECT_FALSE(parser->completeParsingUsingError(&error)) << document;
    expectParserError(error, "LIBXML2InternalDomain-1", XML_ERR_DOCUMENT_END);
  }
}

TEST(RVFStreamedSAXParser, NoXMLErrorIsNoError) {
  EXPECT_EQ(RVFStreamedSAXParser::init()->errorForXMLError(nullptr), nullptr);
}

TEST(RVFStreamedSAXParser, CarriesDomainCodeAndMessageOfAnXMLError) {
  char message[] = "schema fault";
  xmlError problem = {};
  problem.domain = XML_FROM_SCHEMASV;
  problem.code = 1871;
  problem.message = message;
  const auto parser = RVFStreamedSAXParser::init();
  const auto error = parser->errorForXMLError(&problem);
  expectParserError(error, "LIBXML2InternalDomain-17", 1871);
  EXPECT_EQ(error->localizedDescription(), "schema fault");
  problem.message = nullptr;
  EXPECT_EQ(parser->errorForXMLError(&problem)->localizedDescription(), "");
}

TEST(RVFStreamedSAXParser, MessagesOfXMLErrorsAreWellFormedText) {
  char message[] = "bad byte \xE4 in name";
  xmlError problem = {};
  problem.message = message;
  const auto error = RVFStreamedSAXParser::init()->errorForXMLError(&problem);
  EXPECT_EQ(error->localizedDescription(), "bad byte \uFFFD in name");
  EXPECT_EQ(error->underlyingError()->localizedDescription(), "bad byte \uFFFD in name");
}

// Release scopes

class Witness : public NSObject {
 public:
  explicit Witness(int& alive) : alive_(alive) { ++alive_; }
  ~Witness() override { --alive_; }

 private:
  int& alive_;
};

TEST(RVFStreamedSAXParser, EveryCallbackHasAReleaseScopeOfItsOwn) {
  const NSAutoreleasePool outer;
  const auto parser = RVFStreamedSAXParser::init();
  int alive = 0;
  std::vector<int> aliveAtCall;
  const auto note = [&] {
    aliveAtCall.push_back(alive);
    autorelease(std::make_shared<Witness>(alive));
    return true;
  };
  parser->setStartElementHandler(
      [&](XMLText, XMLText, XMLText, auto, auto, auto, auto, auto) { return note(); });
  parser->setEndElementHandler([&](XMLText, XMLText, XMLText) { return note(); });
  parser->setFoundCharactersHandler([&](XMLText, std::int32_t) { note(); });
  EXPECT_TRUE(parser->parseChunk(dataOf("<a><b>x</b>y</a>")));
  EXPECT_THAT(aliveAtCall, ElementsAre(0, 0, 0, 0, 0, 0));
  EXPECT_EQ(alive, 0);
}

// Handlers that change what calls them

TEST_F(RVFStreamedSAXParserTest, HandlerMayReplaceItselfWhileItRuns) {
  auto token = std::make_shared<std::string>("kept");
  std::weak_ptr<std::string> watch = token;
  std::string seen;
  parser_->setStartElementHandler(
      [&, token](XMLText, XMLText, XMLText, auto, auto, auto, auto, auto) {
        parser_->setStartElementHandler(nullptr);
        const NSAutoreleasePool inner;
        parser_->setEndElementHandler(nullptr);
        seen = *token;  // this lambda, and what it holds, must still be there
        return true;
      });
  token.reset();
  EXPECT_TRUE(parse("<a><b/></a>"));
  EXPECT_EQ(seen, "kept");
  EXPECT_TRUE(watch.expired());
  EXPECT_FALSE(parser_->startElementHandler());
  EXPECT_FALSE(parser_->interupted());
}

TEST_F(RVFStreamedSAXParserTest, SmallHandlerKeepsItsCapturesWhenReplaced) {
  int value = 0;
  parser_->setFoundCharactersHandler([this, &value](XMLText, std::int32_t) {
    parser_->setFoundCharactersHandler([](XMLText, std::int32_t) {});
    value = 7;
  });
  EXPECT_TRUE(parse("<a>x</a>"));
  EXPECT_EQ(value, 7);
}

TEST_F(RVFStreamedSAXParserTest, ReplacedHandlersAreReleasedAfterTheCallback) {
  auto token = std::make_shared<int>(0);
  const std::weak_ptr<int> watch = token;
  bool goneAtEnd = false;
  parser_->setStartElementHandler(
      [this, token](XMLText, XMLText, XMLText, auto, auto, auto, auto, auto) {
        parser_->setStartElementHandler(nullptr);
        return true;
      });
  parser_->setEndElementHandler([&](XMLText, XMLText, XMLText) {
    goneAtEnd = watch.expired();
    return true;
  });
  token.reset();
  EXPECT_TRUE(parse("<a/>"));
  EXPECT_TRUE(goneAtEnd);
}

TEST_F(RVFStreamedSAXParserTest, HandlerMayDropTheLastReferenceToTheParser) {
  const std::weak_ptr<RVFStreamedSAXParser> watch = parser_;
  RVFStreamedSAXParser* raw = parser_.get();
  bool aliveInHandler = false;
  Ref<NSData> chunk = dataOf("<a><b/></a>");
  parser_->setStartElementHandler([&](XMLText, XMLText, XMLText, auto, auto, auto, auto, auto) {
    parser_.reset();
    chunk.reset();
    aliveInHandler = !watch.expired();
    return true;
  });
  EXPECT_TRUE(raw->parseChunk(chunk, &error_));
  EXPECT_TRUE(aliveInHandler);
  EXPECT_TRUE(watch.expired());
  EXPECT_THAT(calls_, ElementsAre("/b", "/a"));
}

TEST_F(RVFStreamedSAXParserTest, HandlerMayNotFeedTheParserThatCallsIt) {
  parser_->setStartElementHandler([&](XMLText, XMLText, XMLText, auto, auto, auto, auto, auto) {
    return parser_->parseChunk(dataOf("<b/>"));
  });
  try {
    parse("<a/>");
    FAIL() << "nothing was raised";
  } catch (const NSException& exception) {
    EXPECT_EQ(exception.name(), NSInternalInconsistencyException);
  }
}

// Exceptions

TEST_F(RVFStreamedSAXParserTest, ExceptionOfAnyHandlerStopsTheParseAndReachesTheCaller) {
  const auto thrower = [](auto...) -> bool { throw std::runtime_error("handler"); };
  for (int which = 0; which < 3; ++which) {
    const auto parser = RVFStreamedSAXParser::init();
    int later = 0;
    parser->setFoundCharactersHandler([&](XMLText, std::int32_t) { ++later; });
    if (which == 0) parser->setStartElementHandler(thrower);
    if (which == 1) parser->setEndElementHandler(thrower);
    if (which == 2) parser->setFoundCharactersHandler(thrower);
    const std::string_view document = which == 2 ? "<a>x</a>" : "<a/>x";
    EXPECT_THROW(parser->parseChunk(dataOf(document)), std::runtime_error) << which;
    EXPECT_TRUE(parser->interupted()) << which;
    EXPECT_EQ(later, 0) << which;
    Ref<NSError> error;
    EXPECT_FALSE(parser->parseChunk(dataOf("<c/>"), &error)) << which;
    expectStopped(error);
  }
}

TEST_F(RVFStreamedSAXParserTest, ExceptionDuringCompletionReachesTheCaller) {
  parser_->setFoundCharactersHandler(
      [](XMLText, std::int32_t) { throw std::runtime_error("handler"); });
  EXPECT_TRUE(parse("<a>pending"));
  EXPECT_THROW(complete(), std::runtime_error);
}

// Run time

TEST(RVFStreamedSAXParser, DeclaresItsPropertiesToTheRuntime) {
  std::vector<std::string> lines;
  for (const auto& property : class_copyPropertyList(objc_getClass("RVFStreamedSAXParser"))) {
    lines.push_back(property.name + " " + property.attributes);
  }
  EXPECT_THAT(lines, ElementsAre("parserContext T^{_xmlParserCtxt},N,V_parserContext",
                                 "startElementHandler T@?,C,N,V_startElementHandler",
                                 "endElementHandler T@?,C,N,V_endElementHandler",
                                 "foundCharactersHandler T@?,C,N,V_foundCharactersHandler",
                                 "interupted Tc,N,V_interupted"));
}

TEST(RVFStreamedSAXParser, ItsContextIsAssigned) {
  const auto a = RVFStreamedSAXParser::init();
  const auto b = RVFStreamedSAXParser::init();
  void* const context = a->parserContext();
  EXPECT_TRUE(a->respondsToSelector(SEL("setParserContext:")));
  a->setParserContext(b->parserContext());
  b->setParserContext(context);  // each frees the other's now
  EXPECT_NE(a->parserContext(), context);
  EXPECT_EQ(b->parserContext(), context);
}

TEST_F(RVFStreamedSAXParserTest, GivesItsHandlersBack) {
  EXPECT_TRUE(parser_->startElementHandler()(nullptr, nullptr, nullptr, 0, nullptr, 0, 0, nullptr));
  EXPECT_TRUE(parser_->endElementHandler()(nullptr, nullptr, nullptr));
  EXPECT_THAT(calls_, ElementsAre("<", "/"));
  EXPECT_FALSE(RVFStreamedSAXParser::init()->foundCharactersHandler());
}

}  // namespace
}  // namespace rvf
