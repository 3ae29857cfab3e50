// SPDX-License-Identifier: Apache-2.0
#include "tests/Platform/Storage/ArchivedNode.h"

#include <utility>
#include <vector>

#include "Platform/Runtime/ClassBuilder.h"
#include "Platform/Runtime/ClassRegistration.h"
#include "Platform/Values/NSString.h"

namespace rvf {
namespace {

const ClassRegistration kRegistration(&ArchivedNode::classObject);

std::vector<std::weak_ptr<ArchivedNode>>& unarchivedNodes() {
  static std::vector<std::weak_ptr<ArchivedNode>> nodes;
  return nodes;
}

id makeNode(NSObject&, SEL) {
  auto node = std::make_shared<ArchivedNode>();
  unarchivedNodes().push_back(node);
  return node;
}

}  // namespace

Ref<ArchivedNode> ArchivedNode::nodeWithName(std::string name) {
  auto node = std::make_shared<ArchivedNode>();
  node->name = std::move(name);
  return node;
}

void ArchivedNode::breakCircles() {
  for (const auto& node : std::exchange(unarchivedNodes(), {})) {
    if (const auto alive = node.lock()) alive->next = nullptr;
  }
}

Class ArchivedNode::classObject() {
  static const Class kClass = ClassBuilder<ArchivedNode>("ArchivedNode", NSObject::classObject())
                                  .method<&ArchivedNode::encodeWithCoder>("encodeWithCoder:")
                                  .method<&ArchivedNode::initWithCoder>("initWithCoder:")
                                  .method("alloc", IMP(&makeNode))
                                  .registered();
  return kClass;
}

Class ArchivedNode::isa() const {
  return classObject();
}

void ArchivedNode::encodeWithCoder(const Ref<NSCoder>& coder) const {
  coder->encodeObject(box(name), "name");
  coder->encodeInteger(count, "count");
  coder->encodeDouble(weight, "weight");
  coder->encodeBool(isMarked, "marked");
  coder->encodeObject(next, "next");
  coder->encodeConditionalObject(parent.lock(), "parent");
}

void ArchivedNode::initWithCoder(const Ref<NSCoder>& coder) {
  name = unboxText(coder->decodeObjectForKey("name")).value_or("");
  count = coder->decodeIntegerForKey("count");
  weight = coder->decodeDoubleForKey("weight");
  isMarked = coder->decodeBoolForKey("marked");
  next = coder->decodeObjectForKey("next");
  parent = coder->decodeObjectForKey("parent");
}

}  // namespace rvf
