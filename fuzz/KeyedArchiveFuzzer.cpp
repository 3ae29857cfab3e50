// SPDX-License-Identifier: Apache-2.0

// Keyed archives, as files may hold them. What is read is archived again, unless its order then
// leads deeper than archives may, and reads again.

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>
#include <unordered_set>
#include <vector>

#include "Platform/Runtime/NSException.h"
#include "Platform/Storage/NSKeyedArchiver.h"
#include "Platform/Storage/NSKeyedUnarchiver.h"
#include "Platform/Values/NSMutableArray.h"
#include "Platform/Values/NSMutableDictionary.h"
#include "Platform/Values/NSSet.h"
#include "tests/Platform/Storage/ArchivedNode.h"

namespace {

using rvf::id;

/// What an object leads to; taken away from what can change, so that no circle stays.
std::vector<id> takeContent(rvf::NSObject& object) {
  std::vector<id> content;
  if (const auto* array = dynamic_cast<rvf::NSArray*>(&object)) content = array->objects();
  if (const auto* dictionary = dynamic_cast<rvf::NSDictionary*>(&object)) {
    for (const auto& [key, value] : dictionary->entries())
      content.insert(content.end(), {key, value});
  }
  if (const auto* set = dynamic_cast<rvf::NSSet*>(&object)) content = {set->begin(), set->end()};
  if (auto* array = dynamic_cast<rvf::NSMutableArray*>(&object)) array->removeAllObjects();
  if (auto* dictionary = dynamic_cast<rvf::NSMutableDictionary*>(&object)) {
    dictionary->removeAllObjects();
  }
  if (const auto* node = dynamic_cast<rvf::ArchivedNode*>(&object)) {
    content = {node->next, node->parent.lock()};
  }
  return content;
}

void dissolve(const id& root) {
  std::vector<id> open = {root};
  std::unordered_set<id> seen;
  while (!open.empty()) {
    const id object = std::move(open.back());
    open.pop_back();
    if (!object || !seen.insert(object).second) continue;
    for (id& inner : takeContent(*object))
      open.push_back(std::move(inner));
  }
}

bool survives(const id& root) {
  rvf::Ref<rvf::NSData> data;
  try {
    data = rvf::NSKeyedArchiver::archivedDataWithRootObject(root);
  } catch (const rvf::NSException&) {
    return true;  // leads deeper in the order in which it is written
  }
  rvf::Ref<rvf::NSError> error;
  const id again = rvf::NSKeyedUnarchiver::unarchiveTopLevelObjectWithData(data, &error);
  const bool isRead = again != nullptr || error != nullptr;
  if (again) dissolve(again);
  return isRead;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view bytes(reinterpret_cast<const char*>(data), size);
  rvf::Ref<rvf::NSError> error;
  const id root = rvf::NSKeyedUnarchiver::unarchiveTopLevelObjectWithData(
      rvf::NSData::dataWithBytes(bytes), &error);
  if (root && error) std::abort();
  if (root && !survives(root)) std::abort();
  if (root) dissolve(root);
  rvf::ArchivedNode::breakCircles();
  return 0;
}
