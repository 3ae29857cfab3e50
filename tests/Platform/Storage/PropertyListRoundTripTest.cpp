// SPDX-License-Identifier: Apache-2.0
//
// Whatever is written in either form reads equal, with the same type codes.

#include <gtest/gtest.h>
#include <rapidcheck.h>

#include <cmath>
#include <limits>
#include <string>
#include <utility>
#include <vector>

#include "Platform/Storage/NSPropertyListSerialization.h"
#include "Platform/Values/NSArray.h"
#include "Platform/Values/NSDate.h"
#include "Platform/Values/NSDictionary.h"
#include "Platform/Values/NSNumber.h"
#include "Platform/Values/NSString.h"
#include "tests/Platform/Text/TextGenerators.h"

namespace rvf {
namespace {

std::string without(std::string text, bool (*isExcluded)(unsigned char)) {
  std::erase_if(text, [isExcluded](char c) { return isExcluded(static_cast<unsigned char>(c)); });
  return text;
}

/// Text that the form has room for.
rc::Gen<std::string> textFor(NSPropertyListFormat format) {
  return rc::gen::map(anyText(), [format](std::string text) {
    if (format == NSPropertyListFormat::binary) return text;
    for (const char* excluded : {"\xEF\xBF\xBE", "\xEF\xBF\xBF"}) {
      for (std::size_t at = 0; (at = text.find(excluded)) != std::string::npos;)
        text.erase(at, 3);
    }
    return without(std::move(text),
                   [](unsigned char c) { return c < 0x20 && c != '\t' && c != '\n' && c != '\r'; });
  });
}

rc::Gen<id> leafFor(NSPropertyListFormat format) {
  const bool isXML = format == NSPropertyListFormat::xml;
  const auto boxed = [](auto value) -> id { return box(value); };
  const auto seconds = rc::gen::map(rc::gen::inRange<long>(-31'000'000'000, 250'000'000'000),
                                    [](long whole) { return static_cast<double>(whole); });
  const auto finite = rc::gen::map(rc::gen::arbitrary<double>(),
                                   [](double value) { return std::isfinite(value) ? value : 0.0; });
  return rc::gen::oneOf(
      rc::gen::map(textFor(format), [](const std::string& text) -> id { return box(text); }),
      rc::gen::map(anyBytes(),
                   [](const std::string& bytes) -> id { return NSData::dataWithBytes(bytes); }),
      rc::gen::map(rc::gen::arbitrary<long>(), boxed),
      rc::gen::map(rc::gen::inRange(std::numeric_limits<unsigned long>::max() / 2 + 1,
                                    std::numeric_limits<unsigned long>::max()),
                   boxed),
      rc::gen::map(rc::gen::arbitrary<bool>(), boxed), rc::gen::map(finite, boxed),
      rc::gen::map(rc::gen::oneOf(seconds, isXML ? seconds : finite), [](double value) -> id {
        return NSDate::dateWithTimeIntervalSinceReferenceDate(value);
      }));
}

rc::Gen<id> treeFor(NSPropertyListFormat format, int depth) {
  if (depth == 0) return leafFor(format);
  const auto elements = rc::gen::container<std::vector<id>>(
      rc::gen::lazy([=] { return treeFor(format, depth - 1); }));
  const auto entries = rc::gen::container<std::vector<std::pair<std::string, id>>>(
      rc::gen::pair(textFor(format), rc::gen::lazy([=] { return treeFor(format, depth - 1); })));
  // Else trees grow with the power of their depth.
  return rc::gen::oneOf(leafFor(format),
                        rc::gen::map(rc::gen::scale(0.1, elements),
                                     [](std::vector<id> objects) -> id {
                                       return NSArray::arrayWithObjects(std::move(objects));
                                     }),
                        rc::gen::map(rc::gen::scale(0.1, entries),
                                     [](const std::vector<std::pair<std::string, id>>& list) -> id {
                                       NSDictionary::Entries map;
                                       for (const auto& [text, value] : list)
                                         map.insert_or_assign(box(text), value);
                                       return std::make_shared<NSDictionary>(std::move(map));
                                     }));
}

/// The type codes of all numbers, in the order of the tree.
std::string codesOf(const id& object) {
  if (const auto* number = dynamic_cast<const NSNumber*>(object.get())) return number->objCType();
  std::string codes;
  if (const auto* array = dynamic_cast<const NSArray*>(object.get())) {
    for (const id& element : *array)
      codes += codesOf(element);
  }
  return codes;
}

bool survives(const id& tree, NSPropertyListFormat format) {
  const auto data = NSPropertyListSerialization::dataWithPropertyList(tree, format);
  NSPropertyListFormat found = {};
  const id again = NSPropertyListSerialization::propertyListWithData(data, &found);
  return found == format && objectsAreEqual(tree, again) && codesOf(tree) == codesOf(again);
}

TEST(PropertyListRoundTrip, AnyTreeSurvivesInXML) {
  EXPECT_TRUE(rc::check([] {
    constexpr auto kFormat = NSPropertyListFormat::xml;
    const id tree = *treeFor(kFormat, 3);
    RC_LOG() << tree->description();
    RC_ASSERT(survives(tree, kFormat));
  }));
}

TEST(PropertyListRoundTrip, AnyTreeSurvivesInBinary) {
  EXPECT_TRUE(rc::check([] {
    constexpr auto kFormat = NSPropertyListFormat::binary;
    const id tree = *treeFor(kFormat, 3);
    RC_LOG() << tree->description();
    RC_ASSERT(survives(tree, kFormat));
  }));
}

TEST(PropertyListRoundTrip, AnyBytesAreReadOrRefused) {
  EXPECT_TRUE(rc::check([](bool isBinary) {
    const auto bytes = (isBinary ? "bplist00" : "") + *anyBytes();
    Ref<NSError> error;
    const id root = NSPropertyListSerialization::propertyListWithData(NSData::dataWithBytes(bytes),
                                                                      nullptr, &error);
    RC_ASSERT((root == nullptr) == (error != nullptr && error->code() == 3840));
  }));
}

}  // namespace
}  // namespace rvf
