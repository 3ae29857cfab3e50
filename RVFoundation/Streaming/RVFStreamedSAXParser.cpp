// SPDX-License-Identifier: Apache-2.0
#include "RVFoundation/Streaming/RVFStreamedSAXParser.h"

#include <libxml/parser.h>
#include <libxml/xmlerror.h>

#include <string>
#include <utility>

#include "Platform/Observation/KeyValueObserving.h"
#include "Platform/Runtime/ClassBuilder.h"
#include "Platform/Runtime/ClassRegistration.h"
#include "Platform/Runtime/NSAutoreleasePool.h"
#include "Platform/Runtime/NSException.h"
#include "Platform/Text/Text.h"
#include "Platform/Values/NSString.h"
#include "RVFoundation/CoreServices/RVFErrors.h"

namespace rvf {
namespace {

const ClassRegistration kRegistration(&RVFStreamedSAXParser::classObject);

constexpr int kOptions =
    XML_PARSE_RECOVER | XML_PARSE_NOBLANKS | XML_PARSE_NONET | XML_PARSE_COMPACT;
static_assert(kOptions == 67841);

/// libxml2 refuses deeper nesting unless it is allowed huge documents, but its push parser forgets
/// to look. Each level may bring namespaces, which are searched one by one.
constexpr int kDeepestNesting = 256;

/// What `xmlParseChunk` answers once the document has ended.
constexpr int kAfterTheEnd = -1;

xmlParserCtxtPtr contextOf(const RVFStreamedSAXParser& parser) {
  return static_cast<xmlParserCtxtPtr>(parser.parserContext());
}

template <class Handler>
std::shared_ptr<const Handler> shared(Handler handler) {
  return handler ? std::make_shared<const Handler>(std::move(handler)) : nullptr;
}

template <class Handler>
Handler valueOf(const std::shared_ptr<const Handler>& handler) {
  return handler ? *handler : Handler();
}

}  // namespace

/// What libxml2 calls, with the parser as context. No exception may pass through its frames.
struct RVFStreamedSAXParser::Callbacks {
  /// Runs `body` as in a release scope of its own, and keeps its exception for the feeding call.
  /// Nothing is handed over between callbacks, so that one scope, drained, serves them all.
  template <class Body>
  static void run(RVFStreamedSAXParser& parser, Body body) noexcept {
    try {
      body();
    } catch (...) {
      parser.exception_ = std::current_exception();
      parser.interupted_ = true;
      xmlStopParser(contextOf(parser));
    }
    parser.callbackScope_->drain();
    if (parser.hasRetired_) parser.releaseRetired();
  }

  static void SAXStartElement(void* context, const xmlChar* localName, const xmlChar* prefix,
                              const xmlChar* URI, int namespaceCount, const xmlChar** namespaces,
                              int attributeCount, int defaultedCount,
                              const xmlChar** attributes) noexcept {
    auto& parser = *static_cast<RVFStreamedSAXParser*>(context);
    if (contextOf(parser)->nameNr >= kDeepestNesting) return refuseDepth(parser);
    run(parser, [&] {
      if (const auto* handler = parser.startElementHandler_.get()) {
        parser.setInterupted(!(*handler)(localName, prefix, URI, namespaceCount, namespaces,
                                         attributeCount, defaultedCount, attributes));
      }
      if (parser.interupted_) xmlStopParser(contextOf(parser));
    });
  }

  static void refuseDepth(RVFStreamedSAXParser& parser) noexcept {
    parser.isNestedTooDeep_ = true;
    xmlStopParser(contextOf(parser));
  }

  static void SAXEndElement(void* context, const xmlChar* localName, const xmlChar* prefix,
                            const xmlChar* URI) noexcept {
    auto& parser = *static_cast<RVFStreamedSAXParser*>(context);
    run(parser, [&] {
      if (const auto* handler = parser.endElementHandler_.get()) {
        parser.setInterupted(!(*handler)(localName, prefix, URI));
      }
      if (parser.interupted_) xmlStopParser(contextOf(parser));
    });
  }

  static void SAXCharacters(void* context, const xmlChar* characters, int count) noexcept {
    auto& parser = *static_cast<RVFStreamedSAXParser*>(context);
    run(parser, [&] {
      if (const auto* handler = parser.foundCharactersHandler_.get()) (*handler)(characters, count);
    });
  }

