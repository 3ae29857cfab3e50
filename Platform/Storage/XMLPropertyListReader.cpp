// SPDX-License-Identifier: Apache-2.0
#include "Platform/Storage/XMLPropertyListReader.h"

#include <libxml/xmlreader.h>

#include <memory>
#include <optional>
#include <utility>
#include <vector>

#include "Platform/Storage/PropertyListError.h"
#include "Platform/Storage/PropertyListLeaf.h"
#include "Platform/Text/Text.h"
#include "Platform/Values/NSArray.h"
#include "Platform/Values/NSData.h"
#include "Platform/Values/NSDictionary.h"
#include "Platform/Values/NSNumber.h"
#include "Platform/Values/NSString.h"

namespace rvf {
namespace {

/// The parser's own limits on depth and length are lower than those of property lists. They may
/// fall where no entity can grow: in UTF-8, in which a declaration of one cannot hide.
int optionsFor(std::string_view bytes) {
  const bool isUtf8 = bytes.starts_with("<plist") ||
                      bytes.starts_with("<?xml version=\"1.0\" encoding=\"UTF-8\"?>");
  const bool mayBeHuge = isUtf8 && bytes.find("<!ENTITY") == std::string_view::npos;
  return mayBeHuge ? XML_PARSE_NONET | XML_PARSE_HUGE : XML_PARSE_NONET;
}

class Reader final {
 public:
  explicit Reader(std::string_view bytes)
      : reader_(xmlReaderForMemory(bytes.data(), static_cast<int>(bytes.size()), nullptr, nullptr,
                                   optionsFor(bytes))) {
    if (reader_) xmlTextReaderSetStructuredErrorHandler(reader_.get(), &ignoreProblem, nullptr);
  }

  id read() {
    if (!step() || type_ != XML_READER_TYPE_ELEMENT || name_ != "plist") {
      return fail("the root element is not \"plist\"");
    }
    if (xmlTextReaderIsEmptyElement(reader_.get()) == 1 || !step()) return fail("an empty list");
    id root = readValue(0);
    if (!root) return nullptr;
    if (!step() || type_ != XML_READER_TYPE_END_ELEMENT) return fail("more than one root value");
    if (step() || !isAtEnd_) return fail("something behind the root element");
    return root;
  }
  const std::string& problem() const noexcept { return problem_; }

 private:
  /// Without one, libxml2 prints to standard error.
  static void ignoreProblem(void*, xmlErrorPtr) noexcept {}

  struct Freed {
    void operator()(xmlTextReader* reader) const noexcept { xmlFreeTextReader(reader); }
  };

  id fail(std::string_view problem) {
    if (problem_.empty()) problem_ = problem;
    return nullptr;
  }

  /// Moves to the next node, whatever it is. False at the end and where XML is broken.
  bool move() {
    const int result = reader_ ? xmlTextReaderRead(reader_.get()) : -1;
    isAtEnd_ = result == 0;
    if (result < 0) fail("not well-formed XML");
    if (result != 1) return false;
    type_ = xmlTextReaderNodeType(reader_.get());
    name_ = textOf(xmlTextReaderConstName(reader_.get()));
    return true;
  }

  /// Moves to the next element, end of an element or text that is not blank.
  bool step() {
    while (move()) {
      switch (type_) {
        case XML_READER_TYPE_ELEMENT:
        case XML_READER_TYPE_END_ELEMENT:
          return true;
        case XML_READER_TYPE_TEXT:
        case XML_READER_TYPE_CDATA:
        case XML_READER_TYPE_ENTITY_REFERENCE:
          fail("text between the elements");
          return false;
        default:
          break;
      }
    }
    return false;
  }

  static std::string_view textOf(const xmlChar* text) {
    return text ? reinterpret_cast<const char*>(text) : "";
  }

  /// The value whose element starts here; moves to the end of the element.
  id readValue(std::size_t depth) {
    if (type_ != XML_READER_TYPE_ELEMENT) return fail("a value is missing");
    if (name_ == "dict") return readDictionary(depth);
    if (name_ == "array") return readArray(depth);
    const std::string name(name_);
    const auto text = readText();
    if (!text) return nullptr;
    if (name == "string") return box(*text);
    if (name == "true" || name == "false") {
      return text->empty() ? id(box(name == "true")) : fail("a truth value with content");
    }
    id leaf;
    if (name == "integer") leaf = integerOfText(*text);
    if (name == "real") leaf = fractionOfText(*text);
    if (name == "date") leaf = dateOfText(*text);
    if (name == "data") leaf = dataOfBase64(*text);
    return leaf ? leaf : fail("no value that the element \"" + name + "\" may hold");
  }

  /// The content of an element that holds nothing but text.
  std::optional<std::string> readText() {
    std::string text;
    if (xmlTextReaderIsEmptyElement(reader_.get()) == 1) return text;
    while (move()) {
      switch (type_) {
        case XML_READER_TYPE_END_ELEMENT:
          return text;
        case XML_READER_TYPE_TEXT:
        case XML_READER_TYPE_CDATA:
        case XML_READER_TYPE_WHITESPACE:
        case XML_READER_TYPE_SIGNIFICANT_WHITESPACE:
          text += textOf(xmlTextReaderConstValue(reader_.get()));
          break;
        case XML_READER_TYPE_COMMENT:
        case XML_READER_TYPE_PROCESSING_INSTRUCTION:
          break;
        default:
          fail("an element or entity within a text");
          return std::nullopt;
      }
    }
    fail("cut off");
    return std::nullopt;
  }

  id readArray(std::size_t depth) {
    if (depth >= kDeepestPropertyList) return fail("nested too deep");
    std::vector<id> objects;
    if (xmlTextReaderIsEmptyElement(reader_.get()) == 1) return NSArray::array();
    while (step()) {
      if (type_ == XML_READER_TYPE_END_ELEMENT)
        return NSArray::arrayWithObjects(std::move(objects));
      id object = readValue(depth + 1);
      if (!object) return nullptr;
      objects.push_back(std::move(object));
    }
    return fail("cut off");
  }

  id readDictionary(std::size_t depth) {
    if (depth >= kDeepestPropertyList) return fail("nested too deep");
    NSDictionary::Entries entries;
    if (xmlTextReaderIsEmptyElement(reader_.get()) == 1) return NSDictionary::dictionary();
    while (step()) {
      if (type_ == XML_READER_TYPE_END_ELEMENT) {
        return std::make_shared<NSDictionary>(std::move(entries));
      }
      if (name_ != "key") return fail("a key is missing");
      const auto key = readText();
      if (!key) return nullptr;
      if (!step()) return fail("cut off");
      id value = readValue(depth + 1);
      if (!value) return nullptr;
      entries.insert_or_assign(box(*key), std::move(value));
    }
    return fail("cut off");
  }

  std::unique_ptr<xmlTextReader, Freed> reader_;
  std::string problem_;
  int type_ = XML_READER_TYPE_NONE;
  std::string_view name_;
  bool isAtEnd_ = false;
};

}  // namespace

id readXMLPropertyList(std::string_view bytes, std::string& problem) {
  if (bytes.size() > kLongestXMLPropertyList) {
    problem = "too long";
    return nullptr;
  }
  xmlInitParser();
  Reader reader(bytes);
  id root = reader.read();
  if (!root) problem = reader.problem();
  return root;
}

}  // namespace rvf
