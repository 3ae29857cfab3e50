// SPDX-License-Identifier: Apache-2.0
#include "Platform/Storage/NSPropertyListSerialization.h"

#include <cstdint>
#include <cstdlib>
#include <limits>
#include <memory>
#include <string>
#include <string_view>

#include "Platform/Runtime/ClassBuilder.h"
#include "Platform/Runtime/ClassRegistration.h"
#include "Platform/Storage/BinaryPropertyListCheck.h"
#include "Platform/Storage/LibplistTree.h"
#include "Platform/Storage/PropertyListError.h"
#include "Platform/Storage/TextPropertyListReader.h"
#include "Platform/Storage/XMLPropertyListReader.h"
#include "Platform/Text/Text.h"

namespace rvf {
namespace {

const ClassRegistration kRegistration(&NSPropertyListSerialization::classObject);

constexpr std::size_t kLongestForLibplist = std::numeric_limits<std::uint32_t>::max();

/// Data in the older text form begins with "<" as well, but with digits behind it.
NSPropertyListFormat formatOf(std::string_view bytes) {
  if (bytes.starts_with("bplist")) return NSPropertyListFormat::binary;
  const bool isUtf16 = bytes.starts_with("\xFF\xFE") || bytes.starts_with("\xFE\xFF");
  if (bytes.starts_with("\xEF\xBB\xBF")) bytes.remove_prefix(3);
  const std::string_view text = withoutPrefix(bytes, &isWhiteSpaceOrNewline);
  const bool isMarkup =
      text.starts_with("<?") || text.starts_with("<!") || text.starts_with("<plist");
  return isUtf16 || isMarkup ? NSPropertyListFormat::xml : NSPropertyListFormat::olderText;
}

id readBinary(std::string_view bytes, std::string& problem) {
  const BinaryPropertyListFindings findings = checkBinaryPropertyList(bytes);
  problem = findings.problem;
  if (!problem.empty()) return nullptr;
  std::string rewritten;
  if (!findings.textsWithNul.empty()) {
    rewritten = withTextsInUtf16(bytes, findings.textsWithNul);
    bytes = rewritten;
  }
  if (bytes.size() > kLongestForLibplist) {
    problem = "too long";
    return nullptr;
  }
  plist_t root = nullptr;
  plist_from_bin(bytes.data(), static_cast<std::uint32_t>(bytes.size()), &root);
  const LibplistTree tree(root);
  id object = root ? objectOfNode(root) : nullptr;
  if (!object) problem = "refused by libplist";
  return object;
}

id readAs(NSPropertyListFormat format, std::string_view bytes, std::string& problem) {
  switch (format) {
    case NSPropertyListFormat::binary:
      return readBinary(bytes, problem);
    case NSPropertyListFormat::xml:
      return readXMLPropertyList(bytes, problem);
    default:
      return readTextPropertyList(bytes, problem);
  }
}

/// libplist leaves carriage returns as they are, which every reader takes for line feeds (XML 1.0,
/// 2.11).
std::string withEscapedReturns(std::string_view xml) {
  std::string result;
  result.reserve(xml.size());
  for (const char c : xml) {
    if (c == '\r') {
      result += "&#13;";
    } else {
      result += c;
    }
  }
  return result;
}

Ref<NSData> dataOfTree(const LibplistTree& tree, NSPropertyListFormat format) {
  const bool isXML = format == NSPropertyListFormat::xml;
  char* bytes = nullptr;
  std::uint32_t length = 0;
  (isXML ? plist_to_xml : plist_to_bin)(tree.root(), &bytes, &length);
  const std::unique_ptr<char, decltype(&std::free)> owner(bytes, &std::free);
  const std::string_view written(bytes ? bytes : "", bytes ? length : 0);
  if (written.empty()) return nullptr;
  return isXML ? NSData::dataWithBytes(withEscapedReturns(written))
               : NSData::dataWithBytes(written);
}

}  // namespace

Class NSPropertyListSerialization::classObject() {
  static const Class kClass = ClassBuilder<NSPropertyListSerialization>(
                                  "NSPropertyListSerialization", NSObject::classObject())
                                  .registered();
  return kClass;
}

id NSPropertyListSerialization::propertyListWithData(const Ref<NSData>& data,
                                                     NSPropertyListFormat* format,
                                                     Ref<NSError>* error) {
  const std::string_view bytes = data ? data->characters() : std::string_view();
  const NSPropertyListFormat found = formatOf(bytes);
  std::string problem;
  id root = readAs(found, bytes, problem);
  if (!root) {
    reportError(error, [&] { return propertyListError(NSPropertyListReadCorruptError, problem); });
  } else if (format) {
    *format = found;
  }
  return root;
}

Ref<NSData> NSPropertyListSerialization::dataWithPropertyList(const id& propertyList,
                                                              NSPropertyListFormat format,
                                                              Ref<NSError>* error) {
  const auto fail = [error](std::string_view problem) {
    reportError(error, [&] { return propertyListError(NSPropertyListWriteInvalidError, problem); });
    return nullptr;
  };
  if (format != NSPropertyListFormat::xml && format != NSPropertyListFormat::binary) {
    return fail("a form that is only read");
  }
  LibplistNodeMaker maker(format);
  const plist_t root = maker.nodeOf(propertyList);
  if (!root) return fail(maker.problem());
  const LibplistTree tree(root);
  auto data = dataOfTree(tree, format);
  return data ? data : fail("refused by libplist");
}

}  // namespace rvf
