// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <plist/plist.h>

#include <string>

#include "Platform/Runtime/NSObject.h"
#include "Platform/Storage/NSPropertyListSerialization.h"

namespace rvf {

/// A tree of libplist's nodes, owned.
class LibplistTree final {
 public:
  explicit LibplistTree(plist_t root) noexcept : root_(root) {}
  ~LibplistTree() { plist_free(root_); }
  LibplistTree(const LibplistTree&) = delete;
  LibplistTree& operator=(const LibplistTree&) = delete;

  plist_t root() const noexcept { return root_; }

 private:
  plist_t root_;
};

/// The objects that the nodes stand for; absent if one of them is a reference of an archive.
id objectOfNode(plist_t node);

/// Makes nodes of objects. What libplist's own constructors would change (dates beyond 68 years
/// around 2001 or finer than a microsecond, integers beyond 2^63 - 1) goes
/// through a small binary list.
class LibplistNodeMaker final {
 public:
  explicit LibplistNodeMaker(NSPropertyListFormat format) noexcept : format_(format) {}

  /// The caller owns the nodes. Null if a value has no place in the form; see `problem`.
  plist_t nodeOf(const id& object) { return nodeOf(object, 0); }
  const std::string& problem() const noexcept { return problem_; }

 private:
  plist_t nodeOf(const id& object, std::size_t depth);
  plist_t nodeOfDictionary(const NSObject& object, std::size_t depth);
  plist_t nodeOfArray(const NSObject& object, std::size_t depth);
  plist_t nodeOfText(const std::string& text);
  plist_t nodeOfDate(double seconds);
  plist_t refuse(std::string_view problem);

  NSPropertyListFormat format_;
  std::string problem_;
};

}  // namespace rvf
