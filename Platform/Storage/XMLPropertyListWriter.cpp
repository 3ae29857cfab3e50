// SPDX-License-Identifier: Apache-2.0
#include "Platform/Storage/XMLPropertyListWriter.h"

#include <plist/plist.h>

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <string_view>

#include "Platform/Runtime/Runtime.h"
#include "Platform/Storage/BinaryPropertyListForm.h"
#include "Platform/Storage/BinaryPropertyListWriter.h"
#include "Platform/Storage/PropertyListError.h"
#include "Platform/Storage/PropertyListValue.h"
#include "Platform/Storage/XMLPropertyListReader.h"
#include "Platform/Values/NSArray.h"
#include "Platform/Values/NSData.h"
#include "Platform/Values/NSDate.h"
#include "Platform/Values/NSDictionary.h"
#include "Platform/Values/NSNumber.h"
#include "Platform/Values/NSString.h"

namespace rvf {
namespace {

struct Freed {
  void operator()(void* node) const noexcept { plist_free(node); }
};
/// A tree of libplist's nodes; null for a value that XML has no room for.
using Node = std::unique_ptr<void, Freed>;

class NodeMaker final {
 public:
  explicit NodeMaker(const id& root) : root_(root) {}

  Node nodeOf(const id& object, std::size_t depth) {
    if (!object) return refuse("an absent object");
    if (!canTake(kBinaryObjectCost)) return nullptr;
    switch (propertyListKind(*object)) {
      case PropertyListKind::text:
        return nodeOfText(static_cast<const NSString&>(*object).string());
      case PropertyListKind::data: {
        const auto bytes = static_cast<const NSData&>(*object).characters();
        if (!canTake(bytes.size())) return nullptr;
        return Node(plist_new_data(bytes.empty() ? "" : bytes.data(), bytes.size()));
      }
      case PropertyListKind::date:
        return nodeOfDate(static_cast<const NSDate&>(*object).timeIntervalSinceReferenceDate());
      case PropertyListKind::truth:
        return Node(plist_new_bool(static_cast<const NSNumber&>(*object).boolValue() ? 1 : 0));
      case PropertyListKind::integer:
        return nodeThroughBinary(object);
      case PropertyListKind::fraction:
        return Node(plist_new_real(static_cast<const NSNumber&>(*object).doubleValue()));
      case PropertyListKind::array:
        return nodeOfArray(static_cast<const NSArray&>(*object), depth);
      case PropertyListKind::dictionary:
        return nodeOfDictionary(static_cast<const NSDictionary&>(*object), depth);
      default:
        return refuse("an object of class " + std::string(class_getName(object->isa())));
    }
  }
  const std::string& problem() const noexcept { return problem_; }

 private:
  Node refuse(std::string_view problem) {
    if (problem_.empty()) problem_ = problem;
    return nullptr;
  }

  /// XML unfolds what is shared, and has the limit of the binary form, which is asked only when a
  /// list turns out to be large.
  bool canTake(std::uint64_t cost) {
    const bool wasSmall = taken_ <= kBinaryUsualLimit;
    taken_ = addedCost(taken_, cost);
    if (!wasSmall || taken_ <= kBinaryUsualLimit) return problem_.empty();
    return !writtenBinaryPropertyList(root_, ArchiveReferences::refused, problem_).empty();
  }

  /// libplist's own constructors change integers beyond 2^63 - 1, and dates beyond 68 years around
  /// 2001.
  Node nodeThroughBinary(const id& leaf) {
    const std::string bytes = writtenBinaryPropertyList(leaf, ArchiveReferences::refused, problem_);
    plist_t node = nullptr;
    plist_from_bin(bytes.data(), static_cast<std::uint32_t>(bytes.size()), &node);
    return Node(node);
  }

  Node nodeOfText(const std::string& text) {
    if (!canTake(text.size())) return nullptr;
    const std::string_view problem = problemOfText(text, NSPropertyListFormat::xml);
    return problem.empty() ? Node(plist_new_string(text.c_str())) : refuse(problem);
  }

  Node nodeOfDate(double seconds) {
    constexpr double kFirst = -31588531200;   // 1000-01-01: libplist does not pad years
    constexpr double kBehind = 252423993600;  // 10000-01-01
    if (!(seconds >= kFirst && seconds < kBehind)) return refuse("a date beyond the form's years");
    return nodeThroughBinary(std::make_shared<NSDate>(std::floor(seconds)));
  }

  Node nodeOfArray(const NSArray& array, std::size_t depth) {
    if (depth >= kDeepestPropertyList) return refuse("nested too deep");
    Node node(plist_new_array());
    for (const id& element : array) {
      Node child = nodeOf(element, depth + 1);
      if (!child) return nullptr;
      plist_array_append_item(node.get(), child.release());
    }
    return node;
  }

  Node nodeOfDictionary(const NSDictionary& dictionary, std::size_t depth) {
    if (depth >= kDeepestPropertyList) return refuse("nested too deep");
    Node node(plist_new_dict());
    for (const auto& [key, value] : dictionary) {
      const std::string* text = textOfObject(*key);
      if (!text) return refuse("a key that is no text");
      if (!canTake(costOfLeaf(text->size()))) return nullptr;
      const std::string_view problem = problemOfText(*text, NSPropertyListFormat::xml);
      if (!problem.empty()) return refuse(problem);
      Node child = nodeOf(value, depth + 1);
      if (!child) return nullptr;
      plist_dict_set_item(node.get(), text->c_str(), child.release());
    }
    return node;
  }

  const id root_;
  std::uint64_t taken_ = 0;
  std::string problem_;
};

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

}  // namespace

std::string writtenXMLPropertyList(const id& root, std::string& problem) {
  NodeMaker maker(root);
  const Node tree = maker.nodeOf(root, 0);
  problem = maker.problem();
  if (!tree) return {};
  char* bytes = nullptr;
  std::uint32_t length = 0;
  plist_to_xml(tree.get(), &bytes, &length);
  const std::unique_ptr<char, decltype(&std::free)> owner(bytes, &std::free);
  // The length wraps around at 4 GB; the end does not.
  std::string xml = withEscapedReturns(bytes ? bytes : "");
  if (xml.size() <= kLongestXMLPropertyList) return xml;
  problem = "too long";
  return {};
}

}  // namespace rvf
