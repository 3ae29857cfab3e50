// SPDX-License-Identifier: Apache-2.0
#include "Platform/Storage/NSPropertyListSerialization.h"

#include <string>
#include <string_view>

#include "Platform/Runtime/ClassBuilder.h"
#include "Platform/Runtime/ClassRegistration.h"
#include "Platform/Storage/BinaryPropertyListReader.h"
#include "Platform/Storage/BinaryPropertyListWriter.h"
#include "Platform/Storage/PropertyListError.h"
#include "Platform/Storage/TextPropertyListReader.h"
#include "Platform/Storage/XMLPropertyListReader.h"
#include "Platform/Storage/XMLPropertyListWriter.h"
#include "Platform/Text/Text.h"

namespace rvf {
namespace {

const ClassRegistration kRegistration(&NSPropertyListSerialization::classObject);

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

id readAs(NSPropertyListFormat format, std::string_view bytes, std::string& problem) {
  switch (format) {
    case NSPropertyListFormat::binary:
      return readBinaryPropertyList(bytes, ArchiveReferences::refused, problem);
    case NSPropertyListFormat::xml:
      return readXMLPropertyList(bytes, problem);
    default:
      return readTextPropertyList(bytes, problem);
  }
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
  std::string problem;
  const std::string bytes =
      format == NSPropertyListFormat::xml
          ? writtenXMLPropertyList(propertyList, problem)
          : writtenBinaryPropertyList(propertyList, ArchiveReferences::refused, problem);
  return bytes.empty() ? fail(problem) : NSData::dataWithBytes(bytes);
}

}  // namespace rvf
