// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <memory>
#include <string>

#include "Platform/Runtime/NSObject.h"
#include "Platform/Storage/NSCoder.h"

namespace rvf {

/// A node of a graph that can be archived: a name, a next node that it owns, and a parent that it
/// does not.
class ArchivedNode final : public NSObject {
 public:
  static Ref<ArchivedNode> nodeWithName(std::string name);
  /// Takes `next` away from all nodes that were unarchived since the last time: those of an archive
  /// that failed may own one another in a circle, and nobody else knows them.
  static void breakCircles();

  static Class classObject();
  Class isa() const override;

  void encodeWithCoder(const Ref<NSCoder>& coder) const;
  void initWithCoder(const Ref<NSCoder>& coder);

  std::string name;
  long count = 0;
  double weight = 0;
  bool isMarked = false;
  id next;
  std::weak_ptr<NSObject> parent;
};

}  // namespace rvf