  /// Keeps libxml2 from printing: errors reach the caller through the results of the calls.
  static void SAXError(void*, const char*, ...) noexcept {}

  static constexpr xmlSAXHandler makeSAXHandler() {  // uncovered: runs while this is compiled
    xmlSAXHandler handler = {};
    handler.characters = &SAXCharacters;
    handler.error = &SAXError;
    handler.startElementNs = &SAXStartElement;
    handler.endElementNs = &SAXEndElement;
    handler.initialized = XML_SAX2_MAGIC;
    return handler;
  }
};

Ref<RVFStreamedSAXParser> RVFStreamedSAXParser::init() {
  static xmlSAXHandler SAXHandler = Callbacks::makeSAXHandler();
  xmlInitParser();
  Ref<RVFStreamedSAXParser> parser(new RVFStreamedSAXParser);
  const xmlParserCtxtPtr context =
      xmlCreatePushParserCtxt(&SAXHandler, parser.get(), nullptr, 0, nullptr);
  if (!context) return nullptr;
  xmlCtxtUseOptions(context, kOptions);
  parser->parserContext_ = context;
  return parser;
}

RVFStreamedSAXParser::~RVFStreamedSAXParser() {
  const xmlParserCtxtPtr context = contextOf(*this);
  if (!context) return;
  xmlFreeDoc(context->myDoc);  // made for a document that defines entities, freed by nobody else
  xmlFreeParserCtxt(context);
}

Class RVFStreamedSAXParser::classObject() {
  using Self = RVFStreamedSAXParser;
  static const Class kClass =
      ClassBuilder<Self>("RVFStreamedSAXParser", NSObject::classObject())
          .property("parserContext", "T^{_xmlParserCtxt},N,V_parserContext")
          .property("startElementHandler", "T@?,C,N,V_startElementHandler")
          .property("endElementHandler", "T@?,C,N,V_endElementHandler")
          .property("foundCharactersHandler", "T@?,C,N,V_foundCharactersHandler")
          .property("interupted", "Tc,N,V_interupted")
          .ivar("_parserContext", "^{_xmlParserCtxt}")
          .ivar("_startElementHandler", "@?")
          .ivar("_endElementHandler", "@?")
          .ivar("_foundCharactersHandler", "@?")
          .ivar<&Self::interupted_>("_interupted")
          .method<&Self::parserContext>("parserContext")
          .method<&Self::setParserContext>("setParserContext:")
          .method<&Self::startElementHandler>("startElementHandler")
          .method<&Self::setStartElementHandler>("setStartElementHandler:")
          .method<&Self::endElementHandler>("endElementHandler")
          .method<&Self::setEndElementHandler>("setEndElementHandler:")
          .method<&Self::foundCharactersHandler>("foundCharactersHandler")
          .method<&Self::setFoundCharactersHandler>("setFoundCharactersHandler:")
          .method<&Self::interupted>("interupted")
          .method<&Self::setInterupted>("setInterupted:")
          .method<&Self::parseChunk>("parseChunk:error:")
          .method<&Self::completeParsingUsingError>("completeParsingUsingError:")
          .method<&Self::errorForXMLError>("errorForXMLError:")
          .registered();
  return kClass;
}

Class RVFStreamedSAXParser::isa() const {
  return classObject();
}

void RVFStreamedSAXParser::setInterupted(bool interupted) {
  announceChange(*this, "interupted", [&] { interupted_ = interupted; });
}

void RVFStreamedSAXParser::setParserContext(void* context) {
  announceChange(*this, "parserContext", [&] { parserContext_ = context; });
}

RVFStreamedSAXParser::StartElementHandler RVFStreamedSAXParser::startElementHandler() const {
  return valueOf(startElementHandler_);
}

void RVFStreamedSAXParser::setStartElementHandler(StartElementHandler handler) {
  announceChange(*this, "startElementHandler",
                 [&] { retire(std::exchange(startElementHandler_, shared(std::move(handler)))); });
}

RVFStreamedSAXParser::EndElementHandler RVFStreamedSAXParser::endElementHandler() const {
  return valueOf(endElementHandler_);
}

void RVFStreamedSAXParser::setEndElementHandler(EndElementHandler handler) {
  announceChange(*this, "endElementHandler",
                 [&] { retire(std::exchange(endElementHandler_, shared(std::move(handler)))); });
}

RVFStreamedSAXParser::FoundCharactersHandler RVFStreamedSAXParser::foundCharactersHandler() const {
  return valueOf(foundCharactersHandler_);
}

void RVFStreamedSAXParser::setFoundCharactersHandler(FoundCharactersHandler handler) {
  announceChange(*this, "foundCharactersHandler", [&] {
    retire(std::exchange(foundCharactersHandler_, shared(std::move(handler))));
  });
}

/// A handler that is replaced while it runs must outlive its own call.
void RVFStreamedSAXParser::retire(std::shared_ptr<const void> handler) {
  if (!callbackScope_ || !handler) return;
  retired_.push_back(std::move(handler));
  hasRetired_ = true;
}

void RVFStreamedSAXParser::releaseRetired() {
  while (std::exchange(hasRetired_, false)) {
    // What a handler captured may set handlers again while it is destroyed.
    const auto handlers = std::exchange(retired_, {});
  }
}

int RVFStreamedSAXParser::feed(const char* bytes, int length, bool terminate) {
  if (callbackScope_) {
    NSException::raise(NSInternalInconsistencyException,
                       "a handler fed the parser that was calling it");
  }
  int result = 0;
  {
    const NSAutoreleasePool callScope;
    NSAutoreleasePool callbackScope;
    callbackScope_ = &callbackScope;
    result = xmlParseChunk(contextOf(*this), bytes, length, terminate ? 1 : 0);
    callbackScope_ = nullptr;
  }
  releaseRetired();
  if (exception_) std::rethrow_exception(std::exchange(exception_, nullptr));
  return result;
}

Ref<NSError> RVFStreamedSAXParser::lastError() const {
  if (isNestedTooDeep_) return depthError();  // a stopped context keeps no error
  return errorForXMLError(xmlCtxtGetLastError(parserContext_));
}

bool RVFStreamedSAXParser::parseChunk(const Ref<NSData>& chunk, Ref<NSError>* error) {
  const auto self = refTo(this);        // a handler may drop the last other reference,
  const Ref<NSData> heldChunk = chunk;  // and replace what `chunk` refers to
  const std::string_view bytes = heldChunk ? heldChunk->characters() : std::string_view();
  const int result = feed(bytes.data(), static_cast<int>(bytes.size()), false);
  if (interupted_) {
    reportError(error, [] {
      return NSError::errorWithDomain(RVFLIBXMLErrorDomain, RVFLIBXMLStoppedError);
    });
    return false;
  }
  if (result != XML_ERR_OK) reportError(error, [this] { return lastError(); });
  return result == XML_ERR_OK;
}

bool RVFStreamedSAXParser::completeParsingUsingError(Ref<NSError>* error) {
  const auto self = refTo(this);  // a handler may drop the last other reference
  const int result = feed(nullptr, 0, true);
  if (result == XML_ERR_OK || result == kAfterTheEnd) return true;
  reportError(error, [this] { return lastError(); });
  return false;
}

/// What libxml2 reports where it looks.
Ref<NSError> RVFStreamedSAXParser::depthError() const {
  std::string message = "Excessive depth in document: " + std::to_string(kDeepestNesting) + "\n";
  xmlError problem = {};
  problem.domain = XML_FROM_PARSER;
  problem.code = XML_ERR_INTERNAL_ERROR;
  problem.message = message.data();
  return errorForXMLError(&problem);
}

Ref<NSError> RVFStreamedSAXParser::errorForXMLError(const void* xmlError) const {
  if (!xmlError) return nullptr;
  const auto& problem = *static_cast<const struct _xmlError*>(xmlError);
  // libxml2 quotes the document, which may hold any bytes.
  const Ref<NSString> message = box(wellFormedUtf8(problem.message ? problem.message : ""));
  const auto inner = NSError::errorWithDomain(
      "LIBXML2InternalDomain-" + std::to_string(problem.domain), problem.code,
      NSDictionary::dictionaryWithEntries({{NSLocalizedDescriptionKey, message}}));
  return NSError::errorWithDomain(
      RVFLIBXMLErrorDomain, RVFLIBXMLParserError,
      NSDictionary::dictionaryWithEntries(
          {{NSLocalizedDescriptionKey, message}, {NSUnderlyingErrorKey, inner}}));
}

}  // namespace rvf
