// SPDX-License-Identifier: Apache-2.0
#include "tests/RVFoundation/Streaming/CallDigest.h"

namespace rvf::test {

CallDigest::CallDigest(RVFStreamedSAXParser& parser) {
  parser.setStartElementHandler([this](XMLText localName, XMLText prefix, XMLText URI,
                                       std::int32_t namespaceCount, const XMLText* namespaces,
                                       std::int32_t attributeCount, std::int32_t,
                                       const XMLText* attributes) {
    ++elements_;
    add("\1");
    for (const XMLText text : {localName, prefix, URI})
      addText(xmlView(text));
    for (int i = 0; i < 2 * namespaceCount; ++i)
      addText(xmlView(namespaces[i]));
    for (const XMLAttribute attribute : XMLAttributes(attributes, attributeCount)) {
      addText(attribute.localName());
      addText(attribute.prefix());
      addText(attribute.URI());
      addText(attribute.value());
    }
    return true;
  });
  parser.setEndElementHandler([this](XMLText localName, XMLText prefix, XMLText URI) {
    add("\2");
    for (const XMLText text : {localName, prefix, URI})
      addText(xmlView(text));
    return true;
  });
  parser.setFoundCharactersHandler([this](XMLText characters, std::int32_t count) {
    add({reinterpret_cast<const char*>(characters), static_cast<std::size_t>(count)});
  });
}

void CallDigest::add(std::string_view bytes) {
  std::uint64_t value = value_;
  for (const char byte : bytes) {
    value = (value ^ static_cast<unsigned char>(byte)) * 1099511628211U;
  }
  value_ = value;
}

void CallDigest::addText(std::string_view bytes) {
  add(bytes);
  add("\3");  // no XML text holds it
}

}  // namespace rvf::test
