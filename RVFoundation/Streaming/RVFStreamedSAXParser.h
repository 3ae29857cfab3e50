// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <exception>
#include <functional>
#include <memory>
#include <vector>

#include "Platform/Export.h"
#include "Platform/Runtime/NSAutoreleasePool.h"
#include "Platform/Runtime/NSObject.h"
#include "Platform/Values/NSData.h"
#include "Platform/Values/NSError.h"
#include "RVFoundation/Streaming/XMLAttributes.h"

namespace rvf {

/// Parses an XML answer while it arrives, over libxml2's push parser: chunks go in, and the
/// handlers are called for element starts, element ends and characters as they are met.
///
///     const auto parser = RVFStreamedSAXParser::init();
///     parser->setStartElementHandler([&](XMLText localName, XMLText, XMLText, std::int32_t,
///                                        const XMLText*, std::int32_t attributeCount,
///                                        std::int32_t, const XMLText* attributes) {
///       for (const auto attribute : XMLAttributes(attributes, attributeCount)) ...
///       return true;
///     });
///     // for each chunk: parser->parseChunk(chunk, &error); at the end:
///     parser->completeParsingUsingError(&error);
///
/// Handlers run on the caller's thread, inside `parseChunk` or `completeParsingUsingError` only,
/// each in a release scope of its own. A handler may replace or clear any handler, its own
/// included, and may drop the last reference to the parser; the parser then lives until the call
/// returns. It must not feed the parser that calls it: that raises
/// `NSInternalInconsistencyException`. An exception from a handler stops the parse like a stop
/// that the handler asked for, and leaves the call that fed the parser once libxml2 has returned.
///
/// External entities and DTDs are never opened, entities that a document defines are never
/// expanded, and elements may be nested 256 deep, as elsewhere in libxml2: the element beyond ends
/// the parse with `RVFLIBXMLParserError`, everything before it has been reported. One parser serves
/// one document.
///
/// Thread: one at a time; handlers run within its calls. Lifetime: owns its handlers; what they are
/// given ends with the call to them.
class RVF_EXPORT RVFStreamedSAXParser final : public NSObject {
 public:
  /// Local name; prefix and URI of its namespace, null if it has none; the declared namespaces, a
  /// prefix and a URI each, and their number; the number of attributes; how many of them, the
  /// last ones, the DTD supplied; the attributes, five texts each (see `XMLAttributes`). The texts
  /// are the parser's own: valid only during the call. Answers false to stop the parse.
  using StartElementHandler = std::function<bool(
      XMLText localName, XMLText prefix, XMLText URI, std::int32_t namespaceCount,
      const XMLText* namespaces, std::int32_t attributeCount, std::int32_t defaultedCount,
      const XMLText* attributes)>;
  /// Local name, prefix and URI of the namespace. Answers false to stop the parse.
  using EndElementHandler = std::function<bool(XMLText localName, XMLText prefix, XMLText URI)>;
  /// Some characters, not terminated, and their count in bytes. One run of characters may arrive
  /// in several calls.
  using FoundCharactersHandler =
      std::function<void(XMLText characters, std::int32_t characterCount)>;

  /// A new parser; absent if libxml2 cannot make its context.
  [[nodiscard]] static Ref<RVFStreamedSAXParser> init();
  ~RVFStreamedSAXParser() override;

  static Class classObject();
  Class isa() const override;

  /// libxml2's push parser context (`xmlParserCtxtPtr`), owned by this object.
  void* parserContext() const noexcept { return parserContext_; }
  /// Only assigns: the context that was there is the caller's from now on, the new one, which may
  /// be null, goes with this object. Not for handlers.
  void setParserContext(void* context);

  /// Empty where none is set; that callback is then skipped.
  StartElementHandler startElementHandler() const;
  void setStartElementHandler(StartElementHandler handler);
  EndElementHandler endElementHandler() const;
  void setEndElementHandler(EndElementHandler handler);
  FoundCharactersHandler foundCharactersHandler() const;
  void setFoundCharactersHandler(FoundCharactersHandler handler);

  /// Whether the last start or end handler asked to stop.
  bool interupted() const noexcept { return interupted_; }
  /// Set before a callback without a handler, it stops the parse there.
  void setInterupted(bool interupted);

  /// Parses one chunk, at most 2 GiB - 1 byte, split from the others anywhere. False on failure,
  /// in `RVFLIBXMLErrorDomain`: `RVFLIBXMLStoppedError` once a handler has stopped the parse, else
  /// `RVFLIBXMLParserError` with libxml2's message and own error. libxml2 recovers from many
  /// faults and goes on calling the handlers; the failure is then reported for every later chunk
  /// too. Fed on after its end, it fails without an error record.
  bool parseChunk(const Ref<NSData>& chunk, Ref<NSError>* error = nullptr);

  /// Says that the document is complete. False, with an error as for `parseChunk`, if it is not;
  /// after a stop, without an error record. Further calls answer true.
  bool completeParsingUsingError(Ref<NSError>* error = nullptr);

  /// The error record for a libxml2 error (`const xmlError*`): its message, and libxml2's domain
  /// and code in the underlying error. Absent for null.
  Ref<NSError> errorForXMLError(const void* xmlError) const;

 private:
  struct Callbacks;

  RVFStreamedSAXParser() = default;

  int feed(const char* bytes, int length, bool terminate);
  Ref<NSError> lastError() const;
  Ref<NSError> depthError() const;
  void retire(std::shared_ptr<const void> handler);
  void releaseRetired();

  // What every callback touches comes first, close together.
  std::shared_ptr<const StartElementHandler> startElementHandler_;
  std::shared_ptr<const EndElementHandler> endElementHandler_;
  std::shared_ptr<const FoundCharactersHandler> foundCharactersHandler_;
  NSAutoreleasePool* callbackScope_ = nullptr;  // while a call feeds libxml2
  bool interupted_ = false;
  bool hasRetired_ = false;
  bool isNestedTooDeep_ = false;

  void* parserContext_ = nullptr;
  std::vector<std::shared_ptr<const void>> retired_;  // replaced while they might run
  std::exception_ptr exception_;
};

}  // namespace rvf
